#include "jet/sql/ParserPrivate.h"

namespace jet::sql {

using namespace Qt::StringLiterals;

GrownQuery Parser::query()
{
    const Deeper deeper(*this);
    GrownQuery result{std::make_unique<Query>()};
    int height = selectInUnion(result.tree->selects.emplace_back());
    while (accept(Keyword::Union)) {
        result.tree->unionAll.push_back(accept(Keyword::All));
        height = std::max(height, selectInUnion(result.tree->selects.emplace_back()));
    }
    height = std::max(height, order(*result.tree));
    result.height = higher(height + 1);
    return result;
}

// A query inside parentheses, the opening one read already. A rule's missing
// operands belong to the rule alone; the clause outside goes on after it.
GrownQuery Parser::queryBeforeClose()
{
    const int clause = m_clause;
    const std::optional<QString> column = std::exchange(m_ruleColumn, std::nullopt);
    GrownQuery result = query();
    expect(TokenKind::Close, u")"_s);
    m_clause = clause;
    m_ruleColumn = column;
    return result;
}

int Parser::selectInUnion(Select& result)
{
    const bool parenthesis = accept(TokenKind::Open);
    const int height = select(result);
    if (parenthesis)
        expect(TokenKind::Close, u")"_s);
    return height;
}

int Parser::select(Select& result)
{
    m_clause = 3141;
    expect(Keyword::Select, u"SELECT"_s);
    predicate(result);
    top(result);
    int height = outputs(result);
    height = std::max(height, fromList(result));
    height = std::max(height, condition(result.where));
    return std::max(height, grouping(result));
}

void Parser::predicate(Select& result)
{
    if (accept(Keyword::Distinct))
        result.predicate = Predicate::Distinct;
    else if (accept(Keyword::DistinctRow))
        result.predicate = Predicate::DistinctRow;
    else
        accept(Keyword::All);
}

void Parser::top(Select& result)
{
    if (!at(Keyword::Top) || !at(TokenKind::Number, 1))
        return;
    next();
    const QVariant count = numberOf(textOfToken(peek()));
    if (count.typeId() != QMetaType::Int || count.toInt() < 0)
        refuse(u"TOP demande un nombre entier"_s);
    next();
    result.top = count.toInt();
    result.topPercent = accept(Keyword::Percent);
    if (result.topPercent && *result.top > 100)
        refuse(u"TOP demande un pourcentage de 0 à 100"_s);
}

int Parser::outputs(Select& result)
{
    int height = 0;
    do {
        GrownExpr item = output();
        height = std::max(height, item.height);
        result.outputs.push_back({std::move(item.tree), alias()});
    } while (accept(TokenKind::Comma));
    return height;
}

GrownExpr Parser::output()
{
    const int place = peek().place;
    if (at(TokenKind::Star)) {
        next();
        return {std::make_unique<Expr>(Expr{place, Star{}})};
    }
    if (atName() && at(TokenKind::Dot, 1) && at(TokenKind::Star, 2)) {
        QString table = takeName();
        next();
        next();
        return {std::make_unique<Expr>(Expr{place, Star{std::move(table)}})};
    }
    // A reserved word or nothing where a field should stand is a fault of the SELECT, not of an
    // expression.
    if (at(TokenKind::End) || at(TokenKind::Comma) || at(Keyword::From) || at(Keyword::Where))
        refuse(u"un champ est attendu"_s);
    return expression();
}

// "AS" may be left out where the next word can only be a name.
QString Parser::alias()
{
    if (accept(Keyword::As))
        return expectName(u"un nom après AS"_s);
    return atPlainName() ? takeName() : QString();
}

int Parser::fromList(Select& result)
{
    if (!accept(Keyword::From))
        return 0;
    int height = 0;
    do {
        GrownFrom one = source();
        height = std::max(height, one.height);
        result.from.push_back(std::move(one.tree));
    } while (accept(TokenKind::Comma));
    return height;
}

int Parser::condition(ExprPtr& target)
{
    if (!accept(Keyword::Where))
        return 0;
    m_clause = 3075;
    GrownExpr where = expression();
    target = std::move(where.tree);
    return where.height;
}

int Parser::grouping(Select& result)
{
    int height = 0;
    if (accept(Keyword::Group)) {
        m_clause = 3141;
        expect(Keyword::By, u"BY"_s);
        m_clause = 3075;
        height = expressions(result.groupBy);
    }
    if (accept(Keyword::Having)) {
        m_clause = 3075;
        GrownExpr having = expression();
        height = std::max(height, having.height);
        result.having = std::move(having.tree);
    }
    return height;
}

int Parser::order(Query& result)
{
    if (!accept(Keyword::Order))
        return 0;
    m_clause = 3138;
    expect(Keyword::By, u"BY"_s);
    int height = 0;
    do {
        GrownExpr item = expression();
        height = std::max(height, item.height);
        const bool descending = accept(Keyword::Desc);
        if (!descending)
            accept(Keyword::Asc);
        result.orderBy.push_back({std::move(item.tree), descending});
    } while (accept(TokenKind::Comma));
    return height;
}

// Tables

GrownFrom Parser::source()
{
    m_clause = 3131;
    GrownFrom left = simpleSource();
    while (const std::optional<JoinKind> kind = joinKind()) {
        GrownFrom right = simpleSource();
        expect(Keyword::On, u"ON"_s);
        GrownExpr on = expression();
        const int height = higher(std::max({left.height, right.height, on.height}) + 1);
        const int place = left.tree->place;
        Join join{*kind, std::move(left.tree), std::move(right.tree), std::move(on.tree)};
        left = {std::make_unique<From>(From{place, std::move(join)}), height};
    }
    return left;
}

std::optional<JoinKind> Parser::joinKind()
{
    std::optional<JoinKind> kind;
    if (accept(Keyword::Inner))
        kind = JoinKind::Inner;
    else if (accept(Keyword::Left))
        kind = JoinKind::Left;
    else if (accept(Keyword::Right))
        kind = JoinKind::Right;
    if (kind && kind != JoinKind::Inner)
        accept(Keyword::Outer);
    if (kind)
        expect(Keyword::Join, u"JOIN"_s);
    return kind;
}

GrownFrom Parser::simpleSource()
{
    const Deeper deeper(*this);
    const int place = peek().place;
    if (at(TokenKind::Open))
        return sourceInParentheses();
    QString name = expectName(u"le nom d'une table"_s);
    NamedSource named{std::move(name), alias()};
    return {std::make_unique<From>(From{place, std::move(named)})};
}

GrownFrom Parser::sourceInParentheses()
{
    const int place = next().place;
    if (!at(Keyword::Select)) {
        GrownFrom result = source();
        expect(TokenKind::Close, u")"_s);
        return result;
    }
    GrownQuery inner = queryBeforeClose();
    DerivedSource derived{std::move(inner.tree), alias()};
    return {std::make_unique<From>(From{place, std::move(derived)}), higher(inner.height + 1)};
}

} // namespace jet::sql
