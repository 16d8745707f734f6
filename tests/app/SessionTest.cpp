#include "app/Session.h"

#include "app/ModuleTree.h"
#include "app/ProjectFiles.h"
#include "data/Verification.h"
#include "support/Files.h"
#include "support/Project.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

namespace {

using namespace Qt::StringLiterals;
using support::bytesOf;
using support::put;
using platform::BoxIcon;
using support::TestProject;

const QStringList steps{u"0 Ouverture de la base de donnée"_s,
                        u"5 Initialisation des modules internes"_s,
                        u"15 Ouverture de la Structure"_s,
                        u"20 Ouverture des Propriétés"_s,
                        u"30 Chargement des variables"_s,
                        u"40 Connexion aux addin"_s,
                        u"50 Vérification et synchronisation des mises à jour"_s,
                        u"60 Validation de la Structure"_s,
                        u"70 Ouverture de la Structure"_s,
                        u"80 Enregistrement des paramètres"_s,
                        u"90 Chargement de l'interface graphique"_s,
                        u"100 Chargement et Validation OK de la base de donnée"_s};

QStringList filesIn(const QTemporaryDir& folder)
{
    return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

TEST(Session, CreatesAProjectInTwelveSteps)
{
    TestProject project;
    project.create();
    EXPECT_EQ(project.progression.steps, steps);
    EXPECT_EQ(project.session.projectName(), u"projet.hbx"_s);
    EXPECT_EQ(project.settings.read(u"Général.DefaultBase"_s), project.session.path());
    EXPECT_EQ(project.db().Property(u"HerboraVersion"_s).toString(), u"1.0"_s);
    QStringList tables;
    for (const jet::TableDef& table : project.db().schema().tables())
        tables << table.Name;
    tables.sort();
    EXPECT_EQ(tables, (QStringList{u"Collecteurs"_s, u"Déterminations"_s, u"Images"_s, u"Individus"_s, u"Localités"_s,
                                   u"PGTableDefs"_s, u"Propriétés"_s, u"Taxons"_s}));
    EXPECT_EQ(data::verify(project.db(), project.session.modules()), QStringList());
    project.session.close();
    EXPECT_EQ(filesIn(project.folder), (QStringList{u"Herbora.ini"_s, u"projet.hbx"_s}));
}

TEST(Session, OpeningAnUpToDateProjectChangesNothing)
{
    TestProject project;
    project.create();
    project.session.close();
    const QByteArray before = bytesOf(project.path());
    const QDateTime date = QFileInfo(project.path()).lastModified();
    ASSERT_TRUE(project.open());
    EXPECT_FALSE(app::buildModuleTree(project.session).children.isEmpty());
    project.rows(u"SELECT * FROM Individus"_s);
    project.session.close();
    EXPECT_EQ(bytesOf(project.path()), before);
    EXPECT_EQ(QFileInfo(project.path()).lastModified(), date);
}

TEST(Session, BringsTheVersionUpToDate)
{
    TestProject project;
    project.create();
    project.db().SetProperty(u"HerboraVersion"_s, u"0.9"_s);
    ASSERT_TRUE(project.open());
    EXPECT_EQ(project.db().Property(u"HerboraVersion"_s).toString(), u"1.0"_s);
    project.db().SetProperty(u"HerboraVersion"_s, u"1.0.0"_s); // the same version, written otherwise
    ASSERT_TRUE(project.open());
    EXPECT_EQ(project.db().Property(u"HerboraVersion"_s).toString(), u"1.0.0"_s);
}

/// One clear box, nothing open, nothing changed, the default project kept.
TEST(Session, RefusesWhatIsNoProject)
{
    TestProject project;
    project.create();
    const QString last = project.settings.read(u"Général.DefaultBase"_s);
    project.session.close();
    const QByteArray good = bytesOf(project.path());
    QByteArray flipped = good;
    for (int at = 100; at < flipped.size(); at += 97)
        flipped[at] = char(flipped[at] ^ 0x55);
    const QList<QPair<QByteArray, QByteArray>> files{
        {"vide", ""},
        {"texte", "Ceci n'est pas une base.\n"},
        {"image", QByteArray("\xFF\xD8\xFF\xE0\0\x10JFIF", 10) + QByteArray(5000, 'x')},
        {"tronqué", good.left(good.size() / 2)},
        {"abîmé", flipped},
        {"ancienne base", QByteArray("\0\1\0\0Standard Jet DB\0", 20) + QByteArray(4076, '\0')},
        {"absent", QByteArray()},
    };
    for (const auto& [name, bytes] : files) {
        const QString path = project.path(QString::fromUtf8(name) + u".hbx"_s);
        if (name != "absent")
            put(path, bytes);
        project.dialogues.expectLike(
            {u"Error "_s,
             u"\nNotez le numéro et la description de l'erreur ci-dessous \n"
             "Erreur dans le chargement du programme Herbora !le fichier est peut être corrompu\n in"_s,
             u"\n: "_s, name == "ancienne base" ? u"Access"_s : u"."_s},
            u"Herbora"_s, BoxIcon::Stop);
        EXPECT_FALSE(project.session.open(path, project.progression)) << name.toStdString();
        EXPECT_TRUE(project.dialogues.done()) << name.toStdString();
        EXPECT_FALSE(project.session.isOpen());
        EXPECT_EQ(bytesOf(path), name == "absent" ? QByteArray() : bytes) << name.toStdString();
    }
    EXPECT_EQ(project.settings.read(u"Général.DefaultBase"_s), last);
    project.dialogues.expectLike({u"Error "_s, u"\n: "_s}, u"Herbora"_s, BoxIcon::Stop);
    EXPECT_FALSE(project.session.open(project.folder.path(), project.progression));
    ASSERT_TRUE(project.open());
    for (const QString& file : filesIn(project.folder))
        EXPECT_FALSE(file.contains(u".tmp-"_s)) << file.toStdString();
}

TEST(Session, SaysThatNoModuleIsAttached)
{
    TestProject project;
    project.create();
    // Tables under the modules' names that lack the modules' keys: none of them can be opened.
    project.db().Execute(u"DELETE * FROM PGTableDefs"_s);
    const QStringList names{u"Déterminations"_s, u"Images"_s, u"Individus"_s};
    for (const QString& name : names) {
        if (project.db().schema().relation(name))
            project.db().DeleteRelation(name);
    }
    for (const QString& name : names) {
        project.db().DeleteTable(name);
        jet::TableDef table{.Name = name};
        table.Fields = {{.Name = u"Autre"_s, .Type = jet::DataType::Long, .AutoIncrement = true}};
        project.db().AppendTable(table);
    }
    for (int i = 0; i < 2; ++i)
        project.dialogues.expectLike({u"ERREUR Critique < Création des Champs >"_s}, u"Herbora"_s, BoxIcon::Stop);
    project.dialogues.expectLike({u"Error "_s, u"\n inLoadDataBase\n: Aucun Module attaché à la collection ColAddin"_s},
                                 u"Herbora"_s, BoxIcon::Stop);
    EXPECT_FALSE(project.open());
}

TEST(Session, KeepsTheRecordsOfAModuleThatCannotBeOpened)
{
    TestProject project;
    project.create();
    data::ModuleRecord module;
    module.name = module.label = u"Mesures"_s;
    module.index = 9;
    ASSERT_TRUE(project.session.changeStructure([&] {
        project.session.dictionary().put(module);
        project.session.dictionary().save();
    }));
    project.db().Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
    project.db().Execute(u"INSERT INTO Mesures ([ID Individus]) VALUES (1)"_s);
    const jet::Field key = *project.db().schema().table(u"Mesures")->field(u"ID Mesures");
    jet::Field other = key;
    other.Name = u"Autre"_s;
    project.db().RenameField(u"Mesures"_s, key.Name, other);
    project.dialogues.expectLike({u"ERREUR Critique < Création des Champs >"_s, u"Impossible d'ouvrir le module Mesures"_s},
                                 u"Herbora"_s, BoxIcon::Stop);
    ASSERT_TRUE(project.open());
    project.dialogues.verify();
    EXPECT_EQ(project.session.dictionary().module(u"Mesures"), nullptr);
    project.db().RenameField(u"Mesures"_s, other.Name, key);
    ASSERT_TRUE(project.open());
    EXPECT_NE(project.session.dictionary().module(u"Mesures"), nullptr);
    EXPECT_EQ(project.rows(u"SELECT * FROM Mesures"_s).size(), 1);
}

TEST(Session, SaysOnceThatARuleOfUniquenessDoesNotHold)
{
    TestProject project;
    project.create();
    project.db().Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
    project.db().Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
    project.db().Execute(u"UPDATE PGTableDefs SET [Flags]=32770 WHERE [Table]=\"Numéro\""_s);
    for (int opening = 0; opening < 2; ++opening) {
        project.dialogues.expectLike({u"ERREUR Non Critique < Création d'une règle d'unicité pour un champ > "_s},
                                     u"Herbora"_s, BoxIcon::Stop);
        ASSERT_TRUE(project.open());
        project.dialogues.verify();
        EXPECT_NE(project.session.dictionary().module(u"Individus"), nullptr);
    }
}

TEST(Session, OptimisesWithABackup)
{
    TestProject project;
    project.create();
    auto* db = &project.db();
    db->Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
    db->Execute(u"INSERT INTO Individus ([Numéro],[ID Déterminations]) VALUES (\"2\",77)"_s);
    db->Execute(u"INSERT INTO Images ([ID Individus],[Fichier],[KeyParent]) VALUES (1,\"perdu.jpg\",\"9-Déterminations\")"_s);
    db->Execute(u"INSERT INTO Images ([ID Individus],[Fichier],[KeyParent]) VALUES (1,\"autre.jpg\",\"2-Individus\")"_s);
    db->Execute(u"INSERT INTO Images ([ID Individus],[Fichier],[KeyParent]) VALUES (1,\"bon.jpg\",\"1-Individus\")"_s);
    db->Execute(u"INSERT INTO Taxons ([Taxon],[ID Famille]) VALUES (\" Rosaceae \",1)"_s);
    db->Execute(u"INSERT INTO Taxons ([Taxon],[ID Famille],[ID Genre]) VALUES (\"ROSA\",1,2)"_s);
    db->Execute(u"INSERT INTO Taxons ([Taxon],[ID Famille],[ID Genre],[ID Espèce]) VALUES (\"Canina\",1,2,3)"_s);
    db->Execute(u"INSERT INTO Taxons ([Taxon],[ID Famille],[ID Genre],[ID Espèce],[ID Infra]) VALUES (\"Var. Alba\",1,2,3,4)"_s);
    db->Execute(u"INSERT INTO Taxons ([Taxon],[ID Genre],[ID Espèce],[ID Valid]) VALUES (\"orpheline\",99,5,98)"_s);
    // Records of the first individual; their numbers are those of the second one too.
    db->Execute(u"INSERT INTO Déterminations ([ID Individus],[ID Taxons]) VALUES (1,3)"_s);
    db->Execute(u"INSERT INTO Déterminations ([ID Individus],[ID Taxons],[KeyParent]) VALUES (1,3,\"1-Individus\")"_s);
    db->Execute(u"INSERT INTO Images ([ID Individus],[Fichier],[KeyParent]) VALUES (1,\"sous.jpg\",\"2-Déterminations\")"_s);
    db->Execute(u"INSERT INTO Localités ([Localité],[LongDD],[LatDD],[CodeRegion],[ID Type]) VALUES (\" France \",0,0,\"1\",0)"_s);
    db->Execute(u"INSERT INTO Localités ([Localité],[LongDD],[LatDD],[CodeRegion],[ID Type]) VALUES (\"Hérault\",0,0,\"1/2\",1)"_s);
    db->Execute(u"INSERT INTO Localités ([Localité],[LongDD],[LatDD],[CodeRegion],[ID Type]) VALUES (\"Carte\",0,0,\"3\",-1)"_s);
    put(project.path(u"projet.hbx.bak"_s), "ancienne sauvegarde");

    const QString question = QStringList{
        u"L'optimisation permet de vérifier la cohérence des liens et de réduire considérablement la taille de la base de données"_s,
        u"Le temps nécessaire pour optimiser la base dépend de la fréquence et du nombre d'enregistrement"_s,
        u"Une copie de la base actuelle sera conservée, comportant l'extension .bak."_s,
        u"Si l'optimisation échoue vous pouvez récupérer l'état initial de vos données avant l'opération"_s,
        u"Voulez-vous optimiser la base de données actuelle ?"_s}.join(u"\r\n"_s);
    project.dialogues.expectConfirm(question, u"Herbora - Optimisation"_s, false, BoxIcon::Warning);
    EXPECT_FALSE(project.session.optimise(project.progression));
    EXPECT_TRUE(project.session.isOpen());

    project.dialogues.expectConfirm(question, u"Herbora - Optimisation"_s, true, BoxIcon::Warning);
    project.progression.steps.clear();
    EXPECT_TRUE(project.session.optimise(project.progression));
    EXPECT_EQ(project.progression.steps,
              (QStringList{u"5 Vérification des Liens courant"_s, u"15 Vérification des Liens indirects"_s,
                           u"35 Vérification des Taxons"_s, u"55 Vérification des Localités"_s,
                           u"65 Fermeture de la Base de données"_s, u"70 Sauvegarde le base actuelle"_s,
                           u"75 Compactage le base actuelle"_s, u"75 Compactage terminé..."_s} + steps));
    ASSERT_TRUE(project.session.isOpen());
    EXPECT_EQ(project.rows(u"SELECT Numéro,[ID Déterminations] FROM Individus"_s), (QStringList{u"1|∅"_s, u"2|∅"_s}));
    EXPECT_EQ(project.rows(u"SELECT Fichier,KeyParent FROM Images ORDER BY [ID Images]"_s),
              (QStringList{u"perdu.jpg|∅"_s, u"autre.jpg|∅"_s, u"bon.jpg|1-Individus"_s, u"sous.jpg|2-Déterminations"_s}));
    EXPECT_EQ(project.rows(u"SELECT KeyParent FROM Déterminations ORDER BY [ID Déterminations]"_s),
              (QStringList{u"∅"_s, u"1-Individus"_s}));
    EXPECT_EQ(project.rows(u"SELECT [Nom Complet],[ID Valid] FROM Taxons ORDER BY [ID Taxons]"_s),
              (QStringList{u"Rosaceae|∅"_s, u"ROSA|∅"_s, u"Rosa canina|∅"_s, u"Rosa canina var. alba|∅"_s, u" orpheline|∅"_s}));
    EXPECT_EQ(project.rows(u"SELECT Localité,[Nom Entier] FROM Localités ORDER BY [ID Localités]"_s),
              (QStringList{u"France|∅"_s, u"Hérault|France - Hérault"_s, u"Carte|∅"_s}));
    EXPECT_EQ(data::verify(project.db(), project.session.modules()), QStringList());
    EXPECT_TRUE(bytesOf(project.path(u"projet.hbx.bak"_s)).startsWith("SQLite format 3"));
}

TEST(Session, OptimisesNoDamagedProjectOverASoundBackup)
{
    TestProject project;
    project.create();
    jet::Operation filling(project.db(), u"Remplissage"_s);
    for (int i = 0; i < 400; ++i)
        project.db().Execute(u"INSERT INTO Individus ([Numéro],[Description]) VALUES (\"1\",\"%1\")"_s.arg(QString(500, u'x')));
    filling.commit();
    project.session.close();
    QByteArray damaged = bytesOf(project.path());
    damaged.replace(damaged.size() / 4096 / 2 * 4096, 4096, QByteArray(4096, '\0'));
    put(project.path(), damaged);
    put(project.path(u"projet.hbx.bak"_s), "sauvegarde saine");
    ASSERT_TRUE(project.open());
    project.dialogues.expectLike({u"L'optimisation a échoué"_s, u"est endommagé ; reprenez une copie de sauvegarde."_s},
                                 u"Herbora - Optimisation"_s, BoxIcon::Stop);
    EXPECT_FALSE(project.session.optimiseConfirmed(project.progression));
    EXPECT_TRUE(project.session.isOpen());
    project.session.close();
    EXPECT_EQ(bytesOf(project.path()), damaged);
    EXPECT_EQ(bytesOf(project.path(u"projet.hbx.bak"_s)), "sauvegarde saine");
}

/// The user wants to stop as soon as a step begins.
class StoppedAt : public support::RecordedProgression {
public:
    explicit StoppedAt(QString text) : m_text(std::move(text)) {}
    bool cancelled() const override { return !steps.isEmpty() && steps.last().endsWith(m_text); }

private:
    QString m_text;
};

TEST(Session, StopsOptimisingAndOpensTheProjectAgain)
{
    TestProject project;
    project.create();
    project.db().Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
    for (const QString& step : {u"Vérification des Taxons"_s, u"Sauvegarde le base actuelle"_s, u"Compactage le base actuelle"_s}) {
        // Enough for the store to ask between two of its steps.
        project.db().Execute(u"INSERT INTO Taxons ([Taxon],[Nom Complet]) SELECT \"a\", a.[NomObjet] & b.[NomObjet] & a.[ID Def] & \"-\" & b.[ID Def]"
                             " & \"%1\" FROM PGTableDefs AS a, PGTableDefs AS b"_s.arg(step));
        StoppedAt progression(step);
        EXPECT_FALSE(project.session.optimiseConfirmed(progression)) << step.toStdString();
        ASSERT_TRUE(project.session.isOpen());
        EXPECT_EQ(project.single(u"SELECT Count(*) FROM Individus"_s), 1);
    }
    project.session.close();
    QStringList files = filesIn(project.folder);
    files.removeAll(u"projet.hbx.bak"_s);
    EXPECT_EQ(files, (QStringList{u"Herbora.ini"_s, u"projet.hbx"_s}));
}

TEST(Session, RemovesWhatADeadProcessLeftWhateverTheProjectIsCalled)
{
    TestProject project;
    const QString name = u"relevés [2024] *.hbx"_s;
    QProcess gone;
    gone.start(u"true"_s, {});
    const QString dead = u".tmp-"_s + QString::number(gone.processId());
    ASSERT_TRUE(gone.waitForFinished());
    const QStringList stay{u".autre [2024] *.hbx"_s + dead, u"."_s + name + u".tmp-1"_s};
    for (const QString& file : stay + QStringList{u"."_s + name + dead, u"."_s + name + u".bak"_s + dead, u"."_s + name + dead + u"-journal"_s})
        put(project.path(file), "x");
    app::removeStrayFiles(project.path(name));
    EXPECT_EQ(filesIn(project.folder), stay);
}

TEST(Session, NamesFilesInMessagesAsTheyWillBe)
{
    const QString unfinished = app::temporaryPath(u"/tmp/a/b.hbx"_s);
    EXPECT_TRUE(app::isTemporary(unfinished));
    EXPECT_FALSE(app::isTemporary(u"/tmp/.a/b.hbx"_s));
    EXPECT_EQ(app::withFinalNames(u"« %1 » et « %2 »."_s.arg(unfinished, app::temporaryPath(unfinished))),
              u"« /tmp/a/b.hbx » et « /tmp/a/b.hbx »."_s);
}

TEST(Session, RestoresABackupWhenTheProjectIsMissing)
{
    TestProject project;
    project.create();
    project.session.close();
    const QString backup = app::backupPath(project.path());
    EXPECT_EQ(backup, project.path(u"projet.hbx.bak"_s));
    ASSERT_TRUE(QFile::rename(project.path(), backup));
    const QString question = u"Le fichier « %1 » est introuvable, mais sa copie de sauvegarde « %2 » existe.\n"
                             "Voulez-vous restaurer la base de données à partir de cette copie ?"_s.arg(project.path(), backup);
    project.dialogues.expectConfirm(question, u"Herbora"_s, false);
    EXPECT_EQ(project.session.startFile(project.path()), QString());
    project.dialogues.expectConfirm(question, u"Herbora"_s, true);
    EXPECT_EQ(project.session.startFile(project.path()), project.path());
    EXPECT_TRUE(QFileInfo::exists(backup));
    EXPECT_TRUE(project.open());
    // Without a name the project of the setting is taken, when it is still there.
    EXPECT_EQ(project.session.startFile({}), project.session.path());
    project.session.close();
    QFile::remove(project.path());
    EXPECT_EQ(project.session.startFile({}), QString());
}

TEST(Session, CreatesNothingOverAnExistingFile)
{
    TestProject project;
    put(project.path(), "précieux");
    project.dialogues.expectLike({u"Impossible de créer la base de données :\n"_s}, u"Herbora"_s, BoxIcon::Stop);
    EXPECT_FALSE(project.session.create(project.path(), project.progression));
    EXPECT_EQ(bytesOf(project.path()), "précieux");
    project.dialogues.expectLike({u"Impossible de créer la base de données :\n"_s}, u"Herbora"_s, BoxIcon::Stop);
    EXPECT_FALSE(project.session.create(project.path(u"absent/x.hbx"_s), project.progression));
    EXPECT_EQ(filesIn(project.folder), QStringList{u"projet.hbx"_s});
}

class FakeAssociation : public platform::FileAssociation {
public:
    QString command;
    QString written;
    QString openCommand() const override { return command; }
    bool write(const QString& executable) override
    {
        written = executable;
        return true;
    }
};

TEST(Session, OffersToCorrectTheFileAssociation)
{
    TestProject project;
    FakeAssociation association;
    const QString text = u"Les fichiers HBX ne sont pas correctement associés à Herbora\n"
                         "Souhaitez-vous corriger l'association dans la base de registre ?"_s;
    project.dialogues.expectConfirm(text, u"Herbora: Registration"_s, false);
    project.session.checkAssociation(association);
    EXPECT_EQ(association.written, QString());
    project.dialogues.expectConfirm(text, u"Herbora: Registration"_s, true);
    project.session.checkAssociation(association);
    EXPECT_EQ(association.written, project.folder.path() + u"/herbora"_s);
    association.command = association.written;
    project.session.checkAssociation(association); // nothing is asked
}

QStringList flat(const app::TreeNode& node, int depth = 0)
{
    QStringList lines{QString(depth, u' ') + node.key + u'|' + node.text};
    for (const app::TreeNode& child : node.children)
        lines += flat(child, depth + 1);
    return lines;
}

TEST(ModuleTree, HoldsModulesGroupsAndStoredObjects)
{
    TestProject project;
    project.create();
    const int query = project.session.properties().put(u"Requête"_s, u"Individus"_s, u"Récents"_s, u"x"_s);
    const int model = project.session.properties().put(u"Modèle"_s, u"Images"_s, u"Série"_s, u"x"_s);
    project.session.selection(u"Images"_s) << 1 << 2;
    const app::TreeNode tree = app::buildModuleTree(project.session);
    EXPECT_EQ(flat(tree),
              (QStringList{u"Bases|projet.hbx"_s, u" Individus|Individus"_s, u"  %1-query|Récents"_s.arg(query),
                           u" Déterminations|Déterminations"_s, u" Images|Images"_s, u"  %1-model|Série"_s.arg(model),
                           u" Requête|Requêtes"_s, u" Sélections|Sélections"_s,
                           u"  Sélections flottantes|Sélections flottantes"_s, u"   Individus-self|Individus < 0 >"_s,
                           u"   Déterminations-self|Déterminations < 0 >"_s, u"   Images-self|Images < 2 >"_s,
                           u" Modèle|Modèles d'ajout"_s, u" Lsbotanistes|Botanistes"_s, u" Lslocalités|Localités"_s,
                           u" Lstaxons|Taxons"_s}));
    EXPECT_EQ(tree.icon, u"Database"_s);
    EXPECT_EQ(tree.find(u"%1-query"_s.arg(query))->tag.toInt(), query);
    EXPECT_EQ(app::kindOfKey(u"%1-query"_s.arg(query), project.session), app::NodeKind::Query);
    EXPECT_EQ(app::kindOfKey(u"Images-self"_s, project.session), app::NodeKind::Selection);
    EXPECT_EQ(app::kindOfKey(u"Images"_s, project.session), app::NodeKind::Module);
    EXPECT_EQ(app::kindOfKey(u"Rien"_s, project.session), app::NodeKind::None);
}

} // namespace
