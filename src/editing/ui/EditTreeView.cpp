#include "editing/ui/EditTreeView.h"

#include <QKeyEvent>
#include <QScopedValueRollback>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

constexpr int longestUnfolded = 40;

} // namespace

EditTreeView::EditTreeView(EditTreeModel& model, QWidget* parent) : QTreeView(parent), m_nodes(model)
{
    setObjectName(u"arbreFiche"_s);
    setAccessibleName(u"Enregistrements de l'individu"_s);
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::MoveAction);
    setExpandsOnDoubleClick(false);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    setModel(&model);
    connect(&model, &QAbstractItemModel::modelReset, this, &EditTreeView::unfold);
    const auto note = [this](const QModelIndex& index, QSet<QString>& to, QSet<QString>& from) {
        if (m_quiet)
            return;
        to << m_nodes.nodeAt(index)->key;
        from.remove(m_nodes.nodeAt(index)->key);
    };
    connect(this, &QTreeView::expanded, this, [this, note](const QModelIndex& i) { note(i, m_unfolded, m_folded); });
    connect(this, &QTreeView::collapsed, this, [this, note](const QModelIndex& i) { note(i, m_folded, m_unfolded); });
    connect(this, &QTreeView::doubleClicked, this, &EditTreeView::nodeActivated);
}

void EditTreeView::unfold()
{
    const QScopedValueRollback quiet(m_quiet, true);
    unfoldUnder({});
}

void EditTreeView::unfoldUnder(const QModelIndex& parent)
{
    const int rows = m_nodes.rowCount(parent);
    for (int row = 0; row < rows; ++row) {
        const QModelIndex index = m_nodes.index(row, 0, parent);
        const EditNode& node = *m_nodes.nodeAt(index);
        if (node.children.empty())
            continue;
        const bool byDefault = node.children.size() <= longestUnfolded && !m_folded.contains(node.key);
        if (byDefault || m_unfolded.contains(node.key))
            expand(index);
        unfoldUnder(index);
    }
}

void EditTreeView::showNode(const EditNode* node)
{
    const QModelIndex index = m_nodes.indexOf(node);
    if (index == currentIndex())
        return;
    const QScopedValueRollback quiet(m_quiet, true);
    setCurrentIndex(index);
    scrollTo(index);
}

void EditTreeView::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QTreeView::currentChanged(current, previous);
    if (!m_quiet && current.isValid())
        Q_EMIT nodeChosen(current);
}

void EditTreeView::keyPressEvent(QKeyEvent* event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn || !currentIndex().isValid())
        return QTreeView::keyPressEvent(event);
    event->accept();
    Q_EMIT nodeActivated(currentIndex());
}

} // namespace editing
