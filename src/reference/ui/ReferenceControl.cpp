#include "reference/ui/ReferenceControl.h"

#include "platform/ui/EmptyHint.h"
#include "platform/ui/Keyboard.h"
#include "platform/ui/TaskRunner.h"
#include "reference/ui/LinksMenu.h"
#include "reference/ui/ReferenceWorld.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QToolButton>

namespace reference {

using namespace Qt::StringLiterals;

ReferenceControl::ReferenceControl(std::shared_ptr<ReferenceWorld> world, int type, QWidget* parent)
    : QWidget(parent), m_world(std::move(world)), m_type(type), m_find(new FindLine(m_world, type, this)),
      m_bar(new QToolBar(this)), m_addMenu(new QMenu(this)), m_supMenu(new QMenu(u"A&utres commandes"_s, this)),
      m_links(makeLinksMenu(m_world, type, [this] { return currentId(); }, this))
{
    m_bar->setObjectName(u"barre"_s);
    m_bar->setAccessibleName(u"Commandes de la liste"_s);
    m_bar->setIconSize({18, 18});
    m_addMenu->setObjectName(u"menuAdd"_s);
    m_supMenu->setObjectName(u"mnusup"_s);
    m_supMenu->setIcon(QIcon::fromTheme(u"application-menu"_s));
    connect(m_addMenu, &QMenu::aboutToShow, this, [this] {
        m_addMenu->clear();
        fillAddMenu(*m_addMenu);
    });
    connect(m_supMenu, &QMenu::aboutToShow, this, [this] {
        m_supMenu->clear();
        fillFurther(*m_supMenu);
    });
    connect(m_find, &FindLine::found, this, [this](qint32 id) {
        this->world().whenHere(this, [this, id] {
            if (showRow(id))
                view().setFocus(Qt::OtherFocusReason);
        });
    });
    connect(m_find, &FindLine::givenUp, this, [this] { view().setFocus(Qt::OtherFocusReason); });
    makeCommand(u"find"_s, u"edit-find"_s, u"&Rechercher"_s, u"Chercher un nom par son début"_s, [this] { find(); }, u"Ctrl+F"_s);
    makeCommand(u"add"_s, u"list-add"_s, u"&Ajouter…"_s, u"Ajouter à la liste"_s, [this] { runAdd(); }, u"Ctrl+N"_s);
    makeCommand(u"edit"_s, u"document-edit"_s, u"&Modifier"_s, u"Modifier la ligne courante"_s,
                [this] { Q_EMIT editWanted(currentId()); }, u"F2"_s);
    makeCommand(u"delete"_s, u"edit-delete"_s, u"&Supprimer…"_s, u"Supprimer les lignes sélectionnées"_s,
                [this] { removeSelected(); }, u"Del"_s);
    makeCommand(u"copy"_s, u"edit-copy"_s, u"&Copier"_s, u"Copier les noms sélectionnés"_s, [this] { copy(); }, u"Ctrl+C"_s);
    makeCommand(u"individuals"_s, u"view-list-details"_s, u"Montrer les &individus"_s,
                u"Montrer les individus qui s'y rapportent"_s, [this] { showIndividuals(); });
    if (m_world->runner)
        connect(m_world->runner, &platform::TaskRunner::finished, this, [this] { databaseBack(); });
}

QAction* ReferenceControl::makeCommand(const QString& key, const QString& icon, const QString& text, const QString& tip,
                                       const std::function<void()>& run, const QString& keys)
{
    auto* action = new QAction(QIcon::fromTheme(icon), text, this);
    action->setObjectName(key);
    action->setStatusTip(tip);
    action->setToolTip(keys.isEmpty() ? tip : tip + u" ("_s + QKeySequence(keys).toString(QKeySequence::NativeText) + u')');
    // Shown with the text; the view hands the keys over itself, since the main window knows some of them too.
    action->setShortcut(QKeySequence(keys));
    action->setShortcutContext(Qt::WidgetShortcut);
    connect(action, &QAction::triggered, this, [this, run] { m_world->whenHere(this, run); });
    m_commands << action;
    return action;
}

QAction* ReferenceControl::command(const QString& key) const
{
    for (QAction* action : m_commands) {
        if (action->objectName() == key)
            return action;
    }
    return nullptr;
}

void ReferenceControl::arrange()
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(m_find);
    layout->addWidget(m_bar);
    layout->addWidget(&view(), 1);
    platform::forwardFocus(*this, view());
    for (const QString& key : {u"add"_s, u"edit"_s, u"delete"_s})
        m_bar->addAction(command(key));
    QMenu probe;
    fillAddMenu(probe);
    if (!probe.isEmpty()) {
        auto* button = static_cast<QToolButton*>(m_bar->widgetForAction(command(u"add"_s)));
        button->setMenu(m_addMenu);
        button->setPopupMode(QToolButton::MenuButtonPopup);
    }
    auto* links = new QToolButton(m_bar);
    links->setObjectName(u"liens"_s);
    links->setIcon(m_links->icon());
    links->setText(u"Liens"_s);
    links->setToolTip(u"Ouvrir une page sur la ligne courante"_s);
    links->setMenu(m_links);
    links->setPopupMode(QToolButton::InstantPopup);
    m_bar->addWidget(links);
    auto* sup = new QToolButton(m_bar);
    sup->setObjectName(u"sup"_s);
    sup->setIcon(m_supMenu->icon());
    sup->setText(u"Autres commandes"_s);
    sup->setToolTip(u"Autres commandes"_s);
    sup->setMenu(m_supMenu);
    sup->setPopupMode(QToolButton::InstantPopup);
    m_bar->addWidget(sup);
    platform::tabAlong({m_find, links, sup, &view()});
    view().setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&view(), &QWidget::customContextMenuRequested, this, &ReferenceControl::showMenu);
    view().installEventFilter(this);
    connect(this, &ReferenceControl::selectionChanged, this, &ReferenceControl::updateCommands);
    connect(this, &ReferenceControl::rowChosen, this, &ReferenceControl::updateCommands);
    new platform::EmptyHint(m_world->readOnly ? u"La liste est vide."_s
                                              : u"La liste est encore vide.\nCtrl+N y ajoute une ligne."_s,
                            view());
    updateCommands();
}

bool ReferenceControl::isPossible(const QString& key) const
{
    if (key == u"add")
        return !m_world->readOnly;
    if (key == u"delete")
        return !m_world->readOnly && !selectedIds().isEmpty();
    if (key == u"edit" || key == u"individuals")
        return currentId() > 0;
    return key != u"copy" || !selectedIds().isEmpty();
}

void ReferenceControl::updateCommands()
{
    for (QAction* action : std::as_const(m_commands))
        action->setEnabled(isPossible(action->objectName()));
}

// --- Commands --------------------------------------------------------------------------------------

void ReferenceControl::find()
{
    m_find->setFocus(Qt::ShortcutFocusReason);
    m_find->selectAll();
}

void ReferenceControl::copy()
{
    if (!selectedIds().isEmpty())
        QGuiApplication::clipboard()->setText(selectedNames().join(u'\n'));
}

void ReferenceControl::runAdd()
{
    if (!m_world->readOnly && (!mayLeave || mayLeave()))
        add();
}

qint32 ReferenceControl::added(const std::function<bool()>& work)
{
    qint32 id = 0;
    const auto told = connect(&m_world->list(m_type), &ReferenceList::Change, this, [&id](qint32 changed) { id = changed; });
    const bool done = work();
    disconnect(told);
    return done ? id : 0;
}

void ReferenceControl::showAdded(qint32 id)
{
    if (id <= 0)
        return;
    m_world->written(m_world->table(m_type));
    showRow(id);
    view().setFocus(Qt::OtherFocusReason);
}

void ReferenceControl::removeSelected()
{
    const QList<qint32> ids = selectedIds();
    if (ids.isEmpty() || (mayLeave && !mayLeave()) || !confirmDelete(ids))
        return;
    m_world->workLong(u"Suppression"_s, [this, &ids] { deleteRows(ids); });
    m_world->written(m_world->table(m_type));
}

void ReferenceControl::showIndividuals()
{
    const qint32 id = currentId();
    const QString name = m_world->name(m_type, id);
    try {
        m_world->showIndividuals(name, m_world->referring.individualsBelow(m_type, id));
    } catch (const jet::Error& error) {
        m_world->dialogues.tell(error.description(), name, platform::BoxIcon::Stop);
    }
}

// --- Menus and keys --------------------------------------------------------------------------------

void ReferenceControl::fillFurther(QMenu& menu)
{
    for (const QString& key : further())
        menu.addAction(command(key));
    menu.addSeparator();
    menu.addMenu(m_links);
}

void ReferenceControl::showMenu(const QPoint& position)
{
    auto* menu = new QMenu(this);
    menu->setObjectName(u"menuContext"_s);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QMenu probe;
    fillAddMenu(probe);
    if (probe.isEmpty()) {
        menu->addAction(command(u"add"_s));
    } else {
        QMenu* add = menu->addMenu(command(u"add"_s)->icon(), u"&Ajouter"_s);
        add->setEnabled(!m_world->readOnly);
        fillAddMenu(*add);
    }
    menu->addActions({command(u"edit"_s), command(u"copy"_s), command(u"delete"_s)});
    menu->addSeparator();
    menu->addMenu(m_supMenu);
    menu->popup(view().viewport()->mapToGlobal(position));
}

/// Runs the command of a key; with `only` says whether there is one.
bool ReferenceControl::handleKey(const QKeyEvent& key, bool only)
{
    const QKeySequence pressed(key.keyCombination());
    for (QAction* action : std::as_const(m_commands)) {
        if (action->shortcut().isEmpty() || action->shortcut() != pressed)
            continue;
        if (!only && action->isEnabled())
            action->trigger();
        return true;
    }
    return false;
}

bool ReferenceControl::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == &view() && event->type() == QEvent::ShortcutOverride) {
        // Before the menus of the window, which know "Ctrl+N" for a new project.
        if (handleKey(*static_cast<QKeyEvent*>(event), true)) {
            event->accept();
            return true;
        }
    } else if (watched == &view() && event->type() == QEvent::KeyPress) {
        const auto& key = *static_cast<QKeyEvent*>(event);
        if (handleKey(key, false))
            return true;
        if ((key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter) && currentId() > 0) {
            Q_EMIT rowActivated(currentId());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace reference
