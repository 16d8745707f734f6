#include "editing/Formats.h"

#include <array>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

const QStringList& monthNames()
{
    static const QStringList names{u"janvier"_s, u"février"_s, u"mars"_s, u"avril"_s, u"mai"_s,
                                   u"juin"_s, u"juillet"_s, u"août"_s, u"septembre"_s, u"octobre"_s,
                                   u"novembre"_s, u"décembre"_s};
    return names;
}

/// Letters without their accents, so that "fevrier" and "aout" are read.
QString plain(const QString& text)
{
    QString result;
    for (const QChar c : text.normalized(QString::NormalizationForm_D)) {
        if (c.isLetter())
            result += c;
    }
    return result;
}

/// 1 to 12 for a French month name or its beginning of three letters or more ("sept.", "fév"); 0 for none.
int monthOf(const QString& element)
{
    static const QStringList plainNames = [] {
        QStringList names;
        for (const QString& name : monthNames())
            names << plain(name);
        return names;
    }();
    const QString word = plain(element);
    if (word.size() < 3)
        return 0;
    const auto month = std::find_if(plainNames.begin(), plainNames.end(),
                                    [&](const QString& name) { return name.startsWith(word); });
    return month == plainNames.end() ? 0 : int(month - plainNames.begin()) + 1;
}

bool isNumber(const QString& element)
{
    return !element.isEmpty()
           && std::all_of(element.begin(), element.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

/// Cuts "10h30m" between digits; an "s" behind the seconds goes.
QString withoutTimeLetters(const QString& element)
{
    if (monthOf(element))
        return element;
    QString result;
    for (qsizetype i = 0; i < element.size(); ++i) {
        const QChar c = element[i];
        const bool behindDigit = i > 0 && element[i - 1].isDigit();
        if (behindDigit && (c == u'h' || c == u'm'))
            result += u'/';
        else if (!(behindDigit && c == u's'))
            result += c;
    }
    return result;
}

QStringList elementsOf(const QString& text)
{
    QString t = text.toLower();
    for (const QString& separator : {u":"_s, u"\\"_s, u" h "_s, u" m "_s, u"-"_s, u" "_s})
        t.replace(separator, u"/"_s);
    for (const QString& letter : {u"/h/"_s, u"/m/"_s})
        t.replace(letter, u"/"_s);
    t.replace(QChar(QChar::Nbsp), u'/');
    QStringList elements;
    for (const QString& part : t.split(u'/', Qt::SkipEmptyParts)) {
        if (part == u"s")
            continue;
        const QString cut = withoutTimeLetters(part);
        for (const QString& element : cut.split(u'/', Qt::SkipEmptyParts)) {
            if (!element.trimmed().isEmpty())
                elements << element.trimmed();
        }
    }
    return elements;
}

struct Day {
    int year = -1;
    int month = -1; ///< -1 when missing
    int day = -1;
};

int yearOf(const QString& element)
{
    if (!isNumber(element) || element.size() > 4)
        return -1;
    const int value = element.toInt();
    if (element.size() > 2)
        return value;
    return value < 50 ? 2000 + value : 1900 + value;
}

int monthNumber(const QString& element)
{
    if (const int named = monthOf(element))
        return named;
    const int value = isNumber(element) && element.size() <= 2 ? element.toInt() : 0;
    return value >= 1 && value <= 12 ? value : -1;
}

int dayNumber(const QString& element)
{
    const QString digits = element == u"1er" ? u"1"_s : element;
    const int value = isNumber(digits) && digits.size() <= 2 ? digits.toInt() : 0;
    return value >= 1 && value <= 31 ? value : -1;
}

/// Year, month, day as far as there are elements; nothing when one of them cannot be what it should.
std::optional<Day> yearFirst(const QStringList& e)
{
    Day day{yearOf(e[0]), -1, -1};
    if (day.year < 0)
        return {};
    if (e.size() > 1 && (day.month = monthNumber(e[1])) < 0)
        return {};
    if (e.size() > 2 && (day.day = dayNumber(e[2])) < 0)
        return {};
    return day;
}

std::optional<Day> yearLast(const QStringList& e, qsizetype month, qsizetype dayOfMonth)
{
    if (e.size() < 3)
        return {};
    const Day day{yearOf(e[2]), monthNumber(e[month]), dayNumber(e[dayOfMonth])};
    if (day.year < 0 || day.month < 0 || day.day < 0)
        return {};
    return day;
}

std::optional<Day> dayFirst(const QStringList& e)
{
    return yearLast(e, 1, 0);
}

/// As one style shows it; read only where the second element can be no month.
std::optional<Day> dayBehindMonth(const QStringList& e)
{
    return yearLast(e, 0, 1);
}

std::optional<Day> monthFirst(const QStringList& e)
{
    if (e.size() < 2)
        return {};
    const Day day{yearOf(e[1]), monthNumber(e[0]), -1};
    if (day.year < 0 || day.month < 0)
        return {};
    return day;
}

QString two(int value)
{
    if (value < 0 || value > 99)
        return QString::number(value).rightJustified(2, u'0');
    const std::array<QChar, 2> digits{QChar(u'0' + value / 10), QChar(u'0' + value % 10)};
    return QString(digits.data(), 2);
}

QString dateText(const Day& day)
{
    QString text = QString::number(day.year).rightJustified(4, u'0');
    if (day.month > 0)
        text += u'/' + two(day.month);
    if (day.day > 0)
        text += u'/' + two(day.day);
    return text;
}

/// "10", "10:30", "10:30:15.25"; nothing when an element is no time.
std::optional<QString> timeText(const QStringList& elements)
{
    constexpr std::array limits{24, 59, 60};
    if (elements.size() > qsizetype(limits.size()))
        return {};
    QStringList parts;
    for (qsizetype i = 0; i < elements.size(); ++i) {
        const QString whole = elements[i].section(u'.', 0, 0);
        const QString decimals = elements[i].section(u'.', 1);
        const bool decimal = elements[i].contains(u'.');
        if (!isNumber(whole) || whole.size() > 2 || whole.toInt() > limits[size_t(i)])
            return {};
        if (decimal && (i != 2 || !isNumber(decimals)))
            return {};
        parts << two(whole.toInt()) + (decimal ? u'.' + decimals : QString());
    }
    return parts.join(u':');
}

/// " - 10:30" behind a date.
bool isShownTime(QStringView text)
{
    return text.contains(u':') && !text.contains(u'/') && !text.contains(u'\\');
}

/// The date text of elements in one of the orders; empty when they are no date.
QString readElements(const QStringList& elements)
{
    if (elements.isEmpty())
        return {};
    const QStringList date = elements.first(std::min<qsizetype>(3, elements.size()));
    for (const auto reading : {yearFirst, dayFirst, dayBehindMonth, monthFirst}) {
        const std::optional<Day> day = reading(date);
        if (!day || (reading == &monthFirst && elements.size() > 2))
            continue;
        const std::optional<QString> clock = timeText(elements.mid(3));
        if (!clock)
            return {};
        return clock->isEmpty() ? dateText(*day) : dateText(*day) + u' ' + *clock;
    }
    return {};
}

/// The same for a date with its time as they are shown. Without its day the time says nothing.
QString readShown(const QStringList& date, const QStringList& time)
{
    return readElements(date.size() == 3 ? date + time : date);
}

/// The two digits at `at` as a number; -1 when they are none.
int twoDigits(QStringView text, qsizetype at)
{
    const int tens = text[at].unicode() - u'0';
    const int ones = text[at + 1].unicode() - u'0';
    return tens >= 0 && tens <= 9 && ones >= 0 && ones <= 9 ? tens * 10 + ones : -1;
}

/// Reads as ParseDate writes, with whole seconds: what records hold takes this short way.
bool isDateText(QStringView text)
{
    struct Element {
        QChar before;
        int least, most;
    };
    constexpr std::array<Element, 5> elements{{{u'/', 1, 12}, {u'/', 1, 31}, {u' ', 0, 24}, {u':', 0, 59}, {u':', 0, 60}}};
    if (text.size() < 4 || text.size() > 19 || (text.size() - 4) % 3 != 0)
        return false;
    if (twoDigits(text, 0) < 0 || twoDigits(text, 2) < 0)
        return false;
    for (qsizetype at = 4, i = 0; at < text.size(); at += 3, ++i) {
        const Element& element = elements[size_t(i)];
        const int value = twoDigits(text, at + 1);
        if (text[at] != element.before || value < element.least || value > element.most)
            return false;
    }
    return true;
}

/// The elements of a date text, as far as they are there.
struct Shown {
    QString year;
    int month = 0; ///< 0 when missing or none
    int day = -1;  ///< -1 when missing
    QStringView time;
};

Shown shownOf(QStringView text)
{
    Shown shown;
    const qsizetype blank = text.indexOf(u' ');
    QStringView date = blank < 0 ? text : text.first(blank);
    if (blank >= 0)
        shown.time = text.sliced(blank + 1).trimmed();
    int place = 0;
    while (!date.isEmpty() && place < 3) {
        const qsizetype slash = date.indexOf(u'/');
        const QStringView element = slash < 0 ? date : date.first(slash);
        date = slash < 0 ? QStringView() : date.sliced(slash + 1);
        if (element.isEmpty())
            continue;
        if (place == 0)
            shown.year = element.size() < 4 ? element.toString().rightJustified(4, u'0') : element.toString();
        else
            (place == 1 ? shown.month : shown.day) = element.toInt();
        ++place;
    }
    if (shown.month < 1 || shown.month > 12)
        shown.month = 0;
    return shown;
}

void append(QString& text, const QString& part, QChar separator)
{
    if (part.isEmpty())
        return;
    if (!text.isEmpty())
        text += separator;
    text += part;
}

} // namespace

QString ParseDate(const QString& text)
{
    if (isDateText(text))
        return text;
    const QString composed = text.normalized(QString::NormalizationForm_C);
    const qsizetype dash = composed.lastIndexOf(u" - ");
    const auto shown = [&] { return readShown(elementsOf(composed.first(dash)), elementsOf(composed.mid(dash))); };
    if (dash >= 0 && isShownTime(QStringView(composed).sliced(dash)))
        return shown();
    const QString date = readElements(elementsOf(composed));
    return date.isEmpty() && dash >= 0 ? shown() : date;
}

QString FormatDate(const QString& text, int style)
{
    const Shown date = shownOf(text);
    if (date.year.isEmpty())
        return {};
    const QString day = date.day < 0 ? QString() : two(date.day);
    const QString month = date.month ? two(date.month) : QString();
    const QString name = date.month ? monthNames()[date.month - 1] : QString();

    QString shown;
    shown.reserve(32);
    const auto join = [&shown](QChar separator, const QString& first, const QString& second, const QString& third) {
        append(shown, first, separator);
        append(shown, second, separator);
        append(shown, third, separator);
    };
    switch (style) {
    case 0: join(u' ', day, name, date.year); break;
    case 1: join(u'/', day, month, date.year); break;
    case 2: join(u' ', name, date.year, {}); break;
    case 3: join(u'/', month, date.year.right(2), {}); break;
    case 5: join(u'/', month, day, date.year); break;
    default: shown = date.year; break;
    }
    if (!date.time.isEmpty())
        (shown += u" - "_s) += date.time;
    return shown;
}

QString DateBound(const QString& text, bool upper)
{
    // The hour 24 and seconds just inside the minute lie outside every real time in text order.
    static const QStringList last{u"12"_s, u"31"_s, u"24"_s, u"59"_s, u"59.9999991"_s};
    static const QStringList first{u"01"_s, u"01"_s, u"00"_s, u"00"_s, u"00.0000009"_s};
    const QString parsed = ParseDate(text);
    if (parsed.isEmpty())
        return {};
    QStringList elements = QString(parsed).replace(u':', u'/').replace(u' ', u'/').split(u'/');
    while (elements.size() < 6)
        elements << (upper ? last : first)[elements.size() - 1];
    return elements.first(3).join(u'/') + u' ' + elements.mid(3).join(u':');
}

QString NowStamp(const platform::Clock& clock)
{
    return platform::stamp(clock);
}

} // namespace editing
