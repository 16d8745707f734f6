#include "images/ThumbnailCache.h"

#include "data/CoreSchema.h"
#include "images/Cl_Exif.h"
#include "images/Pictures.h"
#include "jet/Recordset.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QTemporaryDir>

namespace images {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(cacheLog, "herbora.thumbnails")

const QString password = u"pWaKmm37hQ5x8"_s;
const QString tableName = u"PGThumbnails"_s;
constexpr qsizetype chunk = 16 * 1024;
constexpr int thumbnailQuality = 75;
/// What another instance holds is no reason to set a file aside.
constexpr int inUse = 3045;

jet::TableDef table()
{
    jet::TableDef definition{.Name = tableName};
    definition.Fields = {
        {.Name = u"Fichier"_s, .Type = jet::DataType::Text, .Size = 255, .Required = true, .AllowZeroLength = true},
        {.Name = u"Diapositive"_s, .Type = jet::DataType::LongBinary},
        {.Name = u"DateCreate"_s, .Type = jet::DataType::Text, .Size = 30},
        {.Name = u"DateModify"_s, .Type = jet::DataType::Text, .Size = 30}};
    definition.Indexes = {{.Name = u"Unique"_s, .Fields = {{u"Fichier"_s}}, .Primary = true, .Unique = true}};
    return definition;
}

QByteArray embedded(const QString& path)
{
    QTemporaryDir folder; // the thumbnail passes through a file, as the extraction writes one
    const QString file = folder.filePath(u"Icon.tmp"_s);
    if (!Cl_Exif::ExtractThumbnail(path, file))
        return {};
    QFile thumbnail(file);
    return thumbnail.open(QIODevice::ReadOnly) ? thumbnail.readAll() : QByteArray();
}

QByteArray scaled(const QString& path)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return loadPicture(path, ThumbnailCache::side).save(&buffer, "JPEG", thumbnailQuality) ? bytes : QByteArray();
}

} // namespace

QString ThumbnailCache::fileOf(const QString& project)
{
    const QString extension = u".hbx"_s;
    if (project.endsWith(extension, Qt::CaseInsensitive))
        return project.chopped(extension.size()) + u".hbi"_s;
    return project + u".hbi"_s;
}

ThumbnailCache::ThumbnailCache(const QString& project, const platform::Clock& clock) : m_clock(clock)
{
    const QString file = fileOf(project);
    try {
        open(file);
    } catch (const jet::Error& error) {
        if (error.number() == inUse || !QFileInfo::exists(file))
            throw;
        setAside(file, error.description());
        open(file);
    }
}

ThumbnailCache::~ThumbnailCache() = default;

void ThumbnailCache::open(const QString& file)
{
    m_database.reset();
    if (QFileInfo::exists(file)) {
        jet::OpenOptions options;
        options.password = password;
        m_database = jet::Database::Open(file, options);
    } else {
        m_database = jet::Database::Create(file, data::localeGeneral + u";pwd="_s + password);
    }
    if (!m_database->schema().table(tableName))
        m_database->AppendTable(table());
}

void ThumbnailCache::setAside(const QString& file, const QString& why)
{
    const QString old = file + u".ancien"_s;
    m_database.reset();
    QFile::remove(old);
    QFile::rename(file, old);
    m_notice = u"Le cache d'imagettes a été refait : "_s + why;
    qCWarning(cacheLog).noquote() << file << why;
}

QImage ThumbnailCache::read(const QString& name, const QString& path)
{
    const auto rows = m_database->OpenRecordset(tableName, jet::RecordsetType::Table);
    rows->SetIndex(u"Unique"_s);
    rows->Seek(u"="_s, {name});
    if (rows->NoMatch())
        return {};
    const QFileInfo picture(path);
    if (!path.isEmpty() && platform::stamp(picture.lastModified()) > rows->Value(u"DateModify").toString())
        return {}; // the picture is newer than its thumbnail
    const QByteArray bytes = rows->GetChunk(u"Diapositive", 0, rows->FieldSize(u"Diapositive")).toByteArray();
    return QImage::fromData(bytes);
}

void ThumbnailCache::store(const QString& name, const QByteArray& jpeg)
{
    const QString now = platform::stamp(m_clock);
    const auto rows = m_database->OpenRecordset(tableName, jet::RecordsetType::Table);
    rows->SetIndex(u"Unique"_s);
    rows->Seek(u"="_s, {name});
    if (rows->NoMatch()) {
        rows->AddNew();
        rows->SetValue(u"Fichier", name);
        rows->SetValue(u"DateCreate", now);
    } else {
        rows->Edit();
    }
    for (qsizetype at = 0; at < jpeg.size(); at += chunk)
        rows->AppendChunk(u"Diapositive", jpeg.mid(at, chunk));
    rows->SetValue(u"DateModify", now);
    rows->Update();
}

bool ThumbnailCache::make(const QString& name, const QString& path)
{
    try {
        QByteArray jpeg = embedded(path);
        if (jpeg.isEmpty())
            jpeg = scaled(path);
        if (jpeg.isEmpty())
            return false;
        store(name, jpeg);
        return true;
    } catch (const jet::Error& error) {
        qCWarning(cacheLog).noquote() << name << error.description();
        return false;
    }
}

} // namespace images
