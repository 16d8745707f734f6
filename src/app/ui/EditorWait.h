// Long work that was begun in a form, with its progress above it.
#pragma once

#include "platform/Dialogues.h"
#include "platform/ui/TaskRunner.h"

namespace app {

/// Does the work beside the windows and comes back when it is done; meanwhile nothing else can be done, and after a
/// moment its progress is shown with a button that stops it. What it throws is thrown here. Must not be called while
/// the runner is at work.
void runBeside(platform::TaskRunner& runner, const QString& title,
               const std::function<void(platform::Progression&)>& work);

/// Comes back once nothing runs; what is typed or clicked meanwhile comes afterwards.
void waitUntilIdle(platform::TaskRunner& runner);

/// Asks as another one does, and gives the answer once the database is the windows' again: while a question was open,
/// another task may have begun.
class IdleDialogues : public platform::Dialogues {
public:
    IdleDialogues(platform::Dialogues& next, platform::TaskRunner& runner) : m_next(next), m_runner(runner) {}

    platform::Answer ask(const platform::Message& message) override;
    std::optional<QString> input(const QString& title, const QString& prompt, const QString& byDefault) override;
    std::optional<QList<int>> choose(const platform::Choice& choice) override;
    QString openFile(const QString& title, const QString& filter, const QString& folder) override;
    QStringList openFiles(const QString& title, const QString& filter, const QString& folder) override;
    QString saveFile(const QString& title, const QString& filter, const QString& proposal) override;
    QString chooseFolder(const QString& title, const QString& folder) override;

private:
    template<typename Result> Result idle(Result answer)
    {
        waitUntilIdle(m_runner);
        return answer;
    }

    platform::Dialogues& m_next;
    platform::TaskRunner& m_runner;
};

} // namespace app
