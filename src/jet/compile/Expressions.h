// From expressions of the dialect to expressions of the store, with their types.
#pragma once

#include "jet/compile/Context.h"
#include "jet/compile/Scope.h"

namespace jet::compiler {

/// How tightly the text of an expression of the store binds: what binds less than its place asks is
/// put into parentheses.
enum class Binding { Atom, Comparison, And, Or };

/// An expression of the store.
struct Emitted {
    QString sql;
    DataType type = DataType::None;
    Binding binding = Binding::Atom;
    int members = 1; ///< Of a chain of AND or OR.
    bool logical =
        false; ///< A condition of the store: 1, 0 or NULL, where the dialect has -1, 0, Null.
    bool neverNull = false;
    bool exact = false;    ///< Within the range of its type: stored or written, not computed.
    bool constant = false; ///< A literal, whose value is `literal`.
    QVariant literal;
    const SourceColumn* column = nullptr; ///< A column as it is.

    QString atom() const; ///< Its value, fit for any place: -1 and 0 for a condition.
    QString condition(Binding least = Binding::Or) const; ///< As a condition, binding at least so.
    bool isNullLiteral() const { return constant && !literal.isValid(); }
};

/// What comparison, order and uniqueness go by: jet_key(x) for text and for what may be text.
QString keyOf(const Emitted& value);
QString keyOf(const QString& sql, DataType type);
inline bool mayBeText(DataType type)
{
    return isText(type) || type == DataType::None;
}

/// The type of an expression that gives either.
DataType commonType(DataType a, DataType b);

/// The value as a column of the type takes it; converted only where the types differ.
QString assigned(const Emitted& value, DataType target);

/// What the expressions of a grouped SELECT may be made of.
struct Grouping {
    QStringList keys;  ///< The grouped expressions, as written for the store.
    QStringList loose; ///< Columns met outside of aggregates and keys, for the message.
    bool inAggregate = false;
};

/// Where an expression stands.
enum class Place {
    Value,
    Filter, ///< A condition that rows must meet: ranges that only help an index are worth adding.
};

/// Compiles the expressions of one SELECT, or of an action.
class Expressions {
public:
    Expressions(Context& context, Scope& scope) : m_context(context), m_scope(scope) {}

    Emitted compile(const sql::Expr& expression, Place place = Place::Value);
    /// As a condition of WHERE, ON or HAVING.
    QString condition(const sql::Expr& expression, Binding least = Binding::Or);

    /// While set, columns must be part of the keys or of an aggregate: see requireGrouped.
    Grouping* grouping = nullptr;
    bool aggregatesAllowed = false;
    /// Outputs, groups or order are compiled: a cell that cannot be worked out is Null.
    bool inOutputs = false;
    /// A range of an indexed column was asked for: rows may come in the order of that index.
    bool rangesAsked = false;
    /// 3122 when a column was met that is neither. Empties the list.
    void requireGrouped();

    Context& context() { return m_context; }
    Scope& scope() { return m_scope; }

    /// Two values compared: used for the conditions that the compiler adds itself, too.
    Emitted compare(sql::BinaryOp op, const Emitted& a, const Emitted& b, const sql::Expr& whole);

private:
    Emitted node(const sql::Literal& e, const sql::Expr& whole, Place place);
    Emitted node(const sql::ColumnRef& e, const sql::Expr& whole, Place place);
    Emitted node(const sql::Star& e, const sql::Expr& whole, Place place);
    Emitted node(const sql::Unary& e, const sql::Expr& whole, Place place);
    Emitted node(const sql::Binary& e, const sql::Expr& whole, Place place);
    Emitted node(const sql::Like& e, const sql::Expr& whole, Place place);
    Emitted node(const sql::Between& e, const sql::Expr& whole, Place place);
    Emitted node(const sql::InList& e, const sql::Expr& whole, Place place);
    Emitted node(const sql::InQuery& e, const sql::Expr& whole, Place place);
    Emitted node(const sql::IsNull& e, const sql::Expr& whole, Place place);
    Emitted node(const sql::Exists& e, const sql::Expr& whole, Place place);
    Emitted node(const sql::ScalarQuery& e, const sql::Expr& whole, Place place);
    Emitted node(const sql::Call& e, const sql::Expr& whole, Place place);

    Emitted column(Scope& scope, const Found& found, const sql::Expr& whole);
    Emitted logicalOperator(const sql::Binary& e, Place place);
    Emitted arithmetic(sql::BinaryOp op, const Emitted& a, const Emitted& b,
                       const sql::Expr& whole);
    QString divisor(const QString& sql, const Emitted& value) const;
    Emitted add(const Emitted& a, const Emitted& b, const sql::Expr& whole);
    Emitted truthTest(sql::BinaryOp op, const Emitted& x, bool truth);
    QString likeRange(const Emitted& operand, const sql::Expr& pattern);
    void noteRange(const Emitted& operand, Place place);

    // Functions.cpp
    Emitted aggregate(const sql::Call& call, const sql::Expr& whole);
    Emitted function(const sql::Call& call, const sql::Expr& whole);
    std::optional<Emitted> special(const sql::Call& call, const sql::Expr& whole);
    Emitted choice(const std::vector<std::pair<QString, Emitted>>& cases, const Emitted& otherwise);

    Context& m_context;
    Scope& m_scope;
};

/// A condition of the store.
Emitted logical(const QString& sql, Binding binding = Binding::Comparison);
/// A value of the store.
Emitted plain(const QString& sql, DataType type, bool neverNull = false);

/// Whether an aggregate of this SELECT stands in the expression (those of sub-selects are their
/// own).
bool hasAggregate(const sql::Expr& expression);
bool isAggregateName(const QString& name);
/// Whether a sub-select stands in the expression.
bool hasSubquery(const sql::Expr& expression);
/// Calls `visit` for the direct parts of the expression that belong to the same SELECT.
void forEachPart(const sql::Expr& expression, const std::function<void(const sql::Expr&)>& visit);

} // namespace jet::compiler
