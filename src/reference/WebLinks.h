// Web addresses made from the selected row of a reference list.
#pragma once

#include "data/PropertyStore.h"
#include "reference/Cl_Collecteur.h"
#include "reference/Cl_Localite.h"
#include "reference/Cl_Taxon.h"

#include <QLocale>

namespace reference {

/// The lists that have links.
inline const QString linksTaxons = QStringLiteral("Taxons");
inline const QString linksLocalités = QStringLiteral("Localités");
inline const QString linksBotanistes = QStringLiteral("Botanistes");
inline const QString kindLiens = QStringLiteral("Liens");

/// Markers of a kind as the editor of links explains them; empty for an unknown kind.
QString markersOf(const QString& kind);

/// Writes the links that every project starts with; a link of that name that is already there stays.
void writeDefaultLinks(data::PropertyStore& store);

/// Fills the templates. Numbers are written as the user's locale does.
class WebLinks {
public:
    WebLinks(const Cl_Taxon& taxa, const Cl_Localité& places, const Cl_Collecteur& people, QLocale locale = QLocale());

    /// The address for a row; empty without a template or a row.
    QString address(const QString& kind, const QString& link, qint32 id) const;

private:
    QString taxonAddress(QString link, qint32 id) const;
    QString placeAddress(QString link, qint32 id) const;
    QString personAddress(QString link, qint32 id) const;

    const Cl_Taxon& m_taxa;
    const Cl_Localité& m_places;
    const Cl_Collecteur& m_people;
    QLocale m_locale;
};

} // namespace reference
