// The engine against the same work hand-written in SQLite: the same file and connection, the same
// functions, the same run.
#include "BenchFile.h"

#include "jet/Recordset.h"
#include "jet/text/TextOrder.h"

#include <QCoreApplication>
#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

/// What hand-written code has of a statement.
class Raw {
public:
    explicit Raw(const QString& sql)
    {
        const QByteArray text = sql.toUtf8();
        if (sqlite3_prepare_v2(bench::file().handle(), text.constData(), -1, &m_handle, nullptr) !=
            SQLITE_OK)
            qFatal("%s", sqlite3_errmsg(bench::file().handle()));
    }
    ~Raw() { sqlite3_finalize(m_handle); }
    Raw(const Raw&) = delete;
    Raw& operator=(const Raw&) = delete;

    sqlite3_stmt* operator*() const { return m_handle; }
    bool step() { return sqlite3_step(m_handle) == SQLITE_ROW; }
    void reset() { sqlite3_reset(m_handle); }
    QString text(int column) const
    {
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(m_handle, column));
        return QString::fromUtf8(bytes, sqlite3_column_bytes(m_handle, column));
    }
    void bind(int position, const QString& text)
    {
        const QByteArray bytes = text.toUtf8();
        sqlite3_bind_text(m_handle, position, bytes.constData(), int(bytes.size()),
                          SQLITE_TRANSIENT);
    }
    void bind(int position, const QByteArray& bytes)
    {
        sqlite3_bind_blob(m_handle, position, bytes.constData(), int(bytes.size()),
                          SQLITE_TRANSIENT);
    }

private:
    sqlite3_stmt* m_handle = nullptr;
};

void execute(const char* sql)
{
    if (sqlite3_exec(bench::file().handle(), sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        qFatal("%s: %s", sql, sqlite3_errmsg(bench::file().handle()));
}

/// The rows in the form in which a program would show them.
std::vector<std::vector<QVariant>> rowsByHand(const QString& sql, int count)
{
    Raw statement(sql);
    std::vector<std::vector<QVariant>> rows;
    const int columns = sqlite3_column_count(*statement);
    while (int(rows.size()) < count && statement.step()) {
        std::vector<QVariant> row;
        row.reserve(size_t(columns));
        for (int column = 0; column < columns; ++column) {
            switch (sqlite3_column_type(*statement, column)) {
            case SQLITE_INTEGER:
                row.emplace_back(sqlite3_column_int(*statement, column));
                break;
            case SQLITE_FLOAT:
                row.emplace_back(sqlite3_column_double(*statement, column));
                break;
            case SQLITE_NULL:
                row.emplace_back();
                break;
            default:
                row.emplace_back(statement.text(column));
            }
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

// --- Three joins, first 10,000 rows
// --------------------------------------------------------------------

const QString joinOurs =
    uR"(SELECT DISTINCTROW [Individus].[ID Individus] AS [Individu],[Individus].[ID Individus] AS [ID Individus],
[Individus].[Numéro] AS [Numéro],[Individus].[DateRécolte] AS [Date],[Individus].[Altitude] AS [Altitude],[Taxons12].[Nom Complet] AS [Taxon],
[Taxons12].[Auteurs] AS [Auteurs],[Localités4].[Localité] AS [Localité],[Déterminations].[Valeur] AS [Valeur],[Individus].[Habitat] AS [Habitat]
FROM (((Individus LEFT JOIN [Déterminations] ON Individus.[ID Individus]=[Déterminations].[ID Individus])
LEFT JOIN [Taxons] AS [Taxons12] ON [Déterminations].[ID Taxons]=[Taxons12].[ID Taxons])
LEFT JOIN [Localités] AS [Localités4] ON [Individus].[ID Localités]=[Localités4].[ID Localités])
WHERE [Individus].[Altitude] > 200)"_s;

const QString joinByHand =
    uR"(SELECT i."ID Individus", i."ID Individus", i."Numéro", i."DateRécolte", i."Altitude", t."Nom Complet",
t."Auteurs", l."Localité", d."Valeur", i."Habitat"
FROM "Individus" i LEFT JOIN "Déterminations" d ON i."ID Individus"=d."ID Individus"
LEFT JOIN "Taxons" t ON d."ID Taxons"=t."ID Taxons" LEFT JOIN "Localités" l ON i."ID Localités"=l."ID Localités"
WHERE i."Altitude" > 200)"_s;

constexpr int firstRows = 10'000;

void compareRows(benchmark::State& state, const QString& ours, const QString& byHand)
{
    size_t found = 0;
    size_t foundByHand = 0;
    bench::compare(
        state,
        [&] { found = bench::file().database().OpenRecordset(ours)->GetRows(firstRows).size(); },
        [&] { foundByHand = rowsByHand(byHand, firstRows).size(); });
    if (found != foundByHand || found == 0)
        state.SkipWithError("different rows");
    state.counters["rows"] = double(found);
}

void ThreeJoins(benchmark::State& state)
{
    compareRows(state, joinOurs, joinByHand);
}

void ThreeJoinsSorted(benchmark::State& state)
{
    compareRows(state, joinOurs + u" ORDER BY [Taxons12].[Nom Complet],[Individus].[Numéro] DESC"_s,
                joinByHand + uR"( ORDER BY jet_key(t."Nom Complet"), jet_key(i."Numéro") DESC)"_s);
}

// --- Prefix LIKE on 100,000 names
// -----------------------------------------------------------------------

void PrefixLike(benchmark::State& state)
{
    QStringList prefixes; // Each its own text, as someone types them
    for (int number = 0; number < 100; ++number)
        prefixes += bench::taxonName(number).left(4).toUpper();
    size_t found = 0;
    size_t foundByHand = 0;
    bench::compare(
        state,
        [&] {
            found = 0;
            for (const QString& prefix : prefixes)
                found += bench::file()
                             .database()
                             .OpenRecordset(u"SELECT [ID Taxons],[Nom Complet] From Taxons WHERE "
                                            u"[Nom Complet] LIKE \"%1*\" "
                                            u"ORDER BY [Nom Complet]"_s.arg(prefix))
                             ->GetRows(firstRows)
                             .size();
        },
        [&] {
            foundByHand = 0;
            const QString sql =
                uR"(SELECT "ID Taxons","Nom Complet" FROM "Taxons" WHERE jet_key("Nom Complet")>=x'%1' AND
                jet_key("Nom Complet")<x'%2' AND jet_like("Nom Complet",'%3*') ORDER BY jet_key("Nom Complet"))"_s;
            for (const QString& prefix : prefixes) {
                const QString from = QString::fromLatin1(jet::text::prefixKey(prefix).toHex());
                const QString to = QString::fromLatin1(jet::text::prefixKeyEnd(prefix).toHex());
                foundByHand += rowsByHand(sql.arg(from, to, prefix), firstRows).size();
            }
        });
    if (found != foundByHand || found == 0)
        state.SkipWithError("different rows");
    state.counters["rows"] = double(found);
}

// --- Update over a join
// --------------------------------------------------------------------------------

void UpdateOverJoin(benchmark::State& state)
{
    int changed = 0;
    int changedByHand = 0;
    jet::Database& database = bench::file().database();
    const QString ours =
        uR"(UPDATE Mesures INNER JOIN Taxons ON Mesures.[ID Taxons] = Taxons.[ID Taxons]
SET Mesures.Valeur = Left$(Taxons.[Nom Complet], 20) WHERE Mesures.[ID Mesures] <= 50000)"_s;
    bench::compare(
        state,
        [&] {
            database.BeginOperation(u"mesure"_s);
            changed = database.Execute(ours);
            database.RollbackOperation();
        },
        [&] {
            execute("BEGIN IMMEDIATE");
            execute(
                R"(UPDATE "Mesures" SET "Valeur" = substr(t."Nom Complet", 1, 20) FROM "Taxons" t
                WHERE "Mesures"."ID Taxons" = t."ID Taxons" AND "Mesures"."ID Mesures" <= 50000)");
            changedByHand = sqlite3_changes(bench::file().handle());
            execute("ROLLBACK");
        });
    if (changed != changedByHand || changed == 0)
        state.SkipWithError("different counts");
    state.counters["rows"] = changed;
}

// --- Seek
// ------------------------------------------------------------------------------------------------

void Seeks(benchmark::State& state)
{
    constexpr int seeks = 10'000;
    std::vector<QString> names;
    for (int number = 0; number < seeks; ++number)
        names.push_back(bench::taxonName(number * 7919 % bench::taxa + 1));
    const auto authorsOf = [](int number) {
        return u"Auteur %1"_s.arg((number * 7919 % bench::taxa + 1) % 37);
    };
    qint64 found = 0;
    qint64 foundByHand = 0;
    const auto rows =
        bench::file().database().OpenRecordset(u"Taxons"_s, jet::RecordsetType::Table);
    rows->SetIndex(u"Unique"_s);
    Raw byHand(
        uR"(SELECT "ID Taxons","Nom Complet" FROM "Taxons" WHERE jet_key("Nom Complet")=jet_key(?1) AND
        jet_key("Auteurs")=jet_key(?2))"_s);
    bench::compare(
        state,
        [&] {
            found = 0;
            for (int number = 0; number < seeks; ++number) {
                rows->Seek(u"="_s, {names[size_t(number)], authorsOf(number)});
                if (!rows->NoMatch())
                    found += rows->Value(u"ID Taxons").toInt() +
                             rows->Value(u"Nom Complet").toString().size();
            }
        },
        [&] {
            foundByHand = 0;
            for (int number = 0; number < seeks; ++number) {
                byHand.bind(1, names[size_t(number)]);
                byHand.bind(2, authorsOf(number));
                if (byHand.step())
                    foundByHand += sqlite3_column_int(*byHand, 0) + byHand.text(1).size();
                byHand.reset();
            }
        });
    rows->MoveFirst(); // Lets the found row go
    if (found != foundByHand || found == 0)
        state.SkipWithError("different records");
}

// --- Insert
// -------------------------------------------------------------------------------------------

void Insert(benchmark::State& state)
{
    constexpr int records = 100'000;
    jet::Database& database = bench::file().database();
    const auto number = [](int n) { return u"INS-%1"_s.arg(n); };
    const QString date = u"2006/03/12"_s;
    const QString habitat = u"Pelouse rocailleuse au bord du chemin"_s;
    const auto rows = database.OpenRecordset(u"Individus"_s, jet::RecordsetType::Table);
    Raw byHand(
        uR"(INSERT INTO "Individus" ("Numéro","ID Localités","DateRécolte","Altitude","Habitat","Locked") VALUES (?,?,?,?,?,?))"_s);
    bench::compare(
        state,
        [&] {
            database.BeginOperation(u"mesure"_s);
            for (int n = 0; n < records; ++n) {
                rows->AddNew();
                rows->SetValue(u"Numéro", number(n));
                rows->SetValue(u"ID Localités", n % 1000 + 1);
                rows->SetValue(u"DateRécolte", date);
                rows->SetValue(u"Altitude", n * 0.5);
                rows->SetValue(u"Habitat", habitat);
                rows->SetValue(u"Locked", false);
                rows->Update();
            }
            database.RollbackOperation();
        },
        [&] {
            execute("BEGIN IMMEDIATE");
            for (int n = 0; n < records; ++n) {
                byHand.bind(1, number(n));
                sqlite3_bind_int(*byHand, 2, n % 1000 + 1);
                byHand.bind(3, date);
                sqlite3_bind_double(*byHand, 4, n * 0.5);
                byHand.bind(5, habitat);
                sqlite3_bind_int(*byHand, 6, 0);
                if (sqlite3_step(*byHand) != SQLITE_DONE)
                    qFatal("%s", sqlite3_errmsg(bench::file().handle()));
                byHand.reset();
            }
            execute("ROLLBACK");
        });
    state.counters["rows"] = records;
}

BENCHMARK(ThreeJoins)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);
BENCHMARK(ThreeJoinsSorted)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(PrefixLike)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(UpdateOverJoin)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(Seeks)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);
BENCHMARK(Insert)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    bench::file();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
