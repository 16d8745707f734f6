// What Ctrl+P makes of each kind of window, with the demo project.
#include "QueryFixture.h"
#include "app/Demo.h"
#include "app/ui/ManualWindow.h"
#include "editing/IndividualEditing.h"
#include "editing/ui/RecordEditorWindow.h"
#include "platform/ui/PrintPreview.h"
#include "support/Project.h"

#include <QApplication>
#include <QProcess>
#include <QToolBar>

namespace app {
namespace {

using namespace Qt::StringLiterals;

class Printing : public support::QueryWindowTest {
protected:
    void SetUp() override
    {
        // Beside the programs, where a start finds it.
        QFile::copy(QCoreApplication::applicationDirPath() + u"/Globe.gif"_s, path(u"Globe.gif"_s));
        WindowTest::SetUp();
        static support::TestProject demo;
        static const bool built = [] {
            const bool made = buildDemo(demo.session, demo.path(), demo.progression);
            demo.session.close();
            return made;
        }();
        ASSERT_TRUE(built && QFile::copy(demo.path(), path()));
        openProject();
    }

    static platform::PrintPreview* preview()
    {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            auto* found = qobject_cast<platform::PrintPreview*>(window);
            if (found && found->isVisible())
                return found;
        }
        return nullptr;
    }

    /// Saves what the preview shows as PDF, closes it, and gives its text.
    QString printed(const QString& name)
    {
        platform::PrintPreview* window = preview();
        if (!window)
            return u"no preview"_s;
        dialogues.expectSaveFile(u"Enregistrer en PDF"_s, u"Documents PDF (*.pdf)|*.pdf|"_s, path(name));
        window->findChild<QAction*>(u"enregistrerPdf"_s)->trigger();
        window->close();
        QProcess reader;
        reader.start(u"pdftotext"_s, {u"-layout"_s, u"-enc"_s, u"UTF-8"_s, path(name), u"-"_s});
        EXPECT_TRUE(reader.waitForFinished());
        return QString::fromUtf8(reader.readAll());
    }
    static void expectAll(const QString& text, const QStringList& pieces)
    {
        for (const QString& piece : pieces)
            EXPECT_TRUE(text.contains(piece)) << piece.toStdString() << " is not in\n" << text.toStdString();
    }
};

TEST_F(Printing, TablesRepeatTheirHeadersOnNumberedPages)
{
    openRecords(u"Individus"_s);
    trigger(u"print"_s);
    const QString grid = printed(u"grille.pdf"_s);
    const QStringList pages = grid.split(u'\f', Qt::SkipEmptyParts);
    ASSERT_GT(pages.size(), 2);
    for (qsizetype page = 0; page < pages.size(); ++page)
        expectAll(pages[page], {u"Individus"_s, u"Collecteur"_s, u"Altitude"_s, u"Page %1 sur %2"_s.arg(QString::number(page + 1), QString::number(pages.size()))});

    query::QueryTab& tab = newQuery();
    tab.query().addReadableColumn(field(tab, {u"Numéro"_s}));
    tab.query().addReadableColumn(field(tab, {u"ID Localités"_s}));
    run(tab);
    trigger(u"print"_s);
    expectAll(printed(u"requete.pdf"_s), {u"Numéro"_s, u"Localité"_s, u"Page 1 sur"_s});
    tab.query().begin(query::QueryDefinition(tab.query().definition()), tab.query().NomQuery()); // nothing to be asked for
}

TEST_F(Printing, ARecordIsPrintedWithWhatHangsUnderIt)
{
    const auto rows = program->session().database().OpenRecordset(
        u"SELECT TOP 1 [ID Individus],[Numéro] FROM Individus WHERE [Numéro]<>\"\" ORDER BY [ID Individus]"_s);
    place().editRecords(editing::IndividualEditing::levelPath(data::moduleIndividus, {rows->Value(0).toInt()}));
    settle();
    editing::RecordEditorWindow* editor = nullptr;
    for (QWidget* window : QApplication::topLevelWidgets())
        editor = editor ? editor : qobject_cast<editing::RecordEditorWindow*>(window);
    ASSERT_TRUE(editor);
    editor->actions().print->trigger();
    expectAll(printed(u"fiche.pdf"_s), {rows->Value(1).toString(), u"Détermination courante"_s, u"N° 1 : "_s, u"Taxon"_s, u"Page 1 sur 1"_s});
}

TEST_F(Printing, AMapIsPrintedWithItsTitleAndCount)
{
    if (!QFile::exists(QCoreApplication::applicationDirPath() + u"/Globe.gif"_s))
        GTEST_SKIP() << "built without maps";
    trigger(u"carte"_s);
    trigger(u"print"_s);
    expectAll(printed(u"carte.pdf"_s), {u"Carte - projet"_s, u"Page 1 sur 1"_s});
}

TEST_F(Printing, TheMapOfAQueryIsPrintedUnderItsName)
{
    if (!QFile::exists(QCoreApplication::applicationDirPath() + u"/Globe.gif"_s))
        GTEST_SKIP() << "built without maps";
    query::QueryTab& tab = newQuery();
    run(tab);
    tab.pane().setMode(u"map"_s);
    settle();
    trigger(u"print"_s);
    expectAll(printed(u"carte de requête.pdf"_s), {u"Nouvelle Requête"_s, u"localités"_s, u"Page 1 sur 1"_s});
}

/// What Qt's French catalogue leaves out is filled in.
TEST_F(Printing, ThePreviewAndTheDialogsBehindItAreFrench)
{
    openRecords(u"Individus"_s);
    trigger(u"print"_s);
    platform::PrintPreview* window = preview();
    ASSERT_TRUE(window);
    QStringList texts;
    for (const QAction* action : window->findChildren<QAction*>())
        texts << action->toolTip();
    for (const QString& text : {u"Ajuster la largeur"_s, u"Page suivante"_s, u"Mise en page"_s, u"Imprimer"_s})
        EXPECT_TRUE(texts.contains(text)) << text.toStdString();
    EXPECT_EQ(ManualWindow::pageFor(window), u"imprimer"_s);
    EXPECT_EQ(QCoreApplication::translate("QPrintSettingsOutput", "Long side binding"), u"Reliure sur le grand côté"_s);
    window->close();
}

} // namespace
} // namespace app
