// What depends on the type of a field: one row for each type code.
#pragma once

#include <QList>
#include <QPair>
#include <QString>

namespace editing {

/// An operator of a query: French label and SQL.
using LabelledOperator = QPair<QString, QString>;

struct FieldTypeRow {
    QString icon;      ///< Empty: the module's name.
    QString formats;   ///< Joined by ",", to be split without trimming.
    QList<LabelledOperator> operators;
    bool isNumber;
    bool isUserText;
    bool isUserList;
    QString control;   ///< Class of the editing control.
    int rows;          ///< Height in standard rows.
};

/// Codes outside 0 to 17 are like 16.
const FieldTypeRow& fieldTypeRow(int code);

} // namespace editing
