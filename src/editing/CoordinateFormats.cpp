#include "editing/Formats.h"

#include "jet/Error.h"
#include "jet/text/Values.h"

#include <array>
#include <cmath>
#include <limits>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

constexpr int decimalsShown = 8;              ///< Of the seconds, at most.
constexpr qint64 second = 100'000'000;        ///< In the units of those decimals.
constexpr qint64 fraction = 1'000'000'000'000; ///< Parts of a degree: enough digits that every half of a microsecond is exact.
constexpr int longestRun = 15;                ///< Digits; longer runs are no coordinates.

/// A coordinate taken apart.
struct Dms {
    bool negative = false; ///< West or south.
    qint64 degrees = 0;
    qint64 minutes = 0;
    qint64 seconds = 0;    ///< In units of 10^-8 seconds.
};

/// Whole sixties go up; more degrees than the limit keep the remainder.
void carry(Dms& dms, int limit)
{
    dms.minutes += dms.seconds / (60 * second);
    dms.seconds %= 60 * second;
    dms.degrees += dms.minutes / 60;
    dms.minutes %= 60;
    if (dms.degrees > limit)
        dms.degrees %= limit;
}

void appendNumber(QString& text, qint64 value, int width)
{
    char digits[20];
    char* at = std::end(digits);
    for (; value > 0 || width > 0; value /= 10, --width)
        *--at = char('0' + value % 10);
    text += QLatin1StringView(at, std::end(digits) - at);
}

/// The normal form; seconds as "00.00######".
QString textOf(const Dms& dms, bool isLongitude)
{
    QString text;
    text.reserve(24);
    text += isLongitude ? (dms.negative ? u'W' : u'E') : (dms.negative ? u'S' : u'N');
    appendNumber(text, dms.degrees, isLongitude ? 3 : 2);
    text += u'°';
    appendNumber(text, dms.minutes, 2);
    text += u'\'';
    appendNumber(text, dms.seconds / second, 2);
    text += u'.';
    qint64 decimals = dms.seconds % second;
    int width = decimalsShown;
    for (; width > 2 && decimals % 10 == 0; --width)
        decimals /= 10;
    appendNumber(text, decimals, width);
    return text;
}

double degreesOf(const Dms& dms)
{
    const double seconds = double(dms.seconds) / double(second);
    const double value = double(dms.degrees) + (double(dms.minutes) + seconds / 60) / 60;
    return dms.negative ? -value : value;
}

/// Whole turns off, then into -180 … 180 (wrap) or -90 … 90 (reflection across the pole). Nothing where the
/// whole degrees are no 32-bit integer.
std::optional<double> reduced(double x, double limit)
{
    if (!(std::abs(std::trunc(x)) <= double(std::numeric_limits<qint32>::max())))
        return {};
    x -= double(qint32(std::trunc(x)) / 360 * 360);
    if (std::abs(x) > limit)
        x = std::copysign(1.0, x) * (limit == 180 ? std::abs(x) - 360 : 180 - std::abs(x));
    return x;
}

/// Seconds are rounded to six decimals, a half to the even neighbour, in whole numbers.
Dms dmsOf(double x, bool negative)
{
    constexpr qint64 microsecond = fraction / 1'000'000;
    const double whole = std::trunc(x);
    const auto rest = qint64(std::nearbyint(std::abs(x - whole) * double(fraction)));
    const qint64 seconds = rest * 60 % fraction * 60;
    qint64 micro = seconds / microsecond;
    const qint64 behind = seconds % microsecond * 2;
    if (behind > microsecond || (behind == microsecond && micro % 2 != 0))
        ++micro;
    return {negative, qint64(std::abs(whole)), rest * 60 / fraction, micro * (second / 1'000'000)};
}

bool isDigit(QChar c) { return c >= u'0' && c <= u'9'; }

/// The next run of digits or of anything else; moves `at` behind it.
QStringView nextRun(QStringView text, bool digits, qsizetype& at)
{
    const qsizetype from = at;
    while (at < text.size() && isDigit(text[at]) == digits)
        ++at;
    return text.sliced(from, at - from);
}

/// A run of digits as a number; an endless one is none.
qint64 numberOf(QStringView run)
{
    while (run.startsWith(u'0'))
        run = run.sliced(1);
    qint64 value = 0;
    for (const QChar c : run.size() > longestRun ? QStringView() : run)
        value = value * 10 + (c.unicode() - u'0');
    return value;
}

/// The decimals of the seconds, rounded to what is shown.
qint64 decimalsOf(QStringView run)
{
    qint64 value = 0;
    for (int i = 0; i < decimalsShown; ++i)
        value = value * 10 + (i < run.size() ? run[i].unicode() - u'0' : 0);
    return value + (run.size() > decimalsShown && run[decimalsShown] >= u'5' ? 1 : 0);
}

Dms parsed(QStringView text, bool isLongitude)
{
    std::array<QStringView, 8> runs;
    qsizetype at = 0;
    for (size_t i = 0; i < runs.size(); ++i)
        runs[i] = nextRun(text, i % 2 != 0, at);

    const QChar mark = runs[0].isEmpty() ? QChar() : runs[0].front().toUpper();
    if (runs[5].isEmpty() && runs[3].size() > 2) {
        runs[5] = runs[3].sliced(2);
        runs[3] = runs[3].first(2);
    }
    Dms dms{mark == u'-' || mark == (isLongitude ? u'W' : u'S'), numberOf(runs[1]), numberOf(runs[3]), 0};
    // The whole sixties of an endless run would not fit in the units of the decimals.
    const qint64 seconds = numberOf(runs[5]);
    dms.minutes += seconds / 60;
    dms.seconds = seconds % 60 * second + decimalsOf(runs[7]);
    carry(dms, isLongitude ? 180 : 90);
    return dms;
}

std::optional<qint16> smallInteger(double value)
{
    const double rounded = jet::text::roundHalfEven(value);
    if (!(rounded >= -32768 && rounded <= 32767))
        return {};
    return qint16(rounded);
}

double leadingNumber(QStringView text)
{
    try {
        return jet::text::val(text);
    } catch (const jet::Error&) { // too large
        return std::numeric_limits<double>::infinity();
    }
}

} // namespace

QString LongitudeToText(double degrees)
{
    const std::optional<double> x = reduced(degrees, 180);
    if (!x)
        return {};
    Dms dms = dmsOf(*x, *x < 0);
    carry(dms, 180);
    return textOf(dms, true);
}

QString LatitudeToText(double degrees)
{
    const std::optional<double> x = reduced(degrees, 90);
    if (!x)
        return {};
    Dms dms = dmsOf(*x, !(*x > 0));
    carry(dms, 90);
    return textOf(dms, false);
}

double TextToLongitude(const QString& text)
{
    return degreesOf(parsed(text, true));
}

double TextToLatitude(const QString& text)
{
    Dms dms = parsed(text, false);
    // A letter that is no hemisphere counts as south; a text without one is read by its normal form.
    const QChar first = text.isEmpty() ? QChar() : text.front().toUpper();
    if (first.isLetter())
        dms.negative = first != u'N';
    return degreesOf(dms);
}

double DmsToDegrees(const QString& text, int limit)
{
    const QString t = QString(text).replace(u',', u'.');
    const auto behind = [&t](QChar mark) {
        const qsizetype at = t.indexOf(mark);
        return at < 0 ? QStringView(t) : QStringView(t).sliced(at + 1);
    };
    const std::optional<qint16> degrees = smallInteger(leadingNumber(t));
    const std::optional<qint16> minutes = smallInteger(leadingNumber(behind(u'°')));
    const double seconds = leadingNumber(behind(u'\''));
    if (!degrees || !minutes || !std::isfinite(seconds))
        return 0;
    const int whole = std::abs(*degrees) > limit ? *degrees % limit : *degrees;
    return whole + (*minutes + seconds / 60) / 60;
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
    constexpr qsizetype least = 8;
    QStringList runs;
    bool digits = false;
    for (qsizetype at = 0; at < text.size() || runs.size() < least; digits = !digits)
        runs << nextRun(text, digits, at).toString();
    return runs;
}

QString NormalizeDms(const QString& text, bool isLongitude)
{
    return textOf(parsed(text, isLongitude), isLongitude);
}

} // namespace editing
