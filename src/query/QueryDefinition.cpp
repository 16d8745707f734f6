#include "query/QueryDefinition.h"

#include "data/FieldType.h"
#include "jet/SqlText.h"

namespace query {

using namespace Qt::StringLiterals;
using jet::nom;

namespace {

const QString lineEnd = u"\r\n"_s;

QString conjunction(const QString& link)
{
    return link == linkOr ? u"OR "_s : u"AND "_s;
}

QString firstWithChildren(const Structure& structure, int type)
{
    for (const QString& path : structure.fieldsOfType(type)) {
        if (!structure.node(path)->children.empty())
            return path;
    }
    return {};
}

} // namespace

QString SQLConcatWHERE(const QString& where, const QString& further)
{
    if (where.isEmpty() || further.isEmpty())
        return where + further;
    return u'(' + where + u") AND "_s + further;
}

QString StatementBuilder::identifiedBy(const QueryDefinition& query) const
{
    const QString module = nom(query.module);
    return module + u".[ID Individus] AS [Individu],"_s + module + u'.' + nom(u"ID "_s + query.module) + u" AS "_s
           + nom(u"ID "_s + query.module);
}

QString StatementBuilder::select(const QueryDefinition& query) const
{
    if (query.module.isEmpty() || !m_structure.root())
        return {};
    QStringList items{identifiedBy(query)};
    for (const OutputColumn& column : query.columns) {
        const QString expression = m_structure.ChampsFromPath(column.path);
        if (!expression.isEmpty()) // a field that is no more gives no column
            items << expression + u" AS "_s + nom(column.alias);
    }
    return u"SELECT DISTINCTROW "_s + items.join(u',');
}

QString StatementBuilder::from(const QueryDefinition& query) const
{
    QList<QStringList> joins;
    for (const OutputColumn& column : query.columns)
        joins << m_structure.joins(column.path);
    for (const Criterion& row : query.criteria.rows())
        joins << conditionJoins(row, m_structure);
    return m_structure.fromClause(joins);
}

QString StatementBuilder::orderBy(const QueryDefinition& query) const
{
    QStringList items;
    for (const OutputColumn& column : query.columns) {
        const QString expression = m_structure.ChampsFromPath(column.path);
        if (!column.order.isEmpty() && !expression.isEmpty())
            items << expression + (column.order == orderUp ? u""_s : u" DESC"_s);
    }
    return items.isEmpty() ? QString() : u"ORDER BY "_s + items.join(u',');
}

/// A row with its children: its own condition is the first of the group.
QString StatementBuilder::group(const Criteria& criteria, qsizetype row) const
{
    const QString own = conditionSql(criteria.at(row), m_structure, m_codeRegion);
    const qsizetype end = criteria.endOf(row);
    if (end == row + 1)
        return own;
    if (!own.isEmpty()) {
        const QString rest = level(criteria, row + 1, end, true);
        return rest.isEmpty() ? own : u"(("_s + own + u") "_s + rest + u')';
    }
    // A row that only holds a group: its first child opens it.
    QString text;
    for (const qsizetype child : criteria.brothers(row + 1, end)) {
        const QString condition = group(criteria, child);
        if (condition.isEmpty())
            continue;
        if (text.isEmpty())
            text = u"(("_s + condition + u')';
        else
            text += u' ' + conjunction(criteria.at(child).link) + condition;
    }
    return text.isEmpty() ? text : text + u')';
}

QString StatementBuilder::level(const Criteria& criteria, qsizetype row, qsizetype end, bool firstLinked) const
{
    QString text;
    for (const qsizetype brother : criteria.brothers(row, end)) {
        const QString condition = group(criteria, brother);
        if (condition.isEmpty())
            continue;
        if (!text.isEmpty())
            text += u' ';
        if (!text.isEmpty() || firstLinked)
            text += conjunction(criteria.at(brother).link);
        text += condition;
    }
    return text;
}

QString StatementBuilder::where(const QueryDefinition& query) const
{
    if (query.criteria.count() + 1 >= limitOfRows)
        throw TooManyRows{};
    return level(query.criteria, 0, query.criteria.count(), false);
}

QString StatementBuilder::assembled(const QString& select, const QString& from, const QString& where,
                                    const QString& orderBy)
{
    QString text = select + lineEnd + from;
    if (!where.isEmpty())
        text += lineEnd + u"WHERE "_s + where;
    if (!orderBy.isEmpty())
        text += lineEnd + orderBy;
    return text;
}

QString StatementBuilder::statement(const QueryDefinition& query) const
{
    const QString list = select(query);
    return list.isEmpty() ? list : assembled(list, from(query), where(query), orderBy(query));
}

QString StatementBuilder::criteriaFrom(const QueryDefinition& query, const QString& field) const
{
    QList<QStringList> joins{m_structure.joins(field)};
    for (const Criterion& row : query.criteria.rows())
        joins << conditionJoins(row, m_structure);
    return m_structure.fromClause(joins);
}

QString StatementBuilder::mapStatement(const QueryDefinition& query, const QString& field) const
{
    const QString place = field.isEmpty() ? firstWithChildren(m_structure, data::Localité) : field;
    const Node* node = m_structure.node(place);
    if (!node || node->children.empty())
        return {};
    const QString identifier = m_structure.path(*node->children.front());
    const QString table = m_structure.Table(identifier, 1);
    const QString select = u"SELECT DISTINCTROW "_s + nom(query.module) + u".[ID Individus] AS Chp1,"_s + table
                           + u".[Nom Entier] AS Chp2,"_s + table + u".[LongDD] AS Chp3,"_s + table
                           + u".[LatDD] As Chp4,"_s + table + u".[ID Localités] AS ChpLoc"_s;
    return assembled(select, criteriaFrom(query, identifier), where(query), {});
}

QString StatementBuilder::pictureStatement(const QueryDefinition& query, const QString& field) const
{
    const QString picture = field.isEmpty() ? m_structure.fieldsOfType(data::Image).value(0) : field;
    const Node* node = m_structure.node(picture);
    if (!node || node->isModule())
        return {};
    const QString file = m_structure.ChampsFromPath(picture);
    const QString record = m_structure.Table(picture, 1) + u'.' + nom(u"ID "_s + node->module);
    return assembled(u"SELECT DISTINCTROW "_s + record + u" AS ChpID, "_s + file + u" AS Chp1"_s,
                     criteriaFrom(query, picture), SQLConcatWHERE(where(query), file + u" IS NOT NULL"_s),
                     u"ORDER BY "_s + record + u" DESC"_s);
}

QString StatementBuilder::statisticsStatement(const QueryDefinition& query, const QString& alias) const
{
    const QString list = select(query);
    if (list.isEmpty())
        return {};
    const QString rows = assembled(list, from(query), where(query), {});
    const QString record = u"ID "_s + query.module;
    return u"SELECT "_s + nom(alias) + u",First(["_s + record + u"]) AS [ID "_s + query.module + u"],Count(["_s + record
           + u"]) AS [N] FROM ("_s + rows + u") AS [Statistiques] GROUP BY "_s + nom(alias) + u" ORDER BY Count(["_s
           + record + u"]) DESC"_s;
}

QList<RowError> StatementBuilder::check(const QueryDefinition& query) const
{
    QList<RowError> errors;
    for (qsizetype row = 0; row < query.criteria.count(); ++row) {
        try {
            conditionSql(query.criteria.at(row), m_structure, m_codeRegion);
        } catch (const RowRefused& refused) {
            errors << RowError{row, refused.text};
        } catch (const jet::Error& error) {
            errors << RowError{row, error.description()};
        }
    }
    return errors;
}

} // namespace query
