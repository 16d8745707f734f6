#include "map/Maps.h"
#include "support/Project.h"

#include <QDir>
#include <QFile>

using namespace map;
using namespace Qt::StringLiterals;

namespace {

class MapsOfProject : public testing::Test {
protected:
    void SetUp() override
    {
        project.create();
        context.emplace(reference::ReferenceContext{project.db(), project.clock, project.dialogues, {}, nullptr});
        context->editing.nextId = [this] { return ++counter; };
        places = std::make_unique<reference::Cl_Localité>(*context, QStringLiteral("/opt/herbora"));
    }
    support::TestProject project;
    qint32 counter = 0;
    std::optional<reference::ReferenceContext> context;
    std::unique_ptr<reference::Cl_Localité> places;
};

Points pointsAt(const QList<Geo>& all)
{
    Points points;
    for (const Geo at : all)
        points.add({.locality = points.size() + 1, .at = at});
    return points;
}

QStringList names(const QList<MapRow>& maps)
{
    QStringList names;
    for (const MapRow& row : maps)
        names << row.name;
    return names;
}

} // namespace

TEST_F(MapsOfProject, StandBesideTheWorldWithTheirFrames)
{
    const qint32 id = places->AddCarte(0, u"Nouvelle-Calédonie"_s, {163, -19, 169, -23}, u"nc.png"_s);
    places->AddCarte(0, u"Croquis"_s, {0, 0, 0, 0}, u"croquis.png"_s);
    const QList<MapRow> maps = mapsOf(project.db());
    EXPECT_EQ(names(maps), (QStringList{u"Monde"_s, u"Croquis"_s, u"Nouvelle-Calédonie"_s}));
    EXPECT_EQ(maps[0].frame, Frame::world());
    EXPECT_FALSE(maps[1].isCalibrated());
    EXPECT_EQ(maps[2].id, id);
    EXPECT_EQ(maps[2].frame, (Frame{163, -19, 6, 4}));
}

TEST_F(MapsOfProject, AreOfferedByThePointsThatTheyContain)
{
    places->AddCarte(0, u"Sud"_s, {163, -21, 169, -23}, u"a.png"_s);
    places->AddCarte(0, u"Toute l'île"_s, {163, -19, 169, -23}, u"b.png"_s);
    places->AddCarte(0, u"Afrique"_s, {-20, 38, 52, -36}, u"c.png"_s);
    places->AddCarte(0, u"Croquis"_s, {0, 0, 0, 0}, u"d.png"_s);
    const QList<MapRow> maps = mapsFor(mapsOf(project.db()), pointsAt({{165, -20}, {166, -22}, {166.5, -22.5}}));
    EXPECT_EQ(names(maps),
              (QStringList{u"Toute l'île"_s, u"Monde"_s, u"Sud"_s, u"Afrique"_s, u"Croquis"_s}));
    EXPECT_EQ(maps[0].contained, 3);
    EXPECT_EQ(maps[2].contained, 2);
    EXPECT_EQ(maps[3].contained, 0);
}

TEST_F(MapsOfProject, FindTheirPicturesInTheDeclaredFolders)
{
    const QString first = project.path(u"a"_s), second = project.path(u"b"_s);
    QDir().mkpath(first);
    QDir().mkpath(second);
    QImage(4, 4, QImage::Format_RGB32).save(second + u"/nc.png"_s);
    const qint32 id = places->AddCarte(0, u"NC"_s, {163, -19, 169, -23}, u"nc.png"_s);
    EXPECT_EQ(pictureFile(*places, id, {first, second}), second + u"/nc.png"_s);
    EXPECT_EQ(pictureFile(*places, id, {first}), QString());
    EXPECT_EQ(storedName(second + u"/nc.png"_s, {first, second}), u"nc.png");
    EXPECT_EQ(storedName(second + u"/nc.png"_s, {first}), second + u"/nc.png"_s);
    // Another file of that name would be found first.
    QImage(4, 4, QImage::Format_RGB32).save(first + u"/nc.png"_s);
    EXPECT_EQ(storedName(second + u"/nc.png"_s, {first, second}), second + u"/nc.png"_s);
    EXPECT_EQ(readPicture(first + u"/nc.png"_s).size(), QSize(4, 4));
    EXPECT_THROW(readPicture(project.path()), jet::Error);
}

/// The picture of the world is made with the programs.
TEST(Globe, ShowsLandAndSeaWhereTheyAre)
{
    const QString file = qEnvironmentVariable("HERBORA_BUILD") + u"/bin/Globe.gif"_s;
    const QImage globe = readPicture(file);
    ASSERT_GE(globe.width(), 4096);
    ASSERT_EQ(globe.width(), 2 * globe.height());
    const auto isSea = [&globe](Geo place) {
        const QColor colour = globe.pixelColor(toPicture(place, Frame::world(), globe.size()).toPoint());
        return colour.blue() > colour.red() + 8;
    };
    for (const Geo land : {Geo{2.3, 47.2}, Geo{-60, -12}, Geo{133.3, -24.2}, Geo{24.5, 2.4}, Geo{165.3, -21.33}})
        EXPECT_FALSE(isSea(land)) << land.longitude << ' ' << land.latitude;
    for (const Geo sea : {Geo{-31.4, 1.3}, Geo{75.2, -22.7}, Geo{-131, 41.3}, Geo{4.6, 40.2}, Geo{177.1, -51.4}})
        EXPECT_TRUE(isSea(sea)) << sea.longitude << ' ' << sea.latitude;
}
