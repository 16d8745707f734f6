// Opening, creating and optimising a project from the main window.
#pragma once

#include "app/ui/RecentFiles.h"
#include "platform/ui/TaskRunner.h"

#include <QObject>
#include <functional>
#include <optional>

namespace data {
struct ModuleRecord;
}
namespace platform {
class Dialogues;
}

namespace app {

class Session;

/// The session works beside the windows; while it does (busy) nobody else may use it.
class ProjectCommands : public QObject {
    Q_OBJECT
public:
    ProjectCommands(Session& session, platform::TaskRunner& runner, platform::Dialogues& dialogues,
                    RecentFiles& recent, QObject* parent = nullptr);

    bool isBusy() const { return m_busy; }
    /// Asked before the project is closed or exchanged: about what is not saved; false when the user stays.
    void setGuard(std::function<bool()> mayChange) { m_mayChange = std::move(mayChange); }
    void open();   ///< Asks for the file.
    void create(); ///< Asks for the name.
    void createDemo(); ///< The same for the demo project.
    void saveCopy();   ///< Asks for the name; the project stays open and its tabs as they are.
    /// Opens a project. An old Access file becomes one first (importPath).
    void openPath(const QString& path);
    /// Asks, converts an old Access file into a new project beside it, and opens that.
    void importPath(const QString& path);
    void optimise();
    /// Runs work that changes the structure of the open project; whatever holds on to it lets go before. False when the
    /// user stays with something unsaved.
    bool restructure(const QString& text, std::function<bool(platform::Progression&)> work);

    /// "Fichiers Herbora", as file questions want it.
    static QString fileFilter();

Q_SIGNALS:
    /// The project that is open, if any, is about to be closed or exchanged; the user agreed.
    void projectClosing();
    void busyChanged(bool busy);
    /// A project was opened, or the open one closed, or opened again.
    void projectChanged();
    /// The project that is open now was made of an old Access file just now.
    void imported();
    /// The open project was copied to a file.
    void copied(const QString& path);

private:
    /// The file that a new project is to have, with its ending; empty when the user gave up or stays.
    QString newFile(const QString& title, const QString& name);
    /// The modules that a new project starts with; nothing when the user gave up.
    std::optional<QList<data::ModuleRecord>> chosenStructure();
    bool mayChange() const { return !m_busy && (!m_mayChange || m_mayChange()); }
    /// `cancellable`: the work looks at Progression::cancelled.
    void run(const QString& text, std::function<bool(platform::Progression&)> work, bool cancellable = false,
             std::function<void()> succeeded = {});
    void setBusy(bool busy);

    Session& m_session;
    platform::TaskRunner& m_runner;
    platform::Dialogues& m_dialogues;
    RecentFiles& m_recent;
    std::function<bool()> m_mayChange;
    bool m_busy = false;
};

} // namespace app
