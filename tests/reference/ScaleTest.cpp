// Many rows at once: what is one operation, and what ends.
#include "ReferenceFixture.h"

namespace {

using namespace Qt::StringLiterals;

class ScaleTest : public ReferenceTest {
protected:
    void insert(const QString& table, const QStringList& columns, int count, const std::function<QVariantList(int)>& values)
    {
        jet::Operation operation(project.db(), u"Essai"_s);
        const auto rows = project.db().OpenRecordset(table, jet::RecordsetType::Table);
        for (int n = 1; n <= count; ++n) {
            rows->AddNew();
            const QVariantList given = values(n);
            for (qsizetype i = 0; i < columns.size(); ++i)
                rows->SetValue(columns[i], given[i]);
            rows->Update();
        }
        operation.commit();
    }
    int count(const QString& condition)
    {
        return project.single(u"SELECT Count(*) FROM "_s + condition).toInt();
    }
};

TEST_F(ScaleTest, RenamingAGenusRenames500SpeciesAndWhatIsUnderThem)
{
    // 1 family, 2 genus, then species with one variety each.
    insert(u"Taxons"_s, {u"Taxon"_s, u"Nom Complet"_s, u"ID Famille"_s, u"ID Genre"_s, u"ID Espèce"_s, u"ID Infra"_s}, 1002,
           [](int n) -> QVariantList {
               const QVariant none;
               if (n == 1)
                   return {u"Fagaceae"_s, u"Fagaceae"_s, 1, none, none, none};
               if (n == 2)
                   return {u"Quercus"_s, u"Quercus"_s, 1, 2, none, none};
               const int species = n - (n % 2 == 0 ? 1 : 0);
               const QString epithet = u"sp"_s + QString::number(species);
               if (n == species)
                   return {epithet, u"Quercus "_s + epithet, 1, 2, n, none};
               return {u"var. alba"_s, u"Quercus "_s + epithet + u" var. alba"_s, 1, 2, species, n};
           });
    editing::Cl_Editions fields(context->editing);
    taxa->FillTabEdit(fields, 2, 1);
    fields.Item(u"Nom Complet"_s)->setValue(u"CHÊNUS"_s);
    ASSERT_TRUE(taxa->Save(fields));
    EXPECT_EQ(count(u"Taxons WHERE [Nom Complet] LIKE \"Chênus sp*\" AND [ID Espèce]=[ID Taxons]"_s), 500);
    EXPECT_EQ(count(u"Taxons WHERE [Nom Complet] LIKE \"Chênus sp* var. alba\""_s), 500);
    EXPECT_EQ(count(u"Taxons WHERE [Nom Complet] LIKE \"Quercus*\""_s), 0);
}

TEST_F(ScaleTest, ARingOfSynonymsEndsInEveryMode)
{
    for (const QString& name : {u"alba"_s, u"beta"_s, u"gamma"_s})
        project.db().Execute(u"INSERT INTO Taxons (Taxon,[Nom Complet],Auteurs) VALUES (\"x\",\"%1\",\"L.\")"_s.arg(name));
    // A chain of three: 3 under 2 under 1.
    project.db().Execute(u"UPDATE Taxons SET [ID Valid]=[ID Taxons]-1 WHERE [ID Taxons]>1"_s);
    const QStringList chain{u"gamma"_s, u"x"_s, u"gamma L."_s, u"gamma L. = beta L."_s, u"gamma L. = alba L."_s,
                            u"gamma L. = beta L. = alba L."_s, QString()};
    for (int mode = 0; mode < chain.size(); ++mode)
        EXPECT_EQ(taxa->NomTaxon(3, mode), chain[mode]) << mode;
    EXPECT_EQ(taxa->NomTaxon(1, 6), u"beta L.\r\ngamma L."_s);
    // A damaged file: 1 under 2, 2 under 1.
    project.db().Execute(u"UPDATE Taxons SET [ID Valid]=2 WHERE [ID Taxons]=1"_s);
    EXPECT_EQ(taxa->NomTaxon(1, 3), u"alba L. = beta L."_s);
    EXPECT_EQ(taxa->NomTaxon(1, 5), u"alba L. = beta L. = alba L."_s);
    EXPECT_TRUE(taxa->NomTaxon(1, 4).startsWith(u"alba L. = "_s));
    EXPECT_EQ(taxa->NomTaxon(1, 6), u"beta L.\r\ngamma L."_s);
}

TEST_F(ScaleTest, MovesTenThousandLocalitiesAsOne)
{
    // 1 and 2 at the top, everything else in 1.
    insert(u"Localités"_s, {u"Localité"_s, u"LongDD"_s, u"LatDD"_s, u"CodeRegion"_s, u"ID Type"_s}, 10'002,
           [](int n) -> QVariantList {
               return {u"L%1"_s.arg(n), 0.0, 0.0, n <= 2 ? QString::number(n) : u"1/%1"_s.arg(n), n <= 2 ? 0 : 1};
           });
    project.dialogues.expectConfirm(u"Déplacer la Localité \"L1\" dans la Localité \"L2\" ?"_s,
                                    u"Déplacement de localités"_s, true, platform::BoxIcon::Question, platform::Answer::No);
    places->Move({1}, 2);
    EXPECT_EQ(count(u"[Localités] WHERE [CodeRegion] = \"2/1/\" & [ID Localités]"_s), 10'000);
    EXPECT_EQ(places->CodeLocalité(1), u"2/1"_s);
    EXPECT_EQ(count(u"[Localités] WHERE [ID Type]=1"_s), 10'000) << "the depth keeps the value of its creation";
    EXPECT_EQ(places->NomLocalité(1, 1), u"L2 - L1"_s);
}

} // namespace
