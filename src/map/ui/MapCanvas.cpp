#include "map/ui/MapCanvas.h"

#include "editing/Formats.h"

#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace map {

using namespace Qt::StringLiterals;

namespace {

constexpr double markRadius = 7;
constexpr double areaMargin = 0.06; ///< Share of the window that stays free around an area.

QString pixelText(QPointF at)
{
    return u"X : "_s + QString::number(int(std::floor(at.x()))) + u"  Y : "_s + QString::number(int(std::floor(at.y())));
}

} // namespace

MapCanvas::MapCanvas(QWidget* parent) : QWidget(parent)
{
    setObjectName(u"cartographie"_s);
    setAccessibleName(u"Carte"_s);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(160, 120);
}

MapCanvas::~MapCanvas() = default;

// --- What is shown -------------------------------------------------------------------------------

void MapCanvas::setMap(const QImage& picture, const Frame& frame, const QString& name)
{
    m_picture = ScaledPicture(picture);
    m_name = name;
    m_calibrated = frame.isCalibrated();
    m_frame = m_calibrated ? frame : Frame::ofPixels(picture.isNull() ? QSize(1, 1) : picture.size());
    m_marks.clear();
    showWhole();
}

void MapCanvas::setPoints(Points points)
{
    m_points = std::move(points);
    m_selected.assign(size_t(m_points.size()), false);
    m_selectedCount = 0;
    m_current = -1;
    pointsChanged();
}

void MapCanvas::pointsChanged()
{
    m_selected.resize(size_t(m_points.size()), false);
    m_order = drawingOrder(m_points);
    m_grid = PointGrid(m_points);
    redrawPoints();
}

void MapCanvas::setStyle(const PointStyle& style)
{
    m_style = style;
    redrawPoints();
}

void MapCanvas::setLegendShown(bool shown)
{
    m_legend = shown;
    update();
}

void MapCanvas::setFrozen(bool frozen)
{
    m_frozen = frozen;
    if (!frozen)
        update();
}

// --- View ----------------------------------------------------------------------------------------

void MapCanvas::setView(const ViewTransform& view)
{
    m_view = view.kept(m_frame, size());
    redrawMap();
    Q_EMIT viewChanged();
}

void MapCanvas::showWhole()
{
    m_zoom = 1;
    if (!m_picture.isNull() && !size().isEmpty())
        setView(ViewTransform::whole(m_frame, m_picture.size(), size()));
    else
        redrawMap();
}

void MapCanvas::zoomBy(int steps, QPointF fixed)
{
    const double zoom = zoomAfter(m_zoom, steps);
    if (m_picture.isNull() || zoom == m_zoom)
        return;
    const double factor = zoom / m_zoom;
    m_zoom = zoom;
    if (zoom == 1)
        showWhole();
    else
        setView(m_view.scaled(factor, fixed));
}

void MapCanvas::showArea(const QRectF& area)
{
    if (m_picture.isNull() || size().isEmpty() || !m_calibrated)
        return;
    const ViewTransform whole = ViewTransform::whole(m_frame, m_picture.size(), size());
    const QRectF pixels =
        QRectF(whole.position({area.left(), area.bottom()}), whole.position({area.right(), area.top()})).normalized();
    const double across = qMax(pixels.width() / width(), pixels.height() / height());
    m_zoom = zoomWithin(across > 0 ? (1 - 2 * areaMargin) / across : zoomMost);
    const ViewTransform view = whole.scaled(m_zoom, pixels.center());
    setView(view.moved(QRectF(rect()).center() - pixels.center()));
}

void MapCanvas::showPoints()
{
    Points shown;
    for (const MapPoint& point : m_points) {
        if (m_style.sizes.shows(point.count) && m_frame.contains(point.at))
            shown.add(point);
    }
    if (shown.isEmpty())
        showWhole();
    else
        showArea(shown.bounds());
}

void MapCanvas::showSelected()
{
    Points chosen;
    for (int i = 0; i < m_points.size(); ++i) {
        if (m_selected[size_t(i)])
            chosen.add(m_points.at(i));
    }
    if (!chosen.isEmpty())
        showArea(chosen.bounds());
}

void MapCanvas::moveBy(QPointF pixels)
{
    setView(m_view.moved(pixels));
}

void MapCanvas::resizeEvent(QResizeEvent*)
{
    if (m_picture.isNull() || size().isEmpty())
        return;
    if (m_zoom == 1 || m_mapImage.isNull()) {
        showWhole();
        return;
    }
    // What was in the middle stays there, at the same zoom.
    const QSizeF before = QSizeF(m_mapImage.size()) / m_mapImage.devicePixelRatio();
    const Geo middle = m_view.place({before.width() / 2, before.height() / 2});
    const ViewTransform whole = ViewTransform::whole(m_frame, m_picture.size(), size());
    const ViewTransform view = whole.scaled(m_zoom, {});
    setView(view.moved(QRectF(rect()).center() - view.position(middle)));
}

// --- Drawing -------------------------------------------------------------------------------------

void MapCanvas::redrawMap()
{
    m_mapStale = true;
    update();
}

void MapCanvas::redrawPoints()
{
    m_pointsStale = true;
    update();
}

void MapCanvas::drawCaches()
{
    const QSize pixels = size() * devicePixelRatioF();
    if (!m_mapStale && !m_pointsStale && m_image.size() == pixels)
        return;
    QElapsedTimer timer;
    timer.start();
    if (m_mapStale || m_mapImage.size() != pixels) {
        m_mapImage = QImage(pixels, QImage::Format_RGB32);
        m_mapImage.setDevicePixelRatio(devicePixelRatioF());
        m_mapImage.fill(palette().color(QPalette::Window));
        QPainter painter(&m_mapImage);
        m_picture.draw(painter, m_view.area(m_frame), rect());
    }
    m_image = m_mapImage;
    if (m_calibrated && !m_points.isEmpty()) {
        const DrawnPoints drawn{m_points, m_order, m_selected, m_current};
        drawPoints(m_image, drawn, m_view, m_style);
        if (m_style.labels)
            drawLabels(m_image, drawn, m_view, m_style, font());
    }
    m_mapStale = m_pointsStale = false;
    m_drawingTime = timer.elapsed();
}

QImage MapCanvas::drawn()
{
    drawCaches();
    QImage picture = m_image.copy();
    QPainter painter(&picture);
    drawLegendInto(painter);
    return picture;
}

void MapCanvas::paintEvent(QPaintEvent*)
{
    if (!m_frozen)
        drawCaches();
    QPainter painter(this);
    if (m_image.isNull())
        painter.fillRect(rect(), palette().window());
    else
        painter.drawImage(0, 0, m_image);
    drawMarks(painter);
    drawStroke(painter);
    drawLegendInto(painter);
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
        painter.drawRect(rect().adjusted(1, 1, -1, -1));
    }
}

void MapCanvas::drawLegendInto(QPainter& painter)
{
    if (!m_legend || m_picture.isNull())
        return;
    const QImage legend = drawLegend(m_points, m_style, m_name, m_selectedCount,
                                     {font(), palette().color(QPalette::Text), palette().color(QPalette::Base),
                                      devicePixelRatioF()});
    painter.drawImage(QPointF(10, height() - 10 - legend.height() / legend.devicePixelRatio()), legend);
}

void MapCanvas::drawMarks(QPainter& painter)
{
    if (m_tool != MapTool::Calibrate)
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    QFont bold = font();
    bold.setBold(true);
    painter.setFont(bold);
    for (int i = 0; i < m_marks.size(); ++i) {
        const QPointF at = markPosition(m_marks[i]);
        for (const QPen& pen : {QPen(Qt::white, 4), QPen(QColor(0xB0, 0x10, 0x60), 1.8)}) {
            painter.setPen(pen);
            painter.setBrush(Qt::NoBrush);
            painter.drawEllipse(at, markRadius, markRadius);
            painter.drawLine(at - QPointF(13, 0), at + QPointF(13, 0));
            painter.drawLine(at - QPointF(0, 13), at + QPointF(0, 13));
        }
        const QRectF box(at.x() + 9, at.y() - 26, 20, 18);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0xB0, 0x10, 0x60));
        painter.drawRoundedRect(box, 4, 4);
        painter.setPen(Qt::white);
        painter.drawText(box, Qt::AlignCenter, QString::number(i + 1));
    }
}

void MapCanvas::drawStroke(QPainter& painter)
{
    if (m_stroke != Stroke::Frame && m_stroke != Stroke::Lasso)
        return;
    QColor colour = palette().color(QPalette::Highlight);
    painter.setRenderHint(QPainter::Antialiasing, m_stroke == Stroke::Lasso);
    painter.setPen(QPen(colour, 1.5));
    colour.setAlpha(50);
    painter.setBrush(colour);
    if (m_stroke == Stroke::Frame)
        painter.drawRect(QRectF(m_pressed, m_last).normalized());
    else
        painter.drawPolygon(m_lasso);
}

// --- Selection -----------------------------------------------------------------------------------

QList<qint32> MapCanvas::selectedLocalities() const
{
    QList<qint32> localities;
    for (int i = 0; i < m_points.size(); ++i) {
        if (m_selected[size_t(i)])
            localities << m_points.at(i).locality;
    }
    return localities;
}

void MapCanvas::mark(int point, bool selected)
{
    if (m_selected[size_t(point)] == selected)
        return;
    m_selected[size_t(point)] = selected;
    m_selectedCount += selected ? 1 : -1;
}

void MapCanvas::selectLocalities(const QList<qint32>& localities)
{
    m_selected.assign(size_t(m_points.size()), false);
    m_selectedCount = 0;
    for (const qint32 locality : localities) {
        const int i = m_points.indexOf(locality);
        if (i >= 0)
            mark(i, true);
    }
    redrawPoints();
}

void MapCanvas::clearSelection()
{
    if (m_selectedCount == 0)
        return;
    selectLocalities({});
    Q_EMIT selectionChanged();
}

void MapCanvas::selectAll()
{
    for (int i = 0; i < m_points.size(); ++i)
        mark(i, isShown(i));
    redrawPoints();
    Q_EMIT selectionChanged();
}

bool MapCanvas::isShown(int point) const
{
    return m_calibrated && m_style.visible && m_style.sizes.shows(m_points.at(point).count);
}

/// Control flips, Shift adds, else they become the selection.
void MapCanvas::select(const std::vector<int>& points, Qt::KeyboardModifiers keys)
{
    const bool flip = keys.testFlag(Qt::ControlModifier);
    if (!flip && !keys.testFlag(Qt::ShiftModifier))
        selectLocalities({});
    for (const int i : points) {
        if (isShown(i))
            mark(i, !flip || !m_selected[size_t(i)]);
    }
    redrawPoints();
    Q_EMIT selectionChanged();
}

void MapCanvas::toggle(int point)
{
    mark(point, !m_selected[size_t(point)]);
    redrawPoints();
    Q_EMIT selectionChanged();
}

void MapCanvas::setCurrentPoint(int point)
{
    m_current = point >= 0 && point < m_points.size() ? point : -1;
    setAccessibleDescription(m_current < 0 ? QString() : m_points.label(m_current));
    if (m_current >= 0 && !m_picture.isNull()) {
        const QPointF at = m_view.position(m_points.at(m_current).at);
        if (!QRectF(rect()).adjusted(20, 20, -20, -20).contains(at))
            moveBy(QRectF(rect()).center() - at);
        Q_EMIT cursorMoved(readOut(m_view.position(m_points.at(m_current).at)), m_points.label(m_current));
    }
    redrawPoints();
}

/// From point to point, from west to east among those shown on this map.
void MapCanvas::step(int by)
{
    std::vector<int> shown;
    for (int i = 0; i < m_points.size(); ++i) {
        if (isShown(i) && m_frame.contains(m_points.at(i).at))
            shown.push_back(i);
    }
    if (shown.empty())
        return;
    std::stable_sort(shown.begin(), shown.end(), [this](int a, int b) {
        return m_points.at(a).at.longitude < m_points.at(b).at.longitude;
    });
    const auto here = std::find(shown.begin(), shown.end(), m_current);
    const qsizetype count = qsizetype(shown.size());
    const qsizetype next = here == shown.end() ? (by > 0 ? 0 : count - 1) : (here - shown.begin() + by + count) % count;
    setCurrentPoint(shown[size_t(next)]);
}

int MapCanvas::pointAt(QPointF position) const
{
    const double reach = m_style.sizes.largest / 2 + 2;
    const QRectF around(position - QPointF(reach, reach), position + QPointF(reach, reach));
    int best = -1;
    double nearest = 0;
    for (const int i : m_grid.within(areaOf(around))) {
        const MapPoint& point = m_points.at(i);
        if (!isShown(i))
            continue;
        const QPointF off = m_view.position(point.at) - position;
        const double distance = std::hypot(off.x(), off.y());
        if (distance > m_style.sizes.size(point.count, m_points.largest()) / 2 + 2)
            continue;
        // Smaller signs lie on top; among equals the nearest is meant.
        const bool better = best < 0 || point.count < m_points.at(best).count
                            || (point.count == m_points.at(best).count && distance < nearest);
        if (better) {
            best = i;
            nearest = distance;
        }
    }
    return best;
}

// --- Positions -----------------------------------------------------------------------------------

QRectF MapCanvas::areaOf(const QRectF& pixels) const
{
    const Geo a = m_view.place(pixels.topLeft()), b = m_view.place(pixels.bottomRight());
    return QRectF(QPointF(a.longitude, a.latitude), QPointF(b.longitude, b.latitude)).normalized();
}

QPointF MapCanvas::pictureAt(QPointF position) const
{
    const Geo place = m_view.place(position);
    return toPicture(place, m_frame, m_picture.isNull() ? QSize(1, 1) : m_picture.size());
}

QPointF MapCanvas::markPosition(QPointF mark) const
{
    const QSize picture = m_picture.isNull() ? QSize(1, 1) : m_picture.size();
    return m_view.position({columnToLongitude(mark.x(), m_frame, picture), rowToLatitude(mark.y(), m_frame, picture)});
}

int MapCanvas::markAt(QPointF position) const
{
    for (int i = int(m_marks.size()) - 1; i >= 0; --i) {
        const QPointF off = markPosition(m_marks[i]) - position;
        if (std::hypot(off.x(), off.y()) <= markRadius + 4)
            return i;
    }
    return -1;
}

QString MapCanvas::readOut(QPointF position) const
{
    if (m_picture.isNull())
        return {};
    const QPointF at = pictureAt(position);
    if (!QRectF({}, QSizeF(m_picture.size())).contains(at))
        return {};
    if (!m_calibrated)
        return pixelText(at);
    return u"Long. : "_s + editing::LongitudeToText(columnToLongitude(at.x(), m_frame, m_picture.size())) + u"  Lat. : "_s
           + editing::LatitudeToText(rowToLatitude(at.y(), m_frame, m_picture.size()));
}

} // namespace map
