// Values of a field: normalised on entry, shown as text.
#include "editing/Cl_Edition.h"

#include "data/FieldType.h"
#include "editing/Formats.h"
#include "jet/text/Values.h"

#include <QLocale>
#include <cmath>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype shownRaw = 255; ///< Characters of a raw value that a format shows.

/// A number as typed or stored: "12,5", "12.5", "1 234,5" with any of the blanks that group digits.
std::optional<double> numberOf(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        return value.toDouble();
    case QMetaType::QString:
        break;
    default:
        return {};
    }
    QString text;
    for (const QChar c : value.toString()) {
        if (c == u',')
            text += u'.';
        else if (!c.isSpace() && c != QChar(0x202F) && c != QChar(QChar::Nbsp))
            text += c;
    }
    bool valid = false;
    const double number = QLocale::c().toDouble(text, &valid);
    return valid && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

double leadingNumber(const QString& text)
{
    try {
        return jet::text::val(text);
    } catch (const std::exception&) {
        return 0;
    }
}

QString rawText(const QVariant& value)
{
    if (value.typeId() == QMetaType::Double)
        return jet::text::numberText(value.toDouble());
    return value.toString();
}

bool isTrueText(const QString& text)
{
    static const QStringList yes{u"v"_s, u"t"_s, u"y"_s, u"o"_s, u"1"_s, u"vrai"_s, u"true"_s, u"yes"_s, u"oui"_s};
    return yes.contains(text.toLower());
}

bool holdsTrue(const QVariant& value)
{
    return value.toString() == u"True" || (value.typeId() == QMetaType::Bool && value.toBool());
}

/// "DegréMinutesSecondes" is the text value; this is "Décimal".
QString decimalDegrees(const QString& text)
{
    const QChar letter = text.isEmpty() ? QChar() : text.front();
    if (letter == u'W' || letter == u'E')
        return jet::text::numberText(jet::text::roundHalfEven(TextToLongitude(text), 6));
    if (letter == u'N' || letter == u'S') // whole degrees, as it has always been
        return jet::text::numberText(jet::text::roundHalfEven(TextToLatitude(text), 0));
    return {};
}

QString shortened(const QVariant& value)
{
    return rawText(value).left(shownRaw);
}

} // namespace

void Cl_Edition::setValue(const QVariant& value)
{
    if (m_field->Locked)
        return;
    const QVariant before = m_field->value;
    m_field->value = value;
    normalizeValue();
    if (m_field->value != before || m_field->value.isValid() != before.isValid())
        m_field->Changed = true;
}

void Cl_Edition::normalizeValue()
{
    QVariant& value = m_field->value;
    if (value.typeId() == QMetaType::QString && value.toString() == u"Null")
        value = QVariant();
    if (!value.isValid() || value.isNull()) {
        value = QVariant();
        return;
    }
    const QString text = value.toString();
    switch (ctype()) {
    case data::Label:
    case data::Texte:
    case data::TexteMémo:
        value = text.isEmpty() ? QVariant() : QVariant(text);
        break;
    case data::Longitude:
    case data::Latitude: {
        const std::optional<double> number = numberOf(value);
        if (!number && text.trimmed().isEmpty())
            value = QVariant();
        else if (number)
            value = *number;
        else
            value = ctype() == data::Longitude ? TextToLongitude(NormalizeLongitude(text))
                                               : TextToLatitude(NormalizeLatitude(text));
        break;
    }
    case data::OuiNon:
        value = holdsTrue(value) || isTrueText(text) ? u"True"_s : u"False"_s;
        break;
    case data::Réel:
    case data::Entier:
        if (const std::optional<double> number = numberOf(value))
            value = *number;
        break;
    case data::Date: {
        const QString date = ParseDate(text);
        value = date.isEmpty() ? QVariant() : QVariant(date);
        break;
    }
    case data::ListeSimple:
        if (m_field->IDItem == 0) {
            // Not bound to a row yet: what is typed stands for the first descriptor that begins so.
            const QString item = SearchListeItem(text);
            if (!item.isEmpty())
                value = item;
        }
        break;
    case data::Botaniste:
    case data::Localité:
    case data::Taxon:
        value = qint32(std::clamp(leadingNumber(text), -2147483648.0, 2147483647.0));
        break;
    case data::LienCourant:
        value = QString(text).replace(u';', u',');
        break;
    default:
        break;
    }
}

QString Cl_Edition::TextValue() const
{
    const QVariant& value = m_field->value;
    if (!value.isValid())
        return u"< Valeur Nulle >"_s;
    const auto id = [&] { return value.toInt(); };
    switch (ctype()) {
    case data::Longitude:
        return LongitudeToText(value.toDouble());
    case data::Latitude:
        return LatitudeToText(value.toDouble());
    case data::OuiNon:
        return holdsTrue(value) ? u"Vrai"_s : u"Faux"_s;
    case data::Réel: {
        const std::optional<double> number = numberOf(value);
        return number ? QLocale::c().toString(jet::text::roundHalfEven(*number, 4), 'f', 4) : rawText(value);
    }
    case data::Date:
        return FormatDate(value.toString(), 0);
    case data::ListeMultiple:
        return shortened(value);
    case data::Botaniste:
        return m_context.names ? m_context.names->botaniste(id()) : rawText(value);
    case data::Localité:
        return m_context.names ? m_context.names->localité(id()) : rawText(value);
    case data::Taxon:
        return m_context.names ? m_context.names->taxon(id()) : rawText(value);
    case data::LienCourant:
        if (IDIndividu() < 1)
            return QString::number(value.toString().split(u',', Qt::SkipEmptyParts).size())
                   + u" ID(s) dans la sélection"_s;
        return m_context.names ? m_context.names->lien(NomModule(), value.toString()) : rawText(value);
    default:
        return rawText(value);
    }
}

QString Cl_Edition::formatted(const QString& format) const
{
    const QVariant& value = m_field->value;
    if (format == u"Vrai/Faux" || format == u"Oui/Non" || format == u"True/False")
        return format.section(u'/', holdsTrue(value) ? 0 : 1, holdsTrue(value) ? 0 : 1);
    static const QHash<QString, int> dateStyles{{u"06 mars 2001"_s, 0}, {u"06/03/2001"_s, 1}, {u"mars 2001"_s, 2},
                                                {u"03/01"_s, 3}, {u"2001"_s, 4}, {u"03/06/2001"_s, 5}};
    if (const auto style = dateStyles.find(format); style != dateStyles.end())
        return FormatDate(value.toString(), *style);
    if (ctype() == data::Taxon && m_context.names) {
        const qint32 id = value.toInt();
        if (format == u"Taxon")
            return m_context.names->taxon(id);
        if (format == u"Taxon auteur(s)")
            return m_context.names->taxonAuteurs(id);
        if (format == u"Famille")
            return m_context.names->famille(id).toUpper();
        if (format == u"Rang taxonomique")
            return m_context.names->rang(id);
    }
    if (format == u"DegréMinutesSecondes" || format == u"Normal")
        return TextValue();
    if (format == u"DegréMinutes")
        return rawText(value).chopped(std::min<qsizetype>(3, rawText(value).size()));
    if (format == u"Décimal")
        return decimalDegrees(value.typeId() == QMetaType::QString ? value.toString() : QString());
    if (format == u"Texte")
        return rawText(value);
    if (format == u"Minuscule")
        return TextValue().toLower();
    if (format == u"Majuscule")
        return TextValue().toUpper();
    if (format == u"1ère Majuscule")
        return jet::text::strConv(TextValue(), 3);
    if (format == u"Image")
        return jet::text::strConv(TextValue().section(u'\\', -1), 3);
    if (format == u"Valeur absolue")
        return jet::text::numberText(std::abs(leadingNumber(TextValue())));
    return shortened(value);
}

QString Cl_Edition::FormatedValue()
{
    const QStringList list = formats();
    if (m_field->Format < 0 || m_field->Format >= list.size())
        m_field->Format = 0;
    QVariant& value = m_field->value;
    const QString text = value.toString();
    if (value.typeId() == QMetaType::QString && (text.isEmpty() || text == u"NULL"))
        value = QVariant();
    if (!value.isValid())
        return TextValue();
    if (ctype() == data::OuiNon && text == u"Vrai")
        value = u"True"_s;
    else if (ctype() == data::OuiNon && text == u"Faux")
        value = u"False"_s;
    return formatted(list[m_field->Format]);
}

} // namespace editing
