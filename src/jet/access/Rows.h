// The rows of a table, one after the other.
#pragma once

#include "jet/access/Values.h"

#include <QSet>

namespace jet::access {

/// Walks the rows of a table. What is damaged is left out and counted.
class Rows {
public:
    /// Reads the list of the table's pages; where that is damaged, the pages are looked for one by one (mapLost).
    Rows(PageFile& file, const TableDefinition& table);

    bool next(); ///< False after the last one.
    /// A value of the current row, `column` counted in TableDefinition::columns.
    Cell value(int column);

    bool mapLost() const { return m_mapLost; }
    qint64 read() const { return m_read; }       ///< Rows given so far.
    qint64 damagedRows() const { return m_damagedRows; }
    qint64 damagedPages() const { return m_damagedPages; }
    /// How much of the table was looked at, 0 to 1.
    double done() const { return m_pages.isEmpty() ? 1 : double(m_nextPage) / double(m_pages.size()); }

private:
    bool nextPage();
    bool enter(RowBytes row);
    bool layOut();
    bool layOutVariable(qint64 maskAt);
    bool bit(int id) const;
    /// Bytes of the column; an invalid view for Null.
    std::optional<Bytes> bytesOf(const Column& column) const;
    Cell longValue(const Column& column, const Bytes& descriptor);
    bool readChain(RowPointer next, qsizetype length, QByteArray& whole);

    PageFile& m_file;
    const TableDefinition& m_table;
    QList<quint32> m_pages;
    qsizetype m_nextPage = 0;
    QByteArray m_page;
    int m_row = 0, m_rows = 0;
    RowBytes m_current;
    int m_columnCount = 0;   ///< Of the current row: later columns were added after it was written.
    qint64 m_maskAt = 0;
    QList<int> m_offsets;    ///< Of the variable columns, and the end of the last.
    qint64 m_read = 0, m_damagedRows = 0, m_damagedPages = 0;
    bool m_mapLost = false;
};

} // namespace jet::access
