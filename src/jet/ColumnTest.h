// Which records would break a rule that their table does not have yet.
#pragma once

#include "jet/Database.h"
#include "jet/Store.h"

#include <optional>

namespace jet {

/// How many they are, and the identifiers of the first of them.
struct Breaches {
    qint64 count = 0;
    QList<qint32> first;
};

/// 3320 when the validation rule of the column is not understood.
void checkRule(const Field& field);

/// Whether single values pass the validation rule of a column, as the table itself would judge. Null passes.
class RuleTest {
public:
    RuleTest(Database& database, const Field& field); ///< 3320.
    bool accepts(const QVariant& value);

private:
    Statement m_refused; ///< None where there is no rule.
};

/// Records whose value in the column is Null although it is Required.
Breaches nullsIn(Database& database, const QString& table, const Field& field, int most);
/// Records whose value is refused by the validation rule.
Breaches refusedIn(Database& database, const QString& table, const Field& field, int most);
/// Records whose values in these columns together another record has as well; a Null in one of them exempts.
Breaches duplicatesIn(Database& database, const QString& table, const QStringList& columns, int most);

} // namespace jet
