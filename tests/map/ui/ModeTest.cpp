#include "MapWindow.h"
#include "app/Demo.h"
#include "app/References.h"
#include "query/ui/MapMode.h"

#include <QFile>
#include <QLabel>

using namespace Qt::StringLiterals;
using query::MapMode;
using query::ResultSelection;

namespace {

/// A result that is known by its statement of the map alone.
class Source : public query::ResultSource {
public:
    explicit Source(jet::Database& db) : m_database(db) {}
    jet::Database& database() const override { return m_database; }
    QString module() const override { return u"Individus"_s; }
    QString name() const override { return u"Essai"_s; }
    QString statement(const QString& mode) const override { return mode == u"map" ? map : QString(); }
    qint64 rowCount() const override { return 0; }
    bool isComplete() const override { return true; }
    QList<qint32> records() const override { return {}; }
    QList<qint32> individuals() const override { return {}; }
    QStringList headers() const override { return {}; }
    QVariant value(qint64, int) const override { return {}; }
    QString text(qint64, int) const override { return {}; }

    QString map;

private:
    jet::Database& m_database;
};

const QString statement = u"SELECT DISTINCTROW [Individus].[ID Individus] AS Chp1,[Localités].[Nom Entier] AS Chp2,"
                          "[Localités].[LongDD] AS Chp3,[Localités].[LatDD] As Chp4,[Localités].[ID Localités] AS ChpLoc "
                          "FROM [Individus] LEFT JOIN [Localités] ON [Individus].[ID Localités]=[Localités].[ID Localités]"_s;

class Mode : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(app::buildDemo(project.session, project.path(), project.progression));
        QFile::copy(QCoreApplication::applicationDirPath() + u"/Globe.gif"_s, project.folder.filePath(u"Globe.gif"_s));
        source = std::make_unique<Source>(project.db());
        source->map = statement;
        const QString images = app::demoImageFolder(project.path());
        mode = std::make_unique<MapMode>(*source,
                                         map::MapWorld{project.db(), project.session.references().places(), project.dialogues,
                                                       project.clock, [images] { return QStringList{images}; }},
                                         runner);
        mode->resize(900, 700);
        mode->show();
        load();
    }
    void load()
    {
        mode->rowsReplaced();
        EXPECT_TRUE(QTest::qWaitFor([this] { return !mode->isLoading(); }, 20000));
    }
    map::Cartographie& map() { return mode->panel().map(); }
    /// Individuals of places, as the project has them.
    QList<qint32> individualsAt(const QList<qint32>& places)
    {
        QList<qint32> all;
        for (const qint32 place : places) {
            for (const QString& id : project.rows(u"SELECT [ID Individus] FROM Individus WHERE [ID Localités]="_s
                                                  + QString::number(place) + u" ORDER BY [ID Individus]"_s))
                all << id.toInt();
        }
        return all;
    }

    support::TestProject project;
    platform::TaskRunner runner;
    std::unique_ptr<Source> source;
    std::unique_ptr<MapMode> mode;
};

} // namespace

TEST_F(Mode, ThreePointsSelectedOnTheMapAreTheirRecords)
{
    const qint32 sheet = project.single(u"SELECT [ID Localités] FROM Localités WHERE [ID Type]<0"_s).toInt();
    ASSERT_TRUE(map().LoadCarte(sheet));
    map().ZoomRégion();
    QList<qint32> places;
    for (const QString& name : {u"Calcaires de Koumac"_s, u"Forêt Plate"_s, u"Tiwaé"_s}) {
        const int id = project.single(u"SELECT [ID Localités] FROM Localités WHERE [Localité] LIKE \""_s + name + u"*\""_s).toInt();
        if (map().points().indexOf(id) >= 0)
            places << id;
    }
    for (const map::MapPoint& point : map().points()) {
        if (places.size() < 3 && map().frame().contains(point.at) && !places.contains(point.locality))
            places << point.locality;
    }
    ASSERT_EQ(places.size(), 3);
    QSignalSpy told(mode.get(), &query::ResultMode::selectionChanged);
    for (const qint32 place : places) {
        const map::MapPoint& point = map().points().at(map().points().indexOf(place));
        QTest::mouseClick(&map(), Qt::LeftButton, Qt::ControlModifier,
                          {map().LongDtoPicture(point.at.longitude), map().LatDtoPicture(point.at.latitude)});
    }
    EXPECT_EQ(told.count(), 3);
    QList<qint32> found = mode->selection().individuals, expected = individualsAt(map().selectedLocalities());
    std::sort(found.begin(), found.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(map().selectedCount(), 3);
    EXPECT_GT(found.size(), 3);
    EXPECT_EQ(found, expected);
}

TEST_F(Mode, RecordsSelectedInTheGridAreTheirPointsAndSayNothingBack)
{
    QSignalSpy told(mode.get(), &query::ResultMode::selectionChanged);
    const QList<qint32> individuals{1, 2, 600};
    mode->setSelection({.records = individuals, .individuals = individuals});
    QSet<qint32> expected;
    for (const qint32 id : individuals)
        expected << project.single(u"SELECT [ID Localités] FROM Individus WHERE [ID Individus]="_s + QString::number(id)).toInt();
    const QList<qint32> shown = map().selectedLocalities();
    EXPECT_EQ(QSet<qint32>(shown.begin(), shown.end()), expected);
    EXPECT_EQ(told.count(), 0);
    // It waits for points that are still read.
    mode->rowsReplaced();
    mode->setSelection({.records = {1}, .individuals = {1}});
    ASSERT_TRUE(QTest::qWaitFor([this] { return !mode->isLoading(); }, 20000));
    EXPECT_EQ(map().selectedLocalities(),
              QList<qint32>{project.single(u"SELECT [ID Localités] FROM Individus WHERE [ID Individus]=1"_s).toInt()});
}

TEST_F(Mode, AResultWithoutAnyPlaceSaysSo)
{
    source->map = statement + u" WHERE [Individus].[ID Individus]<0"_s;
    load();
    EXPECT_EQ(mode->findChild<QLabel*>(u"mapNote"_s)->text(),
              u"Il n'y a aucun point géoréférencé à afficher dans la requête en cours");
    EXPECT_TRUE(map().points().isEmpty());
    EXPECT_FALSE(mode->can(platform::TabCommand::SelectAll));
    source->map = statement;
    load();
    EXPECT_TRUE(mode->findChild<QLabel*>(u"mapNote"_s)->text().isEmpty());
    EXPECT_TRUE(mode->can(platform::TabCommand::SelectAll));
}

TEST_F(Mode, AFailureOfTheStatementIsSaid)
{
    QSignalSpy failed(mode.get(), &query::ResultMode::failed);
    source->map = u"SELECT [Rien] FROM [Individus]"_s;
    load();
    EXPECT_EQ(failed.count(), 1);
    EXPECT_FALSE(mode->findChild<QLabel*>(u"mapNote"_s)->text().isEmpty());
}
