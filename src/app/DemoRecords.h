// The individuals of the demo project with their determinations, images and measures.
#pragma once

#include "app/DemoReference.h"

namespace app {

/// Codes of the herbaria that the individuals name, sorted.
QStringList demoHerbaria(const DemoData& data);

/// "RM-139984, [RB], MONT- 22915" names the herbaria "RM", "RB" and "MONT".
QStringList herbariaOf(const QString& catalogue);

/// Writes all individuals of the vocabulary with their sub-records.
void writeDemoRecords(jet::Database& database, const DemoData& data, const DemoReference& reference,
                      const QString& stamp, const platform::Progression& progression);

} // namespace app
