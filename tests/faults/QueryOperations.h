// What queries do to files: replacements in records, and results as files.
#pragma once

#include <QString>

namespace faults {

inline const QString exportFile = QStringLiteral("sortie.csv");

void prepareQueries(const QString& folder);
bool replaceValues(const QString& folder);
bool exportResult(const QString& folder);
/// Exports again; whatever an earlier try left has to go.
void exportAgain(const QString& folder);
QString exportState(const QString& folder);

} // namespace faults
