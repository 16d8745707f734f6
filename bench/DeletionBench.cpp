// Individuals deleted with their records in three modules, from projects of two sizes: the time must grow with what
// is deleted, not with the project. Every deletion is taken back, outside of the time.
#include "app/Demo.h"
#include "app/Session.h"
#include "data/RecordRules.h"
#include "jet/Recordset.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace {

using namespace Qt::StringLiterals;

/// Says yes, and Ok to the report.
class Agreeing : public platform::Dialogues {
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

struct Project {
    explicit Project(int individuals) : settings(QString()), session({dialogues, clock, settings, folder.path(), u"1.0"_s})
    {
        app::DemoOptions options;
        options.individus = individuals;
        if (!app::buildDemo(session, folder.filePath(u"projet.hbx"_s), progression, options))
            std::exit(1);
    }

    QTemporaryDir folder;
    Agreeing dialogues;
    platform::SystemClock clock;
    platform::Settings settings;
    platform::NoProgression progression;
    app::Session session;
};

Project& project(int individuals)
{
    static std::map<int, std::unique_ptr<Project>> projects;
    std::unique_ptr<Project>& one = projects[individuals];
    if (!one)
        one = std::make_unique<Project>(individuals);
    return *one;
}

/// `count` identifiers of a module's records from the middle of the table on.
QList<qint32> someIds(jet::Database& database, const QString& module, qint64 count)
{
    QList<qint32> ids;
    const auto rows = database.OpenRecordset(u"SELECT [ID %1] FROM [%1] ORDER BY [ID %1]"_s.arg(module));
    rows->MoveLast();
    rows->SetAbsolutePosition(rows->RecordCount() / 2);
    for (qint64 i = 0; i < count && !rows->EOF_(); ++i, rows->MoveNext())
        ids << rows->Value(0).toInt();
    return ids;
}

/// The operation in which the deletion runs is taken back.
void deletion(benchmark::State& state, const QString& module)
{
    Project& where = project(int(state.range(0)));
    jet::Database& database = where.session.database();
    data::RecordRules rules(database, where.session.dictionary(), where.clock, where.dialogues);
    const QList<qint32> ids = someIds(database, module, state.range(1));
    QString report;
    for (auto _ : state) {
        jet::Operation operation(database, u"mesure"_s);
        report = rules.deleteRecords(module, ids);
        state.PauseTiming();
        if (report.isEmpty())
            state.SkipWithError("nothing was deleted");
        database.RollbackOperation();
        database.BeginOperation(u"mesure"_s);
        state.ResumeTiming();
    }
    const QString total = report.section(u'\n', -1).section(u' ', 0, 0);
    state.counters["deleted"] = total.toDouble();
}

void individuals(benchmark::State& state) { deletion(state, u"Individus"_s); }
void determinations(benchmark::State& state) { deletion(state, u"Déterminations"_s); }

const std::vector<std::vector<int64_t>> sizes{{10'000, 100'000}, {1, 10, 100, 1'000}};

BENCHMARK(individuals)->ArgsProduct(sizes)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(determinations)->ArgsProduct(sizes)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(u"herbora.*=false"_s);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
