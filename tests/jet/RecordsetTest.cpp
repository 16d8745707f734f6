// Record sets on real files: positions, values, edits, Seek.
#include "EngineFixture.h"

#include <QRandomGenerator>
#include <QSet>

using jet::RecordsetType;

namespace {

struct PositionCase {
    const char* name;
    QString source;
    RecordsetType type;
};

void PrintTo(const PositionCase& c, std::ostream* out)
{
    *out << c.name;
}

class Positions : public EngineFixture, public ::testing::WithParamInterface<PositionCase> {
protected:
    std::unique_ptr<jet::Recordset> open()
    {
        return db->OpenRecordset(GetParam().source, GetParam().type);
    }
};

TEST_P(Positions, FollowTheRulesOfBothEnds)
{
    for (const auto* name : {u"Carex", u"Draba", u"Eryngium"})
        addTaxon(QStringView(name).toString());
    const auto rows = open();
    EXPECT_EQ(rows->Value(u"Nom"), u"Carex"_s);
    rows->MovePrevious();
    EXPECT_TRUE(rows->BOF());
    EXPECT_FALSE(rows->EOF_());
    EXPECT_EQ(errorOf([&] { rows->Value(u"Nom"); }), 3021);
    EXPECT_EQ(errorOf([&] { rows->MovePrevious(); }), 3021);
    rows->MoveNext();
    EXPECT_EQ(rows->Value(u"Nom"), u"Carex"_s);
    rows->Move(2);
    EXPECT_EQ(rows->Value(u"Nom"), u"Eryngium"_s);
    rows->MoveNext();
    EXPECT_TRUE(rows->EOF_());
    EXPECT_EQ(errorOf([&] { rows->MoveNext(); }), 3021);
    rows->MovePrevious();
    EXPECT_EQ(rows->Value(u"Nom"), u"Eryngium"_s);
    rows->MovePrevious();
    EXPECT_EQ(rows->Value(u"Nom"), u"Draba"_s);
    rows->Move(-5);
    EXPECT_TRUE(rows->BOF());
    rows->MoveLast();
    EXPECT_EQ(rows->Value(u"Nom"), u"Eryngium"_s);
    EXPECT_EQ(rows->RecordCount(), 3);
    rows->MoveFirst();
    EXPECT_EQ(rows->Value(u"Nom"), u"Carex"_s);
}

TEST_P(Positions, AreAtBothEndsOfAnEmptySet)
{
    const auto rows = open();
    EXPECT_TRUE(rows->BOF());
    EXPECT_TRUE(rows->EOF_());
    EXPECT_EQ(rows->RecordCount(), 0);
    EXPECT_EQ(errorOf([&] { rows->MoveFirst(); }), 3021);
    EXPECT_EQ(errorOf([&] { rows->MoveNext(); }), 3021);
    EXPECT_TRUE(rows->GetRows(10).empty());
}

TEST_P(Positions, AreLostWithTheDatabase)
{
    addTaxon(u"Carex"_s);
    const auto rows = open();
    db->Close();
    EXPECT_EQ(errorOf([&] { rows->Value(u"Nom"); }), 3420);
    EXPECT_EQ(errorOf([&] { rows->EOF_(); }), 3420);
    EXPECT_EQ(errorOf([&] { rows->GetRows(1); }), 3420);
}

INSTANTIATE_TEST_SUITE_P(
    AllKinds, Positions,
    ::testing::Values(
        PositionCase{"table", u"Taxons"_s, RecordsetType::Table},
        PositionCase{"dynaset", u"Taxons"_s, RecordsetType::Dynaset},
        PositionCase{"ordered", u"SELECT Nom FROM Taxons ORDER BY Nom"_s, RecordsetType::Dynaset},
        PositionCase{"distinct", u"SELECT DISTINCT Nom FROM Taxons"_s, RecordsetType::Snapshot}),
    [](const auto& info) { return std::string(info.param.name); });

class RecordsetTest : public EngineFixture {
protected:
    void addNames(const QStringList& names)
    {
        for (const QString& name : names)
            addTaxon(name);
    }
};

TEST_F(RecordsetTest, RecordCountOfAStatementCountsVisitedRows)
{
    addNames({u"a"_s, u"b"_s, u"c"_s, u"d"_s});
    const auto rows = db->OpenRecordset(u"Taxons"_s);
    EXPECT_EQ(rows->RecordCount(), 1);
    rows->Move(2);
    EXPECT_EQ(rows->RecordCount(), 3);
    db->Execute(u"UPDATE Taxons SET Rang=1"_s);
    EXPECT_EQ(rows->RecordCount(), 3) << "a write reads on, but nobody has come there";
    rows->MoveLast();
    rows->MoveFirst();
    EXPECT_EQ(rows->RecordCount(), 4);
}

TEST_F(RecordsetTest, AbsolutePositionLeadsToAnyRow)
{
    jet::Operation operation(*db, u"remplissage"_s);
    for (int number = 0; number < 50; ++number)
        addTaxon(u"Taxon %1"_s.arg(number, 2, 10, QChar(u'0')));
    operation.commit();
    const auto rows = db->OpenRecordset(u"SELECT Nom FROM Taxons ORDER BY Nom DESC"_s);
    for (const int position : {49, 0, 31, 7}) {
        rows->SetAbsolutePosition(position);
        EXPECT_EQ(rows->AbsolutePosition(), position);
        EXPECT_EQ(rows->Value(0), u"Taxon %1"_s.arg(49 - position, 2, 10, QChar(u'0')));
    }
    EXPECT_EQ(errorOf([&] { rows->SetAbsolutePosition(50); }), 3021);
}

TEST_F(RecordsetTest, AddNewKeepsTheCurrentRecordAndLeadsToTheNewOne)
{
    addNames({u"a"_s, u"b"_s});
    for (const auto type : {RecordsetType::Table, RecordsetType::Dynaset}) {
        const auto rows = db->OpenRecordset(u"Taxons"_s, type);
        rows->MoveNext();
        rows->AddNew();
        rows->SetValue(u"nom", u"nouveau %1"_s.arg(int(type)));
        EXPECT_EQ(rows->Value(u"Nom"), u"nouveau %1"_s.arg(int(type)));
        EXPECT_FALSE(rows->Value(u"Rang").isValid());
        rows->Update();
        EXPECT_EQ(rows->Value(u"Nom"), u"b"_s);
        rows->MoveToLastModified();
        EXPECT_EQ(rows->Value(u"Nom"), u"nouveau %1"_s.arg(int(type)));
        EXPECT_EQ(rows->Value(u"ID Taxons").toLongLong(), rows->RowId());
    }
    EXPECT_EQ(rowsOf(u"SELECT Nom FROM Taxons ORDER BY [ID Taxons]"_s),
              QStringList({u"a"_s, u"b"_s, u"nouveau 1"_s, u"nouveau 2"_s}));
}

TEST_F(RecordsetTest, MovingDiscardsADraftAndUpdateNeedsOne)
{
    addNames({u"a"_s, u"b"_s});
    const auto rows = db->OpenRecordset(u"Taxons"_s);
    EXPECT_EQ(errorOf([&] { rows->Update(); }), 3020);
    EXPECT_EQ(errorOf([&] { rows->SetValue(u"Nom", u"x"_s); }), 3020);
    rows->Edit();
    rows->SetValue(u"Nom", u"perdu"_s);
    rows->MoveNext();
    EXPECT_FALSE(rows->Editing());
    EXPECT_EQ(errorOf([&] { rows->Update(); }), 3020);
    rows->AddNew();
    rows->SetValue(u"Nom", u"perdu"_s);
    rows->CancelUpdate();
    EXPECT_EQ(rowsOf(u"SELECT Nom FROM Taxons"_s), QStringList({u"a"_s, u"b"_s}));
}

TEST_F(RecordsetTest, ARefusedUpdateKeepsTheDraft)
{
    addNames({u"a"_s, u"b"_s});
    const auto rows = db->OpenRecordset(u"Taxons"_s);
    rows->Edit();
    rows->SetValue(u"Nom", QVariant());
    EXPECT_EQ(errorOf([&] { rows->Update(); }), 3314);
    EXPECT_TRUE(rows->Editing());
    rows->SetValue(u"Nom", u"c"_s);
    rows->Update();
    EXPECT_EQ(rows->Value(u"Nom"), u"c"_s);
}

TEST_F(RecordsetTest, EditsThroughAJoinReachTheTableOfEachColumn)
{
    addNames({u"Carex"_s, u"Draba"_s});
    addPlant(u"P1"_s, 1);
    addPlant(u"P2"_s, QVariant());
    const auto rows = db->OpenRecordset(
        u"SELECT [Numéro], Nom, Rang, Len(Nom) AS Longueur FROM Individus LEFT JOIN "
        u"Taxons ON Individus.[ID Taxons]=Taxons.[ID Taxons]"_s);
    ASSERT_TRUE(rows->Updatable());
    rows->Edit();
    EXPECT_EQ(errorOf([&] { rows->SetValue(u"Longueur", 3); }), 3326);
    EXPECT_EQ(errorOf([&] {
                  const auto table = db->OpenRecordset(u"Taxons"_s, RecordsetType::Table);
                  table->Edit();
                  table->SetValue(u"ID Taxons", 7);
              }),
              3164);
    rows->SetValue(u"Numéro", u"P1 bis"_s);
    rows->SetValue(u"Nom", u"Carex alba"_s);
    rows->Update();
    EXPECT_EQ(rows->Value(u"Nom"), u"Carex alba"_s);
    EXPECT_EQ(rows->Value(u"Longueur"), 10);
    rows->MoveNext();
    EXPECT_EQ(rows->RowId(1), 0);
    rows->Edit();
    rows->SetValue(u"Numéro", u"P2 bis"_s);
    rows->SetValue(u"Nom", u"personne"_s);
    EXPECT_EQ(errorOf([&] { rows->Update(); }), 3326) << "the null side has no record";
    EXPECT_EQ(errorOf([&] { rows->AddNew(); }), 3326);
    EXPECT_EQ(rowsOf(u"SELECT [Numéro] FROM Individus"_s), QStringList({u"P1 bis"_s, u"P2"_s}));
    EXPECT_EQ(rowsOf(u"SELECT Nom FROM Taxons"_s), QStringList({u"Carex alba"_s, u"Draba"_s}));
}

TEST_F(RecordsetTest, SetsWithoutRecordsBehindThemAreNotEdited)
{
    addNames({u"a"_s});
    const auto snapshot = db->OpenRecordset(u"Taxons"_s, RecordsetType::Snapshot);
    const auto groups = db->OpenRecordset(u"SELECT Nom, Count(*) AS n FROM Taxons GROUP BY Nom"_s);
    for (const auto* rows : {&snapshot, &groups}) {
        EXPECT_FALSE((*rows)->Updatable());
        EXPECT_EQ(errorOf([&] { (*rows)->Edit(); }), 3326);
        EXPECT_EQ(errorOf([&] { (*rows)->AddNew(); }), 3326);
        EXPECT_EQ(errorOf([&] { (*rows)->Delete(); }), 3326);
    }
}

TEST_F(RecordsetTest, ARowDeletedElsewhereSaysSo)
{
    addNames({u"a"_s, u"b"_s, u"c"_s});
    for (const auto type : {RecordsetType::Dynaset, RecordsetType::Table}) {
        const auto rows = db->OpenRecordset(u"Taxons"_s, type);
        rows->MoveNext();
        const QString name = rows->Value(u"Nom").toString();
        db->Execute(u"DELETE FROM Taxons WHERE Nom=\"%1\""_s.arg(name));
        EXPECT_EQ(errorOf([&] { rows->Value(u"Nom"); }), 3167);
        rows->MoveNext();
        EXPECT_EQ(rows->EOF_(), name == u"c"_s);
    }
}

TEST_F(RecordsetTest, ARowOfAJoinSaysWhichRecordIsGone)
{
    addNames({u"Carex"_s});
    addPlant(u"P1"_s, 1);
    addPlant(u"P2"_s, QVariant());
    const auto rows =
        db->OpenRecordset(u"SELECT [Numéro], Nom, Auteurs FROM Individus LEFT JOIN Taxons ON "
                          u"Individus.[ID Taxons]=Taxons.[ID Taxons] ORDER BY [Numéro]"_s);
    EXPECT_FALSE(rows->Value(u"Auteurs").isValid()) << "Null, and the record is there";
    db->Execute(u"DELETE * FROM Taxons"_s);
    EXPECT_EQ(rows->Value(u"Numéro"), u"P1"_s);
    EXPECT_EQ(errorOf([&] { rows->Value(u"Nom"); }), 3167);
    rows->MoveNext();
    EXPECT_FALSE(rows->Value(u"Nom").isValid()) << "Null, because there never was a record";
}

TEST_F(RecordsetTest, DeletingInALoopEmptiesTheTable)
{
    for (const auto type : {RecordsetType::Dynaset, RecordsetType::Table}) {
        for (int number = 0; number < 20; ++number)
            addTaxon(u"t%1"_s.arg(number), QVariant(), number % 3);
        const auto rows = db->OpenRecordset(u"Taxons"_s, type);
        if (type == RecordsetType::Table)
            rows->SetIndex(u"Rang"_s);
        int deleted = 0;
        for (; !rows->EOF_(); rows->MoveNext(), ++deleted) {
            rows->Delete();
            EXPECT_EQ(errorOf([&] { rows->Value(u"Nom"); }), 3167);
        }
        EXPECT_EQ(deleted, 20);
        EXPECT_TRUE(rows->BOF()) << "nothing is left on either side";
        EXPECT_EQ(valueOf(u"SELECT Count(*) FROM Taxons"_s), 0);
    }
}

TEST_F(RecordsetTest, OwnDeletionsLeaveNoGapInThePositions)
{
    addNames({u"a"_s, u"b"_s, u"c"_s, u"d"_s});
    const auto rows = db->OpenRecordset(u"SELECT * FROM Taxons ORDER BY Nom"_s);
    rows->MoveNext();
    rows->Delete();
    rows->MoveNext();
    EXPECT_EQ(rows->Value(u"Nom"), u"c"_s);
    EXPECT_EQ(rows->AbsolutePosition(), 1);
    rows->MovePrevious();
    EXPECT_EQ(rows->Value(u"Nom"), u"a"_s);
    rows->SetAbsolutePosition(2);
    EXPECT_EQ(rows->Value(u"Nom"), u"d"_s);
    EXPECT_EQ(rows->RecordCount(), 3);
}

TEST_F(RecordsetTest, WritingWhileReadingVisitsEachRowOnce)
{
    jet::Operation operation(*db, u"essai"_s);
    for (int number = 0; number < 200; ++number)
        addTaxon(u"t%1"_s.arg(number), QVariant(), number);
    const auto rows = db->OpenRecordset(u"SELECT [ID Taxons], Rang FROM Taxons WHERE Rang>=0"_s);
    int visited = 0;
    QSet<qint64> seen;
    for (; !rows->EOF_(); rows->MoveNext(), ++visited) {
        EXPECT_LT(rows->Value(u"Rang").toInt(), 1000);
        seen.insert(rows->RowId());
        // The change moves the record within the index that may give the rows.
        db->Execute(u"UPDATE Taxons SET Rang=Rang+1000 WHERE [ID Taxons]=%1"_s.arg(rows->RowId()));
        db->Execute(u"INSERT INTO Taxons (Nom, Rang) VALUES (\"n%1\", 5)"_s.arg(visited));
    }
    EXPECT_EQ(visited, 200);
    EXPECT_EQ(seen.size(), 200);
    EXPECT_EQ(valueOf(u"SELECT Count(*) FROM Taxons WHERE Rang>=1000"_s), 200);
}

TEST_F(RecordsetTest, TypedValuesComeBackAsTheyWent)
{
    const QDateTime moment(QDate(1753, 5, 1), QTime(13, 30, 5));
    const auto rows = db->OpenRecordset(u"Taxons"_s, RecordsetType::Table);
    rows->AddNew();
    rows->SetValue(u"Nom", u"Cárex l'\"été\" 🌿"_s);
    rows->SetValue(u"Rang", 3.5);
    rows->SetValue(u"Valide", true);
    rows->SetValue(u"Altitude", u"1234.5"_s);
    rows->SetValue(u"Décrit", moment);
    rows->SetValue(u"Photo", QByteArray("a\0b", 3));
    rows->Update();
    rows->AddNew();
    rows->SetValue(u"Nom", u"vide"_s);
    rows->SetValue(u"Valide", QVariant());
    rows->Update();
    rows->MoveFirst();
    EXPECT_EQ(rows->Value(u"Nom"), u"Cárex l'\"été\" 🌿"_s);
    EXPECT_EQ(rows->Value(u"Rang"), QVariant(4)) << "halves go to the even neighbour";
    EXPECT_EQ(rows->Value(u"Valide"), QVariant(true));
    EXPECT_EQ(rows->Value(u"Altitude"), QVariant(1234.5));
    EXPECT_EQ(rows->Value(u"Décrit"), QVariant(moment));
    EXPECT_EQ(rows->Value(u"Photo"), QVariant(QByteArray("a\0b", 3)));
    EXPECT_FALSE(rows->Value(u"Notes").isValid());
    rows->MoveNext();
    EXPECT_EQ(rows->Value(u"Valide"), QVariant(false)) << "yes/no is never Null";
    EXPECT_FALSE(rows->Value(u"Rang").isValid());
}

TEST_F(RecordsetTest, ValuesThatDoNotFitAreRefusedAtAssignment)
{
    struct Case {
        QString column;
        QVariant value;
        int error;
    };
    const QList<Case> cases = {
        {u"Rang"_s, u"douze"_s, 3421},
        {u"Rang"_s, 3e9, 3421},
        {u"Rang"_s, QByteArray("x"), 3421},
        {u"Décrit"_s, u"hier"_s, 3421},
        {u"Photo"_s, u"texte"_s, 3421},
        {u"Nom"_s, QString(61, u'x'), 3163},
        {u"Nom"_s, QString(60, u'x'), 0},
        {u"Rang"_s, u" 12 "_s, 0},
        {u"Décrit"_s, u"1/5/1753"_s, 0},
        {u"Valide"_s, u"Vrai"_s, 0},
        {u"Absent"_s, 1, 3265},
    };
    const auto rows = db->OpenRecordset(u"Taxons"_s);
    rows->AddNew();
    for (const Case& c : cases)
        EXPECT_EQ(errorOf([&] { rows->SetValue(c.column, c.value); }), c.error)
            << c.column.toStdString();
}

TEST_F(RecordsetTest, LongValuesGrowInPieces)
{
    addTaxon(u"a"_s);
    const auto rows = db->OpenRecordset(u"Taxons"_s, RecordsetType::Table);
    const QByteArray piece(5000, 'p');
    for (int round = 0; round < 2; ++round) {
        rows->Edit();
        rows->AppendChunk(u"Photo", piece);
        rows->AppendChunk(u"Photo", QByteArray("fin"));
        rows->AppendChunk(u"Notes", u"début "_s);
        rows->AppendChunk(u"Notes", u"été"_s);
        rows->Update();
        EXPECT_EQ(rows->FieldSize(u"Photo"), 5003) << "the first piece replaces";
        EXPECT_EQ(rows->FieldSize(u"Notes"), 9);
    }
    EXPECT_EQ(rows->GetChunk(u"Photo", 4999, 100), QByteArray("pfin"));
    EXPECT_EQ(rows->GetChunk(u"Notes", 6, 2), u"ét"_s);
    EXPECT_EQ(rows->GetChunk(u"Photo", 6000, 10), QByteArray());
    EXPECT_EQ(errorOf([&] {
                  rows->Edit();
                  rows->AppendChunk(u"Nom", u"x"_s);
              }),
              3251);
}

// --- Seek
// ------------------------------------------------------------------------------------------

TEST_F(RecordsetTest, SeekComparesAsTheIndexDoes)
{
    addTaxon(u"Carex"_s, u"L."_s);
    addTaxon(u"Carex"_s, u"Vill."_s);
    addTaxon(u"élyme"_s, u"L."_s);
    addTaxon(u"Festuca"_s, QVariant());
    struct Case {
        QString comparison;
        QVariantList keys;
        QString found; ///< Name and authors; empty for no match.
    };
    const QList<Case> cases = {
        {u"="_s, {u"CAREX "_s, u"vill."_s}, u"Carex Vill."_s},
        {u"="_s, {u"Cárex"_s, u"L."_s}, {}},
        {u"="_s, {u"Élyme"_s, u"L."_s}, u"élyme L."_s},
        {u"="_s, {u"elyme"_s, u"L."_s}, {}},
        {u"="_s, {u"Festuca"_s, QVariant()}, u"Festuca "_s},
        {u">="_s, {u"carex"_s}, u"Carex L."_s},
        {u">"_s, {u"carex"_s}, u"élyme L."_s},
        {u">"_s, {u"carex"_s, u"l."_s}, u"Carex Vill."_s},
        {u"<="_s, {u"carex"_s}, u"Carex Vill."_s},
        {u"<"_s, {u"f"_s}, u"élyme L."_s},
        {u"<"_s, {u"carex"_s}, {}},
        {u">"_s, {u"g"_s}, {}},
    };
    const auto rows = db->OpenRecordset(u"Taxons"_s, RecordsetType::Table);
    rows->SetIndex(u"unique"_s);
    EXPECT_EQ(rows->Index(), u"Unique"_s);
    for (const Case& c : cases) {
        rows->Seek(c.comparison, c.keys);
        const QString what = c.comparison + u' ' + c.keys.first().toString();
        ASSERT_EQ(rows->NoMatch(), c.found.isEmpty()) << what.toStdString();
        if (rows->NoMatch())
            continue;
        EXPECT_EQ(
            QString(rows->Value(u"Nom").toString() + u' ' + rows->Value(u"Auteurs").toString()),
            c.found)
            << what.toStdString();
    }
    rows->Seek(u">="_s, {u"carex"_s, u"m"_s});
    rows->MoveNext();
    EXPECT_EQ(rows->Value(u"Nom"), u"élyme"_s);
    rows->MovePrevious();
    rows->MovePrevious();
    EXPECT_EQ(rows->Value(u"Auteurs"), u"L."_s);
}

TEST_F(RecordsetTest, SeekNeedsATableAnIndexAndItsKeys)
{
    const auto rows = db->OpenRecordset(u"Taxons"_s, RecordsetType::Table);
    EXPECT_EQ(errorOf([&] { rows->Seek(u"="_s, {1}); }), 3019);
    EXPECT_EQ(errorOf([&] { rows->SetIndex(u"absent"_s); }), 3015);
    rows->SetIndex(u"Unique"_s);
    EXPECT_EQ(errorOf([&] { rows->Seek(u"="_s, {u"a"_s}); }), 3001);
    EXPECT_EQ(errorOf([&] { rows->Seek(u"<>"_s, {u"a"_s, u"b"_s}); }), 3001);
    const auto statement = db->OpenRecordset(u"Taxons"_s);
    EXPECT_EQ(errorOf([&] { statement->SetIndex(u"Unique"_s); }), 3251);
    EXPECT_EQ(errorOf([&] { statement->Seek(u"="_s, {1}); }), 3251);
    EXPECT_EQ(errorOf([&] { db->OpenRecordset(u"Absente"_s, RecordsetType::Table); }), 3078);
}

/// Random steps through an index with Nulls, equal keys and a descending column stand where the
/// same steps through the sorted list stand, whatever is read or written in between.
TEST_F(RecordsetTest, WalkingAnIndexFollowsItsOrderBothWays)
{
    QRandomGenerator random(7);
    jet::Operation operation(*db, u"essai"_s);
    for (int number = 0; number < 40; ++number) {
        const QVariant rank = random.bounded(4) == 0 ? QVariant() : QVariant(random.bounded(5));
        addTaxon(u"%1%2"_s.arg(QChar(u"aéEbz"[random.bounded(5)])).arg(number % 3),
                 u"A%1"_s.arg(number), rank);
    }
    // Null stands before every number, so last in a descending order.
    const auto list =
        db->OpenRecordset(u"SELECT [ID Taxons] FROM Taxons ORDER BY Rang DESC, Nom, [ID Taxons]"_s);
    list->MoveLast();
    const auto rows = db->OpenRecordset(u"Taxons"_s, RecordsetType::Table);
    rows->SetIndex(u"Rang"_s);
    list->MoveFirst();
    for (int step = 0; step < 1500; ++step) {
        const bool forward = random.bounded(2) == 0;
        if ((forward && rows->EOF_()) || (!forward && rows->BOF()))
            continue;
        forward ? rows->MoveNext() : rows->MovePrevious();
        forward ? list->MoveNext() : list->MovePrevious();
        ASSERT_EQ(rows->EOF_(), list->EOF_());
        ASSERT_EQ(rows->BOF(), list->BOF());
        if (rows->EOF_() || rows->BOF())
            continue;
        ASSERT_EQ(rows->RowId(), list->RowId()) << "step " << step;
        if (random.bounded(5) == 0) {
            EXPECT_EQ(rows->Value(u"ID Taxons").toLongLong(), rows->RowId());
        }
        if (random.bounded(7) == 0)
            db->Execute(u"UPDATE Taxons SET Altitude=%1 WHERE [ID Taxons]=%2"_s.arg(
                QString::number(step), QString::number(rows->RowId())));
    }
}

TEST_F(RecordsetTest, FindFirstTakesAConditionOfTheDialect)
{
    addTaxon(u"Carex"_s, u"L."_s, 3);
    addTaxon(u"Draba"_s, u"L."_s, 4);
    addTaxon(u"Éphédra"_s, u"Vill."_s, 4);
    struct Case {
        QString source;
        RecordsetType type;
    };
    const QList<Case> sources = {
        {u"Taxons"_s, RecordsetType::Table},
        {u"Taxons"_s, RecordsetType::Dynaset},
        {u"SELECT [ID Taxons], Nom, Rang+0 AS Rang FROM Taxons ORDER BY Nom"_s,
         RecordsetType::Dynaset},
        {u"SELECT DISTINCT [ID Taxons], Nom, Rang FROM Taxons"_s, RecordsetType::Snapshot},
    };
    for (const Case& c : sources) {
        const auto rows = db->OpenRecordset(c.source, c.type);
        rows->FindFirst(u"Rang=4 And Nom Like \"é*\""_s);
        ASSERT_FALSE(rows->NoMatch()) << c.source.toStdString();
        EXPECT_EQ(rows->Value(u"Nom"), u"Éphédra"_s);
        rows->FindFirst(u"[ID Taxons]=2"_s);
        ASSERT_FALSE(rows->NoMatch());
        EXPECT_EQ(rows->Value(u"Nom"), u"Draba"_s);
        rows->FindFirst(u"Rang=9"_s);
        EXPECT_TRUE(rows->NoMatch());
        EXPECT_NE(errorOf([&] { rows->FindFirst(u"Absent=1"_s); }), 0);
    }
}

// --- Many rows
// ---------------------------------------------------------------------------------------

TEST_F(RecordsetTest, PagesOfRowsComeFromAnywhere)
{
    jet::Operation operation(*db, u"remplissage"_s);
    for (int number = 0; number < 300; ++number)
        addPlant(u"P%1"_s.arg(number), number);
    operation.commit();
    for (const QString& source :
         {u"Individus"_s, u"SELECT * FROM Individus ORDER BY [ID Taxons]"_s,
          u"SELECT DISTINCT [ID Individus], [Numéro], [ID Taxons] FROM Individus"_s}) {
        const auto rows = db->OpenRecordset(source);
        for (const int start : {250, 0, 100, 290}) {
            rows->SetAbsolutePosition(start);
            const auto page = rows->GetRows(20);
            ASSERT_EQ(int(page.size()), std::min(20, 300 - start));
            EXPECT_EQ(page.front()[1], u"P%1"_s.arg(start));
            EXPECT_EQ(page.back()[2], start + int(page.size()) - 1);
            EXPECT_EQ(rows->EOF_(), start == 290);
        }
    }
}

TEST_F(RecordsetTest, RowsThatOutgrowMemoryComeBack)
{
    jet::Operation operation(*db, u"remplissage"_s);
    const auto taxa = db->OpenRecordset(u"Taxons"_s, RecordsetType::Table);
    for (int number = 0; number < 300; ++number) {
        taxa->AddNew();
        taxa->SetValue(u"Nom", u"t%1"_s.arg(number));
        taxa->SetValue(u"Notes", QString(20'000, QChar(u'a' + number % 26)));
        taxa->Update();
    }
    operation.commit();
    const auto rows =
        db->OpenRecordset(u"SELECT Rang, Notes FROM Taxons UNION ALL SELECT 1, Nom FROM Taxons"_s);
    rows->MoveLast();
    EXPECT_EQ(rows->RecordCount(), 600);
    for (const int row : {0, 299, 130, 299, 3}) {
        rows->SetAbsolutePosition(row);
        EXPECT_EQ(rows->Value(1), QString(20'000, QChar(u'a' + row % 26)));
        EXPECT_FALSE(rows->Value(0).isValid());
    }
    rows->SetAbsolutePosition(599);
    EXPECT_EQ(rows->Value(1), u"t299"_s);
}

TEST_F(RecordsetTest, RequerySeesWhatWasAdded)
{
    addNames({u"a"_s});
    const auto rows = db->OpenRecordset(u"SELECT Nom FROM Taxons ORDER BY Nom DESC"_s);
    addNames({u"b"_s});
    EXPECT_EQ(rows->Value(0), u"a"_s);
    rows->Requery();
    EXPECT_EQ(rows->Value(0), u"b"_s);
}

} // namespace
