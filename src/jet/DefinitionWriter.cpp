#include "jet/DefinitionWriter.h"

#include "jet/Compile.h"
#include "jet/JetLog.h"
#include "jet/TableSql.h"
#include "jet/Triggers.h"
#include "jet/sql/Parser.h"


namespace jet {

using namespace Qt::StringLiterals;

namespace {

bool usesField(const Index& index, QStringView field)
{
    return std::any_of(index.Fields.begin(), index.Fields.end(),
                       [field](const IndexField& one) { return sameName(one.Name, field); });
}

bool usesField(const Relation& relation, QStringView table, QStringView field)
{
    return std::any_of(relation.Fields.begin(), relation.Fields.end(), [&](const auto& pair) {
        return (sameName(relation.Table, table) && sameName(pair.first, field))
               || (sameName(relation.ForeignTable, table) && sameName(pair.second, field));
    });
}

bool touches(const Relation& relation, QStringView table)
{
    return sameName(relation.Table, table) || sameName(relation.ForeignTable, table);
}

/// Whether the index makes the primary columns of the relation unique.
bool carries(const Index& index, const Relation& relation)
{
    return index.Unique && index.Fields.size() == relation.Fields.size()
           && std::all_of(relation.Fields.begin(), relation.Fields.end(),
                          [&](const auto& pair) { return usesField(index, pair.first); });
}

} // namespace

// --- Small steps ---------------------------------------------------------------------------------

TableDef DefinitionWriter::known(const QString& table) const
{
    const TableDef* found = m_schema.table(table);
    if (!found)
        fail(3265, table);
    return *found;
}

void DefinitionWriter::run(const QStringList& statements)
{
    for (const QString& statement : statements)
        m_store.run(statement);
}

bool DefinitionWriter::exists(const QString& condition)
{
    return m_store.single(u"SELECT EXISTS("_s + condition + u')').toInt() != 0;
}

bool DefinitionWriter::hasRows(const TableDef& table)
{
    return exists(u"SELECT 1 FROM "_s + quoted(table.Name));
}

void DefinitionWriter::save(const TableDef& table)
{
    run(dropColumnRules(table.Name));
    run(columnRules(table));
    m_catalog.put(table);
    m_schema.put(table);
}

void DefinitionWriter::createIndex(const TableDef& table, const Index& index)
{
    if (needsSqlIndex(table, index))
        m_store.run(createIndexSql(table, index));
}

void DefinitionWriter::dropIndex(const TableDef& table, const Index& index)
{
    m_store.run(u"DROP INDEX IF EXISTS "_s + quoted(indexSqlName(table.Name, index.Name)));
}

QList<Relation> DefinitionWriter::relationsOf(const QString& table) const
{
    QList<Relation> relations;
    for (const Relation& relation : m_schema.relations()) {
        if (touches(relation, table))
            relations.append(relation);
    }
    return relations;
}

/// Writes the table anew under its new definition. The row identifiers stay, and the counter with them.
void DefinitionWriter::rebuild(const TableDef& before, const TableDef& after,
                               const QHash<QString, QString>& expressions)
{
    const QList<Relation> relations = relationsOf(before.Name);
    // A table cannot be renamed while a trigger names one that is not there.
    run(dropColumnRules(before.Name));
    for (const Relation& relation : relations)
        run(dropRelationRules(relation.Name));

    const QString interim = before.Name + u".rebuild"_s;
    m_store.run(createTableSql(m_store, after, interim));
    QStringList targets{quoted(after.rowIdColumn())};
    QStringList sources{quoted(before.rowIdColumn())};
    for (const Field& field : after.Fields) {
        const bool isNew = !before.field(field.Name);
        if (field.AutoIncrement || (isNew && field.Type == DataType::Boolean))
            continue;
        targets += quoted(field.Name);
        if (expressions.contains(field.Name))
            sources += expressions.value(field.Name);
        else
            sources += !isNew ? quoted(field.Name) : field.Required ? defaultSql(m_store, field) : u"NULL"_s;
    }
    const QVariant counter =
        m_store.single(u"SELECT seq FROM sqlite_sequence WHERE name="_s + quotedText(before.Name));
    m_store.run(u"INSERT INTO %1(%2) SELECT %3 FROM %4"_s.arg(quoted(interim), targets.join(u','),
                                                              sources.join(u','), quoted(before.Name)));
    m_store.run(u"DROP TABLE "_s + quoted(before.Name));
    m_store.run(u"ALTER TABLE %1 RENAME TO %2"_s.arg(quoted(interim), quoted(after.Name)));
    if (counter.isValid()) {
        m_store.run(u"DELETE FROM sqlite_sequence WHERE name="_s + quotedText(after.Name));
        m_store.run(u"INSERT INTO sqlite_sequence(name,seq) VALUES(%1,%2)"_s.arg(quotedText(after.Name),
                                                                                counter.toString()));
    }
    for (const Index& index : after.Indexes)
        createIndex(after, index);
    save(after);
    for (const Relation& relation : relations)
        makeRelationRules(relation);
}

// --- Tables --------------------------------------------------------------------------------------

void DefinitionWriter::appendTable(const TableDef& table)
{
    checkTable(table);
    if (m_schema.table(table.Name))
        fail(3010, table.Name);
    if (m_schema.query(table.Name))
        fail(3012, table.Name);
    TableDef made = table;
    for (Field& field : made.Fields)
        field = normalised(field);
    for (Index& index : made.Indexes)
        index = normalised(index);
    m_store.run(createTableSql(m_store, made, made.Name));
    for (const Index& index : made.Indexes)
        createIndex(made, index);
    save(made);
}

void DefinitionWriter::deleteTable(const QString& name)
{
    const TableDef table = known(name);
    for (const Relation& relation : m_schema.relations()) {
        if (touches(relation, table.Name))
            fail(3281, table.Name, relation.Name);
    }
    m_store.run(u"DROP TABLE "_s + quoted(table.Name));
    m_catalog.removeTable(table.Name);
    m_schema.removeTable(table.Name);
}

// --- Fields --------------------------------------------------------------------------------------

void DefinitionWriter::appendField(const QString& table, const Field& field)
{
    const TableDef before = known(table);
    checkField(field);
    if (before.field(field.Name))
        fail(3191, field.Name, before.Name);
    TableDef after = before;
    after.Fields.append(normalised(field));
    checkTable(after);
    const bool filled = hasRows(before);
    const QString value = defaultSql(m_store, after.Fields.last());
    const bool nullable = !field.Required && field.Type != DataType::Boolean;
    if (field.AutoIncrement || (filled && !isConstantDefault(value)))
        return rebuild(before, after);
    m_store.run(u"ALTER TABLE %1 ADD COLUMN %2"_s.arg(quoted(before.Name), columnSql(after.Fields.last(), value)));
    // A default value is for records to come. SQLite gives it to the present ones too.
    if (filled && nullable && !value.isEmpty())
        m_store.run(u"UPDATE %1 SET %2=NULL"_s.arg(quoted(before.Name), quoted(field.Name)));
    save(after);
}

void DefinitionWriter::deleteField(const QString& table, const QString& field)
{
    const TableDef before = known(table);
    const Field* found = before.field(field);
    if (!found)
        fail(3265, field, before.Name);
    for (const Relation& relation : m_schema.relations()) {
        if (usesField(relation, before.Name, field))
            fail(3281, field, relation.Name);
    }
    if (before.Fields.size() == 1)
        fail(3264, before.Name);
    TableDef after = before;
    after.Fields.removeIf([&](const Field& one) { return sameName(one.Name, field); });
    after.Indexes.removeIf([&](const Index& one) { return usesField(one, field); });
    if (found->AutoIncrement)
        return rebuild(before, after);
    run(dropColumnRules(before.Name));
    for (const Index& index : before.Indexes) {
        if (usesField(index, field))
            dropIndex(before, index);
    }
    m_store.run(u"ALTER TABLE %1 DROP COLUMN %2"_s.arg(quoted(before.Name), quoted(found->Name)));
    save(after);
}

void DefinitionWriter::changeField(const QString& table, const Field& field)
{
    const TableDef before = known(table);
    const Field* old = before.field(field.Name);
    if (!old)
        fail(3265, field.Name, before.Name);
    checkField(field);
    if (old->Type != field.Type || old->AutoIncrement != field.AutoIncrement)
        fail(3219, field.Name);
    Field changed = normalised(field);
    changed.Name = old->Name;
    TableDef after = before;
    after.Fields[old - before.Fields.constData()] = changed;
    // A default value stands in the table itself, the other rules in triggers.
    if (old->DefaultValue.trimmed() != changed.DefaultValue.trimmed())
        return rebuild(before, after);
    save(after);
}

// --- Indexes -------------------------------------------------------------------------------------

void DefinitionWriter::appendIndex(const QString& table, const Index& index)
{
    TableDef after = known(table);
    checkIndex(after, index);
    const Index made = normalised(index);
    if (made.Primary || made.Required) {
        for (const IndexField& column : made.Fields) {
            const Field* field = after.field(column.Name);
            if (exists(u"SELECT 1 FROM %1 WHERE %2 IS NULL"_s.arg(quoted(after.Name), quoted(field->Name))))
                fail(3058, made.Name, field->Name);
        }
    }
    createIndex(after, made);
    after.Indexes.append(made);
    save(after);
}

/// A unique index to which a relation clings, and no other could take its place, stays.
void DefinitionWriter::refuseUse(const TableDef& table, const Index& index) const
{
    for (const Relation& relation : m_schema.relations()) {
        if (index.Foreign && sameName(relation.ForeignTable, table.Name) && sameName(relation.Name, index.Name))
            fail(3281, index.Name, relation.Name);
        if (!sameName(relation.Table, table.Name) || !carries(index, relation))
            continue;
        const auto other = [&](const Index& one) { return !sameName(one.Name, index.Name) && carries(one, relation); };
        if (std::none_of(table.Indexes.begin(), table.Indexes.end(), other))
            fail(3281, index.Name, relation.Name);
    }
}

void DefinitionWriter::deleteIndex(const QString& table, const QString& index)
{
    const TableDef before = known(table);
    const Index* found = before.index(index);
    if (!found)
        fail(3372, index, before.Name);
    refuseUse(before, *found);
    dropIndex(before, *found);
    TableDef after = before;
    after.Indexes.removeIf([&](const Index& one) { return sameName(one.Name, index); });
    save(after);
}

void DefinitionWriter::rebuildTextIndexes()
{
    const QList<TableDef> tables = m_schema.tables();
    for (TableDef table : tables) {
        const auto onText = [&](const Index& index) {
            return std::any_of(index.Fields.begin(), index.Fields.end(),
                               [&](const IndexField& one) { return isText(table.field(one.Name)->Type); });
        };
        QStringList lost;
        for (const Index& index : std::as_const(table.Indexes)) {
            if (!onText(index))
                continue;
            dropIndex(table, index);
            try {
                createIndex(table, index);
            } catch (const Error& error) {
                if (error.number() != 3022)
                    throw;
                qCWarning(jetLog).noquote() << "index dropped:" << table.Name << index.Name << error.description();
                lost += index.Name;
            }
        }
        if (lost.isEmpty())
            continue;
        table.Indexes.removeIf([&](const Index& index) { return lost.contains(index.Name); });
        save(table);
    }
}

// --- Relations -----------------------------------------------------------------------------------

void DefinitionWriter::checkRelation(const Relation& relation) const
{
    checkName(relation.Name);
    if (m_schema.relation(relation.Name))
        fail(3012, relation.Name);
    const TableDef primary = known(relation.Table);
    const TableDef foreign = known(relation.ForeignTable);
    if (relation.Fields.isEmpty())
        fail(3366, relation.Name);
    for (const auto& pair : relation.Fields) {
        const Field* one = primary.field(pair.first);
        const Field* other = foreign.field(pair.second);
        if (!one || !other)
            fail(3409, one ? pair.second : pair.first, relation.Name);
        if (one->Type != other->Type)
            fail(3368, relation.Name);
    }
    if (std::none_of(primary.Indexes.begin(), primary.Indexes.end(),
                     [&](const Index& index) { return carries(index, relation); }))
        fail(3609, primary.Name);
}

void DefinitionWriter::makeRelationRules(const Relation& relation)
{
    run(dropRelationRules(relation.Name));
    run(relationRules(relation, known(relation.Table), known(relation.ForeignTable)));
}

/// Each change of a primary record looks for its foreign ones.
void DefinitionWriter::appendHiddenIndex(const Relation& relation)
{
    Index index{.Name = relation.Name, .Foreign = true};
    for (const auto& pair : relation.Fields)
        index.Fields.append({pair.second});
    appendIndex(relation.ForeignTable, index);
}

void DefinitionWriter::appendRelation(const Relation& relation)
{
    checkRelation(relation);
    Relation made = relation;
    const TableDef primary = known(relation.Table);
    const TableDef foreign = known(relation.ForeignTable);
    made.Table = primary.Name;
    made.ForeignTable = foreign.Name;
    for (auto& pair : made.Fields)
        pair = {primary.field(pair.first)->Name, foreign.field(pair.second)->Name};
    if (exists(u"SELECT 1 FROM %1 AS f WHERE %2"_s.arg(quoted(foreign.Name), orphanCondition(made, primary))))
        fail(3379, foreign.Name, made.Name);
    appendHiddenIndex(made);
    m_catalog.put(made);
    m_schema.put(made);
    makeRelationRules(made);
}

void DefinitionWriter::deleteRelation(const QString& name)
{
    const Relation* found = m_schema.relation(name);
    if (!found)
        fail(3265, name);
    const Relation relation = *found;
    run(dropRelationRules(relation.Name));
    m_catalog.removeRelation(relation.Name);
    m_schema.removeRelation(relation.Name);
    const TableDef foreign = known(relation.ForeignTable);
    const Index* hidden = foreign.index(relation.Name);
    if (hidden && hidden->Foreign)
        deleteIndex(foreign.Name, hidden->Name);
}

// --- Stored queries ------------------------------------------------------------------------------

void DefinitionWriter::appendQuery(const QueryDef& query)
{
    checkName(query.Name);
    if (m_schema.query(query.Name) || m_schema.table(query.Name))
        fail(3012, query.Name);
    sql::parseStatement(query.SQL);
    m_catalog.put(query);
    m_schema.put(query);
}

void DefinitionWriter::deleteQuery(const QString& name)
{
    const QueryDef* found = m_schema.query(name);
    if (!found)
        fail(3265, name);
    const QString stored = found->Name;
    m_catalog.removeQuery(stored);
    m_schema.removeQuery(stored);
}

} // namespace jet
