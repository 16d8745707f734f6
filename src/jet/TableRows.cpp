#include "jet/TableRows.h"

#include "jet/Compile.h"
#include "jet/Conversion.h"
#include "jet/text/TextOrder.h"

namespace jet {

using namespace Qt::StringLiterals;

namespace {

QString seekSql(const Field& field)
{
    return isText(field.Type) ? u"jet_key(%1)"_s.arg(quoted(field.Name)) : quoted(field.Name);
}

/// The value as it stands in the index: sort keys for text, numbers for the rest.
QVariant keyValue(const QVariant& value, DataType type)
{
    if (!value.isValid())
        return {};
    const QVariant converted = convertTo(type, value, {});
    return isText(type) ? QVariant(text::key(converted.toString())) : converted;
}

} // namespace

TableRows::TableRows(Store& store, const TableDef& table)
    : RowSet(store), m_table(table), m_rowIdSql(quoted(table.rowIdColumn()))
{
    m_columnsSql = m_rowIdSql;
    int place = 0;
    for (const Field& field : table.Fields) {
        const bool apart = field.Type == DataType::LongBinary;
        m_columnPlaces.push_back(apart ? -1 : ++place);
        if (!apart)
            m_columnsSql += u',' + quoted(field.Name);
    }
    m_keys.push_back({m_rowIdSql});
}

void TableRows::setIndex(const Index* index)
{
    forgetRow();
    m_pending.clear();
    m_statements.clear();
    m_keyReader = Statement();
    m_keys.clear();
    if (index) {
        for (const IndexField& column : index->Fields) {
            const Field* field = m_table.field(column.Name);
            if (!field)
                fail(3015, index->Name, m_table.Name);
            m_keys.push_back({seekSql(*field), field->Type, column.Descending});
        }
    }
    m_keys.push_back({m_rowIdSql});
    open();
}

// --- Statements ----------------------------------------------------------------------------------

QString TableRows::conditions(Segment segment) const
{
    QStringList parts;
    const int fixed = segment.kind == Segment::Equal ? segment.level : segment.level - 1;
    for (int key = 0; key < fixed; ++key)
        parts += u"%1 IS ?%2"_s.arg(m_keys[size_t(key)].sql, QString::number(key + 1));
    if (segment.kind == Segment::All || segment.kind == Segment::Equal)
        return parts.join(u" AND "_s);
    const Key& key = m_keys[size_t(segment.level - 1)];
    if (segment.kind == Segment::Null)
        parts += key.sql + u" IS NULL"_s;
    else if (segment.kind == Segment::NotNull) // A lower bound, unlike IS NOT NULL, is looked up in
                                               // an index of expressions.
        parts += key.sql + (isText(key.type) ? u" >= x''"_s : u" >= -9e999"_s);
    else
        parts += u"%1 %2 ?%3"_s.arg(key.sql, key.descending != m_backward ? u"<"_s : u">"_s,
                                    QString::number(segment.level));
    return parts.join(u" AND "_s);
}

QString TableRows::order(int fromKey) const
{
    QStringList parts;
    for (size_t key = size_t(fromKey); key < m_keys.size(); ++key)
        parts += m_keys[key].sql + (m_keys[key].descending != m_backward ? u" DESC"_s : QString());
    return parts.join(u',');
}

Statement& TableRows::statement(Segment segment)
{
    Statement& found = m_statements[(segment.level * 8 + segment.kind) * 2 + (m_backward ? 1 : 0)];
    if (found) {
        found.reset();
        return found;
    }
    QString sql = u"SELECT %1 FROM %2"_s.arg(m_columnsSql, quoted(m_table.Name));
    if (segment.kind != Segment::All)
        sql += u" WHERE "_s + conditions(segment);
    const bool levelIsFixed = segment.kind == Segment::Equal || segment.kind == Segment::Null;
    const int firstFree = segment.kind == Segment::All ? 0
                          : levelIsFixed               ? segment.level
                                                       : segment.level - 1;
    const QString by = order(firstFree);
    if (!by.isEmpty())
        sql += u" ORDER BY "_s + by;
    found = Statement(m_store, sql);
    return found;
}

void TableRows::bindKeys(Statement& statement, Segment segment)
{
    if (segment.kind == Segment::All)
        return;
    const bool bound = segment.kind == Segment::Equal || segment.kind == Segment::Beyond;
    const int count = bound ? segment.level : segment.level - 1;
    for (int key = 0; key < count; ++key)
        statement.bind(key + 1, m_walkKeys[key]);
}

// --- Walking -------------------------------------------------------------------------------------

void TableRows::addBeyondKey(int level)
{
    const Key& key = m_keys[size_t(level - 1)];
    const bool null = !m_walkKeys[level - 1].isValid();
    const bool down = key.descending != m_backward;
    const bool mayBeNull = level < int(m_keys.size());
    // Null stands before everything else, so behind everything on the way down.
    if (!null)
        m_pending.push_back({Segment::Beyond, level});
    if (null && !down)
        m_pending.push_back({Segment::NotNull, level});
    if (!null && down && mayBeNull)
        m_pending.push_back({Segment::Null, level});
}

void TableRows::addBeyond(int level)
{
    for (; level > 0; --level)
        addBeyondKey(level);
}

bool TableRows::enterNext()
{
    m_keptKeys.clear();
    if (m_current && m_walking && m_current->step()) {
        m_rowId = m_current->int64(0);
        return true;
    }
    forgetRow();
    while (!m_pending.empty()) {
        const Segment segment = m_pending.front();
        m_pending.erase(m_pending.begin());
        Statement& run = statement(segment);
        bindKeys(run, segment);
        if (run.step()) {
            m_current = &run;
            m_rowId = run.int64(0);
            m_walking = true;
            return true;
        }
        run.reset();
    }
    return false;
}

void TableRows::forgetRow()
{
    if (m_current)
        m_current->reset();
    m_current = nullptr;
    m_walking = false;
    m_keptKeys.clear();
}

void TableRows::start(bool backward, QVariantList keys, std::vector<Segment> segments)
{
    forgetRow();
    m_backward = backward;
    m_walkKeys = std::move(keys);
    m_pending = std::move(segments);
}

void TableRows::walk(bool backward)
{
    if (!m_walking || backward != m_backward) {
        if (!readKeys())
            fail(3167, m_table.Name);
        const QVariantList keys = m_keptKeys;
        start(backward, keys, {});
        addBeyond(int(m_walkKeys.size()));
    }
    m_place = enterNext() ? Place::On : backward ? Place::Before : Place::After;
}

bool TableRows::readKeys()
{
    if (!m_keptKeys.isEmpty())
        return true;
    if (m_keys.size() > 1) {
        if (!m_keyReader) {
            QStringList columns;
            for (size_t key = 0; key + 1 < m_keys.size(); ++key)
                columns += m_keys[key].sql;
            m_keyReader =
                Statement(m_store, u"SELECT %1 FROM %2 WHERE %3 = ?1"_s.arg(
                                       columns.join(u','), quoted(m_table.Name), m_rowIdSql));
        }
        m_keyReader.bind(1, m_rowId);
        const bool found = m_keyReader.step();
        for (int key = 0; found && key + 1 < int(m_keys.size()); ++key)
            m_keptKeys += m_keyReader.value(key, DataType::None);
        m_keyReader.reset();
        if (!found)
            return false;
    }
    m_keptKeys += m_rowId;
    return true;
}

void TableRows::open()
{
    start(false, {}, {{Segment::All, 0}});
    m_place = enterNext() ? Place::On : Place::After;
}

void TableRows::moveFirst()
{
    open();
    requireRow();
}

void TableRows::moveLast()
{
    start(true, {}, {{Segment::All, 0}});
    m_place = enterNext() ? Place::On : Place::After;
    requireRow();
}

void TableRows::moveNext()
{
    if (m_place == Place::After)
        fail(3021);
    if (m_place == Place::Before)
        return open();
    walk(false);
}

void TableRows::movePrevious()
{
    if (m_place == Place::Before)
        fail(3021);
    if (m_place == Place::On)
        return walk(true);
    start(true, {}, {{Segment::All, 0}});
    m_place = enterNext() ? Place::On : Place::Before;
}

qint64 TableRows::position()
{
    fail(3251, u"AbsolutePosition"_s);
}

void TableRows::setPosition(qint64)
{
    fail(3251, u"AbsolutePosition"_s);
}

qint64 TableRows::count()
{
    return m_store.single(u"SELECT count(*) FROM "_s + quoted(m_table.Name)).toLongLong();
}

bool TableRows::isEmpty()
{
    return !m_store.single(u"SELECT 1 FROM %1 LIMIT 1"_s.arg(quoted(m_table.Name))).isValid();
}

// --- Looking for a row
// -----------------------------------------------------------------------------

bool TableRows::seek(Comparison comparison, const QVariantList& keys)
{
    const int indexed = int(m_keys.size()) - 1;
    if (indexed == 0)
        fail(3019, m_table.Name);
    const int given = int(keys.size());
    if (given == 0 || given > indexed || (comparison == Comparison::Equal && given < indexed))
        fail(3001, u"Seek"_s);
    QVariantList values;
    for (int key = 0; key < given; ++key)
        values += keyValue(keys[key], m_keys[size_t(key)].type);
    const bool backward = comparison == Comparison::Less || comparison == Comparison::LessOrEqual;
    start(backward, std::move(values), {});
    if (comparison != Comparison::Greater && comparison != Comparison::Less)
        m_pending.push_back({Segment::Equal, given});
    if (comparison != Comparison::Equal)
        addBeyond(given);
    const bool found = enterNext();
    // The run found is not the whole way on from here: moving starts anew from the keys of the row.
    m_walking = false;
    m_place = found ? Place::On : Place::After;
    return found;
}

bool TableRows::find(const QString& condition)
{
    QStringList order;
    for (const Key& key : m_keys)
        order += key.sql + (key.descending ? u" DESC"_s : QString());
    Statement search(m_store, u"SELECT %1 FROM %2 AS x WHERE %3 ORDER BY %4 LIMIT 1"_s.arg(
                                  m_rowIdSql, quoted(m_table.Name), condition, order.join(u',')));
    forgetRow();
    const bool found = search.step();
    if (found)
        m_rowId = search.int64(0);
    m_place = found ? Place::On : Place::After;
    return found;
}

bool TableRows::standOn(qint64 rowId)
{
    forgetRow();
    m_rowId = rowId;
    m_place = Place::On;
    return true;
}

// --- Values --------------------------------------------------------------------------------------

QVariant TableRows::value(int column)
{
    requireRow();
    const int place = m_columnPlaces[size_t(column)];
    if (place < 0)
        return readLong(column);
    if (!m_current) {
        if (m_rowReader)
            m_rowReader.reset();
        else
            m_rowReader = Statement(m_store, u"SELECT %1 FROM %2 WHERE %3 = ?1"_s.arg(
                                                 m_columnsSql, quoted(m_table.Name), m_rowIdSql));
        m_rowReader.bind(1, m_rowId);
        if (!m_rowReader.step())
            fail(3167, m_table.Name);
        m_current = &m_rowReader;
        m_walking = false;
    }
    return m_current->value(place, m_table.Fields[column].Type);
}

QVariant TableRows::readLong(int column)
{
    Statement& reader = m_longs[column];
    if (!reader)
        reader = Statement(
            m_store, u"SELECT %1 FROM %2 WHERE %3 = ?1"_s.arg(quoted(m_table.Fields[column].Name),
                                                              quoted(m_table.Name), m_rowIdSql));
    reader.bind(1, m_rowId);
    if (!reader.step())
        fail(3167, m_table.Name);
    const QVariant value = reader.value(0, DataType::LongBinary);
    reader.reset();
    return value;
}

qint64 TableRows::rowId(int) const
{
    requireRow();
    return m_rowId;
}

void TableRows::finishReading()
{
    if (!m_current && (m_place != Place::On || !m_keptKeys.isEmpty()))
        return;
    if (m_place == Place::On)
        readKeys();
    const QVariantList keys = m_keptKeys;
    forgetRow();
    m_pending.clear();
    m_keptKeys = keys;
}

} // namespace jet
