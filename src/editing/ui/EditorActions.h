// The commands of the record editor: menus, tool bar, keys.
#pragma once

#include <QAction>
#include <QActionGroup>
#include <QMainWindow>
#include <QMenu>

namespace editing {

/// Objects are named after the commands' keys. Texts that tell what they act on are set when their menu opens.
class EditorActions : public QObject {
    Q_OBJECT
public:
    explicit EditorActions(QMainWindow& window);

    QAction *add, *addSame, *addCopy, *remove, *lock, *parent, *move, *save, *print, *close;
    QAction *field, *record, *indiv;          ///< Refresh.
    QAction *wzvalid, *wznull, *wztabs;       ///< Wizard.
    QAction *prev, *suiv, *oprev, *osuiv, *list;
    QAction *modelSave, *modelLoad, *modelRename, *modelDelete;
    QAction *previousValue, *openList, *otherPane;
    QAction *modeVertical, *modeCondensed, *modeSingle;
    QMenu *addMenu, *refreshMenu, *wizardMenu;

private:
    QAction* make(const QString& key, const QString& icon, const QString& text, const QList<QKeySequence>& keys = {});
    void makeAll();
    void fillMenus(QMainWindow& window);
    void fillBar(QMainWindow& window);
};

} // namespace editing
