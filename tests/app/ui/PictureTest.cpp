#include "WindowFixture.h"
#include "app/Session.h"
#include "app/ui/EditorDesk.h"
#include "app/ui/PictureDesk.h"
#include "app/ui/PictureTab.h"
#include "editing/IndividualEditing.h"
#include "editing/ui/RecordEditorWindow.h"
#include "images/ImagePaths.h"
#include "images/ThumbnailLoader.h"
#include "images/ui/FoldersDialog.h"
#include "jet/Recordset.h"
#include "query/ui/PictureMode.h"
#include "query/ui/QueryTab.h"

#include <QDir>
#include <QTabWidget>

using namespace Qt::StringLiterals;
using support::WindowTest;

namespace {

/// Individual 1 has the pictures 1 and 2, individual 2 the picture 3.
class PictureWindow : public WindowTest {
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        makeProject();
        QDir(folder.path()).mkpath(u"photos"_s);
        for (int i = 1; i <= 3; ++i) {
            QImage image(400, 300, QImage::Format_RGB32);
            image.fill(Qt::darkGreen);
            ASSERT_TRUE(image.save(path(u"photos/p%1.jpg"_s.arg(i))));
        }
        openProject();
        for (int i = 1; i <= 3; ++i) {
            const QString owner = QString::number(i == 3 ? 2 : 1);
            db().Execute(u"INSERT INTO Images ([ID Individus],[KeyParent],[Fichier]) VALUES ("_s + owner + u",\""_s + owner
                         + u"-Individus\",\"p"_s + QString::number(i) + u".jpg\")"_s);
        }
        images::setImageFolders(program->session().properties(), {path(u"photos"_s)});
    }
    jet::Database& db() { return program->session().database(); }
    template <typename DeskType> DeskType& desk()
    {
        for (const auto& one : window().desks()) {
            if (auto* found = qobject_cast<DeskType*>(one.get()))
                return *found;
        }
        throw std::logic_error("no such desk");
    }
    query::PictureMode* openPictures(const QString& module)
    {
        window().place().openQuery(module, 0);
        settle();
        auto* tab = qobject_cast<query::QueryTab*>(window().documents().current());
        EXPECT_TRUE(tab);
        if (!tab)
            return nullptr;
        tab->execute();
        EXPECT_TRUE(QTest::qWaitFor([tab] { return tab->pane().hasResult() && tab->pane().isComplete(); }, 20'000));
        tab->pane().setMode(u"picture"_s);
        auto* mode = tab->findChild<query::PictureMode*>();
        EXPECT_TRUE(mode && QTest::qWaitFor([mode] { return !mode->isLoading(); }, 20'000));
        settle();
        return mode;
    }
    app::PictureTab* openViewer(qint32 picture)
    {
        window().place().editRecords(editing::IndividualEditing::levelPath(u"Images"_s, {picture}));
        settle();
        auto* editor = desk<app::EditorDesk>().window();
        auto* tab = editor ? editor->findChild<app::PictureTab*>() : nullptr;
        EXPECT_TRUE(tab);
        if (!tab)
            return nullptr;
        for (auto* tabs : editor->findChildren<QTabWidget*>()) {
            if (tabs->indexOf(tab) >= 0)
                tabs->setCurrentWidget(tab);
        }
        EXPECT_TRUE(QTest::qWaitFor([tab] { return !tab->isReading(); }, 20'000));
        return tab;
    }
};

} // namespace

TEST_F(PictureWindow, FoldersAreKeptWithTheProject)
{
    trigger(u"imagePaths"_s);
    auto* dialog = window().findChild<images::FoldersDialog*>();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->folders(), QStringList{path(u"photos"_s)});
    dialogues.expectFolder(u"Selectionnez le répertoire Images"_s, path(u"autres"_s));
    dialog->findChild<QPushButton*>(u"addFolder"_s)->click();
    dialog->accept();
    settle();
    EXPECT_EQ(images::imageFolders(program->session().properties()), (QStringList{path(u"photos"_s), path(u"autres"_s)}));
}

TEST_F(PictureWindow, PickedFilesAreKeptRelativeToTheirFolder)
{
    auto& desk = this->desk<app::PictureDesk>();
    EXPECT_EQ(desk.namesOf({path(u"photos/p1.jpg"_s), path(u"photos/p2.jpg"_s)}), (QStringList{u"p1.jpg"_s, u"p2.jpg"_s}));
    QDir(folder.path()).mkpath(u"ailleurs"_s);
    ASSERT_TRUE(QFile::copy(path(u"photos/p1.jpg"_s), path(u"ailleurs/q.jpg"_s)));
    const QString question = u"Le répertoire "_s + path(u"ailleurs"_s)
                             + u" n'est pas déclaré pour la recherche des images.\nVoulez-vous l'ajouter ?"_s;
    dialogues.expectConfirm(question, u"Dossiers des images"_s, false);
    EXPECT_EQ(desk.namesOf({path(u"ailleurs/q.jpg"_s)}), QStringList{path(u"ailleurs/q.jpg"_s)});
    dialogues.expectConfirm(question, u"Dossiers des images"_s, true);
    EXPECT_EQ(desk.namesOf({path(u"ailleurs/q.jpg"_s)}), QStringList{u"q.jpg"_s});
    EXPECT_EQ(images::imageFolders(program->session().properties()).size(), 2);
}

TEST_F(PictureWindow, AQueryShowsThePicturesOfItsIndividuals)
{
    auto* mode = openPictures(u"Individus"_s);
    ASSERT_TRUE(mode);
    EXPECT_EQ(mode->thumbnails().countText(), u"3 Cellule(s)"_s);
    EXPECT_EQ(mode->thumbnails().NomModule(), u"Images"_s);
    mode->setSelection({.records = {1}, .individuals = {1}});
    QList<qint32> ids = mode->thumbnails().selectedIds();
    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(ids, (QList<qint32>{1, 2}));
    mode->thumbnails().RefreshSelectedItems({3});
    EXPECT_EQ(mode->selection().individuals, QList<qint32>{2});
    query::ResultSelection opened;
    QObject::connect(mode, &query::ResultMode::activated, mode, [&opened](const query::ResultSelection& record) { opened = record; });
    Q_EMIT mode->thumbnails().activated(3);
    EXPECT_EQ(opened.individuals, QList<qint32>{2});
    settle();
    // Of what was written elsewhere too; the selection stays.
    db().Execute(u"DELETE * FROM Images WHERE [ID Images]=1"_s);
    mode->valuesChanged({u"Images"_s});
    ASSERT_TRUE(QTest::qWaitFor([mode] { return !mode->isLoading(); }, 20'000));
    settle();
    EXPECT_EQ(mode->thumbnails().countText(), u"2 Cellule(s)"_s);
    EXPECT_EQ(mode->thumbnails().SelectedItems(), u"3"_s);
    // Thumbnails are asked for when the grid is painted, and kept by another thread.
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return QFile::exists(path(u"projet.hbi"_s)) && window().place().thumbnails()->isIdle(); }, 20'000));
}

TEST_F(PictureWindow, ACalibrationIsWrittenAtOnceAndReadAgain)
{
    app::PictureTab* tab = openViewer(1);
    ASSERT_TRUE(tab);
    EXPECT_EQ(tab->viewer().NomFichier(), u"p1.jpg"_s);
    EXPECT_EQ(tab->viewer().canvas().picture().size, QSize(400, 300));
    EXPECT_GE(tab->findChild<QTreeWidget*>(u"pictureDetails"_s)->topLevelItemCount(), 2); // dimensions, file
    EXPECT_FALSE(tab->findChild<QPushButton*>(u"takeFacts"_s)->isEnabled());
    dialogues.expectInput(u"TransUserControlation de coordonnées"_s, u"Indiquez la distance réelle entre les deux points"_s,
                          u"0"_s, u"50"_s);
    Q_EMIT tab->viewer().canvas().segmentDrawn(QLineF(0, 0, 200, 0));
    EXPECT_EQ(db().OpenRecordset(u"SELECT [TaillePixel] FROM Images WHERE [ID Images]=1"_s)->Value(0).toFloat(), 0.25F);
    EXPECT_EQ(tab->viewer().canvas().segmentText(), u"D = 50"_s);
    settle();
    tab = openViewer(2);
    EXPECT_EQ(tab->viewer().TaillePixel(), 0.0F);
    tab = openViewer(1);
    EXPECT_EQ(tab->viewer().TaillePixel(), 0.25F);
}
