#include "platform/ReplaceFile.h"

#include "platform/SystemReason.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace platform {

using namespace Qt::StringLiterals;

namespace {

/// Between the file's name and the number of the process that writes it.
const QString unfinished = u".tmp-"_s;

bool flushed(QFile& file)
{
    errno = 0;
    // What the disk took in part says why it did not take the rest when it is asked again.
    return (file.flush() || file.flush()) && ::fsync(file.handle()) == 0;
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

FileReplacement::FileReplacement(const QString& path)
    : m_target(QFileInfo::exists(path) ? QFileInfo(path).canonicalFilePath() : path),
      m_out(m_target + unfinished + QString::number(::getpid()))
{
}

FileReplacement::~FileReplacement()
{
    if (m_out.isOpen())
        m_out.remove();
}

QString FileReplacement::open()
{
    errno = 0;
    return m_out.open(QIODevice::WriteOnly | QIODevice::Truncate) ? QString() : fileReason(m_out, errno);
}

QString FileReplacement::write(const QByteArray& piece)
{
    errno = 0;
    if (m_out.isOpen() && m_out.write(piece) == piece.size())
        return {};
    const QString error = fileReason(m_out, errno);
    m_out.remove();
    return error;
}

QString FileReplacement::commit()
{
    bool written = m_out.isOpen() && flushed(m_out);
    QString error = written ? QString() : fileReason(m_out, errno);
    m_out.close();
    if (written) {
        written = std::rename(QFile::encodeName(m_out.fileName()).constData(),
                              QFile::encodeName(m_target).constData())
                  == 0;
        error = systemReason(errno);
    }
    if (!written) {
        m_out.remove();
        return error;
    }
    flushFolder(QFileInfo(m_target).absolutePath());
    return {};
}

QString replaceFile(const QString& path, const QByteArray& bytes)
{
    FileReplacement replacement(path);
    QString error = replacement.open();
    if (error.isEmpty())
        error = replacement.write(bytes);
    return error.isEmpty() ? replacement.commit() : error;
}

void removeUnfinished(const QString& path)
{
    const QFileInfo file(path);
    QDir folder(file.absolutePath());
    const QString begin = file.fileName() + unfinished; // no pattern: a name may hold "[" and "*"
    for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden)) {
        if (!name.startsWith(begin))
            continue;
        const int process = name.section(unfinished, -1).toInt();
        if (process > 0 && ::kill(process, 0) != 0 && errno == ESRCH)
            folder.remove(name);
    }
}

} // namespace platform
