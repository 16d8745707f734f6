#include "query/ui/CriteriaGrid.h"

#include "query/ui/ColumnsGrid.h"

#include <QHeaderView>
#include <QKeyEvent>

namespace query {

using namespace Qt::StringLiterals;

CriteriaGrid::CriteriaGrid(QWidget* parent)
    : QTreeView(parent), m_model(new CriteriaModel(this)), m_delegate(new CriterionDelegate(this))
{
    setObjectName(u"criteres"_s);
    setAccessibleName(u"Critères"_s);
    setModel(m_model);
    setItemDelegate(m_delegate);
    setUniformRowHeights(true);
    setTextElideMode(Qt::ElideMiddle);
    setAlternatingRowColors(true);
    setAllColumnsShowFocus(true);
    setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
    setDragDropMode(DropOnly);
    setItemsExpandable(true);
    setExpandsOnDoubleClick(false);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setIndentation(14);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(QHeaderView::Stretch);
    header()->setSectionResizeMode(CriteriaModel::Link, QHeaderView::Interactive);
    header()->setSectionResizeMode(CriteriaModel::Operator, QHeaderView::Interactive);
    header()->resizeSection(CriteriaModel::Link, fontMetrics().horizontalAdvance(u"Liaison"_s) + 34);
    header()->resizeSection(CriteriaModel::Operator, fontMetrics().horizontalAdvance(u"Ne Contient pas"_s) + 16);
    header()->setSectionsMovable(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(m_model, &QAbstractItemModel::modelReset, this, [this] { expandAll(); });
    connect(this, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { Q_EMIT menuWanted(viewport()->mapToGlobal(at)); });
}

void CriteriaGrid::setQuery(Query* query)
{
    m_model->setQuery(query);
}

void CriteriaGrid::setCurrentRow(int row, int column)
{
    setCurrentIndex(m_model->indexOf(row, column));
}

void CriteriaGrid::editValue(int row)
{
    setCurrentRow(row, CriteriaModel::Value);
    scrollTo(currentIndex());
    if (m_model->flags(currentIndex()) & Qt::ItemIsEditable)
        edit(currentIndex());
}

void CriteriaGrid::command(const QString& key, const QString& path)
{
    Query* query = m_model->query();
    const int row = currentRow();
    const bool adds = key.startsWith(u"add");
    if (!query || (!adds && row < 0))
        return;
    const qsizetype at = query->command(key, row, path);
    m_model->refresh();
    setCurrentRow(int(qMin(at, query->criteria().count() - 1)));
    if (adds && !path.isEmpty())
        editValue(int(at));
}

void CriteriaGrid::addOrEmpty()
{
    if (Query* query = m_model->query()) {
        const qsizetype at = query->addOrEmpty(currentRow());
        m_model->refresh();
        setCurrentRow(int(at));
    }
}

void CriteriaGrid::keyPressEvent(QKeyEvent* event)
{
    const bool alt = event->modifiers() == Qt::AltModifier;
    const bool editing = state() == EditingState;
    if (event->key() == Qt::Key_Delete && !editing)
        return command(u"delete"_s);
    if (event->key() == Qt::Key_Insert && !editing)
        return command(event->modifiers() & Qt::ShiftModifier ? u"addchild"_s : u"addbrother"_s,
                       m_model->query() && currentRow() >= 0
                           ? m_model->query()->criteria().at(currentRow()).path
                           : QString());
    if (alt && (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down))
        return command(event->key() == Qt::Key_Up ? u"up"_s : u"down"_s);
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && !editing && currentIndex().isValid())
        return editValue(currentRow());
    // A tree would go to the row above the group, and the link of a grouped row could not be reached.
    const bool across = event->key() == Qt::Key_Left || event->key() == Qt::Key_Right;
    if (across && !editing && currentIndex().isValid()) {
        const int column = currentIndex().column() + (event->key() == Qt::Key_Left ? -1 : 1);
        if (const QModelIndex next = currentIndex().siblingAtColumn(column); next.isValid())
            setCurrentIndex(next);
        return;
    }
    QTreeView::keyPressEvent(event);
}

void CriteriaGrid::paintEvent(QPaintEvent* event)
{
    QTreeView::paintEvent(event);
    if (m_model->rowCount() == 0)
        paintHint(*this, u"Faites glisser ici les champs dont la valeur est à comparer. Sur une ligne, le champ forme un "
                         "groupe avec elle."_s);
}

} // namespace query
