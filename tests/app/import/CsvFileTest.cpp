#include "app/import/CsvFile.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace app {
namespace {

using namespace Qt::StringLiterals;

class CsvFileTest : public ::testing::Test {
protected:
    QString write(const QByteArray& bytes)
    {
        QFile file(m_folder.filePath(u"tableau.csv"_s));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    }
    /// Rows with the line on which each begins: "2: a|b".
    static QStringList rows(const QString& path, const CsvFormat& format)
    {
        QStringList read;
        CsvReader reader(path, format);
        while (reader.next())
            read << QString::number(reader.line()) + (reader.damaged() ? u"! "_s : u": "_s) + reader.cells().join(u'|');
        return read;
    }

private:
    QTemporaryDir m_folder;
};

QByteArray utf16(const QString& text, bool mark)
{
    QStringEncoder encoder(QStringEncoder::Utf16LE);
    const QByteArray bytes = encoder(text);
    return (mark ? QByteArray("\xFF\xFE") : QByteArray()) + bytes;
}

TEST_F(CsvFileTest, DetectsSeparatorEncodingAndDecimalMark)
{
    const QString table = u"Nom;Hauteur;Lieu\r\nChêne;12,5;Forêt, haute\r\nHêtre;9,25;Val\r\n"_s;
    const QString english = u"name,height\nOak,12.5\n\"Beech, old\",9.25\n"_s;
    const QString tabs = u"Nom\tHauteur\nChêne\t12.5\n"_s;
    struct Case {
        const char* what;
        QByteArray bytes;
        CsvFormat expected;
    };
    const Case cases[] = {
        {"UTF-8", table.toUtf8(), {u';', CsvFormat::Utf8, u','}},
        {"UTF-8 with a mark", "\xEF\xBB\xBF" + table.toUtf8(), {u';', CsvFormat::Utf8, u','}},
        {"Windows", table.toLatin1(), {u';', CsvFormat::Windows1252, u','}},
        {"UTF-16 with a mark", utf16(table, true), {u';', CsvFormat::Utf16LE, u','}},
        {"UTF-16 without", utf16(table, false), {u';', CsvFormat::Utf16LE, u','}},
        {"commas", english.toUtf8(), {u',', CsvFormat::Utf8, u'.'}},
        {"tabs", tabs.toUtf8(), {u'\t', CsvFormat::Utf8, u'.'}},
        // One accent far behind the first pages decides.
        {"late accent", "a;b\n" + QByteArray("x;y\n").repeated(200'000) + "\xE9;z\n", {u';', CsvFormat::Windows1252, u','}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const QString path = write(c.bytes);
        EXPECT_EQ(detectCsvFormat(path), c.expected);
        CsvReader reader(path, c.expected);
        ASSERT_TRUE(reader.next());
        EXPECT_FALSE(reader.header().value(0).startsWith(QChar(0xFEFF)));
    }
    CsvReader windows(write(table.toLatin1()), {u';', CsvFormat::Windows1252, u','});
    ASSERT_TRUE(windows.next());
    EXPECT_EQ(windows.cells(), QStringList({u"Chêne"_s, u"12,5"_s, u"Forêt, haute"_s}));
}

TEST_F(CsvFileTest, ReadsQuotedCellsWithLineEndsAndCountsLinesAsEditorsDo)
{
    const QString path = write("a;b\r\n1;\"deux\r\nlignes; et \"\"plus\"\"\"\r\n\r\n;;\r\n2;dernier");
    EXPECT_EQ(rows(path, {}), QStringList({u"2: 1|deux\r\nlignes; et \"plus\""_s, u"6: 2|dernier"_s}));
}

TEST_F(CsvFileTest, ReadsOurOwnExportsWhichDoNotDoubleQuotes)
{
    EXPECT_EQ(rows(write("\"a\";\"b\"\r\n\"dit \"vrai\" ici\";\"x\"\r\n"), {}), QStringList({u"2: dit \"vrai\" ici|x"_s}));
}

TEST_F(CsvFileTest, AQuoteNeverClosedDamagesItsLineAlone)
{
    const QStringList expected{u"2! \"ouvert;1"_s, u"3: ferme|2"_s, u"4: \"|3"_s};
    EXPECT_EQ(rows(write("a;b\n\"ouvert;1\n\"ferme\";2\n\"\"\"\";3\n"), {}), expected);
    EXPECT_EQ(rows(write("a;b\n\"fin;1\nx;2\n"), {}), QStringList({u"2! \"fin;1"_s, u"3: x|2"_s}));
}

TEST_F(CsvFileTest, WritesRowsThatItReadsAgain)
{
    const QStringList cells{u"a;b"_s, u"dit \"oui\""_s, u"deux\nlignes"_s, {}, u"simple"_s};
    CsvReader reader(write("1;2;3;4;5\r\n" + csvRow(cells, u';').toUtf8()), {});
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.cells(), cells);
}

TEST_F(CsvFileTest, RowsAcrossThePiecesOfTheFileStayWhole)
{
    QByteArray bytes("n;t\r\n");
    for (int i = 0; i < 60'000; ++i)
        bytes += QByteArray::number(i) + ";\"é " + QByteArray(i % 7, 'x') + "\"\r\n";
    CsvReader reader(write(bytes), {});
    for (int i = 0; i < 60'000; ++i) {
        ASSERT_TRUE(reader.next());
        ASSERT_EQ(reader.cells(), QStringList({QString::number(i), u"é "_s + QString(i % 7, u'x')}));
        ASSERT_EQ(reader.line(), i + 2);
    }
    EXPECT_FALSE(reader.next());
}

} // namespace
} // namespace app
