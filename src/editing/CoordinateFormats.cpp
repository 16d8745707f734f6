#include "editing/Formats.h"

#include "jet/Error.h"
#include "jet/text/Values.h"

#include <cmath>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

__extension__ using Wide = __int128;

constexpr int fractionDigits = 18;
constexpr qint64 one = 1'000'000'000'000'000'000; // 10^18: the fraction of a degree as a whole number
constexpr qint64 microsecond = one / 1'000'000;
constexpr double largestRun = 1e15; // digit runs beyond are no coordinates

/// The fraction of |x| in units of 10^-18, taken from the decimal text of x, so that 0.1 is
/// exactly a tenth.
qint64 decimalFraction(double x)
{
    const QString text = QString::number(std::abs(x), 'f', 15);
    return text.section(u'.', 1).leftJustified(fractionDigits, u'0').left(fractionDigits).toLongLong();
}

/// Whole turns off, then into -180 … 180 (wrap) or -90 … 90 (reflection across the pole).
double reduced(double x, double limit, double mirror)
{
    if (!std::isfinite(x))
        return 0;
    x = std::fmod(std::trunc(x), 360.0) + (x - std::trunc(x));
    if (std::abs(x) > limit)
        x = std::copysign(1.0, x) * (limit == mirror ? std::abs(x) - 360.0 : mirror - std::abs(x));
    return x;
}

QString dmsText(double x, QChar letter, int width)
{
    const auto degrees = qint64(std::abs(std::trunc(x)));
    const Wide sixtieths = Wide(decimalFraction(x)) * 60;
    const auto minutes = int(sixtieths / one);
    const Wide seconds = (sixtieths % one) * 60;
    // To six decimals, a half to the even neighbour.
    auto micro = qint64(seconds / microsecond);
    const auto rest = qint64(seconds % microsecond);
    if (rest * 2 > microsecond || (rest * 2 == microsecond && micro % 2 != 0))
        ++micro;
    return letter + QString::number(degrees).rightJustified(width, u'0') + u'°'
           + QString::number(minutes).rightJustified(2, u'0') + u'\''
           + QString::number(micro / 1'000'000).rightJustified(2, u'0') + u'.'
           + QString::number(micro % 1'000'000).rightJustified(6, u'0');
}

double leadingNumber(const QString& text)
{
    try {
        return jet::text::val(text);
    } catch (const jet::Error&) {
        return 0;
    }
}

/// A run of digits as a number; an endless run is none.
double numberOf(const QString& run)
{
    const double value = run.toDouble();
    return value <= largestRun ? value : 0;
}

qint64 smallInteger(double value)
{
    const double rounded = jet::text::roundHalfEven(value);
    return std::abs(rounded) <= 32767 ? qint64(rounded) : 0;
}

/// "00.00######"
QString secondsText(double seconds)
{
    QString text = QString::number(seconds, 'f', 8);
    while (text.endsWith(u'0') && text.size() - text.indexOf(u'.') > 3)
        text.chop(1);
    return text.indexOf(u'.') < 2 ? u'0' + text : text;
}

QString padded(double value, int width)
{
    return QString::number(qint64(value)).rightJustified(width, u'0');
}

} // namespace

QString LongitudeToText(double degrees)
{
    const double x = reduced(degrees, 180, 180);
    return NormalizeLongitude(dmsText(x, x < 0 ? u'W' : u'E', 3));
}

QString LatitudeToText(double degrees)
{
    const double x = reduced(degrees, 90, 180);
    return NormalizeLatitude(dmsText(x, x > 0 ? u'N' : u'S', 2));
}

double TextToLongitude(const QString& text)
{
    const QString normal = NormalizeLongitude(text);
    return (normal.startsWith(u'W') ? -1 : 1) * DmsToDegrees(normal.mid(1), 180);
}

double TextToLatitude(const QString& text)
{
    const QString normal = NormalizeLatitude(text);
    // A letter that is no hemisphere counts as south; a text without one is read by its normal form.
    const QChar first = text.isEmpty() ? QChar() : text.front().toUpper();
    const bool north = first.isLetter() ? first == u'N' : normal.startsWith(u'N');
    return (north ? 1 : -1) * DmsToDegrees(normal.mid(1), 90);
}

double DmsToDegrees(const QString& text, int limit)
{
    const QString t = QString(text).replace(u',', u'.');
    auto degrees = smallInteger(leadingNumber(t));
    if (std::abs(degrees) > limit)
        degrees -= degrees / limit * limit;
    const auto behind = [&t](QChar mark) {
        const qsizetype at = t.indexOf(mark);
        return at < 0 ? t : t.mid(at + 1);
    };
    const auto minutes = double(smallInteger(leadingNumber(behind(u'°'))));
    const double seconds = leadingNumber(behind(u'\''));
    return double(degrees) + (minutes + seconds / 60) / 60;
}

QString NormalizeLongitude(const QString& text)
{
    return NormalizeDms(text, true);
}

QString NormalizeLatitude(const QString& text)
{
    return NormalizeDms(text, false);
}

QStringList SplitDigitRuns(const QString& text)
{
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    QStringList runs{QString()};
    bool digits = false;
    for (const QChar c : text) {
        if (isDigit(c) != digits) {
            runs << QString();
            digits = !digits;
        }
        runs.last() += c;
    }
    while (runs.size() < 8)
        runs << QString();
    return runs;
}

QString NormalizeDms(const QString& text, bool isLongitude)
{
    QStringList runs = SplitDigitRuns(text);
    const int limit = isLongitude ? 180 : 90;
    const QString mark = runs[0].toUpper();
    const bool negative = mark.startsWith(u'-') || mark.startsWith(isLongitude ? u'W' : u'S');
    const QChar letter = isLongitude ? (negative ? u'W' : u'E') : (negative ? u'S' : u'N');

    if (runs[5].isEmpty() && runs[3].size() > 2) {
        runs[5] = runs[3].mid(2);
        runs[3].truncate(2);
    }
    double seconds = numberOf(runs[5]);
    double minutes = numberOf(runs[3]);
    double degrees = numberOf(runs[1]);
    minutes += std::floor(seconds / 60);
    seconds = std::fmod(seconds, 60);
    degrees += std::floor(minutes / 60);
    minutes = std::fmod(minutes, 60);
    if (degrees > limit)
        degrees = std::fmod(degrees, limit);
    seconds += (u"0."_s + runs[7].left(fractionDigits)).toDouble();
    return letter + padded(degrees, isLongitude ? 3 : 2) + u'°' + padded(minutes, 2) + u'\''
           + secondsText(seconds);
}

} // namespace editing
