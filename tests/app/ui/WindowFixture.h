// The whole program on a temporary folder, its questions scripted.
#pragma once

#include "app/ui/Program.h"
#include "support/ScriptedDialogues.h"
#include "support/Warnings.h"

#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace support {

/// Files are in `folder`; the settings and the state of the windows are kept there too.
class WindowTest : public ::testing::Test {
protected:
    static void SetUpTestSuite();
    void SetUp() override { start(); }
    void TearDown() override { stop(); }

    QString path(const QString& name = QStringLiteral("projet.hbx")) const { return folder.filePath(name); }
    /// A project with collectors, localities, taxa, three individuals, four determinations.
    void makeProject(const QString& name = QStringLiteral("projet.hbx"));
    /// Opens it in the window.
    void openProject(const QString& name = QStringLiteral("projet.hbx"));

    void start();
    void stop(); ///< Closes the window as a user does.
    app::MainWindow& window() { return program->window(); }
    /// Nothing runs, and the rows of every tab are known.
    void settle();

    QAction* action(const QString& name);
    void trigger(const QString& name); ///< Fails when it is disabled or hidden; settles.
    template <typename Widget> Widget* widget(const QString& name)
    {
        auto* found = window().findChild<Widget*>(name);
        EXPECT_TRUE(found) << name.toStdString();
        return found;
    }
    app::GridTab* openRecords(const QString& key); ///< As by Return in the tree.
    /// What a grid shows, one text a row, cells joined by "|".
    static QStringList shown(app::GridTab& grid, const QStringList& headers);
    static int columnOf(app::GridTab& grid, const QString& header);

    QTemporaryDir folder;
    ScriptedDialogues dialogues;
    std::unique_ptr<app::Program> program;
};

} // namespace support
