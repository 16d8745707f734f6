// A table read into a module or a reference list.
#pragma once

#include "app/import/ColumnMapping.h"
#include "app/import/CsvFile.h"
#include "app/import/ImportReport.h"
#include "app/import/NameMatching.h"
#include "platform/Progression.h"

namespace app {

class Session;

/// What is to be imported, and how.
struct ImportPlan {
    QString file;
    CsvFormat format = {};
    ImportTarget target = {};
    ColumnMapping mapping = {};
    bool update = false;        ///< Rows with an identifier change that record; those without one are added.
    bool emptyErases = false;   ///< When they do, an empty cell empties its field; otherwise it leaves it alone.
    bool createNames = false;   ///< Names that match nothing are added to their lists, unless decided otherwise.
    NameDecisions decisions = {};
};

/// Works on the open project of the session, beside the windows too: nothing of it shows anything, and its reference
/// classes are its own. Only one row is in memory.
class CsvImport {
public:
    explicit CsvImport(Session& session) : m_session(session) {}

    /// Why the plan cannot be carried out (a required field without a column …); empty when it can.
    static QString problem(const ImportPlan& plan);

    /// The names of the table that match no row or several, by type and as they come first. Throws jet::Error, 3059 when the
    /// user stops it.
    QList<UnknownName> unknownNames(const ImportPlan& plan, platform::Progression& progression);

    /// One named operation: all that can be imported, or nothing (a failure, or 3059 when the user stops it). What is refused
    /// is written beside the file with its reasons, and the columns are kept for the next time. A rehearsal does the same work
    /// and takes it back, so that it says what the import will. Throws jet::Error.
    ImportReport run(const ImportPlan& plan, platform::Progression& progression, bool rehearsal);

private:
    Session& m_session;
};

/// Where the rows are written that an import of the file refuses: "plantes.refus.csv", numbered where that is taken.
QString refusedPath(const QString& file);

} // namespace app
