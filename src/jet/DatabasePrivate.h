// Inside of Database, shared by its sources and by Recordset.
#pragma once

#include "jet/Database.h"
#include "jet/Store.h"

#include <QLockFile>
#include <QSet>

namespace jet {

/// A record set that may hold an open cursor of the store. Before anything is written, each
/// reads the rest of its row identifiers and lets the cursor go; at close each becomes invalid.
class CursorHolder {
public:
    virtual ~CursorHolder() = default;
    virtual void finishReading() = 0;
    virtual void invalidate() = 0;
};

struct Database::Private {
    Store store;
    Schema schema;
    QString path;
    bool readOnly = false;
    std::unique_ptr<QLockFile> lock;
    int recordsAffected = 0;

    // Named operations: depth 0 is none; inner ones are savepoints.
    QStringList operations;

    QSet<CursorHolder*> holders;

    // DatabaseStatements.cpp
    /// Reads the rest of every open cursor; to be called before a write or a commit.
    void beforeWrite();
    /// Runs `work` in a transaction of its own, or in the running one under a savepoint; whole or not at all.
    void atomically(const std::function<void()>& work);

    // DatabaseDefinitions.cpp / Catalog.cpp
    void loadSchema();
};

} // namespace jet
