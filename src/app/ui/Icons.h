// Icons by the names that the module tree uses.
#pragma once

#include "data/Modules.h"

#include <QIcon>

namespace app {

/// The icon of a name ("Database", "Requête", "Lstaxons", a module name …); that of a plain module for a
/// name it does not know.
QIcon iconNamed(const QString& name);
/// The same, with the pictures that modules bring along ("module:" and the module name).
QIcon iconNamed(const QString& name, const QList<data::ModuleRecord>& modules);
/// The icon of the program.
QIcon programIcon();
/// An icon of the desktop's theme.
QIcon themeIcon(const QString& name);
/// Chooses the light or the dark variant of the icon theme after the palette, unless the desktop has a theme.
void followPalette();

} // namespace app
