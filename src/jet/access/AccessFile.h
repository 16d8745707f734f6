// An Access file as a database: its tables, relations, stored queries and properties.
#pragma once

#include "jet/access/Properties.h"
#include "jet/access/Rows.h"
#include "jet/access/StoredQuery.h"

#include <memory>

namespace jet::access {

/// A table of the user's.
struct TableEntry {
    QString name;
    quint32 page = 0; ///< Of its definition.
};

/// Objects that are no data, by kind ("formulaires").
struct OtherObjects {
    QString kind;
    QStringList names;
};

/// Reads Jet 3, Jet 4 and ACE files; never writes, never follows an index. Whatever the file holds, a failure is a
/// jet::Error, and neither time nor memory go beyond what its size allows for.
class AccessFile {
public:
    /// Opens it and reads the list of its objects. See PageFile; 3049 when there is no such list.
    explicit AccessFile(const QString& path, const QString& password = {});

    PageFile& pages() { return m_pages; }
    const QList<TableEntry>& tables() const { return m_tables; }
    /// The definition in the file's own terms.
    TableDefinition definition(const TableEntry& table);
    /// The same as a definition of ours; `properties` are those of propertiesOf. Fields come in the order of
    /// definition.columns, indexes without those of relations.
    static TableDef tableDef(const PageFile& file, const TableDefinition& definition, const Properties& properties);
    Properties propertiesOf(const QString& table);

    /// Relations that the file enforces; the others by name in `unenforced`.
    QList<Relation> relations(QStringList* unenforced = nullptr);
    QList<StoredQuery> queries();
    /// Properties of the database itself.
    QHash<QString, QVariant> databaseProperties() { return propertiesOfValue(m_databaseProperties).value({}); }
    const QList<OtherObjects>& otherObjects() const { return m_others; }

    /// What was found damaged so far, in French sentences, one for each kind of damage.
    const QStringList& remarks() const { return m_remarks; }

private:
    struct Query {
        QString name;
        qint32 id;
    };
    void readObjects();
    void addObject(Rows& rows, const TableDefinition& objects);
    void addOther(const QString& kind, const QString& name);
    void remark(const QString& text);
    Properties propertiesOfValue(const QByteArray& value);
    /// Calls `use` with the values of the wanted columns of each row of a system table.
    void forEachRow(const QString& table, const QStringList& columns,
                    const std::function<void(const QVariantList&)>& use);

    PageFile m_pages;
    QList<TableEntry> m_tables;
    QHash<QString, quint32> m_systemTables;
    QHash<QString, QByteArray> m_properties; ///< By the table's key.
    QByteArray m_databaseProperties;
    QList<Query> m_queries;
    QList<OtherObjects> m_others;
    QStringList m_remarks;
};

} // namespace jet::access
