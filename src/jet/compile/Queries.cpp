// Queries of their own, keyed by the records behind their rows where that can be.
#include "jet/Error.h"
#include "jet/compile/Nested.h"

namespace jet::compiler {

using namespace Qt::StringLiterals;

namespace {

// Writes a query whose rows are known by the identifiers of their records.
class KeyedWriter {
public:
    KeyedWriter(BoundSelect& select, std::vector<OrderTerm> order)
        : m_select(select), m_order(std::move(order))
    {
        const SourceSet giving = select.contributing();
        for (int s = 0; s < int(select.scope.sources().size()); ++s) {
            if (giving & bit(s))
                m_sources.push_back(s);
        }
    }

    CompiledQuery query() const
    {
        CompiledQuery query;
        SelectText text = clauses(m_select);
        if (m_select.dropsRows())
            text.groupBy = m_select.recordKeys();
        for (const OrderTerm& term : m_order)
            text.orderBy.append(term.text());
        // Without an order of its own a query follows its first table, which costs nothing there
        // and keeps pages from shifting. Where an index gives a range, its order is left.
        if (m_order.empty() && m_select.from.followsFirst() && m_sources.front() == 0 &&
            !m_select.expressions.rangesAsked)
            text.orderBy.append(source(0).rowId);
        text.columns = identifierColumns();
        query.keySql = text.text();
        text.columns += outputColumns();
        query.sql = text.text();
        query.rowSql = rowText();
        for (int s : m_sources)
            query.sources.push_back({source(s).table->Name, source(s).alias});
        return query;
    }

    int positionOf(int scopeSource) const
    {
        const auto found = std::find(m_sources.begin(), m_sources.end(), scopeSource);
        return found == m_sources.end() ? -1 : int(found - m_sources.begin());
    }

private:
    const Source& source(int s) const { return m_select.scope.sources()[s]; }

    QStringList identifiers() const
    {
        QStringList list;
        for (int s : m_sources)
            list.append(source(s).rowId);
        return list;
    }
    QStringList identifierColumns() const
    {
        QStringList list = identifiers();
        for (qsizetype i = 0; i < list.size(); ++i)
            list[i] = named(list[i], u'r' + QString::number(i));
        return list;
    }
    QStringList outputColumns() const
    {
        QStringList list;
        for (const Output& output : m_select.outputs)
            list.append(named(output.value.atom(), output.name));
        return list;
    }

    // The outputs of one row, each record looked up by its identifier.
    QString rowText() const
    {
        SelectText text;
        text.columns = outputColumns();
        if (m_sources.size() == 1 && !source(m_sources.front()).nullable) {
            text.from = source(m_sources.front()).sql;
            text.where = source(m_sources.front()).rowId + u" = ?1"_s;
            return text.text();
        }
        QStringList keys;
        for (size_t i = 0; i < m_sources.size(); ++i)
            keys.append(u'?' + QString::number(i + 1) + u" AS \"r"_s + QString::number(i) + u'"');
        text.from = u"(SELECT "_s + keys.join(u", "_s) + u") AS \".k\""_s;
        for (size_t i = 0; i < m_sources.size(); ++i) {
            const Source& s = source(m_sources[i]);
            text.from += u" LEFT JOIN "_s + s.sql + u" ON "_s + s.rowId + u" = \".k\".\"r"_s +
                         QString::number(i) + u'"';
        }
        return text.text();
    }

    BoundSelect& m_select;
    std::vector<OrderTerm> m_order;
    std::vector<int> m_sources;
};

bool canBeKeyed(const BoundSelect& select)
{
    if (select.grouped || select.tree.top || select.tree.predicate == sql::Predicate::Distinct)
        return false;
    const SourceSet giving = select.contributing();
    for (int s = 0; s < int(select.scope.sources().size()); ++s) {
        if ((giving & bit(s)) && !select.scope.sources()[s].table)
            return false;
    }
    return giving != 0;
}

CompiledQuery unkeyed(const Nested& nested)
{
    CompiledQuery query;
    query.sql = nested.sql;
    for (const NestedColumn& column : nested.columns)
        query.outputs.push_back({column.name, column.type, {}, {}, -1});
    return query;
}

CompiledQuery keyed(BoundSelect& select, const sql::Query& tree)
{
    const KeyedWriter writer(select, select.order(tree.orderBy));
    CompiledQuery query = writer.query();
    for (const Output& output : select.outputs) {
        OutputColumn column{output.name, output.value.type, {}, {}, -1};
        const Source* source = output.source < 0 ? nullptr : &select.scope.sources()[output.source];
        if (source && source->table) {
            column.table = source->table->Name;
            column.column = source->columns[output.column].name;
            column.source = writer.positionOf(output.source);
            query.updatable = true;
        }
        query.outputs.push_back(column);
    }
    return query;
}

} // namespace

CompiledQuery compileWhole(Context& context, const sql::Query& query)
{
    NestedForm form;
    form.keepOrder = true;
    form.whole = true;
    CompiledQuery compiled;
    if (query.selects.size() > 1) {
        compiled = unkeyed(nestedUnion(context, query, nullptr, form));
    } else {
        BoundSelect select(context, query.selects.front(), nullptr);
        compiled = canBeKeyed(select) ? keyed(select, query)
                                      : unkeyed(nestedSelect(select, query.orderBy, form));
    }
    compiled.ordered = !query.orderBy.empty();
    context.failIfMissing();
    return compiled;
}

} // namespace jet::compiler
