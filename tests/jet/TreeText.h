// Syntax trees as short texts, for tests to compare.
#pragma once

#include "jet/sql/Syntax.h"

/// `(= [t].[c] 'x')`, `(call iif …)`: operators and parts in front, names in brackets.
QString treeText(const jet::sql::Expr& expression);
/// `(select [a] as [b] (from [t]) (where …))`, `(update …)`, `(insert …)`, `(delete …)`.
QString treeText(const jet::sql::Statement& statement);
/// Levels of an expression, one for a constant.
int treeHeight(const jet::sql::Expr& expression);
