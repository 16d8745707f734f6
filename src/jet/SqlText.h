// Putting names and values into statement texts of the dialect.
#pragma once

#include <QString>
#include <QStringList>

namespace jet {

/// A name in brackets. A name that holds a bracket cannot be written: throws 3125.
QString nom(const QString& name);
/// A text in double quotes, inner double quotes doubled.
QString texte(const QString& text);
/// A number, with the decimal point whatever the locale.
QString nombre(double value);
/// Identifiers joined by ",".
QString liste(const QList<qint32>& identifiers);

} // namespace jet
