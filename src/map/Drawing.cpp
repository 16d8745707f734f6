#include "map/Drawing.h"

#include <QFontMetrics>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

namespace map {

using namespace Qt::StringLiterals;

namespace {

constexpr int smallestLevel = 256; ///< Pixels; smaller copies are not worth their place.
constexpr int labelsMost = 400;
constexpr int signsMost = 15000; ///< More of them are thinned out.
constexpr int labelCharactersMost = 40;
constexpr double selectedLarger = 3; ///< Pixels that selected signs are larger.

QPainterPath shapeOf(PointType type, const QRectF& box)
{
    QPainterPath path;
    const QPointF middle = box.center();
    switch (type) {
    case PointType::Circle: path.addEllipse(box); break;
    case PointType::Square: path.addRect(box.adjusted(0.5, 0.5, -0.5, -0.5)); break;
    case PointType::Triangle:
        path.addPolygon(QPolygonF{QPointF(middle.x(), box.top()), box.bottomRight(), box.bottomLeft()});
        path.closeSubpath();
        break;
    case PointType::Diamond:
        path.addPolygon(QPolygonF{QPointF(middle.x(), box.top()), QPointF(box.right(), middle.y()),
                                  QPointF(middle.x(), box.bottom()), QPointF(box.left(), middle.y())});
        path.closeSubpath();
        break;
    case PointType::Cross: {
        const double arm = box.width() / 6;
        path.addRect(QRectF(middle.x() - arm, box.top(), 2 * arm, box.height()));
        path.addRect(QRectF(box.left(), middle.y() - arm, box.width(), 2 * arm));
        path = path.simplified();
        break;
    }
    }
    return path;
}

/// The signs that one drawing needs, each made once.
class Signs {
public:
    Signs(const PointStyle& style, double pixelRatio) : m_style(style), m_pixelRatio(pixelRatio) {}

    const QImage& of(int size, bool selected)
    {
        QImage& sign = m_made[size * 2 + int(selected)];
        if (sign.isNull())
            sign = pointSign(m_style, size, selected, m_pixelRatio);
        return sign;
    }

private:
    const PointStyle& m_style;
    double m_pixelRatio;
    std::map<int, QImage> m_made;
};

QSizeF shownSize(const QImage& picture)
{
    return QSizeF(picture.size()) / picture.devicePixelRatio();
}

void drawSign(QPainter& painter, const QImage& sign, QPointF middle)
{
    const QSizeF size = shownSize(sign);
    painter.drawImage(QPointF(std::round(middle.x() - size.width() / 2), std::round(middle.y() - size.height() / 2)),
                      sign);
}

QRectF withMargin(const QSizeF& size, double margin)
{
    return QRectF({}, size).adjusted(-margin, -margin, margin, margin);
}

} // namespace

ScaledPicture::ScaledPicture(const QImage& picture)
{
    QImage level = picture.convertToFormat(picture.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                                    : QImage::Format_RGB32);
    level.setDevicePixelRatio(1);
    while (!level.isNull()) {
        m_levels << level;
        if (qMax(level.width(), level.height()) <= smallestLevel)
            break;
        level = level.scaled(qMax(1, level.width() / 2), qMax(1, level.height() / 2), Qt::IgnoreAspectRatio,
                             Qt::SmoothTransformation);
    }
}

void ScaledPicture::draw(QPainter& painter, const QRectF& area, const QRectF& clip) const
{
    const QRectF shown = area.intersected(clip);
    if (isNull() || shown.isEmpty())
        return;
    const double wanted = area.width() * painter.device()->devicePixelRatio();
    const QImage* level = &m_levels.first();
    for (const QImage& smaller : m_levels) {
        if (smaller.width() < wanted)
            break;
        level = &smaller;
    }
    const double x = level->width() / area.width(), y = level->height() / area.height();
    const QRectF source((shown.left() - area.left()) * x, (shown.top() - area.top()) * y, shown.width() * x,
                        shown.height() * y);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(shown, *level, source);
}

std::vector<int> drawingOrder(const Points& points)
{
    std::vector<int> order(size_t(points.size()));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&points](int a, int b) { return points.at(a).count > points.at(b).count; });
    return order;
}

QImage pointSign(const PointStyle& style, double size, bool selected, double pixelRatio)
{
    const double across = size + (selected ? selectedLarger : 0);
    const int side = int(std::ceil(across)) + 2;
    QImage sign(QSize(side, side) * pixelRatio, QImage::Format_ARGB32_Premultiplied);
    sign.setDevicePixelRatio(pixelRatio);
    sign.fill(Qt::transparent);
    QPainter painter(&sign);
    painter.setRenderHint(QPainter::Antialiasing);
    const double margin = (side - across) / 2 + 0.5;
    const QPainterPath shape = shapeOf(style.type, QRectF(margin, margin, side - 2 * margin, side - 2 * margin));
    painter.setPen(QPen(style.fore, selected ? 1.6 : 1));
    QColor fill = selected ? style.selected : style.back;
    fill.setAlphaF(fill.alphaF() * 0.88f);
    painter.setBrush(fill);
    painter.drawPath(shape);
    return sign;
}

namespace {

/// A point in the picture.
struct Placed {
    QPointF at;
    int point;
};

/// Side of the squares of which only the largest point is drawn: one pixel for a few points; for very many as much as
/// hides none that does not touch a larger one.
int squareSide(qsizetype points, const QSizeF& picture, const PointSizes& sizes)
{
    const double side = std::sqrt(picture.width() * picture.height() / signsMost);
    return points <= signsMost ? 1 : std::clamp(int(std::ceil(side)), 2, qMax(2, int(sizes.smallest)));
}

/// Draws those that are not selected; the largest come first.
void drawPlain(QPainter& painter, Signs& signs, const std::vector<Placed>& placed, const DrawnPoints& drawn,
               const PointSizes& sizes, const QSizeF& picture)
{
    const int side = squareSide(qsizetype(placed.size()), picture, sizes);
    const int width = int(picture.width()) / side + 1, height = int(picture.height()) / side + 1;
    std::vector<short> last(size_t(width) * size_t(height)); // size of the sign drawn last in a square
    for (const auto& [at, i] : placed) {
        const short across = short(std::lround(sizes.size(drawn.points.at(i).count, drawn.points.largest())));
        if (at.x() >= 0 && at.y() >= 0 && at.x() < picture.width() && at.y() < picture.height()) {
            short& before = last[size_t(int(at.y()) / side) * size_t(width) + size_t(int(at.x()) / side)];
            if (before == across || (side > 1 && before != 0))
                continue;
            before = across;
        }
        drawSign(painter, signs.of(across, false), at);
    }
}

void drawRing(QPainter& painter, QPointF at, double radius)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    for (const QPen& pen : {QPen(Qt::white, 3.4), QPen(Qt::black, 1.4)}) {
        painter.setPen(pen);
        painter.drawEllipse(at, radius, radius);
    }
}

} // namespace

int drawPoints(QImage& picture, const DrawnPoints& drawn, const ViewTransform& view, const PointStyle& style)
{
    if (!style.visible)
        return 0;
    const QSizeF size = shownSize(picture);
    const QRectF within = withMargin(size, style.sizes.largest);
    std::vector<Placed> plain, above;
    for (const int i : drawn.order) {
        const MapPoint& point = drawn.points.at(i);
        if (!style.sizes.shows(point.count))
            break; // they are sorted
        const QPointF at = view.position(point.at);
        if (within.contains(at))
            (drawn.selected[size_t(i)] || i == drawn.current ? above : plain).push_back({at, i});
    }
    QPainter painter(&picture);
    Signs signs(style, picture.devicePixelRatio());
    drawPlain(painter, signs, plain, drawn, style.sizes, size);
    for (const auto& [at, i] : above) {
        const int across = int(std::lround(style.sizes.size(drawn.points.at(i).count, drawn.points.largest())));
        drawSign(painter, signs.of(across, drawn.selected[size_t(i)]), at);
        if (i == drawn.current)
            drawRing(painter, at, across / 2.0 + 4);
    }
    return int(plain.size() + above.size());
}

void drawLabels(QImage& picture, const DrawnPoints& drawn, const ViewTransform& view, const PointStyle& style,
                const QFont& font)
{
    if (!style.visible)
        return;
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font);
    const QFontMetrics metrics(font);
    const QRectF within({}, shownSize(picture));
    QList<QRectF> taken;
    for (const int i : drawn.order) {
        const MapPoint& point = drawn.points.at(i);
        if (!style.sizes.shows(point.count) || taken.size() >= labelsMost)
            break;
        const QPointF at = view.position(point.at);
        if (!within.contains(at))
            continue;
        const QString text = metrics.elidedText(point.name, Qt::ElideMiddle, labelCharactersMost * metrics.averageCharWidth());
        const double gap = style.sizes.size(point.count, drawn.points.largest()) / 2 + 3;
        QRectF box(at.x() + gap, at.y() - metrics.height() / 2.0, metrics.horizontalAdvance(text) + 2, metrics.height());
        if (box.right() > within.right())
            box.moveRight(at.x() - gap);
        if (std::any_of(taken.begin(), taken.end(), [&box](const QRectF& other) { return other.intersects(box); }))
            continue;
        taken << box;
        QPainterPath letters;
        letters.addText(box.left(), box.top() + metrics.ascent(), font, text);
        painter.strokePath(letters, QPen(QColor(255, 255, 255, 215), 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.fillPath(letters, QColor(0x20, 0x24, 0x28));
    }
}

QList<int> legendCounts(int smallest, int largest)
{
    QList<int> counts{smallest};
    // Half way between the sizes, which grow with the root.
    const double root = (std::sqrt(double(smallest)) + std::sqrt(double(largest))) / 2;
    for (const int count : {int(std::lround(root * root)), largest}) {
        if (count > counts.last())
            counts << count;
    }
    return counts;
}

QImage drawLegend(const Points& points, const PointStyle& style, const QString& map, int selected,
                  const LegendLook& look)
{
    struct Line {
        QImage sign;
        QString text;
    };
    const auto sign = [&](int count, bool chosen) {
        return pointSign(style, std::round(style.sizes.size(count, points.largest())), chosen, look.pixelRatio);
    };
    QList<Line> lines{{{}, map}};
    const auto plural = [](int n, const QString& one) { return QString::number(n) + u' ' + one + (n > 1 ? u"s"_s : u""_s); };
    lines << Line{{}, plural(points.size(), u"localité"_s) + u", "_s + u"effectif "_s + QString::number(points.total())};
    if (!points.isEmpty() && style.visible) {
        const int smallest = qMax(1, style.sizes.effectifMin);
        const QList<int> counts = style.sizes.fixed ? QList<int>{smallest}
                                                    : legendCounts(smallest, qMax(smallest, points.largest()));
        for (const int count : counts)
            lines << Line{sign(count, false), style.sizes.fixed ? u"Localité"_s : u"Effectif "_s + QString::number(count)};
        if (selected > 0)
            lines << Line{sign(smallest, true), plural(selected, u"sélectionnée"_s)};
    }
    QFont bold = look.font;
    bold.setBold(true);
    const QFontMetrics metrics(look.font), boldMetrics(bold);
    constexpr int padding = 8, gap = 6;
    const int column = int(std::ceil(style.sizes.largest)) + 6;
    int width = 0, height = padding;
    QList<int> tops;
    for (const Line& line : lines) {
        const QFontMetrics& letters = tops.isEmpty() ? boldMetrics : metrics;
        const int text = qMin(labelCharactersMost * letters.averageCharWidth(), letters.horizontalAdvance(line.text) + 2);
        width = qMax(width, text + (line.sign.isNull() ? 0 : column + gap));
        tops << height;
        height += qMax(metrics.height(), int(shownSize(line.sign).height())) + 3;
    }
    QImage picture(QSize(width + 2 * padding, height + padding - 3) * look.pixelRatio, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(look.pixelRatio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor ground = look.ground, edge = look.text;
    ground.setAlphaF(0.9f);
    edge.setAlphaF(0.35f);
    painter.setPen(edge);
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF({0.5, 0.5}, shownSize(picture) - QSizeF(1, 1)), 5, 5);
    painter.setPen(look.text);
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QSizeF size = shownSize(lines[i].sign);
        const int tall = qMax(metrics.height(), int(size.height()));
        const QFont& font = i == 0 ? bold : look.font;
        painter.setFont(font);
        const int left = padding + (lines[i].sign.isNull() ? 0 : column + gap);
        if (!lines[i].sign.isNull())
            drawSign(painter, lines[i].sign, {padding + column / 2.0, tops[i] + tall / 2.0});
        painter.drawText(QRectF(left, tops[i], width + padding - left, tall), Qt::AlignVCenter | Qt::AlignLeft,
                         QFontMetrics(font).elidedText(lines[i].text, Qt::ElideMiddle, width + padding - left));
    }
    return picture;
}

} // namespace map
