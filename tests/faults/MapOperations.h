// What is done to maps and with their points.
#pragma once

#include "Operation.h"

namespace faults {

#ifdef HERBORA_MAPS
const std::vector<Operation>& mapOperations();
#else
inline std::vector<Operation> mapOperations()
{
    return {};
}
#endif

} // namespace faults
