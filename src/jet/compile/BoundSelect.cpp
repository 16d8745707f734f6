#include "jet/Error.h"
#include "jet/compile/Queries.h"

namespace jet::compiler {

using namespace Qt::StringLiterals;

BoundSelect::BoundSelect(Context& context, const sql::Select& select, Scope* outer,
                         const Scope* above)
    : tree(select), scope(outer, above), expressions(context, scope), from(context, scope)
{
    from.build(select.from);
    from.reduce(select.where.get());
    fromText = from.text(expressions);
    if (select.where)
        where = expressions.condition(*select.where);
    const bool aggregates =
        std::any_of(select.outputs.begin(), select.outputs.end(),
                    [](const auto& item) { return hasAggregate(*item.expression); });
    grouped = aggregates || !select.groupBy.empty() || select.having;
    // Groups, outputs and order must be written alike to be known as the same.
    expressions.inOutputs = true;
    if (grouped)
        bindGroups();
    bindOutputs();
    if (select.having) {
        expressions.inOutputs = false;
        having = expressions.condition(*select.having);
        expressions.requireGrouped();
        expressions.inOutputs = true;
    }
    judgeDistinctRow();
}

void BoundSelect::bindGroups()
{
    for (const sql::ExprPtr& item : tree.groupBy) {
        if (hasAggregate(*item))
            fail(3098, written(*item));
        const Emitted value = expressions.compile(*item);
        m_grouping.keys.append(value.sql);
        // A constant would be read as the position of a column.
        if (!value.constant)
            groupBy.append(keyOf(value));
    }
    expressions.grouping = &m_grouping;
    expressions.aggregatesAllowed = true;
}

void BoundSelect::bindOutputs()
{
    for (const sql::OutputItem& item : tree.outputs) {
        if (const auto* star = std::get_if<sql::Star>(&item.expression->node)) {
            bindStar(*star);
            continue;
        }
        scope.touched = scope.named = 0;
        Output output;
        output.name = item.alias;
        output.value = expressions.compile(*item.expression);
        output.uses = scope.touched;
        output.names = scope.named;
        addOutput(std::move(output));
    }
    expressions.requireGrouped();
    if (outputs.empty())
        fail(3066);
    nameDuplicates();
}

void BoundSelect::bindStar(const sql::Star& star)
{
    const int only = star.table.isEmpty() ? -1 : scope.findSource(star.table);
    if (!star.table.isEmpty() && only < 0)
        fail(3078, star.table);
    if (scope.sources().empty())
        fail(3067);
    for (int s = 0; s < int(scope.sources().size()); ++s) {
        if (only >= 0 && s != only)
            continue;
        const Source& source = scope.sources()[s];
        for (const SourceColumn& column : source.columns) {
            Output output;
            output.value = plain(column.sql, column.type);
            output.value.column = &column;
            output.value.exact = column.exact;
            output.value.neverNull = column.neverNull && !source.nullable;
            output.uses = column.uses;
            output.names = bit(s);
            if (grouped && !m_grouping.keys.contains(column.sql))
                fail(3122, column.name);
            addOutput(std::move(output));
        }
    }
}

void BoundSelect::addOutput(Output output)
{
    for (int s = 0; output.value.column && s < int(scope.sources().size()); ++s) {
        const auto& columns = scope.sources()[s].columns;
        if (!columns.empty() && output.value.column >= columns.data() &&
            output.value.column < columns.data() + columns.size()) {
            output.source = s;
            output.column = int(output.value.column - columns.data());
        }
    }
    if (output.name.isEmpty()) {
        output.unnamed = output.value.column != nullptr;
        output.name =
            output.unnamed ? output.value.column->name : u"Expr"_s + QString::number(m_unnamed++);
    }
    outputs.push_back(std::move(output));
}

// Two columns of one name are told apart by their tables.
void BoundSelect::nameDuplicates()
{
    QHash<QString, int> counts;
    for (const Output& output : outputs)
        counts[nameKey(output.name)] += output.unnamed ? 1 : 0;
    for (Output& output : outputs) {
        if (output.unnamed && counts[nameKey(output.name)] > 1 && output.source >= 0)
            output.name = scope.sources()[output.source].alias + u'.' + output.name;
    }
}

SourceSet BoundSelect::contributing() const
{
    SourceSet all = 0;
    for (const Output& output : outputs)
        all |= output.uses;
    return all & from.standing();
}

SourceSet BoundSelect::giving() const
{
    SourceSet all = 0;
    for (const Output& output : outputs)
        all |= output.names;
    return all;
}

void BoundSelect::judgeDistinctRow()
{
    if (tree.predicate != sql::Predicate::DistinctRow || grouped)
        return;
    const SourceSet some = giving();
    const SourceSet all = bit(int(scope.sources().size())) - 1;
    m_dropsRows = some != 0 && some != all &&
                  !from.determines(some & from.standing(), tree.where.get(), expressions);
}

QStringList BoundSelect::recordKeys() const
{
    QStringList keys;
    for (int s = 0; s < int(scope.sources().size()); ++s) {
        const Source& source = scope.sources()[s];
        if (!(giving() & bit(s)))
            continue;
        if (source.table) {
            keys.append(source.rowId);
        } else if (source.inlined) {
            for (int column : source.keys.front())
                keys.append(keyOf(source.columns[column].sql, source.columns[column].type));
        } else {
            for (const SourceColumn& column : source.columns)
                keys.append(keyOf(column.sql, column.type));
        }
    }
    return keys;
}

std::optional<int> BoundSelect::aliasFor(const sql::Expr& expression) const
{
    const auto* name = std::get_if<sql::ColumnRef>(&expression.node);
    if (!name || !name->table.isEmpty())
        return std::nullopt;
    for (const Scope* s = &scope; s; s = s->outer()) {
        if (s->find(*name).known())
            return std::nullopt;
    }
    for (int i = 0; i < int(outputs.size()); ++i) {
        if (sameName(outputs[i].name, name->column))
            return i;
    }
    return std::nullopt;
}

OrderTerm BoundSelect::orderTerm(const sql::OrderItem& item)
{
    OrderTerm term;
    term.descending = item.descending;
    const auto* literal = std::get_if<sql::Literal>(&item.expression->node);
    if (literal && literal->value.typeId() == QMetaType::Int) {
        term.output = literal->value.toInt() - 1;
        if (term.output < 0 || term.output >= int(outputs.size()))
            fail(3138, {}, literal->value.toString());
    } else if (const std::optional<int> alias = aliasFor(*item.expression)) {
        term.output = *alias;
    } else {
        const Emitted value = expressions.compile(*item.expression);
        expressions.requireGrouped();
        term.sql = value.constant ? QString() : keyOf(value);
        for (int i = 0; i < int(outputs.size()) && term.output < 0; ++i) {
            if (outputs[i].value.sql == value.sql)
                term.output = i;
        }
    }
    if (term.sql.isEmpty() && term.output >= 0 && !outputs[term.output].value.constant)
        term.sql = keyOf(outputs[term.output].value);
    if (tree.predicate == sql::Predicate::Distinct && term.output < 0 && !term.sql.isEmpty())
        fail(3093, written(*item.expression));
    return term;
}

std::vector<OrderTerm> BoundSelect::order(const std::vector<sql::OrderItem>& items)
{
    std::vector<OrderTerm> terms;
    for (const sql::OrderItem& item : items) {
        OrderTerm term = orderTerm(item);
        // A constant orders nothing, and would be read as the position of a column.
        if (!term.sql.isEmpty())
            terms.push_back(std::move(term));
    }
    return terms;
}

std::vector<OrderTerm> BoundSelect::implicitOrder() const
{
    std::vector<OrderTerm> terms;
    if (tree.predicate == sql::Predicate::Distinct) {
        for (int i = 0; i < int(outputs.size()); ++i) {
            if (!outputs[i].value.constant)
                terms.push_back({keyOf(outputs[i].value), false, i});
        }
        return terms;
    }
    for (const QString& key : groupBy)
        terms.push_back({key, false, -1});
    return terms;
}

QString SelectText::text() const
{
    QString sql = (distinct ? u"SELECT DISTINCT "_s : u"SELECT "_s) + columns.join(u", "_s);
    if (!from.isEmpty())
        sql += u" FROM "_s + from;
    if (!where.isEmpty())
        sql += u" WHERE "_s + where;
    if (!groupBy.isEmpty())
        sql += u" GROUP BY "_s + groupBy.join(u", "_s);
    if (!having.isEmpty())
        sql += u" HAVING "_s + having;
    if (!orderBy.isEmpty())
        sql += u" ORDER BY "_s + orderBy.join(u", "_s);
    if (!limit.isEmpty())
        sql += u" LIMIT "_s + limit;
    return sql;
}

SelectText clauses(const BoundSelect& select)
{
    SelectText text;
    text.from = select.fromText;
    text.where = select.where;
    text.groupBy = select.groupBy;
    text.having = select.having;
    return text;
}

QString named(const QString& value, const QString& name)
{
    return value + u" AS "_s + quoted(name);
}

} // namespace jet::compiler
