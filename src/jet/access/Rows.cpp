#include "jet/access/Rows.h"

#include "jet/access/UsageMap.h"

namespace jet::access {

using namespace Qt::StringLiterals;

namespace {

constexpr int pointerSize = 4;

} // namespace

Rows::Rows(PageFile& file, const TableDefinition& table)
    : m_file(file), m_table(table)
{
    try {
        m_pages = pagesOfMap(file, table.ownedMap);
    } catch (const Error&) {
        m_mapLost = true; // told by the caller
        m_pages = pagesOwnedBy(file, table.page);
    }
}

// --- From row to row -----------------------------------------------------------------------------

bool Rows::nextPage()
{
    while (m_nextPage < m_pages.size()) {
        const quint32 number = m_pages[m_nextPage++];
        const quint32 owner = m_file.owner(number);
        if (owner == m_table.page) {
            m_page = m_file.page(number);
            m_row = 0;
            m_rows = m_file.rowsOn(m_page);
            return true;
        }
        // Pages set aside for the table and not yet used are all zero.
        if (owner != PageFile::unusedPage)
            ++m_damagedPages;
    }
    return false;
}

bool Rows::next()
{
    while (true) {
        while (m_row < m_rows) {
            auto row = m_file.row(m_page, m_row++);
            if (row && row->deleted)
                continue;
            if (row && enter(std::move(*row))) {
                ++m_read;
                return true;
            }
            ++m_damagedRows;
        }
        if (!nextPage())
            return false;
    }
}

bool Rows::enter(RowBytes row)
{
    if (row.pointer) {
        if (row.bytes.size() < pointerSize)
            return false;
        auto moved = m_file.row(RowPointer::of(row.bytes.u32(0)));
        // Rows that were moved are marked as deleted where they lie, so that nobody meets them twice.
        if (!moved || moved->pointer || m_file.owner(moved->page) != m_table.page || !m_file.spend(moved->bytes.size()))
            return false;
        row = std::move(*moved);
    }
    m_current = std::move(row);
    return layOut();
}

/// Finds the parts of a row: the count of its columns, fixed values, variable ones, their offsets, the null mask.
bool Rows::layOut()
{
    const Bytes& bytes = m_current.bytes;
    const int countSize = m_file.format().countSize;
    if (bytes.size() < countSize)
        return false;
    m_columnCount = bytes.count(0, countSize);
    m_maskAt = bytes.size() - (m_columnCount + 7) / 8;
    m_offsets.clear();
    if (m_maskAt < countSize)
        return false;
    return m_table.variableColumns == 0 || layOutVariable(m_maskAt);
}

bool Rows::layOutVariable(qint64 maskAt)
{
    const Bytes& bytes = m_current.bytes;
    const int size = m_file.format().countSize;
    if (!bytes.has(maskAt - size, size))
        return false;
    const int count = bytes.count(maskAt - size, size);
    qint64 at = maskAt - 2 * size; // of the first offset; the others lie before it
    int jumps = 0;
    if (size == 1) {
        // An offset of one byte does not reach beyond 255: for each 256 bytes of the row a byte tells from which
        // column on the offsets are that much greater (FF: from none).
        jumps = int(bytes.size() - 1) / 256;
        at -= jumps;
    }
    if (!bytes.has(at - qint64(count) * size, qint64(count + 1) * size))
        return false;
    int jumped = 0;
    for (int i = 0; i <= count; ++i) {
        while (jumped < jumps && bytes.u8(maskAt - 2 - jumped) == i)
            ++jumped;
        m_offsets.append(bytes.count(at - qint64(i) * size, size) + 256 * jumped);
    }
    return true;
}

// --- Values --------------------------------------------------------------------------------------

bool Rows::bit(int id) const
{
    return id < m_columnCount && (m_current.bytes.u8(m_maskAt + id / 8) >> (id % 8) & 1);
}

std::optional<Bytes> Rows::bytesOf(const Column& column) const
{
    const Bytes& bytes = m_current.bytes;
    if (column.fixed) {
        const qint64 at = m_file.format().countSize + column.fixedOffset;
        const qint64 end = m_maskAt;
        if (column.length > end - at || at > end)
            return {};
        return bytes.part(at, column.length);
    }
    if (column.variable + 1 >= m_offsets.size())
        return {};
    const int from = m_offsets[column.variable];
    const int to = m_offsets[column.variable + 1];
    if (from > to || !bytes.has(from, to - from))
        return {};
    return bytes.part(from, to - from);
}

Cell Rows::value(int position)
{
    const Column& column = m_table.columns[position];
    if (column.type == ColumnType::Boolean && !column.calculated)
        return {bit(column.id), {}};
    if (!bit(column.id))
        return {};
    const std::optional<Bytes> bytes = bytesOf(column);
    if (!bytes)
        return {{}, u"valeur hors de son enregistrement"_s};
    Bytes plain = *bytes;
    if (column.calculated && !column.isLong()) {
        if (!plain.has(calculatedValue, 0) || !plain.has(calculatedValue, plain.u32(calculatedLength)))
            return {{}, u"valeur calculée illisible"_s};
        plain = plain.part(calculatedValue, plain.u32(calculatedLength));
        if (column.type == ColumnType::Boolean)
            return {plain.size() > 0 && plain.u8(0) != 0, {}};
    }
    return column.isLong() ? longValue(column, plain) : decodeValue(m_file, column, plain);
}

bool Rows::readChain(RowPointer next, qsizetype length, QByteArray& whole)
{
    QSet<quint32> seen;
    whole.reserve(qMin<qint64>(length, m_file.size()));
    while (whole.size() < length && next.page != 0) {
        if (seen.contains(next.number()))
            return false;
        seen.insert(next.number());
        const auto row = m_file.row(next);
        if (!row || row->deleted || row->bytes.size() < longValue::chainNext || !m_file.spend(row->bytes.size()))
            return false;
        whole.append(row->bytes.data() + longValue::chainNext, row->bytes.size() - longValue::chainNext);
        next = RowPointer::of(row->bytes.u32(0));
    }
    return whole.size() == length && next.page == 0;
}

Cell Rows::longValue(const Column& column, const Bytes& descriptor)
{
    const bool memo = column.type == ColumnType::Memo;
    const auto result = [&](const Bytes& bytes) -> Cell {
        Bytes plain = bytes;
        if (column.calculated && plain.has(calculatedValue, 0) && plain.has(calculatedValue, plain.u32(calculatedLength)))
            plain = plain.part(calculatedValue, plain.u32(calculatedLength));
        return {memo ? QVariant(valueText(m_file, plain)) : QVariant(plain.copy()), {}};
    };
    if (descriptor.size() == 0)
        return result(descriptor);
    if (descriptor.size() < longValue::size)
        return {{}, u"valeur longue sans début"_s};
    const quint32 word = descriptor.u32(0);
    const qint64 length = word & longValue::lengthMask;
    if (word & longValue::here) {
        if (!descriptor.has(longValue::size, length))
            return {{}, u"valeur longue plus courte qu'annoncé"_s};
        return result(descriptor.part(longValue::size, length));
    }
    const RowPointer first = RowPointer::of(descriptor.u32(longValue::pointer));
    if (length > m_file.size())
        return {{}, u"valeur longue plus courte qu'annoncé"_s};
    if (word & longValue::oneRow) {
        const auto row = m_file.row(first);
        if (!row || row->deleted || !m_file.spend(row->bytes.size()))
            return {{}, u"valeur longue introuvable"_s};
        if (row->bytes.size() != length)
            return {{}, u"valeur longue d'une autre longueur qu'annoncé"_s};
        return result(row->bytes);
    }
    QByteArray whole;
    if (!readChain(first, qsizetype(length), whole))
        return {{}, u"valeur longue d'une autre longueur qu'annoncé"_s};
    return result(Bytes(whole));
}

} // namespace jet::access
