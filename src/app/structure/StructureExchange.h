// Structures between projects: written to a file of their own, and modules taken from another one.
#pragma once

#include "app/structure/StructureDraft.h"
#include "jet/Database.h"
#include "platform/Clock.h"
#include "platform/Dialogues.h"

namespace app {

/// Writes the modules to a new project file without records, in the place of one that stands there. It is there whole or
/// not at all. Throws jet::Error.
void exportStructure(const QString& path, const QList<data::ModuleRecord>& modules, const QString& version,
                     const platform::Clock& clock, platform::Dialogues& dialogues);

/// The modules of a project or structure file, as its dictionary has them; the file stays as it is. Throws jet::Error.
QList<data::ModuleRecord> structureOf(const QString& path, const platform::Clock& clock,
                                      platform::Dialogues& dialogues);

/// Takes a module into the draft. One that is there already takes over the fields that the other has, by their columns; its
/// own further fields stay. Of modules of the program and of libraries the user's fields alone are taken.
void takeModule(DraftModules& modules, const data::ModuleRecord& module, const std::function<int()>& nextId);

} // namespace app
