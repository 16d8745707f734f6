#include "app/ui/QueryViews.h"

#include "app/Session.h"
#include "app/ui/Documents.h"
#include "app/ui/Workplace.h"
#include "editing/IndividualEditing.h"
#include "query/ui/QueryTab.h"

#include <QThread>

namespace app {

using namespace Qt::StringLiterals;

namespace {

query::QueryTab* queryIn(const Workplace& place)
{
    return qobject_cast<query::QueryTab*>(place.documents().current());
}

} // namespace

bool QueryViews::isHome() const
{
    return QThread::currentThread() == thread();
}

template <typename Answer> auto QueryViews::there(Answer answer) const
{
    if (isHome())
        return answer();
    decltype(answer()) result{};
    QMetaObject::invokeMethod(
        const_cast<QueryViews*>(this), [&] { result = answer(); }, Qt::BlockingQueuedConnection);
    return result;
}

quintptr QueryViews::windowHandle() const
{
    return there([this] { return quintptr(m_place.window().winId()); });
}

QString QueryViews::activeModule() const
{
    return there([this] {
        if (const query::QueryTab* tab = queryIn(m_place))
            return const_cast<query::QueryTab*>(tab)->query().NomModule();
        const GridTab* grid = m_place.documents().currentGrid();
        return grid && m_place.session().dictionary().module(grid->source().key) ? grid->source().key : QString();
    });
}

QString QueryViews::currentStatement() const
{
    return there([this] {
        const query::QueryTab* tab = queryIn(m_place);
        return tab ? tab->statement() : QString();
    });
}

QString QueryViews::mode() const
{
    return there([this] {
        query::QueryTab* tab = queryIn(m_place);
        return tab ? tab->pane().mode() : QString();
    });
}

QList<qint32> QueryViews::selectedRecords() const
{
    return there([this] {
        if (query::QueryTab* tab = queryIn(m_place))
            return tab->pane().selectedRecords();
        const GridTab* grid = m_place.documents().currentGrid();
        return grid ? grid->selectedIds() : QList<qint32>();
    });
}

QList<qint32> QueryViews::shownRecords() const
{
    return there([this] {
        if (query::QueryTab* tab = queryIn(m_place))
            return tab->pane().records();
        GridTab* grid = m_place.documents().currentGrid();
        return grid ? grid->idsAround(grid->model().rowCount()) : QList<qint32>();
    });
}

void QueryViews::refresh(const QString& module)
{
    // Later, as the add-in may be in the middle of its work.
    QMetaObject::invokeMethod(
        this, [this, module] { m_place.written(module.isEmpty() ? QStringList() : QStringList{module}); },
        Qt::QueuedConnection);
}

bool QueryViews::editRecord(const QString& key)
{
    bool number = false;
    const qint32 id = key.section(u'-', 0, 0).toInt(&number);
    const QString module = key.section(u'-', 1);
    if (!number || id <= 0 || module.isEmpty())
        return false;
    QMetaObject::invokeMethod(
        this, [this, module, id] { m_place.editRecords(editing::IndividualEditing::levelPath(module, {id})); },
        Qt::QueuedConnection);
    return true;
}

editing::FormDialogue* QueryViews::form()
{
    return isHome() ? &m_place.form() : nullptr;
}

} // namespace app
