// Feeds bytes to Cl_Exif as a picture: as they are, and as the EXIF block of a picture that is sound.
#include "images/Cl_Exif.h"

#include <QBuffer>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLoggingCategory>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;
using images::Cl_Exif;

namespace {

constexpr int longestBlock = 65000; ///< A JPEG segment has no more.
constexpr int tagThumbnail = 20507;
/// Saving costs a decoding: only now and then.
constexpr int everySaving = 64;

void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

const QByteArray& sound()
{
    static const QByteArray bytes = [] {
        QImage image(16, 12, QImage::Format_RGB32);
        image.fill(Qt::darkGreen);
        QByteArray made;
        QBuffer buffer(&made);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "JPEG");
        return made;
    }();
    return bytes;
}

QByteArray asBlock(const QByteArray& tiff)
{
    const QByteArray block = QByteArray("Exif\0\0", 6) + tiff.left(longestBlock);
    const auto size = quint16(block.size() + 2);
    return QByteArray("\xff\xd8\xff\xe1", 4) + char(size >> 8) + char(size) + block + sound().mid(2);
}

void readAll(const Cl_Exif& exif)
{
    QVariant value;
    for (const int tag : {0, 1, 2, 3, 4, 5, 6, 256, 270, 271, 272, 274, 306, 315, tagThumbnail, 33434, 33437, 34665, 34853,
                          34855, 36864, 36867, 36868, 37385, 37386, 37500, 40960, 65535}) {
        if (!exif.GetExifData(tag, value))
            continue;
        require(value.isValid(), "a property that is there has a value");
        if (value.typeId() == QMetaType::QString)
            require(!value.toString().endsWith(QChar(u'\0')) || tag == 36864 || tag == 40960, "a text has no closing zero");
    }
}

void use(const QByteArray& picture, bool saves)
{
    Cl_Exif exif;
    if (!exif.OpenBytes(picture))
        return;
    readAll(exif);
    require(!exif.SetExifData(36867, u"hier"_s), "a date that is none is refused");
    require(exif.SetExifData(270, u"texte"_s), "a description is taken");
    QVariant value;
    require(exif.GetExifData(270, value) && value.toString() == u"texte", "what was written is read");
    if (saves)
        exif.SavedBytes(70);
}

} // namespace

// The demo's photographs go into the first corpus folder, before the fuzzer reads it: the head of each, and its block.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    QLoggingCategory::setFilterRules(u"*=false"_s);
    for (int i = 1; i < *argc; ++i) {
        const QString argument = QString::fromLocal8Bit((*argv)[i]);
        if (argument.startsWith(u'-') || !QDir(argument).exists())
            continue;
        const QDir images(QStringLiteral(HERBORA_SOURCE "/demo/images"));
        for (const QString& name : images.entryList({u"*.jpg"_s}, QDir::Files)) {
            QFile photograph(images.filePath(name));
            if (!photograph.open(QIODevice::ReadOnly))
                continue;
            const QByteArray head = photograph.read(longestBlock);
            const qsizetype block = head.indexOf(QByteArray("Exif\0\0", 6));
            QFile seed(QDir(argument).filePath(u"graine-"_s + name));
            if (seed.open(QIODevice::WriteOnly))
                seed.write(block >= 0 ? head.mid(block + 6, 12'000) : head.left(8'000));
        }
        break;
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static int count = 0;
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const bool saves = ++count % everySaving == 0;
    use(bytes, saves);
    use(asBlock(bytes), saves);
    return 0;
}
