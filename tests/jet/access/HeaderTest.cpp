// What a file says of itself before anything of it is read: kind, password, encoding, damage.
#include "Forge.h"
#include "Samples.h"
#include "jet/access/AccessFile.h"

using namespace Qt::StringLiterals;
using namespace jet::access;

namespace {

class AccessHeader : public testing::Test {
protected:
    QString write(const QByteArray& bytes)
    {
        const QString path = folder.filePath(u"essai.mdb"_s);
        samples::write(path, bytes);
        return path;
    }
    /// The number of the error with which it is refused, 0 when it opens; the text in `said`.
    int refusal(const QByteArray& bytes, const QString& password = {})
    {
        try {
            AccessFile(write(bytes), password);
        } catch (const jet::Error& error) {
            said = error.description();
            return error.number();
        }
        said.clear();
        return 0;
    }
    QTemporaryDir folder;
    QString said;
};

/// All values of all tables.
QString content(const QString& path, const QString& password = {})
{
    AccessFile file(path, password);
    QString text;
    for (const TableEntry& entry : file.tables()) {
        const TableDefinition table = file.definition(entry);
        text += entry.name + u'\n';
        Rows rows(file.pages(), table);
        while (rows.next()) {
            for (int column = 0; column < int(table.columns.size()); ++column)
                text += rows.value(column).value.toString() + u'|';
        }
    }
    return text;
}

} // namespace

TEST_F(AccessHeader, AsksForThePasswordOfTheFile)
{
    for (const QString& sample : {u"test2V2000.mdb"_s, u"testV1997.mdb"_s}) {
        QByteArray bytes = samples::bytes(samples::path(sample));
        forge::setPassword(bytes, u"Forêt-7"_s);
        EXPECT_EQ(refusal(bytes), 3031);
        EXPECT_EQ(refusal(bytes, u"forêt-7"_s), 3031);
        EXPECT_EQ(refusal(bytes, u"Forêt-7"_s), 0) << said.toStdString();
    }
    EXPECT_EQ(refusal(samples::bytes(samples::path(u"test2V2000.mdb"_s)), u"inutile"_s), 0);
}

TEST_F(AccessHeader, ReadsEncodedPages)
{
    for (const QString& sample : {u"ancien-projet.hbx"_s, u"testV1997.mdb"_s}) {
        QByteArray bytes = samples::bytes(samples::path(sample));
        forge::encodePages(bytes, 0x5A17C3E9);
        EXPECT_EQ(content(write(bytes)), content(samples::path(sample)));
    }
}

TEST_F(AccessHeader, RefusesByNameWhatItDoesNotRead)
{
    QByteArray encrypted = samples::bytes(samples::path(u"test2V2010.accdb"_s));
    forge::setHeader(encrypted, header::pageKey, 0x12345678, 4);
    EXPECT_EQ(refusal(encrypted), 3343);
    EXPECT_TRUE(said.contains(u"chiffré par ACE"_s)) << said.toStdString();

    QByteArray ancient = samples::bytes(samples::path(u"testV1997.mdb"_s));
    forge::setHeader(ancient, header::constants, 0xFFFF, 4);
    EXPECT_EQ(refusal(ancient), 3343);
    EXPECT_TRUE(said.contains(u"antérieur à Jet 3"_s)) << said.toStdString();

    EXPECT_EQ(refusal("SQLite format 3"), 3343);
    EXPECT_FALSE(isAccessFile(folder.filePath(u"absent.mdb"_s)));
    EXPECT_FALSE(isAccessFile(folder.path()));
}

TEST_F(AccessHeader, RefusesAFileThatGivesNoListOfTables)
{
    QByteArray bytes = samples::bytes(samples::path(u"test2V2000.mdb"_s));
    EXPECT_EQ(refusal(bytes.left(5000)), 3049);
    // The pages of the list of objects emptied, as after a crash of the program that wrote them.
    for (qsizetype page = 1; (page + 1) * jet4.pageSize <= bytes.size(); ++page) {
        char* start = bytes.data() + page * jet4.pageSize;
        if (start[0] == DataPage && Bytes(start, 64).u32(jet4.dataOwner) == 2)
            std::fill(start + jet4.dataRowCount, start + jet4.dataRowCount + 2, '\0');
    }
    EXPECT_EQ(refusal(bytes), 3049);
    EXPECT_TRUE(said.contains(u"mal fermé"_s)) << said.toStdString();
}

TEST_F(AccessHeader, FindsThePagesOfATableWhoseMapIsLost)
{
    QByteArray bytes = samples::bytes(samples::path(u"ancien-projet.hbx"_s));
    quint32 page = 0;
    {
        AccessFile file(samples::path(u"ancien-projet.hbx"_s));
        for (const TableEntry& entry : file.tables())
            page = entry.name == u"Taxons" ? entry.page : page;
    }
    qToLittleEndian(quint32(0xFFFF00), bytes.data() + page * jet4.pageSize + jet4.ownedMap);
    AccessFile file(write(bytes));
    const TableDefinition table = file.definition({u"Taxons"_s, page});
    Rows rows(file.pages(), table);
    while (rows.next()) {
    }
    EXPECT_TRUE(rows.mapLost());
    EXPECT_EQ(rows.read(), 996);
}

TEST_F(AccessHeader, TellsNullFromEmptyText)
{
    QByteArray bytes = samples::bytes(samples::path(u"ancien-projet.hbx"_s));
    AccessFile source(samples::path(u"ancien-projet.hbx"_s));
    TableDefinition table;
    for (const TableEntry& entry : source.tables()) {
        if (entry.name == u"Propriétés")
            table = source.definition(entry);
    }
    const QVariantList values{77, u""_s, QVariant(), u"œ – \u4E2D"_s, u""_s, QVariant(), u"ab"_s};
    forge::appendRows(bytes, table, 3, [&](int) { return values; });
    AccessFile file(write(bytes));
    const TableDefinition grown = file.definition({u"Propriétés"_s, table.page});
    Rows rows(file.pages(), grown);
    while (rows.next() && rows.read() < 6) {
    }
    for (int column = 0; column < int(values.size()); ++column) {
        EXPECT_EQ(rows.value(column).value, values[column]) << column;
        EXPECT_EQ(rows.value(column).value.isNull(), values[column].isNull()) << column;
    }
    while (rows.next()) {
    }
    EXPECT_EQ(rows.read(), 8);
    EXPECT_EQ(grown.rowCount, 8U);
}
