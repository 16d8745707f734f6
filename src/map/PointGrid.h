// Finds points by where they lie.
#pragma once

#include "map/Points.h"

#include <QPolygonF>

namespace map {

/// The positions of points, sorted into the squares of a grid over their bounds.
class PointGrid {
public:
    PointGrid() = default;
    explicit PointGrid(const Points& points);

    /// Positions of the points in an area of degrees (longitudes along x, latitudes along y), in their order.
    std::vector<int> within(const QRectF& area) const;
    /// Those that a line drawn around them encloses, in degrees.
    std::vector<int> within(const QPolygonF& outline) const;

private:
    struct Cells {
        int left, right, top, bottom;
    };
    Cells cells(const QRectF& area) const;

    QRectF m_bounds;
    int m_side = 1; ///< Squares along each axis.
    std::vector<Geo> m_places;
    std::vector<int> m_begin;  ///< Of each square in m_sorted; one more at the end.
    std::vector<int> m_sorted;
};

} // namespace map
