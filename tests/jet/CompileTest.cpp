// Statements of the dialect, each in two ways: the text that the store is given, and the rows that
// come.
#include "DialectTables.h"
#include "jet/Error.h"
#include "support/Print.h"

#include <QFile>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class DialectTest : public ::testing::TestWithParam<const char*> {
protected:
    DialectTables tables;

    // What the statement gives, in the words of the file.
    QString outcome(const QString& statement)
    {
        try {
            const jet::Compiled compiled = tables.compile(statement);
            if (!std::holds_alternative<jet::CompiledQuery>(compiled))
                return u'#' + QString::number(tables.execute(statement));
            const auto& query = std::get<jet::CompiledQuery>(compiled);
            const QStringList rows = tables.rows(query);
            checkKeys(query, rows);
            return rows.isEmpty() ? u"none"_s : rows.join(u" / "_s);
        } catch (const jet::Error& error) {
            message = error.description();
            return u'!' + QString::number(error.number());
        }
    }

    // The keys come in the order of the rows, and each leads back to its row.
    void checkKeys(const jet::CompiledQuery& query, const QStringList& rows)
    {
        if (query.sources.empty())
            return;
        const QStringList keys = tables.storeRows(query.keySql);
        ASSERT_EQ(keys.size(), rows.size()) << query.keySql.toStdString();
        for (int i = 0; i < keys.size(); ++i) {
            QVariantList values;
            for (const QString& key : keys[i].split(u'|'))
                values.append(key == u"Null"_s ? QVariant() : QVariant(key.toInt()));
            EXPECT_EQ(tables.storeRows(query.rowSql, values), QStringList{rows[i]})
                << query.rowSql.toStdString();
        }
    }

    QString message;
};

// The number of the line, for failures, and its text.
struct Line {
    int number;
    QString text;
};

QList<Line> linesOf(const char* name)
{
    QFile file(qEnvironmentVariable("HERBORA_SOURCE", u"."_s) + u"/tests/jet/dialect/"_s +
               QString::fromLatin1(name));
    QList<Line> lines;
    if (!file.open(QIODevice::ReadOnly))
        return lines;
    int number = 0;
    for (const QString& text : QString::fromUtf8(file.readAll()).split(u'\n')) {
        ++number;
        if (!text.isEmpty() && !text.startsWith(u"--"_s))
            lines.append({number, text});
    }
    return lines;
}

TEST_P(DialectTest, GivesWhatItsLineSays)
{
    const QList<Line> lines = linesOf(GetParam());
    ASSERT_GT(lines.size(), 20);
    QString statement;
    tables.begin();
    for (const Line& line : lines) {
        SCOPED_TRACE(std::string(GetParam()) + ':' + std::to_string(line.number) + ": " +
                     line.text.toStdString());
        if (line.text.startsWith(u"~ "_s)) {
            EXPECT_TRUE(tables.sql(statement).contains(line.text.mid(2)))
                << tables.sql(statement).toStdString();
            continue;
        }
        if (line.text.startsWith(u"!~ "_s)) {
            EXPECT_FALSE(tables.sql(statement).contains(line.text.mid(3)))
                << tables.sql(statement).toStdString();
            continue;
        }
        const bool look = line.text.startsWith(u"? "_s);
        if (!look) {
            tables.rollback();
            tables.begin();
        }
        const qsizetype arrow = line.text.lastIndexOf(u" => "_s);
        ASSERT_GT(arrow, 0);
        statement = line.text.mid(look ? 2 : 0, arrow - (look ? 2 : 0));
        message.clear();
        const QString got = outcome(statement);
        EXPECT_EQ(got, line.text.mid(arrow + 4))
            << message.toStdString()
            << (got.startsWith(u'!') ? std::string() : '\n' + tables.sql(statement).toStdString());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Files, DialectTest, ::testing::Values("select.txt", "actions.txt"), [](const auto& info) {
        return std::string(info.param).substr(0, std::string(info.param).find('.'));
    });

// --- Rules and defaults ----------------------------------------------------------------------

QString rule(const DialectTables& tables, const QString& column, const QString& text)
{
    return jet::compileRule(*jet::sql::parseRule(text, column), *tables.schema.table(u"Divers"_s),
                            u"NEW."_s);
}

TEST(RuleTest, BecomesAConditionOnTheNewRow)
{
    const DialectTables tables;
    const struct {
        QString column, rule, condition;
    } cases[] = {
        {u"Numéro"_s, u">0"_s, u"NEW.\"Numéro\" > 0"_s},
        {u"Numéro"_s, u"<>0"_s, u"NEW.\"Numéro\" <> 0"_s},
        {u"Numéro"_s, u"Between 1 And 5"_s, u"NEW.\"Numéro\" BETWEEN 1 AND 5"_s},
        {u"Numéro"_s, u"Is Null Or >3"_s, u"NEW.\"Numéro\" IS NULL OR NEW.\"Numéro\" > 3"_s},
        {u"Nom"_s, u"Len([Nom])>2"_s, u"jet_len(NEW.\"Nom\") > 2"_s},
        {u"Nom"_s, u"Like \"a*\""_s, u"jet_like(NEW.\"Nom\", 'a*')"_s},
        {u"Nom"_s, u"<>\"x\""_s, u"jet_key(NEW.\"Nom\") <> jet_key('x')"_s},
        {u"Oui"_s, u"=True"_s, u"NEW.\"Oui\" = -1"_s},
    };
    for (const auto& c : cases)
        EXPECT_EQ(rule(tables, c.column, c.rule), c.condition);
}

TEST(RuleTest, RefusesWhatIsNoColumnOfTheTable)
{
    const DialectTables tables;
    try {
        rule(tables, u"Nom"_s, u"> [Ailleurs]"_s);
        FAIL();
    } catch (const jet::Error& error) {
        EXPECT_EQ(error.number(), 3061);
        EXPECT_TRUE(error.description().contains(u"Ailleurs"_s));
    }
}

TEST(DefaultTest, IsAConstantAndAnUnknownNameItsOwnText)
{
    const auto value = [](const QString& text) {
        return jet::compileDefault(*jet::sql::parseExpression(text));
    };
    EXPECT_EQ(value(u"True"_s), u"-1"_s);
    EXPECT_EQ(value(u"\"it's\""_s), u"'it''s'"_s);
    EXPECT_EQ(value(u"-2"_s), u"(- 2)"_s);
    EXPECT_EQ(value(u"a & b"_s), u"('a' || 'b')"_s);
    EXPECT_EQ(value(u"Now()"_s), u"jet_now()"_s);
}

TEST(QuotingTest, DoublesQuotesAndRefusesNul)
{
    EXPECT_EQ(jet::quoted(u"a\"b"_s), u"\"a\"\"b\""_s);
    EXPECT_EQ(jet::quotedText(u"a'b"_s), u"'a''b'"_s);
    EXPECT_THROW(jet::quotedText(QString(QChar(u'\0'))), jet::Error);
}

// --- Keys and outputs ------------------------------------------------------------------------

TEST(KeyedQueryTest, KnowsTheTableAndColumnBehindEachOutput)
{
    const DialectTables tables;
    const jet::CompiledQuery query =
        tables.query(u"SELECT I.Numéro AS N, Images.Fichier, [Altitude]+1, I.[ID Individus], "
                     u"Images.[ID Individus] FROM Individus AS I "
                     "LEFT JOIN Images ON I.[ID Individus]=Images.[ID Individus]"_s);
    ASSERT_EQ(query.sources.size(), 2u);
    EXPECT_EQ(query.sources[0].alias, u"I"_s);
    EXPECT_EQ(query.sources[1].table, u"Images"_s);
    EXPECT_TRUE(query.updatable);
    EXPECT_FALSE(query.ordered);
    QStringList outputs;
    for (const jet::OutputColumn& o : query.outputs)
        outputs.append(o.name + u'=' + o.table + u'.' + o.column + u':' +
                       QString::number(o.source));
    EXPECT_EQ(outputs,
              (QStringList{u"N=Individus.Numéro:0"_s, u"Fichier=Images.Fichier:1"_s,
                           u"Expr1000=.:-1"_s, u"I.ID Individus=Individus.ID Individus:0"_s,
                           u"Images.ID Individus=Images.ID Individus:1"_s}));
    EXPECT_EQ(query.outputs[2].type, jet::DataType::Double);
}

TEST(KeyedQueryTest, IsNotKeyedWhereRowsAreNoRecords)
{
    const DialectTables tables;
    for (const QString& text :
         {u"SELECT DISTINCT Nom FROM Divers"_s, u"SELECT Count(*) FROM Divers"_s,
          u"SELECT TOP 1 Nom FROM Divers"_s, u"SELECT Nom FROM Alpines"_s, u"SELECT 1"_s,
          u"SELECT Nom FROM Divers UNION SELECT Nom FROM Divers"_s}) {
        const jet::CompiledQuery query = tables.query(text);
        EXPECT_TRUE(query.sources.empty()) << text.toStdString();
        EXPECT_TRUE(query.keySql.isEmpty() && !query.updatable);
    }
}

TEST(KeyedQueryTest, NamesAllMissingParameters)
{
    const DialectTables tables;
    try {
        tables.compile(u"SELECT Nom FROM Divers WHERE rType=1 AND rTable=2 AND RTYPE=3"_s);
        FAIL();
    } catch (const jet::Error& error) {
        EXPECT_EQ(error.number(), 3061);
        EXPECT_TRUE(error.description().contains(u"2"_s) &&
                    error.description().contains(u"rType, rTable"_s))
            << error.description().toStdString();
    }
}

// --- Plans -----------------------------------------------------------------------------------

// What must be found by an index is never a scan.
TEST(PlanTest, SearchesByIndex)
{
    DialectTables tables;
    for (
        const QString& text : {
            u"SELECT * FROM Taxons WHERE [Nom Complet]=\"Alchemilla\""_s,
            u"SELECT * FROM Taxons WHERE [Nom Complet] Like \"Alch*\" AND Taxon<>\"x\""_s,
            u"SELECT * FROM Taxons WHERE [Nom Complet] IN (\"a\",\"b\")"_s,
            u"SELECT * FROM Individus WHERE [ID Individus] IN (1,2,3) AND [Locked]=False"_s,
            u"SELECT Taxons.Taxon, I.Numéro FROM (Individus AS I LEFT JOIN Déterminations AS D ON "
            u"I.[ID Individus]="
            "D.[ID Individus]) LEFT JOIN Taxons ON D.[ID Taxons]=Taxons.[ID Taxons] WHERE Taxons.[Nom Complet] Like \"A*\""_s,
            u"DELETE * FROM Collecteurs WHERE Collecteur=\"Dupont\""_s,
            u"UPDATE Taxons SET Taxon=\"x\" WHERE [Nom Complet]=\"y\""_s,
        })
        EXPECT_FALSE(tables.plan(tables.sql(text)).contains(u"SCAN"_s))
            << text.toStdString() << '\n'
            << tables.plan(tables.sql(text)).toStdString();
    EXPECT_FALSE(
        tables
            .plan(
                tables
                    .query(u"SELECT I.Numéro, N_Images.N FROM Individus AS I LEFT JOIN N_Images ON "
                           "I.[ID Individus]=N_Images.[ID Individus]"_s)
                    .rowSql)
            .contains(u"SCAN"_s));
}

TEST(PlanTest, OrdersByAnIndexOfTheKeys)
{
    DialectTables tables;
    const QString plan =
        tables.plan(tables.sql(u"SELECT * FROM Taxons ORDER BY [Nom Complet], Auteurs"_s));
    EXPECT_FALSE(plan.contains(u"TEMP B-TREE"_s)) << plan.toStdString();
}

// A long list of conditions stays within the depth that the store accepts.
TEST(PlanTest, TakesLongConditions)
{
    DialectTables tables;
    QStringList conditions;
    for (int i = 0; i < 1000; ++i)
        conditions.append(u"Numéro="_s + QString::number(i));
    EXPECT_EQ(
        tables.rows(u"SELECT Numéro FROM Divers WHERE "_s + conditions.join(u" OR "_s)).size(), 5);
}

} // namespace
