#include "editing/DescriptorLists.h"

#include "data/FieldType.h"
#include "support/Project.h"

namespace {

using namespace Qt::StringLiterals;
using editing::ListField;
using platform::BoxIcon;
using support::TestProject;

/// A list of herbaria (several of a record) and one of reserves (one of a record).
class DescriptorListsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        project.create();
        lists = std::make_unique<editing::DescriptorLists>(project.db(), project.session.properties(), project.clock,
                                                           project.dialogues);
        project.session.properties().put(u"Descripteur"_s, u"Individus"_s, u"Herbier"_s, u"sec; mouillé;;secondaire;?;l'été"_s);
        for (const QString& value : {u"sec;mouillé"_s, u"secondaire;mouillé"_s, u"?;l'été"_s, u"x;sec"_s, u"sec"_s})
            project.db().Execute(u"INSERT INTO Individus ([Herbier],[Habitat]) VALUES (\""_s + value + u"\",\""_s + value + u"\")"_s);
        project.db().Execute(u"INSERT INTO Taxons ([Taxon]) VALUES (\"x\")"_s);
        for (const QString& value : {u"\"cf.\""_s, u"\"aff.\""_s, u"Null"_s})
            project.db().Execute(u"INSERT INTO Déterminations ([ID Individus],[ID Taxons],[Réserve]) VALUES (1,1,"_s + value + u')');
    }
    QStringList herbaria() { return project.rows(u"SELECT Herbier FROM Individus ORDER BY [ID Individus]"_s); }
    QStringList reserves() { return project.rows(u"SELECT Réserve FROM Déterminations ORDER BY [ID Déterminations]"_s); }

    TestProject project;
    std::unique_ptr<editing::DescriptorLists> lists;
    const ListField herbier{u"Individus"_s, u"Herbier"_s, u"Herbiers"_s, data::ListeMultiple, true};
    const ListField reserve{u"Déterminations"_s, u"Réserve"_s, u"Réserve"_s, data::ListeSimple, true};
};

TEST_F(DescriptorListsTest, AddsWhatIsNotThere)
{
    EXPECT_EQ(lists->items(herbier), (QStringList{u"sec"_s, u"mouillé"_s, u"secondaire"_s, u"?"_s, u"l'été"_s}));
    const QString prompt = u"Nouveau descripteur pour le champ \"Herbiers\" ?"_s;
    project.dialogues.expectInput(u"Ajout d'un descripteur"_s, prompt, {}, u"  alpha; bêta\n"_s);
    EXPECT_TRUE(lists->add(herbier));
    EXPECT_EQ(lists->items(herbier).last(), u"alpha bêta"_s);
    project.dialogues.expectInput(u"Ajout d'un descripteur"_s, prompt, {}, u" Sec "_s);
    project.dialogues.expectTell(u"Ajout impossible. Le descripteur 'Sec' est déjà défini pour le champ 'Herbiers'"_s,
                                 u"Ajout d'un descripteur"_s, BoxIcon::Stop);
    EXPECT_FALSE(lists->add(herbier));
    project.dialogues.expectInput(u"Ajout d'un descripteur"_s, prompt, {}, std::nullopt);
    EXPECT_FALSE(lists->add(herbier));
    EXPECT_TRUE(lists->move(herbier, u"alpha bêta"_s, -1));
    EXPECT_FALSE(lists->move(herbier, u"sec"_s, -1));
    EXPECT_EQ(lists->items(herbier).last(), u"l'été"_s);
}

TEST_F(DescriptorListsTest, RenamesInEveryRecordThatUsesIt)
{
    const auto ask = [&](const QString& old, const QString& text) {
        project.dialogues.expectInput(u"Modification d'un descripteur"_s, u"Nouveau nom pour le descripteur ?"_s, old, text);
    };
    ask(u"sec"_s, u"humide; \"x\"\t"_s); // without what a list cannot hold
    EXPECT_TRUE(lists->rename(herbier, u"sec"_s));
    EXPECT_EQ(herbaria(), (QStringList{u"humide x;mouillé"_s, u"secondaire;mouillé"_s, u"?;l'été"_s, u"x;humide x"_s, u"humide x"_s}));
    EXPECT_EQ(project.rows(u"SELECT DateModify FROM Individus WHERE [ID Individus] IN (1,2)"_s),
              (QStringList{u"2026/03/07 14:05:09"_s, u"∅"_s}));
    ask(u"?"_s, u"!"_s); // a wildcard is only itself
    EXPECT_TRUE(lists->rename(herbier, u"?"_s));
    ask(u"l'été"_s, u"l'hiver"_s);
    EXPECT_TRUE(lists->rename(herbier, u"l'été"_s));
    EXPECT_EQ(herbaria()[2], u"!;l'hiver"_s);
    EXPECT_EQ(herbaria()[3], u"x;humide x"_s);
    ask(u"mouillé"_s, u"Secondaire"_s);
    project.dialogues.expectTell(u"Modification impossible. Le descripteur 'Secondaire' est déjà défini pour le champ 'Herbiers'"_s,
                                 u"Modification d'un descripteur"_s, BoxIcon::Stop);
    EXPECT_FALSE(lists->rename(herbier, u"mouillé"_s));
    EXPECT_EQ(herbaria()[1], u"secondaire;mouillé"_s);
    ask(u"cf."_s, u"confer"_s);
    EXPECT_TRUE(lists->rename(reserve, u"cf."_s));
    EXPECT_EQ(reserves(), (QStringList{u"confer"_s, u"aff."_s, u"∅"_s}));
    EXPECT_EQ(lists->items(reserve), (QStringList{u"confer"_s, u"aff."_s, u"?"_s}));
}

TEST_F(DescriptorListsTest, WhatIsStoppedIsAsBefore)
{
    struct Stopped : platform::NoProgression {
        bool cancelled() const override { return true; }
    } stopped;
    lists->run = [&](const QString&, const editing::LongWork& work) { work(stopped); };
    const QStringList before = herbaria();
    const QStringList items = lists->items(herbier);
    project.dialogues.expectInput(u"Modification d'un descripteur"_s, u"Nouveau nom pour le descripteur ?"_s, u"sec"_s, u"humide"_s);
    project.dialogues.expectLike({u"annulée par l'utilisateur"_s}, u"Modification d'un descripteur"_s, BoxIcon::Stop);
    EXPECT_FALSE(lists->rename(herbier, u"sec"_s));
    EXPECT_EQ(herbaria(), before);
    EXPECT_EQ(lists->items(herbier), items);
}

TEST_F(DescriptorListsTest, ARuleThatRefusesLeavesTheRecordsAndTheNewList)
{
    jet::Field column = *project.db().schema().table(u"Individus"_s)->field(u"Herbier"_s);
    column.ValidationRule = u"Not Like \"*humide*\""_s;
    column.ValidationText = u"Pas d'humidité"_s;
    project.db().ChangeField(u"Individus"_s, column);
    const QStringList before = herbaria();
    project.dialogues.expectInput(u"Modification d'un descripteur"_s, u"Nouveau nom pour le descripteur ?"_s, u"sec"_s, u"humide"_s);
    project.dialogues.expectTell(u"Pas d'humidité"_s, u"Modification d'un descripteur"_s, BoxIcon::Stop);
    EXPECT_FALSE(lists->rename(herbier, u"sec"_s));
    EXPECT_EQ(herbaria(), before);
    EXPECT_TRUE(lists->items(herbier).contains(u"humide"_s));
}

TEST_F(DescriptorListsTest, DeletesWithItsReferences)
{
    project.dialogues.expectConfirm(u"Suppression du descripteur \"sec\"\nLa suppression de ce descripteur supprimera les 3 références associées dans le champ \"Herbiers\"\n\nEtes-vous sûr de vouloir supprimer définitivement ce descripteur ?"_s,
                                    u"Suppression d'un descripteur"_s, true, BoxIcon::Warning);
    EXPECT_TRUE(lists->remove(herbier, u"sec"_s));
    EXPECT_EQ(herbaria(), (QStringList{u"mouillé"_s, u"secondaire;mouillé"_s, u"?;l'été"_s, u"x"_s, u"∅"_s}));
    ListField strict = reserve;
    strict.allowNull = false;
    project.dialogues.expectTell(u"Impossible de supprimer le descripteur \"cf.\"\n1 enregistrement(s) retournent une erreur d'intégrité. \nLeur contenu deviendrait Null alors que le champ ne supporte pas les valeurs nulles\nModifier au préalable leur contenu avant de supprimer ce descripteur"_s,
                                 u"Suppression d'un descripteur"_s, BoxIcon::Stop);
    EXPECT_FALSE(lists->remove(strict, u"cf."_s));
    EXPECT_EQ(lists->items(reserve).first(), u"cf."_s);
    project.dialogues.expectConfirm(u"Suppression du descripteur \"?\"\nEtes-vous sûr de vouloir supprimer définitivement ce descripteur ?"_s,
                                    u"Suppression d'un descripteur"_s, false, BoxIcon::Warning);
    EXPECT_FALSE(lists->remove(strict, u"?"_s));
    project.dialogues.expectConfirm(u"Suppression du descripteur \"aff.\"\nLa suppression de ce descripteur supprimera les 1 références associées dans le champ \"Réserve\"\n\nEtes-vous sûr de vouloir supprimer définitivement ce descripteur ?"_s,
                                    u"Suppression d'un descripteur"_s, true, BoxIcon::Warning);
    EXPECT_TRUE(lists->remove(reserve, u"aff."_s));
    EXPECT_EQ(reserves(), (QStringList{u"cf."_s, u"∅"_s, u"∅"_s}));
}

TEST_F(DescriptorListsTest, SynchronisesFromTheRecords)
{
    EXPECT_EQ(lists->synchronise(herbier), (QStringList{u"sec"_s, u"mouillé"_s, u"secondaire"_s, u"?"_s, u"l'été"_s, u"x"_s}));
    EXPECT_EQ(lists->synchronise(reserve), (QStringList{u"cf."_s, u"aff."_s}));
}

} // namespace
