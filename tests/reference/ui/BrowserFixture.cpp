#include "BrowserFixture.h"

using namespace Qt::StringLiterals;

void BrowserTest::fill()
{
    const auto taxon = [this](const QString& name, const QString& full, const QString& authors, const QString& ranks) {
        const QStringList columns{u"[ID Famille]"_s, u"[ID Genre]"_s, u"[ID Espèce]"_s, u"[ID Infra]"_s};
        const qsizetype rank = ranks.count(u',') + 1;
        project.db().Execute(u"INSERT INTO Taxons (Taxon,[Nom Complet],Auteurs,%1) VALUES (\"%2\",\"%3\",\"%4\",%5)"_s.arg(
            columns.first(rank).join(u','), name, full, authors, ranks));
    };
    taxon(u"Fagaceae"_s, u"Fagaceae"_s, u"Dumort."_s, u"1"_s);
    taxon(u"Quercus"_s, u"Quercus"_s, u"L."_s, u"1,2"_s);
    taxon(u"robur"_s, u"Quercus robur"_s, u"L."_s, u"1,2,3"_s);
    taxon(u"var. alba"_s, u"Quercus robur var. alba"_s, u"X."_s, u"1,2,3,4"_s);
    taxon(u"petraea"_s, u"Quercus petraea"_s, u"Liebl."_s, u"1,2,5"_s);
    taxon(u"Fagus"_s, u"Fagus"_s, u"L."_s, u"1,6"_s);
    taxon(u"sylvatica"_s, u"Fagus sylvatica"_s, u"L."_s, u"1,6,7"_s);
    taxon(u"Rosaceae"_s, u"Rosaceae"_s, u"Juss."_s, u"8"_s);
    taxon(u"Rosa"_s, u"Rosa"_s, u"L."_s, u"8,9"_s);
    const auto place = [this](const QString& name, const QString& code, int type) {
        project.db().Execute(u"INSERT INTO Localités ([Localité],LongDD,LatDD,CodeRegion,[ID Type],[Nom Entier]) VALUES (\"%1\",11.5,-0.5,\"%2\",%3,\"%1\")"_s.arg(
            name, code, QString::number(type)));
    };
    place(u"Gabon"_s, u"1"_s, 0);
    place(u"Makokou"_s, u"1/2"_s, 1);
    place(u"Plateau"_s, u"1/2/3"_s, 2);
    place(u"France"_s, u"4"_s, 0);
    place(u"Carte du Gabon"_s, u"1/5"_s, -1);
    const QStringList rest{
        u"INSERT INTO Collecteurs (Collecteur,Initiales,Organisme) VALUES (\"Aubréville\",\"EA\",\"CTFT\")"_s,
        u"INSERT INTO Collecteurs (Collecteur,Initiales) VALUES (\"Uma\",\"U\")"_s,
        u"INSERT INTO Collecteurs (Collecteur,Initiales,Organisme,Bot) VALUES (\"Zoé\",\"Z\",\"MNHN\",False)"_s,
        u"INSERT INTO Individus ([ID Localités],[ID Collecteurs]) VALUES (2,1)"_s,
        u"INSERT INTO Individus ([ID Localités]) VALUES (4)"_s,
        u"INSERT INTO Déterminations ([ID Individus],[ID Taxons]) VALUES (1,3)"_s,
        u"INSERT INTO Déterminations ([ID Individus],[ID Taxons]) VALUES (2,7)"_s,
    };
    for (const QString& statement : rest)
        project.db().Execute(statement);
}
