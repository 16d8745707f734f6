#include "WindowFixture.h"

#include "app/ui/Captures.h"
#include "app/ui/Workplace.h"
#include "jet/Recordset.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QSignalSpy>

namespace {

using namespace Qt::StringLiterals;
using platform::BoxIcon;

const QString filter = u"Fichiers Herbora (*.hbx)|*.hbx|"_s;
const QString optimiseQuestion =
    u"L'optimisation permet de vérifier la cohérence des liens et de réduire considérablement la taille de la base de données\r\n"
    "Le temps nécessaire pour optimiser la base dépend de la fréquence et du nombre d'enregistrement\r\n"
    "Une copie de la base actuelle sera conservée, comportant l'extension .bak.\r\n"
    "Si l'optimisation échoue vous pouvez récupérer l'état initial de vos données avant l'opération\r\n"
    "Voulez-vous optimiser la base de données actuelle ?"_s;

class Window : public support::WindowTest {
protected:
    bool drop(const QList<QUrl>& urls)
    {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.setAccepted(false);
        QApplication::sendEvent(&window(), &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent event(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&window(), &event);
        EXPECT_TRUE(QTest::qWaitFor([this] { return window().commands().isBusy(); }, 5000));
        settle();
        return true;
    }
};

/// Answers for the association of files, without a desktop.
class FixedAssociation : public platform::FileAssociation {
public:
    QString command;
    QString openCommand() const override { return command; }
    bool write(const QString& executable) override
    {
        command = executable;
        return true;
    }
};

TEST_F(Window, StartsWithoutAProject)
{
    EXPECT_EQ(window().windowTitle(), u"Herbora"_s);
    EXPECT_TRUE(widget<QWidget>(u"startPage"_s)->isVisible());
    EXPECT_FALSE(action(u"modif"_s)->isVisible());
    for (const QString& name : {u"optimise"_s, u"copy"_s, u"refresh"_s, u"closeTab"_s, u"openModule"_s})
        EXPECT_FALSE(action(name)->isEnabled()) << name.toStdString();
}

TEST_F(Window, OpensTheFileThatIsChosen)
{
    makeProject();
    QSignalSpy steps(&program->runner(), &platform::TaskRunner::step);
    dialogues.expectOpenFile(u"Ouvrir un projet"_s, filter, path());
    trigger(u"open"_s);
    EXPECT_EQ(window().windowTitle(), u"projet.hbx - Herbora"_s);
    EXPECT_TRUE(action(u"modif"_s)->isVisible());
    EXPECT_TRUE(action(u"modif"_s)->isEnabled());
    EXPECT_TRUE(action(u"optimise"_s)->isEnabled());
    ASSERT_EQ(steps.size(), 12);
    EXPECT_EQ(steps.last(), (QVariantList{u"Chargement et Validation OK de la base de donnée"_s, 100}));
    EXPECT_TRUE(window().progression().isHidden());
    dialogues.expectOpenFile(u"Ouvrir un projet"_s, filter, {});
    trigger(u"open"_s);
    EXPECT_EQ(dialogues.places().last(), folder.path());
    EXPECT_EQ(window().windowTitle(), u"projet.hbx - Herbora"_s);
}

TEST_F(Window, SaysWhatIsNoProjectAndStaysUsable)
{
    makeProject();
    openProject();
    openRecords(u"Individus"_s);
    QFile text(path(u"texte.hbx"_s));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("Ceci n'est pas un projet.");
    text.close();
    support::expectWarning(u"opening failed: 3343"_s);
    dialogues.expectOpenFile(u"Ouvrir un projet"_s, filter, path(u"texte.hbx"_s));
    dialogues.expectLike({u"Error "_s, u"Notez le numéro et la description de l'erreur ci-dessous "_s}, u"Herbora"_s,
                         BoxIcon::Stop);
    trigger(u"open"_s);
    EXPECT_EQ(window().windowTitle(), u"Herbora"_s);
    EXPECT_EQ(window().documents().grids().size(), 0);
    EXPECT_EQ(window().dock().model().rowCount(), 0);
    EXPECT_FALSE(action(u"optimise"_s)->isEnabled());
    openProject();
}

TEST_F(Window, ShowsStoredObjectsAsTheyComeAndGo)
{
    makeProject();
    openProject();
    app::ModuleDock& dock = window().dock();
    dock.view().setCurrentIndex(dock.model().indexOf(u"Images"));
    dock.view().collapse(dock.model().indexOf(u"Sélections"));
    data::PropertyStore& store = program->session().properties();
    const int id = store.put(u"Requête"_s, u"Images"_s, u"Fleurs"_s, u"x"_s);
    const QString key = QString::number(id) + u"-query"_s;
    ASSERT_TRUE(dock.model().indexOf(key).isValid());
    EXPECT_EQ(dock.model().indexOf(key).parent(), dock.model().indexOf(u"Images"));
    EXPECT_EQ(dock.view().currentIndex(), dock.model().indexOf(u"Images"));
    EXPECT_FALSE(dock.view().isExpanded(dock.model().indexOf(u"Sélections")));
    dialogues.expectConfirm(u" Supprimer la propriété Fleurs ?"_s, u"Gestion des propriétés"_s, true);
    EXPECT_TRUE(store.remove(id, dialogues));
    EXPECT_FALSE(dock.model().indexOf(key).isValid());
}

TEST_F(Window, CreatesAProject)
{
    dialogues.expectSaveFile(u"Nouveau projet"_s, filter, path(u"neuf"_s));
    trigger(u"new"_s);
    EXPECT_TRUE(QFileInfo::exists(path(u"neuf.hbx"_s)));
    EXPECT_EQ(window().windowTitle(), u"neuf.hbx - Herbora"_s);
    EXPECT_EQ(program->session().modules().size(), 3);
}

TEST_F(Window, OptimisesAndShowsTheOpenTabsAgain)
{
    makeProject();
    openProject();
    app::GridTab* grid = openRecords(u"Individus"_s);
    QSignalSpy steps(&program->runner(), &platform::TaskRunner::step);
    dialogues.expectConfirm(optimiseQuestion, u"Herbora - Optimisation"_s, true, BoxIcon::Warning);
    trigger(u"optimise"_s);
    settle();
    EXPECT_TRUE(QFileInfo::exists(path(u"projet.hbx.bak"_s)));
    EXPECT_EQ(steps.first(), (QVariantList{u"Vérification des Liens courant"_s, 5}));
    ASSERT_EQ(window().documents().currentGrid(), grid);
    EXPECT_EQ(shown(*grid, {u"Numéro"_s}), (QStringList{u"EA 12"_s, u"ZM 3"_s, u"sans nom"_s}));
    trigger(u"refresh"_s);
    EXPECT_EQ(grid->model().rowCount(), 3);
}

TEST_F(Window, DecliningToOptimiseChangesNothing)
{
    makeProject();
    openProject();
    app::GridTab* grid = openRecords(u"Individus"_s);
    QSignalSpy reset(&grid->model(), &QAbstractItemModel::modelReset);
    dialogues.expectConfirm(optimiseQuestion, u"Herbora - Optimisation"_s, false, BoxIcon::Warning);
    trigger(u"optimise"_s);
    EXPECT_EQ(reset.size(), 0);
    EXPECT_FALSE(QFileInfo::exists(path(u"projet.hbx.bak"_s)));
}

TEST_F(Window, TabsOfOneProjectGoWithIt)
{
    makeProject();
    makeProject(u"autre.hbx"_s);
    openProject();
    openRecords(u"Individus"_s);
    openProject(u"autre.hbx"_s);
    EXPECT_EQ(window().documents().grids().size(), 0);
    EXPECT_TRUE(widget<QWidget>(u"startPage"_s)->isVisible());
}

TEST_F(Window, OpensAProjectDroppedOnIt)
{
    makeProject();
    EXPECT_FALSE(drop({QUrl::fromLocalFile(path(u"image.png"_s)), QUrl(u"https://exemple.fr/a.hbx"_s)}));
    EXPECT_TRUE(drop({QUrl::fromLocalFile(path(u"image.png"_s)), QUrl::fromLocalFile(path())}));
    EXPECT_EQ(window().windowTitle(), u"projet.hbx - Herbora"_s);
}

TEST_F(Window, TheStartPageLeadsOn)
{
    makeProject();
    dialogues.expectOpenFile(u"Ouvrir un projet"_s, filter, path());
    widget<QAbstractButton>(u"startOpen"_s)->click();
    settle();
    widget<QAbstractButton>(u"start-Déterminations"_s)->click();
    settle();
    ASSERT_TRUE(window().documents().currentGrid());
    EXPECT_EQ(window().documents().currentGrid()->source().key, u"Déterminations"_s);
    stop();
    start();
    widget<QAbstractButton>(u"startRecent1"_s)->click();
    settle();
    EXPECT_EQ(window().windowTitle(), u"projet.hbx - Herbora"_s);
}

TEST_F(Window, TheStartPageTellsHowMuchThereIs)
{
    makeProject();
    openProject();
    EXPECT_EQ(widget<QAbstractButton>(u"start-Individus"_s)->accessibleDescription(), u"3 enregistrements"_s);
    EXPECT_EQ(widget<QAbstractButton>(u"start-Déterminations"_s)->accessibleDescription(), u"4 enregistrements"_s);
    EXPECT_EQ(widget<QAbstractButton>(u"start-Images"_s)->accessibleDescription(), u"Aucun enregistrement"_s);
    program->session().database().Execute(u"DELETE FROM [Déterminations] WHERE [ID Déterminations]>1"_s);
    window().place().written({u"Déterminations"_s});
    EXPECT_EQ(widget<QAbstractButton>(u"start-Déterminations"_s)->accessibleDescription(), u"1 enregistrement"_s);
    widget<QAbstractButton>(u"start-importCsv"_s)->click();
    EXPECT_TRUE(window().findChild<QWidget*>(u"importTableau"_s)->isVisible());
}

TEST_F(Window, ADemoProjectIsOneClickAway)
{
    dialogues.expectSaveFile(u"Projet de démonstration"_s, filter, path(u"exemple"_s));
    widget<QAbstractButton>(u"startDemo"_s)->click();
    settle();
    EXPECT_EQ(window().windowTitle(), u"exemple.hbx - Herbora"_s);
    EXPECT_TRUE(QFileInfo(path(u"exemple-images"_s)).isDir());
}

TEST_F(Window, SavesACopyAndGoesOnWithTheProject)
{
    makeProject();
    openProject();
    app::GridTab* grid = openRecords(u"Individus"_s);
    dialogues.expectSaveFile(u"Enregistrer une copie"_s, filter, path(u"l'été.hbx"_s));
    trigger(u"saveCopy"_s);
    EXPECT_EQ(window().windowTitle(), u"projet.hbx - Herbora"_s);
    EXPECT_EQ(window().documents().currentGrid(), grid);
    const auto copy = jet::Database::Open(path(u"l'été.hbx"_s));
    EXPECT_TRUE(copy->Check().isEmpty());
    EXPECT_EQ(copy->OpenRecordset(u"SELECT Count(*) FROM [Individus]"_s)->Value(0).toInt(), 3);
    copy->Close();

    // Its own name, and a file that is no project, are refused and stay as they are.
    dialogues.expectSaveFile(u"Enregistrer une copie"_s, filter, path());
    dialogues.expectLike({u"Impossible d'enregistrer la copie"_s}, u"Herbora"_s, BoxIcon::Stop);
    trigger(u"saveCopy"_s);
    QFile notes(path(u"notes.hbx"_s));
    ASSERT_TRUE(notes.open(QIODevice::WriteOnly));
    notes.write("au revoir");
    notes.close();
    dialogues.expectSaveFile(u"Enregistrer une copie"_s, filter, notes.fileName());
    dialogues.expectLike({u"Impossible d'enregistrer la copie"_s}, u"Herbora"_s, BoxIcon::Stop);
    trigger(u"saveCopy"_s);
    EXPECT_EQ(notes.size(), 9);
    // A project gives way, and is kept.
    makeProject(u"ancien.hbx"_s);
    dialogues.expectSaveFile(u"Enregistrer une copie"_s, filter, path(u"ancien.hbx"_s));
    trigger(u"saveCopy"_s);
    EXPECT_TRUE(QFileInfo::exists(path(u"ancien.hbx.bak"_s)));
    EXPECT_EQ(QDir(folder.path()).entryList({u".*"_s}, QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(Window, NobodyUsesTheProjectWhileItIsBeingOpened)
{
    makeProject();
    window().commands().openPath(path());
    EXPECT_TRUE(window().commands().isBusy());
    for (const QString& name : {u"open"_s, u"new"_s, u"optimise"_s, u"recents"_s})
        EXPECT_FALSE(action(name)->isEnabled()) << name.toStdString();
    window().commands().openPath(path(u"autre.hbx"_s));
    // Closing waits for the end of the opening.
    window().close();
    EXPECT_TRUE(window().isVisible());
    ASSERT_TRUE(QTest::qWaitFor([this] { return !window().isVisible(); }, 10000));
    EXPECT_EQ(program->session().projectName(), u"projet.hbx"_s);
}

TEST_F(Window, GeometryAndDockAreRemembered)
{
    window().resize(903, 611);
    window().dock().hide();
    stop();
    start();
    EXPECT_EQ(window().size(), QSize(903, 611));
    EXPECT_TRUE(window().dock().isHidden());
}

TEST_F(Window, StartsWithTheFileOfTheCommandLineElseTheLastOne)
{
    makeProject();
    makeProject(u"autre.hbx"_s);
    program->openStartFile(path(u"autre.hbx"_s));
    settle();
    EXPECT_EQ(window().windowTitle(), u"autre.hbx - Herbora"_s);
    stop();
    start();
    program->openStartFile({});
    settle();
    EXPECT_EQ(window().windowTitle(), u"autre.hbx - Herbora"_s);
}

TEST_F(Window, AnAssociationDeclinedIsNotOfferedAgain)
{
    FixedAssociation association;
    const QString question = u"Les fichiers HBX ne sont pas correctement associés à Herbora\n"
                             "Souhaitez-vous corriger l'association dans la base de registre ?"_s;
    dialogues.expectConfirm(question, u"Herbora: Registration"_s, false);
    program->startUp(association, {});
    dialogues.verify();
    stop();
    start();
    program->startUp(association, {});
    EXPECT_EQ(association.command, QString());
    EXPECT_EQ(dialogues.asked().size(), 1);
}

TEST_F(Window, AnAssociationAgreedToIsWritten)
{
    FixedAssociation association;
    dialogues.expectLike({u"HBX"_s}, u"Herbora: Registration"_s, BoxIcon::Question, platform::BoxButtons::YesNo,
                         platform::Answer::Yes);
    program->startUp(association, {});
    EXPECT_EQ(association.command, folder.path() + u"/herbora"_s);
}

TEST_F(Window, ViewCommandsDoWhatTheySay)
{
    makeProject();
    openProject();
    app::GridTab* grid = openRecords(u"Individus"_s);
    grid->view().setColumnWidth(0, 700);
    trigger(u"fitColumns"_s);
    EXPECT_LT(grid->view().columnWidth(0), 300);
    auto* tree = widget<QTreeView>(u"moduleTree"_s);
    const QModelIndex selections = window().dock().model().indexOf(u"Sélections"_s);
    trigger(u"collapseAll"_s);
    EXPECT_FALSE(tree->isExpanded(selections));
    EXPECT_TRUE(tree->isExpanded(window().dock().model().index(0, 0)));
    trigger(u"expandAll"_s);
    EXPECT_TRUE(tree->isExpanded(selections));
    trigger(u"showTree"_s);
    EXPECT_TRUE(window().dock().isHidden());
    trigger(u"showToolBar"_s);
    EXPECT_TRUE(widget<QWidget>(u"toolBar"_s)->isHidden());
    trigger(u"fullScreen"_s);
    EXPECT_TRUE(window().isFullScreen());
    trigger(u"closeTab"_s);
    EXPECT_EQ(window().documents().grids().size(), 0);
    trigger(u"quit"_s);
    EXPECT_FALSE(window().isVisible());
}

TEST_F(Window, PicturesAreTakenAndTheProjectStaysAsItIs)
{
    makeProject();
    openProject(); // the first opening writes the version into it
    stop();
    const QStringList files = QDir(folder.path()).entryList(QDir::Files);
    const QDateTime date = QFileInfo(path()).lastModified();
    EXPECT_EQ(app::takeCaptures(path(u"images"_s), path(), folder.path()), 0);
    const QDir images(path(u"images"_s));
    // Each but the welcome page in light and in dark colours.
    const qsizetype dark = images.entryList({u"*-sombre.png"_s}).size();
    EXPECT_GE(dark, 3);
    EXPECT_EQ(images.entryList({u"*.png"_s}).size(), 2 * dark + 1);
    EXPECT_EQ(QImage(images.filePath(u"individus-sombre.png"_s)).size(),
              QImage(images.filePath(u"individus.png"_s)).size());
    EXPECT_EQ(QFileInfo(path()).lastModified(), date);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), files);
    support::expectWarning(u"opening failed: 3024"_s);
    EXPECT_EQ(app::takeCaptures(path(u"images"_s), path(u"absent.hbx"_s), folder.path()), 1);
}

TEST_F(Window, AboutNamesTheVersion)
{
    trigger(u"about"_s);
    auto* dialog = widget<QDialog>(u"aboutDialog"_s);
    EXPECT_TRUE(dialog->findChild<QLabel*>(u"aboutText"_s)->text().contains(u"" HERBORA_VERSION ""_s));
    dialog->close();
}

} // namespace
