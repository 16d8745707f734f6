// Maps and points as pictures.
#pragma once

#include "map/Points.h"

#include <QColor>
#include <QImage>
#include <QPainter>

namespace map {

/// A map's picture with smaller copies of it, so that any scale is drawn quickly and smoothly.
class ScaledPicture {
public:
    ScaledPicture() = default;
    explicit ScaledPicture(const QImage& picture);

    bool isNull() const { return m_levels.isEmpty(); }
    QSize size() const { return isNull() ? QSize() : m_levels.first().size(); }
    QImage whole() const { return isNull() ? QImage() : m_levels.first(); }
    /// Draws it so that the whole would fill `area`; only what lies in `clip` is touched.
    void draw(QPainter& painter, const QRectF& area, const QRectF& clip) const;

private:
    QList<QImage> m_levels; ///< Each half of the one before.
};

enum class PointType { Circle, Square, Triangle, Diamond, Cross };

struct PointStyle {
    PointType type = PointType::Circle;
    QColor back{0xD6, 0x3A, 0x2F};     ///< Inside.
    QColor fore{0xFF, 0xFF, 0xFF};     ///< Border.
    QColor selected{0x1E, 0x6B, 0xD6}; ///< Inside of selected ones.
    PointSizes sizes;
    bool visible = true;
    bool labels = false;
};

/// What is drawn of points.
struct DrawnPoints {
    const Points& points;
    const std::vector<int>& order;        ///< Which, the largest first.
    const std::vector<bool>& selected;    ///< By position; as many as points.
    int current = -1;                     ///< The point of the keyboard.
};

/// Positions of the points, those with most records first.
std::vector<int> drawingOrder(const Points& points);

/// Draws points into an opaque picture (RGB32, with its device pixel ratio). Equal signs on one pixel are drawn once, selected ones lie on
/// top; of very many, those are left out that a larger one touches. Gives how many are in the picture.
int drawPoints(QImage& picture, const DrawnPoints& drawn, const ViewTransform& view, const PointStyle& style);
/// Names beside the points, as far as they do not cover each other, the largest points first.
void drawLabels(QImage& picture, const DrawnPoints& drawn, const ViewTransform& view, const PointStyle& style,
                const QFont& font);

/// One sign, `size` pixels across.
QImage pointSign(const PointStyle& style, double size, bool selected, double pixelRatio);

/// The legend: sizes with their counts, the selection, the map and the number of points.
struct LegendLook {
    QFont font;
    QColor text;
    QColor ground;
    double pixelRatio = 1;
};
QImage drawLegend(const Points& points, const PointStyle& style, const QString& map, int selected,
                  const LegendLook& look);
/// Counts whose signs the legend shows: the smallest, one between and the largest.
QList<int> legendCounts(int smallest, int largest);

} // namespace map
