// Questions asked from any thread, answered on the thread of the windows.
#pragma once

#include "platform/Dialogues.h"

#include <QObject>

namespace platform {

/// Hands each question to `dialogues` on the thread on which this was made and waits for the answer there. That
/// thread must not be waiting for the asking one.
class ThreadedDialogues : public Dialogues {
public:
    explicit ThreadedDialogues(Dialogues& dialogues) : m_dialogues(dialogues) {}

    Answer ask(const Message& message) override;
    std::optional<QString> input(const QString& title, const QString& prompt, const QString& byDefault = {}) override;
    std::optional<QString> password(const QString& title, const QString& prompt) override;
    std::optional<QList<int>> choose(const Choice& choice) override;
    QString openFile(const QString& title, const QString& filter, const QString& folder = {}) override;
    QStringList openFiles(const QString& title, const QString& filter, const QString& folder = {}) override;
    QString saveFile(const QString& title, const QString& filter, const QString& proposal = {}) override;
    QString chooseFolder(const QString& title, const QString& folder = {}) override;

private:
    template <typename Question> auto there(Question question);

    Dialogues& m_dialogues;
    QObject m_home; ///< Lives on the thread of the windows.
};

} // namespace platform
