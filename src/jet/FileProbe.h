// What a path is, before the store opens it.
#pragma once

#include <QString>

namespace jet {

/// What looking at a file from outside has told.
struct FileProbe {
    QString path;            ///< Canonical.
    bool writable = false;   ///< The file and its folder may be written.
    bool hasJournal = false; ///< A journal that may have to be played back stands beside it.
};

/// Resolves the path. 3024 absent, 3044 a folder or an impossible path, 3343 not a plain file, 3050 a
/// file of several names. Opens nothing.
FileProbe probeFile(const QString& path);

/// Reads the first bytes: 3343 with what the file is instead of a database of ours, 3041 a newer
/// layout, 3049 truncated, 3051 unreadable. Only while this process has no connection to the file: closing
/// it would drop the locks of that connection.
void checkHeader(const FileProbe& file);

/// Whether the folder of the file lies on another machine.
bool isOnNetwork(const QString& path);

} // namespace jet
