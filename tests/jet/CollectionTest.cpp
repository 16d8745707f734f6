// Every statement of the program, run on the tables of a project. The cases stand in
// statements/collection.txt.
#include "Collection.h"
#include "EngineFixture.h"
#include "ProjectTables.h"

namespace {

class CollectionTest : public EngineFixture {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid());
        db = jet::Database::Create(folder.filePath(u"projet.hbx"_s),
                                   u";LANGID=0x0409;CP=1252;COUNTRY=0"_s);
        makeProjectTables(*db);
    }

    /// Runs it as the one who typed it would; `outcome` and `number` say what came.
    CollectedStatement run(CollectedStatement statement)
    {
        try {
            if (!statement.storedQuery.isEmpty())
                db->CreateQueryDef(statement.storedQuery, statement.text);
            if (statement.text.startsWith(u"SELECT", Qt::CaseInsensitive)) {
                statement.outcome = Outcome::Rows;
                statement.number = int(db->OpenRecordset(statement.text)->GetRows(100'000).size());
            } else {
                statement.outcome = Outcome::Count;
                statement.number = db->Execute(statement.text);
            }
        } catch (const jet::Error& error) {
            statement.outcome = Outcome::Error;
            statement.number = error.number();
            lastError = error.description();
        }
        return statement;
    }

    QString lastError;
};

TEST_F(CollectionTest, EveryStatementOfTheProgramGivesWhatItShould)
{
    const auto collection = readCollection(statementsFile(u"collection.txt"_s));
    ASSERT_GT(collection.size(), 100u);
    for (const CollectedStatement& expected : collection) {
        lastError.clear();
        const CollectedStatement got = run(expected);
        const bool met = (expected.outcome == Outcome::Unsaid || got.outcome == expected.outcome) &&
                         (expected.number < 0 || got.number == expected.number);
        EXPECT_TRUE(met) << "collection.txt:" << expected.line << ": "
                         << expected.name.toStdString() << "\n  " << expected.text.toStdString()
                         << "\n  gave " << int(got.outcome) << ' ' << got.number << ' '
                         << lastError.toStdString();
    }
    EXPECT_EQ(db->Check(), QStringList());
}

} // namespace
