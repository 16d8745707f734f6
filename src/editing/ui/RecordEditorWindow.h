// The window in which one individual and its records are edited.
#pragma once

#include "editing/ui/DraftKeeper.h"
#include "editing/ui/EditTreeView.h"
#include "editing/ui/EditorActions.h"
#include "editing/ui/FormPane.h"
#include "editing/ui/HeldKeys.h"
#include "editing/ui/PicturePane.h"

#include <QLabel>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabWidget>

namespace editing {

class DescriptorLists;
class ReferenceChooser;

/// What the window needs of the world around it.
struct EditorSurroundings {
    platform::Dialogues& dialogues;
    FormDialogue& wizard;
    const ReferenceSearch* search = nullptr;
    DescriptorLists* lists = nullptr;
    std::function<QIcon(const QString& module)> icon = {};
    QString project = {};   ///< Name shown in the title.
    QString draftFile = {}; ///< Where typing is kept; empty for nowhere.
    /// What windows remember from one start to the next; may be empty.
    std::function<QVariant(const QString& key)> remembered = {};
    std::function<void(const QString& key, const QVariant&)> remember = {};
    /// Makes the pane of the tab "Viewer"; empty: the tab is hidden.
    std::function<PicturePane*(QWidget* owner)> makePictures = {};
    /// How picture files that were picked are kept; empty: by their paths.
    std::function<QStringList(const QStringList& files)> pictureNames = {};
    ReferenceChooser* chooser = nullptr; ///< Null: names are completed, no tree is opened.
};

class RecordEditorWindow : public QMainWindow {
    Q_OBJECT
public:
    RecordEditorWindow(IndividualEditing& editing, EditorSurroundings surroundings, QWidget* parent = nullptr);
    ~RecordEditorWindow() override;

    /// Shows the records of a level path and comes to the front; false when nothing could be shown.
    bool EditItems(const QString& path);
    /// Offers what an earlier run left unsaved; true when it was taken up.
    bool offerDraft();
    IndividualEditing& editing() { return m_editing; }
    FormPane& pane() { return *m_pane; }
    EditTreeView& tree() { return *m_tree; }
    EditorActions& actions() { return *m_actions; }
    DraftKeeper& draft() { return *m_draft; }
    /// The project is for a while another thread's: nothing is read or written, keys wait (HeldKeys).
    void setAway(bool away);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void arrange();
    QWidget* makePanes();
    void fillWorld();
    void connectEditing();
    void connectTree();
    void connectActions();
    void connectMore();
    void showCurrent();
    void showNode(const QModelIndex& index);
    void focusColumn(EditedRecord& record, const QString& column);
    void activate(const QModelIndex& index);
    QList<FormSection> sections();
    FormSection section(EditedRecord& record, bool titled);
    FormLayout layoutOfMode() const;
    EditedRecord* recordOf(const Cl_Edition& field) const;
    void takeFiles(Cl_Edition& field, const QStringList& files);
    void updateState();
    void showObject();
    void addAtNode();
    void fillAddMenu();
    void fillRefreshMenu();
    void chooseParent();
    void manageModel(bool rename);
    void copyPreviousValue();
    void finishTyping();
    void setMode(QAction* mode);
    void restorePlaces();
    void savePlaces();
    void makePictureTab();
    PicturedRecord pictured() const;
    void showPictures();

    IndividualEditing& m_editing;
    EditorSurroundings m_around;
    EditorActions* m_actions;
    EditTreeModel* m_model;
    EditTreeView* m_tree;
    FormPane* m_pane;
    QPlainTextEdit* m_help;
    QPlainTextEdit* m_object;
    QStackedWidget* m_stack;
    QTabWidget* m_tabs;
    QSplitter* m_splitter;
    QLabel* m_place;
    DraftKeeper* m_draft;
    HeldKeys* m_held;
    PicturePane* m_pictures = nullptr; ///< Null where nobody shows pictures.
    PicturedRecord m_seen;             ///< What it shows.
    const EditedRecord* m_current = nullptr; ///< The one shown last, to be compared only.
    QStringList m_shown; ///< Keys of the records whose forms are shown.
    QTimer m_patience;
    bool m_waiting = false; ///< It is said that another task has the project.
    bool m_typing = false;
    bool m_fromTree = false; ///< The user walks the tree: the focus stays there.
};

} // namespace editing
