// How the pages of Jet 3, Jet 4 and ACE files are laid out: the one description by which such files are read, and
// by which they would be written. Numbers are little-endian; offsets are in bytes from the start of the structure named.
#pragma once

#include <QtGlobal>

namespace jet::access {

/// First byte of a page.
enum PageType : quint8 { HeaderPage = 0, DataPage = 1, DefinitionPage = 2, NodePage = 3, LeafPage = 4, MapPage = 5 };

/// Page 0, alike in all versions.
namespace header {
inline constexpr int magic = 4;         ///< "Standard Jet DB" or "Standard ACE DB", with its NUL.
inline constexpr int version = 0x14;    ///< 0 Jet 3, 1 Jet 4, 2 and more ACE.
inline constexpr int masked = 0x18;     ///< From here on masked with the stream of `maskKey`.
inline constexpr int maskedSize3 = 126; ///< Bytes of it in Jet 3,
inline constexpr int maskedSize4 = 128; ///< and later.
inline constexpr quint8 maskKey[] = {0xC7, 0xDA, 0x39, 0x6B};
inline constexpr int constants = 0x18; ///< Words 0x100 and 0x101, then the pages of the system tables.
inline constexpr int objectsPage = 0x20;
inline constexpr int codePage = 0x3C;
inline constexpr int pageKey = 0x3E; ///< 0: the pages are not encoded; else exclusive-or the page number is their key.
inline constexpr int password = 0x42;
inline constexpr int passwordSize3 = 20; ///< Bytes of the code page.
inline constexpr int passwordSize4 = 40; ///< UTF-16, masked with the whole days of `created`.
inline constexpr int created = 0x72;     ///< Double, days since 1899-12-30.
} // namespace header

/// Flags of a slot of a data page; the rest of the word is the row's offset. A row ends where the one before begins.
enum SlotFlag : quint16 { SlotPointer = 0x4000, SlotDeleted = 0x8000, SlotOffset = 0x1FFF };

/// Pointers to rows are one number: the row in the low byte, the page above.
struct RowPointer {
    quint32 page = 0;
    int row = 0;
    static RowPointer of(quint32 number) { return {number >> 8, int(number & 0xFF)}; }
    quint32 number() const { return page << 8 | quint32(row); }
};

/// Usage maps: a row that begins with its kind.
namespace usage {
inline constexpr int kind = 0;         ///< 0 inline, 1 by reference.
inline constexpr int inlineStart = 1;  ///< First page, then the bits.
inline constexpr int inlineBits = 5;
inline constexpr int references = 1;   ///< Pages of type 05, 0 where none is needed.
inline constexpr int pageBits = 4;     ///< On such a page.
} // namespace usage

/// Long values: a descriptor in the row.
namespace longValue {
inline constexpr int size = 12;
inline constexpr quint32 lengthMask = 0x3FFFFFFF; ///< Of the first word.
inline constexpr quint32 here = 0x80000000;       ///< The bytes follow the descriptor.
inline constexpr quint32 oneRow = 0x40000000;     ///< They are one row elsewhere; else a chain of rows,
inline constexpr int pointer = 4;                 ///< which begins there;
inline constexpr int chainNext = 4;               ///< each row begins with the pointer to the next (0: none).
} // namespace longValue

enum class ColumnType : quint8 {
    Boolean = 1, Byte = 2, Integer = 3, Long = 4, Currency = 5, Single = 6, Double = 7, Date = 8, Binary = 9,
    Text = 10, LongBinary = 11, Memo = 12, Guid = 15, Numeric = 16, Complex = 18, BigInt = 19, DateExtended = 20,
};

enum ColumnFlag : quint8 { ColumnFixed = 1, ColumnAutoNumber = 4, ColumnAutoGuid = 0x40 };
enum ColumnExtra : quint8 { ExtraCompressed = 1, ExtraCalculated = 0xC0 };
enum IndexFlag : quint8 { IndexUnique = 1, IndexIgnoreNulls = 2, IndexRequired = 8 };
enum IndexKind : quint8 { PlainIndex = 0, PrimaryIndex = 1, RelationIndex = 2 };

inline constexpr int indexColumns = 10;     ///< Places of an index for columns.
inline constexpr int indexColumnSize = 3;   ///< Identifier, then 1 ascending or 0 descending.
inline constexpr quint16 noColumn = 0xFFFF; ///< An unused place.
inline constexpr int calculatedLength = 16; ///< In the wrapping of a calculated value: its length,
inline constexpr int calculatedValue = 20;  ///< and where it begins.

/// What differs between Jet 3 and what came after it.
struct PageFormat {
    int pageSize;
    int charSize;    ///< Bytes of a character of the width of a text column.
    int countSize;   ///< Bytes of the counts and offsets in a row.
    // Data pages.
    int dataOwner, dataRowCount, dataSlots;
    // Definitions, which run over several pages; each later page gives what follows its `definitionHead` bytes.
    int definitionNext, definitionLength, definitionHead;
    int rowCount, counter, variableColumns, columnCount, logicalCount, realCount, ownedMap, realHeads;
    int realHeadSize;
    // A column of a definition.
    int columnSize, columnId, columnVariable, columnNumber, columnPrecision, columnScale, columnFlags, columnExtra,
        columnFixed, columnLength;
    int nameLengthSize; ///< Bytes of the length before a name.
    // A real index (how rows are sorted) and a logical one (a name for it).
    int realSize, realColumns, realFlags;
    int logicalSize, logicalReal, logicalKind;
};

inline constexpr PageFormat jet3{
    .pageSize = 2048, .charSize = 1, .countSize = 1,
    .dataOwner = 4, .dataRowCount = 8, .dataSlots = 10,
    .definitionNext = 4, .definitionLength = 8, .definitionHead = 8,
    .rowCount = 12, .counter = 16, .variableColumns = 23, .columnCount = 25, .logicalCount = 27, .realCount = 31,
    .ownedMap = 35, .realHeads = 43, .realHeadSize = 8,
    .columnSize = 18, .columnId = 1, .columnVariable = 3, .columnNumber = 5, .columnPrecision = -1, .columnScale = -1,
    .columnFlags = 13, .columnExtra = -1, .columnFixed = 14, .columnLength = 16,
    .nameLengthSize = 1,
    .realSize = 39, .realColumns = 0, .realFlags = 38,
    .logicalSize = 20, .logicalReal = 4, .logicalKind = 19,
};

inline constexpr PageFormat jet4{
    .pageSize = 4096, .charSize = 2, .countSize = 2,
    .dataOwner = 4, .dataRowCount = 12, .dataSlots = 14,
    .definitionNext = 4, .definitionLength = 8, .definitionHead = 8,
    .rowCount = 16, .counter = 20, .variableColumns = 43, .columnCount = 45, .logicalCount = 47, .realCount = 51,
    .ownedMap = 55, .realHeads = 63, .realHeadSize = 12,
    .columnSize = 25, .columnId = 5, .columnVariable = 7, .columnNumber = 9, .columnPrecision = 11, .columnScale = 12,
    .columnFlags = 15, .columnExtra = 16, .columnFixed = 21, .columnLength = 23,
    .nameLengthSize = 2,
    .realSize = 52, .realColumns = 4, .realFlags = 46,
    .logicalSize = 28, .logicalReal = 8, .logicalKind = 23,
};

/// Bits of a page of a usage map.
constexpr quint32 bitsPerMapPage(const PageFormat& format) { return quint32(format.pageSize - usage::pageBits) * 8; }

} // namespace jet::access
