// Tables imported into a project.
#pragma once

#include "Operation.h"

namespace faults {

/// Rows of the table of operations.
const std::vector<Operation>& importOperations();

} // namespace faults
