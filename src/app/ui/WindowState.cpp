#include "app/ui/WindowState.h"

#include <QDir>

namespace app {

using namespace Qt::StringLiterals;

WindowState::WindowState(const QString& file)
{
    if (file.isEmpty())
        return;
    const QFileInfo info(file);
    if (!info.dir().exists() && QDir().mkpath(info.absolutePath()))
        QFile::setPermissions(info.absolutePath(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    m_file = std::make_unique<QSettings>(file, QSettings::IniFormat);
}

QString WindowState::defaultFile()
{
    // Relative and empty folders are to be taken as not set.
    QString folder = qEnvironmentVariable("XDG_STATE_HOME");
    if (!QDir::isAbsolutePath(folder))
        folder = QDir::homePath() + u"/.local/state"_s;
    return folder + u"/herbora/fenetres.ini"_s;
}

QVariant WindowState::value(const QString& key, const QVariant& byDefault) const
{
    return m_file ? m_file->value(key, byDefault) : m_run.value(key, byDefault);
}

void WindowState::setValue(const QString& key, const QVariant& value)
{
    if (m_file)
        m_file->setValue(key, value);
    else
        m_run.insert(key, value);
}

} // namespace app
