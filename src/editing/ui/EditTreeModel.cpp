#include "editing/ui/EditTreeModel.h"

#include <QFont>
#include <QMimeData>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

const QString recordFormat = u"application/x-herbora-record"_s;

QString keyIn(const QMimeData* data)
{
    return QString::fromUtf8(data->data(recordFormat));
}

} // namespace

EditTreeModel::EditTreeModel(IndividualEditing& editing, std::function<QIcon(const QString&)> icon, QObject* parent)
    : QAbstractItemModel(parent), m_editing(editing), m_icon(std::move(icon))
{
}

void EditTreeModel::rebuilt()
{
    beginResetModel();
    endResetModel();
}

void EditTreeModel::changed(const QString& key)
{
    const QModelIndex index = indexOf(m_editing.node(key));
    if (index.isValid())
        Q_EMIT dataChanged(index, index);
}

const EditNode* EditTreeModel::nodeAt(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<const EditNode*>(index.constInternalPointer()) : &m_editing.tree();
}

QModelIndex EditTreeModel::indexOf(const EditNode* node) const
{
    return node && node->parent ? createIndex(node->row(), 0, node) : QModelIndex();
}

QModelIndex EditTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    const EditNode* above = nodeAt(parent);
    if (column != 0 || row < 0 || size_t(row) >= above->children.size())
        return {};
    return createIndex(row, 0, above->children[size_t(row)].get());
}

QModelIndex EditTreeModel::parent(const QModelIndex& child) const
{
    return child.isValid() ? indexOf(nodeAt(child)->parent) : QModelIndex();
}

int EditTreeModel::rowCount(const QModelIndex& parent) const
{
    return int(nodeAt(parent)->children.size());
}

QVariant EditTreeModel::decoration(const EditNode& node) const
{
    switch (node.kind) {
    case EditNode::Kind::Help:
        return QIcon::fromTheme(u"help-contents"_s);
    case EditNode::Kind::New:
        return QIcon::fromTheme(u"list-add"_s);
    case EditNode::Kind::Record:
        if (node.record->locked)
            return QIcon::fromTheme(u"object-locked"_s);
        break;
    default:
        break;
    }
    return m_icon ? m_icon(node.module) : QIcon();
}

QVariant EditTreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const EditNode& node = *nodeAt(index);
    const bool unsaved = node.kind == EditNode::Kind::Record && (node.record->isNew() || node.record->Changed());
    switch (role) {
    case Qt::DisplayRole:
        return (unsaved ? u"● "_s : QString()) + m_editing.nodeCaption(node);
    case Qt::ToolTipRole:
        return m_editing.nodeCaption(node) + (unsaved ? u"\nNon enregistré"_s : QString());
    case Qt::AccessibleTextRole:
        return m_editing.nodeCaption(node)
               + (unsaved ? u", non enregistré"_s : QString())
               + (node.kind == EditNode::Kind::Record && node.record->locked ? u", verrouillé"_s : QString());
    case Qt::DecorationRole:
        return decoration(node);
    case Qt::FontRole: {
        QFont font;
        font.setBold(unsaved);
        font.setItalic(node.kind == EditNode::Kind::New);
        return font;
    }
    default:
        return {};
    }
}

Qt::ItemFlags EditTreeModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = QAbstractItemModel::flags(index);
    const EditNode& node = *nodeAt(index);
    if (node.kind == EditNode::Kind::Record)
        flags |= Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
    return flags;
}

QStringList EditTreeModel::mimeTypes() const
{
    return {recordFormat};
}

QMimeData* EditTreeModel::mimeData(const QModelIndexList& indexes) const
{
    auto* data = new QMimeData;
    if (!indexes.isEmpty())
        data->setData(recordFormat, nodeAt(indexes.first())->key.toUtf8());
    return data;
}

bool EditTreeModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int row, int,
                                    const QModelIndex& parent) const
{
    const EditNode& target = *nodeAt(parent);
    const EditedRecord* moved = m_editing.record(keyIn(data));
    return row < 0 && moved && target.kind == EditNode::Kind::Record && m_editing.canMove(*moved, target.key);
}

bool EditTreeModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                 const QModelIndex& parent)
{
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    Q_EMIT moveWanted(keyIn(data), nodeAt(parent)->key);
    return false; // no rows are to be taken out: the tree is made anew
}

} // namespace editing
