#include "editing/ui/RecordEditorWindow.h"

#include "editing/ui/RecordPrinting.h"
#include "platform/Dialogues.h"
#include "platform/ui/PrintPreview.h"

#include <QCloseEvent>
#include <QScopedValueRollback>
#include <QStatusBar>
#include <utility>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

const QString geometryKey = u"fiche/geometrie"_s;
const QString splitterKey = u"fiche/volets"_s;
const QString modeKey = u"fiche/mode"_s;
/// Further records of a long branch are left to the tree.
constexpr qsizetype mostSections = 20;
constexpr int messageMilliseconds = 5000;
/// What is over sooner is not worth a word.
constexpr int patienceMilliseconds = 400;

} // namespace

RecordEditorWindow::RecordEditorWindow(IndividualEditing& editing, EditorSurroundings surroundings, QWidget* parent)
    : QMainWindow(parent), m_editing(editing), m_around(std::move(surroundings)), m_actions(new EditorActions(*this)),
      m_model(new EditTreeModel(editing, m_around.icon, this)), m_tree(new EditTreeView(*m_model, this)),
      m_pane(new FormPane(this)), m_help(new QPlainTextEdit(this)), m_object(new QPlainTextEdit(this)), m_stack(new QStackedWidget(this)),
      m_tabs(new QTabWidget(this)), m_splitter(new QSplitter(this)), m_place(new QLabel(this)),
      m_draft(new DraftKeeper(m_around.draftFile, [this] { return m_editing.draft(); }, this)),
      m_held(new HeldKeys(*this))
{
    setObjectName(u"recordEditor"_s);
    m_patience.setSingleShot(true);
    m_patience.setInterval(patienceMilliseconds);
    connect(&m_patience, &QTimer::timeout, this, [this] {
        m_waiting = true;
        statusBar()->showMessage(u"Une autre tâche emploie le projet : ce que vous tapez est gardé et viendra ensuite"_s);
    });
    arrange();
    fillWorld();
    connectEditing();
    connectTree();
    connectActions();
    connectMore();
    restorePlaces();
    showCurrent();
}

RecordEditorWindow::~RecordEditorWindow()
{
    m_editing.treeChanged = {};
    m_editing.currentChanged = {};
    m_editing.recordChanged = {};
    m_editing.fieldRefused = {};
    m_editing.fieldActivated = {};
    m_pane->clear();
}

// --- Parts ---------------------------------------------------------------------------------------

void RecordEditorWindow::arrange()
{
    m_help->setObjectName(u"aide"_s);
    m_help->setAccessibleName(u"Aide"_s);
    m_help->setReadOnly(true);
    m_help->setFrameShape(QFrame::NoFrame);
    m_stack->addWidget(m_pane);
    m_stack->addWidget(m_help);
    m_tabs->setObjectName(u"onglets"_s);
    m_tabs->setAccessibleName(u"Enregistrement"_s);
    m_tabs->setDocumentMode(true);
    m_tabs->tabBar()->setObjectName(u"barreOnglets"_s);
    m_tabs->tabBar()->setAccessibleName(u"Champs, image ou objet"_s);
    const auto tab = [this](QWidget* page, const QString& key, const QString& text) {
        page->setObjectName(key);
        m_tabs->addTab(page, text);
    };
    tab(m_stack, u"Item"_s, u"Champs"_s);
    m_object->setAccessibleName(u"Objet"_s);
    m_object->setReadOnly(true);
    m_object->setFrameShape(QFrame::NoFrame);
    tab(m_object, u"Object"_s, u"Objet"_s);
    makePictureTab();
    connect(m_tabs, &QTabWidget::currentChanged, this, &RecordEditorWindow::showObject);
    m_splitter->setObjectName(u"volets"_s);
    m_splitter->addWidget(m_tree);
    m_splitter->addWidget(m_tabs);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setChildrenCollapsible(false);
    m_tree->setMinimumWidth(160);
    setCentralWidget(m_splitter);
    m_place->setObjectName(u"place"_s);
    statusBar()->setObjectName(u"etatFiche"_s);
    statusBar()->addPermanentWidget(m_place);
}

void RecordEditorWindow::fillWorld()
{
    ControlWorld& world = m_pane->world();
    world.search = m_around.search;
    world.chooser = m_around.chooser;
    world.lists = m_around.lists;
    world.dialogues = &m_around.dialogues;
    world.take = [this](Cl_Edition& field, const QVariant& value) {
        const QScopedValueRollback typing(m_typing, true);
        if (EditedRecord* record = recordOf(field))
            m_editing.type(*record, field, value);
    };
    world.takeFiles = [this](Cl_Edition& field, const QStringList& files) { takeFiles(field, files); };
    world.described = [this](const QString& module, qint32 id) { return m_editing.describe(module, id); };
    world.listChanged = [this] {
        if (m_editing.written)
            m_editing.written({}); // records of other individuals too
        m_editing.Query_Refresh();
    };
    m_pane->describe = [this](Cl_Edition& field) {
        const EditedRecord* record = recordOf(field);
        return record ? m_editing.row(*record, field) : FormRow{&field, field.Caption(), {}, true, {}};
    };
}

void RecordEditorWindow::connectEditing()
{
    m_editing.treeChanged = [this] { m_model->rebuilt(); };
    m_editing.currentChanged = [this] { showCurrent(); };
    m_editing.recordChanged = [this](EditedRecord& record) {
        m_model->changed(record.key);
        if (!m_typing && m_shown.contains(record.key))
            m_pane->refreshValues();
        updateState();
        m_draft->touch();
    };
    const auto activate = [this](Cl_Edition& field) { m_pane->focusField(field); };
    m_editing.fieldActivated = activate;
    m_editing.fieldRefused = [this, activate](Cl_Edition& field) {
        m_pane->tellAll(true);
        activate(field);
    };
}

void RecordEditorWindow::connectTree()
{
    connect(m_tree, &EditTreeView::nodeChosen, this, &RecordEditorWindow::showNode);
    connect(m_tree, &EditTreeView::nodeActivated, this, &RecordEditorWindow::activate);
    // Once the drop is over: the tree is made anew, which must not happen under the hands of the view.
    connect(
        m_model, &EditTreeModel::moveWanted, this,
        [this](const QString& key, const QString& target) {
            if (EditedRecord* record = m_editing.record(key))
                m_editing.changeParent(*record, target);
        },
        Qt::QueuedConnection);
    connect(m_pane, &FormPane::edited, this, [this](Cl_Edition* field) {
        if (const EditedRecord* record = field ? recordOf(*field) : nullptr)
            m_model->changed(record->key);
        updateState();
    });
    connect(m_pane, &FormPane::leftAtEnd, this, [this] {
        statusBar()->showMessage(u"Dernier champ : Ctrl+S enregistre, Ctrl+N ajoute un enregistrement"_s);
    });
    connect(m_pane, &FormPane::entered, this, [this](Cl_Edition* field) {
        statusBar()->showMessage(field ? field->TextHelp() : QString());
        updateState();
    });
}

void RecordEditorWindow::connectActions()
{
    EditorActions& a = *m_actions;
    const auto on = [this](QAction* action, auto run) { connect(action, &QAction::triggered, this, run); };
    on(a.save, [this] {
        finishTyping();
        if (m_editing.SavedItem(true) == SaveOutcome::Saved)
            statusBar()->showMessage(u"Enregistré"_s, messageMilliseconds);
        m_draft->touch();
        updateState();
    });
    on(a.add, [this] { addAtNode(); });
    on(a.addSame, [this] {
        finishTyping();
        m_editing.addAnother(false);
    });
    on(a.addCopy, [this] {
        finishTyping();
        m_editing.addAnother(true);
    });
    on(a.remove, [this] {
        if (EditedRecord* record = m_editing.current())
            m_editing.remove(*record);
        m_draft->touch();
    });
    on(a.lock, [this] {
        finishTyping();
        EditedRecord* record = m_editing.current();
        if (record && m_editing.toggleLock(*record))
            showCurrent();
        updateState();
    });
    on(a.parent, [this] { m_editing.selectParent(); });
    on(a.move, [this] { chooseParent(); });
    on(a.close, [this] { close(); });
    on(a.prev, [this] { m_editing.go(-1); });
    on(a.suiv, [this] { m_editing.go(1); });
    on(a.oprev, [this] { m_editing.goOther(-1); });
    on(a.osuiv, [this] { m_editing.goOther(1); });
    on(a.list, [this] { m_editing.chooseRecord(); });
}

void RecordEditorWindow::connectMore()
{
    EditorActions& a = *m_actions;
    const auto on = [this](QAction* action, auto run) { connect(action, &QAction::triggered, this, run); };
    const auto refresh = [this](RefreshScope scope) {
        FieldControl* control = m_pane->currentControl();
        m_editing.refresh(scope, control ? control->ClParent() : nullptr);
        m_draft->touch();
        updateState();
    };
    on(a.field, [refresh] { refresh(RefreshScope::Field); });
    on(a.record, [refresh] { refresh(RefreshScope::Record); });
    on(a.indiv, [refresh] { refresh(RefreshScope::All); });
    on(a.wzvalid, [this] { m_editing.wizard(WizardFields::Invalid, m_around.wizard); });
    on(a.wznull, [this] { m_editing.wizard(WizardFields::Empty, m_around.wizard); });
    on(a.wztabs, [this] { m_editing.wizard(WizardFields::All, m_around.wizard); });
    on(a.modelSave, [this] {
        finishTyping();
        m_editing.saveModel();
    });
    on(a.modelLoad, [this] { m_editing.loadModel(); });
    on(a.modelRename, [this] { manageModel(true); });
    on(a.modelDelete, [this] { manageModel(false); });
    on(a.print, [this] {
        finishTyping();
        const platform::PrintTable table = individualTable(m_editing);
        const QDateTime time = QDateTime::currentDateTime();
        platform::preview({table.title,
                           [table, time](QPagedPaintDevice& device) {
                               platform::NoProgression silent;
                               platform::TablePrinter(table, time).print(device, silent);
                           }},
                          m_around.dialogues, this);
    });
    on(a.previousValue, [this] { copyPreviousValue(); });
    on(a.openList, [this] {
        if (FieldControl* control = m_pane->currentControl())
            control->openList();
    });
    on(a.otherPane, [this] {
        if (m_tree->hasFocus())
            m_pane->focusFirst();
        else
            m_tree->setFocus(Qt::ShortcutFocusReason);
    });
    for (QAction* mode : {a.modeVertical, a.modeCondensed, a.modeSingle})
        on(mode, [this, mode] { setMode(mode); });
    connect(a.addMenu, &QMenu::aboutToShow, this, &RecordEditorWindow::fillAddMenu);
    connect(a.refreshMenu, &QMenu::aboutToShow, this, &RecordEditorWindow::fillRefreshMenu);
    m_tree->addActions({a.add, a.addMenu->menuAction(), a.addSame, a.parent, a.move, a.lock, a.remove});
}

// --- What is shown -------------------------------------------------------------------------------

FormLayout RecordEditorWindow::layoutOfMode() const
{
    if (m_actions->modeVertical->isChecked())
        return FormLayout::Above;
    return m_actions->modeCondensed->isChecked() ? FormLayout::Condensed : FormLayout::Beside;
}

FormSection RecordEditorWindow::section(EditedRecord& record, bool titled)
{
    FormSection section;
    section.title = titled ? m_editing.name(record) : QString();
    section.heading = m_editing.heading(record);
    section.rows = m_editing.rows(record);
    m_shown << record.key;
    return section;
}

QList<FormSection> RecordEditorWindow::sections()
{
    m_shown.clear();
    EditedRecord* current = m_editing.current();
    if (!current)
        return {};
    if (m_actions->modeSingle->isChecked())
        return {section(*current, true)};
    QList<FormSection> list;
    const QList<EditedRecord*> branch = m_editing.branch(*current);
    for (EditedRecord* record : branch.first(std::min(branch.size(), mostSections)))
        list << section(*record, true);
    if (branch.size() > mostSections)
        list << FormSection{u"… et "_s + QString::number(branch.size() - mostSections) + u" autres enregistrements"_s, {}, {}};
    return list;
}

void RecordEditorWindow::showCurrent()
{
    m_stack->setCurrentWidget(m_pane);
    const FieldControl* left = m_pane->currentControl();
    const EditedRecord* current = m_editing.current();
    // After a save or a reading anew the hand stays where it is.
    const bool same = std::exchange(m_current, current) == current;
    const QString column = same && left ? left->objectName() : QString();
    m_pane->show(sections(), layoutOfMode());
    if (current)
        m_tree->showNode(m_editing.node(current->key));
    if (current && !m_fromTree && isVisible())
        focusColumn(*m_editing.current(), column);
    updateState();
    m_draft->touch();
}

/// The first field that can be edited, where the column is none that is shown.
void RecordEditorWindow::focusColumn(EditedRecord& record, const QString& column)
{
    const Cl_Editions& form = m_editing.form(record);
    const Cl_Edition* field = column.isEmpty() ? nullptr : form.Item(form.Index(column));
    if (!field || !m_pane->focusField(*field))
        m_pane->focusFirst();
}

void RecordEditorWindow::showNode(const QModelIndex& index)
{
    const EditNode& node = *m_model->nodeAt(index);
    const QScopedValueRollback fromTree(m_fromTree, true);
    if (node.kind == EditNode::Kind::Help) {
        m_help->setPlainText(m_editing.help());
        m_stack->setCurrentWidget(m_help);
    } else if (node.kind == EditNode::Kind::Record && node.record != m_editing.current()) {
        finishTyping();
        m_editing.select(node.key);
    } else {
        m_stack->setCurrentWidget(m_pane);
    }
}

void RecordEditorWindow::activate(const QModelIndex& index)
{
    const EditNode& node = *m_model->nodeAt(index);
    if (node.kind == EditNode::Kind::New)
        m_editing.add(node.module, node.record);
    else if (node.kind == EditNode::Kind::Record)
        m_pane->focusFirst();
    else
        m_tree->setExpanded(index, !m_tree->isExpanded(index));
}

EditedRecord* RecordEditorWindow::recordOf(const Cl_Edition& field) const
{
    for (const QString& key : m_shown) {
        EditedRecord* record = m_editing.record(key);
        if (!record || !record->form)
            continue;
        for (const auto& one : *record->form) {
            if (one.get() == &field)
                return record;
        }
    }
    return nullptr;
}

void RecordEditorWindow::updateState()
{
    EditorActions& a = *m_actions;
    const EditedRecord* current = m_editing.current();
    const EditedRecord* root = m_editing.individual();
    const bool open = current != nullptr;
    const bool writable = open && !current->locked;
    const FieldControl* control = m_pane->currentControl();
    const bool toSave = m_editing.ToSave();
    a.save->setEnabled(toSave);
    a.addMenu->setEnabled(open);
    a.add->setEnabled(open);
    a.addSame->setEnabled(open && m_editing.canAdd(current->module));
    a.addCopy->setEnabled(a.addSame->isEnabled());
    a.remove->setEnabled(open);
    a.lock->setEnabled(open);
    a.lock->setChecked(open && current->locked);
    a.lock->setText(open && current->locked ? u"Dé&verrouiller"_s : u"&Verrouiller"_s);
    a.parent->setEnabled(open && current != root);
    a.move->setEnabled(writable && current != root);
    a.field->setEnabled(writable && control);
    a.record->setEnabled(open);
    a.indiv->setEnabled(open);
    for (QAction* wizard : {a.wzvalid, a.wznull, a.wztabs, a.modelLoad})
        wizard->setEnabled(writable);
    for (QAction* model : {a.modelSave, a.modelRename, a.modelDelete})
        model->setEnabled(open);
    a.previousValue->setEnabled(writable && control);
    a.openList->setEnabled(control);
    a.prev->setEnabled(m_editing.canGo(-1));
    a.suiv->setEnabled(m_editing.canGo(1));
    a.oprev->setEnabled(m_editing.canGoOther(-1));
    a.osuiv->setEnabled(m_editing.canGoOther(1));
    a.list->setEnabled(!m_editing.listText().isEmpty());
    m_place->setText(m_editing.listText());
    showPictures();
    if (m_tabs->currentWidget() == m_object)
        showObject();
    const QString what = root ? m_editing.nodeCaption(*m_editing.node(root->key)) : m_editing.caption();
    setWindowTitle(what + u"[*]"_s + (m_around.project.isEmpty() ? QString() : u" - "_s + m_around.project));
    setWindowModified(toSave);
}

void RecordEditorWindow::showObject()
{
    if (m_held->isHolding())
        return;
    const EditedRecord* current = m_editing.current();
    m_object->setPlainText(current ? m_editing.about(*current) : QString());
}

void RecordEditorWindow::setMode(QAction* mode)
{
    finishTyping();
    mode->setChecked(true);
    showCurrent();
}

// --- Commands ------------------------------------------------------------------------------------

void RecordEditorWindow::finishTyping()
{
    if (FieldControl* control = m_pane->currentControl())
        control->finish();
}

void RecordEditorWindow::takeFiles(Cl_Edition& field, const QStringList& files)
{
    if (EditedRecord* record = recordOf(field))
        m_editing.addFiles(*record, field.champ(), m_around.pictureNames ? m_around.pictureNames(files) : files);
}

/// Of the module of the node chosen: under the record that a group stands under, beside a record.
void RecordEditorWindow::addAtNode()
{
    finishTyping();
    const QModelIndex index = m_tree->currentIndex();
    const EditNode* node = index.isValid() ? m_model->nodeAt(index) : nullptr;
    const bool inGroup = node && (node->kind == EditNode::Kind::Group || node->kind == EditNode::Kind::New);
    if (inGroup)
        m_editing.add(node->module, node->record);
    else
        m_editing.addAnother(false);
}

void RecordEditorWindow::fillAddMenu()
{
    QMenu& menu = *m_actions->addMenu;
    menu.clear();
    for (const QString& module : m_editing.modules()) {
        QAction* action = menu.addAction(m_around.icon ? m_around.icon(module) : QIcon(),
                                         m_editing.moduleLabel(module).replace(u'&', u"&&"_s));
        action->setObjectName(u"add-"_s + module);
        action->setEnabled(m_editing.canAdd(module));
        connect(action, &QAction::triggered, this, [this, module] {
            finishTyping();
            m_editing.add(module, m_editing.current());
        });
    }
}

void RecordEditorWindow::fillRefreshMenu()
{
    const FieldControl* control = m_pane->currentControl();
    m_actions->field->setText(m_editing.refreshText(RefreshScope::Field, control ? control->ClParent() : nullptr));
    m_actions->record->setText(m_editing.refreshText(RefreshScope::Record));
    m_actions->indiv->setText(m_editing.refreshText(RefreshScope::All));
}

/// The keyboard's way of moving a node onto another one.
void RecordEditorWindow::chooseParent()
{
    EditedRecord* moved = m_editing.current();
    if (!moved)
        return;
    QStringList targets;
    platform::Choice choice{u"Changement de Relation"_s, u"Sélectionner le nouveau parent"_s, u"Enregistrement"_s, {}, false};
    for (const EditedRecord* target : m_editing.saved()) {
        if (!m_editing.canMove(*moved, target->key))
            continue;
        targets << target->key;
        choice.items << m_editing.moduleLabel(target->module) + u' ' + m_editing.nodeCaption(*m_editing.node(target->key));
    }
    const auto chosen = targets.isEmpty() ? std::nullopt : m_around.dialogues.choose(choice);
    if (chosen && !chosen->isEmpty())
        m_editing.changeParent(*moved, targets.at(chosen->first()));
}

void RecordEditorWindow::manageModel(bool rename)
{
    const QList<data::PropertyObject> models = m_editing.models();
    platform::Choice choice{u"Modèle"_s, rename ? u"Sélectionnez le modèle à renommer"_s : u"Sélectionnez le modèle à supprimer"_s,
                            u"Nom du Modèle"_s, {}, false};
    for (const data::PropertyObject& model : models)
        choice.items << model.name;
    const auto chosen = models.isEmpty() ? std::nullopt : m_around.dialogues.choose(choice);
    if (!chosen || chosen->isEmpty())
        return;
    const int id = models.at(chosen->first()).id;
    rename ? m_editing.CLGabarit_Edit(id) : m_editing.CLGabarit_Delete(id);
}

void RecordEditorWindow::copyPreviousValue()
{
    FieldControl* control = m_pane->currentControl();
    Cl_Edition* field = control ? control->ClParent() : nullptr;
    const EditedRecord* record = field ? recordOf(*field) : nullptr;
    if (!record)
        return;
    control->setValue(m_editing.previousValue(*record, *field));
}

// --- The window ----------------------------------------------------------------------------------

bool RecordEditorWindow::EditItems(const QString& path)
{
    const bool opened = m_editing.EditItems(path);
    if (!opened && !m_editing.isOpen())
        return false;
    QWidget::show();
    raise();
    activateWindow();
    if (opened)
        m_pane->focusFirst();
    return opened;
}

void RecordEditorWindow::setAway(bool away)
{
    m_editing.setAway(away);
    m_held->hold(away);
    if (away)
        m_patience.start();
    else if (std::exchange(m_waiting, false))
        statusBar()->clearMessage();
    if (!away)
        m_patience.stop();
    if (!away)
        m_tree->viewport()->update(); // with the texts that could not be read
}

bool RecordEditorWindow::offerDraft()
{
    const QJsonObject kept = m_draft->kept();
    if (kept.isEmpty())
        return false;
    using platform::Answer;
    const Answer answer = m_around.dialogues.ask(
        {u"Des saisies qui n'avaient pas été enregistrées ont été retrouvées.\nVoulez-vous les reprendre ?\n\n"
         "Non les efface ; Annuler les garde pour la prochaine ouverture."_s,
         m_editing.caption(), platform::BoxIcon::Question, platform::BoxButtons::YesNoCancel});
    if (answer == Answer::No)
        m_draft->forget();
    if (answer != Answer::Yes)
        return false;
    if (!m_editing.restoreDraft(kept)) {
        m_around.dialogues.tell(u"Les enregistrements concernés n'existent plus : la saisie reste dans le fichier\n"_s
                                    + m_around.draftFile,
                                m_editing.caption(), platform::BoxIcon::Warning);
        return false;
    }
    m_draft->takeUp();
    QWidget::show();
    m_pane->focusFirst();
    return true;
}

void RecordEditorWindow::closeEvent(QCloseEvent* event)
{
    finishTyping();
    if (!m_editing.close()) {
        event->ignore();
        return;
    }
    m_draft->discard();
    savePlaces();
    event->accept();
}

void RecordEditorWindow::restorePlaces()
{
    const auto read = [this](const QString& key) { return m_around.remembered ? m_around.remembered(key) : QVariant(); };
    if (!restoreGeometry(read(geometryKey).toByteArray()))
        resize(1160, 760);
    if (!m_splitter->restoreState(read(splitterKey).toByteArray()))
        m_splitter->setSizes({370, 790});
    for (QAction* mode : {m_actions->modeVertical, m_actions->modeCondensed, m_actions->modeSingle}) {
        if (mode->objectName() == read(modeKey).toString())
            mode->setChecked(true);
    }
}

void RecordEditorWindow::savePlaces()
{
    if (!m_around.remember)
        return;
    m_around.remember(geometryKey, saveGeometry());
    m_around.remember(splitterKey, m_splitter->saveState());
    for (const QAction* mode : {m_actions->modeVertical, m_actions->modeCondensed, m_actions->modeSingle}) {
        if (mode->isChecked())
            m_around.remember(modeKey, mode->objectName());
    }
}

} // namespace editing
