// A program run to its end.
#pragma once

#include <QByteArray>
#include <QString>

namespace faults {

/// How a program ended and what it printed.
struct Ended {
    int signal = 0; ///< The signal that ended it; 0 when it ended by itself.
    int status = 0; ///< Its exit status then.
    QString output;
    QString messages;
};

/// Runs a program with nothing on its standard input. `variables` come before those of this
/// process, except those that concern the fault library, which are left out. Its printing goes
/// through files beside `scratch`, a path without extension. Throws std::runtime_error when it
/// cannot be started.
Ended runToEnd(const QByteArrayList& arguments, const QByteArrayList& variables,
               const QString& scratch);

/// The bytes of a file; empty when there is none.
QByteArray contents(const QString& path);

} // namespace faults
