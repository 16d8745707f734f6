// The patterns of Format.
#include "jet/text/Values.h"

#include <QLocale>
#include <cmath>

namespace jet::text {

using namespace Qt::StringLiterals;

namespace {

// A piece of a pattern: a character that may be a placeholder, or one that stands for itself.
struct Sign {
    QChar character;
    bool quoted = false;
};

using Signs = QList<Sign>;

// Texts in double quotes and what follows a backslash stand for themselves.
Signs signsOf(QStringView pattern)
{
    Signs result;
    bool inQuotes = false;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern[i];
        if (c == u'"')
            inQuotes = !inQuotes;
        else if (c == u'\\' && !inQuotes && i + 1 < pattern.size())
            result.append({pattern[++i], true});
        else
            result.append({c, inQuotes});
    }
    return result;
}

bool hasAny(const Signs& signs, QStringView characters)
{
    return std::any_of(signs.begin(), signs.end(), [characters](const Sign& sign) {
        return !sign.quoted && characters.contains(sign.character, Qt::CaseInsensitive);
    });
}

// --- Numbers -----------------------------------------------------------------------------------

QList<Signs> sections(const Signs& signs)
{
    QList<Signs> result(1);
    for (const Sign& sign : signs) {
        if (!sign.quoted && sign.character == u';')
            result.append(Signs());
        else
            result.last().append(sign);
    }
    return result;
}

struct Layout {
    int whole = 0;         // Least digits before the mark.
    int leastDecimals = 0;
    int mostDecimals = 0;
    bool grouped = false;
    bool percent = false;
};

Layout layoutOf(const Signs& signs)
{
    Layout layout;
    bool behindMark = false;
    for (const Sign& sign : signs) {
        if (sign.quoted)
            continue;
        if (sign.character == u'.')
            behindMark = true;
        else if (sign.character == u'%')
            layout.percent = true;
        else if (sign.character == u',' && !behindMark)
            layout.grouped = true;
        else if (sign.character == u'0' && !behindMark)
            ++layout.whole;
        else if (behindMark && (sign.character == u'0' || sign.character == u'#'))
            ++layout.mostDecimals;
        if (behindMark && sign.character == u'0')
            layout.leastDecimals = layout.mostDecimals;
    }
    return layout;
}

struct Digits {
    QString whole;
    QString decimals;
};

// Rounds half away from zero on the 15 digits that people see: 2.675 gives 2.68, though the number in
// memory lies a little below.
Digits rounded(double value, const Layout& layout)
{
    const QByteArray scientific = QByteArray::number(std::abs(value), 'e', 14);
    QByteArray digits = scientific.left(1) + scientific.mid(2, 14);
    qsizetype mark = scientific.mid(scientific.indexOf('e') + 1).toInt() + 1;
    if (mark < 1) {
        digits.prepend(QByteArray(1 - mark, '0'));
        mark = 1;
    }
    const qsizetype kept = mark + layout.mostDecimals;
    if (digits.size() < kept + 1)
        digits.append(QByteArray(kept + 1 - digits.size(), '0'));
    const bool up = digits[kept] >= '5';
    digits.truncate(kept);
    for (qsizetype i = kept - 1; up && i >= -1; --i) {
        if (i < 0) {
            digits.prepend('1');
            ++mark;
        } else if (digits[i] == '9') {
            digits[i] = '0';
        } else {
            ++digits[i];
            break;
        }
    }
    return {QString::fromLatin1(digits.first(mark)), QString::fromLatin1(digits.sliced(mark))};
}

void fit(Digits& digits, const Layout& layout)
{
    while (digits.whole.startsWith(u'0') && digits.whole.size() > layout.whole)
        digits.whole.remove(0, 1);
    digits.whole = digits.whole.rightJustified(layout.whole, u'0');
    while (digits.decimals.size() > layout.leastDecimals && digits.decimals.endsWith(u'0'))
        digits.decimals.chop(1);
    if (layout.grouped) {
        for (qsizetype at = digits.whole.size() - 3; at > 0; at -= 3)
            digits.whole.insert(at, u',');
    }
}

QString laidOut(const Signs& signs, const Digits& digits)
{
    QString result;
    bool wholeDone = false, markDone = false;
    for (const Sign& sign : signs) {
        const bool place = !sign.quoted && (sign.character == u'0' || sign.character == u'#');
        const bool mark = !sign.quoted && sign.character == u'.';
        if (!wholeDone && (place || mark)) {
            result += digits.whole;
            wholeDone = true;
        }
        if (mark && !markDone) {
            result += u'.' + digits.decimals;
            markDone = true;
        } else if (!place && !mark && (sign.quoted || sign.character != u',')) {
            result += sign.character;
        }
    }
    return result;
}

QString sectionText(double value, const Signs& signs, bool signedSection)
{
    const Layout layout = layoutOf(signs);
    Digits digits = rounded(layout.percent ? value * 100 : value, layout);
    const auto isZero = [](const QString& text) { return text.count(u'0') == text.size(); };
    const bool minus = signedSection && value < 0 && !(isZero(digits.whole) && isZero(digits.decimals));
    fit(digits, layout);
    return (minus ? u"-"_s : QString()) + laidOut(signs, digits);
}

// --- Dates -------------------------------------------------------------------------------------

QString dateElement(const QDateTime& value, QChar letter, qsizetype count, bool minutes, bool twelve)
{
    const QLocale french(QLocale::French, QLocale::France);
    const auto padded = [count](int number) {
        return QString::number(number).rightJustified(count > 1 ? 2 : 1, u'0');
    };
    const QDate date = value.date();
    switch (letter.unicode()) {
    case u'y':
        return count > 2 ? QString::number(date.year()).rightJustified(4, u'0')
                         : QString::number(date.year() % 100).rightJustified(2, u'0');
    case u'm':
        if (minutes)
            return padded(value.time().minute());
        if (count > 2)
            return french.monthName(date.month(), count > 3 ? QLocale::LongFormat : QLocale::ShortFormat);
        return padded(date.month());
    case u'd':
        if (count > 2)
            return french.dayName(date.dayOfWeek(), count > 3 ? QLocale::LongFormat : QLocale::ShortFormat);
        return padded(date.day());
    case u'h':
        return padded(twelve ? (value.time().hour() + 11) % 12 + 1 : value.time().hour());
    case u'n':
        return padded(value.time().minute());
    default:
        return padded(value.time().second());
    }
}

qsizetype runLength(const Signs& signs, qsizetype from)
{
    qsizetype end = from + 1;
    while (end < signs.size() && !signs[end].quoted
           && signs[end].character.toLower() == signs[from].character.toLower())
        ++end;
    return end - from;
}

bool isHalfDay(const Signs& signs, qsizetype at)
{
    const QStringView wanted = u"am/pm";
    for (qsizetype i = 0; i < wanted.size(); ++i) {
        if (at + i >= signs.size() || signs[at + i].character.toLower() != wanted[i])
            return false;
    }
    return true;
}

// --- Texts -------------------------------------------------------------------------------------

bool isTextPlace(const Sign& sign)
{
    return !sign.quoted && (sign.character == u'@' || sign.character == u'&');
}

QString placed(const Signs& signs, QStringView value, bool fromLeft)
{
    const qsizetype places = std::count_if(signs.begin(), signs.end(), isTextPlace);
    // Places are filled from the right: those before the text stay empty; what is too much goes before.
    qsizetype empty = fromLeft ? 0 : std::max<qsizetype>(0, places - value.size());
    qsizetype at = 0, open = places;
    QString result;
    for (const Sign& sign : signs) {
        if (!isTextPlace(sign)) {
            if (sign.quoted || !QStringView(u"<>!").contains(sign.character))
                result += sign.character;
            continue;
        }
        const bool blank = empty > 0 || at >= value.size();
        if (blank && sign.character == u'@')
            result += u' ';
        if (!blank) {
            const qsizetype take = !fromLeft && at == 0 ? std::max<qsizetype>(1, value.size() - open + 1) : 1;
            result += value.sliced(at, take);
            at += take;
        }
        empty -= empty > 0 ? 1 : 0;
        --open;
    }
    if (at < value.size())
        result += value.sliced(at);
    return result;
}

} // namespace

bool isNumberPattern(QStringView pattern) { return hasAny(signsOf(pattern), u"0#"); }

bool isDatePattern(QStringView pattern)
{
    const Signs signs = signsOf(pattern);
    return !hasAny(signs, u"0#@&<>") && hasAny(signs, u"ymdhns");
}

QString formatNumber(double value, QStringView pattern)
{
    const QList<Signs> all = sections(signsOf(pattern));
    if (!std::isfinite(value) || pattern.isEmpty())
        return numberText(value);
    if (value == 0 && all.size() > 2 && !all[2].isEmpty())
        return sectionText(value, all[2], false);
    if (value < 0 && all.size() > 1 && !all[1].isEmpty())
        return sectionText(value, all[1], false);
    return sectionText(value, all[0], true);
}

QString formatDate(const QDateTime& value, QStringView pattern)
{
    const Signs signs = signsOf(pattern);
    bool twelve = false;
    for (qsizetype at = 0; at < signs.size(); ++at)
        twelve = twelve || isHalfDay(signs, at);
    QString result;
    QChar before; // The last element: "m" behind hours is minutes.
    for (qsizetype at = 0; at < signs.size();) {
        const QChar letter = signs[at].character.toLower();
        if (twelve && isHalfDay(signs, at)) {
            result += value.time().hour() < 12 ? u"AM"_s : u"PM"_s;
            at += 5;
            continue;
        }
        if (signs[at].quoted || !QStringView(u"ymdhns").contains(letter)) {
            result += signs[at++].character;
            continue;
        }
        const qsizetype count = runLength(signs, at);
        result += dateElement(value, letter, count, before == u'h' && count < 3, twelve);
        before = letter;
        at += count;
    }
    return result;
}

QString formatText(QStringView value, QStringView pattern)
{
    const Signs signs = signsOf(pattern);
    const QString cased = hasAny(signs, u"<")   ? strConv(value, 2)
                          : hasAny(signs, u">") ? strConv(value, 1)
                                                : value.toString();
    return placed(signs, cased, hasAny(signs, u"!"));
}

} // namespace jet::text
