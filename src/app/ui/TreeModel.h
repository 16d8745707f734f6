// The module tree behind a view.
#pragma once

#include "app/ModuleTree.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QIcon>

namespace app {

class Session;

/// One column over a copy of the tree: the view may paint while another thread has the session.
class TreeModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Role { KeyRole = Qt::UserRole + 1, TagRole, KindRole };

    using QAbstractItemModel::QAbstractItemModel;

    void load(const Session& session);
    void clear();
    const TreeNode& root() const { return m_root; }
    const TreeNode* node(const QModelIndex& index) const;
    NodeKind kind(const QModelIndex& index) const;
    QModelIndex indexOf(QStringView key) const;
    /// Changes the text of one node (the count of a selection).
    void setText(QStringView key, const QString& text);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

private:
    struct Place {
        TreeNode* parent = nullptr;
        int row = 0;
        NodeKind kind = NodeKind::None;
        QIcon icon;
    };
    void enter(TreeNode& node, TreeNode* parent, int row, const Session& session);

    TreeNode m_root;
    QHash<const TreeNode*, Place> m_places;
};

} // namespace app
