// The tabs in the middle of the main window.
#pragma once

#include "app/ui/GridTab.h"
#include "app/ui/StartPage.h"

#include <QStackedWidget>
#include <QTabWidget>

namespace app {

/// Tabs, or the start page while there is none. What has a key is opened once: a second time shows its tab.
class Documents : public QStackedWidget {
    Q_OBJECT
public:
    Documents(Session& session, platform::TaskRunner& runner, WindowState& state, StartPage* start,
              QWidget* parent = nullptr);

    /// The records behind a node of the tree: a module or a reference list.
    void openRecords(const QString& key, NodeKind kind);
    /// Adds a tab and shows it; the one already open under that key comes first, and the new one is thrown away.
    platform::DocumentTab* add(std::unique_ptr<platform::DocumentTab> tab);
    /// The tab open under a key; null for none.
    platform::DocumentTab* find(const QString& key) const;
    /// Shows the tab open under a key; false when there is none.
    bool show(const QString& key);
    void closeCurrent();
    void step(int by); ///< To the next tab, round at the end; its widget takes the focus.
    /// Asks tabs about what is not saved; false when the user stays.
    bool mayCloseAll();
    void closeAll(); ///< Nothing is asked.
    void closeForReopening(); ///< The tabs that do not survive it.
    void recordsWritten(const QStringList& modules);
    void projectReopened();
    platform::DocumentTab* current() const;
    GridTab* currentGrid() const;
    QList<platform::DocumentTab*> tabs() const;
    QList<GridTab*> grids() const;

Q_SIGNALS:
    /// Another tab is shown, or the current one has changed.
    void currentChanged();
    void failed(const QString& title, const QString& description);
    /// Double click or Return on a row of the records of a module or reference list.
    void rowActivated(app::GridTab* grid, qint32 id);
    void addWanted(const QString& key); ///< A record, in a module that has none.

private:
    void close(int tab);
    void discard(int tab);
    void connectTab(platform::DocumentTab& tab);
    void showTabsOrStart();

    Session& m_session;
    platform::TaskRunner& m_runner;
    WindowState& m_state;
    StartPage* m_start;
    QTabWidget* m_tabs;
};

} // namespace app
