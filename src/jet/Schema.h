// What the binder may know of a file: its tables, relations and stored queries.
#pragma once

#include "jet/Definitions.h"

#include <QHash>

namespace jet {

/// The definitions of one open file, in memory. A Database keeps it true.
class Schema {
public:
    const TableDef* table(QStringView name) const; ///< Case-blind; nullptr when absent.
    const QueryDef* query(QStringView name) const;
    const Relation* relation(QStringView name) const;

    const QList<TableDef>& tables() const { return m_tables; }
    const QList<QueryDef>& queries() const { return m_queries; }
    const QList<Relation>& relations() const { return m_relations; }

    void put(TableDef table); ///< Adds, or replaces the one of that name.
    void put(QueryDef query);
    void put(Relation relation);
    void removeTable(QStringView name);
    void removeQuery(QStringView name);
    void removeRelation(QStringView name);

private:
    QList<TableDef> m_tables;
    QList<QueryDef> m_queries;
    QList<Relation> m_relations;
};

} // namespace jet
