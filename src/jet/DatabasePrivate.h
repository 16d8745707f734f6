// Inside of Database, shared by its sources and by Recordset.
#pragma once

#include "jet/Database.h"
#include "jet/StatementCache.h"
#include "jet/Store.h"

#include <QLockFile>
#include <QSet>
#include <atomic>

namespace jet {

class DefinitionWriter;

/// A record set that may hold an open cursor of the store. Before anything is written, each
/// reads the rest of its row identifiers and lets the cursor go; at close each becomes invalid.
class CursorHolder {
public:
    virtual ~CursorHolder() = default;
    virtual void finishReading() = 0;
    virtual void invalidate() = 0;
};

struct Database::Private {
    Private() { store.stopWhen(&cancelled); }

    Store store;
    Schema schema;
    QString path;
    bool readOnly = false;
    std::unique_ptr<QLockFile> lock;
    int recordsAffected = 0;

    // Named operations: depth 0 is none; inner ones are savepoints.
    QStringList operations;

    QSet<CursorHolder*> holders;

    /// Compiled statements; its prepared ones are let go at close, as the cursors are.
    struct Statements : CursorHolder {
        StatementCache cache;
        void finishReading() override {}
        void invalidate() override { cache.clear(); }
    } statements;
    std::atomic<bool> cancelled = false; ///< Interrupt was called since the running call began.
    bool definitionsTouched = false;     ///< In the running operation.

    // DatabaseStatements.cpp
    /// Reads the rest of every open cursor; to be called before a write or a commit. 3027 when the file is
    /// read-only, 3034 when the store has dropped the running operation after an error.
    void beforeWrite();
    /// Runs `work` in a transaction of its own, or in the running one under a savepoint; whole or not at all.
    /// It may change definitions: compiled statements are forgotten.
    void atomically(const std::function<void()>& work);
    /// The same for work that leaves the definitions alone.
    void wholly(const std::function<void()>& work);
    /// The compiled statement of a text.
    std::shared_ptr<CachedStatement> compiled(const QString& text);

    // Database.cpp
    void admit(const QString& password); ///< 3031 unless it is the file's.
    void renewTextOrder(); ///< Rebuilds the text indexes of a file made with another order.

    // DatabaseDefinitions.cpp
    void loadSchema();
    /// Changes definitions in the file and in memory, whole or not at all.
    void change(const std::function<void(DefinitionWriter&)>& work);
};

} // namespace jet
