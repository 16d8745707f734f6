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

/// A picture to be looked at, upright.
struct ViewedPicture {
    QImage image;
    QSize size; ///< Of the whole picture; that of the image may be smaller.
    bool isWhole() const { return image.size() == size; }
};

/// The picture with no more than `longest` pixels on its longer side (0: whole). Throws as loadPicture
/// does.
ViewedPicture viewPicture(const QString& path, int longest);

/// Pixels of the largest picture that is read at all, lest a wrong length in a file takes the memory of the machine.
constexpr qint64 mostPixels = 160'000'000;

/// A picture of any format with its pixels as they lie; null when it is none, or too large.
QImage decodedWhole(const QByteArray& bytes);

} // namespace images
