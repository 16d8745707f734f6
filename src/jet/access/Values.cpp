#include "jet/access/Values.h"

#include "jet/text/Values.h"

#include <QStringList>
#include <algorithm>
#include <cmath>

namespace jet::access {

using namespace Qt::StringLiterals;

namespace {

const QString tooShort = u"valeur incomplète"_s;

/// Days since 1899-12-30. Before that day the fraction still counts forward from midnight.
Cell dateOf(double days)
{
    constexpr double first = -657434; // year 100
    constexpr double beyond = 2958466; // year 10000
    if (!std::isfinite(days) || days <= first - 1 || days >= beyond)
        return {{}, u"date hors limites"_s};
    const double whole = std::trunc(days);
    const double even = whole + std::abs(days - whole);
    if (even < first || even >= beyond)
        return {{}, u"date hors limites"_s};
    return {jet::text::daysToDate(even), {}};
}

/// Text "days:ticks:digits": days since the year 1, ticks of 100 ns.
Cell extendedDateOf(const Bytes& bytes)
{
    const QList<QByteArray> parts = bytes.copy().split(':');
    bool days = false, ticks = false;
    const double day = parts.value(0).toDouble(&days);
    const double tick = parts.value(1).toDouble(&ticks);
    if (!days || !ticks)
        return {{}, u"date hors limites"_s};
    constexpr double dayOfOrigin = 693593; // 1899-12-30 counted from 0001-01-01
    constexpr double ticksOfDay = 864e9;
    const double even = day - dayOfOrigin + tick / ticksOfDay;
    const double whole = std::floor(even);
    return dateOf(even < 0 ? whole - (even - whole) : even);
}

/// The decimal point put into a whole number.
QString scaled(QString digits, int scale, bool negative)
{
    if (scale > 0) {
        digits = digits.rightJustified(scale + 1, u'0');
        digits.insert(digits.size() - scale, u'.');
    }
    return negative ? u'-' + digits : digits;
}

/// Sign, then sixteen bytes: four words, the highest first, each little-endian.
Cell numericOf(const Column& column, const Bytes& bytes)
{
    if (bytes.size() < 17 || column.scale > 28)
        return {{}, tooShort};
    quint32 words[4];
    for (int i = 0; i < 4; ++i)
        words[i] = bytes.u32(1 + 4 * i);
    QString digits;
    while (words[0] | words[1] | words[2] | words[3]) {
        quint64 rest = 0;
        for (quint32& word : words) {
            const quint64 number = rest << 32 | word;
            word = quint32(number / 10);
            rest = number % 10;
        }
        digits.prepend(QChar(char16_t(u'0' + rest)));
    }
    const bool zero = digits.isEmpty();
    return {scaled(zero ? u"0"_s : digits, column.scale, !zero && bytes.u8(0) != 0), {}};
}

/// The first three groups of figures are numbers, the last two are bytes.
QString guidOf(const Bytes& bytes)
{
    static constexpr struct { int from, count; bool reversed; } groups[] = {
        {0, 4, true}, {4, 2, true}, {6, 2, true}, {8, 2, false}, {10, 6, false}};
    QStringList texts;
    for (const auto& group : groups) {
        QByteArray part = bytes.part(group.from, group.count).copy();
        if (group.reversed)
            std::reverse(part.begin(), part.end());
        texts += QString::fromLatin1(part.toHex()).toUpper();
    }
    return u'{' + texts.join(u'-') + u'}';
}

/// Bytes of a value of that type; 0 when any number will do.
int sizeOf(ColumnType type)
{
    switch (type) {
    case ColumnType::Byte: return 1;
    case ColumnType::Integer: return 2;
    case ColumnType::Long: case ColumnType::Single: case ColumnType::Complex: return 4;
    case ColumnType::Currency: case ColumnType::Double: case ColumnType::Date: case ColumnType::BigInt: return 8;
    case ColumnType::Guid: return 16;
    default: return 0;
    }
}

Cell realOf(double value)
{
    if (!std::isfinite(value))
        return {{}, u"nombre hors limites"_s};
    return {value, {}};
}

Cell singleOf(quint32 bits)
{
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return realOf(double(value));
}

} // namespace

QString valueText(const PageFile& file, const Bytes& bytes)
{
    const bool compressed = file.format().charSize == 2 && bytes.size() >= 2 && bytes.u16(0) == 0xFEFF;
    if (!compressed)
        return plainText(file, bytes);
    // One byte a character; a zero byte turns to two bytes a character and back.
    QString text;
    text.reserve(bytes.size());
    bool narrow = true;
    for (qsizetype at = 2; at < bytes.size();) {
        const auto byte = quint8(bytes.data()[at]);
        if (narrow && byte != 0) {
            text += QChar(char16_t(byte));
            ++at;
        } else if (narrow) {
            narrow = false;
            ++at;
        } else if (byte == 0 && (at + 1 >= bytes.size() || bytes.data()[at + 1] != 0)) {
            narrow = true;
            ++at;
        } else if (at + 1 < bytes.size()) {
            text += QChar(bytes.u16(at));
            at += 2;
        } else {
            break;
        }
    }
    return text;
}

Cell decodeValue(const PageFile& file, const Column& column, const Bytes& bytes)
{
    if (bytes.size() < sizeOf(column.type))
        return {{}, tooShort};
    switch (column.type) {
    case ColumnType::Byte: return {int(bytes.u8(0)), {}};
    case ColumnType::Integer: return {int(qint16(bytes.u16(0))), {}};
    case ColumnType::Long:
    case ColumnType::Complex: return {qint32(bytes.u32(0)), {}};
    case ColumnType::Currency: return {double(qint64(bytes.u64(0))) / 10000, {}};
    case ColumnType::Single: return singleOf(bytes.u32(0));
    case ColumnType::Double: return realOf(bytes.real(0));
    case ColumnType::Date: return dateOf(bytes.real(0));
    case ColumnType::Binary: return {bytes.copy(), {}};
    case ColumnType::Text: return {valueText(file, bytes), {}};
    case ColumnType::Guid: return {guidOf(bytes), {}};
    case ColumnType::Numeric: return numericOf(column, bytes);
    case ColumnType::BigInt: return {QString::number(qint64(bytes.u64(0))), {}};
    case ColumnType::DateExtended: return extendedDateOf(bytes);
    default: return {{}, u"type de colonne inconnu"_s};
    }
}

} // namespace jet::access
