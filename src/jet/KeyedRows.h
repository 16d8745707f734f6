// Rows of a statement that are known by the row identifiers of its tables.
#pragma once

#include "jet/Compile.h"
#include "jet/RowSet.h"

namespace jet {

/// A list of row identifiers, 8 bytes for each source and row, and never the values.
///
/// Where nothing is sorted the cursor gives the values of the row it stands on; every other row,
/// and every row of a sorted statement (whose sort then carries identifiers alone), is looked up.
class KeyedRows : public ListRows {
public:
    /// `existence` holds for each source a statement that gives a row when the record ?1 exists.
    KeyedRows(Store& store, std::shared_ptr<const CompiledQuery> query, QStringList existence);

    void open() override;
    QVariant value(int column) override;
    void readRow(std::vector<QVariant>& row) override;
    qint64 rowId(int source) const override;
    void removeCurrent() override;
    void append(qint64 rowId) override;
    bool standOn(qint64 rowId) override;
    void finishReading() override;

protected:
    bool readOne() override;
    bool isGone(qint64 row) const override;
    void closeGaps() override;

private:
    const qint64* identifiers(qint64 row) const { return m_ids.data() + row * m_sources; }
    void run();
    Statement& lookUp(qint64 row);
    void requireRecords(qint64 row);

    std::shared_ptr<const CompiledQuery> m_query;
    qint64 m_sources;
    Statement m_cursor;
    bool m_withValues = false; ///< The cursor gives the values behind the identifiers.
    bool m_stepped = false;    ///< The cursor stands on a row not yet taken.
    Statement m_lookUp;
    QStringList m_existence;
    std::vector<Statement> m_existing; ///< As m_existence, prepared at the first need.
    qint64 m_checked = -1;             ///< The row looked up whose records are known to exist.
    std::vector<qint64> m_ids;
    qint64 m_cursorRow = -1; ///< The row whose values the cursor holds.
    qint64 m_lookedUp = -1;  ///< The row whose values the look-up holds.
    qint64 m_gaps = 0;       ///< Rows taken out, not yet closed up.
};

} // namespace jet
