// Mouse and keys on the picture.
#include "images/ui/PictureCanvas.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

namespace images {

namespace {

constexpr double wheelNotch = 120;
constexpr int arrowShare = 8;      ///< An arrow key moves by this part of the window.
constexpr double shortestStroke = 4; ///< Pixels of the screen: less is a click.

} // namespace

void PictureCanvas::setTool(PictureTool tool)
{
    m_tool = tool;
    m_stroke = Stroke::None;
    showCursor();
    update();
}

void PictureCanvas::setSegment(const QLineF& segment, const QString& text)
{
    m_segment = segment;
    m_segmentText = text;
    update();
}

void PictureCanvas::showCursor()
{
    if (m_picture.image.isNull())
        setCursor(Qt::ArrowCursor);
    else if (m_stroke == Stroke::Move)
        setCursor(Qt::ClosedHandCursor);
    else
        setCursor(m_tool == PictureTool::Move ? Qt::OpenHandCursor : Qt::CrossCursor);
}

void PictureCanvas::mousePressEvent(QMouseEvent* event)
{
    const bool moves = event->button() == Qt::MiddleButton || m_tool == PictureTool::Move;
    if (m_picture.image.isNull() || m_stroke != Stroke::None
        || (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton))
        return QWidget::mousePressEvent(event);
    m_button = event->button();
    m_pressed = m_last = event->position();
    m_stroke = moves ? Stroke::Move : m_tool == PictureTool::Frame ? Stroke::Frame : Stroke::Measure;
    showCursor();
}

void PictureCanvas::mouseMoveEvent(QMouseEvent* event)
{
    if (m_stroke == Stroke::None)
        return;
    const QPointF at = event->position();
    if (m_stroke == Stroke::Move)
        moveBy(at - m_last);
    m_last = at;
    update();
}

void PictureCanvas::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_stroke == Stroke::None || event->button() != m_button)
        return QWidget::mouseReleaseEvent(event);
    const Stroke stroke = std::exchange(m_stroke, Stroke::None);
    m_last = event->position();
    showCursor();
    update();
    const QLineF way(m_pressed, m_last);
    if (stroke == Stroke::Move || way.length() < shortestStroke)
        return;
    const QLineF segment(pictureAt(m_pressed), pictureAt(m_last));
    if (stroke == Stroke::Measure) {
        Q_EMIT segmentDrawn(segment);
    } else {
        showArea(QRectF(segment.p1(), segment.p2()));
        Q_EMIT frameDrawn();
    }
}

void PictureCanvas::wheelEvent(QWheelEvent* event)
{
    zoomBy(event->angleDelta().y() / wheelNotch, event->position());
    event->accept();
}

void PictureCanvas::keyPressEvent(QKeyEvent* event)
{
    const QPointF arrow(double(width()) / arrowShare, double(height()) / arrowShare);
    switch (event->key()) {
    case Qt::Key_Plus: return zoomBy(1);
    case Qt::Key_Minus: return zoomBy(-1);
    case Qt::Key_Home: return showWhole();
    case Qt::Key_1: return setZoom(1);
    case Qt::Key_Left: return moveBy({arrow.x(), 0});
    case Qt::Key_Right: return moveBy({-arrow.x(), 0});
    case Qt::Key_Up: return moveBy({0, arrow.y()});
    case Qt::Key_Down: return moveBy({0, -arrow.y()});
    case Qt::Key_Escape:
        if (m_stroke != Stroke::None)
            setTool(m_tool);
        else if (m_tool != PictureTool::Move)
            Q_EMIT toolGivenUp();
        else
            event->ignore();
        return;
    default: return QWidget::keyPressEvent(event);
    }
}

} // namespace images
