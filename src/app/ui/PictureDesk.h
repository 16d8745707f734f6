// Pictures in the main window: their folders, their thumbnails, the tab of the record editor that shows them.
#pragma once

#include "app/ui/Desk.h"

namespace query {
struct PictureWorld;
}

namespace app {

class EditorDesk;

/// What pictures of the open project are shown with.
query::PictureWorld pictureWorld(Workplace& place);

class PictureDesk : public Desk {
    Q_OBJECT
public:
    PictureDesk(Workplace& place, EditorDesk& editor);

    void install(QMenuBar& bar, TreeCommands& tree) override;
    void projectOpened() override;
    void projectClosing() override;
    void showBusy(bool busy) override;
    void photograph(Photographer& photographer) override;

    /// Shows the dialog of the folders.
    void editFolders();
    /// How picked files are kept: relative to a folder where possible. For files outside of every folder their own are
    /// offered to be declared.
    QStringList namesOf(const QStringList& files);

private:
    void takeFolders(const QStringList& folders);
    void photographViewer(Photographer& photographer);

    EditorDesk& m_editor;
    QAction* m_action = nullptr;
};

} // namespace app
