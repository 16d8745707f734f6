// GPS TrackMaker files, version 211: little-endian records without alignment, one behind the other.
#include "map/Exports.h"

#include <QtEndian>
#include <algorithm>
#include <bit>

namespace map {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 epoch = 631065600; ///< 1989-12-31 in seconds of Unix.
constexpr int white = 0xFFFFFF;
constexpr int styleCount = 4;
constexpr int datumWgs84 = 217;
constexpr int pictureSideMost = 2048;
constexpr qsizetype textMost = 32767; ///< Readers take the length for a signed number.
constexpr qsizetype nameLength = 10;

class Writer {
public:
    void u8(int value) { m_bytes += char(value); }
    void i16(int value) { number<qint16>(qint16(value)); }
    void i32(qint64 value) { number<qint32>(qint32(value)); }
    void f32(double value) { number<quint32>(std::bit_cast<quint32>(float(value))); }
    void f64(double value) { number<quint64>(std::bit_cast<quint64>(value)); }
    void flag(bool value) { i16(value ? -1 : 0); }
    void zeros(int count) { m_bytes += QByteArray(count, '\0'); }
    void raw(const QByteArray& bytes) { m_bytes += bytes; }
    void text(QStringView value)
    {
        const QByteArray bytes = windows1252(value).left(textMost);
        i16(int(bytes.size()));
        raw(bytes);
    }
    void name(QStringView value) { raw(windows1252(value).left(nameLength).leftJustified(nameLength, ' ')); }
    void reserve(qsizetype size) { m_bytes.reserve(size); }
    QByteArray take() { return std::move(m_bytes); }

private:
    template<typename T>
    void number(T value)
    {
        const T little = qToLittleEndian(value);
        m_bytes.append(reinterpret_cast<const char*>(&little), sizeof little);
    }
    QByteArray m_bytes;
};

const QString font = u"Times New Roman"_s;

/// Bounds of everything in the file.
QRectF boundsOf(const Points& points, const ExportContext& context, bool picture)
{
    QRectF bounds = points.bounds();
    if (picture) {
        const Frame& frame = context.frame;
        const QRectF area = QRectF(QPointF(frame.X0, frame.bottom()), QPointF(frame.right(), frame.Y0)).normalized();
        bounds = points.isEmpty() ? area
                                  : QRectF(QPointF(qMin(bounds.left(), area.left()), qMin(bounds.top(), area.top())),
                                           QPointF(qMax(bounds.right(), area.right()),
                                                   qMax(bounds.bottom(), area.bottom())));
    }
    return bounds;
}

void addHeader(Writer& out, const Points& points, const QRectF& bounds, bool picture)
{
    out.i16(211);
    out.raw("TrackMaker");
    out.u8(0);
    out.u8(0);
    out.u8(8); // size of the grid's letters
    out.zeros(4);
    out.i32(0);     // grid
    out.i32(white); // paper
    out.i32(styleCount);
    out.i32(white); // text of waypoints
    out.i32(points.size());
    out.i32(0); // points of tracks
    out.i32(0); // points of routes
    for (const double side : {bounds.right(), bounds.left(), bounds.bottom(), bounds.top()})
        out.f32(side);
    out.i32(picture ? 1 : 0);
    out.i32(0); // tracks
    out.f32(0);
    out.f32(0);
    out.flag(false);
    out.flag(false);
    out.i32(white); // labels
    out.zeros(8);
    out.flag(picture);
    out.i16(8); // size of the labels' letters
    out.text(font);
    out.text(font);
    out.text(u"");
    out.text(u"");
}

void addDatum(Writer& out)
{
    out.i16(0);
    out.zeros(4 * 8);
    out.i16(datumWgs84);
    out.zeros(2 * 8 + 3 * 2);
}

void addPicture(Writer& out, const Frame& frame, qsizetype length)
{
    out.text(u"GTMImage1.bmp");
    out.text(u"Example of Map Image calibrated in GTM");
    for (const double value : {frame.X0, frame.Y0, frame.W, frame.H})
        out.f32(value);
    out.i32(length);
    out.f32(0);
    out.f32(0);
    out.u8(0);
    out.u8(1);
}

/// Seconds since 1989-12-31; 0 for what is no date, or cannot be told in 32 bits.
qint64 secondsOf(const QString& stamp)
{
    // Taken apart by hand: reading by a format takes longer than all the rest of the file.
    const auto part = [&stamp](int from, int length) { return QStringView(stamp).mid(from, length).toInt(); };
    const QDate date(part(0, 4), part(5, 2), part(8, 2));
    const QTime time(part(11, 2), part(14, 2), part(17, 2));
    if (stamp.size() != 19 || !date.isValid() || !time.isValid())
        return 0;
    // The clock's reading as it is: these files know no zone.
    constexpr qint64 secondsOfDay = 86400;
    const qint64 seconds = QDate(1970, 1, 1).daysTo(date) * secondsOfDay + time.msecsSinceStartOfDay() / 1000 - epoch;
    return seconds == qint32(seconds) ? seconds : 0;
}

void addWaypoint(Writer& out, const MapPoint& point)
{
    out.f64(point.at.latitude);
    out.f64(point.at.longitude);
    out.name(point.gpsRef.isEmpty() ? point.name.section(u" - "_s, -1) : point.gpsRef);
    out.text(point.name);
    out.i16(48); // a dot
    out.u8(3);   // comment and symbol
    out.i32(secondsOf(point.modified));
    out.i16(0);
    out.f32(point.altitude.value_or(0));
    out.i16(0);
}

void addStyle(Writer& out, int number)
{
    const bool boxed = number == styleCount - 1;
    out.i32(-11); // 8 points high
    out.text(font);
    out.u8(number);
    out.i32(white);
    out.i32(400); // weight
    out.f32(0);
    out.u8(boxed ? 139 : 0);
    out.flag(boxed);
    out.i32(0); // a dark box behind the white letters
    out.zeros(3);
    out.u8(boxed ? 1 : 0);
}

QByteArray pictureOf(const ExportContext& context)
{
    // Width and height must be positive there; a mirrored scan cannot be told.
    if (context.picture.isNull() || !(context.frame.W > 0) || !(context.frame.H > 0))
        return {};
    const QImage& whole = context.picture;
    const bool large = qMax(whole.width(), whole.height()) > pictureSideMost;
    return bitmapFile(large ? whole.scaled(pictureSideMost, pictureSideMost, Qt::KeepAspectRatio,
                                           Qt::SmoothTransformation)
                            : whole);
}

} // namespace

QByteArray windows1252(QStringView text)
{
    // Most texts are what both code pages share.
    const auto shared = [](QChar c) { return c.unicode() < 0x80 || (c.unicode() >= 0xA0 && c.unicode() <= 0xFF); };
    if (std::all_of(text.begin(), text.end(), shared))
        return text.toLatin1();
    // 0x80 to 0x9F; the rest is Latin-1.
    static constexpr char16_t upper[] = u"\u20AC\u0081\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\u008D\u017D"
                                        u"\u008F\u0090\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\u009D"
                                        u"\u017E\u0178";
    QByteArray bytes;
    bytes.reserve(text.size());
    const QString composed = text.toString().normalized(QString::NormalizationForm_C);
    for (const QChar c : composed) {
        const char16_t code = c.unicode();
        const auto* found = shared(c) ? nullptr : std::find(std::begin(upper), std::end(upper) - 1, code);
        if (!found)
            bytes += char(code);
        else if (found != std::end(upper) - 1)
            bytes += char(0x80 + (found - std::begin(upper)));
        else if (!c.isLowSurrogate())
            bytes += '?';
    }
    return bytes;
}

QByteArray gtmFile(const Points& points, const ExportContext& context)
{
    const QByteArray picture = pictureOf(context);
    const bool mapped = !picture.isEmpty();
    Writer out;
    out.reserve(picture.size() + points.size() * 100 + 1000);
    addHeader(out, points, boundsOf(points, context, mapped), mapped);
    addDatum(out);
    if (mapped)
        addPicture(out, context.frame, picture.size());
    for (const MapPoint& point : points)
        addWaypoint(out, point);
    for (int style = 0; style < styleCount && !points.isEmpty(); ++style)
        addStyle(out, style);
    out.raw(picture);
    return out.take();
}

} // namespace map
