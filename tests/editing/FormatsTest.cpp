#include "editing/Formats.h"
#include "support/Print.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

using namespace Qt::StringLiterals;
using namespace editing;

TEST(Coordinates, AreWrittenInNormalForm)
{
    const QList<QPair<double, QString>> longitudes{
        {12.5, u"E012°30'00.00"_s},       {0, u"E000°00'00.00"_s},
        {190, u"W170°00'00.00"_s},        {-190, u"E170°00'00.00"_s},
        {540, u"E180°00'00.00"_s},        {-0.1, u"W000°06'00.00"_s},
        {2.352222, u"E002°21'07.9992"_s}, {179.99999999999, u"E180°00'00.00"_s},
        {-725, u"W005°00'00.00"_s},
    };
    for (const auto& [value, text] : longitudes)
        EXPECT_EQ(LongitudeToText(value), text) << value;
    const QList<QPair<double, QString>> latitudes{
        {0, u"S00°00'00.00"_s},   {100, u"N80°00'00.00"_s}, {-95, u"S85°00'00.00"_s},
        {45.1, u"N45°06'00.00"_s}, {90, u"N90°00'00.00"_s},
    };
    for (const auto& [value, text] : latitudes)
        EXPECT_EQ(LatitudeToText(value), text) << value;
}

TEST(Coordinates, BeyondAnyGlobeHaveNoText)
{
    for (const double value : {1e10, -1e300, std::nan(""), HUGE_VAL}) {
        EXPECT_EQ(LongitudeToText(value), QString()) << value;
        EXPECT_EQ(LatitudeToText(value), QString()) << value;
    }
}

TEST(Coordinates, FreeInputIsNormalised)
{
    const QList<QPair<QString, QString>> longitudes{
        {u"W12 30"_s, u"W012°30'00.00"_s},     {u"-12°30'15,5"_s, u"W012°30'15.50"_s},
        {u"e5"_s, u"E005°00'00.00"_s},         {u"x12 3045"_s, u"E012°30'45.00"_s},
        {u""_s, u"E000°00'00.00"_s},           {u"E12°59'60"_s, u"E013°00'00.00"_s},
        {u"E180°00'00"_s, u"E180°00'00.00"_s}, {u"W200°"_s, u"W020°00'00.00"_s},
    };
    for (const auto& [input, text] : longitudes)
        EXPECT_EQ(NormalizeLongitude(input), text) << input.toStdString();
    // Rounding carries on like whole sixties.
    EXPECT_EQ(NormalizeLongitude(u"E12°59'59.999999999"_s), u"E013°00'00.00"_s);
    EXPECT_EQ(NormalizeLatitude(u"-5°70'"_s), u"S06°10'00.00"_s);
    EXPECT_EQ(NormalizeLatitude(u"s 5"_s), u"S05°00'00.00"_s);
    EXPECT_EQ(NormalizeLatitude(u"5°1'2.123456789"_s), u"N05°01'02.12345679"_s);
}

TEST(Coordinates, AreReadFromText)
{
    EXPECT_LT(TextToLatitude(u"X12°00'00"_s), 0);
    EXPECT_GT(TextToLongitude(u"X12°00'00"_s), 0);
    EXPECT_GT(TextToLatitude(u"12°30"_s), 0);
    EXPECT_DOUBLE_EQ(DmsToDegrees(u"12"_s, 90), 12 + 12 / 60.0 + 12 / 3600.0);
    EXPECT_DOUBLE_EQ(DmsToDegrees(u"180°00'00"_s, 180), 180);
    EXPECT_DOUBLE_EQ(TextToLongitude(u"W170°30'36,0"_s), -170.51);
    // More than a whole number of sixteen bits cannot be read.
    EXPECT_EQ(DmsToDegrees(u"99999999"_s, 180), 0);
    EXPECT_EQ(DmsToDegrees(u"1e400°00"_s, 180), 0);
    EXPECT_DOUBLE_EQ(DmsToDegrees(u"-190°30'"_s, 180), -10 + 30 / 60.0);
}

/// Text → number → text is the same text over the whole globe, at the six decimals of a second.
TEST(Coordinates, SurviveTheRoundTripOverTheGlobe)
{
    std::mt19937_64 random(20260307);
    std::uniform_int_distribution<qint64> micro(0, 648'000'000'000LL); // micro-seconds of arc, 0 to 180°
    for (int i = 0; i < 20'000; ++i) {
        const double longitude = double(micro(random)) / 3.6e9 * (i % 2 ? -1 : 1);
        const QString text = LongitudeToText(longitude);
        EXPECT_NEAR(TextToLongitude(text), longitude, 1e-9);
        EXPECT_EQ(LongitudeToText(TextToLongitude(text)), text);
        const double latitude = longitude / 2;
        const QString north = LatitudeToText(latitude);
        EXPECT_NEAR(TextToLatitude(north), latitude, 1e-9);
        EXPECT_EQ(LatitudeToText(TextToLatitude(north)), north);
    }
}

TEST(Dates, AreParsedFromWhatBotanistsType)
{
    const QList<QPair<QString, QString>> cases{
        {u"2001"_s, u"2001"_s},
        {u"2001/3"_s, u"2001/03"_s},
        {u"2001-03-06"_s, u"2001/03/06"_s},
        {u"06/03/2001"_s, u"2001/03/06"_s},
        {u"6 mars 2001"_s, u"2001/03/06"_s},
        {u"06 mars 2001"_s, u"2001/03/06"_s},
        {u"1er août 1999"_s, u"1999/08/01"_s},
        {u"mars 2001"_s, u"2001/03"_s},
        {u"Fevrier 1987"_s, u"1987/02"_s},
        {u"12 sept. 1987"_s, u"1987/09/12"_s},
        {u"2001/03/06 14:05:09"_s, u"2001/03/06 14:05:09"_s},
        {u"2001/03/06 10h30"_s, u"2001/03/06 10:30"_s},
        {u"2001/03/06 10 h 30 m 5.25s"_s, u"2001/03/06 10:30:05.25"_s},
        {u"06/03/01"_s, u"2006/03/01"_s}, // year first where it can be
        {u"87/03/06"_s, u"1987/03/06"_s},
        {u"25/12/99"_s, u"1999/12/25"_s},
        {u"04/26/2001"_s, u"2001/04/26"_s},
        {u""_s, u""_s},
        {u"printemps"_s, u""_s},
        {u"2001/13/45"_s, u""_s},
        {u"2001/03/06 99:00"_s, u""_s},
    };
    for (const auto& [input, text] : cases)
        EXPECT_EQ(ParseDate(input), text) << input.toStdString();
}

TEST(Dates, AreShownInSixStyles)
{
    const QStringList styles{u"06 mars 2001"_s, u"06/03/2001"_s, u"mars 2001"_s,
                             u"03/01"_s,        u"2001"_s,       u"03/06/2001"_s};
    for (int style = 0; style < 6; ++style) {
        EXPECT_EQ(FormatDate(u"2001/03/06"_s, style), styles[style]);
        EXPECT_FALSE(ParseDate(styles[style]).isEmpty()) << style;
    }
    // With a time; where the day is not shown, the time is not taken back.
    const QStringList read{u"2001/03/06 10:30"_s, u"2001/03/06 10:30"_s, u"2001/03"_s, u"2003/01"_s, u"2001"_s, u"2001/06/03 10:30"_s};
    for (int style = 0; style < 6; ++style)
        EXPECT_EQ(ParseDate(FormatDate(u"2001/03/06 10:30"_s, style)), read[style]) << style;
    EXPECT_EQ(ParseDate(u"mars 2001 - 10"_s), u"2001/03"_s);
    EXPECT_EQ(FormatDate(u"2001/03"_s, 0), u"mars 2001"_s);
    EXPECT_EQ(FormatDate(u"2001"_s, 1), u"2001"_s);
    EXPECT_EQ(FormatDate(u"2001/03/06 10:30"_s, 0), u"06 mars 2001 - 10:30"_s);
    EXPECT_EQ(FormatDate(QString(), 0), QString());
}

TEST(Dates, BoundsEncloseEveryInstant)
{
    EXPECT_EQ(DateBound(u"2001"_s, true), u"2001/12/31 24:59:59.9999991"_s);
    EXPECT_EQ(DateBound(u"2001"_s, false), u"2001/01/01 00:00:00.0000009"_s);
    const QStringList partial{u"2001"_s, u"2001/03"_s, u"2001/03/06"_s, u"2001/03/06 10"_s,
                              u"2001/03/06 10:30"_s};
    for (const QString& text : partial) {
        for (const QString& instant : {u"2001/03/06 10:30:01"_s, u"2001/03/06 10:30:59"_s}) {
            EXPECT_LT(DateBound(text, false), instant) << text.toStdString();
            EXPECT_GT(DateBound(text, true), instant) << text.toStdString();
        }
    }
    EXPECT_GT(DateBound(u"2001"_s, true), u"2001/12/31 23:59:59"_s);
    EXPECT_EQ(DateBound(u"jamais"_s, true), QString());
}

} // namespace
