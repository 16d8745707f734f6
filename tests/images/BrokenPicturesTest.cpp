// Whatever a camera, a card or a transfer made of a picture.
#include "PictureFiles.h"
#include "images/PictureDetails.h"
#include "images/Pictures.h"
#include "images/ThumbnailCache.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <sys/resource.h>

namespace {

using namespace Qt::StringLiterals;
using images::Cl_Exif;
using support::bytesOf;
using support::photograph;
using support::withThumbnail;

struct Broken {
    QString name;
    QByteArray bytes;
    bool isPicture; ///< Its pixels can be read all the same.
};

QByteArray good()
{
    return bytesOf(photograph(withThumbnail));
}

QByteArray encoded(const QSize& size, const char* format)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

QByteArray bigEndian(quint16 number)
{
    return QByteArray(1, char(number >> 8)) + QByteArray(1, char(number));
}

/// The frame header of the JPEG says another size.
QByteArray claiming(QByteArray jpeg, quint16 width, quint16 height, char frame)
{
    const qsizetype at = jpeg.indexOf(QByteArray("\xff\xc0", 2));
    jpeg[at + 1] = frame;
    jpeg.replace(at + 5, 4, bigEndian(height) + bigEndian(width));
    return jpeg;
}

/// A JPEG with these bytes as its EXIF block.
QByteArray withExif(const QByteArray& tiff)
{
    const QByteArray block = QByteArray("Exif\0\0", 6) + tiff;
    return QByteArray("\xff\xd8\xff\xe1", 4) + bigEndian(quint16(block.size() + 2)) + block + encoded({64, 48}, "JPEG").mid(2);
}

/// Little-endian TIFF: one directory of one entry, and where the next directory is.
QByteArray tiff(quint16 tag, quint16 type, quint32 count, quint32 value, quint32 next)
{
    QByteArray bytes("II*\0\x08\0\0\0\x01\0", 10);
    const auto add = [&bytes](quint32 number, int size) {
        for (int i = 0; i < size; ++i)
            bytes += char(number >> (8 * i));
    };
    add(tag, 2);
    add(type, 2);
    add(count, 4);
    add(value, 4);
    add(next, 4);
    return bytes;
}

QList<Broken> corpus()
{
    QList<Broken> all{
        {u"zéro octet"_s, {}, false},
        {u"texte"_s, "pas une image", false},
        {u"début seul"_s, QByteArray("\xff\xd8\xff\xe1", 4), false},
        {u"tronquée dans l'EXIF"_s, good().left(900), false},
        {u"tronquée dans les pixels"_s, good().left(good().size() / 2), true},
        {u"chaîne de répertoires sans fin"_s, withExif(tiff(0x010e, 2, 4, 0, 8)), true},
        {u"sous-répertoire qui est lui-même"_s, withExif(tiff(0x8769, 4, 1, 8, 0)), true},
        {u"longueur fausse"_s, withExif(tiff(0x010e, 2, 0x7fffffff, 8, 0)), true},
        {u"position fausse"_s, withExif(tiff(0x010e, 2, 400, 0xfffffff0, 0)), true},
        {u"fractions sans nombre"_s, withExif(tiff(0x829a, 5, 0x20000001, 8, 0)), true},
        {u"dimensions énormes"_s, claiming(encoded({64, 48}, "JPEG"), 65500, 65500, '\xc0'), false},
        {u"dimensions énormes, progressive"_s, claiming(encoded({64, 48}, "JPEG"), 65500, 65500, '\xc2'), false},
        {u"dimensions nulles"_s, claiming(encoded({64, 48}, "JPEG"), 0, 0, '\xc0'), false},
    };
    QByteArray png = encoded({64, 48}, "PNG");
    png.replace(16, 8, QByteArray("\0\0\xff\xff\0\0\xff\xff", 8));
    all << Broken{u"PNG énorme"_s, png, false};
    return all;
}

qint64 mostMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return qint64(usage.ru_maxrss) * 1024;
}

void readEverything(const QString& path)
{
    Cl_Exif exif;
    QVariant value;
    if (exif.OpenFile(path)) {
        for (int tag = 0; tag < 0x10000; tag += tag < 0x40 ? 1 : 7)
            exif.GetExifData(tag, value);
        for (const int tag : {270, 271, 274, 315, 20507, 33434, 34853, 36864, 36867, 37385, 37500, 40960})
            exif.GetExifData(tag, value);
        exif.SetExifData(270, u"essai"_s);
        exif.SavedBytes(70);
    }
    images::pictureDetails(path);
}

TEST(BrokenPictures, AreMetWithAMessageAndWithinBounds)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"image.jpg"_s);
    const qint64 before = mostMemory();
    for (const Broken& broken : corpus()) {
        SCOPED_TRACE(broken.name.toStdString());
        support::put(path, broken.bytes);
        readEverything(path);
        const images::Thumbnail made = images::makeThumbnail(u"image.jpg"_s, path);
        EXPECT_EQ(!made.jpeg.isEmpty(), broken.isPicture);
        if (!broken.isPicture) {
            EXPECT_EQ(made.failure, u"Erreur de chargement de l'image "_s + path);
            EXPECT_THROW(images::viewPicture(path, 1000), jet::Error);
            EXPECT_THROW(images::viewPicture(path, 0), jet::Error);
        } else {
            EXPECT_FALSE(images::viewPicture(path, 0).image.isNull());
        }
    }
    EXPECT_LT(mostMemory() - before, 200LL << 20);
}

TEST(BrokenPictures, WithAnyByteChangedAreStillRead)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"abîmée.jpg"_s);
    const QByteArray whole = good();
    ASSERT_FALSE(whole.isEmpty());
    quint32 seed = 7;
    for (int round = 0; round < 60; ++round) {
        QByteArray broken = whole.left(whole.size() - round * 900);
        for (int i = 0; i < 30; ++i) {
            seed = seed * 1664525u + 1013904223u;
            broken[qsizetype(seed % 4000)] = char(seed >> 24);
        }
        support::put(path, broken);
        Cl_Exif exif;
        QVariant value;
        if (exif.OpenFile(path)) {
            for (const int tag : {270, 271, 20507, 33434, 36864, 36867, 37500, 1, 2})
                exif.GetExifData(tag, value);
        }
        images::makeThumbnail(u"x"_s, path);
    }
}

} // namespace
