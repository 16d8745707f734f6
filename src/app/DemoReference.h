// The reference lists of the demo project: taxa, localities, collectors.
#pragma once

#include "app/DemoData.h"
#include "app/DemoWriter.h"
#include "platform/Progression.h"

namespace app {

/// Numbers of the records written, by the keys of the vocabulary. Joined rows share a number.
struct DemoReference {
    QHash<QString, qint32> taxa;
    QHash<QString, qint32> places;
    QHash<QString, qint32> people;
    QHash<qint32, QString> taxonNames; ///< Full name and authors.
    QHash<qint32, QString> peopleNames;
};

/// Throws 3059 when the user wants to stop.
void checkpoint(const platform::Progression& progression);

/// "H.C. de Lima" gives "HCL", "Leitão-Filho, H.F." gives "HFLF": initials of the words, the part behind a comma
/// first, small words left out. At most 50 characters; never empty for a name.
QString demoInitials(const QString& name);

void writePeople(jet::Database& database, const DemoData& data, const QString& stamp, DemoReference& reference);
/// Path code, depth and composed name as the localities keep them.
void writePlaces(jet::Database& database, const DemoData& data, const QString& stamp, DemoReference& reference);
/// The maps, under the places that they show. After the places.
void writeMaps(jet::Database& database, const DemoData& data, const QString& stamp, const DemoReference& reference);
void writeTaxa(jet::Database& database, const DemoData& data, TaxonWriter& writer, DemoReference& reference);

} // namespace app
