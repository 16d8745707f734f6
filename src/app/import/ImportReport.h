// What an import came to, and what it would come to.
#pragma once

#include <QList>
#include <QString>

namespace app {

/// Rows that were refused for one reason.
struct ImportProblem {
    static constexpr qsizetype mostExamples = 5;
    struct Example {
        qint64 line = 0;  ///< Of the file, from 1.
        QString text;     ///< The value, or what the engine said.
    };
    QString reason;
    qint64 rows = 0;
    QList<Example> examples; ///< The first ones.
};

struct ImportReport {
    bool rehearsal = false;  ///< Nothing was written.
    QString target;
    qint64 rows = 0;         ///< Of the file.
    qint64 added = 0;
    qint64 changed = 0;
    qint64 present = 0;      ///< Rows of a reference list that were there already; nothing of them was changed.
    qint64 under = 0;        ///< Records added below the ones of the rows.
    qint64 refused = 0;
    QList<std::pair<QString, qint64>> created; ///< Names that were added to reference lists.
    QList<ImportProblem> problems;             ///< The most frequent first, once sorted.
    QString refusedFile;     ///< Where the refused rows stand with the reason; empty when there are none.

    /// Counts a refused row. Reasons beyond a hundred are counted together.
    void refuse(const QString& reason, qint64 line, const QString& text);
    void sortProblems();
    QString text() const; ///< In French, for the user.
};

/// Why a row is refused: `reason` is the same for all of a kind, `text` says what was found.
struct RowRefused {
    QString reason;
    QString text;
};

/// What a table refuses concerns one row; other errors, of the file or the disk, end an import.
bool concernsRow(int error);

} // namespace app
