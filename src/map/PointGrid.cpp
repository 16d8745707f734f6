#include "map/PointGrid.h"

#include <algorithm>
#include <cmath>

namespace map {

namespace {

constexpr double pointsPerSquare = 4;
constexpr int sideMost = 1024;

int square(double value, double begin, double length, int side)
{
    if (!(length > 0))
        return 0;
    return std::clamp(int(std::floor(std::clamp((value - begin) / length, -1.0, 2.0) * side)), 0, side - 1);
}

} // namespace

PointGrid::PointGrid(const Points& points) : m_bounds(points.bounds())
{
    m_side = std::clamp(int(std::sqrt(points.size() / pointsPerSquare)), 1, sideMost);
    m_places.reserve(size_t(points.size()));
    for (const MapPoint& point : points)
        m_places.push_back(point.at);
    const auto squareOf = [this](Geo at) {
        return square(at.latitude, m_bounds.top(), m_bounds.height(), m_side) * m_side
               + square(at.longitude, m_bounds.left(), m_bounds.width(), m_side);
    };
    m_begin.assign(size_t(m_side) * size_t(m_side) + 1, 0);
    for (const Geo at : m_places)
        ++m_begin[size_t(squareOf(at)) + 1];
    for (size_t i = 1; i < m_begin.size(); ++i)
        m_begin[i] += m_begin[i - 1];
    std::vector<int> next(m_begin.begin(), m_begin.end() - 1);
    m_sorted.resize(m_places.size());
    for (size_t i = 0; i < m_places.size(); ++i)
        m_sorted[size_t(next[size_t(squareOf(m_places[i]))]++)] = int(i);
}

PointGrid::Cells PointGrid::cells(const QRectF& area) const
{
    return {square(area.left(), m_bounds.left(), m_bounds.width(), m_side),
            square(area.right(), m_bounds.left(), m_bounds.width(), m_side),
            square(area.top(), m_bounds.top(), m_bounds.height(), m_side),
            square(area.bottom(), m_bounds.top(), m_bounds.height(), m_side)};
}

std::vector<int> PointGrid::within(const QRectF& area) const
{
    std::vector<int> found;
    if (m_places.empty())
        return found;
    const QRectF sought = area.normalized();
    const Cells cells = this->cells(sought);
    for (int row = cells.top; row <= cells.bottom; ++row) {
        const size_t first = size_t(row) * size_t(m_side);
        const int end = m_begin[first + size_t(cells.right) + 1];
        for (int i = m_begin[first + size_t(cells.left)]; i < end; ++i) {
            const Geo at = m_places[size_t(m_sorted[size_t(i)])];
            if (at.longitude >= sought.left() && at.longitude <= sought.right() && at.latitude >= sought.top()
                && at.latitude <= sought.bottom())
                found.push_back(m_sorted[size_t(i)]);
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::vector<int> PointGrid::within(const QPolygonF& outline) const
{
    std::vector<int> found = within(outline.boundingRect());
    std::erase_if(found, [&](int i) {
        const Geo at = m_places[size_t(i)];
        return !outline.containsPoint({at.longitude, at.latitude}, Qt::OddEvenFill);
    });
    return found;
}

} // namespace map
