#include "query/ui/QueryActions.h"

#include <QIcon>
#include <QKeySequence>

namespace query {

using namespace Qt::StringLiterals;

QueryActions::QueryActions(QObject* parent) : QObject(parent)
{
    add(u"execute"_s, u"media-playback-start"_s, u"E&xécuter"_s, u"Exécuter la requête"_s, u"Ctrl+Return"_s);
    add(u"save"_s, u"document-save"_s, u"Enre&gistrer"_s, u"Enregistrer la requête dans le projet"_s);
    add(u"rename"_s, u"edit-rename"_s, u"&Renommer…"_s, u"Donner un autre nom à la requête enregistrée"_s);
    add(u"definition"_s, u"view-filter"_s, u"&Définition"_s, u"Montrer ou cacher les champs et les critères"_s,
        u"F8"_s);
    (*this)[u"definition"_s]->setCheckable(true);
    (*this)[u"definition"_s]->setChecked(true);
    add(u"stat"_s, u"office-chart-bar"_s, u"S&tatistiques"_s, u"Statistiques de la requête"_s);
    add(u"replace"_s, u"edit-find-replace"_s, u"Re&mplacer…"_s,
        u"Donner de nouvelles valeurs aux enregistrements sélectionnés, ou à tout le module"_s, u"Ctrl+H"_s);
    add(u"export"_s, u"document-export"_s, u"E&xporter…"_s, u"Écrire le résultat dans un fichier CSV"_s);
    add(u"toself"_s, u"list-add"_s, u"Ajouter à la &sélection flottante"_s,
        u"Ajouter les enregistrements sélectionnés à la sélection flottante du module"_s);
    add(u"open"_s, u"document-edit"_s, u"&Ouvrir l'enregistrement"_s, u"Modifier les enregistrements sélectionnés"_s);
    add(u"selectinverse"_s, u"edit-select-invert"_s, u"&Inverser la sélection"_s, u"Inverser la sélection"_s);
    add(u"selectnone"_s, u"edit-select-none"_s, u"Ne rien sélectionner"_s, u"Ne rien sélectionner"_s);
    add(u"copycell"_s, u"edit-copy"_s, u"Copier la &cellule"_s, u"Copier la cellule"_s);
    add(u"undo"_s, u"edit-undo"_s, u"Ann&uler"_s, u"Annuler le dernier changement de la requête"_s, u"Ctrl+Z"_s);
    add(u"redo"_s, u"edit-redo"_s, u"Ré&tablir"_s, u"Rétablir le changement annulé"_s, u"Ctrl+Shift+Z"_s);
    addCriteria();
}

void QueryActions::addCriteria()
{
    add(u"add"_s, u"list-add"_s, u"&Ajouter un critère"_s, u"Ajouter un critère sur le champ choisi dans l'arbre"_s);
    add(u"addchild"_s, u"go-down"_s, u"Ajouter dans un &groupe"_s,
        u"Ajouter un critère sous celui-ci : ils forment un groupe (entre parenthèses)"_s);
    add(u"addbrother"_s, u"list-add"_s, u"Ajouter à la &suite"_s, u"Ajouter un critère derrière celui-ci"_s);
    add(u"addempty"_s, u"format-list-unordered"_s, u"ou &vide"_s,
        u"Accepter aussi les enregistrements dont le champ est vide"_s);
    add(u"delete"_s, u"list-remove"_s, u"&Supprimer"_s, u"Supprimer la ligne et celles de son groupe (Suppr)"_s);
    add(u"up"_s, u"go-up"_s, u"&Monter"_s, u"Monter la ligne (Alt+↑)"_s);
    add(u"down"_s, u"go-down"_s, u"&Descendre"_s, u"Descendre la ligne (Alt+↓)"_s);
    add(u"insertquery"_s, u"view-filter"_s, u"Critères d'autres &requêtes…"_s,
        u"Insérer les critères d'autres requêtes du module"_s);
    add(u"insertselect"_s, u"view-list-details"_s, u"La sélection &flottante"_s,
        u"Limiter aux enregistrements de la sélection flottante"_s);
    add(u"insertbase"_s, u"document-open"_s, u"Critères depuis une autre &base…"_s,
        u"Insérer les critères des requêtes d'un autre projet"_s);
    add(u"insertids"_s, u"view-list-text"_s, u"Une série d'&ID…"_s, u"Limiter à une série d'identifiants"_s);
    add(u"insertgps"_s, u"select-rectangular"_s, u"Un rectangle &GPS…"_s,
        u"Limiter aux localités d'un rectangle de coordonnées"_s);
}

void QueryActions::add(const QString& name, const QString& icon, const QString& text, const QString& tip,
                       const QString& shortcut)
{
    auto* action = new QAction(QIcon::fromTheme(icon), text, this);
    action->setObjectName(u"requete-"_s + name);
    action->setToolTip(shortcut.isEmpty() ? tip : tip + u" ("_s + shortcut + u')');
    action->setStatusTip(tip);
    if (!shortcut.isEmpty()) {
        action->setShortcut(QKeySequence(shortcut));
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    }
    m_actions.insert(name, action);
}

QAction* QueryActions::operator[](const QString& name) const
{
    Q_ASSERT(m_actions.contains(name));
    return m_actions.value(name);
}

void QueryActions::on(const QString& name, QObject* receiver, std::function<void()> work) const
{
    connect((*this)[name], &QAction::triggered, receiver, [work = std::move(work)] { work(); });
}

QMenu* QueryActions::insertMenu(QWidget* parent) const
{
    auto* menu = new QMenu(u"&Insérer"_s, parent);
    menu->setIcon(QIcon::fromTheme(u"insert-text"_s));
    for (const QString& name :
         {u"insertquery"_s, u"insertselect"_s, u"insertbase"_s, u"insertids"_s, u"insertgps"_s})
        menu->addAction((*this)[name]);
    return menu;
}

} // namespace query
