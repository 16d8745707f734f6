// Long work beside the windows: one task at a time on a thread of its own.
#pragma once

#include "platform/Progression.h"

#include <QObject>
#include <QThread>
#include <atomic>
#include <deque>
#include <exception>
#include <functional>
#include <memory>

namespace platform {

/// Whoever hands work over leaves what the work uses alone until `done` was called: the engine's connection
/// belongs to one thread at a time, and isRunning() tells the windows that it is not theirs.
///
/// A task given while another runs waits for its turn.
class TaskRunner : public QObject {
    Q_OBJECT
public:
    struct Task {
        std::function<void(Progression&)> work; ///< On the other thread.
        /// On the thread of the runner, after the work; with what the work threw, or nullptr.
        std::function<void(std::exception_ptr)> done;
        /// Stops the work from outside (thread-safe), where asking Progression::cancelled is not enough; empty when
        /// the work cannot be stopped at all.
        std::function<void()> interrupt;
        QString text = {}; ///< What is shown when the work tells no steps of its own.
    };

    explicit TaskRunner(QObject* parent = nullptr);
    ~TaskRunner() override; ///< Stops what runs and waits for it.

    void start(Task task);
    bool isRunning() const { return m_thread != nullptr; }
    bool isCancellable() const;
    QString text() const { return m_current.text; }
    void cancel();

Q_SIGNALS:
    void started();
    void step(const QString& text, int percent);
    void finished(); ///< After `done`; nothing waits for its turn.

private:
    class Relay;
    void begin();
    void conclude();

    Task m_current;
    std::deque<Task> m_waiting;
    std::unique_ptr<QThread> m_thread;
    std::exception_ptr m_failure;
    std::atomic<bool> m_cancelled = false;
};

} // namespace platform
