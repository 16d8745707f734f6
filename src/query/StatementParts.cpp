#include "query/StatementParts.h"

#include <QStringList>
#include <functional>

namespace query {

using namespace Qt::StringLiterals;

namespace {

/// Calls `at` for each position that is outside quotes, brackets and parentheses; it gives true to stop there.
qsizetype scan(const QString& text, qsizetype from, const std::function<bool(qsizetype)>& at)
{
    QChar closing;
    int depth = 0;
    for (qsizetype i = from; i < text.size(); ++i) {
        const QChar c = text[i];
        if (!closing.isNull()) {
            if (c == closing)
                closing = QChar();
            continue;
        }
        if (depth == 0 && at(i))
            return i;
        if (c == u'"' || c == u'\'')
            closing = c;
        else if (c == u'[')
            closing = u']';
        else if (c == u'(')
            ++depth;
        else if (c == u')')
            --depth;
    }
    return -1;
}

QString oneLine(const QString& statement)
{
    return QString(statement).replace(u"\r\n"_s, u" "_s).replace(u'\r', u' ').replace(u'\n', u' ');
}

/// Position of a word between blanks, outside quotes and parentheses; -1 when it is not there.
qsizetype wordAt(const QString& text, const QString& word, qsizetype from = 0)
{
    return scan(text, from, [&](qsizetype i) {
        return QStringView(text).mid(i).startsWith(word, Qt::CaseInsensitive);
    });
}

QStringList items(const QString& list)
{
    QStringList parts;
    qsizetype begin = 0;
    scan(list, 0, [&](qsizetype i) {
        if (list[i] == u',') {
            parts << list.mid(begin, i - begin).trimmed();
            begin = i + 1;
        }
        return false;
    });
    const QString last = list.mid(begin).trimmed();
    return last.isEmpty() ? parts : parts << last;
}

QString selectList(const QString& line)
{
    const qsizetype end = wordAt(line, u" FROM "_s);
    QString list = line.left(end < 0 ? line.size() : end).trimmed();
    for (const QString& begin : {u"SELECT DISTINCTROW"_s, u"SELECT "_s}) {
        if (list.startsWith(begin, Qt::CaseInsensitive))
            list = list.mid(begin.size()).trimmed();
    }
    return list;
}

StatementColumn column(const QString& item)
{
    StatementColumn result{.expression = item, .alias = {}, .format = {}};
    const qsizetype as = wordAt(item, u" AS "_s);
    if (as >= 0) {
        result.expression = item.left(as).trimmed();
        result.alias = item.mid(as + 4).trimmed();
        if (result.alias.startsWith(u'[') && result.alias.endsWith(u']'))
            result.alias = result.alias.mid(1).chopped(1);
    }
    if (result.expression.startsWith(u"ISNULL(", Qt::CaseInsensitive))
        result.format = u"True/False"_s;
    return result;
}

} // namespace

QList<StatementColumn> SQLHeader(const QString& statement)
{
    const QString line = oneLine(statement);
    QList<StatementColumn> columns;
    for (const QString& item : items(selectList(line)))
        columns << column(item);
    const qsizetype order = wordAt(line, u" ORDER BY "_s);
    if (order < 0)
        return columns;
    for (const QString& item : items(line.mid(order + 10))) {
        const bool descending = item.endsWith(u" DESC", Qt::CaseInsensitive);
        const QString expression = (descending ? item.chopped(5) : item).trimmed();
        for (StatementColumn& sorted : columns) {
            if (sorted.expression.compare(expression, Qt::CaseInsensitive) == 0)
                sorted.sort = descending ? SortState::Descending : SortState::Ascending;
        }
    }
    return columns;
}

QString orderedBy(const QString& statement, const QString& expression, bool descending)
{
    // Line breaks become two blanks here, so that positions stay those of the statement.
    const QString line = QString(statement).replace(u'\r', u' ').replace(u'\n', u' ');
    const qsizetype order = wordAt(line, u" ORDER BY "_s);
    QString text = statement.left(order < 0 ? statement.size() : order);
    while (!text.isEmpty() && text.back().isSpace())
        text.chop(1);
    return text + u"\r\nORDER BY "_s + expression + (descending ? u" DESC"_s : QString());
}

} // namespace query
