#include "AddinFixture.h"

#include "app/AddinLibrary.h"
#include "app/ModuleTree.h"
#include "data/FieldType.h"
#include "data/Verification.h"
#include "jet/Recordset.h"

#include <QDateTime>
#include <QFileInfo>

namespace {

using namespace Qt::StringLiterals;
using platform::BoxIcon;

const QStringList ownModules{u"Individus"_s, u"Déterminations"_s, u"Images"_s};
const QString trees = u"Dendrométrie"_s;

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString missing(const AddinProject& project, const QString& library)
{
    return u"La DLL "_s + library + u" est introuvable dans le répertoire "_s + project.addins();
}

void addTree(AddinProject& project, const QString& girth)
{
    project.db().Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
    project.db().Execute(u"INSERT INTO [Dendrométrie] ([ID Individus],[Circonférence]) VALUES (1,"_s + girth + u')');
}

TEST(AddinLibrary, IsNamedAlikeOnEverySystem)
{
    const struct { QString file, name; } cases[] = {{u"/a/b/Dendrometrie.so"_s, u"Dendrometrie"_s},
                                                    {u"libDendrometrie.so"_s, u"Dendrometrie"_s},
                                                    {u"Dendro.metrie.dll"_s, u"Dendro.metrie"_s},
                                                    {u"lib.so"_s, u"lib"_s}};
    for (const auto& [file, name] : cases)
        EXPECT_EQ(app::addinName(file), name);
}

// --- The example -----------------------------------------------------------------------------------

TEST(Addins, ConnectTheExample)
{
    AddinProject project;
    project.install(u"Dendrometrie"_s);
    project.create();
    EXPECT_EQ(project.moduleNames(), ownModules + QStringList{trees});
    EXPECT_EQ(project.session.addins().names(), project.moduleNames());
    const data::ModuleRecord* module = project.session.dictionary().module(trees);
    EXPECT_EQ(module->label, u"Mesure dendrométrique"_s);
    EXPECT_EQ(module->provider, u"Dendrometrie"_s);
    EXPECT_EQ(module->version, u"1.0"_s);
    EXPECT_EQ(module->index, 3);
    EXPECT_EQ(module->flags, data::Connecté);
    EXPECT_EQ(module->icon, bytesOf(qEnvironmentVariable("HERBORA_SOURCE") + u"/addins/dendrometrie/dendrometrie.svg"_s));
    const data::FieldRecord* girth = module->field(u"Circonférence");
    ASSERT_TRUE(girth);
    EXPECT_EQ(girth->type, data::Réel);
    EXPECT_EQ(girth->provider, u"Dendrometrie"_s);
    EXPECT_EQ(girth->rule, u">0"_s);
    EXPECT_EQ(girth->flags, data::Connecté | data::Interface);
    EXPECT_EQ(module->field(u"Méthode")->descriptors.size(), 5);
    EXPECT_EQ(app::buildModuleTree(project.session).find(trees)->icon, u"module:Dendrométrie"_s);
    EXPECT_EQ(project.single(u"SELECT Icon FROM PGTableDefs WHERE [Table]=\"Dendrométrie\""_s).toByteArray(), module->icon);
    EXPECT_EQ(data::verify(project.db(), project.session.modules()), QStringList());
}

TEST(Addins, ComputeTheBasalAreaAndLeaveAnUpToDateProjectAlone)
{
    AddinProject project;
    project.install(u"Dendrometrie"_s);
    project.create();
    addTree(project, u"100"_s);
    project.db().Execute(u"INSERT INTO [Dendrométrie] ([ID Individus],[SurfaceTerrière]) VALUES (1,9)"_s);
    ASSERT_TRUE(project.reopen());
    EXPECT_EQ(project.rows(u"SELECT [SurfaceTerrière] FROM [Dendrométrie] ORDER BY [ID Dendrométrie]"_s),
              (QStringList{u"0.07958"_s, u"∅"_s}));
    project.session.close();
    const QByteArray before = bytesOf(project.path());
    const QDateTime date = QFileInfo(project.path()).lastModified();
    ASSERT_TRUE(project.open());
    project.session.close();
    EXPECT_EQ(bytesOf(project.path()), before);
    EXPECT_EQ(QFileInfo(project.path()).lastModified(), date);
}

TEST(Addins, KeepTheVocabularyOfTheExample)
{
    AddinProject project;
    project.install(u"Dendrometrie"_s);
    project.create();
    const auto cancelled = [&](const QString& action, const QString& column, const QString& item) {
        bool cancel = false;
        project.session.addins().itemAction(trees, action, {column, item}, cancel);
        return cancel;
    };
    EXPECT_TRUE(cancelled(u"DELETE_ITEM"_s, u"Méthode"_s, u"Ruban"_s));
    EXPECT_FALSE(cancelled(u"DELETE_ITEM"_s, u"Méthode"_s, u"Ficelle"_s));
    EXPECT_FALSE(cancelled(u"ADD_ITEM"_s, u"Méthode"_s, u"Ruban"_s));
}

// --- Libraries that are gone -----------------------------------------------------------------------

TEST(Addins, PurgeTheModuleOfARemovedLibraryAndTakeItBack)
{
    AddinProject project;
    project.install(u"Dendrometrie"_s);
    project.create();
    addTree(project, u"100"_s);
    project.remove(u"Dendrometrie"_s);
    project.dialogues.expectTell(missing(project, u"Dendrometrie"_s), u"Herbora"_s, BoxIcon::Warning);
    const QString kept = project.path(u"projet.modules.hbx.bak"_s);
    project.dialogues.expectTell(u"Aucun complément ne sert plus « Dendrométrie » : ses enregistrements sont retirés du projet.\n"
                                 "Le projet tel qu'il était est gardé dans « %1 »."_s.arg(kept),
                                 u"Herbora"_s, BoxIcon::Warning);
    ASSERT_TRUE(project.reopen());
    EXPECT_TRUE(project.dialogues.done());
    EXPECT_EQ(project.moduleNames(), ownModules);
    EXPECT_EQ(jet::Database::Open(kept)->OpenRecordset(u"SELECT Count(*) FROM [Dendrométrie]"_s)->Value(0).toInt(), 1);
    EXPECT_FALSE(project.db().schema().table(trees));
    EXPECT_EQ(project.single(u"SELECT Count(*) FROM PGTableDefs WHERE NomModule=\"Dendrométrie\""_s).toInt(), 0);
    ASSERT_TRUE(project.reopen()); // nothing is left to be said
    project.install(u"Dendrometrie"_s);
    ASSERT_TRUE(project.reopen());
    EXPECT_EQ(project.moduleNames(), ownModules + QStringList{trees});
    EXPECT_EQ(project.single(u"SELECT Count(*) FROM [Dendrométrie]"_s).toInt(), 0);
    EXPECT_EQ(data::verify(project.db(), project.session.modules()), QStringList());
}

TEST(Addins, KeepRowsWithoutTheConnectionBit)
{
    AddinProject project;
    project.install(u"Dendrometrie"_s);
    project.create();
    addTree(project, u"100"_s);
    project.db().Execute(u"UPDATE PGTableDefs SET Flags=0 WHERE NomModule=\"Dendrométrie\""_s);
    project.remove(u"Dendrometrie"_s);
    for (int opening = 0; opening < 2; ++opening) {
        project.dialogues.expectTell(missing(project, u"Dendrometrie"_s), u"Herbora"_s, BoxIcon::Warning);
        ASSERT_TRUE(project.reopen());
        EXPECT_TRUE(project.dialogues.done());
        EXPECT_EQ(project.single(u"SELECT Count(*) FROM [Dendrométrie]"_s).toInt(), 1);
        EXPECT_EQ(project.session.addins().names(), ownModules);
    }
}

TEST(Addins, NameAMissingLibraryOnce)
{
    AddinProject project;
    project.create();
    for (const QString& name : {u"Fougères"_s, u"Mousses"_s}) {
        data::ModuleRecord module;
        module.name = module.label = name;
        module.provider = u"Cryptogames"_s;
        project.session.dictionary().put(module);
    }
    project.session.dictionary().save();
    project.dialogues.expectTell(missing(project, u"Cryptogames"_s), u"Herbora"_s, BoxIcon::Warning);
    ASSERT_TRUE(project.reopen());
    EXPECT_EQ(project.moduleNames(), ownModules);
}

// --- Libraries that misbehave ----------------------------------------------------------------------

/// The project opens, the box is the critical one, what comes behind the bad library is not connected; but a library
/// that is there keeps its records.
TEST(Addins, StandWhenALibraryFails)
{
    const struct { QString kind, number, description; } cases[] = {
        {u"lance"_s, u":440 "_s, u"Le complément « 0 » a échoué : rien ne va"_s},
        {u"etrange"_s, u":440 "_s, u"Le complément « 0 » a échoué sans dire pourquoi."_s},
        {u"champs"_s, u":440 "_s, u"Le complément « 0 » a échoué : pas de champs"_s},
        {u"reserve"_s, u":514 "_s, u"Le complément « 0 » est refusé : « Taxons » ne peut être le nom d'un module."_s},
        {u"etranger"_s, u":429 "_s, u"n'est pas un complément de Herbora."_s},
        {u"texte"_s, u":48 "_s, u"n'est pas une bibliothèque de complément."_s},
    };
    for (const auto& [kind, number, description] : cases) {
        SCOPED_TRACE(kind.toStdString());
        AddinProject project;
        project.install(u"Dendrometrie"_s);
        project.create();
        addTree(project, u"100"_s);
        if (kind == u"texte") {
            QFile text(project.library(u"0"_s));
            ASSERT_TRUE(text.open(QIODevice::WriteOnly));
            text.write("Ceci n'est pas une bibliothèque.\n");
        } else {
            project.install(kind, u"0"_s);
        }
        project.dialogues.expectLike({u"ERREUR Critique !\n"_s, number, description,
                                      u"\nImpossible d'établir une connexion avec la base de données"_s},
                                     u"Herbora"_s, BoxIcon::Stop);
        ASSERT_TRUE(project.reopen());
        EXPECT_TRUE(project.dialogues.done());
        EXPECT_EQ(project.session.addins().names(), ownModules);
        EXPECT_EQ(project.moduleNames(), ownModules + QStringList{trees});
        EXPECT_EQ(project.single(u"SELECT Count(*) FROM [Dendrométrie]"_s).toInt(), 1);

        project.remove(u"0"_s);
        ASSERT_TRUE(project.reopen());
        EXPECT_EQ(project.session.addins().names(), ownModules + QStringList{trees});
    }
}

TEST(Addins, PassOverLibrariesThatGiveNothingNew)
{
    AddinProject project;
    project.install(u"rien"_s);
    project.install(u"double"_s, u"A"_s);
    project.install(u"souple"_s, u"B"_s);
    project.install(u"souple"_s, u"libC"_s);
    project.install(u"Dendrometrie"_s);
    project.create();
    EXPECT_EQ(project.moduleNames(), ownModules + (QStringList{u"Essai"_s, trees}));
    EXPECT_EQ(project.session.dictionary().module(u"Essai")->provider, u"B"_s);
    EXPECT_EQ(project.session.dictionary().module(u"Déterminations")->label, u"Détermination"_s);
}

TEST(Addins, RefuseLibrariesMadeForOtherHeaders)
{
    const struct { QString kind, version; bool loaded; } cases[] = {{u"autre"_s, u"2"_s, false},
                                                                    {u"perime"_s, u"3"_s, true}};
    for (const auto& [kind, version, loaded] : cases) {
        AddinProject project;
        project.install(kind, u"0"_s);
        project.install(u"Dendrometrie"_s);
        project.dialogues.expectLike({project.library(u"0"_s), u"pour la version "_s + version, u"attend la version 1"_s},
                                     u"Herbora"_s, BoxIcon::Stop);
        project.create();
        EXPECT_EQ(project.moduleNames(), ownModules + QStringList{trees});
        EXPECT_EQ(qEnvironmentVariableIsSet(("HERBORA_TEST_LOADED_" + kind.toUtf8()).constData()), loaded);
    }
}

TEST(Addins, DropAModuleWhoseTableCannotBeMade)
{
    AddinProject project;
    project.create();
    project.install(u"regle"_s);
    project.dialogues.expectLike({u"ERREUR Critique < Création de la base des données >"_s}, u"Herbora"_s, BoxIcon::Stop);
    ASSERT_TRUE(project.reopen());
    EXPECT_EQ(project.moduleNames(), ownModules);
    EXPECT_EQ(project.single(u"SELECT Count(*) FROM PGTableDefs WHERE NomModule=\"Essai\""_s).toInt(), 0);
    EXPECT_FALSE(project.db().schema().table(u"Essai"));
}

TEST(Addins, LeaveAUsersModuleToTheUser)
{
    AddinProject project;
    project.create();
    data::ModuleRecord module;
    module.name = module.label = u"dendrométrie"_s;
    module.index = 3;
    project.session.dictionary().put(module);
    project.session.dictionary().save();
    project.install(u"Dendrometrie"_s);
    ASSERT_TRUE(project.reopen());
    EXPECT_TRUE(project.session.dictionary().module(trees)->isUser());
    EXPECT_TRUE(project.session.dictionary().module(trees)->fields.isEmpty());
    EXPECT_EQ(project.session.addins().item(trees)->NomObjet(), u"dendrométrie"_s);
}

// --- Definitions -----------------------------------------------------------------------------------

TEST(Addins, BringDefinitionsUpToDateWithTheVersion)
{
    AddinProject project;
    project.install(u"souple"_s);
    qputenv("HERBORA_TEST_VERSION", "1");
    project.create();
    auto& db = project.db();
    const QStringList unique{u"ID Individus"_s, u"Code"_s};
    EXPECT_EQ(project.session.dictionary().module(u"Essai")->combinedKey(), unique);
    db.Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
    db.Execute(u"INSERT INTO Essai ([ID Individus],[Code],[Taille]) VALUES (1,\"a\",\"grande\")"_s);
    db.Execute(u"UPDATE PGTableDefs SET NomObjet=\"Sigle\",[Index]=7 WHERE NomModule=\"Essai\" AND [Table]=\"Code\""_s);
    db.Execute(u"INSERT INTO PGTableDefs ([Type],[Table],[NomModule],[NomObjet],[Version],[ModuleConnexion])"
               " VALUES (\"TabEdit\",\"Note\",\"Essai\",\"Note\",\"3\",\"User\")"_s);
    project.session.properties().put(data::kindDescripteur, u"Essai"_s, u"État"_s, u"bon;mauvais;passable"_s);

    // The same version: what the user changed stays.
    ASSERT_TRUE(project.reopen());
    EXPECT_EQ(project.session.dictionary().module(u"Essai")->field(u"Code")->caption, u"Sigle"_s);

    qputenv("HERBORA_TEST_VERSION", "2");
    ASSERT_TRUE(project.reopen());
    const data::ModuleRecord* module = project.session.dictionary().module(u"Essai");
    EXPECT_EQ(module->version, u"2"_s);
    EXPECT_EQ(module->label, u"Essai 2"_s);
    EXPECT_EQ(module->field(u"Code")->caption, u"Code 2"_s);
    EXPECT_EQ(module->field(u"Code")->index, 7);
    EXPECT_EQ(module->field(u"État")->descriptors.size(), 3);
    EXPECT_EQ(module->field(u"Taille")->type, data::Texte); // its column holds texts
    EXPECT_EQ(module->field(u"ID Déterminations")->provider, u"Déterminations"_s);
    EXPECT_EQ(module->field(u"Note")->provider, u"User"_s);
    EXPECT_EQ(project.rows(u"SELECT Code,Taille,[ID Déterminations] FROM Essai"_s), QStringList{u"a|grande|∅"_s});
    qunsetenv("HERBORA_TEST_VERSION");
}

TEST(Addins, ServeEveryModuleWithTheFieldsOfTheDictionary)
{
    AddinProject project;
    project.install(u"souple"_s);
    project.create();
    project.db().Execute(u"INSERT INTO PGTableDefs ([Type],[Table],[NomModule],[NomObjet],[Index],[Version],[ModuleConnexion])"
                         " VALUES (\"TabEdit\",\"Note\",\"Individus\",\"Note\",50,\"3\",\"User\")"_s);
    ASSERT_TRUE(project.reopen());
    for (const data::ModuleRecord& module : project.session.modules()) {
        addin::gtAddin* served = project.session.addins().item(module.name);
        ASSERT_TRUE(served) << module.name.toStdString();
        EXPECT_EQ(served->NomModule(), module.name);
        EXPECT_EQ(served->IndividuMixteUnique(), module.name == u"Essai");
        EXPECT_EQ(served->GetTabEditions().size(), module.fields.size()) << module.name.toStdString();
        ASSERT_TRUE(served->Recordset());
        EXPECT_TRUE(served->Recordset()->atEnd());
    }
    EXPECT_EQ(project.session.addins().item(u"individus")->GetTabEditions().last()->Caption, u"Note"_s);
    // What is not kept in the dictionary comes from the library.
    const auto fields = project.session.addins().fields(*project.session.dictionary().module(u"Essai"));
    EXPECT_EQ(fields.first()->TextMask, u"AA-99"_s);
    EXPECT_FALSE(fields.first()->AllowNull);
    // An action that goes wrong in the library stops nothing.
    bool cancel = false;
    project.session.addins().itemAction(u"Essai"_s, u"ADD_ITEM"_s, {u"État"_s, u"neuf"_s}, cancel);
    EXPECT_FALSE(cancel);
}

TEST(Addins, ReadTheRowsOfTheirTable)
{
    AddinProject project;
    project.create();
    for (const QString& number : {u"7"_s, u"8"_s})
        project.db().Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\""_s + number + u"\")"_s);
    addin::Rows* rows = project.session.addins().item(u"Individus")->Recordset();
    QStringList numbers;
    for (rows->moveFirst(); !rows->atEnd(); rows->moveNext())
        numbers << rows->value(u"Numéro"_s).toString();
    EXPECT_EQ(numbers, (QStringList{u"7"_s, u"8"_s}));
    EXPECT_FALSE(rows->value(u"Numéro"_s).isValid()); // behind the last
    rows->moveFirst();
    EXPECT_FALSE(rows->value(u"Absente"_s).isValid());
}

} // namespace
