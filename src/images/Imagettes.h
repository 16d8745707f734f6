// The thumbnails of a whole project at once.
#pragma once

#include "data/ModuleTable.h"
#include "images/ThumbnailCache.h"
#include "platform/Progression.h"

#include <QStringList>

namespace images {

/// The picture files that the records of the modules name, each once. Throws jet::Error.
QStringList projectPictures(jet::Database& database, const QList<data::ModuleRecord>& modules);

struct FillReport {
    int made = 0;
    int kept = 0;          ///< Were there, and of the same picture.
    QStringList failures;  ///< One sentence for each picture that has none.
    bool cancelled = false;
};

/// Makes what the cache lacks, on every processor, with a step for each hundredth. Stops where the user wants to; what was
/// made by then is kept. Throws jet::Error when the cache refuses.
FillReport fillThumbnails(ThumbnailCache& cache, const QStringList& names, const QStringList& folders,
                          platform::Progression& progression);

} // namespace images
