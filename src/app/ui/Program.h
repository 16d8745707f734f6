// The program put together: the world around the session, the session, the window.
#pragma once

#include "app/Session.h"
#include "app/ui/MainWindow.h"
#include "platform/ui/TaskRunner.h"
#include "platform/ui/ThreadedDialogues.h"

namespace app {

/// French numbers, dates and texts of Qt, for any application object.
void useFrench();
/// That, the names and the icons of the program. To be called once, before any window.
void prepareApplication();

/// What a start is given.
struct ProgramOptions {
    QString applicationFolder;
    QString settingsFile; ///< Empty: nothing is read and nothing is kept.
    QString stateFile;    ///< Empty: for this run only.
};

class Program {
public:
    Program(const ProgramOptions& options, platform::Dialogues& dialogues);

    MainWindow& window() { return m_window; }
    Session& session() { return m_session; }
    platform::TaskRunner& runner() { return m_runner; }

    /// What follows once the window is there: the file association (asked once when it was declined), then the
    /// file named on the command line, else the last one.
    void startUp(platform::FileAssociation& association, const QString& file);
    void openStartFile(const QString& file);

private:
    void checkAssociation(platform::FileAssociation& association);

    platform::ThreadedDialogues m_dialogues;
    platform::SystemClock m_clock;
    platform::Settings m_settings;
    Session m_session;
    WindowState m_state;
    platform::TaskRunner m_runner;
    MainWindow m_window;
};

} // namespace app
