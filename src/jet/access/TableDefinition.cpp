#include "jet/access/TableDefinition.h"

#include <QSet>
#include <algorithm>

namespace jet::access {

using namespace Qt::StringLiterals;

namespace {

constexpr int mostColumns = 255;
constexpr quint32 mostIndexes = 256;
constexpr quint32 longestDefinition = 1 << 20; ///< 255 columns and 64 indexes with long names stay below 100 kB.

/// The bytes of the definition, its pages put together; offsets stay those of the first page.
QByteArray definitionBytes(PageFile& file, quint32 first)
{
    const PageFormat& format = file.format();
    QByteArray all = file.page(first, DefinitionPage);
    const quint64 wanted = quint64(Bytes(all).u32(format.definitionLength)) + quint64(format.definitionHead);
    if (wanted > longestDefinition || wanted > quint64(file.size()))
        damaged(u"la définition de la page %1 est d'une longueur impossible"_s.arg(first));
    QSet<quint32> seen{first};
    quint32 next = Bytes(all).u32(format.definitionNext);
    while (next != 0 && quint64(all.size()) < wanted) {
        if (seen.contains(next))
            damaged(u"la définition de la page %1 tourne en rond"_s.arg(first));
        seen.insert(next);
        const QByteArray page = file.page(next, DefinitionPage);
        next = Bytes(page).u32(format.definitionNext);
        all += page.mid(format.definitionHead);
    }
    return all;
}

/// Takes a definition apart from its start to its end.
class Reader {
public:
    Reader(PageFile& file, quint32 page) : m_file(file), m_format(file.format()), m_all(definitionBytes(file, page)),
                                           m_bytes(m_all), m_page(page)
    {
    }

    TableDefinition read(const QString& name)
    {
        TableDefinition table;
        table.name = name;
        table.page = m_page;
        table.rowCount = m_bytes.u32(m_format.rowCount);
        table.counter = qint32(m_bytes.u32(m_format.counter));
        table.variableColumns = m_bytes.u16(m_format.variableColumns);
        table.ownedMap = RowPointer::of(m_bytes.u32(m_format.ownedMap));
        const int columns = m_bytes.u16(m_format.columnCount);
        const quint32 real = m_bytes.u32(m_format.realCount);
        const quint32 logical = m_bytes.u32(m_format.logicalCount);
        if (columns > mostColumns || real > mostIndexes || logical > mostIndexes)
            damaged(u"la table « %1 » a un nombre impossible de colonnes ou d'index"_s.arg(name));
        m_at = m_format.realHeads + qint64(real) * m_format.realHeadSize;
        readColumns(table, columns);
        readIndexes(table, int(real), int(logical));
        std::stable_sort(table.columns.begin(), table.columns.end(),
                         [](const Column& a, const Column& b) { return a.number < b.number; });
        return table;
    }

private:
    QString readName()
    {
        const int length = m_bytes.count(m_at, m_format.nameLengthSize);
        const Bytes name = m_bytes.part(m_at + m_format.nameLengthSize, length);
        m_at += m_format.nameLengthSize + length;
        return plainText(m_file, name);
    }

    Column readColumn(const Bytes& bytes) const
    {
        Column column;
        column.type = ColumnType(bytes.u8(0));
        column.id = bytes.u16(m_format.columnId);
        column.variable = bytes.u16(m_format.columnVariable);
        column.number = bytes.u16(m_format.columnNumber);
        column.length = bytes.u16(m_format.columnLength);
        column.fixedOffset = bytes.u16(m_format.columnFixed);
        const quint8 flags = bytes.u8(m_format.columnFlags);
        column.fixed = flags & ColumnFixed;
        column.autoNumber = flags & ColumnAutoNumber;
        if (column.type == ColumnType::Numeric && m_format.columnPrecision >= 0) {
            column.precision = bytes.u8(m_format.columnPrecision);
            column.scale = bytes.u8(m_format.columnScale);
        }
        if (m_format.columnExtra >= 0)
            column.calculated = (bytes.u8(m_format.columnExtra) & ExtraCalculated) == ExtraCalculated;
        return column;
    }

    void readColumns(TableDefinition& table, int count)
    {
        for (int i = 0; i < count; ++i) {
            table.columns.append(readColumn(m_bytes.part(m_at, m_format.columnSize)));
            m_at += m_format.columnSize;
        }
        for (Column& column : table.columns)
            column.name = readName();
    }

    QList<IndexField> readIndexFields(const TableDefinition& table, const Bytes& bytes) const
    {
        QList<IndexField> fields;
        for (int i = 0; i < indexColumns; ++i) {
            const int at = m_format.realColumns + i * indexColumnSize;
            const quint16 id = bytes.u16(at);
            if (id == noColumn)
                continue;
            const auto column = std::find_if(table.columns.begin(), table.columns.end(),
                                             [id](const Column& one) { return one.id == id; });
            if (column == table.columns.end())
                return {};
            fields.append({column->name, bytes.u8(at + 2) == 0});
        }
        return fields;
    }

    /// A logical index gives its name and use to a real one, found by its number.
    void readIndexes(TableDefinition& table, int realCount, int logicalCount)
    {
        QList<IndexDefinition> real;
        for (int i = 0; i < realCount; ++i) {
            const Bytes bytes = m_bytes.part(m_at, m_format.realSize);
            real.append({{}, readIndexFields(table, bytes), bytes.u8(m_format.realFlags)});
            m_at += m_format.realSize;
        }
        for (int i = 0; i < logicalCount; ++i) {
            const Bytes bytes = m_bytes.part(m_at, m_format.logicalSize);
            const quint32 number = bytes.u32(m_format.logicalReal);
            IndexDefinition index = real.value(qsizetype(qMin<quint32>(number, mostIndexes)));
            index.kind = bytes.u8(m_format.logicalKind);
            table.indexes.append(index);
            m_at += m_format.logicalSize;
        }
        for (IndexDefinition& index : table.indexes)
            index.name = readName();
    }

    PageFile& m_file;
    const PageFormat& m_format;
    QByteArray m_all;
    Bytes m_bytes;
    quint32 m_page;
    qint64 m_at = 0;
};

} // namespace

TableDefinition readDefinition(PageFile& file, quint32 page, const QString& name)
{
    return Reader(file, page).read(name);
}

QString plainText(const PageFile& file, const Bytes& bytes)
{
    if (file.format().charSize == 1)
        return fromCodePage(bytes, file.codePage());
    QString text(bytes.size() / 2, Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i)
        text[i] = QChar(qFromLittleEndian<char16_t>(bytes.data() + 2 * i));
    return text;
}

} // namespace jet::access
