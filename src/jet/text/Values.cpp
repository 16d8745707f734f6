#include "jet/text/Values.h"

#include "jet/Error.h"
#include "jet/text/Fold.h"

#include <charconv>
#include <cmath>

namespace jet::text {

using namespace Qt::StringLiterals;

namespace {

bool isDigit(QChar c) { return c >= u'0' && c <= u'9'; }

// --- Reading numbers ---------------------------------------------------------------------------

struct Scanned {
    QByteArray digits; // As from_chars reads it: digits, one ".", "e" and an exponent.
    bool negative = false;
    bool any = false; // At least one digit before the exponent.
    qsizetype end = 0;
};

void scanDigits(QStringView text, qsizetype& at, Scanned& number)
{
    for (; at < text.size() && isDigit(text[at]); ++at) {
        number.digits += char(text[at].unicode());
        number.any = true;
    }
}

// An exponent without digits ("1d") is not read at all.
void scanExponent(QStringView text, qsizetype& at, Scanned& number)
{
    if (at >= text.size() || !u"eEdD"_s.contains(text[at]))
        return;
    qsizetype look = at + 1;
    QByteArray exponent = "e";
    if (look < text.size() && (text[look] == u'+' || text[look] == u'-'))
        exponent += text[look++] == u'-' ? "-" : "";
    const qsizetype first = look;
    for (; look < text.size() && isDigit(text[look]); ++look)
        exponent += char(text[look].unicode());
    if (look == first)
        return;
    number.digits += exponent;
    at = look;
}

Scanned scanNumber(QStringView text, QStringView marks)
{
    Scanned number;
    qsizetype at = 0;
    if (at < text.size() && (text[at] == u'+' || text[at] == u'-'))
        number.negative = text[at++] == u'-';
    scanDigits(text, at, number);
    if (at < text.size() && marks.contains(text[at])) {
        number.digits += '.';
        ++at;
        scanDigits(text, at, number);
    }
    if (number.any)
        scanExponent(text, at, number);
    number.end = at;
    return number;
}

// Out of range means too large, unless the first digit that counts stands far behind the mark.
bool isTooLarge(const QByteArray& digits)
{
    const qsizetype e = digits.indexOf('e');
    const QByteArray mantissa = e < 0 ? digits : digits.first(e);
    qsizetype mark = mantissa.indexOf('.');
    if (mark < 0)
        mark = mantissa.size();
    qsizetype first = 0;
    while (first < mantissa.size() && (mantissa[first] == '0' || mantissa[first] == '.'))
        ++first;
    bool fits = true;
    const qlonglong exponent = e < 0 ? 0 : digits.sliced(e + 1).toLongLong(&fits);
    if (!fits)
        return digits[e + 1] != '-';
    return mark - first + exponent > 0;
}

double valueOf(const Scanned& number)
{
    double value = 0;
    const char* const begin = number.digits.constData();
    const auto [end, error] = std::from_chars(begin, begin + number.digits.size(), value);
    if (error == std::errc::result_out_of_range) {
        if (isTooLarge(number.digits))
            fail(6);
        value = 0;
    }
    return number.negative ? -value : value;
}

// "&HFF", "&O17". Up to 16 bits the number is signed in 16 bits, then in 32; a closing "&" asks for 32.
double radixValue(QStringView text)
{
    const bool hexadecimal = text[1] == u'H' || text[1] == u'h';
    const int base = hexadecimal ? 16 : 8;
    quint64 value = 0;
    qsizetype at = 2;
    for (; at < text.size(); ++at) {
        const int digit = QStringView(u"0123456789abcdef").indexOf(text[at].toLower());
        if (digit < 0 || digit >= base)
            break;
        value = value * quint64(base) + quint64(digit);
        if (value > 0xFFFFFFFFu)
            fail(6);
    }
    const bool isLong = value > 0xFFFF || (at < text.size() && text[at] == u'&');
    return isLong ? double(qint32(quint32(value))) : double(qint16(quint16(value)));
}

bool isRadix(QStringView text)
{
    return text.size() > 2 && text[0] == u'&' && u"HhOo"_s.contains(text[1]);
}

// --- Reading dates -----------------------------------------------------------------------------

// Two or three whole numbers between separators; nothing for any other text.
std::optional<QList<int>> parts(QStringView text, QStringView separators)
{
    QList<int> result;
    qsizetype from = 0;
    for (qsizetype at = 0; at <= text.size(); ++at) {
        if (at < text.size() && !separators.contains(text[at])) {
            if (!isDigit(text[at]))
                return {};
            continue;
        }
        if (at == from || at - from > 4)
            return {};
        result.append(text.sliced(from, at - from).toInt());
        from = at + 1;
    }
    if (result.size() < 2 || result.size() > 3)
        return {};
    return result;
}

// Two digits of a year: 30 to 99 lie in the last century.
int fullYear(int year, qsizetype digits)
{
    if (digits > 2)
        return year;
    return year < 30 ? 2000 + year : 1900 + year;
}

std::optional<QDate> dateOnly(QStringView text)
{
    const auto p = parts(text, u"/-.");
    if (!p || p->size() != 3)
        return {};
    const auto isSeparator = [](QChar c) { return !isDigit(c); };
    const qsizetype first = std::find_if(text.begin(), text.end(), isSeparator) - text.begin();
    const bool yearFirst = first > 2;
    const qsizetype last = text.end() - std::find_if(text.rbegin(), text.rend(), isSeparator).base();
    const QDate date = yearFirst ? QDate(p->at(0), p->at(1), p->at(2))
                                 : QDate(fullYear(p->at(2), last), p->at(1), p->at(0));
    return date.isValid() ? std::optional(date) : std::nullopt;
}

std::optional<QTime> timeOnly(QStringView text)
{
    const auto p = parts(text, u":");
    if (!p)
        return {};
    const QTime time(p->at(0), p->at(1), p->size() > 2 ? p->at(2) : 0);
    return time.isValid() ? std::optional(time) : std::nullopt;
}

const QDate& epoch()
{
    static const QDate day(1899, 12, 30);
    return day;
}

constexpr double millisecondsPerDay = 86'400'000.0;
constexpr double firstDay = -657434;    // 0100-01-01
constexpr double behindLastDay = 2958466; // 10000-01-01

// --- Case --------------------------------------------------------------------------------------

// Character by character: the length stays, so "ß" stays "ß" in upper case.
template<typename Change> QString mapped(QStringView text, Change change)
{
    QString result;
    result.reserve(text.size());
    for (qsizetype at = 0; at < text.size();) {
        const char32_t c = change(nextCodePoint(text, at));
        result += QChar::fromUcs4(c);
    }
    return result;
}

bool startsWord(char32_t before)
{
    return before == 0 || (before >= 9 && before <= 13) || before == U' ';
}

} // namespace

double val(QStringView text)
{
    QString kept;
    kept.reserve(text.size());
    for (const QChar c : text) {
        if (c != u' ' && c != u'\t' && c != u'\n' && c != u'\r')
            kept += c;
    }
    if (isRadix(kept))
        return radixValue(kept);
    const Scanned number = scanNumber(kept, u".");
    return number.any ? valueOf(number) : 0;
}

std::optional<double> numberOfText(QStringView text)
{
    text = text.trimmed();
    if (isRadix(text))
        return radixValue(text);
    const Scanned number = scanNumber(text, u".,");
    if (!number.any || number.end != text.size())
        return {};
    return valueOf(number);
}

QString strConv(QStringView text, int mode)
{
    const auto upper = [](char32_t c) { return QChar::toUpper(c); };
    const auto lower = [](char32_t c) { return QChar::toLower(c); };
    if (mode == 1)
        return mapped(text, upper);
    if (mode == 2)
        return mapped(text, lower);
    if (mode != 3)
        fail(5, u"StrConv"_s);
    char32_t before = 0;
    return mapped(text, [&](char32_t c) {
        const bool first = startsWord(std::exchange(before, c));
        return first ? upper(c) : lower(c);
    });
}

QString trimBlanks(QStringView text, bool left, bool right)
{
    const auto isBlank = [](QChar c) { return c == u' ' || c == QChar(0x3000); };
    while (right && !text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    while (left && !text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    return text.toString();
}

QString numberText(double value)
{
    return QString::number(value == 0 ? 0.0 : value, 'G', 15); // No "-0".
}

double roundHalfEven(double value, int digits)
{
    if (digits < 0)
        fail(5, u"Round"_s);
    const double scale = std::pow(10.0, digits);
    const double scaled = value * scale;
    // From 2^52 on there is no fraction left to round.
    if (!std::isfinite(scaled) || std::abs(scaled) >= 4503599627370496.0)
        return value;
    return std::nearbyint(scaled) / scale;
}

double dateToDays(const QDateTime& value)
{
    const QDateTime local = value.toLocalTime();
    return double(epoch().daysTo(local.date())) + local.time().msecsSinceStartOfDay() / millisecondsPerDay;
}

QDateTime daysToDate(double days)
{
    if (!(days >= firstDay && days < behindLastDay))
        fail(6, numberText(days));
    const qint64 milliseconds = std::llround(days * millisecondsPerDay);
    const qint64 perDay = qint64(millisecondsPerDay);
    qint64 day = milliseconds / perDay;
    if (milliseconds % perDay < 0)
        --day;
    return QDateTime(epoch().addDays(day), QTime::fromMSecsSinceStartOfDay(int(milliseconds - day * perDay)));
}

std::optional<QDateTime> dateOfText(QStringView text)
{
    text = text.trimmed();
    const qsizetype blank = text.indexOf(u' ');
    if (blank < 0) {
        if (const auto time = timeOnly(text))
            return QDateTime(epoch(), *time);
        const auto date = dateOnly(text);
        return date ? std::optional(QDateTime(*date, QTime(0, 0))) : std::nullopt;
    }
    const auto date = dateOnly(text.first(blank));
    const auto time = timeOnly(text.sliced(blank + 1).trimmed());
    if (!date || !time)
        return {};
    return QDateTime(*date, *time);
}

} // namespace jet::text
