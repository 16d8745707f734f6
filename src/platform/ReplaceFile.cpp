#include "platform/ReplaceFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace platform {

using namespace Qt::StringLiterals;

namespace {

/// Between the file's name and the number of the process that writes it.
const QString unfinished = u".tmp-"_s;

bool flushed(QFile& file)
{
    return file.flush() && ::fsync(file.handle()) == 0;
}

void flushFolder(const QString& folder)
{
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}

} // namespace

QString replaceFile(const QString& path, const QByteArray& bytes)
{
    const QString target = QFileInfo::exists(path) ? QFileInfo(path).canonicalFilePath() : path;
    QFile out(target + unfinished + QString::number(::getpid()));
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return out.errorString();
    bool written = out.write(bytes) == bytes.size() && flushed(out);
    QString error = out.errorString();
    out.close();
    if (written) {
        written = std::rename(QFile::encodeName(out.fileName()).constData(), QFile::encodeName(target).constData()) == 0;
        error = QString::fromLocal8Bit(std::strerror(errno));
    }
    if (!written) {
        out.remove();
        return error;
    }
    flushFolder(QFileInfo(target).absolutePath());
    return {};
}

void removeUnfinished(const QString& path)
{
    const QFileInfo file(path);
    QDir folder(file.absolutePath());
    for (const QString& name : folder.entryList({file.fileName() + unfinished + u'*'}, QDir::Files)) {
        const int process = name.section(unfinished, -1).toInt();
        if (process > 0 && ::kill(process, 0) != 0 && errno == ESRCH)
            folder.remove(name);
    }
}

} // namespace platform
