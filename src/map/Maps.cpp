#include "map/Maps.h"

#include "images/ImagePaths.h"
#include "jet/Recordset.h"

#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <algorithm>

namespace map {

using namespace Qt::StringLiterals;

namespace {

/// Large enough for any scan of a sheet at 600 dots an inch.
constexpr int megabytesMost = 2048;

/// Which of two maps shows the points better.
bool shownFirst(const MapRow& a, const MapRow& b, int all)
{
    const bool wholeA = a.contained == all && a.isCalibrated();
    const bool wholeB = b.contained == all && b.isCalibrated();
    if (wholeA != wholeB)
        return wholeA;
    if (wholeA)
        return a.frame.area() < b.frame.area();
    return a.contained > b.contained;
}

} // namespace

QList<MapRow> mapsOf(jet::Database& database)
{
    QList<MapRow> maps{{worldMap, u"Monde"_s, u"Globe.gif"_s, Frame::world()}};
    const auto rows = database.OpenRecordset(
        u"SELECT [ID Localités],[Localité],[ImageRegion],[LongDD],[LatDD],[SizeLongDD],[SizeLatDD] FROM [Localités] "
        "WHERE [ID Type]<0 ORDER BY [Localité]"_s);
    for (; !rows->EOF_(); rows->MoveNext()) {
        maps << MapRow{rows->Value(0).toInt(), rows->Value(1).toString(), rows->Value(2).toString(),
                       Frame::ofRow(rows->Value(3), rows->Value(4), rows->Value(5), rows->Value(6))};
    }
    return maps;
}

QList<MapRow> mapsFor(QList<MapRow> maps, const Points& points)
{
    for (MapRow& row : maps) {
        row.contained = row.isCalibrated() ? int(std::count_if(points.begin(), points.end(), [&row](const MapPoint& p) {
            return row.frame.contains(p.at);
        }))
                                           : 0;
    }
    std::stable_sort(maps.begin(), maps.end(), [&points](const MapRow& a, const MapRow& b) {
        return shownFirst(a, b, points.size());
    });
    return maps;
}

QString pictureFile(const reference::Cl_Localité& places, qint32 map, const QStringList& imageFolders)
{
    const QString name = places.NomCarte(map);
    return name.isEmpty() ? QString() : images::findPicture(name, imageFolders);
}

QImage readPicture(const QString& file)
{
    QImageReader::setAllocationLimit(megabytesMost);
    QImageReader reader(file);
    reader.setAutoTransform(true);
    QImage picture = reader.read();
    if (picture.isNull())
        throw jet::Error(481, u"Erreur de chargement de l'image "_s + QFileInfo(file).fileName() + u" : "_s + reader.errorString(),
                         u"Cartographie"_s);
    return picture;
}

QString storedName(const QString& file, const QStringList& imageFolders)
{
    const QFileInfo info(file);
    const QString found = images::findPicture(info.fileName(), imageFolders);
    const bool same = !found.isEmpty() && QFileInfo(found).canonicalFilePath() == info.canonicalFilePath();
    return same ? info.fileName() : QDir::toNativeSeparators(info.absoluteFilePath());
}

} // namespace map
