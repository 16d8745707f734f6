// Text forms of coordinates and dates: pure functions of their arguments, apart from the time stamp.
#pragma once

#include "platform/Clock.h"

#include <QString>
#include <QStringList>

namespace editing {

// --- Coordinates -------------------------------------------------------------------------------
// Normal forms: E012°30'00.00 (three-digit degrees) and N05°07'30.50 (two-digit degrees), seconds with two to
// eight decimals, no closing mark. Decimal degrees: east and north positive. A text that cannot be read gives 0.

/// 0 gives "E". More than a half turn is wrapped (190 is 170 west).
QString LongitudeToText(double degrees);
/// 0 gives "S". Beyond a pole the latitude is reflected (100 is 80 north).
QString LatitudeToText(double degrees);
/// "W" is negative, any other letter positive.
double TextToLongitude(const QString& text);
/// "N" is positive, any other letter negative.
double TextToLatitude(const QString& text);
/// The unsigned part; `limit` is 180 or 90. Without "°" (without "'") the whole text is read again for the
/// minutes (the seconds): 12 gives 12 + 12/60 + 12/3600.
double DmsToDegrees(const QString& text, int limit);
/// Free input to the normal form.
QString NormalizeLongitude(const QString& text);
QString NormalizeLatitude(const QString& text);
QString NormalizeDms(const QString& text, bool isLongitude);
/// Runs of non-digits and digits in turn, beginning with non-digits; at least eight.
QStringList SplitDigitRuns(const QString& text);

// --- Dates -------------------------------------------------------------------------------------
// A date text reads yyyy/mm/dd hh:mm:ss; closing elements may be missing (2001, 2001/03).

/// Free input to the date text; empty when it holds no date. The order year, month, day holds first; when it gives no
/// date, day, month, year is tried, then month, day, year, then month and year. French and abbreviated month
/// names are read. A year of two digits is of this or the last century (00 to 49: 2000 on). What FormatDate shows
/// is read; the time of a date shown without its day is dropped.
QString ParseDate(const QString& text);
/// Styles for 6 March 2001: 0 "06 mars 2001", 1 "06/03/2001", 2 "mars 2001", 3 "03/01", 4 "2001", 5 "03/06/2001".
/// Elements that are missing are left out. A time follows after " - ".
QString FormatDate(const QString& dateText, int style);
/// A partial date completed to its last (upper) or first instant; just outside every real time of the period in
/// text order, hence hour 24.
QString DateBound(const QString& dateText, bool upper);
/// The current date and time as "yyyy/mm/dd hh:mm:ss".
QString NowStamp(const platform::Clock& clock);

} // namespace editing
