// The drawn map and what mouse and keys do on it.
#pragma once

#include "map/Drawing.h"
#include "map/PointGrid.h"

#include <QElapsedTimer>
#include <QWidget>

namespace map {

/// What a click or a stroke of the mouse does. Strokes with the middle button always move the map, Shift makes a frame of
/// any stroke.
enum class MapTool {
    Point,     ///< A click selects, a stroke moves the map.
    Frame,     ///< A stroke selects what lies in its rectangle.
    Lasso,     ///< A stroke selects what it encloses.
    AddPlace,  ///< A click names a place.
    Region,    ///< A stroke gives a rectangle.
    Calibrate, ///< Clicks set two marks, which can be dragged.
};

/// Draws the picture, the points, names, legend and marks; moving and zooming redraw what is seen from scaled copies, so
/// that it stays smooth. The wheel zooms at the cursor.
///
/// Keys: arrows move, + and - zoom, Home shows the whole; Page Down and Page Up go from point to point, Space
/// selects the current one, Return opens it, Escape gives up a tool.
class MapCanvas : public QWidget {
    Q_OBJECT
public:
    explicit MapCanvas(QWidget* parent = nullptr);
    ~MapCanvas() override;

    /// The picture with its frame; one that is not calibrated shows no points. Shows the whole.
    void setMap(const QImage& picture, const Frame& frame, const QString& name);
    const Frame& frame() const { return m_frame; }
    bool isCalibrated() const { return m_calibrated; }
    const QString& mapName() const { return m_name; }
    QSize pictureSize() const { return m_picture.size(); }
    const ViewTransform& view() const { return m_view; }

    void setPoints(Points points);
    const Points& points() const { return m_points; }
    /// Counts or positions were changed in place.
    void pointsChanged();
    const PointStyle& style() const { return m_style; }
    void setStyle(const PointStyle& style);
    bool isLegendShown() const { return m_legend; }
    void setLegendShown(bool shown);

    // --- Selection ---------------------------------------------------------------------------
    QList<qint32> selectedLocalities() const; ///< In the order of the points.
    int selectedCount() const { return m_selectedCount; }
    bool isSelected(int point) const { return m_selected[size_t(point)]; }
    /// Says nothing back.
    void selectLocalities(const QList<qint32>& localities);
    void selectAll();
    void clearSelection();
    int currentPoint() const { return m_current; } ///< -1 for none.
    void setCurrentPoint(int point); ///< Moves the map where it is out of sight.

    // --- View --------------------------------------------------------------------------------
    double zoom() const { return m_zoom; } ///< 1: the whole picture.
    void zoomBy(int steps, QPointF fixed);
    void zoomBy(int steps) { zoomBy(steps, rect().center()); }
    void showWhole();
    void showPoints();   ///< Those shown, as large as they all fit.
    void showSelected();
    /// Longitudes along x, latitudes along y.
    void showArea(const QRectF& area);
    void moveBy(QPointF pixels);
    /// Milliseconds that the last drawing took.
    qint64 drawingTime() const { return m_drawingTime; }
    QImage drawn(); ///< The map with everything on it, as it is seen.

    // --- Tools -------------------------------------------------------------------------------
    MapTool tool() const { return m_tool; }
    void setTool(MapTool tool);
    /// Marks of a calibration in pixels of the picture.
    const QList<QPointF>& marks() const { return m_marks; }
    void setMarks(const QList<QPointF>& marks);

    /// Nothing is drawn anew until it is taken back.
    void setFrozen(bool frozen);
    bool isFrozen() const { return m_frozen; }

    /// The point at a position of the widget, -1 for none. The one drawn on top comes first.
    int pointAt(QPointF position) const;
    QPointF pictureAt(QPointF position) const;
    /// "Long. : …  Lat. : …" of a position, in degrees, minutes and seconds; pixels where the map is not calibrated.
    QString readOut(QPointF position) const;

    QSize sizeHint() const override { return {720, 420}; }

Q_SIGNALS:
    void selectionChanged(); ///< By the user.
    void pointActivated(qint32 locality);
    void cursorMoved(const QString& readOut, const QString& point); ///< Empty when the cursor left.
    void placeClicked(double longitude, double latitude);
    void regionDrawn(const QRectF& area); ///< Longitudes along x, latitudes along y.
    void marksChanged();
    void toolChanged();
    void viewChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    enum class Stroke { None, Move, Frame, Lasso, Mark };
    void setView(const ViewTransform& view);
    void redrawMap();
    void redrawPoints();
    void drawCaches();
    void drawMarks(QPainter& painter);
    void drawStroke(QPainter& painter);
    void drawLegendInto(QPainter& painter);
    void beginStroke(QMouseEvent* event);
    void endStroke(QMouseEvent* event);
    void click(QMouseEvent* event);
    void select(const std::vector<int>& points, Qt::KeyboardModifiers keys);
    void mark(int point, bool selected);
    void toggle(int point);
    void step(int by);
    bool isShown(int point) const;
    int markAt(QPointF position) const;
    QPointF markPosition(QPointF mark) const;
    QRectF areaOf(const QRectF& pixels) const;
    QString tip(int point) const;
    void tellCursor(QPointF position);

    ScaledPicture m_picture;
    Frame m_frame = Frame::ofPixels({1, 1}); ///< Of the pixels where the map is not calibrated.
    bool m_calibrated = false;
    QString m_name;
    ViewTransform m_view;
    double m_zoom = 1;

    Points m_points;
    std::vector<int> m_order;
    PointGrid m_grid;
    std::vector<bool> m_selected;
    int m_selectedCount = 0;
    int m_current = -1;
    PointStyle m_style;
    bool m_legend = true;

    MapTool m_tool = MapTool::Point;
    Stroke m_stroke = Stroke::None;
    Qt::MouseButton m_button = Qt::NoButton;
    QPointF m_pressed;
    QPointF m_last;
    bool m_moved = false;
    QPolygonF m_lasso;
    QList<QPointF> m_marks;
    int m_mark = -1; ///< The one that is dragged.
    double m_wheel = 0;

    QImage m_mapImage;
    QImage m_image; ///< With the points.
    bool m_mapStale = true;
    bool m_pointsStale = true;
    bool m_frozen = false;
    qint64 m_drawingTime = 0;
};

} // namespace map
