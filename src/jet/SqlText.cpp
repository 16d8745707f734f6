#include "jet/SqlText.h"

#include "jet/Error.h"

#include <QLocale>
#include <cmath>

namespace jet {

using namespace Qt::StringLiterals;

QString nom(const QString& name)
{
    if (name.isEmpty() || name.contains(u'[') || name.contains(u']'))
        fail(3125, name);
    return u'[' + name + u']';
}

QString texte(const QString& text)
{
    QString doubled = text;
    doubled.replace(u'"', u"\"\""_s);
    return u'"' + doubled + u'"';
}

QString nombre(double value)
{
    if (!std::isfinite(value))
        fail(3421, QLocale::c().toString(value));
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString liste(const QList<qint32>& identifiers)
{
    QString list;
    list.reserve(identifiers.size() * 7);
    for (const qint32 identifier : identifiers) {
        if (!list.isEmpty())
            list += u',';
        list += QString::number(identifier);
    }
    return list;
}

} // namespace jet
