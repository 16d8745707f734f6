#include "images/PictureRows.h"

#include "jet/Cancelled.h"
#include "jet/Recordset.h"

namespace images {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 rowsAtOnce = 500;

} // namespace

std::unique_ptr<PictureRows> readPictures(jet::Database& database, const QString& statement,
                                          platform::Progression& progression)
{
    QList<PictureRows::Row> rows;
    const auto set = database.OpenRecordset(statement);
    const int id = set->FieldIndex(u"ChpID"), name = set->FieldIndex(u"Chp1");
    if (id < 0 || name < 0)
        jet::fail(3265, id < 0 ? u"ChpID"_s : u"Chp1"_s);
    while (!set->EOF_()) {
        if (progression.cancelled())
            jet::fail(jet::cancelledError);
        for (const std::vector<QVariant>& row : set->GetRows(rowsAtOnce)) {
            const QString file = row[size_t(name)].toString();
            if (!file.isEmpty())
                rows << PictureRows::Row{row[size_t(id)].toInt(), file};
        }
    }
    return std::make_unique<PictureRows>(std::move(rows));
}

} // namespace images
