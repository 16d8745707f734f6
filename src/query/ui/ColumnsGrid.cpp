#include "query/ui/ColumnsGrid.h"

#include "query/ui/FieldTreeModel.h"

#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QStyledItemDelegate>

namespace query {

using namespace Qt::StringLiterals;

namespace {

const QString columnMime = u"application/x-herbora-colonne"_s;

QColor errorColour(const QPalette& palette)
{
    return palette.color(QPalette::Base).lightness() < 128 ? QColor(0xff, 0x8a, 0x80) : QColor(0xc6, 0x28, 0x28);
}

class OrderDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const override
    {
        auto* box = new QComboBox(parent);
        box->addItems({QString(), orderUp, orderDown});
        box->setAccessibleName(u"Ordre du Tri"_s);
        // One choice is enough: the cell need not be left.
        connect(box, &QComboBox::activated, this, [this, box] {
            auto* self = const_cast<OrderDelegate*>(this);
            Q_EMIT self->commitData(box);
            Q_EMIT self->closeEditor(box);
        });
        return box;
    }
    void setEditorData(QWidget* editor, const QModelIndex& index) const override
    {
        static_cast<QComboBox*>(editor)->setCurrentText(index.data(Qt::EditRole).toString());
    }
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override
    {
        model->setData(index, static_cast<QComboBox*>(editor)->currentText());
    }
};

} // namespace

void paintHint(QAbstractItemView& view, const QString& text)
{
    QPainter painter(view.viewport());
    painter.setPen(view.palette().color(QPalette::PlaceholderText));
    painter.drawText(view.viewport()->rect().adjusted(16, 8, -16, -8), Qt::AlignCenter | Qt::TextWordWrap, text);
}

// --- Model -----------------------------------------------------------------------------------

void ColumnsModel::setQuery(Query* query)
{
    beginResetModel();
    m_query = query;
    m_rows = query ? query->columns().size() : 0;
    endResetModel();
}

void ColumnsModel::refresh()
{
    if (m_query && m_rows == m_query->columns().size()) {
        if (m_rows > 0)
            Q_EMIT dataChanged(index(0, 0), index(int(m_rows) - 1, ColumnCount - 1));
        return;
    }
    setQuery(m_query);
}

int ColumnsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows);
}

QVariant ColumnsModel::data(const QModelIndex& index, int role) const
{
    if (!m_query || index.row() >= m_query->columns().size())
        return {};
    const OutputColumn& column = m_query->columns().at(index.row());
    const bool gone = column.path.isEmpty();
    if (role == Qt::ForegroundRole && gone)
        return errorColour(QPalette());
    if (role == Qt::ToolTipRole && gone)
        return u"Ce champ n'existe plus"_s;
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    switch (index.column()) {
    case Field:
        return gone ? u"(champ supprimé)"_s : readablePath(column.path);
    case Alias:
        return column.alias;
    default:
        return column.order;
    }
}

bool ColumnsModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!m_query || role != Qt::EditRole)
        return false;
    const QString text = value.toString();
    if (index.column() == Alias) {
        if (text.trimmed() == m_query->columns().at(index.row()).alias)
            return true;
        return m_query->setAlias(index.row(), text);
    }
    if (index.column() == Order && text != m_query->columns().at(index.row()).order)
        m_query->setOrder(index.row(), text);
    return index.column() == Order;
}

QVariant ColumnsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList texts{u"Champ"_s, u"Nom du champ"_s, u"Ordre du Tri"_s};
    if (role == Qt::TextAlignmentRole && orientation == Qt::Horizontal)
        return int(Qt::AlignLeft | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    return orientation == Qt::Horizontal ? QVariant(texts.value(section)) : QVariant(section + 1);
}

Qt::ItemFlags ColumnsModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
    flags.setFlag(Qt::ItemIsEditable, index.column() != Field);
    return flags;
}

QStringList ColumnsModel::mimeTypes() const
{
    return {columnMime, fieldMime};
}

QMimeData* ColumnsModel::mimeData(const QModelIndexList& indexes) const
{
    auto* data = new QMimeData;
    if (!indexes.isEmpty())
        data->setData(columnMime, QByteArray::number(indexes.first().row()));
    return data;
}

bool ColumnsModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int, const QModelIndex&) const
{
    return m_query && (data->hasFormat(columnMime) || data->hasFormat(fieldMime));
}

bool ColumnsModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                const QModelIndex& parent)
{
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    int at = row >= 0 ? row : parent.isValid() ? parent.row() : rowCount();
    if (data->hasFormat(fieldMime)) {
        Q_EMIT fieldsDropped(fieldsIn(data), at);
        return true;
    }
    const int from = data->data(columnMime).toInt();
    if (at > from)
        --at;
    m_query->moveColumn(from, qBound(0, at, rowCount() - 1));
    return false; // the view must not remove the row that it dragged
}

// --- View ------------------------------------------------------------------------------------

ColumnsGrid::ColumnsGrid(QWidget* parent) : QTableView(parent), m_model(new ColumnsModel(this))
{
    setObjectName(u"colonnes"_s);
    setAccessibleName(u"Champs affichés"_s);
    setModel(m_model);
    setItemDelegateForColumn(ColumnsModel::Order, new OrderDelegate(this));
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
    setDragDropMode(DragDrop);
    setDefaultDropAction(Qt::MoveAction);
    setDragDropOverwriteMode(false);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setTextElideMode(Qt::ElideMiddle); // of a path the ends tell most
    setAlternatingRowColors(true);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionResizeMode(ColumnsModel::Field, QHeaderView::Stretch);
    horizontalHeader()->setSectionResizeMode(ColumnsModel::Alias, QHeaderView::Stretch);
    horizontalHeader()->setSectionResizeMode(ColumnsModel::Order, QHeaderView::Fixed);
    horizontalHeader()->resizeSection(ColumnsModel::Order, fontMetrics().horizontalAdvance(u"Ordre du Tri"_s) + 20);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

void ColumnsGrid::setQuery(Query* query)
{
    m_query = query;
    m_model->setQuery(query);
}

void ColumnsGrid::removeSelected()
{
    QList<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedRows())
        rows << index.row();
    std::sort(rows.begin(), rows.end(), std::greater<>());
    const int next = rows.isEmpty() ? -1 : rows.last();
    for (const int row : std::as_const(rows))
        m_query->removeColumn(row);
    selectRow(qMin(next, m_model->rowCount() - 1));
}

void ColumnsGrid::moveCurrent(int by)
{
    const int from = currentRow();
    const int to = from + by;
    if (!m_query || from < 0 || to < 0 || to >= m_model->rowCount())
        return;
    m_query->moveColumn(from, to);
    setCurrentIndex(m_model->index(to, currentIndex().column()));
}

void ColumnsGrid::keyPressEvent(QKeyEvent* event)
{
    const bool alt = event->modifiers() == Qt::AltModifier;
    if (event->key() == Qt::Key_Delete && state() != EditingState)
        return removeSelected();
    if (alt && (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down))
        return moveCurrent(event->key() == Qt::Key_Up ? -1 : 1);
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && state() != EditingState
        && currentIndex().isValid())
        return edit(currentIndex().column() == ColumnsModel::Field ? currentIndex().siblingAtColumn(ColumnsModel::Alias)
                                                                   : currentIndex());
    QTableView::keyPressEvent(event);
}

void ColumnsGrid::paintEvent(QPaintEvent* event)
{
    QTableView::paintEvent(event);
    if (m_model->rowCount() == 0)
        paintHint(*this, u"Faites glisser ici les champs à afficher, ou double-cliquez sur eux dans l'arbre."_s);
}

} // namespace query
