#include "reference/WebLinks.h"

namespace reference {

using namespace Qt::StringLiterals;

namespace {

struct DefaultLink {
    QString kind;
    QString name;
    QString link;
};

const QList<DefaultLink>& defaultLinks()
{
    static const QList<DefaultLink> links{
        {linksTaxons, u"IPNI"_s, u"https://www.ipni.org/ipni/simplePlantNameSearch.do?find_wholeName=@TAXA@"_s},
        {linksTaxons, u"GBIF"_s, u"https://data.gbif.org/search/@TAXA@"_s},
        {linksTaxons, u"Google Images"_s, u"https://images.google.com/images?q=\"@TAXA@\""_s},
        {linksTaxons, u"Kew Garden"_s, u"https://epic.kew.org/searchepic/summaryquery.do?scientificName=@TAXA@&searchAll=true"_s},
        {linksLocalités, u"Google Maps"_s,
         u"https://maps.google.com/maps?q=@LATITUDE@,@LONGITUDE@(@NOM@)&ll=@LATITUDE@,@LONGITUDE@&spn=0.1,0.1&t=k&hl=fr&om=1"_s},
    };
    return links;
}

QString number(const QVariant& value, QLocale locale)
{
    if (!value.isValid())
        return {};
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(value.toDouble(), 'g', 15);
}

} // namespace

QString markersOf(const QString& kind)
{
    if (kind == linksTaxons)
        return u"@TAXA@, @FAMILY@, @GENUS@, @SPECIES@, @INFRA@"_s;
    if (kind == linksLocalités)
        return u"@NOM@, @LONGITUDE@, @LATITUDE@, @ALTITUDE@"_s;
    if (kind == linksBotanistes)
        return u"@NOM@, @INITIALE@, @ORGANISME@"_s;
    return {};
}

void writeDefaultLinks(data::PropertyStore& store)
{
    for (const DefaultLink& link : defaultLinks()) {
        if (!store.value(kindLiens, link.kind, link.name).isValid())
            store.put(kindLiens, link.kind, link.name, link.link);
    }
}

WebLinks::WebLinks(const Cl_Taxon& taxa, const Cl_Localité& places, const Cl_Collecteur& people, QLocale locale)
    : m_taxa(taxa), m_places(places), m_people(people), m_locale(std::move(locale))
{
}

QString WebLinks::address(const QString& kind, const QString& link, qint32 id) const
{
    if (link.isEmpty() || id < 1)
        return {};
    if (kind == linksTaxons)
        return taxonAddress(link, id);
    return kind == linksLocalités ? placeAddress(link, id) : personAddress(link, id);
}

QString WebLinks::taxonAddress(QString link, qint32 id) const
{
    static const QStringList markers{u"@FAMILY@"_s, u"@GENUS@"_s, u"@SPECIES@"_s, u"@INFRA@"_s};
    const int rank = m_taxa.OrdreTaxon(id);
    link.replace(u"@TAXA@"_s, m_taxa.NomTaxon(id, 0));
    for (int r = 1; r <= markers.size(); ++r) {
        // The family is always filled; a marker below the rank of the taxon stays empty.
        const bool filled = r == 1 || rank > r - 1;
        link.replace(markers[r - 1], filled ? m_taxa.NomTaxon(m_taxa.IDRangTaxon(id, r), 1) : QString());
    }
    return link.replace(u'"', u"%22"_s);
}

QString WebLinks::placeAddress(QString link, qint32 id) const
{
    const Cl_Localité::Coordinates at = m_places.Coordonnées(id);
    link.replace(u"@NOM@"_s, m_places.NomLocalité(id, 0));
    link.replace(u"@LONGITUDE@"_s, number(at.LongDD, m_locale));
    link.replace(u"@LATITUDE@"_s, number(at.LatDD, m_locale));
    return link.replace(u"@ALTITUDE@"_s, number(at.Altitude, m_locale));
}

QString WebLinks::personAddress(QString link, qint32 id) const
{
    link.replace(u"@NOM@"_s, m_people.NomBotaniste(id, 0));
    link.replace(u"@INITIALE@"_s, m_people.NomBotaniste(id, 1));
    link.replace(u"@ORGANISME@"_s, m_people.NomBotaniste(id, 2));
    // What belongs to the places is blanked too.
    for (const QString& other : {u"@NOM@"_s, u"@LONGITUDE@"_s, u"@LATITUDE@"_s, u"@ALTITUDE@"_s})
        link.remove(other);
    return link;
}

} // namespace reference
