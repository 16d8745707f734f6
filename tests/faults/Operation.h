// What is put to the test: one row for each thing that the program does to a project's files.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

namespace faults {

/// One operation of the table. `folder` is the folder below which calls are counted.
///
/// `run` plays it, in a process of its own, as the program does: true when it reported success,
/// false when it reported a failure (on standard error). All others are called without any fault
/// around them. `state` gives a text that is equal when, and only when, what the user has is equal;
/// it throws a std::exception when what is there is not sound.
struct Operation {
    QString name;
    std::function<void(const QString& folder)> prepare;
    std::function<bool(const QString& folder)> run;
    std::function<void(const QString& folder)>
        nextStart; ///< What the user does after the accident.
    std::function<QString(const QString& folder)> state;
    QStringList filesAfterwards; ///< All that may be in the folder after the next start.
    QStringList untouched;       ///< Files that no call may concern, even without a fault.
    bool knownBad = false;       ///< A wrong way of working, which the sweep has to find out.
};

/// The table. A new operation is a new row.
const std::vector<Operation>& operations();

} // namespace faults
