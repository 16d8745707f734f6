// Pictures of queries: one with its result, and a replacement with its preview.
#include "app/Session.h"
#include "app/ui/Documents.h"
#include "app/ui/Photographer.h"
#include "app/ui/QueryDesk.h"
#include "query/ui/QueryTab.h"
#include "query/ui/ReplaceDialog.h"

namespace app {

using namespace Qt::StringLiterals;

namespace {

QString pathOf(const query::Structure& structure, const QString& module, const QStringList& champs)
{
    return structure.PathFromPermanent(module, champs.join(query::pathSeparator));
}

/// Two conditions of which one must hold, inside what must hold anyway.
void fill(query::Query& query)
{
    const query::Structure& structure = query.structure();
    const QString date = pathOf(structure, {}, {u"DateRécolte"_s});
    const QString number = pathOf(structure, {}, {u"Numéro"_s});
    const QString altitude = pathOf(structure, {}, {u"Altitude"_s});
    for (const QString& path : {number, pathOf(structure, {}, {u"ID Collecteurs"_s}),
                                pathOf(structure, data::moduleDéterminations, {u"ID Taxons"_s}), date,
                                pathOf(structure, {}, {u"ID Localités"_s}), altitude})
        query.addReadableColumn(path);
    query.sort(query.columns().last().alias, query::orderDown);
    query.editCriteria([&](query::Criteria& criteria) {
        criteria.add({.path = date, .op = u"<>"_s, .value = {}, .permanent = {}});
        const qsizetype group = criteria.add({.path = altitude, .op = u">"_s, .value = u"600"_s, .permanent = {}});
        criteria.addChild(group, {.link = query::linkOr, .path = altitude, .op = u"="_s, .value = {}, .permanent = {}});
    });
}

} // namespace

void QueryDesk::photograph(Photographer& photographer)
{
    query::QueryTab* tab = open(data::moduleIndividus, 0);
    fill(tab->query());
    tab->execute();
    const auto found = [tab] { return tab->pane().hasResult() && tab->pane().isComplete(); };
    photographer.settle(found);
    tab->pane().data().grid().selectRow(2);
    photographer.settle();
    photographer.take(u"requete"_s);

    tab->pane().data().selectAll();
    tab->actions()[u"replace"_s]->trigger();
    if (auto* window = tab->findChild<query::ReplaceDialog*>()) { // none where the project cannot be written
        const int row = window->model().add(pathOf(tab->query().structure(), {}, {u"Numéro"_s}));
        window->model().setValue(row, u"RB &~"_s, false);
        photographer.settle([window] { return window->isReady(); });
        photographer.take(u"remplacement"_s, *window);
        window->reject();
    }
    const query::Query& query = tab->query();
    tab->query().begin(query::QueryDefinition(query.definition()), query.NomQuery()); // nothing to be asked for
    place().documents().closeCurrent();
}

} // namespace app
