// A table of 100,000 rows, 500 of them refused for six reasons, imported into the individuals; beside it the same cells put by
// hand into a plain table.
#include "BenchFile.h"

#include "app/Session.h"
#include "app/import/CsvImport.h"
#include "jet/Recordset.h"

#include <QCoreApplication>
#include <QFile>
#include <cstdio>
#include <sqlite3.h>
#include <sys/resource.h>

namespace {

using namespace Qt::StringLiterals;

constexpr int rows = 100'000;
constexpr int badRows = 500;

/// Peak memory of the process, in megabytes.
double peakMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024;
}

void writeTable(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        std::abort();
    file.write("Numéro;Collecteur;Date de récolte;Localité;Longitude;Latitude;Altitude;Habitat\r\n");
    for (int i = 0; i < rows; ++i) {
        QList<QByteArray> cells{"IMP" + QByteArray::number(i), "Personne " + QByteArray::number(i % 20),
                                "2021/05/" + QByteArray::number(10 + i % 20), "Vallée " + QByteArray::number(i % 200), "6,5", "45,25",
                                QByteArray::number(i % 3000), "Forêt claire"};
        const int bad = i % (rows / badRows) == 7 ? i / (rows / badRows) % 6 : -1;
        switch (bad) {
        case 0: cells[2] = "pas une date"; break;
        case 1: cells[4] = "250,5"; break;
        case 2: cells[6] = "haut"; break;
        case 3: cells[1] = "Inconnu"; break;
        case 4: cells[0] = QByteArray(300, 'N'); break;
        case 5: cells << "de trop"; break;
        default: break;
        }
        file.write(cells.join(';') + "\r\n");
    }
}

/// A project with the names of the table, and the table.
class Place {
public:
    Place() : m_settings(m_folder.filePath(u"Herbora.ini"_s)), m_session({m_dialogues, m_clock, m_settings, m_folder.path(), u"1.0"_s})
    {
        platform::NoProgression silent;
        if (!m_session.create(m_folder.filePath(u"projet.hbx"_s), silent))
            std::abort();
        jet::Operation operation(m_session.database(), u"Noms"_s);
        for (int i = 0; i < 20; ++i)
            m_session.database().Execute(u"INSERT INTO Collecteurs ([Collecteur],[Initiales]) VALUES (\"Personne %1\",\"P\")"_s.arg(i));
        for (int i = 0; i < 200; ++i)
            m_session.database().Execute(u"INSERT INTO Localités ([Localité],[LongDD],[LatDD],[ID Type]) VALUES (\"Vallée %1\",6,45,0)"_s.arg(i));
        operation.commit();
        writeTable(table());
    }
    app::Session& session() { return m_session; }
    QString table() const { return m_folder.filePath(u"recoltes.csv"_s); }
    QString plainFile() const { return m_folder.filePath(u"nu.db"_s); }

private:
    QTemporaryDir m_folder;
    app::QuietDialogues m_dialogues;
    platform::SystemClock m_clock;
    platform::Settings m_settings;
    app::Session m_session;
};

void importTable(Place& place)
{
    app::Session& session = place.session();
    session.database().Execute(u"DELETE * FROM Individus"_s);
    app::ImportPlan plan;
    plan.file = place.table();
    plan.format = app::detectCsvFormat(plan.file);
    plan.target = app::importTarget(u"Individus"_s, session.modules(), session.database().schema());
    plan.mapping = app::mapColumns(app::CsvReader(plan.file, plan.format).header(), plan.target, {}, false);
    platform::NoProgression silent;
    const app::ImportReport report = app::CsvImport(session).run(plan, silent, false);
    if (report.added != rows - badRows || report.refused != badRows || report.problems.size() != 6) {
        std::fputs(qPrintable(report.text()), stderr);
        std::abort();
    }
    QFile::remove(report.refusedFile);
}

void importByHand(Place& place)
{
    QFile::remove(place.plainFile());
    sqlite3* db = nullptr;
    sqlite3_open(place.plainFile().toUtf8().constData(), &db);
    sqlite3_exec(db, "CREATE TABLE t(id INTEGER PRIMARY KEY,a,b,c,d,e REAL,f REAL,g REAL,h); CREATE INDEX i1 ON t(b); CREATE INDEX i2 ON t(d); BEGIN",
                 nullptr, nullptr, nullptr);
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(db, "INSERT INTO t(a,b,c,d,e,f,g,h) VALUES(?,?,?,?,?,?,?,?)", -1, &insert, nullptr);
    QFile file(place.table());
    if (!file.open(QIODevice::ReadOnly))
        std::abort();
    file.readLine();
    while (!file.atEnd()) {
        const QList<QByteArray> cells = file.readLine().trimmed().split(';');
        for (int i = 0; i < 8; ++i)
            sqlite3_bind_text(insert, i + 1, cells[i].constData(), int(cells[i].size()), SQLITE_TRANSIENT);
        sqlite3_step(insert);
        sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(db);
}

void ImportTable(benchmark::State& state)
{
    static Place place;
    bench::compare(state, [] { importTable(place); }, [] { importByHand(place); });
    state.counters["peak_MB"] = peakMemory();
    state.counters["rows"] = rows;
}
BENCHMARK(ImportTable)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
