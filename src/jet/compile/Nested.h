// How the parts of Nested.cpp and Queries.cpp meet.
#pragma once

#include "jet/compile/Queries.h"

namespace jet::compiler {

Nested nestedSelect(BoundSelect& select, const std::vector<sql::OrderItem>& orderBy,
                    NestedForm form);
Nested nestedUnion(Context& context, const sql::Query& query, Scope* outer, NestedForm form);

} // namespace jet::compiler
