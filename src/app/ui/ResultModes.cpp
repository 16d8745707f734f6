#include "app/ui/ResultModes.h"

#include "app/ui/MapDesk.h"
#include "app/ui/PictureDesk.h"
#include "app/ui/Workplace.h"
#include "map/ui/Cartographie.h"
#include "query/ui/MapMode.h"
#include "query/ui/PictureMode.h"

namespace app {

using namespace Qt::StringLiterals;

QList<query::ResultModeFactory> resultModes(Workplace& place)
{
    return {{u"picture"_s,
             [&place](query::ResultSource& source, QWidget* parent) -> query::ResultMode* {
                 return new query::PictureMode(source, pictureWorld(place), place.runner(), parent);
             }},
            {u"map"_s, [&place](query::ResultSource& source, QWidget* parent) -> query::ResultMode* {
                 return new query::MapMode(source, mapWorld(place), place.runner(), parent);
             }}};
}

} // namespace app
