#include "app/ui/Documents.h"

#include "app/Session.h"
#include "app/ui/Icons.h"

#include <QTabBar>

namespace app {

using namespace Qt::StringLiterals;

Documents::Documents(Session& session, platform::TaskRunner& runner, WindowState& state, StartPage* start,
                     QWidget* parent)
    : QStackedWidget(parent), m_session(session), m_runner(runner), m_state(state), m_start(start),
      m_tabs(new QTabWidget(this))
{
    setObjectName(u"documents"_s);
    m_tabs->setObjectName(u"tabs"_s);
    m_tabs->setAccessibleName(u"Onglets"_s);
    m_tabs->tabBar()->setObjectName(u"tabBar"_s);
    m_tabs->tabBar()->setAccessibleName(u"Onglets"_s);
    m_tabs->setDocumentMode(true);
    m_tabs->setTabsClosable(true);
    m_tabs->setMovable(true);
    addWidget(m_start);
    addWidget(m_tabs);
    connect(m_tabs, &QTabWidget::tabCloseRequested, this, &Documents::close);
    connect(m_tabs, &QTabWidget::currentChanged, this, &Documents::currentChanged);
}

GridTab* Documents::current() const
{
    return qobject_cast<GridTab*>(m_tabs->currentWidget());
}

QList<GridTab*> Documents::grids() const
{
    QList<GridTab*> all;
    for (int tab = 0; tab < m_tabs->count(); ++tab) {
        if (auto* grid = qobject_cast<GridTab*>(m_tabs->widget(tab)))
            all << grid;
    }
    return all;
}

void Documents::openRecords(const QString& key, NodeKind kind)
{
    for (GridTab* grid : grids()) {
        if (grid->source().key == key)
            return m_tabs->setCurrentWidget(grid);
    }
    GridSource source;
    const data::ModuleRecord* module =
        kind == NodeKind::Module ? m_session.dictionary().module(key) : nullptr;
    if (module)
        source = moduleSource(*module, m_session.modules(), m_session.database().schema());
    else if (kind == NodeKind::Taxa)
        source = taxaSource();
    else if (kind == NodeKind::Localities)
        source = localitiesSource();
    else if (kind == NodeKind::Collectors)
        source = collectorsSource();
    else
        return;

    auto* grid = new GridTab(source, m_session, m_runner, m_state, m_tabs);
    connect(grid, &GridTab::statusChanged, this, [this, grid] {
        if (grid == current())
            Q_EMIT currentChanged();
    });
    connect(grid, &GridTab::failed, this,
            [this, grid](const QString& description) { Q_EMIT failed(grid->source().title, description); });
    m_tabs->setCurrentIndex(m_tabs->addTab(grid, iconNamed(source.icon, m_session.modules()), source.title));
    showTabsOrStart();
    grid->setFocus();
}

void Documents::close(int tab)
{
    // Gone at once: no tab outlives the project that it shows.
    const std::unique_ptr<QWidget> grid(m_tabs->widget(tab));
    m_tabs->removeTab(tab);
    showTabsOrStart();
}

void Documents::closeCurrent()
{
    if (m_tabs->currentIndex() >= 0)
        close(m_tabs->currentIndex());
}

void Documents::closeAll()
{
    while (m_tabs->count() > 0)
        close(m_tabs->count() - 1);
}

void Documents::reloadStale()
{
    for (GridTab* grid : grids())
        grid->model().reloadIfStale();
}

void Documents::showTabsOrStart()
{
    setCurrentWidget(m_tabs->count() > 0 ? static_cast<QWidget*>(m_tabs) : m_start);
    Q_EMIT currentChanged();
}

} // namespace app
