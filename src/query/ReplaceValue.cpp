// The value syntax of batch replacements.
#include "query/BatchReplace.h"

#include "data/FieldType.h"
#include "jet/SqlText.h"

namespace query {

using namespace Qt::StringLiterals;

namespace {

bool isNumber(int ctype)
{
    return ctype == data::Longitude || ctype == data::Latitude || ctype == data::Réel || ctype == data::Entier;
}

bool isText(int ctype)
{
    return ctype == data::Label || ctype == data::Texte || ctype == data::Image || ctype == data::TexteMémo
           || ctype == data::ListeMultiple || ctype == data::ListeSimple;
}

/// The operator stands at the end of the text, and the side of its tilde is the side of the field: "10~-" is the field less 10,
/// "10-~" is 10 less the field.
QString onPresentValue(int ctype, const QString& field, const QString& value, const editing::EditingContext& context)
{
    const QString end = value.right(2);
    const bool fieldFirst = end.startsWith(u'~');
    const QString sign = fieldFirst ? end.mid(1) : end.left(1);
    const bool known = end.count(u'~') == 1 && (isNumber(ctype) ? u"+-*/"_s.contains(sign) : isText(ctype) && sign == u"&");
    if (!known)
        throw RowRefused{u"L'opérateur après la valeur n'est pas de ceux de ce champ : "_s + value};
    const QString operand = valueSql(isNumber(ctype) ? int(data::Réel) : int(data::Texte), value.chopped(2), context);
    const QString between = u' ' + sign + u' ';
    return fieldFirst ? field + between + operand : operand + between + field;
}

} // namespace

QString replaceValue(int ctype, const QString& field, const QString& value, const editing::EditingContext& context)
{
    if (value.isEmpty())
        return u"Null"_s;
    if (ctype == data::Taxon && value.trimmed() == validName)
        return u"[Taxons].[ID Valid]"_s;
    if (value.contains(u'~'))
        return onPresentValue(ctype, field, value, context);
    if (ctype == data::OuiNon)
        return valueSql(ctype, value, context) == u"TRUE" ? u"True"_s : u"False"_s;
    return valueSql(ctype, value, context);
}

} // namespace query
