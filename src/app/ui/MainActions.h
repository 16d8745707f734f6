// The commands of the main window's menus and tool bar.
#pragma once

#include "platform/ui/DocumentTab.h"

#include <QAction>
#include <QObject>

class QMenu;
class QMainWindow;

namespace app {

class ModuleDock;

/// Each action's object name is its key; texts carry mnemonics that are unique within their menu.
class MainActions : public QObject {
    Q_OBJECT
public:
    explicit MainActions(QObject* parent = nullptr);

    QAction* newProject;
    QAction* newDemo;
    QAction* open;
    QAction* saveCopy;
    QAction* closeTab;
    QAction* nextTab;
    QAction* previousTab;
    QAction* quit;
    QAction* copy;
    QAction* copyWithHeaders;
    QAction* selectAll;
    QAction* refresh;
    QAction* fitColumns;
    QAction* save;
    QAction* find;
    QAction* print;
    QAction* exportRows;
    QAction* expandAll;
    QAction* collapseAll;
    QAction* fullScreen;
    QAction* modif; ///< Hidden until a project was opened.
    QAction* optimise;
    QAction* manual; ///< F1 in every window of the program.
    QAction* about;

    /// The commands that the tab shown carries out.
    QList<std::pair<QAction*, platform::TabCommand>> ofTabs() const;
    /// Fills the menu bar and the tool bar of the window; gives the menu of recent projects.
    QMenu* install(QMainWindow& window, ModuleDock& dock) const;

private:
    void makeFileActions();
    void makeGridActions();
    void makeViewActions();
    void makeToolActions();
    void fillToolBar(QMainWindow& window, QMenu& view) const;
    QAction* add(const QString& name, const QString& icon, const QString& text, const QString& tip,
                 const QKeySequence& shortcut = {});
};

} // namespace app
