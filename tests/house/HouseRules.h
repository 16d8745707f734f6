// The rules of the house that a compiler does not see: who may include whom, and
// what may stand where.
#pragma once

#include <QString>
#include <QStringList>

namespace house {

/// One breach: `rule` is the rule's short name, `line` counts from 1 (0 for the file as such).
struct Finding {
    QString path;
    int line = 0;
    QString rule;
    QString text;
};

/// The rules by their short names, in the order in which they are applied.
QStringList ruleNames();

/// Examines one file. `path` is relative to the root of the sources with forward slashes;
/// `widgetHeaders` are the header names of Qt Widgets.
QList<Finding> examine(const QString& path, const QString& text, const QStringList& widgetHeaders);

/// C++ text with its comments blanked out, line breaks kept, so that line numbers stay true.
QString withoutComments(const QString& text);

} // namespace house
