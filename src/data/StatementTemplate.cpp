#include "data/StatementTemplate.h"

namespace data {

QString filled(const QString& statement, const QList<QPair<QString, QString>>& words)
{
    QString result;
    qsizetype at = 0;
    while (at < statement.size()) {
        const auto word = std::find_if(words.begin(), words.end(), [&](const auto& candidate) {
            return QStringView(statement).sliced(at).startsWith(candidate.first);
        });
        if (word == words.end()) {
            result += statement[at++];
        } else {
            result += word->second;
            at += word->first.size();
        }
    }
    return result;
}

} // namespace data
