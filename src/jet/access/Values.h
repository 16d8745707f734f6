// The bytes of a value as the value.
#pragma once

#include "jet/access/TableDefinition.h"

#include <QVariant>

namespace jet::access {

/// A value, or why it cannot be read. Types are those of jet/Types.h; Numeric and BigInt are texts of exact decimals
/// ("-12.50"). Damage is told in the result rather than thrown: a damaged file may have it in each of its cells.
struct Cell {
    QVariant value;
    QString fault; ///< French, empty when all is well.
};

/// Text of a value: Unicode compression undone.
QString valueText(const PageFile& file, const Bytes& bytes);
/// A value other than Yes/No and the long ones. The bytes are all that the row has for it.
Cell decodeValue(const PageFile& file, const Column& column, const Bytes& bytes);

} // namespace jet::access
