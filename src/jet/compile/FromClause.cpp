#include "jet/compile/FromClause.h"

#include "jet/Error.h"
#include "jet/compile/Queries.h"

namespace jet::compiler {

using namespace Qt::StringLiterals;
using sql::JoinKind;

SourceSet FromClause::Node::set() const
{
    SourceSet all = 0;
    for (int s = first; s < last; ++s)
        all |= bit(s);
    return all;
}

void FromClause::build(const std::vector<sql::FromPtr>& items)
{
    for (const sql::FromPtr& item : items)
        build(*item);
}

void FromClause::build(const sql::From& item)
{
    const int node = add(item);
    m_root = m_root < 0 ? node : join(JoinKind::Inner, m_root, node, nullptr);
}

int FromClause::add(const sql::From& item)
{
    return std::visit([this](const auto& n) { return add(n); }, item.node);
}

int FromClause::leaf(int source)
{
    Node node;
    node.source = source;
    node.first = source;
    node.last = source + 1;
    m_nodes.push_back(node);
    return int(m_nodes.size()) - 1;
}

int FromClause::join(JoinKind kind, int left, int right, const sql::Expr* on)
{
    Node node;
    node.kind = kind;
    node.left = left;
    node.right = right;
    node.on = on;
    node.first = std::min(m_nodes[left].first, m_nodes[right].first);
    node.last = std::max(m_nodes[left].last, m_nodes[right].last);
    // With one table on the left it is the same as a left join the other way round, which the store
    // runs better.
    if (kind == JoinKind::Right && m_nodes[left].source >= 0 && !inlined(left)) {
        node.kind = JoinKind::Left;
        std::swap(node.left, node.right);
    }
    m_nodes.push_back(node);
    return int(m_nodes.size()) - 1;
}

int FromClause::add(const sql::NamedSource& item)
{
    const QString alias = item.alias.isEmpty() ? item.name : item.alias;
    if (const TableDef* table = m_context.schema().table(item.name))
        return leaf(m_scope.addTable(*table, item.alias.isEmpty() ? table->Name : item.alias));
    const QueryDef* query = m_context.schema().query(item.name);
    if (!query)
        fail(3078, item.name);
    const sql::Query& tree = m_context.enterQuery(*query);
    const int node = addQuery(tree, alias);
    m_context.leaveQuery();
    return node;
}

int FromClause::add(const sql::DerivedSource& item)
{
    return addQuery(*item.query, item.alias);
}

int FromClause::addQuery(const sql::Query& query, const QString& alias)
{
    NestedForm form;
    form.keepOrder = true;
    const Nested nested = compileNested(m_context, query, m_scope.outer(), form);
    std::vector<SourceColumn> columns;
    for (const NestedColumn& c : nested.columns) {
        SourceColumn column;
        column.name = c.name;
        column.type = c.type;
        column.exact = c.exact;
        column.neverNull = c.neverNull;
        columns.push_back(column);
    }
    const int source = m_scope.addDerived(alias, nested.sql, std::move(columns));
    m_scope.sources()[source].keys = nested.keys;
    m_scope.sources()[source].updatable = nested.updatable;
    return leaf(source);
}

int FromClause::add(const sql::Join& item)
{
    const int left = add(*item.left);
    const int right = add(*item.right);
    if (item.kind == JoinKind::Left && m_nodes[right].source >= 0) {
        if (const auto* derived = std::get_if<sql::DerivedSource>(&item.right->node)) {
            inlineGrouped(item, left, right, *derived->query);
        } else if (const auto* named = std::get_if<sql::NamedSource>(&item.right->node);
                   named && !m_scope.sources()[m_nodes[right].source].table) {
            const QueryDef* query = m_context.schema().query(named->name);
            inlineGrouped(item, left, right, m_context.enterQuery(*query));
            m_context.leaveQuery();
        }
    }
    return join(item.kind, left, right, item.on.get());
}

bool FromClause::inlined(int node) const
{
    return m_nodes[node].source >= 0 && m_scope.sources()[m_nodes[node].source].inlined;
}

void FromClause::reduce(const sql::Expr* where)
{
    if (m_root < 0)
        return;
    reduce(m_root, where ? nullRejected(*where, m_scope) : 0);
    markNullable(m_root, false);
}

void FromClause::reduce(int index, SourceSet rejected)
{
    Node& node = m_nodes[index];
    if (node.source >= 0)
        return;
    const SourceSet nullSide =
        node.kind == JoinKind::Right ? m_nodes[node.left].set() : m_nodes[node.right].set();
    if (node.kind != JoinKind::Inner && (rejected & nullSide) && !inlined(node.right))
        node.kind = JoinKind::Inner;
    m_scope.setVisible(node.first, node.last);
    const SourceSet on = node.on ? nullRejected(*node.on, m_scope) : 0;
    m_scope.setAllVisible();
    const JoinKind kind = node.kind;
    const int left = node.left;
    const int right = node.right;
    reduce(left, kind == JoinKind::Right ? on : kind == JoinKind::Inner ? rejected | on : rejected);
    reduce(right, kind == JoinKind::Left ? on : kind == JoinKind::Inner ? rejected | on : rejected);
}

void FromClause::markNullable(int index, bool nullable)
{
    const Node& node = m_nodes[index];
    if (node.source >= 0) {
        m_scope.sources()[node.source].nullable = nullable;
        return;
    }
    markNullable(node.left, nullable || node.kind == JoinKind::Right);
    markNullable(node.right, nullable || node.kind == JoinKind::Left);
}

QString FromClause::text(Expressions& expressions)
{
    return m_root < 0 ? QString() : text(m_root, expressions);
}

QString FromClause::text(int index, Expressions& expressions)
{
    const Node node = m_nodes[index];
    if (node.source >= 0)
        return m_scope.sources()[node.source].sql;
    const QString left = text(node.left, expressions);
    if (inlined(node.right))
        return left;
    QString right = text(node.right, expressions);
    if (m_nodes[node.right].source < 0 && !inlined(m_nodes[node.right].right))
        right = u'(' + right + u')';
    const QString word = node.kind == JoinKind::Left    ? u" LEFT JOIN "_s
                         : node.kind == JoinKind::Right ? u" RIGHT JOIN "_s
                                                        : u" INNER JOIN "_s;
    if (!node.on)
        return left + word + right;
    m_scope.setVisible(node.first, node.last);
    const QString on = joinCondition(*node.on, expressions);
    m_scope.setAllVisible();
    return left + word + right + u" ON "_s + on;
}

// A text compared with a number has a number of its own here.
QString FromClause::joinCondition(const sql::Expr& on, Expressions& expressions) const
{
    try {
        return expressions.condition(on);
    } catch (const Error& error) {
        if (error.number() == 3464)
            fail(3615, written(on));
        throw;
    }
}

bool FromClause::followsFirst() const
{
    int index = m_root;
    while (index >= 0 && m_nodes[index].source < 0) {
        if (m_nodes[index].kind != JoinKind::Left)
            return false;
        index = m_nodes[index].left;
    }
    return index >= 0 && m_nodes[index].source == 0;
}

bool FromClause::onlyInnerJoins() const
{
    return std::all_of(m_nodes.begin(), m_nodes.end(), [](const Node& node) {
        return node.source >= 0 || node.kind == JoinKind::Inner;
    });
}

std::vector<const sql::Expr*> FromClause::conditions() const
{
    std::vector<const sql::Expr*> all;
    for (const Node& node : m_nodes) {
        if (node.on)
            all.push_back(node.on);
    }
    return all;
}

SourceSet FromClause::standing() const
{
    SourceSet all = 0;
    for (int s = 0; s < int(m_scope.sources().size()); ++s) {
        if (!m_scope.sources()[s].inlined)
            all |= bit(s);
    }
    return all;
}

} // namespace jet::compiler
