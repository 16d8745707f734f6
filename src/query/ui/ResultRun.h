// Running the statement of a query beside the windows.
#pragma once

#include "platform/ui/TaskRunner.h"
#ifndef Q_MOC_RUN // which reads plain letters only
#include "query/QueryDefinition.h"
#endif
#include "query/Results.h"

#include <QObject>

namespace query {

/// Opens the statement on the runner's thread, hands over its first rows, then finds the others in short slices, between
/// which the project is the windows' for a moment. The user may stop it at any time.
class ResultRun : public QObject {
    Q_OBJECT
public:
    explicit ResultRun(platform::TaskRunner& runner, QObject* parent = nullptr);
    ~ResultRun() override;

    /// Runs a statement; the result shown so far stays until the new one is there. Records of `marked` are selected.
    void start(jet::Database& database, const QString& statement, const QString& text,
               const QList<qint32>& marked = {});
    /// Lets go of the result.
    void clear();
    /// Null when there is none.
    Results* results() const { return m_results.get(); }
    std::shared_ptr<Results> shared() const { return m_results; }
    bool isStarting() const { return m_starting; }   ///< The first row is awaited.
    bool isSearching() const { return m_searching; } ///< Further rows are looked for.
    /// The project is another thread's just now.
    bool isBusy() const { return m_runner.isRunning(); }
    platform::TaskRunner& runner() const { return m_runner; }
    /// Does the work on this thread as soon as the project is its own; before the next slice.
    void whenIdle(std::function<void()> work);

Q_SIGNALS:
    void replaced();                         ///< There is another result, or none.
    void found();                            ///< Further rows; Results::isComplete tells the end.
    void failed(const QString& description); ///< The result is as it was.
    void stopped();                          ///< By the user, before there was a first row.

private:
    void adopt(std::shared_ptr<Results> results, const QList<qint32>& marked);
    void refuse(const jet::Error& error);
    void search();
    void runPending();
    void release(std::shared_ptr<Results> results);

    platform::TaskRunner& m_runner;
    std::shared_ptr<Results> m_results;
    QList<std::function<void()>> m_pending;
    QString m_text;
    int m_generation = 0; ///< Late results of an earlier run are dropped.
    bool m_starting = false;
    bool m_searching = false;
};

} // namespace query
