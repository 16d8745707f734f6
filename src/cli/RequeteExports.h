// The places of a stored query as files of points.
#pragma once

#include "cli/Bench.h"

namespace cli {

/// Options of "requete" that name such files: --points (CSV), --kml, --gtm, --scr.
QStringList mapFileOptions();

/// True when one of them stands on the command line. Throws UsageError for one without a file.
bool wantsMapFiles(const Arguments& arguments);

/// Writes the files. `statement` is that of the map (StatementBuilder::mapStatement), `name` that of the query. The picture is that
/// of the map named by --carte (name or number), else of the one that suits the points best.
int writeMapFiles(const Arguments& arguments, Bench& bench, const QString& statement, const QString& name);

} // namespace cli
