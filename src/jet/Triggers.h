// The rules of columns and relations as triggers of the store.
//
// Triggers rather than constraints of the table: a rule can be added, changed or dropped in a
// transaction without writing the table anew, it can say in French what is wrong, and the file keeps it
// whoever opens it, even where foreign keys are not enforced. They use functions of SQLite alone, so that
// its shell can still write; only a validation rule, or a relation on text, may need one of ours.
#pragma once

#include "jet/Schema.h"

namespace jet {

/// Statements that make the rules of the columns: one trigger before an insertion and one before a
/// change. None when no column has a rule. 3320 for a validation rule that is not understood.
QStringList columnRules(const TableDef& table);
/// Statements that drop them, whether they are there or not.
QStringList dropColumnRules(const QString& table);

/// Statements that make the rules of a relation: a foreign key must have its record (3201), what
/// happens to foreign records when theirs goes or changes its key (3200 or a cascade).
QStringList relationRules(const Relation& relation, const TableDef& primary, const TableDef& foreign);
QStringList dropRelationRules(const QString& relation);

/// "a.p = b.f AND …" for the columns of a relation, the prefixes put before the column names
/// (`NEW.`, `"Table".`); text by its sort key.
QString relationMatch(const Relation& relation, const TableDef& primary, const QString& primaryPrefix,
                      const QString& foreignPrefix);
/// Foreign rows with a whole key and no primary row, as a condition on the alias `f`.
QString orphanCondition(const Relation& relation, const TableDef& primary);
/// What identity and order of a column go by: the sort key for text.
QString keySql(const Field& field, const QString& prefix = {});

} // namespace jet
