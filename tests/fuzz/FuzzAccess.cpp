// Reads arbitrary bytes as an Access file: objects, definitions, properties, every value of every row, relations, stored
// queries. Whatever the bytes are, a failure is a jet::Error with a number and a text.
#include "jet/access/AccessFile.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace jet::access;

namespace {

QString workFolder()
{
    static const QTemporaryDir folder(u"/dev/shm/herbora-fuzz-XXXXXX"_s);
    return folder.isValid() ? folder.path() : QDir::tempPath();
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

void readTable(AccessFile& file, const TableEntry& entry)
{
    const TableDefinition table = file.definition(entry);
    AccessFile::tableDef(file.pages(), table, file.propertiesOf(entry.name));
    Rows rows(file.pages(), table);
    while (rows.next()) {
        for (int column = 0; column < int(table.columns.size()); ++column)
            rows.value(column);
    }
}

void readFile(const QString& path)
{
    AccessFile file(path);
    for (const TableEntry& entry : file.tables())
        attempt([&] { readTable(file, entry); });
    attempt([&] { file.relations(); });
    attempt([&] { file.queries(); });
    attempt([&] { file.databaseProperties(); });
}

} // namespace

// The smaller samples go into the first corpus folder, before the fuzzer reads it.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    QLoggingCategory::setFilterRules(u"*=false"_s);
    for (int i = 1; i < *argc; ++i) {
        const QDir corpus(QString::fromLocal8Bit((*argv)[i]));
        if ((*argv)[i][0] == '-' || !corpus.exists())
            continue;
        const QDir samples(u"" HERBORA_SOURCE "/tests/jet/access/samples"_s);
        for (const QString& name : {u"testV1997.mdb"_s, u"delTestV2000.mdb"_s, u"queryTestV2000.mdb"_s})
            QFile::copy(samples.filePath(name), corpus.filePath(name));
        break;
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString path = workFolder() + u"/essai.mdb"_s;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        std::abort();
    file.write(reinterpret_cast<const char*>(data), qint64(size));
    file.close();
    attempt([&] { readFile(path); });
    return 0;
}
