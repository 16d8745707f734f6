// Coordinates as people type and print them.
#pragma once

#include <QString>
#include <QVariant>

namespace editing {

/// The text with the letter of its hemisphere in front (as E, W, N or S), its marks and numbers behind. Empty when it is
/// no coordinate in degrees, minutes and seconds.
QString hemisphereFirst(const QString& text, bool longitude);

/// Degrees as a number ("12,5", "12.5 O"), or a text that the normal form can be made of ("12° 30' O": "W12° 30'"). An
/// invalid value for what is no coordinate, and for degrees beyond the pole or the half turn.
QVariant typedCoordinate(const QString& text, bool longitude);

} // namespace editing
