// Statements of the dialect that were compiled lately.
#pragma once

#include "jet/Compile.h"
#include "jet/Store.h"

#include <QHash>
#include <list>

namespace jet {

/// A compiled statement. Its steps are prepared when they first run (a later one may need what an
/// earlier one makes).
struct CachedStatement {
    QString text;
    Compiled compiled;
    std::vector<Statement> steps;
};

/// The statements used last, by their text. It knows nothing of definitions: whoever
/// changes one empties it.
class StatementCache {
public:
    /// The statement, compiled when it is not there.
    std::shared_ptr<CachedStatement> statement(const QString& text, const Schema& schema);
    void clear();

private:
    std::list<std::shared_ptr<CachedStatement>> m_recent; ///< Last used first.
    QHash<QString, std::list<std::shared_ptr<CachedStatement>>::iterator> m_byText;
};

} // namespace jet
