// Stopping a statement when the user wants to.
#pragma once

#include "jet/Database.h"
#include "platform/Progression.h"

namespace data {

/// While it lives, statements of the database stop (3059) when the user wants to. Interrupting the database itself would
/// stop the half-read rows of other windows too.
class Cancellable {
public:
    Cancellable(jet::Database& database, const platform::Progression& progression) : m_database(database)
    {
        m_database.SetProgress([&progression] { return !progression.cancelled(); });
    }
    ~Cancellable() { m_database.SetProgress({}); }
    Cancellable(const Cancellable&) = delete;
    Cancellable& operator=(const Cancellable&) = delete;

private:
    jet::Database& m_database;
};

} // namespace data
