// From an Access file into a new file of ours.
#pragma once

#include "jet/Database.h"
#include "jet/access/AccessFile.h"

namespace jet::access {

/// What became of one table.
struct TransferredTable {
    QString name;
    qint64 rows = 0;
    quint32 announced = 0; ///< Rows that the file says it has.
    int fields = 0;
    int indexes = 0;
};

struct TransferReport {
    QString version; ///< Of the file that was read.
    QList<TransferredTable> tables;
    QStringList relations;      ///< Their names.
    QStringList queries;        ///< Names of those kept as stored queries,
    QList<StoredQuery> texts;   ///< and those kept as texts here.
    QStringList remarks;        ///< What was left out or changed, and why, in sentences.

    qint64 rows() const;
};

/// Called now and then with what is done and how much of the whole, 0 to 1; false stops (3059).
using TransferProgress = std::function<bool(const QString& text, double done)>;

/// Writes everything that can be read into the database, which must have no table of these names. Rows come before
/// rules and indexes: what an old file holds against its own rules is kept. What cannot be kept is told in the report.
/// One operation, whole or not at all. Throws what the new file refuses for itself (disk full …).
TransferReport transfer(AccessFile& from, Database& to, const TransferProgress& progress);

} // namespace jet::access
