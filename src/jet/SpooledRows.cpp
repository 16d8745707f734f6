#include "jet/SpooledRows.h"

#include <QDateTime>
#include <QDir>
#include <cstring>

namespace jet {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype spoolInMemory = 4 * 1024 * 1024;

enum class Tag : char { Null, Bool, Int, Whole, Real, Text, Bytes, Moment };

template<typename T> void put(QByteArray& bytes, Tag tag, const T& plain)
{
    bytes.append(char(tag));
    bytes.append(reinterpret_cast<const char*>(&plain), sizeof plain);
}

void putRun(QByteArray& bytes, Tag tag, const void* data, qsizetype size)
{
    put(bytes, tag, qint64(size));
    bytes.append(static_cast<const char*>(data), size);
}

void put(QByteArray& bytes, const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        bytes.append(char(Tag::Null));
        break;
    case QMetaType::Bool:
        put(bytes, Tag::Bool, value.toBool());
        break;
    case QMetaType::Int:
        put(bytes, Tag::Int, value.toInt());
        break;
    case QMetaType::LongLong:
        put(bytes, Tag::Whole, value.toLongLong());
        break;
    case QMetaType::Double:
        put(bytes, Tag::Real, value.toDouble());
        break;
    case QMetaType::QDateTime:
        put(bytes, Tag::Moment, value.toDateTime().toMSecsSinceEpoch());
        break;
    case QMetaType::QByteArray: {
        const QByteArray data = value.toByteArray();
        putRun(bytes, Tag::Bytes, data.constData(), data.size());
        break;
    }
    default: {
        const QString text = value.toString();
        putRun(bytes, Tag::Text, text.constData(), text.size() * qsizetype(sizeof(QChar)));
    }
    }
}

template<typename T> T take(const char*& from)
{
    T plain;
    std::memcpy(&plain, from, sizeof plain);
    from += sizeof plain;
    return plain;
}

QVariant takeText(const char*& from)
{
    const auto size = take<qint64>(from);
    QString text(size / qsizetype(sizeof(QChar)), Qt::Uninitialized);
    std::memcpy(text.data(), from, size_t(size));
    from += size;
    return text;
}

QVariant takeBytes(const char*& from)
{
    const auto size = take<qint64>(from);
    const QByteArray bytes(from, size);
    from += size;
    return bytes;
}

QVariant take(const char*& from)
{
    switch (Tag(*from++)) {
    case Tag::Null:
        return {};
    case Tag::Bool:
        return take<bool>(from);
    case Tag::Int:
        return take<int>(from);
    case Tag::Whole:
        return take<qint64>(from);
    case Tag::Real:
        return take<double>(from);
    case Tag::Text:
        return takeText(from);
    case Tag::Bytes:
        return takeBytes(from);
    case Tag::Moment:
        return QDateTime::fromMSecsSinceEpoch(take<qint64>(from));
    }
    return {};
}

} // namespace

void RowSpool::clear()
{
    *this = RowSpool();
}

void RowSpool::append(const std::vector<QVariant>& row)
{
    m_starts.push_back(m_flushed + m_tail.size());
    for (const QVariant& value : row)
        put(m_tail, value);
    if (m_tail.size() > spoolInMemory)
        flush();
}

void RowSpool::flush()
{
    if (!m_file) {
        m_file = std::make_unique<QTemporaryFile>(QDir::tempPath() + u"/herbora-XXXXXX.lignes"_s);
        if (!m_file->open())
            fail(3183, QDir::tempPath());
    }
    if (!m_file->seek(m_flushed) || m_file->write(m_tail) != m_tail.size() || !m_file->flush())
        fail(3183, QDir::tempPath());
    m_flushed += m_tail.size();
    m_tail.clear();
}

void RowSpool::read(qint64 row, std::vector<QVariant>& values)
{
    const qint64 start = m_starts[size_t(row)];
    const qint64 end =
        size_t(row) + 1 < m_starts.size() ? m_starts[size_t(row) + 1] : m_flushed + m_tail.size();
    QByteArray stored;
    const char* from = m_tail.constData() + (start - m_flushed);
    if (start < m_flushed) {
        if (!m_file->seek(start) || (stored = m_file->read(end - start)).size() != end - start)
            fail(3043, m_file->fileName());
        from = stored.constData();
    }
    for (QVariant& value : values)
        value = take(from);
}

SpooledRows::SpooledRows(Store& store, std::shared_ptr<const CompiledQuery> query)
    : ListRows(store), m_query(std::move(query)), m_values(m_query->outputs.size())
{
}

void SpooledRows::open()
{
    restart();
    m_valuesOf = -1;
    m_spool.clear();
    m_cursor = Statement(m_store, m_query->sql);
    if (!isEmpty())
        moveFirst();
}

bool SpooledRows::readOne()
{
    if (!m_cursor)
        fail(3420);
    bool row = false;
    try {
        row = m_cursor.step();
        if (row) {
            m_valuesOf = -1;
            for (size_t column = 0; column < m_values.size(); ++column)
                m_values[column] = m_cursor.value(int(column), m_query->outputs[column].type);
            m_spool.append(m_values);
            m_valuesOf = m_known;
        }
    } catch (...) {
        m_cursor = Statement();
        throw;
    }
    if (!row)
        m_cursor = Statement();
    return row;
}

QVariant SpooledRows::value(int column)
{
    requireRow();
    if (m_valuesOf != m_row) {
        m_valuesOf = -1;
        m_spool.read(m_row, m_values);
        m_valuesOf = m_row;
    }
    return m_values[size_t(column)];
}

void SpooledRows::removeCurrent()
{
    fail(3326);
}

void SpooledRows::append(qint64)
{
    fail(3326);
}

void SpooledRows::finishReading()
{
    if (m_cursor)
        readAll();
}

} // namespace jet
