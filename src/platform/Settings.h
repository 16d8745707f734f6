// The settings file, sections and keys.
#pragma once

#include <QString>

namespace platform {

/// `Herbora.ini`, UTF-8. A setting is addressed by section, ".", key ("Général.DefaultBase").
///
/// A value is read into a buffer of 100 characters with its closing NUL, so one longer than 99 characters
/// comes back cut: what is kept in the file is whole. Lines it does not know are kept.
class Settings {
public:
    /// With an empty name nothing is read and nothing is kept (scripts, tests).
    explicit Settings(QString file);

    /// The file of this installation: in the application folder when that folder can be written,
    /// else in the user's configuration folder.
    static QString defaultFile(const QString& applicationFolder);

    QString read(const QString& path) const; ///< Empty when absent.
    /// Writes through a temporary file; false (and logged) when that fails.
    bool write(const QString& path, const QString& value);
    const QString& file() const { return m_file; }

private:
    QString m_file;
};

} // namespace platform
