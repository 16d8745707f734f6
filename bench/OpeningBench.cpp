// The opening sequence on a large project, next to the least that SQLite needs for the same knowledge: the file opened the
// same way, its schema, its dictionary and its stored objects read.
#include "BenchFile.h"

#include "app/Demo.h"
#include "app/ModuleTree.h"
#include "app/Session.h"

#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>
#include <sqlite3.h>

namespace {

using namespace Qt::StringLiterals;

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

struct Project {
    Project() : settings(QString()), session({dialogues, clock, settings, folder.path(), u"1.0"_s})
    {
        app::DemoOptions options;
        options.individus = bench::individuals();
        app::buildDemo(session, path(), progression, options);
        session.close();
    }
    QString path() const { return folder.filePath(u"projet.hbx"_s); }

    QTemporaryDir folder;
    NoDialogues dialogues;
    platform::SystemClock clock;
    platform::Settings settings;
    platform::NoProgression progression;
    app::Session session;
};

Project& project()
{
    static Project only;
    return only;
}

void readAll(sqlite3* db, const char* sql)
{
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db, sql, -1, &statement, nullptr);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        for (int i = 0; i < sqlite3_column_count(statement); ++i)
            benchmark::DoNotOptimize(sqlite3_column_bytes(statement, i));
    }
    sqlite3_finalize(statement);
}

void openByHand(const QString& path)
{
    sqlite3* db = nullptr;
    sqlite3_open_v2(path.toUtf8().constData(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    sqlite3_exec(db, "PRAGMA locking_mode=EXCLUSIVE; PRAGMA foreign_keys=ON; PRAGMA synchronous=EXTRA; BEGIN EXCLUSIVE; COMMIT",
                 nullptr, nullptr, nullptr);
    readAll(db, "SELECT * FROM sqlite_schema");
    readAll(db, "SELECT * FROM MSysColumns");
    readAll(db, "SELECT * FROM MSysIndexes");
    readAll(db, "SELECT * FROM PGTableDefs ORDER BY Type, NomModule, \"Index\"");
    readAll(db, "SELECT * FROM \"Propriétés\"");
    sqlite3_close(db);
}

void openingSequence(benchmark::State& state)
{
    Project& p = project();
    bench::compare(
        state,
        [&] {
            if (!p.session.open(p.path(), p.progression))
                state.SkipWithError("the project does not open");
            benchmark::DoNotOptimize(app::buildModuleTree(p.session));
            p.session.close();
        },
        [&] { openByHand(p.path()); });
}
BENCHMARK(openingSequence)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
