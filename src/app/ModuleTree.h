// The tree of the main window as a model without a window.
#pragma once

#include <QList>
#include <QString>
#include <QVariant>

namespace app {

class Session;

/// One node. `icon` is the name of an icon ("Database", "Requête", …) or, for a module with a picture of its own,
/// "module:" and the module name.
struct TreeNode {
    QString key;
    QString text;
    QString icon;
    QVariant tag;   ///< Stored objects: their `ID Prop`.
    QList<TreeNode> children;

    const TreeNode* find(QStringView key) const;
};

/// The tree of the open project: root "Bases"; groups "Requête", "Sélections", "Modèle", "Lsbotanistes",
/// "Lslocalités", "Lstaxons"; one node per module (key: its name) with its stored objects.
TreeNode buildModuleTree(const Session& session);

/// What a key stands for.
enum class NodeKind { Root, Group, Module, Query, Model, Property, Selection, Taxa, Localities, Collectors, None };
NodeKind kindOfKey(const QString& key, const Session& session);

/// Records behind a key: of a module or a reference list; -1 for any other, or when they cannot be counted.
qint64 recordCount(const Session& session, const QString& key);

} // namespace app
