#include "support/Print.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

struct Result {
    int status;
    QString out;
    QString err;
    QJsonObject json() const { return QJsonDocument::fromJson(out.toUtf8()).object(); }
};

Result run(const QStringList& arguments)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(QCoreApplication::applicationDirPath() + u"/herbora-cli"_s, arguments);
    EXPECT_TRUE(process.waitForFinished(60'000));
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

class CliTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        file = folder.filePath(u"projet.hbx"_s);
        ASSERT_EQ(run({u"creer"_s, file}).status, 0);
    }
    QTemporaryDir folder;
    QString file;
};

TEST_F(CliTest, RunsStatements)
{
    const Result insert = run({u"sql"_s, file, u"INSERT INTO Collecteurs ([Collecteur],[Initiales]) VALUES (\"Aublet\",\"A.\")"_s,
                               u"UPDATE Collecteurs SET [Bot]=False"_s});
    EXPECT_EQ(insert.status, 0);
    EXPECT_EQ(insert.out, u"1 enregistrement(s) modifié(s)\n1 enregistrement(s) modifié(s)\n"_s);
    const Result json = run({u"sql"_s, file, u"--json"_s,
                             u"SELECT [ID Collecteurs],[Collecteur],[Bot],[Organisme],1.5 AS d FROM Collecteurs"_s});
    EXPECT_EQ(json.json(), (QJsonObject{{u"colonnes"_s, QJsonArray{u"ID Collecteurs"_s, u"Collecteur"_s, u"Bot"_s, u"Organisme"_s, u"d"_s}},
                                        {u"lignes"_s, QJsonArray{QJsonArray{1, u"Aublet"_s, false, QJsonValue::Null, 1.5}}}}));
    EXPECT_EQ(run({u"sql"_s, file, u"--json"_s, u"DELETE * FROM Taxons"_s}).json(), (QJsonObject{{u"modifies"_s, 0}}));
    EXPECT_EQ(run({u"sql"_s, file, u"--csv"_s, u"SELECT Collecteur & \" \"\"x\"\"\" AS [N;1] FROM Collecteurs"_s}).out,
              u"\"N;1\"\n\"Aublet \"\"x\"\"\"\n"_s);
}

TEST_F(CliTest, ReportsErrors)
{
    const Result unique = run({u"sql"_s, file, u"--json"_s, u"SELECT * FROM Absente"_s});
    EXPECT_EQ(unique.status, 1);
    EXPECT_EQ(unique.json()[u"erreur"_s].toObject()[u"numero"_s].toInt(), 3078);
    EXPECT_EQ(run({u"creer"_s, file}).status, 1);
    EXPECT_EQ(run({u"sql"_s, file}).status, 2);
    EXPECT_EQ(run({u"danser"_s, file}).status, 2);
    EXPECT_EQ(run({u"infos"_s, file, u"--rapide"_s}).status, 2);
    EXPECT_EQ(run({}).status, 2);
    EXPECT_EQ(run({u"infos"_s, folder.filePath(u"absent.hbx"_s)}).status, 1);
}

TEST_F(CliTest, ImportsAccessFiles)
{
    const QString old = qEnvironmentVariable("HERBORA_SOURCE") + u"/tests/jet/access/samples/ancien-projet.hbx"_s;
    const QString target = folder.filePath(u"converti.hbx"_s);
    const Result import = run({u"importer"_s, u"access"_s, old, target});
    EXPECT_EQ(import.status, 0) << import.err.toStdString();
    EXPECT_TRUE(import.out.contains(u"Mesures : 450 enregistrements"_s)) << import.out.toStdString();
    EXPECT_EQ(run({u"verifier"_s, target}).status, 0);
    EXPECT_EQ(run({u"importer"_s, u"access"_s, old, target}).status, 1);
    EXPECT_EQ(run({u"importer"_s, u"access"_s, file, folder.filePath(u"autre.hbx"_s)}).status, 1);
    EXPECT_EQ(run({u"importer"_s, u"access"_s, old}).status, 2);
}

TEST_F(CliTest, ShowsStepsAndTree)
{
    const QJsonObject infos = run({u"infos"_s, file, u"--json"_s}).json();
    EXPECT_EQ(infos[u"titre"_s].toString(), u"projet.hbx - Herbora"_s);
    EXPECT_EQ(infos[u"etapes"_s].toArray().size(), 12);
    EXPECT_EQ(infos[u"etapes"_s].toArray()[11].toObject()[u"pourcentage"_s].toInt(), 100);
    const QJsonObject root = infos[u"arbre"_s].toArray()[0].toObject();
    EXPECT_EQ(root[u"cle"_s].toString(), u"Bases"_s);
    EXPECT_EQ(root[u"icone"_s].toString(), u"Database"_s);
    const QString plain = run({u"infos"_s, file}).out;
    EXPECT_TRUE(plain.contains(u"  5 %  Initialisation des modules internes\n"_s)) << plain.toStdString();
}

TEST_F(CliTest, OptimisesOnlyWhenTold)
{
    const Result refused = run({u"optimiser"_s, file});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.err.contains(u"Question sans réponse"_s));
    EXPECT_FALSE(QFile::exists(file + u".bak"_s));
    EXPECT_EQ(run({u"optimiser"_s, file, u"--oui"_s}).status, 0);
    EXPECT_TRUE(QFile::exists(file + u".bak"_s));
    const Result sound = run({u"verifier"_s, file, u"--json"_s});
    EXPECT_EQ(sound.json(), (QJsonObject{{u"ok"_s, true}, {u"constats"_s, QJsonArray()}}));
}

TEST_F(CliTest, RunsStoredQueries)
{
    const auto store = [&](const QString& module, const QString& text) {
        return run({u"sql"_s, file, u"INSERT INTO Propriétés ([Objet],[Module],[Nom],[Value]) VALUES (\"Requête\",\""_s + module
                                        + u"\",\"Hauts\",\""_s + text + u"\")"_s}).status;
    };
    ASSERT_EQ(store(u"Individus"_s, u"data\r\ncolonne\t=N°\tCroissant\tNuméro\tIndividus.Numéro\r\n"
                                    "critère\t1\tET\t>\t=10\tAltitude\tIndividus.Altitude"_s), 0);
    run({u"sql"_s, file, u"INSERT INTO Individus ([Numéro],[Altitude]) VALUES (\"b\",20)"_s,
         u"INSERT INTO Individus ([Numéro],[Altitude]) VALUES (\"a\",30)"_s,
         u"INSERT INTO Individus ([Numéro],[Altitude]) VALUES (\"c\",5)"_s});
    EXPECT_EQ(run({u"requete"_s, file, u"hauts"_s}).out, u"Individu\tID Individus\tN°\n2\t2\ta\n1\t1\tb\n"_s);
    EXPECT_TRUE(run({u"requete"_s, u"--sql"_s, file, u"Hauts"_s}).out.contains(u"WHERE [Individus].[Altitude] > 10"_s));
    const QString csv = folder.filePath(u"hauts.csv"_s);
    EXPECT_EQ(run({u"requete"_s, file, u"Hauts"_s, u"--csv"_s, csv}).out, u"2 Ligne(s)\n"_s);
    QFile written(csv);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), "\"Individu\";\"ID Individus\";\"N°\"\r\n\"2\";\"2\";\"a\"\r\n\"1\";\"1\";\"b\"\r\n");
    EXPECT_EQ(run({u"requete"_s, file, u"Absente"_s}).status, 2);
    EXPECT_EQ(run({u"requete"_s, file}).status, 2);
    ASSERT_EQ(store(u"Images"_s, u"data"_s), 0);
    EXPECT_EQ(run({u"requete"_s, file, u"Hauts"_s}).status, 2);
    EXPECT_EQ(run({u"requete"_s, file, u"Hauts"_s, u"--module"_s, u"Images"_s}).status, 0);
}

TEST_F(CliTest, WritesThePlacesOfAQuery)
{
    if (!QFile::exists(QCoreApplication::applicationDirPath() + u"/Globe.gif"_s))
        GTEST_SKIP() << "built without maps";
    const QString demo = folder.filePath(u"demo.hbx"_s);
    ASSERT_EQ(run({u"demo"_s, demo}).status, 0);
    const auto out = [this](const QString& suffix) { return folder.filePath(u"points"_s + suffix); };
    const Result all = run({u"requete"_s, demo, u"Plantes d'altitude"_s, u"--points"_s, out(u".csv"_s), u"--kml"_s,
                            out(u".kml"_s), u"--gtm"_s, out(u".gtm"_s), u"--scr"_s, out(u".scr"_s), u"--carte"_s, u"monde"_s});
    EXPECT_EQ(all.status, 0) << all.err.toStdString();
    const auto content = [&out](const QString& suffix) {
        QFile file(out(suffix));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const int places = all.out.section(u' ', 0, 0).toInt();
    EXPECT_GT(places, 5);
    EXPECT_EQ(content(u".csv"_s).count("\r\n"), places + 1);
    EXPECT_EQ(content(u".kml"_s).count("<Placemark>"), places);
    EXPECT_TRUE(content(u".kml"_s).contains("<name>Plantes d&#39;altitude (")
                || content(u".kml"_s).contains("<name>Plantes d'altitude ("));
    EXPECT_EQ(content(u".scr"_s).count("_.point "), places);
    EXPECT_TRUE(content(u".scr"_s).contains("/Globe.gif\" -180.000000,-90.000000 360.000000 0\r\n"));
    EXPECT_TRUE(content(u".gtm"_s).contains("GTMImage1.bmp"));
    EXPECT_EQ(run({u"requete"_s, demo, u"Plantes d'altitude"_s, u"--kml"_s, out(u".kml"_s), u"--carte"_s, u"Lune"_s}).status, 2);
    EXPECT_EQ(run({u"requete"_s, demo, u"Plantes d'altitude"_s, u"--kml"_s}).status, 2);
    const Result refused =
        run({u"requete"_s, demo, u"Plantes d'altitude"_s, u"--kml"_s, folder.filePath(u"absent/a.kml"_s)});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.err.contains(u"Impossible d'accéder au fichier."_s)) << refused.err.toStdString();
}

TEST_F(CliTest, FindsFaults)
{
    run({u"sql"_s, file, u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s,
         u"INSERT INTO Images ([ID Individus],[Fichier],[KeyParent]) VALUES (1,\"x.jpg\",\"9-Déterminations\")"_s,
         u"INSERT INTO Taxons ([Taxon]) VALUES (\"sans rang\")"_s});
    const Result found = run({u"verifier"_s, file});
    EXPECT_EQ(found.status, 1);
    EXPECT_TRUE(found.out.contains(u"sans parent : « Images » sous « Déterminations »"_s)) << found.out.toStdString();
    EXPECT_TRUE(found.out.contains(u"1 taxon(s) sans rang"_s));
}

TEST_F(CliTest, MakesThumbnailsOnceAndNamesWhatCannotBeShown)
{
#ifndef HERBORA_IMAGES
    GTEST_SKIP() << "built without pictures";
#endif
    const QString demo = folder.filePath(u"demo.hbx"_s);
    ASSERT_EQ(run({u"demo"_s, demo}).status, 0);
    const Result first = run({u"imagettes"_s, demo});
    EXPECT_EQ(first.status, 0) << first.err.toStdString();
    const int made = first.out.trimmed().section(u'\n', -1).section(u' ', 0, 0).toInt();
    EXPECT_GT(made, 3);
    EXPECT_TRUE(first.out.endsWith(u"%1 imagette(s) faite(s), 0 à jour, 0 image(s) sans imagette\n"_s.arg(made))) << first.out.toStdString();
    EXPECT_TRUE(QFile::exists(folder.filePath(u"demo.hbi"_s)));
    const QString again = u"0 imagette(s) faite(s), %1 à jour, %2 image(s) sans imagette\n"_s;
    EXPECT_TRUE(run({u"imagettes"_s, demo}).out.endsWith(again.arg(QString::number(made), u"0"_s)));

    ASSERT_EQ(run({u"sql"_s, demo, u"INSERT INTO Images ([ID Individus],[Fichier]) SELECT TOP 1 [ID Individus],\"absente.jpg\" FROM Individus"_s}).status, 0);
    const Result missing = run({u"imagettes"_s, demo});
    EXPECT_EQ(missing.status, 0);
    EXPECT_TRUE(missing.err.contains(u"absente.jpg"_s)) << missing.err.toStdString();
    EXPECT_TRUE(missing.out.endsWith(again.arg(QString::number(made), u"1"_s))) << missing.out.toStdString();
    EXPECT_EQ(run({u"imagettes"_s}).status, 2);
    EXPECT_EQ(run({u"imagettes"_s, folder.filePath(u"absent.hbx"_s)}).status, 1);
}

} // namespace
