// The tabs in the middle of the main window.
#pragma once

#include "app/ui/GridTab.h"
#include "app/ui/StartPage.h"

#include <QStackedWidget>
#include <QTabWidget>

namespace app {

/// Tabs, or the start page while there is none. A table is opened once: a second time shows its tab.
class Documents : public QStackedWidget {
    Q_OBJECT
public:
    Documents(Session& session, platform::TaskRunner& runner, WindowState& state, StartPage* start,
              QWidget* parent = nullptr);

    /// The records behind a node of the tree: a module or a reference list.
    void openRecords(const QString& key, NodeKind kind);
    void closeCurrent();
    void closeAll();
    void reloadStale();
    GridTab* current() const;
    QList<GridTab*> grids() const;

Q_SIGNALS:
    /// Another tab is shown, or the current one has changed.
    void currentChanged();
    void failed(const QString& title, const QString& description);

private:
    void close(int tab);
    void showTabsOrStart();

    Session& m_session;
    platform::TaskRunner& m_runner;
    WindowState& m_state;
    StartPage* m_start;
    QTabWidget* m_tabs;
};

} // namespace app
