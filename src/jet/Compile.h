// From a syntax tree and a schema to statements of the store.
#pragma once

#include "jet/Schema.h"
#include "jet/sql/Syntax.h"

#include <QStringList>

namespace jet {

/// One output column of a compiled query.
struct OutputColumn {
    QString name;   ///< As the user sees it: alias, column name, "t.c" when two share it, Expr1000 …
    DataType type = DataType::None;
    QString table;  ///< The table and column that it shows unchanged; empty for an expression.
    QString column;
    int source = -1; ///< Which of CompiledQuery::sources it belongs to; -1 for none.
};

/// A table that gives output columns; the record of it behind each row is known.
struct RowSource {
    QString table;  ///< Name of the table.
    QString alias;  ///< Its name within the statement.
};

/// A query ready for the store.
///
/// Where `sources` is not empty, the rows are known by the row identifiers of these tables
/// ("keyed"): `sql` gives first one identifier for each source (NULL for the null side of an
/// outer join), then the outputs; `keySql` gives the identifiers alone, in the same
/// order of rows; `rowSql` gives the outputs of one row, its identifiers bound as ?1 … ?n.
/// Otherwise (DISTINCT, GROUP BY, UNION, TOP, derived tables) only `sql` is there, with the outputs alone.
struct CompiledQuery {
    QString sql;
    QString keySql;
    QString rowSql;
    std::vector<RowSource> sources;
    std::vector<OutputColumn> outputs;
    bool ordered = false;   ///< The text has an ORDER BY.
    bool updatable = false; ///< Keyed, and its base columns may be edited.
};

/// An action as one or more statements of the store, to be run in one transaction. `counted` is the
/// position of the one whose number of changed rows is the number of records affected; the
/// others prepare and clean up (a temporary table).
struct CompiledAction {
    QStringList steps;
    int counted = 0;
    QString table; ///< The table that is changed.
};

using Compiled = std::variant<CompiledQuery, CompiledAction>;

/// Compiles a statement. Throws Error: 3078 unknown table, 3061 unknown names (as missing
/// parameters, which are listed), 3079 ambiguous name, 3464 type mismatch, 3085 unknown function,
/// 3122 not part of an aggregate, 3073 / 3086 not updatable …
Compiled compile(const sql::Statement& statement, const Schema& schema);
CompiledQuery compileQuery(const sql::Query& query, const Schema& schema);

/// The text of an expression for a trigger of the store, in which the column of the rule is
/// written as `columnSql` (for instance NEW."Altitude").
QString compileRule(const sql::Expr& rule, const TableDef& table, const QString& rowPrefix);

/// The text of a default value (a constant expression) as an expression of the store.
QString compileDefault(const sql::Expr& value);

/// Quotes an identifier for the store: "a""b".
QString quoted(const QString& identifier);
/// Quotes a text constant for the store: 'a''b'. NUL characters are refused (3421).
QString quotedText(const QString& text);

} // namespace jet
