// The rows behind a Recordset: where one stands, and the values there.
#pragma once

#include "jet/Store.h"

#include <QVariant>
#include <vector>

namespace jet {

/// The current row and the ways to move it, without columns' names and without editing.
///
/// One stands before the first row, on a row, or after the last. Reading where there is no row
/// gives 3021, and 3167 when the row was deleted meanwhile.
class RowSet {
public:
    explicit RowSet(Store& store) : m_store(store) {}
    virtual ~RowSet() = default;
    RowSet(const RowSet&) = delete;
    RowSet& operator=(const RowSet&) = delete;

    /// Runs it (again) and stands on the first row, if there is one.
    virtual void open() = 0;

    bool isBefore() { return m_place == Place::Before || (m_place == Place::After && isEmpty()); }
    bool isAfter() { return m_place == Place::After || (m_place == Place::Before && isEmpty()); }
    bool isOn() const { return m_place == Place::On; }

    virtual void moveFirst() = 0; ///< 3021 in an empty set.
    virtual void moveLast() = 0;
    virtual void moveNext() = 0; ///< 3021 beyond the end.
    virtual void movePrevious() = 0;
    virtual void move(qint64 rows);
    virtual qint64 position() = 0; ///< From 0; -1 without a current row.
    virtual void setPosition(qint64 position) = 0;
    virtual qint64 count() = 0;

    virtual QVariant value(int column) = 0;
    /// The values of the first row.size() columns.
    virtual void readRow(std::vector<QVariant>& row);
    virtual qint64 rowId(int source) const = 0; ///< 0 for none.

    /// The current row was deleted by this record set itself: moving leaves it out from now on.
    virtual void removeCurrent() = 0;
    /// The current row was changed by this record set itself.
    virtual void currentChanged() {}
    /// A row was added by this record set itself.
    virtual void append(qint64 rowId) = 0;
    /// Stands on a row by its identifier; gives false when it does not belong to the set.
    virtual bool standOn(qint64 rowId) = 0;

    /// Reads what a write would disturb, and holds no cursor of the store afterwards.
    virtual void finishReading() = 0;

protected:
    enum class Place { Before, On, After };

    virtual bool isEmpty() = 0;
    void requireRow() const;

    Store& m_store;
    Place m_place = Place::After;
};

/// Rows numbered from 0, known as far as they have been read.
class ListRows : public RowSet {
public:
    using RowSet::RowSet;

    void moveFirst() override;
    void moveLast() override;
    void moveNext() override;
    void movePrevious() override;
    void move(qint64 rows) override;
    qint64 position() override;
    void setPosition(qint64 position) override;
    qint64 count() override;

protected:
    /// Reads one row more; false at the end.
    virtual bool readOne() = 0;
    virtual bool isGone(qint64) const { return false; }
    /// Takes out the rows that are gone, so that the numbers are without gaps.
    virtual void closeGaps() {}

    bool isEmpty() override;
    void restart();           ///< Nothing is known any more.
    bool isKnown(qint64 row); ///< Reads on as far as needed.
    void readAll();
    void standAt(qint64 row);

    qint64 m_row = -1;    ///< Valid when on a row.
    qint64 m_known = 0;   ///< Rows read so far.
    qint64 m_visited = 0; ///< Rows that the caller has come to.
    bool m_complete = false;
};

} // namespace jet
