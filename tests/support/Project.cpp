#include "support/Project.h"

#include "jet/Recordset.h"

namespace support {

using namespace Qt::StringLiterals;

QVariant TestProject::single(const QString& statement)
{
    const auto rows = db().OpenRecordset(statement);
    return rows->EOF_() ? QVariant() : rows->Value(0);
}

QStringList TestProject::rows(const QString& statement)
{
    QStringList result;
    const auto rows = db().OpenRecordset(statement);
    for (; !rows->EOF_(); rows->MoveNext()) {
        QStringList cells;
        for (int i = 0; i < rows->FieldCount(); ++i) {
            const QVariant value = rows->Value(i);
            cells << (value.isValid() ? value.toString() : u"∅"_s);
        }
        result << cells.join(u'|');
    }
    return result;
}

} // namespace support
