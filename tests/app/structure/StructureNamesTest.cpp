#include "app/structure/StructureNames.h"

#include "StructureFixture.h"

namespace {

using namespace Qt::StringLiterals;

TEST(StructureNames, ModulesAreCalledByWordsThatNothingElseBears)
{
    support::StructureProject project;
    project.db().CreateQueryDef(u"Liste rouge"_s, u"SELECT * FROM Individus"_s);
    const app::DraftModules& all = project.editing->draft().modules();
    const auto allowed = [&](const QString& name) {
        return app::isModuleName(name, app::DraftModule{}, all, project.db().schema());
    };
    for (const QString& name : {u"Écologie"_s, u"Relevé 2024"_s, u"a"_s, u"Sous_bois-nord"_s, QString(40, u'x')})
        EXPECT_TRUE(allowed(name)) << name.toStdString();
    for (const QString& name :
         {QString(), u" Relevé"_s, u"2 relevés"_s, u"_x"_s, u"Relevé.1"_s, u"l'été"_s, u"[x]"_s, QString(41, u'x'),
          u"images"_s, u"taxons"_s, u"liste rouge"_s, u"herbora"_s, u"MSysChoses"_s, u"pgNotes"_s, u"Requête"_s,
          u"x-self"_s,
          // "12-Relevés-Images" would be a record of Images too.
          u"Relevés-Images"_s,
          // "ID Collecteurs" is a column of Individus that is no link.
          u"Collecteurs"_s})
        EXPECT_FALSE(allowed(name)) << name.toStdString();
}

TEST(StructureNames, AModuleMayKeepItsNameInOtherLetters)
{
    support::StructureProject project;
    EXPECT_TRUE(project.editing->renameModule(project.module(u"Images"_s), u"IMAGES"_s));
    ASSERT_TRUE(project.save());
    EXPECT_EQ(project.findings(), QStringList());
    EXPECT_EQ(project.db().schema().table(u"Images")->Name, u"IMAGES"_s);
}

TEST(StructureNames, AFieldIsNoStandardColumnAndNoSecond)
{
    support::StructureProject project;
    const int id = project.editing->addField(project.module(u"Images"_s));
    for (const QString& name : {u"ID individus"_s, u"id images"_s, u"KeyParent"_s, u"datecreate"_s, u"DateModify"_s,
                                u"LOCKED"_s, u"légende"_s, u"a.b"_s, u"a[b"_s, u"MixUnique"_s, u"Images"_s,
                                // The column of the field "Date de prise de vue".
                                u"DatePrise"_s}) {
        project.dialogues.expectTell(u"Erreur: le nom de champ "_s + name
                                         + u" est invalide ou déja défini dans le tableau Images\r"
                                           "Modifier le nom afin qu'il soit unique"_s,
                                     u"projet.hbx - < Structure >"_s, platform::BoxIcon::Stop);
        EXPECT_FALSE(project.editing->renameField(id, name));
    }
    EXPECT_TRUE(project.editing->renameField(id, u"Appareil (modèle)"_s));
    EXPECT_EQ(project.editing->draft().field(id)->record.column, u"Appareil (modèle)"_s);
    // A column called otherwise than its field stays.
    const int date = project.field(u"Images"_s, u"Date de prise de vue"_s);
    EXPECT_TRUE(project.editing->renameField(date, u"Jour"_s));
    EXPECT_EQ(project.editing->draft().field(date)->record.column, u"DatePrise"_s);
}

TEST(StructureNames, RefusesToRenameAModuleToATakenName)
{
    support::StructureProject project;
    project.dialogues.expectTell(
        u"Impossible de renommer ce module: le Nom est invalide ou déjà existant dans la base"_s,
        u"projet.hbx - < Structure >"_s, platform::BoxIcon::Stop);
    EXPECT_FALSE(project.editing->renameModule(project.module(u"Images"_s), u"Herbora"_s));
    EXPECT_FALSE(project.editing->draft().isChanged());
}

} // namespace
