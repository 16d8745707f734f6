// What mdb-export, a reader of Access files by other hands, says about the same files.
#pragma once

#include "jet/Types.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace oracle {

/// Whether the program is installed.
bool isThere();

struct Table {
    QStringList columns;
    QList<QStringList> rows; ///< Empty text for Null too: the program does not tell them apart.
};

QStringList tables(const QString& path);
Table table(const QString& path, const QString& name);

/// Whether a value is what the program printed for it; numbers by their value, dates to the second.
bool agrees(const QVariant& value, jet::DataType type, const QString& printed);
/// A value as the program would print it, for messages.
QString shown(const QVariant& value);

} // namespace oracle
