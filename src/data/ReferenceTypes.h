// Fields that hold the identifier of a row of a reference list.
#pragma once

#include "data/FieldType.h"

namespace data {

inline bool isReference(int type)
{
    return type == Botaniste || type == Localité || type == Taxon;
}

} // namespace data
