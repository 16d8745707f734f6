// Statement texts with placeholder words.
#pragma once

#include <QList>
#include <QPair>
#include <QString>

namespace data {

/// Replaces every occurrence of each word by its text, in one pass from left to right, so that a text that
/// happens to hold another placeholder is not replaced again.
QString filled(const QString& statement, const QList<QPair<QString, QString>>& words);

} // namespace data
