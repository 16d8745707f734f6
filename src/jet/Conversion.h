// A value given by a caller, as a column takes it.
#pragma once

#include "jet/Definitions.h"

#include <QVariant>

namespace jet {

/// The value as the type holds it (Types.h): numbers rounded half to even, texts read as numbers or
/// dates, Null as False for Yes/No. 3421 when it cannot be; `column` is for the message.
QVariant convertTo(DataType type, const QVariant& value, const QString& column);

/// The same for a column, which also refuses what is too wide (3163).
QVariant convertFor(const Field& field, const QVariant& value);

} // namespace jet
