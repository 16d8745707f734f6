#include "platform/Dialogues.h"

namespace platform {

using namespace Qt::StringLiterals;

void Dialogues::tell(const QString& text, const QString& title, BoxIcon icon)
{
    ask({text, title, icon, BoxButtons::Ok, Answer::Ok});
}

bool Dialogues::confirm(const QString& text, const QString& title, BoxIcon icon, Answer byDefault)
{
    return ask({text, title, icon, BoxButtons::YesNo, byDefault}) == Answer::Yes;
}

QString qtFilter(const QString& filter)
{
    QStringList filters;
    const QStringList parts = filter.split(u'|', Qt::SkipEmptyParts);
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString patterns = QString(parts[i + 1]).replace(u';', u' ');
        const QString text = parts[i].section(u'(', 0, 0).trimmed();
        filters << text + u" ("_s + patterns + u')';
    }
    return filters.join(u";;"_s);
}

} // namespace platform
