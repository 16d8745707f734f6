// Tables (CSV) into the open project.
#pragma once

#include "app/ui/Desk.h"

namespace app {

class ImportWindow;

class ImportDesk : public Desk {
    Q_OBJECT
public:
    explicit ImportDesk(Workplace& place);
    ~ImportDesk() override;

    void install(QMenuBar& bar, TreeCommands& tree) override;
    void projectOpened() override;
    bool mayClose() override;
    void projectClosing() override;
    void showBusy(bool busy) override;
    void photograph(Photographer& photographer) override;

    /// Opens the assistant, or comes back to it.
    ImportWindow* open();

private:
    void updateAction(bool busy);

    std::unique_ptr<ImportWindow> m_window;
    QAction* m_import = nullptr;
};

} // namespace app
