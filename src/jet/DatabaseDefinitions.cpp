// Definitions and properties of a Database. Each change is whole or not at all, in the file and in memory.
#include "jet/DatabasePrivate.h"
#include "jet/DefinitionWriter.h"
#include "jet/TableSql.h"

namespace jet {

using namespace Qt::StringLiterals;

void Database::Private::loadSchema()
{
    schema = Catalog(store).read();
}

void Database::Private::change(const std::function<void(DefinitionWriter&)>& work)
{
    if (!store.isOpen())
        fail(3420, path);
    beforeWrite();
    const Schema before = schema;
    try {
        atomically([&] {
            DefinitionWriter writer(store, schema);
            work(writer);
        });
    } catch (...) {
        schema = before;
        throw;
    }
}

const Schema& Database::schema() const
{
    return d->schema;
}

void Database::AppendTable(const TableDef& table)
{
    d->change([&](DefinitionWriter& writer) { writer.appendTable(table); });
}

void Database::DeleteTable(const QString& name)
{
    d->change([&](DefinitionWriter& writer) { writer.deleteTable(name); });
}

void Database::AppendField(const QString& table, const Field& field)
{
    d->change([&](DefinitionWriter& writer) { writer.appendField(table, field); });
}

void Database::DeleteField(const QString& table, const QString& field)
{
    d->change([&](DefinitionWriter& writer) { writer.deleteField(table, field); });
}

void Database::ChangeField(const QString& table, const Field& field)
{
    d->change([&](DefinitionWriter& writer) { writer.changeField(table, field); });
}

void Database::AppendIndex(const QString& table, const Index& index)
{
    d->change([&](DefinitionWriter& writer) { writer.appendIndex(table, index); });
}

void Database::DeleteIndex(const QString& table, const QString& index)
{
    d->change([&](DefinitionWriter& writer) { writer.deleteIndex(table, index); });
}

void Database::AppendRelation(const Relation& relation)
{
    d->change([&](DefinitionWriter& writer) { writer.appendRelation(relation); });
}

void Database::DeleteRelation(const QString& name)
{
    d->change([&](DefinitionWriter& writer) { writer.deleteRelation(name); });
}

void Database::CreateQueryDef(const QString& name, const QString& sql)
{
    const QDateTime now = QDateTime::currentDateTime();
    d->change([&](DefinitionWriter& writer) { writer.appendQuery({name, sql, now, now}); });
}

void Database::DeleteQueryDef(const QString& name)
{
    d->change([&](DefinitionWriter& writer) { writer.deleteQuery(name); });
}

// --- Indexes of a table as a whole ---------------------------------------------------------------

namespace {

/// What is wrong with one index; anything else (a full disk, an interruption) is wrong with them all.
bool concernsOneIndex(int number)
{
    constexpr int numbers[] = {3022, 3058, 3125, 3264, 3281, 3283, 3284, 3409};
    return std::find(std::begin(numbers), std::end(numbers), number) != std::end(numbers);
}

/// The indexes of a table that are not among the wanted ones, and the wanted ones that it lacks.
struct IndexChanges {
    QStringList superfluous;
    QList<Index> missing;

    IndexChanges(const TableDef& table, const QList<Index>& wanted)
    {
        const auto isWanted = [&](const Index& index) {
            return std::any_of(wanted.begin(), wanted.end(), [&](const Index& one) {
                return sameDefinition(normalised(one), index);
            });
        };
        for (const Index& index : table.Indexes) {
            if (!index.Foreign && !isWanted(index))
                superfluous += index.Name;
        }
        QStringList seen;
        for (const Index& index : wanted) {
            const Index* stands = table.index(index.Name);
            const bool again = seen.contains(nameKey(index.Name));
            if (again || !stands || !sameDefinition(normalised(index), *stands))
                missing.append(index);
            seen += nameKey(index.Name);
        }
    }
};

} // namespace

QList<Database::IndexFailure> Database::ReplaceIndexes(const QString& table, const QList<Index>& indexes)
{
    const TableDef* known = d->schema.table(table);
    if (!known)
        fail(3265, table);
    const IndexChanges changes(*known, indexes);
    QList<IndexFailure> failures;
    if (changes.superfluous.isEmpty() && changes.missing.isEmpty())
        return failures;
    if (d->readOnly) {
        // Whoever only reads can do without an index; he is told, once for each.
        for (const Index& index : changes.missing)
            failures.append({index.Name, 3027, describe(3027, d->path)});
        return failures;
    }
    const auto attempt = [&](const QString& index, const std::function<void(DefinitionWriter&)>& work) {
        try {
            d->change(work);
        } catch (const Error& error) {
            if (!concernsOneIndex(error.number()))
                throw;
            failures.append({index, error.number(), error.description()});
        }
    };
    d->change([&](DefinitionWriter&) {
        for (const QString& name : changes.superfluous)
            attempt(name, [&](DefinitionWriter& writer) { writer.deleteIndex(table, name); });
        for (const Index& index : changes.missing)
            attempt(index.Name, [&](DefinitionWriter& writer) { writer.appendIndex(table, index); });
    });
    return failures;
}

// --- Properties ----------------------------------------------------------------------------------

bool Database::hasProperty(const QString& name) const
{
    if (!isOpen())
        fail(3420, d->path);
    return Catalog(d->store).hasProperty(name);
}

QVariant Database::Property(const QString& name) const
{
    if (!isOpen())
        fail(3420, d->path);
    return Catalog(d->store).property(name);
}

void Database::SetProperty(const QString& name, const QVariant& value)
{
    if (!isOpen())
        fail(3420, d->path);
    d->beforeWrite();
    Catalog(d->store).setProperty(name, value);
}

} // namespace jet
