#include "reference/Cl_Taxon.h"

#include "jet/SqlText.h"

#include <QLoggingCategory>
#include <QSet>
#include <limits>

namespace reference {

using namespace Qt::StringLiterals;
using jet::texte;

namespace {

Q_LOGGING_CATEGORY(taxonLog, "herbora.taxons")

struct Rank {
    QString name;
    QString column;
};

const QList<Rank>& ranks()
{
    static const QList<Rank> table{{u"Famille"_s, u"ID Famille"_s},
                                   {u"Genre"_s, u"ID Genre"_s},
                                   {u"Espèce"_s, u"ID Espèce"_s},
                                   {u"Taxon infraspécifique"_s, u"ID Infra"_s}};
    return table;
}

bool isRank(int rank)
{
    return rank >= 1 && rank <= ranks().size();
}

} // namespace

Cl_Taxon::Cl_Taxon(const ReferenceContext& context) : ReferenceList(context, u"Taxons"_s) {}

QString Cl_Taxon::Ordre(int rank)
{
    return isRank(rank) ? ranks()[rank - 1].name : u"< Indéfini >"_s;
}

QString Cl_Taxon::champ(int rank)
{
    return isRank(rank) ? u'[' + ranks()[rank - 1].column + u']' : QString();
}

int Cl_Taxon::RangTaxon() const
{
    for (int rank = 1; rank <= ranks().size(); ++rank) {
        if (current() > 0 && value(ranks()[rank - 1].column).toInt() == current())
            return rank;
    }
    return 0;
}

int Cl_Taxon::OrdreTaxon(qint32 id) const
{
    return position(id) ? RangTaxon() : 0;
}

QString Cl_Taxon::Auteurs(qint32 id) const
{
    return position(id) ? text(u"Auteurs"_s) : QString();
}

QString Cl_Taxon::Memo(qint32 id) const
{
    return position(id) ? text(u"Commentaire"_s) : QString();
}

qint32 Cl_Taxon::IDRangTaxon(qint32 id, int rank) const
{
    if (!isRank(rank) || !position(id))
        return -1;
    return value(ranks()[rank - 1].column).toInt();
}

qint32 Cl_Taxon::IDparent(qint32 id) const
{
    if (id <= 0 || !position(id))
        return -1;
    const int rank = RangTaxon();
    return rank == 1 ? 0 : IDRangTaxon(id, rank - 1); // -1 for a damaged row, which has no rank
}

/// Each step begins at -1 and takes the row's `ID Valid`; with `follow` the steps go on until one gives
/// the identifier it began with. A chain that ends on an accepted name so ends with -1.
qint32 Cl_Taxon::IDValid(qint32 id, bool follow) const
{
    const auto step = [this](qint32 from) {
        if (!position(from))
            return -1;
        const QVariant valid = value(u"ID Valid"_s);
        return valid.isValid() ? valid.toInt() : -1;
    };
    qint32 answer = step(id);
    QSet<qint32> seen{id};
    while (follow && answer != id) {
        if (seen.contains(answer))
            break; // a ring of synonyms
        seen << answer;
        id = answer;
        answer = step(id);
    }
    return answer;
}

qint32 Cl_Taxon::isNewTaxon(const QString& taxon, qint32 parent, const QString& auteurs) const
{
    const int rank = OrdreTaxon(parent) + 1;
    QString statement = u"Select [ID Taxons] from [Taxons] Where "_s;
    if (rank == 3)
        statement += u"[ID Genre]= "_s + QString::number(parent);
    else if (rank == 4)
        statement += u"[ID Espèce]= "_s + QString::number(parent);
    else
        statement += u"[ID Taxons]="_s + champ(rank);
    if (auteurs != u"-1")
        statement += u" AND [Taxon] & [Auteurs]="_s + texte(taxon + auteurs);
    else
        statement += u" AND [Taxon] ="_s + texte(taxon);
    try {
        const auto rows = m_context.database.OpenRecordset(statement);
        return rows->EOF_() ? 0 : rows->Value(0).toInt();
    } catch (const jet::Error& error) {
        qCWarning(taxonLog).noquote() << error.number() << error.description();
        return 0;
    }
}

bool Cl_Taxon::ValidNomTaxon(const QString& taxon, const QString& auteurs, qint32 parent, qint32 currentId)
{
    QString shown = OrdreTaxon(parent) >= 2 ? NomTaxon(parent, 0) + u' ' + taxon : taxon;
    shown = (shown + u' ' + auteurs).trimmed();
    const qint32 same = isNewTaxon(taxon, parent, auteurs);
    if (same >= 1 && same != currentId) {
        m_context.dialogues.tell(u"Impossible de valider ce nom de taxon\r\n"_s + quotedName(NomTaxon(same, 2))
                                     + u" existe déjà"_s,
                                 u"Violation des règles de taxonomie"_s, platform::BoxIcon::Stop);
        return false;
    }
    const qint32 like = isNewTaxon(taxon, parent, u"-1"_s);
    if (like >= 1 && like != currentId)
        return m_context.dialogues.confirm(quotedName(shown) + u" existe déjà sous une forme comparable \r\n"_s
                                               + quotedName(NomTaxon(like, 2))
                                               + u"\r\nEtes-vous sûr de vouloir valider ce taxon similaire ?"_s,
                                           u"Validation d'une règle taxonomique"_s, platform::BoxIcon::Warning);
    return true;
}

Found Cl_Taxon::SearchTaxons(const QString& pattern, int rank) const
{
    QString statement = u"SELECT [ID Taxons],[Nom Complet] From Taxons"_s;
    QString joiner = u" WHERE"_s;
    if (!pattern.isEmpty()) {
        statement += u" WHERE [Nom Complet] LIKE "_s + texte(pattern);
        joiner = u" AND"_s;
    }
    if (rank > -1)
        statement += joiner + u" [ID Taxons] ="_s + champ(rank);
    statement += u" ORDER BY [Nom Complet]"_s;
    try {
        return search(statement, pattern);
    } catch (const jet::Error& error) {
        qCWarning(taxonLog).noquote() << "search" << error.number() << error.description();
        return {};
    }
}

QString Cl_Taxon::SQLChildren(int rank, qint32 id) const
{
    QString statement = u"SELECT [ID Taxons],[Taxon],[ID Valid] FROM [Taxons] WHERE "
                        "[ID Taxons] ="_s + champ(rank + 1);
    if (rank > 0)
        statement += u" AND "_s + champ(rank) + u" = "_s + QString::number(id);
    return statement;
}

/// The values of `ID Famille`, by steps on its index: one for each family, where the statement of the families looks at
/// every taxon. Nothing when they are so many that the steps would take longer.
std::optional<QList<qint32>> Cl_Taxon::families() const
{
    constexpr qsizetype most = 5000;
    const auto rows = m_context.database.OpenRecordset(u"Taxons"_s, jet::RecordsetType::Table);
    rows->SetIndex(u"ID Famille"_s);
    QList<qint32> ids;
    for (rows->Seek(u">="_s, {std::numeric_limits<qint32>::min()}); !rows->NoMatch(); rows->Seek(u">"_s, {ids.last()})) {
        ids << rows->Value(u"ID Famille").toInt();
        if (ids.size() > most)
            return {};
    }
    return ids;
}

std::unique_ptr<jet::Recordset> Cl_Taxon::RecordSetTaxons(int rank, qint32 id) const
{
    QString statement = SQLChildren(rank, id);
    if (rank == 0) {
        if (const auto ids = families())
            statement += u" AND [ID Taxons] IN ("_s + (ids->isEmpty() ? u"0"_s : jet::liste(*ids)) + u')';
    }
    return m_context.database.OpenRecordset(statement + u" ORDER BY [Taxon]"_s, jet::RecordsetType::Snapshot);
}

} // namespace reference
