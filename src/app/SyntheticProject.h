// Invented records in any number, for work on scale.
#pragma once

#include "app/Demo.h"
#include "app/DemoReference.h"

namespace app {

/// Adds invented taxa until `Taxons` holds `wanted` rows: about 12 genera a family and 18 species a genus.
/// Names are unique and differ from those of the vocabulary.
void writeSyntheticTaxa(jet::Database& database, TaxonWriter& writer, const DemoData& data,
                        const DemoOptions& options, const QString& stamp, QList<qint32>& species,
                        platform::Progression& progression);

/// Adds `options.individus` invented individuals, with three sub-records each on average, named after `species`.
/// Written in operations of some ten thousand; between them the user may stop (3059).
void writeSyntheticRecords(jet::Database& database, const DemoData& data, const DemoReference& reference,
                           const QList<qint32>& species, const DemoOptions& options, const QString& stamp,
                           platform::Progression& progression);

} // namespace app
