#include "WindowFixture.h"

#include "app/ui/GridCopy.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QSignalSpy>
#include <QStandardItemModel>

namespace {

using namespace Qt::StringLiterals;
using app::GridTab;

class Grid : public support::WindowTest {
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        makeProject();
        openProject();
    }
    void clickHeader(GridTab& grid, const QString& header)
    {
        QHeaderView* view = grid.view().horizontalHeader();
        const int column = columnOf(grid, header);
        grid.view().scrollTo(grid.model().index(0, column));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {},
                          {view->sectionViewportPosition(column) + 12, view->height() / 2});
        settle();
    }
    void addIndividuals(int count)
    {
        jet::Operation operation(program->session().database(), u"remplir"_s);
        for (int i = 0; i < count; ++i)
            program->session().database().Execute(
                u"INSERT INTO Individus ([Numéro]) VALUES (\"%1\")"_s.arg(i, 5, 10, QChar(u'0')));
        operation.commit();
    }
};

TEST_F(Grid, ShowsNamesInsteadOfNumbers)
{
    GridTab* grid = openRecords(u"Individus"_s);
    EXPECT_EQ(shown(*grid, {u"Identifiant"_s, u"Numéro"_s, u"Collecteur"_s, u"Localité"_s, u"Détermination courante"_s,
                            u"Altitude"_s, u"Verrouillé"_s}),
              (QStringList{u"1|EA 12|Émile Aubréville|Gabon - Makokou|Aucoumea klaineana|1\u202f234,5|Non"_s,
                           u"2|ZM 3|Zoé Martin|Gabon|Aucoumea||Non"_s, u"3|sans nom|||||Non"_s}));
    const QModelIndex altitude = grid->model().index(0, columnOf(*grid, u"Altitude"_s));
    EXPECT_TRUE(altitude.data(Qt::TextAlignmentRole).toInt() & Qt::AlignRight);
    grid = openRecords(u"Déterminations"_s);
    EXPECT_EQ(shown(*grid, {u"Individu"_s, u"Taxon"_s, u"Déterminateur"_s}),
              (QStringList{u"1|Aucoumea|Émile Aubréville"_s, u"1|Aucoumea klaineana|Zoé Martin"_s, u"2|Aucoumea|"_s,
                           u"3|Burseraceae|"_s}));
}

TEST_F(Grid, ReferenceListsAreSortedByName)
{
    EXPECT_EQ(shown(*openRecords(u"Lstaxons"_s), {u"Nom complet"_s, u"Famille"_s, u"Synonyme de"_s}),
              (QStringList{u"Aucoumea|Burseraceae|"_s, u"Aucoumea klaineana|Burseraceae|"_s,
                           u"Aucoumea vieja|Burseraceae|Aucoumea klaineana"_s, u"Burseraceae|Burseraceae|"_s}));
    EXPECT_EQ(shown(*openRecords(u"Lslocalités"_s), {u"Nom entier"_s, u"Longitude"_s}),
              (QStringList{u"Gabon|11,50000"_s, u"Gabon - Makokou|12,86670"_s}));
    EXPECT_EQ(shown(*openRecords(u"Lsbotanistes"_s), {u"Collecteur"_s, u"Botaniste"_s}),
              (QStringList{u"Émile Aubréville|Oui"_s, u"Zoé Martin|Oui"_s}));
}

TEST_F(Grid, HeaderClicksSortUpDownAndBack)
{
    GridTab* grid = openRecords(u"Individus"_s);
    const QStringList stored = shown(*grid, {u"Collecteur"_s});
    clickHeader(*grid, u"Collecteur"_s);
    EXPECT_EQ(shown(*grid, {u"Collecteur"_s}), (QStringList{u""_s, u"Émile Aubréville"_s, u"Zoé Martin"_s}));
    clickHeader(*grid, u"Collecteur"_s);
    EXPECT_EQ(shown(*grid, {u"Collecteur"_s}), (QStringList{u"Zoé Martin"_s, u"Émile Aubréville"_s, u""_s}));
    EXPECT_EQ(grid->view().horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
    clickHeader(*grid, u"Collecteur"_s);
    EXPECT_EQ(shown(*grid, {u"Collecteur"_s}), stored);
    EXPECT_EQ(grid->view().horizontalHeader()->sortIndicatorSection(), -1);
}

TEST_F(Grid, CopiesRowsAndColumnsForASpreadsheet)
{
    GridTab* grid = openRecords(u"Individus"_s);
    for (int column = 0; column < grid->model().columnCount(); ++column) {
        const bool kept = column == columnOf(*grid, u"Numéro"_s) || column == columnOf(*grid, u"Altitude"_s)
                          || column == columnOf(*grid, u"Habitat"_s);
        grid->view().setColumnHidden(column, !kept);
    }
    grid->view().setFocus();
    grid->view().selectRow(0);
    QTest::keyClick(&grid->view(), Qt::Key_C, Qt::ControlModifier);
    settle();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"EA 12\t1234,5\t\"forêt \"\"dense\"\"\"\n"_s);
    trigger(u"selectAll"_s);
    trigger(u"copyHeaders"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text(),
              u"Numéro\tAltitude\tHabitat\nEA 12\t1234,5\t\"forêt \"\"dense\"\"\"\nZM 3\t\t\nsans nom\t\t\n"_s);
}

TEST_F(Grid, ManyRowsAreFoundBitByBitAndCopiedBesideTheWindow)
{
    addIndividuals(3000);
    GridTab* grid = openRecords(u"Individus"_s);
    EXPECT_EQ(grid->model().rowCount(), 3003);
    EXPECT_EQ(widget<QLabel>(u"recordCount"_s)->text(), u"3\u202f003 enregistrements"_s);
    EXPECT_EQ(grid->model().index(3002, columnOf(*grid, u"Numéro"_s)).data().toString(), u"02999"_s);
    trigger(u"selectAll"_s);
    EXPECT_EQ(widget<QLabel>(u"recordCount"_s)->text(), u"3\u202f003 enregistrements, 3\u202f003 sélectionnés"_s);
    trigger(u"copy"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text().count(u'\n'), 3003);
}

TEST_F(Grid, IsASoundModelWhileItGrowsAndSorts)
{
    addIndividuals(2500);
    app::GridModel model(app::taxaSource(), program->session(), program->runner());
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Warning);
    model.load();
    settle();
    model.sort(0, Qt::DescendingOrder);
    settle();
    ASSERT_TRUE(QTest::qWaitFor([&] { return model.isComplete() && model.sortOrder() == Qt::DescendingOrder; }, 10000));
    EXPECT_EQ(model.index(0, 0).data().toString(), u"Burseraceae"_s);
}

TEST_F(Grid, RowsNotSeenBeforeComeWhenTheDatabaseIsBack)
{
    addIndividuals(1000);
    GridTab* grid = openRecords(u"Individus"_s);
    const QModelIndex last = grid->model().index(1002, columnOf(*grid, u"Numéro"_s));
    QSignalSpy refreshed(&grid->model(), &QAbstractItemModel::dataChanged);
    program->runner().start({[](platform::Progression&) {}, {}, {}, {}});
    EXPECT_EQ(last.data(), QVariant());
    settle();
    EXPECT_EQ(refreshed.size(), 1);
    EXPECT_EQ(last.data().toString(), u"00999"_s);
}

TEST_F(Grid, ASortThatIsStoppedLeavesTheRowsAsTheyWere)
{
    addIndividuals(3000);
    GridTab* grid = openRecords(u"Individus"_s);
    GridTab* other = openRecords(u"Déterminations"_s);
    window().documents().openRecords(u"Individus"_s, app::NodeKind::Module);
    grid->view().horizontalHeader()->setSortIndicator(columnOf(*grid, u"Habitat"_s), Qt::DescendingOrder);
    program->runner().cancel();
    settle();
    EXPECT_EQ(grid->model().sortColumn(), -1);
    EXPECT_EQ(grid->view().horizontalHeader()->sortIndicatorSection(), -1);
    EXPECT_EQ(grid->model().index(3002, columnOf(*grid, u"Numéro"_s)).data().toString(), u"02999"_s);
    EXPECT_EQ(shown(*other, {u"Taxon"_s}).last(), u"Burseraceae"_s);
    clickHeader(*grid, u"Identifiant"_s);
    EXPECT_EQ(grid->model().sortColumn(), columnOf(*grid, u"Identifiant"_s));
}

TEST_F(Grid, AnEmptyModuleSaysSo)
{
    openRecords(u"Images"_s);
    auto* note = widget<QLabel>(u"gridNote"_s);
    EXPECT_TRUE(note->isVisible());
    EXPECT_EQ(note->text(), u"Le module « Images » ne contient encore aucun enregistrement.\n"
                            "On en ajoute depuis la fiche d'un individu."_s);
    EXPECT_EQ(widget<QLabel>(u"recordCount"_s)->text(), u"0 enregistrement"_s);
    EXPECT_FALSE(widget<QPushButton>(u"gridAdd"_s)->isVisible());
}

TEST_F(Grid, AnEmptyProjectOffersItsFirstIndividual)
{
    program->session().database().Execute(u"DELETE * FROM Individus"_s);
    openRecords(u"Individus"_s);
    auto* add = widget<QPushButton>(u"gridAdd"_s);
    ASSERT_TRUE(add->isVisible());
    add->click();
    settle();
    const QWidgetList windows = QApplication::topLevelWidgets();
    EXPECT_TRUE(std::any_of(windows.begin(), windows.end(), [](const QWidget* widget) {
        return widget->isVisible() && widget->inherits("editing::RecordEditorWindow");
    }));
}

TEST_F(Grid, ATabClosedWhileItsRowsAreReadLeavesNothingBehind)
{
    widget<QTreeView>(u"moduleTree"_s)->setCurrentIndex(window().dock().model().indexOf(u"Individus"_s));
    action(u"openModule"_s)->trigger();
    EXPECT_TRUE(program->runner().isRunning());
    window().documents().closeAll();
    settle();
    EXPECT_EQ(shown(*openRecords(u"Individus"_s), {u"Numéro"_s}).size(), 3);
}

TEST_F(Grid, ColumnsAreAsTheyWereLeft)
{
    GridTab* grid = openRecords(u"Individus"_s);
    const int habitat = columnOf(*grid, u"Habitat"_s);
    grid->view().horizontalHeader()->moveSection(grid->view().horizontalHeader()->visualIndex(habitat), 0);
    grid->view().setColumnWidth(habitat, 211);
    stop();
    start();
    openProject();
    grid = openRecords(u"Individus"_s);
    EXPECT_EQ(grid->view().horizontalHeader()->visualIndex(habitat), 0);
    EXPECT_EQ(grid->view().columnWidth(habitat), 211);
}

TEST(GridExcerpt, MergesRangesAndKeepsTheOrderOfTheColumns)
{
    QStandardItemModel model(10, 4);
    QItemSelection selection;
    for (const auto& [from, to] : {std::pair(6, 8), std::pair(0, 1), std::pair(2, 3), std::pair(7, 9)})
        selection.append(QItemSelectionRange(model.index(from, 0), model.index(to, 2)));
    const app::GridExcerpt excerpt = app::excerptOf(selection, {3, 2, 0, 1});
    EXPECT_EQ(excerpt.ranges, (QList<std::pair<int, int>>{{0, 3}, {6, 9}}));
    EXPECT_EQ(excerpt.columns, (QList<int>{2, 0, 1}));
    EXPECT_EQ(excerpt.rowCount(), 8);
}

} // namespace
