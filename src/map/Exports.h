// The points as files for other programs.
#pragma once

#include "map/Points.h"
#include "platform/Dialogues.h"

#include <QColor>
#include <QDateTime>
#include <QImage>

namespace map {

enum class ExportFormat { Csv, Kml, Gtm, AcadScr, Bitmap };

/// What the files say besides the points.
struct ExportContext {
    QString name;        ///< Of the export: the query, the project.
    QString description;
    QString region;      ///< The region or map shown.
    QString time;        ///< Time stamp text.
    QColor colour = Qt::red;
    Frame frame;         ///< Of the map's picture.
    QString pictureFile; ///< Path of it; empty for none.
    QImage picture;      ///< Null for none.
};

// The whole file of each format.

/// Identifier, name, longitude, latitude, altitude, GPS reference, count; UTF-8, quoted as the grids' files are.
QByteArray csvFile(const Points& points);
/// KML 2.2. Coordinates: longitude, latitude, altitude (0 when unknown), up to eight decimals.
QByteArray kmlFile(const Points& points, const ExportContext& context);
/// AutoCAD commands; degrees with six decimals. The picture is attached by its path where its frame is known, plots
/// are outlined.
QByteArray acadScript(const Points& points, const ExportContext& context);
/// GPS TrackMaker 2.11: Windows-1252 text, waypoints, the calibrated picture within. What the code page lacks becomes "?", dates outside
/// of 1921 to 2058 are left out, an unknown altitude is 0.
QByteArray gtmFile(const Points& points, const ExportContext& context);
/// A bitmap of 24 bits without resolution.
QByteArray bitmapFile(const QImage& picture);

/// Names of the file dialog.
QString exportTitle(ExportFormat format);
QString exportFilter(ExportFormat format);
QString exportSuffix(ExportFormat format); ///< ".kml"

/// Writes the file, whole or not at all; asks for its name when there is none. No point at all and a file that cannot be
/// written are said. False when nothing was written.
bool exportPoints(ExportFormat format, const Points& points, const ExportContext& context,
                  platform::Dialogues& dialogues, QString file = {});
/// The same with a picture.
bool exportBitmap(const QImage& picture, platform::Dialogues& dialogues, QString file = {});

// --- Parts of it -----------------------------------------------------------------------------

/// A decimal point, no exponent, no trailing zeros.
QString decimalText(double value, int decimals);
QByteArray windows1252(QStringView text);

} // namespace map
