// The commands on a node of the module tree, for its context menu and the menu bar.
#pragma once

#include "app/ui/TreeModel.h"

#include <QAction>
#include <QMenu>
#include <QObject>

namespace app {

/// The actions always name the node that was chosen last; those that do not fit it are disabled.
class TreeCommands : public QObject {
    Q_OBJECT
public:
    explicit TreeCommands(QObject* parent = nullptr);

    /// Takes over the node: texts, and what is possible.
    void choose(const TreeNode* node, NodeKind kind);
    /// The commands that belong to the kind of the node chosen, for a context menu.
    QList<QAction*> fitting() const;
    const QList<QAction*>& all() const { return m_all; }
    /// What Return or a double click does; false when there is nothing.
    bool runDefault();

Q_SIGNALS:
    void openRecords(const QString& key); ///< A module or a reference list.
    void emptySelection(const QString& module);

private:
    struct Command {
        QAction* action = nullptr;
        QString text; ///< With its mnemonic; one that ends with a blank is followed by the node's name.
        QList<NodeKind> kinds;
    };
    QAction* add(const QString& name, const QString& icon, const QString& text, const QList<NodeKind>& kinds);

    QList<Command> m_commands;
    QList<QAction*> m_all;
    QAction* m_openModule = nullptr;
    QAction* m_emptySelection = nullptr;
    QString m_key;
    NodeKind m_kind = NodeKind::None;
};

} // namespace app
