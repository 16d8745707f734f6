// Makes Access files for tests out of others: encoded, with a password, with many more rows. What it writes it lays
// out by the same description of the pages that the reader goes by.
#pragma once

#include "jet/access/TableDefinition.h"

#include <QVariant>
#include <functional>

namespace forge {

/// Sets a number of `size` bytes of the masked header.
void setHeader(QByteArray& file, int offset, quint64 value, int size);
/// The header with a database password.
void setPassword(QByteArray& file, const QString& password);
/// Every page but the first encoded with the key.
void encodePages(QByteArray& file, quint32 key);

/// One row. Values are those that the reader gives, in the order of the columns; long ones must fit into the row.
QByteArray encodeRow(const jet::access::TableDefinition& table, const QVariantList& values);

/// Appends rows to a table of a Jet 4 file, on new pages at its end. `row` gives the values of row 0, 1 …
void appendRows(QByteArray& file, const jet::access::TableDefinition& table, int count,
                const std::function<QVariantList(int)>& row);

} // namespace forge
