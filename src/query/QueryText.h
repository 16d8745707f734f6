// A query as the property store keeps it.
#pragma once

#include "query/QueryDefinition.h"

namespace query {

/// Lines end with CR LF, items are separated by TAB. First the mode; then one line a column
/// ("colonne", "=" and the alias, the order, the field) and one a criterion ("critère", its number, the link, the
/// operator, "=" and the value, the field). A field is its permanent path and, for it and every link field above
/// it, the module, ".", and the column, by which a removed module or field is found. A criterion is numbered under its parent
/// ("2.1"). In free texts a backslash stands before t, r, n (the control characters), ">" (the path separator) and itself.
QString textOf(const QueryDefinition& query, const Structure& structure);

/// Reads it back, with the fields as they are called now. A field that is no more keeps its stored name. Children of a
/// criterion that was removed stay together in its place.
QueryDefinition definitionFrom(const QString& text, const QString& module, const Structure& structure);

} // namespace query
