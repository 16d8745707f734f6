// The table of a module, built from its dictionary rows.
#pragma once

#include "data/Modules.h"
#include "jet/Database.h"
#include "platform/Dialogues.h"

namespace data {

/// Creates or completes the table of a module: own key, fields, `ID Individus`, standard columns, relation to
/// `Individus` with cascading delete, indexes. What exists already is left in peace; an index that stands with the
/// same definition is not rebuilt. False when the module could not be opened (said in a critical box);
/// a unique rule that the data break is said and left out.
bool buildModuleTable(jet::Database& database, const ModuleRecord& module,
                      platform::Dialogues& dialogues);

} // namespace data
