// A record in a few words, as its module says.
#pragma once

#include "app/structure/StructureDraft.h"
#include "editing/Cl_Edition.h"
#include "jet/Database.h"

namespace app {

/// Values of the first record of a module by the captions of its fields, as users read them.
using ExampleValues = QHash<QString, QString>;

/// `label` with each name of a field in brackets replaced by its value; names that it does not know stay. A label that is
/// empty gives an empty text.
QString filledLabel(const QString& label, const ExampleValues& values);

/// The label with a field called otherwise.
QString renamedInLabel(const QString& label, const QString& from, const QString& to);

/// Of the first record (by its identifier) of the module in the file. Empty when there is none.
ExampleValues exampleValues(jet::Database& database, const DraftModule& module, const editing::EditingContext& context);

} // namespace app
