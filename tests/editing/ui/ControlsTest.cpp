// One function for each kind of field: it drives the widget within and counts what the control tells.
#include "EditorFixture.h"

#include "editing/ui/Liens.h"
#include "editing/ui/Listes.h"
#include "editing/ui/ReferencePicker.h"
#include "editing/ui/UserText.h"

#include <QCompleter>

namespace {

using namespace Qt::StringLiterals;
using editing::Cl_Edition;
using editing::FieldControl;

class ControlsTest : public support::EditorTest {
protected:
    /// The control of a field of the record, shown and with the focus.
    FieldControl& control(const QString& column, bool compact = false)
    {
        fields = form(1, 1);
        field = fields->Item(column);
        shown = std::make_unique<QWidget>();
        made = editing::createControl(field->controlClass(), *field, world, shown.get(), compact);
        (new QVBoxLayout(shown.get()))->addWidget(made);
        shown->resize(400, 300);
        shown->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(shown.get()));
        made->editor()->setFocus(Qt::TabFocusReason);
        edited = std::make_unique<QSignalSpy>(made, &FieldControl::Edited);
        next = std::make_unique<QSignalSpy>(made, &FieldControl::nextWanted);
        return *made;
    }
    void type(const QString& text) { QTest::keyClicks(made->editor(), text); }
    void key(Qt::Key key, Qt::KeyboardModifiers with = Qt::NoModifier)
    {
        QWidget* popup = QApplication::activePopupWidget();
        QTest::keyClick(popup ? popup : made->editor(), key, with);
    }
    QString line() const { return static_cast<QLineEdit*>(made->editor())->text(); }

    std::unique_ptr<editing::Cl_Editions> fields;
    std::unique_ptr<QWidget> shown;
    Cl_Edition* field = nullptr;
    FieldControl* made = nullptr;
    std::unique_ptr<QSignalSpy> edited, next;
};

TEST_F(ControlsTest, EachClassNameGivesItsControl)
{
    const auto all = form(1, 1);
    QWidget owner;
    for (const auto& one : *all) {
        SCOPED_TRACE(one->champ().toStdString());
        const FieldControl* control = editing::createControl(one->controlClass(), *one, world, &owner, false);
        EXPECT_EQ(control->ClParent(), one.get());
        EXPECT_EQ(control->editor()->accessibleName(), one->Caption());
        const int type = one->ctype();
        EXPECT_EQ(control->inherits("editing::Listes"), type == 11 || type == 12);
        EXPECT_EQ(control->inherits("editing::ReferencePicker"), type >= 13 && type <= 15);
        EXPECT_EQ(control->inherits("editing::Liens"), type == 17);
        EXPECT_EQ(control->inherits("editing::UserText"), type < 10);
    }
}

TEST_F(ControlsTest, TextTellsTheUsersEditsAlone)
{
    control(u"Titre"_s);
    EXPECT_EQ(line(), u"premier"_s);
    field->setValue(u"autre"_s);
    made->Refresh();
    EXPECT_EQ(edited->count(), 0);
    key(Qt::Key_End);
    type(u"s"_s);
    EXPECT_EQ(edited->count(), 1);
    EXPECT_EQ(field->value(), u"autres"_s);
    key(Qt::Key_Return);
    EXPECT_EQ(next->count(), 1);
    QSignalSpy previous(made, &FieldControl::previousWanted);
    key(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(previous.count(), 1);
    key(Qt::Key_Escape); // as it was when the focus came
    EXPECT_EQ(field->value(), u"premier"_s);
    EXPECT_EQ(line(), u"premier"_s);
}

TEST_F(ControlsTest, NumbersAreJudgedWhileTheyAreTyped)
{
    control(u"Réel"_s);
    type(u"-"_s);
    EXPECT_EQ(field->TextError(), u"Ce n'est pas un nombre"_s);
    type(u"12,5"_s);
    EXPECT_EQ(field->value(), -12.5);
    EXPECT_EQ(field->TextError(), u"Une mesure est un nombre positif"_s);
    EXPECT_EQ(line(), u"-12,5"_s);
    static_cast<QLineEdit*>(made->editor())->selectAll();
    type(u"1.5"_s);
    EXPECT_EQ(field->TextError(), QString());
    key(Qt::Key_Return);
    EXPECT_EQ(line(), u"1,5"_s);
    EXPECT_EQ(edited->count(), 6); // a mark alone changes nothing
}

TEST_F(ControlsTest, CoordinatesAndDatesTakeTheirFormOnceTyped)
{
    const struct {
        QString column, typed;
        QVariant value;
        QString shown;
    } cases[] = {
        {u"Longitude"_s, u"w12 30"_s, -12.5, u"W012°30'00.00"_s},
        {u"Latitude"_s, u"5,125"_s, 5.125, u"N05°07'30.00"_s},
        {u"Date"_s, u"2001-3-6"_s, u"2001/03/06"_s, u"2001/03/06"_s},
        {u"Date"_s, u"jadis"_s, u"jadis"_s, u"jadis"_s},
        {u"Entier"_s, u"12"_s, 12.0, u"12"_s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed.toStdString());
        control(c.column);
        type(c.typed);
        EXPECT_EQ(line(), c.typed);
        key(Qt::Key_Return);
        EXPECT_EQ(field->value(), c.value);
        EXPECT_EQ(line(), c.shown);
        // Emptied again, it is Null.
        static_cast<QLineEdit*>(made->editor())->selectAll();
        key(Qt::Key_Delete);
        EXPECT_FALSE(field->value().isValid());
        EXPECT_EQ(field->TextError(), QString());
    }
}

TEST_F(ControlsTest, YesAndNoAreChosenByTheirFirstLetter)
{
    control(u"OuiNon"_s);
    EXPECT_EQ(field->value(), u"False"_s);
    type(u"v"_s);
    EXPECT_EQ(field->value(), u"True"_s);
    EXPECT_EQ(edited->count(), 1);
    key(Qt::Key_Return);
    EXPECT_EQ(next->count(), 1);
}

TEST_F(ControlsTest, ALongTextBreaksItsLines)
{
    control(u"Mémo"_s);
    const int before = made->editor()->height();
    type(u"un"_s);
    key(Qt::Key_Return);
    type(u"deux"_s);
    key(Qt::Key_Return);
    type(u"trois"_s);
    EXPECT_EQ(field->value(), u"un\ndeux\ntrois"_s);
    EXPECT_GT(made->editor()->height(), before); // it grows with its text
    EXPECT_EQ(next->count(), 0);
    key(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(next->count(), 1);
}

TEST_F(ControlsTest, APictureIsChosenAmongFiles)
{
    control(u"Image"_s);
    project.dialogues.expectOpenFile(
        u"Image"_s, u"Images (*.jpg *.jpeg *.png *.tif *.tiff *.bmp *.gif)|*.jpg *.jpeg *.png *.tif *.tiff *.bmp *.gif|Tous (*)|*|"_s,
        u"/photos/fleur.jpg"_s);
    key(Qt::Key_F2);
    EXPECT_EQ(field->value(), u"/photos/fleur.jpg"_s);
    EXPECT_EQ(edited->count(), 1);
}

TEST_F(ControlsTest, OneDescriptorIsCompletedFromItsBeginning)
{
    control(u"Simple"_s);
    type(u"COM"_s);
    EXPECT_EQ(field->TextError(), u"« COM » n'est pas dans la liste"_s);
    key(Qt::Key_Return);
    EXPECT_EQ(field->value(), u"commun"_s);
    EXPECT_EQ(field->TextError(), QString());
    EXPECT_EQ(line(), u"commun"_s);
    EXPECT_EQ(next->count(), 1);
}

TEST_F(ControlsTest, TheListOfOneDescriptorOpensBelowItsLine)
{
    control(u"Simple"_s);
    auto& list = static_cast<editing::Listes*>(made)->panel().list();
    key(Qt::Key_F2);
    ASSERT_TRUE(list.isVisible());
    EXPECT_EQ(list.currentItem()->text(), u"(aucun)"_s);
    QTest::keyClick(&list, Qt::Key_Down);
    QTest::keyClick(&list, Qt::Key_Return);
    EXPECT_FALSE(list.isVisible());
    EXPECT_EQ(field->value(), u"rare"_s);
    EXPECT_EQ(edited->count(), 1);
    EXPECT_EQ(next->count(), 1);
}

TEST_F(ControlsTest, SeveralDescriptorsAreChecked)
{
    control(u"Multiple"_s);
    auto& panel = static_cast<editing::Listes*>(made)->panel();
    key(Qt::Key_Space);
    key(Qt::Key_Down);
    key(Qt::Key_Down);
    key(Qt::Key_Space);
    EXPECT_EQ(field->value(), u"sec;mouillé"_s);
    EXPECT_EQ(edited->count(), 2);
    panel.command(u"selinv"_s)->trigger();
    EXPECT_EQ(field->value(), u"humide"_s);
    panel.command(u"selall"_s)->trigger();
    EXPECT_EQ(field->value(), u"sec;humide;mouillé"_s);
    made->setReadOnly(true);
    EXPECT_FALSE(panel.command(u"selall"_s)->isEnabled());
    key(Qt::Key_Space);
    EXPECT_EQ(field->value(), u"sec;humide;mouillé"_s);
}

TEST_F(ControlsTest, TheCommandsOfAListChangeTheVocabularyAndTheValue)
{
    project.db().Execute(u"UPDATE Essais SET [Multiple]=\"sec;humide\""_s);
    control(u"Multiple"_s);
    auto& panel = static_cast<editing::Listes*>(made)->panel();
    const auto items = [&] {
        QStringList list;
        for (int row = 0; row < panel.list().count(); ++row)
            list << panel.list().item(row)->text();
        return list;
    };
    project.dialogues.expectInput(u"Ajout d'un descripteur"_s, u"Nouveau descripteur pour le champ \"Multiple\" ?"_s, {},
                                  u"gelé"_s);
    panel.command(u"add"_s)->trigger();
    EXPECT_EQ(field->value(), u"sec;humide;gelé"_s);
    panel.list().setCurrentRow(0);
    project.dialogues.expectInput(u"Modification d'un descripteur"_s, u"Nouveau nom pour le descripteur ?"_s, u"sec"_s,
                                  u"aride"_s);
    panel.command(u"edit"_s)->trigger();
    EXPECT_EQ(field->value(), u"aride;humide;gelé"_s); // typed values follow
    EXPECT_EQ(project.single(u"SELECT [Multiple] FROM Essais"_s), u"aride;humide"_s);
    panel.command(u"down"_s)->trigger();
    EXPECT_EQ(items(), (QStringList{u"humide"_s, u"aride"_s, u"mouillé"_s, u"gelé"_s}));
    project.dialogues.expectLike({u"Suppression du descripteur \"aride\""_s, u"supprimera les 1 références"_s},
                                 u"Suppression d'un descripteur"_s, platform::BoxIcon::Warning,
                                 platform::BoxButtons::YesNo, platform::Answer::Yes);
    panel.command(u"delete"_s)->trigger();
    EXPECT_EQ(field->value(), u"humide;gelé"_s);
    EXPECT_EQ(items(), (QStringList{u"humide"_s, u"mouillé"_s, u"gelé"_s}));
}

TEST_F(ControlsTest, AListLetsGoOfAFieldThatIsShownNoMore)
{
    control(u"Multiple"_s);
    auto& panel = static_cast<editing::Listes*>(made)->panel();
    QSignalSpy renewed(&panel, &editing::DescriptorPanel::renewed);
    lists->run = [this](const QString&, const editing::LongWork& work) {
        platform::NoProgression silent;
        work(silent);
        made->setClParent(nullptr); // another record came while the records were rewritten
        fields.reset();
    };
    panel.list().setCurrentRow(0);
    project.dialogues.expectInput(u"Modification d'un descripteur"_s, u"Nouveau nom pour le descripteur ?"_s, u"sec"_s, u"aride"_s);
    panel.command(u"edit"_s)->trigger();
    EXPECT_EQ(renewed.count(), 0);
    panel.command(u"sup"_s)->trigger(); // of nothing
}

TEST_F(ControlsTest, WhatIsNotInTheVocabularyIsNotLost)
{
    project.db().Execute(u"UPDATE Essais SET [Multiple]=\"ancien;sec\""_s);
    control(u"Multiple"_s);
    auto& list = static_cast<editing::Listes*>(made)->panel().list();
    EXPECT_EQ(list.item(list.count() - 1)->text(), u"ancien (hors liste)"_s);
    list.setCurrentRow(1);
    key(Qt::Key_Space);
    EXPECT_EQ(field->value(), u"sec;humide;ancien"_s);
}

TEST_F(ControlsTest, NamesAreCompletedFromTheirTables)
{
    const struct {
        QString column, typed, shown;
        qint32 id;
    } cases[] = {
        {u"ID Taxons"_s, u"quercus r"_s, u"Quercus robur"_s, 2},
        {u"ID Collecteurs"_s, u"jm"_s, u"Martinez, Juan"_s, 2},
        {u"ID Localités"_s, u"sa"_s, u"Guyane - Saül"_s, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed.toStdString());
        control(c.column);
        type(c.typed);
        key(Qt::Key_Return);
        EXPECT_EQ(field->value(), c.id);
        EXPECT_EQ(line(), c.shown);
        EXPECT_EQ(field->TextError(), QString());
        EXPECT_EQ(next->count(), 1);
    }
}

TEST_F(ControlsTest, AnUnknownNameStaysAsTypedAndIsAnError)
{
    control(u"ID Taxons"_s);
    type(u"Zea"_s);
    key(Qt::Key_Return);
    EXPECT_EQ(line(), u"Zea"_s);
    EXPECT_FALSE(field->TextError().isEmpty());
    EXPECT_TRUE(field->Changed());
    static_cast<QLineEdit*>(made->editor())->selectAll();
    type(u"Q"_s);
    key(Qt::Key_Down);
    key(Qt::Key_Return);
    EXPECT_EQ(line(), u"Quercus petraea"_s);
    EXPECT_EQ(field->TextError(), QString());
}

TEST_F(ControlsTest, ANumberIsTheBeginningOfANameAndNoIdentifier)
{
    control(u"ID Localités"_s);
    type(u"1"_s);
    key(Qt::Key_Return);
    EXPECT_EQ(field->value(), u"1"_s);
    EXPECT_FALSE(field->TextError().isEmpty()) << "place 1 is Saül";
}

TEST_F(ControlsTest, ALinkLeadsToARecordOfTheIndividual)
{
    world.described = [](const QString& module, qint32 id) { return module + QString::number(id); };
    control(u"ID Déterminations"_s);
    auto& list = static_cast<QComboBox&>(*made->editor());
    QStringList texts;
    for (int row = 0; row < list.count(); ++row)
        texts << list.itemText(row);
    EXPECT_EQ(texts, (QStringList{u"(aucun)"_s, u"N° 1 : Déterminations1"_s, u"N° 2 : Déterminations2"_s}));
    key(Qt::Key_Down);
    key(Qt::Key_Down);
    EXPECT_EQ(field->value(), u"2"_s);
    EXPECT_EQ(edited->count(), 2);
    key(Qt::Key_Home);
    EXPECT_FALSE(field->value().isValid());
}

} // namespace
