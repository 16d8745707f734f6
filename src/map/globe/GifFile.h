// GIF files, which Qt reads but does not write.
#pragma once

#include <QByteArray>
#include <QImage>

namespace globe {

/// The file of a picture with a table of at most 256 colours; empty when it cannot be made.
QByteArray gifFile(const QImage& picture);

} // namespace globe
