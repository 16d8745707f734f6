// Loading and scaling of any picture file.
#pragma once

#include "jet/Error.h"

#include <QColor>
#include <QImage>
#include <QString>

namespace images {

/// A picture scaled to fit `target` pixels on its longer side, drawn centred with high quality on the background. A
/// square result has both sides `target`. Honours the orientation that the camera wrote. Throws jet::Error (481) with
/// "Erreur de chargement de l'image " and the file name, source "GDI+ Module". Large pictures are decoded at
/// reduced size where the decoder can.
QImage loadPicture(const QString& path, int target, bool square = false, const QColor& background = Qt::white);

/// The size that a picture of that size takes when it is fitted into `target`.
QSize fittedSize(const QSize& picture, int target);

} // namespace images
