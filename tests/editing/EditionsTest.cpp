#include "editing/Cl_Editions.h"

#include "EditingFixture.h"

namespace {

using namespace Qt::StringLiterals;
using editing::Cl_Editions;

class EditionsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (const QString& column : {u"A"_s, u"B"_s, u"C"_s, u"D"_s})
            form.Add(3, u"Champ "_s + column, {}, {}, column, true, 7);
    }
    QString order() const
    {
        QString text;
        for (const auto& field : form)
            text += field->champ();
        return text;
    }

    fixture::Surroundings surroundings;
    Cl_Editions form{surroundings.context()};
};

TEST_F(EditionsTest, FindsByKeyColumnAndCaptionWithoutCase)
{
    EXPECT_EQ(form.Index(u"c"_s), 2);
    EXPECT_EQ(form.Index(u"champ b"_s), 1);
    EXPECT_EQ(form.Index(form.Item(3)->key().toUpper()), 3);
    EXPECT_EQ(form.Index(u"E"_s), -1);
    // The first descriptor that has the name in any way comes before a later one that is called so.
    form.Item(0)->setCaption(u"D"_s);
    EXPECT_EQ(form.Index(u"d"_s), 0);
}

TEST_F(EditionsTest, ItemsAreTakenByPositionKeyOrName)
{
    const QString key = form.Item(2)->key();
    form.MoveItem(2, 0);
    EXPECT_EQ(form.Item(key), form.Item(0));
    EXPECT_EQ(form.Item(u"1"_s), form.Item(1));
    EXPECT_EQ(form.Item(u"champ d"_s)->champ(), u"D"_s);
    EXPECT_EQ(form.Item(4), nullptr);
    EXPECT_EQ(form.Item(-1), nullptr);
    EXPECT_EQ(form.Item(u"rien"_s), nullptr);
    // The key wins over an earlier descriptor that is called like it.
    form.Item(0)->setCaption(form.Item(3)->key());
    EXPECT_EQ(form.Item(form.Item(3)->key())->champ(), u"D"_s);
}

TEST_F(EditionsTest, MovesWithinItsBounds)
{
    const QList<std::tuple<int, int, QString>> cases{
        {0, 2, u"BCAD"_s}, {0, 3, u"BCDA"_s}, {3, 0, u"DABC"_s}, {2, 1, u"ACBD"_s}, {1, 1, u"ABCD"_s},
        {0, 4, u"ABCD"_s}, {4, 0, u"ABCD"_s}, {-1, 0, u"ABCD"_s}, {0, -1, u"ABCD"_s},
    };
    for (const auto& [from, to, moved] : cases) {
        form.Clear();
        SetUp();
        form.MoveItem(from, to);
        EXPECT_EQ(order(), moved) << from << " to " << to;
    }
}

TEST_F(EditionsTest, RemovesByPositionOrName)
{
    form.Remove(u"champ B"_s);
    form.Remove(u"0"_s);
    form.Remove(u"rien"_s);
    form.Remove(u"9"_s);
    form.Remove(-1);
    EXPECT_EQ(order(), u"CD"_s);
    form.Remove(1);
    EXPECT_EQ(order(), u"C"_s);
}

TEST_F(EditionsTest, AddsAColumnOnce)
{
    form.Add(5, u"Autre"_s, u"1,5"_s, u"aide"_s, u"a"_s, false, 3);
    EXPECT_EQ(form.Count(), 4);
    form.Add(5, u"Hauteur"_s, u"1,5"_s, u"aide"_s, u"H"_s, false, 3);
    ASSERT_EQ(form.Count(), 5);
    const auto* field = form.Item(4);
    EXPECT_EQ(field->value(), 1.5); // normalised under the type given
    EXPECT_EQ(field->Caption(), u"Hauteur"_s);
    EXPECT_EQ(field->TextHelp(), u"aide"_s);
    EXPECT_FALSE(field->AllowNull());
    EXPECT_EQ(field->IDIndividu(), 3);
}

TEST_F(EditionsTest, AnEmptyOneIsValidAndUnchanged)
{
    form.Clear();
    EXPECT_EQ(form.Count(), 0);
    EXPECT_TRUE(form.valid());
    EXPECT_FALSE(form.Changed());
    EXPECT_EQ(form.Index(QString()), -1);
}

TEST_F(EditionsTest, IsChangedOrInvalidWithOneField)
{
    for (const auto& field : form)
        field->ChpEdition()->Changed = false;
    EXPECT_FALSE(form.Changed());
    form.Item(3)->setValue(u"neuf"_s);
    EXPECT_TRUE(form.Changed());
    EXPECT_TRUE(form.valid());
    form.Item(1)->setAllowNull(false);
    EXPECT_FALSE(form.valid());
}

TEST_F(EditionsTest, TakesAndGivesFieldRecords)
{
    addin::TabEditions records;
    for (const QString& name : {u"Hauteur"_s, u"Diamètre"_s}) {
        records << std::make_shared<addin::ChpEdition>();
        records.last()->champ = name;
        records.last()->ctype = 9;
    }
    records[1]->NomModule = u"Autre"_s;
    form.setTabedition(u"Mesures"_s, records);
    EXPECT_EQ(form.Tabedition(), records);
    EXPECT_EQ(form.NomModule(), u"Mesures"_s);
    EXPECT_EQ(form.Item(0)->NomModule(), u"Mesures"_s);
    EXPECT_EQ(form.Item(1)->NomModule(), u"Autre"_s);
    EXPECT_EQ(form.Item(0)->TabOperateur().at(1), (QStringList{u"LIKE"_s, u"NOT LIKE"_s}));
}

TEST_F(EditionsTest, BindingLoadsEveryField)
{
    surroundings.records->rows[u"5-Mesures"_s] = {{u"A"_s, u"un"_s}, {u"D"_s, u"quatre"_s}};
    form.setTabedition(u"Mesures"_s, form.Tabedition());
    form.bind(2, 5);
    EXPECT_EQ(form.Item(0)->value(), u"un"_s);
    EXPECT_FALSE(form.Item(1)->value().isValid());
    EXPECT_EQ(form.Item(3)->value(), u"quatre"_s);
    EXPECT_EQ(form.Item(3)->IDIndividu(), 2);
}

} // namespace
