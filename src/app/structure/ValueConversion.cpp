#include "app/structure/ValueConversion.h"

#include "data/FieldType.h"
#include "data/ReferenceTypes.h"
#include "editing/Formats.h"
#include "jet/Recordset.h"
#include "jet/text/Values.h"

#include <cmath>
#include <limits>

namespace app {

using namespace Qt::StringLiterals;

namespace {

constexpr ConvertedValue::Outcome exact = ConvertedValue::Exact;
const ConvertedValue impossible{{}, ConvertedValue::Impossible};

bool isYesNo(int type) { return type == data::OuiNon; }

/// Blanks between groups and the decimal comma are read.
std::optional<double> numberOf(const QString& text)
{
    QString digits;
    for (const QChar c : text) {
        if (!c.isSpace() && c != QChar(0x202F) && c != QChar(0x00A0))
            digits += c;
    }
    if (digits.isEmpty())
        return {};
    try {
        const std::optional<double> number = jet::text::numberOfText(digits);
        return number && std::isfinite(*number) ? number : std::nullopt;
    } catch (const jet::Error&) { // beyond any number
        return std::nullopt;
    }
}

std::optional<bool> yesNoOf(const QString& text)
{
    static const QStringList yes{u"oui"_s, u"vrai"_s, u"true"_s, u"yes"_s, u"o"_s, u"x"_s, u"1"_s, u"-1"_s};
    static const QStringList no{u"non"_s, u"faux"_s, u"false"_s, u"no"_s, u"n"_s, u"0"_s};
    const QString folded = text.trimmed().toLower();
    if (yes.contains(folded))
        return true;
    return no.contains(folded) ? std::optional(false) : std::nullopt;
}

/// A number of degrees, or a text with a letter for the hemisphere.
std::optional<double> degreesOf(const QString& text, bool longitude)
{
    if (const auto number = numberOf(text))
        return number;
    const QString letters = longitude ? u"EWO"_s : u"NS"_s;
    const auto isLetter = [&](QChar c) { return letters.contains(c.toUpper()); };
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    if (std::none_of(text.begin(), text.end(), isLetter) || std::none_of(text.begin(), text.end(), isDigit))
        return {};
    return longitude ? editing::TextToLongitude(editing::NormalizeLongitude(text))
                     : editing::TextToLatitude(editing::NormalizeLatitude(text));
}

QString numberText(double number)
{
    return jet::text::numberText(number).replace(u'.', u',');
}

QString folded(const QString& name)
{
    return name.simplified().toCaseFolded();
}

} // namespace

bool canConvert(int from, int to)
{
    return from == to || (from != data::LienCourant && to != data::LienCourant);
}

ValueConversion::ValueConversion(jet::Database& database, int from, int to)
    : m_database(database), m_from(from), m_to(to)
{
}

void ValueConversion::readNames(int type) const
{
    if (m_read == type)
        return;
    m_read = type;
    m_ids.clear();
    m_names.clear();
    const QString statement =
        type == data::Taxon      ? u"SELECT [ID Taxons], [Nom Complet], [Taxon] FROM Taxons ORDER BY [ID Taxons]"_s
        : type == data::Localité ? u"SELECT [ID Localités], [Localité], [Nom Entier] FROM Localités ORDER BY [ID Localités]"_s
                                 : u"SELECT [ID Collecteurs], [Collecteur], [Initiales] FROM Collecteurs ORDER BY [ID Collecteurs]"_s;
    const auto rows = m_database.OpenRecordset(statement);
    for (; !rows->EOF_(); rows->MoveNext()) {
        const qint32 id = rows->Value(0).toInt();
        for (int column = 1; column < 3; ++column) {
            const QString name = rows->Value(column).toString();
            if (!name.isEmpty() && !m_ids.contains(folded(name)))
                m_ids.insert(folded(name), id);
            if (!name.isEmpty() && !m_names.contains(id))
                m_names.insert(id, name);
        }
    }
}

ConvertedValue ValueConversion::toText(const QString& text) const
{
    const bool whole = m_to == data::TexteMémo || m_to == data::ListeMultiple;
    const qsizetype width = m_to == data::Date ? 30 : jet::defaultTextSize;
    if (whole || text.size() <= width)
        return {text, exact};
    return {text.left(width), ConvertedValue::Approximate};
}

/// A field of one descriptor takes the first of several.
ConvertedValue ValueConversion::toListItem(const QString& text) const
{
    const QStringList items = text.split(u';', Qt::SkipEmptyParts);
    ConvertedValue converted = toText(items.isEmpty() ? QString() : items.first().trimmed());
    if (converted.value.toString().isEmpty())
        return impossible;
    if (items.size() > 1)
        converted.outcome = ConvertedValue::Approximate;
    return converted;
}

ConvertedValue ValueConversion::toReference(const QString& text) const
{
    readNames(m_to);
    const auto found = m_ids.constFind(folded(text));
    return found == m_ids.constEnd() ? impossible : ConvertedValue{*found, exact};
}

ConvertedValue ValueConversion::fromNumber(double number) const
{
    switch (m_to) {
    case data::Réel:
        return {number, exact};
    case data::Entier: {
        const double whole = jet::text::roundHalfEven(number);
        if (std::abs(whole) > double(std::numeric_limits<qint32>::max()))
            return impossible;
        return {int(whole), whole == number ? exact : ConvertedValue::Approximate};
    }
    case data::Longitude:
        return std::abs(number) <= 180 ? ConvertedValue{number, exact} : impossible;
    case data::Latitude:
        return std::abs(number) <= 90 ? ConvertedValue{number, exact} : impossible;
    case data::OuiNon:
        if (number == 0 || std::abs(number) == 1)
            return {number != 0, exact};
        return impossible;
    default:
        return impossible;
    }
}

ConvertedValue ValueConversion::fromText(const QString& text) const
{
    if (text.trimmed().isEmpty())
        return {{}, exact};
    switch (m_to) {
    case data::Réel:
    case data::Entier: {
        const auto number = numberOf(text);
        return number ? fromNumber(*number) : impossible;
    }
    case data::Longitude:
    case data::Latitude: {
        const auto degrees = degreesOf(text, m_to == data::Longitude);
        return degrees ? fromNumber(*degrees) : impossible;
    }
    case data::OuiNon: {
        const auto yes = yesNoOf(text);
        return yes ? ConvertedValue{*yes, exact} : impossible;
    }
    case data::Date: {
        const QString date = editing::ParseDate(text);
        return date.isEmpty() ? impossible : toText(date);
    }
    case data::Botaniste:
    case data::Localité:
    case data::Taxon:
        return toReference(text);
    case data::ListeSimple:
        return toListItem(text);
    default:
        return toText(text);
    }
}

ConvertedValue ValueConversion::operator()(const QVariant& value) const
{
    if (!value.isValid())
        return {isYesNo(m_to) ? QVariant(false) : QVariant(), exact};
    if (!canConvert(m_from, m_to))
        return impossible;
    if (m_from == m_to)
        return {value, exact};
    if (data::isReference(m_from)) {
        // Numbers of rows mean nothing elsewhere; their names do.
        if (data::isReference(m_to))
            return impossible;
        readNames(m_from);
        const auto name = m_names.constFind(value.toInt());
        return name == m_names.constEnd() ? impossible : fromText(*name);
    }
    const bool number = value.typeId() == QMetaType::Int || value.typeId() == QMetaType::Double;
    if (number || value.typeId() == QMetaType::Bool) {
        const bool toNumbers = m_to == data::Réel || m_to == data::Entier || m_to == data::Longitude
                               || m_to == data::Latitude || m_to == data::OuiNon;
        if (toNumbers)
            return fromNumber(number ? value.toDouble() : value.toBool() ? 1 : 0);
        return data::isReference(m_to) || m_to == data::Date ? (number ? fromText(shown(value)) : impossible)
                                                        : fromText(shown(value));
    }
    return fromText(value.toString());
}

QString ValueConversion::shown(const QVariant& value) const
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? u"Oui"_s : u"Non"_s;
    case QMetaType::Int:
    case QMetaType::Double:
        if (data::isReference(m_from)) {
            readNames(m_from);
            return m_names.value(value.toInt(), value.toString());
        }
        if (m_from == data::Longitude)
            return editing::LongitudeToText(value.toDouble());
        if (m_from == data::Latitude)
            return editing::LatitudeToText(value.toDouble());
        return numberText(value.toDouble());
    default:
        return value.toString();
    }
}

} // namespace app
