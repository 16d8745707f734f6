// Queries, their pages, export, statistics and replacements on an invented project of HERBORA_BENCH_INDIVIDUS individuals
// (100,000 where it is not set) with three records each, next to the same work hand-written in SQLite.
#include "BenchFile.h"

#include "app/Demo.h"
#include "app/Session.h"
#include "data/Cancellable.h"
#include "jet/Store.h"
#include "query/BatchReplace.h"
#include "query/Query.h"
#include "query/Results.h"

#include <QCoreApplication>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <sqlite3.h>
#include <thread>

namespace {

using namespace Qt::StringLiterals;
using query::Results;

constexpr int screenful = 40; ///< Rows that a window shows.
constexpr int replaced = 100'000;

class Silent : public platform::Dialogues {
public:
    platform::Answer ask(const platform::Message& message) override
    {
        return message.buttons == platform::BoxButtons::Ok ? platform::Answer::Ok : platform::Answer::Yes;
    }
    std::optional<QString> input(const QString&, const QString&, const QString&) override { return {}; }
    std::optional<QList<int>> choose(const platform::Choice&) override { return {}; }
    QString openFile(const QString&, const QString&, const QString&) override { return {}; }
    QStringList openFiles(const QString&, const QString&, const QString&) override { return {}; }
    QString saveFile(const QString&, const QString&, const QString&) override { return {}; }
    QString chooseFolder(const QString&, const QString&) override { return {}; }
};

/// Stops when it is told to.
class Stoppable : public platform::Progression {
public:
    void step(const QString&, int) override {}
    bool cancelled() const override { return stop; }
    std::atomic<bool> stop = false;
};

struct Project {
    Project() : settings(QString()), session({dialogues, clock, settings, folder.path(), u"1.0"_s})
    {
        app::DemoOptions options;
        options.individus = bench::individuals();
        if (!app::buildDemo(session, folder.filePath(u"projet.hbx"_s), silent, options))
            std::exit(1);
        context.nextId = [this] { return ++counter; };
        structure = std::make_unique<query::Structure>(db(), context);
        structure->LoadStructure(session.modules());
        made = std::make_unique<query::Query>(
            *structure, query::QueryWorld{db(), clock, dialogues, session.properties(), [](qint32) { return QString(); }});
    }
    jet::Database& db() const { return session.database(); }
    QString path(const QString& champs, const QString& module = {}) const
    {
        return structure->PathFromPermanent(module, QString(champs).replace(u'/', query::pathSeparator));
    }

    QTemporaryDir folder;
    Silent dialogues;
    platform::SystemClock clock;
    platform::Settings settings;
    platform::NoProgression silent;
    app::Session session;
    editing::EditingContext context;
    qint32 counter = 0;
    std::unique_ptr<query::Structure> structure;
    std::unique_ptr<query::Query> made;
};

Project& project()
{
    static Project one;
    return one;
}

/// Runs a statement of the store to its end, or for so many rows; gives how many there were.
template <typename Row> qint64 byHand(const QString& sql, qint64 most, Row row)
{
    sqlite3_stmt* statement = nullptr;
    const QByteArray text = sql.toUtf8();
    sqlite3* handle = project().db().store().handle();
    if (sqlite3_prepare_v2(handle, text.constData(), -1, &statement, nullptr) != SQLITE_OK)
        qFatal("%s", sqlite3_errmsg(handle));
    qint64 rows = 0;
    while (rows < most && sqlite3_step(statement) == SQLITE_ROW) {
        row(statement);
        ++rows;
    }
    sqlite3_finalize(statement);
    return rows;
}

QString cellByHand(sqlite3_stmt* statement, int column)
{
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return QString::fromUtf8(bytes, sqlite3_column_bytes(statement, column));
}

QStringList rowByHand(sqlite3_stmt* statement)
{
    QStringList cells;
    for (int column = 0; column < sqlite3_column_count(statement); ++column)
        cells << cellByHand(statement, column);
    return cells;
}

/// Number, altitude and place of the individuals, reserve and names of their determinations; above an altitude, by name.
QString twoModules(bool sorted)
{
    Project& p = project();
    query::Query& query = *p.made;
    query.clear();
    for (const QString& champs : {u"Numéro"_s, u"Altitude"_s, u"ID Localités/Nom Entier"_s})
        query.addColumn(p.path(champs));
    query.addColumn(p.path(u"Réserve"_s, u"Déterminations"_s));
    query.addColumn(p.path(u"ID Taxons/Nom Complet"_s, u"Déterminations"_s));
    query.command(u"add"_s, -1, p.path(u"Altitude"_s));
    query.editCriteria([&](query::Criteria& criteria) {
        criteria.set(0, {.path = p.path(u"Altitude"_s), .op = u">"_s, .value = u"200"_s, .permanent = {}});
    });
    if (sorted)
        query.setOrder(4, query::orderUp);
    return query.SQLStatement();
}

const QString twoByHand =
    uR"(SELECT i."ID Individus", i."ID Individus", i."Numéro", i."Altitude", l."Nom Entier", d."Réserve", t."Nom Complet"
FROM "Individus" i LEFT JOIN "Localités" l ON i."ID Localités"=l."ID Localités"
LEFT JOIN "Déterminations" d ON i."ID Individus"=d."ID Individus"
LEFT JOIN "Taxons" t ON d."ID Taxons"=t."ID Taxons" WHERE i."Altitude" > 200)"_s;
const QString byName = uR"( ORDER BY jet_key(t."Nom Complet"))"_s;

void FirstPage(benchmark::State& state)
{
    const QString statement = twoModules(true);
    QStringList last;
    QStringList lastByHand;
    bench::compare(
        state,
        [&] {
            Results results(project().db());
            results.open(statement);
            while (!results.isComplete() && results.CountRow() < screenful)
                results.take(results.look(1));
            for (int row = 0; row < screenful; ++row)
                last = results.rowTexts(row);
        },
        [&] { byHand(twoByHand + byName, screenful, [&](sqlite3_stmt* row) { lastByHand = rowByHand(row); }); });
    if (last.value(6) != lastByHand.value(6))
        state.SkipWithError("different rows");
}

void FirstRowUnsorted(benchmark::State& state)
{
    const QString statement = twoModules(false);
    bench::compare(
        state,
        [&] {
            Results results(project().db());
            results.open(statement);
            benchmark::DoNotOptimize(results.rowTexts(0));
        },
        [&] { byHand(twoByHand, 1, [](sqlite3_stmt* row) { benchmark::DoNotOptimize(rowByHand(row)); }); });
}

void CountRows(benchmark::State& state)
{
    const QString statement = twoModules(false);
    qint64 found = 0;
    qint64 counted = 0;
    bench::compare(
        state,
        [&] {
            Results results(project().db());
            results.Refresh(statement);
            found = results.CountRow();
        },
        [&] { counted = byHand(twoByHand, std::numeric_limits<qint64>::max(), [](sqlite3_stmt*) {}); });
    if (found != counted)
        state.SkipWithError("different counts");
    state.counters["rows"] = double(found);
}

/// Page 50, or the last where there are fewer.
void Page50(benchmark::State& state)
{
    Results results(project().db());
    results.Refresh(twoModules(false));
    const qint64 first = std::min<qint64>(49, results.pageCount() - 1) * Results::pageSize;
    QStringList last;
    QStringList lastByHand;
    bench::compare(
        state,
        [&] {
            results.command(u"first"_s);
            results.forgetValues();
            results.showPageOf(first);
            for (int row = 0; row < screenful; ++row)
                last = results.rowTexts(results.firstRow() + row);
        },
        [&] {
            byHand(twoByHand + u" LIMIT "_s + QString::number(screenful) + u" OFFSET "_s + QString::number(first),
                   screenful, [&](sqlite3_stmt* row) { lastByHand = rowByHand(row); });
        });
    if (last.first() != lastByHand.value(0))
        state.SkipWithError("different rows");
}

/// Resident megabytes, now.
double resident()
{
    QFile file(u"/proc/self/statm"_s);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toDouble() * 4096 / 1e6;
}

/// Every individual with its place and names, as a file.
void ExportCsv(benchmark::State& state)
{
    Project& p = project();
    Results results(p.db());
    results.Refresh(twoModules(false));
    const QString ours = p.folder.filePath(u"nous.csv"_s);
    const QString theirs = p.folder.filePath(u"main.csv"_s);
    double grown = 0;
    bench::compare(
        state,
        [&] {
            const double before = resident();
            results.ExportCSV(p.dialogues, ours);
            grown = resident() - before;
        },
        [&] {
            QFile file(theirs);
            file.open(QIODevice::WriteOnly);
            byHand(twoByHand, std::numeric_limits<qint64>::max(), [&](sqlite3_stmt* row) {
                QByteArray line;
                for (int column = 0; column < sqlite3_column_count(row); ++column) {
                    line += column > 0 ? ";\"" : "\"";
                    line.append(reinterpret_cast<const char*>(sqlite3_column_text(row, column)),
                                sqlite3_column_bytes(row, column));
                    line += '"';
                }
                file.write(line + "\r\n");
            });
        });
    state.counters["rows"] = double(results.CountRow());
    state.counters["megabytes"] = double(QFile(ours).size()) / 1e6;
    state.counters["grown_mb"] = grown;
}

void Statistics(benchmark::State& state)
{
    Project& p = project();
    query::Query& query = *p.made;
    query.clear();
    for (const QString& champs :
         {u"Numéro"_s, u"Altitude"_s, u"DateRécolte"_s, u"ID Localités"_s, u"ID Collecteurs"_s})
        query.addColumn(p.path(champs));
    const query::StatisticsPlan plan = query.statisticsPlan();
    QString report;
    bench::compare(
        state, [&] { report = query::countStatistics(p.db(), plan, p.silent); },
        [&] {
            for (const QString& column : {uR"(jet_key("Numéro"))"_s, u"\"Altitude\""_s, uR"(jet_key("DateRécolte"))"_s,
                                          u"\"ID Localités\""_s, u"\"ID Collecteurs\""_s})
                byHand(u"SELECT min(\"ID Individus\"), count(*) FROM \"Individus\" GROUP BY "_s + column
                           + u" ORDER BY count(*) DESC"_s,
                       std::numeric_limits<qint64>::max(), [](sqlite3_stmt*) {});
            byHand(u"SELECT count(*) FROM \"Individus\""_s, 1, [](sqlite3_stmt*) {});
        });
    if (report.count(u'\n') != 6)
        state.SkipWithError("no report");
}

/// How long work goes on after the user wanted to stop; the wish comes at different points of it.
void CancelAfter(benchmark::State& state, const std::function<void(Stoppable&)>& work)
{
    using Clock = std::chrono::steady_clock;
    double worst = 0;
    int milliseconds = 5;
    int stopped = 0;
    for (auto _ : state) {
        Stoppable progress;
        Clock::time_point asked;
        std::thread user([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
            asked = Clock::now();
            progress.stop = true;
        });
        {
            const data::Cancellable running(project().db(), progress);
            work(progress);
        }
        const Clock::time_point ended = Clock::now();
        user.join();
        const double late = std::chrono::duration<double>(ended - asked).count();
        state.SetIterationTime(std::max(late, 0.0));
        worst = std::max(worst, late);
        stopped += late > 0 ? 1 : 0;
        milliseconds = milliseconds * 5 / 3 + 1;
    }
    state.counters["worst_ms"] = worst * 1000;
    state.counters["stopped"] = stopped;
}

void CancelSort(benchmark::State& state)
{
    const QString statement = twoModules(true);
    CancelAfter(state, [&](Stoppable&) { Results(project().db()).open(statement); });
}

void CancelCount(benchmark::State& state)
{
    const QString statement = twoModules(false);
    CancelAfter(state, [&](Stoppable&) { Results(project().db()).Refresh(statement); });
}

void CancelExport(benchmark::State& state)
{
    Project& p = project();
    Results results(p.db());
    results.Refresh(twoModules(false));
    CancelAfter(state, [&](Stoppable& progress) {
        results.ExportCSV(p.dialogues, p.folder.filePath(u"arret.csv"_s), false, &progress);
    });
}

void CancelStatistics(benchmark::State& state)
{
    Project& p = project();
    twoModules(false);
    const query::StatisticsPlan plan = p.made->statisticsPlan();
    CancelAfter(state, [&](Stoppable& progress) {
        try {
            query::countStatistics(p.db(), plan, progress);
        } catch (const jet::Error& error) {
            if (error.number() != 3059)
                throw;
        }
    });
}

/// A number in a hundred thousand records that were selected one by one; taken back, outside of the time.
void Replace100000(benchmark::State& state)
{
    Project& p = project();
    QList<qint32> ids;
    for (qint32 id = 1; id <= std::min(replaced, bench::individuals()); ++id)
        ids << id;
    const data::ModuleRecord* module = p.session.dictionary().module(data::moduleIndividus);
    query::BatchReplace batch(p.db(), p.clock, p.dialogues, p.context, *module, ids);
    batch.rows = {{.champ = u"Altitude"_s, .value = u"10~+"_s}};
    const query::ReplacePlan plan = batch.plan();
    const qint64 announced = replaceCounts(p.db(), plan).changed;
    using Clock = std::chrono::steady_clock;
    double bestOurs = std::numeric_limits<double>::max();
    double bestByHand = bestOurs;
    for (auto _ : state) {
        {
            const jet::Operation undone(p.db(), u"Mesure"_s);
            const auto start = Clock::now();
            byHand(u"UPDATE \"Individus\" SET \"Altitude\"=\"Altitude\"+10, \"DateModify\"='2026/01/01 00:00:00' WHERE "
                   "\"ID Individus\" IN ("_s
                       + QString(plan.update).section(u" IN ("_s, 1).section(u')', 0, 0) + u") AND \"Locked\"=0"_s,
                   std::numeric_limits<qint64>::max(), [](sqlite3_stmt*) {});
            bestByHand = std::min(bestByHand, std::chrono::duration<double>(Clock::now() - start).count());
        }
        const jet::Operation undone(p.db(), u"Mesure"_s);
        const auto start = Clock::now();
        query::runReplacement(p.db(), plan, announced);
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        state.SetIterationTime(seconds);
        bestOurs = std::min(bestOurs, seconds);
    }
    state.counters["records"] = double(announced);
    state.counters["ours_ms"] = bestOurs * 1000;
    state.counters["sqlite_ms"] = bestByHand * 1000;
    state.counters["ratio"] = bestOurs / bestByHand;
}

BENCHMARK(FirstRowUnsorted)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(FirstPage)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(CountRows)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(Page50)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(ExportCsv)->UseManualTime()->Iterations(2)->Unit(benchmark::kMillisecond);
BENCHMARK(Statistics)->UseManualTime()->Iterations(2)->Unit(benchmark::kMillisecond);
BENCHMARK(CancelSort)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK(CancelCount)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK(CancelExport)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK(CancelStatistics)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK(Replace100000)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(u"herbora.*=false"_s);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
