// The records of an individual on paper.
#pragma once

#include "editing/IndividualEditing.h"
#include "platform/ui/RecordPrinter.h"

namespace editing {

/// The individual and what hangs under it, in the order of the tree, with the values as they stand in the forms.
platform::PrintTable individualTable(IndividualEditing& editing);

} // namespace editing
