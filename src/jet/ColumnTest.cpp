#include "jet/ColumnTest.h"

#include "jet/Compile.h"
#include "jet/Triggers.h"
#include "jet/sql/Parser.h"

namespace jet {

using namespace Qt::StringLiterals;

namespace {

/// The rule on a column of the alias `x`.
QString ruleSql(const Field& field)
{
    TableDef single{.Name = u"x"_s};
    single.Fields = {field};
    try {
        return compileRule(*sql::parseRule(field.ValidationRule, field.Name), single, u"x."_s);
    } catch (const Error& error) {
        throw Error(3320, describe(3320, field.Name, field.ValidationRule) + u" ("_s + error.description() + u')');
    }
}

const TableDef& tableOf(Database& database, const QString& name)
{
    const TableDef* table = database.schema().table(name);
    if (!table)
        fail(3265, name);
    return *table;
}

/// Counts the rows of "FROM … WHERE …" and reads the first of them.
Breaches found(Database& database, const QString& identifier, const QString& from, int most)
{
    Breaches breaches;
    breaches.count = database.store().single(u"SELECT count(*) "_s + from).toLongLong();
    if (breaches.count == 0)
        return breaches;
    Statement rows(database.store(), u"SELECT %1 %2 ORDER BY 1 LIMIT %3"_s.arg(identifier, from, QString::number(most)));
    while (rows.step())
        breaches.first << qint32(rows.int64(0));
    return breaches;
}

} // namespace

void checkRule(const Field& field)
{
    if (!field.ValidationRule.trimmed().isEmpty())
        ruleSql(field);
}

RuleTest::RuleTest(Database& database, const Field& field)
{
    if (!field.ValidationRule.trimmed().isEmpty())
        m_refused = Statement(database.store(), u"WITH x(%1) AS (SELECT ?) SELECT 1 FROM x WHERE NOT(%2)"_s.arg(
                                                    quoted(field.Name), ruleSql(field)));
}

bool RuleTest::accepts(const QVariant& value)
{
    if (!m_refused || !value.isValid())
        return true;
    m_refused.reset();
    m_refused.bind(1, value);
    const bool refused = m_refused.step();
    m_refused.reset();
    return !refused;
}

Breaches nullsIn(Database& database, const QString& table, const Field& field, int most)
{
    const TableDef& known = tableOf(database, table);
    return found(database, quoted(known.rowIdColumn()),
                 u"FROM %1 WHERE %2 IS NULL"_s.arg(quoted(known.Name), quoted(field.Name)), most);
}

Breaches refusedIn(Database& database, const QString& table, const Field& field, int most)
{
    if (field.ValidationRule.trimmed().isEmpty())
        return {};
    const TableDef& known = tableOf(database, table);
    return found(database, u"x."_s + quoted(known.rowIdColumn()),
                 u"FROM %1 AS x WHERE NOT(%2)"_s.arg(quoted(known.Name), ruleSql(field)), most);
}

Breaches duplicatesIn(Database& database, const QString& table, const QStringList& columns, int most)
{
    const TableDef& known = tableOf(database, table);
    QStringList keys, filled;
    for (const QString& column : columns) {
        const Field* field = known.field(column);
        if (!field)
            fail(3265, column, table);
        keys << keySql(*field);
        filled << quoted(field->Name) + u" IS NOT NULL"_s;
    }
    if (keys.isEmpty())
        return {};
    // One pass in the order of the keys; the records of a key stand together.
    const QString where = filled.join(u" AND "_s);
    const QString key = keys.join(u',');
    Breaches breaches;
    breaches.count = database.store()
                         .single(u"SELECT ifnull(sum(n),0) FROM (SELECT count(*) AS n FROM %1 WHERE %2 GROUP BY %3 "
                                 "HAVING count(*)>1)"_s.arg(quoted(known.Name), where, key))
                         .toLongLong();
    if (breaches.count == 0)
        return breaches;
    const QString id = quoted(known.rowIdColumn());
    Statement rows(database.store(),
                   u"SELECT %1 FROM %2 WHERE %3 AND (%4) IN (SELECT %4 FROM %2 WHERE %3 GROUP BY %4 HAVING count(*)>1) "
                   "ORDER BY %4, %1 LIMIT %5"_s.arg(id, quoted(known.Name), where, key, QString::number(most)));
    while (rows.step())
        breaches.first << qint32(rows.int64(0));
    return breaches;
}

} // namespace jet
