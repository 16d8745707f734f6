// An open file of the engine.
#pragma once

#include "jet/Definitions.h"
#include "jet/Error.h"
#include "jet/Schema.h"

#include <QString>
#include <functional>
#include <memory>

namespace jet {

class Recordset;
class Store;

/// How a file is opened. A file that cannot be written opens read-only whatever is asked.
struct OpenOptions {
    QString password;
    bool readOnly = false;
    /// Checks the whole file first (asked by itself when the last close is in doubt).
    bool checkFirst = false;
};

/// One open file: its definitions, its statements, its transactions.
///
/// One connection, held exclusively: another instance is refused (3045 with the name of who has it).
/// Not thread-safe, but it may be handed from thread to thread; only Interrupt may be called
/// from anywhere at any time. Every failure is a jet::Error.
class Database {
public:
    /// Creates the file `path` (3204 when it exists, 3424 for a bad locale string) and opens it.
    /// `locale` is ";LANGID=0x0409;CP=1252;COUNTRY=0", with ";pwd=…" appended for a password.
    static std::unique_ptr<Database> Create(const QString& path, const QString& locale);
    /// Opens it: 3024 absent, 3044 bad path, 3045 in use, 3031 password, 3343 not a file of ours,
    /// 3049 damaged, 3051 no rights. Changes no byte of a file of the current layout.
    static std::unique_ptr<Database> Open(const QString& path, const OpenOptions& options = {});
    /// Writes a compacted copy of the closed file `source` to `target` (3204 when it exists), checked
    /// and flushed. AutoNumber counters restart from the largest value present.
    static void Compact(const QString& source, const QString& target, const OpenOptions& options = {});

    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void Close(); ///< Idempotent. Open record sets become invalid (3420).
    bool isOpen() const;
    bool readOnly() const;
    QString Name() const; ///< The file's path, canonical.

    // --- Definitions -------------------------------------------------------------------------
    const Schema& schema() const;
    /// Makes the definition real. 3010 exists, 3264 no field.
    void AppendTable(const TableDef& table);
    void DeleteTable(const QString& name); ///< 3265 absent; 3281 when a relation refers to it.
    /// Adds a column at the end. 3191 exists. Where it is Required, rows that are there already keep Null in it until
    /// they are written again (Check names them); with a default they get that.
    void AppendField(const QString& table, const Field& field);
    void DeleteField(const QString& table, const QString& field);
    /// Replaces the rules of an existing column (Required, AllowZeroLength, validation, default,
    /// width); its name and type stay.
    void ChangeField(const QString& table, const Field& field);
    /// Gives a table another name; rows, indexes and relations stay. 3010, 3012 taken.
    void RenameTable(const QString& name, const QString& newName);
    /// Gives a column another name, and the rules of `field` with it as ChangeField does. 3191 taken.
    void RenameField(const QString& table, const QString& name, const Field& field);
    /// Gives columns other types; each value becomes what the converter makes of it (Null where that is invalid). The
    /// table is written anew once, and its indexes with it; those on the columns themselves are gone afterwards. 3281 for
    /// a column of a relation.
    using Converter = std::function<QVariant(const QString& column, const QVariant& value)>;
    void ConvertFields(const QString& table, const QList<Field>& fields, const Converter& converter);
    void AppendIndex(const QString& table, const Index& index); ///< 3284 exists, 3022 duplicate rows.
    void DeleteIndex(const QString& table, const QString& index);
    /// Makes the indexes of the table exactly these; one that stands with the same definition is not
    /// rebuilt. A failure of one leaves the others made, and is reported in the result.
    struct IndexFailure { QString index; int number; QString description; };
    QList<IndexFailure> ReplaceIndexes(const QString& table, const QList<Index>& indexes);
    void AppendRelation(const Relation& relation); ///< 3012 exists, 3609, 3379 orphans.
    void DeleteRelation(const QString& name);
    void CreateQueryDef(const QString& name, const QString& sql); ///< Checked by the parser; 3012 exists.
    void DeleteQueryDef(const QString& name);

    // --- Properties of the database ----------------------------------------------------------
    bool hasProperty(const QString& name) const;
    QVariant Property(const QString& name) const; ///< 3270 absent.
    void SetProperty(const QString& name, const QVariant& value); ///< Creates or changes.

    // --- Statements --------------------------------------------------------------------------
    /// Runs an action whole or not at all; gives the number of records affected.
    int Execute(const QString& sql, int options = dbFailOnError);
    int RecordsAffected() const; ///< Of the last Execute.
    /// Opens a statement, a stored query or (type Table) a table.
    std::unique_ptr<Recordset> OpenRecordset(const QString& source,
                                             RecordsetType type = RecordsetType::Dynaset);

    // --- Named operations --------------------------------------------------------------------
    /// Called by jet::Operation. Nested ones become part of the outermost.
    void BeginOperation(const QString& name);
    void CommitOperation();
    void RollbackOperation();
    bool inOperation() const;

    /// Stops what runs; the statement fails with 3059 (cancelled by the user). Thread-safe.
    void Interrupt();
    /// Called now and then while a statement runs, from its thread; false cancels it (3059).
    void SetProgress(std::function<bool()> callback);

    // --- Care --------------------------------------------------------------------------------
    /// Findings in French, empty when the file is sound. `thorough` also checks every index.
    QStringList Check(bool thorough = true);
    /// Writes a copy of the open file, page by page, flushed and named last: 3204 when `target` exists, 3034 inside of an
    /// operation. Where `goOn` gives false now and then, it stops (3059) and leaves nothing.
    void SaveCopy(const QString& target, const std::function<bool()>& goOn = {});

    Store& store(); ///< For the classes of the engine.

private:
    Database();
    struct Private;
    std::unique_ptr<Private> d;
    friend class Recordset;
};

/// A named operation: everything the user does is one unit, all or nothing. Rolled back on
/// destruction unless committed.
class Operation {
public:
    Operation(Database& database, const QString& name);
    ~Operation();
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;
    void commit();

private:
    Database* m_database;
    bool m_open = true;
};

} // namespace jet
