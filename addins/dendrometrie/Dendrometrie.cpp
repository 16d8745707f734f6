#include "Dendrometrie.h"

#include <QDebug>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

// Codes des types de champ employés ici.
enum Type { Reel = 5, Date = 7, TexteMemo = 9, ListeSimple = 12, Botaniste = 13 };

const QString champMethode = u"Méthode"_s;
const QStringList methodes{u"Ruban"_s, u"Compas forestier"_s, u"Relascope"_s, u"Dendromètre"_s, u"Estimation"_s};

addin::ChpEditionPtr champ(int type, const QString& colonne, const QString& nom, const QString& aide)
{
    auto chp = std::make_shared<addin::ChpEdition>();
    chp->ctype = type;
    chp->champ = colonne;
    chp->Caption = nom;
    chp->TextHelp = aide;
    return chp;
}

addin::ChpEditionPtr mesure(const QString& colonne, const QString& nom, const QString& aide)
{
    auto chp = champ(Reel, colonne, nom, aide);
    chp->ValidationRule = u">0"_s;
    chp->ValidationTexte = u"Une mesure est un nombre positif"_s;
    return chp;
}

} // namespace

// --- Le module -------------------------------------------------------------------------------------

QString ModuleDendrometrie::NomModule() const
{
    return u"Dendrométrie"_s;
}

QString ModuleDendrometrie::NomObjet() const
{
    return u"Mesure dendrométrique"_s;
}

QString ModuleDendrometrie::MenuString() const
{
    return u"Mesures dendrométriques"_s;
}

QString ModuleDendrometrie::Version() const
{
    return u"1.0"_s;
}

QByteArray ModuleDendrometrie::Icone() const
{
    QFile fichier(u":/dendrometrie/dendrometrie.svg"_s);
    return fichier.open(QIODevice::ReadOnly) ? fichier.readAll() : QByteArray();
}

addin::TabEditions ModuleDendrometrie::GetTabEditions()
{
    addin::TabEditions champs{
        champ(Date, u"DateMesure"_s, u"Date de mesure"_s, u"Date de la mesure, même partielle"_s),
        champ(Botaniste, u"ID Collecteurs"_s, u"Opérateur"_s, u"Personne qui a mesuré l'arbre"_s),
        champ(ListeSimple, champMethode, u"Méthode de mesure"_s, u"Instrument de la mesure de circonférence"_s),
        mesure(u"Circonférence"_s, u"Circonférence"_s, u"Circonférence du tronc à 1,30 m du sol, en centimètres"_s),
        mesure(u"HauteurTotale"_s, u"Hauteur totale"_s, u"Du sol à la cime, en mètres"_s),
        mesure(u"HauteurFût"_s, u"Hauteur du fût"_s, u"Du sol à la première grosse branche, en mètres"_s),
        mesure(u"HouppierNS"_s, u"Houppier nord-sud"_s, u"Diamètre du houppier du nord au sud, en mètres"_s),
        mesure(u"HouppierEO"_s, u"Houppier est-ouest"_s, u"Diamètre du houppier d'est en ouest, en mètres"_s),
        champ(Reel, u"SurfaceTerrière"_s, u"Surface terrière"_s,
              u"Section du tronc à 1,30 m du sol, en mètres carrés, calculée d'après la circonférence"_s),
        champ(TexteMemo, u"Remarque"_s, u"Remarque"_s, u"État de l'arbre, contreforts, tiges multiples…"_s),
    };
    for (const addin::ChpEditionPtr& chp : std::as_const(champs)) {
        if (chp->champ == champMethode)
            chp->Descripteurs = methodes;
        if (chp->champ == u"SurfaceTerrière")
            chp->Locked = true;
        else
            chp->Interface = true;
    }
    return champs;
}

void ModuleDendrometrie::ItemAction(const QString& action, const QVariantList& arguments, bool& cancel)
{
    if (action != u"DELETE_ITEM" && action != u"EDIT_ITEM")
        return;
    if (arguments.value(0).toString() == champMethode && methodes.contains(arguments.value(1).toString()))
        cancel = true;
}

void ModuleDendrometrie::SetRecordset(addin::Rows* rows)
{
    gtAddin::SetRecordset(rows);
    if (rows)
        calculerSurfaces();
}

/// g = C² / 4π ; C en centimètres, g en mètres carrés : 4π × 10 000 = 125 663,706. Seules les lignes à changer sont
/// écrites : un projet à jour reste le même fichier.
void ModuleDendrometrie::calculerSurfaces()
{
    const QString surface = u"Round([Circonférence]*[Circonférence]/125663.706,5)"_s;
    const QString instructions[] = {
        u"UPDATE [Dendrométrie] SET [SurfaceTerrière] = "_s + surface
            + u" WHERE [Circonférence] IS NOT NULL AND ([SurfaceTerrière] IS NULL OR [SurfaceTerrière] <> "_s + surface
            + u')',
        u"UPDATE [Dendrométrie] SET [SurfaceTerrière] = Null"
        " WHERE [Circonférence] IS NULL AND [SurfaceTerrière] IS NOT NULL"_s,
    };
    for (const QString& instruction : instructions) {
        QString erreur;
        m_hote->mdbase(instruction, &erreur);
        if (!erreur.isEmpty()) // par exemple un projet ouvert en lecture seule
            qInfo().noquote() << "Dendrométrie :" << erreur;
    }
}

// --- La bibliothèque -------------------------------------------------------------------------------

addin::gtAddin* Dendrometrie::Connexion(addin::Base* host)
{
    m_module.connecter(host);
    return &m_module;
}
