// The functions of the dialect on plain values.
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringView>
#include <optional>

namespace jet::text {

/// Leading number of a text: blanks, tabs and line ends are skipped anywhere, the decimal mark is ".",
/// exponent E or D, &H and &O read; 0 when there is none. Overflow throws jet::Error 6.
double val(QStringView text);
/// StrConv: 1 upper, 2 lower, 3 proper case (words start after NUL, tab, line ends, form feed, blank).
QString strConv(QStringView text, int mode);
QString trimBlanks(QStringView text, bool left, bool right); ///< U+0020 and U+3000 only.
/// Text of a number as CStr gives it: 15 significant digits, "." as decimal mark, no trailing zeros.
QString numberText(double value);
double roundHalfEven(double value, int digits = 0);
/// Format for the patterns in use: "0", "00", "000", "0.00", "00.00######", "0.0000", "@@", "yyyy/mm/dd", "hh:mm:ss" and their like.
QString formatNumber(double value, QStringView pattern);
QString formatDate(const QDateTime& value, QStringView pattern);
QString formatText(QStringView value, QStringView pattern);
/// Days since 1899-12-30 (local), the number behind a date value, and back.
/// Days run on evenly before that date too, so that their order is that of the instants.
/// daysToDate throws jet::Error 6 outside of the years 100 to 9999.
double dateToDays(const QDateTime& value);
QDateTime daysToDate(double days);

/// The number that a whole text is, with "." or "," as decimal mark, blanks around it; nothing for any other
/// text. Overflow throws jet::Error 6.
std::optional<double> numberOfText(QStringView text);
/// The date that a whole text is: "yyyy/mm/dd", "yyyy-mm-dd" or "dd/mm/yyyy", then "hh:mm" or "hh:mm:ss", or a
/// time alone (on 1899-12-30); nothing for any other text.
std::optional<QDateTime> dateOfText(QStringView text);
/// The pattern has a placeholder of numbers ("0", "#"), or of dates (and none of numbers).
bool isNumberPattern(QStringView pattern);
bool isDatePattern(QStringView pattern);

} // namespace jet::text
