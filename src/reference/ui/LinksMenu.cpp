#include "reference/ui/LinksMenu.h"

#include "jet/SqlText.h"
#include "reference/ui/ReferenceWorld.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QToolBar>
#include <QVBoxLayout>

namespace reference {

using namespace Qt::StringLiterals;

namespace {

const QString title = u"Lien vers une base Online"_s;
const QString nameField = u"Nom"_s;
const QString linkField = u"Lien"_s;

QList<data::PropertyObject> linksIn(const ReferenceWorld& world, const QString& kind)
{
    try {
        return world.store.list(kindLiens, kind);
    } catch (const jet::Error& error) {
        world.dialogues.tell(error.description(), title, platform::BoxIcon::Stop);
        return {};
    }
}

QStringList linksOf(const ReferenceWorld& world, const QString& kind)
{
    QStringList names;
    const QList<data::PropertyObject> links = linksIn(world, kind);
    for (const data::PropertyObject& link : links)
        names << link.name;
    return names;
}

/// What a link is made from; empty where there is none, or where it cannot be read, which is said.
QString templateOf(const ReferenceWorld& world, const QString& kind, const QString& name)
{
    try {
        return world.store.value(kindLiens, kind, name).toString();
    } catch (const jet::Error& error) {
        world.dialogues.tell(error.description(), title, platform::BoxIcon::Stop);
        return {};
    }
}

void follow(const ReferenceWorld& world, const QString& kind, const QString& name, qint32 id)
{
    const QString address = world.links.address(kind, templateOf(world, kind, name), id);
    if (!address.isEmpty())
        world.opener.open(address);
}

void fillMenu(QMenu& menu, const std::shared_ptr<ReferenceWorld>& world, int type, const std::function<qint32()>& current)
{
    menu.clear();
    QAction* edit = menu.addAction(QIcon::fromTheme(u"configure"_s), u"&Modifier les liens…"_s);
    edit->setObjectName(u"modifierLiens"_s);
    QObject::connect(edit, &QAction::triggered, &menu, [&menu, world, type] {
        world->whenHere(&menu, [&menu, world, type] {
            auto* dialog = new WizardLinks(world, type, menu.window());
            dialog->setAttribute(Qt::WA_DeleteOnClose);
            dialog->open();
        });
    });
    menu.addSeparator();
    if (world->isAway())
        return;
    const QString kind = ReferenceWorld::linksKind(type);
    for (const QString& name : linksOf(*world, kind)) {
        QAction* link = menu.addAction(QIcon::fromTheme(u"internet-services"_s), QString(name).replace(u'&', u"&&"_s));
        link->setObjectName(u"lien-"_s + name);
        link->setEnabled(current() > 0);
        QObject::connect(link, &QAction::triggered, &menu, [&menu, world, kind, name, current] {
            world->whenHere(&menu, [=] { follow(*world, kind, name, current()); });
        });
    }
}

} // namespace

QMenu* makeLinksMenu(const std::shared_ptr<ReferenceWorld>& world, int type, std::function<qint32()> current, QWidget* parent)
{
    auto* menu = new QMenu(u"&Liens"_s, parent);
    menu->setObjectName(u"menuLiens"_s);
    menu->setIcon(QIcon::fromTheme(u"internet-services"_s));
    QObject::connect(menu, &QMenu::aboutToShow, menu,
                     [menu, world, type, current] { fillMenu(*menu, world, type, current); });
    return menu;
}

// --- The editor ------------------------------------------------------------------------------------

WizardLinks::WizardLinks(std::shared_ptr<ReferenceWorld> world, int type, QWidget* parent)
    : QDialog(parent), m_world(std::move(world)), m_kind(ReferenceWorld::linksKind(type)), m_list(new QListWidget(this))
{
    setObjectName(u"wizardLinks"_s);
    setWindowTitle(title);
    auto* layout = new QVBoxLayout(this);
    auto* bar = new QToolBar(this);
    auto* markers = new QLabel(u"Marques : "_s + markersOf(m_kind), this);
    markers->setObjectName(u"marques"_s);
    markers->setWordWrap(true);
    markers->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_list->setObjectName(u"listeLiens"_s);
    m_list->setAccessibleName(title);
    layout->addWidget(bar);
    layout->addWidget(m_list, 1);
    layout->addWidget(markers);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Close)->setText(u"&Fermer"_s);
    buttons->button(QDialogButtonBox::Close)->setAutoDefault(false);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    const auto command = [&](const QString& key, const QString& icon, const QString& text, const QString& keys,
                             void (WizardLinks::*run)()) {
        QAction* action = bar->addAction(QIcon::fromTheme(icon), text);
        action->setObjectName(key);
        action->setShortcut(QKeySequence(keys));
        action->setEnabled(!m_world->readOnly);
        connect(action, &QAction::triggered, this, [this, run] { m_world->whenHere(this, [this, run] { (this->*run)(); }); });
        return action;
    };
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    command(u"add"_s, u"list-add"_s, u"&Ajouter…"_s, u"Ctrl+N"_s, &WizardLinks::clLinks_Add);
    m_onLink << command(u"edit"_s, u"document-edit"_s, u"&Modifier…"_s, u"F2"_s, &WizardLinks::clLinks_Edit)
             << command(u"delete"_s, u"edit-delete"_s, u"&Supprimer"_s, u"Del"_s, &WizardLinks::clLinks_Delete);
    connect(m_list, &QListWidget::itemActivated, this, [this] { m_onLink.first()->trigger(); });
    resize(460, 320);
    fill({});
}

void WizardLinks::fill(const QString& current)
{
    m_list->clear();
    m_list->addItems(linksOf(*m_world, m_kind));
    for (int row = 0; row < m_list->count(); ++row)
        m_list->item(row)->setToolTip(templateOf(*m_world, m_kind, m_list->item(row)->text()));
    const auto found = m_list->findItems(current, Qt::MatchFixedString);
    m_list->setCurrentRow(found.isEmpty() ? 0 : m_list->row(found.first()));
    for (QAction* action : std::as_const(m_onLink))
        action->setEnabled(!m_world->readOnly && m_list->currentItem());
}

void WizardLinks::clLinks_Add()
{
    edit({});
}

void WizardLinks::clLinks_Edit()
{
    if (m_list->currentItem())
        edit(m_list->currentItem()->text());
}

void WizardLinks::clLinks_Delete()
{
    if (!m_list->currentItem())
        return;
    const QString name = m_list->currentItem()->text();
    const QList<data::PropertyObject> links = linksIn(*m_world, m_kind);
    for (const data::PropertyObject& link : links) {
        if (link.name == name)
            m_world->store.remove(link.id, m_world->dialogues);
    }
    fill({});
}

void WizardLinks::edit(const QString& name)
{
    editing::Cl_Editions form(m_world->context);
    const QVariant link = name.isEmpty() ? QVariant() : QVariant(templateOf(*m_world, m_kind, name));
    form.Add(data::Texte, u"Nom"_s, name.isEmpty() ? QVariant() : QVariant(name), u"Nom du lien dans le menu"_s, nameField,
             false, 0);
    form.Add(data::Texte, u"Lien htpp"_s, link, markersOf(m_kind), linkField, false, 0);
    m_world->form.edit(title, form, [&](editing::Cl_Editions& typed) {
        const QString now = typed.Item(nameField)->value().toString().trimmed();
        if (now.compare(name, Qt::CaseInsensitive) != 0 && linksOf(*m_world, m_kind).contains(now, Qt::CaseInsensitive)) {
            typed.Item(nameField)->setTextError(u"Ce nom existe déjà"_s);
            return false;
        }
        return save(name, now, typed.Item(linkField)->value().toString());
    });
}

bool WizardLinks::save(const QString& before, const QString& name, const QString& link)
{
    try {
        jet::Operation operation(m_world->database, u"Lien"_s);
        if (!before.isEmpty() && before != name)
            m_world->database.Execute(u"DELETE * FROM Propriétés WHERE Objet=\"Liens\" AND Module="_s + jet::texte(m_kind)
                                      + u" AND Nom="_s + jet::texte(before));
        m_world->store.put(kindLiens, m_kind, name, link);
        operation.commit();
    } catch (const jet::Error& error) {
        m_world->dialogues.tell(error.description(), title, platform::BoxIcon::Stop);
        return false;
    }
    fill(name);
    return true;
}

} // namespace reference
