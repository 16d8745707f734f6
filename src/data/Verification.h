// A project's own rules, checked.
#pragma once

#include "data/Dictionary.h"
#include "jet/Database.h"

namespace data {

/// Findings in French, empty when the project is sound: the file itself (integrity, rules, relations), tables of
/// modules, parents of records, link columns, ranks of taxa, path codes of localities.
QStringList verify(jet::Database& database, const QList<ModuleRecord>& modules);

} // namespace data
