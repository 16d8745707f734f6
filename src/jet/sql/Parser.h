// From a statement text of the dialect to its syntax tree.
#pragma once

#include "jet/sql/Syntax.h"

namespace jet::sql {

/// Parses one statement; a closing ";" is allowed. Throws jet::Error with 3075
/// (expression), 3131 (FROM), 3134 (INSERT), 3138 (ORDER BY), 3141 (SELECT), 3144 (UPDATE),
/// 3142 (text after the ";") or 3129 (no statement), whose French description quotes the text at
/// the place of the fault; the whole text is the error's source. Trees higher than 200 levels and
/// texts longer than 1,000,000 characters are refused (3360); long chains of And, Or and & count
/// little, since they become balanced trees.
Statement parseStatement(QStringView text);

/// Parses one expression (a default value, a criterion).
ExprPtr parseExpression(QStringView text);

/// Parses a validation rule of the column: an expression, or one that starts
/// with an operator (`>0`, `Like "a*"`, `Is Null Or >3`), whose missing left
/// operands then stand for the column.
ExprPtr parseRule(QStringView text, const QString& column);

} // namespace jet::sql
