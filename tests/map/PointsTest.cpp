#include "map/PointGrid.h"
#include "map/PointLoading.h"
#include "support/Project.h"

#include <QRandomGenerator>

using namespace map;
using namespace Qt::StringLiterals;

TEST(Points, RecordsOfAPlaceAreOnePointWithTheirNumber)
{
    Points points;
    EXPECT_EQ(points.add({.locality = 3, .name = u"Lattes"_s, .at = {3.9, 43.5}}), 0);
    EXPECT_EQ(points.add({.locality = 4, .name = u"Aude"_s, .at = {2.4, 43.1}}), 1);
    EXPECT_EQ(points.add({.locality = 3, .name = u"Lattes"_s, .at = {3.9, 43.5}}), 0);
    EXPECT_EQ(points.add({.locality = 5, .at = {0, 0}}), -1); // never typed
    EXPECT_EQ(points.size(), 2);
    EXPECT_EQ(points.total(), 3);
    EXPECT_EQ(points.largest(), 2);
    EXPECT_EQ(points.unplaced(), 1);
    EXPECT_EQ(points.label(0), u"Lattes (Effectif = 2 / 3)");
    EXPECT_EQ(points.indexOf(4), 1);
    EXPECT_EQ(points.indexOf(5), -1);
    EXPECT_EQ(points.bounds(), QRectF(QPointF(2.4, 43.1), QPointF(3.9, 43.5)));
}

TEST(PointSizes, GrowWithTheRootOfTheCount)
{
    PointSizes sizes{.smallest = 6, .largest = 26};
    EXPECT_DOUBLE_EQ(sizes.size(1, 100), 6);
    EXPECT_DOUBLE_EQ(sizes.size(100, 100), 26);
    EXPECT_NEAR(sizes.size(25, 100), 6 + 20 * 4.0 / 9, 1e-9);
    EXPECT_DOUBLE_EQ(sizes.size(1, 1), 6);
    EXPECT_DOUBLE_EQ(sizes.size(0, 9), 6);
    sizes.fixed = true;
    EXPECT_DOUBLE_EQ(sizes.size(100, 100), 6);
    sizes.effectifMin = 5;
    EXPECT_FALSE(sizes.shows(4));
    EXPECT_TRUE(sizes.shows(5));
}

TEST(Plots, LieEastAndNorthOfTheirPoint)
{
    const QList<Geo> corners = plotCorners({-55, 60}, {0, 0, 111320, 55660});
    EXPECT_NEAR(corners[0].longitude, -55, 1e-9);
    EXPECT_NEAR(corners[1].longitude, -53, 1e-6); // a degree is half as wide there
    EXPECT_NEAR(corners[2].latitude, 60.5, 1e-9);
    EXPECT_NEAR(corners[3].longitude, -55, 1e-9);
}

TEST(PointGrid, FindsWhatASearchOverAllFinds)
{
    Points points;
    QRandomGenerator random(11);
    for (int i = 1; i <= 5000; ++i)
        points.add({.locality = i, .at = {random.bounded(360.0) - 180, random.bounded(180.0) - 90}});
    const PointGrid grid(points);
    for (const QRectF& area : {QRectF(-10, -10, 30, 5), QRectF(-180, -90, 360, 180), QRectF(100, 20, 0.5, 60),
                               QRectF(-500, -500, 100, 100), QRectF(179, 89, 50, 50)}) {
        std::vector<int> expected;
        for (int i = 0; i < points.size(); ++i) {
            const Geo at = points.at(i).at;
            if (at.longitude >= area.left() && at.longitude <= area.right() && at.latitude >= area.top()
                && at.latitude <= area.bottom())
                expected.push_back(i);
        }
        EXPECT_EQ(grid.within(area), expected);
    }
    const QPolygonF triangle{QPointF(0, 0), QPointF(100, 0), QPointF(0, 80)};
    for (const int i : grid.within(triangle)) {
        const Geo at = points.at(i).at;
        EXPECT_TRUE(at.longitude >= 0 && at.latitude >= 0 && at.latitude <= 80 - at.longitude * 0.8);
    }
    EXPECT_FALSE(grid.within(triangle).empty());
    EXPECT_TRUE(PointGrid(Points()).within(QRectF(-1, -1, 2, 2)).empty());
    Points one;
    one.add({.locality = 1, .at = {5, 5}});
    EXPECT_EQ(PointGrid(one).within(QRectF(4, 4, 2, 2)), std::vector<int>{0});
    EXPECT_TRUE(PointGrid(one).within(QRectF(6, 6, 2, 2)).empty());
}

namespace {

class LoadedFromProject : public testing::Test {
protected:
    void SetUp() override
    {
        project.create();
        const auto run = [this](const QString& statement) { project.db().Execute(statement); };
        const QStringList places{
            u"'France',2,46,Null,Null,Null,'1','France',0"_s, u"'Lattes',3.9,43.5,12,'WP1',Null,'1/2','France - Lattes',1"_s,
            u"'Nulle part',0,0,Null,Null,Null,'3','Nulle part',0"_s, u"'Plan',4,44,Null,Null,5,'4','Plan',-1"_s};
        for (const QString& place : places)
            run(u"INSERT INTO Localités ([Localité],[LongDD],[LatDD],[Altitude],[GPSRef],[SizeLongDD],[CodeRegion],"
                "[Nom Entier],[ID Type]) VALUES ("_s + place + u')');
        for (const QString& place : {u"2"_s, u"2"_s, u"1"_s, u"3"_s, u"Null"_s})
            run(u"INSERT INTO Individus ([ID Localités]) VALUES ("_s + place + u')');
    }
    support::TestProject project;
};

} // namespace

TEST_F(LoadedFromProject, EveryPlaceHasTheNumberOfItsIndividuals)
{
    const LoadedPoints loaded = loadProject(project.db(), project.progression);
    ASSERT_EQ(loaded.points.size(), 2);
    const MapPoint& lattes = loaded.points.at(loaded.points.indexOf(2));
    EXPECT_EQ(lattes.name, u"France - Lattes");
    EXPECT_EQ(lattes.count, 2);
    EXPECT_EQ(lattes.altitude, 12);
    EXPECT_EQ(lattes.gpsRef, u"WP1");
    EXPECT_EQ(loaded.points.total(), 3);
    EXPECT_EQ(loaded.points.unplaced(), 1);
    EXPECT_EQ(loaded.individuals[2], (QList<qint32>{1, 2}));
    EXPECT_EQ(loaded.localityOf.value(3), 1);
    EXPECT_TRUE(project.progression.steps.contains(u"-1 Chargements des points"_s));
}

TEST_F(LoadedFromProject, AStatementWithoutIndividualsCountsItsRows)
{
    const LoadedPoints loaded = loadPoints(
        project.db(),
        u"SELECT [ID Localités] AS Chp1,[Nom Entier] AS Chp2,[LongDD] AS Chp3,[LatDD] AS Chp4 FROM [Localités] "
        "WHERE [ID Type]>=0"_s,
        project.progression);
    EXPECT_EQ(loaded.points.size(), 2);
    EXPECT_EQ(loaded.points.at(0).locality, 1);
    EXPECT_TRUE(loaded.individuals.isEmpty());
    EXPECT_THROW(loadPoints(project.db(), u"SELECT [Localité] FROM [Localités]"_s, project.progression), jet::Error);
}
