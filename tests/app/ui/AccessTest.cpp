// Old Access files in the main window.
#include "WindowFixture.h"

#include "app/AccessImport.h"
#include "app/ui/AccessReportDialog.h"

#include <QFileInfo>
#include <QPlainTextEdit>
#include <QSignalSpy>

namespace {

using namespace Qt::StringLiterals;
using platform::BoxIcon;

const QString caption = u"Herbora - Ancienne base Access"_s;

class AccessWindow : public support::WindowTest {
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        const QString sample = qEnvironmentVariable("HERBORA_SOURCE") + u"/tests/jet/access/samples/ancien-projet.hbx"_s;
        ASSERT_TRUE(QFile::copy(sample, path(u"ancien.hbx"_s)));
    }
    void expectQuestion(bool yes)
    {
        dialogues.expectConfirm(u"Le fichier « %1 » est une ancienne base Access.\n"
                                "Herbora va en faire un nouveau projet, « ancien (converti).hbx », et l'ouvrir. L'ancien "
                                "fichier n'est pas modifié.\nVoulez-vous continuer ?"_s.arg(path(u"ancien.hbx"_s)),
                                caption, yes);
    }
    QString converted() const { return path(u"ancien (converti).hbx"_s); }
};

TEST_F(AccessWindow, ConvertsAndOpensWhatIsOpenedLikeAnyProject)
{
    expectQuestion(true);
    QSignalSpy steps(&program->runner(), &platform::TaskRunner::step);
    window().commands().openPath(path(u"ancien.hbx"_s));
    settle();
    EXPECT_EQ(window().windowTitle(), u"ancien (converti).hbx - Herbora"_s);
    EXPECT_TRUE(std::any_of(steps.begin(), steps.end(), [](const QVariantList& step) {
        return step.first().toString() == u"Table « Individus »";
    }));
    auto* report = window().findChild<app::AccessReportDialog*>();
    ASSERT_TRUE(report);
    EXPECT_TRUE(report->findChild<QPlainTextEdit*>()->toPlainText().contains(u"Individus : 504 enregistrements"_s));
    report->close();
    app::GridTab* individuals = openRecords(u"Individus"_s);
    EXPECT_EQ(individuals->statusText(), u"504 enregistrements"_s);
    EXPECT_EQ(openRecords(u"Mesures"_s)->statusText(), u"450 enregistrements"_s);
}

TEST_F(AccessWindow, ConvertsFromTheFileDialogAndFromTheCommandLine)
{
    expectQuestion(false);
    program->openStartFile(path(u"ancien.hbx"_s));
    settle();
    EXPECT_EQ(window().windowTitle(), u"Herbora"_s);
    dialogues.expectOpenFile(u"Ouvrir un projet"_s, u"Fichiers Herbora (*.hbx)|*.hbx|"_s, path(u"ancien.hbx"_s));
    expectQuestion(true);
    trigger(u"open"_s);
    EXPECT_EQ(window().windowTitle(), u"ancien (converti).hbx - Herbora"_s);
}

TEST_F(AccessWindow, LeavesEverythingAsItIsWhenTheUserDeclines)
{
    makeProject();
    openProject();
    expectQuestion(false);
    window().commands().openPath(path(u"ancien.hbx"_s));
    settle();
    EXPECT_EQ(window().windowTitle(), u"projet.hbx - Herbora"_s);
    EXPECT_FALSE(QFileInfo::exists(converted()));
}

TEST_F(AccessWindow, KeepsTheOpenProjectAndNoFileWhenTheUserStopsTheConversion)
{
    makeProject();
    openProject();
    expectQuestion(true);
    dialogues.expectLike({u"n'a pas été convertie"_s, u"annulée"_s}, caption, BoxIcon::Information);
    window().commands().importPath(path(u"ancien.hbx"_s));
    EXPECT_TRUE(program->runner().isCancellable());
    program->runner().cancel();
    settle();
    EXPECT_EQ(window().windowTitle(), u"projet.hbx - Herbora"_s);
    EXPECT_EQ(QDir(folder.path()).entryList({u"*ancien*"_s}, QDir::Files | QDir::Hidden), QStringList{u"ancien.hbx"_s});
}

TEST_F(AccessWindow, TellsWhatIsNoAccessFile)
{
    makeProject();
    dialogues.expectOpenFile(u"Importer une ancienne base Access"_s,
                             u"Anciennes bases Access (*.hbx *.mdb *.accdb)|*.hbx;*.mdb;*.accdb|"_s, path());
    dialogues.expectLike({u"n'a pas été convertie"_s}, caption, BoxIcon::Stop);
    support::expectWarning(u"failed: 3343"_s);
    trigger(u"importAccess"_s);
}

TEST_F(AccessWindow, ShowsTheReportOnlyForProjectsThatHaveOne)
{
    makeProject();
    openProject();
    EXPECT_FALSE(action(u"importReport"_s)->isEnabled());
    program->session().database().SetProperty(app::importReportProperty, u"Un rapport"_s);
    program->session().close();
    openProject();
    trigger(u"importReport"_s);
    EXPECT_EQ(window().findChild<QPlainTextEdit*>(u"accessReportText"_s)->toPlainText(), u"Un rapport"_s);
}

} // namespace
