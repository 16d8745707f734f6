// Between what an add-in says of its module and what the dictionary keeps.
#pragma once

#include "addin/gtAddin.h"
#include "data/Modules.h"

namespace app {

/// The fields of the dictionary as an add-in gives them, with their vocabularies, not bound to a record.
addin::TabEditions fieldsOf(const data::ModuleRecord& module);

/// The dictionary rows of a module served by `provider`. A link field is named "ID " and the linked module, which is
/// its provider. Throws jet::Error where the names cannot be those of a table and its columns, or of one of the
/// program's own tables.
data::ModuleRecord definitionOf(addin::gtAddin& addin, const QString& provider);

} // namespace app
