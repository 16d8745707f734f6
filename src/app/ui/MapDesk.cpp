#include "app/ui/MapDesk.h"

#include "app/References.h"
#include "app/Session.h"
#include "app/ui/Documents.h"
#include "app/ui/Icons.h"
#include "app/ui/MapTab.h"
#include "app/ui/Photographer.h"
#include "images/ImagePaths.h"
#include "map/ui/Cartographie.h"
#include "map/ui/MapPanel.h"

#include <QPushButton>

namespace app {

using namespace Qt::StringLiterals;

map::MapWorld mapWorld(Workplace& place)
{
    Session& session = place.session();
    return {session.database(), session.references().places(), place.dialogues(), session.surroundings().clock,
            [&session] { return images::imageFolders(session.properties()); }, session.readOnly()};
}

void MapDesk::install(QMenuBar& bar, TreeCommands&)
{
    auto* menu = bar.findChild<QMenu*>(u"menuDonnees"_s);
    m_action = new QAction(iconNamed(u"Lslocalités"_s), u"&Carte des localités"_s, &bar);
    m_action->setObjectName(u"carte"_s);
    m_action->setStatusTip(u"Voir sur une carte où les individus ont été récoltés"_s);
    connect(m_action, &QAction::triggered, this, [this] { openMap(); });
    m_action->setEnabled(false);
    if (menu)
        menu->addAction(m_action);
}

MapTab* MapDesk::openMap()
{
    if (!isOpen())
        return nullptr;
    if (!place().documents().show(MapTab::tabKey()))
        place().documents().add(std::make_unique<MapTab>(place()));
    return qobject_cast<MapTab*>(place().documents().find(MapTab::tabKey()));
}

void MapDesk::photograph(Photographer& photographer)
{
    MapTab* tab = openMap();
    if (!tab)
        return;
    const auto ready = [tab] { return !tab->isLoading(); };
    photographer.settle(ready);
    map::MapPanel& panel = tab->panel();
    panel.reloadMaps(map::worldMap);
    photographer.settle(ready);
    photographer.take(u"carte-monde"_s);
    for (int i = 0; i < panel.maps().count(); ++i) {
        if (panel.maps().itemData(i).toInt() == map::worldMap)
            continue;
        panel.reloadMaps(panel.maps().itemData(i).toInt());
        photographer.settle(ready);
        photographer.take(u"carte-regionale"_s);
        panel.startCalibration();
        panel.map().setMarks({{200, 200}, {1000, 600}});
        Q_EMIT panel.map().marksChanged();
        photographer.take(u"carte-calibration"_s);
        panel.findChild<QPushButton*>(u"annulerCalibration"_s)->click();
        break;
    }
    place().documents().closeCurrent();
}

} // namespace app
