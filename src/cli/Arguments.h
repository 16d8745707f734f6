// The words of a command line.
#pragma once

#include "cli/Terminal.h"

#include <QHash>
#include <QStringList>

namespace cli {

/// Exit statuses.
enum Status { Success = 0, Failure = 1, Usage = 2 };

/// A wrong command line; what() is the French sentence.
struct UsageError {
    QString text;
};

/// One command line taken apart: the command, its words, its options.
struct Arguments {
    QString command;
    QStringList words;
    QHash<QString, QString> options; ///< "--csv" → value (empty for flags).

    bool has(const QString& option) const { return options.contains(option); }
    Answers answers() const;
    QString file() const; ///< The first word; throws UsageError when there is none.
    int number(const QString& option, int byDefault) const;
};

/// Throws UsageError. Options with a value are written "--taxons N" or "--taxons=N".
Arguments parseArguments(const QStringList& arguments);

QString helpText();

} // namespace cli
