#include "app/ui/ModuleDock.h"

#include <QHeaderView>
#include <QLabel>
#include <QMenu>

namespace app {

using namespace Qt::StringLiterals;

ModuleDock::ModuleDock(QWidget* parent)
    : QDockWidget(u"Arbre des modules"_s, parent), m_model(new TreeModel(this)), m_commands(new TreeCommands(this)),
      m_view(new QTreeView(this)), m_pages(new QStackedWidget(this))
{
    setObjectName(u"dockModules"_s);
    setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
    m_view->setObjectName(u"moduleTree"_s);
    m_view->setAccessibleName(u"Arbre des modules"_s);
    m_view->setModel(m_model);
    m_view->setHeaderHidden(true);
    m_view->header()->setAccessibleName(u"Modules"_s);
    m_view->setUniformRowHeights(true);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setExpandsOnDoubleClick(false); // a module opens its records instead
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    m_view->setFrameShape(QFrame::NoFrame);
    const int side = m_view->fontMetrics().height();
    m_view->setIconSize({qMax(16, side), qMax(16, side)});
    auto* none = new QLabel(u"Aucun projet ouvert"_s, this);
    none->setObjectName(u"noProject"_s);
    none->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
    none->setMargin(12);
    none->setForegroundRole(QPalette::PlaceholderText);
    m_pages->setObjectName(u"modulePages"_s);
    m_pages->addWidget(none);
    m_pages->addWidget(m_view);
    setWidget(m_pages);

    connect(m_view, &QTreeView::customContextMenuRequested, this, &ModuleDock::showMenu);
    connect(m_view, &QTreeView::activated, this, &ModuleDock::activate);
    connect(m_view->selectionModel(), &QItemSelectionModel::currentChanged, this, &ModuleDock::chooseCurrent);
    connect(m_model, &TreeModel::dataChanged, this, &ModuleDock::chooseCurrent);
    connect(m_model, &TreeModel::modelReset, this, &ModuleDock::chooseCurrent);
}

void ModuleDock::load(const Session& session)
{
    m_model->load(session);
    m_pages->setCurrentWidget(m_view);
    m_view->expandAll();
    m_view->setCurrentIndex(m_model->index(0, 0));
}

QStringList ModuleDock::expandedKeys(const QModelIndex& parent) const
{
    QStringList keys;
    for (int row = 0; row < m_model->rowCount(parent); ++row) {
        const QModelIndex index = m_model->index(row, 0, parent);
        if (m_view->isExpanded(index))
            keys << m_model->node(index)->key;
        keys += expandedKeys(index);
    }
    return keys;
}

void ModuleDock::reload(const Session& session)
{
    const QStringList open = expandedKeys({});
    const TreeNode* chosen = m_view->currentIndex().isValid() ? m_model->node(m_view->currentIndex()) : nullptr;
    const QString current = chosen ? chosen->key : QString();
    m_model->load(session);
    for (const QString& key : open)
        m_view->expand(m_model->indexOf(key));
    const QModelIndex index = m_model->indexOf(current);
    m_view->setCurrentIndex(index.isValid() ? index : m_model->index(0, 0));
}

void ModuleDock::clear()
{
    m_model->clear();
    m_pages->setCurrentIndex(0);
}

void ModuleDock::collapseAll()
{
    m_view->collapseAll();
    m_view->expand(m_model->index(0, 0));
}

void ModuleDock::chooseCurrent()
{
    const QModelIndex index = m_view->currentIndex();
    m_commands->choose(index.isValid() ? m_model->node(index) : nullptr,
                       index.isValid() ? m_model->kind(index) : NodeKind::None);
}

void ModuleDock::activate(const QModelIndex& index)
{
    chooseCurrent();
    if (!m_commands->runDefault())
        m_view->setExpanded(index, !m_view->isExpanded(index));
}

void ModuleDock::showMenu(const QPoint& position)
{
    if (!m_view->indexAt(position).isValid())
        return;
    chooseCurrent();
    const QList<QAction*> actions = m_commands->fitting();
    if (actions.isEmpty())
        return;
    auto* menu = new QMenu(m_view);
    menu->setObjectName(u"menuContext"_s);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions(actions);
    menu->popup(m_view->viewport()->mapToGlobal(position));
}

} // namespace app
