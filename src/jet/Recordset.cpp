#include "jet/RecordsetPrivate.h"

#include "jet/JetLog.h"
#include "jet/KeyedRows.h"
#include "jet/SpooledRows.h"
#include "jet/TableRows.h"

namespace jet {

using namespace Qt::StringLiterals;

// --- Inside --------------------------------------------------------------------------------------

Recordset::Private::Private(Database::Private& owner, const TableDef& table)
    : database(&owner), type(RecordsetType::Table), tableDef(table), updatable(!owner.readOnly)
{
    sources.push_back({table.Name, table.Name});
    for (const Field& field : table.Fields)
        columns.push_back({field.Name, field.Type, table.Name, field.Name, 0});
    auto made = std::make_unique<TableRows>(owner.store, table);
    tableRows = made.get();
    rows = std::move(made);
    rows->open();
    owner.holders.insert(this);
}

Recordset::Private::Private(Database::Private& owner, RecordsetType kind,
                            std::shared_ptr<const CompiledQuery> compiled)
    : database(&owner), type(kind), query(std::move(compiled)), columns(query->outputs),
      sources(query->sources),
      updatable(kind == RecordsetType::Dynaset && query->updatable && !owner.readOnly)
{
    if (sources.empty())
        rows = std::make_unique<SpooledRows>(owner.store, query);
    else
        rows = std::make_unique<KeyedRows>(owner.store, query, existence());
    rows->open();
    owner.holders.insert(this);
}

QStringList Recordset::Private::existence() const
{
    QStringList statements;
    for (const RowSource& source : sources) {
        const TableDef* table = database->schema.table(source.table);
        if (!table)
            fail(3078, source.table);
        statements += u"SELECT 1 FROM %1 WHERE %2 = ?1"_s.arg(quoted(table->Name),
                                                              quoted(table->rowIdColumn()));
    }
    return statements;
}

Recordset::Private::~Private()
{
    if (database)
        database->holders.remove(this);
}

void Recordset::Private::finishReading()
{
    rows->finishReading();
}

void Recordset::Private::invalidate()
{
    discard();
    writers.clear();
    rows.reset();
    tableRows = nullptr;
    database = nullptr;
}

/// The rows at the beginning of a call: an interruption of an earlier one is over.
RowSet& Recordset::Private::started() const
{
    RowSet& rows = opened();
    database->cancelled = false;
    return rows;
}

RowSet& Recordset::Private::opened() const
{
    if (!database)
        fail(3420);
    return *rows;
}

int Recordset::Private::column(QStringView name) const
{
    const int count = int(columns.size());
    // Loops name the columns in the same order for every record.
    const int next = lastColumn + 1 < count ? lastColumn + 1 : 0;
    if (next < count && columns[size_t(next)].name == name)
        return lastColumn = next;
    for (int column = 0; column < count; ++column)
        if (columns[size_t(column)].name == name)
            return lastColumn = column;
    for (int column = 0; column < count; ++column)
        if (sameName(columns[size_t(column)].name, name))
            return lastColumn = column;
    return -1;
}

int Recordset::Private::requireColumn(QStringView name) const
{
    const int found = column(name);
    if (found < 0)
        fail(3265, name.toString());
    return found;
}

QVariant Recordset::Private::value(int column) const
{
    RowSet& set = opened();
    if (column < 0 || size_t(column) >= columns.size())
        fail(3265, QString::number(column));
    if (draft.mode != Mode::None && draft.isSet[size_t(column)])
        return draft.values[size_t(column)];
    if (draft.mode == Mode::Adding)
        return columns[size_t(column)].type == DataType::Boolean ? QVariant(false) : QVariant();
    return set.value(column);
}

// --- Record set ----------------------------------------------------------------------------------

Recordset::Recordset(std::unique_ptr<Private> p) : d(std::move(p)) {}

Recordset::~Recordset() = default;

RecordsetType Recordset::Type() const
{
    return d->type;
}

bool Recordset::Updatable() const
{
    return d->updatable;
}

void Recordset::Close()
{
    if (!d->database)
        return;
    d->database->holders.remove(d.get());
    d->invalidate();
}

void Recordset::Requery()
{
    RowSet& rows = d->opened();
    d->discard();
    d->database->cancelled = false;
    rows.open();
}

int Recordset::FieldCount() const
{
    return int(d->columns.size());
}

const OutputColumn& Recordset::FieldAt(int position) const
{
    if (position < 0 || position >= FieldCount())
        fail(3265, QString::number(position));
    return d->columns[size_t(position)];
}

int Recordset::FieldIndex(QStringView name) const
{
    return d->column(name);
}

bool Recordset::BOF() const
{
    return d->opened().isBefore();
}

bool Recordset::EOF_() const
{
    return d->opened().isAfter();
}

void Recordset::MoveFirst()
{
    d->discard();
    d->started().moveFirst();
}

void Recordset::MoveLast()
{
    d->discard();
    d->started().moveLast();
}

void Recordset::MoveNext()
{
    d->discard();
    d->started().moveNext();
}

void Recordset::MovePrevious()
{
    d->discard();
    d->started().movePrevious();
}

void Recordset::Move(qint64 rows)
{
    d->discard();
    d->started().move(rows);
}

qint64 Recordset::AbsolutePosition() const
{
    return d->opened().position();
}

void Recordset::SetAbsolutePosition(qint64 position)
{
    d->discard();
    d->started().setPosition(position);
}

qint64 Recordset::RecordCount()
{
    return d->started().count();
}

QVariant Recordset::Value(QStringView name) const
{
    d->opened();
    return d->value(d->requireColumn(name));
}

QVariant Recordset::Value(int position) const
{
    return d->value(position);
}

namespace {

/// Reads that belong together are several times faster in one transaction.
class ReadTransaction {
public:
    explicit ReadTransaction(Store& store) : m_store(store), m_own(!store.inTransaction())
    {
        if (m_own)
            m_store.run(u"BEGIN"_s);
    }
    ~ReadTransaction()
    {
        if (!m_own)
            return;
        try {
            m_store.run(u"COMMIT"_s); // Nothing was written: it cannot lose anything
        } catch (const Error& error) {
            qCWarning(jetLog).noquote() << "fin de lecture :" << error.number() << error.description();
        }
    }
    ReadTransaction(const ReadTransaction&) = delete;
    ReadTransaction& operator=(const ReadTransaction&) = delete;

private:
    Store& m_store;
    bool m_own;
};

} // namespace

std::vector<std::vector<QVariant>> Recordset::GetRows(qint64 count)
{
    RowSet& rows = d->opened();
    d->discard();
    d->database->cancelled = false;
    const ReadTransaction reading(d->database->store);
    std::vector<std::vector<QVariant>> result;
    const size_t width = d->columns.size();
    while (qint64(result.size()) < count && rows.isOn()) {
        if (d->database->cancelled)
            fail(3059);
        rows.readRow(result.emplace_back(width));
        rows.moveNext();
    }
    return result;
}

qint64 Recordset::RowId(int source) const
{
    if (source < 0 || size_t(source) >= d->sources.size())
        return 0;
    return d->opened().rowId(source);
}

// --- Table type
// ------------------------------------------------------------------------------------

QString Recordset::Index() const
{
    return d->index;
}

void Recordset::SetIndex(const QString& name)
{
    d->opened();
    if (!d->tableRows)
        fail(3251, u"Index"_s);
    const auto* index = name.isEmpty() ? nullptr : d->tableDef.index(name);
    if (!index && !name.isEmpty())
        fail(3015, name, d->tableDef.Name);
    d->discard();
    d->tableRows->setIndex(index);
    d->index = index ? index->Name : QString();
}

void Recordset::Seek(const QString& comparison, const QVariantList& keys)
{
    d->started();
    if (!d->tableRows)
        fail(3251, u"Seek"_s);
    const QStringList names{u"="_s, u">"_s, u">="_s, u"<"_s, u"<="_s};
    const qsizetype place = names.indexOf(comparison);
    if (place < 0)
        fail(3001, comparison);
    d->discard();
    d->noMatch = !d->tableRows->seek(TableRows::Comparison(place), keys);
}

bool Recordset::NoMatch() const
{
    return d->noMatch;
}

} // namespace jet
