#include "app/ProjectFiles.h"

#include "jet/Error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
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
    const int number = code == ENOSPC ? 3026 : code == EACCES || code == EPERM || code == EROFS ? 3051 : 3044;
    throw jet::Error(number, what + u" « "_s + path + u" » : "_s
                                 + QString::fromLocal8Bit(std::strerror(code)) + u'.');
}

/// Flushes a file or a folder to the disk.
void flushPath(const QString& path, int flags)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
    if (descriptor < 0)
        failFile(u"Impossible d'ouvrir"_s, path);
    const int result = ::fsync(descriptor);
    const int code = errno;
    ::close(descriptor);
    errno = code;
    if (result != 0 && code != EINVAL) // some file systems cannot flush a folder
        failFile(u"Impossible d'écrire sur le disque"_s, path);
}

bool processRuns(qint64 pid)
{
    return ::kill(pid_t(pid), 0) == 0 || errno == EPERM;
}

void copyContent(QFile& in, QFile& out)
{
    constexpr qint64 piece = 1 << 20;
    while (!in.atEnd()) {
        const QByteArray bytes = in.read(piece);
        if (bytes.isEmpty() && in.error() != QFileDevice::NoError)
            throw jet::Error(3051, u"Impossible de lire « %1 » : %2."_s.arg(in.fileName(), in.errorString()));
        if (out.write(bytes) != bytes.size())
            throw jet::Error(3026, u"Impossible d'écrire « %1 » : %2."_s.arg(out.fileName(), out.errorString()));
    }
    if (!out.flush())
        throw jet::Error(3026, u"Impossible d'écrire « %1 » : %2."_s.arg(out.fileName(), out.errorString()));
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

void removeStrayFiles(const QString& project)
{
    const QFileInfo file(project);
    QDir folder(file.absolutePath());
    const QString begin = u'.' + file.fileName();
    const QStringList names = folder.entryList({begin + u"*.tmp-*"_s}, QDir::Files | QDir::Hidden);
    for (const QString& name : names) {
        // The number may be followed by what goes with a file: "-journal", ".lock".
        const QString tail = name.mid(name.lastIndexOf(marker) + marker.size());
        bool number = false;
        const qint64 pid = tail.section(u'-', 0, 0).section(u'.', 0, 0).toLongLong(&number);
        if (number && (pid == ::getpid() || !processRuns(pid)))
            folder.remove(name);
    }
}

void copySafely(const QString& source, const QString& target)
{
    const QString temporary = temporaryPath(target);
    try {
        QFile in(source);
        QFile out(temporary);
        if (!in.open(QIODevice::ReadOnly))
            throw jet::Error(3051, u"Impossible d'ouvrir « %1 » : %2."_s.arg(source, in.errorString()));
        if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate))
            throw jet::Error(3051, u"Impossible de créer « %1 » : %2."_s.arg(temporary, out.errorString()));
        copyContent(in, out);
        out.setPermissions(in.permissions());
        out.close();
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
