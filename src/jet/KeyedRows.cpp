#include "jet/KeyedRows.h"

#include <limits>

namespace jet {

using namespace Qt::StringLiterals;

namespace {

// No identifier comes near these: identifiers that people see have 32 bits, hidden ones count
// from 1.
constexpr qint64 noRecord = std::numeric_limits<qint64>::min(); // Null side of an outer join
constexpr qint64 gone = noRecord + 1;

} // namespace

KeyedRows::KeyedRows(Store& store, std::shared_ptr<const CompiledQuery> query,
                     QStringList existence)
    : ListRows(store), m_query(std::move(query)), m_sources(qint64(m_query->sources.size())),
      m_existence(std::move(existence))
{
}

void KeyedRows::open()
{
    finishReading();
    restart();
    m_ids.clear();
    m_gaps = 0;
    run();
    if (!isEmpty())
        moveFirst();
}

/// Sorting identifiers costs half of sorting rows, and the rows looked at are few. Where an index
/// gives the order there is no sort, and the rows come as they are.
void KeyedRows::run()
{
    m_withValues = true;
    m_stepped = false;
    if (m_query->ordered) {
        m_cursor = Statement(m_store, m_query->keySql);
        m_stepped = m_cursor.step();
        m_complete = !m_stepped;
        if (m_complete || m_cursor.hasSorted()) {
            m_withValues = false;
            if (m_complete)
                m_cursor = Statement();
            return;
        }
    }
    m_cursor = Statement(m_store, m_query->sql);
    m_stepped = false;
}

bool KeyedRows::readOne()
{
    if (!m_cursor)
        fail(3420);
    bool row = false;
    try {
        row = std::exchange(m_stepped, false) || m_cursor.step();
    } catch (...) {
        // Half a list must not pass for a whole one: further reading says that it is not valid.
        m_cursor = Statement();
        m_cursorRow = -1;
        throw;
    }
    if (!row) {
        m_cursor = Statement();
        m_cursorRow = -1;
        return false;
    }
    for (int source = 0; source < m_sources; ++source)
        m_ids.push_back(m_cursor.isNull(source) ? noRecord : m_cursor.int64(source));
    m_cursorRow = m_known;
    return true;
}

bool KeyedRows::isGone(qint64 row) const
{
    return m_gaps > 0 && *identifiers(row) == gone;
}

void KeyedRows::closeGaps()
{
    if (m_gaps == 0)
        return;
    // The current row stays in its place even when it is gone: moving starts from there.
    const bool currentGone = m_place == Place::On && *identifiers(m_row) == gone;
    qint64 kept = 0;
    qint64 visited = m_visited;
    qint64 current = m_row;
    for (qint64 row = 0; row < m_known; ++row) {
        if (*identifiers(row) == gone) {
            current -= row < m_row ? 1 : 0;
            visited -= row < m_visited ? 1 : 0;
            if (row != m_row || m_place != Place::On)
                continue;
        }
        std::copy_n(identifiers(row), m_sources, m_ids.data() + kept * m_sources);
        ++kept;
    }
    m_ids.resize(size_t(kept * m_sources));
    m_known = kept;
    m_visited = visited;
    m_row = current;
    m_gaps = currentGone ? 1 : 0;
    m_lookedUp = -1;
    m_lookUp.reset();
}

Statement& KeyedRows::lookUp(qint64 row)
{
    if (m_lookedUp == row)
        return m_lookUp;
    if (m_lookUp)
        m_lookUp.reset();
    else
        m_lookUp = Statement(m_store, m_query->rowSql);
    m_lookedUp = -1;
    m_checked = -1;
    if (isGone(row))
        fail(3167, m_query->sources.front().table);
    for (int source = 0; source < m_sources; ++source) {
        const qint64 id = identifiers(row)[source];
        if (id == noRecord)
            m_lookUp.bind(source + 1, QVariant());
        else
            m_lookUp.bind(source + 1, id);
    }
    if (!m_lookUp.step())
        fail(3167, m_query->sources.front().table);
    m_lookedUp = row;
    return m_lookUp;
}

QVariant KeyedRows::value(int column)
{
    requireRow();
    const DataType type = m_query->outputs[size_t(column)].type;
    if (m_cursorRow == m_row && m_withValues)
        return m_cursor.value(int(m_sources) + column, type);
    QVariant value = lookUp(m_row).value(column, type);
    if (!value.isValid() && m_sources > 1)
        requireRecords(m_row);
    return value;
}

void KeyedRows::readRow(std::vector<QVariant>& row)
{
    if (m_cursorRow != m_row || !m_withValues || !isOn())
        return RowSet::readRow(row);
    for (size_t column = 0; column < row.size(); ++column)
        row[column] = m_cursor.value(int(m_sources) + int(column), m_query->outputs[column].type);
}

/// A look-up over several sources shows a deleted record as Null: a Null is only true when all are
/// there.
void KeyedRows::requireRecords(qint64 row)
{
    if (m_checked == row)
        return;
    m_existing.resize(size_t(m_sources));
    for (int source = 0; source < m_sources; ++source) {
        const qint64 id = identifiers(row)[source];
        if (id == noRecord)
            continue;
        Statement& exists = m_existing[size_t(source)];
        if (!exists)
            exists = Statement(m_store, m_existence[source]);
        exists.bind(1, id);
        const bool found = exists.step();
        exists.reset();
        if (!found)
            fail(3167, m_query->sources[size_t(source)].table);
    }
    m_checked = row;
}

qint64 KeyedRows::rowId(int source) const
{
    requireRow();
    const qint64 id = identifiers(m_row)[source];
    return id == noRecord || id == gone ? 0 : id;
}

void KeyedRows::removeCurrent()
{
    std::fill_n(m_ids.begin() + m_row * m_sources, m_sources, gone);
    ++m_gaps;
    m_lookedUp = -1;
}

void KeyedRows::append(qint64 rowId)
{
    readAll();
    m_ids.push_back(rowId);
    if (m_visited == m_known)
        ++m_visited;
    ++m_known;
}

bool KeyedRows::standOn(qint64 rowId)
{
    readAll();
    for (qint64 row = m_known - 1; row >= 0; --row) {
        if (*identifiers(row) == rowId) {
            standAt(row);
            return true;
        }
    }
    return false;
}

void KeyedRows::finishReading()
{
    if (m_cursor)
        readAll();
    if (m_lookedUp >= 0)
        m_lookUp.reset();
    m_lookedUp = -1;
}

} // namespace jet
