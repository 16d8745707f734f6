// A picture at any zoom, with a segment on it.
#pragma once

#include "images/Pictures.h"

#include <QLineF>
#include <QWidget>
#include <functional>

namespace images {

enum class PictureTool {
    Move,    ///< A stroke moves the picture.
    Frame,   ///< A stroke draws the frame to zoom onto.
    Measure, ///< A stroke draws a segment.
};

/// Draws the picture and what the mouse does on it. Coordinates are pixels of the whole picture, upright, even where only a
/// reduced one is there yet. The wheel zooms at the cursor; the middle button moves whatever the tool.
///
/// Keys: arrows move, + and - zoom, Home shows the whole, 1 shows it pixel for pixel, Escape gives a stroke up.
class PictureCanvas : public QWidget {
    Q_OBJECT
public:
    explicit PictureCanvas(QWidget* parent = nullptr);

    /// Shows the whole of another picture; the text where the image is null.
    void setPicture(const ViewedPicture& picture);
    /// The same picture in more detail; the view stays.
    void refine(const ViewedPicture& picture);
    void setText(const QString& text);
    const ViewedPicture& picture() const { return m_picture; }
    QString text() const { return m_text; }

    // --- View --------------------------------------------------------------------------------
    /// Pixels of the screen for one of the picture.
    double zoom() const { return m_zoom; }
    void setZoom(double zoom) { setZoom(zoom, rect().center()); }
    void setZoom(double zoom, QPointF fixed);
    void zoomBy(double steps, QPointF fixed);
    void zoomBy(double steps) { zoomBy(steps, rect().center()); }
    void showWhole();
    void showArea(const QRectF& area);
    QPointF pictureAt(QPointF position) const;
    QPointF positionOf(QPointF pixel) const;
    /// More pixels are on the screen than the image has.
    bool wantsDetail() const;

    // --- Tools -------------------------------------------------------------------------------
    PictureTool tool() const { return m_tool; }
    void setTool(PictureTool tool);
    /// The segment shown, with its text; a null line for none.
    void setSegment(const QLineF& segment, const QString& text);
    QLineF segment() const { return m_segment; }
    QString segmentText() const { return m_segmentText; }
    /// The text of a segment while it is drawn.
    std::function<QString(const QLineF&)> measured;

    QSize sizeHint() const override { return {480, 360}; }

Q_SIGNALS:
    void viewChanged();
    void segmentDrawn(const QLineF& segment); ///< Longer than a click.
    void frameDrawn();
    void toolGivenUp();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    enum class Stroke { None, Move, Frame, Measure };
    double wholeZoom() const;
    void setView(double zoom, QPointF centre);
    void moveBy(QPointF pixels);
    void drawPicture(QPainter& painter);
    void drawFocus(QPainter& painter);
    void drawSegment(QPainter& painter, const QLineF& segment, const QString& text);
    void drawBadge(QPainter& painter, QPointF at, const QString& text);
    void showCursor();

    ViewedPicture m_picture;
    QString m_text;
    double m_zoom = 1;
    QPointF m_centre;     ///< Pixel of the picture in the middle of the window.
    bool m_whole = true;  ///< Stays whole when the window changes.

    PictureTool m_tool = PictureTool::Move;
    Stroke m_stroke = Stroke::None;
    Qt::MouseButton m_button = Qt::NoButton;
    QPointF m_pressed;
    QPointF m_last;
    QLineF m_segment;
    QString m_segmentText;
};

} // namespace images
