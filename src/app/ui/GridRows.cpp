#include "app/ui/GridRows.h"

#include <QElapsedTimer>

namespace app {

namespace {

constexpr qint64 pageSize = 64;
constexpr int pagesKept = 256;
/// Rows looked for between two looks at the clock.
constexpr qint64 stride = 1000;

} // namespace

GridRows::GridRows(jet::Database& database, const QString& statement)
    : m_rows(database.OpenRecordset(statement, jet::RecordsetType::Snapshot)), m_pages(pagesKept)
{
    m_complete = m_rows->EOF_();
    if (m_complete)
        return;
    m_known = qint64(page(0)->size());
    m_complete = m_rows->EOF_();
}

void GridRows::advance(int milliseconds)
{
    if (m_complete)
        return;
    QElapsedTimer clock;
    clock.start();
    m_rows->SetAbsolutePosition(m_known - 1);
    while (!m_complete && clock.elapsed() < milliseconds) {
        m_rows->Move(stride);
        if (m_rows->EOF_()) {
            m_rows->MoveLast();
            m_complete = true;
        }
        m_known = m_rows->RecordCount();
    }
}

GridRows::Page* GridRows::page(qint64 number)
{
    if (Page* known = m_pages.object(number))
        return known;
    auto* rows = new Page(read(number * pageSize, pageSize));
    m_pages.insert(number, rows);
    return rows;
}

std::vector<GridRows::Row> GridRows::read(qint64 row, qint64 count)
{
    m_rows->SetAbsolutePosition(row);
    return m_rows->GetRows(count);
}

const GridRows::Row* GridRows::cached(qint64 row) const
{
    const Page* known = m_pages.object(row / pageSize);
    const size_t place = size_t(row % pageSize);
    return known && place < known->size() ? &known->at(place) : nullptr;
}

const GridRows::Row& GridRows::row(qint64 row)
{
    if (const Row* known = cached(row))
        return *known;
    m_pages.remove(row / pageSize);
    const size_t place = size_t(row % pageSize);
    Page* rows = page(row / pageSize);
    if (place >= rows->size())
        jet::fail(3021);
    return rows->at(place);
}

bool GridRows::stale() const
{
    try {
        m_rows->BOF();
        return false;
    } catch (const jet::Error& error) {
        return error.number() == 3420;
    }
}

} // namespace app
