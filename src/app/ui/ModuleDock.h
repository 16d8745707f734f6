// The module tree at the left of the main window.
#pragma once

#include "app/ui/TreeCommands.h"
#include "app/ui/TreeModel.h"

#include <QDockWidget>
#include <QStackedWidget>
#include <QTreeView>

namespace app {

class ModuleDock : public QDockWidget {
    Q_OBJECT
public:
    explicit ModuleDock(QWidget* parent = nullptr);

    TreeModel& model() { return *m_model; }
    TreeCommands& commands() { return *m_commands; }
    QTreeView& view() { return *m_view; }

    /// Shows the project: root and groups expanded, the root selected.
    void load(const Session& session);
    /// Shows it anew with what is open and selected staying so.
    void reload(const Session& session);
    void clear();
    void expandAll() { m_view->expandAll(); }
    void collapseAll(); ///< The root stays open.

private:
    QStringList expandedKeys(const QModelIndex& parent) const;
    void showMenu(const QPoint& position);
    void activate(const QModelIndex& index);
    void chooseCurrent();

    TreeModel* m_model;
    TreeCommands* m_commands;
    QTreeView* m_view;
    QStackedWidget* m_pages; ///< The tree, or a word that there is none.
};

} // namespace app
