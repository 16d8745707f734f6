#include "jet/access/Properties.h"

#include "jet/access/Values.h"

namespace jet::access {

using namespace Qt::StringLiterals;

namespace {

enum Block : quint16 { TableBlock = 0, ColumnBlock = 1, NamesBlock = 0x80 };

const QByteArray magic3("KKD\0", 4);
const QByteArray magic4("MR2\0", 4);

/// A length of two bytes, then the text.
QString textAt(const PageFile& file, const Bytes& bytes, qint64& at)
{
    const int length = bytes.u16(at);
    const Bytes text = bytes.part(at + 2, length);
    at += 2 + length;
    return plainText(file, text);
}

QStringList namesOf(const PageFile& file, const Bytes& block)
{
    QStringList names;
    for (qint64 at = 0; at < block.size();)
        names += textAt(file, block, at);
    return names;
}

/// Nothing for kinds that are not read.
QVariant valueOf(const PageFile& file, quint8 type, const Bytes& bytes)
{
    Column column;
    column.type = ColumnType(type);
    switch (column.type) {
    case ColumnType::Boolean: return bytes.size() > 0 && bytes.u8(0) != 0;
    case ColumnType::Text: return valueText(file, bytes);
    case ColumnType::Memo: return valueText(file, bytes);
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Long:
    case ColumnType::Single:
    case ColumnType::Double:
    case ColumnType::Currency:
    case ColumnType::Date: return decodeValue(file, column, bytes).value;
    default: return {};
    }
}

/// The name of the object, then entries of: length, flag, type, position of the name, length, value.
void readBlock(const PageFile& file, const Bytes& block, const QStringList& names, bool table, Properties& all)
{
    qint64 at = 4;
    const QString owner = block.u32(0) > 6 || block.has(at, 2) ? textAt(file, block, at) : QString();
    at = qMax<qint64>(at, block.u32(0)); // the name's part tells its own length
    QHash<QString, QVariant>& properties = all[table ? QString() : nameKey(owner)];
    while (at + 8 <= block.size()) {
        const int length = block.u16(at);
        const Bytes entry = block.part(at, length);
        if (length < 8)
            damaged(u"une propriété est vide"_s);
        const QVariant value = valueOf(file, entry.u8(3), entry.part(8, entry.u16(6)));
        if (entry.u16(4) < names.size() && value.isValid())
            properties.insert(names[entry.u16(4)], value);
        at += length;
    }
}

} // namespace

Properties readProperties(const PageFile& file, const QByteArray& value, bool* isDamaged)
{
    Properties all;
    if (value.isEmpty())
        return all;
    try {
        const Bytes bytes(value);
        if (!value.startsWith(magic3) && !value.startsWith(magic4))
            damaged(u"les propriétés ont un début inconnu"_s);
        QStringList names;
        for (qint64 at = magic4.size(); at + 6 <= bytes.size();) {
            const quint32 length = bytes.u32(at);
            const quint16 kind = bytes.u16(at + 4);
            if (length < 6)
                damaged(u"un bloc de propriétés est vide"_s);
            const Bytes block = bytes.part(at + 6, qint64(length) - 6);
            if (kind == NamesBlock)
                names = namesOf(file, block);
            else if (kind == TableBlock || kind == ColumnBlock)
                readBlock(file, block, names, kind == TableBlock, all);
            at += length;
        }
    } catch (const Error&) {
        if (isDamaged) // the caller says so
            *isDamaged = true;
    }
    return all;
}

} // namespace jet::access
