#include "map/Projection.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace map;

namespace {

struct Sheet {
    const char* name;
    Frame frame;
    QSize picture;
};

const Sheet sheets[] = {
    {"world", Frame::world(), {4320, 2160}},
    {"south and west", {-55.5, -1.25, 4.5, 6.75}, {800, 1200}},
    {"small plan", {165.123456, -21.5, 0.002, 0.001}, {2000, 1000}},
    {"mirrored scan", {10, -5, -4, -3}, {400, 300}},
};

class EverySheet : public testing::TestWithParam<Sheet> {};

INSTANTIATE_TEST_SUITE_P(Sheets, EverySheet, testing::ValuesIn(sheets),
                         [](const auto& info) { return std::to_string(info.index); });

} // namespace

TEST(Projection, CornersOfTheFrameLieAtTheOffsetAndTheOffsetPlusTheScaledSides)
{
    const Frame frame{163, -19, 6, 4};
    ViewTransform view;
    view.scaleX = 200;
    view.scaleY = 150;
    view.origin = {frame.X0, frame.Y0};
    view.offset = {37, -12};
    EXPECT_EQ(view.LongDtoPicture(163), 37);
    EXPECT_EQ(view.LatDtoPicture(-19), -12);
    EXPECT_EQ(view.LongDtoPicture(frame.right()), 37 + 6 * 200);
    EXPECT_EQ(view.LatDtoPicture(frame.bottom()), -12 + 4 * 150);
}

TEST(Projection, LatitudesFallWhileRowsGrow)
{
    const Frame frame = Frame::world();
    EXPECT_DOUBLE_EQ(rowToLatitude(0, frame, {3600, 1800}), 90);
    EXPECT_DOUBLE_EQ(rowToLatitude(900, frame, {3600, 1800}), 0);
    EXPECT_DOUBLE_EQ(rowToLatitude(1800, frame, {3600, 1800}), -90);
    EXPECT_DOUBLE_EQ(columnToLongitude(0, frame, {3600, 1800}), -180);
    EXPECT_DOUBLE_EQ(columnToLongitude(2700, frame, {3600, 1800}), 90);
}

TEST(Projection, TheNearestPixelIsTaken)
{
    ViewTransform view;
    view.scaleX = view.scaleY = 10;
    EXPECT_EQ(view.LongDtoPicture(1.04), 10);
    EXPECT_EQ(view.LongDtoPicture(1.06), 11);
    EXPECT_EQ(view.LatDtoPicture(-1.06), 11);
    EXPECT_EQ(view.LongDtoPicture(-1.06), -11);
}

TEST_P(EverySheet, PicturePositionsComeBackFromCoordinates)
{
    const auto& [name, frame, picture] = GetParam();
    for (int i = 0; i <= 20; ++i) {
        const QPointF at(picture.width() * i / 20.0, picture.height() * (20 - i) / 20.0);
        const Geo place{columnToLongitude(at.x(), frame, picture), rowToLatitude(at.y(), frame, picture)};
        const QPointF back = toPicture(place, frame, picture);
        EXPECT_NEAR(back.x(), at.x(), 1e-5) << name;
        EXPECT_NEAR(back.y(), at.y(), 1e-5) << name;
        EXPECT_TRUE(frame.contains(place) || i == 0 || i == 20) << name;
    }
}

/// Single-precision scales must not carry the far end of a magnified picture away.
TEST_P(EverySheet, PositionsComeBackFromTheViewAtEveryZoom)
{
    const auto& [name, frame, picture] = GetParam();
    for (double zoom = 1; zoom < zoomMost; zoom = zoomAfter(zoom, 1)) {
        const ViewTransform view = ViewTransform::whole(frame, picture, {900, 600}).scaled(zoom, {450, 300});
        for (int i = 0; i <= 10; ++i) {
            const Geo place{frame.X0 + frame.W * i / 10, frame.Y0 - frame.H * i / 10};
            const QPointF at = view.position(place);
            const Geo back = view.place(at);
            EXPECT_NEAR(back.longitude, place.longitude, std::abs(frame.W) * 1e-9) << name << " x" << zoom;
            EXPECT_NEAR(back.latitude, place.latitude, std::abs(frame.H) * 1e-9) << name << " x" << zoom;
            EXPECT_LE(std::abs(view.LongDtoPicture(place.longitude) - at.x()), 0.5 + 1e-9);
        }
        const QRectF area = view.area(frame);
        EXPECT_NEAR(area.width() / area.height(), double(picture.width()) / picture.height(), 1e-4) << name;
    }
}

TEST_P(EverySheet, ManyStepsThereAndBackEndWhereTheyBegan)
{
    const auto& [name, frame, picture] = GetParam();
    const ViewTransform begin = ViewTransform::whole(frame, picture, {900, 600});
    ViewTransform view = begin;
    const QPointF cursor(123, 456);
    const Geo under = view.place(cursor);
    for (int i = 0; i < 15; ++i) {
        view = view.scaled(zoomStep, cursor);
        EXPECT_NEAR(view.position(under).x(), cursor.x(), 0.02) << name;
        EXPECT_NEAR(view.position(under).y(), cursor.y(), 0.02) << name;
    }
    for (int i = 0; i < 15; ++i)
        view = view.scaled(1 / zoomStep, cursor);
    EXPECT_NEAR(view.area(frame).left(), begin.area(frame).left(), 0.05);
    EXPECT_NEAR(view.area(frame).bottom(), begin.area(frame).bottom(), 0.05);
}

TEST(Projection, ARowKeepsTheCoordinatesOfItsPicturesBounds)
{
    const Frame frame = Frame::ofRow(163, -19, 169, -23);
    EXPECT_EQ(frame, (Frame{163, -19, 6, 4}));
    EXPECT_TRUE(frame.contains({163, -19}));
    EXPECT_TRUE(frame.contains({169, -23}));
    EXPECT_TRUE(frame.contains({166, -21}));
    EXPECT_FALSE(frame.contains({162.999, -21}));
    EXPECT_FALSE(frame.contains({166, -18.999}));
    EXPECT_FALSE(Frame::ofRow(0, 0, {}, {}).isCalibrated());
    EXPECT_FALSE(Frame::ofRow(5, 1, 5, 2).isCalibrated());
    EXPECT_TRUE(Frame::ofRow(5, 1, 4, 2).isCalibrated());
    EXPECT_TRUE(Frame::ofRow(5, 1, 4, 2).contains({4.5, 1.5})); // mirrored and upside down
}

TEST(Zoom, GoesByStepsFromTheWholeTo32TimesAndBack)
{
    double zoom = 1;
    EXPECT_EQ(zoomAfter(zoom, -1), 1);
    QList<double> up;
    while (zoom < zoomMost) {
        up << zoom;
        zoom = zoomAfter(zoom, 1);
    }
    EXPECT_EQ(up.size(), 16);
    EXPECT_DOUBLE_EQ(up[3], 1.953125);
    EXPECT_EQ(zoom, 32);
    EXPECT_EQ(zoomAfter(zoom, 1), 32);
    while (!up.isEmpty()) {
        zoom = zoomAfter(zoom, -1);
        EXPECT_NEAR(zoom, up.takeLast(), 1e-9);
    }
    EXPECT_DOUBLE_EQ(zoomWithin(2), 1.953125);
    EXPECT_EQ(zoomWithin(0.3), 1);
    EXPECT_EQ(zoomWithin(1000), 32);
}

TEST(View, LeavesNoEmptyBorderThatMapCouldFill)
{
    const Frame frame{0, 10, 20, 10};
    const ViewTransform whole = ViewTransform::whole(frame, {200, 100}, {400, 400});
    EXPECT_EQ(whole.area(frame), QRectF(0, 100, 400, 200));
    const ViewTransform large = whole.scaled(4, {200, 200}).moved({5000, -5000}).kept(frame, {400, 400});
    EXPECT_NEAR(large.area(frame).left(), 0, 1e-3);
    EXPECT_NEAR(large.area(frame).bottom(), 400, 1e-3);
    // Narrower than the window: centred.
    EXPECT_NEAR(whole.moved({30, 70}).kept(frame, {400, 400}).area(frame).center().y(), 200, 1e-3);
}
