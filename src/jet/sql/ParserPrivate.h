// The recursive-descent parser behind Parser.h; one object reads one text.
#pragma once

#include "jet/sql/Lexer.h"
#include "jet/sql/Syntax.h"

#include <QString>
#include <optional>
#include <vector>

namespace jet::sql {

/// What a production gives: the tree and its height. The height is counted
/// because whoever walks or destroys a tree recurses as deep as it is high.
template<typename Pointer> struct Grown {
    Pointer tree;
    int height = 1;
};
using GrownExpr = Grown<ExprPtr>;
using GrownQuery = Grown<QueryPtr>;
using GrownFrom = Grown<FromPtr>;

/// How tightly operators bind, from the loosest to the tightest.
enum class Binding {
    Imp,
    Eqv,
    Or,
    Xor,
    And,
    Not,
    Comparison,
    Concat,
    Additive,
    Modulo,
    IntDivide,
    Multiplicative,
    Power,
    Unary,
};

class Parser {
public:
    explicit Parser(QStringView text);

    Statement statement();
    ExprPtr wholeExpression();
    ExprPtr wholeRule(const QString& column);

private:
    // Reading tokens (Parser.cpp)
    const Token& peek(int ahead = 0) const;
    const Token& next();
    bool at(TokenKind kind, int ahead = 0) const { return peek(ahead).kind == kind; }
    bool at(Keyword keyword, int ahead = 0) const { return peek(ahead).keyword == keyword; }
    bool accept(TokenKind kind);
    bool accept(Keyword keyword);
    QStringView textOfToken(const Token& token) const;
    bool closesWithMark(const Token& token) const;
    bool atName() const;
    bool atPlainName() const;
    bool atMember() const;
    QString takeName();

    // Refusing (Parser.cpp)
    QString excerpt() const;
    [[noreturn]] void refuse(int number, const QString& reason) const;
    [[noreturn]] void refuse(const QString& reason) const { refuse(m_clause, reason); }
    void expect(TokenKind kind, const QString& mark);
    void expect(Keyword keyword, const QString& word);
    QString expectName(const QString& what);
    void expectEnd() const;
    int higher(int height) const;

    // Statements (Parser.cpp)
    Query selectStatement();
    Insert insertStatement();
    Update updateStatement();
    Delete deleteStatement();
    QString insertColumn();
    void insertRows(Insert& insert);
    Assignment assignment();
    QString deleteTarget();

    // Queries (ParserQueries.cpp)
    GrownQuery query();
    GrownQuery queryBeforeClose();
    int selectInUnion(Select& result);
    int select(Select& result);
    void predicate(Select& result);
    void top(Select& result);
    int outputs(Select& result);
    GrownExpr output();
    int fromList(Select& result);
    int grouping(Select& result);
    int order(Query& result);
    int condition(ExprPtr& target);
    GrownFrom source();
    GrownFrom simpleSource();
    GrownFrom sourceInParentheses();
    std::optional<JoinKind> joinKind();
    QString alias();

    // Expressions (ParserExpressions.cpp)
    GrownExpr expression();
    GrownExpr binary(Binding loosest);
    std::optional<BinaryOp> operatorAt(Binding level) const;
    GrownExpr chain(GrownExpr left, Binding level);
    GrownExpr associativeChain(GrownExpr first, Binding level);
    GrownExpr balanced(BinaryOp op, std::vector<GrownExpr>& terms, size_t from, size_t to) const;
    GrownExpr join(BinaryOp op, GrownExpr left, GrownExpr right) const;
    GrownExpr comparisons(GrownExpr left);
    bool atNegatedTest() const;
    GrownExpr test(GrownExpr left, bool negated);
    GrownExpr isNull(GrownExpr left);
    GrownExpr like(GrownExpr left, bool negated);
    GrownExpr between(GrownExpr left, bool negated);
    GrownExpr in(GrownExpr left, bool negated);
    GrownExpr prefixed(Binding loosest);
    bool ruleStandsForColumn() const;
    GrownExpr primary();
    GrownExpr word();
    GrownExpr literal(QVariant value);
    GrownExpr number();
    GrownExpr date();
    GrownExpr parentheses();
    GrownExpr exists();
    GrownExpr call();
    int arguments(Call& result);
    int expressions(std::vector<ExprPtr>& result);
    GrownExpr column();

    QStringView m_text;
    std::vector<Token> m_tokens;
    size_t m_at = 0;
    int m_depth = 0;
    int m_clause = 3129;                 ///< The error number of the clause that is being read.
    std::optional<QString> m_ruleColumn; ///< Set while missing left operands stand for it.

    friend class Deeper;
};

/// Counts one level of nesting while it lives; refuses the level too many.
class Deeper {
public:
    explicit Deeper(Parser& parser);
    ~Deeper() { --m_parser.m_depth; }
    Deeper(const Deeper&) = delete;
    Deeper& operator=(const Deeper&) = delete;

private:
    Parser& m_parser;
};

} // namespace jet::sql
