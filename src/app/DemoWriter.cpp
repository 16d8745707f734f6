#include "app/DemoWriter.h"

#include "data/OrNull.h"
#include "jet/SqlText.h"

namespace app {

using namespace Qt::StringLiterals;

RowAppender::RowAppender(jet::Database& database, const QString& table, const QString& stamp)
    : m_table(table), m_stamp(stamp), m_keyTail(u'-' + table)
{
    const auto last = database.OpenRecordset(u"SELECT Max(["_s + u"ID "_s + table + u"]) AS Dernier FROM "_s
                                             + jet::nom(table));
    m_next = last->Value(u"Dernier").toInt() + 1; // Null, in an empty table, reads as 0
    m_rows = database.OpenRecordset(table, jet::RecordsetType::Table);
}

RowAppender::~RowAppender() = default;

qint32 RowAppender::add(Values values)
{
    m_rows->AddNew();
    for (const auto& [column, value] : values)
        m_rows->SetValue(column, value); // Null too: rows of the same columns share one prepared insertion
    m_rows->SetValue(u"DateCreate", m_stamp);
    m_rows->SetValue(u"DateModify", m_stamp);
    m_rows->Update();
    m_rows->MoveToLastModified();
    const qint64 id = m_rows->RowId();
    if (id != m_next)
        throw jet::Error(3022, u"Numéro automatique inattendu dans la table « %1 » : %2."_s.arg(
                                   m_table, QString::number(id)));
    ++m_next;
    return qint32(id);
}

TaxonWriter::TaxonWriter(jet::Database& database, const QString& stamp)
    : m_rows(database, u"Taxons"_s, stamp)
{
}

/// A family is never part of a full name; an infraspecific name carries its own marker.
QString TaxonWriter::composed(int rank, const Entry& parent, const QString& name) const
{
    if (rank == 3)
        return parent.name + u' ' + name;
    return rank == 4 ? parent.fullName + u' ' + name : name;
}

qint32 TaxonWriter::add(int rank, qint32 parent, const QString& name, const QString& authors, const QString& comment)
{
    const Entry above = m_entries.value(parent);
    if (above.rank != rank - 1)
        throw jet::Error(3201, u"Le taxon « %1 » n'a pas de parent du rang supérieur."_s.arg(name));
    Entry entry{rank, above.ranks, name, composed(rank, above, name), authors};
    const QString key = QString(entry.fullName + u'\n' + authors).toCaseFolded();
    if (const auto known = m_byNameAndAuthors.constFind(key); known != m_byNameAndAuthors.constEnd())
        return *known;

    entry.ranks[size_t(rank - 1)] = m_rows.next();
    const auto rankColumn = [&](size_t i) { return entry.ranks[i] ? QVariant(entry.ranks[i]) : QVariant(); };
    const qint32 id = m_rows.add({{u"Taxon", name},
                                  {u"ID Famille", rankColumn(0)},
                                  {u"ID Genre", rankColumn(1)},
                                  {u"ID Espèce", rankColumn(2)},
                                  {u"ID Infra", rankColumn(3)},
                                  {u"Auteurs", data::orNull(authors)},
                                  {u"Commentaire", data::orNull(comment)},
                                  {u"Nom Complet", entry.fullName}});
    m_fullNames.insert(entry.fullName.toCaseFolded());
    m_byNameAndAuthors.insert(key, id);
    m_entries.insert(id, entry);
    ++m_count;
    return id;
}

} // namespace app
