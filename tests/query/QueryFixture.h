// A small project with records of every module, and a tree of its fields.
#pragma once

#include "app/DemoModules.h"
#include "query/Query.h"
#include "support/Project.h"

#include <QFile>

/// Captions joined as a reader writes them: "Individu/Numéro".
inline QString fieldPath(const QString& captions)
{
    return QString(captions).replace(QLatin1Char('/'), query::pathSeparator);
}

/// Individuals 1 to 6. Places: 1 France, 2 Hérault (1/2), 3 Lattes (1/2/3), 4 Aude (1/4). Taxa: 1 Fagaceae, 2 Quercus, 3
/// Quercus ilex, 4 Quercus ballota (synonym of 3), 5 Rosaceae. People: 1 Durand, 2 Petit.
/// Images of individual 1 (two) and 2 (one). Determinations: 1 (individual 1, taxon 3), 2 (individual 1, taxon 4, by Petit),
/// 3 (individual 2, taxon 4), 4 (individual 3, taxon 2); each individual's own link leads to its current one.
class QueryTest : public ::testing::Test {
protected:
    /// The project is made once; each test works on a copy.
    static void SetUpTestSuite()
    {
        folder = std::make_unique<QTemporaryDir>();
        support::TestProject made;
        made.create();
        app::writeDemoStructure(made.session, {QStringLiteral("RB"), QStringLiteral("P")});
        fill(made.db());
        made.session.close();
        ASSERT_TRUE(QFile::copy(made.path(), folder->filePath(QStringLiteral("modele.hbx"))));
    }
    static void TearDownTestSuite() { folder.reset(); }

    void SetUp() override
    {
        ASSERT_TRUE(QFile::copy(folder->filePath(QStringLiteral("modele.hbx")), project.path()));
        ASSERT_TRUE(project.open());
        context.nextId = [this] { return ++counter; };
        structure = std::make_unique<query::Structure>(project.db(), context);
        structure->LoadStructure(project.session.modules());
    }

    static void fill(jet::Database& db)
    {
        const auto run = [&db](const char16_t* statement) { db.Execute(QString::fromUtf16(statement)); };
        run(u"INSERT INTO Collecteurs ([Collecteur],[Initiales]) VALUES ('Durand','DU')");
        run(u"INSERT INTO Collecteurs ([Collecteur],[Initiales]) VALUES ('Petit','PE')");
        const char16_t* places[] = {u"'France',2,46,'1','France',0", u"'Hérault',3.5,43.6,'1/2','France - Hérault',1",
                                    u"'Lattes',3.9,43.5,'1/2/3','Hérault - Lattes',2",
                                    u"'Aude',2.4,43.1,'1/4','France - Aude',1"};
        for (const char16_t* place : places)
            db.Execute(
                QStringLiteral("INSERT INTO Localités ([Localité],[LongDD],[LatDD],[CodeRegion],[Nom Entier],[ID Type]) "
                               "VALUES (")
                + QString::fromUtf16(place) + QLatin1Char(')'));
        const char16_t* taxa[] = {u"'Fagaceae','Fagaceae',1,Null,Null,Null", u"'Quercus','Quercus',1,2,Null,Null",
                                  u"'ilex','Quercus ilex',1,2,3,Null", u"'ballota','Quercus ballota',1,2,4,3",
                                  u"'Rosaceae','Rosaceae',5,Null,Null,Null"};
        for (const char16_t* taxon : taxa)
            db.Execute(QStringLiteral("INSERT INTO Taxons ([Taxon],[Nom Complet],[ID Famille],[ID Genre],"
                                                "[ID Espèce],[ID Valid]) VALUES (")
                                 + QString::fromUtf16(taxon) + QLatin1Char(')'));
        // Number, collector, place, date, altitude, lists, current determination, locked.
        const char16_t* plants[] = {u"'A1',1,3,'2001/03/06',400,'RB;P',1,0", u"'A2',2,2,'2001/05',120.5,'RB',3,0",
                                    u"'B1',1,4,'1999',Null,'P',4,-1",        u"'b2',Null,1,Null,10,Null,Null,0",
                                    u"'C\"1',2,Null,'2010/12/31',0,'MPU;P',Null,0", u"Null,1,3,'2001',55,'RBX',Null,-1"};
        for (const char16_t* plant : plants)
            db.Execute(QStringLiteral("INSERT INTO Individus ([Numéro],[ID Collecteurs],[ID Localités],"
                                                "[DateRécolte],[Altitude],[Herbier],[ID Déterminations],[Locked]) VALUES (")
                                 + QString::fromUtf16(plant) + QLatin1Char(')'));
        run(u"INSERT INTO Déterminations ([ID Taxons],[ID Collecteurs],[ID Individus],[Réserve]) VALUES (3,1,1,'cf.')");
        run(u"INSERT INTO Déterminations ([ID Taxons],[ID Collecteurs],[ID Individus]) VALUES (4,2,1)");
        run(u"INSERT INTO Déterminations ([ID Taxons],[ID Collecteurs],[ID Individus],[Réserve]) VALUES (4,2,2,'?')");
        run(u"INSERT INTO Déterminations ([ID Taxons],[ID Individus],[Commentaire]) VALUES (2,3,'un mot')");
        run(u"INSERT INTO Images ([Fichier],[Légende],[ID Individus]) VALUES ('a.jpg','fleur',1)");
        run(u"INSERT INTO Images ([Fichier],[Légende],[ID Individus]) VALUES ('b.jpg','fruit',1)");
        run(u"INSERT INTO Images ([Fichier],[Légende],[ID Individus]) VALUES ('c.jpg','fleur',2)");
        run(u"INSERT INTO Mesures ([Diamètre],[NombreMesures],[Complet],[ID Taxons],[ID Déterminations],[ID Individus]) "
            u"VALUES (42.5,3,-1,4,1,1)");
        run(u"INSERT INTO Mesures ([Diamètre],[NombreMesures],[ID Individus]) VALUES (7,2,2)");
    }

    QString code(qint32 place)
    {
        return project.single(QStringLiteral("SELECT [CodeRegion] FROM [Localités] WHERE [ID Localités]=")
                              + QString::number(place)).toString();
    }
    query::CodeRegion codes()
    {
        return [this](qint32 place) { return code(place); };
    }
    /// The number in the alias of the table to which a link field leads.
    QString number(const QString& captions) const
    {
        return structure->KeyFromPath(fieldPath(captions)).section(QLatin1Char('-'), 0, 0);
    }
    query::QueryWorld world()
    {
        return {project.db(), project.clock, project.dialogues, project.session.properties(), codes()};
    }
    /// The identifiers of a statement's records, in order.
    QString records(const QString& statement)
    {
        QStringList ids;
        for (const QString& row : project.rows(statement))
            ids << row.section(QLatin1Char('|'), 1, 1);
        ids.sort();
        return ids.join(QLatin1Char(' '));
    }

    static inline std::unique_ptr<QTemporaryDir> folder;
    support::TestProject project;
    editing::EditingContext context;
    qint32 counter = 0;
    std::unique_ptr<query::Structure> structure;
};
