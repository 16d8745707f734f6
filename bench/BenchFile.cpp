#include "BenchFile.h"

#include "jet/Recordset.h"
#include "jet/Store.h"

namespace bench {

using namespace Qt::StringLiterals;
using enum jet::DataType;

namespace {

constexpr int genera = 1000;
constexpr int places = 2000;

jet::TableDef tableOf(const QString& name, const QList<jet::Field>& fields,
                      const QList<jet::Index>& indexes)
{
    jet::TableDef table;
    table.Name = name;
    table.Fields = {{.Name = u"ID "_s + name, .Type = Long, .AutoIncrement = true}};
    table.Fields += fields;
    table.Indexes = {
        {.Name = u"PrimaryKey"_s, .Fields = {{u"ID "_s + name}}, .Primary = true, .Unique = true}};
    table.Indexes += indexes;
    return table;
}

jet::Index indexOn(const QStringList& columns, bool unique = false)
{
    jet::Index index{.Name = unique ? u"Unique"_s : columns.front(), .Unique = unique};
    for (const QString& column : columns)
        index.Fields.append({column});
    return index;
}

void appendTables(jet::Database& database)
{
    database.AppendTable(
        tableOf(u"Taxons"_s,
                {{.Name = u"Taxon"_s, .Type = Text, .Size = 255, .Required = true},
                 {.Name = u"ID Genre"_s, .Type = Long},
                 {.Name = u"Auteurs"_s, .Type = Text, .Size = 255},
                 {.Name = u"Nom Complet"_s, .Type = Text, .Size = 255}},
                {indexOn({u"Nom Complet"_s, u"Auteurs"_s}, true), indexOn({u"ID Genre"_s})}));
    database.AppendTable(
        tableOf(u"Localités"_s,
                {{.Name = u"Localité"_s, .Type = Text, .Size = 255, .Required = true},
                 {.Name = u"Altitude"_s, .Type = Double}},
                {}));
    database.AppendTable(tableOf(u"Individus"_s,
                                 {{.Name = u"Numéro"_s, .Type = Text, .Size = 50},
                                  {.Name = u"ID Localités"_s, .Type = Long},
                                  {.Name = u"DateRécolte"_s, .Type = Text, .Size = 30},
                                  {.Name = u"Altitude"_s, .Type = Double},
                                  {.Name = u"Habitat"_s, .Type = Memo},
                                  {.Name = u"Locked"_s, .Type = Boolean}},
                                 {indexOn({u"ID Localités"_s}), indexOn({u"Numéro"_s})}));
    for (const QString& name : {u"Déterminations"_s, u"Images"_s, u"Mesures"_s}) {
        database.AppendTable(tableOf(name,
                                     {{.Name = u"ID Individus"_s, .Type = Long, .Required = true},
                                      {.Name = u"ID Taxons"_s, .Type = Long},
                                      {.Name = u"Valeur"_s, .Type = Text, .Size = 50}},
                                     {indexOn({u"ID Individus"_s}), indexOn({u"ID Taxons"_s})}));
        database.AppendRelation({.Name = u"Individus"_s + name,
                                 .Table = u"Individus"_s,
                                 .ForeignTable = name,
                                 .Fields = {{u"ID Individus"_s, u"ID Individus"_s}},
                                 .DeleteCascade = true});
    }
}

/// Adds `count` records; `values` gives those of record number n, in the order of `columns`.
void fill(jet::Database& database, const QString& table, const QStringList& columns, int count,
          const std::function<QVariantList(int)>& values)
{
    const auto rows = database.OpenRecordset(table, jet::RecordsetType::Table);
    for (int number = 1; number <= count; ++number) {
        rows->AddNew();
        const QVariantList given = values(number);
        for (int column = 0; column < columns.size(); ++column)
            rows->SetValue(columns[column], given[column]);
        rows->Update();
    }
}

void fillTables(jet::Database& database)
{
    jet::Operation operation(database, u"Fichier de mesure"_s);
    fill(database, u"Taxons"_s, {u"Taxon"_s, u"ID Genre"_s, u"Auteurs"_s, u"Nom Complet"_s}, taxa,
         [](int n) {
             return QVariantList{taxonName(n).section(u' ', 1), n % genera + 1,
                                 u"Auteur %1"_s.arg(n % 37), taxonName(n)};
         });
    fill(database, u"Localités"_s, {u"Localité"_s, u"Altitude"_s}, places, [](int n) {
        return QVariantList{u"Lieu-dit n° %1"_s.arg(n), n * 1.5};
    });
    fill(database, u"Individus"_s,
         {u"Numéro"_s, u"ID Localités"_s, u"DateRécolte"_s, u"Altitude"_s, u"Habitat"_s,
          u"Locked"_s},
         individuals(), [](int n) {
             return QVariantList{u"NUM-%1"_s.arg(n),
                                 n % places + 1,
                                 u"19%1/05/%2"_s.arg(n % 90 + 10).arg(n % 28 + 1),
                                 n % 3000 + 0.5,
                                 u"Pelouse rocailleuse au bord du chemin %1"_s.arg(n % 501),
                                 n % 2 == 0};
         });
    int step = 0;
    for (const QString& name : {u"Déterminations"_s, u"Images"_s, u"Mesures"_s}) {
        ++step;
        fill(database, name, {u"ID Individus"_s, u"ID Taxons"_s, u"Valeur"_s}, individuals(),
             [step](int n) {
                 return QVariantList{n, int(qint64(n) * 7919 * step % taxa) + 1,
                                     u"valeur %1"_s.arg(n % 97)};
             });
    }
    operation.commit();
}

} // namespace

int individuals()
{
    bool ok = false;
    const int asked = qEnvironmentVariableIntValue("HERBORA_BENCH_INDIVIDUS", &ok);
    return ok && asked > 0 ? asked : 100'000;
}

QString taxonName(int number)
{
    static const QStringList syllables{u"ba"_s, u"ca"_s, u"do"_s, u"é"_s,  u"fa"_s,
                                       u"go"_s, u"li"_s, u"mi"_s, u"no"_s, u"pu"_s};
    const int genus = number % genera;
    QString name = syllables[genus % 10] + syllables[genus / 10 % 10] + syllables[genus / 100];
    name[0] = name[0].toUpper();
    const int species = number / genera;
    return name + u"us "_s + syllables[species % 10] + syllables[species / 10 % 10] + u"lis "_s +
           QString::number(number);
}

File::File()
{
    m_database = jet::Database::Create(m_folder.filePath(u"mesure.hbx"_s),
                                       u";LANGID=0x0409;CP=1252;COUNTRY=0"_s);
    appendTables(*m_database);
    fillTables(*m_database);
    m_database->store().run(u"ANALYZE"_s);
}

sqlite3* File::handle()
{
    return m_database->store().handle();
}

File& file()
{
    static File made;
    return made;
}

} // namespace bench
