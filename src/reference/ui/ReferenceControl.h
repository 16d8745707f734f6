// What the tree controls and the list control of the reference lists share: find line, tool bar, menus, keys.
#pragma once

#include "reference/ui/FindLine.h"

#include <QAbstractItemView>
#include <QAction>
#include <QMenu>
#include <QToolBar>
#include <QVBoxLayout>

namespace reference {

/// Commands have the keys "find", "add", "edit", "delete", "copy", "move", "individuals" … as object names. "sup" (in the
/// menu "mnusup") are the further commands. Keys: Ctrl+F, Ctrl+N, F2, Delete, Ctrl+C. Where several rows are selected a
/// command acts on all of them.
class ReferenceControl : public QWidget {
    Q_OBJECT
public:
    ReferenceControl(std::shared_ptr<ReferenceWorld> world, int type, QWidget* parent = nullptr);

    int type() const { return m_type; } ///< The type code of fields that name rows of the list.
    virtual QAbstractItemView& view() const = 0;
    virtual qint32 currentId() const = 0; ///< 0 for none.
    virtual QList<qint32> selectedIds() const = 0;
    virtual QStringList selectedNames() const = 0;
    virtual bool showRow(qint32 id) = 0; ///< Selects it; false when it is not there.
    virtual void reload() = 0;           ///< What is selected stays.
    FindLine& findLine() { return *m_find; }
    QAction* command(const QString& key) const;
    QMenu* addMenu() const { return m_addMenu; }
    void find(); ///< The focus goes to the find line.
    void copy(); ///< The names of the selected rows go to the clipboard.
    void runAdd(); ///< A row under, or beside, the current one.
    void updateCommands();
    /// Asks about what is typed in a form; false when the user stays there.
    std::function<bool()> mayLeave;

Q_SIGNALS:
    void rowChosen(qint32 id);    ///< Another row is the current one (0: none).
    void rowActivated(qint32 id); ///< Double click or Return.
    void editWanted(qint32 id);
    void selectionChanged();

protected:
    ReferenceWorld& world() const { return *m_world; }
    const std::shared_ptr<ReferenceWorld>& sharedWorld() const { return m_world; }
    QAction* makeCommand(const QString& key, const QString& icon, const QString& text, const QString& tip,
                         const std::function<void()>& run, const QString& keys = {});
    /// Puts the parts together once the view is there.
    void arrange();
    /// Commands of the menu "mnusup", by their keys.
    virtual QStringList further() const { return {QStringLiteral("individuals")}; }
    /// True when `run` may be called on what is selected.
    virtual bool isPossible(const QString& key) const;
    virtual void add() = 0;
    virtual bool confirmDelete(const QList<qint32>& ids) = 0;
    virtual void deleteRows(const QList<qint32>& ids) = 0; ///< On any thread.
    virtual void fillAddMenu(QMenu&) {}
    /// What the form called by `work` added; 0 when it was given up.
    qint32 added(const std::function<bool()>& work);
    void showAdded(qint32 id);
    bool eventFilter(QObject* watched, QEvent* event) override;
    virtual void databaseBack() {} ///< Another thread had it.

private:
    void removeSelected();
    void showIndividuals();
    void showMenu(const QPoint& position);
    void fillFurther(QMenu& menu);
    bool handleKey(const QKeyEvent& key, bool only);

    std::shared_ptr<ReferenceWorld> m_world;
    int m_type;
    FindLine* m_find;
    QToolBar* m_bar;
    QMenu* m_addMenu;
    QMenu* m_supMenu;
    QMenu* m_links;
    QList<QAction*> m_commands;
};

} // namespace reference
