// Files of a project on the disk: what replaces a file is written beside it and renamed last.
#pragma once

#include <QString>
#include <functional>

namespace app {

/// The backup that optimising leaves: the path with ".hbx" replaced by ".hbx.bak".
QString backupPath(const QString& project);
/// A name beside the project for a file of this process that is not finished.
QString temporaryPath(const QString& project);
/// Whether a path is such a name.
bool isTemporary(const QString& path);
/// A message in which the unfinished files of this process have the names that they were to get: users know no others.
QString withFinalNames(const QString& message);
/// Removes the unfinished files that a process which is no more left beside the project.
void removeStrayFiles(const QString& project);
/// Copies `source` over `target` by way of a temporary file: complete or not at all. Throws
/// jet::Error with a French description. Where `goOn` gives false now and then, it stops (3059).
void copySafely(const QString& source, const QString& target, const std::function<bool()>& goOn = {});
/// Puts a finished file in the place of another (or of none) and flushes the folder. The target must have no
/// journal, which would be played into the new file. Throws jet::Error.
void moveIntoPlace(const QString& finished, const QString& target);
/// The same to a name that nothing has: 3204 when something appeared there meanwhile.
void moveToNewName(const QString& finished, const QString& target);

} // namespace app
