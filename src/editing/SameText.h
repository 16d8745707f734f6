// How names of fields and modules, and descriptors, are compared.
#pragma once

#include <QString>

namespace editing {

/// Without regard to case.
inline bool sameText(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace editing
