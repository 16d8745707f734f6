// The list of people.
#pragma once

#include "reference/ReferenceList.h"

namespace reference {

/// Owns the rules of the table `Collecteurs`; a name stands there once.
class Cl_Collecteur : public ReferenceList {
public:
    explicit Cl_Collecteur(const ReferenceContext& context);

    bool Add(const QString& name = {}); ///< The new row becomes the current record.
    bool Edit(qint32 id);
    bool Delete(const QList<qint32>& ids, bool silent = false);
    bool confirmDelete(const QList<qint32>& ids) const; ///< The question alone.
    Found SearchBotanistes(const QString& pattern) const; ///< By name or initials.
    void RefrsColl() { reread(); }
    qint32 IDcBotaniste() const { return current(); }
    void setIDcBotaniste(qint32 id) { position(id); }
    /// Modes: 1 initials, 2 organisation, else the name; "< Indéfini >" when there is no such row.
    QString NomBotaniste(qint32 id, int mode) const;
    void FillTabEdit(editing::Cl_Editions& form, qint32 id);
    /// No message of its own: what is refused gives false, and the name's field says why.
    bool Save(editing::Cl_Editions& form);
};

} // namespace reference
