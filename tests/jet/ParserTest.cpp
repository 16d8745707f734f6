#include "jet/sql/Parser.h"
#include "Collection.h"
#include "TreeText.h"
#include "jet/Error.h"
#include "support/Print.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using jet::sql::parseExpression;
using jet::sql::parseRule;
using jet::sql::parseStatement;

namespace {

struct Case {
    const char* text;
    const char* tree;
};

QString utf8(const char* text)
{
    return QString::fromUtf8(text);
}

/// The error that the action throws; number 0 when it throws none.
template<typename Action> jet::Error errorOf(Action action)
{
    try {
        action();
    } catch (const jet::Error& error) {
        return error;
    }
    return jet::Error(0, u"aucune erreur"_s);
}

jet::Error statementError(const QString& text)
{
    return errorOf([&] { parseStatement(text); });
}

QString expressionTree(const QString& text)
{
    return treeText(*parseExpression(text));
}

} // namespace

TEST(Parser, ReadsEveryStatementOfTheCollection)
{
    const auto collection = readCollection(statementsFile(u"collection.txt"_s));
    ASSERT_GT(collection.size(), 100u);
    for (const CollectedStatement& record : collection) {
        const jet::Error error = statementError(record.text);
        const bool fault = record.outcome == Outcome::Error && record.number == 3075;
        EXPECT_EQ(error.number(), fault ? 3075 : 0)
            << "line " << record.line << ", " << record.name.toStdString() << ": "
            << error.description().toStdString();
    }
}

TEST(Parser, BuildsTheTreeOfStatements)
{
    const Case cases[] = {
        {"SELECT DISTINCTROW [A].[b c] AS [x y],t.* FROM A",
         "(select distinctrow [A].[b c] as [x y] [t].* (from [A]))"},
        {"select distinct top 5 percent *from t;", "(select distinct top5% * (from [t]))"},
        {"SELECT [a]x, b AS Top, c Nom FROM t AS u,[v] w",
         "(select [a] as [x] [b] as [Top] [c] as [Nom] (from [t] as [u] [v] as [w]))"},
        {"SELECT PGTableDefs.Index, PGTableDefs.Type, Table, Value, t.Left, t.Desc, Desc FROM t "
         "ORDER BY Desc DESC, Top ASC",
         "((select [PGTableDefs].[Index] [PGTableDefs].[Type] [Table] [Value] [t].[Left] "
         "[t].[Desc] [Desc] (from [t]))"
         " (order [Desc] desc [Top]))"},
        {"SELECT [a.b], [Select], x![y z] FROM [Group]",
         "(select [a.b] [Select] [x].[y z] (from [Group]))"},
        {"SELECT 1", "(select 1)"},
        {"SELECT a FROM ((Individus LEFT JOIN [A] ON Individus.[i]=[A].[i]) RIGHT OUTER JOIN [A] "
         "AS [A12] ON val([A].[k])=[A12].[i])",
         "(select [a] (from (right (left [Individus] [A] (= [Individus].[i] [A].[i])) [A] as [A12]"
         " (= (call val [A].[k]) [A12].[i]))))"},
        {"SELECT a FROM x INNER JOIN (y LEFT JOIN z ON y.i=z.i) ON x.i=y.i",
         "(select [a] (from (inner [x] (left [y] [z] (= [y].[i] [z].[i])) (= [x].[i] [y].[i]))))"},
        {"SELECT a FROM (SELECT b AS a FROM t) q WHERE a IN (SELECT c FROM u) AND (SELECT Max(d) "
         "FROM v)>2 AND NOT EXISTS (SELECT * FROM w)",
         "(select [a] (from (select [b] as [a] (from [t])) as [q]) (where (and (and (in [a] "
         "(select [c] (from [u])))"
         " (> (scalar (select (call max [d]) (from [v]))) 2)) (not (exists (select * (from "
         "[w])))))))"},
        {"SELECT a, Count(*), Count(DISTINCT b) FROM t GROUP BY a, b HAVING First([c]) Is Not Null",
         "(select [a] (call count *) (call count distinct [b]) (from [t]) (group [a] [b]) (having "
         "(not-null (call first [c]))))"},
        {"(SELECT a FROM t) UNION ALL SELECT b FROM u UNION (SELECT c FROM v) ORDER BY 1",
         "((select [a] (from [t])) union-all (select [b] (from [u])) union (select [c] (from [v])) "
         "(order 1))"},
        {"INSERT INTO [t u] ([a],t.b) VALUES (1,\"x\"\"y\")",
         "(insert [t u] ([a] [b]) (values 1 'x\"y'))"},
        {"INSERT INTO t SELECT * FROM u", "(insert [t] (select * (from [u])))"},
        {"INSERT INTO t (a) (SELECT b FROM u);", "(insert [t] ([a]) (select [b] (from [u])))"},
        {"INSERT INTO t (SELECT b FROM u)", "(insert [t] (select [b] (from [u])))"},
        {"UPDATE DISTINCTROW a LEFT JOIN b ON a.i=b.i SET a.[x] = b.y=1, z=Null\r\nWHERE b.i IS "
         "NULL",
         "(update distinctrow (left [a] [b] (= [a].[i] [b].[i])) (set [a].[x] (= [b].[y] 1)) (set "
         "[z] null)"
         " (where (null [b].[i])))"},
        {"DELETE * FROM t", "(delete (from [t]))"},
        {"DELETE FROM t WHERE a", "(delete (from [t]) (where [a]))"},
        {"DELETE DISTINCTROW [t u].* FROM [t u] INNER JOIN v ON [t u].i=v.i",
         "(delete distinctrow [t u] (from (inner [t u] [v] (= [t u].[i] [v].[i]))))"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(treeText(parseStatement(utf8(c.text))), utf8(c.tree)) << c.text;
}

TEST(Parser, BindsOperatorsInTheirOrder)
{
    const Case cases[] = {
        {"-2^2", "(^ (neg 2) 2)"},
        {"2^-1^3", "(^ (^ 2 (neg 1)) 3)"},
        {"a-b-c*d/e", "(- (- [a] [b]) (/ (* [c] [d]) [e]))"},
        {"a\\b*c mod d+e", "(+ (mod (\\ [a] (* [b] [c])) [d]) [e])"},
        {"a mod b\\c", "(mod [a] (\\ [b] [c]))"},
        {"a&b+c&d", "(& (& [a] (+ [b] [c])) [d])"},
        {"a & b = c Like \"x\" & d", "(like (= (& [a] [b]) [c]) (& 'x' [d]))"},
        {"a<b<=c<>d", "(<> (<= (< [a] [b]) [c]) [d])"},
        {"Not a=b And Not c", "(and (not (= [a] [b])) (not [c]))"},
        {"a Or b Xor c And d", "(or [a] (xor [b] (and [c] [d])))"},
        {"a Xor b Or c", "(or (xor [a] [b]) [c])"},
        {"a Imp b Eqv c Or d", "(imp [a] (eqv [b] (or [c] [d])))"},
        {"a Eqv b Imp c Imp d", "(imp (imp (eqv [a] [b]) [c]) [d])"},
        {"a = Not b And c", "(and (= [a] (not [b])) [c])"},
        {"a Between 1 And 2 And b", "(and (between [a] 1 2) [b])"},
        {"a Not Between 1+1 And 2&3 Or b Not In (1,-2) Or c Not Like d",
         "(or (or (not-between [a] (+ 1 1) (& 2 3)) (not-in [b] 1 (neg 2))) (not-like [c] [d]))"},
        {"a Is Null = b Is Not Null", "(not-null (= (null [a]) [b]))"},
        {"[CodeRegion] &\"\" =[ID]&''", "(= (& [CodeRegion] '') (& [ID] ''))"},
        {"ISNULL([t].[c])=false", "(= (call isnull [t].[c]) false)"},
        {"Trim$(a)&Left$(b,2)&Right(c,1)&now()",
         "(& (& (& (call trim [a]) (call left [b] 2)) (call right [c] 1)) (call now))"},
        {"- - a", "(neg (neg [a]))"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(expressionTree(utf8(c.text)), utf8(c.tree)) << c.text;
}

TEST(Parser, ReadsConstantsAndNames)
{
    const Case cases[] = {
        {"12", "12"},
        {"2147483647", "2147483647"},
        {"2147483648", "~2147483648"},
        {"1.5", "~1.5"},
        {".5+5.", "(+ ~0.5 ~5)"},
        {"1e3*2E-2", "(* ~1000 ~0.02)"},
        {"3And 4", "(and 3 4)"},
        {"&H1F&[a]&Habitat&Hab&&hFFFF", "(& (& (& (& 31 [a]) [Habitat]) [Hab]) -1)"},
        {"&H1FFFF", "131071"},
        {"&HFFFFFFFF", "-1"},
        {"'it''s \"a\"'", "'it's \"a\"'"},
        {"\"a\"\"b'c\"", "'a\"b'c'"},
        {"#3/7/2026#", "#2026-03-07T00:00:00#"},
        {"#3-7-29 2:05 pm#", "#2029-03-07T14:05:00#"},
        {"#12/31/99#", "#1999-12-31T00:00:00#"},
        {"#2026-03-07 14:05:09#", "#2026-03-07T14:05:09#"},
        {"#2026/3/7#", "#2026-03-07T00:00:00#"},
        {"#12:30 AM#", "#1899-12-30T00:30:00#"},
        {"Yes And On Or No Xor Off", "(or (and true true) (xor false false))"},
        {"Évènement_2.Été", "[Évènement_2].[Été]"},
        {"[N_Déterminations]!Nombre", "[N_Déterminations].[Nombre]"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(expressionTree(utf8(c.text)), utf8(c.tree)) << c.text;
}

TEST(Parser, CompletesRulesWithTheirColumn)
{
    const Case cases[] = {
        {">0", "(> [C] 0)"},
        {">=0 And <=90", "(and (>= [C] 0) (<= [C] 90))"},
        {"Is Null Or >3", "(or (null [C]) (> [C] 3))"},
        {"Like \"a*\" Or Not Like 'b*'", "(or (like [C] 'a*') (not-like [C] 'b*'))"},
        {"Not (In (1,2) Or Between 5 And 7)", "(not (or (in [C] 1 2) (between [C] 5 7)))"},
        {"Len([C])>3 And <>\"abcd\"", "(and (> (call len [C]) 3) (<> [C] 'abcd'))"},
        {"[a]>[b]", "(> [a] [b])"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(treeText(*parseRule(utf8(c.text), u"C"_s)), utf8(c.tree)) << c.text;
    EXPECT_EQ(errorOf([] { parseRule(u"Len(>3)", u"C"_s); }).number(), 3075);
    EXPECT_EQ(errorOf([] { parseExpression(u">3"); }).number(), 3075);
}

TEST(Parser, NamesTheFaultAndQuotesItsPlace)
{
    struct Fault {
        const char* text;
        int number;
        const char* quoted; ///< Part of the description.
    };
    const Fault faults[] = {
        {"", 3129, "SELECT"},
        {"  ", 3129, "SELECT"},
        {"DROP TABLE t", 3129, "« DROP TABLE t »"},
        {"SELECT FROM t", 3141, "« FROM t »"},
        {"SELECT a,, b FROM t", 3141, "« , b FROM t »"},
        {"SELECT a b c FROM t", 3141, "« c FROM t »"},
        {"SELECT TOP 1.5 a FROM t", 3141, "« 1.5 a FROM t »"},
        {"SELECT a AS FROM t", 3141, "« FROM t »"},
        {"SELECT a FROM t GROUP a", 3141, "BY est attendu près de « a »"},
        {"SELECT (a FROM t", 3075, "« FROM t »"},
        {"SELECT a FROM", 3131, "« SELECT a FROM »"},
        {"SELECT a FROM WHERE b", 3131, "« WHERE b »"},
        {"SELECT a FROM (t LEFT JOIN u ON t.i=u.i WHERE b", 3131, "« WHERE b »"},
        {"SELECT a FROM t LEFT u ON t.i=u.i", 3131, "« u ON t.i=u.i »"},
        {"SELECT a FROM t LEFT JOIN u WHERE b", 3131, "« WHERE b »"},
        {"SELECT a FROM [t WHERE b", 3131, "crochet « [ » n'est pas fermé près de « [t WHERE b »"},
        {"SELECT a FROM t WHERE", 3075, "« SELECT a FROM t WHERE »"},
        {"SELECT a FROM t WHERE b = = c", 3075, "« = c »"},
        {"SELECT a FROM t WHERE b = 1 c = 2", 3075, "opérateur manque dans l'expression « c = 2 »"},
        {"SELECT a FROM t WHERE b = 1)", 3075, "parenthèse « ) » est de trop"},
        {"SELECT a FROM t WHERE b = \"x", 3075, "guillemet dans l'expression « \"x »"},
        {"SELECT a FROM t WHERE b = #13/31/2026#", 3075, "« #13/31/2026# »"},
        {"SELECT a FROM t WHERE b = 1e999", 3075, "« 1e999 »"},
        {"SELECT a FROM t WHERE b IS 3", 3075, "« 3 »"},
        {"SELECT a FROM t WHERE b BETWEEN 1 OR 2", 3075, "« OR 2 »"},
        {"SELECT a FROM t WHERE b IN ()", 3075, "« ) »"},
        {"SELECT a FROM t WHERE x.y.z=1", 3075, "« .z=1 »"},
        {"SELECT a FROM t WHERE Trim$ = 1", 3075, "« Trim$ = 1 »"},
        {"SELECT a FROM t WHERE b = %", 3075, "« % »"},
        {"SELECT a FROM t ORDER a", 3138, "« a »"},
        {"SELECT a FROM t; SELECT b", 3142, "« SELECT b »"},
        {"INSERT t VALUES (1)", 3134, "« t VALUES (1) »"},
        {"INSERT INTO t (a, ) VALUES (1)", 3134, "« ) VALUES (1) »"},
        {"INSERT INTO t (a) 1", 3134, "« 1 »"},
        {"INSERT INTO t VALUES (1", 3134, "« INSERT INTO t VALUES (1 »"},
        {"UPDATE t a = 1", 3144, "« = 1 »"},
        {"UPDATE t SET a 1", 3144, "« 1 »"},
        {"UPDATE t SET a = 1, WHERE b", 3144, "« WHERE b »"},
        {"UPDATE t SET a = 1 b = 2", 3144, "« b = 2 »"},
        {"DELETE t FROM t", 3131, "« FROM t »"},
        {"SELECT * FROM Individus WHERE [Numéro du carnet de récolte] 12\r\n AND [Habitat] = "
         "\"bord de route\" AND Altitude > 3",
         3075, "« 12 AND [Habitat] = \"bord de route\" AND… »"},
    };
    for (const Fault& fault : faults) {
        const jet::Error error = statementError(utf8(fault.text));
        EXPECT_EQ(error.number(), fault.number) << fault.text;
        EXPECT_TRUE(error.description().contains(utf8(fault.quoted)))
            << fault.text << "\n"
            << error.description().toStdString();
        EXPECT_EQ(error.source(), utf8(fault.text));
    }
}

TEST(Parser, KeepsThePlaceOfEveryExpression)
{
    const QString text = u"  SELECT a FROM t WHERE [b] = -(c)"_s;
    const auto statement = parseStatement(text);
    const auto& select = std::get<jet::sql::Query>(statement.node).selects.front();
    EXPECT_EQ(select.outputs.front().expression->place, text.indexOf(u"a FROM"));
    EXPECT_EQ(select.from.front()->place, text.indexOf(u"t WHERE"));
    const auto& equal = std::get<jet::sql::Binary>(select.where->node);
    EXPECT_EQ(select.where->place, text.indexOf(u"[b]"));
    EXPECT_EQ(equal.right->place, text.indexOf(u"-(c)"));
}

TEST(Parser, RefusesWhatWouldNestTooDeeply)
{
    const auto nested = [](int depth, const QString& open, const QString& close) {
        return u"SELECT "_s + open.repeated(depth) + u"1"_s + close.repeated(depth);
    };
    EXPECT_EQ(statementError(nested(150, u"("_s, u")"_s)).number(), 0);
    EXPECT_EQ(statementError(nested(150, u"f("_s, u")"_s)).number(), 0);
    const QString chain = u"1"_s + u"+1"_s.repeated(10);
    const QString texts[] = {
        nested(201, u"("_s, u")"_s),
        nested(100'000, u"("_s, {}),
        nested(100'000, u"("_s, u")"_s),
        nested(100'000, u"NOT "_s, {}),
        nested(100'000, u"-"_s, {}),
        nested(100'000, u"f("_s, {}),
        nested(50'000, u"(SELECT "_s, {}),
        nested(100'000, u"1+"_s, {}),
        nested(100'000, u"1="_s, {}),
        nested(100'000, u"1^"_s, {}),
        nested(100'000, {}, u" IS NULL"_s),
        nested(190, u"("_s, u"+1+1+1)"_s),
        u"SELECT * FROM "_s + u"("_s.repeated(100'000),
        u"SELECT * FROM t"_s + u" LEFT JOIN t ON a=b"_s.repeated(1000),
        u"SELECT a FROM t"_s + u" WHERE a IN (SELECT a FROM t"_s.repeated(1000),
        u"SELECT "_s + u"x"_s.repeated(1'000'000),
    };
    for (const QString& text : texts)
        EXPECT_EQ(statementError(text).number(), 3360) << text.left(40).toStdString();
}

TEST(Parser, KeepsLongCriteriaFlat)
{
    const QString terms = u" OR [ID Individus]=3"_s.repeated(20'000);
    const auto expression = parseExpression(u"[ID Individus]=2"_s + terms);
    EXPECT_LT(treeHeight(*expression), 20);
    const auto ordered = parseExpression(u"0"_s + u"&1&2&3&4"_s.repeated(10));
    QString digits = treeText(*ordered);
    digits.removeIf([](QChar c) { return !c.isDigit(); });
    EXPECT_EQ(digits, u"0"_s + u"1234"_s.repeated(10));
    const QString list = u"3,"_s.repeated(50'000) + u"3"_s;
    EXPECT_EQ(statementError(u"SELECT * FROM t WHERE a IN ("_s + list + u")"_s).number(), 0);
}
