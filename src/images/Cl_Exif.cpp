#include "images/Cl_Exif.h"

#include "images/Pictures.h"
#include "platform/ReplaceFile.h"

#include <QBuffer>
#include <QDateTime>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QLoggingCategory>
#include <exiv2/exiv2.hpp>
#include <mutex>

namespace images {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(exifLog, "herbora.exif", QtInfoMsg)

constexpr int tagDescription = 270;
constexpr int tagArtist = 315;
constexpr int tagExifVersion = 36864;
constexpr int tagDateTaken = 36867;
constexpr int tagDateDigitised = 36868;
constexpr int tagFlashPixVersion = 40960;
constexpr int thumbnailQuality = 50;
/// The bytes that a picture file may have to be read whole; beyond it is no photograph.
constexpr qint64 largestFile = 512LL << 20;

const QString dateFormat = u"yyyy:MM:dd HH:mm:ss"_s;

QByteArray bytesOf(const Exiv2::Value& value)
{
    QByteArray bytes(qsizetype(value.size()), '\0');
    value.copy(reinterpret_cast<Exiv2::byte*>(bytes.data()), Exiv2::littleEndian);
    return bytes;
}

QString asciiOf(const Exiv2::Value& value)
{
    QByteArray bytes = bytesOf(value);
    const qsizetype zero = bytes.indexOf('\0');
    if (zero >= 0)
        bytes.truncate(zero);
    return QString::fromLatin1(bytes);
}

/// The 32-bit words of the value, as they lie in it.
QVariantList wordsOf(const Exiv2::Value& value)
{
    const QByteArray bytes = bytesOf(value);
    QVariantList words;
    for (qsizetype at = 0; at + 4 <= bytes.size(); at += 4) {
        const auto byte = [&](qsizetype i) { return quint32(quint8(bytes[at + i])); };
        words << qint32(byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24);
    }
    return words;
}

QVariantList shortsOf(const Exiv2::Value& value)
{
    QVariantList list;
    for (long i = 0; i < long(value.count()); ++i)
        list << int(value.toLong(i));
    return list;
}

QVariant converted(const Exiv2::Exifdatum& datum)
{
    const Exiv2::Value& value = datum.value();
    const int tag = datum.tag();
    if (tag == tagExifVersion || tag == tagFlashPixVersion)
        return QString::fromLatin1(bytesOf(value));
    switch (value.typeId()) {
    case Exiv2::asciiString: {
        const QString text = asciiOf(value);
        if (tag != tagDateTaken && tag != tagDateDigitised)
            return text;
        const QDateTime date = QDateTime::fromString(text.trimmed(), dateFormat);
        return date.isValid() ? QVariant(date) : QVariant(text);
    }
    case Exiv2::unsignedShort:
    case Exiv2::signedShort:
        return shortsOf(value);
    case Exiv2::unsignedLong:
    case Exiv2::signedLong:
    case Exiv2::tiffFloat:
    case Exiv2::unsignedRational:
    case Exiv2::signedRational:
    case Exiv2::tiffDouble:
        return wordsOf(value);
    default:
        return bytesOf(value);
    }
}

/// The first property of that number; the picture's own directories come before those of its thumbnail.
const Exiv2::Exifdatum* find(const Exiv2::ExifData& data, int tag)
{
    for (const char* group : {"Image", "Photo", "GPSInfo", "Iop"}) {
        for (const Exiv2::Exifdatum& datum : data) {
            if (datum.tag() == tag && datum.groupName() == group)
                return &datum;
        }
    }
    return nullptr;
}

/// Names in Exiv2 of the three properties that may be written.
const char* writtenKey(int tag)
{
    switch (tag) {
    case tagDescription: return "Exif.Image.ImageDescription";
    case tagArtist: return "Exif.Image.Artist";
    case tagDateTaken: return "Exif.Photo.DateTimeOriginal";
    default: return nullptr;
    }
}

void forget(Exiv2::ExifData& data, int tag)
{
    for (auto datum = data.begin(); datum != data.end();) {
        const bool stands = datum->tag() == tag && (datum->groupName() == "Image" || datum->groupName() == "Photo");
        datum = stands ? data.erase(datum) : std::next(datum);
    }
}

QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly) || file.size() > largestFile)
        return {};
    return file.readAll();
}

QByteArray encoded(const QImage& image, int quality)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "JPEG", quality) ? bytes : QByteArray();
}

Exiv2::Image::AutoPtr exivImage(const QByteArray& bytes)
{
    return Exiv2::ImageFactory::open(reinterpret_cast<const Exiv2::byte*>(bytes.constData()), long(bytes.size()));
}

/// What Exiv2 finds wrong with a camera's properties is no news to a user.
void logQuietly(int, const char* message)
{
    qCDebug(exifLog).noquote() << QString::fromLocal8Bit(message).trimmed();
}

/// Exiv2 has one XMP parser for all threads, which asks for a lock of ours.
void lockXmp(void* lock, bool taken)
{
    auto* mutex = static_cast<std::mutex*>(lock);
    taken ? mutex->lock() : mutex->unlock();
}

void prepareExiv()
{
    static std::mutex xmpLock;
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::LogMsg::setHandler(logQuietly);
        Exiv2::XmpParser::initialize(lockXmp, &xmpLock);
    });
}

} // namespace

struct Cl_Exif::Picture {
    QByteArray bytes;
    Exiv2::ExifData exif;
    Exiv2::XmpData xmp;
    Exiv2::IptcData iptc;
    std::string comment;
};

Cl_Exif::Cl_Exif() = default;
Cl_Exif::~Cl_Exif() = default;

bool Cl_Exif::OpenFile(const QString& path)
{
    return OpenBytes(fileBytes(path));
}

bool Cl_Exif::OpenBytes(const QByteArray& bytes)
{
    CloseFile();
    prepareExiv();
    auto picture = std::make_unique<Picture>();
    picture->bytes = bytes;
    QBuffer buffer(&picture->bytes);
    buffer.open(QIODevice::ReadOnly);
    if (picture->bytes.isEmpty() || !QImageReader(&buffer).canRead())
        return false;
    try {
        const auto image = exivImage(picture->bytes);
        image->readMetadata();
        picture->exif = image->exifData();
        picture->xmp = image->xmpData();
        picture->iptc = image->iptcData();
        picture->comment = image->comment();
    } catch (const std::exception& error) {
        // A picture with broken properties is still a picture.
        qCDebug(exifLog).noquote() << error.what();
    }
    m_picture = std::move(picture);
    return true;
}

void Cl_Exif::CloseFile()
{
    m_picture.reset();
}

bool Cl_Exif::GetExifData(int tag, QVariant& value) const
{
    if (!m_picture)
        return false;
    try {
        if (tag == tagThumbnail) {
            const Exiv2::DataBuf thumbnail = Exiv2::ExifThumbC(m_picture->exif).copy();
            if (thumbnail.size_ <= 0)
                return false;
            value = QByteArray(reinterpret_cast<const char*>(thumbnail.pData_), qsizetype(thumbnail.size_));
            return true;
        }
        const Exiv2::Exifdatum* datum = find(m_picture->exif, tag);
        if (!datum)
            return false;
        value = converted(*datum);
        return true;
    } catch (const std::exception& error) {
        qCDebug(exifLog).noquote() << "tag" << tag << error.what();
        return false;
    }
}

bool Cl_Exif::SetExifData(int tag, const QVariant& value)
{
    const char* key = writtenKey(tag);
    if (!m_picture || !key)
        return false;
    QByteArray text;
    if (tag == tagDateTaken) {
        if (value.typeId() != QMetaType::QDateTime || !value.toDateTime().isValid())
            return false;
        text = value.toDateTime().toString(dateFormat).toLatin1();
    } else {
        text = value.toString().toLatin1();
    }
    try {
        Exiv2::AsciiValue ascii; // counts its closing zero
        ascii.read(text.toStdString());
        // What stands there may be of another type, or in the other directory, where it would be read first.
        forget(m_picture->exif, tag);
        m_picture->exif[key].setValue(&ascii);
        return true;
    } catch (const std::exception& error) {
        qCDebug(exifLog).noquote() << "tag" << tag << error.what();
        return false;
    }
}

QByteArray Cl_Exif::SavedBytes(int quality) const
{
    // The turn that the camera asks for stays a property: the pixels are written as they lie.
    const QByteArray jpeg = m_picture ? encoded(decodedWhole(m_picture->bytes), quality) : QByteArray();
    if (jpeg.isEmpty())
        return {};
    try {
        const auto image = exivImage(jpeg);
        image->readMetadata();
        image->setExifData(m_picture->exif);
        image->setXmpData(m_picture->xmp);
        image->setIptcData(m_picture->iptc);
        image->setComment(m_picture->comment);
        image->writeMetadata();
        Exiv2::BasicIo& io = image->io();
        io.open();
        const Exiv2::DataBuf whole = io.read(long(io.size()));
        return QByteArray(reinterpret_cast<const char*>(whole.pData_), qsizetype(whole.size_));
    } catch (const std::exception& error) {
        qCWarning(exifLog).noquote() << error.what();
        return {};
    }
}

bool Cl_Exif::SaveFile(const QString& path, int quality)
{
    const QByteArray bytes = SavedBytes(quality);
    if (bytes.isEmpty())
        return false;
    const QString error = platform::replaceFile(path, bytes);
    if (!error.isEmpty())
        qCWarning(exifLog).noquote() << path << error;
    return error.isEmpty();
}

bool Cl_Exif::ExtractThumbnail(const QString& path, const QString& destination)
{
    Cl_Exif exif;
    QVariant bytes;
    if (!exif.OpenFile(path) || !exif.GetExifData(tagThumbnail, bytes))
        return false;
    const QImage thumbnail = decodedWhole(bytes.toByteArray());
    if (thumbnail.isNull())
        return false;
    if (destination.isEmpty())
        return true;
    return platform::replaceFile(destination, encoded(thumbnail, thumbnailQuality)).isEmpty();
}

} // namespace images
