// The compacted copy of a file: written beside its target, checked, flushed and only then named.
#include "jet/Compaction.h"

#include "jet/Catalog.h"
#include "jet/Compile.h"
#include "jet/DatabasePrivate.h"
#include "jet/FileProbe.h"
#include "jet/JetLog.h"

#include <QFileInfo>
#include <QStorageInfo>
#include <cerrno>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

namespace jet {

using namespace Qt::StringLiterals;

namespace {

/// ".name.tmp-PID" in the folder of the target. A name that has that form already only gets the
/// ending, so that whoever clears up after an accident finds it.
QString temporaryPath(const QString& target)
{
    const QFileInfo info(target);
    const QString dot = info.fileName().startsWith(u'.') ? QString() : u"."_s;
    return info.absolutePath() + u'/' + dot + info.fileName() + u".tmp-"_s + QString::number(::getpid());
}

[[noreturn]] void failCall(const QString& path)
{
    fail(errno == ENOSPC || errno == EDQUOT ? 3026 : errno == EACCES || errno == EPERM ? 3051 : 3043, path);
}

void flush(const QString& path, int flags)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
    if (descriptor < 0)
        failCall(path);
    const bool flushed = ::fsync(descriptor) == 0 || errno == EINVAL; // some file systems cannot flush a folder
    const int code = errno;
    ::close(descriptor);
    errno = code;
    if (!flushed)
        failCall(path);
}

void checkTarget(const QString& source, const QString& target)
{
    const QFileInfo info(target);
    if (target.isEmpty() || !info.absoluteDir().exists())
        fail(3044, target);
    for (const QString& ending : {QString(), u"-journal"_s, u"-wal"_s}) {
        if (QFileInfo::exists(target + ending))
            fail(3204, target + ending);
    }
    // A compacted copy is never larger.
    const QStorageInfo storage(info.absolutePath());
    if (storage.isValid() && storage.bytesAvailable() < QFileInfo(source).size())
        fail(3026, target);
}

void copyInto(Store& store, const QString& temporary)
{
    Statement copy(store, u"VACUUM INTO ?"_s);
    copy.bind(1, QVariant(temporary));
    copy.step();
}

/// AutoNumbers go on from the largest value present.
void resetCounters(Store& store, const Schema& schema)
{
    if (schema.tables().isEmpty())
        return; // there is nothing that counts, and no table of counters either
    store.run(u"BEGIN; DELETE FROM sqlite_sequence"_s);
    for (const TableDef& table : schema.tables()) {
        store.run(u"INSERT INTO sqlite_sequence(name,seq) SELECT %1, max(%2) FROM %3 HAVING count(*)>0"_s.arg(
            quotedText(table.Name), quoted(table.rowIdColumn()), quoted(table.Name)));
    }
    store.run(u"COMMIT"_s);
}

QList<qint64> rowCounts(Store& store, const Schema& schema)
{
    QList<qint64> counts;
    for (const TableDef& table : schema.tables())
        counts += store.single(u"SELECT count(*) FROM "_s + quoted(table.Name)).toLongLong();
    return counts;
}

void checkCopy(Store& copy, Store& original, const Schema& schema, const QString& path)
{
    const QString found = copy.single(u"PRAGMA integrity_check(1)"_s).toString();
    if (found != u"ok"_s)
        fail(3049, path, found);
    const bool identity = copy.single(u"PRAGMA application_id"_s).toUInt() == applicationId
                          && copy.single(u"PRAGMA user_version"_s) == original.single(u"PRAGMA user_version"_s);
    if (!identity || rowCounts(copy, schema) != rowCounts(original, schema))
        fail(3049, path, u"la copie compactée ne contient pas tout"_s);
}

void removeTemporary(const QString& temporary)
{
    for (const QString& ending : {QString(), u"-journal"_s})
        QFile::remove(temporary + ending);
}

/// Gives the finished copy its name. A target that has appeared meanwhile stays.
void giveName(const QString& temporary, const QString& target)
{
    flush(temporary, O_RDONLY);
    checkTarget(temporary, target);
    if (::renameat2(AT_FDCWD, QFile::encodeName(temporary).constData(), AT_FDCWD,
                    QFile::encodeName(target).constData(), RENAME_NOREPLACE) != 0) {
        if (errno == EEXIST)
            fail(3204, target);
        if (errno != EINVAL && errno != ENOSYS) // not every file system can refuse to replace
            failCall(target);
        if (::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(target).constData()) != 0)
            failCall(target);
    }
    flush(QFileInfo(target).absolutePath(), O_RDONLY | O_DIRECTORY);
}

/// Pages at a time; between them the copy may be stopped.
constexpr int pagesAtOnce = 4096;

void copyPages(Store& from, Store& to, const std::function<bool()>& goOn)
{
    sqlite3_backup* backup = sqlite3_backup_init(to.handle(), "main", from.handle(), "main");
    if (backup == nullptr)
        to.raise(sqlite3_errcode(to.handle()));
    int code = SQLITE_OK;
    bool stopped = false;
    while (code == SQLITE_OK && !stopped) {
        code = sqlite3_backup_step(backup, pagesAtOnce);
        stopped = code == SQLITE_OK && !goOn();
    }
    const int finish = sqlite3_backup_finish(backup);
    if (stopped)
        fail(3059);
    if (code != SQLITE_DONE || finish != SQLITE_OK)
        to.raise(finish != SQLITE_OK ? finish : code);
}

} // namespace

void Database::SaveCopy(const QString& target, const std::function<bool()>& goOn)
{
    if (!isOpen())
        fail(3420, d->path);
    if (inOperation())
        fail(3034);
    checkTarget(d->path, target);
    d->cancelled = false;
    const QString temporary = temporaryPath(target);
    removeTemporary(temporary);
    try {
        Store copy;
        copy.open(temporary, true, false);
        copyPages(d->store, copy, [&] { return !d->cancelled && (!goOn || goOn()); });
        copy.close();
        // The file may be gone from under its name: a copy is what saves it then.
        if (QFileInfo::exists(d->path))
            QFile::setPermissions(temporary, QFile::permissions(d->path));
        giveName(temporary, target);
    } catch (...) {
        removeTemporary(temporary);
        throw;
    }
}

void checkPages(Database& database)
{
    const QString found = database.store().single(u"PRAGMA integrity_check(1)"_s).toString();
    if (found == u"ok"_s)
        return;
    qCWarning(jetLog).noquote() << database.Name() << found;
    fail(3049, database.Name());
}

void compactSound(const QString& source, const QString& target, const std::function<bool()>& goOn,
                  const OpenOptions& options)
{
    checkTarget(source, target);
    const QString temporary = temporaryPath(target);
    const auto original = Database::Open(source, options);
    removeTemporary(temporary);
    try {
        original->SetProgress(goOn);
        copyInto(original->store(), temporary);
        Store copy;
        copy.open(temporary, false, false);
        copy.setProgress(goOn);
        resetCounters(copy, original->schema());
        checkCopy(copy, original->store(), original->schema(), target);
        copy.close();
        QFile::setPermissions(temporary, QFile::permissions(original->Name()));
        giveName(temporary, target);
    } catch (...) {
        removeTemporary(temporary);
        throw;
    }
}

void Database::Compact(const QString& source, const QString& target, const OpenOptions& options)
{
    checkTarget(source, target);
    checkPages(*Open(source, options));
    compactSound(source, target, {}, options);
}

} // namespace jet
