// Thumbnails beside the windows.
#pragma once

#include "images/ThumbnailCache.h"

#include <QObject>
#include <QStringList>
#include <QThreadPool>

namespace images {

/// Brings thumbnails of one project: from the cache, else made of the picture and kept there. Whoever shows pictures says
/// what is in sight; that is done first and in this order, and what is no longer asked for is dropped. Nothing blocks
/// the thread that asks.
///
/// Pictures are decoded by as many threads as the machine has; the cache belongs to one more, which has it alone. It is
/// opened at the first need; where it cannot be had, thumbnails are made each time.
class ThumbnailLoader : public QObject {
    Q_OBJECT
public:
    ThumbnailLoader(const QString& project, const platform::Clock& clock, QObject* parent = nullptr);
    ~ThumbnailLoader() override; ///< Waits for what is being decoded, and keeps what was made.

    /// Where names are looked for (findPicture).
    void setFolders(const QStringList& folders);
    /// What `asker` has in sight, the most wanted first, instead of what it asked for before. The last asker comes first. An
    /// empty list takes everything back.
    void want(const void* asker, const QStringList& names);
    bool isIdle() const;

Q_SIGNALS:
    void ready(const QString& name, const QImage& thumbnail);
    /// There is none: the picture is missing or broken.
    void failed(const QString& name, const QString& why);
    void notice(const QString& text); ///< About the cache.
    void idle();                      ///< Everything wanted is there, and kept.

private:
    struct State;
    void startCacheThread();
    void startMakers();
    void serveCache();
    void look(const QString& name);
    QImage readFrom(ThumbnailCache& cache, const QString& name, const QString& path);
    void makeOne();
    void keep(const QList<Thumbnail>& made);
    ThumbnailCache* cache();
    void deliver(const Thumbnail& made);

    std::unique_ptr<State> m_state;
    QThreadPool m_cachePool;
    QThreadPool m_makerPool;
};

} // namespace images
