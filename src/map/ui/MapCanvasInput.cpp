// Mouse and keys on the map.
#include "map/ui/MapCanvas.h"

#include <QApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <QWheelEvent>
#include <cmath>

namespace map {

using namespace Qt::StringLiterals;

namespace {

constexpr int wheelNotch = 120;
constexpr int arrowShare = 8; ///< An arrow key moves by this part of the window.
constexpr double lassoStep = 3;

Qt::CursorShape cursorOf(MapTool tool)
{
    return tool == MapTool::Point ? Qt::ArrowCursor : Qt::CrossCursor;
}

} // namespace

void MapCanvas::setTool(MapTool tool)
{
    if (m_tool == tool)
        return;
    m_tool = tool;
    m_stroke = Stroke::None;
    setCursor(cursorOf(tool));
    update();
    Q_EMIT toolChanged();
}

void MapCanvas::setMarks(const QList<QPointF>& marks)
{
    m_marks = marks;
    update();
}

void MapCanvas::mousePressEvent(QMouseEvent* event)
{
    if (m_picture.isNull() || m_stroke != Stroke::None)
        return;
    if (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton)
        return QWidget::mousePressEvent(event);
    beginStroke(event);
}

void MapCanvas::beginStroke(QMouseEvent* event)
{
    m_button = event->button();
    m_pressed = m_last = event->position();
    m_moved = false;
    m_stroke = Stroke::Move;
    if (m_button == Qt::MiddleButton)
        return;
    if (m_tool == MapTool::Calibrate) {
        m_mark = markAt(m_pressed);
        if (m_mark >= 0)
            m_stroke = Stroke::Mark;
    } else if (m_tool == MapTool::Lasso) {
        m_stroke = Stroke::Lasso;
        m_lasso = QPolygonF{m_pressed};
    } else if (m_tool == MapTool::Frame || m_tool == MapTool::Region
               || (m_tool == MapTool::Point && event->modifiers().testFlag(Qt::ShiftModifier))) {
        m_stroke = Stroke::Frame;
    }
}

void MapCanvas::mouseMoveEvent(QMouseEvent* event)
{
    const QPointF at = event->position();
    tellCursor(at);
    if (m_stroke == Stroke::None)
        return;
    m_moved = m_moved || (at - m_pressed).manhattanLength() >= QApplication::startDragDistance();
    if (m_stroke == Stroke::Mark) {
        const QSize picture = m_picture.size();
        const QPointF pixel = pictureAt(at);
        m_marks[m_mark] = {std::clamp(pixel.x(), 0.0, double(picture.width())),
                           std::clamp(pixel.y(), 0.0, double(picture.height()))};
        Q_EMIT marksChanged();
    } else if (m_stroke == Stroke::Lasso && (at - m_lasso.last()).manhattanLength() >= lassoStep) {
        m_lasso << at;
    } else if (m_stroke == Stroke::Move && m_moved) {
        setCursor(Qt::ClosedHandCursor);
        moveBy(at - m_last);
    }
    m_last = at;
    update();
}

void MapCanvas::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_stroke == Stroke::None || event->button() != m_button)
        return QWidget::mouseReleaseEvent(event);
    endStroke(event);
    m_stroke = Stroke::None;
    m_mark = -1;
    setCursor(cursorOf(m_tool));
    update();
}

void MapCanvas::endStroke(QMouseEvent* event)
{
    if (m_stroke == Stroke::Mark)
        return;
    if (!m_moved) {
        if (m_button == Qt::LeftButton)
            click(event);
        return;
    }
    const QRectF box = QRectF(m_pressed, event->position()).normalized();
    if (m_stroke == Stroke::Frame && m_tool == MapTool::Region) {
        if (m_calibrated)
            Q_EMIT regionDrawn(areaOf(box));
    } else if (m_stroke == Stroke::Frame) {
        select(m_grid.within(areaOf(box)), event->modifiers());
    } else if (m_stroke == Stroke::Lasso) {
        QPolygonF outline;
        for (const QPointF& at : std::as_const(m_lasso)) {
            const Geo place = m_view.place(at);
            outline << QPointF(place.longitude, place.latitude);
        }
        select(m_grid.within(outline), event->modifiers());
    }
}

void MapCanvas::click(QMouseEvent* event)
{
    const QPointF at = event->position();
    const bool onPicture = QRectF({}, QSizeF(m_picture.size())).contains(pictureAt(at));
    if (m_tool == MapTool::AddPlace) {
        const Geo place = m_view.place(at);
        if (onPicture && m_calibrated)
            Q_EMIT placeClicked(place.longitude, place.latitude);
        return;
    }
    if (m_tool == MapTool::Calibrate) {
        if (onPicture && m_marks.size() < 2) {
            m_marks << pictureAt(at);
            Q_EMIT marksChanged();
        }
        return;
    }
    if (m_tool == MapTool::Region)
        return;
    const int point = pointAt(at);
    if (point >= 0) {
        m_current = point;
        setAccessibleDescription(m_points.label(point));
        select({point}, event->modifiers());
    } else if (!(event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier))) {
        clearSelection();
    }
}

void MapCanvas::mouseDoubleClickEvent(QMouseEvent* event)
{
    const int point = m_tool == MapTool::Point && event->button() == Qt::LeftButton ? pointAt(event->position()) : -1;
    if (point >= 0)
        Q_EMIT pointActivated(m_points.at(point).locality);
    else
        mousePressEvent(event);
}

/// Touch pads send parts of a notch.
void MapCanvas::wheelEvent(QWheelEvent* event)
{
    m_wheel += event->angleDelta().y();
    const int steps = int(m_wheel / wheelNotch);
    m_wheel -= steps * wheelNotch;
    if (steps != 0)
        zoomBy(steps, event->position());
    event->accept();
}

void MapCanvas::tellCursor(QPointF position)
{
    const int point = m_stroke == Stroke::None && !m_points.isEmpty() ? pointAt(position) : -1;
    Q_EMIT cursorMoved(readOut(position), point < 0 ? QString() : m_points.label(point));
}

void MapCanvas::leaveEvent(QEvent* event)
{
    Q_EMIT cursorMoved({}, {});
    QWidget::leaveEvent(event);
}

QString MapCanvas::tip(int point) const
{
    const MapPoint& at = m_points.at(point);
    QString text = m_points.label(point);
    if (at.altitude)
        text += u"\nAltitude : "_s + QString::number(*at.altitude) + u" m"_s;
    if (!at.gpsRef.isEmpty())
        text += u"\nRéférence GPS : "_s + at.gpsRef;
    return text;
}

bool MapCanvas::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const int point = pointAt(help->pos());
        if (point >= 0)
            QToolTip::showText(help->globalPos(), tip(point), this);
        else
            QToolTip::hideText();
        return true;
    }
    return QWidget::event(event);
}

void MapCanvas::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        redrawMap();
    QWidget::changeEvent(event);
}

void MapCanvas::keyPressEvent(QKeyEvent* event)
{
    const double x = double(width()) / arrowShare, y = double(height()) / arrowShare;
    switch (event->key()) {
    case Qt::Key_Left: moveBy({x, 0}); return;
    case Qt::Key_Right: moveBy({-x, 0}); return;
    case Qt::Key_Up: moveBy({0, y}); return;
    case Qt::Key_Down: moveBy({0, -y}); return;
    case Qt::Key_Plus:
    case Qt::Key_Equal: zoomBy(1); return;
    case Qt::Key_Minus: zoomBy(-1); return;
    case Qt::Key_Home: showWhole(); return;
    case Qt::Key_PageDown: step(1); return;
    case Qt::Key_PageUp: step(-1); return;
    case Qt::Key_Space:
        if (m_current >= 0)
            toggle(m_current);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (m_current >= 0)
            Q_EMIT pointActivated(m_points.at(m_current).locality);
        return;
    case Qt::Key_Escape:
        if (m_tool != MapTool::Point)
            setTool(MapTool::Point);
        else
            clearSelection();
        return;
    default: QWidget::keyPressEvent(event);
    }
}

} // namespace map
