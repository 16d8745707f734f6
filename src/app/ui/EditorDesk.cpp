#include "app/ui/EditorDesk.h"

#include "app/References.h"
#include "app/Session.h"
#include "app/ui/Documents.h"
#include "app/ui/EditorWait.h"
#include "app/ui/Icons.h"
#include "app/ui/WindowState.h"
#include "data/RecordRules.h"
#include "editing/DescriptorLists.h"
#include "editing/RecordModels.h"
#include "editing/ui/FormDialog.h"
#include "editing/ui/RecordEditorWindow.h"

#include <QApplication>
#include <QScopedValueRollback>
#include <QThread>
#include <utility>

namespace app {

using namespace Qt::StringLiterals;
using editing::IndividualEditing;

namespace {

/// So many rows around the one that is opened make the list that "previous" and "next" walk.
constexpr int longestList = 2000;
constexpr int rereadMilliseconds = 60;
const QString titleAdd = u"Ajout"_s;

int selectedRows(GridTab& grid)
{
    int count = 0;
    const QItemSelection selection = grid.view().selectionModel()->selection();
    for (const QItemSelectionRange& range : selection)
        count += range.height();
    return count;
}

/// Records whose fields are those of the add-ins, with what only these know.
class SessionRecords : public editing::ProjectRecords {
public:
    explicit SessionRecords(Session& session)
        : ProjectRecords(session.database(), session.dictionary(), session.properties()), m_session(session)
    {
    }
    addin::TabEditions fields(const QString& module) override
    {
        const data::ModuleRecord* definition = m_session.dictionary().module(module);
        const addin::TabEditions fields =
            definition ? m_session.addins().fields(*definition) : addin::TabEditions();
        for (const addin::ChpEditionPtr& field : fields)
            field->Descripteurs.clear(); // those that the project keeps are the ones that users change
        return fields;
    }

private:
    Session& m_session;
};

editing::EditingContext contextOf(Session& session)
{
    editing::EditingContext context = session.references().context();
    context.records = std::make_shared<SessionRecords>(session);
    return context;
}

} // namespace

/// What editing works with as long as a project is open.
struct EditorDesk::Project {
    explicit Project(Workplace& place)
        : session(place.session()), dialogues(place.dialogues(), place.runner()), context(contextOf(session)),
          rules(session.database(), session.dictionary(), session.surroundings().clock, dialogues),
          search(session.database()),
          lists(session.database(), session.properties(), session.surroundings().clock, dialogues),
          form(world(place), &session.database())
    {
        rules.isConnected = [this](const QString& module) { return session.addins().item(module) != nullptr; };
        lists.run = [&place](const QString& title, const editing::LongWork& work) {
            runBeside(place.runner(), title, work);
        };
    }

    editing::ControlWorld world(Workplace& place)
    {
        editing::ControlWorld world;
        world.search = &search;
        world.chooser = place.chooser();
        world.lists = &lists;
        world.dialogues = &dialogues;
        return world;
    }
    editing::EditingTools tools()
    {
        editing::EditingTools tools{session.database(), session.dictionary(), session.properties(), rules,
                                    session.surroundings().clock, dialogues, context};
        tools.toAddin = [this](const QString& module, const QString& action, const QVariantList& arguments,
                               bool& cancel) { session.addins().itemAction(module, action, arguments, cancel); };
        return tools;
    }

    Session& session;
    IdleDialogues dialogues;
    editing::EditingContext context;
    data::RecordRules rules;
    editing::ReferenceSearch search;
    editing::DescriptorLists lists;
    editing::FormWindows form;
    std::unique_ptr<IndividualEditing> editing;
    std::unique_ptr<editing::RecordEditorWindow> window;
};

EditorDesk::EditorDesk(Workplace& place) : Desk(place)
{
    m_rereading.setSingleShot(true);
    m_rereading.setInterval(rereadMilliseconds);
    connect(&m_rereading, &QTimer::timeout, this, &EditorDesk::readAgain);
    connect(&place, &Workplace::editRecordsWanted, this, &EditorDesk::edit);
    connect(&place, &Workplace::recordsWritten, this, &EditorDesk::followWritten);
    connect(&place.documents(), &Documents::rowActivated, this, &EditorDesk::editRow);
    connect(&place.documents(), &Documents::currentChanged, this, &EditorDesk::updateActions);
    connect(&place.runner(), &platform::TaskRunner::started, this, &EditorDesk::updateAway);
    connect(&place.runner(), &platform::TaskRunner::finished, this, &EditorDesk::updateAway);
}

EditorDesk::~EditorDesk()
{
    projectClosing();
}

editing::RecordEditorWindow* EditorDesk::window() const
{
    return m_project ? m_project->window.get() : nullptr;
}

void EditorDesk::install(QMenuBar& bar, TreeCommands& tree)
{
    auto* menu = bar.findChild<QMenu*>(u"menuDonnees"_s);
    const auto command = [&](const QString& name, const QString& icon, const QString& text, const QString& tip,
                             const QString& keys) {
        auto* action = new QAction(themeIcon(icon), text, menu);
        action->setObjectName(name);
        action->setStatusTip(tip);
        action->setShortcut(QKeySequence(keys));
        menu->addAction(action);
        return action;
    };
    m_newIndividual = command(u"newIndividual"_s, u"list-add"_s, u"Nouvel &individu…"_s,
                              u"Saisir un nouvel individu"_s, u"Ctrl+I"_s);
    m_editRow = command(u"editRecord"_s, u"document-edit"_s, u"Modifier l'&enregistrement…"_s,
                        u"Ouvrir l'enregistrement de la ligne courante dans la fiche"_s, u"F4"_s);
    connect(m_newIndividual, &QAction::triggered, this, [this] { addTo(data::moduleIndividus); });
    connect(m_editRow, &QAction::triggered, this, &EditorDesk::editCurrentRow);

    const auto writable = [this](const TreeNode&) { return isOpen() && !session().readOnly(); };
    tree.provide(u"addToModule"_s, [this](const TreeNode& node) { addTo(node.key); }, writable);
    tree.provide(u"newModel"_s, [this](const TreeNode& node) { createModel(node); }, writable);
    tree.provide(u"addFromModel"_s, [this](const TreeNode& node) { addFromModel(node.tag.toInt()); }, writable);
    tree.provide(
        u"deleteModel"_s,
        [this](const TreeNode& node) { session().properties().remove(node.tag.toInt(), place().dialogues()); },
        writable);
    updateActions();
}

// --- The project ---------------------------------------------------------------------------------

void EditorDesk::projectOpened()
{
    projectClosing();
    m_project = std::make_unique<Project>(place());
    session().setForm(&m_project->form);
    // Once everything else stands.
    QTimer::singleShot(0, this, &EditorDesk::offerDraft);
    updateActions();
}

void EditorDesk::projectClosing()
{
    if (!m_project)
        return;
    session().setForm(nullptr);
    m_stale = false;
    m_project->window.reset();
    m_project.reset();
}

bool EditorDesk::mayClose()
{
    return !window() || window()->isHidden() || window()->close();
}

void EditorDesk::showBusy(bool busy)
{
    m_busy = busy;
    updateAway();
    updateActions();
}

void EditorDesk::updateAway()
{
    if (!window())
        return;
    const bool away = m_busy || place().runner().isRunning();
    window()->setAway(away);
    if (!away && m_stale)
        QMetaObject::invokeMethod(this, &EditorDesk::readAgain, Qt::QueuedConnection);
}

/// A list or form that is open over the editor goes on with the field that it was opened for, which a new reading would
/// take from under it; so would one within any other loop that waits.
void EditorDesk::readAgain()
{
    if (!window() || !m_stale)
        return;
    const bool amid = QApplication::activeModalWidget() || QApplication::activePopupWidget()
                      || QThread::currentThread()->loopLevel() > 1;
    if (amid) {
        m_rereading.start();
    } else if (!m_busy && !place().runner().isRunning()) {
        m_stale = false;
        m_project->editing->Query_Refresh();
    }
}

void EditorDesk::updateActions()
{
    if (!m_editRow)
        return;
    const bool usable = isOpen() && !m_busy;
    const GridTab* grid = place().documents().currentGrid();
    m_newIndividual->setEnabled(usable && !session().readOnly());
    m_editRow->setEnabled(usable && grid && session().dictionary().module(grid->source().key));
}

void EditorDesk::offerDraft()
{
    if (!m_project || !editing::DraftKeeper::isKept(editing::DraftKeeper::fileFor(session().path())))
        return;
    if (place().runner().isRunning()) {
        connect(&place().runner(), &platform::TaskRunner::finished, this, &EditorDesk::offerDraft,
                Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
        return;
    }
    makeWindow().offerDraft();
}

/// The tabs are told once the command is over that wrote: they may read beside the windows at once.
void EditorDesk::noteWritten(const QStringList& modules)
{
    m_allWritten = m_allWritten || modules.isEmpty();
    m_written += modules;
    if (!std::exchange(m_toTell, true))
        QMetaObject::invokeMethod(this, &EditorDesk::tellWritten, Qt::QueuedConnection);
}

void EditorDesk::tellWritten()
{
    m_toTell = false;
    const bool all = std::exchange(m_allWritten, false);
    QStringList modules = std::exchange(m_written, {});
    modules.removeDuplicates();
    const QScopedValueRollback telling(m_telling, true);
    if (isOpen() && !m_busy)
        place().written(all ? QStringList() : modules);
}

void EditorDesk::followWritten(const QStringList&)
{
    if (!window() || m_telling)
        return;
    m_stale = true;
    updateAway();
}

void EditorDesk::photograph(Photographer& photographer)
{
    if (!m_project || window())
        return; // what somebody types in is no picture
    const QScopedValueRollback posing(m_posing, true);
    makeWindow();
    photographModes(photographer);
    photographStates(photographer);
    m_project->window.reset();
    m_project->editing.reset();
}

// --- The window ----------------------------------------------------------------------------------

editing::RecordEditorWindow& EditorDesk::makeWindow()
{
    Project& project = *m_project;
    if (project.window)
        return *project.window;
    project.editing = std::make_unique<IndividualEditing>(project.tools());
    project.editing->written = [this](const QStringList& modules) { noteWritten(modules); };
    editing::EditorSurroundings around{project.dialogues, project.form};
    around.search = &project.search;
    around.chooser = place().chooser();
    around.lists = &project.lists;
    around.icon = [this](const QString& module) { return iconNamed(u"module:"_s + module, session().modules()); };
    around.project = session().projectName();
    // A project that cannot be written keeps no typing either.
    around.draftFile = m_posing || session().readOnly() ? QString() : editing::DraftKeeper::fileFor(session().path());
    around.remembered = [this](const QString& key) { return place().state().value(key); };
    around.remember = [this](const QString& key, const QVariant& value) { place().state().setValue(key, value); };
    around.makePictures = makePictures;
    around.pictureNames = pictureNames;
    project.window = std::make_unique<editing::RecordEditorWindow>(*project.editing, around);
    project.window->setWindowIcon(programIcon());
    return *project.window;
}

bool EditorDesk::edit(const QString& path)
{
    if (!m_project || m_busy)
        return false;
    if (place().runner().isRunning()) {
        // What runs has the project for a moment; the records come when it is back.
        connect(
            &place().runner(), &platform::TaskRunner::finished, this, [this, path] { edit(path); },
            Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
        return false;
    }
    return makeWindow().EditItems(path);
}

void EditorDesk::editRow(GridTab* grid, qint32 id)
{
    const QString module = grid->source().key;
    if (!session().dictionary().module(module))
        return;
    // Several rows that are selected are the list; else it is what stands around the row.
    const int count = selectedRows(*grid);
    const QList<qint32> selected = count > 1 && count <= longestList ? grid->selectedIds() : QList<qint32>();
    place().editRecords(
        IndividualEditing::levelPath(module, selected.contains(id) ? selected : grid->idsAround(longestList), id));
}

void EditorDesk::editCurrentRow()
{
    GridTab* grid = place().documents().currentGrid();
    if (const qint32 id = grid ? grid->currentId() : 0)
        editRow(grid, id);
}

// --- Adding --------------------------------------------------------------------------------------

/// The individual of the current row of the grid shown, else the one in the editor; 0 for none.
qint32 EditorDesk::individuShown() const
{
    const GridTab* grid = place().documents().currentGrid();
    const qint32 id = grid && session().dictionary().module(grid->source().key) ? grid->currentId() : 0;
    if (id > 0 && grid->source().key == data::moduleIndividus)
        return id;
    if (id > 0)
        return m_project->context.records->record(grid->source().key, id).value(u"ID Individus"_s).toInt();
    return window() && window()->isVisible() ? m_project->editing->CurrentIndividu() : 0;
}

void EditorDesk::addTo(const QString& module, int model)
{
    if (!m_project || m_busy || place().runner().isRunning())
        return;
    const bool individual = module == data::moduleIndividus;
    const qint32 individu = individual ? 0 : individuShown();
    if (!individual && individu <= 0) {
        place().dialogues().tell(u"Choisissez d'abord un individu, dans la liste des individus ou dans la fiche :\n"
                                 "l'enregistrement ajouté lui appartiendra."_s,
                                 titleAdd);
        return;
    }
    if (edit(IndividualEditing::newRecordPath(module, individu)) && model > 0)
        m_project->editing->applyModel(model);
}

QString EditorDesk::moduleOfModel(int model) const
{
    const QList<data::PropertyObject> models = session().properties().list(data::kindModèle);
    for (const data::PropertyObject& one : models) {
        if (one.id == model)
            return one.module;
    }
    return {};
}

void EditorDesk::addFromModel(int model)
{
    const QString module = place().runner().isRunning() ? QString() : moduleOfModel(model);
    if (!module.isEmpty())
        addTo(module, model);
}

/// On a module, on one of its models, or on the group of all models, where the module is asked for.
void EditorDesk::createModel(const TreeNode& node)
{
    if (!m_project || m_busy || place().runner().isRunning())
        return;
    QString module = node.tag.isValid() ? moduleOfModel(node.tag.toInt()) : node.key;
    if (!session().dictionary().module(module)) {
        platform::Choice choice{u"Créer un nouveau Modèle"_s, u"Sélectionner le Module"_s, u"Module"_s, {}, false};
        for (const data::ModuleRecord& one : session().modules())
            choice.items << one.label;
        const auto chosen = place().dialogues().choose(choice);
        if (!chosen || chosen->isEmpty())
            return;
        module = session().modules().at(chosen->first()).name;
    }
    editing::createModel(module, m_project->context, session().properties(), m_project->dialogues, m_project->form);
}

} // namespace app
