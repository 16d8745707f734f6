// The record editor in the program: who opens it, on what, and what it tells the others.
#pragma once

#include "app/ui/Desk.h"

#include <QTimer>

namespace editing {
class Cl_Edition;
class PicturePane;
class RecordEditorWindow;
} // namespace editing

namespace app {

class GridTab;

/// One window for the whole program, which comes to the front when it is asked for again. It belongs to the open
/// project: made when it is first asked for, gone before the project is closed, and so are the forms (Session::setForm).
class EditorDesk : public Desk {
    Q_OBJECT
public:
    explicit EditorDesk(Workplace& place);
    ~EditorDesk() override;

    void install(QMenuBar& bar, TreeCommands& tree) override;
    void projectOpened() override;
    bool mayClose() override;
    void projectClosing() override;
    void showBusy(bool busy) override;
    void photograph(Photographer& photographer) override;

    /// Null while nobody asked for it.
    editing::RecordEditorWindow* window() const;
    /// Makes what the tab "Viewer" shows; empty: no such tab. To be set before a project is opened.
    std::function<editing::PicturePane*(QWidget* owner)> makePictures;
    /// How picture files that were picked are kept; empty: by their paths. To be set as early.
    std::function<QStringList(const QStringList& files)> pictureNames;

private:
    struct Project;

    editing::RecordEditorWindow& makeWindow();
    bool edit(const QString& path);
    void editRow(GridTab* grid, qint32 id);
    void editCurrentRow();
    void addTo(const QString& module, int model = 0);
    void addFromModel(int model);
    void createModel(const TreeNode& node);
    QString moduleOfModel(int model) const;
    qint32 individuShown() const;
    void offerDraft();
    void noteWritten(const QStringList& modules);
    void tellWritten();
    void followWritten(const QStringList& modules);
    void updateAway();
    void readAgain();
    void updateActions();
    void photographModes(Photographer& photographer);
    void photographStates(Photographer& photographer);

    std::unique_ptr<Project> m_project; ///< Null while none is open.
    QAction* m_editRow = nullptr;
    QAction* m_newIndividual = nullptr;
    bool m_busy = false;
    bool m_posing = false;  ///< For pictures: nothing that is typed is kept.
    QStringList m_written;     ///< Modules that the editor wrote, not told yet.
    bool m_allWritten = false; ///< Any of them.
    bool m_toTell = false;
    bool m_stale = false;   ///< Records were written elsewhere and not read again yet.
    QTimer m_rereading;     ///< Tries again, where that was not possible at once.
    bool m_telling = false; ///< What is written comes from the editor itself.
};

} // namespace app
