// The properties of a table and its columns, which stand in one long value of the system table.
#pragma once

#include "jet/access/TableDefinition.h"

#include <QVariant>

namespace jet::access {

/// Properties by what they belong to (the key of the column's name; the table itself: empty), then by their names as
/// the file writes them.
using Properties = QHash<QString, QHash<QString, QVariant>>;

/// Takes the value apart. What does not hold together ends it: what was read so far is given, `damaged` set.
/// Values of kinds that nobody asks for are left out.
Properties readProperties(const PageFile& file, const QByteArray& value, bool* damaged = nullptr);

} // namespace jet::access
