// Models made without a record.
#pragma once

#include "data/PropertyStore.h"
#include "editing/Cl_Editions.h"
#include "editing/FormDialogue.h"

namespace editing {

/// Between the lines of a model.
inline const QString modelLineEnd = QStringLiteral("\r\n");
/// Stands for a line end inside a value.
constexpr QChar modelLineInside(0x2028);

/// The line of a model's text that stands for the value of a field: the key of the record ("0-" and the module, for
/// whichever record it is applied to), the field ("Mesures.Hauteur") and the value, joined by ";". Line ends inside
/// the value are written as modelLineInside.
QString modelLine(const QString& module, const Cl_Edition& field);
/// What a model may preset: a link leads to records of one individual, a unique value is given once.
bool isPreset(const Cl_Edition& field);

/// Shows the fields of a module as an empty form, then saves what was entered as a model under a name that is asked.
/// Gives its `ID Prop`; 0 when the user gave up or nothing was entered. Failures are said.
int createModel(const QString& module, const EditingContext& context, data::PropertyStore& store,
                platform::Dialogues& dialogues, FormDialogue& form);

} // namespace editing
