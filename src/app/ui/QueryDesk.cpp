#include "app/ui/QueryDesk.h"

#include "app/References.h"
#include "app/Session.h"
#include "app/ui/Documents.h"
#include "app/ui/Icons.h"
#include "app/ui/ModuleDock.h"
#include "app/ui/QueryViews.h"
#include "app/ui/ResultModes.h"
#include "app/ui/WindowState.h"
#include "data/FieldType.h"
#include "editing/IndividualEditing.h"
#include "query/ui/QueryTab.h"

#include <QDrag>
#include <QDropEvent>
#include <QMainWindow>
#include <QMimeData>
#include <QPainter>
#include <QStatusBar>

namespace app {

using namespace Qt::StringLiterals;

namespace {

const QString recordMime = u"application/x-herbora-enregistrements"_s;
const QString selfEnd = u"-self"_s;
constexpr int queryMessageMilliseconds = 6000;
/// Fields with which records are shown when nobody chose any.
constexpr int mostFields = 12;

QString moduleOf(const Session& session, int property)
{
    for (const data::PropertyObject& object : session.properties().list(data::kindRequête)) {
        if (object.id == property)
            return object.module;
    }
    return {};
}

/// The query shows what one reads first of a record.
void showFields(query::Query& query)
{
    const query::Node* root = query.structure().root();
    int shown = 0;
    for (const auto& field : root->children) {
        const bool standard = field->champ().startsWith(u'@') || field->champ().startsWith(u"Date")
                              || field->champ() == u"KeyParent" || field->champ() == u"Locked";
        const bool read = field->field && field->ctype() != data::TexteMémo && field->ctype() != data::LienCourant;
        if (read && (!standard || field->ctype() == data::Date) && field->champ() != u"DateCreate"
            && field->champ() != u"DateModify" && ++shown <= mostFields)
            query.addReadableColumn(query.structure().path(*field));
    }
}

/// What was added to begin with is not a change of the user's.
void settle(query::Query& query)
{
    query.begin(query::QueryDefinition(query.definition()), query.NomQuery());
}

QIcon lettered(const QString& letters, const QColor& colour)
{
    QIcon icon;
    for (const int side : {16, 24, 32, 48}) {
        QPixmap picture(side, side);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        painter.drawRoundedRect(QRectF(0.5, side * 0.09, side - 1, side * 0.82), side * 0.18, side * 0.18);
        QFont font = painter.font();
        font.setBold(true);
        font.setPixelSize(side * (letters.size() > 1 ? 9 : 11) / 16);
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(picture.rect(), Qt::AlignCenter, letters);
        icon.addPixmap(picture);
    }
    return icon;
}

/// The small icon of a field's type, or that of a module.
QIcon fieldIcon(const QString& name, const QList<data::ModuleRecord>& modules)
{
    static const QHash<QString, std::pair<QString, QColor>> types{
        {u"Texte"_s, {u"A"_s, QColor(0x5b, 0x7f, 0x95)}},    {u"Textertf"_s, {u"¶"_s, QColor(0x5b, 0x7f, 0x95)}},
        {u"Nombre"_s, {u"12"_s, QColor(0x3f, 0x7d, 0x58)}},  {u"Date"_s, {u"31"_s, QColor(0xa0, 0x5a, 0x4a)}},
        {u"longlat"_s, {u"°"_s, QColor(0x3f, 0x7d, 0x58)}},  {u"Image"_s, {u"▣"_s, QColor(0x7d, 0x5b, 0x95)}},
        {u"Lschecks"_s, {u"☑"_s, QColor(0x8a, 0x73, 0x2e)}}, {u"Lsitems"_s, {u"≡"_s, QColor(0x8a, 0x73, 0x2e)}}};
    static QHash<QString, QIcon> made;
    const auto type = types.find(name);
    if (type == types.end())
        return iconNamed(name, modules);
    auto known = made.find(name);
    if (known == made.end())
        known = made.insert(name, lettered(type->first, type->second));
    return *known;
}

} // namespace

QueryDesk::QueryDesk(Workplace& place) : Desk(place), m_views(std::make_unique<QueryViews>(place))
{
    connect(&place, &Workplace::openQueryWanted, this, &QueryDesk::open);
    connect(&place, &Workplace::showRecordsWanted, this, &QueryDesk::showRecords);
    connect(&place, &Workplace::showReferringWanted, this, &QueryDesk::showReferring);
    connect(&place.documents(), &Documents::currentChanged, this, &QueryDesk::updateActions);
    session().host().setViews(m_views.get());
}

QueryDesk::~QueryDesk()
{
    session().host().setViews(nullptr);
}

ModuleDock* QueryDesk::dock() const
{
    return place().window().findChild<ModuleDock*>();
}

/// The project is another thread's, or not there.
bool QueryDesk::isAway() const
{
    return m_busy || !isOpen();
}

query::QueryTab* QueryDesk::current() const
{
    return qobject_cast<query::QueryTab*>(place().documents().current());
}

// --- Menus -----------------------------------------------------------------------------------

void QueryDesk::install(QMenuBar& bar, TreeCommands& tree)
{
    installMenu(*bar.findChild<QMenu*>(u"menuDonnees"_s));
    serveQueries(tree);
    serveSelections(tree);
    dock()->view().setAcceptDrops(true);
    dock()->view().viewport()->setAcceptDrops(true);
    dock()->view().viewport()->installEventFilter(this);
    updateActions();
}

void QueryDesk::installMenu(QMenu& menu)
{
    const auto command = [&](const QString& name, const QString& icon, const QString& text, const QString& tip) {
        auto* action = new QAction(themeIcon(icon), text, &menu);
        action->setObjectName(name);
        action->setStatusTip(tip);
        menu.addAction(action);
        return action;
    };
    menu.addSeparator();
    m_new = command(u"newQueryIndividus"_s, u"view-filter"_s, u"Nouvelle &requête"_s,
                    u"Ouvrir une nouvelle requête sur les individus"_s);
    m_new->setShortcut(QKeySequence(u"Ctrl+R"_s));
    connect(m_new, &QAction::triggered, this, [this] { open(data::moduleIndividus, 0); });
    m_base = command(u"openBase"_s, u"server-database"_s, u"Structure de la &base"_s,
                     u"Ouvrir une requête sur tous les champs de la base"_s);
    connect(m_base, &QAction::triggered, this, &QueryDesk::openBase);
    menu.addSeparator();
    // The commands of the query that is shown, under its names.
    const QList<QStringList> commands{
        {u"rename"_s, u"edit-rename"_s, u"Re&nommer la requête…"_s},
        {u"stat"_s, u"office-chart-bar"_s, u"&Statistiques de la requête"_s},
        {u"replace"_s, u"edit-find-replace"_s, u"Rem&placer dans la base…"_s},
        {u"toself"_s, u"list-add"_s, u"Ajouter à la sélection &flottante"_s}};
    for (const QStringList& row : commands) {
        QAction* action = command(u"query-"_s + row[0], row[1], row[2], {});
        action->setData(row[0]);
        if (row[0] == u"toself")
            action->setShortcut(QKeySequence(u"Ctrl+D"_s));
        connect(action, &QAction::triggered, this, [this, name = row[0]] {
            GridTab* grid = place().documents().currentGrid();
            if (query::QueryTab* tab = current())
                tab->actions()[name]->trigger();
            else if (grid && name == u"toself")
                addToSelection(grid->source().key, grid->selectedIds());
        });
        m_tabActions << action;
    }
}

void QueryDesk::serveQueries(TreeCommands& tree)
{
    const auto here = [this](const TreeNode&) { return !isAway(); };
    tree.provide(u"openQuery"_s, [this](const TreeNode& node) { open({}, node.tag.toInt()); }, here);
    tree.provide(
        u"newQuery"_s,
        [this](const TreeNode& node) {
            const QString module = node.tag.toInt() > 0 ? moduleOf(session(), node.tag.toInt())
                                   : session().dictionary().module(node.key) ? node.key
                                                                             : data::moduleIndividus;
            open(module, 0);
        },
        here);
    tree.provide(
        u"deleteQuery"_s,
        [this](const TreeNode& node) { session().properties().remove(node.tag.toInt(), place().dialogues()); },
        [this](const TreeNode&) { return !isAway() && !session().readOnly(); });
}

void QueryDesk::serveSelections(TreeCommands& tree)
{
    const auto filled = [this](const TreeNode& node) {
        return !isAway() && session().selectionCount(node.key.chopped(selfEnd.size())) > 0;
    };
    tree.provide(
        u"openSelection"_s,
        [this](const TreeNode& node) {
            const QString module = node.key.chopped(selfEnd.size());
            showRecords(u"Sélection "_s + module, module, session().selection(module));
        },
        filled);
    tree.provide(
        u"emptySelection"_s,
        [this](const TreeNode& node) {
            if (!place().dialogues().confirm(u"Vider la sélection flottante de son contenu ?"_s, u"Herbora"_s))
                return;
            const QString module = node.key.chopped(selfEnd.size());
            session().selection(module).clear();
            showSelectionCount(module);
        },
        filled);
}

void QueryDesk::showSelectionCount(const QString& module)
{
    dock()->model().setText(QString(module + selfEnd),
                            module + u" < "_s + QString::number(session().selectionCount(module)) + u" >"_s);
}

void QueryDesk::addToSelection(const QString& module, const QList<qint32>& records)
{
    if (isAway() || !session().dictionary().module(module) || records.isEmpty())
        return;
    QList<qint32>& selection = session().selection(module);
    QSet<qint32> known(selection.begin(), selection.end());
    const qsizetype before = selection.size();
    for (const qint32 id : records) {
        if (!known.contains(id)) {
            known.insert(id);
            selection << id;
        }
    }
    showSelectionCount(module);
    if (auto* window = qobject_cast<QMainWindow*>(&place().window()))
        window->statusBar()->showMessage(QString::number(selection.size() - before)
                                             + u" enregistrement(s) ajouté(s) à la sélection flottante"_s,
                                         queryMessageMilliseconds);
}

void QueryDesk::projectOpened()
{
    updateActions();
}

void QueryDesk::projectClosing()
{
    updateActions();
}

void QueryDesk::showBusy(bool busy)
{
    m_busy = busy;
    updateActions();
}

void QueryDesk::updateActions()
{
    if (!m_new)
        return;
    m_new->setEnabled(!isAway());
    m_base->setEnabled(!isAway());
    const query::QueryTab* tab = current();
    const GridTab* grid = place().documents().currentGrid();
    for (QAction* action : std::as_const(m_tabActions)) {
        const QString name = action->data().toString();
        const bool ofGrid = grid && name == u"toself" && !isAway() && session().dictionary().module(grid->source().key);
        action->setEnabled(!isAway() && (tab ? tab->actions()[name]->isEnabled() : ofGrid));
    }
}

// --- Tabs ------------------------------------------------------------------------------------

query::QueryTab* QueryDesk::add(const QString& key)
{
    if (isAway())
        return nullptr;
    Session& project = session();
    References& references = project.references();
    query::QuerySurroundings around{
        .world = {project.database(), project.surroundings().clock, place().dialogues(), project.properties(),
                  [&references](qint32 id) { return references.places().CodeLocalité(id); }},
        .modules = project.modules(),
        .context = references.context(),
        .runner = place().runner(),
        .form = &place().form(),
        .icons = [modules = project.modules()](const QString& name) { return fieldIcon(name, modules); },
        .modes = resultModes(place()),
        .selection = [&project](const QString& module) { return project.selection(module); },
        .remembered = [this](const QString& name) { return place().state().value(name); },
        .remember = [this](const QString& name, const QVariant& value) { place().state().setValue(name, value); }};
    auto made = std::make_unique<query::QueryTab>(around, key);
    query::QueryTab* tab = made.get();
    if (place().documents().add(std::move(made)) != tab)
        return qobject_cast<query::QueryTab*>(place().documents().find(key));
    connect(tab, &query::QueryTab::editWanted, this,
            [this](const QString& module, const QList<qint32>& records, qint32 first) {
                place().editRecords(editing::IndividualEditing::levelPath(module, records, first));
            });
    connect(tab, &query::QueryTab::recordsChanged, &place(), &Workplace::written);
    connect(tab, &query::QueryTab::selectionWanted, this, &QueryDesk::addToSelection);
    connect(tab, &query::QueryTab::dragWanted, this, [this, tab](const QString& module, const QList<qint32>& records) {
        dragRecords(tab, module, records);
    });
    connect(tab, &query::QueryTab::said, this, [this](const QString& text) {
        if (auto* window = qobject_cast<QMainWindow*>(&place().window()))
            window->statusBar()->showMessage(text, queryMessageMilliseconds);
    });
    return tab;
}

query::QueryTab* QueryDesk::open(const QString& module, int property)
{
    if (isAway())
        return nullptr;
    const QString key = property > 0 ? u"requete:"_s + QString::number(property)
                                     : u"requete:nouvelle:"_s + QString::number(++m_number);
    if (property > 0 && place().documents().show(key))
        return current();
    query::QueryTab* tab = add(key);
    if (!tab)
        return nullptr;
    if (property > 0) {
        tab->pane().run().whenIdle([tab, property] {
            if (tab->query().LoadRequête(property))
                tab->execute();
        });
    } else if (tab->query().NomModule() != module && !module.isEmpty()) {
        tab->query().setNomModule(module);
    }
    return tab;
}

query::QueryTab* QueryDesk::openBase()
{
    if (isAway())
        return nullptr;
    if (place().documents().show(u"base"_s))
        return current();
    query::QueryTab* tab = add(u"base"_s);
    if (tab)
        tab->pane().run().whenIdle([this, tab] {
            tab->query().LoadBase(session().projectName());
            tab->execute();
        });
    return tab;
}

/// A query that nobody made: only its result is looked at at first.
query::QueryTab* QueryDesk::add(const QString& key, const QString& title, const QString& module)
{
    query::QueryTab* tab = add(key);
    if (!tab)
        return nullptr;
    tab->query().setNomModule(module);
    tab->setCaption(title);
    tab->showDefinition(false);
    return tab;
}

query::QueryTab* QueryDesk::showRecords(const QString& title, const QString& module, const QList<qint32>& ids)
{
    query::QueryTab* tab = add(u"requete:enregistrements:"_s + QString::number(++m_number), title, module);
    if (!tab)
        return nullptr;
    query::Query& query = tab->query();
    showFields(query);
    query.insertIdentifiers(ids);
    settle(query);
    tab->execute();
    return tab;
}

query::QueryTab* QueryDesk::showReferring(const QString& title, const QString& module, const QString& column,
                                          const QList<qint32>& ids)
{
    query::QueryTab* tab =
        add(u"requete:enregistrements:"_s + QString::number(++m_number), title, data::moduleIndividus);
    if (!tab)
        return nullptr;
    query::Query& query = tab->query();
    showFields(query);
    const QString path = query.structure().PathFromPermanent(module == data::moduleIndividus ? QString() : module, column);
    QStringList numbers;
    for (const qint32 id : ids)
        numbers << QString::number(id);
    if (!path.isEmpty())
        query.editCriteria([&](query::Criteria& criteria) {
            criteria.add({.path = path, .op = u"IN"_s, .value = numbers.join(u','), .permanent = {}});
        });
    settle(query);
    tab->execute();
    return tab;
}

// --- Dragging --------------------------------------------------------------------------------

void QueryDesk::dragRecords(query::QueryTab* tab, const QString& module, const QList<qint32>& records)
{
    if (records.isEmpty())
        return;
    QStringList lines{module};
    for (const qint32 id : records)
        lines << QString::number(id);
    auto* data = new QMimeData;
    data->setData(recordMime, lines.join(u'\n').toUtf8());
    auto* drag = new QDrag(tab);
    drag->setMimeData(data);
    drag->exec(Qt::CopyAction);
}

bool QueryDesk::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return dropRecords(event);
    default:
        return Desk::eventFilter(watched, event);
    }
}

/// Records may be dropped on the floating selection of their module; true when they are records at all.
bool QueryDesk::dropRecords(QEvent* event)
{
    auto* drop = static_cast<QDropEvent*>(event);
    if (!drop->mimeData()->hasFormat(recordMime))
        return false;
    const QStringList lines = QString::fromUtf8(drop->mimeData()->data(recordMime)).split(u'\n');
    const TreeNode* node = dock()->model().node(dock()->view().indexAt(drop->position().toPoint()));
    const bool onto = node && node->key == lines.first() + selfEnd;
    if (event->type() == QEvent::DragEnter || onto)
        drop->acceptProposedAction();
    else
        drop->ignore();
    if (event->type() != QEvent::Drop || !onto)
        return true;
    QList<qint32> records;
    for (const QString& id : lines.mid(1))
        records << id.toInt();
    addToSelection(lines.first(), records);
    return true;
}

} // namespace app
