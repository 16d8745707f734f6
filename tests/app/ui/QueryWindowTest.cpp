// Queries in the whole program: made, run, saved, looked at, followed.
#include "QueryFixture.h"

#include "app/Session.h"
#include "app/ui/ModuleDock.h"
#include "jet/Recordset.h"
#include "query/ui/ReplaceDialog.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QMimeData>
#include <QSignalSpy>
#include <QTextEdit>

using namespace Qt::StringLiterals;
using query::CriteriaModel;
using support::QueryWindowTest;

namespace {

QMimeData* dragged(const QString& path)
{
    auto* data = new QMimeData;
    data->setData(query::fieldMime, path.toUtf8());
    return data;
}

/// Types into the editor that is open in a cell.
void typeInto(QAbstractItemView& view, const QString& text)
{
    auto* editor = view.viewport()->findChild<query::ValueEdit*>();
    ASSERT_TRUE(editor);
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

TEST_F(QueryWindowTest, AFieldIsFoundByTypingAndAddedByKeyboard)
{
    query::QueryTab& tab = newQuery();
    QTest::keyClicks(&tab.fields().searchLine(), u"numero"_s); // accents do not count
    EXPECT_EQ(query::readablePath(tab.fields().ChampSelected()), u"Numéro"_s);
    QTest::keyClick(&tab.fields().searchLine(), Qt::Key_Return);
    ASSERT_EQ(tab.query().columns().size(), 1);
    QTest::keyClick(&tab.fields().searchLine(), Qt::Key_Return, Qt::ShiftModifier);
    ASSERT_EQ(tab.query().criteria().count(), 1);
    typeInto(tab.criteria(), u"EA"_s);
    EXPECT_EQ(tab.query().criteria().at(0).value, u"EA"_s);
    QTest::keyClick(&tab.fields().searchLine(), Qt::Key_Escape);
    EXPECT_EQ(tab.fields().searchLine().text(), QString());
    // A person is shown by the name, while a condition stays on the number.
    tab.fields().setChampSelected(field(tab, {u"ID Collecteurs"_s}));
    QTest::keyClick(&tab.fields().view(), Qt::Key_Return);
    EXPECT_EQ(tab.query().columns().last().alias, u"Collecteur"_s);
    EXPECT_TRUE(tab.query().SQLStatement().contains(u".[Collecteur] AS [Collecteur]"_s));
    tab.query().clear();
}

TEST_F(QueryWindowTest, AQueryWithAGroupIsSavedReopenedFilteredExportedAndFollowsTheRecord)
{
    query::QueryTab* tab = &newQuery();
    const QString number = field(*tab, {u"Numéro"_s});
    const QString altitude = field(*tab, {u"Altitude"_s});
    // Fields are dropped into the grids.
    for (const QString& path : {number, altitude})
        EXPECT_TRUE(tab->columns().columns().dropMimeData(dragged(path), Qt::CopyAction, -1, -1, {}));
    CriteriaModel& criteria = tab->criteria().criteria();
    EXPECT_TRUE(criteria.dropMimeData(dragged(altitude), Qt::CopyAction, -1, -1, {}));
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(criteria.setData(criteria.indexOf(0, CriteriaModel::Operator), u"Différent"_s));
    EXPECT_TRUE(criteria.setData(criteria.indexOf(0, CriteriaModel::Value), u"5"_s));
    EXPECT_TRUE(criteria.dropMimeData(dragged(number), Qt::CopyAction, -1, -1, {}));
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(criteria.setData(criteria.indexOf(1, CriteriaModel::Value), u"EA 12"_s));
    EXPECT_TRUE(criteria.dropMimeData(dragged(number), Qt::CopyAction, -1, -1, criteria.indexOf(1)));
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(criteria.setData(criteria.indexOf(2, CriteriaModel::Link), u"OU"_s));
    EXPECT_TRUE(criteria.setData(criteria.indexOf(2, CriteriaModel::Value), u"ZM 3"_s));
    EXPECT_EQ(criteria.indexOf(2).parent(), criteria.indexOf(1));
    // Who has no altitude is left out by "different"; "ou vide" lets them in, as a row of its own.
    run(*tab);
    EXPECT_EQ(shownRows(*tab), QStringList{u"EA 12|1234,5"_s});
    tab->criteria().setCurrentRow(0);
    tab->actions()[u"addempty"_s]->trigger();
    EXPECT_EQ(tab->query().TextSQLWhere(),
              u"(([Individus].[Altitude] <> 5) OR [Individus].[Altitude] IS NULL) AND (([Individus].[Numéro] = \"EA 12\") OR "
              "[Individus].[Numéro] = \"ZM 3\")"_s);
    run(*tab);
    EXPECT_EQ(shownRows(*tab), (QStringList{u"EA 12|1234,5"_s, u"ZM 3|"_s}));

    dialogues.expectInput(u"Ajout - Requête"_s, u"Indiquez le nom unique de la nouvelle propriété 'Requête'"_s,
                          u"Nouvelle Requête"_s, u"Deux plantes"_s);
    trigger(u"save"_s);
    EXPECT_EQ(tab->title(), u"Deux plantes"_s);
    const int id = tab->query().id();
    const QString node = QString::number(id) + u"-query"_s;
    trigger(u"closeTab"_s);
    auto* tree = widget<QTreeView>(u"moduleTree"_s);
    tree->setCurrentIndex(window().dock().model().indexOf(node));
    QTest::keyClick(tree, Qt::Key_Return);
    settle();
    tab = desk().current();
    ASSERT_TRUE(tab);
    EXPECT_EQ(tab->query().id(), id);
    EXPECT_EQ(shownRows(*tab).size(), 2);
    EXPECT_FALSE(tab->query().ToSave());

    // A filter on a value of the result.
    dialogues.expectInput(u"Filtre sur un champ"_s, u"Filtrer 'Numéro' sur :"_s, u"ZM 3"_s, u"ZM 3"_s);
    tab->pane().data().setCurrentRow(1);
    Q_EMIT tab->pane().columnMenuWanted(2, QPoint(0, 0));
    auto* menu = tab->findChild<QMenu*>(u"menuColonne"_s);
    ASSERT_TRUE(menu);
    menu->findChild<QMenu*>(u"filtres"_s)->actions().first()->trigger();
    settle();
    menu->close();
    EXPECT_EQ(shownRows(*tab), QStringList{u"ZM 3|"_s});

    const QString file = path(u"sortie.csv"_s);
    dialogues.expectSaveFile(u"Exportation CSV"_s, u"Texte CSV (point-virgule, *.csv)|*.csv"_s, file);
    trigger(u"exportRows"_s);
    QFile written(file);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), u"\uFEFF\"Individu\";\"ID Individus\";\"Numéro\";\"Altitude\"\r\n"
                                 "\"2\";\"2\";\"ZM 3\";\"\"\r\n"_s.toUtf8());
    trigger(u"selectAll"_s);
    trigger(u"copyHeaders"_s);
    EXPECT_TRUE(QApplication::clipboard()->text().endsWith(u"\"2\";\"2\";\"ZM 3\";\"\"\r\n"_s));
    QTextEdit spreadsheet; // takes the table, as spreadsheets do
    spreadsheet.paste();
    EXPECT_TRUE(spreadsheet.toHtml().contains(u"<table"_s));

    // The record is edited from its row, and the row follows.
    QSignalSpy edited(&place(), &app::Workplace::editRecordsWanted);
    QTest::keyClick(&tab->pane().data().grid(), Qt::Key_Return);
    settle();
    ASSERT_EQ(edited.size(), 1);
    EXPECT_EQ(edited.first().first().toString(), u"1-Individus;2"_s);
    program->session().database().Execute(u"UPDATE Individus SET Altitude = 77 WHERE [ID Individus] = 2"_s);
    place().written({u"Individus"_s});
    settle();
    EXPECT_EQ(shownRows(*tab), QStringList{u"ZM 3|77"_s});
    EXPECT_EQ(tab->pane().selectedRecords(), QList<qint32>{2});
    dialogues.expect({u"Voulez-vous enregistrez les modifications apportées à la requête: 'Deux plantes' ?"_s,
                      u"Requête < Deux plantes >"_s, platform::BoxIcon::Question, platform::BoxButtons::YesNoCancel,
                      platform::Answer::Yes},
                     platform::Answer::No);
    trigger(u"closeTab"_s);
    EXPECT_FALSE(desk().current());
}

TEST_F(QueryWindowTest, AGroupIsBuiltAndRunByKeysAlone)
{
    QTest::keyClick(&window(), Qt::Key_R, Qt::ControlModifier);
    settle();
    query::QueryTab* tab = desk().current();
    ASSERT_TRUE(tab);
    QWidget* line = &tab->fields().searchLine();
    query::CriteriaGrid& grid = tab->criteria();
    QTest::keyClicks(line, u"altitude"_s);
    QTest::keyClick(line, Qt::Key_Return);
    QTest::keyClick(line, Qt::Key_Escape);
    QTest::keyClicks(line, u"numero"_s);
    QTest::keyClick(line, Qt::Key_Return, Qt::ShiftModifier);
    typeInto(grid, u"EA 12"_s);
    QTest::keyClick(&grid, Qt::Key_Insert, Qt::ShiftModifier); // a group of the two
    typeInto(grid, u"ZM 3"_s);
    ASSERT_EQ(tab->query().criteria().count(), 2);
    for (int step = 0; step < 3 && grid.currentIndex().column() != CriteriaModel::Link; ++step)
        QTest::keyClick(&grid, Qt::Key_Left);
    EXPECT_EQ(grid.currentIndex().column(), int(CriteriaModel::Link));
    QTest::keyClick(&grid, Qt::Key_F2);
    auto* link = grid.viewport()->findChild<QComboBox*>();
    ASSERT_TRUE(link);
    QTest::keyClick(link, Qt::Key_Down);
    QTest::keyClick(link, Qt::Key_Return);
    EXPECT_EQ(tab->query().TextSQLWhere(), u"(([Individus].[Numéro] = \"EA 12\") OR [Individus].[Numéro] = \"ZM 3\")"_s);
    QTest::keyClick(&grid, Qt::Key_F5);
    settle();
    EXPECT_EQ(shownRows(*tab), (QStringList{u"1234,5"_s, QString()}));

    // The first record is edited in its form; the row follows.
    QTest::keyClick(&tab->pane().data().grid(), Qt::Key_Return);
    settle();
    QWidget* altitude = nullptr;
    for (QWidget* top : QApplication::topLevelWidgets())
        altitude = altitude ? altitude : top->findChild<QLineEdit*>(u"editeur-Altitude"_s);
    ASSERT_TRUE(altitude);
    altitude->window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(altitude->window()));
    QTest::keyClick(altitude, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(altitude, u"77"_s);
    dialogues.expect({u"Voulez-vous enregistrez les modifications apportées à la propriété < Individu - N° 1 >"_s,
                      u"Enregistrements des propriétés"_s, platform::BoxIcon::Question, platform::BoxButtons::YesNo,
                      platform::Answer::Yes},
                     platform::Answer::Yes);
    QTest::keyClick(altitude, Qt::Key_S, Qt::ControlModifier);
    settle();
    EXPECT_TRUE(QTest::qWaitFor([&] { return shownRows(*tab).value(0) == u"77"; }, 5000))
        << shownRows(*tab).join(u'/').toStdString();
    tab->query().clear();
}

TEST_F(QueryWindowTest, WhatCannotRunIsRedAndDoesNotRun)
{
    query::QueryTab& tab = newQuery();
    tab.query().command(u"add"_s, -1, field(tab, {u"Altitude"_s}));
    CriteriaModel& criteria = tab.criteria().criteria();
    criteria.setData(criteria.indexOf(0, CriteriaModel::Value), u"haut"_s);
    run(tab);
    EXPECT_FALSE(tab.pane().hasResult());
    EXPECT_EQ(criteria.error(0), u"Cette valeur n'est pas un nombre : haut"_s);
    EXPECT_TRUE(criteria.indexOf(0).data(Qt::ForegroundRole).isValid());
    EXPECT_EQ(widget<QLabel>(u"noteCriteres"_s)->text(), criteria.error(0));
    criteria.setData(criteria.indexOf(0, CriteriaModel::Value), u"1234,5"_s);
    run(tab);
    EXPECT_EQ(criteria.error(0), QString());
    EXPECT_EQ(tab.pane().rowCount(), 1);
    tab.query().clear();
}

TEST_F(QueryWindowTest, ChangesAreTakenBackOneByOne)
{
    query::QueryTab& tab = newQuery();
    tab.query().addColumn(field(tab, {u"Numéro"_s}));
    tab.query().command(u"add"_s, -1, field(tab, {u"Altitude"_s}));
    tab.actions()[u"undo"_s]->trigger();
    EXPECT_EQ(tab.query().criteria().count(), 0);
    EXPECT_EQ(tab.query().columns().size(), 1);
    tab.actions()[u"undo"_s]->trigger();
    EXPECT_EQ(tab.query().columns().size(), 0);
    EXPECT_FALSE(tab.actions()[u"undo"_s]->isEnabled());
    tab.actions()[u"redo"_s]->trigger();
    tab.actions()[u"redo"_s]->trigger();
    EXPECT_EQ(tab.query().criteria().count(), 1);
    tab.query().clear();
}

TEST_F(QueryWindowTest, TheStatementIsReadOnlyUntilItIsToBeChanged)
{
    query::QueryTab& tab = newQuery();
    tab.query().addColumn(field(tab, {u"Numéro"_s}));
    settle();
    QCoreApplication::processEvents();
    auto* whole = widget<QPlainTextEdit>(u"sql"_s);
    auto* where = widget<QPlainTextEdit>(u"sqlWhere"_s);
    EXPECT_TRUE(whole->toPlainText().startsWith(u"SELECT DISTINCTROW [Individus].[ID Individus] AS [Individu]"_s));
    EXPECT_TRUE(whole->isReadOnly() && where->isReadOnly());
    widget<QAbstractButton>(u"modifierSql"_s)->setChecked(true);
    where->setPlainText(u"[Individus].[Altitude] > 1000"_s);
    run(tab);
    EXPECT_EQ(shownRows(tab), QStringList{u"EA 12"_s});
    widget<QAbstractButton>(u"modifierSql"_s)->setChecked(false);
    run(tab);
    EXPECT_EQ(shownRows(tab).size(), 3);
    tab.query().clear();
}

TEST_F(QueryWindowTest, AFloatingSelectionIsFilledOpenedInsertedAndEmptied)
{
    query::QueryTab& tab = newQuery();
    run(tab);
    EXPECT_FALSE(action(u"query-toself"_s)->isEnabled());
    tab.pane().data().grid().selectRow(0);
    tab.pane().results()->select(2, true);
    trigger(u"query-toself"_s);
    trigger(u"query-toself"_s); // what is there counts once
    const QModelIndex node = window().dock().model().indexOf(u"Individus-self"_s);
    EXPECT_EQ(node.data().toString(), u"Individus < 2 >"_s);
    tab.actions()[u"insertselect"_s]->trigger();
    EXPECT_EQ(tab.query().TextSQLWhere(), u"[Individus].[ID Individus] IN (1,3)"_s);
    tab.query().clear();
    widget<QTreeView>(u"moduleTree"_s)->setCurrentIndex(node);
    trigger(u"openSelection"_s);
    ASSERT_TRUE(desk().current());
    EXPECT_EQ(desk().current()->pane().records(), (QList<qint32>{1, 3}));
    EXPECT_EQ(desk().current()->title(), u"Sélection Individus"_s);
    EXPECT_FALSE(desk().current()->query().ToSave());
    dialogues.expectConfirm(u"Vider la sélection flottante de son contenu ?"_s, u"Herbora"_s, true);
    trigger(u"emptySelection"_s);
    EXPECT_EQ(program->session().selectionCount(u"Individus"_s), 0);
}

TEST_F(QueryWindowTest, RecordsAreDroppedOnTheSelectionOfTheirModuleAlone)
{
    QMimeData data;
    data.setData(u"application/x-herbora-enregistrements"_s, "Individus\n2\n3");
    QTreeView& tree = window().dock().view();
    const auto drop = [&](const QString& key) {
        const QModelIndex index = window().dock().model().indexOf(key);
        tree.scrollTo(index);
        const QPoint at = tree.visualRect(index).center();
        QDragEnterEvent enters(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(tree.viewport(), &enters); // drops go to who was entered
        QDropEvent event(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        QCoreApplication::sendEvent(tree.viewport(), &event);
        return event.isAccepted();
    };
    EXPECT_FALSE(drop(u"Images-self"_s));
    EXPECT_FALSE(drop(u"Individus"_s));
    EXPECT_TRUE(drop(u"Individus-self"_s));
    EXPECT_EQ(program->session().selection(u"Individus"_s), (QList<qint32>{2, 3}));
}

TEST_F(QueryWindowTest, RecordsThatReferToARowAreShown)
{
    place().showReferring(u"Individus du taxon"_s, u"Déterminations"_s, u"ID Taxons"_s, {2});
    settle();
    ASSERT_TRUE(desk().current());
    EXPECT_EQ(desk().current()->title(), u"Individus du taxon"_s);
    EXPECT_EQ(desk().current()->pane().records(), (QList<qint32>{1, 2}));
    place().showRecords(u"Deux déterminations"_s, u"Déterminations"_s, {4, 2});
    settle();
    EXPECT_EQ(desk().current()->pane().records(), (QList<qint32>{2, 4}));
    EXPECT_EQ(desk().current()->pane().individuals(), (QList<qint32>{1, 3}));
}

TEST_F(QueryWindowTest, AddinsAreToldWhatTheWindowShows)
{
    app::HostBase& host = program->session().host();
    EXPECT_EQ(host.ActiveModule(), QString());
    query::QueryTab& tab = newQuery(u"Déterminations"_s);
    run(tab);
    tab.pane().data().grid().selectRow(2);
    EXPECT_EQ(host.ActiveModule(), u"Déterminations"_s);
    EXPECT_EQ(host.CurrentSQL(), tab.query().SQLStatement());
    EXPECT_EQ(host.ModeRun(), u"data"_s);
    EXPECT_EQ(host.SelectedIDItems(), QList<qint32>{3});
    EXPECT_EQ(host.SelectedIDIndividu(), QList<qint32>{2});
    EXPECT_EQ(host.AllIDItems(), (QList<qint32>{1, 2, 3, 4}));
    QSignalSpy edited(&place(), &app::Workplace::editRecordsWanted);
    EXPECT_TRUE(host.EditItem(u"3-Déterminations"_s));
    EXPECT_FALSE(host.EditItem(u"HBTEMP1-Déterminations"_s));
    QCoreApplication::processEvents();
    settle();
    ASSERT_EQ(edited.size(), 1);
    EXPECT_EQ(edited.first().first().toString(), u"1-Individus\\2-Déterminations;3"_s);
    openRecords(u"Individus"_s);
    EXPECT_EQ(host.ActiveModule(), u"Individus"_s);
    EXPECT_EQ(host.AllIDItems(), (QList<qint32>{1, 2, 3}));
}

TEST_F(QueryWindowTest, ColumnsOfTheResultAreSortedAndHidden)
{
    query::QueryTab& tab = newQuery();
    tab.query().addColumn(field(tab, {u"Numéro"_s}));
    tab.query().addColumn(field(tab, {u"Altitude"_s}));
    run(tab);
    tab.pane().data().grid().selectRow(1);
    tab.pane().data().grid().sortByColumn(2, Qt::DescendingOrder);
    settle();
    EXPECT_EQ(shownRows(tab), (QStringList{u"ZM 3|"_s, u"sans nom|"_s, u"EA 12|1234,5"_s}));
    EXPECT_EQ(tab.pane().selectedRecords(), QList<qint32>{2});
    EXPECT_EQ(tab.query().columns().first().order, QString()) << "the query is as it was";
    tab.pane().hideColumn(2);
    EXPECT_EQ(tab.pane().headers(), (QStringList{u"Individu"_s, u"ID Individus"_s, u"Altitude"_s}));
    run(tab);
    EXPECT_EQ(tab.pane().headers().size(), 3);
    tab.pane().showHiddenColumns();
    EXPECT_EQ(tab.pane().headers().size(), 4);
    tab.query().clear();
}

namespace {

/// A mode that keeps what it is told.
class ToldMode : public query::ResultMode {
public:
    using ResultMode::ResultMode;
    QString key() const override { return query::modePicture; }
    void rowsReplaced() override { told << u"replaced "_s + QString::number(source().rowCount()); }
    void rowsFound() override { told << u"found"_s; }
    void valuesChanged(const QStringList&) override { told << u"values"_s; }
    void setSelection(const query::ResultSelection& selection) override { marked = selection; }
    query::ResultSelection selection() const override { return chosen; }
    void choose(const query::ResultSelection& selection)
    {
        chosen = selection;
        Q_EMIT selectionChanged();
    }
    query::ResultSource& rows() { return source(); }

    QStringList told;
    query::ResultSelection marked;
    query::ResultSelection chosen;
};

} // namespace

TEST_F(QueryWindowTest, ModesShareOneResultAndOneSelection)
{
    ToldMode* mode = nullptr;
    query::ResultPane pane(program->runner(), {{query::modePicture, [&](query::ResultSource& source, QWidget* parent) {
                                                    return mode = new ToldMode(source, parent);
                                                }}});
    const auto button = [&](const QString& key) { return pane.findChild<QToolButton*>(key); };
    EXPECT_TRUE(button(query::modePicture)->isEnabled());
    EXPECT_FALSE(button(query::modeMap)->isEnabled());
    EXPECT_FALSE(mode) << "made when it is first shown";
    jet::Database& db = program->session().database();
    const QString rows = u"SELECT DISTINCTROW [Déterminations].[ID Individus] AS [Individu],[Déterminations].[ID Déterminations] "
                         "AS [ID Déterminations] FROM [Déterminations]"_s;
    pane.start(db, {.module = u"Déterminations"_s, .name = u"Essai"_s, .data = rows, .picture = u"images"_s, .map = {}});
    settle();
    pane.data().grid().selectRow(1);
    button(query::modePicture)->click();
    ASSERT_TRUE(mode);
    EXPECT_EQ(mode->told, QStringList{u"replaced 4"_s});
    EXPECT_EQ(mode->marked, (query::ResultSelection{.records = {2}, .individuals = {1}}));
    EXPECT_EQ(mode->rows().individuals(), (QList<qint32>{1, 1, 2, 3}));
    EXPECT_EQ(mode->rows().statement(query::modePicture), u"images"_s);
    EXPECT_EQ(mode->rows().text(2, 0), u"2"_s);
    mode->choose({.records = {4}, .individuals = {1}});
    EXPECT_EQ(pane.selectedRecords(), (QList<qint32>{1, 2, 4}));
    QSignalSpy activated(&pane, &query::ResultPane::activated);
    Q_EMIT mode->activated({.records = {}, .individuals = {1}});
    ASSERT_EQ(activated.size(), 1);
    EXPECT_EQ(activated.first().first().value<QList<qint32>>(), (QList<qint32>{1, 2}));
    pane.valuesChanged({});
    button(query::modeData)->click();
    pane.again();
    settle();
    EXPECT_EQ(mode->told, (QStringList{u"replaced 4"_s, u"values"_s}));
    EXPECT_EQ(pane.selectedRecords(), (QList<qint32>{1, 2, 4}));
    button(query::modePicture)->click();
    EXPECT_EQ(mode->told.last(), u"replaced 4"_s);
    pane.clear();
}

TEST_F(QueryWindowTest, StatisticsAreCountedBesideTheWindow)
{
    query::QueryTab& tab = newQuery();
    tab.query().addColumn(field(tab, {u"Altitude"_s}));
    dialogues.expectTell(u"Nombre de valeurs uniques pour chaque champ\r\nAltitude : 2\r\nNombre de lignes : 3"_s,
                         u"Statistiques de la requête"_s);
    trigger(u"query-stat"_s);
    tab.query().clear();
}

TEST_F(QueryWindowTest, TheStructureOfTheBaseIsAQueryOfItsOwn)
{
    trigger(u"openBase"_s);
    query::QueryTab* tab = desk().current();
    ASSERT_TRUE(tab);
    EXPECT_EQ(tab->query().title(), u"Base < projet.hbx >"_s);
    EXPECT_EQ(tab->pane().rowCount(), 3);
    EXPECT_GT(tab->query().columns().size(), 5);
    EXPECT_TRUE(tab->mayClose());
    tab->query().removeColumn(0);
    const platform::Message question{
        u"Voulez-vous enregistrez les modifications apportées à la structure de la base : 'projet.hbx' ?"_s,
        u"Base < projet.hbx >"_s, platform::BoxIcon::Question, platform::BoxButtons::YesNoCancel, platform::Answer::Yes};
    dialogues.expect(question, platform::Answer::Yes);
    dialogues.expectInput(u"Ajout - Base"_s, u"Indiquez le nom unique de la nouvelle propriété 'Base'"_s,
                          u"projet.hbx"_s, u"projet.hbx"_s);
    EXPECT_TRUE(tab->mayClose());
    EXPECT_EQ(program->session().properties().list(data::kindBase).size(), 1);
}

TEST_F(QueryWindowTest, AQueryThatTakesForeverIsStopped)
{
    query::QueryTab& tab = newQuery();
    jet::Database& db = program->session().database();
    db.AppendTable({.Name = u"Grand"_s, .Fields = {{.Name = u"N"_s, .Type = jet::DataType::Long}}});
    db.Execute(u"INSERT INTO Grand (N) VALUES (1)"_s);
    for (int i = 0; i < 11; ++i)
        db.Execute(u"INSERT INTO Grand (N) SELECT N FROM Grand"_s);
    // Eight thousand million rows, none of which matches.
    const QString endless = u"SELECT a.N FROM Grand AS a, Grand AS b, Grand AS c WHERE a.N+b.N+c.N=7"_s;
    tab.pane().start(db, {.module = u"Individus"_s, .name = u"Longue"_s, .data = endless, .picture = {}, .map = {}});
    QCoreApplication::processEvents();
    ASSERT_TRUE(program->runner().isRunning());
    EXPECT_TRUE(program->runner().isCancellable());
    program->runner().cancel();
    settle();
    EXPECT_FALSE(tab.pane().hasResult());
    EXPECT_EQ(widget<QLabel>(u"messageResultat"_s)->text(), u"La requête a été interrompue."_s);
    // Rows that are there already stay when the search for others is stopped.
    tab.pane().start(db, {.module = u"Individus"_s, .name = u"Longue"_s,
                          .data = u"SELECT a.N FROM Grand AS a, Grand AS b, Grand AS c"_s, .picture = {}, .map = {}});
    ASSERT_TRUE(QTest::qWaitFor([&] { return tab.pane().hasResult(); }, 20000));
    EXPECT_FALSE(tab.pane().isComplete());
    ASSERT_TRUE(QTest::qWaitFor([&] { return program->runner().isRunning(); }, 20000));
    program->runner().cancel();
    settle();
    EXPECT_TRUE(tab.pane().isComplete());
    EXPECT_GT(tab.pane().rowCount(), 0);
    EXPECT_EQ(tab.pane().text(0, 0), u"1"_s);
    EXPECT_TRUE(tab.pane().results()->textCount().endsWith(u"+ Ligne(s)"_s));
}

TEST_F(QueryWindowTest, RecordsAreReplacedAfterAPreviewAndTheRowsFollow)
{
    program->session().database().Execute(u"UPDATE Individus SET [Locked]=True WHERE [ID Individus]=3"_s);
    query::QueryTab& tab = newQuery();
    tab.query().addColumn(field(tab, {u"Numéro"_s}));
    run(tab);
    tab.pane().data().grid().selectAll();
    trigger(u"query-replace"_s);
    auto* window = tab.findChild<query::ReplaceDialog*>();
    ASSERT_TRUE(window);
    EXPECT_EQ(window->windowTitle(), u"Remplacer dans la base Individus"_s);
    EXPECT_EQ(widget<QLabel>(u"legende"_s)->text(), u"< Remplacer dans Individus >"_s);
    tab.pane().data().selectNone(); // the records are those of the beginning
    QSignalSpy counted(window, &query::ReplaceDialog::counted);
    EXPECT_EQ(window->model().add(field(tab, {u"Locked"_s})), -1);
    ASSERT_EQ(window->model().add(field(tab, {u"Numéro"_s})), 0);
    window->model().setValue(0, u"X ~+"_s, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !counted.isEmpty(); }, 20000));
    EXPECT_FALSE(window->isReady());
    EXPECT_EQ(widget<QLabel>(u"nombres"_s)->text(), u"L'opérateur après la valeur n'est pas de ceux de ce champ : X ~+"_s);
    counted.clear();
    window->model().setValue(0, u"X &~"_s, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !counted.isEmpty(); }, 20000));
    ASSERT_TRUE(window->isReady());
    EXPECT_EQ(widget<QLabel>(u"nombres"_s)->text(),
              u"2 enregistrements à modifier, 1 verrouillé, qui ne change pas."_s);
    EXPECT_EQ(window->preview().item(0, 1)->text(), u"EA 12"_s);
    EXPECT_EQ(window->preview().item(0, 2)->text(), u"X EA 12"_s);
    dialogues.expectConfirm(u"Etes-vous sûr de procéder au remplacement des propriétés suivantes : \r\n- Numéro = X &~\r\n"
                            "dans la sélection en cours du module Individus"_s,
                            u"Remplacer dans la base Individus"_s, true);
    dialogues.expectTell(u"2 enregistrement(s) mis à jour"_s, u"Remplacement dans la table Individus"_s);
    widget<QPushButton>(u"remplacer"_s)->click();
    settle();
    EXPECT_EQ(shownRows(tab), (QStringList{u"X EA 12"_s, u"X ZM 3"_s, u"sans nom"_s}));
    tab.query().clear();
}

TEST_F(QueryWindowTest, RecordsChangedInBetweenKeepTheReplacementFromHappening)
{
    query::QueryTab& tab = newQuery();
    run(tab);
    tab.actions()[u"replace"_s]->trigger();
    auto* window = tab.findChild<query::ReplaceDialog*>();
    window->model().add(field(tab, {u"Altitude"_s}));
    window->model().setValue(0, u"9"_s, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->isReady(); }, 20000));
    jet::Database& db = program->session().database();
    db.Execute(u"UPDATE Individus SET [Locked]=True WHERE [ID Individus]=2"_s);
    dialogues.expectConfirm(u"Etes-vous sûr de procéder au remplacement des propriétés suivantes : \r\n- Altitude = 9\r\n"
                            "dans le module Individus"_s,
                            u"Remplacer dans la base Individus"_s, true);
    dialogues.expectTell(u"Le nombre d'enregistrements modifiés (2) n'est pas celui qui était annoncé (3). "
                         "Rien n'a été modifié."_s,
                         u"Remplacement dans la table Individus"_s, platform::BoxIcon::Stop);
    window->replace();
    settle();
    EXPECT_EQ(db.OpenRecordset(u"SELECT Count(*) FROM Individus WHERE Altitude=9"_s)->Value(0).toInt(), 0);
    window->reject();
}
