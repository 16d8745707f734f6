// The real boxes, answered from a timer while they are open.
#include "platform/ui/ChoiceDialog.h"
#include "platform/ui/EmptyHint.h"
#include "platform/ui/ProgressionBar.h"
#include "platform/ui/QtDialogues.h"
#include "support/Print.h"

#include <QAbstractButton>
#include <QInputDialog>
#include <QLibraryInfo>
#include <QListWidget>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <QTranslator>
#include <QTreeWidget>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;
using platform::Answer;
using platform::BoxButtons;
using platform::BoxIcon;

/// Does something to the modal window that opens next.
template <typename Window> void withNext(std::function<void(Window&)> action)
{
    QTimer::singleShot(0, qApp, [action] {
        auto* window = qobject_cast<Window*>(QApplication::activeModalWidget());
        ASSERT_TRUE(window) << "no such window is open";
        action(*window);
    });
}

TEST(QtDialogues, ShowTheTextAsItIsWithItsIconAndDefaultButton)
{
    platform::QtDialogues dialogues;
    withNext<QMessageBox>([](QMessageBox& box) {
        EXPECT_EQ(box.text(), u"<b>a</b>\nb"_s);
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.windowTitle(), u"Titre"_s);
        EXPECT_EQ(box.icon(), QMessageBox::Critical);
        EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::No));
        QTest::keyClick(&box, Qt::Key_Return);
    });
    EXPECT_EQ(dialogues.ask({u"<b>a</b>\nb"_s, u"Titre"_s, BoxIcon::Stop, BoxButtons::YesNo, Answer::No}), Answer::No);
}

TEST(QtDialogues, ButtonsGiveTheirAnswers)
{
    struct Case {
        BoxButtons buttons;
        QMessageBox::StandardButton pressed;
        Answer answer;
    };
    platform::QtDialogues dialogues;
    for (const Case& c : {Case{BoxButtons::Ok, QMessageBox::Ok, Answer::Ok},
                          Case{BoxButtons::YesNo, QMessageBox::Yes, Answer::Yes},
                          Case{BoxButtons::YesNoCancel, QMessageBox::No, Answer::No},
                          Case{BoxButtons::YesNoCancel, QMessageBox::Cancel, Answer::Cancel}}) {
        withNext<QMessageBox>([&](QMessageBox& box) { box.button(c.pressed)->click(); });
        EXPECT_EQ(dialogues.ask({u"?"_s, u"t"_s, BoxIcon::Question, c.buttons, Answer::Yes}), c.answer);
    }
}

TEST(QtDialogues, MarksDoNotBeginALine)
{
    platform::QtDialogues dialogues;
    withNext<QMessageBox>([](QMessageBox& box) {
        EXPECT_EQ(box.text(), u"Vider « a » ?"_s.replace(u' ', QChar::Nbsp).replace(5, 1, u" "_s));
        box.button(QMessageBox::Yes)->click();
    });
    dialogues.confirm(u"Vider « a » ?"_s, u"t"_s);
}

TEST(QtDialogues, EscapeDeclines)
{
    platform::QtDialogues dialogues;
    withNext<QMessageBox>([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); });
    EXPECT_FALSE(dialogues.confirm(u"?"_s, u"t"_s));
    withNext<QInputDialog>([](QInputDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); });
    EXPECT_EQ(dialogues.input(u"t"_s, u"Nom :"_s, u"a"_s), std::nullopt);
}

TEST(QtDialogues, TypedTextIsComposed)
{
    platform::QtDialogues dialogues;
    withNext<QInputDialog>([](QInputDialog& box) {
        EXPECT_EQ(box.textValue(), u"proposé"_s);
        box.setTextValue(u"e\u0301te\u0301"_s);
        box.accept();
    });
    EXPECT_EQ(dialogues.input(u"t"_s, u"Nom :"_s, u"proposé"_s), u"\u00e9t\u00e9"_s);
}

TEST(QtDialogues, ListGivesPositions)
{
    platform::QtDialogues dialogues;
    withNext<platform::ChoiceDialog>([](platform::ChoiceDialog& dialog) {
        auto* list = dialog.findChild<QTreeWidget*>(u"choiceList"_s);
        EXPECT_EQ(list->headerItem()->text(0), u"Collecteur"_s);
        list->topLevelItem(0)->setSelected(true);
        list->topLevelItem(2)->setSelected(true);
        dialog.accept();
    });
    EXPECT_EQ(dialogues.choose({u"Choisir"_s, u"Lesquels ?"_s, u"Collecteur"_s, {u"a"_s, u"b"_s, u"c"_s}, true}),
              (QList<int>{0, 2}));
}

TEST(QtDialogues, ListWithoutAChoiceCannotBeAccepted)
{
    platform::ChoiceDialog dialog({u"Choisir"_s, u"Lesquels ?"_s, {}, {u"a"_s}, true});
    auto* ok = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
    EXPECT_FALSE(ok->isEnabled());
    dialog.findChild<QTreeWidget*>(u"choiceList"_s)->topLevelItem(0)->setSelected(true);
    EXPECT_TRUE(ok->isEnabled());
}

TEST(QtDialogues, FrenchTextsForButtonsAreInstalled)
{
    QTranslator texts;
    ASSERT_TRUE(texts.load(u"qtbase_fr"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)));
    QApplication::installTranslator(&texts);
    platform::QtDialogues dialogues;
    withNext<QMessageBox>([](QMessageBox& box) {
        EXPECT_EQ(box.button(QMessageBox::Yes)->text().remove(u'&'), u"Oui"_s);
        EXPECT_EQ(box.button(QMessageBox::Cancel)->text().remove(u'&'), u"Annuler"_s);
        box.button(QMessageBox::Yes)->click();
    });
    dialogues.ask({u"?"_s, u"t"_s, BoxIcon::Question, BoxButtons::YesNoCancel, Answer::Yes});
    QApplication::removeTranslator(&texts);
}

TEST(EmptyHint, StandsInTheMiddleAsLongAsThereIsNoRow)
{
    QListWidget list;
    const auto* hint = new platform::EmptyHint(u"Rien encore"_s, list);
    list.resize(300, 200);
    list.show();
    EXPECT_TRUE(hint->isVisible());
    EXPECT_EQ(hint->geometry(), list.viewport()->rect());
    list.addItem(u"Quercus"_s);
    EXPECT_FALSE(hint->isVisible());
    list.clear();
    EXPECT_TRUE(hint->isVisible());
}

TEST(ProgressionBar, NeverRunsBackwardsAndGoesAwayAtTheEnd)
{
    platform::ProgressionBar bar;
    bar.step(u"un"_s, 40);
    bar.step(u"deux"_s, 20);
    EXPECT_EQ(bar.percent(), 40);
    EXPECT_EQ(bar.text(), u"deux"_s);
    bar.finish();
    EXPECT_TRUE(bar.isHidden());
    bar.step(u"encore"_s, 5);
    EXPECT_EQ(bar.percent(), 5);
}

} // namespace
