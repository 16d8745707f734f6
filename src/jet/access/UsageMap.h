// Which pages belong to an object.
#pragma once

#include "jet/access/PageFile.h"

#include <QList>

namespace jet::access {

/// The pages of a usage map, in ascending order, those beyond the end of the file left out. 3049 when there is no such map.
QList<quint32> pagesOfMap(PageFile& file, RowPointer map);

/// Without a map: the data pages that name the object as their owner.
QList<quint32> pagesOwnedBy(PageFile& file, quint32 owner);

} // namespace jet::access
