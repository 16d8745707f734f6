// Values as they are written: nothing is Null.
#pragma once

#include <QString>
#include <QVariant>
#include <optional>

namespace data {

inline QVariant orNull(const QString& text)
{
    return text.isEmpty() ? QVariant() : QVariant(text);
}

/// An identifier: there is none at or below 0.
inline QVariant orNull(qint32 id)
{
    return id > 0 ? QVariant(id) : QVariant();
}

inline QVariant orNull(std::optional<double> value)
{
    return value ? QVariant(*value) : QVariant();
}

} // namespace data
