// The projects opened lately.
#pragma once

#include "app/ui/WindowState.h"

#include <QMenu>
#include <QObject>

namespace app {

/// At most ten paths, the latest first.
class RecentFiles : public QObject {
    Q_OBJECT
public:
    explicit RecentFiles(WindowState& state, QObject* parent = nullptr);

    QStringList paths() const;
    void add(const QString& path);
    void clear();
    /// Keeps `menu` filled: one entry a path, greyed when the file is missing, then "Effacer la liste".
    void fillWhenShown(QMenu* menu);

    /// The folder of a project, the user's own folder shortened to "~".
    static QString folderText(const QString& path);

Q_SIGNALS:
    void changed();
    void chosen(const QString& path);

private:
    void fill(QMenu* menu);
    void keep(const QStringList& paths);

    WindowState& m_state;
};

} // namespace app
