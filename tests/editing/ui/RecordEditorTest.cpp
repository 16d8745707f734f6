// The window on a real project, by the keyboard alone.
#include "EditorFixture.h"

#include <QFileInfo>
#include <QMimeData>

namespace {

using namespace Qt::StringLiterals;
using editing::EditNode;
using editing::IndividualEditing;
using editing::RecordEditorWindow;
using platform::Answer;
using platform::BoxButtons;
using platform::BoxIcon;

const QString titleSave = u"Enregistrements des propriétés"_s;

class RecordEditorTest : public support::EditorTest {
protected:
    void SetUp() override
    {
        EditorTest::SetUp();
        open();
    }
    void TearDown() override
    {
        window.reset();
        edit.reset();
        EditorTest::TearDown();
    }
    void open(const std::function<void(editing::EditorSurroundings&)>& prepare = {})
    {
        window.reset();
        edit = std::make_unique<IndividualEditing>(tools());
        wizard = std::make_unique<editing::FormWindows>(world, &project.db());
        editing::EditorSurroundings around{project.dialogues, *wizard};
        around.search = search.get();
        around.lists = lists.get();
        around.project = u"projet.hbx"_s;
        around.draftFile = project.path(u"projet.hbx.saisie"_s);
        around.remembered = [this](const QString& key) { return memory.value(key); };
        around.remember = [this](const QString& key, const QVariant& value) { memory.insert(key, value); };
        if (prepare)
            prepare(around);
        window = std::make_unique<RecordEditorWindow>(*edit, around);
    }
    void show(const QString& path)
    {
        ASSERT_TRUE(window->EditItems(path));
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    /// A key to wherever the focus is.
    void key(Qt::Key key, Qt::KeyboardModifiers with = Qt::NoModifier)
    {
        QWidget* popup = QApplication::activePopupWidget();
        QTest::keyClick(popup ? popup : window->focusWidget(), key, with);
    }
    void type(const QString& text) { QTest::keyClicks(window->focusWidget(), text); }
    QString focused() const { return window->focusWidget() ? window->focusWidget()->objectName() : QString(); }
    void expectSave(const QString& which, Answer answer = Answer::Yes, BoxButtons buttons = BoxButtons::YesNo)
    {
        project.dialogues.expect({u"Voulez-vous enregistrez les modifications apportées "_s + which, titleSave,
                                  BoxIcon::Question, buttons},
                                 answer);
    }
    QModelIndex indexOf(const QString& key)
    {
        auto* model = static_cast<editing::EditTreeModel*>(window->tree().model());
        return model->indexOf(edit->node(key));
    }

    std::unique_ptr<IndividualEditing> edit;
    std::unique_ptr<editing::FormWindows> wizard;
    std::unique_ptr<RecordEditorWindow> window;
    QHash<QString, QVariant> memory;
};

TEST_F(RecordEditorTest, SpecimensAreTypedByTheKeyboardAlone)
{
    constexpr int specimens = 50;
    show(IndividualEditing::newRecordPath(u"Individus"_s));
    for (int i = 1; i <= specimens; ++i) {
        ASSERT_EQ(focused(), u"editeur-Numéro"_s);
        type(u"S%1"_s.arg(i));
        key(Qt::Key_Return);
        type(u"jm"_s);
        key(Qt::Key_Return);
        type(u"2001/3/%1"_s.arg(1 + i % 28));
        key(Qt::Key_Return);
        type(u"sa"_s);
        key(Qt::Key_Return);
        expectSave(u"à la propriété < Individu - Ajout >"_s, Answer::Yes, BoxButtons::YesNoCancel);
        key(Qt::Key_N, Qt::ControlModifier); // saves, then the next one
    }
    const QStringList rows = project.rows(
        u"SELECT [Numéro],[ID Collecteurs],[DateRécolte],[ID Localités] FROM Individus WHERE [ID Individus]>3"_s);
    ASSERT_EQ(rows.size(), specimens);
    for (int i = 1; i <= specimens; ++i)
        EXPECT_EQ(rows.at(i - 1), u"S%1|2|2001/03/%2|1"_s.arg(i).arg(1 + i % 28, 2, 10, QChar(u'0')));
}

TEST_F(RecordEditorTest, EveryTypeIsFilledAndSaved)
{
    show(IndividualEditing::newRecordPath(u"Essais"_s, 2));
    ASSERT_EQ(focused(), u"editeur-Titre"_s);
    const QStringList typed{u"complet"_s, u"W53 12"_s, u"3,6"_s, u"v"_s, u"12,5"_s, u"7"_s, u"2001"_s, u"a.jpg"_s, u"note"_s};
    for (const QString& text : typed) {
        type(text);
        key(Qt::Key_Return, focused() == u"editeur-Mémo" ? Qt::ControlModifier : Qt::NoModifier);
    }
    ASSERT_EQ(focused(), u"editeur-Multiple"_s);
    key(Qt::Key_Space);
    key(Qt::Key_Return);
    for (const QString& text : {u"com"_s, u"jm"_s, u"sa"_s, u"quercus r"_s}) {
        type(text);
        key(Qt::Key_Return);
    }
    picture(*window, u"saisie"_s);
    expectSave(u"à la propriété < Essai - Ajout >"_s);
    key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(project.rows(u"SELECT [Titre],[Longitude],[OuiNon],[Réel],[Entier],[Date],[Image],[Mémo],[Multiple],[Simple],"
                           "[ID Collecteurs],[ID Localités],[ID Taxons],[KeyParent] FROM Essais WHERE [ID Individus]=2"_s),
              QStringList{u"complet|-53.2|true|12.5|7|2001|a.jpg|note|sec|commun|2|1|2|2-Individus"_s});
    EXPECT_FALSE(window->isWindowModified());
}

TEST_F(RecordEditorTest, ErrorsLocksAndModesAreSeen)
{
    show(u"1-Individus;1;2"_s);
    picture(*window, u"individu"_s);
    ASSERT_TRUE(edit->select(u"1-Essais"_s));
    ASSERT_EQ(focused(), u"editeur-Titre"_s);
    static_cast<QLineEdit*>(window->focusWidget())->clear();
    type(u"x"_s);
    key(Qt::Key_Backspace);
    auto* error = window->findChild<QLabel*>(u"erreur-Titre"_s);
    EXPECT_EQ(error->text(), u"Titre : < Erreur: Valeur nulle non autorisée pour ce champ >"_s);
    EXPECT_TRUE(error->isVisible());
    EXPECT_TRUE(window->isWindowModified());
    picture(*window, u"erreur"_s);
    key(Qt::Key_Escape);
    EXPECT_TRUE(error->isHidden());
    EXPECT_FALSE(window->isWindowModified());
    key(Qt::Key_L, Qt::ControlModifier);
    EXPECT_EQ(project.single(u"SELECT [Locked] FROM Essais"_s), true);
    EXPECT_EQ(window->findChild<QLabel*>(u"verrou"_s)->text(), u"< Lecture seule > - L'enregistrement est verrouillé"_s);
    EXPECT_TRUE(window->findChild<QLineEdit*>(u"editeur-Titre"_s)->isReadOnly());
    picture(*window, u"verrouille"_s);
    ASSERT_TRUE(edit->select(u"1-Individus"_s));
    window->actions().modeVertical->trigger();
    EXPECT_EQ(window->findChildren<QLineEdit*>(u"editeur-Titre"_s).size(), 1); // the records under it are shown too
    picture(*window, u"vertical"_s);
    window->actions().modeCondensed->trigger();
    picture(*window, u"condense"_s);
    window->close();
    EXPECT_EQ(memory.value(u"fiche/mode"_s), u"modecondensed"_s);
}

TEST_F(RecordEditorTest, TheTreeIsWalkedAndAddsByTheKeyboard)
{
    show(u"1-Individus;1"_s);
    key(Qt::Key_F6);
    ASSERT_EQ(focused(), u"arbreFiche"_s);
    EXPECT_EQ(window->tree().currentIndex(), indexOf(u"1-Individus"_s));
    key(Qt::Key_Down); // the group
    key(Qt::Key_Down);
    EXPECT_EQ(edit->current()->key, u"1-Déterminations"_s);
    EXPECT_EQ(focused(), u"arbreFiche"_s); // the focus stays while one walks
    key(Qt::Key_Down);
    key(Qt::Key_Down);
    key(Qt::Key_Return); // the offer of a new one
    EXPECT_EQ(edit->current()->key, u"HBTEMP1-Déterminations"_s);
    EXPECT_EQ(focused(), u"editeur-ID Taxons"_s);
    type(u"rosa"_s);
    key(Qt::Key_Return);
    EXPECT_TRUE(window->tree().currentIndex().data().toString().startsWith(u"● < Détermination - Ajout > : Rosa canina"));
    key(Qt::Key_F7);
    EXPECT_FALSE(edit->form(*edit->current()).Item(u"ID Collecteurs"_s)->value().isValid());
    expectSave(u"à la propriété < Détermination - Ajout >"_s);
    project.dialogues.expectConfirm(
        u"Voulez-vous affecter la propriété \r\nau champ ID Déterminations de l'Individu ?"_s, titleSave, true);
    key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(project.single(u"SELECT [ID Déterminations] FROM Individus WHERE [ID Individus]=1"_s), 3);
}

TEST_F(RecordEditorTest, AddsOfTheModuleOfTheNodeAndCopiesValues)
{
    show(u"1-Individus;1"_s);
    key(Qt::Key_F6);
    while (window->tree().currentIndex() != indexOf(u"Essais@1-Individus"_s))
        key(Qt::Key_Down);
    key(Qt::Key_Insert, Qt::ControlModifier);
    EXPECT_EQ(edit->current()->key, u"HBTEMP1-Essais"_s);
    EXPECT_EQ(edit->current()->parent, u"1-Individus"_s);
    EXPECT_EQ(focused(), u"editeur-Titre"_s);
    type(u"second"_s);
    key(Qt::Key_Return);
    type(u"W53"_s);
    key(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(edit->current()->key, u"HBTEMP2-Essais"_s);
    EXPECT_EQ(window->findChild<QLineEdit*>(u"editeur-Titre"_s)->text(), u"second"_s);
    key(Qt::Key_N, Qt::ControlModifier);
    ASSERT_EQ(edit->current()->key, u"HBTEMP3-Essais"_s);
    key(Qt::Key_F7);
    EXPECT_EQ(window->findChild<QLineEdit*>(u"editeur-Titre"_s)->text(), u"second"_s);
    key(Qt::Key_Return);
    key(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(focused(), u"editeur-Titre"_s);
    expectSave(u" aux propriétés modifiées"_s, Answer::No, BoxButtons::YesNoCancel);
    EXPECT_TRUE(window->close());
}

TEST_F(RecordEditorTest, ARecordIsDroppedOntoItsNewParent)
{
    show(u"1-Individus;1"_s);
    auto& model = *window->tree().model();
    const std::unique_ptr<QMimeData> data(model.mimeData({indexOf(u"1-Essais"_s)}));
    EXPECT_FALSE(model.canDropMimeData(data.get(), Qt::MoveAction, -1, -1, indexOf(u"1-Essais"_s)));
    EXPECT_TRUE(model.canDropMimeData(data.get(), Qt::MoveAction, -1, -1, indexOf(u"2-Déterminations"_s)));
    project.dialogues.expectConfirm(u"Changer le Parent de la propriété < ID1 > ?"_s, u"Changement de Relation"_s, true);
    model.dropMimeData(data.get(), Qt::MoveAction, -1, -1, indexOf(u"2-Déterminations"_s));
    QCoreApplication::processEvents();
    EXPECT_EQ(project.single(u"SELECT [KeyParent] FROM Essais"_s), u"2-Déterminations"_s);
    EXPECT_EQ(indexOf(u"1-Essais"_s).parent().parent(), indexOf(u"2-Déterminations"_s));
}

TEST_F(RecordEditorTest, ClosingAsksAndMovingOnDoesToo)
{
    show(u"1-Individus;1;2"_s);
    type(u"Z"_s);
    const QString which = u"à la propriété < Individu - N° 1 >"_s;
    expectSave(which, Answer::Cancel, BoxButtons::YesNoCancel);
    EXPECT_FALSE(window->close());
    expectSave(which, Answer::Cancel, BoxButtons::YesNoCancel);
    key(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(edit->CurrentIndividu(), 1);
    // Within the individual nothing is asked and nothing lost.
    edit->select(u"1-Déterminations"_s);
    edit->select(u"1-Individus"_s);
    EXPECT_TRUE(window->findChild<QLineEdit*>(u"editeur-Numéro"_s)->text().contains(u'Z'));
    expectSave(which, Answer::No, BoxButtons::YesNoCancel);
    key(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(edit->CurrentIndividu(), 2);
    EXPECT_TRUE(window->close());
}

TEST_F(RecordEditorTest, TypingIsFoundAgainAfterACrash)
{
    show(u"1-Individus;1"_s);
    type(u"Z"_s);
    window->draft().flush(); // as the clock does
    open();
    const platform::Message question{
        u"Des saisies qui n'avaient pas été enregistrées ont été retrouvées.\nVoulez-vous les reprendre ?\n\n"
        "Non les efface ; Annuler les garde pour la prochaine ouverture."_s,
        u"Herbora"_s, BoxIcon::Question, BoxButtons::YesNoCancel};
    project.dialogues.expect(question, Answer::Cancel);
    EXPECT_FALSE(window->offerDraft());
    project.dialogues.expect(question, Answer::Yes);
    EXPECT_TRUE(window->offerDraft());
    EXPECT_TRUE(edit->ToSave());
    EXPECT_TRUE(edit->form(*edit->current()).Item(u"Numéro"_s)->value().toString().contains(u'Z'));
    expectSave(u"à la propriété < Individu - N° 1 >"_s, Answer::Yes, BoxButtons::YesNoCancel);
    EXPECT_TRUE(window->close());
    EXPECT_FALSE(QFileInfo::exists(project.path(u"projet.hbx.saisie"_s)));
    open();
    EXPECT_FALSE(window->offerDraft());
}

/// Remembers what it was shown.
class Pictures : public editing::PicturePane {
public:
    using PicturePane::PicturePane;
    void showRecord(const editing::PicturedRecord& record) override { shown << record; }
    QList<editing::PicturedRecord> shown;
};

TEST_F(RecordEditorTest, PicturesAreShownInTheirTabAndTellDateAndPlace)
{
    Pictures* pictures = nullptr;
    open([&](editing::EditorSurroundings& around) {
        around.makePictures = [&](QWidget* owner) { return pictures = new Pictures(owner); };
    });
    show(u"1-Essais"_s);
    auto* tabs = window->findChild<QTabWidget*>(u"onglets"_s);
    EXPECT_FALSE(tabs->isTabEnabled(tabs->indexOf(pictures))); // no picture yet
    edit->type(*edit->current(), *edit->form(*edit->current()).Item(u"Image"_s), u"a.jpg"_s);
    EXPECT_TRUE(tabs->isTabEnabled(tabs->indexOf(pictures)));
    EXPECT_TRUE(pictures->shown.isEmpty()); // nothing is read before the tab is seen
    tabs->setCurrentWidget(pictures);
    ASSERT_EQ(pictures->shown.size(), 1);
    EXPECT_EQ(pictures->shown.last().id, 1);
    ASSERT_EQ(pictures->shown.last().pictures.size(), 1);
    EXPECT_EQ(pictures->shown.last().pictures.first().file, u"a.jpg"_s);
    const editing::PictureFacts facts{u"2001/03/06"_s, -53.2, 3.6};
    EXPECT_EQ(pictures->fitting(facts), (QStringList{u"Date"_s, u"Longitude"_s, u"Latitude"_s}));
    EXPECT_EQ(pictures->fitting({{}, -53.2, {}}), QStringList());
    EXPECT_EQ(pictures->offer(facts), (QStringList{u"Date"_s, u"Longitude"_s, u"Latitude"_s}));
    EXPECT_EQ(edit->form(*edit->current()).Item(u"Latitude"_s)->value(), 3.6);
    EXPECT_EQ(pictures->shown.size(), 1);
    edit->select(u"1-Individus"_s); // which has none
    EXPECT_TRUE(pictures->shown.last().pictures.isEmpty());
}

TEST_F(RecordEditorTest, EveryCommandAndFieldHasANameForAssistiveTools)
{
    show(u"1-Essais"_s);
    QSet<QString> names;
    for (const QAction* action : window->actions().findChildren<QAction*>()) {
        if (action->isSeparator() || action->text().isEmpty())
            continue;
        EXPECT_FALSE(action->objectName().isEmpty()) << action->text().toStdString();
        EXPECT_FALSE(names.contains(action->objectName())) << action->objectName().toStdString();
        names << action->objectName();
    }
    for (const QWidget* widget : window->findChildren<QWidget*>()) {
        const bool typedInto = widget->focusPolicy() & Qt::TabFocus && widget->isVisible();
        if (!typedInto || widget->objectName().startsWith(u"qt_"))
            continue;
        EXPECT_FALSE(widget->accessibleName().isEmpty())
            << widget->metaObject()->className() << ' ' << widget->objectName().toStdString();
    }
}

} // namespace
