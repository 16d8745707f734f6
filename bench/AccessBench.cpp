// An Access file of 500,000 rows read and made into a project, next to mdb-export writing the same tables as text.
// HERBORA_BENCH_LIGNES sets another number of rows.
#include "Forge.h"

#include "app/AccessImport.h"
#include "app/Session.h"
#include "jet/access/AccessFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>

namespace {

using namespace Qt::StringLiterals;
using namespace jet::access;

/// A question ends the measurement: nobody is there to answer.
class NoDialogues : public platform::Dialogues {
public:
    platform::Answer ask(const platform::Message& message) override { stop(message.text); }
    std::optional<QString> input(const QString&, const QString& prompt, const QString&) override { stop(prompt); }
    std::optional<QList<int>> choose(const platform::Choice& choice) override { stop(choice.prompt); }
    QString openFile(const QString& title, const QString&, const QString&) override { stop(title); }
    QStringList openFiles(const QString& title, const QString&, const QString&) override { stop(title); }
    QString saveFile(const QString& title, const QString&, const QString&) override { stop(title); }
    QString chooseFolder(const QString& title, const QString&) override { stop(title); }

private:
    [[noreturn]] void stop(const QString& text)
    {
        std::fprintf(stderr, "%s\n", qPrintable(text));
        std::exit(1);
    }
};

int rowCount()
{
    const int wanted = qEnvironmentVariableIntValue("HERBORA_BENCH_LIGNES");
    return wanted > 0 ? wanted : 500000;
}

/// Measures of the individuals of the sample, as many as wanted.
QVariantList measure(int row)
{
    const QString stamp = u"2026/03/07 14:05:09"_s;
    return {1000 + row, u"Caractère %1"_s.arg(row), 0.25 * row, u"cm"_s, row % 3 == 0, 1 + row % 504, QVariant(),
            stamp, stamp, false};
}

struct LargeFile {
    LargeFile()
    {
        QFile sample(u"" HERBORA_ACCESS_SAMPLE ""_s);
        if (!sample.open(QIODevice::ReadOnly))
            std::exit(1);
        QByteArray bytes = sample.readAll();
        AccessFile source(sample.fileName());
        for (const TableEntry& entry : source.tables()) {
            if (entry.name == u"Mesures")
                forge::appendRows(bytes, source.definition(entry), rowCount(), measure);
        }
        QFile file(path());
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            std::exit(1);
    }
    QString path() const { return folder.filePath(u"grand.hbx"_s); }

    QTemporaryDir folder;
};

LargeFile& large()
{
    static LargeFile only;
    return only;
}

/// The most memory that the process used, in megabytes, since `forgetPeak`.
double peak()
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1024;
    }
    return 0;
}

void forgetPeak()
{
    QFile file(u"/proc/self/clear_refs"_s);
    if (file.open(QIODevice::WriteOnly))
        file.write("5");
}

void describe(benchmark::State& state)
{
    state.counters["Mo"] = double(QFile(large().path()).size()) / (1 << 20);
    state.counters["Mo_memoire"] = peak();
    state.SetItemsProcessed(state.iterations() * rowCount());
}

/// Every value of every table, kept nowhere.
void readAll(benchmark::State& state)
{
    const QString path = large().path();
    forgetPeak();
    for (auto _ : state) {
        AccessFile file(path);
        for (const TableEntry& entry : file.tables()) {
            const TableDefinition table = file.definition(entry);
            Rows rows(file.pages(), table);
            while (rows.next()) {
                for (int column = 0; column < int(table.columns.size()); ++column)
                    benchmark::DoNotOptimize(rows.value(column));
            }
        }
    }
    describe(state);
}

/// The conversion and the first opening, as the user waits for them.
void convert(benchmark::State& state)
{
    const QString path = large().path();
    forgetPeak();
    for (auto _ : state) {
        QTemporaryDir folder;
        NoDialogues dialogues;
        platform::SystemClock clock;
        platform::Settings settings{QString()};
        platform::NoProgression progression;
        app::Session session({dialogues, clock, settings, folder.path(), u"1.0"_s});
        if (!app::convertAndOpen(session, {path, folder.filePath(u"projet.hbx"_s)}, progression))
            state.SkipWithError("not converted");
        state.counters["Mo_projet"] = double(QFile(session.path()).size()) / (1 << 20);
    }
    describe(state);
}

void otherReader(benchmark::State& state)
{
    const QString path = large().path();
    AccessFile file(path);
    QStringList tables;
    for (const TableEntry& entry : file.tables())
        tables << entry.name;
    for (auto _ : state) {
        for (const QString& table : tables) {
            QProcess process;
            process.setStandardOutputFile(QProcess::nullDevice());
            process.start(u"mdb-export"_s, {path, table});
            if (!process.waitForFinished(-1) || process.exitCode() != 0)
                state.SkipWithError("mdb-export is not installed");
        }
    }
    describe(state);
}

BENCHMARK(readAll)->Unit(benchmark::kMillisecond)->Name("Access/lire");
BENCHMARK(otherReader)->Unit(benchmark::kMillisecond)->UseRealTime()->Name("Access/mdb-export");
BENCHMARK(convert)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1)->Name("Access/convertir");

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
