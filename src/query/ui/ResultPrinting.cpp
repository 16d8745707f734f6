#include "query/ui/ResultPrinting.h"

#include "query/Results.h"

#include <QLocale>

namespace query {

using namespace Qt::StringLiterals;

void printResults(Results& results, const QString& title, const platform::PrintWorld& world)
{
    const qint64 rows = results.CountRow();
    if (rows > platform::mostPreviewedRows) {
        const QLocale locale;
        world.dialogues.tell(u"Ce résultat a %1 lignes ; on en imprime %2 au plus.\nRestreignez la requête, ou exportez-la."_s.arg(
                                 locale.toString(rows), locale.toString(platform::mostPreviewedRows)),
                             u"Impression"_s);
        return;
    }
    platform::PrintTable table{title, {}, {}};
    for (int column = 0; column < results.Cols(); ++column)
        table.columns.append({results.HeaderColumn(column), jet::isNumber(results.type(column))});
    table.rows = [&results, rows](qint64 first, int count) {
        QList<platform::PrintRow> read;
        for (qint64 row = first; row < qMin(first + count, rows); ++row)
            read.append({results.rowTexts(row)});
        return read;
    };
    platform::printTable(table, rows, world);
}

} // namespace query
