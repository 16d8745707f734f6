// What every part of the window has to keep.
#include "WindowFixture.h"

#include "app/ui/Icons.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QTabBar>

namespace {

using namespace Qt::StringLiterals;

class Rules : public support::WindowTest {
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        makeProject();
        openProject();
        openRecords(u"Individus"_s);
        openRecords(u"Images"_s);
    }
};

/// Parts that Qt makes for itself within a control.
bool isInner(const QObject& object)
{
    return object.objectName().startsWith(u"qt_"_s) || object.inherits("CloseButton")
           || object.inherits("QDockWidgetTitleButton") || object.inherits("QToolBarExtension")
           || object.inherits("QTableCornerButton") || object.inherits("QScrollBar");
}

/// The letter behind the "&" of a text, or nothing.
QString mnemonic(QString text)
{
    text.remove(u"&&"_s);
    const qsizetype at = text.indexOf(u'&');
    return at < 0 ? QString() : text.mid(at + 1, 1).toLower();
}

TEST_F(Rules, EveryActionHasAnObjectName)
{
    QSet<QString> names;
    for (const QAction* action : window().findChildren<QAction*>()) {
        // Without a text: the menu that a tool bar unfolds when it is too narrow.
        if (action->isSeparator() || isInner(*action) || action->text().isEmpty())
            continue;
        const auto* menu = action->menu<QMenu*>();
        const QString name = menu ? menu->objectName() : action->objectName();
        EXPECT_FALSE(name.isEmpty()) << action->text().toStdString() << " of "
                                     << action->parent()->metaObject()->className();
        EXPECT_FALSE(names.contains(name)) << name.toStdString();
        names << name;
    }
    EXPECT_GT(names.size(), 25);
}

TEST_F(Rules, EveryInteractiveWidgetHasAnAccessibleName)
{
    int looked = 0;
    for (const QWidget* widget : window().findChildren<QWidget*>()) {
        const bool interactive = qobject_cast<const QAbstractScrollArea*>(widget)
                                 || qobject_cast<const QAbstractButton*>(widget)
                                 || qobject_cast<const QTabBar*>(widget)
                                 || qobject_cast<const QProgressBar*>(widget);
        if (!interactive || isInner(*widget) || (widget->parent() && widget->parent()->inherits("QComboBox")))
            continue;
        ++looked;
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        const bool named = !widget->accessibleName().isEmpty() || (button && !button->text().isEmpty());
        EXPECT_TRUE(named) << widget->metaObject()->className() << " " << widget->objectName().toStdString();
    }
    EXPECT_GT(looked, 10);
}

TEST_F(Rules, MnemonicsAreUniqueWithinTheirMenuAndNoneIsMissing)
{
    QList<QList<QAction*>> menus{window().menuBar()->actions()};
    for (QMenu* menu : window().findChildren<QMenu*>()) {
        if (!menu->objectName().isEmpty()) {
            Q_EMIT menu->aboutToShow();
            menus << menu->actions();
        }
    }
    for (const QList<QAction*>& actions : menus) {
        QSet<QString> letters;
        for (const QAction* action : actions) {
            if (action->isSeparator() || action->objectName() == u"recentNone")
                continue;
            const QString letter = mnemonic(action->text());
            EXPECT_FALSE(letter.isEmpty()) << action->text().toStdString();
            EXPECT_FALSE(letters.contains(letter)) << action->text().toStdString();
            EXPECT_TRUE(letter < u"\x80"_s) << action->text().toStdString();
            letters << letter;
        }
    }
}

TEST_F(Rules, ShortcutsAreUnique)
{
    QHash<QString, QString> users;
    for (const QAction* action : window().findChildren<QAction*>()) {
        const QString keys = action->shortcut().toString();
        if (keys.isEmpty())
            continue;
        EXPECT_FALSE(users.contains(keys)) << keys.toStdString() << " " << users.value(keys).toStdString();
        users.insert(keys, action->objectName());
    }
    EXPECT_EQ(users.value(u"Ctrl+Q"_s), u"quit"_s);
    EXPECT_EQ(users.value(u"Ctrl+W"_s), u"closeTab"_s);
}

TEST_F(Rules, MenuActionsTellWhatTheyDo)
{
    for (const QString& name : {u"menuFichier"_s, u"menuEdition"_s, u"menuAffichage"_s, u"menuOutils"_s, u"menuAide"_s}) {
        for (const QAction* action : widget<QMenu>(name)->actions()) {
            if (action->isSeparator() || action->menu<QMenu*>())
                continue;
            EXPECT_FALSE(action->statusTip().isEmpty()) << action->text().toStdString();
        }
    }
}

TEST_F(Rules, IconsOfTheToolBarAreThereInLightAndDark)
{
    const QPalette light = QApplication::palette();
    for (const QPalette& palette : {light, QPalette(Qt::black, Qt::black)}) {
        QApplication::setPalette(palette);
        app::followPalette();
        for (const QString& name : {u"new"_s, u"open"_s, u"modif"_s, u"optimise"_s, u"refresh"_s, u"copy"_s})
            EXPECT_FALSE(action(name)->icon().pixmap(22, 22).isNull()) << name.toStdString();
    }
    QApplication::setPalette(light);
    app::followPalette();
}

} // namespace
