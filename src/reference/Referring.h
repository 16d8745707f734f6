// The individuals that name a row of a reference list.
#pragma once

#include "jet/Database.h"

#include <QList>
#include <QString>

namespace reference {

/// A column in which records name rows of a reference list.
struct ReferringColumn {
    QString module; ///< Its table has a column `ID Individus`.
    QString column;
    int type = 0;   ///< Type code of the field: 13 collectors, 14 localities, 15 taxa.
};

/// Counts and finds. Failures are jet::Error.
class Referring {
public:
    Referring(jet::Database& database, QList<ReferringColumn> columns);

    /// Individuals, each once and in order, that name the row itself in any column.
    QList<qint32> individuals(int type, qint32 id) const;
    /// The same for the row and all that is under it in its list.
    QList<qint32> individualsBelow(int type, qint32 id) const;

private:
    QList<qint32> found(int type, const QString& condition) const;
    QString below(int type, qint32 id) const;

    jet::Database& m_database;
    QList<ReferringColumn> m_columns;
};

} // namespace reference
