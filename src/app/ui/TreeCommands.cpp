#include "app/ui/TreeCommands.h"

#include "app/ui/Icons.h"

namespace app {

using namespace Qt::StringLiterals;

TreeCommands::TreeCommands(QObject* parent) : QObject(parent)
{
    using enum NodeKind;
    m_openModule = add(u"openModule"_s, u"table"_s, u"&Ouvrir le Module "_s, {Module, Taxa, Localities, Collectors});
    add(u"addToModule"_s, u"list-add"_s, u"&Ajouter dans le Module "_s, {Module});
    add(u"newModel"_s, u"document-new"_s, u"Créer un nouveau &Modèle"_s, {Module, Model, Group});
    add(u"addFromModel"_s, u"list-add"_s, u"Ajouter &depuis le Modèle"_s, {Model});
    add(u"deleteModel"_s, u"edit-delete"_s, u"&Supprimer le Modèle"_s, {Model});
    add(u"openQuery"_s, u"view-filter"_s, u"Ouvrir la &Requête "_s, {Query});
    add(u"newQuery"_s, u"document-new"_s, u"&Créer une nouvelle Requête"_s, {Module, Query, Group});
    add(u"deleteQuery"_s, u"edit-delete"_s, u"Supprimer la Re&quête "_s, {Query});
    add(u"openSelection"_s, u"view-list-details"_s, u"Ouvrir la Sélection &flottante"_s, {Selection});
    m_emptySelection =
        add(u"emptySelection"_s, u"edit-clear"_s, u"&Vider la Sélection flottante"_s, {Selection});

    connect(m_openModule, &QAction::triggered, this, [this] { Q_EMIT openRecords(m_key); });
    connect(m_emptySelection, &QAction::triggered, this,
            [this] { Q_EMIT emptySelection(m_key.chopped(u"-self"_s.size())); });
    choose(nullptr, None);
}

QAction* TreeCommands::add(const QString& name, const QString& icon, const QString& text,
                           const QList<NodeKind>& kinds)
{
    auto* action = new QAction(themeIcon(icon), text, this);
    action->setObjectName(name);
    action->setEnabled(false);
    m_commands << Command{action, text, kinds};
    m_all << action;
    return action;
}

void TreeCommands::choose(const TreeNode* node, NodeKind kind)
{
    m_key = node ? node->key : QString();
    m_kind = kind;
    const QString name = node ? QString(node->text).replace(u'&', u"&&"_s) : QString();
    for (const Command& command : std::as_const(m_commands)) {
        const bool fits = command.kinds.contains(kind);
        const bool named = command.text.endsWith(u' ');
        command.action->setText(named ? (fits ? command.text + name : command.text.trimmed()) : command.text);
    }
    m_openModule->setEnabled(m_commands.first().kinds.contains(kind));
    m_emptySelection->setEnabled(kind == NodeKind::Selection && node && !node->text.endsWith(u"< 0 >"_s));
}

QList<QAction*> TreeCommands::fitting() const
{
    QList<QAction*> actions;
    for (const Command& command : m_commands) {
        if (command.kinds.contains(m_kind))
            actions << command.action;
    }
    // A group serves one kind of object only.
    if (m_kind == NodeKind::Group)
        actions.removeIf([this](const QAction* action) {
            return !(m_key == u"Requête" && action->objectName() == u"newQuery")
                   && !(m_key == u"Modèle" && action->objectName() == u"newModel");
        });
    return actions;
}

bool TreeCommands::runDefault()
{
    if (!m_openModule->isEnabled())
        return false;
    m_openModule->trigger();
    return true;
}

} // namespace app
