// A botanist's work on the example project, by the keyboard alone.
#include "WindowFixture.h"

#include "app/Demo.h"
#include "app/ui/EditorDesk.h"
#include "editing/ui/RecordEditorWindow.h"
#include "jet/Recordset.h"
#include "support/Project.h"

namespace {

using namespace Qt::StringLiterals;
using platform::Answer;
using platform::BoxButtons;
using platform::BoxIcon;

const QString saveTitle = u"Enregistrements des propriétés"_s;

/// Keys go to whatever has the focus; those that are no values are counted.
class DemoEditing : public support::WindowTest {
protected:
    void SetUp() override
    {
        start();
        static support::TestProject original;
        static const bool built = [] {
            const bool made = app::buildDemo(original.session, original.path(), original.progression);
            original.session.close();
            return made;
        }();
        ASSERT_TRUE(built && QFile::copy(original.path(), path()));
        openProject();
        for (const auto& desk : window().desks())
            m_desk = m_desk ? m_desk : qobject_cast<app::EditorDesk*>(desk.get());
        ASSERT_TRUE(m_desk);
    }
    editing::RecordEditorWindow& editor() { return *m_desk->window(); }
    editing::IndividualEditing& edited() { return editor().editing(); }
    QString focused() { return editor().focusWidget() ? editor().focusWidget()->objectName() : QString(); }
    void press(Qt::Key key, Qt::KeyboardModifiers with = Qt::NoModifier)
    {
        ++pressed;
        QWidget* popup = QApplication::activePopupWidget();
        QTest::keyClick(popup ? popup : editor().focusWidget(), key, with);
        settle();
    }
    void type(const QString& text)
    {
        for (const QChar c : text) { // QTest knows the keys of plain letters only
            if (c.unicode() < 128)
                QTest::keyClick(editor().focusWidget(), c.toLatin1());
            else
                QTest::sendKeyEvent(QTest::Click, editor().focusWidget(), Qt::Key_unknown, QString(c), Qt::NoModifier);
        }
    }
    /// Values of the fields from the one that has the focus on; Return between them.
    void fill(const QStringList& values)
    {
        for (const QString& value : values) {
            ASSERT_TRUE(editor().focusWidget()) << value.toStdString();
            type(value);
            const bool lines = qobject_cast<QPlainTextEdit*>(editor().focusWidget());
            press(Qt::Key_Return, lines ? Qt::ControlModifier : Qt::NoModifier);
        }
    }
    void expectSave(const QString& which, Answer answer = Answer::Yes, BoxButtons buttons = BoxButtons::YesNo)
    {
        dialogues.expect(
            {u"Voulez-vous enregistrez les modifications apportées "_s + which, saveTitle, BoxIcon::Question, buttons}, answer);
    }
    void openIndividual(int row)
    {
        app::GridTab* grid = openRecords(u"Individus"_s);
        grid->view().setCurrentIndex(grid->model().index(row, 0));
        QTest::keyClick(&grid->view(), Qt::Key_Return);
        ASSERT_TRUE(m_desk->window());
        ASSERT_TRUE(QTest::qWaitForWindowActive(&editor()));
    }
    /// Goes to a node of the tree with the arrows.
    void walkTo(const std::function<bool(const editing::EditNode&)>& wanted)
    {
        editor().tree().setFocus();
        press(Qt::Key_Home);
        auto* model = static_cast<editing::EditTreeModel*>(editor().tree().model());
        for (int step = 0; step < 60 && !wanted(*model->nodeAt(editor().tree().currentIndex())); ++step)
            press(Qt::Key_Down);
        ASSERT_TRUE(wanted(*model->nodeAt(editor().tree().currentIndex())));
    }
    void addUnderIndividual(const QString& module)
    {
        walkTo([&](const editing::EditNode& node) {
            return node.kind == editing::EditNode::Kind::New && node.module == module && node.record == edited().individual();
        });
        press(Qt::Key_Return);
        ASSERT_EQ(edited().current()->module, module);
        ASSERT_TRUE(edited().current()->isNew());
    }
    QStringList rows(const QString& statement)
    {
        QStringList found;
        const auto all = program->session().database().OpenRecordset(statement);
        for (; !all->EOF_(); all->MoveNext()) {
            QStringList cells;
            for (int column = 0; column < all->FieldCount(); ++column)
                cells << all->Value(column).toString();
            found << cells.join(u'|');
        }
        return found;
    }

    app::EditorDesk* m_desk = nullptr;
    int pressed = 0;
};

TEST_F(DemoEditing, AnIndividualGetsEverythingThatItMayHave)
{
    openIndividual(0);
    const qint32 individu = edited().CurrentIndividu();
    const QString id = QString::number(individu);

    addUnderIndividual(u"Déterminations"_s);
    fill({u"vochysia r"_s, u"B.C"_s, u"2003/05"_s});
    expectSave(u"à la propriété < Détermination - Ajout >"_s);
    dialogues.expectConfirm(u"Voulez-vous affecter la propriété \r\nau champ ID Déterminations de l'Individu ?"_s, saveTitle, true);
    press(Qt::Key_S, Qt::ControlModifier);
    const QString determination = edited().current()->key;
    EXPECT_EQ(rows(u"SELECT [ID Déterminations] FROM Individus WHERE [ID Individus]="_s + id),
              QStringList{determination.section(u'-', 0, 0)});

    addUnderIndividual(u"Images"_s);
    type(u"Cyclamen_persicum.jpg"_s);
    press(Qt::Key_Return);
    addUnderIndividual(u"Mesures"_s);
    ASSERT_EQ(focused(), u"editeur-Rubrique"_s);
    fill({u"Dendrométrie"_s, u"inv"_s});
    press(Qt::Key_Down);
    press(Qt::Key_Space);
    press(Qt::Key_Return);
    fill({u"12,5"_s, u"8"_s, u"3"_s, u"0,6"_s, u"v"_s, u"4-6"_s, u"2"_s, u"11"_s, u"40"_s, u"2"_s, u"2003/5/6"_s, u"B.C"_s,
          u"nova"_s, u"W42 30"_s, u"S22 15"_s, u"vochysia r"_s});
    ASSERT_EQ(focused(), u"editeur-ID Déterminations"_s);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    fill({u"Cyclamen_persicum.jpg"_s, u"Relevé complet"_s});
    expectSave(u" aux propriétés modifiées"_s);
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(rows(u"SELECT [Rubrique],[Méthode],[Organes],[Diamètre],[Complet],[NombreMesures],[DateÉchantillon],[Relevé],"
                   "[KeyParent] FROM Mesures WHERE [ID Individus]="_s + id),
              QStringList{u"Dendrométrie|Inventaire forestier|tronc|12.5|true|2|2003/05/06|Relevé complet|"_s + id
                          + u"-Individus"_s});
    EXPECT_EQ(rows(u"SELECT Count(*) FROM Mesures WHERE [ID Individus]="_s + id
                   + u" AND [ID Collecteurs]>0 AND [ID Localités]>0 AND [ID Taxons]>0 AND [ID Déterminations]>0"
                     " AND [LongitudePoint]<0 AND [LatitudePoint]<0"_s),
              QStringList{u"1"_s});
    EXPECT_FALSE(edited().ToSave());
    const QString measure = edited().current()->key;

    // Locked: nothing is typed into it, nor is it deleted; what is being changed is not locked.
    press(Qt::Key_L, Qt::ControlModifier);
    editor().findChild<QLineEdit*>(u"editeur-Rubrique"_s)->setFocus();
    type(u"non"_s);
    EXPECT_FALSE(edited().ToSave());
    dialogues.expectConfirm(u"Voulez-vous supprimer définitivement l'enregistrement < Mesures - ID"_s
                                + measure.section(u'-', 0, 0) + u" > ?"_s,
                            u"Herbora"_s, true, BoxIcon::Question, Answer::No);
    dialogues.expectLike({u"Suppression attendue : 1"_s, u"--> 0"_s}, u"Herbora: Rapport de Suppression"_s, BoxIcon::Information);
    press(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_TRUE(edited().record(measure));
    press(Qt::Key_L, Qt::ControlModifier);
    editor().findChild<QLineEdit*>(u"editeur-Rubrique"_s)->setFocus();
    type(u"x"_s);
    dialogues.expectTell(u"Impossible de verrouiller un objet en cours de modifications !\rEnregistrer ou re-initialiser les "
                         "valeurs d'origine avant de verrouiller l'objet"_s,
                         u"Verrouillage"_s, BoxIcon::Warning);
    press(Qt::Key_L, Qt::ControlModifier);
    press(Qt::Key_Escape);
    EXPECT_FALSE(edited().ToSave());

    // Under the determination, and away with it.
    platform::Choice targets{u"Changement de Relation"_s, u"Sélectionner le nouveau parent"_s, u"Enregistrement"_s, {}, false};
    int wanted = -1;
    for (const editing::EditedRecord* target : edited().saved()) {
        if (!edited().canMove(*edited().current(), target->key))
            continue;
        wanted = target->key == determination ? int(targets.items.size()) : wanted;
        targets.items << edited().moduleLabel(target->module) + u' ' + edited().nodeCaption(*edited().node(target->key));
    }
    dialogues.expectChoice(targets, QList<int>{wanted});
    dialogues.expectConfirm(u"Changer le Parent de la propriété < ID"_s + measure.section(u'-', 0, 0) + u" > ?"_s,
                            u"Changement de Relation"_s, true);
    press(Qt::Key_P, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(edited().record(measure)->parent, determination);
    press(Qt::Key_Up, Qt::AltModifier);
    ASSERT_EQ(edited().current()->key, determination);
    dialogues.expectConfirm(u"Voulez-vous supprimer définitivement l'enregistrement < Déterminations - ID"_s
                                + determination.section(u'-', 0, 0) + u" > ?\nAinsi que les 1 enregistrement(s) fils"_s,
                            u"Herbora"_s, true, BoxIcon::Question, Answer::No);
    dialogues.expectLike({u"--> 1"_s, u"Mesures"_s}, u"Herbora: Rapport de Suppression"_s, BoxIcon::Information);
    press(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_FALSE(edited().record(measure));

    // A new individual from a model.
    walkTo([&](const editing::EditNode& node) { return node.record && node.record == edited().individual(); });
    press(Qt::Key_N, Qt::ControlModifier);
    dialogues.expectChoice({u"Modèle"_s, u"Sélectionnez le modèle que vous voulez utiliser"_s, u"Nom du Modèle"_s,
                            {u"Récolte pour RB"_s}, false},
                           QList<int>{0});
    press(Qt::Key_M, Qt::ControlModifier);
    EXPECT_EQ(edited().form(*edited().current()).Item(u"Herbier"_s)->value(), u"RB"_s);
    type(u"NEUF 1"_s);
    expectSave(u"à la propriété < Individu - Ajout >"_s);
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(rows(u"SELECT [Herbier] FROM Individus WHERE [Numéro]=\"NEUF 1\""_s), QStringList{u"RB"_s});
}

TEST_F(DemoEditing, FiftySpecimensCostFewKeysBesideTheirValues)
{
    constexpr int specimens = 50;
    // Four values each: Return after each of them, one key for the next specimen, one for the answer to the question.
    constexpr int keysEach = 4 + 1 + 1;
    const int before = rows(u"SELECT [ID Individus] FROM Individus"_s).size();
    trigger(u"newIndividual"_s);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&editor()));
    pressed = 0;
    for (int i = 1; i <= specimens; ++i) {
        ASSERT_EQ(focused(), u"editeur-Numéro"_s);
        fill({u"HERB %1"_s.arg(i), u"b.c"_s, u"1990/%1"_s.arg(1 + i % 12), u"nova"_s});
        expectSave(u"à la propriété < Individu - Ajout >"_s, Answer::Yes, BoxButtons::YesNoCancel);
        ++pressed; // the answer
        press(Qt::Key_N, Qt::ControlModifier);
    }
    EXPECT_EQ(pressed, specimens * keysEach);
    const QStringList added = rows(u"SELECT [Numéro],[DateRécolte] FROM Individus WHERE [Numéro] LIKE \"HERB *\""
                                   " AND [ID Localités]>0 ORDER BY [ID Individus]"_s);
    ASSERT_EQ(added.size(), specimens);
    for (int i = 1; i <= specimens; ++i)
        EXPECT_EQ(added.at(i - 1), u"HERB %1|1990/%2"_s.arg(i).arg(1 + i % 12, 2, 10, QChar(u'0')));
    EXPECT_EQ(rows(u"SELECT [ID Individus] FROM Individus"_s).size(), before + specimens);
}

} // namespace
