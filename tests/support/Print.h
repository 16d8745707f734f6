// Readable values in failures.
#pragma once

#include <QByteArray>
#include <QDebug>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <ostream>

QT_BEGIN_NAMESPACE
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QByteArray& bytes, std::ostream* out)
{
    *out << "x'" << bytes.toHex().toStdString() << "'";
}
inline void PrintTo(const QStringList& list, std::ostream* out)
{
    *out << '[' << list.join(QStringLiteral(" | ")).toStdString() << ']';
}
inline void PrintTo(const QVariant& value, std::ostream* out)
{
    QString text;
    QDebug(&text) << value;
    *out << text.toStdString();
}
QT_END_NAMESPACE
