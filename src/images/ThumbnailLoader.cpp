#include "images/ThumbnailLoader.h"

#include "images/ImagePaths.h"
#include "images/Pictures.h"

#include <QLoggingCategory>
#include <QMutex>
#include <QSet>

namespace images {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(loaderLog, "herbora.thumbnails")

/// One writing of the cache costs a flush of the disk, however much is written.
constexpr qsizetype storedAtOnce = 32;

} // namespace

/// What the threads share, under its lock; the cache is that of the cache thread alone.
struct ThumbnailLoader::State {
    struct Missing {
        QString name;
        QString path;
    };

    State(const QString& file, const platform::Clock& time) : project(file), clock(time) {}

    const QString project;
    const platform::Clock& clock;
    std::unique_ptr<ThumbnailCache> cache;
    bool cacheRefused = false;

    mutable QMutex lock;
    QStringList folders;
    QList<std::pair<const void*, QStringList>> askers; ///< The last one first.
    QStringList lookups;       ///< To be looked for in the cache, the next one first.
    QList<Missing> makes;      ///< Not in the cache.
    QSet<QString> underway;    ///< Being looked for or decoded.
    QList<Thumbnail> made;     ///< To be written.
    bool cacheThreadRuns = false;
    int makers = 0;
    bool stopped = false;

    bool isIdle() const { return lookups.isEmpty() && makes.isEmpty() && underway.isEmpty() && made.isEmpty(); }
    /// Whether the cache thread should write now: enough has come together, or nothing more will.
    bool isTimeToStore() const
    {
        return made.size() >= storedAtOnce
               || (!made.isEmpty() && lookups.isEmpty() && makes.isEmpty() && underway.isEmpty());
    }
    QStringList wanted() const
    {
        QStringList names;
        QSet<QString> known;
        for (const auto& [asker, list] : askers) {
            for (const QString& name : list) {
                if (!known.contains(name)) {
                    known.insert(name);
                    names << name;
                }
            }
        }
        return names;
    }
};

ThumbnailLoader::ThumbnailLoader(const QString& project, const platform::Clock& clock, QObject* parent)
    : QObject(parent), m_state(std::make_unique<State>(project, clock))
{
    m_cachePool.setMaxThreadCount(1);
    m_makerPool.setThreadPriority(QThread::LowPriority); // the windows come first
}

ThumbnailLoader::~ThumbnailLoader()
{
    {
        const QMutexLocker locked(&m_state->lock);
        m_state->stopped = true;
        m_state->lookups.clear();
        m_state->makes.clear();
    }
    m_makerPool.waitForDone();
    m_cachePool.waitForDone();
    keep(m_state->made);
}

void ThumbnailLoader::setFolders(const QStringList& folders)
{
    const QMutexLocker locked(&m_state->lock);
    m_state->folders = folders;
}

bool ThumbnailLoader::isIdle() const
{
    const QMutexLocker locked(&m_state->lock);
    return m_state->isIdle();
}

void ThumbnailLoader::want(const void* asker, const QStringList& names)
{
    QMutexLocker locked(&m_state->lock);
    State& state = *m_state;
    state.askers.removeIf([asker](const auto& known) { return known.first == asker; });
    if (!names.isEmpty())
        state.askers.prepend({asker, names});
    QHash<QString, State::Missing> missing;
    for (const State::Missing& one : std::as_const(state.makes))
        missing.insert(one.name, one);
    state.makes.clear();
    state.lookups.clear();
    for (const QString& name : state.wanted()) {
        const auto known = missing.constFind(name);
        if (known != missing.constEnd())
            state.makes << *known;
        else if (!state.underway.contains(name))
            state.lookups << name;
    }
    startMakers();
    startCacheThread();
}

/// Under the lock.
void ThumbnailLoader::startCacheThread()
{
    if (m_state->cacheThreadRuns || m_state->stopped || (m_state->lookups.isEmpty() && !m_state->isTimeToStore()))
        return;
    m_state->cacheThreadRuns = true;
    m_cachePool.start([this] { serveCache(); });
}

/// Under the lock.
void ThumbnailLoader::startMakers()
{
    while (!m_state->stopped && m_state->makers < m_makerPool.maxThreadCount() && m_state->makers < m_state->makes.size()) {
        ++m_state->makers;
        m_makerPool.start([this] { makeOne(); });
    }
}

// --- The thread of the cache ---------------------------------------------------------------------

void ThumbnailLoader::serveCache()
{
    State& state = *m_state;
    QMutexLocker locked(&state.lock);
    while (!state.stopped) {
        if (state.isTimeToStore()) {
            const QList<Thumbnail> made = state.made; // stays in the list for who looks for it meanwhile
            locked.unlock();
            keep(made);
            locked.relock();
            state.made.remove(0, made.size());
            if (state.isIdle())
                Q_EMIT idle();
        } else if (!state.lookups.isEmpty()) {
            const QString name = state.lookups.takeFirst();
            state.underway.insert(name);
            locked.unlock();
            look(name);
            locked.relock();
            if (state.isIdle())
                Q_EMIT idle();
        } else {
            break;
        }
    }
    state.cacheThreadRuns = false;
}

/// Delivers the thumbnail of a name, or hands it to the makers.
void ThumbnailLoader::look(const QString& name)
{
    State& state = *m_state;
    QMutexLocker locked(&state.lock);
    const QStringList folders = state.folders;
    Thumbnail kept;
    for (const Thumbnail& made : std::as_const(state.made)) {
        if (made.name == name)
            kept = made;
    }
    locked.unlock();
    const QString path = findPicture(name, folders);
    QImage image;
    try {
        if (!kept.name.isEmpty())
            image = decodedWhole(kept.jpeg);
        else if (!path.isEmpty() && cache())
            image = readFrom(*cache(), name, path);
    } catch (const jet::Error& error) {
        qCWarning(loaderLog).noquote() << name << error.description();
    }
    if (!image.isNull())
        Q_EMIT ready(name, image);
    else if (path.isEmpty())
        Q_EMIT failed(name, pictureMissing(name));
    locked.relock();
    state.underway.remove(name);
    if (image.isNull() && !path.isEmpty()) {
        state.makes << State::Missing{name, path};
        startMakers();
    }
}

ThumbnailCache* ThumbnailLoader::cache()
{
    State& state = *m_state;
    if (state.cache || state.cacheRefused)
        return state.cache.get();
    try {
        state.cache = std::make_unique<ThumbnailCache>(state.project, state.clock);
        if (!state.cache->notice().isEmpty())
            Q_EMIT notice(state.cache->notice());
    } catch (const jet::Error& error) {
        state.cacheRefused = true; // asked once for each project
        qCWarning(loaderLog).noquote() << state.project << error.description();
        Q_EMIT notice(u"Les imagettes ne sont pas gardées : "_s + error.description());
    }
    return state.cache.get();
}

/// The file may turn out to be broken, and is then another one afterwards.
QImage ThumbnailLoader::readFrom(ThumbnailCache& cache, const QString& name, const QString& path)
{
    const QString before = cache.notice();
    const QImage image = cache.read(name, path);
    if (cache.notice() != before)
        Q_EMIT notice(cache.notice());
    return image;
}

void ThumbnailLoader::keep(const QList<Thumbnail>& made)
{
    if (made.isEmpty() || !cache())
        return;
    const QString before = cache()->notice();
    try {
        cache()->store(made);
    } catch (const jet::Error& error) {
        qCWarning(loaderLog).noquote() << error.description();
        Q_EMIT notice(u"Les imagettes ne sont pas gardées : "_s + error.description());
    }
    if (cache()->notice() != before)
        Q_EMIT notice(cache()->notice());
}

// --- The threads that decode ---------------------------------------------------------------------

void ThumbnailLoader::makeOne()
{
    State& state = *m_state;
    QMutexLocker locked(&state.lock);
    while (!state.stopped && !state.makes.isEmpty()) {
        const State::Missing next = state.makes.takeFirst();
        state.underway.insert(next.name);
        locked.unlock();
        const Thumbnail made = makeThumbnail(next.name, next.path);
        deliver(made);
        locked.relock();
        state.underway.remove(next.name);
        if (!made.jpeg.isEmpty())
            state.made << made;
        if (state.isIdle())
            Q_EMIT idle();
        startCacheThread();
    }
    --state.makers;
}

void ThumbnailLoader::deliver(const Thumbnail& made)
{
    const QImage image = decodedWhole(made.jpeg);
    if (image.isNull())
        Q_EMIT failed(made.name, made.failure.isEmpty() ? u"Erreur de chargement de l'image "_s + made.name : made.failure);
    else
        Q_EMIT ready(made.name, image);
}

} // namespace images
