// Keeps what is typed and not saved beside the project.
#pragma once

#include <QJsonObject>
#include <QObject>
#include <QTimer>
#include <functional>

namespace editing {

/// Written a moment after the typing, never in its way. What cannot be written is logged: it must not stop the work. What
/// earlier runs left is never written over: each run has a file of its own, numbered where another one is there.
class DraftKeeper : public QObject {
    Q_OBJECT
public:
    /// With an empty name nothing is kept. `draft` gives what is to be kept; empty: nothing, the file goes.
    DraftKeeper(QString file, std::function<QJsonObject()> draft, QObject* parent = nullptr);

    void touch(); ///< Something was typed, or saved.
    void flush(); ///< Writes at once where something is due.
    QJsonObject kept() const; ///< Of the first earlier run; empty for none.
    void takeUp();            ///< What was kept is this run's now.
    void forget();            ///< What was kept is not wanted.
    void discard();           ///< What this run has written is saved, or not wanted.
    /// "projet.hbx" gives "projet.hbx.saisie".
    static QString fileFor(const QString& project);
    /// An earlier run left something; `file` is that of fileFor().
    static bool isKept(const QString& file) { return !left(file).isEmpty(); }

private:
    static QString left(const QString& file);
    static bool removed(const QString& file);

    QString m_file; ///< Of this run; empty for nothing.
    QString m_left; ///< Of an earlier run; empty for none.
    std::function<QJsonObject()> m_draft;
    QTimer m_timer;
    bool m_written = false;
};

} // namespace editing
