#include "map/globe/Globe.h"

#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>

namespace globe {

namespace {

// Calm tones that stand out neither on light nor on dark windows, and let coloured points stand out.
constexpr QColor sea(0xB3, 0xCE, 0xDE);
constexpr QColor shelf(0xC3, 0xDA, 0xE6);
constexpr QColor coast(0x6F, 0x8C, 0x9B);
constexpr QColor border(0xB4, 0xA3, 0x86);
constexpr QColor graticule(0x9F, 0xBC, 0xCD);
constexpr QColor circle(0x84, 0xA6, 0xBA);
constexpr QColor ice(0xEA, 0xED, 0xEC);
/// Neighbours differ a little.
constexpr std::array land{QColor(0xEF, 0xE8, 0xD3), QColor(0xE9, 0xE3, 0xC6), QColor(0xF2, 0xE4, 0xCF),
                          QColor(0xE4, 0xE6, 0xCB), QColor(0xEC, 0xDF, 0xC4)};

constexpr double tropic = 23.43634;
constexpr double polar = 66.56366;

QColor colourOf(const QString& country)
{
    if (country == QStringLiteral("Antarctica") || country == QStringLiteral("Greenland"))
        return ice;
    uint sum = 7; // not qHash: the picture must not change with its seed
    for (const QChar c : country)
        sum = sum * 31 + c.unicode();
    return land[sum % land.size()];
}

QTransform toPixels()
{
    QTransform transform;
    transform.scale(pixelsPerDegree, -pixelsPerDegree);
    transform.translate(180, -90);
    return transform;
}

QPainterPath pathOf(const Land& land)
{
    QPainterPath path;
    path.setFillRule(Qt::OddEvenFill);
    for (const QPolygonF& ring : land.rings) {
        path.addPolygon(ring);
        path.closeSubpath();
    }
    return toPixels().map(path);
}

void parallel(QPainter& painter, double latitude)
{
    painter.drawLine(toPixels().map(QLineF(-180, latitude, 180, latitude)));
}

void drawLines(QPainter& painter)
{
    painter.setPen(QPen(graticule, 1));
    for (int longitude = -180; longitude <= 180; longitude += 10)
        painter.drawLine(toPixels().map(QLineF(longitude, 90, longitude, -90)));
    for (int latitude = -90; latitude <= 90; latitude += 10)
        parallel(painter, latitude);
    painter.setPen(QPen(circle, 1.6, Qt::DashLine));
    for (const double latitude : {tropic, -tropic, polar, -polar})
        parallel(painter, latitude);
    painter.setPen(QPen(circle, 1.6));
    parallel(painter, 0);
}

/// The coast shows where no other land covers the outer half of the line.
void drawLands(QPainter& painter, const QList<Land>& lands)
{
    QList<QPainterPath> paths;
    for (const Land& land : lands)
        paths << pathOf(land);
    const auto outline = [&](const QColor& colour, double width) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        for (const QPainterPath& path : std::as_const(paths))
            painter.drawPath(path);
    };
    outline(shelf, 14);
    outline(coast, 3);
    painter.setPen(Qt::NoPen);
    for (qsizetype i = 0; i < paths.size(); ++i)
        painter.fillPath(paths[i], colourOf(lands[i].country));
    outline(border, 1);
}

// --- Colours ---------------------------------------------------------------------------------

constexpr int coloursMost = 256;

/// Five bits of each part are enough to tell the tones of a drawing.
QRgb rough(QRgb colour)
{
    return qRgb(qRed(colour) & 0xF8, qGreen(colour) & 0xF8, qBlue(colour) & 0xF8);
}

int distance(QRgb a, QRgb b)
{
    const int red = qRed(a) - qRed(b), green = qGreen(a) - qGreen(b), blue = qBlue(a) - qBlue(b);
    return red * red + green * green + blue * blue;
}

/// The commonest colour of each tone, most common tones first.
QList<QRgb> commonColours(const QImage& picture)
{
    QHash<QRgb, int> exact;
    for (int y = 0; y < picture.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x)
            ++exact[line[x] | 0xFF000000];
    }
    struct Tone {
        int count = 0, best = 0;
        QRgb colour = 0;
    };
    QHash<QRgb, Tone> tones;
    for (auto it = exact.cbegin(); it != exact.cend(); ++it) {
        Tone& tone = tones[rough(it.key())];
        tone.count += it.value();
        if (it.value() > tone.best || (it.value() == tone.best && it.key() < tone.colour)) {
            tone.best = it.value();
            tone.colour = it.key();
        }
    }
    QList<Tone> sorted = tones.values();
    std::sort(sorted.begin(), sorted.end(), [](const Tone& a, const Tone& b) {
        return a.count != b.count ? a.count > b.count : a.colour < b.colour;
    });
    QList<QRgb> colours;
    for (const Tone& tone : sorted.first(qMin<qsizetype>(sorted.size(), coloursMost)))
        colours << tone.colour;
    return colours;
}

} // namespace

QImage drawGlobe(const QList<Land>& lands)
{
    QImage picture(360 * pixelsPerDegree, 180 * pixelsPerDegree, QImage::Format_RGB32);
    picture.fill(sea);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    drawLands(painter, lands);
    painter.setCompositionMode(QPainter::CompositionMode_Multiply);
    painter.setOpacity(0.55);
    drawLines(painter);
    return picture;
}

QImage reduced(const QImage& picture)
{
    const QList<QRgb> colours = commonColours(picture);
    QHash<QRgb, uchar> nearest;
    const auto indexOf = [&](QRgb colour) {
        const auto known = nearest.constFind(colour);
        if (known != nearest.cend())
            return *known;
        const auto best = std::min_element(colours.begin(), colours.end(), [colour](QRgb a, QRgb b) {
            return distance(a, colour) < distance(b, colour);
        });
        return *nearest.insert(colour, uchar(best - colours.begin()));
    };
    QImage out(picture.size(), QImage::Format_Indexed8);
    out.setColorTable(colours);
    for (int y = 0; y < picture.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        uchar* to = out.scanLine(y);
        for (int x = 0; x < picture.width(); ++x)
            to[x] = indexOf(line[x] | 0xFF000000);
    }
    return out;
}

} // namespace globe
