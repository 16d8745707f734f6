// Keeps what is typed and not saved beside the project.
#pragma once

#include <QJsonObject>
#include <QObject>
#include <QTimer>
#include <functional>

namespace editing {

/// Written a moment after the typing, never in its way. What cannot be written is logged: it must not stop the work.
class DraftKeeper : public QObject {
    Q_OBJECT
public:
    /// With an empty name nothing is kept. `draft` gives what is to be kept; empty: nothing, the file goes.
    DraftKeeper(QString file, std::function<QJsonObject()> draft, QObject* parent = nullptr);

    void touch(); ///< Something was typed, or saved.
    void flush(); ///< Writes at once where something is due.
    QJsonObject kept() const; ///< Of an earlier run; empty for none.
    void discard();
    /// "projet.hbx" gives "projet.hbx.saisie".
    static QString fileFor(const QString& project);

private:
    QString m_file;
    std::function<QJsonObject()> m_draft;
    QTimer m_timer;
    bool m_written = false; ///< By this run: what an earlier one left goes by discard() alone.
};

} // namespace editing
