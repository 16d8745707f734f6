// What conditions tell about rows: which outer joins are inner ones, and where a join cannot
// multiply.
#include "jet/compile/FromClause.h"

namespace jet::compiler {

using namespace Qt::StringLiterals;
using sql::BinaryOp;

namespace {

// Finds the sources that must have a row (not the null row of an outer join) where a condition
// holds.
class NullRejection {
public:
    explicit NullRejection(const Scope& scope) : m_scope(scope) {}

    // Where the condition is true, or, with `wanted` false, where it is false. Null is neither.
    SourceSet where(const sql::Expr& e, bool wanted) const
    {
        return std::visit([&](const auto& n) { return of(n, e, wanted); }, e.node);
    }

private:
    // The sources whose null row makes the value Null.
    SourceSet strict(const sql::Expr& e) const
    {
        if (const auto* name = std::get_if<sql::ColumnRef>(&e.node)) {
            const Found found = m_scope.find(*name);
            const bool sure =
                found.known() && !found.ambiguous && !m_scope.sources()[found.source].inlined;
            return sure ? bit(found.source) : 0;
        }
        if (const auto* unary = std::get_if<sql::Unary>(&e.node))
            return strict(*unary->operand);
        if (const auto* binary = std::get_if<sql::Binary>(&e.node)) {
            const bool carries = binary->op < BinaryOp::And && binary->op != BinaryOp::Concat;
            return carries ? strict(*binary->left) | strict(*binary->right) : 0;
        }
        if (const auto* call = std::get_if<sql::Call>(&e.node)) {
            static const QStringList carrying = {u"val"_s,   u"trim"_s,   u"ltrim"_s, u"rtrim"_s,
                                                 u"lcase"_s, u"ucase"_s,  u"left"_s,  u"right"_s,
                                                 u"mid"_s,   u"len"_s,    u"abs"_s,   u"int"_s,
                                                 u"round"_s, u"strconv"_s};
            return carrying.contains(call->name) && !call->arguments.empty()
                       ? strict(*call->arguments[0])
                       : 0;
        }
        return 0;
    }

    SourceSet of(const sql::Binary& n, const sql::Expr& e, bool wanted) const
    {
        if (n.op == BinaryOp::And || n.op == BinaryOp::Or) {
            const SourceSet a = where(*n.left, wanted);
            const SourceSet b = where(*n.right, wanted);
            return (n.op == BinaryOp::And) == wanted ? a | b : a & b;
        }
        if (n.op > BinaryOp::Or)
            return 0;
        if (n.op == BinaryOp::Equal || n.op == BinaryOp::NotEqual) {
            for (const auto& [truth, tested] :
                 {std::pair(&n.right, &n.left), std::pair(&n.left, &n.right)}) {
                const auto* literal = std::get_if<sql::Literal>(&(*truth)->node);
                if (literal && literal->value.typeId() == QMetaType::Bool)
                    return where(**tested,
                                 (literal->value.toBool() == (n.op == BinaryOp::Equal)) == wanted);
            }
        }
        return strict(e) | (n.op >= BinaryOp::Equal ? strict(*n.left) | strict(*n.right) : 0);
    }
    SourceSet of(const sql::Unary& n, const sql::Expr& e, bool wanted) const
    {
        return n.op == sql::UnaryOp::Not ? where(*n.operand, !wanted) : strict(e);
    }
    SourceSet of(const sql::Like& n, const sql::Expr&, bool) const
    {
        return strict(*n.operand) | strict(*n.pattern);
    }
    SourceSet of(const sql::Between& n, const sql::Expr&, bool) const { return strict(*n.operand); }
    SourceSet of(const sql::InList& n, const sql::Expr&, bool) const { return strict(*n.operand); }
    // A Null is not in an empty result: that it is not in it may hold for the null row.
    SourceSet of(const sql::InQuery& n, const sql::Expr&, bool wanted) const
    {
        return n.negated != wanted ? strict(*n.operand) : 0;
    }
    SourceSet of(const sql::IsNull& n, const sql::Expr&, bool wanted) const
    {
        return n.negated == wanted ? strict(*n.operand) : 0;
    }
    SourceSet of(const sql::Call& n, const sql::Expr& e, bool wanted) const
    {
        if (n.name == u"isnull"_s && n.arguments.size() == 1)
            return wanted ? 0 : strict(*n.arguments[0]);
        return strict(e);
    }
    SourceSet of(const sql::ColumnRef&, const sql::Expr& e, bool) const { return strict(e); }
    SourceSet of(const sql::Literal&, const sql::Expr&, bool) const { return 0; }
    SourceSet of(const sql::Star&, const sql::Expr&, bool) const { return 0; }
    SourceSet of(const sql::Exists&, const sql::Expr&, bool) const { return 0; }
    SourceSet of(const sql::ScalarQuery&, const sql::Expr&, bool) const { return 0; }

    const Scope& m_scope;
};

} // namespace

SourceSet nullRejected(const sql::Expr& condition, const Scope& scope)
{
    return NullRejection(scope).where(condition, true);
}

std::vector<Equality> FromClause::equalities(const sql::Expr* where, Expressions& expressions) const
{
    std::vector<Equality> all;
    if (where)
        collect(*where, ~SourceSet(0), expressions, all);
    if (m_root >= 0)
        collect(m_root, expressions, all);
    return all;
}

// The condition of an outer join says something about the rows of its null side alone: those of
// the other side are there whether it holds or not.
void FromClause::collect(int index, Expressions& expressions, std::vector<Equality>& out) const
{
    const Node& node = m_nodes[index];
    if (node.source >= 0)
        return;
    if (node.on && !inlined(node.right)) {
        const SourceSet determinable = node.kind == sql::JoinKind::Left ? m_nodes[node.right].set()
                                       : node.kind == sql::JoinKind::Right
                                           ? m_nodes[node.left].set()
                                           : node.set();
        m_scope.setVisible(node.first, node.last);
        collect(*node.on, determinable, expressions, out);
        m_scope.setAllVisible();
    }
    collect(node.left, expressions, out);
    collect(node.right, expressions, out);
}

void FromClause::collect(const sql::Expr& condition, SourceSet determinable,
                         Expressions& expressions, std::vector<Equality>& out) const
{
    const auto* binary = std::get_if<sql::Binary>(&condition.node);
    if (!binary)
        return;
    if (binary->op == BinaryOp::And) {
        collect(*binary->left, determinable, expressions, out);
        collect(*binary->right, determinable, expressions, out);
        return;
    }
    if (binary->op != BinaryOp::Equal)
        return;
    for (const auto& [one, other] :
         {std::pair(&binary->left, &binary->right), std::pair(&binary->right, &binary->left)}) {
        const auto* name = std::get_if<sql::ColumnRef>(&(*one)->node);
        const Found found = name ? m_scope.find(*name) : Found();
        if (!found.known() || found.ambiguous || !(bit(found.source) & determinable))
            continue;
        const SourceSet before = std::exchange(m_scope.touched, 0);
        expressions.compile(**other);
        out.push_back({found.source, found.column, m_scope.touched, other->get()});
        m_scope.touched = before;
    }
}

bool FromClause::determines(SourceSet known, const sql::Expr* where, Expressions& expressions) const
{
    const std::vector<Equality> all = equalities(where, expressions);
    const auto fixed = [&](int source, int column) {
        return std::any_of(all.begin(), all.end(), [&](const Equality& e) {
            return e.source == source && e.column == column && (e.other & ~known) == 0;
        });
    };
    const auto unique = [&](int source) {
        const auto& keys = m_scope.sources()[source].keys;
        return std::any_of(keys.begin(), keys.end(), [&](const std::vector<int>& key) {
            return !key.empty() && std::all_of(key.begin(), key.end(),
                                               [&](int column) { return fixed(source, column); });
        });
    };
    const SourceSet wanted = standing();
    for (bool changed = true; changed && (wanted & ~known);) {
        changed = false;
        for (int s = 0; s < int(m_scope.sources().size()); ++s) {
            if ((bit(s) & wanted & ~known) && unique(s)) {
                known |= bit(s);
                changed = true;
            }
        }
    }
    return (wanted & ~known) == 0;
}

} // namespace jet::compiler
