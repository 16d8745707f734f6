#include "images/Cl_Exif.h"
#include "images/ImagePaths.h"
#include "images/Pictures.h"
#include "images/ThumbnailCache.h"
#include "jet/Recordset.h"
#include "support/Files.h"
#include "support/Project.h"

#include <QDir>
#include <QFile>

namespace {

using namespace Qt::StringLiterals;
using support::bytesOf;
using support::put;
using images::Cl_Exif;

/// The demo's photographs, whose licences lie beside them.
QString photograph(const QString& name)
{
    return qEnvironmentVariable("HERBORA_SOURCE") + u"/demo/images/"_s + name;
}

const QString withThumbnail = u"daisy_canon_s230.jpg"_s;

/// A picture that no camera wrote anything into.
QString drawing(const support::TestProject& project)
{
    const QString path = project.path(u"dessin.jpg"_s);
    QImage image(400, 300, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    EXPECT_TRUE(image.save(path));
    return path;
}

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

TEST(Exif, MeetsBrokenPictures)
{
    QTemporaryDir folder;
    const QByteArray good = bytesOf(photograph(withThumbnail));
    ASSERT_FALSE(good.isEmpty());
    Cl_Exif exif;
    EXPECT_FALSE(exif.OpenFile(folder.filePath(u"absent.jpg"_s)));
    put(folder.filePath(u"texte.jpg"_s), "pas une image");
    EXPECT_FALSE(exif.OpenFile(folder.filePath(u"texte.jpg"_s)));
    quint32 seed = 7;
    for (int round = 0; round < 40; ++round) {
        QByteArray broken = good.left(good.size() - round * 900);
        for (int i = 0; i < 30; ++i) {
            seed = seed * 1664525u + 1013904223u;
            broken[qsizetype(seed % 4000)] = char(seed >> 24);
        }
        const QString path = folder.filePath(u"abîmé.jpg"_s);
        put(path, broken);
        QVariant value;
        if (exif.OpenFile(path)) {
            for (const int tag : {270, 271, 20507, 33434, 36864, 36867, 37500, 1, 2})
                exif.GetExifData(tag, value);
        }
        Cl_Exif::ExtractThumbnail(path, folder.filePath(u"imagette.jpg"_s));
    }
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
    EXPECT_EQ(images::pictureMissing(u"z.jpg"_s), u"L'image z.jpg est introuvable dans les répertoires déclarés"_s);
}

TEST(ThumbnailCache, StoresOneRowForEachName)
{
    support::TestProject project;
    const QString cacheFile = project.path(u"projet.hbi"_s);
    project.clock.time = QDateTime::currentDateTime().addSecs(10);
    {
        images::ThumbnailCache cache(project.path(), project.clock);
        EXPECT_EQ(images::ThumbnailCache::fileOf(project.path()), cacheFile);
        EXPECT_TRUE(cache.read(u"a.jpg"_s).isNull());
        EXPECT_TRUE(cache.make(u"a.jpg"_s, photograph(withThumbnail)));
        EXPECT_TRUE(cache.make(u"b.jpg"_s, drawing(project))); // has none embedded: scaled
        EXPECT_FALSE(cache.make(u"c.jpg"_s, u"/absent.jpg"_s));
        EXPECT_FALSE(cache.read(u"A.JPG"_s).isNull());
        EXPECT_LE(cache.read(u"b.jpg"_s).width(), images::ThumbnailCache::side);
        EXPECT_TRUE(cache.make(u"a.jpg"_s, drawing(project)));
        const QString picture = project.path(u"neuf.jpg"_s);
        drawing(project);
        QFile::copy(project.path(u"dessin.jpg"_s), picture);
        QFile touched(picture);
        ASSERT_TRUE(touched.open(QIODevice::ReadWrite));
        touched.setFileTime(project.clock.time.addSecs(60), QFileDevice::FileModificationTime);
        touched.close();
        EXPECT_TRUE(cache.read(u"a.jpg"_s, picture).isNull()); // the picture is newer
    }
    jet::OpenOptions wrong;
    EXPECT_THROW(jet::Database::Open(cacheFile, wrong), jet::Error);
    wrong.password = u"pWaKmm37hQ5x8"_s;
    const auto database = jet::Database::Open(cacheFile, wrong);
    EXPECT_EQ(database->OpenRecordset(u"SELECT Count(*) FROM PGThumbnails"_s)->Value(0).toInt(), 2);
}

TEST(ThumbnailCache, IsMadeAnewWhenItIsNoCache)
{
    support::TestProject project;
    put(project.path(u"projet.hbi"_s), QByteArray(5000, 'x'));
    images::ThumbnailCache cache(project.path(), project.clock);
    EXPECT_TRUE(cache.notice().startsWith(u"Le cache d'imagettes a été refait : "_s));
    EXPECT_TRUE(cache.make(u"a.jpg"_s, drawing(project)));
    EXPECT_TRUE(QFile::exists(project.path(u"projet.hbi.ancien"_s)));
}

} // namespace
