// What a tab in the middle of the main window is.
#pragma once

#include <QIcon>
#include <QWidget>

namespace platform {

/// Commands of the menus that act on the tab shown.
enum class TabCommand { Copy, CopyWithHeaders, SelectAll, Refresh, FitColumns, Save, Find, Print, ExportRows };

/// Whatever the main window shows as a tab: grids, query windows, browsers. The window knows tabs by this alone.
class DocumentTab : public QWidget {
    Q_OBJECT
public:
    explicit DocumentTab(QWidget* parent = nullptr) : QWidget(parent) {}

    /// One tab is open for a key: a second opening shows the first tab.
    virtual QString key() const = 0;
    virtual QString title() const = 0;
    virtual QIcon icon() const { return {}; }
    /// Said at the right of the status bar while the tab is shown.
    virtual QString statusText() const { return {}; }
    virtual bool can(TabCommand command) const = 0;
    virtual void run(TabCommand command) = 0;
    /// Asks about what is not saved, where there is something; false when the user stays.
    virtual bool mayClose() { return true; }
    /// Records of these modules or reference tables were written elsewhere (empty: of any); what is shown is brought
    /// up to date, the selection stays.
    virtual void recordsWritten(const QStringList& modules) { Q_UNUSED(modules) }
    /// True for a tab that stays while the file is exchanged under the same name (projectReopened begins anew); the
    /// others are closed before.
    virtual bool survivesReopening() const { return false; }
    virtual void projectReopened() {}

Q_SIGNALS:
    void stateChanged(); ///< Title, status text or what is possible.
    void failed(const QString& description);
};

} // namespace platform
