// What a statement of a query says about its columns and their order.
#pragma once

#include <QList>
#include <QString>

namespace query {

enum class SortState { None, Ascending, Descending };

struct StatementColumn {
    QString expression;
    QString alias;  ///< Without brackets; empty where there is none.
    QString format; ///< "True/False" for a test of Null, else empty.
    SortState sort = SortState::None;
    bool operator==(const StatementColumn&) const = default;
};

/// The columns of a "SELECT DISTINCTROW … FROM … ORDER BY …".
QList<StatementColumn> SQLHeader(const QString& statement);

/// The statement ordered by that expression alone.
QString orderedBy(const QString& statement, const QString& expression, bool descending);

} // namespace query
