#include "map/Projection.h"

#include <algorithm>
#include <cmath>

namespace map {

namespace {

/// How far a side of the picture is to be moved along one axis.
double moveInto(double begin, double end, double window)
{
    const double length = end - begin;
    if (length <= window)
        return (window - length) / 2 - begin;
    if (begin > 0)
        return -begin;
    return end < window ? window - end : 0;
}

} // namespace

Frame Frame::ofRow(const QVariant& left, const QVariant& top, const QVariant& right, const QVariant& bottom)
{
    const double x = left.toDouble();
    const double y = top.toDouble();
    return {x, y, right.toDouble() - x, y - bottom.toDouble()};
}

bool Frame::isCalibrated() const
{
    return W != 0 && H != 0 && std::isfinite(X0) && std::isfinite(Y0) && std::isfinite(W) && std::isfinite(H);
}

bool Frame::contains(Geo place) const
{
    const auto [west, east] = std::minmax({X0, right()});
    const auto [south, north] = std::minmax({bottom(), Y0});
    return place.longitude >= west && place.longitude <= east && place.latitude >= south && place.latitude <= north;
}

double columnToLongitude(double x, const Frame& frame, QSize picture)
{
    return x * frame.W / picture.width() + frame.X0;
}

double rowToLatitude(double y, const Frame& frame, QSize picture)
{
    return frame.Y0 - y * frame.H / picture.height();
}

QPointF toPicture(Geo place, const Frame& frame, QSize picture)
{
    return {(place.longitude - frame.X0) * picture.width() / frame.W,
            (frame.Y0 - place.latitude) * picture.height() / frame.H};
}

QPointF ViewTransform::position(Geo place) const
{
    return {(place.longitude - origin.longitude) * double(scaleX) + offset.x(),
            (origin.latitude - place.latitude) * double(scaleY) + offset.y()};
}

int ViewTransform::LongDtoPicture(double longitude) const
{
    return int(std::lround(position({longitude, 0}).x()));
}

int ViewTransform::LatDtoPicture(double latitude) const
{
    return int(std::lround(position({0, latitude}).y()));
}

Geo ViewTransform::place(QPointF position) const
{
    return {(position.x() - offset.x()) / double(scaleX) + origin.longitude,
            origin.latitude - (position.y() - offset.y()) / double(scaleY)};
}

ViewTransform ViewTransform::whole(const Frame& frame, QSize picture, QSizeF window)
{
    const double pixel = std::min(window.width() / picture.width(), window.height() / picture.height());
    const QSizeF shown(picture.width() * pixel, picture.height() * pixel);
    ViewTransform view;
    view.scaleX = float(shown.width() / frame.W);
    view.scaleY = float(shown.height() / frame.H);
    view.origin = {frame.X0, frame.Y0};
    view.offset = {(window.width() - shown.width()) / 2, (window.height() - shown.height()) / 2};
    return view;
}

ViewTransform ViewTransform::scaled(double factor, QPointF fixed) const
{
    ViewTransform view = *this;
    view.scaleX = float(scaleX * factor);
    view.scaleY = float(scaleY * factor);
    // By the scales as they were rounded, so that the fixed place does not creep over many steps.
    view.offset = {fixed.x() + (offset.x() - fixed.x()) * double(view.scaleX) / double(scaleX),
                   fixed.y() + (offset.y() - fixed.y()) * double(view.scaleY) / double(scaleY)};
    return view;
}

ViewTransform ViewTransform::moved(QPointF by) const
{
    ViewTransform view = *this;
    view.offset += by;
    return view;
}

ViewTransform ViewTransform::kept(const Frame& frame, QSizeF window) const
{
    const QRectF shown = area(frame);
    return moved({moveInto(shown.left(), shown.right(), window.width()),
                  moveInto(shown.top(), shown.bottom(), window.height())});
}

QRectF ViewTransform::area(const Frame& frame) const
{
    return QRectF(position({frame.X0, frame.Y0}), position({frame.right(), frame.bottom()})).normalized();
}

double zoomAfter(double zoom, int steps)
{
    // 32 is no power of 1.25: what was cut off there goes back to the step below it.
    const double at = std::log(zoom) / std::log(zoomStep);
    const double near = std::round(at);
    const bool onStep = std::abs(at - near) < 1e-6;
    const double step = onStep ? near + steps : (steps > 0 ? std::floor(at) : std::ceil(at)) + steps;
    return std::clamp(std::pow(zoomStep, step), 1.0, zoomMost);
}

double zoomWithin(double wanted)
{
    if (!(wanted > 1))
        return 1;
    if (wanted >= zoomMost)
        return zoomMost;
    return std::pow(zoomStep, std::floor(std::log(wanted) / std::log(zoomStep) + 1e-9));
}

} // namespace map
