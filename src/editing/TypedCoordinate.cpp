#include "editing/TypedCoordinate.h"

#include "editing/Formats.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

bool isFigure(QChar c)
{
    return c >= u'0' && c <= u'9';
}

/// A number without blanks: "12 30" are degrees and minutes.
std::optional<double> plainDegrees(QString text)
{
    bool number = false;
    const double degrees = text.trimmed().replace(u',', u'.').toDouble(&number);
    return number && std::isfinite(degrees) ? std::optional(degrees) : std::nullopt;
}

} // namespace

QString hemisphereFirst(const QString& text, bool longitude)
{
    QString letters, rest;
    for (const QChar c : text) {
        if (isFigure(c) || c.isSpace() || QStringView(u"-+.,°º'’′\"”″:").contains(c)) // "º" is a letter
            rest += c;
        else if (c.isLetter())
            letters += c.toUpper();
        else
            return {};
    }
    rest = rest.trimmed();
    if (letters == u"O" || letters == u"OUEST") // as the French write west
        letters = u"W"_s;
    else if (letters == u"EST" || letters == u"NORD" || letters == u"SUD")
        letters.truncate(1);
    const QString allowed = longitude ? u"EW"_s : u"NS"_s;
    const bool negative = rest.startsWith(u'-');
    if (letters.size() > 1 || (!letters.isEmpty() && (!allowed.contains(letters) || negative)))
        return {};
    if (rest.startsWith(u'-') || rest.startsWith(u'+'))
        rest.remove(0, 1);
    const QChar side = negative ? (longitude ? u'W' : u'S') : letters.isEmpty() ? allowed[0] : letters[0];
    return side + rest;
}

QVariant typedCoordinate(const QString& text, bool longitude)
{
    if (const auto degrees = plainDegrees(text))
        return *degrees;
    const QString coordinate = hemisphereFirst(text, longitude);
    if (std::none_of(coordinate.begin(), coordinate.end(), isFigure))
        return {};
    const double side = coordinate.front() == u'W' || coordinate.front() == u'S' ? -1 : 1;
    if (const auto degrees = plainDegrees(coordinate.mid(1)))
        return side * *degrees;
    const QString whole = SplitDigitRuns(coordinate).at(1);
    return whole.size() <= 3 && whole.toInt() <= (longitude ? 180 : 90) ? QVariant(coordinate) : QVariant();
}

} // namespace editing
