// The structure editor.
#pragma once

#ifndef Q_MOC_RUN // which reads plain letters only
#include "app/structure/StructureEditing.h"
#include "app/structure/StructureReview.h"
#endif

#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QPointer>
#include <QSet>
#include <QSplitter>
#include <QTabWidget>
#include <QTreeView>

namespace app {

class DescriptorWindow;
class FieldSheet;
class ModuleSheet;
class StructureModel;
class TrialWindow;
class Workplace;

/// A window of its own: the tree of modules and fields, the property sheets of the module and of the field chosen, and the
/// commands. What is written is written by who listens to saveWanted.
class StructureWindow : public QMainWindow {
    Q_OBJECT
public:
    StructureWindow(StructureEditing& editing, Workplace& place, QWidget* parent = nullptr);
    ~StructureWindow() override;

    StructureEditing& editing() { return m_editing; }
    QTreeView& tree() { return *m_tree; }
    QAction* command(const QString& name) const; ///< By its key ("add", "delete", "mnuexport" …).
    /// Chooses a module or field of the draft.
    void choose(int id);
    TrialWindow* trial() const;
    DescriptorWindow* descriptors() const;
    void closeParts(); ///< The windows that belong to this one.
    void showSaved();    ///< The structure was saved and read again.
    void showNotSaved(); ///< It was not, or the user does not want it.
    /// Asks about unsaved changes; false when the user stays. With "yes", saveWanted follows and `then` after it.
    bool mayClose(const std::function<void()>& then = {});
    void saveGeometryOfWindow();
    /// The window goes without a question.
    void closeQuietly();

Q_SIGNALS:
    void saveWanted();
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QAction* add(const QString& name, const QString& icon, const QString& text, const QString& tip,
                 const QKeySequence& keys, const std::function<void()>& run);
    void makeActions();
    void makeMenus();
    void makeTree();
    void connectTree();
    void showDraft();
    void showChosen();
    void followTree(const QModelIndex& index);
    void updateActions();
    bool isField() const { return m_field != 0 && m_tabs->currentIndex() == 1; }
    void finishTyping();
    void whenFree(const std::function<void()>& work);
    void addOne();
    void deleteOne();
    void moveOne(int by);
    void chooseIcon();
    void tryInput();
    void openDescriptors(int field);
    void exportStructure();
    void importModules();
    void restorePlaces();

    StructureEditing& m_editing;
    Workplace& m_place;
    StructureModel* m_model;
    QTreeView* m_tree;
    QTabWidget* m_tabs;
    ModuleSheet* m_moduleSheet;
    FieldSheet* m_fieldSheet;
    QSplitter* m_splitter;
    QLabel* m_count;
    QHash<QString, QAction*> m_actions;
    QSet<int> m_expanded; ///< Modules whose fields are shown.
    QPointer<TrialWindow> m_trial;
    QPointer<DescriptorWindow> m_descriptors;
    std::function<void()> m_then; ///< After the saving that runs.
    int m_module = 0;
    int m_field = 0;
    bool m_showing = false;
    bool m_queued = false;
    bool m_quiet = false;
};

} // namespace app
