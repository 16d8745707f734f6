// A grouped query on the null side of a left join by its group: its columns become sub-selects.
#include "jet/compile/Nested.h"

namespace jet::compiler {

using namespace Qt::StringLiterals;
using sql::BinaryOp;

namespace {

/// `[n].[column] = expression` in an ON condition, the expression belonging to the other side.
struct GroupLink {
    int output;
    const sql::Expr* expression;
};

void forEachColumn(const sql::Expr& e, const std::function<void(const sql::ColumnRef&)>& visit)
{
    if (const auto* name = std::get_if<sql::ColumnRef>(&e.node))
        visit(*name);
    forEachPart(e, [&](const sql::Expr& part) { forEachColumn(part, visit); });
}

bool names(const sql::Expr& e, const Scope& scope, int source)
{
    bool found = false;
    forEachColumn(
        e, [&](const sql::ColumnRef& name) { found = found || scope.find(name).source == source; });
    return found;
}

// The condition taken apart at its ANDs; empty when a part of it is no equality with an output.
std::vector<GroupLink> linksOf(const sql::Expr& on, const Scope& scope, int source)
{
    const auto* binary = std::get_if<sql::Binary>(&on.node);
    if (!binary)
        return {};
    if (binary->op == BinaryOp::And) {
        std::vector<GroupLink> links = linksOf(*binary->left, scope, source);
        const std::vector<GroupLink> more = linksOf(*binary->right, scope, source);
        if (links.empty() || more.empty())
            return {};
        links.insert(links.end(), more.begin(), more.end());
        return links;
    }
    if (binary->op != BinaryOp::Equal)
        return {};
    for (const auto& [one, other] :
         {std::pair(&binary->left, &binary->right), std::pair(&binary->right, &binary->left)}) {
        const auto* name = std::get_if<sql::ColumnRef>(&(*one)->node);
        const Found found = name ? scope.find(*name) : Found();
        if (found.known() && !found.ambiguous && found.source == source &&
            !names(**other, scope, source))
            return {{found.column, other->get()}};
    }
    return {};
}

// One row of the group is found through indexes: by the group itself, and by joins on indexed
// columns.
bool foundByIndex(BoundSelect& inner, const std::vector<int>& groupOutputs)
{
    SourceSet reached = 0;
    for (int i : groupOutputs) {
        const Output& output = inner.outputs[i];
        if (!output.value.column || !output.value.column->indexed)
            return false;
        reached |= bit(output.source);
    }
    Expressions plainExpressions(inner.expressions.context(), inner.scope);
    const std::vector<Equality> all =
        inner.from.equalities(inner.tree.where.get(), plainExpressions);
    for (int s = 0; s < int(inner.scope.sources().size()); ++s) {
        const Source& source = inner.scope.sources()[s];
        if (!source.table)
            return false;
        const bool linked = std::any_of(all.begin(), all.end(), [&](const Equality& e) {
            return e.source == s && source.columns[e.column].indexed && !(e.other & bit(s)) &&
                   e.other;
        });
        if (!(reached & bit(s)) && !linked)
            return false;
    }
    return true;
}

bool simplyGrouped(const sql::Query& query)
{
    return query.selects.size() == 1 && !query.selects.front().groupBy.empty() &&
           !query.selects.front().top &&
           query.selects.front().predicate != sql::Predicate::Distinct;
}

} // namespace

// The left join finds at most the one group that has the key of its left row, and Null otherwise;
// a sub-select restricted to that key gives the same, without the whole query being run first.
bool FromClause::inlineGrouped(const sql::Join& item, int left, int right, const sql::Query& query)
{
    if (!item.on || !simplyGrouped(query))
        return false;
    const int place = m_nodes[right].source;
    const std::vector<GroupLink> links = linksOf(*item.on, m_scope, place);
    if (links.empty() || hasSubquery(*item.on))
        return false;
    BoundSelect inner(m_context, query.selects.front(), nullptr, &m_scope);
    std::vector<int> outputs;
    for (const GroupLink& link : links)
        outputs.push_back(link.output);
    std::vector<int> distinct = outputs;
    std::sort(distinct.begin(), distinct.end());
    distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
    const auto& keys = m_scope.sources()[place].keys;
    const bool wholeGroup = std::any_of(keys.begin(), keys.end(), [&](std::vector<int> key) {
        std::sort(key.begin(), key.end());
        return key == distinct;
    });
    if (!wholeGroup || !foundByIndex(inner, distinct))
        return false;

    SelectText text = clauses(inner);
    Expressions expressions(m_context, m_scope);
    m_scope.setVisible(m_nodes[left].first, m_nodes[left].last);
    m_scope.touched = 0;
    for (const GroupLink& link : links) {
        const Emitted key = inner.outputs[link.output].value;
        const Emitted other = expressions.compile(*link.expression);
        const QString test = expressions.compare(BinaryOp::Equal, key, other, *item.on).sql;
        if (text.where.isEmpty())
            text.where = test;
        else
            text.where = (inner.where == text.where ? u'(' + text.where + u')' : text.where) +
                         u" AND "_s + test;
    }
    m_scope.setAllVisible();
    Source& source = m_scope.sources()[place];
    for (size_t i = 0; i < inner.outputs.size(); ++i) {
        text.columns = {inner.outputs[i].value.atom()};
        source.columns[i].sql = u'(' + text.text() + u')';
        source.columns[i].uses = m_scope.touched;
        source.columns[i].neverNull = false;
    }
    m_scope.touched = 0;
    source.inlined = true;
    return true;
}

// --- Looked up in an UPDATE ------------------------------------------------------------------

// The joins of a chain of left joins of tables behind the target, the nearest first; empty for
// another shape.
std::vector<int> FromClause::leftChain(int target) const
{
    std::vector<int> joins;
    int index = m_root;
    while (m_nodes[index].source < 0) {
        const Node& node = m_nodes[index];
        const int right = m_nodes[node.right].source;
        if (node.kind != sql::JoinKind::Left || right < 0 || !m_scope.sources()[right].table ||
            !node.on || hasSubquery(*node.on))
            return {};
        joins.insert(joins.begin(), index);
        index = node.left;
    }
    return m_nodes[index].source == target ? joins : std::vector<int>();
}

bool FromClause::namedSeldom(
    int source, const std::vector<const sql::Expr*>& named,
    const std::function<bool(const Source&, const SourceColumn&)>& fixed) const
{
    int times = 0;
    bool steady = true;
    for (const sql::Expr* e : named) {
        forEachColumn(*e, [&](const sql::ColumnRef& name) {
            const Found found = m_scope.find(name);
            if (found.source != source)
                return;
            ++times;
            const Source& other = m_scope.sources()[source];
            steady = steady && fixed(other, other.columns[found.column]);
        });
    }
    return steady && times <= 2;
}

bool FromClause::lookUpOthers(int target, const std::vector<const sql::Expr*>& named,
                              Expressions& expressions,
                              const std::function<bool(const Source&, const SourceColumn&)>& fixed)
{
    const std::vector<int> joins = leftChain(target);
    if (joins.empty() ||
        std::any_of(named.begin(), named.end(), [](const auto* e) { return hasSubquery(*e); }))
        return false;
    for (size_t i = 0; i < joins.size(); ++i) {
        std::vector<const sql::Expr*> all = named;
        for (size_t later = i + 1; later < joins.size(); ++later)
            all.push_back(m_nodes[joins[later]].on);
        if (!namedSeldom(m_nodes[m_nodes[joins[i]].right].source, all, fixed) ||
            !namedSeldom(m_nodes[m_nodes[joins[i]].right].source, {m_nodes[joins[i]].on}, fixed))
            return false;
    }
    for (int index : joins) {
        const Node& node = m_nodes[index];
        Source& source = m_scope.sources()[m_nodes[node.right].source];
        m_scope.setVisible(node.first, node.last);
        SelectText text;
        text.from = source.sql;
        text.where = expressions.condition(*node.on);
        m_scope.setAllVisible();
        for (SourceColumn& column : source.columns) {
            text.columns = {column.sql};
            column.sql = u'(' + text.text() + u')';
            column.indexed = false;
            column.neverNull = false;
        }
        source.inlined = true;
    }
    return true;
}

} // namespace jet::compiler
