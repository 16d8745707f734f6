// From an Access file into a file of the engine: everything is kept, and what cannot be is told.
#include "Forge.h"
#include "Samples.h"
#include "jet/Recordset.h"
#include "jet/access/Transfer.h"

using namespace Qt::StringLiterals;
using namespace jet::access;

namespace {

class AccessTransfer : public testing::Test {
protected:
    /// The sample with rows added to one of its tables.
    QString grown(const QString& sample, const QString& table, int count, const std::function<QVariantList(int)>& row)
    {
        QByteArray bytes = samples::bytes(samples::path(sample));
        AccessFile file(samples::path(sample));
        for (const TableEntry& entry : file.tables()) {
            if (entry.name == table)
                forge::appendRows(bytes, file.definition(entry), count, row);
        }
        const QString path = folder.filePath(u"source.mdb"_s);
        samples::write(path, bytes);
        return path;
    }
    void transferFrom(const QString& path)
    {
        AccessFile file(path);
        database = jet::Database::Create(folder.filePath(u"cible.hbx"_s), u";LANGID=0x0409;CP=1252;COUNTRY=0"_s);
        report = transfer(file, *database, [](const QString&, double) { return true; });
    }
    bool told(const QString& piece) const
    {
        return std::any_of(report.remarks.begin(), report.remarks.end(),
                           [&](const QString& remark) { return remark.contains(piece); });
    }
    QVariant single(const QString& sql) { return database->OpenRecordset(sql)->Value(0); }

    QTemporaryDir folder;
    std::unique_ptr<jet::Database> database;
    TransferReport report;
};

/// A record of `Images`.
QVariantList image(int id, const QVariant& file, int individual)
{
    return {id, file, QVariant(), 0.5, individual, QVariant(), QVariant(), QVariant(), false};
}

} // namespace

TEST_F(AccessTransfer, KeepsRecordsThatBreakTheRulesOfTheirOwnFile)
{
    transferFrom(grown(u"ancien-projet.hbx"_s, u"Images"_s, 2, [](int row) {
        return image(5000 + row, row == 0 ? QVariant() : QVariant(u""_s), row == 0 ? 1 : 999999);
    }));
    EXPECT_EQ(single(u"SELECT Count(*) FROM Images"_s).toInt(), 27);
    EXPECT_EQ(single(u"SELECT Fichier FROM Images WHERE [ID Images] = 5001"_s), u""_s);
    EXPECT_TRUE(single(u"SELECT Fichier FROM Images WHERE [ID Images] = 5000"_s).isNull());
    // One belongs to an individual that is not there: without the relation the rest is still whole.
    EXPECT_TRUE(told(u"Relation « Images » laissée"_s)) << report.remarks.join(u'\n').toStdString();
    EXPECT_EQ(report.relations, (QStringList{u"Déterminations"_s, u"Mesures"_s}));
}

TEST_F(AccessTransfer, TakesNumbersThatAreNotUniqueAsTheyAre)
{
    transferFrom(grown(u"ancien-projet.hbx"_s, u"Images"_s, 2, [](int) { return image(7000, u"a.jpg"_s, 1); }));
    EXPECT_EQ(single(u"SELECT Count(*) FROM Images"_s).toInt(), 27);
    EXPECT_EQ(single(u"SELECT Count(*) FROM Images WHERE [ID Images] = 7000"_s).toInt(), 2);
    EXPECT_TRUE(told(u"ne sont pas uniques"_s));
    EXPECT_TRUE(told(u"index « PrimaryKey » laissé"_s));
}

TEST_F(AccessTransfer, TellsACountThatIsNotTheFiles)
{
    QByteArray bytes = samples::bytes(samples::path(u"ancien-projet.hbx"_s));
    AccessFile file(samples::path(u"ancien-projet.hbx"_s));
    quint32 page = 0;
    for (const TableEntry& entry : file.tables())
        page = entry.name == u"Images" ? entry.page : page;
    qToLittleEndian(quint32(31), bytes.data() + page * jet4.pageSize + jet4.rowCount);
    samples::write(folder.filePath(u"source.mdb"_s), bytes);
    transferFrom(folder.filePath(u"source.mdb"_s));
    EXPECT_EQ(report.remarks, QStringList{u"Table « Images » : 25 enregistrements repris, le fichier en annonce 31"_s});
}

TEST_F(AccessTransfer, ReplacesZeroCharactersWhichNoTextOfTheEngineHolds)
{
    transferFrom(grown(u"ancien-projet.hbx"_s, u"Images"_s, 1, [](int) {
        return image(5000, QString(u"a"_s + QChar(u'\0') + u"b"_s + QChar(u'\0')), 1);
    }));
    EXPECT_EQ(single(u"SELECT Fichier FROM Images WHERE [ID Images] = 5000"_s), u"a b"_s);
    EXPECT_TRUE(told(u"caractères nuls"_s));
}

TEST_F(AccessTransfer, StopsWhenItIsTold)
{
    AccessFile file(samples::path(u"ancien-projet.hbx"_s));
    database = jet::Database::Create(folder.filePath(u"cible.hbx"_s), u";LANGID=0x0409;CP=1252;COUNTRY=0"_s);
    int calls = 0;
    try {
        transfer(file, *database, [&](const QString&, double) { return ++calls < 4; });
        FAIL();
    } catch (const jet::Error& error) {
        EXPECT_EQ(error.number(), 3059);
    }
    EXPECT_EQ(calls, 4);
}
