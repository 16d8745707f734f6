// Every command of every window, with the demo project open and a user who declines whatever is asked.
#include "app/ui/Desk.h"
#include "app/ui/ManualWindow.h"
#include "app/ui/Program.h"
#include "support/Warnings.h"

#include <QAbstractButton>
#include <QDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QProcess>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QTreeView>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Declines every question, and remembers that there was one.
class Declining : public platform::Dialogues {
public:
    platform::Answer ask(const platform::Message& message) override
    {
        ++questions;
        texts << message.title << message.text;
        if (accepts && !leaving && message.buttons != platform::BoxButtons::Ok)
            return platform::Answer::Yes;
        switch (message.buttons) {
        case platform::BoxButtons::Ok:
            return platform::Answer::Ok;
        case platform::BoxButtons::YesNo:
            return platform::Answer::No;
        case platform::BoxButtons::YesNoCancel:
            break;
        }
        return leaving ? platform::Answer::No : platform::Answer::Cancel;
    }
    std::optional<QString> input(const QString& prompt, const QString& title, const QString& byDefault) override
    {
        noted(prompt, title);
        return accepts ? std::optional(byDefault) : std::nullopt;
    }
    std::optional<QList<int>> choose(const platform::Choice& choice) override
    {
        return noted(choice.prompt, choice.title), std::nullopt;
    }
    QString openFile(const QString& title, const QString&, const QString&) override { return noted(title), QString(); }
    QStringList openFiles(const QString& title, const QString&, const QString&) override
    {
        return noted(title), QStringList();
    }
    QString saveFile(const QString& title, const QString&, const QString&) override { return noted(title), QString(); }
    QString chooseFolder(const QString& title, const QString&) override { return noted(title), QString(); }

    int questions = 0;
    bool leaving = false; ///< At the end nothing is saved.
    bool accepts = false; ///< Says yes instead.
    QStringList texts;

private:
    void noted(const QString& text, const QString& title = {})
    {
        ++questions;
        texts << text << title;
    }
};

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Words that a French text does not have.
bool isEnglish(const QString& text)
{
    static const QRegularExpression words(
        u"\\b(the|and|open|close|save|cancel|delete|edit|copy|paste|undo|redo|file|help|view|search|find|select|add|"
        "remove|new|yes|settings|window|error|warning|failed|none|apply|reset|back|forward|discard)\\b"_s,
        QRegularExpression::CaseInsensitiveOption);
    return words.match(QString(text).remove(u'&')).hasMatch();
}

class Walk : public ::testing::Test {
protected:
    static void SetUpTestSuite() { app::useFrench(); }
    void SetUp() override
    {
        path = folder.filePath(u"herbier.hbx"_s);
        program = std::make_unique<app::Program>(
            app::ProgramOptions{QCoreApplication::applicationDirPath(), {}, {}}, dialogues);
        ASSERT_TRUE(makeDemo());
        prepare();
        program->window().show();
        program->window().commands().openPath(path);
        settle();
        ASSERT_TRUE(program->session().isOpen());
        closer.setInterval(5);
        QObject::connect(&closer, &QTimer::timeout, [this] { closeWhatIsModal(); });
        closer.start();
    }
    void TearDown() override
    {
        closer.stop();
        dialogues.leaving = true;
        closeOthers();
        program->window().close();
        program.reset();
    }

    bool makeDemo();
    /// What happens to the file before it is opened.
    virtual void prepare() {}
    void walkMainWindow();
    void walkBeside();
    void settle()
    {
        EXPECT_TRUE(QTest::qWaitFor(
            [this] { return !program->runner().isRunning() && !program->window().commands().isBusy(); }, 60000));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }
    /// A dialog or a menu that waits for an answer is declined.
    void closeWhatIsModal()
    {
        if (QWidget* popup = QApplication::activePopupWidget()) {
            popup->close();
            return;
        }
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            examine(*dialog);
            ++opened;
            dialog->reject();
        }
    }
    /// Windows that a command opened beside the main one.
    QList<QWidget*> others() const
    {
        QList<QWidget*> found;
        const QWidgetList all = QApplication::topLevelWidgets();
        for (QWidget* widget : all) {
            if (widget != &program->window() && widget->isVisible() && widget->isWindow()
                && !(widget->windowFlags() & Qt::ToolTip & ~Qt::Window))
                found << widget;
        }
        return found;
    }
    void closeOthers()
    {
        for (int turn = 0; turn < 5 && !others().isEmpty(); ++turn) {
            for (QWidget* widget : others()) {
                examine(*widget);
                ++opened;
                widget->close();
            }
            settle();
        }
    }
    void examine(const QWidget& window);
    void check(const QString& text, const QString& where)
    {
        if (isEnglish(text))
            english << where + u" : "_s + text;
    }

    /// Triggers an action as a user would; whatever it opens is declined and closed.
    void run(QAction* action)
    {
        walked << action->objectName() + u" : "_s + action->text();
        check(action->text(), action->objectName());
        check(action->toolTip(), action->objectName());
        if (!action->isEnabled() || !action->isVisible() || !program->window().isVisible())
            return;
        action->trigger();
        settle();
    }
    /// The actions of the menus and tool bars of a window, those of sub-menus among them.
    static QList<QPointer<QAction>> actionsOf(const QWidget& window)
    {
        QList<QPointer<QAction>> found;
        const QList<QAction*> all = window.findChildren<QAction*>();
        for (QAction* action : all) {
            if (!action->menu() && !action->isSeparator() && !action->text().isEmpty())
                found << action;
        }
        return found;
    }

    QTemporaryDir folder;
    QString path;
    Declining dialogues;
    std::unique_ptr<app::Program> program;
    QTimer closer;
    QStringList english;
    QStringList walked;
    int opened = 0;
    bool mayRefuse = false; ///< A window may stay closed.
};

void Walk::examine(const QWidget& window)
{
    const QString where = window.objectName() + u'/' + window.windowTitle();
    check(window.windowTitle(), where);
    for (const QLabel* label : window.findChildren<QLabel*>())
        if (label->objectName().isEmpty() || label->buddy())
            check(label->text(), where);
    for (const QAbstractButton* button : window.findChildren<QAbstractButton*>()) {
        check(button->text(), where);
        check(button->toolTip(), where);
    }
    for (const QLineEdit* line : window.findChildren<QLineEdit*>())
        check(line->placeholderText(), where);
    for (const QTabWidget* tabs : window.findChildren<QTabWidget*>())
        for (int tab = 0; tab < tabs->count(); ++tab)
            if (tabs->objectName() != u"tabs")
                check(tabs->tabText(tab), where);
}

bool Walk::makeDemo()
{
    const QString program = QCoreApplication::applicationDirPath() + u"/herbora-cli"_s;
    QProcess process;
    process.start(program, {u"demo"_s, path});
    return process.waitForFinished(120000) && process.exitCode() == 0;
}

/// Of the main window: what ends the program or takes the project away is left to tests of its own.
void Walk::walkMainWindow()
{
    const QStringList leave{u"quit"_s, u"new"_s, u"open"_s, u"optimise"_s};
    app::MainWindow& window = program->window();
    for (const QString& key : {u"Individus"_s, u"Déterminations"_s, u"Requête"_s, u"Modèle"_s, u"Individus-self"_s,
                               u"Lsbotanistes"_s, u"Lslocalités"_s, u"Lstaxons"_s}) {
        window.dock().view().setCurrentIndex(window.dock().model().indexOf(key));
        for (QAction* action : window.dock().commands().fitting()) {
            run(action);
            closeOthers();
        }
    }
    EXPECT_GT(window.documents().tabs().size(), 2);
    examine(window);
    const auto actions = actionsOf(window);
    for (const QPointer<QAction>& action : actions) {
        if (action && !leave.contains(action->objectName()))
            run(action);
        closeOthers();
    }
}

TEST_F(Walk, EveryCommandOfTheMainWindow)
{
    walkMainWindow();
    EXPECT_GT(opened, 1);
    EXPECT_GT(walked.size(), 60);
    EXPECT_TRUE(english.isEmpty()) << english.join(u'\n').toStdString();
    EXPECT_TRUE(program->session().isOpen());
}

/// F1 knows what the tab shown is about.
TEST_F(Walk, TheManualOpensAtThePageOfTheTab)
{
    app::MainWindow& window = program->window();
    struct Case {
        QString key;
        QString page;
    };
    for (const Case& c : {Case{u"Individus"_s, u"premiers-pas"_s}, Case{u"Lstaxons"_s, u"taxons"_s},
                          Case{u"Lslocalités"_s, u"localites"_s}, Case{u"Lsbotanistes"_s, u"botanistes"_s}}) {
        window.dock().view().setCurrentIndex(window.dock().model().indexOf(c.key));
        EXPECT_TRUE(window.dock().commands().runDefault()) << c.key.toStdString();
        settle();
        EXPECT_EQ(app::ManualWindow::pageFor(window.documents().current()), c.page) << c.key.toStdString();
    }
    window.place().openQuery(u"Individus"_s, 0);
    EXPECT_EQ(app::ManualWindow::pageFor(window.documents().current()), u"requetes"_s);
    window.place().editRecords(u"1-Individus;1"_s);
    settle();
    ASSERT_EQ(others().size(), 1);
    EXPECT_EQ(app::ManualWindow::pageFor(others().first()), u"saisir"_s);
}

/// The record editor and the structure editor, each command once more in a window that is open.
void Walk::walkBeside()
{
    app::MainWindow& window = program->window();
    struct Opening {
        const char* name;
        std::function<void()> open;
    };
    for (const Opening& c : {
             Opening{"fiche", [&] { window.place().editRecords(u"1-Individus;1;2;3"_s); }},
             Opening{"structure", [&] { window.findChild<QAction*>(u"modif"_s)->trigger(); }},
         }) {
        c.open();
        settle();
        if (others().isEmpty() && mayRefuse)
            continue;
        ASSERT_EQ(others().size(), 1) << c.name;
        QPointer<QWidget> beside = others().first();
        examine(*beside);
        const auto actions = actionsOf(*beside);
        EXPECT_GT(actions.size(), 10) << c.name;
        for (const QPointer<QAction>& action : actions) {
            if (!action || action->objectName() == u"close" || action->objectName() == u"mnuend")
                continue;
            run(action);
            for (QWidget* other : others()) {
                if (other != beside)
                    other->close();
            }
            if (!beside || !beside->isVisible()) {
                c.open();
                settle();
                break;
            }
        }
        dialogues.leaving = true;
        closeOthers();
        dialogues.leaving = false;
        EXPECT_TRUE(others().isEmpty()) << c.name;
    }
}

TEST_F(Walk, EveryCommandOfTheWindowsBeside)
{
    walkBeside();
    EXPECT_TRUE(english.isEmpty()) << english.join(u'\n').toStdString();
}

// --- With a file that is not as it should be -------------------------------------------------------

enum class Trouble { ReadOnly, Deleted, Damaged };

/// Every command again, by a user who says yes to everything. Nothing may crash, hang or throw; the rest of the project
/// is worked with as far as it goes.
class WalkInTrouble : public Walk, public ::testing::WithParamInterface<std::pair<Trouble, bool>> {
protected:
    void prepare() override
    {
        // What goes wrong is logged; only what the program does not see itself is of interest.
        QLoggingCategory::setFilterRules(u"herbora.*=false"_s);
        dialogues.accepts = GetParam().second;
        mayRefuse = GetParam().first != Trouble::Deleted;
        if (GetParam().first == Trouble::ReadOnly)
            QFile::setPermissions(path, QFile::ReadOwner);
    }
    void TearDown() override
    {
        Walk::TearDown();
        QLoggingCategory::setFilterRules({});
    }
    /// Zeroes every third page, as a failing disk would while the project is open.
    void damage() const
    {
        constexpr qint64 page = 4096;
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        for (qint64 at = 3 * page; at < file.size(); at += 3 * page) {
            file.seek(at);
            file.write(QByteArray(page, '\0'));
        }
    }
};

TEST_P(WalkInTrouble, EveryCommandIsHarmless)
{
    if (GetParam().first == Trouble::ReadOnly && !program->session().readOnly())
        GTEST_SKIP() << "this user may write every file";
    if (GetParam().first == Trouble::Deleted) {
        ASSERT_TRUE(QFile::remove(path));
    }
    if (GetParam().first == Trouble::Damaged)
        damage();
    const QByteArray before = contentOf(path);
    walkMainWindow();
    walkBeside();
    EXPECT_TRUE(program->session().isOpen());
    if (GetParam().first != Trouble::Damaged) {
        EXPECT_EQ(contentOf(path), before);
    }
}

INSTANTIATE_TEST_SUITE_P(Files, WalkInTrouble,
                         ::testing::Values(std::pair{Trouble::ReadOnly, false}, std::pair{Trouble::ReadOnly, true},
                                           std::pair{Trouble::Deleted, false}, std::pair{Trouble::Deleted, true},
                                           std::pair{Trouble::Damaged, false}, std::pair{Trouble::Damaged, true}));

} // namespace
