// Queries in the program: who opens them, and what they ask of the others.
#pragma once

#include "app/HostViews.h"
#include "app/ui/Desk.h"

namespace query {
class QueryTab;
}

namespace app {

class ModuleDock;
class QueryViews;

/// Serves queries and floating selections in the tree, and tells add-ins what the window shows.
class QueryDesk : public Desk {
    Q_OBJECT
public:
    explicit QueryDesk(Workplace& place);
    ~QueryDesk() override;

    void install(QMenuBar& bar, TreeCommands& tree) override;
    void projectOpened() override;
    void projectClosing() override;
    void showBusy(bool busy) override;
    void photograph(Photographer& photographer) override;

    /// Opens a stored query, or (0) a new one on the module; null when the project is away.
    query::QueryTab* open(const QString& module, int property);
    /// The structure of the project as a query that shows every field of the module.
    query::QueryTab* openBase();
    query::QueryTab* showRecords(const QString& title, const QString& module, const QList<qint32>& ids);
    query::QueryTab* showReferring(const QString& title, const QString& module, const QString& column,
                                   const QList<qint32>& ids);
    query::QueryTab* current() const; ///< Null when another tab is shown.
    /// Adds records to the floating selection of the module; those that are there already count once.
    void addToSelection(const QString& module, const QList<qint32>& records);

private:
    query::QueryTab* add(const QString& key);
    query::QueryTab* add(const QString& key, const QString& title, const QString& module);
    void serveQueries(TreeCommands& tree);
    void serveSelections(TreeCommands& tree);
    void installMenu(QMenu& menu);
    void showSelectionCount(const QString& module);
    void dragRecords(query::QueryTab* tab, const QString& module, const QList<qint32>& records);
    bool dropRecords(QEvent* event);
    bool eventFilter(QObject* watched, QEvent* event) override;
    void updateActions();
    ModuleDock* dock() const;
    bool isAway() const;

    std::unique_ptr<QueryViews> m_views;
    QList<QAction*> m_tabActions; ///< Named after the commands of the query shown.
    QAction* m_new = nullptr;
    QAction* m_base = nullptr;
    int m_number = 0; ///< Of queries that have no other key.
    bool m_busy = false;
};

} // namespace app
