// The map of the world.
#pragma once

#include "map/globe/Outlines.h"

#include <QImage>

namespace globe {

/// Twelve pixels for a degree: 4320 x 2160.
inline constexpr int pixelsPerDegree = 12;

/// Longitudes from -180 to 180 from the left, latitudes from 90 to -90 from the top, in equal steps.
QImage drawGlobe(const QList<Land>& lands);

/// The same picture in at most 256 colours of its own.
QImage reduced(const QImage& picture);

} // namespace globe
