#include "map/MapFixture.h"
#include "map/PointLoading.h"
#include "support/ScriptedDialogues.h"

#include <QFile>
#include <QtEndian>

using namespace map;
using namespace Qt::StringLiterals;

namespace {

QStringList linesOf(const QByteArray& file)
{
    return QString::fromUtf8(file).split(u"\r\n"_s);
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

template<typename T>
T at(const QByteArray& bytes, qsizetype offset)
{
    return qFromLittleEndian<T>(bytes.constData() + offset);
}

} // namespace

TEST(DecimalText, HasAPointAndNeitherExponentNorNeedlessZeros)
{
    EXPECT_EQ(decimalText(0.00000001, 8), u"0.00000001");
    EXPECT_EQ(decimalText(-0.000000001, 8), u"0");
    EXPECT_EQ(decimalText(163.99999999, 8), u"163.99999999");
    EXPECT_EQ(decimalText(-42.05, 8), u"-42.05");
    EXPECT_EQ(decimalText(100, 8), u"100");
    EXPECT_EQ(decimalText(1e9, 8), u"1000000000");
}

TEST(CsvExport, HasItsColumnsQuotedAsTheGridsFiles)
{
    const QStringList lines = linesOf(csvFile(support::carefulPoints()));
    ASSERT_EQ(lines.size(), 5);
    EXPECT_EQ(lines[0], u"\"ID Localités\";\"Nom\";\"Longitude\";\"Latitude\";\"Altitude\";\"Référence GPS\";\"Effectif\"");
    EXPECT_EQ(lines[1], u"\"7\";\"Brésil - Forêt « Alta »\";\"-42.05\";\"-22.12345679\";\"1276.5\";\"WP 001\";\"3\"");
    EXPECT_EQ(lines[3], u"\"9\";\"Nulle part\";\"0.00000001\";\"-0.5\";\"\";\"\";\"1\"");
    EXPECT_TRUE(lines[4].isEmpty());
}

TEST(KmlExport, HasTheLinesOfTheDocumentInOrder)
{
    Points points;
    points.add(support::carefulPoints().at(0));
    EXPECT_EQ(linesOf(kmlFile(points, support::exportContext())),
              (QStringList{u"<?xml version='1.0' encoding='UTF-8'?>"_s,
                           u"<kml xmlns='http://www.opengis.net/kml/2.2'>"_s,
                           u"<Document>"_s,
                           u"<Style id='PointIcon'>"_s,
                           u"\t<IconStyle>"_s,
                           u"\t\t<color>ff332211</color>"_s,
                           u"\t\t<scale>1.0</scale>"_s,
                           u"\t</IconStyle>"_s,
                           u"</Style>"_s,
                           u"<name>Requête &lt;1&gt; &amp; &quot;2&quot; (2026/03/07 14:05:09)</name>"_s,
                           u"<open>1</open>"_s,
                           u"<description><![CDATA[SELECT ]]]]><![CDATA[> &]]></description>"_s,
                           u"<Folder>"_s,
                           u"<name><![CDATA[Amérique du Sud]]></name>"_s,
                           u"<open>1</open>"_s,
                           u"\t<Placemark>"_s,
                           u"\t<name><![CDATA[Brésil - Forêt « Alta »]]></name>"_s,
                           u"\t<styleUrl>#PointIcon</styleUrl>"_s,
                           u"\t<description><![CDATA[<i>Ref. GPS: WP 001</i><br><font color='red'>Date: "
                           "2024/03/05 14:30:00</font>]]></description>"_s,
                           u"\t<Point>"_s,
                           u"\t\t<coordinates>-42.05,-22.12345679,1276.5</coordinates>"_s,
                           u"\t</Point>"_s,
                           u"\t</Placemark>"_s,
                           u"</Folder>"_s,
                           u"</Document>"_s,
                           u"</kml>"_s,
                           QString()}));
}

TEST(KmlExport, SplitsTheEndOfASectionAndDropsWhatXmlCannotHold)
{
    const QString text = QString::fromUtf8(kmlFile(support::carefulPoints(), support::exportContext()));
    EXPECT_TRUE(text.contains(u"<name><![CDATA[a]]]]><![CDATA[>b & <c> \"d\" 'e' \u2014 \u4e2d ]]></name>"_s));
    EXPECT_EQ(text.count(u"id='PointIcon'"_s), 1);
    EXPECT_EQ(text.count(u"<styleUrl>#PointIcon</styleUrl>"_s), 3);
    EXPECT_TRUE(text.contains(u"0.00000001,-0.5,0</coordinates>"_s)); // no altitude
}

TEST(AcadScript, SetsUpAttachesAndDraws)
{
    ExportContext context = support::exportContext();
    context.pictureFile = u"/tmp/mes cartes/plan.png"_s;
    Points points;
    points.add(support::carefulPoints().at(0));
    MapPoint plot = support::carefulPoints().at(0);
    plot.locality = 2;
    plot.at = {-50, 0.5};
    plot.plot = Plot{0, 0, 111320, 55660};
    points.add(plot);
    const QStringList lines = linesOf(acadScript(points, context));
    ASSERT_EQ(lines.size(), 7);
    EXPECT_EQ(lines[0], u"OSMODE 0");
    EXPECT_EQ(lines[1], u"PDMODE 34 PDSIZE -5");
    EXPECT_EQ(lines[2], u"_image _attach \"/tmp/mes cartes/plan.png\" -60.000000,-30.000000 110.000000 0");
    EXPECT_EQ(lines[3], u"_.point -42.050000,-22.123457");
    EXPECT_EQ(lines[4], u"_.point -50.000000,0.500000");
    EXPECT_TRUE(lines[5].startsWith(u"_.pline 0 0 0 -50.000000,0.500000 -48.9999"_s)) << lines[5].toStdString();
    EXPECT_TRUE(lines[5].endsWith(u" -50.000000,1.000000 _c"_s));
    EXPECT_TRUE(lines[6].isEmpty());
    context.frame = {};
    EXPECT_FALSE(acadScript(points, context).contains("_image"));
}

TEST(Windows1252, KeepsItsOwnLettersAndMarksWhatItLacks)
{
    EXPECT_EQ(windows1252(u"Forêt – œuvre €"), QByteArray("For\xEAt \x96 \x9Cuvre \x80"));
    EXPECT_EQ(windows1252(u"中文 😀."), QByteArray("?? ?."));
    EXPECT_EQ(windows1252(QString(u"e\u0301t\u00e9"_s)), QByteArray("\xE9t\xE9")); // a combining accent
}

/// Offsets of the published layout.
TEST(GtmExport, LaysItsRecordsOutByTheByte)
{
    ExportContext context = support::exportContext();
    context.picture = QImage(8, 4, QImage::Format_RGB32);
    context.picture.fill(Qt::green);
    Points points;
    points.add(support::carefulPoints().at(0));
    const QByteArray file = gtmFile(points, context);
    EXPECT_EQ(file.left(12), QByteArray("\xD3\0TrackMaker", 12));
    EXPECT_EQ(at<qint32>(file, 27), 4);  // styles
    EXPECT_EQ(at<qint32>(file, 35), 1);  // waypoints
    EXPECT_EQ(at<float>(file, 47), 50);  // bounds: the picture's
    EXPECT_EQ(at<float>(file, 51), -60);
    EXPECT_EQ(at<float>(file, 55), 5);
    EXPECT_EQ(at<float>(file, 59), -30);
    EXPECT_EQ(at<qint32>(file, 63), 1);  // pictures
    EXPECT_EQ(at<qint32>(file, 83), 0xFFFFFF);
    EXPECT_EQ(at<qint16>(file, 95), -1);
    EXPECT_EQ(file.mid(99, 17), QByteArray("\x0F\0Times New Roman", 17));
    EXPECT_EQ(at<qint16>(file, 137 + 34), 217); // WGS 84
    EXPECT_EQ(file.mid(0xC3, 15), QByteArray("\x0D\0GTMImage1.bmp", 15));
    EXPECT_EQ(file.mid(0xD4, 38), QByteArray("Example of Map Image calibrated in GTM"));
    EXPECT_EQ(at<float>(file, 0xFA), -60);
    EXPECT_EQ(at<float>(file, 0xFE), 5);
    EXPECT_EQ(at<float>(file, 0x102), 110);
    EXPECT_EQ(at<float>(file, 0x106), 35);
    const int length = at<qint32>(file, 0x10A);
    const qsizetype point = 0x118;
    EXPECT_EQ(at<double>(file, point), -22.123456789);
    EXPECT_EQ(at<double>(file, point + 8), -42.05);
    EXPECT_EQ(file.mid(point + 16, 10), QByteArray("WP 001    "));
    EXPECT_EQ(file.mid(point + 28, 10), QByteArray("Br\xE9sil - F"));
    const qsizetype behind = point + 28 + windows1252(points.at(0).name).size();
    EXPECT_EQ(at<qint16>(file, behind), 48);
    EXPECT_EQ(at<qint32>(file, behind + 3), 1709649000 - 631065600); // 2024-03-05 14:30:00
    EXPECT_EQ(at<float>(file, behind + 9), 1276.5f);
    EXPECT_EQ(at<qint32>(file, behind + 15), -11);
    EXPECT_EQ(at<qint32>(file, behind + 15 + 22), 0xFFFFFF); // white letters
    EXPECT_EQ(at<qint32>(file, behind + 15 + 26), 400);
    const qsizetype picture = behind + 15 + 4 * 45;
    EXPECT_EQ(file.size(), picture + length);
    EXPECT_EQ(file.mid(picture, 2), QByteArray("BM"));
    EXPECT_EQ(at<qint64>(file, picture + 38), 0); // no resolution
    EXPECT_EQ(QImage::fromData(file.mid(picture)).pixelColor(7, 3), QColor(Qt::green));
}

TEST(GtmExport, LeavesOutThePictureThatItCannotPlaceAndDatesThatItCannotTell)
{
    ExportContext context = support::exportContext();
    context.picture = QImage(8, 4, QImage::Format_RGB32);
    context.frame.W = -110;
    Points points;
    MapPoint old = support::carefulPoints().at(1);
    old.gpsRef = u"Référence très longue"_s;
    points.add(old);
    const QByteArray file = gtmFile(points, context);
    EXPECT_EQ(at<qint32>(file, 63), 0);
    EXPECT_EQ(at<qint16>(file, 95), 0);
    const qsizetype point = 137 + 58;
    EXPECT_EQ(file.mid(point + 16, 10), QByteArray("R\xE9" "f\xE9rence "));
    const qsizetype behind = point + 28 + at<qint16>(file, point + 26);
    EXPECT_EQ(at<qint32>(file, behind + 3), 0);
    EXPECT_EQ(file.size(), behind + 15 + 4 * 45);
}

TEST(ExportFiles, AreAskedForByTheirFilterAndWrittenWhole)
{
    support::ScriptedDialogues dialogues;
    QTemporaryDir folder;
    const struct {
        ExportFormat format;
        QString title, filter, suffix;
    } rows[] = {
        {ExportFormat::Csv, u"Exportation CSV"_s, u"Texte CSV (point-virgule, *.csv)|*.csv"_s, u".csv"_s},
        {ExportFormat::Kml, u"Exportation KML"_s, u"Fichier Google Earth (*.kml)|*.kml"_s, u".kml"_s},
        {ExportFormat::Gtm, u"Exportation GPS Trackmaker"_s, u"Fichier GPS Trackmaker (*.gtm)|*.gtm"_s, u".gtm"_s},
        {ExportFormat::AcadScr, u"Exportation Script AutoCad"_s, u"Script AutoCad (*.scr)|*.scr"_s, u".scr"_s},
    };
    for (const auto& row : rows) {
        dialogues.expectSaveFile(row.title, row.filter, folder.filePath(u"points"_s));
        EXPECT_TRUE(exportPoints(row.format, support::carefulPoints(), support::exportContext(), dialogues));
        EXPECT_GT(contentOf(folder.filePath(u"points"_s + row.suffix)).size(), 100);
        dialogues.expectSaveFile(row.title, row.filter, {});
        EXPECT_FALSE(exportPoints(row.format, support::carefulPoints(), support::exportContext(), dialogues));
    }
    dialogues.expectSaveFile(u"Exportation Bitmap"_s, u"Fichier Bitmap (*.bmp)|*.bmp"_s, folder.filePath(u"carte.bmp"_s));
    QImage picture(3, 2, QImage::Format_RGB32);
    picture.fill(Qt::red);
    EXPECT_TRUE(exportBitmap(picture, dialogues));
    EXPECT_EQ(QImage(folder.filePath(u"carte.bmp"_s)).pixelColor(2, 1), QColor(Qt::red));
}

TEST(ExportFiles, WithoutAnyPointNothingIsWrittenAndItIsSaid)
{
    support::ScriptedDialogues dialogues;
    QTemporaryDir folder;
    dialogues.expectTell(u"Il n'y a aucun point géoréférencé à afficher dans la requête en cours"_s, u"Exportation KML"_s);
    EXPECT_FALSE(exportPoints(ExportFormat::Kml, {}, support::exportContext(), dialogues, folder.filePath(u"a.kml"_s)));
    EXPECT_FALSE(QFile::exists(folder.filePath(u"a.kml"_s)));
}

TEST(ExportFiles, AFileThatCannotBeOpenedIsSaidWithItsPathAndLeftAsItIs)
{
    support::ScriptedDialogues dialogues;
    QTemporaryDir folder;
    const QString path = folder.filePath(u"absent/a.csv"_s);
    dialogues.expectTell(u"Impossible d'accéder au fichier. Vérifiez qu'il est bien présent et qu'il n'est ouvert par "
                         "aucune autre applications :"_s
                             + path,
                         u"Exportation CSV"_s, platform::BoxIcon::Stop);
    EXPECT_FALSE(exportPoints(ExportFormat::Csv, support::carefulPoints(), support::exportContext(), dialogues, path));
}
