#include "platform/Clock.h"

#include <QLocale>

namespace platform {

QString stamp(const QDateTime& time)
{
    return QLocale::c().toString(time, QStringLiteral("yyyy/MM/dd HH:mm:ss"));
}

} // namespace platform
