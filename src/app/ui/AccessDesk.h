// Old Access files in the main window: choosing one, and the report of what became of it.
#pragma once

#include "app/ui/Desk.h"

namespace app {

class ProjectCommands;

/// The report of the conversion is shown once the new project is open, and later on as long as the project keeps it.
class AccessDesk : public Desk {
    Q_OBJECT
public:
    AccessDesk(Workplace& place, ProjectCommands& commands);

    void install(QMenuBar& bar, TreeCommands& tree) override;
    void projectOpened() override;
    void projectClosing() override;
    void showBusy(bool busy) override;
    void photograph(Photographer& photographer) override;

private:
    void choose();
    void showReport();
    QString report() const;
    void updateActions(bool busy);

    ProjectCommands& m_commands;
    QAction* m_import = nullptr;
    QAction* m_report = nullptr;
};

} // namespace app
