// The FROM clause: its sources, its joins, and what the joins tell about the rows.
#pragma once

#include "jet/compile/Expressions.h"

namespace jet::compiler {

/// `column` of `source` equals an expression that depends on `other`; this holds for every row in
/// which the source is there at all.
struct Equality {
    int source;
    int column;
    SourceSet other;
    const sql::Expr* expression; ///< The other side.
};

/// The sources of a FROM clause and the tree of their joins.
class FromClause {
public:
    FromClause(Context& context, Scope& scope) : m_context(context), m_scope(scope) {}

    /// Adds the sources to the scope. 3078 unknown table, 3102 a query that contains itself.
    void build(const std::vector<sql::FromPtr>& items);
    void build(const sql::From& item);

    /// Turns outer joins whose null side cannot pass `where` (may be null) into inner ones, and
    /// notes which sources remain on a null side. To be called once, before text.
    void reduce(const sql::Expr* where);

    QString text(Expressions& expressions);

    /// Whether the rows of `known` and the condition leave at most one row of each other source.
    bool determines(SourceSet known, const sql::Expr* where, Expressions& expressions) const;
    /// The equalities of ON and WHERE.
    std::vector<Equality> equalities(const sql::Expr* where, Expressions& expressions) const;

    /// Where the clause is a chain of left joins behind `target`, each giving at most one row, the
    /// columns of the others become sub-selects, unless one is named more than twice in `named` and
    /// the joins. False, and nothing done, where that cannot be. `fixed` tells which columns keep
    /// their values while the target is changed.
    bool lookUpOthers(int target, const std::vector<const sql::Expr*>& named,
                      Expressions& expressions,
                      const std::function<bool(const Source&, const SourceColumn&)>& fixed);

    /// One table, or a chain of left joins behind one: rows come in the order of that table.
    bool followsFirst() const;
    bool onlyInnerJoins() const;
    /// The conditions of all joins; meaningful where all are inner.
    std::vector<const sql::Expr*> conditions() const;
    /// The sources that stand in the clause (inlined ones do not).
    SourceSet standing() const;

private:
    struct Node {
        sql::JoinKind kind = sql::JoinKind::Inner;
        int left = -1, right = -1; ///< Nodes; -1 for a source.
        int source = -1;
        const sql::Expr* on = nullptr;
        int first = 0, last = 0; ///< The sources below it.
        SourceSet set() const;
    };

    int add(const sql::From& item);
    int add(const sql::NamedSource& item);
    int add(const sql::DerivedSource& item);
    int add(const sql::Join& item);
    int addQuery(const sql::Query& query, const QString& alias);
    int leaf(int source);
    int join(sql::JoinKind kind, int left, int right, const sql::Expr* on);
    bool inlineGrouped(const sql::Join& item, int left, int right, const sql::Query& query);

    void reduce(int node, SourceSet rejected);
    void markNullable(int node, bool nullable);
    QString text(int node, Expressions& expressions);
    QString joinCondition(const sql::Expr& on, Expressions& expressions) const;
    void collect(int node, Expressions& expressions, std::vector<Equality>& out) const;
    void collect(const sql::Expr& condition, SourceSet determinable, Expressions& expressions,
                 std::vector<Equality>& out) const;
    bool inlined(int node) const;
    std::vector<int> leftChain(int target) const;
    bool namedSeldom(int source, const std::vector<const sql::Expr*>& named,
                     const std::function<bool(const Source&, const SourceColumn&)>& fixed) const;

    Context& m_context;
    Scope& m_scope;
    std::vector<Node> m_nodes;
    int m_root = -1;
};

/// The sources of the scope whose null-extended rows cannot meet the condition.
SourceSet nullRejected(const sql::Expr& condition, const Scope& scope);

} // namespace jet::compiler
