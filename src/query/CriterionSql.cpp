#include "query/CriterionSql.h"

#include "data/FieldType.h"
#include "jet/SqlText.h"

#include <optional>

namespace query {

using namespace Qt::StringLiterals;
using jet::texte;

namespace {

/// Shorter texts are parts of a date wherever one looks for what contains them.
constexpr qsizetype shortestDate = 4;

const QStringList& knownOperators()
{
    static const QStringList known{u"="_s, u"<>"_s, u"<"_s, u">"_s, u"LIKE"_s, u"NOT LIKE"_s,
                                   u"IS"_s, u"IS NOT"_s, u"IN"_s, u"NOT IN"_s};
    return known;
}

bool isIdentifier(int ctype)
{
    return ctype == data::Botaniste || ctype == data::Localité || ctype == data::Taxon || ctype == data::LienCourant;
}

bool isRegion(const Node& field, const QString& op)
{
    return field.field && field.ctype() == data::Localité && op == u"<" && !field.children.empty();
}

/// The whole number with which a text begins ("12 - Forêt" is 12).
std::optional<qint32> leadingIdentifier(const QString& text)
{
    const QString trimmed = text.trimmed();
    qsizetype end = trimmed.startsWith(u'-') ? 1 : 0;
    while (end < trimmed.size() && trimmed[end].isDigit())
        ++end;
    bool valid = false;
    const qint32 number = trimmed.left(end).toInt(&valid);
    return valid ? std::optional(number) : std::nullopt;
}

[[noreturn]] void refuse(const QString& text)
{
    throw RowRefused{text};
}

QString numberSql(int ctype, const QString& text, const editing::EditingContext& context)
{
    bool whole = false;
    const int plain = text.toInt(&whole);
    if (whole)
        return QString::number(plain);
    const bool coordinate = ctype == data::Longitude || ctype == data::Latitude;
    const bool digits = std::any_of(text.begin(), text.end(), [](QChar c) { return c.isDigit(); });
    editing::Cl_Edition probe(context);
    probe.setCtype(ctype);
    probe.setValue(text);
    const QVariant value = probe.value();
    if (!digits || value.typeId() != QMetaType::Double)
        refuse((coordinate ? u"Cette valeur n'est pas une coordonnée : "_s : u"Cette valeur n'est pas un nombre : "_s)
               + text);
    return jet::nombre(value.toDouble());
}

QString identifierSql(const QString& text)
{
    const std::optional<qint32> number = leadingIdentifier(text);
    if (!number)
        refuse(u"Cette valeur n'est pas un identifiant : "_s + text);
    return QString::number(*number);
}

/// "mars 2001" is 2001/03; a pattern, and what holds no date, stays as typed.
QString dateText(const QString& text, const editing::EditingContext& context)
{
    if (text.contains(u'*') || text.contains(u'?'))
        return text;
    editing::Cl_Edition probe(context);
    probe.setCtype(data::Date);
    probe.setValue(text);
    return probe.value().isValid() ? probe.value().toString() : text;
}

/// Items of a value for IN: one a line; numbers also between commas.
QStringList itemsOf(int ctype, const QString& value)
{
    QStringList items;
    const bool number = isIdentifier(ctype) || ctype == data::Entier;
    for (const QString& line : value.split(u'\n')) {
        for (const QString& item : number ? line.split(u',') : QStringList{line}) {
            if (!item.trimmed().isEmpty())
                items << item.trimmed();
        }
    }
    return items;
}

QString inSql(const Node& field, const QString& value, const editing::EditingContext& context)
{
    QStringList written;
    for (const QString& item : itemsOf(field.ctype(), value))
        written << valueSql(field.ctype(), item, context);
    return u'(' + written.join(u',') + u')';
}

struct ListRule {
    QString op;
    QString joiner;
    QString truth;
};

/// "<>" negates the whole AND: a record that holds one of two items is different. That is how it is meant.
const ListRule* listRule(const QString& op)
{
    static const QList<ListRule> rules{{u"LIKE"_s, u" OR"_s, u"True"_s},
                                       {u"="_s, u" AND"_s, u"True"_s},
                                       {u"<>"_s, u" AND"_s, u"False"_s},
                                       {u"NOT LIKE"_s, u" OR"_s, u"False"_s}};
    for (const ListRule& rule : rules) {
        if (rule.op == op)
            return &rule;
    }
    return nullptr;
}

QString listSql(const QString& expression, const ListRule& rule, const QString& value)
{
    QStringList tests;
    for (const QString& item : value.split(u';')) {
        if (!item.trimmed().isEmpty())
            tests << listTest(expression, item.trimmed());
    }
    if (tests.isEmpty())
        refuse(u"Indiquez au moins un descripteur"_s);
    return u'(' + tests.join(rule.joiner) + u")="_s + rule.truth;
}

QString regionSql(const Node& field, const Structure& structure, const QString& value, const CodeRegion& codeRegion)
{
    const std::optional<qint32> place = leadingIdentifier(value);
    const QString code = place && codeRegion ? codeRegion(*place) : QString();
    if (code.isEmpty())
        refuse(u"Cette localité n'existe pas : "_s + value);
    QString expression = structure.ChampsFromPath(structure.path(*field.children.front()));
    expression.replace(u"[ID Localités]"_s, u"[CodeRegion] "_s);
    // "/" on both sides: the place itself and those under it, but not 3/71 for 3/7.
    return expression + u"&\"/\" LIKE "_s + texte(code + u"/*"_s);
}

QString plainSql(const Node& field, const QString& expression, const QString& op, QString value,
                 const editing::EditingContext& context)
{
    if (op.endsWith(u"IN"))
        return expression + u' ' + op + u' ' + inSql(field, value, context);
    const int type = field.ctype();
    const bool several = value.contains(u'\n');
    if (several && (!field.field || field.field->IsNombre()))
        refuse(u"Une seule valeur est possible avec cet opérateur"_s);
    value.replace(u'\n', u',');
    if (op.endsWith(u"LIKE")) {
        QString pattern = value;
        if (!pattern.contains(u'*')) {
            if (type == data::Date && !several && pattern.size() >= shortestDate) // "19" is a part, not 2019
                pattern = dateText(pattern, context);
            pattern = u'*' + pattern + u'*';
        }
        return expression + u' ' + op + u' ' + texte(pattern);
    }
    return expression + u' ' + op + u' ' + valueSql(type, value, context);
}

} // namespace

QString operatorOf(const Node& field, const QString& text)
{
    QString op = text.trimmed();
    if (field.field) {
        const QList<QStringList>& table = field.field->TabOperateur();
        const qsizetype at = table[0].indexOf(op);
        if (at >= 0)
            return table[1][at];
    }
    op = op.toUpper();
    const bool memo = field.ctype() == data::TexteMémo;
    const bool link = field.field && field.ctype() == data::LienCourant;
    if (op == u"=" && (memo || link))
        return memo ? u"LIKE"_s : u"IN"_s;
    if (op == u"<>" && (memo || link))
        return memo ? u"NOT LIKE"_s : u"NOT IN"_s;
    return knownOperators().contains(op) ? op : u"="_s;
}

QString valueSql(int ctype, const QString& value, const editing::EditingContext& context)
{
    switch (ctype) {
    case data::OuiNon: {
        editing::Cl_Edition probe(context);
        probe.setCtype(ctype);
        probe.setValue(value.trimmed());
        return probe.value().toString() == u"True" ? u"TRUE"_s : u"FALSE"_s;
    }
    case data::Longitude:
    case data::Latitude:
    case data::Réel:
    case data::Entier:
        return numberSql(ctype, value, context);
    case data::Date:
        return texte(dateText(value, context));
    default:
        return isIdentifier(ctype) ? identifierSql(value) : texte(value);
    }
}

QString listTest(const QString& field, const QString& item)
{
    // What stands in brackets in a pattern is itself; "*" stays a wildcard.
    QString pattern;
    for (const QChar c : item) {
        if (c == u'[' || c == u'?' || c == u'#')
            pattern += u'[' + QString(c) + u']';
        else if (c == u'\'')
            pattern += u"''"_s;
        else
            pattern += c;
    }
    return u" ';' &"_s + field + u" &';' "_s + u"LIKE"_s + u" '*;"_s + pattern + u";*'"_s;
}

QString conditionSql(const Criterion& row, const Structure& structure, const CodeRegion& codeRegion)
{
    if (row.path.isEmpty() && row.permanent.isEmpty())
        return {};
    const Node* field = structure.node(row.path);
    if (!field)
        refuse(u"Le champ de ce critère n'existe plus"_s);
    const QString op = operatorOf(*field, row.op);
    const QString expression = structure.ChampsFromPath(row.path);
    if (row.value.trimmed().isEmpty())
        return expression + (op == u"=" || op == u"IS" ? u" IS NULL"_s : u" IS NOT NULL"_s);
    if (op == u"IS" || op == u"IS NOT")
        return expression + u' ' + op + u" NULL"_s;
    if (field->ctype() == data::ListeMultiple) {
        if (const ListRule* rule = listRule(op))
            return listSql(expression, *rule, QString(row.value).replace(u'\n', u','));
    }
    if (isRegion(*field, op))
        return regionSql(*field, structure, row.value, codeRegion);
    return plainSql(*field, expression, op, row.value, structure.context());
}

QStringList conditionJoins(const Criterion& row, const Structure& structure)
{
    const Node* field = structure.node(row.path);
    if (!field)
        return {};
    const bool region = isRegion(*field, operatorOf(*field, row.op)) && !row.value.trimmed().isEmpty();
    return structure.joins(row.path, region);
}

} // namespace query
