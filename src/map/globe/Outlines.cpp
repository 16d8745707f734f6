#include "map/globe/Outlines.h"

#include <QFile>

namespace globe {

QList<Land> readOutlines(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    file.readLine(); // the names of the columns
    QList<Land> lands;
    QByteArray land, ring;
    while (!file.atEnd()) {
        QByteArray line = file.readLine();
        if (line.endsWith('\n'))
            line.chop(1);
        const QList<QByteArray> cells = line.split('\t');
        bool ok = cells.size() == 6;
        const double longitude = ok ? cells[4].toDouble(&ok) : 0;
        const double latitude = ok ? cells[5].toDouble(&ok) : 0;
        if (!ok)
            return {};
        const QByteArray landHere = cells[0] + cells[1] + '/' + cells[2];
        const QByteArray ringHere = landHere + '/' + cells[3];
        if (landHere != land)
            lands << Land{QString::fromUtf8(cells[1]), {}};
        if (ringHere != ring)
            lands.last().rings << QPolygonF();
        lands.last().rings.last() << QPointF(longitude, latitude);
        land = landHere;
        ring = ringHere;
    }
    return lands;
}

} // namespace globe
