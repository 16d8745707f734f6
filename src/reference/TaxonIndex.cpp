#include "reference/TaxonIndex.h"

#include "data/OrNull.h"
#include "jet/text/TextOrder.h"
#include "reference/Cl_Taxon.h"

#include <array>

namespace reference {

using namespace Qt::StringLiterals;
using data::orNull;

namespace {

constexpr qint64 rowsAtOnce = 4096;
constexpr size_t hashSeed = 0x6865726261; // the same numbers in every run
const std::array<QString, 4> rankColumns{u"ID Famille"_s, u"ID Genre"_s, u"ID Espèce"_s, u"ID Infra"_s};

/// Names of genera and families are unique in the whole table.
qint32 placeOf(int rank, qint32 parent)
{
    return rank <= 2 ? 0 : parent;
}

} // namespace

TaxonIndex::TaxonIndex(jet::Database& database, const platform::Clock& clock)
    : m_database(database), m_stamp(platform::stamp(clock)),
      m_reader(database.OpenRecordset(u"Taxons"_s, jet::RecordsetType::Table)),
      m_writer(database.OpenRecordset(u"Taxons"_s, jet::RecordsetType::Table))
{
    m_reader->SetIndex(u"PrimaryKey"_s);
    load();
}

quint64 TaxonIndex::hashOf(int rank, qint32 parent, const QString& name)
{
    return qHash(jet::text::key(name), hashSeed) ^ (quint64(rank) << 61) ^ (quint64(quint32(placeOf(rank, parent))) * 0x9e3779b97f4a7c15ULL);
}

void TaxonIndex::enter(int rank, qint32 parent, const QString& name, qint32 id)
{
    quint64 number = hashOf(rank, parent, name);
    while (m_names.contains(number))
        ++number;
    m_names.insert(number, id);
}

void TaxonIndex::load()
{
    const auto rows = m_database.OpenRecordset(u"SELECT [ID Taxons],[Taxon],[ID Famille],[ID Genre],[ID Espèce],[ID Infra] FROM Taxons"_s,
                                               jet::RecordsetType::Snapshot);
    while (!rows->EOF_()) {
        for (const auto& values : rows->GetRows(rowsAtOnce)) {
            const qint32 id = values[0].toInt();
            int rank = 1;
            while (rank <= 4 && values[size_t(rank) + 1].toInt() != id)
                ++rank;
            if (rank > 4)
                continue; // a damaged row has no rank
            const QString name = values[1].toString();
            enter(rank, rank > 1 ? values[size_t(rank)].toInt() : 0, name, id);
            if (rank == 2)
                m_genera.insert(id, {values[2].toInt(), name});
        }
    }
}

void TaxonIndex::seek(qint32 id) const
{
    m_reader->Seek(u"="_s, {id});
    if (m_reader->NoMatch())
        jet::fail(3167);
}

QList<qint32> TaxonIndex::find(int rank, qint32 parent, const QString& name) const
{
    QList<qint32> ids;
    quint64 number = hashOf(rank, parent, name);
    for (auto at = m_names.constFind(number); at != m_names.constEnd(); at = m_names.constFind(++number)) {
        seek(*at);
        const bool there = m_reader->Value(rankColumns[size_t(rank) - 1]).toInt() == *at
                           && (rank <= 2 || m_reader->Value(rankColumns[size_t(rank) - 2]).toInt() == parent)
                           && jet::text::equal(m_reader->Value(u"Taxon").toString(), name);
        if (there)
            ids << *at;
    }
    return ids;
}

QString TaxonIndex::authors(qint32 id) const
{
    seek(id);
    return m_reader->Value(u"Auteurs").toString();
}

/// A family is no part of a full name; an infraspecific name carries its marker.
QString TaxonIndex::fullName(int rank, qint32 parent, const QString& name) const
{
    if (rank <= 2)
        return name;
    if (rank == 3)
        return m_genera.value(parent).name + u' ' + name;
    seek(parent);
    return m_reader->Value(u"Nom Complet").toString() + u' ' + name;
}

qint32 TaxonIndex::add(int rank, qint32 parent, const QString& name, const QString& authors)
{
    std::array<qint32, 4> ranks{};
    const qint32 genus = rank == 3 ? parent : 0;
    if (rank == 2) {
        ranks[0] = parent;
    } else if (rank == 3) {
        ranks[0] = familyOf(genus);
        ranks[1] = genus;
    } else if (rank == 4) {
        seek(parent);
        for (size_t i = 0; i < 3; ++i)
            ranks[i] = m_reader->Value(rankColumns[i]).toInt();
    }
    const QString full = fullName(rank, parent, name);
    ranks[size_t(rank) - 1] = m_next;
    m_writer->AddNew();
    m_writer->SetValue(u"Taxon", name);
    for (size_t i = 0; i < ranks.size(); ++i)
        m_writer->SetValue(rankColumns[i], orNull(ranks[i]));
    m_writer->SetValue(u"Auteurs", orNull(authors));
    m_writer->SetValue(u"Nom Complet", full);
    m_writer->SetValue(u"DateCreate", m_stamp);
    m_writer->SetValue(u"DateModify", m_stamp);
    m_writer->Update();
    m_writer->MoveToLastModified();
    const auto id = qint32(m_writer->RowId());
    if (id != m_next) { // the first one, before the numbers are known
        m_writer->Edit();
        m_writer->SetValue(rankColumns[size_t(rank) - 1], id);
        m_writer->Update();
    }
    m_next = id + 1;
    enter(rank, parent, name, id);
    if (rank == 2)
        m_genera.insert(id, {parent, name});
    return id;
}

void TaxonIndex::sink(qint32 id, qint32 accepted)
{
    seek(id);
    m_reader->Edit();
    m_reader->SetValue(u"ID Valid", accepted);
    m_reader->Update();
}

} // namespace reference
