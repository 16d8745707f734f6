// The connection to SQLite and its prepared statements: the only place, with its source and
// Functions, where the C interface of SQLite is seen.
#pragma once

#include "jet/Error.h"
#include "jet/Types.h"

#include <QString>
#include <QVariant>
#include <atomic>
#include <functional>

struct sqlite3;
struct sqlite3_stmt;

namespace jet {

class Store;

/// One prepared statement. Errors are thrown as jet::Error, translated from what the store says
/// (messages of our triggers and functions begin "#number#").
class Statement {
public:
    Statement() = default;
    Statement(Store& store, const QString& sql);
    ~Statement();
    Statement(Statement&& other) noexcept;
    Statement& operator=(Statement&& other) noexcept;

    /// Binds from 1. QVariant types as in Types.h; bool as -1 / 0, QDateTime as days since 1899-12-30.
    void bind(int position, const QVariant& value);
    void bind(int position, qint64 value);
    bool step();  ///< True while there is a row.
    void reset(); ///< Also clears nothing: bindings stay.
    bool hasSorted() const; ///< Its rows so far came out of a sort, not in the order of an index.
    int columns() const;
    bool isNull(int column) const;
    qint64 int64(int column) const;
    double real(int column) const;
    QString text(int column) const;
    QByteArray blob(int column) const;
    /// The value as a QVariant of the type; None takes what the store holds.
    QVariant value(int column, DataType type) const;
    explicit operator bool() const { return m_handle != nullptr; }

private:
    Store* m_store = nullptr;
    sqlite3_stmt* m_handle = nullptr;
};

/// The connection. Opened defensively; the functions of the dialect are registered.
class Store {
public:
    Store() = default;
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    void open(const QString& path, bool create, bool readOnly);
    void close();
    bool isOpen() const { return m_db != nullptr; }
    sqlite3* handle() const { return m_db; }
    QString path() const { return m_path; }

    void run(const QString& sql); ///< One or several statements without results.
    QVariant single(const QString& sql); ///< First column of the first row; Null when there is none.
    qint64 changes() const;      ///< Rows changed by the last statement, triggers not counted.
    qint64 totalChanges() const; ///< Rows changed since it was opened, triggers counted; rolled back ones too.
    qint64 lastRowId() const;
    bool inTransaction() const;
    /// While the flag is true, whatever runs fails with 3059. It is looked at every few thousand steps; the flag
    /// belongs to the caller, who takes it back when the next work begins.
    void stopWhen(const std::atomic<bool>* flag);
    void setProgress(std::function<bool()> callback);
    /// Throws the jet::Error for the result code of the last call.
    [[noreturn]] void raise(int code, const QString& sql = {});

private:
    void watch();

    sqlite3* m_db = nullptr;
    QString m_path;
    std::function<bool()> m_progress;
    const std::atomic<bool>* m_stop = nullptr;
};

} // namespace jet
