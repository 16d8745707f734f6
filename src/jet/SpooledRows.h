// Rows of a statement that are known by nothing but their place: groups, unions, distinct rows.
#pragma once

#include "jet/Compile.h"
#include "jet/RowSet.h"

#include <QTemporaryFile>

namespace jet {

/// Rows of values that can be read again. They stand in memory up to 4 MB, then in a temporary
/// file; 8 bytes of memory remain for each row.
class RowSpool {
public:
    void clear();
    void append(const std::vector<QVariant>& row);
    void read(qint64 row, std::vector<QVariant>& values);

private:
    void flush();

    std::vector<qint64> m_starts;
    QByteArray m_tail;    ///< What is not in the file yet.
    qint64 m_flushed = 0; ///< Bytes in the file.
    std::unique_ptr<QTemporaryFile> m_file;
};

/// Reads the statement once, as far as one moves, and keeps what was read.
class SpooledRows : public ListRows {
public:
    SpooledRows(Store& store, std::shared_ptr<const CompiledQuery> query);

    void open() override;
    QVariant value(int column) override;
    qint64 rowId(int) const override { return 0; }
    void removeCurrent() override;
    void append(qint64) override;
    bool standOn(qint64) override { return false; }
    void finishReading() override;

protected:
    bool readOne() override;

private:
    std::shared_ptr<const CompiledQuery> m_query;
    Statement m_cursor;
    RowSpool m_spool;
    std::vector<QVariant> m_values;
    qint64 m_valuesOf = -1; ///< The row in m_values.
};

} // namespace jet
