// From degrees to positions on a picture and back.
#pragma once

#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QVariant>

namespace map {

/// A place on the earth in decimal degrees, east and north positive.
struct Geo {
    double longitude = 0;
    double latitude = 0;
    bool operator==(const Geo&) const = default;
};

/// The part of the earth that a picture shows. Each axis is linear and independent of the other.
///
/// `X0`, `Y0` are the coordinates of the left top corner; `H` grows downwards, so that the bottom lies at Y0 - H. A
/// picture that was scanned mirrored or upside down has a negative width or height.
struct Frame {
    double X0 = 0;
    double Y0 = 0;
    double W = 0;
    double H = 0;

    /// As the row of a map keeps it: the coordinates of its picture's left, top, right and bottom bounds. Null is 0.
    static Frame ofRow(const QVariant& left, const QVariant& top, const QVariant& right, const QVariant& bottom);
    static Frame world() { return {-180, 90, 360, 180}; }
    /// Of a picture that was never calibrated: its pixels stand for degrees, downwards from 0.
    static Frame ofPixels(QSize picture) { return {0, 0, double(picture.width()), double(picture.height())}; }

    double right() const { return X0 + W; }
    double bottom() const { return Y0 - H; }
    bool isCalibrated() const; ///< Neither side is 0.
    bool contains(Geo place) const; ///< The border belongs to it.
    double area() const { return qAbs(W * H); }
    bool operator==(const Frame&) const = default;
};

/// Longitude of a column of the picture: x * W / pw + X0. Pixels count from 0 at the left border.
double columnToLongitude(double x, const Frame& frame, QSize picture);
/// Latitude of a row; rows grow downwards, latitudes upwards.
double rowToLatitude(double y, const Frame& frame, QSize picture);
QPointF toPicture(Geo place, const Frame& frame, QSize picture);

/// What part of a map a window shows, and how large.
///
/// X = nearest whole number to (longitude - origin longitude) * scale + offset; the vertical axis likewise, downwards.
struct ViewTransform {
    float scaleX = 1; ///< Pixels of the window for one degree.
    float scaleY = 1;
    Geo origin;       ///< The place that lies at the offset.
    QPointF offset;   ///< Pixels of the window.

    int LongDtoPicture(double longitude) const;
    int LatDtoPicture(double latitude) const;
    /// The same before rounding.
    QPointF position(Geo place) const;
    Geo place(QPointF position) const;

    /// The whole frame centred in the window; its pixels keep their shape, whatever degrees they stand for.
    static ViewTransform whole(const Frame& frame, QSize picture, QSizeF window);
    /// `factor` times larger; what lies at `fixed` stays there.
    ViewTransform scaled(double factor, QPointF fixed) const;
    ViewTransform moved(QPointF by) const;
    /// Moved by as little as shows no empty border that could be filled with map.
    ViewTransform kept(const Frame& frame, QSizeF window) const;
    /// Where the frame's picture lies in the window.
    QRectF area(const Frame& frame) const;
};

/// Zoom goes by steps, from the whole picture to 32 times its size.
inline constexpr double zoomStep = 1.25;
inline constexpr double zoomMost = 32;
/// The next step above or below a zoom.
double zoomAfter(double zoom, int steps);
/// The largest step whose window is not smaller than what is to be seen.
double zoomWithin(double wanted);

} // namespace map
