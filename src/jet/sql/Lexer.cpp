#include "jet/sql/Lexer.h"

namespace jet::sql {

using namespace Qt::StringLiterals;

namespace {

struct KeywordText {
    QStringView text;
    Keyword keyword;
};

constexpr KeywordText keywords[] = {
    {u"ALL", Keyword::All},
    {u"AND", Keyword::And},
    {u"AS", Keyword::As},
    {u"ASC", Keyword::Asc},
    {u"BETWEEN", Keyword::Between},
    {u"BY", Keyword::By},
    {u"DELETE", Keyword::Delete},
    {u"DESC", Keyword::Desc},
    {u"DISTINCT", Keyword::Distinct},
    {u"DISTINCTROW", Keyword::DistinctRow},
    {u"EQV", Keyword::Eqv},
    {u"EXISTS", Keyword::Exists},
    {u"FALSE", Keyword::False},
    {u"FROM", Keyword::From},
    {u"GROUP", Keyword::Group},
    {u"HAVING", Keyword::Having},
    {u"IMP", Keyword::Imp},
    {u"IN", Keyword::In},
    {u"INNER", Keyword::Inner},
    {u"INSERT", Keyword::Insert},
    {u"INTO", Keyword::Into},
    {u"IS", Keyword::Is},
    {u"JOIN", Keyword::Join},
    {u"LEFT", Keyword::Left},
    {u"LIKE", Keyword::Like},
    {u"MOD", Keyword::Mod},
    {u"NO", Keyword::No},
    {u"NOT", Keyword::Not},
    {u"NULL", Keyword::Null},
    {u"OFF", Keyword::Off},
    {u"ON", Keyword::On},
    {u"OR", Keyword::Or},
    {u"ORDER", Keyword::Order},
    {u"OUTER", Keyword::Outer},
    {u"PERCENT", Keyword::Percent},
    {u"RIGHT", Keyword::Right},
    {u"SELECT", Keyword::Select},
    {u"SET", Keyword::Set},
    {u"TOP", Keyword::Top},
    {u"TRUE", Keyword::True},
    {u"UNION", Keyword::Union},
    {u"UPDATE", Keyword::Update},
    {u"VALUES", Keyword::Values},
    {u"WHERE", Keyword::Where},
    {u"XOR", Keyword::Xor},
    {u"YES", Keyword::Yes},
};

Keyword keywordOf(QStringView word)
{
    if (word.size() > 11)
        return Keyword::None;
    for (const KeywordText& k : keywords) {
        if (word.compare(k.text, Qt::CaseInsensitive) == 0)
            return k.keyword;
    }
    return Keyword::None;
}

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool isHexDigit(QChar c)
{
    return isDigit(c) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

bool isWordStart(QChar c)
{
    return c == u'_' || c.isLetter();
}

// Combining accents belong to the letter before them: a text that was pasted in decomposed form.
bool isWordPart(QChar c)
{
    return isWordStart(c) || c.isDigit() || c.isMark();
}

class Scanner {
public:
    explicit Scanner(QStringView text) : m_text(text) {}

    std::vector<Token> run();

private:
    QChar at(qsizetype ahead = 0) const
    {
        return m_at + ahead < m_text.size() ? m_text[m_at + ahead] : QChar();
    }
    bool followsOperand() const;
    void skipBlanks();
    void skipDigits();
    TokenKind scan();
    TokenKind scanWord();
    TokenKind scanBracket();
    TokenKind scanQuoted(QChar quote);
    TokenKind scanDate();
    TokenKind scanNumber();
    TokenKind scanAmpersand();
    TokenKind scanComparison();
    TokenKind scanMark();

    QStringView m_text;
    qsizetype m_at = 0;
    std::vector<Token> m_tokens;
};

std::vector<Token> Scanner::run()
{
    TokenKind kind = TokenKind::Bad;
    do {
        skipBlanks();
        const qsizetype start = m_at;
        kind = m_at < m_text.size() ? scan() : TokenKind::End;
        Token token{kind, Keyword::None, int(start), int(m_at - start)};
        if (kind == TokenKind::Word)
            token.keyword = keywordOf(m_text.sliced(start, m_at - start));
        m_tokens.push_back(token);
    } while (kind != TokenKind::End && kind != TokenKind::Bad);
    if (kind == TokenKind::Bad)
        m_tokens.push_back({TokenKind::End, Keyword::None, int(m_text.size()), 0});
    return std::move(m_tokens);
}

void Scanner::skipBlanks()
{
    while (m_at < m_text.size() && m_text[m_at].isSpace())
        ++m_at;
}

void Scanner::skipDigits()
{
    while (isDigit(at()))
        ++m_at;
}

TokenKind Scanner::scan()
{
    const QChar c = at();
    if (isWordStart(c))
        return scanWord();
    if (isDigit(c) || (c == u'.' && isDigit(at(1)) && !followsOperand()))
        return scanNumber();
    switch (c.unicode()) {
    case u'[':
        return scanBracket();
    case u'"':
    case u'\'':
        return scanQuoted(c);
    case u'#':
        return scanDate();
    case u'&':
        return scanAmpersand();
    case u'<':
    case u'>':
        return scanComparison();
    default:
        return scanMark();
    }
}

TokenKind Scanner::scanWord()
{
    while (isWordPart(at()))
        ++m_at;
    if (at() == u'$' || at() == u'@')
        ++m_at;
    return TokenKind::Word;
}

TokenKind Scanner::scanBracket()
{
    const qsizetype start = m_at++;
    while (m_at < m_text.size() && at() != u']' && at() != u'[')
        ++m_at;
    if (at() != u']' || m_at == start + 1)
        return TokenKind::Bad;
    ++m_at;
    return TokenKind::Name;
}

TokenKind Scanner::scanQuoted(QChar quote)
{
    for (++m_at; m_at < m_text.size(); ++m_at) {
        if (at() != quote)
            continue;
        ++m_at;
        if (at() != quote)
            return TokenKind::Text;
    }
    return TokenKind::Bad;
}

TokenKind Scanner::scanDate()
{
    ++m_at;
    while (m_at < m_text.size() && at() != u'#')
        ++m_at;
    if (at() != u'#')
        return TokenKind::Bad;
    ++m_at;
    return TokenKind::Date;
}

TokenKind Scanner::scanNumber()
{
    skipDigits();
    if (at() == u'.') {
        ++m_at;
        skipDigits();
    }
    const bool exponent = at() == u'e' || at() == u'E';
    const bool sign = at(1) == u'+' || at(1) == u'-';
    if (exponent && isDigit(at(sign ? 2 : 1))) {
        m_at += sign ? 2 : 1;
        skipDigits();
    }
    return TokenKind::Number;
}

bool Scanner::followsOperand() const
{
    if (m_tokens.empty())
        return false;
    const Token& last = m_tokens.back();
    switch (last.kind) {
    case TokenKind::Word:
        return last.keyword == Keyword::None;
    case TokenKind::Name:
    case TokenKind::Text:
    case TokenKind::Number:
    case TokenKind::Date:
    case TokenKind::Close:
        return true;
    default:
        return false;
    }
}

// "&H1F" is a number where an operand may begin; after an operand, as in
// `[a]&Habitat` or `"x"&Hab`, the "&" joins texts.
TokenKind Scanner::scanAmpersand()
{
    const bool number = (at(1) == u'h' || at(1) == u'H') && isHexDigit(at(2)) && !followsOperand();
    ++m_at;
    if (!number)
        return TokenKind::Ampersand;
    ++m_at;
    while (isHexDigit(at()))
        ++m_at;
    return TokenKind::Number;
}

TokenKind Scanner::scanComparison()
{
    const QChar first = at();
    ++m_at;
    const QChar second = at();
    const bool two = second == u'=' || (first == u'<' && second == u'>');
    if (!two)
        return first == u'<' ? TokenKind::Less : TokenKind::Greater;
    ++m_at;
    if (second == u'>')
        return TokenKind::NotEqual;
    return first == u'<' ? TokenKind::LessEqual : TokenKind::GreaterEqual;
}

TokenKind Scanner::scanMark()
{
    const QChar c = at();
    ++m_at;
    switch (c.unicode()) {
    case u',':
        return TokenKind::Comma;
    case u';':
        return TokenKind::Semicolon;
    case u'.':
        return TokenKind::Dot;
    case u'!':
        return TokenKind::Bang;
    case u'(':
        return TokenKind::Open;
    case u')':
        return TokenKind::Close;
    case u'*':
        return TokenKind::Star;
    case u'/':
        return TokenKind::Slash;
    case u'\\':
        return TokenKind::Backslash;
    case u'^':
        return TokenKind::Caret;
    case u'+':
        return TokenKind::Plus;
    case u'-':
        return TokenKind::Minus;
    case u'=':
        return TokenKind::Equal;
    default:
        return TokenKind::Bad;
    }
}

} // namespace

std::vector<Token> tokenize(QStringView text)
{
    return Scanner(text).run();
}

QString badReason(QStringView token)
{
    const QChar first = token.isEmpty() ? QChar() : token.front();
    if (first == u'[' && token.startsWith(u"[]"))
        return u"un nom est vide"_s;
    if (first == u'[')
        return u"un crochet « [ » n'est pas fermé"_s;
    if (first == u'"' || first == u'\'')
        return u"un texte n'est pas fermé par son guillemet"_s;
    if (first == u'#')
        return u"une date n'est pas fermée par « # »"_s;
    return u"un caractère n'est pas permis ici"_s;
}

} // namespace jet::sql
