#include "jet/compile/Expressions.h"

#include <functional>

namespace jet::compiler {

namespace {

using Visit = std::function<void(const sql::Expr&)>;

struct Parts {
    const Visit& visit;

    void operator()(const sql::Literal&) const {}
    void operator()(const sql::ColumnRef&) const {}
    void operator()(const sql::Star&) const {}
    void operator()(const sql::Exists&) const {}
    void operator()(const sql::ScalarQuery&) const {}
    void operator()(const sql::Unary& e) const { visit(*e.operand); }
    void operator()(const sql::InQuery& e) const { visit(*e.operand); }
    void operator()(const sql::IsNull& e) const { visit(*e.operand); }
    void operator()(const sql::Binary& e) const { two(*e.left, *e.right); }
    void operator()(const sql::Like& e) const { two(*e.operand, *e.pattern); }
    void operator()(const sql::Between& e) const
    {
        visit(*e.operand);
        two(*e.low, *e.high);
    }
    void operator()(const sql::InList& e) const
    {
        visit(*e.operand);
        all(e.items);
    }
    void operator()(const sql::Call& e) const { all(e.arguments); }

    void two(const sql::Expr& a, const sql::Expr& b) const
    {
        visit(a);
        visit(b);
    }
    void all(const std::vector<sql::ExprPtr>& list) const
    {
        for (const sql::ExprPtr& e : list)
            visit(*e);
    }
};

} // namespace

void forEachPart(const sql::Expr& expression, const Visit& visit)
{
    std::visit(Parts{visit}, expression.node);
}

bool hasAggregate(const sql::Expr& expression)
{
    if (const auto* call = std::get_if<sql::Call>(&expression.node);
        call && isAggregateName(call->name))
        return true;
    bool found = false;
    forEachPart(expression, [&](const sql::Expr& part) { found = found || hasAggregate(part); });
    return found;
}

bool hasSubquery(const sql::Expr& expression)
{
    if (std::holds_alternative<sql::InQuery>(expression.node) ||
        std::holds_alternative<sql::Exists>(expression.node) ||
        std::holds_alternative<sql::ScalarQuery>(expression.node))
        return true;
    bool found = false;
    forEachPart(expression, [&](const sql::Expr& part) { found = found || hasSubquery(part); });
    return found;
}

} // namespace jet::compiler
