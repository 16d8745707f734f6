#include "app/ui/TreeCommands.h"

#include "app/ui/Icons.h"

namespace app {

using namespace Qt::StringLiterals;

TreeCommands::TreeCommands(QObject* parent) : QObject(parent)
{
    using enum NodeKind;
    add(u"openReference"_s, u"view-list-tree"_s, u"Ouvrir le &navigateur "_s, {Taxa, Localities, Collectors});
    add(u"openModule"_s, u"table"_s, u"&Ouvrir le Module "_s, {Module, Taxa, Localities, Collectors});
    add(u"addToModule"_s, u"list-add"_s, u"&Ajouter dans le Module "_s, {Module});
    add(u"newModel"_s, u"document-new"_s, u"Créer un nouveau &Modèle"_s, {Module, Model, Group});
    add(u"addFromModel"_s, u"list-add"_s, u"Ajouter &depuis le Modèle"_s, {Model});
    add(u"deleteModel"_s, u"edit-delete"_s, u"&Supprimer le Modèle"_s, {Model});
    add(u"openQuery"_s, u"view-filter"_s, u"Ouvrir la &Requête "_s, {Query});
    add(u"newQuery"_s, u"document-new"_s, u"&Créer une nouvelle Requête"_s, {Module, Query, Group});
    add(u"deleteQuery"_s, u"edit-delete"_s, u"Supprimer la Re&quête "_s, {Query});
    add(u"openSelection"_s, u"view-list-details"_s, u"Ouvrir la Sélection &flottante"_s, {Selection});
    add(u"emptySelection"_s, u"edit-clear"_s, u"&Vider la Sélection flottante"_s, {Selection});
    choose(nullptr, None);
}

void TreeCommands::add(const QString& name, const QString& icon, const QString& text, const QList<NodeKind>& kinds)
{
    auto* action = new QAction(themeIcon(icon), text, this);
    action->setObjectName(name);
    action->setEnabled(false);
    const qsizetype place = m_commands.size();
    connect(action, &QAction::triggered, this, [this, place] {
        const TreeNode node = m_node; // the command may load the tree anew
        m_commands.at(place).run(node);
    });
    m_commands << Command{action, text, kinds};
    m_all << action;
}

void TreeCommands::provide(const QString& name, std::function<void(const TreeNode&)> run,
                           std::function<bool(const TreeNode&)> possible)
{
    for (Command& command : m_commands) {
        if (command.action->objectName() == name) {
            command.run = std::move(run);
            command.possible = std::move(possible);
            return refresh();
        }
    }
    Q_ASSERT_X(false, "TreeCommands::provide", qPrintable(name));
}

bool TreeCommands::fits(const Command& command) const
{
    // A group serves one kind of object only.
    if (m_kind == NodeKind::Group && !(m_node.key == u"Requête" && command.kinds.contains(NodeKind::Query))
        && !(m_node.key == u"Modèle" && command.kinds.contains(NodeKind::Model)))
        return false;
    return command.kinds.contains(m_kind);
}

void TreeCommands::choose(const TreeNode* node, NodeKind kind)
{
    m_node = node ? TreeNode{node->key, node->text, node->icon, node->tag, {}} : TreeNode();
    m_kind = kind;
    refresh();
}

void TreeCommands::refresh()
{
    const QString name = QString(m_node.text).replace(u'&', u"&&"_s);
    for (const Command& command : std::as_const(m_commands)) {
        const bool fit = fits(command);
        const bool named = command.text.endsWith(u' ');
        command.action->setText(named ? (fit ? command.text + name : command.text.trimmed()) : command.text);
        command.action->setEnabled(fit && command.run && (!command.possible || command.possible(m_node)));
    }
}

QList<QAction*> TreeCommands::fitting() const
{
    QList<QAction*> actions;
    for (const Command& command : m_commands) {
        if (fits(command))
            actions << command.action;
    }
    return actions;
}

bool TreeCommands::runDefault()
{
    static const QStringList opening{u"openReference"_s, u"openModule"_s, u"addFromModel"_s, u"openQuery"_s, u"openSelection"_s};
    for (const Command& command : std::as_const(m_commands)) {
        if (fits(command) && command.action->isEnabled() && opening.contains(command.action->objectName())) {
            command.action->trigger();
            return true;
        }
    }
    return false;
}

} // namespace app
