#include "editing/ProjectRecords.h"

#include "data/RecordRules.h"
#include "editing/Cl_Editions.h"
#include "support/Project.h"

namespace {

using namespace Qt::StringLiterals;
using support::TestProject;

class ProjectRecordsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        project.create();
        auto& db = project.db();
        db.Execute(u"INSERT INTO Taxons ([Taxon],[Nom Complet]) VALUES (\"Rosaceae\",\"Rosaceae\")"_s);
        db.Execute(u"INSERT INTO Individus ([Numéro],[Longitude],[Altitude]) VALUES (\"A1\",-12.5,100)"_s);
        db.Execute(u"INSERT INTO Déterminations ([ID Individus],[ID Taxons],[KeyParent]) VALUES (1,1,\"1-Individus\")"_s);
        db.Execute(u"UPDATE Individus SET [ID Déterminations]=1"_s);
        records = std::make_shared<editing::ProjectRecords>(db, project.session.dictionary(), project.session.properties());
        names = std::make_shared<editing::IdentifierNames>();
    }
    editing::Cl_Editions form(const QString& module)
    {
        editing::Cl_Editions made({[this] { return ++last; }, names, records});
        made.setTabedition(module, records->fields(module));
        return made;
    }

    TestProject project;
    std::shared_ptr<editing::ProjectRecords> records;
    std::shared_ptr<editing::IdentifierNames> names;
    qint32 last = 0;
};

TEST_F(ProjectRecordsTest, FieldsComeFromTheDictionaryInItsOrder)
{
    const auto images = form(u"Images"_s);
    ASSERT_EQ(images.Count(), 5);
    EXPECT_EQ(images.Item(0)->champ(), u"Fichier"_s);
    EXPECT_EQ(images.Item(0)->Caption(), u"Fichier"_s);
    EXPECT_EQ(images.Item(0)->ctype(), 8);
    EXPECT_FALSE(images.Item(0)->AllowNull());
    EXPECT_TRUE(images.Item(1)->AllowNull());
    EXPECT_EQ(images.Item(2)->champ(), u"ID Collecteurs"_s);
    EXPECT_EQ(images.Item(4)->TextHelp(), u"Longueur réelle d'un pixel, écrite par l'étalonnage"_s);
    EXPECT_EQ(images.Item(4)->NomModule(), u"Images"_s);
    EXPECT_EQ(form(u"Rien"_s).Count(), 0);
    EXPECT_EQ(records->label(u"Déterminations"_s), u"Détermination"_s);
    EXPECT_EQ(records->label(u"Rien"_s), u"Rien"_s);
}

TEST_F(ProjectRecordsTest, ARecordIsReadOnceForAllItsFields)
{
    const auto plant = form(u"Individus"_s);
    for (const auto& field : plant)
        field->setIDItem(1);
    EXPECT_EQ(records->reads(), 1);
    EXPECT_EQ(plant.Item(u"Numéro"_s)->value(), u"A1"_s);
    EXPECT_EQ(plant.Item(u"Longitude"_s)->TextValue(), u"W012°30'00.00"_s);
    EXPECT_EQ(plant.Item(u"Altitude"_s)->FormatedValue(), u"100.0000"_s);
    EXPECT_FALSE(plant.Changed());
    // Another module's record stands beside it.
    EXPECT_EQ(records->record(u"Déterminations"_s, 1).value(u"ID Taxons"_s), 1);
    EXPECT_EQ(records->record(u"Individus"_s, 1).value(u"Numéro"_s), u"A1"_s);
    EXPECT_EQ(records->reads(), 2);
}

TEST_F(ProjectRecordsTest, WhatIsWrittenIsSeen)
{
    EXPECT_EQ(records->record(u"Individus"_s, 1).value(u"Numéro"_s), u"A1"_s);
    project.db().Execute(u"UPDATE Individus SET [Numéro]=\"A2\""_s);
    EXPECT_EQ(records->record(u"Individus"_s, 1).value(u"Numéro"_s), u"A2"_s);
    {
        jet::Operation operation(project.db(), u"essai"_s);
        project.db().Execute(u"UPDATE Individus SET [Numéro]=\"A3\""_s);
        EXPECT_EQ(records->record(u"Individus"_s, 1).value(u"Numéro"_s), u"A3"_s);
    } // taken back
    EXPECT_EQ(records->record(u"Individus"_s, 1).value(u"Numéro"_s), u"A2"_s);
    project.db().Execute(u"DELETE * FROM Individus"_s);
    EXPECT_TRUE(records->record(u"Individus"_s, 1).isEmpty());
    EXPECT_TRUE(records->record(u"Individus"_s, 0).isEmpty());
    EXPECT_TRUE(records->record(u"Rien"_s, 1).isEmpty());
}

TEST_F(ProjectRecordsTest, DescriptorsAreThoseOfTheStore)
{
    const auto determination = form(u"Déterminations"_s);
    auto* doubt = determination.Item(u"Réserve"_s);
    EXPECT_EQ(doubt->ListeItems(), (QStringList{u"cf."_s, u"aff."_s, u"?"_s}));
    doubt->setValue(u"AFF."_s);
    EXPECT_EQ(doubt->value(), u"aff."_s);
    doubt->setValue(u"?"_s);
    EXPECT_EQ(doubt->value(), u"?"_s);
    doubt->setListeItems({u"cf."_s, u"sp."_s});
    EXPECT_EQ(project.session.properties().value(u"Descripteur"_s, u"Déterminations"_s, u"Réserve"_s), u"cf.;sp."_s);
    EXPECT_EQ(records->descriptors(u"Déterminations"_s, u"Réserve"_s), (QStringList{u"cf."_s, u"sp."_s}));
    project.session.properties().put(u"Descripteur"_s, u"Déterminations"_s, u"Réserve"_s, u" ; a ;;b"_s);
    EXPECT_EQ(records->descriptors(u"Déterminations"_s, u"Réserve"_s), (QStringList{u"a"_s, u"b"_s}));
}

TEST_F(ProjectRecordsTest, ALinkLeadsToTheRecordWithItsLock)
{
    data::RecordRules rules(project.db(), project.session.dictionary(), project.clock, project.dialogues);
    const auto plant = form(u"Individus"_s);
    for (const auto& field : plant) {
        field->setIDIndividu(1);
        field->setIDItem(1);
    }
    auto* link = plant.Item(u"ID Déterminations"_s);
    EXPECT_EQ(link->TextValue(), u"1-Déterminations"_s);
    QString caption;
    const auto free = link->GetTabEdition(link->value().toInt(), &caption);
    EXPECT_EQ(caption, u"< Détermination - N° 1 >"_s);
    EXPECT_EQ(free->Item(u"Taxon"_s)->value(), 1);
    EXPECT_EQ(free->Item(u"Taxon"_s)->TextError(), QString());
    rules.setLocked(u"Déterminations"_s, 1, true);
    EXPECT_EQ(link->GetTabEdition(1, nullptr)->Item(0)->TextError(), u"L'enregistrement est verrouillé"_s);
    EXPECT_EQ(link->GetTabEdition(0, &caption)->Count(), 5);
    EXPECT_EQ(caption, u"< Détermination - Ajout >"_s);
}

} // namespace
