#include "platform/ui/TaskRunner.h"

namespace platform {

/// Carries steps to the thread of the windows (a queued signal) and the wish to stop back.
class TaskRunner::Relay : public Progression {
public:
    explicit Relay(TaskRunner& runner) : m_runner(runner) {}
    void step(const QString& text, int percent) override { Q_EMIT m_runner.step(text, percent); }
    bool cancelled() const override { return m_runner.m_cancelled; }

private:
    TaskRunner& m_runner;
};

TaskRunner::TaskRunner(QObject* parent) : QObject(parent) {}

TaskRunner::~TaskRunner()
{
    // What tasks hold on to goes after the thread that may be using it.
    if (m_thread) {
        cancel();
        m_thread->wait();
    }
    m_waiting.clear();
}

bool TaskRunner::isCancellable() const
{
    return isRunning() && bool(m_current.interrupt);
}

void TaskRunner::start(Task task)
{
    m_waiting.push_back(std::move(task));
    if (!isRunning())
        begin();
}

void TaskRunner::begin()
{
    m_current = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_cancelled = false;
    m_failure = nullptr;
    m_thread.reset(QThread::create([this] {
        try {
            Relay relay(*this);
            m_current.work(relay);
        } catch (...) {
            m_failure = std::current_exception();
        }
    }));
    connect(m_thread.get(), &QThread::finished, this, &TaskRunner::conclude);
    Q_EMIT started();
    m_thread->start();
}

void TaskRunner::conclude()
{
    m_thread->wait();
    m_thread.release()->deleteLater(); // we are in one of its signals
    const auto done = std::exchange(m_current.done, {});
    m_current = {};
    if (done)
        done(std::exchange(m_failure, nullptr));
    if (isRunning())
        return; // `done` has started the next one
    if (!m_waiting.empty())
        return begin();
    Q_EMIT finished();
}

void TaskRunner::cancel()
{
    m_cancelled = true;
    if (isRunning() && m_current.interrupt)
        m_current.interrupt();
}

} // namespace platform
