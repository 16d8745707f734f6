// Execute, named operations, interruption; and what the forms of statement mean on real rows.
#include "EngineFixture.h"

#include <QSemaphore>
#include <QThread>

namespace {

class StatementsTest : public EngineFixture {
protected:
    void fill()
    {
        jet::Operation operation(*db, u"remplissage"_s);
        addTaxon(u"Carex"_s, u"L."_s, 1);           // 1
        addTaxon(u"Draba"_s, u"L."_s, 1);           // 2
        addTaxon(u"Élyme"_s, QVariant(), 2);        // 3
        addTaxon(u"élyme des sables"_s, u"x"_s, 2); // 4
        addTaxon(u"Erica"_s, u"L."_s, 3);           // 5
        for (int number = 1; number <= 6; ++number)
            addPlant(u"P%1"_s.arg(number), number <= 3 ? 1 : number <= 5 ? 2 : QVariant());
        operation.commit();
    }

    /// Reopens the file, so that only what the disk holds is seen.
    void reopen(bool readOnly = false)
    {
        const QString path = db->Name();
        db.reset();
        jet::OpenOptions options;
        options.readOnly = readOnly;
        db = jet::Database::Open(path, options);
    }
};

TEST_F(StatementsTest, ExecuteCountsTheRecordsAffected)
{
    fill();
    EXPECT_EQ(db->Execute(u"UPDATE Taxons SET Rang=9 WHERE Rang=1"_s), 2);
    EXPECT_EQ(db->RecordsAffected(), 2);
    EXPECT_EQ(db->Execute(u"DELETE * FROM Individus WHERE [ID Taxons] Is Null"_s), 1);
    EXPECT_EQ(
        db->Execute(
            u"INSERT INTO Individus ([Numéro], [ID Taxons]) SELECT Nom, [ID Taxons] FROM Taxons"_s),
        5);
    EXPECT_EQ(db->Execute(u"UPDATE Taxons SET Rang=1 WHERE False"_s), 0);
    EXPECT_EQ(db->RecordsAffected(), 0);
}

TEST_F(StatementsTest, ExecuteRunsWholeOrNotAtAll)
{
    fill();
    const QStringList before = rowsOf(u"SELECT Nom, Auteurs, Rang FROM Taxons"_s);
    EXPECT_EQ(errorOf([&] {
                  db->Execute(u"UPDATE Taxons SET Rang=Rang+1, Nom=IIf(Nom=\"Erica\",Null,Nom)"_s);
              }),
              3314);
    EXPECT_EQ(errorOf([&] { db->Execute(u"UPDATE Taxons SET Nom=\"Carex\", Auteurs=\"L.\""_s); }),
              3022);
    EXPECT_EQ(errorOf([&] {
                  db->Execute(u"INSERT INTO Taxons (Nom, Auteurs) SELECT IIf([ID "
                              u"Taxons]=4,\"carex\",\"n\" & Nom), "
                              u"IIf([ID Taxons]=4,\"l. \",Auteurs) FROM Taxons"_s);
              }),
              3022);
    EXPECT_EQ(db->RecordsAffected(), 0);
    EXPECT_EQ(rowsOf(u"SELECT Nom, Auteurs, Rang FROM Taxons"_s), before);
}

TEST_F(StatementsTest, ActionsAndQueriesAreNotMistakenForEachOther)
{
    fill();
    EXPECT_EQ(errorOf([&] { db->Execute(u"SELECT * FROM Taxons"_s); }), 3065);
    EXPECT_EQ(errorOf([&] { db->OpenRecordset(u"DELETE * FROM Taxons"_s); }), 3417);
    EXPECT_EQ(errorOf([&] { db->OpenRecordset(u"Absente"_s); }), 3129);
    EXPECT_EQ(valueOf(u"SELECT Count(*) FROM Taxons"_s), 5);
}

TEST_F(StatementsTest, StoredQueriesRunByName)
{
    fill();
    db->CreateQueryDef(u"Vider les plantes"_s, u"DELETE * FROM Individus WHERE [ID Taxons]=1"_s);
    db->CreateQueryDef(u"Taxons de rang 2"_s,
                       u"SELECT Nom, Rang FROM Taxons WHERE Rang=2 ORDER BY Nom"_s);
    EXPECT_EQ(db->Execute(u"Vider les plantes"_s), 3);
    EXPECT_EQ(db->Execute(u"[Vider les plantes]"_s), 0);
    const auto rows = db->OpenRecordset(u"Taxons de rang 2"_s);
    EXPECT_EQ(rows->Value(0), u"Élyme"_s);
    EXPECT_TRUE(rows->Updatable());
    EXPECT_EQ(rowsOf(u"SELECT Nom FROM [Taxons de rang 2] WHERE Nom Like \"*sables\""_s),
              QStringList(u"élyme des sables"_s));
}

TEST_F(StatementsTest, CachedStatementsFollowTheDefinitions)
{
    fill();
    const QString all = u"SELECT * FROM Individus"_s;
    const int width = db->OpenRecordset(all)->FieldCount();
    db->AppendField(u"Individus"_s, field(u"Herbier"_s, jet::DataType::Text, 10));
    EXPECT_EQ(db->OpenRecordset(all)->FieldCount(), width + 1);
    db->CreateQueryDef(u"Q"_s, u"SELECT Nom FROM Taxons"_s);
    EXPECT_EQ(rowsOf(u"SELECT Count(*) FROM Q"_s), QStringList(u"5"_s));
    db->DeleteQueryDef(u"Q"_s);
    db->CreateQueryDef(u"Q"_s, u"SELECT Nom FROM Taxons WHERE Rang=1"_s);
    EXPECT_EQ(rowsOf(u"SELECT Count(*) FROM Q"_s), QStringList(u"2"_s));
}

TEST_F(StatementsTest, AReadOnlyFileIsReadAndNotWritten)
{
    fill();
    reopen(true);
    ASSERT_TRUE(db->readOnly());
    EXPECT_EQ(valueOf(u"SELECT Count(*) FROM Taxons"_s), 5);
    EXPECT_EQ(rowsOf(u"SELECT DISTINCT Rang FROM Taxons ORDER BY Rang"_s),
              QStringList({u"1"_s, u"2"_s, u"3"_s}));
    EXPECT_EQ(errorOf([&] { db->Execute(u"DELETE * FROM Taxons"_s); }), 3027);
    EXPECT_EQ(errorOf([&] { db->OpenRecordset(u"Taxons"_s)->AddNew(); }), 3027);
    EXPECT_EQ(errorOf([&] { jet::Operation operation(*db, u"essai"_s); }), 3027);
}

// --- Named operations
// ------------------------------------------------------------------------------

TEST_F(StatementsTest, AnOperationIsAllOrNothing)
{
    fill();
    {
        jet::Operation kept(*db, u"Suppression"_s);
        db->Execute(u"DELETE * FROM Individus"_s);
        {
            jet::Operation lost(*db, u"Renommage"_s);
            db->Execute(u"UPDATE Taxons SET Nom=\"x\" & Nom"_s);
            addTaxon(u"de passage"_s);
        }
        EXPECT_EQ(valueOf(u"SELECT Nom FROM Taxons"_s), u"Carex"_s);
        jet::Operation inner(*db, u"Rang"_s);
        db->Execute(u"UPDATE Taxons SET Rang=7"_s);
        inner.commit();
        kept.commit();
    }
    EXPECT_FALSE(db->inOperation());
    {
        jet::Operation lost(*db, u"Perdue"_s);
        jet::Operation inner(*db, u"Dedans"_s);
        db->Execute(u"DELETE * FROM Taxons"_s);
        inner.commit();
    }
    reopen();
    EXPECT_EQ(rowsOf(u"SELECT Count(*), Min(Rang) FROM Taxons"_s), QStringList(u"5|7"_s));
    EXPECT_EQ(valueOf(u"SELECT Count(*) FROM Individus"_s), 0);
    EXPECT_EQ(errorOf([&] { db->CommitOperation(); }), 3034);
    EXPECT_EQ(errorOf([&] { db->RollbackOperation(); }), 3034);
}

TEST_F(StatementsTest, RollbackTakesDefinitionsBack)
{
    fill();
    {
        jet::Operation operation(*db, u"Structure"_s);
        db->AppendField(u"Taxons"_s, field(u"Ajout"_s, jet::DataType::Long));
        db->Execute(u"UPDATE Taxons SET Ajout=1"_s);
        jet::TableDef table;
        table.Name = u"Nouvelle"_s;
        table.Fields = {counter(u"ID"_s)};
        db->AppendTable(table);
    }
    EXPECT_EQ(db->schema().table(u"Nouvelle"), nullptr);
    EXPECT_EQ(db->schema().table(u"Taxons")->field(u"Ajout"), nullptr);
    EXPECT_EQ(errorOf([&] { db->OpenRecordset(u"SELECT Ajout FROM Taxons"_s); }), 3061);
    EXPECT_EQ(valueOf(u"SELECT Count(*) FROM Taxons"_s), 5);
}

TEST_F(StatementsTest, ARecordSetOutlivesTheRollbackOfWhatItReads)
{
    fill();
    const auto rows = db->OpenRecordset(u"Individus"_s);
    {
        jet::Operation operation(*db, u"Perdue"_s);
        rows->Edit();
        rows->SetValue(u"Numéro", u"changé"_s);
        rows->Update();
        rows->AddNew();
        rows->SetValue(u"Numéro", u"ajouté"_s);
        rows->Update();
    }
    EXPECT_EQ(rows->Value(u"Numéro"), u"P1"_s);
    EXPECT_EQ(errorOf([&] {
                  rows->MoveToLastModified();
                  rows->Value(u"Numéro");
              }),
              3167);
}

// --- Interruption
// ----------------------------------------------------------------------------------

/// 40 taxa of rank 8, whose product with themselves four times over takes minutes.
class InterruptTest : public StatementsTest {
protected:
    void SetUp() override
    {
        StatementsTest::SetUp();
        fill();
        jet::Operation operation(*db, u"remplissage"_s);
        for (int number = 0; number < 40; ++number)
            addTaxon(u"Taxon %1"_s.arg(number), QVariant(), 8);
        operation.commit();
    }

    /// Runs `work` while another thread interrupts it as soon as the store reports progress.
    int interrupted(const std::function<void()>& work)
    {
        QSemaphore running;
        db->SetProgress([&running] {
            running.release();
            return true;
        });
        const std::unique_ptr<QThread> other(QThread::create([&] {
            running.acquire();
            db->Interrupt();
        }));
        other->start();
        const int error = errorOf(work);
        running.release();
        other->wait();
        db->SetProgress({});
        return error;
    }

    const QString endless =
        u"SELECT Count(*) FROM Taxons AS a, Taxons AS b, Taxons AS c, Taxons AS d, Taxons AS e, "
        u"Taxons AS f WHERE a.Rang+b.Rang+c.Rang+d.Rang+e.Rang+f.Rang=1"_s;
};

TEST_F(InterruptTest, AQueryStopsFromAnotherThread)
{
    EXPECT_EQ(interrupted([&] { db->OpenRecordset(endless); }), 3059);
    EXPECT_EQ(valueOf(u"SELECT Count(*) FROM Taxons"_s), 45);
}

TEST_F(InterruptTest, AHalfReadRecordSetDoesNotMakeLaterStatementsFail)
{
    const auto half = db->OpenRecordset(u"SELECT Nom FROM Taxons"_s);
    half->MoveNext();
    EXPECT_EQ(interrupted([&] { db->OpenRecordset(endless); }), 3059);
    EXPECT_EQ(valueOf(u"SELECT Count(*) FROM Taxons"_s), 45);
    half->MoveNext();
    half->MoveLast();
    EXPECT_EQ(half->RecordCount(), 45);
    db->Interrupt(); // with nothing running
    EXPECT_EQ(valueOf(u"SELECT Count(*) FROM Taxons"_s), 45);
}

TEST_F(InterruptTest, AnActionStopsAndLeavesNothing)
{
    const QString slow = u"INSERT INTO Individus ([Numéro]) SELECT a.Nom FROM Taxons AS a, Taxons "
                         u"AS b, Taxons AS c, "
                         u"Taxons AS d, Taxons AS e"_s;
    EXPECT_EQ(interrupted([&] { db->Execute(slow); }), 3059);
    EXPECT_EQ(valueOf(u"SELECT Count(*) FROM Individus"_s), 6);
}

TEST_F(InterruptTest, ProgressMayCancel)
{
    int calls = 0;
    db->SetProgress([&calls] { return ++calls < 5; });
    EXPECT_EQ(errorOf([&] { db->OpenRecordset(endless); }), 3059);
    EXPECT_EQ(calls, 5);
    db->SetProgress({});
    EXPECT_EQ(valueOf(u"SELECT Count(*) FROM Taxons"_s), 45);
}

TEST_F(InterruptTest, AnOperationThatTheStoreDroppedAcceptsNothingMore)
{
    {
        jet::Operation operation(*db, u"Perdue"_s);
        db->Execute(u"DELETE * FROM Individus"_s);
        EXPECT_EQ(
            interrupted([&] {
                db->Execute(
                    u"INSERT INTO Individus ([Numéro]) SELECT a.Nom FROM Taxons AS a, Taxons AS b, "
                    u"Taxons AS c, Taxons AS d, Taxons AS e"_s);
            }),
            3059);
        EXPECT_EQ(errorOf([&] { db->Execute(u"DELETE * FROM Taxons"_s); }), 3034);
        EXPECT_EQ(errorOf([&] { operation.commit(); }), 3034);
    }
    EXPECT_FALSE(db->inOperation());
    EXPECT_EQ(valueOf(u"SELECT Count(*) FROM Individus"_s), 6);
    EXPECT_EQ(db->Execute(u"DELETE * FROM Individus"_s), 6);
}

TEST_F(InterruptTest, AHalfReadSetIsNotTakenForAWholeOne)
{
    const auto rows =
        db->OpenRecordset(u"SELECT a.Nom FROM Taxons AS a, Taxons AS b, Taxons AS c, Taxons AS d, "
                          u"Taxons AS e"_s);
    EXPECT_EQ(interrupted([&] { rows->MoveLast(); }), 3059);
    EXPECT_EQ(errorOf([&] { rows->MoveLast(); }), 3420);
    rows->Requery();
    EXPECT_FALSE(rows->EOF_());
}

// --- Meaning
// ---------------------------------------------------------------------------------------

TEST_F(StatementsTest, DistinctRowCountsRecordsAndNotValues)
{
    fill();
    addTaxon(u"Carex"_s, u"Vill."_s, 1); // 6: a second record of that name
    addPlant(u"P7"_s, 6);
    const QString join =
        u" FROM Taxons INNER JOIN Individus ON Taxons.[ID Taxons]=Individus.[ID Taxons]"_s;
    EXPECT_EQ(rowsOf(u"SELECT Nom"_s + join).size(), 6);
    EXPECT_EQ(rowsOf(u"SELECT DISTINCTROW Nom"_s + join + u" ORDER BY Nom"_s),
              QStringList({u"Carex"_s, u"Carex"_s, u"Draba"_s}));
    EXPECT_EQ(rowsOf(u"SELECT DISTINCT Nom"_s + join + u" ORDER BY Nom"_s),
              QStringList({u"Carex"_s, u"Draba"_s}));
}

TEST_F(StatementsTest, LikeFoldsCaseAndCountsAccents)
{
    fill();
    struct Case {
        const char* pattern;
        QStringList names;
    };
    const QList<Case> cases = {
        {"é*", {u"Élyme"_s, u"élyme des sables"_s}},
        {"e*", {u"Erica"_s}},
        {"[a-c]*", {u"Carex"_s}},
        {"[!a-c]*", {u"Draba"_s, u"Élyme"_s, u"élyme des sables"_s, u"Erica"_s}},
        {"?rica", {u"Erica"_s}},
        {"*sables", {u"élyme des sables"_s}},
    };
    for (const Case& c : cases) {
        const QString sql = u"SELECT Nom FROM Taxons WHERE Nom Like \"%1\" ORDER BY [ID Taxons]"_s;
        EXPECT_EQ(rowsOf(sql.arg(QString::fromUtf8(c.pattern))), c.names) << c.pattern;
    }
}

TEST_F(StatementsTest, AmpersandTakesNullAsEmpty)
{
    fill();
    EXPECT_EQ(
        rowsOf(
            u"SELECT Auteurs & \"x\", Auteurs+\"x\", Null & Null FROM Taxons WHERE Nom=\"élyme\""_s),
        QStringList(u"x|-|-"_s));
}

TEST_F(StatementsTest, UpdateReachesOverALeftJoinOfATableWithItself)
{
    fill();
    // A column that may point at another row of the same table.
    EXPECT_EQ(
        db->Execute(u"UPDATE Taxons AS t LEFT JOIN Taxons AS p ON val(t.Rang & \"\")=p.[ID Taxons] "
                    u"SET t.Notes="
                    u"p.Nom & \"/\" & t.Nom, t.Rang=IIf(IsNull(p.[ID Taxons]),0,p.[ID Taxons])"_s),
        5);
    EXPECT_EQ(rowsOf(u"SELECT Notes, Rang FROM Taxons ORDER BY [ID Taxons]"_s),
              QStringList({u"Carex/Carex|1"_s, u"Carex/Draba|1"_s, u"Draba/Élyme|2"_s,
                           u"Draba/élyme des sables|2"_s, u"Élyme/Erica|3"_s}));
}

TEST_F(StatementsTest, DeleteOverAJoinCountsEachRecordOnce)
{
    fill();
    EXPECT_EQ(db->Execute(u"DELETE DISTINCTROW Taxons.* FROM Taxons INNER JOIN Individus ON "
                          u"Taxons.[ID Taxons]=Individus.[ID Taxons]"_s),
              2);
    EXPECT_EQ(rowsOf(u"SELECT Nom FROM Taxons"_s),
              QStringList({u"Élyme"_s, u"élyme des sables"_s, u"Erica"_s}));
}

} // namespace
