// The structure editor in the program: its window, and its saving beside the windows.
#pragma once

#ifndef Q_MOC_RUN // which reads plain letters only
#include "app/structure/StructureReview.h"
#endif
#include "app/ui/Desk.h"

namespace app {

class ProjectCommands;
class StructureEditing;
class StructureWindow;

/// Serves the command "modif". One window, which comes to the front when it is asked for again; it belongs to the open
/// project.
class StructureDesk : public Desk {
    Q_OBJECT
public:
    StructureDesk(Workplace& place, ProjectCommands& commands);
    ~StructureDesk() override;

    void install(QMenuBar& bar, TreeCommands& tree) override;
    void projectOpened() override;
    bool mayClose() override;
    void projectClosing() override;
    void showBusy(bool busy) override;
    void photograph(Photographer& photographer) override;

    /// Null while it is not open.
    StructureWindow* window() const { return m_window.get(); }
    /// Shows what saving does and gives true when the user wants it; a dialog, or what a test says.
    std::function<void(const StructureReview& review, const std::function<void(bool)>& answered)> ask;

private:
    void open();
    void save();
    void review();
    void write(bool losesData);
    void askByDialog(const StructureReview& review, const std::function<void(bool)>& answered);
    void put(std::unique_ptr<StructureWindow> window);
    void updateAction(bool busy);

    ProjectCommands& m_commands;
    QAction* m_modif = nullptr;
    std::unique_ptr<StructureEditing> m_editing;
    std::unique_ptr<StructureWindow> m_window;
    std::shared_ptr<bool> m_saved; ///< While the structure is being saved: whether it was.
};

} // namespace app
