#include "editing/ui/EditorActions.h"

#include <QIcon>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>

namespace editing {

using namespace Qt::StringLiterals;

EditorActions::EditorActions(QMainWindow& window) : QObject(&window)
{
    addMenu = new QMenu(&window);
    refreshMenu = new QMenu(&window);
    wizardMenu = new QMenu(&window);
    makeAll();
    fillMenus(window);
    fillBar(window);
}

QAction* EditorActions::make(const QString& key, const QString& icon, const QString& text,
                             const QList<QKeySequence>& keys)
{
    auto* action = new QAction(QIcon::fromTheme(icon), text, this);
    action->setObjectName(key);
    action->setShortcuts(keys);
    return action;
}

void EditorActions::makeAll()
{
    const auto key = [](const QString& text) { return QList<QKeySequence>{QKeySequence(text)}; };
    add = make(u"add"_s, u"list-add"_s, u"&Ajouter sous le nœud choisi"_s, key(u"Ctrl+Ins"_s));
    addSame = make(u"addSame"_s, u"document-new"_s, u"Ajouter un enregistrement du même &Module"_s, key(u"Ctrl+N"_s));
    addCopy = make(u"addCopy"_s, u"edit-copy"_s, u"Ajouter avec les mêmes va&leurs"_s, key(u"Ctrl+Shift+N"_s));
    remove = make(u"delete"_s, u"edit-delete"_s, u"&Supprimer l'enregistrement"_s, key(u"Ctrl+Del"_s));
    lock = make(u"lock"_s, u"object-locked"_s, u"&Verrouiller"_s, key(u"Ctrl+L"_s));
    lock->setCheckable(true);
    parent = make(u"parent"_s, u"go-up"_s, u"Ouvrir le pa&rent"_s, key(u"Alt+Up"_s));
    move = make(u"changeParent"_s, u"edit-move"_s, u"Cha&nger de parent…"_s, key(u"Ctrl+Shift+P"_s));
    save = make(u"save"_s, u"document-save"_s, u"&Enregistrer"_s, key(u"Ctrl+S"_s));
    print = make(u"print"_s, u"document-print"_s, u"&Imprimer…"_s, key(u"Ctrl+P"_s));
    close = make(u"close"_s, u"window-close"_s, u"&Fermer"_s, key(u"Ctrl+W"_s));
    field = make(u"champ"_s, {}, u"Le &champ"_s);
    record = make(u"record"_s, {}, u"Le &tableau"_s, key(u"F5"_s));
    indiv = make(u"indiv"_s, {}, u"Tous &les tableaux"_s);
    wzvalid = make(u"wzvalid"_s, {}, u"Champs &en erreur"_s);
    wznull = make(u"wznull"_s, {}, u"Champs &vides"_s);
    wztabs = make(u"wztabs"_s, {}, u"&Tous les champs"_s);
    prev = make(u"prev"_s, u"go-previous"_s, u"Enregistrement &précédent"_s, key(u"Alt+Left"_s));
    suiv = make(u"suiv"_s, u"go-next"_s, u"Enregistrement &suivant"_s, key(u"Alt+Right"_s));
    oprev = make(u"oprev"_s, u"arrow-left-double"_s, u"&Autres : précédent"_s, key(u"Alt+Shift+Left"_s));
    osuiv = make(u"osuiv"_s, u"arrow-right-double"_s, u"A&utres : suivant"_s, key(u"Alt+Shift+Right"_s));
    list = make(u"list"_s, u"view-list-details"_s, u"&Liste des enregistrements…"_s, key(u"Ctrl+G"_s));
    modelSave = make(u"modelSave"_s, u"document-save-as"_s, u"&Enregistrer comme modèle…"_s);
    modelLoad = make(u"modelLoad"_s, u"document-open"_s, u"Appliquer &un modèle…"_s, key(u"Ctrl+M"_s));
    modelRename = make(u"modelRename"_s, u"edit-rename"_s, u"&Renommer un modèle…"_s);
    modelDelete = make(u"modelDelete"_s, u"edit-delete"_s, u"&Supprimer un modèle…"_s);
    previousValue = make(u"previousValue"_s, u"edit-paste"_s, u"Reprendre la valeur &précédente"_s, key(u"F7"_s));
    openList = make(u"openList"_s, {}, u"&Ouvrir la liste du champ"_s);
    openList->setToolTip(u"F2"_s);
    otherPane = make(u"otherPane"_s, {}, u"Arbre ou for&mulaire"_s, key(u"F6"_s));
    auto* modes = new QActionGroup(this);
    const auto mode = [&](const QString& name, const QString& icon, const QString& text, const QString& keys) {
        QAction* action = make(name, icon, text, {QKeySequence(keys)});
        action->setCheckable(true);
        modes->addAction(action);
        return action;
    };
    modeSingle = mode(u"modesinglenode"_s, u"view-list-text"_s, u"&Seulement l'enregistrement"_s, u"Ctrl+1"_s);
    modeVertical = mode(u"modeverticaldisplay"_s, u"view-list-details"_s, u"L'un sous l'&autre"_s, u"Ctrl+2"_s);
    modeCondensed = mode(u"modecondensed"_s, u"view-list-tree"_s, u"&Condensé"_s, u"Ctrl+3"_s);
    modeSingle->setChecked(true);
}

void EditorActions::fillMenus(QMainWindow& window)
{
    QMenuBar* bar = window.menuBar();
    bar->setObjectName(u"menuFiche"_s);
    const auto menu = [&](const QString& name, const QString& text, const QList<QAction*>& actions) {
        QMenu* made = bar->addMenu(text);
        made->setObjectName(name);
        for (QAction* action : actions) {
            if (action)
                made->addAction(action);
            else
                made->addSeparator();
        }
        return made;
    };
    const auto under = [](QMenu* menu, const QString& name, const QString& icon, const QString& text,
                          const QList<QAction*>& actions) {
        menu->setObjectName(name);
        menu->setTitle(text);
        menu->setIcon(QIcon::fromTheme(icon));
        menu->addActions(actions);
        return menu->menuAction();
    };
    QAction* adds = under(addMenu, u"ajouter"_s, u"list-add"_s, u"Ajouter &dans le Module"_s, {});
    QAction* refreshes = under(refreshMenu, u"refresh"_s, u"view-refresh"_s, u"&Recharger"_s, {field, record, indiv});
    QAction* wizards = under(wizardMenu, u"wizard"_s, u"tools-wizard"_s, u"Assis&tant de saisie"_s, {wztabs, wznull, wzvalid});
    menu(u"menuEnregistrement"_s, u"&Enregistrement"_s,
         {add, adds, addSame, addCopy, nullptr, save, refreshes, nullptr, lock, move, remove, nullptr, print, nullptr, close});
    menu(u"menuChamp"_s, u"&Champ"_s, {previousValue, openList, nullptr, wizards});
    menu(u"menuAller"_s, u"&Aller à"_s,
         {prev, suiv, list, nullptr, oprev, osuiv, parent, nullptr, otherPane});
    menu(u"menuModele"_s, u"&Modèle"_s, {modelLoad, modelSave, nullptr, modelRename, modelDelete});
    menu(u"menuAffichage"_s, u"A&ffichage"_s, {modeSingle, modeVertical, modeCondensed});
}

void EditorActions::fillBar(QMainWindow& window)
{
    auto* bar = window.addToolBar(u"Commandes de la fiche"_s);
    bar->setObjectName(u"outilsFiche"_s);
    bar->setMovable(false);
    bar->toggleViewAction()->setObjectName(u"voirOutilsFiche"_s);
    const auto drop = [&](QMenu* menu, const QString& name) {
        auto* button = new QToolButton(bar);
        button->setObjectName(name);
        button->setMenu(menu);
        button->setIcon(menu->icon());
        button->setText(menu->title().remove(u'&'));
        button->setToolTip(menu->title().remove(u'&'));
        button->setAccessibleName(menu->title().remove(u'&'));
        button->setPopupMode(QToolButton::InstantPopup);
        bar->addWidget(button);
        return button;
    };
    bar->addAction(prev);
    bar->addAction(suiv);
    bar->addAction(list);
    bar->addSeparator();
    bar->addAction(save);
    drop(refreshMenu, u"boutonRecharger"_s);
    bar->addSeparator();
    QToolButton* adding = drop(addMenu, u"boutonAjouter"_s);
    adding->setDefaultAction(add);
    adding->setPopupMode(QToolButton::MenuButtonPopup);
    bar->addAction(addSame);
    bar->addAction(remove);
    bar->addAction(lock);
    bar->addAction(parent);
    bar->addAction(oprev);
    bar->addAction(osuiv);
    bar->addSeparator();
    drop(wizardMenu, u"boutonAssistant"_s);
    bar->addAction(modelLoad);
    bar->addSeparator();
    bar->addAction(modeSingle);
    bar->addAction(modeVertical);
    bar->addAction(modeCondensed);
    // Reached by their keys too, though nothing shows them in the bar.
    window.addActions({addCopy, previousValue, otherPane, close});
}

} // namespace editing
