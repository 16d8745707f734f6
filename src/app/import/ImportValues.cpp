#include "app/import/ImportValues.h"

#include "data/FieldType.h"
#include "data/ReferenceTypes.h"
#include "editing/Formats.h"
#include "editing/ProjectRecords.h"
#include "editing/TypedCoordinate.h"

#include <cmath>

namespace app {

using namespace Qt::StringLiterals;

namespace {

bool isSpace(QChar c)
{
    return c.isSpace() || c == QChar(0x00A0) || c == QChar(0x202F) || c == QChar(0x2009);
}

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool isCoordinate(int type)
{
    return type == data::Longitude || type == data::Latitude;
}

/// Degrees, minutes and seconds within their bounds.
bool isWithin(const QString& coordinate, int limit)
{
    const QStringList runs = editing::SplitDigitRuns(coordinate);
    const int degrees = runs[1].toInt();
    return !runs[1].isEmpty() && degrees <= limit && runs[3].toInt() < 60 && runs[5].toInt() < 60
           && (degrees < limit || (runs[3].toInt() == 0 && runs[5].toInt() == 0));
}

} // namespace

ImportValues::ImportValues(const ImportField& field, QChar decimal, const editing::EditingContext& context)
    : m_field(field), m_decimal(decimal), m_edition(context)
{
    addin::ChpEditionPtr chp;
    if (field.module.isEmpty()) {
        chp = std::make_shared<addin::ChpEdition>();
        chp->ctype = field.type;
        chp->champ = field.column;
        chp->Caption = field.caption;
    } else {
        chp = editing::fieldOf(field.field, field.module);
        chp->Descripteurs = field.field.descriptors;
    }
    m_edition.setChpEdition(chp);
    if (const auto column = data::columnOfType(field.type, field.column); column && column->Type == jet::DataType::Text)
        m_width = column->Size > 0 ? column->Size : jet::defaultTextSize;
}

void ImportValues::refuse(const QString& reason, const QString& cell) const
{
    throw RowRefused{m_field.caption + u" : "_s + reason, cell};
}

QVariant ImportValues::read(const QString& cell)
{
    const QString text = cell.normalized(QString::NormalizationForm_C);
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return {};
    if (m_field.type == data::OuiNon)
        return readYesNo(trimmed);
    if (isCoordinate(m_field.type))
        return readCoordinate(trimmed);
    if (data::isReference(m_field.type))
        return trimmed;
    if (m_field.type == data::Réel || m_field.type == data::Entier) {
        double number = 0;
        if (!readNumber(trimmed, m_decimal, number))
            refuse(u"ce n'est pas un nombre"_s, cell);
        if (m_field.type == data::Réel)
            return number;
        if (number != std::trunc(number) || std::abs(number) > double(std::numeric_limits<qint32>::max()))
            refuse(u"ce n'est pas un nombre entier"_s, cell);
        return qint32(number);
    }
    if (m_field.type == data::LienCourant) {
        bool number = false;
        const int id = trimmed.toInt(&number);
        if (!number || id < 1)
            refuse(u"ce n'est pas un identifiant"_s, cell);
        return id;
    }
    return readByForm(m_field.type == data::TexteMémo ? text : trimmed);
}

QVariant ImportValues::readByForm(const QString& text)
{
    QString given = text;
    if (m_field.type == data::ListeMultiple) {
        QStringList items;
        for (const QString& item : text.split(u';', Qt::SkipEmptyParts))
            items << item.trimmed();
        items.removeAll(QString());
        given = items.join(u';');
    }
    m_edition.ChpEdition()->value = QVariant();
    m_input.take(m_edition, given);
    if (const QString problem = m_edition.TextError(); !problem.isEmpty() && m_edition.value().isValid()) {
        const bool list = m_field.type == data::ListeSimple || m_field.type == data::ListeMultiple;
        const bool date = m_field.type == data::Date;
        refuse(list ? u"valeur hors de la liste"_s : date ? u"ce n'est pas une date"_s : problem, text);
    }
    const QVariant value = m_edition.value();
    if (m_width > 0 && value.toString().size() > m_width)
        refuse(u"texte trop long, %1 caractères au plus"_s.arg(m_width), text);
    return value;
}

QVariant ImportValues::readYesNo(const QString& text) const
{
    static const QStringList yes{u"oui"_s, u"o"_s, u"vrai"_s, u"v"_s, u"true"_s, u"t"_s, u"yes"_s, u"y"_s, u"1"_s, u"-1"_s, u"x"_s};
    static const QStringList no{u"non"_s, u"n"_s, u"faux"_s, u"f"_s, u"false"_s, u"no"_s, u"0"_s};
    const QString word = text.toLower();
    if (!yes.contains(word) && !no.contains(word))
        refuse(u"ce n'est ni oui ni non"_s, text);
    return yes.contains(word);
}

QVariant ImportValues::readCoordinate(const QString& text) const
{
    const bool longitude = m_field.type == data::Longitude;
    const int limit = longitude ? 180 : 90;
    double degrees = 0;
    if (readNumber(text, m_decimal, degrees)) {
        if (std::abs(degrees) > limit)
            refuse(u"au-delà de %1 degrés"_s.arg(limit), text);
        return degrees;
    }
    const QString coordinate = editing::hemisphereFirst(text, longitude);
    if (coordinate.isEmpty() || std::none_of(coordinate.begin(), coordinate.end(), isDigit))
        refuse(u"ce n'est pas une coordonnée"_s, text);
    // A letter and decimal degrees.
    if (readNumber(coordinate.mid(1), m_decimal, degrees) && std::abs(degrees) <= limit)
        return coordinate[0] == u'W' || coordinate[0] == u'S' ? -degrees : degrees;
    if (!isWithin(coordinate, limit))
        refuse(u"degrés, minutes ou secondes hors de leurs limites"_s, text);
    return longitude ? editing::TextToLongitude(coordinate) : editing::TextToLatitude(coordinate);
}

bool ImportValues::readNumber(const QString& text, QChar decimal, double& number)
{
    const QChar other = decimal == u',' ? u'.' : u',';
    QString digits;
    for (const QChar c : text) {
        if (!isSpace(c) && c != u'\'')
            digits += c;
    }
    const qsizetype mark = digits.indexOf(decimal);
    if (digits.contains(other)) {
        // Groups of three before the decimal mark, which must be there: without it nobody knows what the other one means.
        if (mark < 0 || digits.lastIndexOf(other) > mark)
            return false;
        for (qsizetype at = digits.indexOf(other); at >= 0; at = digits.indexOf(other, at + 1)) {
            const qsizetype next = digits.indexOf(other, at + 1);
            if ((next < 0 ? mark : next) - at != 4)
                return false;
        }
        digits.remove(other);
    }
    digits.replace(decimal, u'.');
    bool valid = false;
    number = digits.toDouble(&valid);
    return valid && std::isfinite(number);
}

} // namespace app
