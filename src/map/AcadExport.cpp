#include "map/Exports.h"

#include <QDir>

namespace map {

using namespace Qt::StringLiterals;

namespace {

constexpr int decimals = 6;

QString pair(Geo at)
{
    return QString::number(at.longitude, 'f', decimals) + u',' + QString::number(at.latitude, 'f', decimals);
}

/// Attached at its lower left corner, as wide as the frame; the height follows from the picture's shape.
QString attachLine(const ExportContext& context)
{
    const Frame& frame = context.frame;
    const Geo corner{qMin(frame.X0, frame.right()), qMin(frame.Y0, frame.bottom())};
    return u"_image _attach \""_s + QDir::toNativeSeparators(context.pictureFile) + u"\" "_s + pair(corner) + u' '
           + QString::number(qAbs(frame.W), 'f', decimals) + u" 0"_s;
}

QString outlineLine(const MapPoint& point)
{
    QString line = u"_.pline 0 0 0"_s;
    const QList<Geo> corners = plotCorners(point.at, *point.plot);
    for (const Geo& corner : corners)
        line += u' ' + pair(corner);
    return line + u" _c"_s;
}

} // namespace

/// Each blank and each line end is one Enter: none may stand at the end of a line.
QByteArray acadScript(const Points& points, const ExportContext& context)
{
    QByteArray out;
    const auto line = [&out](const QString& text) { out += (text + u"\r\n"_s).toUtf8(); };
    // Else points jump to what was drawn near them.
    line(u"OSMODE 0"_s);
    line(u"PDMODE 34 PDSIZE -5"_s);
    if (!context.pictureFile.isEmpty() && context.frame.isCalibrated())
        line(attachLine(context));
    for (const MapPoint& point : points)
        line(u"_.point "_s + pair(point.at));
    for (const MapPoint& point : points) {
        if (point.plot)
            line(outlineLine(point));
    }
    return out;
}

} // namespace map
