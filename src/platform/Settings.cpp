#include "platform/Settings.h"

#include "platform/ReplaceFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QStringList>

namespace platform {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(settingsLog, "herbora.settings")

/// The buffer of a value, its closing NUL included.
constexpr int bufferSize = 100;

struct Path {
    QString section;
    QString key;
};

Path split(const QString& path)
{
    return {path.section(u'.', 0, 0), path.section(u'.', 1)};
}

QStringList linesOf(const QString& file)
{
    QFile in(file);
    if (file.isEmpty() || !in.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(in.readAll()).split(u'\n');
    for (QString& line : lines) {
        if (line.endsWith(u'\r'))
            line.chop(1);
    }
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

bool isSection(const QString& line)
{
    const QString text = line.trimmed();
    return text.startsWith(u'[') && text.endsWith(u']');
}

bool isSection(const QString& line, const QString& name)
{
    return isSection(line) && line.trimmed().mid(1).chopped(1).compare(name, Qt::CaseInsensitive) == 0;
}

bool isKey(const QString& line, const QString& key)
{
    const qsizetype equal = line.indexOf(u'=');
    return equal > 0 && line.left(equal).trimmed().compare(key, Qt::CaseInsensitive) == 0;
}

/// Position of the key's line; when it is absent, `insertAt` tells where it belongs (-1: the
/// section is absent too).
qsizetype findKey(const QStringList& lines, const Path& path, qsizetype& insertAt)
{
    insertAt = -1;
    bool inside = false;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (isSection(lines[i]))
            inside = isSection(lines[i], path.section);
        else if (inside && isKey(lines[i], path.key))
            return i;
        if (inside && !lines[i].trimmed().isEmpty())
            insertAt = i + 1;
    }
    return -1;
}

} // namespace

Settings::Settings(QString file) : m_file(std::move(file))
{
    if (!m_file.isEmpty())
        removeUnfinished(m_file);
}

QString Settings::defaultFile(const QString& applicationFolder)
{
    const QString beside = applicationFolder + u"/Herbora.ini"_s;
    const QFileInfo folder(applicationFolder);
    if (QFileInfo::exists(beside) ? QFileInfo(beside).isWritable() : folder.isWritable())
        return beside;
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
           + u"/herbora/Herbora.ini"_s;
}

QString Settings::read(const QString& path) const
{
    const QStringList lines = linesOf(m_file);
    qsizetype insertAt = -1;
    const qsizetype line = findKey(lines, split(path), insertAt);
    if (line < 0)
        return {};
    const QString value = lines[line].section(u'=', 1).trimmed().left(bufferSize - 1);
    const qsizetype nul = value.indexOf(QChar(0));
    return nul < 0 ? value : value.left(nul);
}

bool Settings::write(const QString& path, const QString& value)
{
    if (m_file.isEmpty())
        return true;
    if (QFileInfo::exists(m_file) && !QFileInfo(m_file).isReadable()) {
        qCWarning(settingsLog).noquote() << "cannot read" << m_file << "and so does not replace it";
        return false;
    }
    QStringList lines = linesOf(m_file);
    const Path parts = split(path);
    const QString text = parts.key + u'=' + value;
    qsizetype insertAt = -1;
    const qsizetype line = findKey(lines, parts, insertAt);
    if (line >= 0 && lines[line] == text)
        return true;
    if (line >= 0)
        lines[line] = text;
    else if (insertAt >= 0)
        lines.insert(insertAt, text);
    else
        lines << u'[' + parts.section + u']' << text;

    QDir().mkpath(QFileInfo(m_file).absolutePath());
    const QString error = replaceFile(m_file, (lines.join(u'\n') + u'\n').toUtf8());
    if (!error.isEmpty())
        qCWarning(settingsLog).noquote() << "cannot write" << m_file << error;
    return error.isEmpty();
}

} // namespace platform
