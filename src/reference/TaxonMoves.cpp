// Deleting and moving taxa with all that is under them.
#include "reference/Cl_Taxon.h"

#include "jet/SqlText.h"

#include <QLoggingCategory>

namespace reference {

using namespace Qt::StringLiterals;
using jet::texte;

namespace {

Q_LOGGING_CATEGORY(movesLog, "herbora.taxons")

} // namespace

bool Cl_Taxon::confirmDelete(const QList<qint32>& ids) const
{
    const QString what = ids.size() == 1
                             ? u"Vous allez SUPPRIMER le Taxon "_s + quotedName(NomTaxon(ids.first(), 0)) + u"...!!!"_s
                             : u"Vous allez SUPPRIMER "_s + QString::number(ids.size()) + u" Taxons...!!!"_s;
    return m_context.dialogues.confirm(
        what + u"\rLa suppression d'un Taxon entraîne la suppression de tous les sous-taxons ainsi que la rupture définitive des liens"
               "\r\rSupprimer les Taxons sélectionnés ?"_s,
        u"Suppression..."_s, platform::BoxIcon::Stop);
}

bool Cl_Taxon::Delete(const QList<qint32>& ids, bool silent)
{
    if (ids.isEmpty() || (!silent && !confirmDelete(ids)))
        return false;
    QList<qint32> deleted;
    try {
        jet::Operation operation(m_context.database, u"Suppression de taxons"_s);
        for (const qint32 id : ids) {
            const int rank = OrdreTaxon(id);
            if (rank == 0)
                continue; // already gone with a taxon above it
            const QString number = QString::number(id);
            m_context.database.Execute(u"DELETE * FROM Taxons WHERE "_s + champ(rank) + u"="_s + number);
            m_context.database.Execute(u"UPDATE [Taxons] SET [Taxons].[ID Valid] = Null, [Taxons].[DateModify]="_s
                                       + texte(now()) + u" WHERE [Taxons].[ID Valid]="_s + number);
            deleted << id;
        }
        operation.commit();
    } catch (const jet::Error& error) {
        qCWarning(movesLog).noquote() << "delete" << error.number() << error.description();
        m_context.dialogues.tell(u"La suppression a échoué :\n"_s + error.description(), u"Suppression..."_s,
                                 platform::BoxIcon::Stop);
        return false;
    }
    for (const qint32 id : std::as_const(deleted))
        Q_EMIT ReferenceList::Delete(id);
    Q_EMIT Refresh(true);
    if (!deleted.isEmpty())
        Q_EMIT TableModified(u"Taxons"_s);
    return !deleted.isEmpty();
}

QString Cl_Taxon::askMove(const QList<qint32>& ids, qint32 moved, qint32 target) const
{
    const QString what = ids.size() == 1
                             ? u"Déplacer le Taxon "_s + quotedName(NomTaxon(moved, 0))
                             : u"Déplacer les "_s + QString::number(ids.size()) + u" Taxons sélectionnés "_s;
    return what + u" dans le taxon "_s + quotedName(NomTaxon(target, 0)) + u" ?\r\n"_s;
}

/// The target is no place for the name but the name under which it is sunk.
bool Cl_Taxon::sinks(qint32 moved, qint32 target) const
{
    const int movedRank = OrdreTaxon(moved);
    const int targetRank = OrdreTaxon(target);
    return movedRank > 0 && moved != target
           && (movedRank == targetRank || (movedRank == 3 && targetRank == 4)
               || (movedRank == 4 && IDRangTaxon(moved, 3) == target));
}

bool Cl_Taxon::movesIntoSynonymy(const QList<qint32>& ids, qint32 target) const
{
    return std::any_of(ids.begin(), ids.end(), [&](qint32 id) { return sinks(id, target); });
}

/// False when the user said no to the move as a whole.
bool Cl_Taxon::moveOne(qint32 moved, qint32 target, const QList<qint32>& all, bool& asked)
{
    const int movedRank = OrdreTaxon(moved);
    const int targetRank = OrdreTaxon(target);
    if (movedRank == 0 || targetRank == 0 || moved == target)
        return true;
    if (movedRank < 4) {
        for (int rank = 1; rank <= movedRank; ++rank) {
            if (IDRangTaxon(moved, rank) == target)
                return true; // the target is the taxon itself or already above it
        }
    }
    if (sinks(moved, target)) {
        if (EditSynonymie(moved, target))
            Q_EMIT Change(moved);
        return true;
    }
    if (!asked) {
        if (!m_context.dialogues.confirm(askMove(all, moved, target), u"Déplacement de taxons"_s,
                                         platform::BoxIcon::Question, platform::Answer::No))
            return false;
        asked = true;
    }
    position(moved);
    if (!ValidNomTaxon(text(u"Taxon"_s), text(u"Auteurs"_s), target, moved))
        return true;
    // Only the column of the target's rank is rewritten; those above it stay as they were.
    jet::Operation operation(m_context.database, u"Déplacement d'un taxon"_s);
    m_context.database.Execute(u"UPDATE [Taxons] SET [Taxons]."_s + champ(targetRank) + u"="_s + QString::number(target)
                               + u", [Taxons].[DateModify] = "_s + texte(now()) + u" WHERE [Taxons]."_s
                               + champ(movedRank) + u" = "_s + QString::number(moved));
    RefrsNomComplet(target);
    operation.commit();
    Q_EMIT Change(moved);
    return true;
}

void Cl_Taxon::Move(const QList<qint32>& ids, qint32 target)
{
    bool asked = false;
    for (const qint32 id : ids) {
        try {
            if (!moveOne(id, target, ids, asked))
                break;
        } catch (const jet::Error& error) {
            qCWarning(movesLog).noquote() << "move" << error.number() << error.description();
            m_context.dialogues.tell(u"Le déplacement a échoué :\n"_s + error.description(),
                                     u"Déplacement de taxons"_s, platform::BoxIcon::Stop);
        }
    }
    Q_EMIT Refresh(true);
}

} // namespace reference
