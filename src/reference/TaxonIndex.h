// The names of the taxa in memory, and the adding of many of them.
#pragma once

#include "jet/Database.h"
#include "jet/Recordset.h"
#include "platform/Clock.h"

#include <QHash>

namespace reference {

/// Finds names by rank, parent and name without a statement for each, and adds new ones, each written once. A million
/// names take some tens of megabytes: kept are numbers, the texts of families and genera alone. Failures are jet::Error.
class TaxonIndex {
public:
    TaxonIndex(jet::Database& database, const platform::Clock& clock);

    /// Rows of that name at that rank; below the genus under that parent.
    QList<qint32> find(int rank, qint32 parent, const QString& name) const;
    QString authors(qint32 id) const;
    /// Adds a name under its parent (0 for a family); gives its identifier.
    qint32 add(int rank, qint32 parent, const QString& name, const QString& authors);
    /// Puts a name under the accepted one.
    void sink(qint32 id, qint32 accepted);
    /// The family of a genus, the genus of a species.
    qint32 familyOf(qint32 genus) const { return m_genera.value(genus).family; }
    QString fullName(int rank, qint32 parent, const QString& name) const;

private:
    struct Genus {
        qint32 family = 0;
        QString name;
    };
    static quint64 hashOf(int rank, qint32 parent, const QString& name);
    void load();
    void enter(int rank, qint32 parent, const QString& name, qint32 id);
    void seek(qint32 id) const;

    jet::Database& m_database;
    QString m_stamp;
    std::unique_ptr<jet::Recordset> m_reader; ///< Looks at single rows.
    std::unique_ptr<jet::Recordset> m_writer;
    /// Identifiers by a number made of rank, parent and name; what shares one stands at the next free numbers. What is found
    /// is compared with the row.
    QHash<quint64, qint32> m_names;
    QHash<qint32, Genus> m_genera;
    qint32 m_next = 0; ///< The identifier that the next row should get; 0 before the first.
};

} // namespace reference
