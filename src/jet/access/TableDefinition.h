// The definition of a table as its definition pages hold it.
#pragma once

#include "jet/Definitions.h"
#include "jet/access/PageFile.h"

namespace jet::access {

struct Column {
    QString name;
    ColumnType type = ColumnType::Text;
    int id = 0;       ///< Its bit in the null mask.
    int variable = 0; ///< Its place among the variable columns of a row.
    int number = 0;   ///< Its position in the table.
    int length = 0;   ///< Bytes.
    int fixedOffset = 0;
    int precision = 0, scale = 0; ///< Numeric.
    bool fixed = false;
    bool autoNumber = false;
    bool calculated = false;

    bool isLong() const { return type == ColumnType::Memo || type == ColumnType::LongBinary; }
};

struct IndexDefinition {
    QString name;
    QList<IndexField> fields; ///< Empty when it names a column that is not there.
    quint8 flags = 0;         ///< IndexFlag
    quint8 kind = PlainIndex; ///< IndexKind
};

struct TableDefinition {
    QString name;
    quint32 page = 0;
    quint32 rowCount = 0; ///< What the file says.
    qint32 counter = 0;   ///< The AutoNumber given last.
    int variableColumns = 0;
    RowPointer ownedMap;
    QList<Column> columns; ///< By position.
    QList<IndexDefinition> indexes;
};

/// Reads the definition that begins on `page`. 3049 when it does not hold together.
TableDefinition readDefinition(PageFile& file, quint32 page, const QString& name);

/// Text as names and uncompressed values have it: bytes of the code page in Jet 3, UTF-16 later.
QString plainText(const PageFile& file, const Bytes& bytes);

} // namespace jet::access
