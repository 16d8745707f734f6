#include "map/Points.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace map {

using namespace Qt::StringLiterals;

namespace {

constexpr double metresPerDegree = 111320;

} // namespace

QList<Geo> plotCorners(Geo point, const Plot& plot)
{
    const double north = 1 / metresPerDegree;
    const double shrink = std::max(0.01, std::cos(point.latitude * std::numbers::pi / 180));
    const double east = north / shrink;
    const double left = point.longitude + plot.x * east;
    const double right = point.longitude + (plot.x + plot.width) * east;
    const double bottom = point.latitude + plot.y * north;
    const double top = point.latitude + (plot.y + plot.length) * north;
    return {{left, bottom}, {right, bottom}, {right, top}, {left, top}};
}

void Points::reserve(size_t count)
{
    m_points.reserve(count);
    m_index.reserve(qsizetype(count));
}

int Points::add(const MapPoint& point)
{
    if (point.at == Geo{} || !std::isfinite(point.at.longitude) || !std::isfinite(point.at.latitude)) {
        m_unplaced += point.count;
        return -1;
    }
    const auto known = m_index.constFind(point.locality);
    int i = size();
    if (known == m_index.cend()) {
        m_index.insert(point.locality, i);
        m_points.push_back(point);
    } else {
        i = *known;
        at(i).count += point.count;
    }
    m_total += point.count;
    m_largest = std::max(m_largest, at(i).count);
    return i;
}

QString Points::label(int i) const
{
    const MapPoint& point = at(i);
    return point.name + u" (Effectif = "_s + QString::number(point.count) + u" / "_s + QString::number(m_total) + u')';
}

QRectF Points::bounds() const
{
    if (isEmpty())
        return {};
    const auto [west, east] = std::minmax_element(
        begin(), end(), [](const MapPoint& a, const MapPoint& b) { return a.at.longitude < b.at.longitude; });
    const auto [south, north] = std::minmax_element(
        begin(), end(), [](const MapPoint& a, const MapPoint& b) { return a.at.latitude < b.at.latitude; });
    return {QPointF(west->at.longitude, south->at.latitude), QPointF(east->at.longitude, north->at.latitude)};
}

double PointSizes::size(int count, int largestCount) const
{
    if (fixed || largestCount <= 1)
        return smallest;
    const double share = (std::sqrt(double(count)) - 1) / (std::sqrt(double(largestCount)) - 1);
    return smallest + (largest - smallest) * std::clamp(share, 0.0, 1.0);
}

} // namespace map
