#include "MapWindow.h"

#include <cmath>

using namespace map;
using namespace Qt::StringLiterals;
using support::stroke;

namespace {

/// A sheet of 20 by 10 degrees on a window of the same shape, four places on it.
class Canvas : public testing::Test {
protected:
    void SetUp() override
    {
        QImage picture(800, 400, QImage::Format_RGB32);
        picture.fill(Qt::white);
        canvas.resize(800, 400);
        canvas.setMap(picture, {-10, 5, 20, 10}, u"Plan"_s);
        Points points;
        points.add({.locality = 11, .name = u"Ouest"_s, .at = {-8, 1}});
        points.add({.locality = 12, .name = u"Milieu"_s, .at = {1, 1}, .count = 5});
        points.add({.locality = 13, .name = u"Est"_s, .at = {8, 1}, .count = 2});
        points.add({.locality = 14, .name = u"Sud"_s, .at = {1, -4}});
        canvas.setPoints(points);
        canvas.show();
    }
    QPoint at(double longitude, double latitude) const
    {
        return {canvas.view().LongDtoPicture(longitude), canvas.view().LatDtoPicture(latitude)};
    }
    void click(QPoint where, Qt::KeyboardModifiers keys = {})
    {
        QTest::mouseClick(&canvas, Qt::LeftButton, keys, where);
    }
    QString selected() const
    {
        QStringList ids;
        const QList<qint32> all = canvas.selectedLocalities();
        for (const qint32 id : all)
            ids << QString::number(id);
        return ids.join(u',');
    }
    MapCanvas canvas;
};

} // namespace

TEST_F(Canvas, ClicksSelectAndModifiersAdd)
{
    QSignalSpy told(&canvas, &MapCanvas::selectionChanged);
    click(at(1, 1));
    EXPECT_EQ(selected(), u"12");
    click(at(8, 1), Qt::ControlModifier);
    EXPECT_EQ(selected(), u"12,13");
    click(at(1, 1), Qt::ControlModifier);
    EXPECT_EQ(selected(), u"13");
    click(at(-8, 1), Qt::ShiftModifier);
    EXPECT_EQ(selected(), u"11,13");
    click(at(-3, -3)); // nothing there
    EXPECT_EQ(selected(), QString());
    EXPECT_EQ(told.count(), 5);
}

TEST_F(Canvas, AFrameSelectsWhatLiesInIt)
{
    canvas.setTool(MapTool::Frame);
    stroke(canvas, {at(-9, 4), at(0, 2), at(2, 0)});
    EXPECT_EQ(selected(), u"11,12");
    stroke(canvas, {at(9, 0), at(7, 2)}, Qt::ControlModifier);
    EXPECT_EQ(selected(), u"11,12,13");
    canvas.setTool(MapTool::Point);
    stroke(canvas, {at(0, -3), at(2, -5)}, Qt::ShiftModifier);
    EXPECT_EQ(selected(), u"11,12,13,14");
}

TEST_F(Canvas, ALassoSelectsWhatItEncloses)
{
    canvas.setTool(MapTool::Lasso);
    // Around the middle and the south, by a way that leaves the east out although its box holds it.
    stroke(canvas, {at(-1, 2), at(3, 2), at(2, -2), at(9, -4.5), at(0, -4.8), at(-1, 2)});
    EXPECT_EQ(selected(), u"12,14");
}

TEST_F(Canvas, HiddenPointsAreNotSelected)
{
    PointStyle style = canvas.style();
    style.sizes.effectifMin = 2;
    canvas.setStyle(style);
    click(at(-8, 1));
    EXPECT_EQ(selected(), QString());
    canvas.selectAll();
    EXPECT_EQ(selected(), u"12,13");
}

TEST_F(Canvas, TheWheelZoomsAtTheCursorBySteps)
{
    const QPoint cursor = at(8, 1);
    for (const double zoom : {1.25, 1.5625, 1.953125}) {
        support::wheel(canvas, cursor, 1);
        EXPECT_DOUBLE_EQ(canvas.zoom(), zoom);
        EXPECT_LE((at(8, 1) - cursor).manhattanLength(), 1);
    }
    support::wheel(canvas, cursor, 100);
    EXPECT_DOUBLE_EQ(canvas.zoom(), 32);
    EXPECT_LE((at(8, 1) - cursor).manhattanLength(), 1);
    support::wheel(canvas, cursor, -100);
    EXPECT_DOUBLE_EQ(canvas.zoom(), 1);
    EXPECT_EQ(at(-10, 5), QPoint(0, 0));
}

TEST_F(Canvas, StrokesMoveTheMapAsFarAsItHasPicture)
{
    canvas.zoomBy(4);
    const QPoint before = at(1, 1);
    stroke(canvas, {{400, 200}, {380, 190}, {350, 230}});
    EXPECT_EQ(at(1, 1) - before, QPoint(-50, 30));
    EXPECT_EQ(selected(), QString());
    canvas.setTool(MapTool::Frame); // the middle button moves with every tool
    stroke(canvas, {{350, 230}, {400, 200}}, {}, Qt::MiddleButton);
    EXPECT_EQ(at(1, 1), before);
    canvas.moveBy({1e6, 1e6});
    EXPECT_EQ(at(-10, 5), QPoint(0, 0));
}

TEST_F(Canvas, ShowsPointsAndSelectionAsLargeAsTheyFit)
{
    canvas.selectLocalities({11, 14});
    canvas.showSelected();
    EXPECT_GT(canvas.zoom(), 1.2);
    EXPECT_TRUE(canvas.rect().contains(at(-8, 1)));
    EXPECT_TRUE(canvas.rect().contains(at(1, -4)));
    canvas.showPoints();
    for (const MapPoint& point : canvas.points())
        EXPECT_TRUE(canvas.rect().contains(at(point.at.longitude, point.at.latitude)));
    canvas.selectLocalities({14});
    canvas.showSelected();
    EXPECT_DOUBLE_EQ(canvas.zoom(), 32);
    EXPECT_TRUE(canvas.rect().contains(at(1, -4)));
}

TEST_F(Canvas, ResizingKeepsTheMiddle)
{
    canvas.zoomBy(5);
    const Geo middle = canvas.view().place(QRectF(canvas.rect()).center());
    canvas.grab();
    canvas.resize(600, 500);
    QCoreApplication::processEvents();
    const Geo now = canvas.view().place(QRectF(canvas.rect()).center());
    EXPECT_NEAR(now.longitude, middle.longitude, 0.01);
    EXPECT_NEAR(now.latitude, middle.latitude, 0.01);
}

TEST_F(Canvas, ReadsTheCursorOutInDegreesMinutesAndSeconds)
{
    QSignalSpy told(&canvas, &MapCanvas::cursorMoved);
    QMouseEvent move(QEvent::MouseMove, QPointF(at(1, 1)), QPointF(at(1, 1)), Qt::NoButton, Qt::NoButton, {});
    QCoreApplication::sendEvent(&canvas, &move);
    ASSERT_EQ(told.count(), 1);
    EXPECT_EQ(told[0][0].toString(), u"Long. : E001°00'00.00  Lat. : N01°00'00.00");
    EXPECT_EQ(told[0][1].toString(), u"Milieu (Effectif = 5 / 9)");
    EXPECT_EQ(canvas.readOut({-5, 10}), QString());
}

TEST_F(Canvas, KeysMoveZoomAndGoFromPointToPoint)
{
    QSignalSpy opened(&canvas, &MapCanvas::pointActivated);
    for (const Qt::Key key : {Qt::Key_PageDown, Qt::Key_PageDown, Qt::Key_Space, Qt::Key_Return})
        QTest::keyClick(&canvas, key);
    EXPECT_EQ(selected(), u"12"); // the second from the west
    ASSERT_EQ(opened.count(), 1);
    EXPECT_EQ(opened[0][0].toInt(), 12);
    EXPECT_EQ(canvas.accessibleDescription(), u"Milieu (Effectif = 5 / 9)");
    QTest::keyClick(&canvas, Qt::Key_PageUp);
    EXPECT_EQ(canvas.currentPoint(), 0);
    QTest::keyClick(&canvas, Qt::Key_Plus);
    EXPECT_DOUBLE_EQ(canvas.zoom(), 1.25);
    const QPoint before = at(1, 1);
    QTest::keyClick(&canvas, Qt::Key_Left);
    EXPECT_EQ(at(1, 1) - before, QPoint(100, 0));
    QTest::keyClick(&canvas, Qt::Key_Home);
    EXPECT_DOUBLE_EQ(canvas.zoom(), 1);
    QTest::keyClick(&canvas, Qt::Key_Escape);
    EXPECT_EQ(selected(), QString());
}

TEST_F(Canvas, DrawsPointsWhereTheyLieAtEveryZoom)
{
    PointStyle style = canvas.style();
    style.back = Qt::red;
    canvas.setStyle(style);
    canvas.setLegendShown(false);
    for (int i = 0; i < 8; ++i) {
        const QColor there = canvas.drawn().pixelColor(at(1, 1));
        EXPECT_GT(there.red(), there.blue() + 80) << "x" << canvas.zoom();
        canvas.zoomBy(2, at(1, 1));
    }
}

TEST_F(Canvas, ToolsGivePlacesAndRegions)
{
    QSignalSpy places(&canvas, &MapCanvas::placeClicked), regions(&canvas, &MapCanvas::regionDrawn);
    canvas.setTool(MapTool::AddPlace);
    click(at(-3, 2));
    ASSERT_EQ(places.count(), 1);
    EXPECT_NEAR(places[0][0].toDouble(), -3, 0.03);
    EXPECT_NEAR(places[0][1].toDouble(), 2, 0.03);
    canvas.setTool(MapTool::Region);
    stroke(canvas, {at(9, -1), at(-9, 3)});
    ASSERT_EQ(regions.count(), 1);
    const QRectF area = regions[0][0].toRectF();
    EXPECT_NEAR(area.left(), -9, 0.03);
    EXPECT_NEAR(area.right(), 9, 0.03);
    EXPECT_NEAR(area.top(), -1, 0.03);
    EXPECT_NEAR(area.bottom(), 3, 0.03);
    EXPECT_EQ(selected(), QString());
}

TEST_F(Canvas, NothingIsDrawnAnewWhileFrozen)
{
    canvas.setLegendShown(false);
    const QImage before = canvas.grab().toImage();
    canvas.setFrozen(true);
    canvas.zoomBy(6);
    EXPECT_EQ(canvas.grab().toImage(), before);
    canvas.setFrozen(false);
    EXPECT_NE(canvas.grab().toImage(), before);
}
