// One row of criteria as a condition of the dialect.
#pragma once

#include "query/Criteria.h"
#include "query/Structure.h"

#include <functional>

namespace query {

/// A row that cannot be a condition; the text is what its field shows.
struct RowRefused {
    QString text;
};

/// Gives the path code of a place; empty when there is none.
using CodeRegion = std::function<QString(qint32)>;

/// The SQL operator for what a row holds: an operator, or one of the labels of the field's type.
QString operatorOf(const Node& field, const QString& text);

/// One value in the SQL form of a type: a number with a decimal point, TRUE or FALSE, else a quoted text.
/// Throws RowRefused for what is no number.
QString valueSql(int ctype, const QString& value, const editing::EditingContext& context);

/// The condition of a row; empty for a row without a field. Throws RowRefused.
QString conditionSql(const Criterion& row, const Structure& structure, const CodeRegion& codeRegion);

/// The joins that the condition needs.
QStringList conditionJoins(const Criterion& row, const Structure& structure);

/// " ';' &field &';' LIKE '*;item;*'": the list stored in the field holds the item.
QString listTest(const QString& field, const QString& item);

} // namespace query
