// The catalogue: tables of the file that hold what SQLite does not know of its definitions.
//
// Their names begin with "MSys"; the dialect does not see them. MSysTables, MSysColumns and MSysIndexes
// hold the tables, MSysRelationships the relations, MSysQueries the stored queries, MSysProperties the
// properties that callers set, MSysSettings what the engine keeps for itself.
#pragma once

#include "jet/Schema.h"
#include "jet/Store.h"

namespace jet {

/// Version of the layout of a file, kept as its user_version. A file of a greater one is refused.
inline constexpr int layoutVersion = 1;
/// "HBRA", kept as the application id of a file.
inline constexpr quint32 applicationId = 0x48425241;

/// Names of MSysSettings.
namespace setting {
inline constexpr QStringView locale = u"Locale";
inline constexpr QStringView password = u"Password";
inline constexpr QStringView textOrder = u"TextOrder";
} // namespace setting

/// Name of the index of a table in the store. No table name holds a dot, so two never meet.
QString indexSqlName(QStringView table, QStringView index);
/// False for an index on the row identifier alone: the table itself is in that order.
bool needsSqlIndex(const TableDef& table, const Index& index);
/// Whether a name belongs to the catalogue or to SQLite.
bool isReservedName(QStringView name);

class Catalog {
public:
    explicit Catalog(Store& store) : m_store(store) {}

    void create(); ///< The tables of the catalogue, in an empty file.

    /// What the file holds. Where catalogue and real tables disagree, what both know is taken and the
    /// rest is logged.
    Schema read();
    /// The differences between catalogue and real tables, in French.
    QStringList differences();

    void put(const TableDef& table); ///< Replaces what is known of the table.
    void removeTable(const QString& name);
    void put(const Relation& relation);
    void removeRelation(const QString& name);
    void put(const QueryDef& query);
    void removeQuery(const QString& name);

    bool hasProperty(const QString& name);
    QVariant property(const QString& name); ///< 3270 absent.
    void setProperty(const QString& name, const QVariant& value);

    QVariant setting(QStringView name);
    void setSetting(QStringView name, const QVariant& value);

private:
    Schema readAll(QStringList& differences);
    std::vector<TableDef> readTables();
    void keepWhatIsReal(TableDef& table, QStringList& differences);
    void insert(const QString& table, const QVariantList& values);
    void remove(const QString& table, const QString& column, const QString& name);

    Store& m_store;
    QHash<QString, QSet<QString>> m_realColumns;
    QSet<QString> m_realIndexes;
};

} // namespace jet
