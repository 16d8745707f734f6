// Creating, opening and closing a Database.
#include "jet/Database.h"

#include "jet/Catalog.h"
#include "jet/DatabasePrivate.h"
#include "jet/DefinitionWriter.h"
#include "jet/FileProbe.h"
#include "jet/JetLog.h"
#include "jet/Password.h"
#include "jet/text/TextOrder.h"

#include <QDir>
#include <QFileInfo>
#include <cerrno>

namespace jet {

using namespace Qt::StringLiterals;

namespace {

QString lockPath(const QString& path)
{
    return path + u".lock"_s;
}

/// Who holds the lock file: "PROGRAMME (processus N sur HOTE)"; empty when that is not known.
QString holder(const QLockFile& lock)
{
    qint64 process = 0;
    QString host;
    QString program;
    if (!lock.getLockInfo(&process, &host, &program))
        return {};
    return u"%1 (processus %2 sur %3)"_s.arg(program.isEmpty() ? u"un programme"_s : program,
                                             QString::number(process), host);
}

[[noreturn]] void failInUse(const QString& path)
{
    const QLockFile lock(lockPath(path));
    const QString who = holder(lock);
    fail(3045, path, who.isEmpty() ? u"un autre programme"_s : who);
}

struct LockResult {
    std::unique_ptr<QLockFile> lock; ///< Null where none can be made.
    bool wasStale = false;           ///< The last user of the file did not close it.
};

/// The lock file tells who has the file open, so that a refusal can name him; the lock of the store is what
/// protects the data.
LockResult takeLock(const QString& path)
{
    LockResult result;
    result.wasStale = QFileInfo::exists(lockPath(path));
    result.lock = std::make_unique<QLockFile>(lockPath(path));
    result.lock->setStaleLockTime(0); // never by age: a session may last for days
    if (result.lock->tryLock(0))
        return result;
    if (result.lock->error() != QLockFile::LockFailedError) {
        qCWarning(jetLog).noquote() << "no lock file beside" << path;
        return {};
    }
    // A process of that number runs, but on this machine the file would be locked if it were
    // the one that made it.
    if (isOnNetwork(path) || !result.lock->removeStaleLockFile() || !result.lock->tryLock(0))
        failInUse(path);
    return result;
}

/// What the store says to a file that was taken for one of ours.
[[noreturn]] void failConnecting(const Error& error, const QString& path)
{
    switch (error.number()) {
    case 3045:
        failInUse(path);
    case 3027: // only an unfinished transaction makes the store write while it opens
        throw Error(3051, u"Le fichier « %1 » garde une opération interrompue, à annuler avant de le lire ; ouvrez-le "
                          u"une fois là où il peut être écrit."_s.arg(path));
    case 3219: // a format or a catalogue that it does not know
    case 3343:
        fail(3049, path, u"son en-tête ou son catalogue est altéré"_s);
    default:
        throw error;
    }
}

/// Plays back the journal of an accident, and removes one that holds nothing to play back: a process
/// that is killed leaves it, and no file may be renamed to a name that has a journal. In the normal locking
/// mode the store keeps no journal open between transactions, and within one it opens it at the
/// first change: what stands there under the lock belongs to nobody.
void settleJournal(Store& store, const QString& path)
{
    const QString journal = path + u"-journal"_s;
    if (!QFileInfo::exists(journal))
        return;
    store.run(u"BEGIN EXCLUSIVE"_s);
    if (QFileInfo::exists(journal) && !QFile::remove(journal))
        qCWarning(jetLog).noquote() << "could not be removed:" << journal;
    store.run(u"COMMIT"_s);
}

/// Opens the store and locks it for this process. Changes nothing in a file whose last user closed it.
void connect(Store& store, const QString& path, bool create, bool readOnly)
{
    try {
        store.open(path, create, readOnly);
        if (!readOnly)
            settleJournal(store, path);
        store.run(u"PRAGMA locking_mode=EXCLUSIVE"_s);
        if (readOnly) {
            store.run(u"BEGIN; SELECT count(*) FROM sqlite_schema; COMMIT"_s);
        } else {
            // Also turns back a file that another program has left in WAL mode.
            store.run(u"PRAGMA journal_mode=DELETE; BEGIN EXCLUSIVE; COMMIT"_s);
        }
        store.run(u"PRAGMA busy_timeout=0"_s);
    } catch (const Error& error) {
        failConnecting(error, path);
    }
}

void quickCheck(Store& store, const QString& path)
{
    const QString found = store.single(u"PRAGMA quick_check(1)"_s).toString();
    if (found != u"ok"_s)
        fail(3049, path, found);
}

/// The file must not be there, its folder must, and it is ours from the first byte on.
void makeEmptyFile(const QString& path)
{
    const QFileInfo info(path);
    if (path.isEmpty() || !info.absoluteDir().exists())
        fail(3044, path);
    if (info.exists() || info.isSymLink())
        fail(3204, path);
    // A journal of that name would be played back into the new file.
    if (QFileInfo::exists(path + u"-journal"_s) || QFileInfo::exists(path + u"-wal"_s))
        throw Error(3204, u"Un journal de « %1 » existe déjà ; supprimez-le ou choisissez un autre nom."_s.arg(path));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        fail(file.error() == QFileDevice::ResourceError ? 3026 : errno == ENAMETOOLONG ? 3044 : 3051, path);
}

void writeLayout(Store& store, const LocaleString& locale)
{
    store.run(u"PRAGMA page_size=4096; PRAGMA encoding='UTF-8'; BEGIN"_s);
    Catalog catalog(store);
    catalog.create();
    catalog.setSetting(setting::locale, locale.locale);
    catalog.setSetting(setting::textOrder, text::orderVersion);
    if (!locale.password.isEmpty())
        catalog.setSetting(setting::password, hashedPassword(locale.password));
    store.run(u"PRAGMA application_id=%1; PRAGMA user_version=%2; COMMIT"_s.arg(
        QString::number(applicationId), QString::number(layoutVersion)));
}

} // namespace

Database::Database() : d(std::make_unique<Private>()) {}

Database::~Database()
{
    Close();
}

std::unique_ptr<Database> Database::Create(const QString& path, const QString& locale)
{
    const LocaleString parsed = parseLocale(locale, path);
    const QString full = QFileInfo(path).absoluteFilePath();
    makeEmptyFile(full);
    std::unique_ptr<Database> database(new Database);
    Private& d = *database->d;
    try {
        d.path = QFileInfo(full).canonicalFilePath();
        d.lock = takeLock(d.path).lock;
        connect(d.store, d.path, true, false);
        writeLayout(d.store, parsed);
        d.loadSchema();
    } catch (...) {
        d.store.close();
        QFile::remove(full);
        QFile::remove(full + u"-journal"_s);
        throw;
    }
    return database;
}

std::unique_ptr<Database> Database::Open(const QString& path, const OpenOptions& options)
{
    const FileProbe file = probeFile(path);
    std::unique_ptr<Database> database(new Database);
    Private& d = *database->d;
    d.path = file.path;
    d.readOnly = options.readOnly || !file.writable;
    LockResult locked;
    if (!d.readOnly)
        locked = takeLock(file.path);
    d.lock = std::move(locked.lock);
    checkHeader(file);
    connect(d.store, file.path, false, d.readOnly);
    if (options.checkFirst || locked.wasStale || file.hasJournal)
        quickCheck(d.store, file.path);
    try {
        d.admit(options.password);
        d.loadSchema();
    } catch (const Error& error) {
        failConnecting(error, file.path);
    }
    d.renewTextOrder();
    return database;
}

void Database::Private::admit(const QString& password)
{
    const QVariant hashed = Catalog(store).setting(setting::password);
    if (hashed.isValid() && !passwordMatches(password, hashed.toString()))
        fail(3031, path);
}

void Database::Private::renewTextOrder()
{
    if (Catalog(store).setting(setting::textOrder).toInt() == text::orderVersion)
        return;
    if (readOnly)
        throw Error(3027, u"Le fichier « %1 » doit être ouvert une fois en écriture, car l'ordre de ses textes a changé "
                          u"avec la version du programme ; changez ses droits ou copiez-le ailleurs."_s.arg(path));
    change([&](DefinitionWriter& writer) {
        writer.rebuildTextIndexes();
        Catalog(store).setSetting(setting::textOrder, text::orderVersion);
    });
}

void Database::Close()
{
    if (!d->store.isOpen())
        return;
    const QSet<CursorHolder*> holders = d->holders;
    for (CursorHolder* holder : holders)
        holder->invalidate();
    d->holders.clear();
    if (!d->operations.isEmpty())
        qCWarning(jetLog).noquote() << "closed within an operation, which is undone:" << d->operations.first();
    // What is not committed is undone as the connection goes.
    d->operations.clear();
    d->store.close();
    d->schema = Schema();
    d->lock.reset();
}

bool Database::isOpen() const
{
    return d->store.isOpen();
}

bool Database::readOnly() const
{
    return d->readOnly;
}

QString Database::Name() const
{
    return d->path;
}

Store& Database::store()
{
    return d->store;
}

} // namespace jet
