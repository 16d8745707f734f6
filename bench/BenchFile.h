// A generated file for the benchmarks, and the clock that compares two ways of doing one work.
#pragma once

#include "jet/Database.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <chrono>
#include <limits>

struct sqlite3;

namespace bench {

/// Individuals in the file: HERBORA_BENCH_INDIVIDUS, by default 100,000; each has three
/// sub-records. There are 100,000 taxa whatever the number.
int individuals();
inline constexpr int taxa = 100'000;

/// The name of a taxon, "Bacadus fagolis 12".
QString taxonName(int number);

/// The file, generated at the first call and removed with the program.
class File {
public:
    File();
    jet::Database& database() { return *m_database; }
    sqlite3* handle();

private:
    QTemporaryDir m_folder;
    std::unique_ptr<jet::Database> m_database;
};

File& file();

/// Runs both works in turn, ours being the time of the benchmark. The counters give the best time
/// of each in milliseconds and their ratio: the best one is what the machine's other work spoils
/// least.
template<typename Ours, typename ByHand>
void compare(benchmark::State& state, Ours&& ours, ByHand&& byHand)
{
    using Clock = std::chrono::steady_clock;
    const auto timed = [](auto&& work) {
        const auto start = Clock::now();
        work();
        return std::chrono::duration<double>(Clock::now() - start).count();
    };
    double bestOurs = std::numeric_limits<double>::max();
    double bestByHand = bestOurs;
    for (auto _ : state) {
        bestByHand = std::min(bestByHand, timed(byHand));
        const double seconds = timed(ours);
        bestOurs = std::min(bestOurs, seconds);
        state.SetIterationTime(seconds);
    }
    state.counters["ours_ms"] = bestOurs * 1000;
    state.counters["sqlite_ms"] = bestByHand * 1000;
    state.counters["ratio"] = bestOurs / bestByHand;
}

} // namespace bench
