#include "PictureFiles.h"
#include "images/Calibration.h"
#include "images/Cl_Exif.h"
#include "images/ImagePaths.h"
#include "images/PictureDetails.h"
#include "images/Pictures.h"
#include "support/Files.h"
#include "support/Project.h"

#include <QDir>
#include <QFile>

namespace {

using namespace Qt::StringLiterals;
using images::Cl_Exif;
using support::photograph;
using support::put;
using support::withThumbnail;

TEST(Exif, ReadsByType)
{
    Cl_Exif exif;
    QVariant value;
    EXPECT_FALSE(exif.GetExifData(271, value));
    ASSERT_TRUE(exif.OpenFile(photograph(withThumbnail)));
    ASSERT_TRUE(exif.GetExifData(271, value)); // make
    EXPECT_EQ(value.toString(), u"Canon"_s);
    ASSERT_TRUE(exif.GetExifData(36867, value));
    EXPECT_EQ(value.typeId(), QMetaType::QDateTime);
    EXPECT_TRUE(value.toDateTime().isValid());
    ASSERT_TRUE(exif.GetExifData(33434, value)); // exposure time: numerator, denominator
    EXPECT_EQ(value.toList().size(), 2);
    EXPECT_GT(value.toList()[1].toInt(), 0);
    ASSERT_TRUE(exif.GetExifData(37385, value)); // flash
    EXPECT_EQ(value.toList().size(), 1);
    ASSERT_TRUE(exif.GetExifData(36864, value));
    EXPECT_TRUE(value.toString().startsWith(u"02"_s)) << value.toString().toStdString();
    EXPECT_FALSE(exif.GetExifData(65000, value));
    exif.CloseFile();
    EXPECT_FALSE(exif.GetExifData(271, value));
}

TEST(Exif, WritesThreeTagsAndKeepsTheRest)
{
    QTemporaryDir folder;
    Cl_Exif exif;
    ASSERT_TRUE(exif.OpenFile(photograph(withThumbnail)));
    const QDateTime date(QDate(2001, 3, 6), QTime(14, 5, 9));
    EXPECT_TRUE(exif.SetExifData(270, u"Pâquerette"_s));
    EXPECT_TRUE(exif.SetExifData(315, u"L'auteur"_s));
    EXPECT_TRUE(exif.SetExifData(36867, date));
    EXPECT_FALSE(exif.SetExifData(36867, u"hier"_s));
    EXPECT_FALSE(exif.SetExifData(36868, date));
    const QString copy = folder.filePath(u"copie.jpg"_s);
    ASSERT_TRUE(exif.SaveFile(copy, 80));
    EXPECT_FALSE(exif.SaveFile(folder.filePath(u"absent/copie.jpg"_s), 80));

    Cl_Exif again;
    ASSERT_TRUE(again.OpenFile(copy));
    QVariant value;
    ASSERT_TRUE(again.GetExifData(270, value));
    EXPECT_EQ(value.toString(), u"Pâquerette"_s);
    ASSERT_TRUE(again.GetExifData(36867, value));
    EXPECT_EQ(value.toDateTime(), date);
    ASSERT_TRUE(again.GetExifData(271, value));
    EXPECT_EQ(value.toString(), u"Canon"_s);
    EXPECT_TRUE(again.GetExifData(20507, value));
    EXPECT_EQ(QImage(copy).size(), QImage(photograph(withThumbnail)).size());
}

TEST(Pictures, AreScaledToFit)
{
    EXPECT_EQ(images::fittedSize({400, 200}, 100), QSize(100, 50));
    EXPECT_EQ(images::fittedSize({1, 3000}, 100), QSize(1, 100));
    const QSize size = QImage(photograph(withThumbnail)).size();
    const QImage fitted = images::loadPicture(photograph(withThumbnail), 100);
    EXPECT_EQ(fitted.size(), images::fittedSize(size, 100));
    const QImage square = images::loadPicture(photograph(withThumbnail), 100, true, Qt::blue);
    EXPECT_EQ(square.size(), QSize(100, 100));
    EXPECT_EQ(square.pixelColor(50, 0), QColor(Qt::blue)); // wider than tall: centred
    EXPECT_NE(square.pixelColor(50, 50), QColor(Qt::blue));
    try {
        images::loadPicture(u"/absent/x.jpg"_s, 100);
        FAIL();
    } catch (const jet::Error& error) {
        EXPECT_EQ(error.description(), u"Erreur de chargement de l'image /absent/x.jpg"_s);
        EXPECT_EQ(error.source(), u"GDI+ Module"_s);
    }
}

TEST(ImagePaths, AreSearchedInTheirOrder)
{
    support::TestProject project;
    project.create();
    QDir(project.folder.path()).mkpath(u"a/sous"_s);
    QDir(project.folder.path()).mkpath(u"b"_s);
    put(project.path(u"a/x.jpg"_s), "a");
    put(project.path(u"b/x.jpg"_s), "b");
    put(project.path(u"a/sous/y.jpg"_s), "y");
    data::PropertyStore& store = project.session.properties();
    images::setImageFolders(store, {project.path(u"b"_s), project.path(u"a"_s)});
    const QStringList folders = images::imageFolders(store);
    EXPECT_EQ(images::findPicture(u"x.jpg"_s, folders), project.path(u"b/x.jpg"_s));
    EXPECT_EQ(images::findPicture(u"sous\\y.jpg"_s, folders), project.path(u"a/sous/y.jpg"_s));
    EXPECT_EQ(images::findPicture(project.path(u"a/x.jpg"_s), folders), project.path(u"a/x.jpg"_s));
    EXPECT_EQ(images::findPicture(u"z.jpg"_s, folders), QString());
    EXPECT_EQ(images::storedName(project.path(u"a/sous/y.jpg"_s), folders), u"sous/y.jpg"_s);
    EXPECT_EQ(images::storedName(project.path(u"b/x.jpg"_s), folders), u"x.jpg"_s);
    // Under that name the other one would be found.
    EXPECT_EQ(images::storedName(project.path(u"a/x.jpg"_s), folders), project.path(u"a/x.jpg"_s));
    EXPECT_EQ(images::storedName(u"/ailleurs/x.jpg"_s, folders), u"/ailleurs/x.jpg"_s);
    EXPECT_EQ(images::pictureMissing(u"z.jpg"_s), u"L'image z.jpg est introuvable dans les répertoires déclarés"_s);
}

TEST(PictureDetails, AreThoseOfTheCamera)
{
    const images::PictureDetails details = images::pictureDetails(photograph(withThumbnail));
    QStringList rows;
    for (const images::PictureDetail& row : details.rows)
        rows << row.label + u'=' + row.value;
    EXPECT_TRUE(rows.contains(u"Appareil=Canon PowerShot S230"_s)) << rows.join(u'|').toStdString();
    EXPECT_TRUE(details.date.isValid());
    EXPECT_FALSE(details.latitude);
    EXPECT_TRUE(images::pictureDetails(u"/absent.jpg"_s).rows.isEmpty());

    QTemporaryDir folder;
    const QString placed = folder.filePath(u"lieu.jpg"_s);
    ASSERT_TRUE(QFile::copy(photograph(withThumbnail), placed));
    if (!support::exiftool({u"-overwrite_original"_s, u"-GPSLatitude=12.5"_s, u"-GPSLatitudeRef=S"_s, u"-GPSLongitude=165.75"_s,
                            u"-GPSLongitudeRef=E"_s, placed}))
        GTEST_SKIP() << "exiftool is not installed";
    const images::PictureDetails there = images::pictureDetails(placed);
    ASSERT_TRUE(there.latitude && there.longitude);
    EXPECT_NEAR(*there.latitude, -12.5, 1e-6);
    EXPECT_NEAR(*there.longitude, 165.75, 1e-6);
}

/// What another program reads, before and after.
TEST(Exif, AnotherProgramReadsWhatWasWrittenAndKept)
{
    QTemporaryDir folder;
    const QString before = folder.filePath(u"avant.jpg"_s), after = folder.filePath(u"après.jpg"_s);
    ASSERT_TRUE(QFile::copy(photograph(withThumbnail), before));
    if (!support::exiftool({u"-overwrite_original"_s, u"-GPSLatitude=12.5"_s, u"-GPSLatitudeRef=S"_s, u"-GPSLongitude=165.75"_s,
                            u"-GPSLongitudeRef=E"_s, u"-XMP-dc:Title=Titre"_s, u"-IPTC:Keywords=flore"_s, u"-Comment=note"_s, before}))
        GTEST_SKIP() << "exiftool is not installed";
    Cl_Exif exif;
    ASSERT_TRUE(exif.OpenFile(before));
    ASSERT_TRUE(exif.SetExifData(270, u"Bellis perennis"_s));
    ASSERT_TRUE(exif.SetExifData(315, u"Aubreville"_s));
    ASSERT_TRUE(exif.SetExifData(36867, QDateTime(QDate(2001, 3, 6), QTime(14, 5, 9))));
    ASSERT_TRUE(exif.SaveFile(after, 90));
    const auto read = [](const QString& file, const QStringList& tags) {
        QStringList arguments{u"-s3"_s, u"-f"_s};
        for (const QString& tag : tags)
            arguments << u'-' + tag;
        return support::exiftoolText(arguments << file);
    };
    EXPECT_EQ(read(after, {u"ImageDescription"_s, u"Artist"_s, u"DateTimeOriginal"_s}),
              u"Bellis perennis\nAubreville\n2001:03:06 14:05:09"_s);
    const QStringList kept{u"GPSLatitude"_s, u"GPSLongitude"_s, u"Title"_s, u"Keywords"_s, u"Comment"_s, u"Make"_s,
                           u"Canon:CanonFirmwareVersion"_s, u"Canon:FocusMode"_s, u"CreateDate"_s};
    EXPECT_FALSE(read(before, kept).split(u'\n').contains(u"-"_s)); // for one that is not there
    EXPECT_EQ(read(after, kept), read(before, kept));
    EXPECT_EQ(support::exiftoolText({u"-b"_s, u"-ThumbnailImage"_s, after}), support::exiftoolText({u"-b"_s, u"-ThumbnailImage"_s, before}));
    EXPECT_EQ(support::exiftoolText({u"-warning"_s, u"-error"_s, u"-s3"_s, after}), QString());
}

/// Some programs write texts as bytes, or the date where another directory has it.
TEST(Exif, WritesOverPropertiesOfAnotherType)
{
    // A big-endian directory: the description as two bytes, the date as a number in the directory of the picture.
    const QByteArray tiff = QByteArray::fromHex("4d4d002a00000008" "0002" "010e000100000002" "41420000" "9003000300000001" "00070000" "00000000");
    QByteArray picture = QByteArray::fromHex("ffd8ffe1") + QByteArray(1, '\0') + QByteArray(1, char(tiff.size() + 8))
                         + QByteArray("Exif\0\0", 6) + tiff;
    QTemporaryDir folder;
    picture += support::bytesOf(support::drawing(folder.filePath(u"x.jpg"_s))).mid(2);
    Cl_Exif exif;
    QVariant value;
    ASSERT_TRUE(exif.OpenBytes(picture));
    ASSERT_TRUE(exif.GetExifData(270, value));
    EXPECT_EQ(value.toByteArray(), "AB");
    const QDateTime date(QDate(2001, 3, 6), QTime(14, 5, 9));
    EXPECT_TRUE(exif.SetExifData(270, u"texte"_s));
    EXPECT_TRUE(exif.SetExifData(36867, date));
    EXPECT_TRUE(exif.GetExifData(270, value));
    EXPECT_EQ(value.toString(), u"texte"_s);
    EXPECT_TRUE(exif.GetExifData(36867, value));
    EXPECT_EQ(value.toDateTime(), date);
}

TEST(Calibration, LivesInTheRowOfThePicture)
{
    support::TestProject project;
    project.create();
    project.db().Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
    project.db().Execute(u"INSERT INTO Images ([ID Individus],[KeyParent],[Fichier]) VALUES (1,\"1-Individus\",\"x.jpg\")"_s);
    const images::CalibratedRecord record{.id = 1};
    EXPECT_TRUE(images::keepsCalibration(project.db(), record.table));
    EXPECT_FALSE(images::keepsCalibration(project.db(), u"Individus"_s));
    EXPECT_EQ(images::taillePixel(project.db(), record), 0.0F);
    EXPECT_TRUE(images::setTaillePixel(project.db(), record, 0.125F));
    EXPECT_FALSE(images::setTaillePixel(project.db(), {.id = 99}, 0.125F));
    project.session.close();
    ASSERT_TRUE(project.open());
    EXPECT_EQ(images::taillePixel(project.db(), record), 0.125F);
}

TEST(Calibration, FindsTheRowByTheOlderNameOfTheIdentifier)
{
    QTemporaryDir folder;
    const auto database = jet::Database::Create(folder.filePath(u"ancien.hbx"_s), u";LANGID=0x0409;CP=1252;COUNTRY=0"_s);
    jet::TableDef table{.Name = u"Images"_s};
    table.Fields = {{.Name = u"ID Images"_s, .Type = jet::DataType::Long},
                    {.Name = u"ID Image"_s, .Type = jet::DataType::Long},
                    {.Name = u"TaillePixel"_s, .Type = jet::DataType::Single}};
    table.Indexes = {{.Name = u"PrimaryKey"_s, .Fields = {{u"ID Image"_s}}, .Primary = true, .Unique = true}};
    database->AppendTable(table);
    database->Execute(u"INSERT INTO Images ([ID Images],[ID Image]) VALUES (7,8)"_s);
    EXPECT_FALSE(images::setTaillePixel(*database, {.id = 7}, 2));
    EXPECT_TRUE(images::setTaillePixel(*database, {.id = 8}, 2));
}

TEST(Calibration, SpeaksOfSinglePrecisionNumbersInFrench)
{
    EXPECT_EQ(images::singleText(0), u"0"_s);
    EXPECT_EQ(images::singleText(1234.5F), u"1234,5"_s);
    EXPECT_EQ(images::singleText(0.1F), u"0,1"_s);
    EXPECT_EQ(images::singleOf(u" 12,5 "_s), 12.5F);
    EXPECT_EQ(images::singleOf(u"1 200.25"_s), 1200.25F);
    EXPECT_FALSE(images::singleOf(u"douze"_s));
    EXPECT_FALSE(images::singleOf(u"1e99"_s));
}

} // namespace
