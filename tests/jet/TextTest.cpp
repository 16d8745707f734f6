// Order, patterns and values of text, and the sentences of errors.
#include "jet/Error.h"
#include "jet/text/Like.h"
#include "jet/text/TextOrder.h"
#include "jet/text/Values.h"
#include "support/Print.h"

#include <gtest/gtest.h>
#include <random>

using namespace Qt::StringLiterals;
using namespace jet;

namespace {

int numberOfFailure(const std::function<void()>& work)
{
    try {
        work();
    } catch (const Error& error) {
        return error.number();
    }
    return 0;
}

bool like(const QString& value, const QString& pattern)
{
    return text::LikePattern(pattern).matches(value);
}

// Random texts over an alphabet that holds every odd kind of character, so that collisions happen.
class RandomTexts {
public:
    QString next(int longest)
    {
        QString result;
        for (int n = int(m_random() % unsigned(longest + 1)); n > 0; --n)
            result += m_alphabet[int(m_random() % unsigned(m_alphabet.size()))];
        return result;
    }

private:
    std::mt19937 m_random{20260101};
    const QStringList m_alphabet{
        u"a"_s, u"A"_s, u"b"_s, u"e"_s, u"é"_s, u"E\u0301"_s, u"ê"_s, u"s"_s, u"S"_s, u"ß"_s, u"\u1E9E"_s,
        u"æ"_s, u"ae"_s, u"Œ"_s, u"o"_s, u"þ"_s, u"TH"_s, u"t"_s, u"-"_s, u"'"_s, u" "_s, u"\u3000"_s,
        u"1"_s, u"¹"_s, u"Ａ"_s, u"\u0301"_s, u"\u0323"_s, u"ệ"_s, u"ł"_s, u"Ł"_s, u"ж"_s, u"Ж"_s, u"µ"_s,
        u"μ"_s, u"\u017F"_s, u"\u212A"_s, u"k"_s, u"."_s, u"ª"_s, u"가"_s, u"\U0001F33F"_s, u"\u0622"_s,
        u"\u064D"_s, u"½"_s, QString(QChar(0)), u"\u00AD"_s, u"ø"_s, u"ǽ"_s};
};

} // namespace

// --- Order ---------------------------------------------------------------------------------------

TEST(TextOrder, ComparesWithoutCaseWithAccentsAndWithoutTrailingBlanks)
{
    struct Case {
        QString a, b;
        bool equal;
    };
    const Case cases[] = {
        {u"abc"_s, u"ABC"_s, true},          {u"a "_s, u"a"_s, true},
        {u" a"_s, u"a"_s, false},            {u"café"_s, u"cafe"_s, false},
        {u"ß"_s, u"ss"_s, true},             {u"æ"_s, u"ae"_s, true},
        {u"Œuvre"_s, u"oeuvre"_s, true},     {u"þ"_s, u"th"_s, true},
        {u"Ａｂ１"_s, u"ab1"_s, true},         {u"¹"_s, u"1"_s, true},
        {u"x\u2074"_s, u"x4"_s, true},       {u"é"_s, u"e\u0301"_s, true},
        {u"É"_s, u"e\u0301"_s, true},        {u"coop"_s, u"co-op"_s, false},
        {u"co-op"_s, u"coop-"_s, false},     {u"a-"_s, u"a/"_s, false},
        {u"Müller "_s, u"müller"_s, true},   {u"ệ"_s, u"e\u0302\u0323"_s, true},
        {u"ếa"_s, u"êá"_s, false},           {u"á-b"_s, u"a-\u0301b"_s, false},
        {u"æé"_s, u"aeé"_s, true},           {u"Ж"_s, u"ж"_s, true},
        {u"a\t"_s, u"a"_s, false},           {u""_s, u"  "_s, true},
        {u"µ"_s, u"μ"_s, false},             {u"Łódź"_s, u"łódź"_s, true},
        {u"Łódź"_s, u"lódź"_s, false},       {u"½"_s, u"1/2"_s, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(text::equal(c.a, c.b), c.equal) << c.a.toStdString() << " / " << c.b.toStdString();
        EXPECT_EQ(text::compare(c.a, c.b) == 0, c.equal) << c.a.toStdString() << " / " << c.b.toStdString();
    }
}

TEST(TextOrder, SortsPunctuationBeforeDigitsBeforeLettersAndAccentsAfterTheWholeWord)
{
    const QList<QStringList> ordered{
        {u""_s, u" a"_s, u"_"_s, u"a"_s, u"Z"_s, u"z z"_s},
        {u"!"_s, u"9"_s, u"a"_s},
        {u"cote"_s, u"coté"_s, u"côte"_s, u"côté"_s, u"coter"_s},
        {u"e"_s, u"é"_s, u"f"_s},
        {u"a-"_s, u"a/"_s, u"coop"_s, u"CO-OP"_s, u"coop-"_s, u"coopération"_s},
        {u"Lycopodium"_s, u"Łysa"_s, u"Maxillaria"_s, u"Zamia"_s, u"Ωmega"_s, u"Жук"_s},
        {u"Musée de l'Homme"_s, u"Musée de Lyon"_s},
    };
    for (const QStringList& texts : ordered) {
        for (qsizetype i = 1; i < texts.size(); ++i) {
            // "a" stands before "a-": the hyphen alone makes the difference.
            EXPECT_LT(text::compare(texts[i - 1], texts[i]), 0)
                << texts[i - 1].toStdString() << " < " << texts[i].toStdString();
        }
    }
}

TEST(TextOrder, KeysHoldWeightsThenAccentsThenIgnorables)
{
    EXPECT_EQ(text::key(u"Ab"), QByteArray::fromHex("4A4C01"));
    EXPECT_EQ(text::key(u"abé"), QByteArray::fromHex("4A4C510102020E"));
    EXPECT_EQ(text::key(u"éab"), QByteArray::fromHex("514A4C010E"));
    EXPECT_EQ(text::key(u"a-b"), QByteArray::fromHex("4A4C01010101800B0682"));
    EXPECT_EQ(text::key(u"^~"), QByteArray::fromHex("2B022B0F01"));
}

TEST(TextOrder, PlacesAHyphenFarIntoALongText)
{
    const QString run(20000, u'a');
    const QString early = run.left(9000) + u'-' + run, late = run.left(10000) + u'-' + run.mid(1000);
    EXPECT_LT(text::compare(early, late), 0);
    EXPECT_LT(text::compare(u"-"_s + run, early.left(9001) + run.left(11000)), 0);
}

TEST(TextOrder, IsAStrictWeakOrderThatAgreesWithEquality)
{
    RandomTexts random;
    QStringList texts;
    for (int i = 0; i < 400; ++i)
        texts.append(random.next(4));
    std::sort(texts.begin(), texts.end(),
              [](const QString& a, const QString& b) { return text::compare(a, b) < 0; });
    for (qsizetype i = 0; i < texts.size(); ++i) {
        for (qsizetype j = i; j < texts.size(); ++j) {
            const int order = text::compare(texts[i], texts[j]);
            ASSERT_LE(order, 0);
            ASSERT_EQ(order == 0, text::equal(texts[i], texts[j]));
            ASSERT_EQ(order > 0, text::compare(texts[j], texts[i]) < 0);
        }
    }
}

// Forms that stand for the same text must have one key, and no other pair may.
TEST(TextOrder, TellsTextsApartThatDifferInMoreThanFoldingAndForm)
{
    RandomTexts random;
    const auto canonical = [](QString value) {
        while (value.endsWith(u' ') || value.endsWith(QChar(0x3000)))
            value.chop(1);
        const QList<std::pair<QString, QString>> same{
            {QString(QChar(0)), {}}, {u"\u3000"_s, u" "_s}, {u"\u1E9E"_s, u"ß"_s}, {u"ß"_s, u"ss"_s},
            {u"ǽ"_s, u"aé"_s}, {u"æ"_s, u"ae"_s}, {u"Œ"_s, u"oe"_s}, {u"þ"_s, u"th"_s}, {u"¹"_s, u"1"_s},
            {u"Ａ"_s, u"a"_s}, {u"\u017F"_s, u"s"_s}, {u"\u212A"_s, u"k"_s}, {u"Ł"_s, u"ł"_s},
            {u"Ж"_s, u"ж"_s}, {u"K"_s, u"k"_s}, {u"A"_s, u"a"_s}, {u"E"_s, u"e"_s}, {u"S"_s, u"s"_s}, {u"T"_s, u"t"_s},
            {u"H"_s, u"h"_s}};
        value = value.normalized(QString::NormalizationForm_D);
        for (const auto& [from, to] : same)
            value.replace(from, to);
        return value.normalized(QString::NormalizationForm_D);
    };
    QHash<QByteArray, QString> seen;
    for (int i = 0; i < 30000; ++i) {
        const QString value = random.next(4), expected = canonical(value);
        const auto known = seen.constFind(text::key(value));
        if (known != seen.constEnd()) {
            ASSERT_EQ(*known, expected) << value.toStdString();
        }
        seen.insert(text::key(value), expected);
        ASSERT_EQ(text::key(value), text::key(value.normalized(QString::NormalizationForm_C)));
    }
}

// --- LIKE ----------------------------------------------------------------------------------------

TEST(Like, MatchesAsTheDialectSays)
{
    struct Case {
        QString value, pattern;
        bool matches;
    };
    const Case cases[] = {
        {u"Poa annua"_s, u"poa*"_s, true},
        {u"Poa annua"_s, u"*ANN*"_s, true},
        {u"Poa annua"_s, u"*ann"_s, false},
        {u""_s, u""_s, true},
        {u""_s, u"*"_s, true},
        {u""_s, u"?"_s, false},
        {u"a5"_s, u"a#"_s, true},
        {u"ab"_s, u"a#"_s, false},
        {u"a%b_"_s, u"a%b_"_s, true},
        {u"axbx"_s, u"a%b_"_s, false},
        {u"é"_s, u"e"_s, false},
        {u"Élan"_s, u"é*"_s, true},
        {u"elan"_s, u"é*"_s, false},
        {u"e\u0301lan"_s, u"É*"_s, true},
        {u"é"_s, u"[a-z]"_s, false},
        {u"é"_s, u"[à-ü]"_s, true},
        {u"Z"_s, u"[a-z]"_s, true},
        {u"b"_s, u"[A-C]"_s, true},
        {u"b"_s, u"[!a-c]"_s, false},
        {u"é"_s, u"[!a-z]"_s, true},
        {u"a "_s, u"a"_s, false},
        {u"co-op"_s, u"coop"_s, false},
        {u"ß"_s, u"ss"_s, true},
        {u"ss"_s, u"ß"_s, true},
        {u"aß"_s, u"a?"_s, true},
        {u"ß"_s, u"??"_s, false},
        {u"sß"_s, u"ßs"_s, true},
        {u"Æsculus"_s, u"aes*"_s, true},
        {u"oeuf"_s, u"œ*"_s, true},
        {u"Cœur"_s, u"c?ur"_s, true},
        {u"th"_s, u"þ"_s, true},
        {u"a*"_s, u"a[*]"_s, true},
        {u"ab"_s, u"a[*]"_s, false},
        {u"a?"_s, u"a[?]"_s, true},
        {u"a#"_s, u"a[#]"_s, true},
        {u"a["_s, u"a[[]"_s, true},
        {u"a]"_s, u"a]"_s, true},
        {u"ab"_s, u"a[]b"_s, true},
        {u"!"_s, u"[!]"_s, true},
        {u"!a"_s, u"!a"_s, true},
        {u"-12"_s, u"[W-]*"_s, true},
        {u"W12"_s, u"[w-]*"_s, true},
        {u"X12"_s, u"[W-]*"_s, false},
        {u"-"_s, u"[-a]"_s, true},
        {u"-"_s, u"[!-a]"_s, false},
        {u"b"_s, u"[!-a]"_s, true},
        {u"Vahl"_s, u"[U-V]*"_s, true},
        {u";cf.;aff.;"_s, u"*;aff.;*"_s, true},
        {u"3/71/"_s, u"3/7/*"_s, false},
        {u"12-Individus"_s, u"*-Individus"_s, true},
        {u"\U0001F33Fx"_s, u"?x"_s, true},
        {u"mississippi"_s, u"m*issip*"_s, true},
        {u"aaab"_s, u"*a?b"_s, true},
        {u"abcabd"_s, u"*ab[c-d]"_s, true},
        {u"µ"_s, u"μ"_s, false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(like(c.value, c.pattern), c.matches) << c.value.toStdString() << " LIKE " << c.pattern.toStdString();
}

TEST(Like, RefusesABrokenListOnlyWhenMatchingReachesItWithTextLeft)
{
    const auto failure = [](const QString& value, const QString& pattern) {
        return numberOfFailure([&] { like(value, pattern); });
    };
    EXPECT_EQ(failure(u"abc"_s, u"a[b"_s), 93);
    EXPECT_EQ(failure(u"abc"_s, u"[z-a]*"_s), 93);
    EXPECT_EQ(failure(u"abc"_s, u"*["_s), 93);
    EXPECT_EQ(failure(u"abc"_s, u"[Z-a]"_s), 93);
    EXPECT_EQ(failure(u"abc"_s, u"x["_s), 0);
    EXPECT_EQ(failure(u"a"_s, u"a["_s), 0);
    EXPECT_FALSE(like(u"a"_s, u"a["_s));
    EXPECT_FALSE(like(u""_s, u"["_s));
}

TEST(Like, GivesThePrefixBeforeTheFirstWildcard)
{
    struct Case {
        QString pattern, prefix;
        bool literal;
    };
    const Case cases[] = {
        {u"Élan*x"_s, u"Élan"_s, false}, {u"*a"_s, u""_s, false},  {u"abc"_s, u"abc"_s, true},
        {u"a[*]b?"_s, u"a*b"_s, false},  {u"a[bc]"_s, u"a"_s, false}, {u"a[]b"_s, u"ab"_s, true},
        {u"a["_s, u"a"_s, false},
    };
    for (const Case& c : cases) {
        const text::LikePattern pattern(c.pattern);
        EXPECT_EQ(pattern.prefix(), c.prefix) << c.pattern.toStdString();
        EXPECT_EQ(pattern.isLiteral(), c.literal) << c.pattern.toStdString();
    }
}

TEST(Like, EveryMatchHasItsKeyInTheRangeOfThePrefix)
{
    RandomTexts random;
    int matches = 0;
    for (int i = 0; i < 200000; ++i) {
        const QString value = random.next(4), pattern = random.next(3) + u'*';
        const text::LikePattern compiled(pattern);
        if (!compiled.matches(value))
            continue;
        ++matches;
        const QByteArray key = text::key(value);
        ASSERT_GE(key, text::prefixKey(compiled.prefix())) << value.toStdString() << " / " << pattern.toStdString();
        ASSERT_LT(key, text::prefixKeyEnd(compiled.prefix())) << value.toStdString() << " / " << pattern.toStdString();
    }
    EXPECT_GT(matches, 1000);
    EXPECT_GE(text::key(u"ab "), text::prefixKey(u"ab "));
    EXPECT_GE(text::key(u"ab"), text::prefixKeyEnd(u"aa"));
    EXPECT_LT(text::key(u"ab"), text::prefixKey(u"ac"));
}

namespace {

// What the wildcards mean, told without any care for speed.
bool naiveMatch(QStringView value, const QStringList& elements, qsizetype from = 0)
{
    if (from == elements.size())
        return value.isEmpty();
    const QString& element = elements[from];
    if (element == u'*') {
        for (qsizetype taken = 0; taken <= value.size(); ++taken) {
            if (naiveMatch(value.sliced(taken), elements, from + 1))
                return true;
        }
        return false;
    }
    if (value.isEmpty())
        return false;
    const QChar c = value[0];
    const bool taken = element == u'?' || (element == u'#' && c.isDigit()) || (element == u"[ab]" && c != u'1')
                       || (element == u"[!a]" && c != u'a') || element == c;
    return taken && naiveMatch(value.sliced(1), elements, from + 1);
}

} // namespace

TEST(Like, AgreesWithTheMeaningOfItsWildcards)
{
    std::mt19937 random(7);
    const auto pick = [&random](const QStringList& from, int longest) {
        QStringList result;
        for (unsigned n = random() % unsigned(longest + 1); n > 0; --n)
            result.append(from[qsizetype(random() % unsigned(from.size()))]);
        return result;
    };
    int matches = 0;
    for (int i = 0; i < 30000; ++i) {
        const QString value = pick({u"a"_s, u"b"_s, u"1"_s}, 7).join(QString());
        const QStringList elements =
            pick({u"*"_s, u"*"_s, u"?"_s, u"#"_s, u"[ab]"_s, u"[!a]"_s, u"a"_s, u"b"_s}, 6);
        const bool expected = naiveMatch(value, elements);
        matches += expected ? 1 : 0;
        ASSERT_EQ(like(value, elements.join(QString())), expected)
            << value.toStdString() << " LIKE " << elements.join(QString()).toStdString();
    }
    EXPECT_GT(matches, 1000);
}

// With naive backtracking this would take longer than anyone waits.
TEST(Like, StaysFastOnManyStars)
{
    QString pattern;
    for (int i = 0; i < 200; ++i)
        pattern += u"*a?";
    EXPECT_FALSE(like(QString(3000, u'a'), pattern + u"*b"_s));
}

// --- Values --------------------------------------------------------------------------------------

TEST(Values, ValReadsTheLeadingNumber)
{
    struct Case {
        QString text;
        double value;
    };
    const Case cases[] = {
        {u"3 .1 4"_s, 3.14},   {u"  -  5"_s, -5},       {u"1d2"_s, 100},      {u"1E2x"_s, 100},
        {u"1d"_s, 1},          {u"1.5e2.5"_s, 150},     {u"&HFF"_s, 255},     {u"&hffff"_s, -1},
        {u"&HFFFF&"_s, 65535}, {u"&H10000"_s, 65536},   {u"&O17"_s, 15},      {u"-&HFF"_s, 0},
        {u"1,5"_s, 1},         {u"1.5.5"_s, 1.5},       {u".5"_s, 0.5},       {u""_s, 0},
        {u"abc"_s, 0},         {u"\t1\n2\r3"_s, 123},   {u"1\u00A02"_s, 1},   {u"1\v2"_s, 1},
        {u"    1615 198th Street N.E."_s, 1615198},     {u"12-Individus"_s, 12},
        {u"1e-400"_s, 0},      {u"1e"_s, 1},            {u"-.5e+1"_s, -5},    {u"+7"_s, 7},
    };
    for (const Case& c : cases)
        EXPECT_DOUBLE_EQ(text::val(c.text), c.value) << c.text.toStdString();
    EXPECT_EQ(numberOfFailure([] { text::val(u"1e400"); }), 6);
    EXPECT_EQ(numberOfFailure([] { text::val(u"1e99999999999999999999"); }), 6);
    EXPECT_EQ(text::val(u"1e-99999999999999999999"), 0);
}

TEST(Values, StrConvStartsWordsAfterBlanksOnly)
{
    const std::pair<QString, QString> cases[] = {
        {u"o'neil mc-donald"_s, u"O'neil Mc-donald"_s}, {u"ÉCOLE élan"_s, u"École Élan"_s},
        {u"hello_world"_s, u"Hello_world"_s},           {u"123abc def"_s, u"123abc Def"_s},
        {u"a\u00A0b.c,d(e/f"_s, u"A\u00A0b.c,d(e/f"_s}, {u"a\tb\nc"_s, u"A\tB\nC"_s},
        {u"ДЕРЕВО лес"_s, u"Дерево Лес"_s},
    };
    for (const auto& [given, expected] : cases)
        EXPECT_EQ(text::strConv(given, 3), expected);
    EXPECT_EQ(text::strConv(u"straße É", 1), u"STRAßE É"_s);
    EXPECT_EQ(text::strConv(u"ÉCOLE", 2), u"école"_s);
}

TEST(Values, TrimsBlanksOnly)
{
    EXPECT_EQ(text::trimBlanks(u" \u3000a b ", true, true), u"a b"_s);
    EXPECT_EQ(text::trimBlanks(u"\ta\u00A0", true, true), u"\ta\u00A0"_s);
    EXPECT_EQ(text::trimBlanks(u" a ", true, false), u"a "_s);
    EXPECT_EQ(text::trimBlanks(u" a ", false, true), u" a"_s);
}

TEST(Values, WritesNumbersWithFifteenDigits)
{
    const std::pair<double, QString> cases[] = {
        {0.1 + 0.2, u"0.3"_s}, {-0.0, u"0"_s},         {1.0 / 3, u"0.333333333333333"_s},
        {12.5, u"12.5"_s},     {1e15, u"1E+15"_s},     {123456789012345.0, u"123456789012345"_s},
        {-7, u"-7"_s},
    };
    for (const auto& [value, expected] : cases)
        EXPECT_EQ(text::numberText(value), expected);
}

TEST(Values, RoundsHalfToEven)
{
    EXPECT_EQ(text::roundHalfEven(0.5), 0);
    EXPECT_EQ(text::roundHalfEven(1.5), 2);
    EXPECT_EQ(text::roundHalfEven(-2.5), -2);
    EXPECT_EQ(text::roundHalfEven(2.125, 2), 2.12);
    EXPECT_EQ(text::roundHalfEven(1e300, 2), 1e300);
}

TEST(Values, FormatsNumbers)
{
    struct Case {
        double value;
        QString pattern, expected;
    };
    const Case cases[] = {
        {7, u"000"_s, u"007"_s},
        {-7, u"000"_s, u"-007"_s},
        {1234, u"00"_s, u"1234"_s},
        {0, u"00.00######"_s, u"00.00"_s},
        {3.25, u"00.00######"_s, u"03.25"_s},
        {59.99999949, u"00.00######"_s, u"59.99999949"_s},
        {1.0 / 3, u"00.00######"_s, u"00.33333333"_s},
        {59.9999999, u"00.000000"_s, u"60.000000"_s},
        {2.675, u"0.00"_s, u"2.68"_s},
        {0.125, u"0.00"_s, u"0.13"_s},
        {-0.001, u"0.00"_s, u"0.00"_s},
        {99.5, u"0"_s, u"100"_s},
        {0.5, u"#.##"_s, u".5"_s},
        {1234567.891, u"#,##0.0"_s, u"1,234,567.9"_s},
        {0.256, u"0%"_s, u"26%"_s},
        {-3, u"0;(0);nul"_s, u"(3)"_s},
        {0, u"0;(0);nul"_s, u"nul"_s},
        {5, u"\"n° \"0\\#"_s, u"n° 5#"_s},
        {1e-9, u"0.0000"_s, u"0.0000"_s},
        {123456789012345678.0, u"0"_s, u"123456789012346000"_s},
    };
    for (const Case& c : cases)
        EXPECT_EQ(text::formatNumber(c.value, c.pattern), c.expected) << c.pattern.toStdString();
}

TEST(Values, FormatsDatesAndTexts)
{
    const QDateTime moment(QDate(2001, 3, 6), QTime(14, 5, 9));
    const std::pair<QString, QString> dates[] = {
        {u"yyyy/mm/dd"_s, u"2001/03/06"_s},    {u"hh:mm:ss"_s, u"14:05:09"_s},
        {u"yyyy/mm/dd hh:nn"_s, u"2001/03/06 14:05"_s}, {u"d mmmm yyyy"_s, u"6 mars 2001"_s},
        {u"dd/mm/yy"_s, u"06/03/01"_s},        {u"dddd"_s, u"mardi"_s},
        {u"h:mm AM/PM"_s, u"2:05 PM"_s},       {u"\"jour \"d"_s, u"jour 6"_s},
    };
    for (const auto& [pattern, expected] : dates)
        EXPECT_EQ(text::formatDate(moment, pattern), expected);
    EXPECT_EQ(text::formatText(u"5", u"@@"), u" 5"_s);
    EXPECT_EQ(text::formatText(u"1234", u"@@"), u"1234"_s);
    EXPECT_EQ(text::formatText(u"5", u"!@@"), u"5 "_s);
    EXPECT_EQ(text::formatText(u"", u"@@@"), u"   "_s);
    EXPECT_EQ(text::formatText(u"5", u"&&"), u"5"_s);
    EXPECT_EQ(text::formatText(u"12", u"@-@"), u"1-2"_s);
    EXPECT_EQ(text::formatText(u"abc", u">"), u"ABC"_s);
}

TEST(Values, CountsDatesInDays)
{
    const auto at = [](int y, int m, int d, int h = 0) { return QDateTime(QDate(y, m, d), QTime(h, 0)); };
    EXPECT_EQ(text::dateToDays(at(1899, 12, 30)), 0);
    EXPECT_EQ(text::dateToDays(at(2000, 1, 1, 12)), 36526.5);
    EXPECT_LT(text::dateToDays(at(1850, 5, 1, 6)), text::dateToDays(at(1850, 5, 1, 18)));
    for (const QDateTime& date : {at(1753, 5, 1, 3), at(1999, 12, 31, 23), at(100, 1, 1), at(9999, 12, 31)})
        EXPECT_EQ(text::daysToDate(text::dateToDays(date)), date);
    EXPECT_EQ(numberOfFailure([] { text::daysToDate(1e7); }), 6);
    EXPECT_EQ(numberOfFailure([] { text::daysToDate(std::nan("")); }), 6);
}

TEST(Values, ReadsWholeTextsAsNumbersAndDates)
{
    EXPECT_EQ(text::numberOfText(u" 12,5 "), 12.5);
    EXPECT_EQ(text::numberOfText(u"-12.5e1"), -125);
    for (const QString& none : {u""_s, u"12 kg"_s, u"1.2.3"_s, u"-"_s, u"e5"_s})
        EXPECT_FALSE(text::numberOfText(none)) << none.toStdString();
    const QDateTime day(QDate(2001, 3, 6), QTime(0, 0));
    for (const QString& written : {u"06/03/2001"_s, u"2001-03-06"_s, u"2001/3/6"_s, u"6/3/01"_s})
        EXPECT_EQ(text::dateOfText(written), day) << written.toStdString();
    EXPECT_EQ(text::dateOfText(u"2001/03/06 14:05"), QDateTime(day.date(), QTime(14, 5)));
    EXPECT_EQ(text::dateOfText(u"14:05:09"), QDateTime(QDate(1899, 12, 30), QTime(14, 5, 9)));
    for (const QString& none : {u"2001"_s, u"31/02/2001"_s, u"06/03/2001 x"_s, u"//"_s, u""_s, u"12.5"_s})
        EXPECT_FALSE(text::dateOfText(none)) << none.toStdString();
}

// --- Errors --------------------------------------------------------------------------------------

TEST(Error, FillsASentenceAndLeavesOutPartsWithoutArgument)
{
    EXPECT_EQ(describe(3078, u"Taxons"_s), u"La table ou la requête « Taxons » est introuvable ; vérifiez "
                                           u"qu'elle existe et que son nom est bien écrit."_s);
    EXPECT_TRUE(describe(3078).startsWith(u"La table ou la requête est introuvable"_s));
    EXPECT_TRUE(describe(3022, u"50%2 {a}"_s, u"x"_s).contains(u"« 50%2 {a} » (x)"_s));
    EXPECT_EQ(describe(3316, u"Altitude positive"_s), u"Altitude positive"_s);
    EXPECT_TRUE(describe(31999, u"détail"_s).contains(u"31999 : détail"_s));
    try {
        fail(3265, u"Habitat"_s, u"Individus"_s);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.number(), 3265);
        EXPECT_TRUE(error.description().contains(u"« Habitat » n'existe pas dans « Individus »"_s));
    }
}

TEST(Error, GivesAWholeSentenceForEveryNumberOfTheEngine)
{
    const int numbers[] = {
        5,    6,    11,   13,   93,   94,   3001, 3010, 3012, 3015, 3019, 3020, 3021, 3022, 3024, 3026, 3027,
        3031, 3043, 3044, 3045, 3047, 3049, 3051, 3058, 3059, 3061, 3070, 3073, 3075, 3078, 3079, 3085, 3086,
        3122, 3125, 3128, 3129, 3131, 3134, 3141, 3144, 3162, 3163, 3164, 3167, 3190, 3191, 3200, 3201, 3204, 3219,
        3251, 3264, 3265, 3270, 3281, 3283, 3284, 3296, 3306, 3314, 3315, 3316, 3317, 3326, 3343, 3356, 3360, 3366,
        3367, 3368, 3372, 3375, 3379, 3380, 3396, 3397, 3399, 3409, 3420, 3421, 3424, 3464, 3609, 3615};
    for (const int number : numbers) {
        for (const QString& sentence : {describe(number), describe(number, u"x"_s, u"y"_s)}) {
            EXPECT_FALSE(sentence.contains(QString::number(number))) << number << " has no sentence of its own";
            EXPECT_FALSE(sentence.contains(u'%') || sentence.contains(u'{') || sentence.contains(u"  "_s)
                         || sentence.contains(u"« »"_s))
                << sentence.toStdString();
        }
        EXPECT_TRUE(describe(number).at(0).isUpper()) << number;
    }
}
