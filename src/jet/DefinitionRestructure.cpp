// Tables and columns under other names and of other types.
#include "jet/Compile.h"
#include "jet/DefinitionWriter.h"
#include "jet/TableSql.h"
#include "jet/Triggers.h"

namespace jet {

using namespace Qt::StringLiterals;

namespace {

bool usesOneOf(const Index& index, const QList<Field>& fields)
{
    return std::any_of(index.Fields.begin(), index.Fields.end(), [&](const IndexField& column) {
        return std::any_of(fields.begin(), fields.end(),
                           [&](const Field& field) { return sameName(field.Name, column.Name); });
    });
}

/// The column of a relation on the side of that table.
void renameIn(Relation& relation, const QString& table, const QString& name, const QString& newName)
{
    for (auto& [primary, foreign] : relation.Fields) {
        if (sameName(relation.Table, table) && sameName(primary, name))
            primary = newName;
        if (sameName(relation.ForeignTable, table) && sameName(foreign, name))
            foreign = newName;
    }
}

} // namespace

/// The relations as they are to be from now on; their rules have been dropped.
void DefinitionWriter::remake(const QList<Relation>& relations)
{
    for (const Relation& relation : relations) {
        m_catalog.removeRelation(relation.Name);
        m_schema.removeRelation(relation.Name);
        m_catalog.put(relation);
        m_schema.put(relation);
    }
    for (const Relation& relation : relations)
        makeRelationRules(relation);
}

void DefinitionWriter::renameTable(const QString& name, const QString& newName)
{
    const TableDef before = known(name);
    checkName(newName);
    if (isReservedName(newName))
        fail(3125, newName);
    if (!sameName(before.Name, newName) && m_schema.table(newName))
        fail(3010, newName);
    if (m_schema.query(newName))
        fail(3012, newName);
    QList<Relation> relations = relationsOf(before.Name);
    run(dropColumnRules(before.Name));
    for (Relation& relation : relations) {
        run(dropRelationRules(relation.Name));
        for (QString* side : {&relation.Table, &relation.ForeignTable}) {
            if (sameName(*side, before.Name))
                *side = newName;
        }
    }
    // The name of an index in the store begins with that of its table.
    for (const Index& index : before.Indexes)
        dropIndex(before, index);
    TableDef after = before;
    after.Name = newName;
    // To the store a name in other letters is the same name, which is taken.
    const QString interim = before.Name + u".rebuild"_s;
    m_store.run(u"ALTER TABLE %1 RENAME TO %2; ALTER TABLE %2 RENAME TO %3"_s.arg(quoted(before.Name), quoted(interim),
                                                                                  quoted(newName)));
    m_catalog.removeTable(before.Name);
    m_schema.removeTable(before.Name);
    for (const Index& index : after.Indexes)
        createIndex(after, index);
    save(after);
    remake(relations);
}

void DefinitionWriter::renameField(const QString& table, const QString& name, const Field& field)
{
    const TableDef before = known(table);
    const Field* old = before.field(name);
    if (!old)
        fail(3265, name, before.Name);
    checkField(field);
    if (old->Type != field.Type || old->AutoIncrement != field.AutoIncrement
        || old->DefaultValue.trimmed() != field.DefaultValue.trimmed())
        fail(3219, field.Name);
    if (!sameName(name, field.Name) && before.field(field.Name))
        fail(3191, field.Name, before.Name);
    TableDef after = before;
    after.Fields[old - before.Fields.constData()] = normalised(field);
    for (Index& index : after.Indexes) {
        for (IndexField& column : index.Fields) {
            if (sameName(column.Name, name))
                column.Name = field.Name;
        }
    }
    QList<Relation> relations = relationsOf(before.Name);
    run(dropColumnRules(before.Name));
    for (Relation& relation : relations) {
        run(dropRelationRules(relation.Name));
        renameIn(relation, before.Name, name, field.Name);
    }
    m_store.run(u"ALTER TABLE %1 RENAME COLUMN %2 TO %3"_s.arg(quoted(before.Name), quoted(old->Name),
                                                              quoted(field.Name)));
    save(after);
    remake(relations);
}

void DefinitionWriter::convertFields(const QString& table, const QList<Field>& fields,
                                     const QHash<QString, QString>& expressions)
{
    const TableDef before = known(table);
    TableDef after = before;
    for (const Field& field : fields) {
        const Field* old = before.field(field.Name);
        if (!old)
            fail(3265, field.Name, before.Name);
        checkField(field);
        if (old->AutoIncrement || field.AutoIncrement)
            fail(3219, field.Name);
        Field changed = normalised(field);
        changed.Name = old->Name;
        after.Fields[old - before.Fields.constData()] = changed;
    }
    for (const Index& index : before.Indexes) {
        if (index.Foreign && usesOneOf(index, fields))
            fail(3281, index.Name, index.Name);
    }
    after.Indexes.removeIf([&](const Index& index) { return usesOneOf(index, fields); });
    rebuild(before, after, expressions);
}

} // namespace jet
