#include "editing/FieldInput.h"

#include "data/FieldType.h"
#include "editing/Formats.h"
#include "editing/Trapped.h"
#include "editing/TypedCoordinate.h"
#include "jet/Compile.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"
#include "jet/Store.h"
#include "jet/sql/Parser.h"
#include "jet/text/Values.h"

#include <cmath>
#include <limits>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

bool isNumberType(int type) { return type == data::Réel || type == data::Entier; }
bool isCoordinate(int type) { return type == data::Longitude || type == data::Latitude; }
bool isList(int type) { return type == data::ListeSimple || type == data::ListeMultiple; }
bool isReference(int type) { return type == data::Botaniste || type == data::Localité || type == data::Taxon; }
bool isTextValue(const QVariant& value) { return value.typeId() == QMetaType::QString; }

bool isPlainNumber(const QString& text)
{
    QString digits;
    for (const QChar c : text) {
        if (!c.isSpace() && c != QChar(0x202F))
            digits += c == u',' ? QChar(u'.') : c;
    }
    bool number = false;
    const double value = digits.toDouble(&number);
    return number && std::isfinite(value);
}

/// Why a typed text is no value of that type; empty when it is one.
QString unreadable(int type, const QString& text)
{
    if (isNumberType(type) && !isPlainNumber(text))
        return u"Ce n'est pas un nombre"_s;
    if (type == data::Date && ParseDate(text).isEmpty())
        return u"Ce n'est pas une date. Exemples : 2001, 2001/03, 2001/03/06"_s;
    if (isCoordinate(type) && !typedCoordinate(text, type == data::Longitude).isValid())
        return type == data::Longitude ? u"Ce n'est pas une longitude. Exemples : W012°30'00, -12,5"_s
                                       : u"Ce n'est pas une latitude. Exemples : N05°07'30, 5,125"_s;
    // Identifiers come as numbers. One that is typed is the beginning of a name ("12 km de Saül").
    if (isReference(type))
        return u"Ce nom n'est pas dans la liste : choisissez-le parmi ceux qui sont proposés, ou ajoutez-le (F3)"_s;
    return {};
}

/// The item of the vocabulary that a text is, however it is written.
QString asListed(const QStringList& vocabulary, const QString& text)
{
    const auto item = std::find_if(vocabulary.begin(), vocabulary.end(), [&](const QString& other) {
        return other.compare(text, Qt::CaseInsensitive) == 0;
    });
    return item == vocabulary.end() ? text : *item;
}

/// The first chosen item that the vocabulary does not hold. Without a vocabulary anything goes.
QString notListed(const Cl_Edition& field)
{
    const QStringList vocabulary = field.ListeItems();
    if (vocabulary.isEmpty())
        return {};
    for (const QString& item : field.SelectedItems()) {
        if (!vocabulary.contains(item, Qt::CaseInsensitive))
            return item;
    }
    return {};
}

/// Why a value of a fitting kind is out of its range.
QString outOfRange(int type, const QVariant& value)
{
    const double number = value.toDouble();
    if (type == data::Entier && number != std::trunc(number))
        return u"Un nombre entier est attendu"_s;
    if (type == data::Entier && std::abs(number) > double(std::numeric_limits<qint32>::max()))
        return u"Ce nombre entier est trop grand"_s;
    if (type == data::Longitude && std::abs(number) > 180)
        return u"Une longitude est comprise entre -180 et 180 degrés"_s;
    if (type == data::Latitude && std::abs(number) > 90)
        return u"Une latitude est comprise entre -90 et 90 degrés"_s;
    return {};
}

} // namespace

bool FieldInput::isRaw(const Cl_Edition& field)
{
    const int type = field.ctype();
    const QVariant value = field.value();
    const bool understood = isNumberType(type) || isCoordinate(type) || isReference(type) || type == data::Date;
    return isTextValue(value) && understood && !unreadable(type, value.toString()).isEmpty();
}

void FieldInput::take(Cl_Edition& field, const QVariant& typed) const
{
    if (field.Locked())
        return;
    QVariant value = typed;
    if (isTextValue(typed)) {
        const QString text = typed.toString().normalized(QString::NormalizationForm_C);
        const bool keepsBlanks = field.ctype() == data::TexteMémo;
        value = text.trimmed().isEmpty() ? QVariant() : QVariant(keepsBlanks ? text : text.trimmed());
        if (value.isValid() && !unreadable(field.ctype(), value.toString()).isEmpty()) {
            field.ChpEdition()->value = value;
            field.ChpEdition()->Changed = true;
            return judge(field);
        }
        if (field.ctype() == data::ListeSimple && value.isValid())
            value = asListed(field.ListeItems(), value.toString());
        if (isCoordinate(field.ctype()) && value.isValid())
            value = typedCoordinate(value.toString(), field.ctype() == data::Longitude);
    }
    field.setValue(value);
    judge(field);
}

void FieldInput::judge(Cl_Edition& field) const
{
    field.setTextError(problem(field));
}

QString FieldInput::problem(const Cl_Edition& field) const
{
    const QVariant value = field.value();
    const int type = field.ctype();
    if (!value.isValid())
        return {};
    if (isTextValue(value)) {
        const QString why = unreadable(type, value.toString());
        if (!why.isEmpty())
            return why;
    } else {
        const QString why = outOfRange(type, value);
        if (!why.isEmpty())
            return why;
    }
    if (const QString item = isList(type) ? notListed(field) : QString(); !item.isEmpty())
        return u"« %1 » n'est pas dans la liste"_s.arg(item);
    return columnProblem(field);
}

QString FieldInput::columnProblem(const Cl_Edition& field) const
{
    if (!m_database || !m_database->isOpen())
        return {};
    return trapped("rule", QString(), [&]() -> QString {
        const jet::TableDef* table = m_database->schema().table(field.NomModule());
        const jet::Field* column = table ? table->field(field.champ()) : nullptr;
        if (!column)
            return {};
        const int width = column->Size > 0 ? column->Size : jet::defaultTextSize;
        if (column->Type == jet::DataType::Text && isTextValue(field.value()) && field.value().toString().size() > width)
            return u"Texte trop long : %1 caractères au plus"_s.arg(width);
        if (const QString other = field.ChpEdition()->ChampUnique ? holderOf(field) : QString(); !other.isEmpty())
            return u"Cette valeur est déjà celle de l'enregistrement N° "_s + other;
        if (column->ValidationRule.trimmed().isEmpty() || satisfies(field, *column))
            return {};
        return column->ValidationText.isEmpty() ? u"La valeur ne respecte pas la règle "_s + column->ValidationRule
                                                : column->ValidationText;
    });
}

/// Another record that has the value of a field whose values are given once; empty for none.
QString FieldInput::holderOf(const Cl_Edition& field) const
{
    const QString module = field.NomModule();
    const QString id = jet::nom(u"ID "_s + module);
    const QVariant value = field.value();
    const QString literal = isTextValue(value) ? jet::texte(value.toString()) : jet::text::numberText(value.toDouble());
    const auto rows = m_database->OpenRecordset(u"SELECT TOP 1 "_s + id + u" FROM "_s + jet::nom(module) + u" WHERE "_s
                                                + jet::nom(field.champ()) + u'=' + literal + u" AND "_s + id + u"<>"_s
                                                + QString::number(field.IDItem()));
    return rows->EOF_() ? QString() : rows->Value(0).toString();
}

/// The rule as the table itself applies it, on this one value. Null is no breach.
bool FieldInput::satisfies(const Cl_Edition& field, const jet::Field& column) const
{
    jet::TableDef single{.Name = field.NomModule()};
    single.Fields = {column};
    const QString rule =
        jet::compileRule(*jet::sql::parseRule(column.ValidationRule, column.Name), single, u"x."_s);
    jet::Statement test(m_database->store(), u"WITH x("_s + jet::quoted(column.Name)
                                                 + u") AS (SELECT ?) SELECT 1 FROM x WHERE NOT("_s + rule + u')');
    const bool yesNo = column.Type == jet::DataType::Boolean;
    test.bind(1, yesNo ? QVariant(field.value().toString() == u"True") : field.value());
    return !test.step();
}

QString typedText(const Cl_Edition& field)
{
    const QVariant value = field.value();
    if (!value.isValid())
        return {};
    const int type = field.ctype();
    if (isTextValue(value) && (isNumberType(type) || isCoordinate(type)))
        return value.toString();
    if (isNumberType(type))
        return jet::text::numberText(value.toDouble()).replace(u'.', u',');
    return isCoordinate(type) ? field.TextValue() : value.toString();
}

} // namespace editing
