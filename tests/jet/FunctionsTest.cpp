// The functions of the dialect, called from statements of the store.
#include "jet/Functions.h"
#include "jet/text/TextOrder.h"
#include "support/Print.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

QVariant valueOf(sqlite3_stmt* statement)
{
    switch (sqlite3_column_type(statement, 0)) {
    case SQLITE_INTEGER:
        return qlonglong(sqlite3_column_int64(statement, 0));
    case SQLITE_FLOAT:
        return sqlite3_column_double(statement, 0);
    case SQLITE_TEXT:
        return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)));
    case SQLITE_BLOB:
        return QByteArray(static_cast<const char*>(sqlite3_column_blob(statement, 0)),
                          sqlite3_column_bytes(statement, 0));
    default:
        return {};
    }
}

class Functions : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(sqlite3_open(":memory:", &m_connection), SQLITE_OK);
        jet::registerFunctions(m_connection);
    }
    void TearDown() override { sqlite3_close(m_connection); }

    /// The first column of the last row, or the message of the failure.
    QVariant run(const QString& sql)
    {
        sqlite3_stmt* statement = nullptr;
        QVariant result;
        int code = sqlite3_prepare_v2(m_connection, sql.toUtf8().constData(), -1, &statement, nullptr);
        while (code == SQLITE_OK || code == SQLITE_ROW) {
            code = sqlite3_step(statement);
            if (code == SQLITE_ROW)
                result = valueOf(statement);
        }
        sqlite3_finalize(statement);
        return code == SQLITE_DONE ? result : QVariant(QString::fromUtf8(sqlite3_errmsg(m_connection)));
    }
    QVariant select(const QString& expression) { return run(u"SELECT "_s + expression); }

    int failure(const QString& expression)
    {
        const QString message = select(expression).toString();
        return message.startsWith(u'#') ? message.section(u'#', 1, 1).toInt() : 0;
    }

    sqlite3* m_connection = nullptr;
};

struct Case {
    QString expression;
    QVariant expected;
};

const QVariant null;
QVariant whole(qlonglong value) { return value; }

} // namespace

TEST_F(Functions, ComputeAsTheDialectSays)
{
    const Case cases[] = {
        {u"jet_like('É', 'é*')"_s, whole(1)},
        {u"jet_like('e', 'é*')"_s, whole(0)},
        {u"jet_like(NULL, '*')"_s, null},
        {u"jet_like('a', NULL)"_s, null},
        {u"jet_like(125, '12*')"_s, whole(1)},
        {u"jet_key(NULL)"_s, null},
        {u"jet_key(3)"_s, whole(3)},
        {u"jet_key('Ab ')"_s, jet::text::key(u"ab")},
        {u"jet_concat(NULL, 'x')"_s, u"x"_s},
        {u"jet_concat(NULL, NULL)"_s, null},
        {u"jet_concat(0.1 + 0.2, -1)"_s, u"0.3-1"_s},
        {u"jet_add(NULL, 'x')"_s, null},
        {u"jet_add('a', 'b')"_s, u"ab"_s},
        {u"jet_add('1', 2)"_s, 3.0},
        {u"jet_add(1, 2)"_s, whole(3)},
        {u"jet_idiv(7.5, 2.5)"_s, whole(4)},
        {u"jet_idiv(-7, 2)"_s, whole(-3)},
        {u"jet_mod(-7, 2)"_s, whole(-1)},
        {u"jet_pow(2, 10)"_s, 1024.0},
        {u"jet_val('12-Individus')"_s, 12.0},
        {u"jet_val(NULL)"_s, null},
        {u"jet_val(-1)"_s, -1.0},
        {u"jet_trim(' a ')"_s, u"a"_s},
        {u"jet_ltrim(' a ')"_s, u"a "_s},
        {u"jet_rtrim(' a ')"_s, u" a"_s},
        {u"jet_trim(NULL)"_s, null},
        {u"jet_lcase('ÉA')"_s, u"éa"_s},
        {u"jet_ucase('éa')"_s, u"ÉA"_s},
        {u"jet_strconv('poa annua', 3)"_s, u"Poa Annua"_s},
        {u"jet_strconv(NULL, 3)"_s, null},
        {u"jet_left('été', 2)"_s, u"ét"_s},
        {u"jet_left('été', 9)"_s, u"été"_s},
        {u"jet_left(NULL, 2)"_s, null},
        {u"jet_right('été', 2)"_s, u"té"_s},
        {u"jet_mid('abcd', 2)"_s, u"bcd"_s},
        {u"jet_mid('abcd', 2, 2)"_s, u"bc"_s},
        {u"jet_mid('abcd', 9, 2)"_s, u""_s},
        {u"jet_mid(NULL, 1, 2)"_s, null},
        {u"jet_len('été')"_s, whole(3)},
        {u"jet_len(NULL)"_s, null},
        {u"jet_len(-12.5)"_s, whole(5)},
        {u"jet_instr('Herbier', 'B')"_s, whole(4)},
        {u"jet_instr('été', 'e')"_s, whole(0)},
        {u"jet_instr(3, 'aba', 'a')"_s, whole(3)},
        {u"jet_instr(1, 'aBb', 'b', 0)"_s, whole(3)},
        {u"jet_instr('abc', '')"_s, whole(1)},
        {u"jet_instr('', '')"_s, whole(0)},
        {u"jet_instr('abc', NULL)"_s, null},
        {u"jet_replace('aBab', 'A', '-')"_s, u"-B-b"_s},
        {u"jet_replace('aaa', 'a', 'b', 2, 1)"_s, u"ba"_s},
        {u"jet_replace('abc', '', 'x')"_s, u"abc"_s},
        {u"jet_replace('abc', NULL, 'x')"_s, null},
        {u"jet_asc('é')"_s, whole(233)},
        {u"jet_chr(233)"_s, u"é"_s},
        {u"jet_space(3)"_s, u"   "_s},
        {u"jet_string(3, 'ab')"_s, u"aaa"_s},
        {u"jet_string(2, 48)"_s, u"00"_s},
        {u"jet_format('7', '000')"_s, u"007"_s},
        {u"jet_format('', '000')"_s, u""_s},
        {u"jet_format(36526.5, 'yyyy/mm/dd hh:mm:ss')"_s, u"2000/01/01 12:00:00"_s},
        {u"jet_format('06/03/2001', 'yyyy/mm/dd')"_s, u"2001/03/06"_s},
        {u"jet_format('ab', '@@@')"_s, u" ab"_s},
        {u"jet_format(NULL, '0')"_s, null},
        {u"jet_text(1.5)"_s, u"1.5"_s},
        {u"jet_text(NULL)"_s, null},
        {u"jet_long('12,5')"_s, whole(12)},
        {u"jet_long(13.5)"_s, whole(14)},
        {u"jet_long(NULL)"_s, null},
        {u"jet_double('12,5')"_s, 12.5},
        {u"jet_double('12.5')"_s, 12.5},
        {u"jet_bool(2)"_s, whole(-1)},
        {u"jet_bool(NULL)"_s, whole(0)},
        {u"jet_bool('Vrai')"_s, whole(-1)},
        {u"jet_date('01/01/2000 12:00')"_s, 36526.5},
        {u"jet_date('2000-01-01')"_s, 36526.0},
        {u"jet_cstr(-1)"_s, u"-1"_s},
        {u"jet_cint(2.5)"_s, whole(2)},
        {u"jet_clng('&HFF')"_s, whole(255)},
        {u"jet_cdbl('1,5')"_s, 1.5},
        {u"jet_cbool(0)"_s, whole(0)},
        {u"jet_abs(-3)"_s, whole(3)},
        {u"jet_abs('-3,5')"_s, 3.5},
        {u"jet_int(-1.5)"_s, -2.0},
        {u"jet_fix(-1.5)"_s, -1.0},
        {u"jet_round(2.5)"_s, 2.0},
        {u"jet_round(2.675, 2)"_s, 2.68},
        {u"jet_round(NULL)"_s, null},
        {u"jet_sgn(-0.5)"_s, whole(-1)},
        {u"jet_sqr(9)"_s, 3.0},
        {u"jet_nz(NULL)"_s, u""_s},
        {u"jet_nz(NULL, 5)"_s, whole(5)},
        {u"jet_nz('a', 5)"_s, u"a"_s},
        {u"jet_isnumeric('12,5')"_s, whole(-1)},
        {u"jet_isnumeric('12 kg')"_s, whole(0)},
        {u"jet_isnumeric('1e999')"_s, whole(0)},
        {u"jet_isnumeric(NULL)"_s, whole(0)},
        {u"jet_year(36526)"_s, whole(2000)},
        {u"jet_month('06/03/2001')"_s, whole(3)},
        {u"jet_day(NULL)"_s, null},
    };
    for (const Case& c : cases)
        EXPECT_EQ(select(c.expression), c.expected) << c.expression.toStdString();
}

TEST_F(Functions, FailWithANumberThatStandsInTheMessage)
{
    const std::pair<QString, int> cases[] = {
        {u"jet_left('abc', NULL)"_s, 94},  {u"jet_mid('abc', NULL)"_s, 94},    {u"jet_space(NULL)"_s, 94},
        {u"jet_chr(NULL)"_s, 94},          {u"jet_clng(NULL)"_s, 94},          {u"jet_round(1.5, NULL)"_s, 94},
        {u"jet_left('abc', -1)"_s, 5},     {u"jet_mid('abc', 0)"_s, 5},        {u"jet_instr(0, 'a', 'a')"_s, 5},
        {u"jet_asc('')"_s, 5},             {u"jet_sqr(-1)"_s, 5},              {u"jet_strconv('a', 9)"_s, 5},
        {u"jet_pow(-8, 0.5)"_s, 5},        {u"jet_val('1e400')"_s, 6},         {u"jet_integer(40000)"_s, 6},
        {u"jet_byte(-1)"_s, 6},            {u"jet_long(3000000000)"_s, 6},     {u"jet_pow(10, 400)"_s, 6},
        {u"jet_long('1e99')"_s, 6},        {u"jet_date(1e9)"_s, 6},            {u"jet_idiv(1, 0)"_s, 11},
        {u"jet_pow(0, -1)"_s, 11},         {u"jet_add('a', 1)"_s, 13},         {u"jet_abs('a')"_s, 13},
        {u"jet_like('abc', 'a[')"_s, 93},  {u"jet_long('a')"_s, 3421},         {u"jet_double('')"_s, 3421},
        {u"jet_bool('peut-être')"_s, 3421}, {u"jet_date('31/02/2001')"_s, 3421}, {u"jet_text(x'00')"_s, 3421},
        {u"jet_string(2000000000, 'a')"_s, 7},
    };
    for (const auto& [expression, number] : cases)
        EXPECT_EQ(failure(expression), number) << expression.toStdString();
}

TEST_F(Functions, FirstAndLastGiveTheNullOfTheirRow)
{
    const QString rows = u"(SELECT NULL AS x UNION ALL SELECT 'b' UNION ALL SELECT 'c')"_s;
    EXPECT_EQ(select(u"jet_first(x) FROM "_s + rows), null);
    EXPECT_EQ(select(u"jet_last(x) FROM "_s + rows), u"c"_s);
    EXPECT_EQ(select(u"jet_first(x) FROM "_s + rows + u" WHERE x IS NOT NULL"_s), u"b"_s);
    EXPECT_EQ(select(u"jet_last(x) FROM "_s + rows + u" WHERE 0"_s), null);
    EXPECT_EQ(select(u"jet_first(CASE WHEN x IS NULL THEN 'a' ELSE jet_clng(x) END) FROM "_s + rows)
                  .toString().left(6),
              u"#3421#"_s);
}

TEST_F(Functions, AConditionOverAMissingSideHoldsForNoRowInsteadOfFailing)
{
    run(u"CREATE TABLE a(k)"_s);
    run(u"INSERT INTO a VALUES (NULL), ('5-P'), ('6-P')"_s);
    EXPECT_EQ(select(u"count(*) FROM a WHERE jet_val(k) = 5"_s), whole(1));
    EXPECT_EQ(select(u"count(*) FROM a WHERE jet_like(k, '*-P')"_s), whole(2));
    EXPECT_EQ(select(u"count(*) FROM a WHERE jet_like('5-P', k)"_s), whole(1)); // The pattern varies by row.
}

TEST_F(Functions, AUniqueIndexOfKeysRefusesWhatComparesEqual)
{
    run(u"CREATE TABLE t(n TEXT)"_s);
    run(u"CREATE UNIQUE INDEX i ON t(jet_key(n))"_s);
    run(u"INSERT INTO t VALUES ('müller'), (NULL), (NULL)"_s);
    EXPECT_TRUE(run(u"INSERT INTO t VALUES ('Müller ')"_s).toString().contains(u"UNIQUE"_s));
    EXPECT_FALSE(run(u"INSERT INTO t VALUES ('Muller')"_s).isValid());
}
