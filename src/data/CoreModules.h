// The modules that every new project starts with.
#pragma once

#include "data/Modules.h"

namespace data {

/// Provider of the modules that are part of the program.
inline const QString providerPrivate = QStringLiteral("Private");

ModuleRecord coreIndividus();
ModuleRecord coreDéterminations();
/// A user module from the start, so that its fields can be extended.
ModuleRecord coreImages();

} // namespace data
