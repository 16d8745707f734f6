#include "jet/Store.h"

#include "jet/Functions.h"
#include "jet/JetLog.h"
#include "jet/text/Values.h"

#include <QDateTime>
#include <QFile>
#include <mutex>
#include <sqlite3.h>

namespace jet {

Q_LOGGING_CATEGORY(jetLog, "herbora.jet", QtInfoMsg)

using namespace Qt::StringLiterals;

namespace {

// --- What SQLite itself reports --------------------------------------------------------------

void logFromSqlite(void*, int code, const char* message)
{
    switch (code & 0xFF) {
    case SQLITE_NOTICE: // a journal was played back
        qCInfo(jetLog) << "SQLite" << code << message;
        break;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_IOERR:
    case SQLITE_FULL:
    case SQLITE_CANTOPEN:
    case SQLITE_NOMEM:
    case SQLITE_MISUSE:
        qCWarning(jetLog) << "SQLite" << code << message;
        break;
    default: // refused values and the like are thrown to whoever asked
        qCDebug(jetLog) << "SQLite" << code << message;
    }
}

/// The log belongs to the whole process and can only be set before the library wakes.
void configureLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] {
        if (sqlite3_config(SQLITE_CONFIG_LOG, &logFromSqlite, nullptr) != SQLITE_OK)
            qCDebug(jetLog) << "SQLite was already in use: its log is not ours";
    });
}

// --- Errors ------------------------------------------------------------------------------------

/// A message of ours, "#number#description", wherever it stands: SQLite puts words before the name
/// of a broken check.
std::optional<Error> ownError(const QString& message, const QString& sql)
{
    const qsizetype first = message.indexOf(u'#');
    const qsizetype second = first < 0 ? -1 : message.indexOf(u'#', first + 1);
    if (second < 0)
        return {};
    bool isNumber = false;
    const int number = QStringView(message).sliced(first + 1, second - first - 1).toInt(&isNumber);
    if (!isNumber)
        return {};
    return Error(number, message.sliced(second + 1), sql);
}

/// "UNIQUE constraint failed: index 'Table.Index'", or "…: Table.a, Table.b".
Error duplicateError(const QString& message, const QString& sql)
{
    QString what = message.section(u": "_s, 1);
    const QString indexWord = u"index '"_s;
    if (what.startsWith(indexWord))
        what = what.sliced(indexWord.size()).chopped(1);
    const QString table = what.section(u'.', 0, 0);
    QString columns = what.section(u'.', 1);
    columns.replace(u", "_s + table + u'.', u", "_s);
    return Error(3022, describe(3022, table, columns), sql);
}

/// "NOT NULL constraint failed: Table.Column" and "cannot store TEXT value in INTEGER column Table.Column".
QString lastWordsAfterDot(const QString& message)
{
    return message.section(u'.', 1);
}

Error constraintError(int code, const QString& message, const QString& sql)
{
    switch (code) {
    case SQLITE_CONSTRAINT_UNIQUE:
    case SQLITE_CONSTRAINT_PRIMARYKEY:
    case SQLITE_CONSTRAINT_ROWID:
        return duplicateError(message, sql);
    case SQLITE_CONSTRAINT_NOTNULL:
        return Error(3314, describe(3314, lastWordsAfterDot(message)), sql);
    case SQLITE_CONSTRAINT_DATATYPE:
        return Error(3421, describe(3421, {}, lastWordsAfterDot(message)), sql);
    default:
        return Error(3317, describe(3317) + u" ("_s + message + u')', sql);
    }
}

/// The number for a primary result code; 0 for those that have none of their own.
int numberOf(int code)
{
    switch (code) {
    case SQLITE_IOERR_LOCK:
    case SQLITE_IOERR_UNLOCK:
    case SQLITE_IOERR_CHECKRESERVEDLOCK:
        return 3050;
    case SQLITE_READONLY_DIRECTORY:
        return 3051;
    default:
        break;
    }
    switch (code & 0xFF) {
    case SQLITE_FULL: return 3026;
    case SQLITE_IOERR: return 3043;
    case SQLITE_READONLY: return 3027;
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return 3045;
    case SQLITE_CORRUPT: return 3049;
    case SQLITE_NOTADB: return 3343;
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH: return 3051;
    case SQLITE_NOMEM: return 7;
    case SQLITE_INTERRUPT: return 3059;
    case SQLITE_TOOBIG: return 3047;
    default: return 0;
    }
}

void setOption(sqlite3* db, int option, int value)
{
    int now = value;
    if (sqlite3_db_config(db, option, value, &now) != SQLITE_OK || now != value)
        qCWarning(jetLog) << "option" << option << "of SQLite could not be set";
}

void harden(sqlite3* db)
{
    setOption(db, SQLITE_DBCONFIG_DEFENSIVE, 1);
    setOption(db, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0);
    setOption(db, SQLITE_DBCONFIG_DQS_DML, 0);
    setOption(db, SQLITE_DBCONFIG_DQS_DDL, 0);
    setOption(db, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0);
    setOption(db, SQLITE_DBCONFIG_ENABLE_FKEY, 1);
    sqlite3_limit(db, SQLITE_LIMIT_ATTACHED, 1); // VACUUM INTO needs one
    sqlite3_limit(db, SQLITE_LIMIT_LENGTH, 256 << 20);
    sqlite3_limit(db, SQLITE_LIMIT_SQL_LENGTH, 16 << 20);
    sqlite3_limit(db, SQLITE_LIMIT_EXPR_DEPTH, 1000);
    sqlite3_limit(db, SQLITE_LIMIT_VARIABLE_NUMBER, 32766);
}

constexpr int lockPatience = 2000; // milliseconds
constexpr int stepsBetweenProgress = 5000;

} // namespace

// --- Statement ---------------------------------------------------------------------------------

Statement::Statement(Store& store, const QString& sql) : m_store(&store)
{
    const QByteArray text = sql.toUtf8();
    const char* tail = nullptr;
    const int code = sqlite3_prepare_v3(store.handle(), text.constData(), int(text.size()) + 1,
                                        SQLITE_PREPARE_PERSISTENT, &m_handle, &tail);
    if (code != SQLITE_OK)
        store.raise(code, sql);
}

Statement::~Statement()
{
    sqlite3_finalize(m_handle);
}

Statement::Statement(Statement&& other) noexcept
    : m_store(other.m_store), m_handle(std::exchange(other.m_handle, nullptr))
{
}

Statement& Statement::operator=(Statement&& other) noexcept
{
    if (this != &other) {
        sqlite3_finalize(m_handle);
        m_store = other.m_store;
        m_handle = std::exchange(other.m_handle, nullptr);
    }
    return *this;
}

void Statement::bind(int position, qint64 value)
{
    if (const int code = sqlite3_bind_int64(m_handle, position, value); code != SQLITE_OK)
        m_store->raise(code);
}

namespace {

int bindText(sqlite3_stmt* handle, int position, const QString& text)
{
    // The functions of SQLite see a text end at its first NUL: it would be two texts.
    if (text.contains(QChar(u'\0')))
        fail(3421, text);
    const QByteArray bytes = text.toUtf8();
    return sqlite3_bind_text64(handle, position, bytes.constData(), sqlite3_uint64(bytes.size()),
                               SQLITE_TRANSIENT, SQLITE_UTF8);
}

int bindBytes(sqlite3_stmt* handle, int position, const QByteArray& bytes)
{
    return sqlite3_bind_blob64(handle, position, bytes.constData(), sqlite3_uint64(bytes.size()),
                               SQLITE_TRANSIENT);
}

int bindValue(sqlite3_stmt* handle, int position, const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        return sqlite3_bind_null(handle, position);
    case QMetaType::Bool:
        return sqlite3_bind_int(handle, position, value.toBool() ? -1 : 0);
    case QMetaType::Double:
    case QMetaType::Float:
        return sqlite3_bind_double(handle, position, value.toDouble());
    case QMetaType::QString:
        return bindText(handle, position, value.toString());
    case QMetaType::QByteArray:
        return bindBytes(handle, position, value.toByteArray());
    case QMetaType::QDateTime:
    case QMetaType::QDate:
        return sqlite3_bind_double(handle, position, text::dateToDays(value.toDateTime()));
    default:
        break;
    }
    bool whole = false;
    const qint64 number = value.toLongLong(&whole);
    if (!whole)
        fail(3421, value.toString());
    return sqlite3_bind_int64(handle, position, number);
}

} // namespace

void Statement::bind(int position, const QVariant& value)
{
    if (const int code = bindValue(m_handle, position, value); code != SQLITE_OK)
        m_store->raise(code);
}

bool Statement::step()
{
    const int code = sqlite3_step(m_handle);
    if (code == SQLITE_ROW)
        return true;
    if (code == SQLITE_DONE)
        return false;
    // The reset gives the code once more and leaves its message with the connection.
    const QString sql = QString::fromUtf8(sqlite3_sql(m_handle));
    sqlite3_reset(m_handle);
    m_store->raise(code, sql);
}

void Statement::reset()
{
    // What it returns is the failure of the last step, which was thrown then.
    sqlite3_reset(m_handle);
}

bool Statement::hasSorted() const
{
    return sqlite3_stmt_status(m_handle, SQLITE_STMTSTATUS_SORT, 0) > 0;
}

int Statement::columns() const
{
    return sqlite3_column_count(m_handle);
}

bool Statement::isNull(int column) const
{
    return sqlite3_column_type(m_handle, column) == SQLITE_NULL;
}

qint64 Statement::int64(int column) const
{
    return sqlite3_column_int64(m_handle, column);
}

double Statement::real(int column) const
{
    return sqlite3_column_double(m_handle, column);
}

QString Statement::text(int column) const
{
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(m_handle, column));
    return QString::fromUtf8(bytes, sqlite3_column_bytes(m_handle, column));
}

QByteArray Statement::blob(int column) const
{
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(m_handle, column));
    return QByteArray(bytes, sqlite3_column_bytes(m_handle, column));
}

QVariant Statement::value(int column, DataType type) const
{
    const int stored = sqlite3_column_type(m_handle, column);
    if (stored == SQLITE_NULL)
        return {};
    if (isText(type))
        return text(column);
    if (isBinary(type))
        return blob(column);
    if (stored == SQLITE_INTEGER || stored == SQLITE_FLOAT) {
        if (type == DataType::Boolean)
            return real(column) != 0;
        if (type == DataType::Date)
            return text::daysToDate(real(column));
        if (stored == SQLITE_FLOAT || (isNumber(type) && !isWhole(type)))
            return real(column);
        const qint64 number = int64(column);
        return qint64(int(number)) == number ? QVariant(int(number)) : QVariant(number);
    }
    if (stored == SQLITE_BLOB)
        return blob(column);
    return text(column);
}

// --- Store -------------------------------------------------------------------------------------

Store::~Store()
{
    close();
}

void Store::open(const QString& path, bool create, bool readOnly)
{
    close();
    configureLibrary();
    m_path = path;
    const int access = readOnly ? SQLITE_OPEN_READONLY
                                : SQLITE_OPEN_READWRITE | (create ? SQLITE_OPEN_CREATE : 0);
    const int code = sqlite3_open_v2(QFile::encodeName(path).constData(), &m_db,
                                     access | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    try {
        if (code != SQLITE_OK)
            raise(code);
        harden(m_db);
        registerFunctions(m_db);
        watch();
        // Only for a lock that is just about to go: whoever has locked the file for good sets it to 0.
        sqlite3_busy_timeout(m_db, lockPatience);
        run(u"PRAGMA cell_size_check=ON; PRAGMA mmap_size=0; PRAGMA synchronous=EXTRA;"
            "PRAGMA cache_size=-65536; PRAGMA temp_store=FILE; PRAGMA secure_delete=FAST;"
            // A deletion in a tree of records goes down through the same trigger.
            "PRAGMA recursive_triggers=ON"_s);
    } catch (...) {
        close();
        throw;
    }
}

void Store::close()
{
    if (!m_db)
        return;
    const sqlite3_stmt* left = sqlite3_next_stmt(m_db, nullptr);
    if (left)
        qCWarning(jetLog) << "closed with a statement in use:" << sqlite3_sql(const_cast<sqlite3_stmt*>(left));
    // With statements left the connection lives on until the last of them is gone.
    if (const int code = sqlite3_close_v2(m_db); code != SQLITE_OK)
        qCWarning(jetLog) << "closing gave" << code;
    m_db = nullptr;
    m_progress = nullptr;
}

void Store::run(const QString& sql)
{
    const int code = sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        raise(code, sql);
}

QVariant Store::single(const QString& sql)
{
    Statement statement(*this, sql);
    return statement.step() ? statement.value(0, DataType::None) : QVariant();
}

qint64 Store::changes() const
{
    return sqlite3_changes64(m_db);
}

qint64 Store::totalChanges() const
{
    return m_db ? sqlite3_total_changes64(m_db) : 0;
}

qint64 Store::lastRowId() const
{
    return sqlite3_last_insert_rowid(m_db);
}

bool Store::inTransaction() const
{
    return m_db && sqlite3_get_autocommit(m_db) == 0;
}

void Store::stopWhen(const std::atomic<bool>* flag)
{
    m_stop = flag;
    watch();
}

void Store::setProgress(std::function<bool()> callback)
{
    m_progress = std::move(callback);
    watch();
}

/// Not by sqlite3_interrupt: that stays in force while any statement is open, so that a record set read
/// half way would make every later one fail.
void Store::watch()
{
    if (!m_db)
        return;
    if (!m_progress && !m_stop) {
        sqlite3_progress_handler(m_db, 0, nullptr, nullptr);
        return;
    }
    sqlite3_progress_handler(
        m_db, stepsBetweenProgress,
        [](void* store) {
            const auto* self = static_cast<Store*>(store);
            const bool stop = (self->m_stop && self->m_stop->load(std::memory_order_relaxed))
                              || (self->m_progress && !self->m_progress());
            return stop ? 1 : 0;
        },
        this);
}

void Store::raise(int code, const QString& sql)
{
    const int extended = m_db ? sqlite3_extended_errcode(m_db) : code;
    // Another call may have come between: its code is not the one asked about.
    const int exact = (extended & 0xFF) == (code & 0xFF) ? extended : code;
    const QString message = m_db ? QString::fromUtf8(sqlite3_errmsg(m_db))
                                 : QString::fromUtf8(sqlite3_errstr(code));
    if (auto own = ownError(message, sql))
        throw std::move(*own);
    if ((exact & 0xFF) == SQLITE_CONSTRAINT)
        throw constraintError(exact, message, sql);
    if (const int number = numberOf(exact); number != 0)
        throw Error(number, number == 3059 ? describe(number) : describe(number, m_path), sql);
    // A statement that SQLite does not accept is a fault of the translation.
    qCWarning(jetLog).noquote() << "SQLite" << exact << message << "in" << sql;
    throw Error(3219, describe(3219) + u" ("_s + message + u')', sql);
}

} // namespace jet
