#include "platform/FileAssociation.h"

#include "platform/ReplaceFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

namespace platform {

using namespace Qt::StringLiterals;

namespace {

const QString desktopId = u"org.herbora.Herbora.desktop"_s;
const QString mimeType = u"application/x-herbora-project"_s;

/// Lines of one group of a key file ("[Desktop Entry]"), as key → value; the first wins.
QString keyOf(const QString& file, const QString& group, const QString& key)
{
    QFile in(file);
    if (file.isEmpty() || !in.open(QIODevice::ReadOnly))
        return {};
    bool inside = false;
    const QStringList lines = QString::fromUtf8(in.readAll()).split(u'\n');
    for (const QString& line : lines) {
        if (line.startsWith(u'['))
            inside = line.trimmed() == u'[' + group + u']';
        else if (inside && line.section(u'=', 0, 0).trimmed() == key)
            return line.section(u'=', 1).trimmed();
    }
    return {};
}

/// A path as the Exec key wants it: in double quotes, with the characters that the desktop entry
/// format reserves inside quotes preceded by a backslash (itself doubled in a string value).
QString execQuoted(const QString& path)
{
    QString text;
    for (const QChar c : path) {
        if (c == u'"' || c == u'`' || c == u'$' || c == u'\\')
            text += u"\\\\"_s;
        if (c == u'%')
            text += u'%';
        text += c;
    }
    return u'"' + text + u'"';
}

/// The program of an Exec value: without quotes, escapes and field codes (%f, %U …).
QString programOf(const QString& exec)
{
    QString text = exec;
    for (const QString& code : {u"%f"_s, u"%F"_s, u"%u"_s, u"%U"_s})
        text.remove(code);
    text.replace(u"\\\\"_s, u""_s).remove(u'"').replace(u"%%"_s, u"%"_s);
    return text.trimmed();
}

/// The file behind a program's name: an installed entry names it without its folder, by way of a link.
QString executableOf(const QString& program)
{
    const QString found = program.contains(u'/') ? program : QStandardPaths::findExecutable(program);
    const QString canonical = QFileInfo(found).canonicalFilePath();
    return canonical.isEmpty() ? program : canonical;
}

bool writeFile(const QString& path, const QString& content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    return replaceFile(path, content.toUtf8()).isEmpty();
}

void runQuietly(const QString& program, const QString& argument)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, {argument});
    process.waitForFinished();
}

class DesktopFileAssociation : public FileAssociation {
public:
    DesktopFileAssociation(QString dataHome, QString configHome)
        : m_data(std::move(dataHome)), m_config(std::move(configHome))
    {
    }

    QString openCommand() const override;
    bool write(const QString& executable) override;

private:
    QString defaultApplication() const;
    QString entryFile(const QString& id) const;
    bool writeDefault() const;

    QString m_data;
    QString m_config;
};

QString DesktopFileAssociation::defaultApplication() const
{
    const QString id = keyOf(m_config + u"/mimeapps.list"_s, u"Default Applications"_s, mimeType);
    return id.section(u';', 0, 0);
}

QString DesktopFileAssociation::entryFile(const QString& id) const
{
    const QString own = m_data + u"/applications/"_s + id;
    if (QFileInfo::exists(own))
        return own;
    return QStandardPaths::locate(QStandardPaths::ApplicationsLocation, id);
}

QString DesktopFileAssociation::openCommand() const
{
    QString id = defaultApplication();
    if (id.isEmpty())
        id = desktopId; // without a choice of the user, the installed entry serves the type
    return executableOf(programOf(keyOf(entryFile(id), u"Desktop Entry"_s, u"Exec"_s)));
}

bool DesktopFileAssociation::writeDefault() const
{
    const QString list = m_config + u"/mimeapps.list"_s;
    QStringList lines;
    QFile in(list);
    if (in.open(QIODevice::ReadOnly))
        lines = QString::fromUtf8(in.readAll()).split(u'\n');
    in.close();
    const QString group = u"[Default Applications]"_s;
    const QString text = mimeType + u'=' + desktopId + u';';
    qsizetype at = lines.indexOf(group);
    if (at < 0) {
        lines << group;
        at = lines.size() - 1;
    }
    qsizetype line = at + 1;
    while (line < lines.size() && !lines[line].startsWith(u'[')
           && lines[line].section(u'=', 0, 0).trimmed() != mimeType)
        ++line;
    if (line < lines.size() && !lines[line].startsWith(u'['))
        lines[line] = text;
    else
        lines.insert(at + 1, text);
    return writeFile(list, lines.join(u'\n'));
}

bool DesktopFileAssociation::write(const QString& executable)
{
    const QString entry = u"[Desktop Entry]\nType=Application\nVersion=1.0\nName=Herbora\n"
                          "GenericName=Base de données botaniques\n"
                          "Comment=Saisir et interroger des observations botaniques\n"
                          "Exec=%1 %f\nIcon=org.herbora.Herbora\nTerminal=false\n"
                          "Categories=Education;Science;Biology;\nMimeType=%2;\n"
                          "StartupWMClass=herbora\n"_s;
    const QString type =
        u"<?xml version='1.0' encoding='UTF-8'?>\n"
        "<mime-info xmlns='http://www.freedesktop.org/standards/shared-mime-info'>\n"
        "  <mime-type type='%1'>\n"
        "    <comment>Base Herbora</comment>\n"
        "    <sub-class-of type='application/vnd.sqlite3'/>\n"
        "    <icon name='org.herbora.Herbora'/>\n"
        "    <magic priority='80'>\n"
        "      <match type='string' value='SQLite format 3\\0' offset='0'>\n"
        "        <match type='big32' value='0x48425241' offset='68'/>\n"
        "      </match>\n"
        "    </magic>\n"
        "    <glob pattern='*.hbx'/>\n"
        "  </mime-type>\n"
        "</mime-info>\n"_s;
    QString filled = entry;
    filled.replace(u"%1"_s, execQuoted(executable)).replace(u"%2"_s, mimeType);
    const bool written =
        writeFile(m_data + u"/applications/"_s + desktopId, filled)
        && writeFile(m_data + u"/mime/packages/org.herbora.Herbora.xml"_s, QString(type).replace(u"%1"_s, mimeType))
        && writeDefault();
    // The desktop's caches: best effort, the tools need not be there.
    runQuietly(u"update-mime-database"_s, m_data + u"/mime"_s);
    runQuietly(u"update-desktop-database"_s, m_data + u"/applications"_s);
    return written;
}

} // namespace

std::unique_ptr<FileAssociation> desktopFileAssociation(const QString& dataHome,
                                                        const QString& configHome)
{
    using Paths = QStandardPaths;
    return std::make_unique<DesktopFileAssociation>(
        dataHome.isEmpty() ? Paths::writableLocation(Paths::GenericDataLocation) : dataHome,
        configHome.isEmpty() ? Paths::writableLocation(Paths::GenericConfigLocation) : configHome);
}

} // namespace platform
