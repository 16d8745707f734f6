// Maps in the whole program: of the project, and of a query.
#include "QueryFixture.h"

#include "app/Session.h"
#include "app/ui/MapDesk.h"
#include "app/ui/MapTab.h"
#include "map/ui/Cartographie.h"
#include "map/ui/MapPanel.h"
#include "query/ui/MapMode.h"

#include <QFile>
#include <QLabel>
#include <QSpinBox>

using namespace Qt::StringLiterals;

namespace {

class MapWindow : public support::QueryWindowTest {
protected:
    void SetUp() override
    {
        QueryWindowTest::SetUp();
        QFile::copy(QCoreApplication::applicationDirPath() + u"/Globe.gif"_s, folder.filePath(u"Globe.gif"_s));
    }
    app::MapTab& openMap()
    {
        trigger(u"carte"_s);
        auto* tab = qobject_cast<app::MapTab*>(window().documents().find(app::MapTab::tabKey()));
        EXPECT_TRUE(tab);
        return *tab;
    }
    static void click(map::Cartographie& map, qint32 locality, Qt::KeyboardModifiers keys = {})
    {
        const map::MapPoint& point = map.points().at(map.points().indexOf(locality));
        QTest::mouseClick(&map, Qt::LeftButton, keys,
                          {map.LongDtoPicture(point.at.longitude), map.LatDtoPicture(point.at.latitude)});
    }
    query::MapMode& mapMode(query::QueryTab& tab)
    {
        tab.query().setModeRun(u"map"_s); // as its button does
        tab.pane().setMode(u"map"_s);
        settle();
        auto* mode = tab.findChild<query::MapMode*>();
        EXPECT_TRUE(mode);
        return *mode;
    }
};

} // namespace

TEST_F(MapWindow, ThePlacesOfTheProjectLeadToTheirIndividuals)
{
    app::MapTab& tab = openMap();
    map::Cartographie& map = tab.panel().map();
    EXPECT_EQ(map.points().size(), 2);
    EXPECT_EQ(map.points().label(map.points().indexOf(2)), u"Gabon - Makokou (Effectif = 1 / 2)");
    EXPECT_EQ(tab.statusText(), u"2 localités");
    map.ZoomRégion();
    click(map, 2);
    EXPECT_EQ(map.SelectedItems(), u"2");
    tab.findChild<QAction*>(u"restreindreSelection"_s)->trigger();
    settle();
    query::QueryTab* records = desk().current();
    ASSERT_TRUE(records);
    EXPECT_EQ(records->pane().selectedRecords().size() + records->pane().data().model().rowCount(), 1);
    // A second opening shows the tab that is there; what is written elsewhere reaches it.
    EXPECT_EQ(&openMap(), &tab);
    program->session().database().Execute(u"UPDATE Individus SET [ID Localités]=2 WHERE [ID Individus]=3"_s);
    place().written({u"Individus"_s});
    settle();
    EXPECT_EQ(map.points().at(map.points().indexOf(2)).count, 2);
    EXPECT_EQ(map.SelectedItems(), u"2");
}

TEST_F(MapWindow, MapAndGridOfAQueryFollowEachOther)
{
    query::QueryTab& tab = newQuery();
    tab.query().addColumn(field(tab, {u"Numéro"_s}));
    run(tab);
    map::Cartographie& map = mapMode(tab).panel().map();
    ASSERT_EQ(map.points().size(), 2);
    map.ZoomRégion();
    click(map, 1);
    settle();
    EXPECT_EQ(tab.pane().selectedRecords(), (QList<qint32>{2}));
    click(map, 2, Qt::ControlModifier);
    settle();
    EXPECT_EQ(tab.pane().selectedRecords(), (QList<qint32>{1, 2}));
    tab.pane().setMode(u"data"_s);
    settle();
    tab.pane().data().selectNone();
    tab.pane().data().grid().selectRow(0); // EA 12, of place 2
    settle();
    tab.pane().setMode(u"map"_s);
    settle();
    EXPECT_EQ(map.SelectedItems(), u"2");
    tab.query().clear();
}

TEST_F(MapWindow, PlacesAndRectanglesOfTheMapNarrowTheQuery)
{
    query::QueryTab& tab = newQuery();
    tab.query().addColumn(field(tab, {u"Numéro"_s}));
    run(tab);
    query::MapMode& mode = mapMode(tab);
    Q_EMIT mode.insertRectangleWanted(QRectF(QPointF(12, 0), QPointF(13, 1)));
    settle();
    EXPECT_EQ(tab.query().criteria().count(), 4);
    EXPECT_EQ(shownRows(tab), (QStringList{u"EA 12"_s}));
    EXPECT_TRUE(QTest::qWaitFor([&mode] { return !mode.isLoading() && mode.panel().map().points().size() == 1; }, 10000));
    tab.query().editCriteria([](query::Criteria& criteria) { criteria = {}; });
    Q_EMIT mode.insertPlacesWanted({1});
    settle();
    // Gabon, with what lies in it.
    EXPECT_TRUE(shownRows(tab).contains(u"ZM 3"_s));
    tab.query().clear();
}
