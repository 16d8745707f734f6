// Column types and the values that travel in QVariant.
#pragma once

#include <QString>
#include <QVariant>

namespace jet {

/// DAO type codes. What a value of the type is in a QVariant:
/// Boolean bool; Byte, Integer, Long int; Single, Double, Currency double;
/// Date QDateTime (local); Text, Memo, GUID QString; Binary, LongBinary QByteArray.
/// Null is an invalid QVariant. `None` is the type of an expression that is
/// always Null or whose type is only known when it runs.
enum class DataType {
    None = 0,
    Boolean = 1,
    Byte = 2,
    Integer = 3,
    Long = 4,
    Currency = 5,
    Single = 6,
    Double = 7,
    Date = 8,
    Binary = 9,
    Text = 10,
    LongBinary = 11,
    Memo = 12,
    GUID = 15,
};

inline bool isText(DataType t)
{
    return t == DataType::Text || t == DataType::Memo || t == DataType::GUID;
}
inline bool isWhole(DataType t)
{
    return t == DataType::Byte || t == DataType::Integer || t == DataType::Long;
}
inline bool isNumber(DataType t)
{
    return isWhole(t) || t == DataType::Currency || t == DataType::Single || t == DataType::Double;
}
inline bool isBinary(DataType t) { return t == DataType::Binary || t == DataType::LongBinary; }

/// Width of a Text column created without a size.
inline constexpr int defaultTextSize = 255;

/// Options of Execute and OpenRecordset, with DAO's values.
enum Option {
    dbFailOnError = 128,
};

/// Kinds of record set, with DAO's values.
enum class RecordsetType { Table = 1, Dynaset = 2, Snapshot = 4 };

} // namespace jet
