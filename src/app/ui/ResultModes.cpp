#include "app/ui/ResultModes.h"

#include "app/ui/MapDesk.h"
#include "app/ui/Workplace.h"
#include "map/ui/Cartographie.h"
#include "query/ui/MapMode.h"

namespace app {

using namespace Qt::StringLiterals;

QList<query::ResultModeFactory> resultModes(Workplace& place)
{
    return {{u"map"_s, [&place](query::ResultSource& source, QWidget* parent) -> query::ResultMode* {
                 return new query::MapMode(source, mapWorld(place), place.runner(), parent);
             }}};
}

} // namespace app
