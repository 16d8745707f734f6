#include "app/ui/TreeModel.h"

#include "app/Session.h"
#include "app/ui/Icons.h"

namespace app {

void TreeModel::load(const Session& session)
{
    beginResetModel();
    m_places.clear();
    m_root = buildModuleTree(session);
    enter(m_root, nullptr, 0, session);
    endResetModel();
}

void TreeModel::clear()
{
    beginResetModel();
    m_places.clear();
    m_root = {};
    endResetModel();
}

void TreeModel::enter(TreeNode& node, TreeNode* parent, int row, const Session& session)
{
    m_places.insert(&node, {parent, row, kindOfKey(node.key, session), iconNamed(node.icon, session.modules())});
    for (qsizetype i = 0; i < node.children.size(); ++i)
        enter(node.children[i], &node, int(i), session);
}

const TreeNode* TreeModel::node(const QModelIndex& index) const
{
    return static_cast<const TreeNode*>(index.internalPointer());
}

NodeKind TreeModel::kind(const QModelIndex& index) const
{
    return m_places.value(node(index)).kind;
}

QModelIndex TreeModel::indexOf(QStringView key) const
{
    const TreeNode* found = m_places.isEmpty() ? nullptr : m_root.find(key);
    return found ? createIndex(m_places.value(found).row, 0, found) : QModelIndex();
}

void TreeModel::setText(QStringView key, const QString& text)
{
    const QModelIndex index = indexOf(key);
    if (!index.isValid())
        return;
    static_cast<TreeNode*>(index.internalPointer())->text = text;
    Q_EMIT dataChanged(index, index, {Qt::DisplayRole});
}

QModelIndex TreeModel::index(int row, int column, const QModelIndex& parent) const
{
    if (column != 0 || row < 0 || row >= rowCount(parent))
        return {};
    return createIndex(row, column, parent.isValid() ? &node(parent)->children.at(row) : &m_root);
}

QModelIndex TreeModel::parent(const QModelIndex& child) const
{
    const TreeNode* above = child.isValid() ? m_places.value(node(child)).parent : nullptr;
    return above ? createIndex(m_places.value(above).row, 0, above) : QModelIndex();
}

int TreeModel::rowCount(const QModelIndex& parent) const
{
    if (m_places.isEmpty())
        return 0;
    return parent.isValid() ? int(node(parent)->children.size()) : 1;
}

int TreeModel::columnCount(const QModelIndex&) const
{
    return 1;
}

QVariant TreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return node(index)->text;
    case Qt::DecorationRole:
        return m_places.value(node(index)).icon;
    case KeyRole:
        return node(index)->key;
    case TagRole:
        return node(index)->tag;
    case KindRole:
        return int(kind(index));
    default:
        return {};
    }
}

} // namespace app
