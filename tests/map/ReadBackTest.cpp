// What other programs read in the files. Each test runs where its program is installed.
#include "map/MapFixture.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>

using namespace map;
using namespace Qt::StringLiterals;

namespace {

class ReadBack : public testing::Test {
protected:
    /// Writes the file and gives its path.
    QString write(const QString& name, const QByteArray& content)
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        return file.fileName();
    }
    /// Standard output of a program that must end well.
    QByteArray run(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.setWorkingDirectory(folder.path());
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForFinished(120000)) << program.toStdString();
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
        return process.readAllStandardOutput();
    }
    QTemporaryDir folder;
};

#define NEEDS(program)                                                                                                 \
    if (QStandardPaths::findExecutable(QStringLiteral(program)).isEmpty())                                             \
    GTEST_SKIP() << program " is not installed"

} // namespace

TEST_F(ReadBack, KmlIsWellFormed)
{
    NEEDS("xmllint");
    const QString path = write(u"points.kml"_s, kmlFile(support::carefulPoints(), support::exportContext()));
    run(u"xmllint"_s, {u"--nonet"_s, u"--noout"_s, path});
    const QByteArray name = run(u"xmllint"_s, {u"--xpath"_s, u"string(//*[local-name()='Placemark'][2]/*[local-name()='name'])"_s, path});
    EXPECT_EQ(QString::fromUtf8(name).trimmed(), u"a]]>b & <c> \"d\" 'e' \u2014 \u4e2d");
}

TEST_F(ReadBack, KmlHasItsPointsForAReaderOfMaps)
{
    NEEDS("ogr2ogr");
    const QString path = write(u"points.kml"_s, kmlFile(support::carefulPoints(), support::exportContext()));
    const QByteArray json = run(u"ogr2ogr"_s, {u"-f"_s, u"GeoJSON"_s, u"-lco"_s, u"COORDINATE_PRECISION=9"_s, u"/vsistdout/"_s, path});
    const QJsonArray features = QJsonDocument::fromJson(json).object()[u"features"_s].toArray();
    const Points points = support::carefulPoints();
    ASSERT_EQ(features.size(), points.size());
    for (int i = 0; i < points.size(); ++i) {
        const QJsonObject feature = features[i].toObject();
        const QJsonArray at = feature[u"geometry"_s][u"coordinates"_s].toArray();
        EXPECT_NEAR(at[0].toDouble(), points.at(i).at.longitude, 2e-8);
        EXPECT_NEAR(at[1].toDouble(), points.at(i).at.latitude, 2e-8);
        EXPECT_NEAR(at[2].toDouble(), points.at(i).altitude.value_or(0), 1e-6);
        EXPECT_EQ(feature[u"properties"_s][u"Name"_s].toString().trimmed(), QString(points.at(i).name).replace(u'\v', u' ').trimmed());
    }
    EXPECT_TRUE(run(u"ogrinfo"_s, {u"-ro"_s, u"-al"_s, u"-so"_s, path}).contains("Feature Count: 3"));
}

TEST_F(ReadBack, GtmHasItsWaypointsForAReaderOfGpsFiles)
{
    NEEDS("gpsbabel");
    ExportContext context = support::exportContext();
    context.picture = QImage(40, 20, QImage::Format_RGB32);
    context.picture.fill(Qt::white);
    Points points;
    for (MapPoint point : support::carefulPoints()) {
        // That reader takes the bytes for UTF-8.
        point.name = u"Place "_s + QString::number(point.locality);
        point.gpsRef = u"WP"_s + QString::number(point.locality);
        points.add(point);
    }
    const QString path = write(u"points.gtm"_s, gtmFile(points, context));
    const QByteArray csv = run(u"gpsbabel"_s, {u"-i"_s, u"gtm"_s, u"-f"_s, path, u"-o"_s, u"unicsv,prec=9,utc=0"_s, u"-F"_s, u"-"_s});
    const QStringList lines = QString::fromUtf8(csv).split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 4) << csv.toStdString();
    const QStringList header = lines[0].split(u',');
    for (int i = 0; i < points.size(); ++i) {
        const QStringList cells = QString(lines[i + 1]).remove(u'"').split(u',');
        const auto cell = [&](const QString& name) { return cells.value(header.indexOf(name)).trimmed(); };
        EXPECT_NEAR(cell(u"Latitude"_s).toDouble(), points.at(i).at.latitude, 1e-8);
        EXPECT_NEAR(cell(u"Longitude"_s).toDouble(), points.at(i).at.longitude, 1e-8);
        EXPECT_EQ(cell(u"Name"_s), points.at(i).gpsRef);
        EXPECT_EQ(cell(u"Description"_s), points.at(i).name) << lines[0].toStdString();
    }
    EXPECT_TRUE(lines[1].contains(u"1276.5"_s)) << lines[1].toStdString();
    EXPECT_TRUE(lines[1].contains(u"2024/03/05"_s)) << lines[1].toStdString();
}

TEST_F(ReadBack, CsvOpensAsATableInASpreadsheet)
{
    NEEDS("soffice");
    Points points;
    points.add(support::carefulPoints().at(0));
    points.add(support::carefulPoints().at(2));
    const QString path = write(u"points.csv"_s, csvFile(points));
    // Semicolons, double quotes, UTF-8; converted to commas.
    run(u"soffice"_s, {u"-env:UserInstallation=file://"_s + folder.filePath(u"profil"_s), u"--headless"_s, u"--norestore"_s,
                       u"--infilter=CSV:59,34,76"_s, u"--convert-to"_s, u"csv:Text - txt - csv (StarCalc):44,34,76"_s,
                       u"--outdir"_s, folder.filePath(u"lu"_s), path});
    QFile read(folder.filePath(u"lu/points.csv"_s));
    ASSERT_TRUE(read.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(read.readAll()).split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0], u"ID Localités,Nom,Longitude,Latitude,Altitude,Référence GPS,Effectif");
    EXPECT_EQ(lines[1].section(u',', 1, 1), u"Brésil - Forêt « Alta »");
    EXPECT_EQ(lines[1].count(u','), 6);
}

TEST_F(ReadBack, TheBitmapOpens)
{
    NEEDS("gdalinfo");
    QImage picture(33, 21, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    EXPECT_TRUE(run(u"gdalinfo"_s, {write(u"carte.bmp"_s, bitmapFile(picture))}).contains("Size is 33, 21"));
}
