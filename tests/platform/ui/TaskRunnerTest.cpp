#include "platform/ui/TaskRunner.h"

#include "platform/ui/ThreadedDialogues.h"
#include "support/ScriptedDialogues.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>

namespace {

using namespace Qt::StringLiterals;
using platform::TaskRunner;

constexpr int patience = 10000;

bool idle(TaskRunner& runner)
{
    return QTest::qWaitFor([&] { return !runner.isRunning(); }, patience);
}

TEST(TaskRunner, WorksBesideAndConcludesHere)
{
    TaskRunner runner;
    QSignalSpy steps(&runner, &TaskRunner::step);
    QThread* worked = nullptr;
    QThread* concluded = nullptr;
    runner.start({[&](platform::Progression& progression) {
                      worked = QThread::currentThread();
                      progression.step(u"au travail"_s, 30);
                  },
                  [&](std::exception_ptr failure) {
                      EXPECT_FALSE(failure);
                      EXPECT_FALSE(runner.isRunning());
                      concluded = QThread::currentThread();
                  },
                  {}});
    EXPECT_TRUE(runner.isRunning());
    ASSERT_TRUE(idle(runner));
    EXPECT_NE(worked, QThread::currentThread());
    EXPECT_EQ(concluded, QThread::currentThread());
    ASSERT_EQ(steps.size(), 1);
    EXPECT_EQ(steps.first(), (QVariantList{u"au travail"_s, 30}));
}

TEST(TaskRunner, TakesTasksInTheirOrderOneAtATime)
{
    TaskRunner runner;
    QSignalSpy finished(&runner, &TaskRunner::finished);
    QStringList events;
    for (const QString& name : {u"a"_s, u"b"_s, u"c"_s})
        runner.start({[&events, name](platform::Progression&) { events << name; },
                      [&events, name](std::exception_ptr) { events << name + u"!"_s; }, {}});
    ASSERT_TRUE(idle(runner));
    EXPECT_EQ(events, (QStringList{u"a"_s, u"a!"_s, u"b"_s, u"b!"_s, u"c"_s, u"c!"_s}));
    EXPECT_EQ(finished.size(), 1);
}

TEST(TaskRunner, HandsFailuresOver)
{
    TaskRunner runner;
    QString said;
    runner.start({[](platform::Progression&) { throw std::runtime_error("raté"); },
                  [&](std::exception_ptr failure) {
                      try {
                          std::rethrow_exception(failure);
                      } catch (const std::runtime_error& error) {
                          said = QString::fromUtf8(error.what());
                      }
                  },
                  {}});
    ASSERT_TRUE(idle(runner));
    EXPECT_EQ(said, u"raté"_s);
}

TEST(TaskRunner, CancellingIsSeenByTheWorkAndInterruptsIt)
{
    TaskRunner runner;
    QSemaphore interrupted;
    bool cancelled = false;
    runner.start({[&](platform::Progression& progression) {
                      interrupted.acquire();
                      cancelled = progression.cancelled();
                  },
                  {},
                  [&] { interrupted.release(); }});
    EXPECT_TRUE(runner.isCancellable());
    runner.cancel();
    ASSERT_TRUE(idle(runner));
    EXPECT_TRUE(cancelled);
}

TEST(ThreadedDialogues, QuestionsOfTheWorkAreAskedHere)
{
    class Watched : public support::ScriptedDialogues {
    public:
        QThread* thread = nullptr;
        platform::Answer ask(const platform::Message& message) override
        {
            thread = QThread::currentThread();
            return ScriptedDialogues::ask(message);
        }
    } scripted;
    scripted.expectConfirm(u"Continuer ?"_s, u"Titre"_s, true, platform::BoxIcon::Warning);
    scripted.expectInput(u"Titre"_s, u"Nom :"_s, u"a"_s, u"b"_s);
    platform::ThreadedDialogues dialogues(scripted);
    TaskRunner runner;
    bool answer = false;
    std::optional<QString> typed;
    runner.start({[&](platform::Progression&) {
                      answer = dialogues.confirm(u"Continuer ?"_s, u"Titre"_s, platform::BoxIcon::Warning);
                      typed = dialogues.input(u"Titre"_s, u"Nom :"_s, u"a"_s);
                  },
                  {},
                  {}});
    ASSERT_TRUE(idle(runner));
    EXPECT_TRUE(answer);
    EXPECT_EQ(typed, u"b"_s);
    EXPECT_EQ(scripted.thread, QThread::currentThread());
}

} // namespace
