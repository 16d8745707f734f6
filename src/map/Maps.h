// The maps of a project: pictures with a frame.
#pragma once

#include "map/Points.h"
#ifndef Q_MOC_RUN // which reads plain letters only
#include "reference/Cl_Localite.h"
#endif

#include <QImage>

namespace map {

inline constexpr qint32 worldMap = 0;

/// One map; the world is 0.
struct MapRow {
    qint32 id = worldMap;
    QString name;
    QString picture; ///< As the row keeps it: a file name or a path.
    Frame frame;
    int contained = 0; ///< Points within the frame, where they were counted.
    bool isCalibrated() const { return frame.isCalibrated(); }
};

/// The world, and every map of the project by name. Throws jet::Error.
QList<MapRow> mapsOf(jet::Database& database);
/// The same, with the points that lie within each: first those that contain all of them, the one of the smallest area
/// first; then the others by the points that they contain.
QList<MapRow> mapsFor(QList<MapRow> maps, const Points& points);

/// The picture file of a map: the world's lies in the application folder, the others in the declared image folders.
/// Empty when it is not found.
QString pictureFile(const reference::Cl_Localité& places, qint32 map, const QStringList& imageFolders);
/// The whole picture in its own size, turned as the camera noted. Throws jet::Error where it cannot be read.
QImage readPicture(const QString& file);

/// How a row keeps a file: its name alone where a declared folder finds that very file by it, else its path.
QString storedName(const QString& file, const QStringList& imageFolders);

} // namespace map
