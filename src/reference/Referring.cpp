#include "reference/Referring.h"

#include "data/FieldType.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"
#include "reference/Cl_Taxon.h"

#include <algorithm>

namespace reference {

using namespace Qt::StringLiterals;
using jet::nom;
using jet::texte;

namespace {

constexpr qint64 pageOfRows = 4096;

QVariant firstValue(jet::Database& database, const QString& statement)
{
    const auto rows = database.OpenRecordset(statement, jet::RecordsetType::Snapshot);
    return rows->EOF_() ? QVariant() : rows->Value(0);
}

/// The rank of a taxon as its ancestor columns tell it; 0 for none.
int rankOf(jet::Database& database, qint32 id)
{
    for (int rank = 1; rank <= 4; ++rank) {
        const QString column = Cl_Taxon::champ(rank);
        if (firstValue(database, u"SELECT "_s + column + u" FROM Taxons WHERE [ID Taxons]="_s + QString::number(id)).toInt()
            == id)
            return rank;
    }
    return 0;
}

} // namespace

Referring::Referring(jet::Database& database, QList<ReferringColumn> columns)
    : m_database(database), m_columns(std::move(columns))
{
}

QList<qint32> Referring::found(int type, const QString& condition) const
{
    QList<qint32> all;
    for (const ReferringColumn& column : m_columns) {
        const jet::TableDef* table = m_database.schema().table(column.module);
        if (column.type != type || !table || !table->field(column.column) || !table->field(u"ID Individus"_s))
            continue;
        const auto rows =
            m_database.OpenRecordset(u"SELECT DISTINCT [ID Individus] FROM "_s + nom(column.module) + u" WHERE "_s
                                         + nom(column.column) + condition,
                                     jet::RecordsetType::Snapshot);
        while (!rows->EOF_()) {
            for (const auto& row : rows->GetRows(pageOfRows))
                all << row.front().toInt();
        }
    }
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

QList<qint32> Referring::individuals(int type, qint32 id) const
{
    return found(type, u" = "_s + QString::number(id));
}

/// A statement of the identifiers of the row and all under it; empty when nothing can be under it.
QString Referring::below(int type, qint32 id) const
{
    if (type == data::Taxon) {
        const int rank = rankOf(m_database, id);
        if (rank >= 1 && rank <= 3)
            return u"SELECT [ID Taxons] FROM Taxons WHERE "_s + Cl_Taxon::champ(rank) + u" = "_s + QString::number(id);
    } else if (type == data::Localité) {
        const QString code = firstValue(m_database, u"SELECT [CodeRegion] FROM [Localités] WHERE [ID Localités]="_s
                                                        + QString::number(id))
                                 .toString();
        // The slash keeps 3/7 from taking 3/71 along; the place itself stands beside.
        if (!code.isEmpty())
            return u"SELECT [ID Localités] FROM [Localités] WHERE [CodeRegion] LIKE "_s + texte(code + u"/*"_s)
                   + u" OR [ID Localités] = "_s + QString::number(id);
    }
    return {};
}

QList<qint32> Referring::individualsBelow(int type, qint32 id) const
{
    const QString statement = below(type, id);
    return statement.isEmpty() ? individuals(type, id) : found(type, u" IN ("_s + statement + u')');
}

} // namespace reference
