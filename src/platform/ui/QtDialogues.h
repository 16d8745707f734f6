// The questions of the program as windows.
#pragma once

#include "platform/Dialogues.h"

#include <QPointer>
#include <QWidget>

namespace platform {

/// Modal boxes over the active window. To be called from the thread of the windows.
///
/// File questions begin in the folder of the last answer of this run when the caller names none.
class QtDialogues : public Dialogues {
public:
    /// The window over which boxes open when none is active.
    void setParent(QWidget* window) { m_parent = window; }

    Answer ask(const Message& message) override;
    std::optional<QString> input(const QString& title, const QString& prompt, const QString& byDefault = {}) override;
    std::optional<QString> password(const QString& title, const QString& prompt) override;
    std::optional<QList<int>> choose(const Choice& choice) override;
    QString openFile(const QString& title, const QString& filter, const QString& folder = {}) override;
    QStringList openFiles(const QString& title, const QString& filter, const QString& folder = {}) override;
    QString saveFile(const QString& title, const QString& filter, const QString& proposal = {}) override;
    QString chooseFolder(const QString& title, const QString& folder = {}) override;

private:
    QWidget* parent() const;
    QString startFolder(const QString& wanted) const;

    QPointer<QWidget> m_parent;
    mutable QPointer<QWidget> m_recent; ///< Over which the last box opened.
    QString m_lastFolder;
};

} // namespace platform
