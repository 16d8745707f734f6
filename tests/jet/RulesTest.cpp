// The rules that the file keeps: by number through the engine, by themselves through the shell of SQLite.
#include "FileFixture.h"

using namespace jet;

namespace {

class RulesTest : public FileFixture {
protected:
    void SetUp() override
    {
        FileFixture::SetUp();
        create();
    }

    /// One column of every kind of rule.
    static TableDef plants()
    {
        using enum DataType;
        TableDef table{.Name = u"Individus"_s};
        table.Fields = {counter(u"ID Individus"_s), field(u"Numéro"_s, Text, 5),   field(u"Nom"_s, Memo),
                        field(u"Rang"_s, Integer),  field(u"Part"_s, Byte),        field(u"Compte"_s, Long),
                        field(u"Vu"_s, Boolean),    field(u"Altitude"_s, Double),  field(u"Code"_s, Text, 10),
                        field(u"Parent"_s, Long)};
        table.Fields[1].Required = true;
        table.Fields[1].DefaultValue = u"\"n\""_s;
        table.Fields[2].AllowZeroLength = true;
        table.Fields[7].ValidationRule = u">=0 And <9000"_s;
        table.Fields[7].ValidationText = u"L'altitude n'est pas \"plausible\" !"_s;
        table.Fields[8].ValidationRule = u"<>\"x\""_s;
        table.Indexes = {primary(u"ID Individus"_s), {.Name = u"Rang"_s, .Fields = {{u"Rang"_s}}, .Required = true}};
        return table;
    }

    static Relation relation(bool deleteCascade, bool updateCascade = false)
    {
        Relation made{.Name = u"Notes"_s, .Table = u"Taxons"_s, .ForeignTable = u"Notes"_s,
                      .Fields = {{u"Nom"_s, u"Taxon"_s}}};
        made.DeleteCascade = deleteCascade;
        made.UpdateCascade = updateCascade;
        return made;
    }

    /// Notes refer to taxa by their name.
    void makeNotes(const Relation& made)
    {
        db->AppendTable({.Name = u"Taxons"_s, .Fields = {field(u"Nom"_s, DataType::Text, 50)},
                         .Indexes = {primary(u"Nom"_s)}});
        db->AppendTable({.Name = u"Notes"_s, .Fields = {counter(u"ID"_s), field(u"Taxon"_s, DataType::Text, 50)}});
        db->AppendRelation(made);
        run(u"INSERT INTO Taxons(Nom) VALUES('Carex alba'),('Poa'); INSERT INTO Notes(Taxon) VALUES('carex ALBA'),(NULL)"_s);
    }

    int errorOf(const QString& sql)
    {
        return failureOf([&] { run(sql); }).number();
    }
};

// --- Columns -------------------------------------------------------------------------------------

struct Refusal {
    const char* name;
    QString columns;
    QString values;
    int number;
    QString says;
};

void PrintTo(const Refusal& refusal, std::ostream* out)
{
    *out << refusal.name;
}

class ColumnRule : public RulesTest, public ::testing::WithParamInterface<Refusal> {};

TEST_P(ColumnRule, RefusesTheRowWhoeverWritesIt)
{
    const auto [name, columns, values, number, says] = GetParam();
    // Validation rules are left out for the shell where they need functions of the dialect.
    TableDef table = plants();
    const bool needsText = columns == u"Rang, Code"_s;
    if (!needsText)
        table.Fields[8].ValidationRule.clear();
    db->AppendTable(table);
    run(u"INSERT INTO Individus(Numéro, Rang) VALUES('n', 1)"_s);
    const QString insert = u"INSERT INTO Individus(%1) VALUES(%2)"_s.arg(columns, values);
    const QString update = u"UPDATE Individus SET (%1)=(%2)"_s.arg(columns, values);
    for (const QString& sql : {insert, update}) {
        const Error failure = failureOf([&] { run(sql); });
        EXPECT_EQ(failure.number(), number) << sql.toStdString();
        EXPECT_TRUE(failure.description().contains(says)) << failure.description().toStdString();
    }
    close();
    const QString mark = number == 3421 ? u"failed"_s : u'#' + QString::number(number) + u'#';
    for (const QString& sql : {insert, update}) {
        const QString refusal = shell(sql).refusal;
        EXPECT_TRUE(refusal.contains(needsText ? u"jet_"_s : mark)) << refusal.toStdString();
    }
    EXPECT_EQ(shell(u"SELECT count(*) FROM Individus"_s).output, u"1"_s);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, ColumnRule,
    ::testing::Values(Refusal{"Required", u"Rang, Numéro"_s, u"1, NULL"_s, 3314, u"« Numéro »"_s},
                      Refusal{"Width", u"Rang, Numéro"_s, u"1, 'éééééé'"_s, 3163, u"5 caractères"_s},
                      Refusal{"ZeroLength", u"Rang, Numéro"_s, u"1, ''"_s, 3315, u"« Numéro »"_s},
                      Refusal{"RequiredBeforeWidth", u"Rang, Numéro, Code"_s, u"1, NULL, 'trop long pour dix'"_s, 3314, u"« Numéro »"_s},
                      Refusal{"ValidationText", u"Rang, Altitude"_s, u"1, 9000"_s, 3316, u"L'altitude n'est pas \"plausible\" !"_s},
                      Refusal{"ValidationRule", u"Rang, Code"_s, u"1, 'X'"_s, 3317, u"« Code »"_s},
                      Refusal{"IndexRequired", u"Numéro, Rang"_s, u"'n', NULL"_s, 3058, u"« Rang »"_s},
                      Refusal{"Integer", u"Rang, Part"_s, u"32768, 1"_s, 3421, u"« Rang »"_s},
                      Refusal{"Byte", u"Rang, Part"_s, u"1, -1"_s, 3421, u"« Part »"_s},
                      Refusal{"Long", u"Rang, Compte"_s, u"1, 2147483648"_s, 3421, u"« Compte »"_s},
                      Refusal{"Boolean", u"Rang, Vu"_s, u"1, 1"_s, 3421, u"« Vu »"_s}),
    [](const auto& info) { return info.param.name; });

TEST_F(RulesTest, WhatTheRulesAllowIsWritten)
{
    db->AppendTable(plants());
    run(u"INSERT INTO Individus(Rang, Nom, Part, Vu, Altitude, Code) VALUES(-32768, '', 255, -1, 8999, NULL);"
        // Null passes a validation rule, and a default value comes by itself.
        "INSERT INTO Individus(Rang) VALUES(1)"_s);
    EXPECT_EQ(single(u"SELECT group_concat(Numéro || Vu || ifnull(Altitude, '-')) FROM Individus"_s), u"n-18999.0,n0-"_s);
    EXPECT_EQ(errorOf(u"INSERT INTO Individus(Rang) VALUES('abc')"_s), 3421);
    EXPECT_EQ(errorOf(u"INSERT INTO Individus(Rang, Vu) VALUES(1, NULL)"_s), 3314);
    EXPECT_EQ(errorOf(u"INSERT INTO Individus([ID Individus], Rang) VALUES(3000000000, 1)"_s), 3421);
}

TEST_F(RulesTest, TheShellCanWriteWhereNoRuleNeedsTheDialect)
{
    TableDef table = plants();
    table.Fields[8].ValidationRule.clear();
    db->AppendTable(table);
    close();
    EXPECT_EQ(shell(u"INSERT INTO Individus(Rang) VALUES(1); UPDATE Individus SET Altitude=12, Numéro='m';"
                    "SELECT Numéro, Altitude FROM Individus"_s).output, u"m|12.0"_s);
}

TEST_F(RulesTest, ARefusedRowTakesTheWholeStatementBack)
{
    db->AppendTable(plants());
    EXPECT_EQ(errorOf(u"INSERT INTO Individus(Rang) VALUES(1),(2),(NULL)"_s), 3058);
    EXPECT_EQ(single(u"SELECT count(*) FROM Individus"_s), 0);
}

// --- Unique texts --------------------------------------------------------------------------------

TEST_F(RulesTest, UniqueTextsIgnoreCaseAndTrailingBlanksButNotAccents)
{
    db->AppendTable({.Name = u"Collecteurs"_s,
                     .Fields = {field(u"Nom"_s, DataType::Text, 50), field(u"Lieu"_s, DataType::Text, 50)},
                     .Indexes = {unique(u"Unique"_s, {u"Nom"_s, u"Lieu"_s})}});
    run(u"INSERT INTO Collecteurs VALUES(1, 'müller', 'Bâle')"_s);
    const Error failure = failureOf([&] { run(u"INSERT INTO Collecteurs VALUES(2, 'Müller ', 'BÂLE')"_s); });
    EXPECT_EQ(failure.number(), 3022);
    EXPECT_TRUE(failure.description().contains(u"« Collecteurs » (Unique)"_s)) << failure.description().toStdString();
    run(u"INSERT INTO Collecteurs VALUES(3, 'muller', 'Bâle'), (4, 'müller', NULL), (5, 'müller', NULL)"_s);
    close();
    EXPECT_TRUE(shell(u"INSERT INTO Collecteurs VALUES(6, 'MÜLLER', 'Bâle')"_s).refusal.contains(u"jet_key"_s));
}

// --- Relations -----------------------------------------------------------------------------------

TEST_F(RulesTest, AForeignRecordNeedsItsPrimaryOne)
{
    makeNotes(relation(false));
    EXPECT_EQ(errorOf(u"INSERT INTO Notes(Taxon) VALUES('Cares alba')"_s), 3201);
    EXPECT_EQ(errorOf(u"UPDATE Notes SET Taxon='absent'"_s), 3201);
    EXPECT_EQ(errorOf(u"DELETE FROM Taxons WHERE Nom='Carex alba'"_s), 3200);
    EXPECT_EQ(errorOf(u"UPDATE Taxons SET Nom='Carex nigra' WHERE Nom='Carex alba'"_s), 3200);
    EXPECT_EQ(errorOf(u"UPDATE Taxons SET Nom='CAREX alba' WHERE Nom='Carex alba'; DELETE FROM Taxons WHERE Nom='Poa'"_s), 0)
        << "the same name in another case, and a record to which none refers";
    EXPECT_EQ(errorOf(u"UPDATE Notes SET Taxon=NULL; DELETE FROM Taxons"_s), 0);
}

TEST_F(RulesTest, CascadesFollowTheKey)
{
    makeNotes(relation(true, true));
    run(u"UPDATE Taxons SET Nom='Carex nigra' WHERE Nom='Carex alba'"_s);
    EXPECT_EQ(single(u"SELECT Taxon FROM Notes WHERE Taxon IS NOT NULL"_s), u"Carex nigra"_s);
    run(u"DELETE FROM Taxons"_s);
    EXPECT_EQ(single(u"SELECT count(*) FROM Notes"_s), 1) << "the record without a key stays";
    EXPECT_TRUE(db->Check().isEmpty());
}

TEST_F(RulesTest, AForestOfRecordsGoesWithItsRoot)
{
    db->AppendTable(plants());
    db->AppendRelation({.Name = u"Arbre"_s, .Table = u"Individus"_s, .ForeignTable = u"Individus"_s,
                        .Fields = {{u"ID Individus"_s, u"Parent"_s}}, .DeleteCascade = true});
    run(u"INSERT INTO Individus([ID Individus], Rang, Parent) VALUES(1,1,1),(2,1,1),(3,1,2),(4,1,3),(5,1,NULL)"_s);
    EXPECT_EQ(errorOf(u"INSERT INTO Individus(Rang, Parent) VALUES(1,99)"_s), 3201);
    run(u"DELETE FROM Individus WHERE [ID Individus]=1"_s);
    EXPECT_EQ(single(u"SELECT group_concat([ID Individus]) FROM Individus"_s).toString(), u"5"_s);
}

TEST_F(RulesTest, ARelationOnNumbersHoldsInTheShell)
{
    db->AppendTable(plants());
    db->AppendTable({.Name = u"Images"_s, .Fields = {counter(u"ID Images"_s), field(u"ID Individus"_s, DataType::Long)}});
    db->AppendRelation({.Name = u"Images"_s, .Table = u"Individus"_s, .ForeignTable = u"Images"_s,
                        .Fields = {{u"ID Individus"_s, u"ID Individus"_s}}, .DeleteCascade = true});
    run(u"INSERT INTO Individus(Rang) VALUES(1); INSERT INTO Images([ID Individus]) VALUES(1),(1)"_s);
    close();
    EXPECT_TRUE(shell(u"INSERT INTO Images([ID Individus]) VALUES(2)"_s).refusal.contains(u"#3201#"_s));
    EXPECT_EQ(shell(u"PRAGMA foreign_keys=OFF; DELETE FROM Individus; SELECT count(*) FROM Images"_s).output, u"0"_s);
}

} // namespace
