#include "platform/ui/RecordPrinter.h"

#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace platform {
namespace {

using namespace Qt::StringLiterals;

const QDateTime noon(QDate(2026, 3, 7), QTime(12, 0));

/// A PDF file and what another program reads in it, page by page.
class Paper {
public:
    Paper() : path(m_folder.filePath(u"feuille.pdf"_s)) {}

    QStringList pages() const
    {
        QProcess reader;
        reader.start(u"pdftotext"_s, {u"-layout"_s, u"-enc"_s, u"UTF-8"_s, path, u"-"_s});
        EXPECT_TRUE(reader.waitForFinished()) << "pdftotext";
        EXPECT_EQ(reader.exitCode(), 0) << reader.readAllStandardError().constData();
        return QString::fromUtf8(reader.readAllStandardOutput()).split(u'\f', Qt::SkipEmptyParts);
    }
    QString information() const
    {
        QProcess reader;
        reader.start(u"pdfinfo"_s, {path});
        EXPECT_TRUE(reader.waitForFinished());
        return QString::fromUtf8(reader.readAllStandardOutput());
    }
    void print(const PrintTable& table)
    {
        ASSERT_EQ(savePdf(path, table.title,
                          [&](QPagedPaintDevice& device) {
                              NoProgression silent;
                              TablePrinter(table, noon).print(device, silent);
                          }),
                  QString());
    }

private:
    QTemporaryDir m_folder;

public:
    const QString path;
};

/// Rows of cells made by a function, read in pieces.
PrintTable tableOf(const QStringList& titles, int rows, const std::function<QString(qint64 row, int column)>& cell)
{
    PrintTable table{u"Plantes d'altitude"_s, {}, {}};
    for (const QString& title : titles)
        table.columns.append({title});
    table.rows = [=](qint64 first, int count) {
        QList<PrintRow> read;
        for (qint64 row = first; row < qMin<qint64>(first + count, rows); ++row) {
            QStringList cells;
            for (int column = 0; column < int(titles.size()); ++column)
                cells << cell(row, column);
            read.append({cells});
        }
        return read;
    };
    return table;
}

TEST(TablePrinter, PrintsEveryRowOnceWithHeadersAndNumbersOnEachPage)
{
    Paper paper;
    paper.print(tableOf({u"Numéro"_s, u"Espèce"_s}, 450, [](qint64 row, int column) {
        return column == 0 ? u"R%1."_s.arg(row) : u"Gentiana lutea"_s;
    }));
    const QStringList pages = paper.pages();
    ASSERT_GT(pages.size(), 5);
    QString all;
    for (qsizetype i = 0; i < pages.size(); ++i) {
        EXPECT_TRUE(pages[i].contains(u"Plantes d'altitude"_s)) << i;
        EXPECT_TRUE(pages[i].contains(u"7 mars 2026 à 12:00"_s)) << qPrintable(pages[i].left(200));
        EXPECT_TRUE(pages[i].contains(u"Espèce"_s)) << i;
        EXPECT_TRUE(pages[i].contains(u"Page %1 sur %2"_s.arg(QString::number(i + 1), QString::number(pages.size())))) << i;
        all += pages[i];
    }
    for (int row = 0; row < 450; ++row)
        EXPECT_EQ(all.count(u"R%1."_s.arg(row)), 1) << row;
    EXPECT_TRUE(paper.information().contains(u"595 x 84"_s)) << "upright";
}

TEST(TablePrinter, TurnsThePageForWideTablesAndBreaksLongTexts)
{
    Paper paper;
    const QString longText = u"une prairie humide au bord du torrent "_s.repeated(6) + u"bout"_s;
    QStringList titles;
    for (int i = 0; i < 9; ++i)
        titles << u"Colonne %1"_s.arg(i);
    paper.print(tableOf(titles, 3, [&](qint64, int column) { return column == 4 ? longText : u"valeur %1"_s.arg(column); }));
    EXPECT_TRUE(paper.information().contains(u"x 595"_s)) << qPrintable(paper.information());
    const QStringList pages = paper.pages();
    ASSERT_EQ(pages.size(), 1);
    EXPECT_EQ(pages[0].count(u"bout"_s), 3);
    EXPECT_TRUE(pages[0].contains(u"valeur 8"_s));
}

TEST(TablePrinter, BreaksOnlyTheWordsThatHaveNoRoom)
{
    Paper paper;
    const QString number(60, u'7');
    paper.print(tableOf({u"A"_s, u"B"_s, u"C"_s, u"D"_s, u"E"_s, u"F"_s, u"G"_s, u"H"_s, u"I"_s, u"J"_s}, 1,
                        [&](qint64, int column) { return column == 0 ? u"Echantillonnage fait "_s + number : QString(25, u'x'); }));
    const QString text = paper.pages().join(QString());
    EXPECT_TRUE(text.contains(u"Echantillonnage"_s)) << text.toStdString();
    EXPECT_FALSE(text.contains(number));
    EXPECT_EQ(text.count(u'7'), 60 + 1); // the date has one
}

TEST(TablePrinter, GivesLongTextsTheRoomThatIsLeft)
{
    Paper paper;
    const QString line = u"des mots "_s.repeated(9) + u"bout"_s;
    paper.print(tableOf({u"N°"_s, u"Texte"_s}, 1, [&](qint64, int column) { return column == 0 ? u"1"_s : line; }));
    EXPECT_TRUE(paper.pages().value(0).contains(line)) << paper.pages().value(0).toStdString();
}

TEST(TablePrinter, LaysColumnsThatHaveNoRoomOnSheetsBesideEachOther)
{
    Paper paper;
    QStringList titles{u"Clé"_s};
    for (int i = 1; i < 30; ++i)
        titles << u"Titre%1long"_s.arg(i);
    paper.print(tableOf(titles, 2, [](qint64 row, int column) { return u"c%1x%2."_s.arg(QString::number(row), QString::number(column)); }));
    const QStringList pages = paper.pages();
    ASSERT_GT(pages.size(), 1);
    const QString all = pages.join(QString());
    for (const QString& page : pages)
        EXPECT_TRUE(page.contains(u"c1x0."_s)) << "the first column stands on every sheet";
    for (int column = 1; column < 30; ++column)
        EXPECT_EQ(all.count(u"c1x%1."_s.arg(column)), 1) << column;
    EXPECT_TRUE(pages[0].contains(u"Feuille 1 sur "_s));
}

TEST(TablePrinter, PrintsRecordsUnderTheirCaptionsWithoutEmptyFields)
{
    Paper paper;
    paper.print(recordTable(u"Individu 12"_s, {{u"Individu"_s, {{u"Numéro"_s, u"JB 100"_s}, {u"Habitat"_s, {}}}},
                                               {u"Détermination"_s, {{u"Taxon"_s, u"Quercus robur"_s}}}}));
    const QString page = paper.pages().value(0);
    EXPECT_LT(page.indexOf(u"JB 100"_s), page.indexOf(u"Détermination"_s));
    EXPECT_TRUE(page.contains(u"Quercus robur"_s));
    EXPECT_FALSE(page.contains(u"Habitat"_s));
}

TEST(TablePrinter, PrintsAPictureWithTitleAndLegendOnOnePage)
{
    Paper paper;
    QImage image(800, 400, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    ASSERT_EQ(savePdf(paper.path, u"Carte"_s, [&](QPagedPaintDevice& device) { printPicture(device, {u"Carte"_s, image, {u"12 points"_s}}, noon); }),
              QString());
    EXPECT_EQ(paper.pages().size(), 1);
    EXPECT_TRUE(paper.pages()[0].contains(u"12 points"_s));
    EXPECT_TRUE(paper.information().contains(u"x 595"_s));
}

TEST(TablePrinter, LeavesNoFileWhenRowsCannotBeRead)
{
    Paper paper;
    PrintTable table = tableOf({u"Numéro"_s}, 3, [](qint64, int) -> QString { throw std::runtime_error("lecture"); });
    NoProgression silent;
    EXPECT_THROW((void)savePdf(paper.path, u"x"_s, [&](QPagedPaintDevice& device) { TablePrinter(table, noon).print(device, silent); }),
                 std::runtime_error);
    EXPECT_FALSE(QFile::exists(paper.path));
}

} // namespace
} // namespace platform
