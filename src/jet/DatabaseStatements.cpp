// Statements, record sets and named operations of a Database.
#include "jet/DatabasePrivate.h"
#include "jet/JetLog.h"
#include "jet/KeyedRows.h"
#include "jet/RecordsetPrivate.h"
#include "jet/SpooledRows.h"
#include "jet/SqlText.h"
#include "jet/TableRows.h"

#include <sqlite3.h>

namespace jet {

using namespace Qt::StringLiterals;

namespace {

QString savepoint(qsizetype depth)
{
    return u"operation_%1"_s.arg(depth);
}

/// Undoes what failed; the failure itself is what the caller hears of.
void undo(Store& store, const QString& sql)
{
    // After a full disk, an interruption and their like the store has undone everything already.
    if (!store.inTransaction())
        return;
    try {
        store.run(sql);
    } catch (const Error& error) {
        qCWarning(jetLog) << "annulation impossible :" << error.number() << error.description();
    }
}

/// A file that was deleted, moved or replaced by another while it is open is still there for the store, and for nobody
/// else: what is written goes with it.
void checkPlace(Store& store, const QString& path)
{
    int moved = 0;
    if (sqlite3_file_control(store.handle(), "main", SQLITE_FCNTL_HAS_MOVED, &moved) != SQLITE_OK || moved == 0)
        return;
    throw Error(3043, u"Le fichier « %1 » a été déplacé, remplacé ou supprimé pendant qu'il était ouvert : plus rien n'y "
                      u"est enregistré. Enregistrez une copie du projet sous un autre nom et continuez avec elle."_s.arg(path));
}

/// `[Nom]` and `Nom` are the same name.
QString withoutBrackets(const QString& source)
{
    const QString name = source.trimmed();
    const bool bracketed = name.size() > 2 && name.startsWith(u'[') && name.endsWith(u']');
    const QString inner = bracketed ? name.sliced(1, name.size() - 2) : name;
    return inner.contains(u']') ? name : inner;
}

} // namespace

// --- Inside --------------------------------------------------------------------------------------

void Database::Private::beforeWrite()
{
    if (readOnly)
        fail(3027, path);
    if (!store.inTransaction())
        checkPlace(store, path);
    if (!operations.isEmpty() && !store.inTransaction())
        throw Error(
            3034,
            u"L'opération « %1 » a été annulée à la suite d'une erreur : rien n'a été modifié ; "
            u"recommencez-la."_s.arg(operations.first()));
    for (CursorHolder* holder : std::as_const(holders))
        holder->finishReading();
}

void Database::Private::wholly(const std::function<void()>& work)
{
    const bool inner = store.inTransaction();
    store.run(inner ? u"SAVEPOINT unit"_s : u"BEGIN IMMEDIATE"_s);
    try {
        work();
        store.run(inner ? u"RELEASE unit"_s : u"COMMIT"_s);
    } catch (...) {
        undo(store, inner ? u"ROLLBACK TO unit; RELEASE unit"_s : u"ROLLBACK"_s);
        throw;
    }
}

void Database::Private::atomically(const std::function<void()>& work)
{
    statements.cache.clear();
    definitionsTouched = definitionsTouched || !operations.isEmpty();
    wholly(work);
    statements.cache.clear();
}

std::shared_ptr<CachedStatement> Database::Private::compiled(const QString& text)
{
    holders.insert(&statements);
    return statements.cache.statement(text, schema);
}

// --- Statements ----------------------------------------------------------------------------------

namespace {

void runStep(Store& store, CachedStatement& statement, const CompiledAction& action, size_t step)
{
    // A step is prepared when it comes to run: it may name what an earlier one has made.
    if (statement.steps.size() <= step)
        statement.steps.resize(step + 1);
    Statement& prepared = statement.steps[step];
    if (!prepared)
        prepared = Statement(store, action.steps[qsizetype(step)]);
    try {
        while (prepared.step())
            continue;
    } catch (...) {
        prepared = Statement();
        throw;
    }
    prepared.reset();
}

} // namespace

int Database::Execute(const QString& sql, int)
{
    if (!isOpen())
        fail(3420, d->path);
    d->recordsAffected = 0;
    d->cancelled = false;
    const QueryDef* query = d->schema.query(withoutBrackets(sql));
    const auto statement = d->compiled(query ? query->SQL : sql);
    const auto* action = std::get_if<CompiledAction>(&statement->compiled);
    if (!action)
        fail(3065);
    d->beforeWrite();
    int affected = 0;
    const auto runAll = [&] {
        for (int step = 0; step < action->steps.size(); ++step) {
            if (d->cancelled)
                fail(3059);
            runStep(d->store, *statement, *action, size_t(step));
            if (step == action->counted)
                affected = int(d->store.changes());
        }
    };
    // One statement of the store is whole by itself.
    if (action->steps.size() == 1)
        runAll();
    else
        d->wholly(runAll);
    d->recordsAffected = affected;
    return affected;
}

int Database::RecordsAffected() const
{
    return d->recordsAffected;
}

std::unique_ptr<Recordset> Database::OpenRecordset(const QString& source, RecordsetType type)
{
    if (!isOpen())
        fail(3420, d->path);
    d->cancelled = false;
    const QString name = withoutBrackets(source);
    const TableDef* table = d->schema.table(name);
    if (type == RecordsetType::Table) {
        if (!table)
            fail(3078, name);
        return std::unique_ptr<Recordset>(
            new Recordset(std::make_unique<Recordset::Private>(*d, *table)));
    }
    QString text = source;
    if (table)
        text = u"SELECT * FROM "_s + nom(table->Name);
    else if (const QueryDef* query = d->schema.query(name))
        text = query->SQL;
    const auto statement = d->compiled(text);
    const auto* query = std::get_if<CompiledQuery>(&statement->compiled);
    if (!query)
        fail(3417, name.left(60));
    return std::unique_ptr<Recordset>(new Recordset(std::make_unique<Recordset::Private>(
        *d, type, std::shared_ptr<const CompiledQuery>(statement, query))));
}

void Database::Interrupt()
{
    d->cancelled = true;
}

void Database::SetProgress(std::function<bool()> callback)
{
    d->store.setProgress(std::move(callback));
}

// --- Named operations ----------------------------------------------------------------------------

void Database::BeginOperation(const QString& name)
{
    if (!isOpen())
        fail(3420, d->path);
    d->beforeWrite();
    if (d->operations.isEmpty())
        d->definitionsTouched = false;
    d->store.run(d->operations.isEmpty() ? u"BEGIN IMMEDIATE"_s
                                         : u"SAVEPOINT "_s + savepoint(d->operations.size()));
    d->operations += name;
}

void Database::CommitOperation()
{
    if (!isOpen() || d->operations.isEmpty())
        fail(3034);
    d->beforeWrite();
    if (d->operations.size() == 1)
        checkPlace(d->store, d->path);
    // A commit that fails leaves the operation open: what follows can only be its rollback.
    d->store.run(d->operations.size() == 1 ? u"COMMIT"_s
                                           : u"RELEASE "_s + savepoint(d->operations.size() - 1));
    d->operations.removeLast();
}

void Database::RollbackOperation()
{
    if (!isOpen() || d->operations.isEmpty())
        fail(3034);
    for (CursorHolder* holder : std::as_const(d->holders)) {
        try {
            holder->finishReading();
        } catch (const Error& error) {
            qCWarning(jetLog) << "lecture interrompue :" << error.number() << error.description();
        }
    }
    const QString name = savepoint(d->operations.size() - 1);
    undo(d->store,
         d->operations.size() == 1 ? u"ROLLBACK"_s : u"ROLLBACK TO %1; RELEASE %1"_s.arg(name));
    d->operations.removeLast();
    if (d->definitionsTouched) {
        d->statements.cache.clear();
        d->loadSchema();
    }
}

bool Database::inOperation() const
{
    return !d->operations.isEmpty();
}

Operation::Operation(Database& database, const QString& name) : m_database(&database)
{
    database.BeginOperation(name);
}

Operation::~Operation()
{
    if (!m_open || !m_database->isOpen() || !m_database->inOperation())
        return;
    try {
        m_database->RollbackOperation();
    } catch (const Error& error) {
        qCWarning(jetLog) << "annulation impossible :" << error.number() << error.description();
    }
}

void Operation::commit()
{
    m_database->CommitOperation();
    m_open = false;
}

} // namespace jet
