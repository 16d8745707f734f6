// The dictionary of a project that was made by an older version of the program, before it is opened the first time.
#pragma once

#include "jet/Database.h"

namespace app {

/// Gives the core tables of an older project what they lack beside today's: columns, default values, empty texts
/// allowed, indexes. What the rows do not allow is said and left.
QStringList alignCoreTables(jet::Database& database);

/// Keeps what the opening would purge: modules whose provider is neither built in nor among `libraries` become the
/// user's own, rows marked for deletion lose the mark, fields of modules that the dictionary does not list are not
/// asked for any more. Says what was done, in sentences; nothing where there is no dictionary.
QStringList adoptModules(jet::Database& database, const QStringList& libraries);

} // namespace app
