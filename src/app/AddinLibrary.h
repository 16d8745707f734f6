// The libraries of the add-ins folder.
#pragma once

#include "addin/gtAddin.h"

#include <QStringList>

namespace app {

/// Paths of the libraries of a folder, by file name. Anything with the system's ending for libraries counts.
QStringList addinFiles(const QString& folder);

/// The name under which a library provides its module: the file name without folder, "lib" and ending, so that a
/// project is served alike on every system.
QString addinName(const QString& file);

/// Why a library that was made for other headers is not loaded, in French; read from the file without running
/// anything of it. Empty when nothing speaks against it.
QString addinRefusal(const QString& file);
/// The same sentence for a library of that version.
QString addinRefusal(const QString& file, const QString& version);

/// Loads a library and gives its entry object, which lives until the program ends: texts of a library may still be in
/// use when its project is closed. Throws jet::Error: 48 not loadable, 429 not an add-in; passes on what the library
/// itself throws.
addin::Plugin& loadAddin(const QString& file);

} // namespace app
