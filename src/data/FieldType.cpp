#include "data/FieldType.h"

namespace data {

using namespace Qt::StringLiterals;

QString nameOfType(int code)
{
    switch (code) {
    case Label: return u"Label"_s;
    case Longitude: return u"Longitude"_s;
    case Latitude: return u"Latitude"_s;
    case Texte: return u"Texte"_s;
    case OuiNon: return u"OuiNon"_s;
    case Réel: return u"Réel"_s;
    case Entier: return u"Entier"_s;
    case Date: return u"Date"_s;
    case Image: return u"Image"_s;
    case TexteMémo: return u"TexteMémo"_s;
    case ListeMultiple: return u"ListeMultiple"_s;
    case ListeSimple: return u"ListeSimple"_s;
    case Botaniste: return u"Botaniste"_s;
    case Localité: return u"Localité"_s;
    case Taxon: return u"Taxon"_s;
    case LienCourant: return u"LienCourant"_s;
    default: return {};
    }
}

std::optional<jet::Field> columnOfType(int code, const QString& column)
{
    jet::Field field;
    field.Name = column;
    switch (code) {
    case Label: // a label keeps a text column like a short text
    case Texte:
    case Image:
    case ListeSimple:
        field.Type = jet::DataType::Text;
        return field;
    case Longitude:
    case Latitude:
    case Réel:
        field.Type = jet::DataType::Double;
        return field;
    case OuiNon:
        field.Type = jet::DataType::Boolean;
        return field;
    case Date: // dates may be partial, so they are text
        field.Type = jet::DataType::Text;
        field.Size = 30;
        return field;
    case TexteMémo:
    case ListeMultiple:
        field.Type = jet::DataType::Memo;
        return field;
    case Entier:
    case Botaniste:
    case Localité:
    case Taxon:
    case LienCourant:
        field.Type = jet::DataType::Long;
        return field;
    default:
        return {};
    }
}

} // namespace data
