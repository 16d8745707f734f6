// Maps in the main window.
#pragma once

#include "app/ui/Desk.h"

namespace map {
struct MapWorld;
}

namespace app {

class MapTab;

/// What maps of the open project work with.
map::MapWorld mapWorld(Workplace& place);

/// Opens the map of the project's places.
class MapDesk : public Desk {
    Q_OBJECT
public:
    using Desk::Desk;

    void install(QMenuBar& bar, TreeCommands& tree) override;
    void projectOpened() override { showBusy(false); }
    void projectClosing() override { m_action->setEnabled(false); }
    void showBusy(bool busy) override { m_action->setEnabled(!busy && isOpen()); }
    void photograph(Photographer& photographer) override;
    MapTab* openMap();

private:
    QAction* m_action = nullptr;
};

} // namespace app
