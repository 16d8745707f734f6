// The lists behind the fields of a form: choosing, and adding without leaving the form.
#include "BrowserFixture.h"

#include "editing/ui/ReferencePicker.h"

namespace {

using namespace Qt::StringLiterals;
using reference::ChoiceDialog;

class ChooserTest : public BrowserTest {
protected:
    void SetUp() override
    {
        BrowserTest::SetUp();
        fields = std::make_unique<editing::Cl_Editions>(world->context);
        fields->Add(data::Taxon, u"Taxon"_s, 7, {}, u"ID Taxons"_s, true, 0);
        fields->Add(data::Localité, u"Localité"_s, {}, {}, u"ID Localités"_s, true, 0);
        controls.search = &world->search;
        controls.chooser = chooser.get();
        controls.take = [this](editing::Cl_Edition& field, const QVariant& value) { world->input.take(field, value); };
    }
    editing::FieldControl& picker(const QString& column)
    {
        auto* owner = new QWidget;
        auto* made = editing::createControl(fields->Item(column)->controlClass(), *fields->Item(column), controls, owner, false);
        (new QVBoxLayout(owner))->addWidget(made);
        open(owner);
        made->editor()->setFocus();
        return *made;
    }
    static ChoiceDialog& choice(QWidget& dialog) { return static_cast<ChoiceDialog&>(dialog); }

    std::unique_ptr<editing::Cl_Editions> fields;
    editing::ControlWorld controls;
};

TEST_F(ChooserTest, F3OpensTheTreeAtTheRowOfTheField)
{
    auto& made = picker(u"ID Taxons"_s);
    inDialog([this](QWidget& dialog) {
        EXPECT_EQ(choice(dialog).control().currentId(), 7);
        EXPECT_EQ(dialog.windowTitle(), u"Choisir un taxon"_s);
        picture(dialog, u"choix"_s);
        QTest::keyClick(&choice(dialog).control().view(), Qt::Key_Escape);
    });
    QTest::keyClick(made.editor(), Qt::Key_F3);
    EXPECT_EQ(fields->Item(0)->value().toInt(), 7) << "given up";
    // A new species is added in the tree, and taken.
    form.steps.push_back({{{u"Nom Complet"_s, u"orientalis"_s}}});
    inDialog([](QWidget& dialog) {
        auto& control = choice(dialog).control();
        EXPECT_TRUE(control.showRow(6));
        QTest::keyClick(&control.view(), Qt::Key_N, Qt::ControlModifier);
        EXPECT_EQ(control.currentId(), 10);
        QTest::keyClick(&control.view(), Qt::Key_Return);
    });
    QTest::keyClick(made.editor(), Qt::Key_F3);
    EXPECT_EQ(fields->Item(0)->value().toInt(), 10);
    EXPECT_EQ(static_cast<QLineEdit*>(made.editor())->text(), u"Fagus orientalis"_s);
    EXPECT_EQ(made.window()->focusWidget(), made.editor());
}

TEST_F(ChooserTest, ANameThatIsNotThereIsAddedFromTheList)
{
    auto& made = picker(u"ID Taxons"_s);
    auto* line = static_cast<QLineEdit*>(made.editor());
    line->selectAll();
    QTest::keyClicks(line, u"quercus alba"_s);
    QWidget* popup = QApplication::activePopupWidget();
    ASSERT_TRUE(popup);
    EXPECT_EQ(made.findChild<QCompleter*>()->completionModel()->index(0, 0).data().toString(), u"Ajouter « quercus alba »…"_s);
    form.steps.push_back({{{u"Auteurs"_s, u"L."_s}}});
    QTest::keyClick(popup, Qt::Key_Down);
    QTest::keyClick(popup, Qt::Key_Return);
    EXPECT_EQ(form.titles, QStringList{u"Nouvelle espèce"_s});
    EXPECT_EQ(fields->Item(0)->value().toInt(), 10);
    EXPECT_EQ(line->text(), u"Quercus alba"_s);
    EXPECT_EQ(written, QStringList{u"Taxons"_s});
}

TEST_F(ChooserTest, ReturnNeverAddsByItself)
{
    auto& made = picker(u"ID Taxons"_s);
    auto* line = static_cast<QLineEdit*>(made.editor());
    line->selectAll();
    QTest::keyClicks(line, u"inconnu"_s);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
    EXPECT_TRUE(form.titles.isEmpty());
    EXPECT_FALSE(fields->Item(0)->TextError().isEmpty());
}

TEST_F(ChooserTest, TheWordsTellTheRankOfANewTaxon)
{
    struct Case {
        QString typed, title;
        ScriptedForm::Values values;
        QString full;
    };
    const QList<Case> cases{
        {u"betulaceae"_s, u"Nouvelle famille"_s, {}, u"Betulaceae"_s},
        {u"betula"_s, u"Nouveau genre"_s, {{u"[ID Famille]"_s, 10}}, u"Betula"_s},
        {u"betula pendula"_s, u"Nouvelle espèce"_s, {}, u"Betula pendula"_s},
        {u"betula pendula var. crispa"_s, u"Nouveau taxon infrasp."_s, {}, u"Betula pendula var. crispa"_s},
        {u"alnus incana"_s, u"Nouvelle espèce"_s, {{u"[ID Genre]"_s, 11}, {u"Nom Complet"_s, u"incana"_s}}, u"Betula incana"_s},
    };
    for (const Case& one : cases) {
        form.steps.push_back({one.values});
        const auto id = chooser->add(data::Taxon, one.typed, nullptr);
        ASSERT_TRUE(id) << one.typed.toStdString();
        EXPECT_EQ(form.titles.last(), one.title);
        EXPECT_EQ(world->taxa.NomTaxon(*id, 0), one.full);
    }
    form.steps.push_back({{}, false});
    EXPECT_FALSE(chooser->add(data::Taxon, u"x"_s, nullptr));
}

TEST_F(ChooserTest, ANewPlaceIsPutWhereTheUserPoints)
{
    form.steps.push_back({{{u"LongDD"_s, 1.0}, {u"LatDD"_s, 2.0}}});
    inDialog([](QWidget& dialog) {
        EXPECT_EQ(dialog.windowTitle(), u"Dans quelle localité ajouter \"Paris\" ?"_s);
        choice(dialog).control().showRow(4);
        choice(dialog).accept();
    });
    const auto id = chooser->add(data::Localité, u"Paris"_s, nullptr);
    ASSERT_TRUE(id);
    EXPECT_EQ(world->places.NomLocalité(*id, 1), u"France - Paris"_s);
    form.steps.push_back({{{u"Initiales"_s, u"YM"_s}}});
    const auto person = chooser->add(data::Botaniste, u"Yves Martin"_s, nullptr);
    ASSERT_TRUE(person);
    EXPECT_EQ(world->people.NomBotaniste(*person, 0), u"Yves Martin"_s);
}

} // namespace
