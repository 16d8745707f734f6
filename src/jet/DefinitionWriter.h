// Changes of definitions: the tables of the file, its catalogue and the definitions in memory together.
#pragma once

#include "jet/Catalog.h"

namespace jet {

/// One change. To be used inside a transaction; when something throws, the caller undoes the
/// transaction and takes back the schema it had.
class DefinitionWriter {
public:
    DefinitionWriter(Store& store, Schema& schema) : m_store(store), m_schema(schema), m_catalog(store) {}

    void appendTable(const TableDef& table);
    void deleteTable(const QString& name);
    void appendField(const QString& table, const Field& field);
    void deleteField(const QString& table, const QString& field);
    void changeField(const QString& table, const Field& field);
    // DefinitionRestructure.cpp
    void renameTable(const QString& name, const QString& newName);
    void renameField(const QString& table, const QString& name, const Field& field);
    /// `expressions` gives what the store is to write into a column, by its name.
    void convertFields(const QString& table, const QList<Field>& fields, const QHash<QString, QString>& expressions);
    void appendIndex(const QString& table, const Index& index);
    void deleteIndex(const QString& table, const QString& index);
    void appendRelation(const Relation& relation);
    void deleteRelation(const QString& name);
    void appendQuery(const QueryDef& query);
    void deleteQuery(const QString& name);

    /// Makes every index on text anew, for another version of the text order. A unique index that the
    /// new order does not allow any more is dropped.
    void rebuildTextIndexes();

private:
    TableDef known(const QString& table) const; ///< 3265 absent.
    void run(const QStringList& statements);
    bool exists(const QString& condition);
    bool hasRows(const TableDef& table);
    void save(const TableDef& table); ///< Rules, catalogue and memory.
    void createIndex(const TableDef& table, const Index& index);
    void dropIndex(const TableDef& table, const Index& index);
    void rebuild(const TableDef& before, const TableDef& after, const QHash<QString, QString>& expressions = {});
    QList<Relation> relationsOf(const QString& table) const;
    void remake(const QList<Relation>& relations);
    void makeRelationRules(const Relation& relation);
    void checkRelation(const Relation& relation) const;
    void refuseUse(const TableDef& table, const Index& index) const;
    void appendHiddenIndex(const Relation& relation);

    Store& m_store;
    Schema& m_schema;
    Catalog m_catalog;
};

} // namespace jet
