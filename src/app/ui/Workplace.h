// Where the parts of the main window meet.
#pragma once

#include "platform/Dialogues.h"
#include "platform/ui/DocumentTab.h"
#include "platform/ui/TaskRunner.h"

#include <QAction>
#include <QMenu>
#include <functional>
#include <memory>

namespace editing {
class FormDialogue;
class ReferenceChooser;
}
namespace images {
class ThumbnailLoader;
}

namespace app {

class Session;
class WindowState;
class Documents;

/// What the desks (Desk.h) work with, and what they ask of each other.
class Workplace : public QObject {
    Q_OBJECT
public:
    Workplace(Session& session, platform::TaskRunner& runner, platform::Dialogues& dialogues, WindowState& state,
              Documents& documents, QWidget& window, QObject* parent = nullptr);

    Session& session() const { return m_session; }
    platform::TaskRunner& runner() const { return m_runner; }
    platform::Dialogues& dialogues() const { return m_dialogues; }
    WindowState& state() const { return m_state; }
    Documents& documents() const { return m_documents; }
    QWidget& window() const { return m_window; }
    /// Shows forms over the active window (Session::setForm).
    editing::FormDialogue& form() const;
    /// Opens the reference lists over a form; null as long as no desk serves it. Stays the same from one project to the
    /// next.
    editing::ReferenceChooser* chooser() const { return m_chooser; }
    void setChooser(editing::ReferenceChooser* chooser) { m_chooser = chooser; }

    /// Thumbnails of the open project; null while none is open.
    const std::shared_ptr<images::ThumbnailLoader>& thumbnails() const { return m_thumbnails; }
    void setThumbnails(std::shared_ptr<images::ThumbnailLoader> loader) { m_thumbnails = std::move(loader); }

    // --- Asked by anybody, answered by one desk ---
    /// Opens the record editor on a level path (editing::IndividualEditing::levelPath, newRecordPath).
    void editRecords(const QString& path) { Q_EMIT editRecordsWanted(path); }
    /// Shows records of a module as rows of a tab of their own.
    void showRecords(const QString& title, const QString& module, const QList<qint32>& ids)
    {
        Q_EMIT showRecordsWanted(title, module, ids);
    }
    /// Shows the individuals whose column holds one of the values: "ID Localité", "ID Collecteur" … of the table given.
    /// `table` is a module.
    void showReferring(const QString& title, const QString& module, const QString& column, const QList<qint32>& ids)
    {
        Q_EMIT showReferringWanted(title, module, column, ids);
    }
    /// Opens the browser of a reference list ("Taxons", "Localités", "Collecteurs") at a row (0: none).
    void showReference(const QString& table, qint32 id) { Q_EMIT showReferenceWanted(table, id); }
    /// Opens a new or a stored query (`ID Prop`; 0: a new one on the module).
    void openQuery(const QString& module, int property) { Q_EMIT openQueryWanted(module, property); }
    /// Says that records were written: every tab and window is brought up to date.
    void written(const QStringList& modules) { Q_EMIT recordsWritten(modules); }
    /// Says a failure.
    void fail(const QString& title, const QString& description);

Q_SIGNALS:
    void editRecordsWanted(const QString& path);
    void showRecordsWanted(const QString& title, const QString& module, const QList<qint32>& ids);
    void showReferringWanted(const QString& title, const QString& module, const QString& column,
                             const QList<qint32>& ids);
    void showReferenceWanted(const QString& table, qint32 id);
    void openQueryWanted(const QString& module, int property);
    void recordsWritten(const QStringList& modules);

private:
    Session& m_session;
    platform::TaskRunner& m_runner;
    platform::Dialogues& m_dialogues;
    WindowState& m_state;
    Documents& m_documents;
    QWidget& m_window;
    editing::ReferenceChooser* m_chooser = nullptr;
    std::shared_ptr<images::ThumbnailLoader> m_thumbnails;
};

} // namespace app
