// The user module of the demo project, its vocabularies and its stored objects.
#pragma once

#include "app/Session.h"

namespace app {

/// "Mesures": a user module with a field of every type.
data::ModuleRecord demoMeasuresModule();

/// Adds the module to the open project and the vocabulary of `Herbier`.
void writeDemoStructure(Session& session, const QStringList& herbaria);

/// Tree measures for the example add-in, from those of "Mesures". Nothing where its library is not connected.
void writeDemoTrees(Session& session, const QString& stamp);

/// A few queries and an input model, and the image folder.
void writeDemoObjects(Session& session, const QString& imageFolder);

} // namespace app
