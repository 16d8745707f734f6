#include "reference/ui/TreeSource.h"

#include "jet/Database.h"
#include "jet/SqlText.h"
#include "reference/Cl_Taxon.h"

#include <algorithm>

namespace reference {

using namespace Qt::StringLiterals;
using jet::texte;

namespace {

std::vector<QVariant> firstRow(jet::Database& database, const QString& statement)
{
    const auto rows = database.OpenRecordset(statement, jet::RecordsetType::Snapshot);
    if (rows->EOF_())
        return {};
    auto page = rows->GetRows(1);
    return page.empty() ? std::vector<QVariant>() : std::move(page.front());
}

} // namespace

// --- Taxa ------------------------------------------------------------------------------------------

std::unique_ptr<jet::Recordset> TaxonSource::children(const TreeRow& parent) const
{
    return m_taxa.RecordSetTaxons(parent.rank, parent.id);
}

TreeRow TaxonSource::rowOf(const std::vector<QVariant>& values, const TreeRow& parent) const
{
    return {values[0].toInt(), values[1].toString(), parent.rank + 1, values[2].isValid()};
}

bool TaxonSource::hasChildren(const TreeRow& row) const
{
    if (row.rank >= 4)
        return false;
    return !m_database.OpenRecordset(m_taxa.SQLChildren(row.rank, row.id), jet::RecordsetType::Snapshot)->EOF_();
}

std::optional<TreeRow> TaxonSource::row(qint32 id) const
{
    const auto values = firstRow(m_database, u"SELECT [ID Taxons],[Taxon],[ID Valid],[ID Famille],[ID Genre],[ID Espèce],[ID Infra] FROM [Taxons] WHERE [ID Taxons] = "_s
                                                 + QString::number(id));
    if (values.empty())
        return {};
    const auto own = std::find_if(values.begin() + 3, values.end(), [&](const QVariant& v) { return v.toInt() == id; });
    const int rank = own == values.end() ? 0 : int(own - values.begin()) - 2;
    return TreeRow{id, values[1].toString(), rank, values[2].isValid()};
}

QList<qint32> TaxonSource::path(qint32 id) const
{
    QList<qint32> ids;
    while (id > 0 && !ids.contains(id)) {
        ids.prepend(id);
        id = m_taxa.IDparent(id);
    }
    return id < 0 ? QList<qint32>() : ids;
}

QString TaxonSource::tip(const TreeRow& row) const
{
    return m_taxa.NomTaxon(row.id, 3);
}

// --- Localities ------------------------------------------------------------------------------------

std::unique_ptr<jet::Recordset> PlaceSource::children(const TreeRow& parent) const
{
    // The beginning of the code alone would do by the index; the rest tells children from what lies deeper.
    const QString condition =
        parent.id > 0 ? u"[CodeRegion] LIKE "_s + texte(parent.code + u"/*"_s) + u" AND [CodeRegion] = "_s
                            + texte(parent.code + u'/') + u" & [ID Localités]"_s
                      : u"[ID Localités] & \"\" = [CodeRegion]"_s;
    return m_database.OpenRecordset(u"SELECT [ID Localités],[Localité],[CodeRegion],[ID Type] FROM [Localités] WHERE "_s
                                        + condition + u" ORDER BY [Localité]"_s,
                                    jet::RecordsetType::Snapshot);
}

TreeRow PlaceSource::rowOf(const std::vector<QVariant>& values, const TreeRow&) const
{
    return {values[0].toInt(), values[1].toString(), 0, false, values[2].toString(), values[3].toInt() < 0};
}

bool PlaceSource::hasChildren(const TreeRow& row) const
{
    return row.id == 0
           || !firstRow(m_database,
                        u"SELECT TOP 1 [ID Localités] FROM [Localités] WHERE [CodeRegion] LIKE "_s + texte(row.code + u"/*"_s))
                   .empty();
}

std::optional<TreeRow> PlaceSource::row(qint32 id) const
{
    const auto values = firstRow(m_database, u"SELECT [ID Localités],[Localité],[CodeRegion],[ID Type] FROM [Localités] WHERE [ID Localités] = "_s
                                                 + QString::number(id));
    return values.empty() ? std::nullopt : std::optional(rowOf(values, {}));
}

QList<qint32> PlaceSource::path(qint32 id) const
{
    const auto found = row(id);
    QList<qint32> ids;
    for (const QString& part : found ? found->code.split(u'/', Qt::SkipEmptyParts) : QStringList())
        ids << part.toInt();
    return ids;
}

QString PlaceSource::tip(const TreeRow& row) const
{
    return row.map ? u"Carte"_s : QString();
}

} // namespace reference
