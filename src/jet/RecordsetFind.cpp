// FindFirst.
#include "jet/RecordsetPrivate.h"
#include "jet/TableRows.h"
#include "jet/sql/Parser.h"

#include <QSet>

namespace jet {

using namespace Qt::StringLiterals;

QString Recordset::Private::condition(const QString& criterion) const
{
    const auto tree = sql::parseExpression(criterion);
    TableDef shown;
    for (const OutputColumn& column : columns) {
        Field field;
        field.Name = column.name;
        field.Type = column.type;
        shown.Fields += field;
    }
    return compileRule(*tree, shown, u"x."_s);
}

/// When every column shows a column of the one table, the store finds the records by its indexes.
bool Recordset::Private::findKeyed(const QString& condition)
{
    const TableDef* table = database->schema.table(sources.front().table);
    if (!table)
        fail(3078, sources.front().table);
    QStringList shown{quoted(table->rowIdColumn()) + u" AS \"_identifiant\""_s};
    for (const OutputColumn& column : columns)
        shown += u"%1 AS %2"_s.arg(quoted(column.column), quoted(column.name));
    Statement search(database->store,
                     u"SELECT \"_identifiant\" FROM (SELECT %1 FROM %2) AS x WHERE %3"_s.arg(
                         shown.join(u','), quoted(table->Name), condition));
    QSet<qint64> found;
    while (search.step())
        found.insert(search.int64(0));
    if (found.isEmpty())
        return false;
    for (rows->moveFirst(); rows->isOn(); rows->moveNext())
        if (found.contains(rows->rowId(0)))
            return true;
    return false;
}

bool Recordset::Private::findByValues(const QString& condition)
{
    QStringList names;
    for (const OutputColumn& column : columns)
        names += quoted(column.name);
    const QString marks = QStringList(names.size(), u"?"_s).join(u',');
    Statement test(database->store, u"WITH x(%1) AS (SELECT %2) SELECT 1 FROM x WHERE %3"_s.arg(
                                        names.join(u','), marks, condition));
    for (rows->moveFirst(); rows->isOn(); rows->moveNext()) {
        if (database->cancelled)
            fail(3059);
        for (int column = 0; column < int(columns.size()); ++column)
            test.bind(column + 1, rows->value(column));
        const bool holds = test.step();
        test.reset();
        if (holds)
            return true;
    }
    return false;
}

void Recordset::FindFirst(const QString& criterion)
{
    RowSet& rows = d->opened();
    d->discard();
    d->database->cancelled = false;
    d->noMatch = true;
    const QString condition = d->condition(criterion);
    if (rows.isBefore() && rows.isAfter())
        return;
    const auto showsColumn = [](const OutputColumn& column) { return column.source == 0; };
    const bool plain =
        d->sources.size() == 1 && std::all_of(d->columns.cbegin(), d->columns.cend(), showsColumn);
    if (d->tableRows)
        d->noMatch = !d->tableRows->find(condition);
    else if (plain)
        d->noMatch = !d->findKeyed(condition);
    else
        d->noMatch = !d->findByValues(condition);
}

} // namespace jet
