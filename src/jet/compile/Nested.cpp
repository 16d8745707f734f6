// Queries written without row identifiers: DISTINCT, groups, TOP, unions, and all that stand within
// another statement.
#include "jet/compile/Nested.h"

#include "jet/Error.h"

namespace jet::compiler {

using namespace Qt::StringLiterals;

namespace {

QString position(int output)
{
    return u'c' + QString::number(output + 1);
}

QStringList texts(const std::vector<OrderTerm>& terms)
{
    QStringList list;
    for (const OrderTerm& term : terms)
        list.append(term.text());
    return list;
}

// The keys of the outputs that are no constants (which would be read as positions of columns).
QStringList outputKeys(const std::vector<Output>& outputs)
{
    QStringList keys;
    for (const Output& output : outputs) {
        if (!output.value.constant)
            keys.append(keyOf(output.value));
    }
    return keys;
}

// Writes one SELECT that is not keyed.
class NestedWriter {
public:
    NestedWriter(const BoundSelect& select, std::vector<OrderTerm> order, bool explicitOrder,
           NestedForm form)
        : m_select(select), m_order(std::move(order)), m_explicit(explicitOrder), m_form(form),
          m_outputs(select.outputs), m_text(clauses(select))
    {
    }

    QString text()
    {
        const sql::Select& tree = m_select.tree;
        if (tree.predicate == sql::Predicate::Distinct && m_select.grouped)
            wrapGroups();
        const bool ranked = tree.top && (m_explicit || tree.topPercent);
        if (tree.predicate == sql::Predicate::Distinct)
            makeDistinct(ranked);
        else if (m_select.dropsRows())
            m_text.groupBy = m_select.recordKeys();
        if (ranked)
            return rankedText();
        if (tree.top)
            m_text.limit = m_text.limit.isEmpty() || *tree.top == 0 ? QString::number(*tree.top)
                                                                    : m_text.limit;
        for (int i = 0; i < int(m_outputs.size()); ++i)
            m_text.columns.append(named(value(i), columnName(i)));
        m_text.orderBy = texts(m_order);
        return m_text.text();
    }

private:
    QString columnName(int i) const { return m_form.positional ? position(i) : m_outputs[i].name; }
    QString value(int i) const
    {
        return m_form.byKey ? keyOf(m_outputs[i].value) : m_outputs[i].value.atom();
    }

    // DISTINCT of a grouped query: the groups become a derived table.
    void wrapGroups()
    {
        for (int i = 0; i < int(m_outputs.size()); ++i) {
            m_text.columns.append(named(m_outputs[i].value.atom(), position(i)));
            const DataType type = m_outputs[i].value.type;
            m_outputs[i].value = plain(u"\".g\"."_s + quoted(position(i)), type);
        }
        const QString inner = m_text.text();
        m_text = SelectText();
        m_text.from = u'(' + inner + u") AS \".g\""_s;
        for (OrderTerm& term : m_order)
            term.sql = keyOf(m_outputs[term.output].value);
    }

    void makeDistinct(bool ranked)
    {
        const bool text = std::any_of(m_outputs.begin(), m_outputs.end(), [](const Output& output) {
            return mayBeText(output.value.type) && !output.value.constant;
        });
        const QStringList keys = outputKeys(m_outputs);
        if (keys.isEmpty())
            m_text.limit = u"1"_s;
        else if (text || ranked)
            m_text.groupBy = keys;
        else
            m_text.distinct = true;
    }

    // TOP with ties: all rows that rank with the last one come along.
    QString rankedText()
    {
        for (int i = 0; i < int(m_outputs.size()); ++i)
            m_text.columns.append(named(value(i), position(i)));
        const QString rank = m_explicit && !m_order.empty()
                                 ? u"rank() OVER (ORDER BY "_s + texts(m_order).join(u", "_s) + u')'
                                 : u"row_number() OVER ()"_s;
        m_text.columns.append(named(rank, u"rank"_s));
        QString most = QString::number(*m_select.tree.top);
        if (m_select.tree.topPercent) {
            m_text.columns.append(named(u"count(*) OVER ()"_s, u"rows"_s));
            most = u"(\"rows\" * "_s + most + u" + 99) / 100"_s;
        }
        SelectText outer;
        for (int i = 0; i < int(m_outputs.size()); ++i)
            outer.columns.append(named(quoted(position(i)), columnName(i)));
        outer.from = u'(' + m_text.text() + u')';
        outer.where = u"\"rank\" <= "_s + most;
        outer.orderBy = {u"\"rank\""_s};
        return outer.text();
    }

    const BoundSelect& m_select;
    std::vector<OrderTerm> m_order;
    bool m_explicit;
    NestedForm m_form;
    std::vector<Output> m_outputs;
    SelectText m_text;
};

int outputOf(const BoundSelect& select, const QString& sql)
{
    for (int i = 0; i < int(select.outputs.size()); ++i) {
        if (select.outputs[i].value.sql == sql || keyOf(select.outputs[i].value) == sql)
            return i;
    }
    return -1;
}

// The outputs of which no two rows hold the same values.
std::vector<std::vector<int>> uniqueOutputs(const BoundSelect& select)
{
    std::vector<QStringList> keys;
    if (select.grouped) {
        keys.push_back(select.groupBy);
    } else if (select.scope.sources().size() == 1) {
        const Source& source = select.scope.sources().front();
        for (const std::vector<int>& key : source.keys) {
            QStringList columns;
            for (int column : key)
                columns.append(column < 0 ? QString() : source.columns[column].sql);
            keys.push_back(columns);
        }
    }
    std::vector<std::vector<int>> all;
    for (const QStringList& key : keys) {
        std::vector<int> outputs;
        for (const QString& column : key)
            outputs.push_back(outputOf(select, column));
        if (!outputs.empty() && std::find(outputs.begin(), outputs.end(), -1) == outputs.end())
            all.push_back(outputs);
    }
    return all;
}

std::vector<NestedColumn> columnsOf(const BoundSelect& select)
{
    std::vector<NestedColumn> columns;
    for (const Output& output : select.outputs)
        columns.push_back(
            {output.name, output.value.type, output.value.exact, output.value.neverNull});
    return columns;
}

} // namespace

Nested nestedSelect(BoundSelect& select, const std::vector<sql::OrderItem>& orderBy,
                    NestedForm form)
{
    const bool ranked = select.tree.top.has_value();
    std::vector<OrderTerm> order;
    if (form.keepOrder || ranked)
        order = select.order(orderBy);
    const bool explicitOrder = !order.empty();
    if (!explicitOrder && (form.whole || ranked))
        order = select.implicitOrder();
    Nested nested;
    nested.columns = columnsOf(select);
    nested.keys = uniqueOutputs(select);
    nested.updatable =
        !select.grouped && !select.tree.top && select.tree.predicate != sql::Predicate::Distinct;
    nested.sql = NestedWriter(select, std::move(order), explicitOrder, form).text();
    return nested;
}

namespace {

// The union as far as it is written.
struct Chain {
    QString sql;
    std::vector<NestedColumn> columns;
    bool distinct = false;
};

QStringList unionKeys(const std::vector<NestedColumn>& columns, const QString& table)
{
    QStringList keys;
    for (int i = 0; i < int(columns.size()); ++i)
        keys.append(keyOf(table + quoted(position(i)), columns[i].type));
    return keys;
}

void append(Chain& chain, const Nested& next, bool all)
{
    if (next.columns.size() != chain.columns.size())
        fail(3307, QString::number(chain.columns.size()), QString::number(next.columns.size()));
    bool text = false;
    for (size_t i = 0; i < chain.columns.size(); ++i) {
        chain.columns[i].type = commonType(chain.columns[i].type, next.columns[i].type);
        chain.columns[i].exact = chain.columns[i].exact && next.columns[i].exact;
        chain.columns[i].neverNull = chain.columns[i].neverNull && next.columns[i].neverNull;
        text = text || mayBeText(chain.columns[i].type);
    }
    if (all || !text) {
        chain.sql += (all ? u" UNION ALL "_s : u" UNION "_s) + next.sql;
    } else {
        SelectText dedupe;
        for (int i = 0; i < int(chain.columns.size()); ++i)
            dedupe.columns.append(quoted(position(i)));
        dedupe.from = u'(' + chain.sql + u" UNION ALL "_s + next.sql + u')';
        dedupe.groupBy = unionKeys(chain.columns, {});
        chain.sql = dedupe.text();
    }
    chain.distinct = !all;
}

// A member with an order or a limit of its own cannot stand in a union of the store as it is.
Nested member(Context& context, const sql::Select& select, Scope* outer)
{
    BoundSelect bound(context, select, outer);
    NestedForm form;
    form.positional = true;
    Nested nested = nestedSelect(bound, {}, form);
    if (select.top)
        nested.sql = u"SELECT * FROM ("_s + nested.sql + u')';
    return nested;
}

// An item of ORDER BY names an output of the first SELECT or its position.
QString unionOrder(const sql::OrderItem& item, const Chain& chain)
{
    int output = -1;
    if (const auto* literal = std::get_if<sql::Literal>(&item.expression->node)) {
        output = literal->value.toInt() - 1;
    } else if (const auto* name = std::get_if<sql::ColumnRef>(&item.expression->node)) {
        for (int i = 0; i < int(chain.columns.size()) && output < 0; ++i) {
            if (sameName(chain.columns[i].name, name->column))
                output = i;
        }
    }
    if (output < 0 || output >= int(chain.columns.size()))
        fail(3138, {}, written(*item.expression));
    return keyOf(quoted(position(output)), chain.columns[output].type) +
           (item.descending ? u" DESC"_s : u""_s);
}

} // namespace

Nested nestedUnion(Context& context, const sql::Query& query, Scope* outer, NestedForm form)
{
    Nested first = member(context, query.selects.front(), outer);
    Chain chain{first.sql, first.columns, false};
    for (size_t i = 1; i < query.selects.size(); ++i)
        append(chain, member(context, query.selects[i], outer), query.unionAll[i - 1]);
    SelectText text;
    for (int i = 0; i < int(chain.columns.size()); ++i) {
        const QString column = quoted(position(i));
        text.columns.append(named(form.byKey ? keyOf(column, chain.columns[i].type) : column,
                                  form.positional ? position(i) : chain.columns[i].name));
    }
    text.from = u'(' + chain.sql + u')';
    if (form.keepOrder) {
        for (const sql::OrderItem& item : query.orderBy)
            text.orderBy.append(unionOrder(item, chain));
        if (text.orderBy.isEmpty() && form.whole && chain.distinct)
            text.orderBy = unionKeys(chain.columns, {});
    }
    Nested nested;
    nested.sql = text.text();
    nested.columns = chain.columns;
    nested.updatable = false;
    return nested;
}

Nested compileNested(Context& context, const sql::Query& query, Scope* outer, NestedForm form)
{
    if (query.selects.size() > 1)
        return nestedUnion(context, query, outer, form);
    BoundSelect select(context, query.selects.front(), outer);
    return nestedSelect(select, query.orderBy, form);
}

} // namespace jet::compiler
