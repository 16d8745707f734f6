#include "images/ui/PictureCanvas.h"

#include "platform/ui/Readable.h"

#include <QPainter>
#include <cmath>

namespace images {

using namespace Qt::StringLiterals;

namespace {

constexpr double stepFactor = 1.25;
constexpr double largestZoom = 32;
/// The whole of any picture is in sight before that.
constexpr double smallestZoom = 0.005;
/// From here on single pixels are shown as squares.
constexpr double squareZoom = 3;
constexpr int endMark = 5;

} // namespace

PictureCanvas::PictureCanvas(QWidget* parent) : QWidget(parent)
{
    setObjectName(u"pictureCanvas"_s);
    setAccessibleName(u"Image"_s);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(120, 90);
    setAttribute(Qt::WA_OpaquePaintEvent);
    showCursor();
}

void PictureCanvas::setPicture(const ViewedPicture& picture)
{
    m_picture = picture;
    m_segment = {};
    m_segmentText.clear();
    m_stroke = Stroke::None;
    showCursor();
    showWhole();
}

void PictureCanvas::refine(const ViewedPicture& picture)
{
    if (picture.size != m_picture.size)
        return;
    m_picture = picture;
    update();
}

void PictureCanvas::setText(const QString& text)
{
    m_text = text;
    setAccessibleDescription(text);
    update();
}

// --- View ----------------------------------------------------------------------------------------

double PictureCanvas::wholeZoom() const
{
    const QSize size = m_picture.size;
    if (size.isEmpty())
        return 1;
    // Small pictures are not blown up.
    return std::min({1.0, double(width()) / size.width(), double(height()) / size.height()});
}

void PictureCanvas::setView(double zoom, QPointF centre)
{
    m_zoom = std::clamp(zoom, smallestZoom, largestZoom);
    const QRectF whole({}, QSizeF(m_picture.size));
    m_centre = {std::clamp(centre.x(), whole.left(), whole.right()), std::clamp(centre.y(), whole.top(), whole.bottom())};
    update();
    Q_EMIT viewChanged();
}

void PictureCanvas::showWhole()
{
    m_whole = true;
    setView(wholeZoom(), QRectF({}, QSizeF(m_picture.size)).center());
}

void PictureCanvas::setZoom(double zoom, QPointF fixed)
{
    if (m_picture.image.isNull())
        return;
    m_whole = false;
    const QPointF pixel = pictureAt(fixed);
    const double wanted = std::clamp(zoom, smallestZoom, largestZoom);
    setView(wanted, pixel - (fixed - QRectF(rect()).center()) / wanted);
}

void PictureCanvas::zoomBy(double steps, QPointF fixed)
{
    setZoom(m_zoom * std::pow(stepFactor, steps), fixed);
}

void PictureCanvas::showArea(const QRectF& area)
{
    const QRectF box = area.normalized();
    if (m_picture.image.isNull() || box.width() < 1 || box.height() < 1)
        return;
    m_whole = false;
    setView(std::min(width() / box.width(), height() / box.height()), box.center());
}

void PictureCanvas::moveBy(QPointF pixels)
{
    m_whole = false;
    setView(m_zoom, m_centre - pixels / m_zoom);
}

QPointF PictureCanvas::pictureAt(QPointF position) const
{
    return m_centre + (position - QRectF(rect()).center()) / m_zoom;
}

QPointF PictureCanvas::positionOf(QPointF pixel) const
{
    return QRectF(rect()).center() + (pixel - m_centre) * m_zoom;
}

bool PictureCanvas::wantsDetail() const
{
    return !m_picture.image.isNull() && !m_picture.isWhole()
           && m_zoom * devicePixelRatioF() * m_picture.size.width() > m_picture.image.width();
}

void PictureCanvas::resizeEvent(QResizeEvent*)
{
    if (m_whole)
        showWhole();
    else
        Q_EMIT viewChanged();
}

// --- Drawing -------------------------------------------------------------------------------------

void PictureCanvas::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().brush(QPalette::Dark));
    if (m_picture.image.isNull()) {
        painter.setPen(platform::readable(palette().color(QPalette::BrightText), palette().color(QPalette::WindowText),
                                          {palette().color(QPalette::Dark)}));
        painter.drawText(rect().adjusted(16, 16, -16, -16), Qt::AlignCenter | Qt::TextWordWrap, m_text);
        drawFocus(painter);
        return;
    }
    drawPicture(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_stroke == Stroke::Measure) {
        const QLineF drawn(pictureAt(m_pressed), pictureAt(m_last));
        drawSegment(painter, drawn, measured ? measured(drawn) : QString());
    } else if (!m_segment.isNull()) {
        drawSegment(painter, m_segment, m_segmentText);
    }
    if (m_stroke == Stroke::Frame) {
        const QRectF box = QRectF(m_pressed, m_last).normalized();
        painter.setPen(QPen(Qt::black, 3));
        painter.drawRect(box);
        painter.setPen(QPen(Qt::white, 1, Qt::DashLine));
        painter.drawRect(box);
    }
    if (!m_text.isEmpty())
        drawBadge(painter, {8.0 + fontMetrics().height(), double(height()) - 12}, m_text);
    drawFocus(painter);
}

void PictureCanvas::drawFocus(QPainter& painter)
{
    if (!hasFocus())
        return;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
}

/// Only what is in sight is drawn, of the image that is there.
void PictureCanvas::drawPicture(QPainter& painter)
{
    const QRectF whole({}, QSizeF(m_picture.size));
    const QRectF seen = QRectF(pictureAt({}), pictureAt(QPointF(width(), height()))).intersected(whole);
    if (seen.isEmpty())
        return;
    const double xScale = double(m_picture.image.width()) / m_picture.size.width();
    const double yScale = double(m_picture.image.height()) / m_picture.size.height();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, m_zoom < squareZoom || !m_picture.isWhole());
    painter.drawImage(QRectF(positionOf(seen.topLeft()), positionOf(seen.bottomRight())), m_picture.image,
                      QRectF(seen.x() * xScale, seen.y() * yScale, seen.width() * xScale, seen.height() * yScale));
}

/// Light on dark, so that it is seen on any picture.
void PictureCanvas::drawSegment(QPainter& painter, const QLineF& segment, const QString& text)
{
    const QLineF line(positionOf(segment.p1()), positionOf(segment.p2()));
    for (const QPen& pen : {QPen(Qt::black, 4), QPen(Qt::yellow, 2)}) {
        painter.setPen(pen);
        painter.drawLine(line);
        for (const QPointF end : {line.p1(), line.p2()}) {
            painter.drawLine(end - QPointF(endMark, 0), end + QPointF(endMark, 0));
            painter.drawLine(end - QPointF(0, endMark), end + QPointF(0, endMark));
        }
    }
    drawBadge(painter, line.center() + QPointF(10, -8), text);
}

/// A text on the picture, kept inside of the window.
void PictureCanvas::drawBadge(QPainter& painter, QPointF at, const QString& text)
{
    if (text.isEmpty())
        return;
    QRectF box = fontMetrics().boundingRect(text);
    box = QRectF(at - QPointF(0, box.height()), box.size()).adjusted(-5, -3, 5, 3);
    box.moveLeft(std::clamp(box.left(), 2.0, std::max(2.0, width() - box.width() - 2)));
    box.moveTop(std::clamp(box.top(), 2.0, std::max(2.0, height() - box.height() - 2)));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 190));
    painter.drawRoundedRect(box, 4, 4);
    painter.setPen(Qt::white);
    painter.drawText(box, Qt::AlignCenter, text);
    painter.setBrush(Qt::NoBrush);
}

} // namespace images
