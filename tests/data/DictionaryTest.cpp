#include "data/Dictionary.h"

#include "data/CoreModules.h"
#include "data/FieldType.h"
#include "data/PropertyStore.h"
#include "data/StatementTemplate.h"
#include "jet/SqlText.h"
#include "support/Project.h"

namespace {

using namespace Qt::StringLiterals;
using support::TestProject;

data::ModuleRecord mesures(const QString& provider = u"User"_s)
{
    data::ModuleRecord module;
    module.name = u"Mesures"_s;
    module.label = u"Mesure"_s;
    module.provider = provider;
    module.index = 3;
    data::FieldRecord field;
    field.column = field.caption = u"Hauteur"_s;
    field.type = data::Réel;
    field.rule = u">0"_s;
    field.ruleText = u"La hauteur est positive"_s;
    field.provider = provider;
    module.fields << field;
    data::FieldRecord list;
    list.column = list.caption = u"État"_s;
    list.type = data::ListeSimple;
    list.index = 1;
    list.provider = provider;
    list.descriptors = {u"bon"_s, u"mauvais"_s};
    module.fields << list;
    return module;
}

/// Adds the module to the open project and opens it again.
void addModule(TestProject& project, const data::ModuleRecord& module)
{
    project.session.dictionary().put(module);
    project.session.dictionary().save();
    ASSERT_TRUE(project.open());
}

TEST(StatementTemplate, ReplacesInOnePass)
{
    EXPECT_EQ(data::filled(u"a tmodule b ParentModule"_s,
                           {{u"tmodule"_s, u"ParentModule"_s}, {u"ParentModule"_s, u"tmodule"_s}}),
              u"a ParentModule b tmodule"_s);
}

TEST(Dictionary, RoundTripsModulesAndFields)
{
    TestProject project;
    project.create();
    addModule(project, mesures());
    const data::ModuleRecord* module = project.session.dictionary().module(u"mesures");
    ASSERT_TRUE(module);
    EXPECT_EQ(*module, mesures());
    EXPECT_EQ(project.single(u"SELECT Validation FROM PGTableDefs WHERE [Table]=\"Hauteur\""_s).toString(),
              u">0|La hauteur est positive"_s);
    EXPECT_EQ(project.single(u"SELECT Value FROM Propriétés WHERE Objet=\"Descripteur\" AND Module=\"Mesures\""_s)
                  .toString(),
              u"bon;mauvais"_s);
    project.db().Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
    try {
        project.db().Execute(u"INSERT INTO Mesures ([ID Individus],[Hauteur]) VALUES (1,-2)"_s);
        FAIL() << "the rule of the field did not hold";
    } catch (const jet::Error& error) {
        EXPECT_EQ(error.number(), 3316);
        EXPECT_EQ(error.description(), u"La hauteur est positive"_s);
    }
}

TEST(Dictionary, ReadsOddRows)
{
    TestProject project;
    project.create();
    // A rule without a text; the bit "one per individual" on the root, which is ignored.
    project.db().Execute(u"UPDATE PGTableDefs SET Validation=\">=0\" WHERE [Table]=\"Altitude\""_s);
    project.db().Execute(u"UPDATE PGTableDefs SET Flags=32770 WHERE Type=\"Addin\" AND NomModule=\"Individus\""_s);
    ASSERT_TRUE(project.open());
    // Two modules at one position come by their display names.
    for (const QString& name : {u"Zeste"_s, u"Arbre"_s}) {
        data::ModuleRecord module;
        module.name = name;
        module.label = name;
        module.index = 5;
        project.session.dictionary().put(module);
    }
    project.session.dictionary().save();
    ASSERT_TRUE(project.open());
    const data::ModuleRecord* individus = project.session.dictionary().module(u"Individus");
    EXPECT_EQ(individus->field(u"Altitude")->rule, u">=0"_s);
    EXPECT_EQ(individus->field(u"Altitude")->ruleText, QString());
    EXPECT_FALSE(individus->individuUnique());
    QStringList names;
    for (const data::ModuleRecord& module : project.session.modules())
        names << module.name;
    EXPECT_EQ(names, (QStringList{u"Individus"_s, u"Déterminations"_s, u"Images"_s, u"Arbre"_s, u"Zeste"_s}));
}

TEST(Dictionary, PurgesAModuleWhoseProviderIsGone)
{
    TestProject project;
    project.create();
    addModule(project, mesures());
    auto& db = project.db();
    db.Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
    db.Execute(u"INSERT INTO Mesures ([ID Individus],[Hauteur]) VALUES (1,2)"_s);
    db.Execute(u"INSERT INTO Images ([ID Individus],[Fichier],[KeyParent]) VALUES (1,\"a.jpg\",\"1-Mesures\")"_s);
    db.Execute(u"INSERT INTO Images ([ID Individus],[Fichier],[KeyParent]) VALUES (1,\"b.jpg\",\"1-Individus\")"_s);
    data::PropertyStore& store = project.session.properties();
    store.put(u"Requête"_s, u"Individus"_s, u"mixte"_s,
              u"Individus.Numéro\tNuméro\r\nMesures.Hauteur\tHauteur\r\nMesuresBis.X"_s);
    store.put(u"Modèle"_s, u"Images"_s, u"modèle"_s, u"Fichier;a.jpg\r\n3-Mesures;x"_s);
    store.put(u"Base"_s, u"Mesures"_s, u"base"_s, u"x"_s);
    // The provider becomes a library that is not there.
    db.Execute(u"UPDATE PGTableDefs SET ModuleConnexion=\"Dendro\" WHERE NomModule=\"Mesures\""_s);
    project.dialogues.expectTell(u"La DLL Dendro est introuvable dans le répertoire "_s + project.path(u"addins"_s),
                                 u"Herbora"_s, platform::BoxIcon::Warning);
    project.dialogues.expectTell(
        u"Aucun complément ne sert plus « Mesures » : ses enregistrements sont retirés du projet.\n"
        "Le projet tel qu'il était est gardé dans « "_s + project.path(u"projet.modules.hbx.bak"_s) + u" »."_s,
        u"Herbora"_s, platform::BoxIcon::Warning);
    ASSERT_TRUE(project.open());
    EXPECT_TRUE(QFileInfo::exists(project.path(u"projet.modules.hbx.bak"_s)));

    EXPECT_FALSE(project.session.dictionary().module(u"Mesures"));
    EXPECT_FALSE(project.db().schema().table(u"Mesures"));
    EXPECT_FALSE(project.db().schema().relation(u"Mesures"));
    EXPECT_EQ(project.single(u"SELECT Count(*) FROM PGTableDefs WHERE NomModule=\"Mesures\""_s).toInt(), 0);
    EXPECT_EQ(project.rows(u"SELECT Fichier, KeyParent FROM Images ORDER BY Fichier"_s),
              (QStringList{u"a.jpg|∅"_s, u"b.jpg|1-Individus"_s}));
    data::PropertyStore& again = project.session.properties();
    EXPECT_EQ(again.value(u"Requête"_s, u"Individus"_s, u"mixte"_s).toString(),
              u"Individus.Numéro\tNuméro\r\nMesuresBis.X"_s);
    EXPECT_EQ(again.value(u"Modèle"_s, u"Images"_s, u"modèle"_s).toString(), u"Fichier;a.jpg"_s);
    // The descriptor lists of every module go with it; those of connected fields are written again.
    EXPECT_EQ(again.value(u"Descripteur"_s, u"Déterminations"_s, u"Réserve"_s).toString(), u"cf.;aff.;?"_s);
}

TEST(Dictionary, KeepsAModuleWithoutTheConnectionBit)
{
    TestProject project;
    project.create();
    addModule(project, mesures());
    project.db().Execute(
        u"UPDATE PGTableDefs SET ModuleConnexion=\"Dendro\", Flags=0 WHERE NomModule=\"Mesures\""_s);
    project.dialogues.expectTell(u"La DLL Dendro est introuvable dans le répertoire "_s + project.path(u"addins"_s),
                                 u"Herbora"_s, platform::BoxIcon::Warning);
    ASSERT_TRUE(project.open());
    EXPECT_TRUE(project.db().schema().table(u"Mesures"));
}

TEST(Dictionary, PurgesAMarkedField)
{
    TestProject project;
    project.create();
    project.session.properties().put(u"Requête"_s, u"Individus"_s, u"q"_s,
                                     u"Individus.Habitat\tHabitat\r\nIndividus.Altitude\tAltitude"_s);
    project.db().Execute(u"UPDATE PGTableDefs SET [Index]=-1 WHERE [Table]=\"Habitat\""_s);
    project.db().Execute(u"UPDATE PGTableDefs SET [Index]=-1 WHERE [Table]=\"Réserve\""_s);
    ASSERT_TRUE(project.open());
    // Fields that are part of the program come back at the next synchronisation; this is the moment between.
    EXPECT_EQ(project.session.properties().value(u"Requête"_s, u"Individus"_s, u"q"_s).toString(),
              u"Individus.Altitude\tAltitude"_s);
    EXPECT_FALSE(project.session.properties().value(u"Descripteur"_s, u"Déterminations"_s, u"Réserve"_s).isValid());
}

} // namespace
