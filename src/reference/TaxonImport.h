// A checklist of plant names read into the taxa.
#pragma once

#include "jet/Database.h"
#include "platform/Clock.h"
#include "platform/Progression.h"

#include <QMap>
#include <array>

namespace reference {

/// What an import came to.
struct ImportReport {
    qint64 lines = 0;               ///< Rows of the file.
    std::array<qint64, 4> added{};  ///< Families, genera, species, infraspecific taxa; those that others needed included.
    qint64 present = 0;             ///< Names that were there already; nothing of them was changed.
    qint64 similar = 0;             ///< Added beside a name that differs in its authors.
    qint64 synonyms = 0;            ///< Added names that were put under the accepted one.
    qint64 unresolved = 0;          ///< Added names whose accepted one is not to be found.
    qint64 refused = 0;
    QMap<QString, qint64> reasons;  ///< Of what was refused or not resolved.
    QString refusedFile;            ///< Where these rows stand with the reason; empty when there are none.

    qint64 total() const { return added[0] + added[1] + added[2] + added[3]; }
    QString text() const; ///< In French, for the user.
};

/// Reads a file of values separated by tabs, in UTF-8, whose first line names the columns: family, genus, species,
/// infra_rank, infra_epithet, authors, id and accepted_id (the identifier of the accepted name, or the row's own), in any
/// order, others beside them. Parents come before what is under them, wherever they stand in the file; a family or genus
/// that no row names is added for what is under it.
///
/// Nothing that is there is changed. A name of the same rank and parent is the same when the authors are the same or one of
/// the two has none. Another genus or family of that name is refused, since names could not be told apart by it; other species
/// and infraspecific names are added.
class TaxonImport {
public:
    TaxonImport(jet::Database& database, const platform::Clock& clock);

    /// All or nothing: 3059 when the user stops it; other failures are jet::Error too.
    ImportReport run(const QString& file, platform::Progression& progression);

private:
    jet::Database& m_database;
    const platform::Clock& m_clock;
};

} // namespace reference
