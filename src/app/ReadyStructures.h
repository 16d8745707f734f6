// Structures that a new project may start with.
#pragma once

#include "data/Modules.h"

namespace app {

/// The modules of a kind of collection, besides those that every project has.
struct ReadyStructure {
    QString name;
    QString description;
    QList<data::ModuleRecord> modules;
};

/// The structures of a folder ("*.json", structures/README.md tells their form), in their order. A file that cannot be
/// understood is left out and the log says why.
QList<ReadyStructure> readyStructures(const QString& folder);

} // namespace app
