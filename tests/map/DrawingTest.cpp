#include "map/Drawing.h"

#include <gtest/gtest.h>

using namespace map;
using namespace Qt::StringLiterals;

namespace {

struct DrawnSheet {
    Points points;
    std::vector<bool> selected;
    PointStyle style;
    QImage picture{200, 100, QImage::Format_RGB32};
    ViewTransform view = ViewTransform::whole({0, 10, 20, 10}, {200, 100}, {200, 100});

    int draw(int current = -1)
    {
        selected.resize(size_t(points.size()), false);
        picture.fill(Qt::white);
        return drawPoints(picture, {points, drawingOrder(points), selected, current}, view, style);
    }
    QColor at(Geo place) const { return picture.pixelColor(view.position(place).toPoint()); }
};

bool isRed(const QColor& colour)
{
    return colour.red() > colour.blue() + 60;
}

bool isBlue(const QColor& colour)
{
    return colour.blue() > colour.red() + 60;
}

} // namespace

TEST(Drawing, PutsPointsWhereTheyLieInTheirColours)
{
    DrawnSheet sheet;
    sheet.points.add({.locality = 1, .at = {5, 5}});
    sheet.points.add({.locality = 2, .at = {15, 5}, .count = 9});
    sheet.points.add({.locality = 3, .at = {50, 5}}); // beside the map
    sheet.selected = {false, true, false};
    EXPECT_EQ(sheet.draw(), 2);
    EXPECT_TRUE(isRed(sheet.at({5, 5})));
    EXPECT_TRUE(isBlue(sheet.at({15, 5})));
    EXPECT_EQ(sheet.at({10, 5}), QColor(Qt::white));
}

TEST(Drawing, HidesWhatHasFewRecordsAndAllWhenAsked)
{
    DrawnSheet sheet;
    sheet.points.add({.locality = 1, .at = {5, 5}, .count = 2});
    sheet.points.add({.locality = 2, .at = {15, 5}, .count = 9});
    sheet.style.sizes.effectifMin = 3;
    EXPECT_EQ(sheet.draw(), 1);
    EXPECT_EQ(sheet.at({5, 5}), QColor(Qt::white));
    EXPECT_TRUE(isRed(sheet.at({15, 5})));
    sheet.style.visible = false;
    EXPECT_EQ(sheet.draw(), 0);
    EXPECT_EQ(sheet.at({15, 5}), QColor(Qt::white));
}

TEST(Drawing, SmallPointsLieOnLargeOnesAndSelectedOnesOnTop)
{
    DrawnSheet sheet;
    sheet.style.fore = Qt::black;
    sheet.points.add({.locality = 1, .at = {5, 5}});
    sheet.points.add({.locality = 2, .at = {5, 5}, .count = 400});
    sheet.draw();
    // The border of the small one shows inside the large one.
    const QPoint middle = sheet.view.position({5, 5}).toPoint();
    int dark = 0;
    for (int x = middle.x() - 5; x <= middle.x() + 5; ++x)
        dark += sheet.picture.pixelColor(x, middle.y()).red() < 120;
    EXPECT_GE(dark, 2);
    sheet.selected = {false, true};
    sheet.draw();
    EXPECT_TRUE(isBlue(sheet.at({5, 5})));
}

/// A dense sheet is thinned out, but no point disappears that stands alone, and selected ones all show.
TEST(Drawing, VeryManyPointsLeaveNoneOutThatStandsAlone)
{
    DrawnSheet sheet;
    sheet.picture = QImage(1000, 500, QImage::Format_RGB32);
    sheet.view = ViewTransform::whole({0, 10, 20, 10}, {200, 100}, {1000, 500});
    int id = 0;
    for (int i = 0; i < 40000; ++i) // a carpet in the west
        sheet.points.add({.locality = ++id, .at = {0.01 + (i % 200) * 0.04, 0.01 + (i / 200) * 0.049}});
    for (int i = 0; i < 10; ++i)
        sheet.points.add({.locality = ++id, .at = {12.0 + (i % 5), 3.0 + (i / 5)}});
    sheet.selected.assign(size_t(sheet.points.size()), false);
    sheet.selected[20100] = true;
    EXPECT_EQ(sheet.draw(), 40010);
    for (int i = 0; i < 10; ++i)
        EXPECT_TRUE(isRed(sheet.at({12.0 + (i % 5), 3.0 + (i / 5)}))) << i;
    EXPECT_TRUE(isBlue(sheet.at(sheet.points.at(20100).at)));
    for (int x = 20; x < 380; x += 7)
        EXPECT_NE(sheet.picture.pixelColor(x, 250), QColor(Qt::white)) << x;
}

TEST(Drawing, ScaledPicturesKeepTheirPlaces)
{
    QImage whole(1024, 512, QImage::Format_RGB32);
    whole.fill(Qt::white);
    for (int y = 0; y < 512; ++y) {
        for (int x = 512; x < 1024; ++x)
            whole.setPixelColor(x, y, Qt::black);
    }
    const ScaledPicture picture(whole);
    for (const QRectF& area : {QRectF(0, 0, 1024, 512), QRectF(-300, -40, 400, 200), QRectF(-2000, -900, 8192, 4096)}) {
        QImage out(100, 60, QImage::Format_RGB32);
        out.fill(Qt::red);
        QPainter painter(&out);
        picture.draw(painter, area, out.rect());
        painter.end();
        for (const int x : {1, 30, 50, 70, 98}) {
            const double share = (x + 0.5 - area.left()) / area.width();
            const QColor expected = share < 0 || share > 1 ? Qt::red : share < 0.5 ? Qt::white : Qt::black;
            if (qAbs(share - 0.5) * area.width() > 3) {
                EXPECT_EQ(out.pixelColor(x, 30), expected) << area.width() << " at " << x;
            }
        }
    }
}

TEST(Legend, ShowsCountsBetweenTheSmallestAndTheLargest)
{
    EXPECT_EQ(legendCounts(1, 1), (QList<int>{1}));
    EXPECT_EQ(legendCounts(1, 2), (QList<int>{1, 2}));
    EXPECT_EQ(legendCounts(1, 100), (QList<int>{1, 30, 100}));
    EXPECT_EQ(legendCounts(10, 10), (QList<int>{10}));
}
