// The properties of a table and its columns, which stand in one long value of the system table.
#pragma once

#include "jet/access/TableDefinition.h"

#include <QVariant>

namespace jet::access {

/// Properties by the name of what they belong to (the table itself: empty), and their own. Names are keys (nameKey).
using Properties = QHash<QString, QHash<QString, QVariant>>;

/// Takes the value apart. What does not hold together ends it: what was read so far is given, `damaged` set.
/// Values of kinds that nobody asks for are left out.
Properties readProperties(const PageFile& file, const QByteArray& value, bool* damaged = nullptr);

} // namespace jet::access
