// The tables that every project has.
#pragma once

#include "jet/Database.h"

namespace data {

/// The locale string with which project files are created.
inline const QString localeGeneral = QStringLiteral(";LANGID=0x0409;CP=1252;COUNTRY=0");

/// Each creates its table when the file has none; an existing table is left as it is.
void ensureDictionary(jet::Database& database);  ///< `PGTableDefs`
void ensureProperties(jet::Database& database);  ///< `Propriétés`
void ensureCollectors(jet::Database& database);  ///< `Collecteurs`
void ensureLocalities(jet::Database& database);  ///< `Localités`
void ensureTaxa(jet::Database& database);        ///< `Taxons`

/// The definitions of all of them.
QList<jet::TableDef> coreTables();

} // namespace data
