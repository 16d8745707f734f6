#include "query/ui/ResultRun.h"

#include "data/Cancellable.h"
#include "jet/Cancelled.h"

#include <QPointer>
#include <QTimer>

namespace query {

using namespace Qt::StringLiterals;

namespace {

constexpr int firstMilliseconds = 60; ///< After the first row, before anything is shown.
constexpr int sliceMilliseconds = 80;

} // namespace

ResultRun::ResultRun(platform::TaskRunner& runner, QObject* parent) : QObject(parent), m_runner(runner)
{
    connect(&m_runner, &platform::TaskRunner::finished, this, &ResultRun::runPending);
}

ResultRun::~ResultRun()
{
    release(std::move(m_results));
}

/// Rows belong to a connection: while another thread has it, they go when it is back.
void ResultRun::release(std::shared_ptr<Results> results)
{
    if (results && m_runner.isRunning())
        m_runner.start({[](platform::Progression&) {}, [results = std::move(results)](std::exception_ptr) {}, {}, {}});
}

void ResultRun::clear()
{
    ++m_generation;
    m_starting = false;
    m_searching = false;
    release(std::move(m_results));
    m_results.reset();
    Q_EMIT replaced();
}

void ResultRun::start(jet::Database& database, const QString& statement, const QString& text,
                      const QList<qint32>& marked)
{
    const int generation = ++m_generation;
    m_starting = true;
    m_searching = false;
    m_text = text;
    auto results = std::make_shared<std::shared_ptr<Results>>();
    auto first = std::make_shared<Results::Found>();
    const QPointer<ResultRun> self(this);
    m_runner.start({[=, &database](platform::Progression& progression) {
                        const data::Cancellable running(database, progression);
                        *results = std::make_shared<Results>(database);
                        if ((*results)->open(statement))
                            *first = (*results)->look(firstMilliseconds);
                    },
                    [=](std::exception_ptr) {
                        if (!self || generation != self->m_generation)
                            return;
                        self->m_starting = false;
                        if ((*results)->error())
                            return self->refuse(*(*results)->error());
                        (*results)->take(std::move(*first));
                        self->adopt(std::move(*results), marked);
                    },
                    [] {}, text});
}

void ResultRun::refuse(const jet::Error& error)
{
    if (error.number() == jet::cancelledError)
        Q_EMIT stopped();
    else
        Q_EMIT failed(error.description());
    search();
}

void ResultRun::adopt(std::shared_ptr<Results> results, const QList<qint32>& marked)
{
    m_results = std::move(results);
    m_results->RefreshSelectedItems(marked);
    Q_EMIT replaced();
    search();
}

void ResultRun::search()
{
    m_searching = m_results && !m_results->isComplete();
    if (!m_pending.isEmpty())
        QTimer::singleShot(0, this, &ResultRun::runPending);
    if (!m_searching || !m_pending.isEmpty())
        return;
    const int generation = m_generation;
    auto brought = std::make_shared<Results::Found>();
    const QPointer<ResultRun> self(this);
    m_runner.start({[=, results = m_results, database = m_results->database()](platform::Progression& progression) {
                        const data::Cancellable running(*database, progression);
                        *brought = results->look(sliceMilliseconds);
                    },
                    [=](std::exception_ptr) {
                        if (!self || generation != self->m_generation)
                            return;
                        self->m_results->take(std::move(*brought));
                        Q_EMIT self->found();
                        self->search();
                    },
                    [] {}, m_text});
}

void ResultRun::whenIdle(std::function<void()> work)
{
    if (!isBusy())
        return work();
    m_pending << std::move(work);
}

void ResultRun::runPending()
{
    if (m_pending.isEmpty() || isBusy())
        return;
    const QPointer<ResultRun> self(this);
    const auto works = std::exchange(m_pending, {});
    for (const auto& work : works) {
        if (!self)
            return;
        if (isBusy()) // an earlier one began something
            m_pending << work;
        else
            work();
    }
    if (self && m_searching && !isBusy())
        search();
}

} // namespace query
