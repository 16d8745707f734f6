// A part of the program in the main window: the record editor, the reference lists, queries, …
#pragma once

#include "app/ui/TreeCommands.h"
#include "app/ui/Workplace.h"

#include <QMenuBar>

namespace app {

class Photographer;

/// A desk brings its commands into the menus and the tree, and opens its tabs and windows. The main window makes each
/// once (MainWindow::makeDesks) and tells it what happens to the project.
class Desk : public QObject {
    Q_OBJECT
public:
    explicit Desk(Workplace& place) : m_place(place) {}

    /// Puts the commands into the menus, once. Menus are found by their names: "menuFichier", "menuEdition",
    /// "menuAffichage", "menuDonnees", "menuOutils", "menuAide".
    virtual void install(QMenuBar& bar, TreeCommands& tree)
    {
        Q_UNUSED(bar)
        Q_UNUSED(tree)
    }
    virtual void projectOpened() {}
    /// Asks about what is not saved in windows of its own; false when the user stays. (Tabs are asked by Documents.)
    virtual bool mayClose() { return true; }
    /// Everything that holds on to the project goes; nothing is asked any more. Called before the file is closed or
    /// exchanged, on the thread of the windows.
    virtual void projectClosing() {}
    /// The session works beside the windows (true): nothing may touch the project.
    virtual void showBusy(bool busy) { Q_UNUSED(busy) }
    /// Shows the windows and tabs of the desk with the project that is open, and has each taken a picture of; called
    /// once with light and once with dark colours. Windows of its own are closed again.
    virtual void photograph(Photographer& photographer) { Q_UNUSED(photographer) }

protected:
    Workplace& place() const { return m_place; }
    Session& session() const { return m_place.session(); }
    bool isOpen() const;

private:
    Workplace& m_place;
};

} // namespace app
