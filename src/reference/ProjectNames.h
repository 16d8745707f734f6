// The names behind identifiers, from the reference classes.
#pragma once

#include "reference/Cl_Collecteur.h"
#include "reference/Cl_Localite.h"
#include "reference/Cl_Taxon.h"

namespace reference {

/// Fills the descriptors' interface. The classes must outlive it.
class ProjectNames : public editing::ReferenceNames {
public:
    ProjectNames(const Cl_Taxon& taxa, const Cl_Localité& places, const Cl_Collecteur& people);

    QString botaniste(qint32 id) const override;
    QString localité(qint32 id) const override;
    QString taxon(qint32 id) const override;
    QString taxonAuteurs(qint32 id) const override;
    QString famille(qint32 taxon) const override;
    QString rang(qint32 taxon) const override;
    QString lien(const QString& module, const QString& ids) const override;

private:
    const Cl_Taxon& m_taxa;
    const Cl_Localité& m_places;
    const Cl_Collecteur& m_people;
};

} // namespace reference
