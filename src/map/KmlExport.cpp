#include "map/Exports.h"

namespace map {

using namespace Qt::StringLiterals;

namespace {

/// Characters that no XML text may hold, however it is written.
bool isForbidden(QStringView text, qsizetype i)
{
    const QChar c = text[i];
    if (c.isHighSurrogate())
        return i + 1 == text.size() || !text[i + 1].isLowSurrogate();
    if (c.isLowSurrogate())
        return i == 0 || !text[i - 1].isHighSurrogate();
    const ushort code = c.unicode();
    return (code < 0x20 && code != u'\t' && code != u'\n' && code != u'\r') || code >= 0xFFFE;
}

QString allowed(const QString& text)
{
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i)
        out += isForbidden(text, i) ? QChar(u' ') : text[i];
    return out;
}

/// "]]>" would end the section: it is split over two.
QString cdata(const QString& text)
{
    return u"<![CDATA["_s + allowed(text).replace(u"]]>"_s, u"]]]]><![CDATA[>"_s) + u"]]>"_s;
}

/// Alpha, blue, green, red.
QString kmlColour(const QColor& colour)
{
    const auto byte = [](int value) { return u"%1"_s.arg(value, 2, 16, QChar(u'0')); };
    return byte(colour.alpha()) + byte(colour.blue()) + byte(colour.green()) + byte(colour.red());
}

class Lines {
public:
    void add(int tabs, const QString& text)
    {
        m_text += QByteArray(tabs, '\t');
        m_text += text.toUtf8();
        m_text += "\r\n";
    }
    QByteArray take() { return std::move(m_text); }
    void reserve(qsizetype size) { m_text.reserve(size); }

private:
    QByteArray m_text;
};

QString coordinates(const MapPoint& point)
{
    return decimalText(point.at.longitude, 8) + u',' + decimalText(point.at.latitude, 8) + u','
           + decimalText(point.altitude.value_or(0), 8);
}

void addPlacemark(Lines& lines, const MapPoint& point)
{
    lines.add(1, u"<Placemark>"_s);
    lines.add(1, u"<name>"_s + cdata(point.name) + u"</name>"_s);
    lines.add(1, u"<styleUrl>#PointIcon</styleUrl>"_s);
    lines.add(1, u"<description>"_s
                     + cdata(u"<i>Ref. GPS: "_s + point.gpsRef + u"</i><br><font color='red'>Date: "_s + point.modified
                             + u"</font>"_s)
                     + u"</description>"_s);
    lines.add(1, u"<Point>"_s);
    lines.add(2, u"<coordinates>"_s + coordinates(point) + u"</coordinates>"_s);
    lines.add(1, u"</Point>"_s);
    lines.add(1, u"</Placemark>"_s);
}

void addStyle(Lines& lines, const QColor& colour)
{
    lines.add(0, u"<Style id='PointIcon'>"_s);
    lines.add(1, u"<IconStyle>"_s);
    lines.add(2, u"<color>"_s + kmlColour(colour) + u"</color>"_s);
    lines.add(2, u"<scale>1.0</scale>"_s);
    lines.add(1, u"</IconStyle>"_s);
    lines.add(0, u"</Style>"_s);
}

constexpr qsizetype bytesOfPoint = 420;

} // namespace

/// The style stands before the name, as these files always had it; every reader takes it so.
QByteArray kmlFile(const Points& points, const ExportContext& context)
{
    Lines lines;
    lines.reserve(points.size() * bytesOfPoint);
    lines.add(0, u"<?xml version='1.0' encoding='UTF-8'?>"_s);
    lines.add(0, u"<kml xmlns='http://www.opengis.net/kml/2.2'>"_s);
    lines.add(0, u"<Document>"_s);
    addStyle(lines, context.colour);
    const QString name = context.name + u" ("_s + context.time + u')';
    lines.add(0, u"<name>"_s + allowed(name).toHtmlEscaped() + u"</name>"_s);
    lines.add(0, u"<open>1</open>"_s);
    lines.add(0, u"<description>"_s + cdata(context.description) + u"</description>"_s);
    lines.add(0, u"<Folder>"_s);
    lines.add(0, u"<name>"_s + cdata(context.region) + u"</name>"_s);
    lines.add(0, u"<open>1</open>"_s);
    for (const MapPoint& point : points)
        addPlacemark(lines, point);
    lines.add(0, u"</Folder>"_s);
    lines.add(0, u"</Document>"_s);
    lines.add(0, u"</kml>"_s);
    return lines.take();
}

} // namespace map
