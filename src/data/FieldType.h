// The types of fields, by their stored code.
#pragma once

#include "jet/Definitions.h"

#include <optional>

namespace data {

enum FieldType {
    Label = 0, Longitude = 1, Latitude = 2, Texte = 3, OuiNon = 4, Réel = 5, Entier = 6, Date = 7,
    Image = 8, TexteMémo = 9, ListeMultiple = 11, ListeSimple = 12, Botaniste = 13, Localité = 14,
    Taxon = 15, LienCourant = 17,
};

/// The name of a type code ("Longitude"); empty for 10, 16 and anything unknown.
QString nameOfType(int code);

/// The column of a field of that type; nothing for codes without a column (10, 16, above 17).
std::optional<jet::Field> columnOfType(int code, const QString& column);

} // namespace data
