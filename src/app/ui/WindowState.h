// What the windows remember from one start to the next: geometry, column widths, recent projects.
#pragma once

#include <QSettings>
#include <QVariant>
#include <memory>

namespace app {

/// An ini file of its own; what belongs to a project or to the settings of the program is not kept here.
class WindowState {
public:
    /// With an empty name everything is kept for this run only.
    explicit WindowState(const QString& file);

    /// "herbora/fenetres.ini" in the user's folder of states (XDG_STATE_HOME, else ~/.local/state).
    static QString defaultFile();

    QVariant value(const QString& key, const QVariant& byDefault = {}) const;
    void setValue(const QString& key, const QVariant& value);

private:
    std::unique_ptr<QSettings> m_file;
    QVariantHash m_run;
};

} // namespace app
