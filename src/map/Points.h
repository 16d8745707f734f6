// The places of a result, with the number of records found at each.
#pragma once

#include "map/Projection.h"

#include <QHash>
#include <QList>
#include <QString>
#include <optional>
#include <vector>

namespace map {

/// The grid of a plot ("dispositif") in metres: where its first corner lies east and north of the place's point, its
/// width (east) and its length (north).
struct Plot {
    double x = 0;
    double y = 0;
    double width = 0;
    double length = 0;
    bool operator==(const Plot&) const = default;
};

/// The corners of a plot around a point, in turn.
QList<Geo> plotCorners(Geo point, const Plot& plot);

struct MapPoint {
    qint32 locality = 0; ///< `ID Localités`.
    QString name = {};   ///< `Nom Entier`
    Geo at = {};
    std::optional<double> altitude = {}; ///< Metres.
    QString gpsRef = {};
    QString modified = {}; ///< `DateModify`
    std::optional<Plot> plot = {};
    int count = 1;    ///< "Effectif": records of the result.
};

/// One point for each place. Places without coordinates are counted only: the table cannot leave them empty, what was never
/// typed is 0 and 0, and nobody collects there.
class Points {
public:
    void clear() { *this = {}; }
    void reserve(size_t count);
    /// Adds records of a place, and the place when it is new. Gives its position, -1 without coordinates.
    int add(const MapPoint& point);

    int size() const { return int(m_points.size()); }
    bool isEmpty() const { return m_points.empty(); }
    const MapPoint& at(int i) const { return m_points[size_t(i)]; }
    MapPoint& at(int i) { return m_points[size_t(i)]; }
    auto begin() const { return m_points.begin(); }
    auto end() const { return m_points.end(); }
    /// Position of a place; -1 for none.
    int indexOf(qint32 locality) const { return m_index.value(locality, -1); }

    int total() const { return m_total; }     ///< Records at all points.
    int largest() const { return m_largest; } ///< Count of the point with most.
    int unplaced() const { return m_unplaced; } ///< Records of places without coordinates.
    /// name & " (Effectif = " & count & " / " & total & ")".
    QString label(int i) const;
    /// Longitudes along x, latitudes along y (top: the southernmost); null without points.
    QRectF bounds() const;

private:
    std::vector<MapPoint> m_points;
    QHash<qint32, int> m_index;
    int m_total = 0;
    int m_largest = 0;
    int m_unplaced = 0;
};

/// How large points are drawn.
struct PointSizes {
    double smallest = 7; ///< Pixels across.
    double largest = 26;
    bool fixed = false;  ///< All as small as the smallest.
    int effectifMin = 1; ///< Points with fewer records are not shown.

    bool shows(int count) const { return count >= effectifMin; }
    /// Grows with the square root of the count, so that areas compare.
    double size(int count, int largestCount) const;
};

} // namespace map
