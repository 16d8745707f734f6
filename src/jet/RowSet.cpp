#include "jet/RowSet.h"

namespace jet {

void RowSet::requireRow() const
{
    if (m_place != Place::On)
        fail(3021);
}

void RowSet::readRow(std::vector<QVariant>& row)
{
    for (size_t column = 0; column < row.size(); ++column)
        row[column] = value(int(column));
}

void RowSet::move(qint64 rows)
{
    if (rows == 0)
        return requireRow();
    // The first step fails at an end already reached; the next ones only stop there.
    for (const bool forward = rows > 0; rows != 0; rows -= forward ? 1 : -1) {
        forward ? moveNext() : movePrevious();
        if (!isOn())
            return;
    }
}

void ListRows::restart()
{
    m_row = -1;
    m_known = 0;
    m_visited = 0;
    m_complete = false;
    m_place = Place::After;
}

bool ListRows::isKnown(qint64 row)
{
    while (m_known <= row && !m_complete) {
        if (readOne())
            ++m_known;
        else
            m_complete = true;
    }
    return row < m_known;
}

void ListRows::readAll()
{
    while (!m_complete)
        isKnown(m_known);
}

bool ListRows::isEmpty()
{
    for (qint64 row = 0; isKnown(row); ++row)
        if (!isGone(row))
            return false;
    return true;
}

void ListRows::standAt(qint64 row)
{
    m_row = row;
    m_place = Place::On;
    m_visited = std::max(m_visited, row + 1);
}

void ListRows::moveFirst()
{
    m_place = Place::Before;
    moveNext();
    requireRow();
}

void ListRows::moveLast()
{
    readAll();
    m_place = Place::After;
    movePrevious();
    requireRow();
    m_visited = m_known;
}

void ListRows::moveNext()
{
    if (m_place == Place::After)
        fail(3021);
    qint64 row = m_place == Place::On ? m_row + 1 : 0;
    while (isKnown(row) && isGone(row))
        ++row;
    if (row < m_known)
        standAt(row);
    else
        m_place = Place::After;
}

void ListRows::movePrevious()
{
    if (m_place == Place::Before)
        fail(3021);
    if (m_place == Place::After)
        readAll();
    qint64 row = (m_place == Place::On ? m_row : m_known) - 1;
    while (row >= 0 && isGone(row))
        --row;
    if (row >= 0)
        standAt(row);
    else
        m_place = Place::Before;
}

void ListRows::move(qint64 rows)
{
    if (rows == 0 || (rows > 0 && m_place == Place::After) ||
        (rows < 0 && m_place == Place::Before)) {
        if (rows != 0)
            fail(3021);
        return requireRow();
    }
    closeGaps();
    if (m_place == Place::After)
        readAll();
    const qint64 from = m_place == Place::On ? m_row : m_place == Place::Before ? -1 : m_known;
    const qint64 row = from + rows;
    if (row < 0)
        m_place = Place::Before;
    else if (isKnown(row))
        standAt(row);
    else
        m_place = Place::After;
}

qint64 ListRows::position()
{
    if (m_place != Place::On)
        return -1;
    closeGaps();
    return m_row;
}

void ListRows::setPosition(qint64 position)
{
    closeGaps();
    if (position < 0 || !isKnown(position))
        fail(3021);
    standAt(position);
}

qint64 ListRows::count()
{
    closeGaps();
    return m_visited;
}

} // namespace jet
