#include "data/RecordRules.h"

#include "data/Confirmations.h"
#include "jet/Store.h"
#include "support/Project.h"

namespace {

using namespace Qt::StringLiterals;
using platform::Answer;
using platform::BoxIcon;
using support::TestProject;

/// Two individuals; the first with a determination that has an image under it.
class RecordRulesTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        project.create();
        auto& db = project.db();
        db.Execute(u"INSERT INTO Taxons ([Taxon],[Nom Complet]) VALUES (\"Rosaceae\",\"Rosaceae\")"_s);
        for (const QString& number : {u"1"_s, u"2"_s})
            db.Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\""_s + number + u"\")"_s);
        db.Execute(u"INSERT INTO Déterminations ([ID Individus],[ID Taxons],[KeyParent]) VALUES (1,1,\"1-Individus\")"_s);
        db.Execute(u"INSERT INTO Déterminations ([ID Individus],[ID Taxons],[KeyParent]) VALUES (2,1,\"2-Individus\")"_s);
        db.Execute(u"INSERT INTO Images ([ID Individus],[Fichier],[KeyParent]) VALUES (1,\"a.jpg\",\"1-Déterminations\")"_s);
        db.Execute(u"INSERT INTO Images ([ID Individus],[Fichier],[KeyParent]) VALUES (1,\"b.jpg\",\"1-Images\")"_s);
        db.Execute(u"UPDATE Individus SET [ID Déterminations]=[ID Individus]"_s);
        rules = std::make_unique<data::RecordRules>(db, project.session.dictionary(), project.clock, project.dialogues);
    }
    QString refusal(const QString& module, const data::RecordValues& values)
    {
        try {
            rules->save(module, values);
        } catch (const data::RecordRefused& refused) {
            return refused.text();
        }
        return {};
    }

    /// Says yes to the deletion, and takes the report.
    void agree(const QString& what, int sons)
    {
        project.dialogues.expectConfirm(u"Voulez-vous supprimer définitivement %1 > ?\nAinsi que les %2 enregistrement(s) fils"_s.arg(
                                            what, QString::number(sons)),
                                        u"Herbora"_s, true, BoxIcon::Question, Answer::No);
        project.dialogues.expectLike({u"supprimés au Total"_s}, u"Herbora: Rapport de Suppression"_s, BoxIcon::Information);
    }

    TestProject project;
    std::unique_ptr<data::RecordRules> rules;
};

TEST_F(RecordRulesTest, SavesWithStamps)
{
    const qint32 id = rules->save(u"Images"_s, {.individu = 2, .keyParent = u"2-Individus"_s,
                                                .values = {{u"Fichier"_s, u"c.jpg"_s}}});
    project.clock.time = project.clock.time.addSecs(1);
    rules->save(u"Images"_s, {.id = id, .individu = 2, .keyParent = u"2-Individus"_s,
                              .values = {{u"Légende"_s, u"L\"été\""_s}}});
    EXPECT_EQ(project.rows(u"SELECT Fichier,Légende,[ID Individus],KeyParent,DateCreate,DateModify,Locked FROM Images WHERE [ID Images]="_s
                           + QString::number(id)),
              QStringList{u"c.jpg|L\"été\"|2|2-Individus|2026/03/07 14:05:09|2026/03/07 14:05:10|false"_s});
}

TEST_F(RecordRulesTest, RefusesWithTheFirstMessageThatApplies)
{
    const data::RecordValues nothing{.individu = 1, .values = {{u"Fichier"_s, QVariant()}}, .valid = false};
    EXPECT_EQ(refusal(u"Images"_s, nothing), u"Valeur Nulle non autorisée pour ce champ"_s);
    EXPECT_EQ(refusal(u"Collecteurs"_s, {}), u"Erreur Système: ce n'est pas un module sauvegardable"_s);
    rules->isConnected = [](const QString& module) { return module != u"Images"; };
    EXPECT_EQ(refusal(u"Images"_s, {.id = 1, .individu = 1}), u"Erreur Système: ce n'est pas un module sauvegardable"_s);
    EXPECT_EQ(refusal(u"Images"_s, nothing), u"Valeur Nulle non autorisée pour ce champ"_s);
    rules->isConnected = {};
    const data::RecordValues good{.id = 1, .individu = 1, .values = {{u"Légende"_s, u"x"_s}}};
    rules->setModuleLocked(u"Images"_s, true);
    EXPECT_EQ(refusal(u"Images"_s, good), u"Erreur d'accès: le Module est actuellement verrouillé"_s);
    rules->setModuleLocked(u"Images"_s, false);
    rules->setLocked(u"Images"_s, 1, true);
    EXPECT_EQ(refusal(u"Images"_s, good), u"Erreur d'accès: l'enregistrement est actuellement verrouillé"_s);
    rules->setLocked(u"Images"_s, 1, false);
    data::RecordValues invalid = good;
    invalid.valid = false;
    EXPECT_EQ(refusal(u"Images"_s, invalid),
              u"Erreur d'écriture: L'enregistrement n'est pas valide. Impossible d'écrire les données dans la base "_s);
    data::RecordValues orphan{.individu = 99, .values = {{u"Fichier"_s, u"z.jpg"_s}}};
    EXPECT_TRUE(refusal(u"Images"_s, orphan)
                    .startsWith(u"Erreur d'écriture: La sauvegarde a échoué ! Le serveur a bloqué la transaction"_s));
    EXPECT_EQ(refusal(u"Images"_s, good), QString());
}

TEST_F(RecordRulesTest, DeletesAnIndividualWithAllItOwns)
{
    project.dialogues.expectConfirm(u"Voulez-vous supprimer définitivement l'enregistrement < Individus - ID1 > ?\n"
                                    "Ainsi que les 3 enregistrement(s) fils"_s,
                                    u"Herbora"_s, true, BoxIcon::Question, Answer::No);
    const QString report = u"Suppression attendue : 1 enregistrement(s) du Module < Individus >\n"
                           "--> 1 enregistrement(s) supprimé(s) \n"
                           "Suppression attendue:3 enregistrement(s) fils\n"
                           "--> 1 enregistrement(s) du module < Déterminations >\n"
                           "--> 2 enregistrement(s) du module < Images >\n"
                           "3 enregistrement(s) fils supprimés\n"
                           "4 enregistrement(s) supprimés au Total"_s;
    project.dialogues.expectTell(report, u"Herbora: Rapport de Suppression"_s);
    EXPECT_EQ(rules->deleteRecords(u"Individus"_s, {1}), report);
    EXPECT_EQ(project.rows(u"SELECT [ID Individus] FROM Individus"_s), QStringList{u"2"_s});
    EXPECT_EQ(project.rows(u"SELECT [ID Individus] FROM Déterminations"_s), QStringList{u"2"_s});
    EXPECT_EQ(project.single(u"SELECT Count(*) FROM Images"_s).toInt(), 0);
}

TEST_F(RecordRulesTest, DeletesDescendantsLevelByLevelAndClearsLinks)
{
    project.dialogues.expectConfirm(u"Voulez-vous supprimer définitivement l'enregistrement < Déterminations - ID1 > ?\n"
                                    "Ainsi que les 2 enregistrement(s) fils"_s,
                                    u"Herbora"_s, true, BoxIcon::Question, Answer::No);
    project.dialogues.expectTell(u"Suppression attendue : 1 enregistrement(s) du Module < Déterminations >\n"
                                 "--> 1 enregistrement(s) supprimé(s) \n"
                                 "Suppression attendue:2 enregistrement(s) fils\n"
                                 "--> 1 enregistrement(s) du module < Images >\n"
                                 "--> 1 enregistrement(s) du module < Images >\n"
                                 "2 enregistrement(s) fils supprimés\n"
                                 "3 enregistrement(s) supprimés au Total"_s,
                                 u"Herbora: Rapport de Suppression"_s);
    EXPECT_FALSE(rules->deleteRecords(u"Déterminations"_s, {1}).isEmpty());
    EXPECT_EQ(project.rows(u"SELECT [ID Individus],[ID Déterminations],DateModify FROM Individus"_s),
              (QStringList{u"1|∅|2026/03/07 14:05:09"_s, u"2|2|∅"_s}));
}

TEST_F(RecordRulesTest, LeavesLockedRecordsAndRefusals)
{
    rules->setLocked(u"Déterminations"_s, 1, true);
    project.dialogues.expectConfirm(u"Voulez-vous supprimer définitivement les 2 enregistrement(s) du module < Déterminations > ?\n"
                                    "Ainsi que les 2 enregistrement(s) fils"_s,
                                    u"Herbora"_s, true, BoxIcon::Question, Answer::No);
    project.dialogues.expectTell(u"Suppression attendue : 2 enregistrement(s) du Module < Déterminations >\n"
                                 "--> 1 enregistrement(s) supprimé(s) \n"
                                 "Suppression attendue:2 enregistrement(s) fils\n"
                                 "0 enregistrement(s) fils supprimés\n"
                                 "1 enregistrement(s) supprimés au Total"_s,
                                 u"Herbora: Rapport de Suppression"_s);
    rules->deleteRecords(u"Déterminations"_s, {1, 2});
    EXPECT_EQ(project.rows(u"SELECT [ID Déterminations] FROM Déterminations"_s), QStringList{u"1"_s});

    project.dialogues.expectConfirm(u"Voulez-vous supprimer définitivement l'enregistrement < Individus - ID2 > ?"_s,
                                    u"Herbora"_s, false, BoxIcon::Question, Answer::No);
    EXPECT_EQ(rules->deleteRecords(u"Individus"_s, {2}), QString());
    EXPECT_EQ(project.single(u"SELECT Count(*) FROM Individus"_s).toInt(), 2);
}

TEST_F(RecordRulesTest, WhatAnotherIndividualOwnsStays)
{
    project.db().Execute(u"INSERT INTO Images ([ID Individus],[Fichier],[KeyParent]) VALUES (2,\"c.jpg\",\"1-Individus\")"_s);
    project.db().Execute(u"INSERT INTO Images ([ID Individus],[Fichier],[KeyParent]) VALUES (2,\"d.jpg\",\"1-Déterminations\")"_s);
    agree(u"l'enregistrement < Individus - ID1"_s, 3);
    EXPECT_TRUE(rules->deleteRecords(u"Individus"_s, {1}).endsWith(u"\n4 enregistrement(s) supprimés au Total"_s));
    EXPECT_EQ(project.rows(u"SELECT Fichier, KeyParent FROM Images ORDER BY Fichier"_s),
              (QStringList{u"c.jpg|1-Individus"_s, u"d.jpg|1-Déterminations"_s}));
}

TEST_F(RecordRulesTest, ReportsALineForEachModuleAndLevel)
{
    project.db().Execute(u"INSERT INTO Déterminations ([ID Individus],[ID Taxons],[KeyParent]) VALUES (1,1,\"1-Images\")"_s);
    project.db().Execute(u"INSERT INTO Images ([ID Individus],[Fichier],[KeyParent]) VALUES (1,\"e.jpg\",\"2-Images\")"_s);
    agree(u"l'enregistrement < Déterminations - ID1"_s, 4);
    EXPECT_EQ(rules->deleteRecords(u"Déterminations"_s, {1}),
              u"Suppression attendue : 1 enregistrement(s) du Module < Déterminations >\n"
              "--> 1 enregistrement(s) supprimé(s) \n"
              "Suppression attendue:4 enregistrement(s) fils\n"
              "--> 1 enregistrement(s) du module < Images >\n"
              "--> 1 enregistrement(s) du module < Déterminations >\n"
              "--> 1 enregistrement(s) du module < Images >\n"
              "--> 1 enregistrement(s) du module < Images >\n"
              "4 enregistrement(s) fils supprimés\n"
              "5 enregistrement(s) supprimés au Total"_s);
}

TEST_F(RecordRulesTest, ARingOfParentsAndARepeatedRecordCountOnce)
{
    project.db().Execute(u"UPDATE Images SET [KeyParent]=\"2-Images\" WHERE [ID Images]=1"_s);
    agree(u"l'enregistrement < Images - ID1"_s, 1);
    EXPECT_TRUE(rules->deleteRecords(u"Images"_s, {1, 1}).endsWith(u"\n2 enregistrement(s) supprimés au Total"_s));
    EXPECT_EQ(project.single(u"SELECT Count(*) FROM Images"_s).toInt(), 0);
}

TEST_F(RecordRulesTest, AFailureInTheMiddleLeavesEverything)
{
    project.db().store().run(u"CREATE TRIGGER refus BEFORE DELETE ON Images WHEN OLD.Fichier='b.jpg'"
                             " BEGIN SELECT RAISE(ABORT,'refus'); END"_s);
    project.dialogues.expectConfirm(u"Voulez-vous supprimer définitivement les 2 enregistrement(s) du module < Déterminations > ?\n"
                                    "Ainsi que les 2 enregistrement(s) fils"_s,
                                    u"Herbora"_s, true, BoxIcon::Question, Answer::No);
    project.dialogues.expectLike({u"La suppression a échoué, aucun enregistrement n'a été supprimé :"_s}, u"Herbora"_s,
                                 BoxIcon::Stop);
    EXPECT_EQ(rules->deleteRecords(u"Déterminations"_s, {1, 2}), QString());
    EXPECT_EQ(project.rows(u"SELECT [ID Déterminations] FROM Déterminations"_s), (QStringList{u"1"_s, u"2"_s}));
    EXPECT_EQ(project.rows(u"SELECT KeyParent FROM Images"_s), (QStringList{u"1-Déterminations"_s, u"1-Images"_s}));
    EXPECT_FALSE(project.db().inOperation());
}

TEST(Confirmations, AreAskedByTheirCode)
{
    support::ScriptedDialogues dialogues;
    dialogues.expect({u"L'observation courante a été modifiée...\nVoulez-vous enregistrer les modifications ?"_s,
                      u"Confirmation d'enregistrement"_s, BoxIcon::Question, platform::BoxButtons::YesNoCancel, Answer::Yes},
                     Answer::Cancel);
    EXPECT_EQ(data::confirmation(dialogues, 1), Answer::Cancel);
    dialogues.expectConfirm(u"La structure a été modifiée,  voulez-vous enregistrer les modifications ?"_s,
                            u"Modification de la structure"_s, true, BoxIcon::Stop);
    EXPECT_TRUE(data::confirmed(dialogues, 10));
    dialogues.expectConfirm(u"La propriété 'a %1 b' a été modifiée. Voulez-vous enregistrez les changements ?"_s,
                            u"Gestion des propriétés"_s, false);
    EXPECT_FALSE(data::confirmed(dialogues, 400, u"a %1 b"_s));
}

} // namespace
