#include "editing/IndividualEditing.h"

#include "editing/ProjectRecords.h"
#include "editing/ReferenceSearch.h"
#include "support/Project.h"

namespace {

using namespace Qt::StringLiterals;
using editing::EditedRecord;
using editing::EditNode;
using editing::IndividualEditing;
using editing::RefreshScope;
using editing::SaveOutcome;
using platform::Answer;
using platform::BoxButtons;
using platform::BoxIcon;
using support::TestProject;

const QString titleSave = u"Enregistrements des propriétés"_s;

/// Individual 1 with a determination (1), an image (1) under it and another (2) under the individual; individual 2.
class IndividualEditingTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        project.create();
        auto& db = project.db();
        db.Execute(u"INSERT INTO Taxons ([Taxon],[Nom Complet]) VALUES (\"Rosaceae\",\"Rosaceae\")"_s);
        db.Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"A1\")"_s);
        db.Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"A2\")"_s);
        db.Execute(u"INSERT INTO Déterminations ([ID Individus],[ID Taxons],[KeyParent]) VALUES (1,1,\"1-Individus\")"_s);
        db.Execute(u"INSERT INTO Images ([ID Individus],[Fichier],[KeyParent]) VALUES (1,\"a.jpg\",\"1-Déterminations\")"_s);
        db.Execute(u"INSERT INTO Images ([ID Individus],[Fichier],[KeyParent]) VALUES (1,\"b.jpg\",\"1-Individus\")"_s);
        start();
    }
    void TearDown() override { project.dialogues.verify(); }

    void start()
    {
        auto& session = project.session;
        rules = std::make_unique<data::RecordRules>(project.db(), session.dictionary(), project.clock, project.dialogues);
        editing::EditingContext context{[this] { return ++last; }, std::make_shared<editing::IdentifierNames>(),
                                        std::make_shared<editing::ProjectRecords>(project.db(), session.dictionary(),
                                                                                  session.properties())};
        edit = std::make_unique<IndividualEditing>(
            editing::EditingTools{project.db(), session.dictionary(), session.properties(), *rules, project.clock,
                                  project.dialogues, context});
    }
    /// Records, groups and offers, indented by their depth.
    QStringList tree() const
    {
        QStringList lines;
        const std::function<void(const EditNode&, int)> walk = [&](const EditNode& node, int depth) {
            if (node.parent)
                lines << QString(depth * 2, u' ') + node.key + u" = "_s + edit->nodeCaption(node);
            for (const auto& child : node.children)
                walk(*child, depth + (node.parent ? 1 : 0));
        };
        walk(edit->tree(), 0);
        return lines;
    }
    EditedRecord& record(const QString& key)
    {
        EditedRecord* found = edit->record(key);
        if (!found)
            throw std::runtime_error("no record " + key.toStdString());
        return *found;
    }
    editing::Cl_Edition& field(const QString& key, const QString& column)
    {
        return *edit->form(record(key)).Item(column);
    }
    void type(const QString& key, const QString& column, const QVariant& value)
    {
        edit->type(record(key), field(key, column), value);
    }
    void expectSave(const QString& which, Answer answer = Answer::Yes, BoxButtons buttons = BoxButtons::YesNo)
    {
        project.dialogues.expect({u"Voulez-vous enregistrez les modifications apportées "_s + which, titleSave,
                                  BoxIcon::Question, buttons},
                                 answer);
    }

    TestProject project;
    std::unique_ptr<data::RecordRules> rules;
    std::unique_ptr<IndividualEditing> edit;
    qint32 last = 0;
};

TEST_F(IndividualEditingTest, TheTreeGroupsTheRecordsByModuleUnderTheirParents)
{
    ASSERT_TRUE(edit->EditItems(IndividualEditing::levelPath(u"Individus"_s, {1, 2})));
    EXPECT_EQ(tree(), (QStringList{
                          u"1-Individus = Individu N° 1 : A1"_s,
                          u"  Déterminations@1-Individus = Détermination (1)"_s,
                          u"    1-Déterminations = N° 1 : 1"_s,
                          u"      Images@1-Déterminations = Image (1)"_s,
                          u"        1-Images = N° 1 : A.jpg"_s,
                          u"        N = : < Ajout Images>"_s,
                          u"    N = : < Ajout Déterminations>"_s,
                          u"  Images@1-Individus = Image (1)"_s,
                          u"    2-Images = N° 2 : B.jpg"_s,
                          u"    N = : < Ajout Images>"_s,
                          u"help = Aide"_s,
                      }));
    EXPECT_EQ(edit->current()->key, u"1-Individus"_s);
    EXPECT_FALSE(edit->ToSave());
}

TEST_F(IndividualEditingTest, ThePathNamesTheRecordsOfBothLevels)
{
    EXPECT_EQ(IndividualEditing::levelPath(u"Images"_s, {2, 1}), u"1-Individus\\2-Images;2;1"_s);
    ASSERT_TRUE(edit->EditItems(u"1-Individus\\2-Images;2;1"_s));
    EXPECT_EQ(edit->current()->key, u"2-Images"_s);
    EXPECT_EQ(edit->listText(), u"1 / 2"_s);
    EXPECT_TRUE(edit->go(1));
    EXPECT_EQ(edit->current()->key, u"1-Images"_s);
    EXPECT_FALSE(edit->go(1));
    ASSERT_TRUE(edit->EditItems(u"1-Déterminations"_s)); // the key of one record
    EXPECT_EQ(edit->current()->key, u"1-Déterminations"_s);
    ASSERT_TRUE(edit->EditItems(u"1-Individus;2\\2-Images;N"_s));
    EXPECT_EQ(edit->CurrentIndividu(), 2);
    EXPECT_EQ(edit->current()->key, u"HBTEMP1-Images"_s);
    EXPECT_EQ(edit->current()->parent, u"2-Individus"_s);
    EXPECT_FALSE(edit->EditItems(u"1-Individus;77"_s));
}

TEST_F(IndividualEditingTest, TheOtherListWalksTheTreeAndTheListCanBeChosenFrom)
{
    ASSERT_TRUE(edit->EditItems(u"1-Individus;1;2"_s));
    QStringList walked;
    while (edit->goOther(1))
        walked << edit->current()->key;
    EXPECT_EQ(walked, (QStringList{u"1-Déterminations"_s, u"1-Images"_s, u"2-Images"_s}));
    EXPECT_TRUE(edit->selectParent());
    EXPECT_EQ(edit->current()->key, u"1-Individus"_s);
    project.dialogues.expectChoice({u"Liste des enregistrements"_s, u"Sélectionner l'objet à atteindre"_s,
                                    u"Enregistrement"_s, {u"Individu N° 1 : A1"_s, u"Individu N° 2 : A2"_s}, false},
                                   QList<int>{1});
    EXPECT_TRUE(edit->chooseRecord());
    EXPECT_EQ(edit->CurrentIndividu(), 2);
}

TEST_F(IndividualEditingTest, RowsSayWhatCannotBeWritten)
{
    ASSERT_TRUE(edit->EditItems(u"2-Images"_s));
    field(u"2-Images"_s, u"Légende"_s).setLocked(true);
    type(u"2-Images"_s, u"Fichier"_s, QString());
    type(u"2-Images"_s, u"TaillePixel"_s, u"grand"_s);
    QStringList captions;
    for (const editing::FormRow& row : edit->rows(record(u"2-Images"_s)))
        captions << row.caption;
    EXPECT_EQ(captions, (QStringList{u"Fichier : < Erreur: Valeur nulle non autorisée pour ce champ >"_s,
                                     u"Légende < Lecture seule > "_s, u"Auteur"_s, u"Date de prise de vue"_s,
                                     u"Taille du pixel : < Erreur: Ce n'est pas un nombre >"_s,
                                     u"Date de création de l'objet < Lecture seule >"_s,
                                     u"Date de modification de l'objet < Lecture seule >"_s}));
    rules->setModuleLocked(u"Images"_s, true);
    EXPECT_EQ(edit->rows(record(u"2-Images"_s)).at(2).caption, u"Auteur < Verrouillé par la base > "_s);
    rules->setModuleLocked(u"Images"_s, false);
    project.db().Execute(u"UPDATE Images SET [Locked]=True WHERE [ID Images]=1"_s);
    ASSERT_EQ(field(u"2-Images"_s, u"TaillePixel"_s).value(), u"grand"_s); // stays as typed
    edit->Query_Refresh();
    EXPECT_EQ(edit->heading(record(u"1-Images"_s)), u"< Lecture seule > - L'enregistrement est verrouillé"_s);
    EXPECT_TRUE(edit->isReadOnly(record(u"1-Images"_s), field(u"1-Images"_s, u"Fichier"_s)));
}

TEST_F(IndividualEditingTest, OneSaveWritesParentsBeforeChildrenAndReplacesTheirKeys)
{
    ASSERT_TRUE(edit->EditItems(u"1-Individus;N"_s));
    type(u"HBTEMP1-Individus"_s, u"Numéro"_s, u"B7"_s);
    ASSERT_TRUE(edit->add(u"Déterminations"_s));
    type(u"HBTEMP2-Déterminations"_s, u"ID Taxons"_s, 1);
    ASSERT_TRUE(edit->add(u"Images"_s, edit->current()));
    type(u"HBTEMP3-Images"_s, u"Fichier"_s, u"c.jpg"_s);
    EXPECT_TRUE(edit->ToSave());
    QStringList told;
    edit->written = [&](const QStringList& modules) { told = modules; };
    expectSave(u" aux propriétés modifiées"_s);
    project.dialogues.expectConfirm(
        u"Voulez-vous affecter la propriété \r\nau champ ID Déterminations de l'Individu ?"_s, titleSave, true);
    EXPECT_EQ(edit->SavedItem(true), SaveOutcome::Saved);
    EXPECT_EQ(project.rows(u"SELECT [ID Individus],[Numéro],[ID Déterminations],[KeyParent],[DateCreate] FROM Individus WHERE [ID Individus]>2"_s),
              QStringList{u"3|B7|2|∅|2026/03/07 14:05:09"_s});
    EXPECT_EQ(project.rows(u"SELECT [ID Individus],[KeyParent] FROM Déterminations WHERE [ID Déterminations]=2"_s),
              QStringList{u"3|3-Individus"_s});
    EXPECT_EQ(project.rows(u"SELECT [ID Individus],[KeyParent] FROM Images WHERE [ID Images]=3"_s),
              QStringList{u"3|2-Déterminations"_s});
    EXPECT_FALSE(edit->ToSave());
    EXPECT_EQ(edit->current()->key, u"3-Images"_s);
    EXPECT_EQ(edit->CurrentIndividu(), 3);
    EXPECT_TRUE(told.contains(u"Images"_s));
    // What is linked already is not asked again.
    type(u"2-Déterminations"_s, u"Commentaire"_s, u"sûr"_s);
    expectSave(u"à la propriété < Détermination - N° 2 >"_s);
    EXPECT_EQ(edit->SavedItem(true), SaveOutcome::Saved);
}

TEST_F(IndividualEditingTest, ARefusedRecordTakesTheWholeSaveBack)
{
    project.db().AppendIndex(u"Images"_s, {.Name = u"Seul"_s, .Fields = {{u"Fichier"_s}}, .Unique = true});
    ASSERT_TRUE(edit->EditItems(u"1-Individus;1"_s));
    type(u"1-Individus"_s, u"Numéro"_s, u"changé"_s);
    type(u"2-Images"_s, u"Fichier"_s, u"a.jpg"_s);
    expectSave(u" aux propriétés modifiées"_s);
    project.dialogues.expectLike({u"Erreur d'écriture: La sauvegarde a échoué ! Le serveur a bloqué la transaction"_s},
                                 titleSave, BoxIcon::Stop);
    EXPECT_EQ(edit->SavedItem(true), SaveOutcome::Refused);
    EXPECT_EQ(project.single(u"SELECT [Numéro] FROM Individus WHERE [ID Individus]=1"_s), u"A1"_s);
    EXPECT_TRUE(edit->ToSave());
    EXPECT_EQ(field(u"1-Individus"_s, u"Numéro"_s).value(), u"changé"_s);
}

TEST_F(IndividualEditingTest, TheFirstInvalidFieldStopsTheSave)
{
    ASSERT_TRUE(edit->EditItems(u"1-Individus;1"_s));
    type(u"1-Individus"_s, u"Altitude"_s, u"haut"_s);
    expectSave(u"à la propriété < Individu - N° 1 >"_s);
    project.dialogues.expectTell(u"Erreur dans le champ: Altitude\nCe n'est pas un nombre"_s, u"Erreur de Validation"_s,
                                 BoxIcon::Warning);
    QString refused;
    edit->fieldRefused = [&](editing::Cl_Edition& field) { refused = field.champ(); };
    EXPECT_EQ(edit->SavedItem(true), SaveOutcome::Refused);
    EXPECT_EQ(refused, u"Altitude"_s);
    type(u"1-Individus"_s, u"Altitude"_s, u"1 250,5"_s);
    expectSave(u"à la propriété < Individu - N° 1 >"_s);
    EXPECT_EQ(edit->SavedItem(true), SaveOutcome::Saved);
    EXPECT_EQ(project.single(u"SELECT [Altitude] FROM Individus WHERE [ID Individus]=1"_s), 1250.5);
}

TEST_F(IndividualEditingTest, LeavingAsksAndMayGoBack)
{
    ASSERT_TRUE(edit->EditItems(u"1-Individus;1;2"_s));
    type(u"1-Individus"_s, u"Habitat"_s, u"forêt"_s);
    const QString which = u"à la propriété < Individu - N° 1 >"_s;
    expectSave(which, Answer::Cancel, BoxButtons::YesNoCancel);
    EXPECT_FALSE(edit->go(1));
    EXPECT_EQ(field(u"1-Individus"_s, u"Habitat"_s).value(), u"forêt"_s);
    expectSave(which, Answer::No, BoxButtons::YesNoCancel);
    EXPECT_TRUE(edit->go(1));
    EXPECT_EQ(edit->CurrentIndividu(), 2);
    EXPECT_TRUE(edit->go(-1));
    EXPECT_FALSE(field(u"1-Individus"_s, u"Habitat"_s).value().isValid());
}

TEST_F(IndividualEditingTest, ChangedRecordsAreNotLocked)
{
    ASSERT_TRUE(edit->EditItems(u"1-Individus;1"_s));
    type(u"2-Images"_s, u"Légende"_s, u"fleur"_s);
    project.dialogues.expectTell(u"Impossible de verrouiller un objet en cours de modifications !\r"
                                 "Enregistrer ou re-initialiser les valeurs d'origine avant de verrouiller l'objet"_s,
                                 u"Verrouillage"_s, BoxIcon::Warning);
    EXPECT_FALSE(edit->toggleLock(record(u"2-Images"_s)));
    EXPECT_TRUE(edit->toggleLock(record(u"1-Images"_s)));
    EXPECT_EQ(project.single(u"SELECT [Locked] FROM Images WHERE [ID Images]=1"_s), true);
    type(u"1-Images"_s, u"Légende"_s, u"fruit"_s);
    EXPECT_FALSE(record(u"1-Images"_s).Changed());
    EXPECT_TRUE(edit->toggleLock(record(u"1-Images"_s)));
    EXPECT_EQ(project.single(u"SELECT [Locked] FROM Images WHERE [ID Images]=1"_s), false);
}

TEST_F(IndividualEditingTest, AMoveChangesParentIndividualAndStamp)
{
    ASSERT_TRUE(edit->EditItems(u"1-Individus;1"_s));
    EXPECT_FALSE(edit->canMove(record(u"1-Déterminations"_s), u"1-Images"_s)); // under itself
    EXPECT_FALSE(edit->canMove(record(u"2-Images"_s), u"1-Individus"_s));      // where it is
    type(u"2-Images"_s, u"Légende"_s, u"feuille"_s);
    project.dialogues.expectConfirm(u"Changer le Parent de la propriété < ID2 > ?"_s, u"Changement de Relation"_s, true);
    EXPECT_TRUE(edit->changeParent(record(u"2-Images"_s), u"1-Déterminations"_s));
    EXPECT_EQ(project.rows(u"SELECT [KeyParent],[ID Individus],[DateModify],[Légende] FROM Images WHERE [ID Images]=2"_s),
              QStringList{u"1-Déterminations|1|2026/03/07 14:05:09|∅"_s});
    EXPECT_EQ(field(u"2-Images"_s, u"Légende"_s).value(), u"feuille"_s); // typed values stay
    EXPECT_TRUE(tree().contains(u"      Images@1-Déterminations = Image (2)"_s));
}

TEST_F(IndividualEditingTest, DeletionTakesDescendantsAlong)
{
    ASSERT_TRUE(edit->EditItems(u"1-Individus;1;2"_s));
    const QString title = rules->caption;
    project.dialogues.expectConfirm(u"Voulez-vous supprimer définitivement l'enregistrement < Déterminations - ID1 > ?\n"
                                    "Ainsi que les 1 enregistrement(s) fils"_s,
                                    title, true, BoxIcon::Question, Answer::No);
    project.dialogues.expectLike({u"1 enregistrement(s) supprimé(s)"_s, u"2 enregistrement(s) supprimés au Total"_s},
                                 title + u": Rapport de Suppression"_s, BoxIcon::Information);
    EXPECT_TRUE(edit->remove(record(u"1-Déterminations"_s)));
    EXPECT_FALSE(edit->record(u"1-Images"_s));
    EXPECT_EQ(edit->current()->key, u"1-Individus"_s);

    ASSERT_TRUE(edit->add(u"Images"_s));
    project.dialogues.expectConfirm(u"Supprimer définitivement la nouvelle propriété < Image - Ajout >"_s, title, true,
                                    BoxIcon::Question, Answer::No);
    EXPECT_TRUE(edit->remove(*edit->current()));
    EXPECT_EQ(edit->current()->key, u"1-Individus"_s);
}

TEST_F(IndividualEditingTest, DeletingTheIndividualShowsTheNextOfTheList)
{
    ASSERT_TRUE(edit->EditItems(u"1-Individus;1;2"_s));
    project.dialogues.expectConfirm(u"Voulez-vous supprimer définitivement l'enregistrement < Individus - ID1 > ?\n"
                                    "Ainsi que les 3 enregistrement(s) fils"_s,
                                    rules->caption, true, BoxIcon::Question, Answer::No);
    project.dialogues.expectLike({u"au Total"_s}, rules->caption + u": Rapport de Suppression"_s, BoxIcon::Information);
    EXPECT_TRUE(edit->remove(record(u"1-Individus"_s)));
    EXPECT_EQ(edit->CurrentIndividu(), 2);
    EXPECT_EQ(edit->listText(), u"1 / 1"_s);
}

TEST_F(IndividualEditingTest, RefreshAsksBeforeChangesAreLost)
{
    ASSERT_TRUE(edit->EditItems(u"1-Individus;1"_s));
    EXPECT_TRUE(edit->refresh(RefreshScope::All)); // nothing typed: no question
    const auto typed = [&] { type(u"1-Individus"_s, u"Numéro"_s, u"X"_s); };
    const QString title = u"Actualisation"_s;
    EXPECT_EQ(edit->refreshText(RefreshScope::Field, &field(u"1-Individus"_s, u"Numéro"_s)), u"Le champ 'Numéro'"_s);
    EXPECT_EQ(edit->refreshText(RefreshScope::Record), u"Le tableau 'Individu'"_s);
    EXPECT_EQ(edit->refreshText(RefreshScope::All), u"Tous les tableaux"_s);
    typed();
    project.dialogues.expectConfirm(
        u"Annuler les modifications apportées au champ Numéro et recharger la valeur initiale ?"_s, title, false);
    EXPECT_FALSE(edit->refresh(RefreshScope::Field, &field(u"1-Individus"_s, u"Numéro"_s)));
    project.dialogues.expectConfirm(
        u"Annuler les modifications apportées au champ Numéro et recharger la valeur initiale ?"_s, title, true);
    EXPECT_TRUE(edit->refresh(RefreshScope::Field, &field(u"1-Individus"_s, u"Numéro"_s)));
    EXPECT_EQ(field(u"1-Individus"_s, u"Numéro"_s).value(), u"A1"_s);
    typed();
    project.dialogues.expectConfirm(
        u"Annuler les modifications apportées au tableau Individu et recharger les valeurs initiales ?"_s, title, true);
    EXPECT_TRUE(edit->refresh(RefreshScope::Record));
    EXPECT_FALSE(edit->ToSave());
    typed();
    edit->add(u"Images"_s);
    project.dialogues.expectConfirm(u"Annuler toutes les modifications effectuées et recharger toutes les valeurs initiales depuis la base de données ?"_s,
                                    title, true);
    EXPECT_TRUE(edit->refresh(RefreshScope::All));
    EXPECT_FALSE(edit->record(u"HBTEMP1-Images"_s));
    EXPECT_EQ(field(u"1-Individus"_s, u"Numéro"_s).value(), u"A1"_s);
}

TEST_F(IndividualEditingTest, ANewIndividualIsEmptiedWithAllThatIsUnderIt)
{
    ASSERT_TRUE(edit->EditItems(u"1-Individus;N"_s));
    const QString root = edit->current()->key;
    type(root, u"Numéro"_s, u"X"_s);
    const QString image = edit->add(u"Images"_s)->key;
    type(image, u"Légende"_s, u"port"_s);
    project.dialogues.expectConfirm(u"Annuler toutes les modifications effectuées et recharger toutes les valeurs initiales depuis la base de données ?"_s,
                                    u"Actualisation"_s, true);
    EXPECT_TRUE(edit->refresh(RefreshScope::All));
    EXPECT_FALSE(edit->ToSave());
    EXPECT_FALSE(edit->record(image));
    EXPECT_EQ(edit->current()->key, root);
    EXPECT_FALSE(field(root, u"Numéro"_s).value().isValid());
}

TEST_F(IndividualEditingTest, ModelsKeepValuesForNewRecords)
{
    ASSERT_TRUE(edit->EditItems(u"1-Individus;1"_s));
    type(u"1-Individus"_s, u"Herbier"_s, u"RB;P"_s);
    type(u"1-Individus"_s, u"Habitat"_s, u"forêt\ndense"_s);
    type(u"1-Individus"_s, u"Longitude"_s, u"W012°30'00"_s);
    project.dialogues.expectInput(u"Ajout - Modèle"_s, u"Indiquez le nom unique de la nouvelle propriété 'Modèle'"_s, {},
                                  u"Mission"_s);
    const int id = edit->saveModel();
    ASSERT_GT(id, 0);
    EXPECT_EQ(project.session.properties().value(u"Modèle"_s, u"Individus"_s, u"Mission"_s),
              u"0-Individus;Individus.Numéro;A1\r\n0-Individus;Individus.Longitude;-12.5\r\n"
              "0-Individus;Individus.Habitat;forêt\u2028dense\r\n0-Individus;Individus.Herbier;RB;P"_s);
    project.session.properties().put(u"Modèle"_s, u"Individus"_s, u"Ancien"_s,
                                     u"0-Individus;Herbier;K\r\n0-Individus;Individus.ID Collecteurs;7\r\n0-Images;Légende;x\r\n0-Individus;Rien;1"_s);
    expectSave(u"à la propriété < Individu - N° 1 >"_s, Answer::No, BoxButtons::YesNoCancel);
    ASSERT_TRUE(edit->EditItems(u"1-Individus;N"_s));
    const platform::Choice choice{u"Modèle"_s, u"Sélectionnez le modèle que vous voulez utiliser"_s, u"Nom du Modèle"_s,
                                  {u"Ancien"_s, u"Mission"_s}, false};
    project.dialogues.expectChoice(choice, QList<int>{1});
    EXPECT_TRUE(edit->loadModel());
    const QString key = edit->current()->key;
    EXPECT_EQ(field(key, u"Herbier"_s).value(), u"RB;P"_s);
    EXPECT_EQ(field(key, u"Habitat"_s).value(), u"forêt\ndense"_s);
    EXPECT_EQ(field(key, u"Longitude"_s).value(), -12.5);
    project.dialogues.expectChoice(choice, QList<int>{0});
    EXPECT_TRUE(edit->loadModel());
    EXPECT_EQ(field(key, u"Herbier"_s).value(), u"K"_s);
    EXPECT_EQ(field(key, u"ID Collecteurs"_s).value(), 7);
    EXPECT_EQ(field(key, u"ID Collecteurs"_s).TextError(), QString());

    const QString rename = u"Renommer un modèle"_s;
    project.dialogues.expectInput(rename, u"Indiquer le nouveau nom du modèle"_s, u"Mission"_s, u"ancien"_s);
    project.dialogues.expectInput(rename, u"Nom déja existant ! Indiquez un nom unique pour la propriété du Module Individus"_s,
                                  u"ancien"_s, u"Expédition"_s);
    EXPECT_TRUE(edit->CLGabarit_Edit(id));
    project.dialogues.expectConfirm(u" Supprimer la propriété Expédition ?"_s, u"Gestion des propriétés"_s, true);
    EXPECT_TRUE(edit->CLGabarit_Delete(id));
    EXPECT_EQ(edit->models().size(), 1);
}

TEST_F(IndividualEditingTest, SeveralFilesBecomeSeveralRecords)
{
    ASSERT_TRUE(edit->EditItems(u"1-Individus;2\\2-Images;N"_s));
    EditedRecord& first = *edit->current();
    type(first.key, u"Légende"_s, u"port"_s);
    project.dialogues.expectConfirm(
        u"Voulez-vous appliquer le même masque de saisie au(x) 3 fichier(s) sélectionné(s) ?"_s, u"Ajout par lots"_s, true);
    EXPECT_TRUE(edit->addFiles(first, u"Fichier"_s, {u"1.jpg"_s, u"2.jpg"_s, u"3.jpg"_s}));
    expectSave(u" aux propriétés modifiées"_s);
    EXPECT_EQ(edit->SavedItem(true), SaveOutcome::Saved);
    EXPECT_EQ(project.rows(u"SELECT [Fichier],[Légende],[KeyParent] FROM Images WHERE [ID Individus]=2"_s),
              (QStringList{u"1.jpg|port|2-Individus"_s, u"2.jpg|port|2-Individus"_s, u"3.jpg|port|2-Individus"_s}));
}

TEST_F(IndividualEditingTest, AColumnMayBeCalledLikeAPlaceInTheForm)
{
    data::ModuleRecord plots;
    plots.name = plots.label = u"Parcelles"_s;
    for (const QString& name : {u"Nom"_s, u"0"_s}) {
        plots.fields << data::FieldRecord();
        plots.fields.last().column = plots.fields.last().caption = name;
    }
    ASSERT_TRUE(project.session.changeStructure([&] {
        project.session.dictionary().put(plots);
        project.session.dictionary().save();
    }));
    start();
    ASSERT_TRUE(edit->EditItems(u"1-Individus;2\\2-Parcelles;N"_s));
    EXPECT_TRUE(edit->addFiles(*edit->current(), u"0"_s, {u"a"_s}));
    const editing::Cl_Editions& form = edit->form(*edit->current());
    EXPECT_FALSE(form.Item(form.Index(u"Nom"_s))->value().isValid());
    EXPECT_EQ(form.Item(form.Index(u"0"_s))->value(), u"a"_s);
}

TEST_F(IndividualEditingTest, AnotherRecordMayTakeTheValuesOver)
{
    ASSERT_TRUE(edit->EditItems(u"2-Images"_s));
    ASSERT_TRUE(edit->addAnother(true));
    const QString key = edit->current()->key;
    EXPECT_EQ(field(key, u"Fichier"_s).value(), u"b.jpg"_s);
    EXPECT_EQ(edit->current()->parent, u"1-Individus"_s);
    ASSERT_TRUE(edit->addAnother(false));
    EXPECT_FALSE(field(edit->current()->key, u"Fichier"_s).value().isValid());
    EXPECT_EQ(edit->previousValue(*edit->current(), field(edit->current()->key, u"Fichier"_s)), u"b.jpg"_s);
}

TEST_F(IndividualEditingTest, ADraftBringsBackWhatWasTyped)
{
    ASSERT_TRUE(edit->EditItems(u"1-Individus;2;1"_s));
    EXPECT_TRUE(edit->draft().isEmpty());
    ASSERT_TRUE(edit->go(1));
    type(u"1-Individus"_s, u"DateRécolte"_s, u"hier"_s); // no date: it is kept all the same
    ASSERT_TRUE(edit->add(u"Images"_s, edit->record(u"1-Déterminations"_s)));
    type(u"HBTEMP1-Images"_s, u"Fichier"_s, u"neuf.jpg"_s);
    const QJsonObject draft = edit->draft();
    start(); // as after a crash
    ASSERT_TRUE(edit->restoreDraft(draft));
    EXPECT_EQ(edit->current()->key, u"HBTEMP1-Images"_s);
    EXPECT_EQ(field(u"1-Individus"_s, u"DateRécolte"_s).value(), u"hier"_s);
    EXPECT_FALSE(field(u"1-Individus"_s, u"DateRécolte"_s).TextError().isEmpty());
    EXPECT_EQ(field(u"HBTEMP1-Images"_s, u"Fichier"_s).value(), u"neuf.jpg"_s);
    EXPECT_EQ(edit->listText(), u"2 / 2"_s);
    EXPECT_EQ(edit->node(u"HBTEMP1-Images"_s)->parent->key, u"Images@1-Déterminations"_s);
}

TEST(FieldInputTest, AValueThatIsGivenOnceIsRefusedAtTheSecondRecord)
{
    TestProject project;
    project.create();
    project.db().Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"A1\")"_s);
    qint32 last = 0;
    editing::Cl_Edition field({[&last] { return ++last; }, nullptr, nullptr});
    field.setCtype(3);
    field.setNomModule(u"Individus"_s);
    field.setChamp(u"Numéro"_s);
    field.ChpEdition()->ChampUnique = true;
    const editing::FieldInput input(&project.db());
    input.take(field, u"a1"_s);
    EXPECT_EQ(field.TextError(), u"Cette valeur est déjà celle de l'enregistrement N° 1"_s);
    input.take(field, u"A2"_s);
    EXPECT_EQ(field.TextError(), QString());
    field.ChpEdition()->IDItem = 1; // the record itself
    input.take(field, u"A1"_s);
    EXPECT_EQ(field.TextError(), QString());
}

TEST(FieldInputTest, WhatIsTypedIsJudgedByTypeAndColumn)
{
    TestProject project;
    project.create();
    auto& db = project.db();
    jet::Field altitude = *db.schema().table(u"Individus"_s)->field(u"Altitude"_s);
    altitude.ValidationRule = u">0 And <9000"_s;
    altitude.ValidationText = u"Altitude impossible"_s;
    db.ChangeField(u"Individus"_s, altitude);
    const struct {
        int type;
        QString column, typed;
        QVariant value;
        QString error;
    } cases[] = {
        {5, u"Altitude"_s, u"12,5"_s, 12.5, {}},
        {5, u"Altitude"_s, u"9001"_s, 9001.0, u"Altitude impossible"_s},
        {5, u"Altitude"_s, u"  "_s, {}, {}},
        {5, u"Altitude"_s, u"12a"_s, u"12a"_s, u"Ce n'est pas un nombre"_s},
        {6, u"Rien"_s, u"2,5"_s, 2.5, u"Un nombre entier est attendu"_s},
        {7, u"DateRécolte"_s, u"2001/3/6"_s, u"2001/03/06"_s, {}},
        {7, u"DateRécolte"_s, u"jadis"_s, u"jadis"_s, u"Ce n'est pas une date. Exemples : 2001, 2001/03, 2001/03/06"_s},
        {1, u"Longitude"_s, u"W12°30"_s, -12.5, {}},
        {1, u"Longitude"_s, u"ouest"_s, u"ouest"_s, u"Ce n'est pas une longitude. Exemples : W012°30'00, -12,5"_s},
        {1, u"Longitude"_s, u"12° 30' O"_s, -12.5, {}}, // the hemisphere as it is printed in French
        {1, u"Longitude"_s, u"O 12,5"_s, -12.5, {}},
        {1, u"Longitude"_s, u"1 30"_s, 1.5, {}},
        {1, u"Longitude"_s, u"12° 30' N"_s, u"12° 30' N"_s, u"Ce n'est pas une longitude. Exemples : W012°30'00, -12,5"_s},
        {2, u"Latitude"_s, u"-5°70'"_s, -(6 + 10 / 60.0), {}},
        {2, u"Latitude"_s, u"N 95°00'"_s, u"N 95°00'"_s, u"Ce n'est pas une latitude. Exemples : N05°07'30, 5,125"_s},
        {2, u"Latitude"_s, u"91"_s, 91.0, u"Une latitude est comprise entre -90 et 90 degrés"_s},
        {3, u"Numéro"_s, u" e\u0301te\u0301 "_s, u"été"_s, {}},
        {3, u"Numéro"_s, QString(256, u'x'), QString(256, u'x'), u"Texte trop long : 255 caractères au plus"_s},
        {4, u"Rien"_s, u"oui"_s, u"True"_s, {}},
    };
    qint32 last = 0;
    const editing::FieldInput input(&db);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed.toStdString());
        editing::Cl_Edition field({[&last] { return ++last; }, nullptr, nullptr});
        field.setCtype(c.type);
        field.setNomModule(u"Individus"_s);
        field.setChamp(c.column);
        input.take(field, c.typed);
        EXPECT_EQ(field.value(), c.value);
        EXPECT_EQ(field.TextError(), c.error);
        EXPECT_EQ(field.Changed(), c.value.isValid());
    }
}

TEST(ReferenceSearchTest, NamesAreFoundByTheirBeginning)
{
    TestProject project;
    project.create();
    auto& db = project.db();
    for (const QString& name : {u"Quercus"_s, u"Quercus robur"_s, u"Quercus*"_s, u"Rosa"_s})
        db.Execute(u"INSERT INTO Taxons ([Taxon],[Nom Complet]) VALUES (\"x\",\""_s + name + u"\")"_s);
    db.Execute(u"INSERT INTO Collecteurs ([Collecteur],[Initiales]) VALUES (\"Martin, Rose\",\"RM\")"_s);
    db.Execute(u"INSERT INTO Collecteurs ([Collecteur],[Initiales]) VALUES (\"Roux\",\"P.R.\")"_s);
    db.Execute(u"INSERT INTO Localités ([Localité],[LongDD],[LatDD],[Nom Entier]) VALUES (\"Saül\",1,2,\"Guyane - Saül\")"_s);
    db.Execute(u"INSERT INTO Localités ([Localité],[LongDD],[LatDD],[ID Type]) VALUES (\"Saül carte\",1,2,-1)"_s);
    const editing::ReferenceSearch search(db);
    const auto names = [&](int type, const QString& typed) {
        QStringList list;
        for (const auto& match : search.matches(type, typed))
            list << match.name;
        return list;
    };
    EXPECT_EQ(names(15, u"quercus "_s).size(), 3);
    EXPECT_EQ(names(15, u"Quercus*"_s), QStringList{u"Quercus*"_s});
    EXPECT_EQ(names(15, {}).size(), 4);
    EXPECT_EQ(names(13, u"r"_s), (QStringList{u"Roux"_s, u"Martin, Rose"_s}));
    EXPECT_EQ(names(14, u"sa"_s), QStringList{u"Guyane - Saül"_s});
    EXPECT_EQ(names(15, u"Zea"_s), QStringList());
}

} // namespace
