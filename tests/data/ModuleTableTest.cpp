#include "data/ModuleTable.h"

#include "data/CoreModules.h"
#include "data/FieldType.h"
#include "support/Project.h"

namespace {

using namespace Qt::StringLiterals;
using support::TestProject;

QStringList columnsOf(jet::Database& database, const QString& table)
{
    QStringList names;
    for (const jet::Field& field : database.schema().table(table)->Fields)
        names << field.Name;
    return names;
}

data::ModuleRecord moduleWith(const QString& name, const QList<int>& types)
{
    data::ModuleRecord module;
    module.name = module.label = name;
    for (const int type : types) {
        data::FieldRecord field;
        field.caption = field.column = u"Champ %1"_s.arg(type);
        field.type = type;
        field.index = int(module.fields.size());
        module.fields << field;
    }
    return module;
}

TEST(ModuleTable, HasTheStandardColumnsAroundItsFields)
{
    TestProject project;
    project.create();
    ASSERT_TRUE(data::buildModuleTable(project.db(), moduleWith(u"Vide"_s, {}), project.dialogues));
    EXPECT_EQ(columnsOf(project.db(), u"Vide"_s),
              (QStringList{u"ID Vide"_s, u"ID Individus"_s, u"KeyParent"_s, u"DateCreate"_s, u"DateModify"_s,
                           u"Locked"_s}));
    const jet::Relation* relation = project.db().schema().relation(u"Vide");
    ASSERT_TRUE(relation);
    EXPECT_TRUE(relation->DeleteCascade);
    EXPECT_EQ(relation->Table, u"Individus"_s);
    EXPECT_FALSE(project.db().schema().table(u"Individus")->Fields.isEmpty());
    EXPECT_FALSE(project.db().schema().relation(u"Individus"));
    EXPECT_EQ(columnsOf(project.db(), u"Individus"_s).count(u"ID Individus"_s), 1);
}

TEST(ModuleTable, GivesEveryTypeItsColumn)
{
    TestProject project;
    project.create();
    using jet::DataType;
    const QList<QPair<int, DataType>> types{
        {0, DataType::Text}, {1, DataType::Double}, {2, DataType::Double}, {3, DataType::Text},
        {4, DataType::Boolean}, {5, DataType::Double}, {6, DataType::Long}, {7, DataType::Text},
        {8, DataType::Text}, {9, DataType::Memo}, {11, DataType::Memo}, {12, DataType::Text},
        {13, DataType::Long}, {14, DataType::Long}, {15, DataType::Long}, {17, DataType::Long}};
    QList<int> codes{10, 16, 18};
    for (const auto& type : types)
        codes << type.first;
    ASSERT_TRUE(data::buildModuleTable(project.db(), moduleWith(u"Tout"_s, codes), project.dialogues));
    const jet::TableDef* table = project.db().schema().table(u"Tout");
    for (const auto& [code, type] : types) {
        const jet::Field* field = table->field(u"Champ %1"_s.arg(code));
        ASSERT_TRUE(field) << code;
        EXPECT_EQ(field->Type, type) << code;
        EXPECT_EQ(!data::nameOfType(code).isEmpty(), true) << code;
    }
    for (const int none : {10, 16, 18})
        EXPECT_FALSE(table->field(u"Champ %1"_s.arg(none))) << none;
    EXPECT_EQ(table->field(u"Champ 7")->Size, 30);
}

TEST(ModuleTable, CompletesAnOlderTable)
{
    TestProject project;
    project.create();
    jet::TableDef old{.Name = u"Ancien"_s};
    old.Fields = {{.Name = u"ID Ancien"_s, .Type = jet::DataType::Long, .AutoIncrement = true},
                  {.Name = u"ID Individus"_s, .Type = jet::DataType::Long, .Required = true}};
    project.db().AppendTable(old);
    project.db().Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
    project.db().Execute(u"INSERT INTO Ancien ([ID Individus]) VALUES (1)"_s);
    ASSERT_TRUE(data::buildModuleTable(project.db(), moduleWith(u"Ancien"_s, {3}), project.dialogues));
    EXPECT_EQ(project.rows(u"SELECT [Locked], [KeyParent], [Champ 3] FROM Ancien"_s), QStringList{u"false|∅|∅"_s});
    project.db().Execute(u"DELETE * FROM Individus"_s);
    EXPECT_EQ(project.single(u"SELECT Count(*) FROM Ancien"_s).toInt(), 0);
}

TEST(ModuleTable, LeavesOutAUniqueRuleThatTheDataBreak)
{
    TestProject project;
    project.create();
    data::ModuleRecord module = moduleWith(u"Double"_s, {3});
    ASSERT_TRUE(data::buildModuleTable(project.db(), module, project.dialogues));
    project.db().Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
    for (int i = 0; i < 2; ++i)
        project.db().Execute(u"INSERT INTO [Double] ([ID Individus],[Champ 3]) VALUES (1,\"même\")"_s);

    module.fields[0].flags |= data::Unique;
    project.dialogues.expectLike(
        {u"ERREUR Non Critique < Création d'une règle d'unicité pour un champ > \nN° : 3022 "_s,
         u"\nImpossible de charger l'index Unique. Vérifiez la cohérence de cet index unique vis-à-vis des valeurs "
         "existantes pour le champ Champ 3 du module Double\n-> Cet index unique est actuellement désactivé."_s},
        u"Herbora"_s, platform::BoxIcon::Stop);
    EXPECT_TRUE(data::buildModuleTable(project.db(), module, project.dialogues));

    module.fields[0].flags = data::Connecté;
    module.flags |= data::Unique;
    project.dialogues.expectLike(
        {u"ERREUR Non Critique < Création d'une règle d'unicité pour le champ > \nN° : 3022 "_s,
         u"\nUn seul enregistrement pour chaque individu ! \nImpossible de charger l'index 'IndividuUnique'. "
         "Vérifiez la pertinence de cet index vis-à-vis des données.\n-> Cet index unique est actuellement désactivé."_s},
        u"Herbora"_s, platform::BoxIcon::Stop);
    EXPECT_TRUE(data::buildModuleTable(project.db(), module, project.dialogues));

    module.flags = data::MixteUnique;
    module.fields[0].flags |= data::MixteUnique;
    EXPECT_EQ(module.combinedKey(), (QStringList{u"ID Individus"_s, u"Champ 3"_s}));
    project.dialogues.expectLike(
        {u"ERREUR Non Critique < Création d'une clef Mixteunique pour le module > Double\nN° : 3022 "_s,
         u"\nImpossible de charger l'index Combinaison Unique définie dans le module. Vérifiez la cohérence de la Clef "
         "Mixte Unique pour le module Double\n-> La Clef Mixte Unique est désactivée pour ce module"_s},
        u"Herbora"_s, platform::BoxIcon::Stop);
    EXPECT_TRUE(data::buildModuleTable(project.db(), module, project.dialogues));

    project.db().Execute(u"DELETE * FROM [Double] WHERE [ID Double]=2"_s);
    EXPECT_TRUE(data::buildModuleTable(project.db(), module, project.dialogues));
    EXPECT_THROW(project.db().Execute(u"INSERT INTO [Double] ([ID Individus],[Champ 3]) VALUES (1,\"MÊME \")"_s),
                 jet::Error);
}

TEST(ModuleTable, IsRefusedWithoutItsKey)
{
    TestProject project;
    project.create();
    jet::TableDef foreign{.Name = u"Autre"_s};
    foreign.Fields = {{.Name = u"Clef"_s, .Type = jet::DataType::Long, .AutoIncrement = true}};
    project.db().AppendTable(foreign);
    project.dialogues.expectLike(
        {u"ERREUR Critique < Création des Champs > : Le champ Index est introuvable dans la base de données !\n"_s,
         u"\nImpossible d'ouvrir le module Autre"_s},
        u"Herbora"_s, platform::BoxIcon::Stop);
    EXPECT_FALSE(data::buildModuleTable(project.db(), moduleWith(u"Autre"_s, {}), project.dialogues));
}

} // namespace
