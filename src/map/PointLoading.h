// Points from the project.
#pragma once

#include "jet/Database.h"
#include "map/Points.h"
#include "platform/Progression.h"

namespace map {

/// What is said when there is nothing to show.
inline const QString noPoint = QStringLiteral(
    "Il n'y a aucun point géoréférencé à afficher dans la requête en cours");

/// The points of a statement, and who was found at each.
struct LoadedPoints {
    Points points;
    /// Individuals by place, in the order of the rows; empty for a statement that does not name them.
    QHash<qint32, QList<qint32>> individuals;
    QHash<qint32, qint32> localityOf; ///< The place of each individual (the last one found).
};

/// Runs a statement with the columns Chp1, Chp2 (name), Chp3 (longitude), Chp4 (latitude), one row a record. Chp1 is the
/// place; where there is a column ChpLoc, that is the place and Chp1 the individual. What the list of places knows more
/// is added. Throws jet::Error.
LoadedPoints loadPoints(jet::Database& database, const QString& statement, platform::Progression& progression);

/// Every individual of the project: the statement for it.
QString projectStatement();
/// Every place of the project that has coordinates, also those without individuals (count 0).
LoadedPoints loadProject(jet::Database& database, platform::Progression& progression);

} // namespace map
