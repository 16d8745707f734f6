// Adding, changing and deleting records through a Recordset.
#include "jet/Conversion.h"
#include "jet/RecordsetPrivate.h"

namespace jet {

using namespace Qt::StringLiterals;

// --- Drafts --------------------------------------------------------------------------------------

void Recordset::Private::require(bool condition) const
{
    if (condition)
        return;
    if (database->readOnly)
        fail(3027, database->path);
    fail(3326, sources.empty() ? QString() : sources.front().table);
}

void Recordset::Private::begin(Mode mode)
{
    if (fields.empty())
        fields.resize(columns.size());
    draft.values.resize(columns.size());
    draft.isSet.assign(columns.size(), false);
    draft.inPieces.assign(columns.size(), false);
    draft.order.clear();
    draft.mode = mode;
}

void Recordset::Private::discard()
{
    if (draft.mode == Mode::None)
        return;
    draft.mode = Mode::None;
    for (const int column : draft.order)
        draft.values[size_t(column)].clear();
    draft.order.clear();
}

const Field& Recordset::Private::fieldOf(int column)
{
    std::optional<Field>& known = fields[size_t(column)];
    if (!known) {
        const OutputColumn& output = columns[size_t(column)];
        const TableDef* table = output.source < 0 ? nullptr : database->schema.table(output.table);
        const Field* field = table ? table->field(output.column) : nullptr;
        if (!field)
            fail(3326, output.name);
        known = *field;
    }
    return *known;
}

void Recordset::Private::put(int column, QVariant value)
{
    const size_t place = size_t(column);
    if (!draft.isSet[place]) {
        draft.isSet[place] = true;
        draft.order.push_back(column);
    }
    draft.values[place] = std::move(value);
}

void Recordset::AddNew()
{
    d->opened();
    d->require(d->updatable && d->sources.size() == 1);
    d->begin(Private::Mode::Adding);
}

void Recordset::Edit()
{
    RowSet& rows = d->opened();
    d->require(d->updatable);
    const bool single = d->sources.size() == 1;
    if (rows.rowId(0) == 0 && single) // 3021 without a current record
        fail(3167, d->tableOf(0));
    d->begin(Private::Mode::Editing);
}

bool Recordset::Editing() const
{
    return d->draft.mode != Private::Mode::None;
}

void Recordset::SetValue(QStringView name, const QVariant& value)
{
    d->opened();
    const int column = d->requireColumn(name);
    if (d->draft.mode == Private::Mode::None)
        fail(3020);
    const Field& field = d->fieldOf(column);
    if (field.AutoIncrement && d->draft.mode == Private::Mode::Editing)
        fail(3164, field.Name);
    d->put(column, convertFor(field, value));
    d->draft.inPieces[size_t(column)] = false;
}

void Recordset::CancelUpdate()
{
    d->opened();
    if (d->draft.mode == Private::Mode::None)
        fail(3020);
    d->discard();
}

// --- Writing -------------------------------------------------------------------------------------

QString Recordset::Private::tableOf(int source) const
{
    return sources[size_t(source)].table;
}

QString Recordset::Private::writerSql(int source, const std::vector<int>& chosen) const
{
    const bool inserting = source < 0;
    QStringList names;
    for (const int column : chosen)
        names += quoted(columns[size_t(column)].column) + (inserting ? QString() : u"=?"_s);
    if (!inserting) {
        const TableDef* table = database->schema.table(tableOf(source));
        if (!table)
            fail(3078, tableOf(source));
        return u"UPDATE %1 SET %2 WHERE %3=?"_s.arg(quoted(table->Name), names.join(u','),
                                                    quoted(table->rowIdColumn()));
    }
    if (names.isEmpty())
        return u"INSERT INTO %1 DEFAULT VALUES"_s.arg(quoted(tableOf(0)));
    const QString marks = QStringList(names.size(), u"?"_s).join(u',');
    return u"INSERT INTO %1 (%2) VALUES (%3)"_s.arg(quoted(tableOf(0)), names.join(u','), marks);
}

Recordset::Private::Writer& Recordset::Private::writer(int source, const std::vector<int>& chosen)
{
    for (const auto& known : writers)
        if (known->source == source && known->columns == chosen)
            return *known;
    constexpr size_t kept = 16;
    if (writers.size() >= kept)
        writers.erase(writers.begin());
    writers.push_back(std::make_unique<Writer>(
        Writer{source, chosen, Statement(database->store, writerSql(source, chosen))}));
    return *writers.back();
}

void Recordset::Private::runWriter(Writer& writer)
{
    int position = 0;
    for (const int column : writer.columns)
        writer.statement.bind(++position, draft.values[size_t(column)]);
    if (writer.source >= 0)
        writer.statement.bind(++position, rows->rowId(writer.source));
    try {
        writer.statement.step();
    } catch (...) {
        writer.statement.reset();
        throw;
    }
    writer.statement.reset();
}

void Recordset::Private::insertRecord()
{
    database->beforeWrite();
    runWriter(writer(-1, draft.order));
    lastModified = database->store.lastRowId();
    rows->append(lastModified);
}

void Recordset::Private::updateSource(int source, const std::vector<int>& chosen)
{
    if (rows->rowId(source) == 0)
        fail(3326, tableOf(source)); // The null side of an outer join has no record
    runWriter(writer(source, chosen));
    if (database->store.changes() == 0)
        fail(3167, tableOf(source));
}

void Recordset::Private::updateRecord()
{
    std::map<int, std::vector<int>> bySource;
    for (const int column : draft.order)
        bySource[columns[size_t(column)].source].push_back(column);
    database->beforeWrite();
    const auto writeAll = [&] {
        for (const auto& [source, chosen] : bySource)
            updateSource(source, chosen);
    };
    // One statement of the store is whole by itself.
    if (bySource.size() > 1)
        database->wholly(writeAll);
    else
        writeAll();
    lastModified = rows->rowId(0);
    rows->currentChanged();
}

void Recordset::Update()
{
    d->opened();
    if (d->draft.mode == Private::Mode::None)
        fail(3020);
    if (d->draft.mode == Private::Mode::Adding)
        d->insertRecord();
    else
        d->updateRecord();
    d->hasLastModified = true;
    d->discard();
}

void Recordset::Delete()
{
    RowSet& rows = d->opened();
    d->require(d->updatable && d->sources.size() == 1);
    const qint64 id = rows.rowId(0);
    d->discard();
    const TableDef* table = d->database->schema.table(d->tableOf(0));
    if (!table)
        fail(3078, d->tableOf(0));
    d->database->beforeWrite();
    Statement statement(d->database->store, u"DELETE FROM %1 WHERE %2=?1"_s.arg(
                                                quoted(table->Name), quoted(table->rowIdColumn())));
    statement.bind(1, id);
    statement.step();
    if (d->database->store.changes() == 0)
        fail(3167, table->Name);
    rows.removeCurrent();
}

void Recordset::MoveToLastModified()
{
    RowSet& rows = d->opened();
    if (!d->hasLastModified)
        fail(3021);
    d->discard();
    if (!rows.standOn(d->lastModified))
        fail(3167);
}

// --- Long values ---------------------------------------------------------------------------------

void Recordset::AppendChunk(QStringView name, const QVariant& piece)
{
    d->opened();
    const int column = d->requireColumn(name);
    if (d->draft.mode == Private::Mode::None)
        fail(3020);
    const Field& field = d->fieldOf(column);
    if (field.Type != DataType::LongBinary && field.Type != DataType::Memo)
        fail(3251, u"AppendChunk"_s);
    QVariant converted = convertFor(field, piece);
    if (!d->draft.inPieces[size_t(column)]) {
        d->put(column, std::move(converted));
        d->draft.inPieces[size_t(column)] = true;
        return;
    }
    QVariant& value = d->draft.values[size_t(column)];
    // Appended where it stands: a copy for each piece would cost the square of the length.
    if (field.Type == DataType::Memo)
        static_cast<QString*>(value.data())->append(converted.toString());
    else
        static_cast<QByteArray*>(value.data())->append(converted.toByteArray());
}

QVariant Recordset::GetChunk(QStringView name, qint64 offset, qint64 count) const
{
    d->opened();
    const QVariant value = d->value(d->requireColumn(name));
    if (!value.isValid() || offset < 0 || count < 0)
        return {};
    if (value.typeId() == QMetaType::QByteArray)
        return value.toByteArray().mid(offset, count);
    return value.toString().mid(offset, count);
}

qint64 Recordset::FieldSize(QStringView name) const
{
    d->opened();
    const QVariant value = d->value(d->requireColumn(name));
    return value.typeId() == QMetaType::QByteArray ? value.toByteArray().size()
                                                   : value.toString().size();
}

} // namespace jet
