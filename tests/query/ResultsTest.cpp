#include "QueryFixture.h"
#include "query/Results.h"

#include <QFile>

using namespace Qt::StringLiterals;
using query::Results;
using query::SortState;

namespace {

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("absent");
}

/// `count` rows, numbers from 1, in a table of their own.
void fillMany(jet::Database& db, int count)
{
    db.AppendTable({.Name = u"Grand"_s,
                    .Fields = {{.Name = u"ID Grand"_s, .Type = jet::DataType::Long, .AutoIncrement = true},
                               {.Name = u"ID Individus"_s, .Type = jet::DataType::Long}},
                    .Indexes = {{.Name = u"PrimaryKey"_s, .Fields = {{u"ID Grand"_s}}, .Primary = true}}});
    jet::Operation operation(db, u"Remplir"_s);
    db.Execute(u"INSERT INTO Grand ([ID Individus]) VALUES (1)"_s);
    for (int rows = 1; rows < count;) {
        const int more = std::min(rows, count - rows);
        db.Execute(u"INSERT INTO Grand ([ID Individus]) SELECT [ID Individus]+%1 FROM Grand WHERE [ID Grand]<=%2"_s
                       .arg(QString::number(rows), QString::number(more)));
        rows += more;
    }
    operation.commit();
}

const QString many = u"SELECT DISTINCTROW [Grand].[ID Individus] AS [Individu],[Grand].[ID Grand] AS [ID Grand]\r\n"
                     "FROM [Grand]\r\nORDER BY [Grand].[ID Grand]"_s;

} // namespace

TEST(StatementParts, ColumnsAndTheirOrderAreReadFromTheStatement)
{
    const auto columns = query::SQLHeader(
        u"SELECT DISTINCTROW [Individus].[ID Individus] AS [Individu],IIf([a].[b] Is Null,'x, FROM y','z') AS [Rang],\r\n"
        "ISNULL([T1].[ID Valid]) AS [Nom, AS donné],[I].[Alt] AS Altitude\r\nFROM ([Individus] LEFT JOIN [I] ON a=b)\r\n"
        "WHERE [x] LIKE \" ORDER BY \"\r\nORDER BY [I].[Alt] DESC,[Individus].[ID Individus]"_s);
    ASSERT_EQ(columns.size(), 4);
    EXPECT_EQ(columns[0], (query::StatementColumn{u"[Individus].[ID Individus]"_s, u"Individu"_s, {}, SortState::Ascending}));
    EXPECT_EQ(columns[1], (query::StatementColumn{u"IIf([a].[b] Is Null,'x, FROM y','z')"_s, u"Rang"_s, {}, SortState::None}));
    EXPECT_EQ(columns[2].alias, u"Nom, AS donné"_s);
    EXPECT_EQ(columns[2].format, u"True/False"_s);
    EXPECT_EQ(columns[3], (query::StatementColumn{u"[I].[Alt]"_s, u"Altitude"_s, {}, SortState::Descending}));
}

TEST(StatementParts, TheOrderIsRewrittenAndNothingElse)
{
    const QString rows = u"SELECT [a]\r\nFROM [t]\r\nWHERE [b]=\" ORDER BY c\""_s;
    EXPECT_EQ(query::orderedBy(rows, u"[a]"_s, false), rows + u"\r\nORDER BY [a]"_s);
    EXPECT_EQ(query::orderedBy(rows + u"\r\nORDER BY [a],[b]"_s, u"[c]"_s, true), rows + u"\r\nORDER BY [c] DESC"_s);
}

TEST_F(QueryTest, TenThousandRowsAreOnePageAndOneMoreIsTwo)
{
    fillMany(project.db(), 10001);
    Results results(project.db());
    ASSERT_TRUE(results.Refresh(many));
    EXPECT_EQ(results.pageCount(), 2);
    EXPECT_EQ(results.textCount(), u"10001 Ligne(s)"_s);
    EXPECT_EQ(results.rowsOnPage(), 10000);
    EXPECT_FALSE(results.enabled(u"prev"_s));
    results.command(u"last"_s);
    EXPECT_EQ(results.rowsOnPage(), 1);
    EXPECT_EQ(results.TextMatrix(results.firstRow(), 1), u"10001"_s);
    EXPECT_FALSE(results.enabled(u"next"_s));
    project.db().Execute(u"DELETE * FROM Grand WHERE [ID Grand]=10001"_s);
    ASSERT_TRUE(results.Refresh());
    EXPECT_EQ(results.pageCount(), 1);
    EXPECT_EQ(results.rowsOnPage(), 10000);
    EXPECT_FALSE(results.enabled(u"last"_s));
}

TEST_F(QueryTest, TheSelectionIsKeptByIdentifierAcrossPagesAndOrders)
{
    fillMany(project.db(), 10002);
    Results results(project.db());
    ASSERT_TRUE(results.Refresh(many));
    results.select(10001, true);
    results.select(0, true);
    EXPECT_EQ(results.SelectedItems(), u"1,10002"_s);
    EXPECT_EQ(results.textSelection(), u"Sel.  2"_s);
    ASSERT_TRUE(results.ColSort(1, true));
    EXPECT_EQ(results.Sorted(1), SortState::Descending);
    EXPECT_EQ(results.SelectedItems(), u"10002,1"_s);
    EXPECT_EQ(results.SelectedIndividus(), u"10002,1"_s);
    EXPECT_TRUE(results.isSelected(0));
    results.SelectInverse();
    EXPECT_EQ(results.CountSel(), 10000);
    results.SelectAll();
    EXPECT_EQ(results.CountSel(), 10002);
}

TEST_F(QueryTest, RecordsOfAModuleAreSelectedWithTheirIndividuals)
{
    Results results(project.db());
    ASSERT_TRUE(results.Refresh(u"SELECT DISTINCTROW [Images].[ID Individus] AS [Individu],[Images].[ID Images] AS [ID Images] "
                                "FROM [Images] ORDER BY [Images].[ID Images] DESC"_s));
    EXPECT_EQ(results.NomModule(), u"Images"_s);
    results.SelectAll();
    EXPECT_EQ(results.SelectedItems(), u"3,2,1"_s);
    EXPECT_EQ(results.SelectedIndividus(), u"2,1,1"_s);
}

TEST_F(QueryTest, RowsAreFoundBitByBitAndRecordsThatGoLeaveTheOthers)
{
    fillMany(project.db(), 300);
    Results results(project.db());
    ASSERT_TRUE(results.open(many));
    EXPECT_EQ(results.CountRow(), 1) << "one row is enough to show something";
    EXPECT_FALSE(results.isComplete());
    EXPECT_EQ(results.TextMatrix(0, 1), u"1"_s);
    EXPECT_EQ(results.textCount(), u"1+ Ligne(s)"_s);
    results.RefreshSelectedItems({1, 250}); // the second is not found yet
    Results::Found found = results.look(100000);
    EXPECT_EQ(results.CountRow(), 1) << "nothing is shown before it is taken";
    results.take(std::move(found));
    EXPECT_EQ(results.textCount(), u"300 Ligne(s)"_s);
    EXPECT_EQ(results.SelectedItems(), u"1,250"_s);
    project.db().Execute(u"DELETE * FROM Grand WHERE [ID Grand] IN (2,250)"_s);
    results.forgetValues();
    EXPECT_EQ(results.rowTexts(1), (QStringList{QString(), QString()}));
    EXPECT_EQ(results.rowTexts(2), (QStringList{u"3"_s, u"3"_s}));
    EXPECT_EQ(results.copyRows(), u"\"1\";\"1\"\r\n\"\";\"\"\r\n"_s);
    const QString file = project.path(u"sortie.csv"_s);
    EXPECT_TRUE(results.ExportCSV(project.dialogues, file));
    EXPECT_EQ(bytesOf(file).count("\r\n"), 301);
}

TEST_F(QueryTest, AStatementThatFailsLeavesNothing)
{
    Results results(project.db());
    EXPECT_FALSE(results.Refresh(u"SELECT [a] FROM [Absente]"_s));
    EXPECT_EQ(results.CountRow(), 0);
    EXPECT_EQ(results.Cols(), 0);
    EXPECT_TRUE(results.error());
}

TEST_F(QueryTest, FilesHoldHeaderAndRowsWithQuotesAsTheyAre)
{
    Results results(project.db());
    ASSERT_TRUE(results.Refresh(
        u"SELECT DISTINCTROW [Individus].[ID Individus] AS [Individu],[Individus].[ID Individus] AS [ID Individus],"
        "[Individus].[Numéro] AS [Numéro],[Individus].[Altitude] AS [Alt],ISNULL([Individus].[Numéro]) AS [Vide],"
        "[Individus].[Locked] AS [Verrou] FROM [Individus] WHERE [Individus].[ID Individus] IN (2,5,6)"_s));
    results.RemoveCol(1);
    const QString file = project.path(u"sortie.csv"_s);
    EXPECT_TRUE(results.ExportCSV(project.dialogues, file));
    EXPECT_EQ(bytesOf(file), u"\"Individu\";\"Numéro\";\"Alt\";\"Vide\";\"Verrou\"\r\n"
                             "\"2\";\"A2\";\"120.5\";\"False\";\"Faux\"\r\n"
                             "\"5\";\"C\"1\";\"0\";\"False\";\"Faux\"\r\n"
                             "\"6\";\"\";\"55\";\"True\";\"Vrai\"\r\n"_s.toUtf8());
    results.select(1, true);
    EXPECT_EQ(results.copyRows(), u"\"5\";\"C\"1\";\"0\";\"False\";\"Faux\"\r\n"_s);
}

TEST_F(QueryTest, AFileThatCannotBeWrittenIsSaidAndACancelledOneIsNot)
{
    Results results(project.db());
    ASSERT_TRUE(results.Refresh(u"SELECT [ID Images] FROM Images"_s));
    project.dialogues.expectLike({u"Impossible d'accéder au fichier. Vérifiez qu'il est bien présent et qu'il n'est ouvert "
                                  "par aucune autre applications :\r"_s},
                                 u"Exportation CSV"_s, platform::BoxIcon::Stop);
    EXPECT_FALSE(results.ExportCSV(project.dialogues, project.path(u"nulle/part.csv"_s)));
    project.dialogues.expectSaveFile(u"Exportation CSV"_s, u"Texte CSV (point-virgule, *.csv)|*.csv"_s, {});
    EXPECT_FALSE(results.ExportCSV(project.dialogues));
}
