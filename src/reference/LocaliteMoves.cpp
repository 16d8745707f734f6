// Deleting and moving places with all that lies in them.
#include "jet/SqlText.h"
#include "reference/Cl_Localite.h"
#include "reference/PathCodes.h"

#include <QLoggingCategory>

namespace reference {

using namespace Qt::StringLiterals;
using jet::texte;

namespace {

Q_LOGGING_CATEGORY(placeMovesLog, "herbora.localites")

/// The condition for a place and all that lies in it.
QString subtree(const QString& code)
{
    return u"Localités.[CodeRegion] &\"/\" LIKE "_s + texte(code + u"/*"_s);
}

} // namespace

QString Cl_Localité::question(const QList<qint32>& ids) const
{
    QString what;
    if (ids.size() > 1)
        what = u"Vous allez Supprimer les "_s + QString::number(ids.size()) + u" Localités sélectionnées...\r"_s;
    else if (TypeLocalité(ids.first()) == u"Carte") // the two blanks have always been there
        what = u"Vous allez Supprimer la  Carte "_s + quotedName(NomLocalité(ids.first(), 0)) + u"...\r"_s;
    else
        what = u"Vous allez Supprimer la Localité "_s + quotedName(NomLocalité(ids.first(), 0)) + u"...\r"_s;
    return what
           + u"La suppression d'une localité entraîne la suppression de tous les sous-localités ainsi que la rupture définitive des liens"
             "\r\rEffectuer la suppression ?"_s;
}

bool Cl_Localité::confirmDelete(const QList<qint32>& ids) const
{
    return m_context.dialogues.confirm(question(ids), u"Suppression..."_s, platform::BoxIcon::Stop);
}

bool Cl_Localité::Delete(const QList<qint32>& ids, bool silent)
{
    if (ids.isEmpty() || (!silent && !confirmDelete(ids)))
        return false;
    QList<qint32> deleted;
    try {
        jet::Operation operation(m_context.database, u"Suppression de localités"_s);
        for (const qint32 id : ids) {
            if (!position(id))
                continue; // already gone with a place above it
            const QString code = text(u"CodeRegion"_s);
            if (TypeLocalité(id) == u"Carte")
                m_context.database.Execute(u"DELETE * FROM Localités WHERE "
                                           "Localités.[ID Localités]= "_s + QString::number(id));
            else
                m_context.database.Execute(u"DELETE * FROM Localités WHERE "_s + subtree(code));
            deleted << id;
        }
        operation.commit();
    } catch (const jet::Error& error) {
        qCWarning(placeMovesLog).noquote() << "delete" << error.number() << error.description();
        m_context.dialogues.tell(u"La suppression a échoué :\n"_s + error.description(), u"Suppression..."_s,
                                 platform::BoxIcon::Stop);
        return false;
    }
    for (const qint32 id : std::as_const(deleted))
        Q_EMIT ReferenceList::Delete(id);
    Q_EMIT Refresh(true);
    if (!deleted.isEmpty())
        Q_EMIT TableModified(u"Localités"_s);
    return !deleted.isEmpty();
}

/// Rewrites the codes of a place and of all that lies in it. The depth of the rows keeps the value of their creation.
void Cl_Localité::moveSubtree(qint32 moved, qint32 target)
{
    const QString oldCode = u'/' + CodeLocalité(moved) + u'/';
    const QString newCode = u'/' + stripped(CodeLocalité(target) + u'/' + QString::number(moved)) + u'/';
    const QString targetName = position(target) ? text(u"Localité"_s) : QString();
    const QString name = NomLocalité(moved, 0);
    const QString whole = targetName.isEmpty() ? name : targetName + u" - "_s + name;
    const auto rows = m_context.database.OpenRecordset(u"SELECT * FROM Localités  WHERE "_s
                                                       + subtree(stripped(oldCode)));
    for (; !rows->EOF_(); rows->MoveNext()) {
        QString code = u'/' + rows->Value(u"CodeRegion").toString() + u'/';
        code.replace(0, oldCode.size(), newCode);
        rows->Edit();
        rows->SetValue(u"CodeRegion", stripped(code));
        rows->SetValue(u"DateModify", now());
        if (rows->Value(u"ID Localités").toInt() == moved)
            rows->SetValue(u"Nom Entier", whole);
        rows->Update();
    }
}

void Cl_Localité::Move(const QList<qint32>& ids, qint32 target)
{
    if (ids.isEmpty())
        return;
    const QString what = ids.size() == 1
                             ? u"Déplacer la Localité "_s + quotedName(NomLocalité(ids.first(), 0))
                             : u"Déplacer les "_s + QString::number(ids.size()) + u" localités sélectionnées"_s;
    if (!m_context.dialogues.confirm(what + u" dans la Localité "_s + quotedName(NomLocalité(target, 0)) + u" ?"_s,
                                     u"Déplacement de localités"_s, platform::BoxIcon::Question, platform::Answer::No))
        return;
    QList<qint32> moved;
    try {
        jet::Operation operation(m_context.database, u"Déplacement de localités"_s);
        for (const qint32 id : ids) {
            const QString code = CodeLocalité(id);
            if (code.isEmpty() || (CodeLocalité(target) + u'/').startsWith(code + u'/'))
                continue; // the target lies in the place itself
            moveSubtree(id, target);
            moved << id;
        }
        operation.commit();
    } catch (const jet::Error& error) {
        qCWarning(placeMovesLog).noquote() << "move" << error.number() << error.description();
        m_context.dialogues.tell(u"Le déplacement a échoué :\n"_s + error.description(),
                                 u"Déplacement de localités"_s, platform::BoxIcon::Stop);
        return;
    }
    for (const qint32 id : std::as_const(moved))
        Q_EMIT Change(id);
    Q_EMIT Refresh(true);
}

} // namespace reference
