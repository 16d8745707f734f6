// Every window of the program with the demo project, looked over in light and dark colours and with large letters.
#include "Inspection.h"
#include "app/ui/AccessReportDialog.h"
#include "app/ui/Captures.h"
#include "app/ui/Desk.h"
#include "app/ui/Photographer.h"
#include "app/ui/Program.h"
#include "platform/ui/ChoiceDialog.h"
#include "platform/ui/Readable.h"
#include "query/ui/QueryTab.h"
#include "query/ui/ReplaceDialog.h"

#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QProcess>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Declines every question.
class Declining : public platform::Dialogues {
public:
    platform::Answer ask(const platform::Message& message) override
    {
        if (message.buttons == platform::BoxButtons::Ok)
            return platform::Answer::Ok;
        if (message.buttons == platform::BoxButtons::YesNo)
            return platform::Answer::No;
        return leaving ? platform::Answer::No : platform::Answer::Cancel;
    }
    std::optional<QString> input(const QString&, const QString&, const QString&) override { return {}; }
    std::optional<QList<int>> choose(const platform::Choice&) override { return {}; }
    QString openFile(const QString&, const QString&, const QString&) override { return {}; }
    QStringList openFiles(const QString&, const QString&, const QString&) override { return {}; }
    QString saveFile(const QString&, const QString&, const QString&) override { return {}; }
    QString chooseFolder(const QString&, const QString&) override { return {}; }

    bool leaving = false;
};

/// Where a picture would be taken, the window is looked over.
class Inspector : public app::Photographer {
public:
    Inspector(app::Program& program, support::Inspection& inspection, bool tabs)
        : Photographer(program, {}), m_inspection(inspection), m_tabs(tabs)
    {
    }
    using Photographer::take;
    void take(const QString&, QWidget& window) override
    {
        if (!window.isVisible())
            return; // a picture made of pictures
        m_inspection.inspect(window);
        if (m_tabs)
            m_inspection.walkByTab(window);
    }

private:
    support::Inspection& m_inspection;
    bool m_tabs;
};

class Accessibility : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        app::prepareApplication();
        judge = qInstallMessageHandler(passOn);
    }
    static void TearDownTestSuite() { qInstallMessageHandler(judge); }
    /// Some photographs of the demo come with a colour profile that Qt does not know.
    static void passOn(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        if (!text.contains(u"fromIccProfile"))
            judge(type, context, text);
    }
    void SetUp() override
    {
        path = folder.filePath(u"herbier.hbx"_s);
        ASSERT_TRUE(makeDemo());
        closer.setInterval(5);
        QObject::connect(&closer, &QTimer::timeout, [this] { lookAtWhatIsModal(); });
    }
    void TearDown() override
    {
        closer.stop();
        dialogues.leaving = true;
        if (program)
            window().close();
        program.reset();
        QApplication::setPalette(QPalette());
        QApplication::setFont(font);
    }

    void start(QSize size = {1280, 800})
    {
        program = std::make_unique<app::Program>(
            app::ProgramOptions{QCoreApplication::applicationDirPath(), {}, {}}, dialogues);
        window().resize(size);
        window().show();
    }
    app::MainWindow& window() { return program->window(); }
    bool makeDemo()
    {
        QProcess process;
        process.start(QCoreApplication::applicationDirPath() + u"/herbora-cli"_s, {u"demo"_s, path});
        return process.waitForFinished(120000) && process.exitCode() == 0;
    }
    void settle()
    {
        EXPECT_TRUE(QTest::qWaitFor(
            [this] { return !program->runner().isRunning() && !window().commands().isBusy(); }, 60000));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }
    void openDemo()
    {
        window().commands().openPath(path);
        settle();
        ASSERT_TRUE(program->session().isOpen());
    }
    /// What waits for an answer is looked over and declined.
    void lookAtWhatIsModal()
    {
        if (looking)
            return; // the walk through the fields lets timers run
        const QScopedValueRollback guard(looking, true);
        if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            inspection.inspectMenu(*menu, u"menu "_s + menu->objectName());
            menu->close();
            return;
        }
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            lookOver(*dialog);
            dialog->reject();
        }
    }
    void lookOver(QWidget& shown)
    {
        inspection.inspect(shown);
        inspection.walkByTab(shown);
    }
    /// Windows beside the main one are looked over and closed.
    void lookAtOthers()
    {
        for (int turn = 0; turn < 5; ++turn) {
            bool any = false;
            QList<QPointer<QWidget>> looked;
            const QWidgetList all = QApplication::topLevelWidgets();
            for (QWidget* widget : all) {
                const bool tip = widget->windowFlags() & Qt::ToolTip & ~Qt::Window;
                if (widget == &window() || !widget->isVisible() || !widget->isWindow() || tip)
                    continue;
                any = true;
                if (!qobject_cast<QMenu*>(widget))
                    lookOver(*widget);
                looked << widget;
            }
            for (const QPointer<QWidget>& widget : looked) {
                if (widget)
                    widget->close();
            }
            settle();
            if (!any)
                return;
        }
    }
    void tour(bool tabs)
    {
        Inspector inspector(*program, inspection, tabs);
        inspector.settle();
        inspector.app::Photographer::take(u"accueil"_s);
        openDemo();
        inspector.app::Photographer::take(u"projet"_s);
        for (const QString& key : {u"Individus"_s, u"Déterminations"_s}) {
            inspector.open(key);
            inspector.app::Photographer::take(key);
        }
        for (const std::unique_ptr<app::Desk>& desk : window().desks())
            desk->photograph(inspector);
        EXPECT_GT(inspection.windows(), 20);
        EXPECT_TRUE(inspection.faults().isEmpty()) << inspection.faults().toStdString();
    }

    static inline QtMessageHandler judge = nullptr;
    const QFont font = QApplication::font();
    QTemporaryDir folder;
    QString path;
    Declining dialogues;
    std::unique_ptr<app::Program> program;
    support::Inspection inspection;
    QTimer closer;
    bool looking = false;
};

TEST_F(Accessibility, OfEveryWindowByKeyboardAndReader)
{
    start();
    tour(true);
}

TEST_F(Accessibility, OfEveryWindowInDarkColours)
{
    QApplication::setPalette(app::darkPalette());
    start();
    tour(false);
}

TEST_F(Accessibility, OfEveryWindowInLettersOfTwiceTheSize)
{
    QFont large = font;
    large.setPointSizeF(font.pointSizeF() * 2);
    QApplication::setFont(large);
    start({1920, 1200});
    tour(false);
}

/// What the commands of the main window and of the tree open, and what opens a menu.
TEST_F(Accessibility, OfWhatEveryCommandOpens)
{
    start();
    openDemo();
    closer.start();
    const QStringList leave{u"quit"_s, u"new"_s, u"open"_s, u"optimise"_s};
    for (const QString& key : {u"Individus"_s, u"Requête"_s, u"Modèle"_s, u"Individus-self"_s, u"Lsbotanistes"_s,
                               u"Lslocalités"_s, u"Lstaxons"_s}) {
        window().dock().view().setCurrentIndex(window().dock().model().indexOf(key));
        for (QAction* action : window().dock().commands().fitting()) {
            if (action->isEnabled())
                action->trigger();
            settle();
            lookAtOthers();
        }
        inspection.inspect(window());
    }
    QList<QPointer<QAction>> actions;
    for (QAction* action : window().findChildren<QAction*>()) {
        if (!action->menu() && !action->isSeparator() && !leave.contains(action->objectName()))
            actions << action;
    }
    for (const QPointer<QAction>& action : actions) {
        if (action && action->isEnabled() && action->isVisible() && window().isVisible())
            action->trigger();
        settle();
        lookAtOthers();
    }
    EXPECT_GT(inspection.windows(), 15);
    EXPECT_TRUE(inspection.faults().isEmpty()) << inspection.faults().toStdString();
}

/// As the menu key does, Shift+F10 opens the commands of what is current, and leaves that as it is.
TEST_F(Accessibility, OfContextMenusByKeyboard)
{
    start();
    openDemo();
    struct Case {
        QString node; ///< What is opened by Return.
        QString view;
    };
    for (const Case& c : {Case{u"Individus"_s, u"moduleTree"_s}, Case{u"Lstaxons"_s, u"arbre"_s},
                          Case{u"Lslocalités"_s, u"arbre"_s}, Case{u"Lsbotanistes"_s, u"listeCollecteurs"_s}}) {
        window().dock().view().setCurrentIndex(window().dock().model().indexOf(c.node));
        window().dock().commands().runDefault();
        settle();
        QWidget* within = c.view == u"moduleTree" ? static_cast<QWidget*>(&window()) : window().documents().current();
        auto* view = within->findChild<QAbstractItemView*>(c.view);
        ASSERT_TRUE(view) << c.view.toStdString();
        QApplication::setActiveWindow(&window());
        view->setFocus();
        view->setCurrentIndex(view->model()->index(0, 0));
        if (c.view == u"moduleTree")
            view->setCurrentIndex(window().dock().model().indexOf(c.node));
        const QPersistentModelIndex current = view->currentIndex();
        QTest::keyClick(view, Qt::Key_F10, Qt::ShiftModifier);
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_TRUE(menu) << c.view.toStdString();
        EXPECT_GT(menu->actions().size(), 1);
        inspection.inspectMenu(*menu, c.view);
        menu->close();
        EXPECT_EQ(view->currentIndex(), current) << c.view.toStdString();
    }
    EXPECT_TRUE(inspection.faults().isEmpty()) << inspection.faults().toStdString();
}

/// What opens only from within another window.
TEST_F(Accessibility, OfTheDialogsWithin)
{
    start();
    openDemo();
    closer.start();
    Inspector shown(*program, inspection, true);
    const auto others = [&] { return lookAtOthers(); };
    shown.open(u"Individus"_s);
    window().findChild<QAction*>(u"print"_s)->trigger();
    others();
    shown.open(u"Lstaxons"_s);
    auto* links = window().documents().current()->findChild<QMenu*>(u"menuLiens"_s);
    Q_EMIT links->aboutToShow();
    links->findChild<QAction*>(u"modifierLiens"_s)->trigger();
    others();

    window().place().openQuery(u"Individus"_s, 0);
    auto* query = qobject_cast<query::QueryTab*>(window().documents().current());
    query->execute();
    shown.settle([query] { return query->pane().hasResult() && query->pane().isComplete(); });
    query->actions()[u"stat"_s]->trigger();
    others();
    query->pane().data().selectAll();
    query->actions()[u"replace"_s]->trigger();
    auto* replace = query->findChild<query::ReplaceDialog*>();
    ASSERT_TRUE(replace);
    // Return in the tree takes the field that is current.
    auto* fields = replace->findChild<QTreeView*>(u"champs"_s);
    fields->setCurrentIndex(fields->model()->index(0, 0, fields->model()->index(0, 0)));
    QTest::keyClick(fields, Qt::Key_Return);
    auto* values = replace->findChild<QTableView*>(u"remplacements"_s);
    ASSERT_EQ(values->model()->rowCount(), 1);
    values->setCurrentIndex(values->model()->index(0, 0));
    replace->findChild<QPushButton*>(u"expression"_s)->click();
    others();

    window().place().editRecords(u"1-Individus;1"_s);
    settle();
    QWidget* editor = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->inherits("editing::RecordEditorWindow") && widget->isVisible())
            editor = widget;
    }
    ASSERT_TRUE(editor);
    QTest::keyClick(editor->findChild<QLineEdit*>(u"editeur-ID Localités"_s), Qt::Key_F3); // a modal list
    editor->findChild<QAction*>(u"list"_s)->trigger();
    others();

    app::AccessReportDialog report(u"Rapport"_s, dialogues, &window());
    report.show();
    lookOver(report);
    platform::ChoiceDialog choice({u"Titre"_s, u"Choisir :"_s, u"Nom"_s, {u"a"_s, u"b"_s}, true}, &window());
    choice.show();
    lookOver(choice);
    EXPECT_EQ(inspection.windows(), 8);
    EXPECT_TRUE(inspection.faults().isEmpty()) << inspection.faults().toStdString();
}

/// Wherever the focus is in the window.
TEST_F(Accessibility, OfTheTabsByKeyboard)
{
    start();
    openDemo();
    for (const QString& key : {u"Individus"_s, u"Lstaxons"_s}) {
        window().dock().view().setCurrentIndex(window().dock().model().indexOf(key));
        window().dock().commands().runDefault();
        settle();
    }
    window().place().openQuery(u"Individus"_s, 0); // a window with tabs of its own
    const auto tabs = window().documents().tabs();
    ASSERT_EQ(tabs.size(), 3);
    QApplication::setActiveWindow(&window());
    for (const qsizetype expected : {0, 1, 2, 0}) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(tabs.indexOf(window().documents().current()), expected);
        EXPECT_TRUE(window().documents().current()->isAncestorOf(QApplication::focusWidget()));
    }
    window().dock().view().setFocus();
    QTest::keyClick(&window().dock().view(), Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(tabs.indexOf(window().documents().current()), 2);
}

TEST_F(Accessibility, OfDialogsThatKeepTheirSize)
{
    start();
    const QSize chosen(640, 480);
    for (const auto& [name, keeps] : {std::pair{u"imageFolders"_s, true}, std::pair{u"formDialog"_s, false}}) {
        for (const bool again : {false, true}) {
            QDialog dialog;
            dialog.setObjectName(name);
            dialog.resize(300, 200);
            dialog.show();
            EXPECT_EQ(dialog.size() == chosen, again && keeps) << name.toStdString();
            dialog.resize(chosen);
            dialog.close();
        }
    }
}

/// 21 is black on white; what a palette has too faint is moved towards its text.
TEST_F(Accessibility, OfColours)
{
    struct Case {
        QColor text, ground;
        double contrast;
    };
    for (const Case& c : {Case{Qt::black, Qt::white, 21}, Case{QColor(0x76, 0x76, 0x76), Qt::white, 4.54},
                          Case{QColor(0, 0, 0, 0), Qt::white, 1}})
        EXPECT_NEAR(platform::contrast(c.text, c.ground), c.contrast, 0.01) << c.text.name().toStdString();
    QPalette faint(Qt::lightGray);
    faint.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 60));
    const QPalette better = platform::readable(faint);
    EXPECT_GE(platform::contrast(better.color(QPalette::PlaceholderText), better.color(QPalette::Window)), 4.5);
    EXPECT_EQ(platform::readable(better), better);
}

} // namespace
