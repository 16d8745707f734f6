#include "jet/sql/Parser.h"

#include "jet/Error.h"
#include "jet/sql/ParserPrivate.h"

namespace jet::sql {

using namespace Qt::StringLiterals;

namespace {

constexpr int maximalHeight = 200;
constexpr qsizetype maximalLength = 1'000'000;
constexpr qsizetype excerptLength = 40;

// Words of the grammar that still serve as names where no clause can begin with them.
bool isSoft(Keyword keyword)
{
    switch (keyword) {
    case Keyword::All:
    case Keyword::Asc:
    case Keyword::By:
    case Keyword::Desc:
    case Keyword::Exists:
    case Keyword::Outer:
    case Keyword::Percent:
    case Keyword::Top:
    case Keyword::Values:
        return true;
    default:
        return keyword == Keyword::None;
    }
}

} // namespace

Parser::Parser(QStringView text) : m_text(text)
{
    if (text.size() > maximalLength)
        fail(3360, u"plus de 1 000 000 de caractères"_s);
    m_tokens = tokenize(text);
}

Deeper::Deeper(Parser& parser) : m_parser(parser)
{
    m_parser.higher(m_parser.m_depth + 1);
    ++m_parser.m_depth;
}

// Reading tokens

const Token& Parser::peek(int ahead) const
{
    return m_tokens[std::min(m_at + size_t(ahead), m_tokens.size() - 1)];
}

const Token& Parser::next()
{
    const Token& token = peek();
    if (m_at + 1 < m_tokens.size())
        ++m_at;
    return token;
}

bool Parser::accept(TokenKind kind)
{
    if (!at(kind))
        return false;
    next();
    return true;
}

bool Parser::accept(Keyword keyword)
{
    if (!at(keyword))
        return false;
    next();
    return true;
}

QStringView Parser::textOfToken(const Token& token) const
{
    return m_text.sliced(token.place, token.length);
}

bool Parser::closesWithMark(const Token& token) const
{
    const QStringView text = textOfToken(token);
    return text.endsWith(u'$') || text.endsWith(u'@');
}

bool Parser::atName() const
{
    const Token& token = peek();
    if (token.kind == TokenKind::Name)
        return true;
    return token.kind == TokenKind::Word && isSoft(token.keyword) && !closesWithMark(token);
}

// Where a clause may follow as well as a name, only a word that begins none is a name.
bool Parser::atPlainName() const
{
    return atName() && at(Keyword::None);
}

// After a dot every word is a name, also one like Index, Left or Desc.
bool Parser::atMember() const
{
    return at(TokenKind::Name) || (at(TokenKind::Word) && !closesWithMark(peek()));
}

QString Parser::takeName()
{
    return nameOf(textOfToken(next()));
}

// Refusing

// The text from the place of the fault on; at the end of the text, what stands before it.
QString Parser::excerpt() const
{
    const Token& token = peek();
    if (token.kind == TokenKind::End) {
        const QString before = m_text.trimmed().toString();
        const bool whole = before.size() <= excerptLength;
        return (whole ? before : u"…"_s + before.last(excerptLength)).simplified();
    }
    const QStringView rest = m_text.sliced(token.place).trimmed();
    const bool whole = rest.size() <= excerptLength;
    return (whole ? rest.toString() : rest.first(excerptLength).toString() + u"…"_s).simplified();
}

void Parser::refuse(int number, const QString& reason) const
{
    const bool namesPlaceOnly = number == 3129 || number == 3142;
    const QString why = at(TokenKind::Bad) ? badReason(textOfToken(peek())) : reason;
    const QString description =
        namesPlaceOnly ? describe(number, excerpt()) : describe(number, why, excerpt());
    throw Error(number, description, m_text.toString());
}

void Parser::expect(TokenKind kind, const QString& mark)
{
    if (!accept(kind))
        refuse(u"« %1 » est attendu"_s.arg(mark));
}

void Parser::expect(Keyword keyword, const QString& word)
{
    if (!accept(keyword))
        refuse(u"%1 est attendu"_s.arg(word));
}

QString Parser::expectName(const QString& what)
{
    if (!atName())
        refuse(u"%1 est attendu"_s.arg(what));
    return takeName();
}

void Parser::expectEnd() const
{
    if (at(TokenKind::End))
        return;
    if (at(TokenKind::Close))
        refuse(u"une parenthèse « ) » est de trop"_s);
    refuse(m_clause == 3075 ? u"un opérateur manque"_s : u"un mot n'est pas à sa place"_s);
}

int Parser::higher(int height) const
{
    if (height > maximalHeight)
        throw Error(3360, describe(3360, u"plus de 200 niveaux"_s), m_text.toString());
    return height;
}

// Statements

Statement Parser::statement()
{
    Statement result;
    if (at(Keyword::Select) || (at(TokenKind::Open) && at(Keyword::Select, 1)))
        result.node = selectStatement();
    else if (at(Keyword::Insert))
        result.node = insertStatement();
    else if (at(Keyword::Update))
        result.node = updateStatement();
    else if (at(Keyword::Delete))
        result.node = deleteStatement();
    else
        refuse(3129, {});
    if (accept(TokenKind::Semicolon) && !at(TokenKind::End))
        refuse(3142, {});
    expectEnd();
    return result;
}

Query Parser::selectStatement()
{
    return std::move(*query().tree);
}

Insert Parser::insertStatement()
{
    m_clause = 3134;
    Insert result;
    next();
    expect(Keyword::Into, u"INTO"_s);
    result.tablePlace = peek().place;
    result.table = expectName(u"le nom d'une table"_s);
    if (at(TokenKind::Open) && !at(Keyword::Select, 1)) {
        do {
            next();
            result.columns.push_back(insertColumn());
        } while (at(TokenKind::Comma));
        expect(TokenKind::Close, u")"_s);
    }
    insertRows(result);
    return result;
}

QString Parser::insertColumn()
{
    QString name = expectName(u"le nom d'un champ"_s);
    if (!accept(TokenKind::Dot) && !accept(TokenKind::Bang))
        return name;
    if (!atMember())
        refuse(u"le nom d'un champ est attendu"_s);
    return takeName();
}

void Parser::insertRows(Insert& insert)
{
    if (at(Keyword::Select)) {
        insert.query = query().tree;
    } else if (at(TokenKind::Open)) {
        next();
        insert.query = queryBeforeClose().tree;
    } else {
        expect(Keyword::Values, u"VALUES ou SELECT"_s);
        expect(TokenKind::Open, u"("_s);
        expressions(insert.values);
        expect(TokenKind::Close, u")"_s);
    }
}

Update Parser::updateStatement()
{
    Update result;
    m_clause = 3144;
    next();
    result.distinctRow = accept(Keyword::DistinctRow);
    result.from = source().tree;
    m_clause = 3144;
    expect(Keyword::Set, u"SET"_s);
    do {
        result.assignments.push_back(assignment());
    } while (accept(TokenKind::Comma));
    condition(result.where);
    return result;
}

Assignment Parser::assignment()
{
    Assignment result;
    result.place = peek().place;
    result.target.column = expectName(u"le nom d'un champ"_s);
    if (accept(TokenKind::Dot) || accept(TokenKind::Bang)) {
        if (!atMember())
            refuse(u"le nom d'un champ est attendu"_s);
        result.target.table = std::exchange(result.target.column, takeName());
    }
    expect(TokenKind::Equal, u"="_s);
    result.value = expression().tree;
    return result;
}

Delete Parser::deleteStatement()
{
    Delete result;
    m_clause = 3131;
    next();
    result.distinctRow = accept(Keyword::DistinctRow);
    result.target = deleteTarget();
    expect(Keyword::From, u"FROM"_s);
    result.from = source().tree;
    condition(result.where);
    return result;
}

QString Parser::deleteTarget()
{
    if (accept(TokenKind::Star) || !atName())
        return {};
    QString table = takeName();
    expect(TokenKind::Dot, u"."_s);
    expect(TokenKind::Star, u"*"_s);
    return table;
}

ExprPtr Parser::wholeExpression()
{
    m_clause = 3075;
    ExprPtr result = expression().tree;
    expectEnd();
    return result;
}

ExprPtr Parser::wholeRule(const QString& column)
{
    m_ruleColumn = column;
    return wholeExpression();
}

// The contract

Statement parseStatement(QStringView text)
{
    return Parser(text).statement();
}

ExprPtr parseExpression(QStringView text)
{
    return Parser(text).wholeExpression();
}

ExprPtr parseRule(QStringView text, const QString& column)
{
    return Parser(text).wholeRule(column);
}

} // namespace jet::sql
