// Definitions: what is made, changed and refused, in memory and in the file.
#include "FileFixture.h"

#include "jet/SqlText.h"

using namespace jet;

namespace {

class DatabaseTest : public FileFixture {
protected:
    void SetUp() override
    {
        FileFixture::SetUp();
        create();
        db->AppendTable(taxa());
    }

    static TableDef taxa()
    {
        using enum DataType;
        TableDef table{.Name = u"Taxons"_s};
        table.Fields = {counter(u"ID Taxons"_s), field(u"Nom"_s, Text, 60), field(u"Rang"_s, Long),
                        field(u"Auteurs"_s, Text)};
        table.Fields[1].Required = true;
        table.Fields[2].DefaultValue = u"=2"_s;
        table.Indexes = {primary(u"ID Taxons"_s), unique(u"Unique"_s, {u"Nom"_s, u"Auteurs"_s})};
        return table;
    }

    void addTaxa() { run(u"INSERT INTO Taxons(Nom, Rang) VALUES('Carex', 1), ('Poa', 7)"_s); }

    template <typename Work>
    int errorOf(Work&& work)
    {
        return failureOf(work).number();
    }

    const TableDef& table(const QString& name = u"Taxons"_s)
    {
        const TableDef* found = db->schema().table(name);
        EXPECT_NE(found, nullptr) << name.toStdString();
        static const TableDef none;
        return found ? *found : none;
    }
    QString columns(const QString& name = u"Taxons"_s)
    {
        QStringList names;
        for (const Field& one : table(name).Fields)
            names += one.Name;
        return names.join(u',');
    }
    QString indexes(const QString& name = u"Taxons"_s)
    {
        QStringList names;
        for (const Index& one : table(name).Indexes)
            names += one.Name;
        return names.join(u',');
    }
    QString values(const QString& column)
    {
        return single(u"SELECT group_concat(v) FROM (SELECT ifnull(%1,'-') AS v FROM Taxons ORDER BY [ID Taxons])"_s.arg(column)).toString();
    }
};

// --- Texts of statements -------------------------------------------------------------------------

TEST(SqlTextTest, NamesAndValuesAreQuoted)
{
    EXPECT_EQ(nom(u"ID Individus"_s), u"[ID Individus]"_s);
    EXPECT_EQ(failureOf([] { nom(u"a]; DROP"_s); }).number(), 3125);
    EXPECT_EQ(texte(u"dit \"Le Grand\""_s), u"\"dit \"\"Le Grand\"\"\""_s);
    EXPECT_EQ(nombre(0.1), u"0.1"_s);
    EXPECT_EQ(nombre(-1234567), u"-1234567"_s);
    EXPECT_EQ(liste({3, -1, 20}), u"3,-1,20"_s);
    EXPECT_EQ(liste({}), QString());
}

TEST(NamesTest, AreEqualWithoutCaseButWithAccents)
{
    EXPECT_TRUE(sameName(u"déterminations", u"DÉTERMINATIONS"));
    EXPECT_FALSE(sameName(u"Determinations", u"Déterminations"));
    EXPECT_EQ(nameKey(u"ÉTÉ"), nameKey(u"été"));
}

// --- Tables --------------------------------------------------------------------------------------

TEST_F(DatabaseTest, DefinitionsComeBackAsTheyWere)
{
    Field memo = field(u"Commentaire"_s, DataType::Memo);
    memo.AllowZeroLength = true;
    memo.ValidationRule = u"Is Null Or Like \"*a*\""_s;
    memo.ValidationText = u"Pas de « a » !"_s;
    db->AppendTable({.Name = u"Déterminations"_s,
                     .Fields = {memo, field(u"Vu"_s, DataType::Boolean), field(u"ID Taxons"_s, DataType::Long)},
                     .Indexes = {{.Name = u"Recherche"_s, .Fields = {{u"Vu"_s, true}, {u"ID Taxons"_s}}, .IgnoreNulls = true}}});
    db->AppendRelation({.Name = u"Déterminations"_s, .Table = u"taxons"_s, .ForeignTable = u"déterminations"_s,
                        .Fields = {{u"id taxons"_s, u"id taxons"_s}}, .DeleteCascade = true});
    db->CreateQueryDef(u"Tout"_s, u"SELECT * FROM Taxons"_s);
    reopen();
    EXPECT_EQ(columns(), u"ID Taxons,Nom,Rang,Auteurs"_s);
    EXPECT_EQ(table().Fields[3].Size, 255);
    EXPECT_TRUE(table().Fields[1].Required);
    EXPECT_TRUE(table().Fields[0].AutoIncrement);
    EXPECT_TRUE(table().primaryKey()->Unique);
    const TableDef& other = table(u"DÉTERMINATIONS"_s);
    ASSERT_EQ(other.Fields.size(), 3);
    EXPECT_EQ(other.Fields[0].ValidationRule, memo.ValidationRule);
    EXPECT_EQ(other.Fields[0].ValidationText, memo.ValidationText);
    EXPECT_TRUE(other.Fields[0].AllowZeroLength);
    EXPECT_EQ(other.rowIdColumn(), u"_rid"_s);
    ASSERT_EQ(other.Indexes.size(), 2);
    EXPECT_TRUE(other.Indexes[0].Fields[0].Descending);
    EXPECT_TRUE(other.Indexes[0].IgnoreNulls);
    EXPECT_TRUE(other.Indexes[1].Foreign);
    ASSERT_NE(db->schema().relation(u"déterminations"), nullptr);
    EXPECT_EQ(db->schema().relation(u"déterminations")->Table, u"Taxons"_s);
    EXPECT_TRUE(db->schema().relation(u"déterminations")->DeleteCascade);
    ASSERT_NE(db->schema().query(u"TOUT"), nullptr);
    EXPECT_TRUE(db->schema().query(u"TOUT")->LastUpdated.isValid());
    EXPECT_TRUE(db->Check().isEmpty());
}

TEST_F(DatabaseTest, ImpossibleTablesAreRefusedAndLeaveNothing)
{
    using enum DataType;
    const QList<Field> one{field(u"A"_s, Long)};
    const struct { TableDef table; int number; } cases[] = {
        {{.Name = u"TAXONS"_s, .Fields = one}, 3010},
        {{.Name = u"Vide"_s}, 3264},
        {{.Name = u"a.b"_s, .Fields = one}, 3125},
        {{.Name = u" a"_s, .Fields = one}, 3125},
        {{.Name = QString(65, u'a'), .Fields = one}, 3125},
        {{.Name = u"MSysTables"_s, .Fields = one}, 3125},
        {{.Name = u"Deux"_s, .Fields = {field(u"é"_s, Long), field(u"É"_s, Long)}}, 3191},
        {{.Name = u"Deux"_s, .Fields = {counter(u"A"_s), counter(u"B"_s)}}, 3219},
        {{.Name = u"Deux"_s, .Fields = {field(u"_rid"_s, Long)}}, 3125},
        {{.Name = u"Large"_s, .Fields = {field(u"A"_s, Text, 256)}}, 3163},
        {{.Name = u"Deux"_s, .Fields = one, .Indexes = {primary(u"B"_s)}}, 3409},
        {{.Name = u"Deux"_s, .Fields = one, .Indexes = {primary(u"A"_s), {.Name = u"P"_s, .Fields = {{u"A"_s}}, .Primary = true}}}, 3283},
        {{.Name = u"Deux"_s, .Fields = one, .Indexes = {primary(u"A"_s), primary(u"A"_s)}}, 3284},
        {{.Name = u"Défaut"_s, .Fields = {{.Name = u"A"_s, .Type = Long, .DefaultValue = u"\"abc\""_s}}}, 3320},
        {{.Name = u"Règle"_s, .Fields = {{.Name = u"A"_s, .Type = Long, .ValidationRule = u">"_s}}}, 3320},
    };
    for (const auto& [wrong, number] : cases)
        EXPECT_EQ(errorOf([&] { db->AppendTable(wrong); }), number) << wrong.Name.toStdString();
    EXPECT_EQ(db->schema().tables().size(), 1);
    EXPECT_EQ(single(u"SELECT count(*) FROM sqlite_schema WHERE type='table' AND name NOT LIKE 'MSys%'"
                     " AND name NOT LIKE 'sqlite%'"_s), 1);
}

TEST_F(DatabaseTest, ATableInARelationStays)
{
    db->AppendTable({.Name = u"Notes"_s, .Fields = {field(u"ID Taxons"_s, DataType::Long)}});
    db->AppendRelation({.Name = u"R"_s, .Table = u"Taxons"_s, .ForeignTable = u"Notes"_s,
                        .Fields = {{u"ID Taxons"_s, u"ID Taxons"_s}}});
    EXPECT_EQ(errorOf([&] { db->DeleteTable(u"Taxons"_s); }), 3281);
    EXPECT_EQ(errorOf([&] { db->DeleteTable(u"Notes"_s); }), 3281);
    EXPECT_EQ(errorOf([&] { db->DeleteField(u"Notes"_s, u"ID Taxons"_s); }), 3281);
    EXPECT_EQ(errorOf([&] { db->DeleteIndex(u"Notes"_s, u"R"_s); }), 3281);
    EXPECT_EQ(errorOf([&] { db->DeleteIndex(u"Taxons"_s, u"PrimaryKey"_s); }), 3281);
    db->DeleteRelation(u"R"_s);
    EXPECT_EQ(indexes(u"Notes"_s), QString());
    db->DeleteTable(u"notes"_s);
    EXPECT_EQ(errorOf([&] { db->DeleteTable(u"Notes"_s); }), 3265);
    EXPECT_EQ(single(u"SELECT count(*) FROM sqlite_schema WHERE tbl_name='Notes'"_s), 0);
}

TEST_F(DatabaseTest, DefaultsAreWrittenByTypeAndTheMomentIsTaken)
{
    using enum DataType;
    db->AppendTable({.Name = u"D"_s,
                     .Fields = {field(u"A"_s, Long), {.Name = u"Oui"_s, .Type = Boolean, .DefaultValue = u"Yes"_s},
                                {.Name = u"Texte"_s, .Type = Text, .DefaultValue = u"\"l'\"\"été\"\"\""_s},
                                {.Name = u"Réel"_s, .Type = Double, .DefaultValue = u"-1.5"_s},
                                {.Name = u"Le"_s, .Type = Date, .DefaultValue = u"Now()"_s}}});
    run(u"INSERT INTO D(A) VALUES(1)"_s);
    EXPECT_EQ(single(u"SELECT Oui || '|' || Texte || '|' || Réel || '|' || (Le > 40000) FROM D"_s),
              u"-1|l'\"été\"|-1.5|1"_s);
}

// --- Fields --------------------------------------------------------------------------------------

TEST_F(DatabaseTest, FieldsAreAddedBehindTheOthers)
{
    addTaxa();
    Field flag = field(u"Locked"_s, DataType::Boolean);
    flag.DefaultValue = u"False"_s;
    Field filled = field(u"Pays"_s, DataType::Text, 20);
    filled.Required = true;
    filled.DefaultValue = u"\"CH\""_s;
    Field optional = filled;
    optional.Name = u"Canton"_s;
    optional.Required = false;
    Field dated = field(u"Le"_s, DataType::Date);
    dated.DefaultValue = u"Now()"_s;
    for (const Field& one : {flag, filled, optional, dated})
        db->AppendField(u"Taxons"_s, one);
    EXPECT_EQ(columns(), u"ID Taxons,Nom,Rang,Auteurs,Locked,Pays,Canton,Le"_s);
    EXPECT_EQ(values(u"Locked || Pays"_s), u"0CH,0CH"_s);
    EXPECT_EQ(values(u"Canton"_s), u"-,-"_s) << "a default value is for records to come";
    EXPECT_EQ(values(u"Le"_s), u"-,-"_s);
    run(u"INSERT INTO Taxons(Nom) VALUES('Stipa')"_s);
    EXPECT_EQ(values(u"Canton"_s), u"-,-,CH"_s);
    EXPECT_EQ(errorOf([&] { run(u"UPDATE Taxons SET Pays=NULL"_s); }), 3314);

    EXPECT_EQ(errorOf([&] { db->AppendField(u"Taxons"_s, field(u"NOM"_s, DataType::Memo)); }), 3191);
    Field required = field(u"Manque"_s, DataType::Long);
    required.Required = true;
    reopen();
    EXPECT_EQ(columns(), u"ID Taxons,Nom,Rang,Auteurs,Locked,Pays,Canton,Le"_s);
    EXPECT_TRUE(db->Check().isEmpty());
    // A required field comes to a filled table: its rows keep Null until they are written again.
    db->AppendField(u"Taxons"_s, required);
    EXPECT_EQ(values(u"Manque"_s), u"-,-,-"_s);
    EXPECT_EQ(errorOf([&] { run(u"INSERT INTO Taxons(Nom) VALUES('Poa')"_s); }), 3314);
    EXPECT_FALSE(db->Check().isEmpty());
}

TEST_F(DatabaseTest, ATableGetsItsAutoNumberLater)
{
    db->AppendTable({.Name = u"Module"_s, .Fields = {field(u"A"_s, DataType::Text, 10)}});
    run(u"INSERT INTO Module(A) VALUES('un'),('deux'),('trois'); DELETE FROM Module WHERE A='trois'"_s);
    db->AppendField(u"Module"_s, counter(u"ID Module"_s));
    EXPECT_EQ(single(u"SELECT group_concat([ID Module] || A) FROM Module"_s), u"1un,2deux"_s);
    run(u"INSERT INTO Module(A) VALUES('x')"_s);
    EXPECT_EQ(single(u"SELECT max([ID Module]) FROM Module"_s), 4) << "a number that was given is not given again";
    db->DeleteField(u"Module"_s, u"ID Module"_s);
    EXPECT_EQ(single(u"SELECT group_concat(A) FROM Module"_s), u"un,deux,x"_s);
}

TEST_F(DatabaseTest, ADeletedFieldTakesItsIndexesAndRulesAlong)
{
    addTaxa();
    db->AppendIndex(u"Taxons"_s, unique(u"Rang"_s, {u"Rang"_s}));
    db->DeleteField(u"Taxons"_s, u"nom"_s);
    EXPECT_EQ(columns(), u"ID Taxons,Rang,Auteurs"_s);
    EXPECT_EQ(indexes(), u"PrimaryKey,Rang"_s);
    EXPECT_EQ(values(u"Rang"_s), u"1,7"_s);
    run(u"INSERT INTO Taxons(Auteurs) VALUES('L.')"_s);
    EXPECT_EQ(errorOf([&] { db->DeleteField(u"Taxons"_s, u"Nom"_s); }), 3265);
    reopen();
    EXPECT_EQ(columns(), u"ID Taxons,Rang,Auteurs"_s);
    EXPECT_TRUE(db->Check().isEmpty());
}

TEST_F(DatabaseTest, AFieldChangesItsRulesAndKeepsItsData)
{
    addTaxa();
    db->AppendTable({.Name = u"Notes"_s, .Fields = {field(u"T"_s, DataType::Long)}});
    db->AppendRelation({.Name = u"R"_s, .Table = u"Taxons"_s, .ForeignTable = u"Notes"_s,
                        .Fields = {{u"ID Taxons"_s, u"T"_s}}, .DeleteCascade = true});
    run(u"INSERT INTO Notes(T) VALUES(1); DELETE FROM Taxons WHERE Nom='Poa'"_s);
    Field name = table().Fields[1];
    name.Size = 4;
    name.Required = false;
    db->ChangeField(u"Taxons"_s, name);
    EXPECT_EQ(errorOf([&] { run(u"UPDATE Taxons SET Nom='Carex'"_s); }), 3163);
    run(u"INSERT INTO Taxons(Nom) VALUES(NULL)"_s);
    EXPECT_EQ(values(u"[ID Taxons]"_s), u"1,3"_s);

    // A default value stands in the table itself, which is written anew.
    Field rank = table().Fields[2];
    rank.DefaultValue = u"5"_s;
    run(u"DELETE FROM Taxons WHERE Nom IS NULL"_s);
    db->ChangeField(u"Taxons"_s, rank);
    run(u"INSERT INTO Taxons(Nom) VALUES('Iris')"_s);
    EXPECT_EQ(values(u"[ID Taxons] || Nom || Rang"_s), u"1Carex1,4Iris5"_s);
    EXPECT_EQ(errorOf([&] { run(u"INSERT INTO Taxons(Nom, Auteurs) VALUES('a','b'),('A','B ')"_s); }), 3022);
    EXPECT_EQ(errorOf([&] { run(u"INSERT INTO Notes(T) VALUES(9)"_s); }), 3201);
    run(u"DELETE FROM Taxons"_s);
    EXPECT_EQ(single(u"SELECT count(*) FROM Notes"_s), 0);

    rank.Type = DataType::Text;
    EXPECT_EQ(errorOf([&] { db->ChangeField(u"Taxons"_s, rank); }), 3219);
    EXPECT_TRUE(db->Check().isEmpty());
}

// --- Indexes -------------------------------------------------------------------------------------

TEST_F(DatabaseTest, IndexesAreRefusedOverRowsThatBreakThem)
{
    addTaxa();
    run(u"UPDATE Taxons SET Auteurs='L.'"_s);
    EXPECT_EQ(errorOf([&] { db->AppendIndex(u"Taxons"_s, unique(u"Auteurs"_s, {u"Auteurs"_s})); }), 3022);
    EXPECT_EQ(errorOf([&] { db->AppendIndex(u"Taxons"_s, unique(u"UNIQUE"_s, {u"Rang"_s})); }), 3284);
    EXPECT_EQ(errorOf([&] { db->AppendIndex(u"Taxons"_s, primary(u"Rang"_s)); }), 3284);
    Index second = primary(u"Rang"_s);
    second.Name = u"Autre"_s;
    EXPECT_EQ(errorOf([&] { db->AppendIndex(u"Taxons"_s, second); }), 3283);
    db->DeleteIndex(u"Taxons"_s, u"PrimaryKey"_s);
    run(u"UPDATE Taxons SET Rang=NULL WHERE Nom='Poa'"_s);
    EXPECT_EQ(errorOf([&] { db->AppendIndex(u"Taxons"_s, second); }), 3058);
    EXPECT_EQ(errorOf([&] { db->DeleteIndex(u"Taxons"_s, u"Autre"_s); }), 3372);
    EXPECT_EQ(indexes(), u"Unique"_s);
}

TEST_F(DatabaseTest, ReplacingIndexesRebuildsOnlyWhatDiffers)
{
    addTaxa();
    db->AppendTable({.Name = u"Notes"_s, .Fields = {field(u"ID Taxons"_s, DataType::Long), field(u"A"_s, DataType::Text)}});
    db->AppendRelation({.Name = u"R"_s, .Table = u"Taxons"_s, .ForeignTable = u"Notes"_s,
                        .Fields = {{u"ID Taxons"_s, u"ID Taxons"_s}}});
    EXPECT_TRUE(db->ReplaceIndexes(u"Notes"_s, {unique(u"A"_s, {u"A"_s})}).isEmpty());
    EXPECT_EQ(indexes(u"Notes"_s), u"R,A"_s) << "the index of a relation is not the caller's";

    run(u"UPDATE Taxons SET Rang=3"_s);
    const auto schemaVersion = [&] { return single(u"PRAGMA schema_version"_s); };
    const QVariant before = schemaVersion();
    EXPECT_TRUE(db->ReplaceIndexes(u"Taxons"_s, taxa().Indexes).isEmpty());
    EXPECT_EQ(schemaVersion(), before);

    // One that cannot be made does not hinder the others.
    const auto failures = db->ReplaceIndexes(
        u"Taxons"_s, {primary(u"ID Taxons"_s), unique(u"Rang"_s, {u"Rang"_s}), unique(u"Nom"_s, {u"Nom"_s})});
    ASSERT_EQ(failures.size(), 1);
    EXPECT_EQ(failures[0].index, u"Rang"_s);
    EXPECT_EQ(failures[0].number, 3022);
    EXPECT_EQ(indexes(), u"PrimaryKey,Nom"_s);
    reopen();
    EXPECT_EQ(indexes(), u"PrimaryKey,Nom"_s);
    EXPECT_TRUE(db->Check().isEmpty());
}

// --- Relations, queries, properties --------------------------------------------------------------

TEST_F(DatabaseTest, ImpossibleRelationsAreRefused)
{
    addTaxa();
    db->AppendTable({.Name = u"Notes"_s, .Fields = {field(u"T"_s, DataType::Long), field(u"N"_s, DataType::Text)}});
    run(u"INSERT INTO Notes(T) VALUES(1),(99),(NULL)"_s);
    const auto relation = [](const QString& primaryColumn, const QString& foreignColumn) {
        return Relation{.Name = u"R"_s, .Table = u"Taxons"_s, .ForeignTable = u"Notes"_s,
                        .Fields = {{primaryColumn, foreignColumn}}};
    };
    const auto append = [&](const Relation& one) { return errorOf([&] { db->AppendRelation(one); }); };
    EXPECT_EQ(append(relation(u"Rang"_s, u"T"_s)), 3609);
    EXPECT_EQ(append(relation(u"ID Taxons"_s, u"N"_s)), 3368);
    EXPECT_EQ(append(relation(u"ID Taxons"_s, u"Absent"_s)), 3409);
    EXPECT_EQ(append(relation(u"ID Taxons"_s, u"T"_s)), 3379);
    EXPECT_EQ(append({.Name = u"R"_s, .Table = u"Taxons"_s, .ForeignTable = u"Notes"_s}), 3366);
    EXPECT_EQ(indexes(u"Notes"_s), QString());
    run(u"DELETE FROM Notes WHERE T=99"_s);
    EXPECT_EQ(append(relation(u"ID Taxons"_s, u"T"_s)), 0);
    EXPECT_EQ(append(relation(u"ID Taxons"_s, u"T"_s)), 3012);
    EXPECT_EQ(errorOf([&] { db->DeleteRelation(u"S"_s); }), 3265);
}

TEST_F(DatabaseTest, StoredQueriesAreParsedAndNamedOnce)
{
    EXPECT_EQ(errorOf([&] { db->CreateQueryDef(u"Q"_s, u"SELECT FROM WHERE"_s); }), 3141);
    EXPECT_EQ(errorOf([&] { db->CreateQueryDef(u"Taxons"_s, u"SELECT * FROM Taxons"_s); }), 3012);
    db->CreateQueryDef(u"Q"_s, u"SELECT * FROM Taxons"_s);
    EXPECT_EQ(errorOf([&] { db->CreateQueryDef(u"q"_s, u"SELECT * FROM Taxons"_s); }), 3012);
    db->DeleteQueryDef(u"q"_s);
    EXPECT_EQ(errorOf([&] { db->DeleteQueryDef(u"Q"_s); }), 3265);
}

TEST_F(DatabaseTest, PropertiesKeepTheirTypes)
{
    const QList<QPair<QString, QVariant>> properties{
        {u"Texte"_s, u"1.0"_s}, {u"Vide"_s, QString()}, {u"Entier"_s, 7}, {u"Réel"_s, 2.0}, {u"Oui"_s, true},
        {u"Date"_s, QDateTime(QDate(2024, 5, 6), QTime(7, 8, 9))}, {u"Octets"_s, QByteArray("a\0b", 3)}, {u"Rien"_s, {}}};
    for (const auto& [name, value] : properties)
        db->SetProperty(name, value);
    db->SetProperty(u"ENTIER"_s, 8);
    reopen();
    for (const auto& [name, value] : properties)
        EXPECT_EQ(db->Property(name), name == u"Entier"_s ? QVariant(8) : value) << name.toStdString();
    EXPECT_TRUE(db->hasProperty(u"réel"_s));
    EXPECT_FALSE(db->hasProperty(u"reel"_s));
    EXPECT_EQ(errorOf([&] { db->Property(u"reel"_s); }), 3270);
}

TEST_F(DatabaseTest, NothingIsDoneOnceItIsClosed)
{
    db->Close();
    db->Close();
    EXPECT_FALSE(db->isOpen());
    EXPECT_EQ(errorOf([&] { db->AppendTable({.Name = u"T"_s, .Fields = {field(u"A"_s, DataType::Long)}}); }), 3420);
    EXPECT_EQ(errorOf([&] { db->SetProperty(u"a"_s, 1); }), 3420);
    EXPECT_EQ(errorOf([&] { db->Check(); }), 3420);
    EXPECT_EQ(filesBeside(), QStringList{u"essai.hbx"_s});
}

TEST_F(DatabaseTest, AChangeWithinAnOperationGoesWithIt)
{
    db->BeginOperation(u"Structure"_s);
    db->AppendField(u"Taxons"_s, field(u"Neuf"_s, DataType::Long));
    db->AppendTable({.Name = u"T"_s, .Fields = {field(u"A"_s, DataType::Long)}});
    EXPECT_EQ(errorOf([&] { db->AppendTable({.Name = u"T"_s, .Fields = {field(u"A"_s, DataType::Long)}}); }), 3010);
    EXPECT_NE(db->schema().table(u"T"), nullptr) << "what failed takes nothing else back";
    db->RollbackOperation();
    EXPECT_EQ(columns(), u"ID Taxons,Nom,Rang,Auteurs"_s);
    EXPECT_EQ(db->schema().table(u"T"), nullptr);
    EXPECT_TRUE(db->Check().isEmpty());
}

} // namespace
