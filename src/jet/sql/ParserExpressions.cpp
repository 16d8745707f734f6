#include "jet/sql/ParserPrivate.h"

namespace jet::sql {

using namespace Qt::StringLiterals;

namespace {

// Longer chains of an operator that may be grouped at will become a balanced
// tree, so that a criterion of a thousand terms is not a thousand levels high.
constexpr size_t longChain = 32;

Binding tighter(Binding level)
{
    return Binding(int(level) + 1);
}

bool isAssociative(Binding level)
{
    return level == Binding::And || level == Binding::Or || level == Binding::Concat;
}

bool isComparison(TokenKind kind)
{
    return kind >= TokenKind::Equal && kind <= TokenKind::GreaterEqual;
}

BinaryOp comparisonOp(TokenKind kind)
{
    switch (kind) {
    case TokenKind::NotEqual:
        return BinaryOp::NotEqual;
    case TokenKind::Less:
        return BinaryOp::Less;
    case TokenKind::Greater:
        return BinaryOp::Greater;
    case TokenKind::LessEqual:
        return BinaryOp::LessEqual;
    case TokenKind::GreaterEqual:
        return BinaryOp::GreaterEqual;
    default:
        return BinaryOp::Equal;
    }
}

template<typename Node> GrownExpr grown(int place, Node node, int height = 1)
{
    return {std::make_unique<Expr>(Expr{place, std::move(node)}), height};
}

} // namespace

GrownExpr Parser::expression()
{
    const Deeper deeper(*this);
    return binary(Binding::Imp);
}

// Reads an operand, then everything that binds at least as tightly as
// `loosest`, the tightest operators first.
GrownExpr Parser::binary(Binding loosest)
{
    GrownExpr result = prefixed(loosest);
    for (int level = int(Binding::Power); level >= int(loosest); --level) {
        if (Binding(level) == Binding::Comparison)
            result = comparisons(std::move(result));
        else if (operatorAt(Binding(level)))
            result = chain(std::move(result), Binding(level));
    }
    return result;
}

std::optional<BinaryOp> Parser::operatorAt(Binding level) const
{
    struct Operator {
        Binding level;
        TokenKind kind;
        Keyword keyword;
        BinaryOp op;
    };
    static constexpr Operator operators[] = {
        {Binding::Imp, TokenKind::Word, Keyword::Imp, BinaryOp::Implies},
        {Binding::Eqv, TokenKind::Word, Keyword::Eqv, BinaryOp::Equivalent},
        {Binding::Or, TokenKind::Word, Keyword::Or, BinaryOp::Or},
        {Binding::Xor, TokenKind::Word, Keyword::Xor, BinaryOp::Xor},
        {Binding::And, TokenKind::Word, Keyword::And, BinaryOp::And},
        {Binding::Concat, TokenKind::Ampersand, Keyword::None, BinaryOp::Concat},
        {Binding::Additive, TokenKind::Plus, Keyword::None, BinaryOp::Add},
        {Binding::Additive, TokenKind::Minus, Keyword::None, BinaryOp::Subtract},
        {Binding::Modulo, TokenKind::Word, Keyword::Mod, BinaryOp::Modulo},
        {Binding::IntDivide, TokenKind::Backslash, Keyword::None, BinaryOp::IntDivide},
        {Binding::Multiplicative, TokenKind::Star, Keyword::None, BinaryOp::Multiply},
        {Binding::Multiplicative, TokenKind::Slash, Keyword::None, BinaryOp::Divide},
        {Binding::Power, TokenKind::Caret, Keyword::None, BinaryOp::Power},
    };
    const Token& token = peek();
    for (const Operator& o : operators) {
        if (o.level == level && o.kind == token.kind && o.keyword == token.keyword)
            return o.op;
    }
    return std::nullopt;
}

GrownExpr Parser::chain(GrownExpr left, Binding level)
{
    if (isAssociative(level))
        return associativeChain(std::move(left), level);
    while (const std::optional<BinaryOp> op = operatorAt(level)) {
        next();
        GrownExpr right = binary(tighter(level));
        left = join(*op, std::move(left), std::move(right));
    }
    return left;
}

GrownExpr Parser::associativeChain(GrownExpr first, Binding level)
{
    const BinaryOp op = *operatorAt(level);
    std::vector<GrownExpr> terms;
    terms.push_back(std::move(first));
    while (operatorAt(level)) {
        next();
        terms.push_back(binary(tighter(level)));
    }
    if (terms.size() > longChain)
        return balanced(op, terms, 0, terms.size());
    GrownExpr result = std::move(terms.front());
    for (size_t i = 1; i < terms.size(); ++i)
        result = join(op, std::move(result), std::move(terms[i]));
    return result;
}

GrownExpr Parser::balanced(BinaryOp op, std::vector<GrownExpr>& terms, size_t from, size_t to) const
{
    if (to - from == 1)
        return std::move(terms[from]);
    const size_t middle = from + (to - from) / 2;
    GrownExpr left = balanced(op, terms, from, middle);
    return join(op, std::move(left), balanced(op, terms, middle, to));
}

GrownExpr Parser::join(BinaryOp op, GrownExpr left, GrownExpr right) const
{
    const int height = higher(std::max(left.height, right.height) + 1);
    const int place = left.tree->place;
    return grown(place, Binary{op, std::move(left.tree), std::move(right.tree)}, height);
}

// Comparisons and tests, from left to right

GrownExpr Parser::comparisons(GrownExpr left)
{
    for (;;) {
        if (isComparison(peek().kind)) {
            const BinaryOp op = comparisonOp(next().kind);
            left = join(op, std::move(left), binary(Binding::Concat));
        } else if (at(Keyword::Is)) {
            left = isNull(std::move(left));
        } else if (atNegatedTest()) {
            next();
            left = test(std::move(left), true);
        } else if (at(Keyword::Like) || at(Keyword::Between) || at(Keyword::In)) {
            left = test(std::move(left), false);
        } else {
            return left;
        }
    }
}

bool Parser::atNegatedTest() const
{
    return at(Keyword::Not) &&
           (at(Keyword::Like, 1) || at(Keyword::Between, 1) || at(Keyword::In, 1));
}

GrownExpr Parser::test(GrownExpr left, bool negated)
{
    switch (next().keyword) {
    case Keyword::Like:
        return like(std::move(left), negated);
    case Keyword::Between:
        return between(std::move(left), negated);
    default:
        return in(std::move(left), negated);
    }
}

GrownExpr Parser::isNull(GrownExpr left)
{
    next();
    const bool negated = accept(Keyword::Not);
    if (!accept(Keyword::Null))
        refuse(3075, u"NULL est attendu après IS"_s);
    const int place = left.tree->place;
    const int height = higher(left.height + 1);
    return grown(place, IsNull{std::move(left.tree), negated}, height);
}

GrownExpr Parser::like(GrownExpr left, bool negated)
{
    GrownExpr pattern = binary(Binding::Concat);
    const int place = left.tree->place;
    const int height = higher(std::max(left.height, pattern.height) + 1);
    return grown(place, Like{std::move(left.tree), std::move(pattern.tree), negated}, height);
}

GrownExpr Parser::between(GrownExpr left, bool negated)
{
    GrownExpr low = binary(Binding::Concat);
    if (!accept(Keyword::And))
        refuse(3075, u"AND est attendu après BETWEEN"_s);
    GrownExpr high = binary(Binding::Concat);
    const int place = left.tree->place;
    const int height = higher(std::max({left.height, low.height, high.height}) + 1);
    Between node{std::move(left.tree), std::move(low.tree), std::move(high.tree), negated};
    return grown(place, std::move(node), height);
}

GrownExpr Parser::in(GrownExpr left, bool negated)
{
    if (!accept(TokenKind::Open))
        refuse(3075, u"« ( » est attendu après IN"_s);
    const int place = left.tree->place;
    if (at(Keyword::Select)) {
        GrownQuery inner = queryBeforeClose();
        const int height = higher(std::max(left.height, inner.height) + 1);
        return grown(place, InQuery{std::move(left.tree), std::move(inner.tree), negated}, height);
    }
    InList list{std::move(left.tree), {}, negated};
    const int height = higher(std::max(left.height, expressions(list.items)) + 1);
    if (!accept(TokenKind::Close))
        refuse(3075, u"« ) » est attendu"_s);
    return grown(place, std::move(list), height);
}

// Operands

GrownExpr Parser::prefixed(Binding loosest)
{
    const int place = peek().place;
    if (m_ruleColumn && loosest <= Binding::Comparison && ruleStandsForColumn())
        return grown(place, ColumnRef{{}, *m_ruleColumn});
    const bool logical = at(Keyword::Not);
    if (!logical && !at(TokenKind::Minus) && !at(TokenKind::Plus))
        return primary();
    const Deeper deeper(*this);
    const UnaryOp sign = at(TokenKind::Minus) ? UnaryOp::Minus : UnaryOp::Plus;
    next();
    // A sign binds more tightly than "^": -2^2 is 4. "Not" takes a whole comparison.
    GrownExpr operand = logical ? binary(Binding::Comparison) : prefixed(Binding::Unary);
    const int height = higher(operand.height + 1);
    return grown(place, Unary{logical ? UnaryOp::Not : sign, std::move(operand.tree)}, height);
}

bool Parser::ruleStandsForColumn() const
{
    return isComparison(peek().kind) || at(Keyword::Is) || at(Keyword::Like) || at(Keyword::In) ||
           at(Keyword::Between) || atNegatedTest();
}

GrownExpr Parser::primary()
{
    switch (peek().kind) {
    case TokenKind::Text:
        return literal(textOf(textOfToken(peek())));
    case TokenKind::Number:
        return number();
    case TokenKind::Date:
        return date();
    case TokenKind::Open:
        return parentheses();
    case TokenKind::Name:
        return column();
    case TokenKind::Word:
        return word();
    default:
        refuse(3075, u"une valeur est attendue"_s);
    }
}

GrownExpr Parser::word()
{
    const bool call = at(TokenKind::Open, 1);
    switch (peek().keyword) {
    case Keyword::Null:
        return literal({});
    case Keyword::True:
    case Keyword::Yes:
    case Keyword::On:
        return literal(true);
    case Keyword::False:
    case Keyword::No:
    case Keyword::Off:
        return literal(false);
    case Keyword::Exists:
        if (call)
            return exists();
        break;
    case Keyword::Left:
    case Keyword::Right:
        if (call)
            return this->call();
        break;
    default:
        break;
    }
    if (call && (atName() || closesWithMark(peek())))
        return this->call();
    if (atName())
        return column();
    refuse(3075, u"une valeur est attendue"_s);
}

GrownExpr Parser::literal(QVariant value)
{
    return grown(next().place, Literal{std::move(value)});
}

GrownExpr Parser::number()
{
    QVariant value = numberOf(textOfToken(peek()));
    if (!value.isValid())
        refuse(3075, u"un nombre est trop grand"_s);
    return literal(std::move(value));
}

GrownExpr Parser::date()
{
    const std::optional<QDateTime> value = dateOf(textOfToken(peek()));
    if (!value)
        refuse(3075, u"une date s'écrit #mois/jour/année#"_s);
    return literal(*value);
}

GrownExpr Parser::parentheses()
{
    const int place = next().place;
    if (at(Keyword::Select)) {
        GrownQuery inner = queryBeforeClose();
        return grown(place, ScalarQuery{std::move(inner.tree)}, higher(inner.height + 1));
    }
    GrownExpr result = expression();
    if (!accept(TokenKind::Close))
        refuse(3075, u"« ) » est attendu"_s);
    return result;
}

GrownExpr Parser::exists()
{
    const int place = next().place;
    next();
    GrownQuery inner = queryBeforeClose();
    return grown(place, Exists{std::move(inner.tree)}, higher(inner.height + 1));
}

GrownExpr Parser::call()
{
    const int place = peek().place;
    Call result{takeName().toLower(), {}, false};
    next();
    const std::optional<QString> column = std::exchange(m_ruleColumn, std::nullopt);
    const int height = higher(arguments(result) + 1);
    m_ruleColumn = column;
    if (!accept(TokenKind::Close))
        refuse(3075, u"« ) » est attendu"_s);
    return grown(place, std::move(result), height);
}

int Parser::arguments(Call& result)
{
    if (at(TokenKind::Close))
        return 0;
    if (at(TokenKind::Star) && at(TokenKind::Close, 1)) {
        result.arguments.push_back(grown(next().place, Star{}).tree);
        return 1;
    }
    result.distinct = accept(Keyword::Distinct);
    return expressions(result.arguments);
}

int Parser::expressions(std::vector<ExprPtr>& result)
{
    int height = 0;
    do {
        GrownExpr item = expression();
        height = std::max(height, item.height);
        result.push_back(std::move(item.tree));
    } while (accept(TokenKind::Comma));
    return height;
}

GrownExpr Parser::column()
{
    const int place = peek().place;
    ColumnRef reference{{}, takeName()};
    if (accept(TokenKind::Dot) || accept(TokenKind::Bang)) {
        if (!atMember())
            refuse(3075, u"le nom d'un champ est attendu"_s);
        reference.table = std::exchange(reference.column, takeName());
        if (at(TokenKind::Dot) || at(TokenKind::Bang))
            refuse(3075, u"un nom a trop de parties"_s);
    }
    return grown(place, std::move(reference));
}

} // namespace jet::sql
