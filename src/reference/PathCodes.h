// Codes of places: the identifiers from the outermost place to the place itself, joined by "/".
#pragma once

#include <QString>

namespace reference {

/// Without the slashes at its ends.
inline QString stripped(QString code)
{
    while (code.startsWith(u'/'))
        code.remove(0, 1);
    while (code.endsWith(u'/'))
        code.chop(1);
    return code;
}

} // namespace reference
