// Opens arbitrary bytes as a project file, lists and reads its tables, checks and closes it. Whatever the
// bytes are, a failure is a jet::Error with a number and a text.
#include "data/CoreModules.h"
#include "data/CoreSchema.h"
#include "data/ModuleTable.h"
#include "jet/Database.h"
#include "jet/Recordset.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr int readRows = 5;

/// A sound project asks nothing.
class NobodyThere : public platform::Dialogues {
public:
    platform::Answer ask(const platform::Message&) override { std::abort(); }
    std::optional<QString> input(const QString&, const QString&, const QString&) override { std::abort(); }
    std::optional<QList<int>> choose(const platform::Choice&) override { std::abort(); }
    QString openFile(const QString&, const QString&, const QString&) override { std::abort(); }
    QStringList openFiles(const QString&, const QString&, const QString&) override { std::abort(); }
    QString saveFile(const QString&, const QString&, const QString&) override { std::abort(); }
    QString chooseFolder(const QString&, const QString&) override { std::abort(); }
};

/// The first folder of the arguments that is there: the corpus that grows.
QString corpusFolder(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        if (!argument.startsWith(u'-') && QDir(argument).exists())
            return argument;
    }
    return {};
}

jet::TableDef smallTable(const QString& name)
{
    jet::TableDef table;
    table.Name = name;
    jet::Field id;
    id.Name = u"ID "_s + name;
    id.Type = jet::DataType::Long;
    id.AutoIncrement = true;
    jet::Field text;
    text.Name = u"Texte"_s;
    text.Type = jet::DataType::Text;
    jet::Field picture;
    picture.Name = u"Image"_s;
    picture.Type = jet::DataType::LongBinary;
    table.Fields = {id, text, picture};
    jet::Index key;
    key.Name = u"PrimaryKey"_s;
    key.Fields = {{id.Name}};
    key.Primary = true;
    jet::Index order;
    order.Name = u"Texte"_s;
    order.Fields = {{text.Name}};
    table.Indexes = {key, order};
    return table;
}

void writeSmall(const QString& path)
{
    const auto database = jet::Database::Create(path, data::localeGeneral);
    database->AppendTable(smallTable(u"Petite"_s));
    for (const QString& text : {u"un"_s, u"deux"_s, u"trois"_s})
        database->Execute(u"INSERT INTO Petite (Texte) VALUES (\""_s + text + u"\")"_s);
    database->CreateQueryDef(u"Requête"_s, u"SELECT Texte FROM Petite WHERE Texte LIKE 'd*'"_s);
    database->Close();
}

void writeProject(const QString& path)
{
    const auto database = jet::Database::Create(path, data::localeGeneral);
    data::ensureDictionary(*database);
    data::ensureProperties(*database);
    data::ensureCollectors(*database);
    data::ensureLocalities(*database);
    data::ensureTaxa(*database);
    NobodyThere nobody;
    for (const data::ModuleRecord& module : {data::coreIndividus(), data::coreDéterminations(), data::coreImages()}) {
        if (!data::buildModuleTable(*database, module, nobody))
            std::abort();
    }
    database->Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
    database->Execute(u"INSERT INTO Images ([ID Individus],[Fichier]) VALUES (1,\"a.jpg\")"_s);
    database->Close();
}

void readTable(jet::Database& database, const QString& name)
{
    const auto rows = database.OpenRecordset(name, jet::RecordsetType::Table);
    for (int row = 0; row < readRows && !rows->EOF_(); ++row) {
        for (int column = 0; column < rows->FieldCount(); ++column)
            rows->Value(column);
        rows->MoveNext();
    }
    rows->Close();
}

/// Runs it; a failure must be a jet::Error that says something.
void attempt(const std::function<void()>& work)
{
    try {
        work();
    } catch (const jet::Error& error) {
        if (error.number() <= 0 || error.description().isEmpty())
            std::abort();
    }
}

void browse(jet::Database& database)
{
    const QList<jet::TableDef> tables = database.schema().tables();
    for (const jet::TableDef& table : tables)
        attempt([&] { readTable(database, table.Name); });
    for (const jet::QueryDef& query : QList<jet::QueryDef>(database.schema().queries()))
        attempt([&] { database.OpenRecordset(query.Name); });
    attempt([&] { database.Check(false); });
    database.Close();
}

QString workFolder()
{
    static const QTemporaryDir folder(u"/dev/shm/herbora-fuzz-XXXXXX"_s);
    return folder.isValid() ? folder.path() : QDir::tempPath();
}

} // namespace

// Two small sound files go into the first corpus folder, before the fuzzer reads it.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    QLoggingCategory::setFilterRules(u"*=false"_s);
    const QString folder = corpusFolder(*argc, *argv);
    if (folder.isEmpty())
        return 0;
    const QString small = folder + u"/petit.hbx"_s;
    const QString project = folder + u"/projet.hbx"_s;
    if (!QFile::exists(small))
        writeSmall(small);
    if (!QFile::exists(project))
        writeProject(project);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString path = workFolder() + u"/essai.hbx"_s;
    QFile::remove(path);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        std::abort();
    file.write(reinterpret_cast<const char*>(data), qint64(size));
    file.close();
    attempt([&] { browse(*jet::Database::Open(path)); });
    return 0;
}
