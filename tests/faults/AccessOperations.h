// Making a project of an old Access file, under faults.
#pragma once

#include "Operation.h"

namespace faults {

std::vector<Operation> accessOperations();

} // namespace faults
