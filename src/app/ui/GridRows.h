// The rows of a grid: numbered once, read in pages as they are seen.
#pragma once

#include "jet/Database.h"
#include "jet/Recordset.h"

#include <QCache>
#include <QVariant>
#include <vector>

namespace app {

/// Whoever holds it uses it only while the database is its thread's.
class GridRows {
public:
    using Row = std::vector<QVariant>;

    /// Opens the statement and reads the first page. Throws jet::Error.
    GridRows(jet::Database& database, const QString& statement);

    /// Rows found so far; all of them once complete.
    qint64 known() const { return m_known; }
    bool complete() const { return m_complete; }
    /// Looks for further rows for about so long.
    void advance(int milliseconds);

    /// A row that was read already, or nullptr.
    const Row* cached(qint64 row) const;
    /// A row, its page read when needed. Throws jet::Error.
    const Row& row(qint64 row);
    /// Values are read again when they are next seen.
    void forget() { m_pages.clear(); }
    /// The database was closed meanwhile.
    bool stale() const;

    /// Reads on from `row`, up to `count` rows, past the cache.
    std::vector<Row> read(qint64 row, qint64 count);

private:
    using Page = std::vector<Row>;
    Page* page(qint64 number);

    std::unique_ptr<jet::Recordset> m_rows;
    QCache<qint64, Page> m_pages;
    qint64 m_known = 0;
    bool m_complete = false;
};

} // namespace app
