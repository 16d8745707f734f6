// Compacting with a say of the user: what Database::Compact does, in steps of its own.
#pragma once

#include "jet/Database.h"

#include <QString>
#include <functional>

namespace jet {

/// Reads every page and every index of the open file; 3049 when something is damaged.
void checkPages(Database& database);

/// Writes a compacted copy of the closed file `source` to `target` (3204 when it exists), checked and flushed. `source`
/// itself is taken to be sound (checkPages). Where `goOn` gives false now and then, it stops (3059) and leaves nothing.
void compactSound(const QString& source, const QString& target, const std::function<bool()>& goOn = {},
                  const OpenOptions& options = {});

} // namespace jet
