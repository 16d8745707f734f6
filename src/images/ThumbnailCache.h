// Small pictures of a project, kept in a file beside it.
#pragma once

#include "jet/Database.h"
#include "platform/Clock.h"

#include <QImage>
#include <memory>

namespace images {

/// A small picture on its way into the cache.
struct Thumbnail {
    QString name;    ///< Of the picture, as records have it.
    QByteArray jpeg; ///< Empty where none could be made.
    QDateTime date;  ///< Of the picture file when it was read.
    QString failure; ///< Why there is none.
};

/// The thumbnail of the picture at `path`: the one that the camera embedded, else the picture scaled to `side`; upright
/// in either case. Touches no cache: may be called on any thread.
Thumbnail makeThumbnail(const QString& name, const QString& path);

/// The ".hbi" file beside the project file: table `PGThumbnails`, one row for each picture file name. It is only a cache:
/// one that is damaged or foreign is set aside and made anew, whether that shows when it is opened or later.
///
/// `DateCreate` holds the date of the picture file, `DateModify` that of the caching. One thread at a time may use it.
class ThumbnailCache {
public:
    /// Opens or creates the cache of a project. Throws jet::Error when it can be neither opened nor made.
    ThumbnailCache(const QString& project, const platform::Clock& clock);
    ~ThumbnailCache();

    static QString fileOf(const QString& project); ///< ".hbx" replaced by ".hbi".
    /// Said where the cache had to be set aside; empty otherwise.
    const QString& notice() const { return m_notice; }

    /// The thumbnail of a picture name; a null image when there is none, or when the picture (its path) is another
    /// one than that which the thumbnail was made of, by its date.
    QImage read(const QString& name, const QString& path = {});
    /// Whether read() would give one; nothing is decoded.
    bool holds(const QString& name, const QString& path = {});
    /// Makes the thumbnail of the picture at `path` and stores it. False when it cannot.
    bool make(const QString& name, const QString& path);
    /// Stores thumbnails, each replacing that of the same name; all of them at once, which costs as much as one.
    /// Throws jet::Error.
    void store(const QList<Thumbnail>& thumbnails);

    static constexpr int side = 160; ///< Pixels of the longer side of a thumbnail made by scaling.

private:
    void open();
    void setAside(const jet::Error& why);
    std::unique_ptr<jet::Recordset> found(const QString& name, const QString& path);
    void storeRow(jet::Recordset& rows, const Thumbnail& thumbnail);

    const platform::Clock& m_clock;
    QString m_file;
    std::unique_ptr<jet::Database> m_database;
    QString m_notice;
};

} // namespace images
