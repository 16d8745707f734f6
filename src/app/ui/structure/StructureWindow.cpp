#include "app/ui/structure/StructureWindow.h"

#include "app/Session.h"
#include "app/ui/Icons.h"
#include "app/ui/WindowState.h"
#include "app/ui/Workplace.h"
#include "app/ui/structure/DescriptorWindow.h"
#include "app/ui/structure/PropertySheet.h"
#include "app/ui/structure/StructureModel.h"
#include "app/ui/structure/TrialWindow.h"
#include "app/ui/structure/TypeDelegate.h"

#include <QBuffer>
#include <QCloseEvent>
#include <QFileInfo>
#include <QHeaderView>
#include <QImage>
#include <QMenuBar>
#include <QScopedValueRollback>
#include <QScrollArea>
#include <QScrollBar>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>

namespace app {

using namespace Qt::StringLiterals;

namespace {

const QString structureGeometryKey = u"structure/geometrie"_s;
const QString splitterKey = u"structure/volets"_s;
const QString columnsKey = u"structure/colonnes"_s;
constexpr int largestIcon = 64;
constexpr int titleMargin = 18;
constexpr int structureMessageMilliseconds = 5000;
constexpr int structureRetryMilliseconds = 30;

/// A sheet that may be higher than its place.
QScrollArea* scrolled(QWidget* sheet, QWidget* owner)
{
    auto* area = new QScrollArea(owner);
    area->setWidget(sheet);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    return area;
}

} // namespace

StructureWindow::StructureWindow(StructureEditing& structure, Workplace& place, QWidget* parent)
    : QMainWindow(parent), m_editing(structure), m_place(place), m_model(new StructureModel(structure, this)),
      m_tree(new QTreeView(this)), m_tabs(new QTabWidget(this)), m_moduleSheet(new ModuleSheet(structure, this)),
      m_fieldSheet(new FieldSheet(structure, this)), m_splitter(new QSplitter(this)), m_count(new QLabel(this))
{
    setObjectName(u"structureWindow"_s);
    setWindowIcon(programIcon());
    setProperty("manuel", u"structure.md"_s);
    m_tabs->setObjectName(u"feuilles"_s);
    m_tabs->setAccessibleName(u"Propriétés"_s);
    m_tabs->tabBar()->setObjectName(u"barreFeuilles"_s);
    m_tabs->tabBar()->setAccessibleName(u"Module ou champ"_s);
    m_tabs->addTab(scrolled(m_moduleSheet, this), u"&Module"_s);
    m_tabs->addTab(scrolled(m_fieldSheet, this), u"C&hamp"_s);
    m_splitter->setObjectName(u"voletsStructure"_s);
    m_splitter->addWidget(m_tree);
    m_splitter->addWidget(m_tabs);
    m_splitter->setStretchFactor(0, 1);
    m_splitter->setChildrenCollapsible(false);
    setCentralWidget(m_splitter);
    m_count->setObjectName(u"compteStructure"_s);
    statusBar()->setObjectName(u"etatStructure"_s);
    statusBar()->addPermanentWidget(m_count);
    makeTree();
    makeActions();
    makeMenus();
    connectTree();
    m_editing.draft().changed = [this] {
        // Once the cell or row that led to it is done with.
        if (!std::exchange(m_queued, true))
            QTimer::singleShot(0, this, [this] {
                m_queued = false;
                showDraft();
            });
    };
    if (!m_editing.draft().modules().isEmpty())
        m_module = m_editing.draft().modules().first().id;
    m_expanded.insert(m_module);
    showDraft();
    restorePlaces();
}

StructureWindow::~StructureWindow()
{
    m_editing.draft().changed = {};
    closeParts();
}

// --- Parts -----------------------------------------------------------------------------------------

void StructureWindow::makeTree()
{
    m_tree->setObjectName(u"arbreStructure"_s);
    m_tree->setAccessibleName(u"Modules et champs"_s);
    m_tree->setModel(m_model);
    m_tree->setItemDelegate(new TypeDelegate(m_tree));
    m_tree->setUniformRowHeights(true);
    m_tree->setAllColumnsShowFocus(false);
    m_tree->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_tree->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::DoubleClicked);
    m_tree->setExpandsOnDoubleClick(false);
    m_tree->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_tree->header()->setStretchLastSection(true);
    // Wide enough for the titles of both kinds of lines.
    const QList<int> letters{42, 16, 0, 0, 0, 0, 30, 16, 20};
    const QModelIndex titles = m_model->index(0, 0, m_model->index(0, 0));
    for (int column = 0; column < letters.size(); ++column) {
        const QString title = titles.siblingAtColumn(column).data().toString();
        const QString header = m_model->headerData(column, Qt::Horizontal).toString();
        const int width = qMax(m_tree->fontMetrics().horizontalAdvance(title),
                               m_tree->fontMetrics().horizontalAdvance(header));
        m_tree->header()->resizeSection(column, qMax(letters[column] * m_tree->fontMetrics().averageCharWidth(),
                                                     width + titleMargin));
    }
}

QAction* StructureWindow::add(const QString& name, const QString& icon, const QString& text, const QString& tip,
                              const QKeySequence& keys, const std::function<void()>& run)
{
    auto* action = new QAction(themeIcon(icon), text, this);
    action->setObjectName(name);
    action->setStatusTip(tip);
    action->setToolTip(keys.isEmpty() ? tip : tip + u" ("_s + keys.toString(QKeySequence::NativeText) + u')');
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, run);
    m_actions.insert(name, action);
    return action;
}

void StructureWindow::makeActions()
{
    add(u"save"_s, u"document-save"_s, u"&Enregistrer"_s, u"Enregistrer la structure dans le projet"_s, u"Ctrl+S"_s,
        [this] {
            finishTyping();
            // What was typed last comes into the draft first.
            QTimer::singleShot(0, this, [this] { Q_EMIT saveWanted(); });
        });
    add(u"mnuadd"_s, u"insert-link"_s, u"Ajouter un champ de &liaison…"_s,
        u"Lier chaque individu à un enregistrement d'un module"_s, {}, [this] { choose(m_editing.addLink()); });
    add(u"mnulssynchro"_s, u"view-refresh"_s, u"&Synchroniser les descripteurs…"_s,
        u"Refaire les listes de descripteurs à partir des enregistrements"_s, {},
        [this] { whenFree([this] { m_editing.synchroniseDescriptors(); }); });
    add(u"mnuexport"_s, u"document-export"_s, u"E&xporter la structure…"_s,
        u"Écrire la structure dans un nouveau fichier, sans enregistrements"_s, {}, [this] { exportStructure(); });
    add(u"mnuimport"_s, u"document-import"_s, u"&Importer des modules…"_s,
        u"Reprendre des modules d'un autre projet ou d'un fichier de structure"_s, {}, [this] { importModules(); });
    add(u"mnuend"_s, u"window-close"_s, u"&Fermer"_s, u"Fermer la structure"_s, u"Ctrl+W"_s, [this] { close(); });

    add(u"undo"_s, u"edit-undo"_s, u"&Annuler"_s, u"Annuler la dernière modification"_s, u"Ctrl+Z"_s,
        [this] { m_editing.draft().undo(); });
    add(u"redo"_s, u"edit-redo"_s, u"&Rétablir"_s, u"Rétablir la modification annulée"_s, u"Ctrl+Shift+Z"_s,
        [this] { m_editing.draft().redo(); });
    add(u"add"_s, u"list-add"_s, u"A&jouter"_s, u"Ajouter un module, ou un champ au module"_s, u"Ins"_s,
        [this] { addOne(); });
    add(u"addModule"_s, u"folder-new"_s, u"Ajouter un &module…"_s, u"Ajouter un module au projet"_s, u"Ctrl+Shift+N"_s,
        [this] { choose(m_editing.addModule()); });
    add(u"addField"_s, u"list-add"_s, u"Ajouter un &champ au module"_s, u"Ajouter un champ au module"_s, u"Ctrl+N"_s,
        [this] { choose(m_editing.addField(m_module, m_field)); });
    add(u"delete"_s, u"edit-delete"_s, u"&Supprimer…"_s, u"Supprimer le module ou le champ"_s, u"Del"_s,
        [this] { deleteOne(); });
    add(u"up"_s, u"go-up"_s, u"Mon&ter"_s, u"Monter d'une place"_s, u"Alt+Up"_s, [this] { moveOne(-1); });
    add(u"down"_s, u"go-down"_s, u"&Descendre"_s, u"Descendre d'une place"_s, u"Alt+Down"_s, [this] { moveOne(1); });
    add(u"icon"_s, u"preferences-desktop-icons"_s, u"&Icône du module…"_s, u"Choisir l'icône du module"_s, {},
        [this] { chooseIcon(); });
    add(u"noIcon"_s, u"edit-clear"_s, u"Icône &habituelle"_s, u"Rendre au module son icône habituelle"_s, {},
        [this] { m_editing.setIcon(m_module, {}); });
    add(u"wizard"_s, u"document-edit"_s, u"Saisie"_s, u"Essayer la saisie d'un enregistrement du module"_s, u"F5"_s,
        [this] { tryInput(); });
    add(u"module"_s, u"view-list-tree"_s, u"Propriétés du m&odule"_s, u"Montrer les propriétés du module"_s, u"Alt+1"_s,
        [this] { m_tabs->setCurrentIndex(0); });
    add(u"champ"_s, u"view-list-details"_s, u"&Propriétés du champ"_s, u"Montrer les propriétés du champ"_s, u"Alt+2"_s,
        [this] { m_tabs->setCurrentIndex(1); });
    add(u"expand"_s, u"expand-all"_s, u"Tout &développer"_s, u"Montrer les champs de tous les modules"_s, {},
        [this] { m_tree->expandAll(); });
    add(u"collapse"_s, u"collapse-all"_s, u"&Tout réduire"_s, u"Cacher les champs des modules"_s, {},
        [this] { m_tree->collapseAll(); });
}

void StructureWindow::makeMenus()
{
    const auto menu = [this](const QString& name, const QString& text, const QStringList& keys) {
        QMenu* made = menuBar()->addMenu(text);
        made->setObjectName(name);
        for (const QString& key : keys) {
            if (key.isEmpty())
                made->addSeparator();
            else
                made->addAction(m_actions.value(key));
        }
    };
    menu(u"menuStructure"_s, u"&Structure"_s,
         {u"save"_s, {}, u"mnuadd"_s, u"mnulssynchro"_s, {}, u"mnuimport"_s, u"mnuexport"_s, {}, u"mnuend"_s});
    menu(u"menuEditionStructure"_s, u"É&dition"_s,
         {u"undo"_s, u"redo"_s, {}, u"addModule"_s, u"addField"_s, u"delete"_s, {}, u"up"_s, u"down"_s, {}, u"icon"_s,
          u"noIcon"_s});
    menu(u"menuAffichageStructure"_s, u"&Affichage"_s,
         {u"module"_s, u"champ"_s, {}, u"expand"_s, u"collapse"_s, {}, u"wizard"_s});
    auto* bar = new QToolBar(u"Barre d'outils"_s, this);
    bar->setObjectName(u"barreStructure"_s);
    bar->setAccessibleName(u"Barre d'outils"_s);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->setIconSize({22, 22});
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    m_actions[u"save"_s]->setPriority(QAction::LowPriority);
    for (const QString& key : {u"save"_s, QString(), u"undo"_s, u"redo"_s, QString(), u"add"_s, u"delete"_s, u"up"_s,
                               u"down"_s, QString(), u"icon"_s, u"wizard"_s}) {
        if (key.isEmpty())
            bar->addSeparator();
        else
            bar->addAction(m_actions.value(key));
        if (key == u"undo" || key == u"redo" || key == u"up" || key == u"down")
            m_actions[key]->setPriority(QAction::LowPriority); // an icon says enough
    }
    addToolBar(bar);
    bar->toggleViewAction()->setObjectName(u"montrerBarre"_s);
    for (const QString& key : {u"add"_s, u"delete"_s, u"up"_s, u"down"_s})
        m_tree->addAction(m_actions.value(key));
}

void StructureWindow::connectTree()
{
    connect(m_tree->selectionModel(), &QItemSelectionModel::currentChanged, this, &StructureWindow::followTree);
    connect(m_tree, &QTreeView::expanded, this, [this](const QModelIndex& index) {
        m_expanded.insert(index.data(StructureModel::idRole).toInt());
        for (int row = 0; row < m_model->rowCount(index); ++row) {
            const QModelIndex line = m_model->index(row, 0, index);
            if (m_model->kind(line) == StructureModel::Kind::FieldCount)
                m_tree->setFirstColumnSpanned(row, index, true);
        }
    });
    connect(m_tree, &QTreeView::collapsed, this, [this](const QModelIndex& index) {
        m_expanded.remove(index.data(StructureModel::idRole).toInt());
    });
    // Once the cell is closed: a question may follow.
    const auto later = [this](const std::function<void()>& work) { QTimer::singleShot(0, this, work); };
    connect(m_model, &StructureModel::nameTyped, this, [this, later](int id, const QString& text) {
        later([this, id, text] {
            if (m_editing.draft().module(id))
                m_editing.renameModule(id, text);
            else
                m_editing.renameField(id, text);
        });
    });
    connect(m_model, &StructureModel::descriptionTyped, this, [this, later](int id, const QString& text) {
        later([this, id, text] {
            if (m_editing.draft().module(id))
                m_editing.setModuleHelp(id, text);
            else
                m_editing.setFieldHelp(id, text);
        });
    });
    connect(m_model, &StructureModel::typeChosen, this,
            [this, later](int field, int type) { later([this, field, type] { m_editing.setType(field, type); }); });
    connect(m_model, &StructureModel::flagToggled, this, [this](int field, int flag, bool on) {
        m_editing.setFieldFlag(field, data::Flag(flag), on);
    });
    connect(m_fieldSheet, &FieldSheet::descriptorsWanted, this, &StructureWindow::openDescriptors);
    connect(m_tabs, &QTabWidget::currentChanged, this, &StructureWindow::updateActions);
}

QAction* StructureWindow::command(const QString& name) const
{
    return m_actions.value(name);
}

// --- What is shown ---------------------------------------------------------------------------------

void StructureWindow::showDraft()
{
    {
        const QScopedValueRollback showing(m_showing, true);
        const int top = m_tree->verticalScrollBar()->value();
        const QSet<int> expanded = m_expanded;
        const int column = qMax(0, m_tree->currentIndex().column());
        m_model->refresh();
        for (const int id : expanded) {
            const QModelIndex index = m_model->indexOf(id);
            if (index.isValid())
                m_tree->expand(index);
        }
        m_expanded = expanded;
        const int last = m_model->rowCount() - 1;
        m_tree->setFirstColumnSpanned(last, {}, true);
        if (!m_editing.draft().field(m_field))
            m_field = 0;
        if (!m_editing.draft().module(m_module))
            m_module = m_editing.draft().modules().isEmpty() ? 0 : m_editing.draft().modules().first().id;
        const QModelIndex current = m_model->indexOf(m_field ? m_field : m_module);
        m_tree->setCurrentIndex(current.siblingAtColumn(column));
        m_tree->verticalScrollBar()->setValue(top);
    }
    showChosen();
    if (m_trial)
        m_trial->refresh();
}

void StructureWindow::showChosen()
{
    m_moduleSheet->showItem(m_module);
    m_fieldSheet->showItem(m_field);
    setWindowTitle(m_editing.caption() + u"[*]"_s);
    setWindowModified(m_editing.draft().isChanged());
    const DraftModule* module = m_editing.draft().module(m_module);
    QString text = QString::number(m_editing.draft().modules().size()) + u" module(s) définis"_s;
    if (module)
        text += u"  ·  %1 : %2 champ(s) définis"_s.arg(module->record.name, QString::number(module->fields.size()));
    m_count->setText(text);
    updateActions();
}

void StructureWindow::choose(int id)
{
    if (id == 0)
        return;
    const DraftModule* owner = m_editing.draft().moduleOf(id);
    m_field = owner ? id : 0;
    m_module = owner ? owner->id : id;
    m_expanded.insert(m_module);
    m_tabs->setCurrentIndex(owner ? 1 : 0);
    showDraft();
    const QModelIndex index = m_model->indexOf(id);
    m_tree->scrollTo(index);
    m_tree->setCurrentIndex(index);
    m_tree->setFocus();
}

void StructureWindow::followTree(const QModelIndex& index)
{
    const int id = index.data(StructureModel::idRole).toInt();
    if (m_showing)
        return;
    if (id == 0 && index.isValid() && !index.parent().isValid())
        return;
    const bool field = m_model->kind(index) == StructureModel::Kind::Field;
    // The lines around the fields belong to their module.
    m_module = field || id == 0 ? index.parent().data(StructureModel::idRole).toInt() : id;
    m_field = field ? id : 0;
    m_tabs->setCurrentIndex(field ? 1 : 0);
    showChosen();
}

void StructureWindow::updateActions()
{
    const DraftModule* module = m_editing.draft().module(m_module);
    const DraftField* field = m_editing.draft().field(m_field);
    const bool onField = m_tabs->currentIndex() == 1;
    const auto enable = [this](const QString& key, bool on) { m_actions[key]->setEnabled(on); };
    enable(u"save"_s, m_editing.draft().isChanged());
    enable(u"undo"_s, m_editing.draft().canUndo());
    enable(u"redo"_s, m_editing.draft().canRedo());
    const auto named = [](const QString& text, QString name) {
        return name.isEmpty() ? text : text + u" : "_s + name.replace(u'&', u"&&"_s);
    };
    m_actions[u"undo"_s]->setText(named(u"&Annuler"_s, m_editing.draft().undoName()));
    m_actions[u"redo"_s]->setText(named(u"&Rétablir"_s, m_editing.draft().redoName()));
    m_actions[u"undo"_s]->setIconText(u"Annuler"_s);
    m_actions[u"redo"_s]->setIconText(u"Rétablir"_s);
    m_actions[u"add"_s]->setText(onField ? u"Ajouter un champ au module"_s : u"Ajouter un module"_s);
    enable(u"add"_s, !onField || module);
    enable(u"addField"_s, module);
    const bool fieldChosen = onField && field;
    enable(u"delete"_s, fieldChosen ? !m_editing.isReadOnly(*module, *field)
                                    : !onField && module && m_editing.mayDelete(*module));
    enable(u"up"_s, fieldChosen ? m_editing.canMoveField(m_field, -1) : !onField && m_editing.canMoveModule(m_module, -1));
    enable(u"down"_s, fieldChosen ? m_editing.canMoveField(m_field, 1) : !onField && m_editing.canMoveModule(m_module, 1));
    enable(u"icon"_s, module && !m_editing.isReadOnly(*module));
    enable(u"noIcon"_s, module && !m_editing.isReadOnly(*module) && !module->record.icon.isEmpty());
    m_actions[u"wizard"_s]->setText(module ? u"Sai&sie "_s + module->record.name : u"Sai&sie"_s);
    enable(u"wizard"_s, module && !module->fields.isEmpty());
}

// --- Commands --------------------------------------------------------------------------------------

void StructureWindow::finishTyping()
{
    if (QWidget* focus = focusWidget(); qobject_cast<QLineEdit*>(focus)) {
        focus->clearFocus();
        focus->setFocus();
    }
}

/// The project belongs to what runs beside the windows as long as it runs.
void StructureWindow::whenFree(const std::function<void()>& work)
{
    if (!m_place.runner().isRunning())
        return work();
    m_place.runner().cancel();
    QTimer::singleShot(structureRetryMilliseconds, this, [this, work] { whenFree(work); });
}

void StructureWindow::addOne()
{
    if (m_tabs->currentIndex() == 1)
        choose(m_editing.addField(m_module, m_field));
    else
        choose(m_editing.addModule());
}

void StructureWindow::deleteOne()
{
    whenFree([this] {
        if (isField())
            m_editing.deleteField(m_field);
        else
            m_editing.deleteModule(m_module);
    });
}

void StructureWindow::moveOne(int by)
{
    if (isField())
        m_editing.moveField(m_field, by);
    else
        m_editing.moveModule(m_module, by);
}

void StructureWindow::chooseIcon()
{
    const QString path = m_place.dialogues().openFile(
        u"Icône du module"_s, u"Images (*.png *.svg *.jpg *.ico)|*.png;*.svg;*.jpg;*.jpeg;*.ico;*.gif;*.bmp|"_s);
    if (path.isEmpty())
        return;
    QImage image(path);
    if (image.isNull()) {
        m_place.fail(m_editing.caption(), u"« %1 » n'est pas une image lisible."_s.arg(QFileInfo(path).fileName()));
        return;
    }
    if (image.width() > largestIcon || image.height() > largestIcon)
        image = image.scaled(largestIcon, largestIcon, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (image.save(&buffer, "PNG"))
        m_editing.setIcon(m_module, bytes);
}

void StructureWindow::tryInput()
{
    whenFree([this] {
        if (m_trial && m_trial->module() != m_module)
            delete m_trial;
        if (!m_trial) {
            m_trial = new TrialWindow(m_editing, m_place.session(), m_module, this);
            m_trial->setAttribute(Qt::WA_DeleteOnClose);
        }
        m_trial->show();
        m_trial->raise();
        m_trial->activateWindow();
    });
}

void StructureWindow::openDescriptors(int field)
{
    whenFree([this, field] {
        if (m_descriptors || !m_editing.draft().field(field))
            return;
        try {
            m_descriptors = new DescriptorWindow(m_editing, m_place.session(), field, this);
        } catch (const jet::Error& error) {
            m_place.fail(m_editing.caption(), error.description());
            return;
        }
        m_descriptors->setAttribute(Qt::WA_DeleteOnClose);
        m_descriptors->open();
    });
}

void StructureWindow::exportStructure()
{
    QString path = m_place.dialogues().saveFile(u"Exporter la structure"_s, StructureEditing::fileFilter(),
                                                u"Structure.hbx"_s);
    if (path.isEmpty())
        return;
    if (!path.endsWith(u".hbx"_s, Qt::CaseInsensitive))
        path += u".hbx"_s;
    if (m_editing.exportTo(path))
        statusBar()->showMessage(u"Structure exportée : "_s + QFileInfo(path).fileName(), structureMessageMilliseconds);
}

void StructureWindow::importModules()
{
    const QString path = m_place.dialogues().openFile(u"Importer des modules"_s, StructureEditing::fileFilter());
    if (path.isEmpty())
        return;
    if (m_editing.importFrom(path))
        statusBar()->showMessage(u"Modules importés"_s, structureMessageMilliseconds);
}

// --- Its end ---------------------------------------------------------------------------------------

TrialWindow* StructureWindow::trial() const
{
    return m_trial;
}

DescriptorWindow* StructureWindow::descriptors() const
{
    return m_descriptors;
}

void StructureWindow::closeParts()
{
    delete m_trial;
    if (m_descriptors)
        m_descriptors->done(QDialog::Rejected);
    delete m_descriptors;
}

bool StructureWindow::mayClose(const std::function<void()>& then)
{
    if (!m_editing.draft().isChanged())
        return true;
    const platform::Answer answer = m_place.dialogues().ask(
        {u"Voulez-vous enregistrer les modifications apportées à la structure de la base ?"_s, m_editing.caption(),
         platform::BoxIcon::Question, platform::BoxButtons::YesNoCancel, platform::Answer::Yes});
    if (answer != platform::Answer::Yes)
        return answer == platform::Answer::No;
    m_then = then;
    Q_EMIT saveWanted();
    return false;
}

void StructureWindow::showSaved()
{
    statusBar()->showMessage(u"Structure enregistrée"_s, structureMessageMilliseconds);
    showDraft();
    if (const auto then = std::exchange(m_then, {}))
        then();
}

void StructureWindow::showNotSaved()
{
    m_then = {};
    updateActions();
}

void StructureWindow::closeQuietly()
{
    m_quiet = true;
    close();
}

void StructureWindow::closeEvent(QCloseEvent* event)
{
    finishTyping();
    if (!m_quiet && !mayClose([this] { closeQuietly(); })) {
        event->ignore();
        return;
    }
    saveGeometryOfWindow();
    closeParts();
    event->accept();
    Q_EMIT closed();
}

void StructureWindow::restorePlaces()
{
    resize(1320, 700);
    restoreGeometry(m_place.state().value(structureGeometryKey).toByteArray());
    if (!m_splitter->restoreState(m_place.state().value(splitterKey).toByteArray()))
        m_splitter->setSizes({930, 390});
    m_tree->header()->restoreState(m_place.state().value(columnsKey).toByteArray());
}

void StructureWindow::saveGeometryOfWindow()
{
    m_place.state().setValue(structureGeometryKey, saveGeometry());
    m_place.state().setValue(splitterKey, m_splitter->saveState());
    m_place.state().setValue(columnsKey, m_tree->header()->saveState());
}

} // namespace app
