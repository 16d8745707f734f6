#include "reference/ui/LazyTreeModel.h"

#include "jet/Error.h"
#include "jet/text/TextOrder.h"

#include <QApplication>
#include <QFont>
#include <QLoggingCategory>
#include <QMimeData>
#include <QPalette>
#include <algorithm>

namespace reference {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(treeLog, "herbora.reference.ui")

constexpr qint64 pageOfRows = 200;
/// More changed rows than these are worth reading the tree anew.
constexpr qsizetype mostSingly = 500;
const QString mimeType = u"application/x-herbora-reference"_s;

QList<qint32> draggedIds(const QMimeData* data)
{
    QList<qint32> ids;
    for (const QByteArray& id : data->data(mimeType).split(','))
        ids << id.toInt();
    return ids;
}

} // namespace

struct LazyTreeModel::Node {
    enum State { Untouched, Reading, Complete };
    TreeRow row;
    Node* parent = nullptr;
    int place = 0;
    State state = Untouched;
    int inside = -1; ///< Whether something is under it: -1 not known, 0 no, 1 yes.
    std::vector<std::unique_ptr<Node>> children = {};
    std::unique_ptr<jet::Recordset> reading = {};
};

LazyTreeModel::LazyTreeModel(std::unique_ptr<TreeSource> source, QIcon icon, QIcon mapIcon, QObject* parent)
    : QAbstractItemModel(parent), m_source(std::move(source)), m_icon(std::move(icon)), m_mapIcon(std::move(mapIcon)),
      m_top(std::make_unique<Node>())
{
    m_top->row.name = m_source->topName();
    m_timer.setInterval(0);
    connect(&m_timer, &QTimer::timeout, this, &LazyTreeModel::fillFurther);
}

LazyTreeModel::~LazyTreeModel() = default;

/// What cannot be read is told and leaves the tree as it is.
template<typename Work> bool LazyTreeModel::guarded(Work&& work) const
{
    try {
        work();
        return true;
    } catch (const jet::Error& error) {
        qCWarning(treeLog).noquote() << error.number() << error.description();
        Q_EMIT const_cast<LazyTreeModel*>(this)->failed(error.description());
        return false;
    }
}

// --- Nodes -----------------------------------------------------------------------------------------

LazyTreeModel::Node* LazyTreeModel::nodeAt(const QModelIndex& index) const
{
    if (index.isValid())
        return static_cast<Node*>(index.internalPointer());
    return m_top->row.name.isEmpty() ? m_top.get() : nullptr;
}

QModelIndex LazyTreeModel::indexOf(const Node* node) const
{
    if (node == m_top.get())
        return topIndex();
    return createIndex(node->place, 0, node);
}

QModelIndex LazyTreeModel::topIndex() const
{
    return m_top->row.name.isEmpty() ? QModelIndex() : createIndex(0, 0, m_top.get());
}

const TreeRow& LazyTreeModel::rowAt(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<Node*>(index.internalPointer())->row : m_top->row;
}

QModelIndex LazyTreeModel::loaded(qint32 id) const
{
    const Node* node = id == 0 ? m_top.get() : m_byId.value(id);
    return node ? indexOf(node) : QModelIndex();
}

QModelIndex LazyTreeModel::locate(qint32 id)
{
    if (id == 0)
        return topIndex();
    if (const Node* node = m_byId.value(id))
        return indexOf(node);
    Node* at = m_top.get();
    guarded([&] {
        const QList<qint32> path = m_source->isAway() ? QList<qint32>() : m_source->path(id);
        for (const qint32 step : path) {
            while (!m_byId.contains(step) && at->state != Node::Complete)
                readPage(*at);
            Node* next = m_byId.value(step);
            if (!next)
                return;
            at = next;
        }
    });
    return at->row.id == id ? indexOf(at) : QModelIndex();
}

// --- Reading ---------------------------------------------------------------------------------------

void LazyTreeModel::startReading(Node& node)
{
    node.reading = m_source->children(node.row);
    node.state = Node::Reading;
}

/// Reads the next children of a node.
void LazyTreeModel::readPage(Node& node)
{
    if (node.state == Node::Untouched)
        startReading(node);
    std::vector<std::unique_ptr<Node>> found;
    for (auto& values : node.reading->EOF_() ? std::vector<std::vector<QVariant>>() : node.reading->GetRows(pageOfRows)) {
        TreeRow row = m_source->rowOf(values, node.row);
        if (!m_byId.contains(row.id)) // one that came meanwhile stands there already
            found.push_back(std::make_unique<Node>(Node{std::move(row), &node}));
    }
    if (node.reading->EOF_()) {
        node.reading.reset();
        node.state = Node::Complete;
        m_filling.removeAll(&node);
    } else if (!m_filling.contains(&node)) {
        m_filling << &node;
        m_timer.start();
    }
    if (found.empty()) {
        node.inside = node.children.empty() ? 0 : 1;
        return;
    }
    const int first = int(node.children.size());
    beginInsertRows(indexOf(&node), first, first + int(found.size()) - 1);
    for (auto& child : found) {
        child->place = int(node.children.size());
        m_byId.insert(child->row.id, child.get());
        node.children.push_back(std::move(child));
    }
    node.inside = 1;
    endInsertRows();
}

void LazyTreeModel::fillFurther()
{
    if (m_filling.isEmpty() || m_source->isAway())
        return m_timer.stop();
    Node* node = m_filling.first();
    // One whose rows were deleted under the reading is read anew with the next reload.
    if (!guarded([&] { readPage(*node); })) {
        node->reading.reset();
        node->state = Node::Complete;
        m_filling.removeAll(node);
    }
}

void LazyTreeModel::resume()
{
    const QList<qint32> changed = std::exchange(m_changed, {});
    if (changed.size() > mostSingly)
        return reload();
    for (const qint32 id : changed)
        rowChanged(id);
    if (!m_filling.isEmpty())
        m_timer.start();
    Q_EMIT layoutChanged(); // what could not be asked may be asked now
}

void LazyTreeModel::reload()
{
    beginResetModel();
    m_timer.stop();
    m_filling.clear();
    m_byId.clear();
    TreeRow top = m_top->row;
    m_top = std::make_unique<Node>();
    m_top->row = std::move(top);
    endResetModel();
}

bool LazyTreeModel::hasChildren(const QModelIndex& parent) const
{
    Node* node = nodeAt(parent);
    if (!node)
        return true;
    if (node->state != Node::Untouched)
        return node->state == Node::Reading || !node->children.empty();
    if (node->inside < 0 && m_source->mayHaveChildren(node->row)) {
        if (m_source->isAway())
            return true;
        guarded([&] { node->inside = node == m_top.get() || m_source->hasChildren(node->row) ? 1 : 0; });
    }
    return node->inside == 1;
}

bool LazyTreeModel::canFetchMore(const QModelIndex& parent) const
{
    const Node* node = nodeAt(parent);
    return node && node->state == Node::Untouched && m_source->mayHaveChildren(node->row) && !m_source->isAway();
}

void LazyTreeModel::fetchMore(const QModelIndex& parent)
{
    if (canFetchMore(parent))
        guarded([&] { readPage(*nodeAt(parent)); });
}

// --- Changes ---------------------------------------------------------------------------------------

void LazyTreeModel::renumber(Node& parent, size_t from)
{
    for (size_t i = from; i < parent.children.size(); ++i)
        parent.children[i]->place = int(i);
}

void LazyTreeModel::forget(Node& node)
{
    for (const auto& child : node.children)
        forget(*child);
    m_byId.remove(node.row.id);
    m_filling.removeAll(&node);
}

void LazyTreeModel::remove(Node& node)
{
    Node& parent = *node.parent;
    const int place = node.place;
    beginRemoveRows(indexOf(&parent), place, place);
    forget(node);
    parent.children.erase(parent.children.begin() + place);
    renumber(parent, size_t(place));
    endRemoveRows();
}

/// Where a row belongs in the order of the names; `except` stands for the row itself.
int LazyTreeModel::placeOf(const Node& parent, const TreeRow& row, const Node* except) const
{
    int place = 0;
    for (const auto& child : parent.children) {
        if (child.get() == except)
            continue;
        if (jet::text::compare(child->row.name, row.name) > 0)
            break;
        ++place;
    }
    return place;
}

void LazyTreeModel::insert(Node& parent, const TreeRow& row)
{
    const int place = placeOf(parent, row, nullptr);
    beginInsertRows(indexOf(&parent), place, place);
    auto node = std::make_unique<Node>(Node{row, &parent});
    m_byId.insert(row.id, node.get());
    parent.children.insert(parent.children.begin() + place, std::move(node));
    renumber(parent, size_t(place));
    endInsertRows();
}

void LazyTreeModel::reorder(Node& node)
{
    Node& parent = *node.parent;
    const int from = node.place;
    const int to = placeOf(parent, node.row, &node);
    if (from == to)
        return;
    const QModelIndex above = indexOf(&parent);
    beginMoveRows(above, from, from, above, to > from ? to + 1 : to);
    auto taken = std::move(parent.children[size_t(from)]);
    parent.children.erase(parent.children.begin() + from);
    parent.children.insert(parent.children.begin() + to, std::move(taken));
    renumber(parent, 0);
    endMoveRows();
}

/// A view asks for the arrows of nodes with the layout alone.
void LazyTreeModel::arrowsChanged()
{
    Q_EMIT layoutAboutToBeChanged();
    Q_EMIT layoutChanged();
}

void LazyTreeModel::rowChanged(qint32 id)
{
    if (m_source->isAway()) {
        m_changed << id;
        return;
    }
    guarded([&] {
        const std::optional<TreeRow> row = m_source->row(id);
        if (!row)
            return rowDeleted(id);
        const QList<qint32> path = m_source->path(id);
        const qint32 above = path.size() < 2 ? 0 : path[path.size() - 2];
        Node* parent = above == 0 ? m_top.get() : m_byId.value(above);
        Node* node = m_byId.value(id);
        if (node && node->parent == parent) {
            node->row = *row;
            reorder(*node);
            const QModelIndex at = indexOf(node);
            Q_EMIT dataChanged(at, at);
            return;
        }
        if (node) {
            Node* old = node->parent;
            remove(*node);
            old->inside = -1;
        }
        if (parent && parent->state != Node::Untouched)
            insert(*parent, *row);
        else if (parent)
            parent->inside = -1;
        arrowsChanged();
    });
}

void LazyTreeModel::rowDeleted(qint32 id)
{
    Node* node = m_byId.value(id);
    if (!node)
        return;
    Node* parent = node->parent;
    remove(*node);
    parent->inside = -1;
    if (parent->children.empty())
        arrowsChanged();
}

void LazyTreeModel::refreshSynonyms()
{
    QList<qint32> ids;
    for (const Node* node : std::as_const(m_byId)) {
        if (node->row.synonym)
            ids << node->row.id;
    }
    for (const qint32 id : std::as_const(ids))
        rowChanged(id);
}

// --- What a view asks ------------------------------------------------------------------------------

QModelIndex LazyTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    if (row < 0 || column != 0)
        return {};
    const Node* above = nodeAt(parent);
    if (!above)
        return row == 0 ? topIndex() : QModelIndex();
    return size_t(row) < above->children.size() ? createIndex(row, 0, above->children[size_t(row)].get()) : QModelIndex();
}

QModelIndex LazyTreeModel::parent(const QModelIndex& child) const
{
    const Node* node = child.isValid() ? static_cast<Node*>(child.internalPointer()) : nullptr;
    return node && node->parent ? indexOf(node->parent) : QModelIndex();
}

int LazyTreeModel::rowCount(const QModelIndex& parent) const
{
    const Node* node = nodeAt(parent);
    return node ? int(node->children.size()) : 1;
}

QVariant LazyTreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const Node& node = *static_cast<Node*>(index.internalPointer());
    switch (role) {
    case Qt::DisplayRole:
        return node.row.name;
    case Qt::AccessibleTextRole:
        return node.row.synonym ? node.row.name + u" (synonyme)"_s : node.row.map ? node.row.name + u" (carte)"_s : node.row.name;
    case Qt::DecorationRole:
        return node.row.map ? m_mapIcon : m_icon;
    case Qt::FontRole: {
        QFont font = QApplication::font();
        font.setItalic(node.row.rank >= 2); // as names below the family are written
        return font;
    }
    case Qt::ForegroundRole:
        return node.row.synonym ? QVariant(QApplication::palette().color(QPalette::PlaceholderText)) : QVariant();
    case Qt::ToolTipRole: {
        QString tip;
        if (!m_source->isAway())
            guarded([&] { tip = m_source->tip(node.row); });
        return tip.isEmpty() ? QVariant() : QVariant(tip);
    }
    case IdRole:
        return node.row.id;
    case KeyRole:
        return QString(QString::number(node.row.id) + m_source->keyTail(node.row));
    case RankRole:
        return node.row.rank;
    default:
        return {};
    }
}

Qt::ItemFlags LazyTreeModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (!index.isValid() || !movable)
        return flags;
    if (rowAt(index).id > 0)
        flags |= Qt::ItemIsDragEnabled;
    return m_source->accepts(rowAt(index)) ? flags | Qt::ItemIsDropEnabled : flags;
}

QStringList LazyTreeModel::mimeTypes() const
{
    return {mimeType};
}

QMimeData* LazyTreeModel::mimeData(const QModelIndexList& indexes) const
{
    QByteArrayList ids;
    QStringList names;
    for (const QModelIndex& index : indexes) {
        ids << QByteArray::number(rowAt(index).id);
        names << rowAt(index).name;
    }
    auto* data = new QMimeData;
    data->setData(mimeType, ids.join(','));
    data->setText(names.join(u'\n'));
    return data;
}

bool LazyTreeModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int, const QModelIndex& parent) const
{
    if (!movable || !data->hasFormat(mimeType) || !parent.isValid() || !m_source->accepts(rowAt(parent)))
        return false;
    const QList<qint32> ids = draggedIds(data);
    return std::all_of(ids.begin(), ids.end(), [&](qint32 id) {
        const Node* moved = m_byId.value(id);
        return id != rowAt(parent).id && (!moved || m_source->takes(rowAt(parent), moved->row));
    });
}

/// The rows move once the drop is over and the database agrees; the view takes none away itself.
bool LazyTreeModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                 const QModelIndex& parent)
{
    if (canDropMimeData(data, action, row, column, parent))
        Q_EMIT moveWanted(draggedIds(data), rowAt(parent).id);
    return false;
}

} // namespace reference
