// The syntax tree of the dialect. Built by Parser, read by the binder.
#pragma once

#include <QString>
#include <QVariant>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace jet::sql {

struct Expr;
struct Query;
struct From;
using ExprPtr = std::unique_ptr<Expr>;
using QueryPtr = std::unique_ptr<Query>;
using FromPtr = std::unique_ptr<From>;

enum class UnaryOp { Plus, Minus, Not };
enum class BinaryOp {
    Power, Multiply, Divide, IntDivide, Modulo, Add, Subtract, Concat,
    Equal, NotEqual, Less, Greater, LessEqual, GreaterEqual,
    And, Or, Xor, Equivalent, Implies,
};

/// A constant: Null (invalid), bool, int (fits 32 bits), double, QString, QDateTime.
struct Literal { QVariant value; };
/// A name: `[t].[c]`, `t.c`, `t!c` or `c` alone (then `table` is empty).
struct ColumnRef { QString table; QString column; };
/// `*` or `t.*`; stands only in a select list and in Count(*).
struct Star { QString table; };
struct Unary { UnaryOp op; ExprPtr operand; };
struct Binary { BinaryOp op; ExprPtr left, right; };
struct Like { ExprPtr operand, pattern; bool negated = false; };
struct Between { ExprPtr operand, low, high; bool negated = false; };
struct InList { ExprPtr operand; std::vector<ExprPtr> items; bool negated = false; };
struct InQuery { ExprPtr operand; QueryPtr query; bool negated = false; };
struct IsNull { ExprPtr operand; bool negated = false; }; ///< `x Is [Not] Null`
struct Exists { QueryPtr query; };
struct ScalarQuery { QueryPtr query; };
/// A function: `name` in lower case and without the closing "$".
struct Call { QString name; std::vector<ExprPtr> arguments; bool distinct = false; };

struct Expr {
    int place = 0; ///< Offset of its first character in the statement text.
    std::variant<Literal, ColumnRef, Star, Unary, Binary, Like, Between, InList, InQuery, IsNull,
                 Exists, ScalarQuery, Call>
        node;
};

/// A table or stored query by name; `alias` empty when none was given.
struct NamedSource { QString name; QString alias; };
struct DerivedSource { QueryPtr query; QString alias; };
enum class JoinKind { Inner, Left, Right };
struct Join { JoinKind kind = JoinKind::Inner; FromPtr left, right; ExprPtr on; };

struct From {
    int place = 0;
    std::variant<NamedSource, DerivedSource, Join> node;
};

struct OutputItem { ExprPtr expression; QString alias; }; ///< `alias` empty when none.
struct OrderItem { ExprPtr expression; bool descending = false; };

enum class Predicate { All, Distinct, DistinctRow };

struct Select {
    Predicate predicate = Predicate::All;
    std::optional<int> top;
    bool topPercent = false;
    std::vector<OutputItem> outputs;
    std::vector<FromPtr> from; ///< Comma list; usually one. Empty for `SELECT 1`.
    ExprPtr where;             ///< May be null, as the two below.
    std::vector<ExprPtr> groupBy;
    ExprPtr having;
};

/// One select, or a union of several; the order belongs to the whole.
struct Query {
    std::vector<Select> selects;
    std::vector<bool> unionAll; ///< One less than selects: the link before each further one.
    std::vector<OrderItem> orderBy;
};

struct Insert {
    QString table;
    int tablePlace = 0;
    std::vector<QString> columns; ///< Empty: all columns in order.
    std::vector<ExprPtr> values;  ///< Used when `query` is null.
    QueryPtr query;
};

struct Assignment { ColumnRef target; int place = 0; ExprPtr value; };
struct Update { FromPtr from; std::vector<Assignment> assignments; ExprPtr where; bool distinctRow = false; };
struct Delete { QString target; FromPtr from; ExprPtr where; bool distinctRow = false; }; ///< `DELETE t.*`: target t.

struct Statement {
    std::variant<Query, Insert, Update, Delete> node;
};

} // namespace jet::sql
