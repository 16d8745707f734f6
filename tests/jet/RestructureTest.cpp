// Tables and columns under other names and of other types, with rows, indexes and relations in place.
#include "FileFixture.h"

#include "jet/ColumnTest.h"

using namespace jet;

namespace {

class RestructureTest : public FileFixture {
protected:
    void SetUp() override
    {
        FileFixture::SetUp();
        create();
        using enum DataType;
        TableDef people{.Name = u"Gens"_s};
        people.Fields = {{.Name = u"ID Gens"_s, .Type = Long, .AutoIncrement = true},
                         {.Name = u"Nom"_s, .Type = Text, .Size = 40, .Required = true}};
        people.Indexes = {{.Name = u"PrimaryKey"_s, .Fields = {{u"ID Gens"_s}}, .Primary = true, .Unique = true}};
        db->AppendTable(people);
        TableDef sheets{.Name = u"Parts"_s};
        sheets.Fields = {{.Name = u"ID Parts"_s, .Type = Long, .AutoIncrement = true},
                         {.Name = u"Taille"_s, .Type = Text, .Size = 20, .ValidationRule = u"<>\"grand\""_s,
                          .ValidationText = u"Donnez une mesure"_s},
                         {.Name = u"Vu"_s, .Type = Boolean},
                         {.Name = u"ID Gens"_s, .Type = Long}};
        sheets.Indexes = {{.Name = u"PrimaryKey"_s, .Fields = {{u"ID Parts"_s}}, .Primary = true, .Unique = true},
                          {.Name = u"Taille"_s, .Fields = {{u"Taille"_s}}, .Unique = true},
                          {.Name = u"Deux"_s, .Fields = {{u"ID Gens"_s}, {u"Vu"_s}}}};
        db->AppendTable(sheets);
        Relation relation{.Name = u"Auteurs"_s, .Table = u"Gens"_s, .ForeignTable = u"Parts"_s};
        relation.Fields = {{u"ID Gens"_s, u"ID Gens"_s}};
        relation.DeleteCascade = true;
        db->AppendRelation(relation);
        db->Execute(u"INSERT INTO Gens (Nom) VALUES ('Jeanne')"_s);
        db->Execute(u"INSERT INTO Gens (Nom) VALUES ('Pierre')"_s);
        for (const QString& values : {u"'1,5', True, 1"_s, u"'haut', False, 1"_s, u"Null, True, 2"_s})
            db->Execute(u"INSERT INTO Parts (Taille, Vu, [ID Gens]) VALUES (%1)"_s.arg(values));
    }

    QString rows(const QString& statement)
    {
        QStringList lines;
        const auto set = db->OpenRecordset(statement);
        for (; !set->EOF_(); set->MoveNext()) {
            QStringList cells;
            for (int column = 0; column < set->FieldCount(); ++column)
                cells << (set->Value(column).isValid() ? set->Value(column).toString() : u"∅"_s);
            lines << cells.join(u'|');
        }
        return lines.join(u' ');
    }
    int refusal(const QString& statement)
    {
        return failureOf([&] { db->Execute(statement); }).number();
    }
    /// In the file as in memory.
    void expectSound()
    {
        EXPECT_EQ(db->Check(), QStringList());
        reopen();
        EXPECT_EQ(db->Check(), QStringList());
    }
};

TEST_F(RestructureTest, ARenamedTableKeepsRowsRulesIndexesAndRelations)
{
    db->RenameTable(u"Parts"_s, u"Planches d'été"_s);
    db->RenameTable(u"Gens"_s, u"GENS"_s); // the same name in other letters
    expectSound();
    EXPECT_EQ(rows(u"SELECT Taille, Vu, [ID Gens] FROM [Planches d'été] ORDER BY [ID Parts]"_s),
              u"1,5|true|1 haut|false|1 ∅|true|2"_s);
    EXPECT_EQ(refusal(u"INSERT INTO [Planches d'été] (Taille) VALUES ('HAUT')"_s), 3022);
    EXPECT_EQ(refusal(u"UPDATE [Planches d'été] SET Taille='grand' WHERE [ID Parts]=1"_s), 3316);
    EXPECT_EQ(refusal(u"INSERT INTO [Planches d'été] ([ID Gens]) VALUES (9)"_s), 3201);
    EXPECT_EQ(db->Execute(u"DELETE * FROM Gens WHERE [ID Gens]=1"_s), 1);
    EXPECT_EQ(rows(u"SELECT Count(*) FROM [Planches d'été]"_s), u"1"_s);
    // The counter goes on.
    db->Execute(u"INSERT INTO [Planches d'été] (Taille) VALUES ('z')"_s);
    EXPECT_EQ(rows(u"SELECT Max([ID Parts]) FROM [Planches d'été]"_s), u"4"_s);
    EXPECT_EQ(failureOf([&] { db->RenameTable(u"Planches d'été"_s, u"gens"_s); }).number(), 3010);
}

TEST_F(RestructureTest, ARenamedColumnKeepsValuesIndexesAndRelations)
{
    db->RenameField(u"Gens"_s, u"ID Gens"_s, {.Name = u"ID Auteurs"_s, .Type = DataType::Long, .AutoIncrement = true});
    db->RenameField(u"Parts"_s, u"ID Gens"_s, {.Name = u"Auteur"_s, .Type = DataType::Long, .Required = true});
    Field height = *db->schema().table(u"Parts")->field(u"Taille");
    height.Name = u"Hauteur"_s;
    height.ValidationRule = u"<>\"bas\""_s;
    db->RenameField(u"Parts"_s, u"Taille"_s, height);
    expectSound();
    EXPECT_EQ(rows(u"SELECT Hauteur, Auteur FROM Parts INNER JOIN Gens ON Parts.Auteur=Gens.[ID Auteurs] "
                   "ORDER BY [ID Parts]"_s),
              u"1,5|1 haut|1 ∅|2"_s);
    EXPECT_EQ(refusal(u"UPDATE Parts SET Hauteur='haut' WHERE [ID Parts]=1"_s), 3022);
    EXPECT_EQ(refusal(u"UPDATE Parts SET Hauteur='bas' WHERE [ID Parts]=1"_s), 3316);
    EXPECT_EQ(refusal(u"INSERT INTO Parts (Hauteur) VALUES ('q')"_s), 3314);
    EXPECT_EQ(refusal(u"INSERT INTO Parts (Auteur) VALUES (9)"_s), 3201);
    EXPECT_EQ(db->Execute(u"DELETE * FROM Gens WHERE [ID Auteurs]=2"_s), 1);
    EXPECT_EQ(rows(u"SELECT Count(*) FROM Parts"_s), u"2"_s);
    EXPECT_EQ(failureOf([&] { db->RenameField(u"Parts"_s, u"Vu"_s, {.Name = u"auteur"_s, .Type = DataType::Boolean}); })
                  .number(),
              3191);
}

TEST_F(RestructureTest, ConvertsEachValueAsItIsTold)
{
    const auto converter = [](const QString& column, const QVariant& value) -> QVariant {
        if (column == u"Vu")
            return value.toBool() ? u"oui"_s : u"non"_s;
        bool number = false;
        const double read = value.toString().replace(u',', u'.').toDouble(&number);
        return number ? QVariant(read) : QVariant();
    };
    db->ConvertFields(u"Parts"_s, {{.Name = u"Taille"_s, .Type = DataType::Double, .ValidationRule = u">0"_s},
                                   {.Name = u"Vu"_s, .Type = DataType::Text, .Size = 3}},
                      converter);
    expectSound();
    EXPECT_EQ(rows(u"SELECT Taille, Vu, [ID Gens] FROM Parts ORDER BY [ID Parts]"_s), u"1.5|oui|1 ∅|non|1 ∅|oui|2"_s);
    EXPECT_EQ(refusal(u"UPDATE Parts SET Taille=-1"_s), 3317);
    EXPECT_EQ(refusal(u"INSERT INTO Parts ([ID Gens]) VALUES (9)"_s), 3201);
    // What was indexed was of another kind.
    EXPECT_FALSE(db->schema().table(u"Parts")->index(u"Taille"));
    EXPECT_FALSE(db->schema().table(u"Parts")->index(u"Deux"));
    EXPECT_TRUE(db->schema().table(u"Parts")->index(u"PrimaryKey"));
    EXPECT_EQ(failureOf([&] {
                  db->ConvertFields(u"Parts"_s, {{.Name = u"ID Gens"_s, .Type = DataType::Text}}, converter);
              }).number(),
              3281);
}

/// Neither the file nor what is known of it changes.
TEST_F(RestructureTest, AFailureUndoesTheWhole)
{
    const auto failing = [](const QString&, const QVariant&) -> QVariant { fail(3421, u"x"_s, u"Taille"_s); };
    EXPECT_EQ(failureOf([&] {
                  db->ConvertFields(u"Parts"_s, {{.Name = u"Taille"_s, .Type = DataType::Double}}, failing);
              }).number(),
              3421);
    EXPECT_EQ(failureOf([&] {
                  db->RenameField(u"Parts"_s, u"Taille"_s,
                                  {.Name = u"Hauteur"_s, .Type = DataType::Text, .ValidationRule = u">> 3"_s});
              }).number(),
              3320);
    EXPECT_EQ(db->schema().table(u"Parts")->field(u"Taille")->Type, DataType::Text);
    expectSound();
    EXPECT_EQ(rows(u"SELECT Taille FROM Parts ORDER BY [ID Parts]"_s), u"1,5 haut ∅"_s);
    {
        const Operation operation(*db, u"essai"_s);
        db->RenameTable(u"Parts"_s, u"Planches"_s);
    }
    EXPECT_TRUE(db->schema().table(u"Parts"));
    expectSound();
}

TEST_F(RestructureTest, FindsWhatARuleWouldRefuse)
{
    using enum DataType;
    const Field rule{.Name = u"Taille"_s, .Type = Text, .ValidationRule = u"Like \"h*\""_s};
    Breaches found = refusedIn(*db, u"Parts"_s, rule, 10);
    EXPECT_EQ(found.count, 1);
    EXPECT_EQ(found.first, QList<qint32>{1});
    found = nullsIn(*db, u"Parts"_s, rule, 10);
    EXPECT_EQ(found.first, QList<qint32>{3});
    found = duplicatesIn(*db, u"Parts"_s, {u"ID Gens"_s}, 1);
    EXPECT_EQ(found.count, 2);
    EXPECT_EQ(found.first, QList<qint32>{1}); // no more than asked for
    EXPECT_EQ(duplicatesIn(*db, u"Parts"_s, {u"ID Gens"_s, u"Taille"_s}, 10).count, 0);
    RuleTest test(*db, rule);
    EXPECT_TRUE(test.accepts(u"Haie"_s));
    EXPECT_FALSE(test.accepts(u"bas"_s));
    EXPECT_TRUE(test.accepts(QVariant()));
    EXPECT_EQ(failureOf([] { checkRule({.Name = u"a"_s, .Type = Long, .ValidationRule = u"> >"_s}); }).number(), 3320);
}

TEST_F(RestructureTest, CopiesTheOpenFile)
{
    const QString copy = folder.filePath(u"copie.hbx"_s);
    db->SaveCopy(copy);
    db->Execute(u"DELETE * FROM Parts"_s); // the copy is its own
    EXPECT_EQ(failureOf([&] { db->SaveCopy(copy); }).number(), 3204);
    const auto copied = Database::Open(copy);
    EXPECT_EQ(copied->Check(), QStringList());
    EXPECT_EQ(copied->OpenRecordset(u"SELECT Count(*) FROM Parts"_s)->Value(0).toInt(), 3);
    {
        const Operation operation(*db, u"essai"_s);
        EXPECT_EQ(failureOf([&] { db->SaveCopy(folder.filePath(u"autre.hbx"_s)); }).number(), 3034);
    }
    EXPECT_EQ(QDir(folder.path()).entryList({u"*autre*"_s}, QDir::Files | QDir::Hidden), QStringList());
}

} // namespace
