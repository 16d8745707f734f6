// Stored queries, which Access keeps as rows of MSysQueries rather than as text.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace jet::access {

/// One row of MSysQueries.
struct QueryRow {
    int attribute = 0;
    int flag = 0;
    QByteArray order;
    QString name1, name2, expression;
};

/// What became of a stored query.
struct StoredQuery {
    QString name;
    QString sql;     ///< In the dialect; where it is not understood, as well as it can be put together.
    QString problem; ///< Why it cannot be kept as a stored query; empty when it can.
};

/// Puts the text together and gives it to the parser.
StoredQuery storedQuery(const QString& name, QList<QueryRow> rows);

} // namespace jet::access
