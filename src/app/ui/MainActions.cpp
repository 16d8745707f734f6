#include "app/ui/MainActions.h"

#include "app/ui/Icons.h"
#include "app/ui/ModuleDock.h"

#include <QMainWindow>
#include <QMenuBar>
#include <QToolBar>

namespace app {

using namespace Qt::StringLiterals;

MainActions::MainActions(QObject* parent) : QObject(parent)
{
    // Several standard keys are empty without a desktop theme, so all are given in full.
    makeFileActions();
    makeGridActions();
    makeViewActions();
    makeToolActions();
    manual = add(u"manual"_s, u"help-contents"_s, u"&Manuel"_s, u"Ouvrir le manuel à la page qui convient"_s, u"F1"_s);
    manual->setShortcutContext(Qt::ApplicationShortcut);
    about = add(u"about"_s, u"help-about"_s, u"À &propos de Herbora"_s, u"La version du programme"_s);
    about->setMenuRole(QAction::AboutRole);
}

void MainActions::makeFileActions()
{
    newProject = add(u"new"_s, u"document-new"_s, u"&Nouveau projet…"_s, u"Créer un fichier pour un nouveau projet"_s,
                     u"Ctrl+N"_s);
    newProject->setIconText(u"Nouveau"_s);
    open = add(u"open"_s, u"document-open"_s, u"&Ouvrir un projet…"_s, u"Ouvrir un fichier Herbora (.hbx)"_s,
               u"Ctrl+O"_s);
    open->setIconText(u"Ouvrir"_s);
    saveCopy = add(u"saveCopy"_s, u"document-save-as"_s, u"Enregistrer une &copie…"_s,
                   u"Copier le projet ouvert sous un autre nom"_s, u"Ctrl+Shift+S"_s);
    newDemo = add(u"newDemo"_s, u"document-new-from-template"_s, u"Projet de &démonstration…"_s,
                  u"Créer un projet d'exemple rempli de récoltes réelles"_s);
    closeTab = add(u"closeTab"_s, u"tab-close"_s, u"&Fermer l'onglet"_s, u"Fermer l'onglet affiché"_s, u"Ctrl+W"_s);
    save = add(u"save"_s, u"document-save"_s, u"&Enregistrer"_s, u"Enregistrer ce que l'onglet affiché contient"_s,
               u"Ctrl+S"_s);
    exportRows = add(u"exportRows"_s, u"document-export"_s, u"E&xporter…"_s,
                     u"Écrire dans un fichier ce que l'onglet affiché montre"_s, u"Ctrl+E"_s);
    print = add(u"print"_s, u"document-print"_s, u"&Imprimer…"_s, u"Imprimer ce que l'onglet affiché montre"_s,
                u"Ctrl+P"_s);
    quit = add(u"quit"_s, u"application-exit"_s, u"&Quitter"_s, u"Fermer le projet et quitter Herbora"_s,
               u"Ctrl+Q"_s);
    quit->setMenuRole(QAction::QuitRole);
}

void MainActions::makeGridActions()
{
    copy = add(u"copy"_s, u"edit-copy"_s, u"&Copier"_s, u"Copier les lignes sélectionnées pour un tableur"_s,
               u"Ctrl+C"_s);
    copyWithHeaders = add(u"copyHeaders"_s, u"edit-copy"_s, u"Copier avec les &titres"_s,
                          u"Copier les lignes sélectionnées, précédées des titres des colonnes"_s, u"Ctrl+Shift+C"_s);
    selectAll = add(u"selectAll"_s, u"edit-select-all"_s, u"&Sélectionner tout"_s,
                    u"Sélectionner toutes les lignes"_s, u"Ctrl+A"_s);
    find = add(u"find"_s, u"edit-find"_s, u"&Rechercher"_s, u"Chercher dans l'onglet affiché"_s, u"Ctrl+F"_s);
}

QList<std::pair<QAction*, platform::TabCommand>> MainActions::ofTabs() const
{
    using enum platform::TabCommand;
    return {{copy, Copy}, {copyWithHeaders, CopyWithHeaders}, {selectAll, SelectAll}, {refresh, Refresh},
            {fitColumns, FitColumns}, {save, Save}, {find, Find}, {print, Print}, {exportRows, ExportRows}};
}

void MainActions::makeViewActions()
{
    refresh = add(u"refresh"_s, u"view-refresh"_s, u"Act&ualiser"_s, u"Relire les enregistrements affichés"_s,
                  u"F5"_s);
    fitColumns = add(u"fitColumns"_s, u"zoom-fit-width"_s, u"Ajuster les &colonnes"_s,
                     u"Donner à chaque colonne la largeur de son contenu"_s, u"Ctrl+Shift+L"_s);
    // Backtab is what Tab is with Shift.
    nextTab = add(u"nextTab"_s, u"go-next"_s, u"O&nglet suivant"_s, u"Afficher l'onglet suivant"_s, u"Ctrl+Tab"_s);
    previousTab = add(u"previousTab"_s, u"go-previous"_s, u"On&glet précédent"_s, u"Afficher l'onglet précédent"_s,
                      u"Ctrl+Shift+Backtab"_s);
    expandAll = add(u"expandAll"_s, u"expand-all"_s, u"Tout &développer"_s, u"Ouvrir toutes les branches de l'arbre"_s);
    collapseAll = add(u"collapseAll"_s, u"collapse-all"_s, u"Tout &réduire"_s,
                      u"Fermer les branches de l'arbre"_s);
    fullScreen = add(u"fullScreen"_s, u"view-fullscreen"_s, u"&Plein écran"_s, u"Occuper tout l'écran"_s,
                     u"F11"_s);
    fullScreen->setCheckable(true);
}

void MainActions::makeToolActions()
{
    modif = add(u"modif"_s, u"document-edit"_s, u"Modifier la &structure…"_s,
                u"Définir les modules et leurs champs"_s);
    modif->setIconText(u"Structure"_s);
    modif->setVisible(false);
    modif->setEnabled(false);
    optimise = add(u"optimise"_s, u"run-build-clean"_s, u"&Optimiser la base de données"_s,
                   u"Vérifier les liens et réduire la taille du fichier"_s);
    optimise->setIconText(u"Optimiser"_s);
}

QAction* MainActions::add(const QString& name, const QString& icon, const QString& text, const QString& tip,
                          const QKeySequence& shortcut)
{
    auto* action = new QAction(themeIcon(icon), text, this);
    action->setObjectName(name);
    action->setStatusTip(tip);
    action->setShortcut(shortcut);
    const QString keys = shortcut.toString(QKeySequence::NativeText);
    action->setToolTip(keys.isEmpty() ? tip : tip + u" ("_s + keys + u')');
    return action;
}

QMenu* MainActions::install(QMainWindow& window, ModuleDock& dock) const
{
    const auto addMenu = [&window](const QString& name, const QString& text) {
        QMenu* menu = window.menuBar()->addMenu(text);
        menu->setObjectName(name);
        return menu;
    };
    QMenu* file = addMenu(u"menuFichier"_s, u"&Fichier"_s);
    file->addActions({newProject, newDemo, open});
    QMenu* recent = file->addMenu(themeIcon(u"document-open-recent"_s), u"Projets &récents"_s);
    recent->setObjectName(u"menuRecents"_s);
    recent->menuAction()->setObjectName(u"recents"_s);
    file->addSeparator();
    file->addActions({save, saveCopy, exportRows, print});
    file->addSeparator();
    file->addAction(closeTab);
    file->addSeparator();
    file->addAction(quit);

    QMenu* edit = addMenu(u"menuEdition"_s, u"É&dition"_s);
    edit->addActions({copy, copyWithHeaders, selectAll, find});
    edit->addSeparator();
    QMenu* node = edit->addMenu(iconNamed(u"Database"_s), u"&Modules et requêtes"_s);
    node->setObjectName(u"menuModules"_s);
    node->menuAction()->setObjectName(u"modules"_s);
    node->addActions(dock.commands().all());

    QMenu* view = addMenu(u"menuAffichage"_s, u"&Affichage"_s);
    view->addActions({refresh, fitColumns});
    view->addSeparator();
    view->addActions({expandAll, collapseAll});
    view->addSeparator();
    view->addActions({nextTab, previousTab});
    view->addSeparator();
    QAction* tree = dock.toggleViewAction();
    tree->setObjectName(u"showTree"_s);
    tree->setText(u"Arbre des &modules"_s);
    tree->setShortcut(u"F9"_s);
    tree->setStatusTip(u"Montrer ou cacher l'arbre des modules"_s);
    view->addAction(tree);
    fillToolBar(window, *view);
    view->addSeparator();
    view->addAction(fullScreen);

    addMenu(u"menuDonnees"_s, u"Do&nnées"_s);
    addMenu(u"menuOutils"_s, u"&Outils"_s)->addActions({modif, optimise});
    addMenu(u"menuAide"_s, u"Aid&e"_s)->addActions({manual, about});
    return recent;
}

void MainActions::fillToolBar(QMainWindow& window, QMenu& view) const
{
    auto* bar = new QToolBar(u"Barre d'outils"_s, &window);
    bar->setObjectName(u"toolBar"_s);
    bar->setAccessibleName(u"Barre d'outils"_s);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->setIconSize({22, 22});
    bar->addActions({newProject, open});
    bar->addSeparator();
    bar->addActions({modif, optimise});
    bar->addSeparator();
    bar->addActions({refresh, copy});
    window.addToolBar(bar);
    QAction* toggle = bar->toggleViewAction();
    toggle->setObjectName(u"showToolBar"_s);
    toggle->setText(u"&Barre d'outils"_s);
    toggle->setStatusTip(u"Montrer ou cacher la barre d'outils"_s);
    view.addAction(toggle);
}

} // namespace app
