#include "map/Exports.h"

#include "map/PointLoading.h"
#include "platform/CsvExport.h"
#include "platform/ReplaceFile.h"

#include <QBuffer>

namespace map {

using namespace Qt::StringLiterals;

namespace {

struct Texts {
    QString title;
    QString filter;
    QString suffix;
};

const Texts& textsOf(ExportFormat format)
{
    static const Texts all[] = {
        {u"Exportation CSV"_s, u"Texte CSV (point-virgule, *.csv)|*.csv"_s, u".csv"_s},
        {u"Exportation KML"_s, u"Fichier Google Earth (*.kml)|*.kml"_s, u".kml"_s},
        {u"Exportation GPS Trackmaker"_s, u"Fichier GPS Trackmaker (*.gtm)|*.gtm"_s, u".gtm"_s},
        {u"Exportation Script AutoCad"_s, u"Script AutoCad (*.scr)|*.scr"_s, u".scr"_s},
        {u"Exportation Bitmap"_s, u"Fichier Bitmap (*.bmp)|*.bmp"_s, u".bmp"_s}};
    return all[int(format)];
}

QByteArray contentOf(ExportFormat format, const Points& points, const ExportContext& context)
{
    switch (format) {
    case ExportFormat::Csv: return csvFile(points);
    case ExportFormat::Kml: return kmlFile(points, context);
    case ExportFormat::Gtm: return gtmFile(points, context);
    case ExportFormat::AcadScr: return acadScript(points, context);
    case ExportFormat::Bitmap: return bitmapFile(context.picture);
    }
    return {};
}

bool write(ExportFormat format, const QString& file, const QByteArray& content, platform::Dialogues& dialogues)
{
    platform::removeUnfinished(file); // of an export that was cut off
    const QString error = platform::replaceFile(file, content);
    if (error.isEmpty())
        return true;
    dialogues.tell(u"Impossible d'accéder au fichier. Vérifiez qu'il est bien présent et qu'il n'est ouvert par aucune "
                   "autre applications :"_s
                       + file,
                   exportTitle(format), platform::BoxIcon::Stop);
    return false;
}

/// The name asked for; a dialog of the desktop may leave out the ending.
QString chosenFile(ExportFormat format, const QString& given, platform::Dialogues& dialogues)
{
    if (!given.isEmpty())
        return given;
    QString file = dialogues.saveFile(exportTitle(format), exportFilter(format));
    const QString name = file.section(u'/', -1);
    if (!name.isEmpty() && !name.contains(u'.'))
        file += exportSuffix(format);
    return file;
}

} // namespace

QString exportTitle(ExportFormat format)
{
    return textsOf(format).title;
}

QString exportFilter(ExportFormat format)
{
    return textsOf(format).filter;
}

QString exportSuffix(ExportFormat format)
{
    return textsOf(format).suffix;
}

bool exportPoints(ExportFormat format, const Points& points, const ExportContext& context,
                  platform::Dialogues& dialogues, QString file)
{
    if (points.isEmpty()) {
        dialogues.tell(noPoint, exportTitle(format));
        return false;
    }
    file = chosenFile(format, file, dialogues);
    return !file.isEmpty() && write(format, file, contentOf(format, points, context), dialogues);
}

bool exportBitmap(const QImage& picture, platform::Dialogues& dialogues, QString file)
{
    file = chosenFile(ExportFormat::Bitmap, file, dialogues);
    return !file.isEmpty() && write(ExportFormat::Bitmap, file, bitmapFile(picture), dialogues);
}

QString decimalText(double value, int decimals)
{
    QString text = QString::number(value, 'f', decimals);
    if (text.contains(u'.')) {
        while (text.endsWith(u'0'))
            text.chop(1);
        if (text.endsWith(u'.'))
            text.chop(1);
    }
    return text == u"-0" ? u"0"_s : text;
}

QByteArray csvFile(const Points& points)
{
    QByteArray out;
    const auto line = [&out](const QStringList& cells) { out += (platform::csvLine(cells) + u"\r\n"_s).toUtf8(); };
    line({u"ID Localités"_s, u"Nom"_s, u"Longitude"_s, u"Latitude"_s, u"Altitude"_s, u"Référence GPS"_s, u"Effectif"_s});
    for (const MapPoint& point : points) {
        line({QString::number(point.locality), point.name, decimalText(point.at.longitude, 8),
              decimalText(point.at.latitude, 8), point.altitude ? decimalText(*point.altitude, 8) : QString(),
              point.gpsRef, QString::number(point.count)});
    }
    return out;
}

/// Windows, or the desktops' own programs, must take no size from the picture: the script scales it from one unit.
QByteArray bitmapFile(const QImage& picture)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture.convertToFormat(QImage::Format_RGB888).save(&buffer, "BMP");
    constexpr int resolutionAt = 38;
    if (bytes.size() > resolutionAt + 8)
        bytes.replace(resolutionAt, 8, QByteArray(8, '\0'));
    return bytes;
}

} // namespace map
