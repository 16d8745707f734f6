// Exported results as a spreadsheet reads them.
#include "QueryFixture.h"
#include "query/Results.h"

#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 180'000;

/// What LibreOffice reads from the file with ";" between the cells and UTF-8 letters, written again with tabs.
QStringList readBySpreadsheet(const QString& program, const QString& file, const QString& folder)
{
    QProcess office;
    office.start(program, {u"-env:UserInstallation="_s + QUrl::fromLocalFile(folder + u"/profil"_s).toString(), u"--headless"_s,
                           u"--infilter=CSV:59,34,76"_s, u"--convert-to"_s, u"txt:Text - txt - csv (StarCalc):9,0,76"_s,
                           u"--outdir"_s, folder + u"/lu"_s, file});
    if (!office.waitForFinished(patience))
        return {u"LibreOffice ne répond pas"_s};
    QFile read(folder + u"/lu/"_s + QFileInfo(file).completeBaseName() + u".txt"_s);
    if (!read.open(QIODevice::ReadOnly))
        return {QString::fromUtf8(office.readAllStandardError())};
    return QString::fromUtf8(read.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

} // namespace

TEST_F(QueryTest, ASpreadsheetReadsTheCellsOfAnExport)
{
    const QString program = QStandardPaths::findExecutable(u"soffice"_s);
    if (program.isEmpty())
        GTEST_SKIP() << "LibreOffice is not installed";
    project.db().Execute(u"UPDATE Individus SET Habitat = \"Forêt dense ; au bord d'un étang, œufs de 3 €\" WHERE [ID Individus]=1"_s);
    project.db().Execute(u"UPDATE Individus SET Habitat = \"Ñandú à Łódź\" WHERE [ID Individus]=2"_s);
    query::Results results(project.db());
    ASSERT_TRUE(results.Refresh(
        u"SELECT DISTINCTROW [Individus].[ID Individus] AS [Individu],[Individus].[Numéro] AS [Numéro],[Individus].[DateRécolte] "
        "AS [Récolté le],[Individus].[Habitat] AS [Habitat],[Individus].[Locked] AS [Verrou] FROM [Individus] WHERE "
        "[Individus].[ID Individus] IN (1,2,6)"_s));
    const QString file = project.path(u"résultat.csv"_s);
    ASSERT_TRUE(results.ExportCSV(project.dialogues, file, true));
    EXPECT_EQ(readBySpreadsheet(program, file, project.folder.path()),
              (QStringList{u"Individu\tNuméro\tRécolté le\tHabitat\tVerrou"_s,
                           u"1\tA1\t2001/03/06\tForêt dense ; au bord d'un étang, œufs de 3 €\tFaux"_s,
                           u"2\tA2\t2001/05\tÑandú à Łódź\tFaux"_s, u"6\t\t2001\t\tVrai"_s}));
}
