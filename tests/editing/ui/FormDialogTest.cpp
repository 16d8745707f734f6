#include "EditorFixture.h"

#include <QPushButton>
#include <QTimer>

namespace {

using namespace Qt::StringLiterals;
using editing::FormDialog;

class FormDialogTest : public support::EditorTest {
protected:
    void SetUp() override
    {
        EditorTest::SetUp();
        fields = form(1, 0);
    }
    QLabel* error(FormDialog& dialog, const QString& column) { return dialog.findChild<QLabel*>(u"erreur-"_s + column); }
    void type(FormDialog& dialog, const QString& column, const QString& text)
    {
        QTest::keyClicks(dialog.pane().control(*fields->Item(column))->editor(), text);
    }

    std::unique_ptr<editing::Cl_Editions> fields;
};

TEST_F(FormDialogTest, ReturnLeadsThroughTheFieldsInTheirOrder)
{
    FormDialog dialog(u"Nouvel essai"_s, *fields, world, {});
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    QStringList walked;
    for (int i = 0; i < fields->Count(); ++i) {
        QWidget* at = dialog.focusWidget();
        ASSERT_TRUE(at);
        walked << at->accessibleName();
        const bool memo = at->inherits("QPlainTextEdit");
        QTest::keyClick(at, Qt::Key_Return, memo ? Qt::ControlModifier : Qt::NoModifier);
    }
    QStringList captions{u"Titre (obligatoire)"_s};
    for (int i = 1; i < fields->Count(); ++i)
        captions << fields->Item(i)->Caption();
    EXPECT_EQ(walked, captions);
    EXPECT_EQ(dialog.focusWidget()->objectName(), u"valider"_s);
    picture(dialog, u"dialogue"_s);
}

TEST_F(FormDialogTest, ErrorsStandUnderTheirFieldsWhileOneTypes)
{
    FormDialog dialog(u"Nouvel essai"_s, *fields, world, {});
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    // An empty form does not begin with reproaches.
    EXPECT_TRUE(error(dialog, u"Titre"_s)->isHidden());
    type(dialog, u"Réel"_s, u"x"_s);
    EXPECT_EQ(error(dialog, u"Réel"_s)->text(), u"Réel : < Erreur: Ce n'est pas un nombre >"_s);
    EXPECT_FALSE(error(dialog, u"Réel"_s)->isHidden());
    dialog.accept();
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(error(dialog, u"Titre"_s)->text(), u"Titre : < Erreur: Valeur nulle non autorisée pour ce champ >"_s);
    EXPECT_EQ(dialog.focusWidget()->objectName(), u"editeur-Titre"_s);
    picture(dialog, u"dialogue-erreurs"_s);
    type(dialog, u"Titre"_s, u"t"_s);
    EXPECT_TRUE(error(dialog, u"Titre"_s)->isHidden());
    auto* number = static_cast<QLineEdit*>(dialog.pane().control(*fields->Item(u"Réel"_s))->editor());
    number->selectAll();
    QTest::keyClick(number, Qt::Key_Delete);
    dialog.accept();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

TEST_F(FormDialogTest, AFormThatIsNotSavedStaysOpenWithItsErrors)
{
    int saves = 0;
    FormDialog dialog(u"Nouvel essai"_s, *fields, world, [&](editing::Cl_Editions& form) {
        if (++saves == 2)
            return true;
        form.Item(u"Titre"_s)->setTextError(u"Ce titre existe déjà"_s);
        return false;
    });
    dialog.show();
    type(dialog, u"Titre"_s, u"premier"_s);
    dialog.accept();
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(error(dialog, u"Titre"_s)->text(), u"Titre : < Erreur: Ce titre existe déjà >"_s);
    dialog.accept();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(saves, 2);
}

TEST_F(FormDialogTest, TypedValuesAreNotGivenUpWithoutAsking)
{
    FormDialog dialog(u"Nouvel essai"_s, *fields, world, {});
    dialog.show();
    type(dialog, u"Titre"_s, u"t"_s);
    project.dialogues.expectConfirm(u"Abandonner la saisie ?"_s, u"Nouvel essai"_s, false, platform::BoxIcon::Question,
                                    platform::Answer::No);
    dialog.reject();
    EXPECT_TRUE(dialog.isVisible());
}

TEST_F(FormDialogTest, ItServesTheReferenceLists)
{
    editing::FormWindows windows(world, &project.db());
    reference::ReferenceContext with{project.db(), project.clock, project.dialogues, context, &windows};
    reference::Cl_Collecteur list(with);
    QTimer::singleShot(0, qApp, [] {
        auto* dialog = qobject_cast<FormDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        picture(*dialog, u"collecteur"_s);
        for (QLineEdit* line : dialog->findChildren<QLineEdit*>())
            QTest::keyClicks(line, u"Aublet"_s);
        QTest::mouseClick(dialog->findChild<QPushButton*>(u"valider"_s), Qt::LeftButton);
        EXPECT_FALSE(dialog->isVisible());
        if (dialog->isVisible())
            dialog->done(QDialog::Rejected);
    });
    EXPECT_TRUE(list.Add());
    EXPECT_EQ(project.single(u"SELECT COUNT(*) FROM Collecteurs WHERE [Collecteur]=\"Aublet\""_s), 1);
}

} // namespace
