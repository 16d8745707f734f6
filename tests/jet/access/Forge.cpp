#include "Forge.h"

#include "jet/text/Values.h"

#include <QDateTime>
#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace forge {

using namespace jet::access;

namespace {

void applyStream(const QByteArray& key, char* data, qsizetype size)
{
    std::array<quint8, 256> state;
    std::iota(state.begin(), state.end(), quint8(0));
    for (int i = 0, j = 0; i < 256; ++i) {
        j = (j + state[size_t(i)] + quint8(key[i % key.size()])) & 255;
        std::swap(state[size_t(i)], state[size_t(j)]);
    }
    for (int n = 0, i = 0, j = 0; n < size; ++n) {
        i = (i + 1) & 255;
        j = (j + state[size_t(i)]) & 255;
        std::swap(state[size_t(i)], state[size_t(j)]);
        data[n] = char(quint8(data[n]) ^ state[(state[size_t(i)] + state[size_t(j)]) & 255]);
    }
}

void unmasked(QByteArray& file, const std::function<void(char*)>& work)
{
    const QByteArray key(reinterpret_cast<const char*>(header::maskKey), sizeof header::maskKey);
    const int size = file[header::version] == 0 ? header::maskedSize3 : header::maskedSize4;
    applyStream(key, file.data() + header::masked, size);
    work(file.data());
    applyStream(key, file.data() + header::masked, size);
}

template<typename T>
void put(QByteArray& bytes, qsizetype offset, T value)
{
    qToLittleEndian(value, bytes.data() + offset);
}

template<typename T>
QByteArray bytesOf(T value)
{
    QByteArray bytes(sizeof value, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

QByteArray bytesOf(double value)
{
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bytesOf(bits);
}

QByteArray textBytes(const QString& text)
{
    const bool narrow = std::all_of(text.begin(), text.end(), [](QChar c) { return c > u'\0' && c < QChar(0x100); });
    if (narrow && text.size() > 2)
        return QByteArray("\xFF\xFE") + text.toLatin1();
    QByteArray bytes;
    for (QChar c : text)
        bytes += bytesOf(c.unicode());
    return bytes;
}

QByteArray valueBytes(const Column& column, const QVariant& value)
{
    switch (column.type) {
    case ColumnType::Byte: return bytesOf(quint8(value.toInt()));
    case ColumnType::Integer: return bytesOf(qint16(value.toInt()));
    case ColumnType::Long: return bytesOf(qint32(value.toInt()));
    case ColumnType::Currency: return bytesOf(qint64(std::llround(value.toDouble() * 10000)));
    case ColumnType::Double: return bytesOf(value.toDouble());
    case ColumnType::Date: return bytesOf(jet::text::dateToDays(value.toDateTime()));
    case ColumnType::Text: return textBytes(value.toString());
    default: break;
    }
    const QByteArray plain = column.type == ColumnType::Memo ? textBytes(value.toString()) : value.toByteArray();
    return bytesOf(quint32(plain.size()) | longValue::here) + QByteArray(8, '\0') + plain;
}

/// Sets the page's bit in a map; `first` is the page of its first bit.
void setBit(char* bits, quint32 page)
{
    bits[page / 8] = char(quint8(bits[page / 8]) | 1 << (page % 8));
}

/// Where a row stands in the file, and behind its end.
qsizetype rowStart(const QByteArray& file, RowPointer row)
{
    const qsizetype page = qsizetype(row.page) * jet4.pageSize;
    return page + (Bytes(file).u16(page + jet4.dataSlots + 2 * row.row) & SlotOffset);
}
qsizetype rowEnd(const QByteArray& file, RowPointer row)
{
    return row.row == 0 ? qsizetype(row.page + 1) * jet4.pageSize : rowStart(file, {row.page, row.row - 1});
}

/// Adds the pages to the map of the table, which becomes one by reference when it is inline.
void addToMap(QByteArray& file, const TableDefinition& table, quint32 from, quint32 to)
{
    const qsizetype row = rowStart(file, table.ownedMap);
    if (file[row + usage::kind] == 1) {
        const qsizetype bits = qsizetype(Bytes(file).u32(row + usage::references)) * jet4.pageSize + usage::pageBits;
        for (quint32 number = from; number < to; ++number)
            setBit(file.data() + bits, number);
        return;
    }
    const qsizetype end = rowEnd(file, table.ownedMap);
    const int bits = 8 * int(end - row - usage::inlineBits);
    const quint32 first = Bytes(file).u32(row + usage::inlineStart);
    const quint32 mapPage = quint32(file.size() / jet4.pageSize);
    QByteArray page(jet4.pageSize, '\0');
    page[0] = MapPage;
    page[1] = 1;
    for (int bit = 0; bit < bits; ++bit) {
        if (quint8(file[row + usage::inlineBits + bit / 8]) >> (bit % 8) & 1)
            setBit(page.data() + usage::pageBits, first + quint32(bit));
    }
    for (quint32 number = from; number < to; ++number)
        setBit(page.data() + usage::pageBits, number);
    file += page;
    file[row + usage::kind] = 1;
    std::fill(file.data() + row + usage::references, file.data() + end, '\0');
    put(file, row + usage::references, mapPage);
}

QByteArray emptyDataPage(quint32 owner)
{
    QByteArray page(jet4.pageSize, '\0');
    page[0] = DataPage;
    page[1] = 1;
    put(page, jet4.dataOwner, owner);
    return page;
}

/// False when the page has no room left.
bool addRow(QByteArray& page, int& end, const QByteArray& row)
{
    const int count = Bytes(page).u16(jet4.dataRowCount);
    const int start = end - int(row.size());
    if (start < jet4.dataSlots + 2 * (count + 1) || count == 255)
        return false;
    std::copy(row.begin(), row.end(), page.begin() + start);
    put(page, jet4.dataSlots + 2 * count, quint16(start));
    put(page, jet4.dataRowCount, quint16(count + 1));
    put(page, 2, quint16(start - jet4.dataSlots - 2 * (count + 1)));
    end = start;
    return true;
}

} // namespace

void setHeader(QByteArray& file, int offset, quint64 value, int size)
{
    unmasked(file, [&](char* bytes) {
        for (int i = 0; i < size; ++i)
            bytes[offset + i] = char(value >> (8 * i) & 0xFF);
    });
}

void setPassword(QByteArray& file, const QString& password)
{
    unmasked(file, [&](char* bytes) {
        if (bytes[header::version] == 0) {
            const QByteArray plain = password.toLatin1().leftJustified(header::passwordSize3, '\0', true);
            std::copy(plain.begin(), plain.end(), bytes + header::password);
            return;
        }
        const quint32 days = quint32(qint32(Bytes(bytes, 256).real(header::created)));
        for (int i = 0; i < header::passwordSize4; ++i) {
            const quint16 unit = i / 2 < password.size() ? password[i / 2].unicode() : 0;
            const auto own = quint8(unit >> (8 * (i % 2)));
            bytes[header::password + i] = char(own ^ quint8(days >> (8 * (i % 4))));
        }
    });
}

void encodePages(QByteArray& file, quint32 key)
{
    setHeader(file, header::pageKey, key, 4);
    const int size = file[header::version] == 0 ? jet3.pageSize : jet4.pageSize;
    for (quint32 number = 1; qsizetype(number + 1) * size <= file.size(); ++number)
        applyStream(bytesOf(key ^ number), file.data() + qsizetype(number) * size, size);
}

QByteArray encodeRow(const TableDefinition& table, const QVariantList& values)
{
    int count = 0;
    int fixedSize = 0;
    int variables = 0;
    for (const Column& column : table.columns) {
        count = std::max(count, column.id + 1);
        if (column.fixed && column.type != ColumnType::Boolean)
            fixedSize = std::max(fixedSize, column.fixedOffset + column.length);
        if (!column.fixed)
            variables = std::max(variables, column.variable + 1);
    }
    QByteArray fixed(fixedSize, '\0');
    QByteArray mask((count + 7) / 8, '\0');
    QList<QByteArray> parts(variables);
    for (int i = 0; i < table.columns.size(); ++i) {
        const Column& column = table.columns[i];
        const bool boolean = column.type == ColumnType::Boolean;
        if (boolean ? !values[i].toBool() : !values[i].isValid())
            continue;
        setBit(mask.data(), quint32(column.id));
        if (boolean)
            continue;
        const QByteArray bytes = valueBytes(column, values[i]);
        if (column.fixed)
            std::copy(bytes.begin(), bytes.end(), fixed.begin() + column.fixedOffset);
        else
            parts[column.variable] = bytes;
    }
    QByteArray row = bytesOf(quint16(count)) + fixed;
    QList<quint16> offsets;
    for (const QByteArray& part : parts) {
        offsets.append(quint16(row.size()));
        row += part;
    }
    offsets.append(quint16(row.size()));
    for (auto offset = offsets.crbegin(); offset != offsets.crend(); ++offset)
        row += bytesOf(*offset);
    return row + bytesOf(quint16(variables)) + mask;
}

void appendRows(QByteArray& file, const TableDefinition& table, int count, const std::function<QVariantList(int)>& row)
{
    const quint32 from = quint32(file.size() / jet4.pageSize);
    QByteArray page = emptyDataPage(table.page);
    int end = jet4.pageSize;
    for (int i = 0; i < count; ++i) {
        const QByteArray bytes = encodeRow(table, row(i));
        if (addRow(page, end, bytes))
            continue;
        file += page;
        page = emptyDataPage(table.page);
        end = jet4.pageSize;
        addRow(page, end, bytes);
    }
    file += page;
    addToMap(file, table, from, quint32(file.size() / jet4.pageSize));
    const qsizetype definition = qsizetype(table.page) * jet4.pageSize;
    put(file, definition + jet4.rowCount, quint32(table.rowCount + quint32(count)));
    put(file, definition + jet4.counter, quint32(table.counter + count));
}

} // namespace forge
