// The main window: it connects its parts and does nothing itself.
#pragma once

#include "app/ui/Documents.h"
#include "app/ui/MainActions.h"
#include "app/ui/ModuleDock.h"
#include "app/ui/ProjectCommands.h"
#include "platform/ui/ProgressionBar.h"

#include <QMainWindow>
#include <memory>
#include <vector>

namespace app {

class Desk;
class ManualWindow;
class TreeObjects;
class Workplace;

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    /// The session must have been given dialogues that may be asked from any thread.
    MainWindow(Session& session, platform::TaskRunner& runner, platform::Dialogues& dialogues, WindowState& state);
    ~MainWindow() override;

    ProjectCommands& commands() { return *m_commands; }
    ModuleDock& dock() { return *m_dock; }
    Documents& documents() { return *m_documents; }
    Workplace& place() { return *m_place; }
    const std::vector<std::unique_ptr<Desk>>& desks() const { return m_desks; }
    platform::ProgressionBar& progression() { return *m_progression; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void connectActions();
    void connectParts();
    void connectProgression();
    void showProject();
    void showBusy(bool busy);
    void showCurrentTab();
    void makeDesks();
    void showManual(const QString& page);
    void showStart();
    void serveTree();
    bool mayClose();
    void putAway();
    void openRecords(const QString& key);
    void restoreState();
    void saveState();

    Session& m_session;
    platform::TaskRunner& m_runner;
    platform::Dialogues& m_dialogues;
    WindowState& m_state;
    RecentFiles* m_recent;
    ProjectCommands* m_commands;
    MainActions* m_actions;
    ModuleDock* m_dock;
    StartPage* m_start;
    Documents* m_documents;
    Workplace* m_place;
    std::vector<std::unique_ptr<Desk>> m_desks;
    platform::ProgressionBar* m_progression;
    QLabel* m_count;
    std::unique_ptr<ManualWindow> m_manual; ///< Made when it is first asked for.
    std::unique_ptr<TreeObjects> m_objects; ///< Of the project that is open.
    QString m_shownPath; ///< The project whose tabs are open.
    bool m_closeWhenIdle = false;
};

} // namespace app
