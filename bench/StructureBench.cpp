// The structure of a module of a million records: a field added, made unique, renamed, converted; the module renamed; what
// saving would do, looked at. Next to each, the same change of a like table hand-written in SQLite. Every change is saved
// in earnest, and taken back outside of the time.
#include "app/Session.h"
#include "app/structure/StructureEditing.h"
#include "app/structure/StructureReview.h"
#include "app/structure/StructureSaving.h"
#include "data/FieldType.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <sqlite3.h>

namespace {

using namespace Qt::StringLiterals;

constexpr int thousand = 1000;

class Agreeing : public platform::Dialogues {
public:
    platform::Answer ask(const platform::Message& message) override
    {
        if (message.buttons == platform::BoxButtons::Ok)
            std::fprintf(stderr, "%s\n", qPrintable(message.text));
        return message.buttons == platform::BoxButtons::Ok ? platform::Answer::Ok : platform::Answer::Yes;
    }
    std::optional<QString> input(const QString&, const QString&, const QString& byDefault) override { return byDefault; }
    std::optional<QList<int>> choose(const platform::Choice&) override { return {}; }
    QString openFile(const QString&, const QString&, const QString&) override { return {}; }
    QStringList openFiles(const QString&, const QString&, const QString&) override { return {}; }
    QString saveFile(const QString&, const QString&, const QString&) override { return {}; }
    QString chooseFolder(const QString&, const QString&) override { return {}; }
};

/// Counts the steps that the user sees.
class Counted : public platform::Progression {
public:
    void step(const QString&, int) override { ++steps; }
    int steps = 0;
};

/// A project with a thousand individuals and a million records under them.
struct Project {
    Project() : settings(QString()), session({dialogues, clock, settings, folder.path(), u"1.0"_s})
    {
        platform::NoProgression quiet;
        if (!session.create(folder.filePath(u"projet.hbx"_s), quiet))
            std::exit(1);
        editing = std::make_unique<app::StructureEditing>(session);
        editing->draft().edit(u"module"_s, [&](app::DraftModules& modules) {
            app::DraftModule module;
            module.id = editing->draft().nextId();
            module.record.name = u"Mesures"_s;
            module.record.index = 5;
            const auto add = [&](const QString& name, int type) {
                app::DraftField field;
                field.id = editing->draft().nextId();
                field.record.caption = field.record.column = name;
                field.record.type = type;
                field.record.index = int(module.fields.size());
                module.fields.append(field);
            };
            add(u"Rang"_s, data::Entier);
            add(u"Hauteur"_s, data::Texte);
            add(u"Note"_s, data::Texte);
            modules.append(module);
        });
        save();
        jet::Database& database = session.database();
        jet::Operation operation(database, u"mesure"_s);
        for (int at = 0; at < thousand; ++at)
            database.Execute(u"INSERT INTO Individus (Numéro) VALUES (\"N%1\")"_s.arg(at));
        database.Execute(u"INSERT INTO Mesures ([ID Individus], Rang, Hauteur, [Note], KeyParent) "
                         "SELECT a.[ID Individus], (a.[ID Individus]-1)*1000+b.[ID Individus], "
                         "CStr(b.[ID Individus]) & \",5\", \"relevé \" & b.[ID Individus], "
                         "a.[ID Individus] & \"-Individus\" FROM Individus AS a, Individus AS b"_s);
        operation.commit();
        editing->reload();
    }

    int field(const QString& caption) const { return module()->fieldNamed(caption)->id; }
    const app::DraftModule* module() const
    {
        const app::DraftModule* known = editing->draft().moduleNamed(u"Mesures"_s);
        return known ? known : editing->draft().moduleNamed(u"Relevés"_s);
    }
    void save(Counted* progression = nullptr)
    {
        Counted own;
        if (!app::saveStructure(session, editing->plan(), false, progression ? *progression : own))
            std::exit(1);
        editing->reload();
    }

    QTemporaryDir folder;
    Agreeing dialogues;
    platform::SystemClock clock;
    platform::Settings settings;
    app::Session session;
    std::unique_ptr<app::StructureEditing> editing;
};

Project& project()
{
    static Project one;
    return one;
}

/// The like table in a file of its own.
class Plain {
public:
    Plain()
    {
        sqlite3_open(m_folder.filePath(u"simple.db"_s).toUtf8().constData(), &m_db);
        run("PRAGMA synchronous=EXTRA; PRAGMA locking_mode=EXCLUSIVE; PRAGMA cache_size=-65536; BEGIN");
        run("CREATE TABLE m(id INTEGER PRIMARY KEY, rang INT, hauteur TEXT, note TEXT, individu INT, parent TEXT,"
            " cree TEXT, modifie TEXT, verrou INT)");
        run("WITH n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<1000000) INSERT INTO m(id,rang,hauteur,note,"
            "individu,parent,verrou) SELECT i, i, (i%1000)||',5', 'relevé '||(i%1000), i/1000, (i/1000)||'-Individus', 0 FROM n");
        run("CREATE INDEX mi ON m(individu); CREATE INDEX mp ON m(parent); COMMIT");
    }
    ~Plain() { sqlite3_close(m_db); }
    void run(const char* sql)
    {
        char* message = nullptr;
        if (sqlite3_exec(m_db, sql, nullptr, nullptr, &message) != SQLITE_OK) {
            std::fprintf(stderr, "%s: %s\n", sql, message);
            std::exit(1);
        }
    }

private:
    QTemporaryDir m_folder;
    sqlite3* m_db = nullptr;
};

Plain& plain()
{
    static Plain one;
    return one;
}

double seconds(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// `change` edits the draft, `back` takes it back; both are saved, the first within the time.
void measure(benchmark::State& state, const std::function<void(Project&)>& change, const std::function<void(Project&)>& back,
             const char* byHand, const char* byHandBack)
{
    Project& where = project();
    double ours = 1e9, hand = 1e9;
    Counted progression;
    for (auto _ : state) {
        hand = std::min(hand, seconds([&] { plain().run(byHand); }));
        plain().run(byHandBack);
        change(where);
        const double time = seconds([&] { where.save(&progression); });
        ours = std::min(ours, time);
        state.SetIterationTime(time);
        back(where);
        where.save();
    }
    state.counters["ours_ms"] = ours * 1000;
    state.counters["sqlite_ms"] = hand * 1000;
    state.counters["ratio"] = ours / hand;
    state.counters["steps"] = double(progression.steps) / double(state.iterations());
}

void addField(benchmark::State& state)
{
    measure(
        state,
        [](Project& p) { p.editing->renameField(p.editing->addField(p.module()->id), u"Nouveau"_s); },
        [](Project& p) { p.editing->deleteField(p.field(u"Nouveau"_s)); }, "ALTER TABLE m ADD COLUMN nouveau TEXT",
        "ALTER TABLE m DROP COLUMN nouveau");
}

void makeUnique(benchmark::State& state)
{
    measure(
        state, [](Project& p) { p.editing->setFieldFlag(p.field(u"Rang"_s), data::Unique, true); },
        [](Project& p) { p.editing->setFieldFlag(p.field(u"Rang"_s), data::Unique, false); },
        "CREATE UNIQUE INDEX mu ON m(rang)", "DROP INDEX mu");
}

void renameField(benchmark::State& state)
{
    measure(
        state, [](Project& p) { p.editing->renameField(p.field(u"Note"_s), u"Remarque"_s); },
        [](Project& p) { p.editing->renameField(p.field(u"Remarque"_s), u"Note"_s); },
        "ALTER TABLE m RENAME COLUMN note TO remarque", "ALTER TABLE m RENAME COLUMN remarque TO note");
}

/// The indexes of a table bear its name, so they are made anew.
void renameModule(benchmark::State& state)
{
    measure(
        state, [](Project& p) { p.editing->renameModule(p.module()->id, u"Relevés"_s); },
        [](Project& p) { p.editing->renameModule(p.module()->id, u"Mesures"_s); },
        "BEGIN; ALTER TABLE m RENAME TO m2; DROP INDEX mi; DROP INDEX mp; CREATE INDEX mi ON m2(individu);"
        "CREATE INDEX mp ON m2(parent); COMMIT",
        "ALTER TABLE m2 RENAME TO m");
}

void convertField(benchmark::State& state)
{
    measure(
        state, [](Project& p) { p.editing->setType(p.field(u"Hauteur"_s), data::Réel); },
        [](Project& p) { p.editing->setType(p.field(u"Hauteur"_s), data::Texte); },
        "BEGIN; CREATE TABLE m2(id INTEGER PRIMARY KEY, rang INT, hauteur REAL, note TEXT, individu INT, parent TEXT,"
        " cree TEXT, modifie TEXT, verrou INT);"
        "INSERT INTO m2 SELECT id,rang,CAST(replace(hauteur,',','.') AS REAL),note,individu,parent,cree,modifie,verrou FROM m;"
        "DROP TABLE m; ALTER TABLE m2 RENAME TO m; CREATE INDEX mi ON m(individu); CREATE INDEX mp ON m(parent); COMMIT",
        "SELECT 1");
}

/// Looking at the values of a field that is to be converted.
void reviewConversion(benchmark::State& state)
{
    Project& where = project();
    where.editing->setType(where.field(u"Hauteur"_s), data::Réel);
    platform::NoProgression quiet;
    for (auto _ : state) {
        const app::StructureReview review = app::reviewOf(where.session.database(), where.editing->plan(), quiet);
        benchmark::DoNotOptimize(review.findings.size());
    }
    where.editing->draft().undo();
}

/// Looking for values that are there twice.
void reviewUnique(benchmark::State& state)
{
    Project& where = project();
    where.editing->setFieldFlag(where.field(u"Rang"_s), data::Unique, true);
    platform::NoProgression quiet;
    for (auto _ : state) {
        const app::StructureReview review = app::reviewOf(where.session.database(), where.editing->plan(), quiet);
        benchmark::DoNotOptimize(review.findings.size());
    }
    where.editing->draft().undo();
}

BENCHMARK(addField)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(makeUnique)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(renameField)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(renameModule)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(convertField)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(reviewConversion)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(reviewUnique)->Unit(benchmark::kMillisecond)->Iterations(2);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(u"herbora.*=false"_s);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
