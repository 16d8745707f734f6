#include "app/ui/Documents.h"

#include "app/Session.h"
#include "app/ui/Icons.h"

#include <QTabBar>
#include <algorithm>

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

platform::DocumentTab* Documents::current() const
{
    return qobject_cast<platform::DocumentTab*>(m_tabs->currentWidget());
}

GridTab* Documents::currentGrid() const
{
    return qobject_cast<GridTab*>(m_tabs->currentWidget());
}

QList<platform::DocumentTab*> Documents::tabs() const
{
    QList<platform::DocumentTab*> all;
    for (int tab = 0; tab < m_tabs->count(); ++tab)
        all << static_cast<platform::DocumentTab*>(m_tabs->widget(tab));
    return all;
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

platform::DocumentTab* Documents::find(const QString& key) const
{
    const QList<platform::DocumentTab*> all = tabs();
    for (platform::DocumentTab* tab : all) {
        if (tab->key() == key)
            return tab;
    }
    return nullptr;
}

bool Documents::show(const QString& key)
{
    platform::DocumentTab* tab = find(key);
    if (tab)
        m_tabs->setCurrentWidget(tab);
    return tab;
}

platform::DocumentTab* Documents::add(std::unique_ptr<platform::DocumentTab> made)
{
    if (show(made->key()))
        return current();
    platform::DocumentTab* tab = made.release();
    connectTab(*tab);
    m_tabs->setCurrentIndex(m_tabs->addTab(tab, tab->icon(), tab->title()));
    showTabsOrStart();
    tab->setFocus();
    return tab;
}

void Documents::connectTab(platform::DocumentTab& tab)
{
    using platform::DocumentTab;
    connect(&tab, &DocumentTab::stateChanged, this, [this, &tab] {
        const int place = m_tabs->indexOf(&tab);
        if (place < 0)
            return;
        m_tabs->setTabText(place, tab.title());
        if (&tab == current())
            Q_EMIT currentChanged();
    });
    connect(&tab, &DocumentTab::failed, this,
            [this, &tab](const QString& description) { Q_EMIT failed(tab.title(), description); });
}

void Documents::openRecords(const QString& key, NodeKind kind)
{
    if (show(key))
        return;
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
    auto grid = std::make_unique<GridTab>(source, m_session, m_runner, m_state, m_tabs);
    connect(grid.get(), &GridTab::activated, this,
            [this, tab = grid.get()](qint32 id) { Q_EMIT rowActivated(tab, id); });
    connect(grid.get(), &GridTab::addWanted, this, [this, key] { Q_EMIT addWanted(key); });
    add(std::move(grid));
}

void Documents::discard(int tab)
{
    // Gone at once: no tab outlives the project that it shows.
    const std::unique_ptr<QWidget> gone(m_tabs->widget(tab));
    m_tabs->removeTab(tab);
    showTabsOrStart();
}

void Documents::close(int tab)
{
    if (tabs().at(tab)->mayClose())
        discard(tab);
}

void Documents::closeCurrent()
{
    if (m_tabs->currentIndex() >= 0)
        close(m_tabs->currentIndex());
}

void Documents::step(int by)
{
    const int count = m_tabs->count();
    if (count < 2)
        return;
    m_tabs->setCurrentIndex((m_tabs->currentIndex() + by + count) % count);
    current()->setFocus();
}

bool Documents::mayCloseAll()
{
    const QList<platform::DocumentTab*> all = tabs();
    return std::all_of(all.begin(), all.end(), [](platform::DocumentTab* tab) { return tab->mayClose(); });
}

void Documents::closeAll()
{
    while (m_tabs->count() > 0)
        discard(m_tabs->count() - 1);
}

void Documents::closeForReopening()
{
    for (int tab = m_tabs->count() - 1; tab >= 0; --tab) {
        if (!tabs().at(tab)->survivesReopening())
            discard(tab);
    }
}

void Documents::recordsWritten(const QStringList& modules)
{
    const QList<platform::DocumentTab*> all = tabs();
    for (platform::DocumentTab* tab : all)
        tab->recordsWritten(modules);
}

void Documents::projectReopened()
{
    const QList<platform::DocumentTab*> all = tabs();
    for (platform::DocumentTab* tab : all)
        tab->projectReopened();
}

void Documents::showTabsOrStart()
{
    setCurrentWidget(m_tabs->count() > 0 ? static_cast<QWidget*>(m_tabs) : m_start);
    Q_EMIT currentChanged();
}

} // namespace app
