// Tables and indexes as statements of the store, and what their definitions may be.
#pragma once

#include "jet/Schema.h"
#include "jet/Store.h"

namespace jet {

/// 3125 for a name that no object may have.
void checkName(const QString& name);
/// 3125, and 3219 for an AutoNumber that is not a Long.
void checkField(const Field& field);
/// 3264 without fields, 3409 for an unknown or repeated one, 3283 for a second primary key, 3284 for a
/// name that is taken.
void checkIndex(const TableDef& table, const Index& index);
/// The whole definition: names, 3264, 3191 fields, 3190 too many, indexes.
void checkTable(const TableDef& table);
/// As it is kept: a primary key is unique, a text has a width.
Index normalised(Index index);
Field normalised(Field field);
bool sameDefinition(const Index& a, const Index& b);

/// The default value as the store takes it: a constant of the column's type, or an expression when it depends
/// on the moment; empty for none. 3320 when it is not understood or does not suit the type.
QString defaultSql(Store& store, const Field& field);
/// Whether defaultSql gives a constant, which a column added to a table with rows must have.
bool isConstantDefault(const QString& sql);

/// A column as it stands in CREATE TABLE and ADD COLUMN.
QString columnSql(const Field& field, const QString& defaultSql);
QString createTableSql(Store& store, const TableDef& table, const QString& sqlName);
QString createIndexSql(const TableDef& table, const Index& index);

} // namespace jet
