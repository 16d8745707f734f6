#include "images/ui/FoldersDialog.h"
#include "support/ScriptedDialogues.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

TEST(FoldersDialog, OrdersAddsAndRemovesFolders)
{
    QTemporaryDir folder;
    support::ScriptedDialogues dialogues;
    images::FoldersDialog dialog({u"/a"_s, folder.path()}, dialogues);
    dialog.show();
    EXPECT_EQ(dialog.windowTitle(), u"Sélection"_s);
    const auto press = [&dialog](const QString& name) {
        auto* button = dialog.findChild<QPushButton*>(name);
        ASSERT_TRUE(button && button->isEnabled()) << name.toStdString();
        button->click();
    };
    auto* list = dialog.findChild<QTreeWidget*>(u"folderList"_s);
    EXPECT_EQ(list->topLevelItem(0)->text(1), u"introuvable"_s);
    EXPECT_EQ(list->topLevelItem(1)->text(1), QString());
    press(u"folderDown"_s);
    EXPECT_EQ(dialog.folders(), (QStringList{folder.path(), u"/a"_s}));
    EXPECT_FALSE(dialog.findChild<QPushButton*>(u"folderDown"_s)->isEnabled());
    dialogues.expectFolder(u"Selectionnez le répertoire Images"_s, u"/b"_s);
    press(u"addFolder"_s);
    dialogues.expectFolder(u"Selectionnez le répertoire Images"_s, {});
    press(u"addFolder"_s);
    dialogues.expectFolder(u"Selectionnez le répertoire Images"_s, u"/a"_s); // is there already
    press(u"addFolder"_s);
    dialogues.expectFolder(u"Selectionnez le répertoire Images"_s, u"/c;d"_s);
    dialogues.expectTell(u"Le nom d'un répertoire d'images ne peut pas contenir de point-virgule."_s, u"Sélection"_s,
                         platform::BoxIcon::Warning);
    press(u"addFolder"_s);
    EXPECT_EQ(dialog.folders(), (QStringList{folder.path(), u"/a"_s, u"/b"_s}));
    press(u"removeFolder"_s); // "/a", which was chosen again
    EXPECT_EQ(dialog.folders(), (QStringList{folder.path(), u"/b"_s}));
    press(u"removeFolder"_s);
    press(u"removeFolder"_s);
    EXPECT_FALSE(dialog.findChild<QPushButton*>(u"removeFolder"_s)->isEnabled());
}
