// The demo project: real records under open licences, or as many invented ones as wanted.
#pragma once

#include "app/Session.h"

namespace app {

struct DemoOptions {
    /// 0 builds the demo of real records; above, so many invented individuals from the same vocabulary, with three
    /// sub-records each on average.
    int individus = 0;
    /// At least so many rows in `Taxons`; what the real ones lack is invented.
    int taxons = 0;
    /// The same seed and options give the same records.
    quint64 graine = 1;
};

/// Creates the project `path` by the operations of the program and leaves it open.
///
/// It is built under an unfinished name beside `path` and renamed at the end. The pictures go into the folder
/// "<name>-images" beside it, which the project declares as its image folder. False when it failed (said to the
/// user) or was cancelled; then neither the file nor the pictures are left, and what was there before is as it was.
bool buildDemo(Session& session, const QString& path, platform::Progression& progression,
               const DemoOptions& options = {});

/// The folder of the pictures of the demo project `path`.
QString demoImageFolder(const QString& path);

} // namespace app
