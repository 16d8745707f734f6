// Pictures of the main window, for the manual and for machines without a screen.
#pragma once

#include <QPalette>
#include <QString>

namespace app {

/// The dark colours of the pictures.
QPalette darkPalette();

/// Opens `file` and writes pictures into `folder`: the start page, the project, its main tables, in light
/// and dark. Prints their paths; what the program would say in boxes goes to standard error. Gives the exit status.
int takeCaptures(const QString& folder, const QString& file, const QString& applicationFolder);

} // namespace app
