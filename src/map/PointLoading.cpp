#include "map/PointLoading.h"

#include "jet/Cancelled.h"
#include "jet/Recordset.h"

namespace map {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 rowsAtOnce = 2000;

void checkpoint(const platform::Progression& progression)
{
    if (progression.cancelled())
        jet::fail(jet::cancelledError);
}

using Row = std::vector<QVariant>;

void eachRow(jet::Recordset& rows, platform::Progression& progression, const std::function<void(const Row&)>& use)
{
    while (!rows.EOF_()) {
        checkpoint(progression);
        for (const Row& row : rows.GetRows(rowsAtOnce))
            use(row);
    }
}

std::optional<Plot> plotOf(const QVariant& x, const QVariant& y, const QVariant& width, const QVariant& length)
{
    if (!(width.toDouble() > 0) || !(length.toDouble() > 0))
        return {};
    return Plot{x.toDouble(), y.toDouble(), width.toDouble(), length.toDouble()};
}

/// Columns of the list of places, in the order of the statement below.
enum Column { Id, Name, FullName, Longitude, Latitude, Altitude, GpsRef, Modified, PlotX, PlotY, Width, Length };

QString placesStatement()
{
    return u"SELECT [ID Localités],[Localité],[Nom Entier],[LongDD],[LatDD],[Altitude],[GPSRef],[DateModify],"
           "[XOrigine],[YOrigine],[Largeur],[Longueur] FROM [Localités] WHERE [ID Type]>=0"_s;
}

void fillPoint(MapPoint& point, const Row& row)
{
    if (!row[Altitude].isNull())
        point.altitude = row[Altitude].toDouble();
    point.gpsRef = row[GpsRef].toString();
    point.modified = row[Modified].toString();
    point.plot = plotOf(row[PlotX], row[PlotY], row[Width], row[Length]);
}

MapPoint placeOf(const Row& row)
{
    MapPoint point{.locality = row[Id].toInt(), .at = {row[Longitude].toDouble(), row[Latitude].toDouble()}, .count = 0};
    point.name = row[FullName].toString();
    if (point.name.isEmpty())
        point.name = row[Name].toString();
    fillPoint(point, row);
    return point;
}

void complete(jet::Database& database, Points& points, platform::Progression& progression)
{
    const auto rows = database.OpenRecordset(placesStatement());
    eachRow(*rows, progression, [&](const Row& row) {
        const int i = points.indexOf(row[Id].toInt());
        if (i >= 0)
            fillPoint(points.at(i), row);
    });
}

void noteIndividual(LoadedPoints& loaded, qint32 place, const QVariant& individual)
{
    loaded.individuals[place] << individual.toInt();
    loaded.localityOf.insert(individual.toInt(), place);
}

} // namespace

LoadedPoints loadPoints(jet::Database& database, const QString& statement, platform::Progression& progression)
{
    progression.step(u"Chargements des points"_s, -1);
    LoadedPoints loaded;
    const auto rows = database.OpenRecordset(statement, jet::RecordsetType::Snapshot);
    const int chp1 = rows->FieldIndex(u"Chp1");
    const int name = rows->FieldIndex(u"Chp2");
    const int longitude = rows->FieldIndex(u"Chp3");
    const int latitude = rows->FieldIndex(u"Chp4");
    const int place = rows->FieldIndex(u"ChpLoc");
    for (const int column : {chp1, name, longitude, latitude}) {
        if (column < 0)
            jet::fail(3265, u"Chp1, Chp2, Chp3, Chp4"_s);
    }
    eachRow(*rows, progression, [&](const Row& row) {
        const QVariant& id = row[size_t(place >= 0 ? place : chp1)];
        if (id.isNull())
            return;
        const int i = loaded.points.add({.locality = id.toInt(),
                                         .name = row[size_t(name)].toString(),
                                         .at = {row[size_t(longitude)].toDouble(), row[size_t(latitude)].toDouble()}});
        if (i >= 0 && place >= 0)
            noteIndividual(loaded, id.toInt(), row[size_t(chp1)]);
    });
    complete(database, loaded.points, progression);
    return loaded;
}

QString projectStatement()
{
    return u"SELECT [Individus].[ID Individus] AS Chp1,[Localités].[Nom Entier] AS Chp2,[Localités].[LongDD] AS Chp3,"
           "[Localités].[LatDD] AS Chp4,[Localités].[ID Localités] AS ChpLoc FROM [Individus] INNER JOIN [Localités] "
           "ON [Individus].[ID Localités]=[Localités].[ID Localités]"_s;
}

LoadedPoints loadProject(jet::Database& database, platform::Progression& progression)
{
    LoadedPoints loaded = loadPoints(database, projectStatement(), progression);
    const auto rows = database.OpenRecordset(placesStatement());
    eachRow(*rows, progression, [&](const Row& row) {
        if (loaded.points.indexOf(row[Id].toInt()) < 0)
            loaded.points.add(placeOf(row));
    });
    return loaded;
}

} // namespace map
