// Small pictures of a project, kept in a file beside it.
#pragma once

#include "jet/Database.h"
#include "platform/Clock.h"

#include <QImage>
#include <memory>

namespace images {

/// The ".hbi" file beside the project file: table `PGThumbnails`, one row for each picture file name. It is only a cache:
/// one that is damaged or foreign is set aside and made anew.
class ThumbnailCache {
public:
    /// Opens or creates the cache of a project. Throws jet::Error when it can be neither opened nor made.
    ThumbnailCache(const QString& project, const platform::Clock& clock);
    ~ThumbnailCache();

    static QString fileOf(const QString& project); ///< ".hbx" replaced by ".hbi".
    /// Said once where the cache had to be set aside; empty otherwise.
    const QString& notice() const { return m_notice; }

    /// The thumbnail of a picture name; a null image when there is none, or when the picture (its path) is newer.
    QImage read(const QString& name, const QString& path = {});
    /// Makes the thumbnail of the picture at `path` (its embedded one, else scaled) and stores it. False when it cannot.
    bool make(const QString& name, const QString& path);
    /// Stores JPEG bytes under a name, replacing those of the same name.
    void store(const QString& name, const QByteArray& jpeg);

    static constexpr int side = 160; ///< Pixels of the longer side of a thumbnail made by scaling.

private:
    void open(const QString& file);
    void setAside(const QString& file, const QString& why);

    const platform::Clock& m_clock;
    std::unique_ptr<jet::Database> m_database;
    QString m_notice;
};

} // namespace images
