// What depends on the type of a field: one row for each type code.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace editing {

/// How a display format makes its text.
enum class FormatRule {
    Raw,       ///< The first 255 characters of the stored value.
    Whole,     ///< The stored value unchanged.
    TextValue, ///< As TextValue gives it; the next ones change its letters.
    Lower,
    Upper,
    Capitals,
    FileName,  ///< Behind the last "\", each word capitalised.
    Absolute,  ///< The number without its sign.
    Pair,      ///< One of two words.
    Date,      ///< FormatDate in a style.
    Shortened, ///< The stored value without its last three characters.
    Decimal,   ///< Degrees of a stored coordinate text.
    Taxon,
    TaxonAuthors,
    Family,
    Rank,
};

struct DisplayFormat {
    QString name;
    FormatRule rule = FormatRule::Raw;
    int style = 0;     ///< Of a date.
    QString yes, no;   ///< Of a pair.
};

struct FieldTypeRow {
    QString icon;                  ///< Empty: the module's name.
    QStringList formatNames;       ///< As listed, blanks included.
    QList<DisplayFormat> formats;
    QList<QStringList> operators;  ///< Row 0 the French labels, row 1 the operators.
    bool isNumber;
    bool isUserText;
    bool isUserList;
    QString control;               ///< Class of the editing control.
    int rows;                      ///< Height in standard rows.
};

/// Codes outside 0 to 17 are like 16.
const FieldTypeRow& fieldTypeRow(int code);

} // namespace editing
