// The collection of statements in tests/jet/statements: one reader for all tests that go through
// it.
#pragma once

#include <QString>
#include <vector>

/// What a record of the collection says about the outcome of its statement.
enum class Outcome { Unsaid, Rows, Count, Error };

struct CollectedStatement {
    QString name;        ///< What the statement does, in one line.
    QString text;        ///< The statement, its line ends CR LF.
    QString storedQuery; ///< The stored query that it is the text of; empty when none.
    Outcome outcome = Outcome::Unsaid;
    int number = -1; ///< Rows, records affected or error number; -1 when not said.
    int line = 0;    ///< Where the record begins in the file, from 1.
};

/// The records of a file (its head tells the format) in their order; the head
/// itself, having no statement, is none of them. Empty when the file is missing.
std::vector<CollectedStatement> readCollection(const QString& path);

/// The path of a file below tests/jet/statements.
QString statementsFile(const QString& name);
