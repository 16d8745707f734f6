#include "ReferenceFixture.h"

namespace {

using namespace Qt::StringLiterals;
using platform::Answer;
using platform::BoxIcon;

/// 1 Rosaceae > 2 Rosa > 3 Rosa canina > 4 var. alba; 5 Rubus > 6 Rubus idaeus; 7 Fabaceae.
class TaxonTest : public ReferenceTest {
protected:
    void SetUp() override
    {
        ReferenceTest::SetUp();
        add(0, u"rosaceae"_s, u"Juss."_s);
        add(1, u"ROSA"_s, u"L."_s);
        add(2, u"Canina"_s, u"L."_s);
        add(3, u"Var. Alba"_s);
        add(1, u"rubus"_s);
        add(5, u"idaeus"_s, u"L."_s);
        add(0, u"fabaceae"_s);
    }
    void add(qint32 parent, const QString& name, const QString& authors = {})
    {
        form.steps.push_back({{{u"Nom Complet"_s, name}, {u"Auteurs"_s, authors}}});
        EXPECT_TRUE(taxa->Add(parent)) << name.toStdString();
    }
    QStringList names() { return project.rows(u"SELECT [Nom Complet] FROM Taxons ORDER BY [ID Taxons]"_s); }
};

TEST_F(TaxonTest, ComposesNamesByRank)
{
    EXPECT_EQ(names(), (QStringList{u"Rosaceae"_s, u"Rosa"_s, u"Rosa canina"_s, u"Rosa canina var. alba"_s, u"Rubus"_s,
                                    u"Rubus idaeus"_s, u"Fabaceae"_s}));
    EXPECT_EQ(form.titles.first(4), (QStringList{u"Nouvelle famille"_s, u"Nouveau genre"_s, u"Nouvelle espèce"_s,
                                                 u"Nouveau taxon infrasp."_s}));
    EXPECT_EQ(project.rows(u"SELECT [ID Famille],[ID Genre],[ID Espèce],[ID Infra],[DateModify] FROM Taxons WHERE [ID Taxons] IN (2,4)"_s),
              (QStringList{u"1|2|∅|∅|2026/03/07 14:05:09"_s, u"1|2|3|4|2026/03/07 14:05:09"_s}));
    for (const auto& [id, rank] : QList<QPair<int, int>>{{1, 1}, {2, 2}, {3, 3}, {4, 4}, {99, 0}})
        EXPECT_EQ(taxa->OrdreTaxon(id), rank);
    EXPECT_EQ(taxa->IDparent(4), 3);
    EXPECT_EQ(taxa->IDparent(1), 0);
    EXPECT_EQ(taxa->IDparent(99), -1);
    EXPECT_EQ(taxa->IDRangTaxon(4, 2), 2);
    EXPECT_EQ(taxa->IDRangTaxon(4, 5), -1);
    EXPECT_EQ(reference::Cl_Taxon::Ordre(0), u"< Indéfini >"_s);
    EXPECT_EQ(reference::Cl_Taxon::champ(3), u"[ID Espèce]"_s);
}

TEST_F(TaxonTest, RenamingAGenusRenamesWhatIsUnderIt)
{
    form.steps.push_back({{{u"Nom Complet"_s, u"églantier"_s}}});
    EXPECT_TRUE(taxa->Edit(2));
    EXPECT_EQ(form.titles.last(), u"Rosa (Genre)"_s);
    EXPECT_EQ(names().mid(1, 3), (QStringList{u"Églantier"_s, u"Églantier canina"_s, u"Églantier canina var. alba"_s}));
    EXPECT_EQ(taxa->IDctaxon(), 2);
}

TEST_F(TaxonTest, TextsThatAreMoreThanADateStay)
{
    project.db().Execute(u"UPDATE Taxons SET DateOriginal=\"Sp. Pl. 2: 491. 1753\", [ID Valid]=6, DateSynonymie=\"vers 1900 ?\" WHERE [ID Taxons]=3"_s);
    project.db().Execute(u"UPDATE Taxons SET DateOriginal=\"1753/05\" WHERE [ID Taxons]=6"_s);
    form.steps.push_back({{{u"Commentaire"_s, u"vu"_s}}});
    EXPECT_TRUE(taxa->Edit(3));
    form.steps.push_back({{{u"CommentSynonymie"_s, u"vu"_s}}});
    EXPECT_TRUE(taxa->clSynonyme_Edit(3));
    form.steps.push_back({{{u"DateOriginal"_s, u"mai 1754"_s}}}); // a date stays one
    EXPECT_TRUE(taxa->Edit(6));
    EXPECT_EQ(project.rows(u"SELECT DateOriginal,DateSynonymie,Commentaire,CommentSynonymie FROM Taxons WHERE [ID Taxons] IN (3,6)"_s),
              (QStringList{u"Sp. Pl. 2: 491. 1753|vers 1900 ?|vu|vu"_s, u"1754/05|∅|∅|∅"_s}));
}

TEST_F(TaxonTest, ARankWithoutItsParentIsRefusedWithAWord)
{
    const auto refused = [&](const QString& rank, const QString& key) {
        editing::Cl_Editions fields(context->editing);
        taxa->FillTabEdit(fields, 0, 1);
        fields.Item(u"Nom Complet"_s)->setValue(u"x"_s);
        fields.Item(u"@@RANGTAXON@@"_s)->setValue(rank);
        taxa->setIDctaxon(0);
        EXPECT_FALSE(taxa->Save(fields));
        return fields.Item(key)->TextError();
    };
    EXPECT_EQ(refused(u"Espèce"_s, u"@@RANGTAXON@@"_s), u"Un nom de ce rang ne peut être ajouté à cet endroit"_s);
    EXPECT_EQ(refused(u"Tribu"_s, u"@@RANGTAXON@@"_s), u"Indiquez le rang"_s);
    EXPECT_EQ(names().size(), 7);
}

TEST_F(TaxonTest, WhatTheFileRefusesIsSaidUnderTheName)
{
    editing::Cl_Editions fields(context->editing);
    taxa->FillTabEdit(fields, 3, 2);
    fields.Item(u"Auteurs"_s)->setValue(QString(256, u'x'));
    EXPECT_FALSE(taxa->Save(fields));
    EXPECT_TRUE(fields.Item(u"Nom Complet"_s)->TextError().contains(u"Auteurs"_s));
    EXPECT_EQ(taxa->Auteurs(3), u"L."_s);
}

TEST_F(TaxonTest, RefusesAndQuestionsDuplicates)
{
    project.dialogues.expectTell(u"Impossible de valider ce nom de taxon\r\n\"Rosa canina L.\" existe déjà"_s,
                                 u"Violation des règles de taxonomie"_s, BoxIcon::Stop);
    form.steps.push_back({{{u"Nom Complet"_s, u"CANINA"_s}, {u"Auteurs"_s, u"l."_s}}});
    EXPECT_FALSE(taxa->Add(2));
    project.dialogues.expectConfirm(u"\"Rosa canina Mill.\" existe déjà sous une forme comparable \r\n\"Rosa canina L.\"\r\n"
                                    "Etes-vous sûr de vouloir valider ce taxon similaire ?"_s,
                                    u"Validation d'une règle taxonomique"_s, true, BoxIcon::Warning);
    add(2, u"canina"_s, u"Mill."_s);
    // Genus names are unique in the whole table.
    project.dialogues.expectConfirm(u"\"Rosa\" existe déjà sous une forme comparable \r\n\"Rosa L.\"\r\n"
                                    "Etes-vous sûr de vouloir valider ce taxon similaire ?"_s,
                                    u"Validation d'une règle taxonomique"_s, false, BoxIcon::Warning);
    form.steps.push_back({{{u"Nom Complet"_s, u"Rosa"_s}}});
    EXPECT_FALSE(taxa->Add(7));
    form.steps.push_back({{{u"Nom Complet"_s, u""_s}}});
    EXPECT_FALSE(taxa->Add(2));
    EXPECT_EQ(names().size(), 8);
}

TEST_F(TaxonTest, FollowsSynonyms)
{
    project.db().Execute(u"UPDATE Taxons SET [ID Valid]=6 WHERE [ID Taxons]=3"_s);
    project.db().Execute(u"UPDATE Taxons SET [ID Valid]=3 WHERE [ID Taxons]=4"_s);
    EXPECT_EQ(taxa->NomTaxon(-2, 3), u"< Taxon valide >"_s);
    EXPECT_EQ(taxa->NomTaxon(999, 0), u"Indetermineae"_s);
    EXPECT_EQ(taxa->NomTaxon(-3, 0), u"Rosa canina"_s);
    EXPECT_EQ(taxa->NomTaxon(3, 1), u"canina"_s);
    EXPECT_EQ(taxa->NomTaxon(3, 2), u"Rosa canina L."_s);
    EXPECT_EQ(taxa->NomTaxon(4, 3), u"Rosa canina var. alba  = Rosa canina L."_s);
    EXPECT_EQ(taxa->NomTaxon(4, 5), u"Rosa canina var. alba  = Rosa canina L. = Rubus idaeus L."_s);
    // The end of a chain is -1, which is read as row 1.
    EXPECT_EQ(taxa->IDValid(4, true), -1);
    EXPECT_EQ(taxa->NomTaxon(4, 4), u"Rosa canina var. alba  = Rosaceae Juss."_s);
    EXPECT_EQ(taxa->IDValid(6, false), -1);
    EXPECT_EQ(taxa->NomTaxon(6, 6), u"Rosa canina L.\r\nRosa canina var. alba"_s);
    project.db().Execute(u"UPDATE Taxons SET [ID Valid]=4 WHERE [ID Taxons]=6"_s); // a ring ends
    EXPECT_FALSE(taxa->NomTaxon(4, 4).isEmpty());
    EXPECT_FALSE(taxa->TaxonsSynonymes(6, u", "_s).isEmpty());
}

TEST_F(TaxonTest, SearchesOnceMoreWithAStar)
{
    EXPECT_EQ(taxa->SearchTaxons(u"rosa"_s).names, QStringList{u"Rosa"_s});
    EXPECT_EQ(taxa->SearchTaxons(u"rosa c"_s).names, (QStringList{u"Rosa canina"_s, u"Rosa canina var. alba"_s}));
    EXPECT_EQ(taxa->SearchTaxons(u"ros*"_s, 1).ids, QList<qint32>{1});
    EXPECT_EQ(taxa->SearchTaxons(u"x*"_s).ids, QList<qint32>());
    EXPECT_EQ(taxa->SearchTaxons(u"a\"b"_s).ids, QList<qint32>());
    EXPECT_EQ(taxa->SearchTaxons(QString(), 2).names, (QStringList{u"Rosa"_s, u"Rubus"_s}));
    EXPECT_EQ(project.rows(taxa->SQLChildren(0, 0)).size(), 2);
    EXPECT_EQ(project.rows(taxa->SQLChildren(2, 2)), QStringList{u"3|canina|∅"_s});
}

TEST_F(TaxonTest, DeletesASubtreeAndItsSynonymies)
{
    project.db().Execute(u"UPDATE Taxons SET [ID Valid]=2 WHERE [ID Taxons]=5"_s);
    QList<qint32> deleted;
    QObject::connect(taxa.get(), &reference::ReferenceList::Delete, taxa.get(), [&](qint32 id) { deleted << id; });
    const QString text = u"Vous allez SUPPRIMER le Taxon \"Rosa\"...!!!\rLa suppression d'un Taxon entraîne la suppression de tous les sous-taxons ainsi que la rupture définitive des liens\r\rSupprimer les Taxons sélectionnés ?"_s;
    project.dialogues.expectConfirm(text, u"Suppression..."_s, false, BoxIcon::Stop);
    EXPECT_FALSE(taxa->Delete({2}));
    project.dialogues.expectConfirm(text, u"Suppression..."_s, true, BoxIcon::Stop);
    EXPECT_TRUE(taxa->Delete({2}));
    EXPECT_EQ(deleted, QList<qint32>{2});
    EXPECT_EQ(names(), (QStringList{u"Rosaceae"_s, u"Rubus"_s, u"Rubus idaeus"_s, u"Fabaceae"_s}));
    EXPECT_EQ(project.single(u"SELECT Count(*) FROM Taxons WHERE [ID Valid] Is Not Null"_s).toInt(), 0);
}

TEST_F(TaxonTest, MovesWithAllThatIsUnderIt)
{
    project.dialogues.expectConfirm(u"Déplacer le Taxon \"Rosa canina\" dans le taxon \"Rubus\" ?\r\n"_s,
                                    u"Déplacement de taxons"_s, true, BoxIcon::Question, Answer::No);
    taxa->Move({3}, 5);
    EXPECT_EQ(names().mid(2, 2), (QStringList{u"Rubus canina"_s, u"Rubus canina var. alba"_s}));
    // Only the column of the target's rank is rewritten.
    project.dialogues.expectConfirm(u"Déplacer le Taxon \"Rubus\" dans le taxon \"Fabaceae\" ?\r\n"_s,
                                    u"Déplacement de taxons"_s, true, BoxIcon::Question, Answer::No);
    taxa->Move({5}, 7);
    EXPECT_EQ(project.rows(u"SELECT [ID Taxons] FROM Taxons WHERE [ID Famille]=7 ORDER BY [ID Taxons]"_s),
              (QStringList{u"3"_s, u"4"_s, u"5"_s, u"6"_s, u"7"_s}));
    taxa->Move({3}, 5); // already there: nothing is asked
}

TEST_F(TaxonTest, MovingOntoTheSameRankMakesASynonym)
{
    form.steps.push_back({{{u"AuteurSynonymie"_s, u"Dupont"_s}, {u"DateSynonymie"_s, u"1999"_s}}});
    taxa->Move({3}, 6);
    EXPECT_EQ(project.rows(u"SELECT [ID Valid],AuteurSynonymie,DateSynonymie FROM Taxons WHERE [ID Taxons]=3"_s),
              QStringList{u"6|Dupont|1999"_s});
    project.dialogues.expectConfirm(u"Etes-vous sûr de vouloir supprimer cette synonymie ?"_s,
                                    u"Suppression d'une synonymie"_s, true);
    EXPECT_TRUE(taxa->clSynonyme_Delete(3));
    EXPECT_EQ(project.rows(u"SELECT [ID Valid],AuteurSynonymie,DateSynonymie FROM Taxons WHERE [ID Taxons]=3"_s),
              QStringList{u"∅|∅|∅"_s});
    form.steps.push_back({{{u"Taxon valide"_s, 3}}}); // onto itself
    EXPECT_FALSE(taxa->clSynonyme_Edit(3));
}

} // namespace
