#include "app/ProjectFiles.h"

#include "jet/Cancelled.h"
#include "jet/Error.h"
#include "platform/SystemReason.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace app {

using namespace Qt::StringLiterals;

namespace {

const QString extension = u".hbx"_s;
const QString marker = u".tmp-"_s;

[[noreturn]] void failFile(const QString& what, const QString& path)
{
    const int code = errno;
    const int number = code == ENOSPC || code == EDQUOT                   ? 3026
                       : code == EACCES || code == EPERM || code == EROFS ? 3051
                       : code == EIO                                      ? 3043
                                                                          : 3044;
    throw jet::Error(number, what + u" « "_s + path + u" » : "_s + platform::systemReason(code) + u'.');
}

/// A file that is closed at the end of its block.
class Opened {
public:
    Opened(const QString& what, const QString& path, int flags, mode_t mode = 0)
        : m_descriptor(::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC, mode))
    {
        if (m_descriptor < 0)
            failFile(what, path);
    }
    ~Opened() { ::close(m_descriptor); }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;
    operator int() const { return m_descriptor; }

private:
    int m_descriptor;
};

/// Flushes a file or a folder to the disk.
void flushPath(const QString& path, int flags)
{
    const Opened file(u"Impossible d'ouvrir"_s, path, flags);
    if (::fsync(file) != 0 && errno != EINVAL) // some file systems cannot flush a folder
        failFile(u"Impossible d'écrire sur le disque"_s, path);
}

bool processRuns(qint64 pid)
{
    return ::kill(pid_t(pid), 0) == 0 || errno == EPERM;
}

ssize_t readSome(int file, QByteArray& piece)
{
    ssize_t count = 0;
    do
        count = ::read(file, piece.data(), size_t(piece.size()));
    while (count < 0 && errno == EINTR);
    return count;
}

bool writeAll(int file, const char* bytes, ssize_t count)
{
    while (count > 0) {
        const ssize_t written = ::write(file, bytes, size_t(count));
        if (written < 0 && errno != EINTR)
            return false;
        bytes += std::max<ssize_t>(0, written);
        count -= std::max<ssize_t>(0, written);
    }
    return true;
}

/// `target` is the name that the copy will get, for messages.
void copyContent(const QString& source, const QString& copy, const QString& target, const std::function<bool()>& goOn)
{
    const QString reading = u"Impossible de lire"_s;
    const QString writing = u"Impossible d'écrire"_s;
    const Opened in(reading, source, O_RDONLY);
    const Opened out(writing, copy, O_WRONLY | O_CREAT | O_TRUNC, 0666);
    QByteArray piece(1 << 20, Qt::Uninitialized);
    ssize_t count = 0;
    while ((count = readSome(in, piece)) > 0) {
        if (!writeAll(out, piece.constData(), count))
            failFile(writing, target);
        if (goOn && !goOn())
            jet::fail(jet::cancelledError);
    }
    if (count < 0)
        failFile(reading, source);
}

} // namespace

QString backupPath(const QString& project)
{
    if (project.endsWith(extension, Qt::CaseInsensitive))
        return project.chopped(extension.size()) + u".hbx.bak"_s;
    return project + u".bak"_s;
}

QString temporaryPath(const QString& project)
{
    const QFileInfo file(project);
    return file.absolutePath() + u"/."_s + file.fileName() + marker + QString::number(::getpid());
}

bool isTemporary(const QString& path)
{
    const QString name = QFileInfo(path).fileName();
    return name.startsWith(u'.') && name.contains(marker);
}

QString withFinalNames(const QString& message)
{
    QString text = message;
    const QString tail = marker + QString::number(::getpid());
    for (qsizetype at = text.indexOf(tail); at >= 0; at = text.indexOf(tail)) {
        text.remove(at, tail.size());
        const qsizetype name = text.lastIndexOf(u"/."_s, at) + 1;
        if (name > 0)
            text.remove(name, 1);
    }
    return text;
}

void removeStrayFiles(const QString& project)
{
    const QFileInfo file(project);
    QDir folder(file.absolutePath());
    const QString begin = u'.' + file.fileName();
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden);
    for (const QString& name : names) {
        if (!name.startsWith(begin) || !name.contains(marker)) // no pattern: a name may hold "[" and "*"
            continue;
        // The number may be followed by what goes with a file: "-journal", ".lock".
        const QString tail = name.mid(name.lastIndexOf(marker) + marker.size());
        bool number = false;
        const qint64 pid = tail.section(u'-', 0, 0).section(u'.', 0, 0).toLongLong(&number);
        if (number && (pid == ::getpid() || !processRuns(pid)))
            folder.remove(name);
    }
}

void copySafely(const QString& source, const QString& target, const std::function<bool()>& goOn)
{
    const QString temporary = temporaryPath(target);
    try {
        copyContent(source, temporary, target, goOn);
        QFile::setPermissions(temporary, QFile::permissions(source));
        moveIntoPlace(temporary, target);
    } catch (...) {
        QFile::remove(temporary);
        throw;
    }
}

void moveIntoPlace(const QString& finished, const QString& target)
{
    if (QFileInfo::exists(target + u"-journal"_s) || QFileInfo::exists(target + u"-wal"_s))
        throw jet::Error(3045, u"Un journal accompagne « %1 » : le fichier n'a pas été remplacé."_s.arg(target));
    flushPath(finished, O_RDONLY);
    if (std::rename(QFile::encodeName(finished).constData(), QFile::encodeName(target).constData()) != 0)
        failFile(u"Impossible de remplacer"_s, target);
    flushPath(QFileInfo(target).absolutePath(), O_RDONLY | O_DIRECTORY);
}

void moveToNewName(const QString& finished, const QString& target)
{
    const QByteArray from = QFile::encodeName(finished);
    const QByteArray to = QFile::encodeName(target);
    flushPath(finished, O_RDONLY);
    int result = ::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE);
    // Not every file system can refuse to replace.
    if (result != 0 && (errno == EINVAL || errno == ENOSYS) && !QFileInfo::exists(target))
        result = std::rename(from.constData(), to.constData());
    if (result != 0 && errno == EEXIST)
        jet::fail(3204, target);
    if (result != 0)
        failFile(u"Impossible de nommer"_s, target);
    flushPath(QFileInfo(target).absolutePath(), O_RDONLY | O_DIRECTORY);
}

} // namespace app
