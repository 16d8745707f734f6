// The record editor as the main window opens it.
#include "WindowFixture.h"

#include "app/References.h"
#include "app/ui/EditorDesk.h"
#include "editing/ui/DescriptorPanel.h"
#include "editing/ui/Listes.h"
#include "editing/ui/RecordEditorWindow.h"

#include "jet/Recordset.h"

#include <QDialog>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTimer>

namespace {

using namespace Qt::StringLiterals;
using editing::RecordEditorWindow;
using platform::Answer;
using platform::BoxButtons;
using platform::BoxIcon;

const QString titleSave = u"Enregistrements des propriétés"_s;
const platform::Message draftQuestion{
    u"Des saisies qui n'avaient pas été enregistrées ont été retrouvées.\nVoulez-vous les reprendre ?\n\n"
    "Non les efface ; Annuler les garde pour la prochaine ouverture."_s,
    u"Herbora"_s, BoxIcon::Question, BoxButtons::YesNoCancel};

class Editor : public support::WindowTest {
protected:
    app::EditorDesk& desk()
    {
        app::EditorDesk* found = nullptr;
        for (const auto& desk : window().desks())
            found = found ? found : qobject_cast<app::EditorDesk*>(desk.get());
        EXPECT_TRUE(found);
        return *found;
    }
    RecordEditorWindow& editor() { return *desk().window(); }
    editing::IndividualEditing& edited() { return editor().editing(); }
    /// Opens the editor on a row of the grid of a module, by Return.
    void editRow(const QString& module, int row)
    {
        app::GridTab* grid = openRecords(module);
        grid->view().setCurrentIndex(grid->model().index(row, 0));
        QTest::keyClick(&grid->view(), Qt::Key_Return);
        ASSERT_TRUE(desk().window());
        ASSERT_TRUE(QTest::qWaitForWindowActive(&editor()));
    }
    void type(const QString& text) { QTest::keyClicks(editor().focusWidget(), text); }
    void key(Qt::Key key, Qt::KeyboardModifiers with = Qt::NoModifier) { QTest::keyClick(editor().focusWidget(), key, with); }
    void expectSave(const QString& which, Answer answer, BoxButtons buttons = BoxButtons::YesNo)
    {
        dialogues.expect(
            {u"Voulez-vous enregistrez les modifications apportées "_s + which, titleSave, BoxIcon::Question, buttons}, answer);
    }
    QStringList numbers() { return shown(*window().documents().currentGrid(), {u"Numéro"_s}); }
    void choose(const QString& node)
    {
        window().dock().view().setCurrentIndex(window().dock().model().indexOf(node));
    }
};

TEST_F(Editor, WalksTheRowsOfTheListFromTheOneThatWasOpened)
{
    makeProject();
    openProject();
    editRow(u"Individus"_s, 1);
    EXPECT_EQ(edited().CurrentIndividu(), 2);
    EXPECT_EQ(edited().listText(), u"2 / 3"_s);
    EXPECT_EQ(editor().focusWidget()->objectName(), u"editeur-Numéro"_s);
    key(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(edited().CurrentIndividu(), 3);
    key(Qt::Key_Left, Qt::AltModifier);
    key(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(edited().CurrentIndividu(), 1);
    RecordEditorWindow* first = &editor();
    // Rows that are selected are the list.
    app::GridTab* grid = window().documents().currentGrid();
    grid->view().selectRow(0);
    grid->view().selectionModel()->setCurrentIndex(grid->model().index(2, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    QTest::keyClick(&grid->view(), Qt::Key_Return);
    EXPECT_EQ(edited().CurrentIndividu(), 3);
    EXPECT_EQ(edited().listText(), u"2 / 2"_s);
    editRow(u"Déterminations"_s, 2); // the same window, on records of another module
    EXPECT_EQ(&editor(), first);
    EXPECT_EQ(edited().current()->key, u"3-Déterminations"_s);
    EXPECT_EQ(edited().listText(), u"3 / 4"_s);
}

TEST_F(Editor, TellsTheTabsWhatItSaved)
{
    makeProject();
    openProject();
    editRow(u"Individus"_s, 0);
    key(Qt::Key_End);
    type(u" bis"_s);
    expectSave(u"à la propriété < Individu - N° 1 >"_s, Answer::Yes);
    key(Qt::Key_S, Qt::ControlModifier);
    settle();
    EXPECT_EQ(numbers(), (QStringList{u"EA 12 bis"_s, u"ZM 3"_s, u"sans nom"_s}));
    // And it shows what others write.
    program->session().database().Execute(u"UPDATE Individus SET [Numéro]=\"autre\" WHERE [ID Individus]=1"_s);
    window().place().written({u"Individus"_s});
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return editor().findChild<QLineEdit*>(u"editeur-Numéro"_s)->text() == u"autre"; }, 5000));
}

TEST_F(Editor, IsAskedBeforeTheProjectGoes)
{
    makeProject();
    openProject();
    editRow(u"Individus"_s, 0);
    type(u"X"_s);
    const QString which = u"à la propriété < Individu - N° 1 >"_s;
    expectSave(which, Answer::Cancel, BoxButtons::YesNoCancel);
    EXPECT_FALSE(window().close());
    EXPECT_TRUE(editor().isVisible());
    EXPECT_TRUE(program->session().isOpen());
    expectSave(which, Answer::No, BoxButtons::YesNoCancel);
    makeProject(u"autre.hbx"_s);
    openProject(u"autre.hbx"_s);
    EXPECT_FALSE(desk().window()); // it belonged to the first project
}

TEST_F(Editor, OffersWhatACrashLeft)
{
    makeProject();
    openProject();
    editRow(u"Individus"_s, 0);
    type(u"X"_s);
    editor().draft().flush(); // as the clock does
    program.reset();          // nothing is asked, nothing is put away
    ASSERT_TRUE(QFileInfo::exists(path(u"projet.hbx.saisie"_s)));
    start();
    dialogues.expect(draftQuestion, Answer::Yes);
    openProject();
    QCoreApplication::processEvents();
    ASSERT_TRUE(desk().window());
    EXPECT_TRUE(editor().findChild<QLineEdit*>(u"editeur-Numéro"_s)->text().contains(u'X'));
    EXPECT_TRUE(edited().ToSave());
    expectSave(u"à la propriété < Individu - N° 1 >"_s, Answer::No, BoxButtons::YesNoCancel);
    editor().close();
    EXPECT_FALSE(QFileInfo::exists(path(u"projet.hbx.saisie"_s)));
}

/// What a draft holds of the habitat of the individual; empty for none.
QString draftedHabitat(const QString& file)
{
    QFile draft(file);
    if (!draft.open(QIODevice::ReadOnly))
        return {};
    const QJsonArray records = QJsonDocument::fromJson(draft.readAll()).object().value(u"enregistrements"_s).toArray();
    return records.first().toObject().value(u"valeurs"_s).toObject().value(u"Habitat"_s).toString();
}

TEST_F(Editor, LosesNothingOfLongTypingWhenItIsKilled)
{
    constexpr int patience = 30000;
    makeProject();
    const QString draft = path(u"projet.hbx.saisie"_s);
    QString kept; // the text as it was before the typing, and what an earlier hand typed
    for (int round = 0; round < 2; ++round) {
        QProcess typist;
        typist.start(QCoreApplication::applicationDirPath() + u"/editor_typist"_s, {path()});
        ASSERT_TRUE(QTest::qWaitFor([&] { return draftedHabitat(draft).size() > kept.size() + 20; }, patience));
        typist.kill();
        ASSERT_TRUE(typist.waitForFinished());
        const QString typed = QString::fromLatin1(typist.readAllStandardOutput());
        const QString found = draftedHabitat(draft);
        const qsizetype before = round == 0 ? u"forêt \"dense\""_s.size() : kept.size();
        EXPECT_EQ(found.left(kept.size()), kept); // of the first hand
        EXPECT_EQ(found.mid(before), typed.left(found.size() - before));
        kept = found;
    }
    dialogues.expect(draftQuestion, Answer::Yes);
    openProject();
    QCoreApplication::processEvents();
    ASSERT_TRUE(desk().window());
    expectSave(u"à la propriété < Individu - N° 1 >"_s, Answer::Yes);
    key(Qt::Key_S, Qt::ControlModifier);
    settle();
    EXPECT_EQ(program->session().database().OpenRecordset(u"SELECT [Habitat] FROM Individus WHERE [ID Individus]=1"_s)->Value(0), kept);
    EXPECT_TRUE(editor().close());
    EXPECT_EQ(QDir(folder.path()).entryList({u"*saisie*"_s}), QStringList());
}

TEST_F(Editor, ServesTheCommandsOfTheTree)
{
    makeProject();
    openProject();
    choose(u"Images"_s);
    dialogues.expectTell(u"Choisissez d'abord un individu, dans la liste des individus ou dans la fiche :\n"
                         "l'enregistrement ajouté lui appartiendra."_s,
                         u"Ajout"_s);
    trigger(u"addToModule"_s);
    EXPECT_FALSE(desk().window());
    app::GridTab* grid = openRecords(u"Individus"_s);
    grid->view().setCurrentIndex(grid->model().index(1, 0));
    choose(u"Images"_s);
    trigger(u"addToModule"_s);
    EXPECT_EQ(edited().current()->module, u"Images"_s);
    EXPECT_EQ(edited().current()->parent, u"2-Individus"_s);
    EXPECT_FALSE(edited().ToSave());
    trigger(u"newIndividual"_s);
    EXPECT_EQ(edited().current()->module, u"Individus"_s);
    EXPECT_TRUE(edited().current()->isNew());
}

TEST_F(Editor, MakesAppliesAndDeletesModels)
{
    makeProject();
    openProject();
    choose(u"Individus"_s);
    QTimer::singleShot(0, [] {
        auto* form = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(form);
        auto* habitat = form->findChild<QPlainTextEdit*>(u"editeur-Habitat"_s);
        habitat->setFocus();
        QTest::keyClicks(habitat, u"lande"_s);
        form->accept();
    });
    dialogues.expectInput(u"Ajout - Modèle"_s, u"Indiquez le nom unique de la nouvelle propriété 'Modèle'"_s, {}, u"Landes"_s);
    trigger(u"newModel"_s);
    const auto models = program->session().properties().list(data::kindModèle, u"Individus"_s);
    const auto made = std::find_if(models.begin(), models.end(), [](const auto& m) { return m.name == u"Landes"; });
    ASSERT_NE(made, models.end());
    choose(data::nodeKey(*made));
    trigger(u"addFromModel"_s);
    EXPECT_EQ(editor().findChild<QPlainTextEdit*>(u"editeur-Habitat"_s)->toPlainText(), u"lande"_s);
    dialogues.expectConfirm(u" Supprimer la propriété Landes ?"_s, u"Gestion des propriétés"_s, true);
    trigger(u"deleteModel"_s);
    EXPECT_FALSE(window().dock().model().indexOf(data::nodeKey(*made)).isValid());
    expectSave(u"à la propriété < Individu - Ajout >"_s, Answer::No, BoxButtons::YesNoCancel);
}

TEST_F(Editor, KeepsTheKeysUntilTheDatabaseIsBack)
{
    makeProject();
    openProject();
    editRow(u"Individus"_s, 0);
    QSemaphore gate;
    program->runner().start({[&gate](platform::Progression&) { gate.acquire(); }, {}, {}, u"Occupé"_s});
    auto* number = editor().findChild<QLineEdit*>(u"editeur-Numéro"_s);
    number->selectAll();
    type(u"rapide"_s);
    key(Qt::Key_Return);
    key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(number->text(), u"EA 12"_s);
    expectSave(u"à la propriété < Individu - N° 1 >"_s, Answer::Yes);
    gate.release();
    settle();
    EXPECT_EQ(numbers().first(), u"rapide"_s);
    EXPECT_EQ(editor().focusWidget()->objectName(), u"editeur-ID Collecteurs"_s);
}

TEST_F(Editor, RewritesRecordsBesideTheWindows)
{
    makeProject();
    openProject();
    program->session().properties().put(data::kindDescripteur, u"Individus"_s, u"Herbier"_s, u"P;NCY"_s);
    program->session().database().Execute(u"UPDATE Individus SET [Herbier]=\"NCY;P\""_s);
    editRow(u"Individus"_s, 0);
    auto* list = editor().findChild<editing::Listes*>(u"Herbier"_s);
    ASSERT_TRUE(list);
    list->panel().list().setCurrentRow(0);
    QSignalSpy steps(&program->runner(), &platform::TaskRunner::step);
    dialogues.expectInput(u"Modification d'un descripteur"_s, u"Nouveau nom pour le descripteur ?"_s, u"P"_s, u"Paris"_s);
    list->panel().command(u"edit"_s)->trigger();
    EXPECT_FALSE(program->runner().isRunning());
    EXPECT_GT(steps.size(), 0);
    EXPECT_EQ(edited().form(*edited().current()).Item(u"Herbier"_s)->value(), u"NCY;Paris"_s);
    EXPECT_EQ(program->session().database().OpenRecordset(u"SELECT Count(*) FROM Individus WHERE [Herbier]=\"NCY;Paris\""_s)->Value(0), 3);
}

} // namespace
