#include "ReferenceFixture.h"

namespace {

using namespace Qt::StringLiterals;
using platform::Answer;
using platform::BoxIcon;

/// 1 France > 2 Hérault > 3 Montpellier; 4 Gabon; 5 France … 71 is not under 7.
class LocaliteTest : public ReferenceTest {
protected:
    void SetUp() override
    {
        ReferenceTest::SetUp();
        add(0, u"France"_s);
        add(1, u"Hérault"_s);
        add(2, u"Montpellier"_s);
        add(0, u"Gabon"_s);
    }
    void add(qint32 parent, const QString& name)
    {
        form.steps.push_back({{{u"Localité"_s, name}, {u"LongDD"_s, u"E003°52'00"_s}, {u"LatDD"_s, 43.6}, {u"GPSRef"_s, u"REF"_s + name.left(3)}}});
        EXPECT_TRUE(places->Add(parent)) << name.toStdString();
    }
    QStringList codes()
    {
        return project.rows(u"SELECT [CodeRegion],[ID Type],[Nom Entier] FROM Localités ORDER BY [ID Localités]"_s);
    }
};

TEST_F(LocaliteTest, KeepsPathCodesAndNames)
{
    EXPECT_EQ(codes(), (QStringList{u"1|0|France"_s, u"1/2|1|France - Hérault"_s, u"1/2/3|2|Hérault - Montpellier"_s, u"4|0|Gabon"_s}));
    EXPECT_EQ(form.titles[1], u"France (Nouvelle Localité)"_s);
    EXPECT_EQ(places->IDparent(3), 2);
    EXPECT_EQ(places->IDparent(1), 0);
    EXPECT_EQ(places->NomLocalité(0, 1), u"Monde"_s);
    EXPECT_EQ(places->NomLocalité(2, 0), u"Hérault"_s);
    EXPECT_EQ(places->NomLocalité(3, 1), u"Hérault - Montpellier"_s);
    EXPECT_EQ(places->NomLocalité(3, 2), u"REFMon"_s);
    EXPECT_NEAR(places->Coordonnées(3).LongDD.toDouble(), 3.866667, 1e-5);
    EXPECT_EQ(places->NomCarte(0), u"/opt/herbora/Globe.gif"_s);

    form.steps.push_back({{{u"Localité"_s, u"L'Hérault"_s}}});
    EXPECT_TRUE(places->Edit(2));
    EXPECT_EQ(codes().mid(1, 2), (QStringList{u"1/2|1|France - L'Hérault"_s, u"1/2/3|2|L'Hérault - Montpellier"_s}));
}

TEST_F(LocaliteTest, WhoeverIsRenamedAlongIsStamped)
{
    project.db().Execute(u"UPDATE Localités SET DateModify=\"1999/01/01 00:00:00\""_s);
    form.steps.push_back({{{u"Localité"_s, u"Gaule"_s}}});
    EXPECT_TRUE(places->Edit(1));
    EXPECT_EQ(project.rows(u"SELECT DateModify FROM Localités ORDER BY [ID Localités]"_s),
              (QStringList{u"2026/03/07 14:05:09"_s, u"2026/03/07 14:05:09"_s, u"1999/01/01 00:00:00"_s, u"1999/01/01 00:00:00"_s}))
        << "itself and its children, nothing deeper";
}

TEST_F(LocaliteTest, APlaceNeedsNoPosition)
{
    form.steps.push_back({{{u"Localité"_s, u"Europe"_s}}});
    EXPECT_TRUE(places->Add(0));
    const qint32 id = places->IDcLocalité();
    EXPECT_EQ(project.rows(u"SELECT LongDD,LatDD FROM Localités WHERE [ID Localités]=5"_s), QStringList{u"0|0"_s});
    EXPECT_FALSE(places->Coordonnées(id).LongDD.isValid());
    EXPECT_FALSE(places->Coordonnées(id).LatDD.isValid());
    form.steps.push_back({{{u"LatDD"_s, 0}}}); // one without the other
    EXPECT_FALSE(places->Edit(id));
    form.steps.push_back({{{u"LongDD"_s, 12.5}, {u"LatDD"_s, 0}}}); // on the equator
    EXPECT_TRUE(places->Edit(id));
    EXPECT_EQ(places->Coordonnées(id).LatDD, 0.0);
    form.steps.push_back({{{u"LongDD"_s, QVariant()}, {u"LatDD"_s, QVariant()}}}); // taken back
    EXPECT_TRUE(places->Edit(id));
    EXPECT_EQ(project.rows(u"SELECT LongDD,LatDD FROM Localités WHERE [ID Localités]=5"_s), QStringList{u"0|0"_s});
}

TEST_F(LocaliteTest, ListsTheHierarchyWithoutMaps)
{
    const qint32 map = places->AddCarte(1, u"Carte de France"_s, {-5, 51, 9, 42}, u"france.png"_s);
    EXPECT_EQ(places->TypeLocalité(map), u"Carte"_s);
    EXPECT_EQ(places->NomLocalité(map, 2), u"Carte de France"_s);
    EXPECT_EQ(places->NomCarte(map), u"france.png"_s);
    EXPECT_EQ(project.rows(places->SQLLocalités(0)), (QStringList{u"1|France"_s, u"4|Gabon"_s}));
    EXPECT_EQ(project.rows(places->SQLLocalités(1)), QStringList{u"2|Hérault"_s});
    EXPECT_EQ(places->SearchLocalités(u"h*"_s).names, QStringList{u"Hérault"_s});
    EXPECT_EQ(places->SearchLocalités(u"h"_s).names, QStringList());
    EXPECT_EQ(places->SearchLocalités({}).ids, (QList<qint32>{1, 4, 2, 3})) << "in the order of the names";
    EXPECT_EQ(places->SearchLocalités(u"REFGab"_s).names, QStringList{u"Gabon"_s});
    project.dialogues.expectLike({u"Impossible d'ajouter la carte :\n"_s}, u"Ajout d'une carte"_s, BoxIcon::Stop);
    EXPECT_EQ(places->AddCarte(1, u"Encore"_s, {-5, 51, 9, 42}, u"FRANCE.png"_s), 0); // the picture stands once
}

TEST_F(LocaliteTest, DeletesASubtreeAndNothingElse)
{
    project.db().Execute(u"INSERT INTO Localités ([Localité],[LongDD],[LatDD],[CodeRegion],[ID Type]) VALUES (\"Autre\",0,0,\"1/21\",1)"_s);
    project.dialogues.expectConfirm(u"Vous allez Supprimer la Localité \"Hérault\"...\rLa suppression d'une localité entraîne la suppression de tous les sous-localités ainsi que la rupture définitive des liens\r\rEffectuer la suppression ?"_s,
                                    u"Suppression..."_s, true, BoxIcon::Stop);
    EXPECT_TRUE(places->Delete({2}));
    EXPECT_EQ(project.rows(u"SELECT Localité FROM Localités ORDER BY [ID Localités]"_s),
              (QStringList{u"France"_s, u"Gabon"_s, u"Autre"_s}));
    const qint32 map = places->AddCarte(1, u"C"_s, {0, 1, 1, 0}, u"c.png"_s);
    project.dialogues.expectConfirm(u"Vous allez Supprimer la  Carte \"C\"...\rLa suppression d'une localité entraîne la suppression de tous les sous-localités ainsi que la rupture définitive des liens\r\rEffectuer la suppression ?"_s,
                                    u"Suppression..."_s, true, BoxIcon::Stop);
    EXPECT_TRUE(places->Delete({map}));
}

TEST_F(LocaliteTest, MovesASubtree)
{
    project.dialogues.expectConfirm(u"Déplacer la Localité \"Hérault\" dans la Localité \"Gabon\" ?"_s,
                                    u"Déplacement de localités"_s, true, BoxIcon::Question, Answer::No);
    places->Move({2}, 4);
    // The depth keeps the value of the creation.
    EXPECT_EQ(codes().mid(1, 2), (QStringList{u"4/2|1|Gabon - Hérault"_s, u"4/2/3|2|Hérault - Montpellier"_s}));
    project.dialogues.expectConfirm(u"Déplacer la Localité \"Gabon\" dans la Localité \"Montpellier\" ?"_s,
                                    u"Déplacement de localités"_s, true, BoxIcon::Question, Answer::No);
    places->Move({4}, 3); // into its own subtree: skipped
    EXPECT_EQ(codes()[3], u"4|0|Gabon"_s);
    project.dialogues.expectConfirm(u"Déplacer la Localité \"Montpellier\" dans la Localité \"Monde\" ?"_s,
                                    u"Déplacement de localités"_s, true, BoxIcon::Question, Answer::No);
    places->Move({3}, 0);
    EXPECT_EQ(codes()[2], u"3|2|Montpellier"_s);
}

TEST_F(LocaliteTest, CalibratesAMapByTwoPoints)
{
    const qint32 map = places->AddCarte(0, u"Carte"_s, {0, 0, 1, 1}, u"c.png"_s);
    form.steps.push_back({{{u"LongDD"_s, 10}, {u"LatDD"_s, u"N50°00'00"_s}, {u"SizeLongDD"_s, 20}, {u"SizeLatDD"_s, 40}}});
    EXPECT_TRUE(places->Calibrate(map, 100, 300, 50, 150, {0, 0, 400, 200}));
    const auto frame = places->Coordonnées(map);
    EXPECT_DOUBLE_EQ(frame.LongDD.toDouble(), 5);
    EXPECT_DOUBLE_EQ(frame.LatDD.toDouble(), 55);
    EXPECT_DOUBLE_EQ(frame.SizeLongDD.toDouble(), 25);
    EXPECT_DOUBLE_EQ(frame.SizeLatDD.toDouble(), 35);
    for (const auto& step : {ScriptedForm::Step{{{u"LongDD"_s, 10}, {u"LatDD"_s, 50}, {u"SizeLongDD"_s, 10}, {u"SizeLatDD"_s, 40}}},
                             ScriptedForm::Step{{{u"LongDD"_s, 10}, {u"LatDD"_s, 50}, {u"SizeLongDD"_s, 20}, {u"SizeLatDD"_s, 50}}}}) {
        form.steps.push_back(step);
        project.dialogues.expectTell(u"Erreur de calibration: Impossible de calibrer la carte en utilisant des points de même Latitude/longitude"_s,
                                     u"Calibration"_s, BoxIcon::Stop);
        EXPECT_FALSE(places->Calibrate(map, 100, 300, 50, 150, {0, 0, 400, 200}));
    }
    EXPECT_DOUBLE_EQ(places->Coordonnées(map).LongDD.toDouble(), 5);
}

} // namespace
