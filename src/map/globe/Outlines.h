// The outlines of the countries.
#pragma once

#include <QList>
#include <QPolygonF>
#include <QString>

namespace globe {

/// One country, or a part of it that is cut off by the sea: the first ring is its outline, the others are holes. Degrees,
/// longitudes along x and latitudes along y.
struct Land {
    QString country;
    QList<QPolygonF> rings;
};

/// Reads lines of number, name, polygon, ring, longitude, latitude. Empty when the file cannot be read or a line is not of
/// that form.
QList<Land> readOutlines(const QString& path);

} // namespace globe
