// The names of a whole flora: reading a checklist, the tree, completion, renaming the largest genus.
//
// HERBORA_BENCH_NOMS gives the number of names, by default a million. HERBORA_BENCH_LISTE reads a checklist instead of the
// generated one; it is repeated with other epithets until there are so many names.
#include "BenchFile.h"

#include "data/CoreSchema.h"
#include "editing/ReferenceSearch.h"
#include "jet/Recordset.h"
#include "jet/Store.h"
#include "reference/Cl_Taxon.h"
#include "reference/TaxonImport.h"

#include <QCoreApplication>
#include <QFile>
#include <cstdio>
#include <cstdlib>
#include <sqlite3.h>
#include <sys/resource.h>

namespace {

using namespace Qt::StringLiterals;

constexpr int largestGenus = 6000; // species; the largest of the plants has about half as many
constexpr qint64 pageOfRows = 200; // that a tree reads at once

int wantedNames()
{
    bool ok = false;
    const int asked = qEnvironmentVariableIntValue("HERBORA_BENCH_NOMS", &ok);
    return ok && asked > 0 ? asked : 1'000'000;
}

/// Peak memory of the process, in megabytes.
double peakMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024;
}

QByteArray word(int number)
{
    static const char* const syllables[] = {"ba", "ce", "di", "fo", "gu", "la", "me", "ni", "po", "ru"};
    QByteArray made;
    do {
        made += syllables[number % 10];
        number /= 10;
    } while (number > 0);
    return made;
}

/// One genus of many species, the others of about thirty; every fifth name is infraspecific, every seventh a synonym.
void writeGenerated(QFile& file, int names)
{
    file.write("id\tfamily\tgenus\tspecies\tinfra_rank\tinfra_epithet\tauthors\taccepted_id\n");
    for (int n = 0; n < names; ++n) {
        const int species = n - n % 5;
        const int number = species < 5 * largestGenus / 4 ? -1 : species / 40;
        const QByteArray family = number < 0 ? "Fagaceae" : word(number / 40) + "aceae";
        const QByteArray genus = number < 0 ? "Quercus" : word(number) + "us";
        file.write(QByteArray::number(n) + '\t' + family + '\t' + genus + '\t' + word(n % 5 == 4 ? species + 1 : n) + "ris\t"
                   + (n % 5 == 4 ? "var.\t" + word(n) + "alis" : QByteArray("\t")) + "\tAuteur " + QByteArray::number(n % 37)
                   + '\t' + (n % 7 == 6 ? QByteArray::number(n - 1) : QByteArray()) + '\n');
    }
}

/// The rows of a real one again and again, with a syllable behind the epithets; a genus is the same in all of them.
void writeRepeated(QFile& file, const QString& source, int names)
{
    QFile real(source);
    if (!real.open(QIODevice::ReadOnly))
        std::exit(1);
    file.write(real.readLine());
    const qint64 start = real.pos();
    for (int round = 0, written = 0; written < names; ++round) {
        real.seek(start);
        while (!real.atEnd() && written < names) {
            QByteArrayList cells = real.readLine().chopped(1).split('\t');
            if (round > 0 && cells.value(3).isEmpty())
                continue;
            if (round > 0) {
                cells[0] += '-' + QByteArray::number(round);
                cells[3] += word(round);
                if (!cells[7].isEmpty())
                    cells[7] += '-' + QByteArray::number(round);
            }
            file.write(cells.join('\t') + '\n');
            ++written;
        }
    }
}

std::unique_ptr<jet::Database> emptyProject(const QString& path)
{
    auto database = jet::Database::Create(path, u";LANGID=0x0409;CP=1252;COUNTRY=0"_s);
    data::ensureTaxa(*database);
    return database;
}

class NoDialogues : public platform::Dialogues {
public:
    platform::Answer ask(const platform::Message&) override { return platform::Answer::Yes; }
    std::optional<QString> input(const QString&, const QString&, const QString&) override { return {}; }
    std::optional<QList<int>> choose(const platform::Choice&) override { return {}; }
    QString openFile(const QString&, const QString&, const QString&) override { return {}; }
    QStringList openFiles(const QString&, const QString&, const QString&) override { return {}; }
    QString saveFile(const QString&, const QString&, const QString&) override { return {}; }
    QString chooseFolder(const QString&, const QString&) override { return {}; }
};

/// The flora, imported once; the time and memory of that are told by the first benchmark.
struct Flora {
    Flora()
    {
        QFile file(list());
        if (!file.open(QIODevice::WriteOnly))
            std::exit(1);
        const QString real = qEnvironmentVariable("HERBORA_BENCH_LISTE");
        if (real.isEmpty())
            writeGenerated(file, wantedNames());
        else
            writeRepeated(file, real, wantedNames());
        file.close();
        database = emptyProject(folder.filePath(u"flore.hbx"_s));
        platform::NoProgression progression;
        const auto start = std::chrono::steady_clock::now();
        report = reference::TaxonImport(*database, clock).run(list(), progression);
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        megabytes = peakMemory();
        std::fprintf(stderr, "%s\n", qPrintable(report.text()));
        database->store().run(u"ANALYZE"_s);
        context = {[this] { return ++counter; }, {}, {}};
        taxa = std::make_unique<reference::Cl_Taxon>(
            reference::ReferenceContext{*database, clock, dialogues, context, nullptr});
        const auto row = database->OpenRecordset(
            u"SELECT TOP 1 [ID Genre], Count(*) AS Nombre FROM Taxons WHERE [ID Genre] IS NOT NULL GROUP BY [ID Genre] ORDER BY Count(*) DESC"_s);
        genus = row->Value(0).toInt();
        genusName = taxa->NomTaxon(genus, 1);
        std::fprintf(stderr, "Genre le plus grand : %s, %d noms\n", qPrintable(genusName), row->Value(1).toInt());
    }
    QString list() const { return folder.filePath(u"liste.tsv"_s); }
    sqlite3* handle() { return database->store().handle(); }

    QTemporaryDir folder;
    platform::SystemClock clock;
    NoDialogues dialogues;
    editing::EditingContext context;
    qint32 counter = 0;
    std::unique_ptr<jet::Database> database;
    std::unique_ptr<reference::Cl_Taxon> taxa;
    reference::ImportReport report;
    double seconds = 0, megabytes = 0;
    qint32 genus = 0;
    QString genusName;
};

Flora& flora()
{
    static Flora made;
    return made;
}

int stepAll(sqlite3* db, const QString& sql, int most = std::numeric_limits<int>::max())
{
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &statement, nullptr) != SQLITE_OK) {
        std::fprintf(stderr, "%s\n", sqlite3_errmsg(db));
        std::exit(1);
    }
    int rows = 0;
    while (rows < most && sqlite3_step(statement) == SQLITE_ROW) {
        for (int i = 0; i < sqlite3_column_count(statement); ++i)
            benchmark::DoNotOptimize(sqlite3_column_bytes(statement, i));
        ++rows;
    }
    sqlite3_finalize(statement);
    return rows;
}

/// The same rows into an empty project by one prepared statement.
double importByHand(Flora& f)
{
    const auto target = emptyProject(f.folder.filePath(u"main.hbx"_s));
    sqlite3* db = target->store().handle();
    const QString columns = u"\"Taxon\",\"ID Famille\",\"ID Genre\",\"ID Espèce\",\"ID Infra\",\"ID Valid\",\"Auteurs\",\"Nom Complet\",\"DateCreate\",\"DateModify\""_s;
    sqlite3_stmt *read = nullptr, *write = nullptr;
    sqlite3_prepare_v2(f.handle(), (u"SELECT "_s + columns + u" FROM \"Taxons\""_s).toUtf8().constData(), -1, &read, nullptr);
    sqlite3_prepare_v2(db, (u"INSERT INTO \"Taxons\" ("_s + columns + u") VALUES (?,?,?,?,?,?,?,?,?,?)"_s).toUtf8().constData(), -1,
                       &write, nullptr);
    const auto start = std::chrono::steady_clock::now();
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    while (sqlite3_step(read) == SQLITE_ROW) {
        for (int i = 0; i < 10; ++i)
            sqlite3_bind_value(write, i + 1, sqlite3_column_value(read, i));
        if (sqlite3_step(write) != SQLITE_DONE) {
            std::fprintf(stderr, "%s\n", sqlite3_errmsg(db));
            std::exit(1);
        }
        sqlite3_reset(write);
    }
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    sqlite3_finalize(read);
    sqlite3_finalize(write);
    return seconds;
}

void importChecklist(benchmark::State& state)
{
    Flora& f = flora();
    const double byHand = importByHand(f);
    for (auto _ : state)
        state.SetIterationTime(f.seconds);
    state.counters["ours_ms"] = f.seconds * 1000;
    state.counters["sqlite_ms"] = byHand * 1000;
    state.counters["ratio"] = f.seconds / byHand;
    state.counters["noms"] = double(f.report.total());
    state.counters["memoire_Mo"] = f.megabytes;
}
BENCHMARK(importChecklist)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

/// The first page of the children of a node, as a tree reads them, and whether something is under each that is seen.
void unfold(Flora& f, int rank, qint32 id)
{
    const auto rows = f.taxa->RecordSetTaxons(rank, id);
    const auto page = rows->GetRows(pageOfRows);
    for (size_t i = 0; i < std::min<size_t>(40, page.size()); ++i)
        benchmark::DoNotOptimize(
            f.database->OpenRecordset(f.taxa->SQLChildren(rank + 1, page[i][0].toInt()), jet::RecordsetType::Snapshot)->EOF_());
}

void openTree(benchmark::State& state)
{
    Flora& f = flora();
    bench::compare(state, [&] { unfold(f, 0, 0); }, [&] {
        stepAll(f.handle(), u"SELECT \"ID Taxons\",\"Taxon\",\"ID Valid\" FROM \"Taxons\" WHERE \"ID Taxons\"=\"ID Famille\" ORDER BY jet_key(\"Taxon\")"_s,
                int(pageOfRows));
    });
}
BENCHMARK(openTree)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

void unfoldLargestGenus(benchmark::State& state)
{
    Flora& f = flora();
    bench::compare(state, [&] { unfold(f, 2, f.genus); }, [&] {
        stepAll(f.handle(), u"SELECT \"ID Taxons\",\"Taxon\",\"ID Valid\" FROM \"Taxons\" WHERE \"ID Taxons\"=\"ID Espèce\" AND \"ID Genre\"=%1 ORDER BY jet_key(\"Taxon\")"_s.arg(f.genus),
                int(pageOfRows));
    });
}
BENCHMARK(unfoldLargestGenus)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

void complete(benchmark::State& state, int letters)
{
    Flora& f = flora();
    const editing::ReferenceSearch search(*f.database);
    const QString typed = letters == 0 ? f.genusName + u" r"_s : f.genusName.left(letters);
    bench::compare(state, [&] { benchmark::DoNotOptimize(search.matches(15, typed)); }, [&] {
        stepAll(f.handle(), u"SELECT \"ID Taxons\",\"Nom Complet\",\"Auteurs\" FROM \"Taxons\" WHERE jet_key(\"Nom Complet\")>=jet_key('%1') ORDER BY jet_key(\"Nom Complet\")"_s.arg(typed),
                50);
    });
}
BENCHMARK_CAPTURE(complete, genre, 4)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK_CAPTURE(complete, espece, 0)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

void renameLargestGenus(benchmark::State& state)
{
    Flora& f = flora();
    int round = 0;
    const auto name = [&] { return f.genusName + (++round % 2 == 1 ? u"um"_s : QString()); };
    bench::compare(state, [&] {
        editing::Cl_Editions form(f.context);
        f.taxa->FillTabEdit(form, f.genus, f.taxa->IDparent(f.genus));
        form.Item(u"Nom Complet"_s)->setValue(name());
        f.taxa->setIDctaxon(f.genus);
        if (!f.taxa->Save(form))
            state.SkipWithError("the genus was not saved");
    }, [&] {
        const QString genus = QString::number(f.genus);
        stepAll(f.handle(), u"BEGIN"_s);
        stepAll(f.handle(), u"UPDATE \"Taxons\" SET \"Taxon\"='Essai',\"Nom Complet\"='Essai' WHERE \"ID Taxons\"=%1"_s.arg(genus));
        stepAll(f.handle(), u"UPDATE \"Taxons\" SET \"Nom Complet\"='Essai ' || \"Taxon\" WHERE \"ID Genre\"=%1 AND \"ID Taxons\"=\"ID Espèce\""_s.arg(genus));
        stepAll(f.handle(), u"UPDATE \"Taxons\" SET \"Nom Complet\"=(SELECT e.\"Nom Complet\" FROM \"Taxons\" e WHERE e.\"ID Taxons\"=\"Taxons\".\"ID Espèce\") || ' ' || \"Taxon\" WHERE \"ID Genre\"=%1 AND \"ID Taxons\"=\"ID Infra\""_s.arg(genus));
        stepAll(f.handle(), u"COMMIT"_s);
    });
}
BENCHMARK(renameLargestGenus)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(4);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
