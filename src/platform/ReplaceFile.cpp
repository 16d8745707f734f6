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
    return m_out.open(QIODevice::WriteOnly | QIODevice::Truncate) ? QString() : m_out.errorString();
}

QString FileReplacement::write(const QByteArray& piece)
{
    if (m_out.isOpen() && m_out.write(piece) == piece.size())
        return {};
    const QString error = m_out.errorString();
    m_out.remove();
    return error;
}

QString FileReplacement::commit()
{
    bool written = m_out.isOpen() && flushed(m_out);
    QString error = m_out.errorString();
    m_out.close();
    if (written) {
        written = std::rename(QFile::encodeName(m_out.fileName()).constData(),
                              QFile::encodeName(m_target).constData())
                  == 0;
        error = QString::fromLocal8Bit(std::strerror(errno));
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
    for (const QString& name : folder.entryList({file.fileName() + unfinished + u'*'}, QDir::Files)) {
        const int process = name.section(unfinished, -1).toInt();
        if (process > 0 && ::kill(process, 0) != 0 && errno == ESRCH)
            folder.remove(name);
    }
}

} // namespace platform
