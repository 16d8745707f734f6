#include "app/ui/GridCopy.h"

#include <algorithm>

namespace app {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 rowsAtOnce = 500;

QString cell(QString text)
{
    if (!text.contains(u'\t') && !text.contains(u'\n') && !text.contains(u'\r') && !text.contains(u'"'))
        return text;
    return u'"' + text.replace(u'"', u"\"\""_s) + u'"';
}

QString headerLine(const GridSource& source, const QList<int>& columns)
{
    QStringList cells;
    for (const int column : columns)
        cells << cell(source.columns.at(column).header);
    return cells.join(u'\t') + u'\n';
}

QString line(const GridRows::Row& row, const GridSource& source, const QList<int>& columns)
{
    QStringList cells;
    for (const int column : columns)
        cells << cell(GridModel::copyText(row.at(size_t(column)), source.columns.at(column).type));
    return cells.join(u'\t') + u'\n';
}

} // namespace

qint64 GridExcerpt::rowCount() const
{
    qint64 rows = 0;
    for (const auto& [first, last] : ranges)
        rows += last - first + 1;
    return rows;
}

GridExcerpt excerptOf(const QItemSelection& selection, const QList<int>& columns)
{
    GridExcerpt excerpt;
    QList<std::pair<int, int>> found;
    QSet<int> wanted;
    for (const QItemSelectionRange& range : selection) {
        found << std::pair(range.top(), range.bottom());
        for (int column = range.left(); column <= range.right(); ++column)
            wanted << column;
    }
    std::sort(found.begin(), found.end());
    for (const auto& [first, last] : found) {
        if (!excerpt.ranges.isEmpty() && first <= excerpt.ranges.last().second + 1)
            excerpt.ranges.last().second = qMax(excerpt.ranges.last().second, last);
        else
            excerpt.ranges << std::pair(first, last);
    }
    for (const int column : columns) {
        if (wanted.contains(column))
            excerpt.columns << column;
    }
    return excerpt;
}

QString tabSeparated(GridRows& rows, const GridSource& source, const GridExcerpt& excerpt,
                     platform::Progression& progression)
{
    QString text = excerpt.headers ? headerLine(source, excerpt.columns) : QString();
    const qint64 total = qMax<qint64>(1, excerpt.rowCount());
    qint64 done = 0;
    for (const auto& [first, last] : excerpt.ranges) {
        for (qint64 from = first; from <= last; from += rowsAtOnce) {
            if (progression.cancelled())
                jet::fail(3059);
            progression.step(u"Copie : "_s + source.title, int(done * 100 / total));
            const auto read = rows.read(from, qMin(rowsAtOnce, last - from + 1));
            for (const GridRows::Row& row : read)
                text += line(row, source, excerpt.columns);
            done += qint64(read.size());
        }
    }
    return text;
}

} // namespace app
