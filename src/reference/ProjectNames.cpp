#include "reference/ProjectNames.h"

namespace reference {

using namespace Qt::StringLiterals;

ProjectNames::ProjectNames(const Cl_Taxon& taxa, const Cl_Localité& places, const Cl_Collecteur& people)
    : m_taxa(taxa), m_places(places), m_people(people)
{
}

QString ProjectNames::botaniste(qint32 id) const { return m_people.NomBotaniste(id, 0); }
QString ProjectNames::localité(qint32 id) const { return m_places.NomLocalité(id, 1); }
QString ProjectNames::taxon(qint32 id) const { return m_taxa.NomTaxon(id, 0); }
QString ProjectNames::taxonAuteurs(qint32 id) const { return m_taxa.NomTaxon(id, 2); }

QString ProjectNames::famille(qint32 taxon) const
{
    return m_taxa.NomTaxon(m_taxa.IDRangTaxon(taxon, 1), 1);
}

QString ProjectNames::rang(qint32 taxon) const
{
    return Cl_Taxon::Ordre(m_taxa.OrdreTaxon(taxon));
}

QString ProjectNames::lien(const QString& module, const QString& ids) const
{
    QStringList keys;
    for (const QString& id : ids.split(u',', Qt::SkipEmptyParts))
        keys << id.trimmed() + u'-' + module;
    return keys.join(u", "_s);
}

} // namespace reference
