// The commands on a node of the module tree, for its context menu and the menu bar.
#pragma once

#include "app/ui/TreeModel.h"

#include <QAction>
#include <QMenu>
#include <QObject>
#include <functional>

namespace app {

/// The actions always name the node that was chosen last; those that do not fit it are disabled.
class TreeCommands : public QObject {
    Q_OBJECT
public:
    explicit TreeCommands(QObject* parent = nullptr);

    /// Serves a command: `run` is handed the node; `possible` (empty: always) says whether it may be run on it.
    void provide(const QString& name, std::function<void(const TreeNode&)> run,
                 std::function<bool(const TreeNode&)> possible = {});
    /// What is possible may have changed, the node has not.
    void refresh();
    /// Takes over the node: texts, and what is possible.
    void choose(const TreeNode* node, NodeKind kind);
    /// The commands that belong to the kind of the node chosen, for a context menu.
    QList<QAction*> fitting() const;
    const QList<QAction*>& all() const { return m_all; }
    /// What Return or a double click does; false when there is nothing.
    bool runDefault();

private:
    struct Command {
        QAction* action = nullptr;
        QString text; ///< With its mnemonic; one that ends with a blank is followed by the node's name.
        QList<NodeKind> kinds;
        std::function<void(const TreeNode&)> run = {};
        std::function<bool(const TreeNode&)> possible = {};
    };
    void add(const QString& name, const QString& icon, const QString& text, const QList<NodeKind>& kinds);
    bool fits(const Command& command) const;

    QList<Command> m_commands;
    QList<QAction*> m_all;
    TreeNode m_node; ///< Without its children.
    NodeKind m_kind = NodeKind::None;
};

} // namespace app
