#include "query/ui/FieldTreeModel.h"

namespace query {

using namespace Qt::StringLiterals;

QStringList fieldsIn(const QMimeData* data)
{
    return QString::fromUtf8(data->data(fieldMime)).split(u'\n', Qt::SkipEmptyParts);
}

QString readablePath(const QString& path)
{
    const qsizetype root = path.indexOf(pathSeparator);
    return root < 0 ? path : path.mid(root + 1).replace(pathSeparator, u" › "_s);
}

void FieldTreeModel::setStructure(Structure* structure)
{
    beginResetModel();
    m_structure = structure;
    endResetModel();
}

void FieldTreeModel::setCheckboxes(bool shown)
{
    beginResetModel();
    m_checkboxes = shown;
    endResetModel();
}

const Node* FieldTreeModel::node(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<const Node*>(index.constInternalPointer()) : nullptr;
}

QModelIndex FieldTreeModel::indexOf(const Node* node) const
{
    if (!node || !m_structure)
        return {};
    if (!node->parent)
        return createIndex(0, 0, node);
    const auto& brothers = node->parent->children;
    const auto at = std::find_if(brothers.begin(), brothers.end(), [&](const auto& one) { return one.get() == node; });
    return at == brothers.end() ? QModelIndex() : createIndex(int(at - brothers.begin()), 0, node);
}

QModelIndex FieldTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    if (!m_structure || !m_structure->root() || column != 0 || row < 0)
        return {};
    if (!parent.isValid())
        return row == 0 ? createIndex(0, 0, m_structure->root()) : QModelIndex();
    const auto& children = node(parent)->children;
    return size_t(row) < children.size() ? createIndex(row, 0, children[size_t(row)].get()) : QModelIndex();
}

QModelIndex FieldTreeModel::parent(const QModelIndex& child) const
{
    const Node* at = node(child);
    return at && at->parent ? indexOf(at->parent) : QModelIndex();
}

int FieldTreeModel::rowCount(const QModelIndex& parent) const
{
    if (!m_structure || !m_structure->root())
        return 0;
    return parent.isValid() ? int(node(parent)->children.size()) : 1;
}

QVariant FieldTreeModel::data(const QModelIndex& index, int role) const
{
    const Node* at = node(index);
    if (!at)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return at->text;
    case Qt::DecorationRole:
        return m_icons ? QVariant(m_icons(at->icon)) : QVariant();
    case Qt::ToolTipRole:
        return at->field && !at->field->TextHelp().isEmpty() ? at->field->TextHelp()
                                                             : readablePath(m_structure->path(*at));
    case Qt::CheckStateRole:
        return m_checkboxes && at->field ? QVariant(at->checked ? Qt::Checked : Qt::Unchecked) : QVariant();
    case PathRole:
        return m_structure->path(*at);
    case KeyRole:
        return at->key;
    default:
        return {};
    }
}

bool FieldTreeModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const Node* at = node(index);
    if (!at || role != Qt::CheckStateRole || !m_checkboxes)
        return false;
    m_structure->setChecked(at->key, value.toInt() == Qt::Checked);
    Q_EMIT dataChanged(index, index, {Qt::CheckStateRole});
    return true;
}

Qt::ItemFlags FieldTreeModel::flags(const QModelIndex& index) const
{
    const Node* at = node(index);
    if (!at)
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    flags.setFlag(Qt::ItemIsDragEnabled);
    flags.setFlag(Qt::ItemIsUserCheckable, m_checkboxes && at->field);
    return flags;
}

QMimeData* FieldTreeModel::mimeData(const QModelIndexList& indexes) const
{
    QStringList paths;
    for (const QModelIndex& index : indexes)
        paths << index.data(PathRole).toString();
    auto* data = new QMimeData;
    data->setData(fieldMime, paths.join(u'\n').toUtf8());
    return data;
}

} // namespace query
