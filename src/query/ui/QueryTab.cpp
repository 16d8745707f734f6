#include "query/ui/QueryTab.h"

#include "data/Cancellable.h"
#include "editing/FormDialogue.h"
#include "jet/Cancelled.h"
#include "platform/ui/Keyboard.h"
#include "query/ui/ReplaceDialog.h"
#include "query/ui/ResultPrinting.h"

#include <QCheckBox>
#include <QPointer>
#include <QTimer>
#include <QVBoxLayout>

namespace query {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mostUndo = 100;
/// A query that ran in less is run again by itself when records changed.
constexpr double quickSeconds = 1.5;
/// So many rows around the one that is opened make the list that "previous" and "next" walk.
constexpr qint64 longestList = 2000;

QLabel* heading(const QString& text, QWidget* buddy)
{
    auto* label = new QLabel(text);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    label->setBuddy(buddy);
    return label;
}

QPlainTextEdit* sqlEdit(const QString& name, const QString& text)
{
    auto* edit = new QPlainTextEdit;
    edit->setObjectName(name);
    edit->setAccessibleName(text);
    edit->setReadOnly(true);
    QFont font(u"monospace"_s);
    font.setStyleHint(QFont::Monospace);
    edit->setFont(font);
    return edit;
}

} // namespace

QueryTab::QueryTab(const QuerySurroundings& surroundings, const QString& key, QWidget* parent)
    : DocumentTab(parent), m_around(surroundings), m_key(key),
      m_structure(std::make_unique<Structure>(surroundings.world.database, surroundings.context)),
      m_actions(new QueryActions(this)), m_fields(new CbModule(surroundings.icons)), m_columns(new ColumnsGrid),
      m_criteria(new CriteriaGrid), m_tabs(new QTabWidget), m_select(sqlEdit(u"sqlSelect"_s, u"SELECT"_s)),
      m_where(sqlEdit(u"sqlWhere"_s, u"WHERE"_s)), m_whole(sqlEdit(u"sql"_s, u"Instruction SQL"_s)),
      m_note(new QLabel), m_splitter(new QSplitter(Qt::Vertical, this)),
      m_pane(new ResultPane(surroundings.runner, surroundings.modes))
{
    setObjectName(u"Form1"_s);
    m_structure->LoadStructure(m_around.modules);
    m_query = std::make_unique<Query>(*m_structure, m_around.world);
    m_last = m_query->definition();
    arrange();
    m_fields->setStructure(m_structure.get());
    m_columns->setQuery(m_query.get());
    m_criteria->setQuery(m_query.get());
    m_criteria->editors().setSearch([this](int type, const QString& typed) {
        if (m_pane->run().isBusy())
            return QList<editing::ReferenceMatch>();
        try {
            return editing::ReferenceSearch(m_around.world.database).matches(type, typed);
        } catch (const jet::Error& error) {
            Q_EMIT failed(error.description());
            return QList<editing::ReferenceMatch>();
        }
    });
    connectQuery();
    connectGrids();
    connectPane();
    connectActions();
    refreshLater();
    updateActions();
}

QueryTab::~QueryTab()
{
    if (m_around.remember && m_definition)
        m_around.remember(u"requete/separation"_s, m_splitter->saveState());
    // The controls let go of the query before it goes.
    m_criteria->setQuery(nullptr);
    m_columns->setQuery(nullptr);
    m_fields->setStructure(nullptr);
    delete m_pane;
}

// --- Arrangement -----------------------------------------------------------------------------

void QueryTab::arrange()
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeToolBar());
    layout->addWidget(m_splitter, 1);
    m_definition = makeDefinition();
    m_splitter->addWidget(m_definition);
    m_splitter->addWidget(m_pane);
    m_splitter->setStretchFactor(0, 0);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setObjectName(u"separation"_s);
    const QByteArray kept = m_around.remembered ? m_around.remembered(u"requete/separation"_s).toByteArray() : QByteArray();
    if (kept.isEmpty() || !m_splitter->restoreState(kept))
        m_splitter->setSizes({330, 300});
}

QToolBar* QueryTab::makeToolBar()
{
    auto* bar = new QToolBar(u"Requête"_s, this);
    bar->setObjectName(u"barreRequete"_s);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->setIconSize({16, 16});
    const QueryActions& actions = *m_actions;
    bar->addAction(actions[u"execute"_s]);
    bar->addAction(actions[u"save"_s]);
    bar->addAction(actions[u"definition"_s]);
    bar->addSeparator();
    QMenu* insert = actions.insertMenu(this);
    auto* button = new QToolButton(bar);
    button->setObjectName(u"inserer"_s);
    button->setText(u"Insérer"_s);
    button->setIcon(insert->icon());
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setPopupMode(QToolButton::InstantPopup);
    button->setMenu(insert);
    bar->addWidget(button);
    bar->addSeparator();
    for (const QString& name : {u"stat"_s, u"export"_s, u"replace"_s, u"toself"_s})
        bar->addAction(actions[name]);
    platform::reachByTab(*bar);
    addActions({actions[u"execute"_s], actions[u"definition"_s], actions[u"replace"_s], actions[u"undo"_s],
                actions[u"redo"_s]});
    return bar;
}

QWidget* QueryTab::makeDefinition()
{
    auto* sides = new QSplitter(Qt::Horizontal);
    sides->setObjectName(u"definition"_s);
    sides->setChildrenCollapsible(false);
    auto* left = new QWidget;
    auto* column = new QVBoxLayout(left);
    column->setContentsMargins(4, 4, 4, 4);
    column->addWidget(m_fields);
    sides->addWidget(left);
    m_tabs->setObjectName(u"pages"_s);
    m_tabs->setDocumentMode(true);
    m_tabs->addTab(makeGrids(), u"Champs et critères"_s);
    m_tabs->addTab(makeStatement(), u"SQL"_s);
    sides->addWidget(m_tabs);
    sides->setSizes({210, 720});
    sides->setStretchFactor(0, 0);
    sides->setStretchFactor(1, 1);
    return sides;
}

QWidget* QueryTab::makeGrids()
{
    auto* grids = new QSplitter(Qt::Horizontal);
    grids->setChildrenCollapsible(false);
    auto* left = new QWidget;
    auto* columns = new QVBoxLayout(left);
    columns->setContentsMargins(4, 4, 4, 4);
    columns->addWidget(heading(u"Champs affichés"_s, m_columns));
    columns->addWidget(m_columns, 1);
    auto* right = new QWidget;
    auto* criteria = new QVBoxLayout(right);
    criteria->setContentsMargins(4, 4, 4, 4);
    auto* top = new QHBoxLayout;
    top->addWidget(heading(u"Critères"_s, m_criteria));
    top->addStretch(1);
    for (const QString& name : {u"add"_s, u"addchild"_s, u"addempty"_s, u"delete"_s, u"up"_s, u"down"_s}) {
        auto* button = new QToolButton;
        button->setDefaultAction((*m_actions)[name]);
        button->setAutoRaise(true);
        button->setIconSize({16, 16});
        if (name == u"addempty")
            button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        top->addWidget(button);
    }
    criteria->addLayout(top);
    criteria->addWidget(m_criteria, 1);
    m_note->setObjectName(u"noteCriteres"_s);
    m_note->setWordWrap(true);
    m_note->hide();
    criteria->addWidget(m_note);
    grids->addWidget(left);
    grids->addWidget(right);
    grids->setSizes({300, 400});
    return grids;
}

QWidget* QueryTab::makeStatement()
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(4, 4, 4, 4);
    auto* own = new QCheckBox(u"&Modifier le texte SQL"_s);
    own->setObjectName(u"modifierSql"_s);
    own->setToolTip(u"Les textes modifiés valent jusqu'au prochain changement d'un champ ou d'un critère"_s);
    auto* parts = new QWidget;
    auto* inner = new QHBoxLayout(parts);
    inner->setContentsMargins(0, 0, 0, 0);
    inner->addWidget(m_select);
    inner->addWidget(m_where);
    parts->hide();
    layout->addWidget(own);
    layout->addWidget(parts, 1);
    layout->addWidget(m_whole, 2);
    connect(own, &QCheckBox::toggled, this, [this, parts](bool on) {
        parts->setVisible(on);
        m_select->setReadOnly(!on);
        m_where->setReadOnly(!on);
        if (!on)
            m_query->forgetOwnTexts();
    });
    for (QPlainTextEdit* edit : {m_select, m_where})
        connect(edit, &QPlainTextEdit::textChanged, this, &QueryTab::takeOwnText);
    return page;
}

// --- Connections -----------------------------------------------------------------------------

void QueryTab::connectQuery()
{
    connect(m_query.get(), &QuerySignals::Query_Change, this, &QueryTab::queryChanged);
}

void QueryTab::connectGrids()
{
    connect(m_fields, &CbModule::columnWanted, this, [this](const QString& path) { addFields({path}, -1); });
    connect(m_fields, &CbModule::criterionWanted, this, [this](const QString& path) { addCriteria({path}, -1, false); });
    connect(&m_columns->columns(), &ColumnsModel::fieldsDropped, this, &QueryTab::addFields);
    connect(&m_criteria->criteria(), &CriteriaModel::fieldsDropped, this, &QueryTab::addCriteria, Qt::QueuedConnection);
    connect(m_criteria->selectionModel(), &QItemSelectionModel::currentChanged, this, &QueryTab::updateActions);
    connect(m_criteria, &CriteriaGrid::menuWanted, this, [this](const QPoint& at) {
        auto* menu = new QMenu(this);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        for (const QString& name : {u"addbrother"_s, u"addchild"_s, u"addempty"_s, u"delete"_s, u"up"_s, u"down"_s})
            menu->addAction((*m_actions)[name]);
        menu->addSeparator();
        menu->addMenu(m_actions->insertMenu(menu));
        menu->popup(at);
    });
}

void QueryTab::connectPane()
{
    connect(m_pane, &ResultPane::modeChosen, this, [this](const QString& mode) { m_query->setModeRun(mode); });
    connect(m_pane, &ResultPane::activated, this,
            [this](const QList<qint32>& records) {
                Q_EMIT editWanted(m_pane->module(),
                                  records.size() == 1 ? m_pane->recordsAround(records.first(), longestList) : records,
                                  records.first());
            });
    connect(m_pane, &ResultPane::insertPlacesWanted, this, [this](const QList<qint32>& places) {
        m_query->insertPlaces(places);
        execute();
    });
    connect(m_pane, &ResultPane::insertRectangleWanted, this, [this](const QRectF& area) {
        const auto degrees = [](double value) { return QString::number(value, 'f', 8); };
        if (m_query->insertRectangle(degrees(area.left()), degrees(area.top()), degrees(area.right()),
                                     degrees(area.bottom())))
            execute();
    });
    connect(m_pane, &ResultPane::columnMenuWanted, this, &QueryTab::showColumnMenu);
    connect(m_pane, &ResultPane::selectionChanged, this, &QueryTab::updateActions);
    connect(m_pane, &ResultPane::stateChanged, this, [this] {
        updateActions();
        Q_EMIT stateChanged();
    });
    connect(m_pane, &ResultPane::failed, this, &QueryTab::failed);
    connect(m_pane, &ResultPane::dragWanted, this,
            [this] { Q_EMIT dragWanted(m_pane->module(), m_pane->selectedRecords()); });
}

void QueryTab::connectActions()
{
    const auto on = [this](const QString& name, auto work) { m_actions->on(name, this, work); };
    on(u"execute"_s, [this] { execute(); });
    on(u"save"_s, [this] { save(); });
    on(u"rename"_s, [this] { m_pane->run().whenIdle([this] { m_query->rename(); }); });
    on(u"definition"_s, [this] { showDefinition((*m_actions)[u"definition"_s]->isChecked()); });
    on(u"stat"_s, [this] { statistics(); });
    on(u"replace"_s, [this] { replace(); });
    on(u"export"_s, [this] { exportRows(); });
    on(u"toself"_s, [this] { Q_EMIT selectionWanted(m_pane->module(), m_pane->selectedRecords()); });
    on(u"open"_s, [this] {
        const QList<qint32> records = m_pane->selectedRecords();
        if (!records.isEmpty())
            Q_EMIT editWanted(m_pane->module(), records, records.first());
    });
    on(u"selectinverse"_s, [this] { m_pane->data().selectInverse(); });
    on(u"selectnone"_s, [this] { m_pane->data().selectNone(); });
    on(u"copycell"_s, [this] { m_pane->data().copyCell(); });
    on(u"undo"_s, [this] { undo(m_undo, m_redo); });
    on(u"redo"_s, [this] { undo(m_redo, m_undo); });
    for (const QString& name : {u"add"_s, u"addchild"_s, u"addbrother"_s})
        on(name, [this, name] { m_criteria->command(name, m_fields->ChampSelected()); });
    for (const QString& name : {u"delete"_s, u"up"_s, u"down"_s})
        on(name, [this, name] { m_criteria->command(name); });
    on(u"addempty"_s, [this] { m_criteria->addOrEmpty(); });
    const auto asking = [this, on](const QString& name, auto work) {
        on(name, [this, work] { m_pane->run().whenIdle(work); });
    };
    asking(u"insertquery"_s, [this] { m_query->insertQueries(); });
    asking(u"insertids"_s, [this] { m_query->askIdentifiers(); });
    asking(u"insertgps"_s, [this] {
        if (m_around.form)
            m_query->askRectangle(*m_around.form);
    });
    asking(u"insertselect"_s, [this] { insertSelection(); });
    asking(u"insertbase"_s, [this] { insertBase(); });
}

// --- The query -------------------------------------------------------------------------------

void QueryTab::queryChanged()
{
    if (!(m_query->definition() == m_last)) {
        if (!m_undoing && m_query->definition().module == m_last.module) {
            m_undo << m_last;
            m_redo.clear();
            if (m_undo.size() > mostUndo)
                m_undo.removeFirst();
        }
        if (m_query->definition().module != m_last.module) { // another tree of fields
            m_undo.clear();
            m_redo.clear();
            m_fields->setStructure(m_structure.get());
        }
        m_last = m_query->definition();
    }
    m_columns->columns().refresh();
    m_criteria->criteria().refresh();
    if (m_pane->mode() != m_query->ModeRun())
        m_pane->setMode(m_query->ModeRun());
    refreshLater();
    updateActions();
    Q_EMIT stateChanged();
}

/// Once for all changes of one moment, as soon as the project can be asked.
void QueryTab::refreshLater()
{
    if (std::exchange(m_refreshing, true))
        return;
    QTimer::singleShot(0, this, [this] {
        m_pane->run().whenIdle([self = QPointer(this)] {
            if (self)
                self->refresh();
        });
    });
}

void QueryTab::refresh()
{
    m_refreshing = false;
    showErrors();
    showStatement();
}

void QueryTab::showErrors()
{
    QHash<int, QString> errors;
    for (const RowError& error : m_query->errors())
        errors.insert(int(error.row), error.text);
    m_criteria->criteria().setErrors(errors);
    const int first = errors.isEmpty() ? -1 : *std::min_element(errors.keyBegin(), errors.keyEnd());
    m_note->setText(first < 0 ? QString() : errors.value(first));
    m_note->setVisible(first >= 0);
    QPalette palette = m_note->palette();
    palette.setColor(QPalette::WindowText, m_criteria->criteria().indexOf(qMax(0, first))
                                               .data(Qt::ForegroundRole).value<QColor>());
    m_note->setPalette(first < 0 ? QPalette() : palette);
}

void QueryTab::showStatement()
{
    if (m_query->criteria().count() + 1 >= limitOfRows) { // said when it is to run
        m_whole->setPlainText({});
        return;
    }
    m_statement = m_query->SQLStatement();
    m_whole->setPlainText(QString(m_statement).replace(u"\r\n"_s, u"\n"_s));
    const QSignalBlocker select(m_select);
    const QSignalBlocker where(m_where);
    if (m_select->isReadOnly() || !m_select->hasFocus())
        m_select->setPlainText(m_query->TextSQLSelect());
    if (m_where->isReadOnly() || !m_where->hasFocus())
        m_where->setPlainText(m_query->TextSQLWhere());
}

void QueryTab::takeOwnText()
{
    if (m_select->isReadOnly())
        return;
    if (sender() == m_select)
        m_query->setTextSQLSelect(m_select->toPlainText().replace(u'\n', u' '));
    else
        m_query->setTextSQLWhere(m_where->toPlainText().replace(u'\n', u' '));
}

void QueryTab::undo(QList<QueryDefinition>& from, QList<QueryDefinition>& to)
{
    if (from.isEmpty())
        return;
    to << m_query->definition();
    m_undoing = true;
    m_query->restore(from.takeLast());
    m_undoing = false;
    updateActions();
}

void QueryTab::addFields(const QStringList& paths, int at)
{
    for (const QString& path : paths) {
        const Node* node = m_structure->node(path);
        const int added = node ? m_query->addReadableColumn(path) : -1;
        if (added >= 0 && at >= 0)
            m_query->moveColumn(added, qMin(at++, added));
        if (added >= 0)
            m_columns->selectRow(at >= 0 ? at - 1 : added);
    }
}

void QueryTab::addCriteria(const QStringList& paths, int row, bool onto)
{
    for (const QString& path : paths) {
        m_criteria->setCurrentRow(row);
        m_criteria->command(onto ? u"addchild"_s : row >= 0 ? u"addbrother"_s : u"add"_s, path);
    }
}

void QueryTab::insertSelection()
{
    QStringList names;
    QStringList modules;
    for (const data::ModuleRecord& module : m_around.modules) {
        const qsizetype count = m_around.selection ? m_around.selection(module.name).size() : 0;
        if (count == 0)
            continue;
        modules << module.name;
        names << module.label + u" < "_s + QString::number(count) + u" >"_s;
    }
    if (modules.isEmpty())
        return m_around.world.dialogues.tell(u"Aucune sélection flottante ne contient d'enregistrement."_s,
                                             m_query->title());
    int chosen = 0;
    if (modules.size() > 1) {
        const auto answer = m_around.world.dialogues.choose(
            {m_query->title(), u"Sélectionnez la sélection flottante à insérer"_s, u"Module"_s, names});
        if (!answer || answer->isEmpty())
            return;
        chosen = answer->first();
    }
    m_query->insertIdentifiers(m_around.selection(modules[chosen]), modules[chosen]);
}

void QueryTab::insertBase()
{
    const QString file =
        m_around.world.dialogues.openFile(u"Insérer des Requêtes"_s, u"Projet Herbora (*.hbx)|*.hbx|"_s);
    if (!file.isEmpty())
        m_query->insertBase(file);
}

// --- Running ---------------------------------------------------------------------------------

bool QueryTab::checked()
{
    showErrors();
    const QList<RowError> errors = m_query->errors();
    if (errors.isEmpty())
        return true;
    showDefinition(true);
    m_tabs->setCurrentIndex(0);
    m_criteria->setCurrentRow(int(errors.first().row), CriteriaModel::Value);
    m_criteria->setFocus();
    return false;
}

void QueryTab::execute()
{
    m_pane->run().whenIdle([self = QPointer(this)] {
        if (!self || !self->checked())
            return;
        const Query& query = *self->m_query;
        const QString statement = query.SQLStatement();
        if (statement.isEmpty())
            return;
        self->m_statement = statement;
        self->m_pane->start(self->m_around.world.database,
                            {.module = query.NomModule(), .name = self->title(), .data = statement,
                             .picture = query.pictureStatement(), .map = query.mapStatement()},
                            true);
    });
}

void QueryTab::recordsWritten(const QStringList& modules)
{
    if (!m_pane->hasResult())
        return;
    m_pane->run().whenIdle([self = QPointer(this), modules] {
        if (!self || !self->m_pane->hasResult())
            return;
        self->m_pane->valuesChanged(modules);
        const Results& results = *self->m_pane->results();
        if (results.isComplete() && !results.error() && results.seconds() < quickSeconds
            && !self->m_pane->run().isStarting())
            self->m_pane->again();
    });
}

void QueryTab::statistics()
{
    m_pane->run().whenIdle([self = QPointer(this)] {
        if (!self || !self->checked())
            return;
        const StatisticsPlan plan = self->m_query->statisticsPlan();
        if (plan.rows.isEmpty())
            return;
        auto report = std::make_shared<QString>();
        jet::Database* database = &self->m_around.world.database;
        self->m_around.runner.start(
            {[=](platform::Progression& progression) {
                 const data::Cancellable running(*database, progression);
                 *report = countStatistics(*database, plan, progression);
             },
             [=](std::exception_ptr failure) {
                 try {
                     if (failure)
                         std::rethrow_exception(failure);
                     if (self && !report->isEmpty())
                         self->m_around.world.dialogues.tell(*report, u"Statistiques de la requête"_s);
                 } catch (const jet::Error& error) {
                     if (self && error.number() != jet::cancelledError)
                         Q_EMIT self->failed(error.description());
                 }
             },
             [] {}, u"Calcul des statistiques"_s});
    });
}

void QueryTab::exportRows()
{
    const auto results = m_pane->run().shared();
    if (!results)
        return;
    platform::Dialogues* dialogues = &m_around.world.dialogues;
    const QString file = dialogues->saveFile(u"Exportation CSV"_s, u"Texte CSV (point-virgule, *.csv)|*.csv"_s,
                                             m_query->NomQuery() + u".csv"_s);
    if (file.isEmpty())
        return;
    auto written = std::make_shared<bool>(false);
    const QPointer<QueryTab> self(this);
    m_around.runner.start({[=](platform::Progression& progression) {
                               const data::Cancellable running(*results->database(), progression);
                               *written = results->ExportCSV(*dialogues, file, true, &progression);
                           },
                           [self, results, written, file](std::exception_ptr) {
                               if (self && *written)
                                   Q_EMIT self->said(u"Résultat écrit dans "_s + file);
                           },
                           [] {}, u"Exportation CSV"_s});
}

void QueryTab::print()
{
    m_pane->run().whenIdle([self = QPointer(this)] {
        if (self && self->m_pane->hasResult())
            printResults(*self->m_pane->results(), self->title(),
                         {self->m_around.world.dialogues, self->m_around.runner, self->m_around.world.clock.now(), self->window()});
    });
}

void QueryTab::replace()
{
    m_pane->run().whenIdle([self = QPointer(this)] {
        if (!self)
            return;
        const QString module = self->m_query->NomModule();
        for (const data::ModuleRecord& record : self->m_around.modules) {
            if (record.name != module)
                continue;
            const QList<qint32> records =
                self->m_pane->module() == module ? self->m_pane->selectedRecords() : QList<qint32>();
            auto* window = new ReplaceDialog({.world = self->m_around.world, .modules = self->m_around.modules,
                                              .context = self->m_around.context, .runner = self->m_around.runner,
                                              .icons = self->m_around.icons},
                                             record, records, self);
            window->setAttribute(Qt::WA_DeleteOnClose);
            connect(window, &ReplaceDialog::replaced, self, [self, module] { Q_EMIT self->recordsChanged({module}); });
            window->open();
            return;
        }
    });
}

void QueryTab::save()
{
    m_pane->run().whenIdle([self = QPointer(this)] {
        if (self && self->m_query->SaveQuery())
            Q_EMIT self->said(self->m_query->savedText());
    });
}

bool QueryTab::mayClose()
{
    return m_query->mayClose();
}

// --- State -----------------------------------------------------------------------------------

QString QueryTab::title() const
{
    return m_query->id() == 0 && !m_caption.isEmpty() ? m_caption : m_query->NomQuery();
}

QIcon QueryTab::icon() const
{
    return m_around.icons ? m_around.icons(u"Requête"_s) : QIcon();
}

void QueryTab::setCaption(const QString& caption)
{
    m_caption = caption;
    Q_EMIT stateChanged();
}

void QueryTab::showDefinition(bool shown)
{
    (*m_actions)[u"definition"_s]->setChecked(shown);
    m_definition->setVisible(shown);
}

QString QueryTab::statusText() const
{
    const QString mode = m_pane->shownMode().statusText();
    if (!mode.isEmpty())
        return mode;
    return m_pane->hasResult() ? m_pane->results()->textCount() : QString();
}

void QueryTab::updateActions()
{
    const Results* results = m_pane->results();
    const bool rows = results && results->CountRow() > 0;
    const bool selected = results && results->CountSel() > 0;
    const QueryActions& actions = *m_actions;
    actions[u"rename"_s]->setEnabled(m_query->id() > 0);
    actions[u"export"_s]->setEnabled(rows);
    actions[u"replace"_s]->setEnabled(!m_around.world.database.readOnly());
    for (const QString& name : {u"toself"_s, u"open"_s, u"selectnone"_s})
        actions[name]->setEnabled(selected);
    actions[u"selectinverse"_s]->setEnabled(rows);
    actions[u"undo"_s]->setEnabled(!m_undo.isEmpty());
    actions[u"redo"_s]->setEnabled(!m_redo.isEmpty());
    actions[u"stat"_s]->setEnabled(!m_query->columns().isEmpty());
    const bool row = m_criteria->currentRow() >= 0;
    for (const QString& name : {u"addchild"_s, u"addbrother"_s, u"addempty"_s, u"delete"_s, u"up"_s, u"down"_s})
        actions[name]->setEnabled(row);
}

bool QueryTab::can(platform::TabCommand command) const
{
    using enum platform::TabCommand;
    if (command == Save || command == Refresh || command == Find)
        return true;
    if (command == ExportRows)
        return (*m_actions)[u"export"_s]->isEnabled();
    if (command == Print && m_pane->shownMode().key() == u"data")
        return m_pane->hasResult() && m_pane->results()->CountRow() > 0;
    return m_pane->shownMode().can(command);
}

void QueryTab::run(platform::TabCommand command)
{
    using enum platform::TabCommand;
    if (command == Save)
        return save();
    if (command == Refresh)
        return execute();
    if (command == ExportRows)
        return exportRows();
    if (command == Print && m_pane->shownMode().key() == u"data")
        return print();
    if (command == Find) {
        showDefinition(true);
        return m_fields->searchLine().setFocus(Qt::ShortcutFocusReason);
    }
    m_pane->shownMode().run(command);
}

// --- Menu of a result column -----------------------------------------------------------------

void QueryTab::addFilters(QMenu& menu, const QString& alias, const QString& value)
{
    QMenu* filters = menu.addMenu(QIcon::fromTheme(u"view-filter"_s), Query::filterPrompt(alias));
    filters->setObjectName(u"filtres"_s);
    const QList<std::pair<QString, QString>> operators{
        {u"Egale…"_s, u"="_s}, {u"Différent…"_s, u"<>"_s}, {u"Contient…"_s, u"LIKE"_s}};
    for (const auto& [text, op] : operators) {
        filters->addAction(text, this, [this, alias, op = op, value] {
            if (m_query->askFilter(alias, op, value))
                execute();
        })->setObjectName(op);
    }
    QMenu* orders = menu.addMenu(QIcon::fromTheme(u"view-sort-ascending"_s), Query::sortCaption(alias));
    orders->setObjectName(u"tris"_s);
    for (const QString& order : {orderUp, orderDown}) {
        orders->addAction(order, this, [this, alias, order] {
            if (m_query->sort(alias, order))
                execute();
        });
    }
}

void QueryTab::showColumnMenu(int column, const QPoint& at)
{
    const Results* results = m_pane->results();
    if (!results)
        return;
    const QString alias = results->HeaderColumn(column);
    auto* menu = new QMenu(this);
    menu->setObjectName(u"menuColonne"_s);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction((*m_actions)[u"open"_s]);
    menu->addSeparator();
    if (m_query->columnOf(alias) >= 0)
        addFilters(*menu, alias, m_pane->text(m_pane->data().currentRow(), column));
    menu->addAction(Query::hideCaption(alias), this, [this, column] { m_pane->hideColumn(column); })
        ->setObjectName(u"masquer"_s);
    if (m_pane->hasHiddenColumns())
        menu->addAction(u"Montrer les colonnes masquées"_s, this, [this] { m_pane->showHiddenColumns(); });
    menu->addSeparator();
    for (const QString& name : {u"copycell"_s, u"selectinverse"_s, u"selectnone"_s, u"toself"_s, u"replace"_s})
        menu->addAction((*m_actions)[name]);
    menu->popup(at);
}

} // namespace query
