// Values of a field: normalised on entry, shown as text. Grids come here for every cell, so that stored forms
// take a short way.
#include "editing/Cl_Edition.h"

#include "data/FieldType.h"
#include "editing/FieldTypes.h"
#include "editing/Formats.h"
#include "editing/Trapped.h"
#include "jet/text/Values.h"
#include "platform/Clock.h"

#include <QLocale>
#include <cmath>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype shownRaw = 255; ///< Characters of a raw value that a format shows.

bool isText(const QVariant& value) { return value.typeId() == QMetaType::QString; }
bool isDouble(const QVariant& value) { return value.typeId() == QMetaType::Double; }

/// The text of a value that holds one.
const QString& textIn(const QVariant& value) { return *static_cast<const QString*>(value.constData()); }

/// A number as typed: "12,5", "12.5", "1 234,5" with any of the blanks that group digits.
std::optional<double> typedNumber(QStringView typed)
{
    QVarLengthArray<char, 40> digits;
    for (const QChar c : typed) {
        if (c.isSpace() || c == QChar(0x202F) || c == QChar(QChar::Nbsp))
            continue;
        // Only what a number is written with, so that "inf" and "nan" are texts.
        if (!(c >= u'0' && c <= u'9') && !QStringView(u"+-.,eE").contains(c))
            return {};
        digits.append(c == u',' ? '.' : char(c.unicode()));
    }
    bool valid = false;
    const double number = QByteArrayView(digits.data(), digits.size()).toDouble(&valid);
    return valid && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<double> numberOf(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Double: {
        const double number = *static_cast<const double*>(value.constData());
        return std::isfinite(number) ? std::optional(number) : std::nullopt;
    }
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
        return value.toDouble();
    case QMetaType::QString:
        return typedNumber(textIn(value));
    default:
        return {};
    }
}

QString numberText(double value)
{
    constexpr double exact = 1e15; // fifteen digits show any whole number below
    if (std::abs(value) < exact && value == std::trunc(value))
        return QString::number(qint64(value));
    return jet::text::numberText(value);
}

QString rawText(const QVariant& value)
{
    if (isText(value))
        return textIn(value);
    if (isDouble(value))
        return numberText(value.toDouble());
    return value.toString();
}

/// With exactly four decimals.
QString fourDecimals(double value)
{
    constexpr double scale = 1e4, largest = 1e10, tie = 1e-3;
    const double scaled = std::abs(value) * scale;
    const double whole = std::floor(scaled);
    // Near a half, decimal digits decide.
    if (std::abs(value) >= largest || std::abs(scaled - whole - 0.5) < tie)
        return jet::text::formatNumber(value, u"0.0000");
    const auto units = qint64(scaled - whole > 0.5 ? whole + 1 : whole);
    char text[24];
    char* at = std::end(text);
    qint64 rest = units;
    for (int i = 0; i < 5 || rest > 0; ++i, rest /= 10) {
        *--at = char('0' + rest % 10);
        if (i == 3)
            *--at = '.';
    }
    if (value < 0 && units > 0)
        *--at = '-';
    return QString::fromLatin1(at, std::end(text) - at);
}

bool isTrueText(const QString& text)
{
    constexpr qsizetype longest = 4;
    if (text.size() > longest)
        return false;
    static const QStringList yes{u"v"_s, u"t"_s, u"y"_s, u"o"_s, u"1"_s, u"vrai"_s, u"true"_s, u"yes"_s, u"oui"_s};
    return yes.contains(text.toLower());
}

bool holdsTrue(const QVariant& value)
{
    return isText(value) ? textIn(value) == u"True" : value.typeId() == QMetaType::Bool && value.toBool();
}

/// An identifier as typed or stored: the number a text begins with.
qint32 identifierOf(const QVariant& value)
{
    if (value.typeId() == QMetaType::Int)
        return value.toInt();
    const double number =
        isDouble(value) ? value.toDouble()
                        : trapped("identifier", 0.0, [&] { return jet::text::val(value.toString()); });
    return std::isfinite(number) ? qint32(std::clamp(std::nearbyint(number), -2147483648.0, 2147483647.0)) : 0;
}

/// Degrees of a coordinate text; empty for anything else, numbers too.
QString decimalDegrees(const QVariant& value)
{
    const QString text = isText(value) ? textIn(value) : QString();
    const QChar letter = text.isEmpty() ? QChar() : text.front();
    if (letter == u'W' || letter == u'E')
        return jet::text::numberText(jet::text::roundHalfEven(TextToLongitude(text), 6));
    if (letter == u'N' || letter == u'S') // whole degrees, as it has always been
        return jet::text::numberText(jet::text::roundHalfEven(TextToLatitude(text), 0));
    return {};
}

QVariant trueOrFalse(bool value)
{
    static const QVariant yes(u"True"_s), no(u"False"_s);
    return value ? yes : no;
}

/// Empty for an empty text, whatever else would be a date.
QVariant dateOf(const QVariant& value)
{
    // A moment, as an expression of a query gives it.
    const QString date = value.typeId() == QMetaType::QDateTime ? platform::stamp(value.toDateTime())
                                                                : ParseDate(rawText(value));
    return date.isEmpty() ? QVariant() : QVariant(date);
}

} // namespace

void Cl_Edition::setValue(const QVariant& value)
{
    if (m_field->Locked)
        return;
    const QVariant before = std::exchange(m_field->value, value);
    trapped("value", [this] { normalizeValue(); });
    if (m_field->value.isValid() != before.isValid() || m_field->value != before)
        m_field->Changed = true;
}

void Cl_Edition::normalizeValue()
{
    QVariant& value = m_field->value;
    if (value.isNull() || (isText(value) && textIn(value) == u"Null")) {
        value = QVariant();
        return;
    }
    switch (ctype()) {
    case data::Label:
    case data::Texte:
    case data::TexteMémo:
        if (!isText(value) || textIn(value).isEmpty()) {
            const QString text = rawText(value);
            value = text.isEmpty() ? QVariant() : QVariant(text);
        }
        break;
    case data::Longitude:
    case data::Latitude:
        normalizeCoordinate();
        break;
    case data::OuiNon:
        value = trueOrFalse(holdsTrue(value) || isTrueText(value.toString()));
        break;
    case data::Réel:
    case data::Entier:
        if (isDouble(value))
            break;
        if (const std::optional<double> number = numberOf(value))
            value = *number;
        break;
    case data::Date:
        value = dateOf(value);
        break;
    case data::ListeSimple:
        // Not bound to a row yet: what is typed stands for the first descriptor it matches.
        if (m_field->IDItem == 0) {
            const QString item = SearchListeItem(rawText(value));
            if (!item.isEmpty())
                value = item;
        }
        break;
    case data::Botaniste:
    case data::Localité:
    case data::Taxon:
        value = identifierOf(value);
        break;
    case data::LienCourant:
        value = rawText(value).replace(u';', u',');
        break;
    default:
        break;
    }
}

void Cl_Edition::normalizeCoordinate()
{
    QVariant& value = m_field->value;
    const QString text = value.toString();
    // "12 30" are degrees and minutes.
    const QString inner = text.trimmed();
    const bool severalNumbers = std::any_of(inner.begin(), inner.end(), [](QChar c) { return c.isSpace(); });
    if (const std::optional<double> number = severalNumbers ? std::nullopt : numberOf(value)) {
        value = *number;
        return;
    }
    if (text.trimmed().isEmpty()) // an emptied field is no place on the equator
        value = QVariant();
    else if (ctype() == data::Longitude)
        value = TextToLongitude(NormalizeLongitude(text));
    else
        value = TextToLatitude(NormalizeLatitude(text));
}

/// A name behind the identifier; without a source of names the identifier.
QString Cl_Edition::nameOf(QString (ReferenceNames::*name)(qint32) const) const
{
    if (!m_context.names)
        return rawText(m_field->value);
    return trapped("name", QString(), [&] { return (m_context.names.get()->*name)(identifierOf(m_field->value)); });
}

QString Cl_Edition::linkText() const
{
    const QString ids = rawText(m_field->value);
    if (IDIndividu() < 1)
        return QString::number(ids.split(u',', Qt::SkipEmptyParts).size()) + u" ID(s) dans la sélection"_s;
    if (!m_context.names)
        return ids;
    return trapped("link", QString(), [&] { return m_context.names->lien(linkedModule(), ids); });
}

QString Cl_Edition::TextValue() const
{
    static const QString null = u"< Valeur Nulle >"_s;
    const QVariant& value = m_field->value;
    if (!value.isValid())
        return null;
    switch (ctype()) {
    case data::Longitude:
    case data::Latitude: {
        // A coordinate text that no writing normalised has no text value.
        const std::optional<double> degrees = numberOf(value);
        if (!degrees)
            return {};
        return ctype() == data::Longitude ? LongitudeToText(*degrees) : LatitudeToText(*degrees);
    }
    case data::OuiNon:
        return holdsTrue(value) ? u"Vrai"_s : u"Faux"_s;
    case data::Réel: {
        const std::optional<double> number = numberOf(value);
        return number ? fourDecimals(*number) : rawText(value);
    }
    case data::Date:
        return FormatDate(rawText(value), 0);
    case data::ListeMultiple: {
        const QString text = rawText(value);
        return text.isEmpty() || text == u"NULL" ? null : text.left(shownRaw);
    }
    case data::Botaniste:
        return nameOf(&ReferenceNames::botaniste);
    case data::Localité:
        return nameOf(&ReferenceNames::localité);
    case data::Taxon:
        return nameOf(&ReferenceNames::taxon);
    case data::LienCourant:
        return linkText();
    default:
        return rawText(value);
    }
}

QString Cl_Edition::formatted(const DisplayFormat& format) const
{
    const QVariant& value = m_field->value;
    switch (format.rule) {
    case FormatRule::Raw:
        break;
    case FormatRule::Whole:
        return rawText(value);
    case FormatRule::TextValue:
        return TextValue();
    case FormatRule::Lower:
        return TextValue().toLower();
    case FormatRule::Upper:
        return TextValue().toUpper();
    case FormatRule::Capitals:
        return jet::text::strConv(TextValue(), 3);
    case FormatRule::FileName: {
        const QString text = TextValue();
        return jet::text::strConv(QStringView(text).sliced(text.lastIndexOf(u'\\') + 1), 3);
    }
    case FormatRule::Absolute:
        return numberText(std::abs(jet::text::val(TextValue())));
    case FormatRule::Pair:
        return holdsTrue(value) ? format.yes : format.no;
    case FormatRule::Date:
        return FormatDate(rawText(value), format.style);
    case FormatRule::Shortened: {
        const QString text = rawText(value);
        return text.first(std::max<qsizetype>(0, text.size() - 3));
    }
    case FormatRule::Decimal:
        return decimalDegrees(value);
    case FormatRule::Taxon:
        return nameOf(&ReferenceNames::taxon);
    case FormatRule::TaxonAuthors:
        return nameOf(&ReferenceNames::taxonAuteurs);
    case FormatRule::Family:
        return nameOf(&ReferenceNames::famille).toUpper();
    case FormatRule::Rank:
        return nameOf(&ReferenceNames::rang);
    }
    return rawText(value).left(shownRaw);
}

QString Cl_Edition::FormatedValue()
{
    const QList<DisplayFormat>& list = fieldTypeRow(ctype()).formats;
    if (m_field->Format < 0 || m_field->Format >= list.size())
        m_field->Format = 0;
    QVariant& value = m_field->value;
    if (isText(value)) {
        const QString& text = textIn(value);
        if (text.isEmpty() || text == u"NULL")
            value = QVariant();
        else if (ctype() == data::OuiNon && text == u"Vrai")
            value = trueOrFalse(true);
        else if (ctype() == data::OuiNon && text == u"Faux")
            value = trueOrFalse(false);
    }
    if (!value.isValid())
        return TextValue();
    return trapped("format", QString(), [&] { return formatted(list[m_field->Format]); });
}

} // namespace editing
