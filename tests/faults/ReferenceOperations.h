// The reference lists under trial: many places moved, a checklist read, a genus renamed.
#pragma once

#include "Operation.h"

namespace faults {

/// Rows of the table of operations.
std::vector<Operation> referenceOperations();

} // namespace faults
