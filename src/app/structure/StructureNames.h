// Which names modules and fields may have.
#pragma once

#include "app/structure/StructureDraft.h"
#include "jet/Schema.h"

namespace app {

/// Composed and without blanks around it, so that an "é" typed and one of the file are the same.
QString composedName(const QString& text);

/// Whether a module may be called so: 1 to 40 letters, digits, blanks, "_" and "-", a letter first; no name of a table or
/// stored query of the file (but its own), of another module, or of something of the program. Names that end with "-" and
/// the name of another module are refused too: `KeyParent` could not tell their records apart.
bool isModuleName(const QString& name, const DraftModule& module, const DraftModules& all, const jet::Schema& schema);

/// Whether a field may be called so: 1 to 50 characters, none of . ! [ ] ` " | ; and controls; no standard column of
/// module tables, no other field of the module (by name or column), no name of an index that module tables have.
bool isFieldName(const QString& name, const DraftField& field, const DraftModule& module);

/// The column of a field of that name. One whose column was called otherwise keeps it.
QString columnFor(const DraftField& field, const QString& name);

/// `wanted`, or `wanted` with the first number from 2 on that `allowed` accepts.
QString freeName(const QString& wanted, const std::function<bool(const QString&)>& allowed);

} // namespace app
