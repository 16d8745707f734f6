// INSERT, UPDATE and DELETE.
#pragma once

#include "jet/Compile.h"
#include "jet/compile/Context.h"

namespace jet::compiler {

CompiledAction compileInsert(Context& context, const sql::Insert& insert);
/// A target on the null side of an outer join is refused (3073), unless WHERE leaves no row
/// without a partner: there is no record to change.
CompiledAction compileUpdate(Context& context, const sql::Update& update);
CompiledAction compileDelete(Context& context, const sql::Delete& remove);

} // namespace jet::compiler
