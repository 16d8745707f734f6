#include "images/ThumbnailCache.h"

#include "data/CoreSchema.h"
#include "images/Cl_Exif.h"
#include "images/Pictures.h"
#include "jet/Recordset.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QTransform>

namespace images {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(cacheLog, "herbora.thumbnails")

const QString password = u"pWaKmm37hQ5x8"_s;
const QString tableName = u"PGThumbnails"_s;
const QString primaryIndex = u"Unique"_s;
constexpr qsizetype chunk = 16 * 1024;
constexpr int scaledQuality = 85;
constexpr int embeddedQuality = 50;
/// Cameras embed 160 × 120; some small screens' worth. More is no thumbnail.
constexpr int mostEmbedded = 1600;
/// A longer one has no room in the table: its thumbnail is made each time.
constexpr int longestName = 255;
constexpr int tagOrientation = 274;

/// The numbers by which the engine says that a file is none of ours (a wrong password, another kind of file), or
/// broken. What another instance holds, or the disk refuses, is no reason to set a file aside.
bool isForeign(int number)
{
    return number == 3031 || number == 3049 || number == 3343 || number == 3265;
}

jet::TableDef table()
{
    jet::TableDef definition{.Name = tableName};
    definition.Fields = {
        {.Name = u"Fichier"_s, .Type = jet::DataType::Text, .Size = 255, .Required = true, .AllowZeroLength = true},
        {.Name = u"Diapositive"_s, .Type = jet::DataType::LongBinary},
        {.Name = u"DateCreate"_s, .Type = jet::DataType::Text, .Size = 30},
        {.Name = u"DateModify"_s, .Type = jet::DataType::Text, .Size = 30}};
    definition.Indexes = {{.Name = primaryIndex, .Fields = {{u"Fichier"_s}}, .Primary = true, .Unique = true}};
    return definition;
}

QByteArray jpegOf(const QImage& image, int quality)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "JPEG", quality) ? bytes : QByteArray();
}

/// The image as it is to be seen, by the number that EXIF gives for it.
QImage turned(const QImage& image, int orientation)
{
    const QImage mirrored = orientation == 2 || orientation == 5 || orientation == 7 ? image.mirrored(true, false)
                            : orientation == 4                                      ? image.mirrored(false, true)
                                                                                    : image;
    const int degrees = orientation == 3                       ? 180
                        : orientation == 6 || orientation == 7 ? 90
                        : orientation == 8 || orientation == 5 ? 270
                                                               : 0;
    return degrees == 0 ? mirrored : mirrored.transformed(QTransform().rotate(degrees));
}

QByteArray embedded(const QString& path)
{
    Cl_Exif exif;
    QVariant bytes;
    if (!exif.OpenFile(path) || !exif.GetExifData(tagThumbnail, bytes))
        return {};
    const QImage image = decodedWhole(bytes.toByteArray());
    if (image.isNull() || std::max(image.width(), image.height()) > mostEmbedded)
        return {};
    QVariant orientation;
    exif.GetExifData(tagOrientation, orientation);
    return jpegOf(turned(image, orientation.toList().value(0).toInt()), embeddedQuality);
}

} // namespace

Thumbnail makeThumbnail(const QString& name, const QString& path)
{
    Thumbnail made{.name = name, .jpeg = embedded(path), .date = QFileInfo(path).lastModified(), .failure = {}};
    try {
        if (made.jpeg.isEmpty())
            made.jpeg = jpegOf(loadPicture(path, ThumbnailCache::side), scaledQuality);
    } catch (const jet::Error& error) {
        made.failure = error.description();
    }
    return made;
}

// --- The file ------------------------------------------------------------------------------------

QString ThumbnailCache::fileOf(const QString& project)
{
    const QString extension = u".hbx"_s;
    if (project.endsWith(extension, Qt::CaseInsensitive))
        return project.chopped(extension.size()) + u".hbi"_s;
    return project + u".hbi"_s;
}

ThumbnailCache::ThumbnailCache(const QString& project, const platform::Clock& clock)
    : m_clock(clock), m_file(fileOf(project))
{
    try {
        open();
    } catch (const jet::Error& error) {
        if (!isForeign(error.number()) || !QFileInfo::exists(m_file))
            throw;
        setAside(error);
    }
}

ThumbnailCache::~ThumbnailCache() = default;

void ThumbnailCache::open()
{
    m_database.reset();
    if (QFileInfo::exists(m_file)) {
        jet::OpenOptions options;
        options.password = password;
        m_database = jet::Database::Open(m_file, options);
    } else {
        m_database = jet::Database::Create(m_file, data::localeGeneral + u";pwd="_s + password);
    }
    const jet::TableDef* present = m_database->schema().table(tableName);
    if (!present) {
        m_database->AppendTable(table());
        return;
    }
    for (const jet::Field& field : table().Fields) {
        if (!present->field(field.Name))
            jet::fail(3265, field.Name);
    }
}

/// Makes an empty cache in the place of this one, which is kept beside it.
void ThumbnailCache::setAside(const jet::Error& why)
{
    m_database.reset();
    for (const QString& ending : {QString(), u"-journal"_s, u"-wal"_s}) {
        const QString old = m_file + u".ancien"_s + ending;
        QFile::remove(old);
        QFile::rename(m_file + ending, old);
    }
    m_notice = u"Le cache d'imagettes a été refait : "_s + why.description();
    qCWarning(cacheLog).noquote() << m_file << why.description();
    open();
}

// --- Rows ----------------------------------------------------------------------------------------

/// The table at the row of a name; null when there is none, or one of another picture.
std::unique_ptr<jet::Recordset> ThumbnailCache::found(const QString& name, const QString& path)
{
    auto rows = m_database->OpenRecordset(tableName, jet::RecordsetType::Table);
    rows->SetIndex(primaryIndex);
    rows->Seek(u"="_s, {name});
    if (rows->NoMatch())
        return {};
    const bool isOther = !path.isEmpty()
                         && platform::stamp(QFileInfo(path).lastModified()) != rows->Value(u"DateCreate").toString();
    return isOther ? nullptr : std::move(rows);
}

bool ThumbnailCache::holds(const QString& name, const QString& path)
{
    try {
        return found(name, path) != nullptr;
    } catch (const jet::Error& error) {
        if (!isForeign(error.number()))
            throw;
        setAside(error);
        return false;
    }
}

QImage ThumbnailCache::read(const QString& name, const QString& path)
{
    try {
        const auto row = found(name, path);
        if (!row)
            return {};
        const qint64 size = row->FieldSize(u"Diapositive");
        return decodedWhole(row->GetChunk(u"Diapositive", 0, size).toByteArray());
    } catch (const jet::Error& error) {
        if (!isForeign(error.number()))
            throw;
        setAside(error);
        return {};
    }
}

void ThumbnailCache::storeRow(jet::Recordset& rows, const Thumbnail& thumbnail)
{
    rows.Seek(u"="_s, {thumbnail.name});
    if (rows.NoMatch()) {
        rows.AddNew();
        rows.SetValue(u"Fichier", thumbnail.name);
    } else {
        rows.Edit();
    }
    for (qsizetype at = 0; at < thumbnail.jpeg.size(); at += chunk)
        rows.AppendChunk(u"Diapositive", thumbnail.jpeg.mid(at, chunk));
    rows.SetValue(u"DateCreate", platform::stamp(thumbnail.date));
    rows.SetValue(u"DateModify", platform::stamp(m_clock));
    rows.Update();
}

void ThumbnailCache::store(const QList<Thumbnail>& thumbnails)
{
    const auto writeAll = [&] {
        jet::Operation operation(*m_database, u"Imagettes"_s);
        const auto rows = m_database->OpenRecordset(tableName, jet::RecordsetType::Table);
        rows->SetIndex(primaryIndex);
        for (const Thumbnail& thumbnail : thumbnails) {
            if (!thumbnail.jpeg.isEmpty() && thumbnail.name.size() <= longestName)
                storeRow(*rows, thumbnail);
        }
        operation.commit();
    };
    try {
        writeAll();
    } catch (const jet::Error& error) {
        if (!isForeign(error.number()))
            throw;
        setAside(error);
        writeAll();
    }
}

bool ThumbnailCache::make(const QString& name, const QString& path)
{
    const Thumbnail made = makeThumbnail(name, path);
    try {
        if (!made.jpeg.isEmpty())
            store({made});
    } catch (const jet::Error& error) {
        qCWarning(cacheLog).noquote() << name << error.description();
        return false;
    }
    return !made.jpeg.isEmpty();
}

} // namespace images
