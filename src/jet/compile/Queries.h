// SELECT statements: bound, then written for their place.
#pragma once

#include "jet/Compile.h"
#include "jet/compile/FromClause.h"

namespace jet::compiler {

/// How a query that stands within another statement is written.
struct NestedForm {
    bool byKey = false; ///< Outputs as their keys, for comparison with the key of another value.
    bool keepOrder = false;  ///< With its ORDER BY.
    bool positional = false; ///< Outputs are called c1, c2 …
    bool whole = false;      ///< A statement of its own: groups come in the order of their keys.
};

struct NestedColumn {
    QString name;
    DataType type = DataType::None;
    bool exact = false;     ///< As Emitted::exact.
    bool neverNull = false; ///< As Emitted::neverNull.
};

/// A query within another statement.
struct Nested {
    QString sql;
    std::vector<NestedColumn> columns;
    std::vector<std::vector<int>> keys; ///< As Source::keys.
    bool updatable = true;
};

/// `outer`: the scope whose names it may use, null for none.
Nested compileNested(Context& context, const sql::Query& query, Scope* outer, NestedForm form);

/// A query of its own.
CompiledQuery compileWhole(Context& context, const sql::Query& query);

/// One output column.
struct Output {
    QString name;
    Emitted value;
    SourceSet uses = 0;  ///< As Scope::touched.
    SourceSet names = 0; ///< As Scope::named.
    int source = -1;     ///< Of a plain column: where it comes from.
    int column = -1;
    bool unnamed = false; ///< A plain column without an alias.
};

/// An item of ORDER BY.
struct OrderTerm {
    QString sql; ///< What is sorted by.
    bool descending = false;
    int output = -1; ///< The output of that value, where there is one.
    QString text() const { return descending ? sql + QStringLiteral(" DESC") : sql; }
};

/// A SELECT with its names resolved and its parts written for the store.
class BoundSelect {
public:
    /// `above`: the scope within whose statement it will be written; only keeps names apart.
    BoundSelect(Context& context, const sql::Select& select, Scope* outer,
                const Scope* above = nullptr);

    std::vector<OrderTerm> order(const std::vector<sql::OrderItem>& items);
    /// What the rows come in order of when nothing is asked: the keys of GROUP BY or DISTINCT.
    std::vector<OrderTerm> implicitOrder() const;

    /// The sources whose records the outputs are worked out from.
    SourceSet contributing() const;
    /// What tells the rows of DISTINCTROW apart: the identifiers of the records that give outputs.
    /// Of a derived table all columns, of an inlined one its group.
    QStringList recordKeys() const;
    /// DISTINCTROW has rows to drop: some tables, not all, give outputs, and the others may
    /// multiply.
    bool dropsRows() const { return m_dropsRows; }

    const sql::Select& tree;
    Scope scope;
    Expressions expressions;
    FromClause from;
    bool grouped = false;
    std::vector<Output> outputs;
    QString fromText;
    QString where;
    QStringList groupBy;
    QString having;

private:
    void bindGroups();
    void bindOutputs();
    void bindStar(const sql::Star& star);
    void addOutput(Output output);
    void nameDuplicates();
    OrderTerm orderTerm(const sql::OrderItem& item);
    std::optional<int> aliasFor(const sql::Expr& expression) const;
    void judgeDistinctRow();
    SourceSet giving() const; ///< The sources that outputs name.

    Grouping m_grouping;
    int m_unnamed = 1000;
    bool m_dropsRows = false;
};

/// The clauses of one SELECT of the store.
struct SelectText {
    bool distinct = false;
    QStringList columns;
    QString from;
    QString where;
    QStringList groupBy;
    QString having;
    QStringList orderBy;
    QString limit;
    QString text() const;
};

/// The clauses of a bound SELECT, without columns and order.
SelectText clauses(const BoundSelect& select);
QString named(const QString& value, const QString& name);

} // namespace jet::compiler
