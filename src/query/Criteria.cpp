#include "query/Criteria.h"

#include <QStringList>

namespace query {

using namespace Qt::StringLiterals;

namespace {

const QString rowEnd = u"\r\n"_s;

/// Line breaks inside a value are single characters, so that they do not look like ends of rows.
QString oneBreak(const QString& value)
{
    return QString(value).replace(rowEnd, u"\n"_s).replace(u'\r', u'\n');
}

Criterion cleaned(Criterion row)
{
    row.link = row.link.trimmed().compare(linkOr, Qt::CaseInsensitive) == 0 ? linkOr : linkAnd;
    row.value = oneBreak(row.value);
    return row;
}

} // namespace

void Criteria::set(qsizetype row, const Criterion& cells)
{
    if (row < 0 || row >= m_rows.size())
        return;
    const int depth = m_rows[row].depth;
    m_rows[row] = cleaned(cells);
    m_rows[row].depth = depth;
}

void Criteria::setRows(const QList<Criterion>& rows)
{
    m_rows.clear();
    for (const Criterion& row : rows) {
        const int most = m_rows.isEmpty() ? 0 : m_rows.last().depth + 1;
        insert(m_rows.size(), row, std::clamp(row.depth, 0, most));
    }
}

qsizetype Criteria::insert(qsizetype at, Criterion row, int depth)
{
    row = cleaned(row);
    row.depth = depth;
    m_rows.insert(at, row);
    return at;
}

qsizetype Criteria::add(Criterion row)
{
    return insert(m_rows.size(), std::move(row), 0);
}

qsizetype Criteria::addChild(qsizetype parent, Criterion row)
{
    if (parent < 0 || parent >= m_rows.size())
        return add(std::move(row));
    return insert(endOf(parent), std::move(row), m_rows[parent].depth + 1);
}

qsizetype Criteria::addBrother(qsizetype row, Criterion brother)
{
    if (row < 0 || row >= m_rows.size())
        return add(std::move(brother));
    return insert(endOf(row), std::move(brother), m_rows[row].depth);
}

void Criteria::remove(qsizetype row)
{
    if (row >= 0 && row < m_rows.size())
        m_rows.remove(row, endOf(row) - row);
}

qsizetype Criteria::up(qsizetype row)
{
    if (row < 1 || row >= m_rows.size())
        return row;
    qsizetype before = row - 1;
    while (before >= 0 && m_rows[before].depth > m_rows[row].depth)
        --before;
    if (before < 0 || m_rows[before].depth < m_rows[row].depth)
        return row; // the first of its level
    const qsizetype end = endOf(row);
    std::rotate(m_rows.begin() + before, m_rows.begin() + row, m_rows.begin() + end);
    return before;
}

qsizetype Criteria::down(qsizetype row)
{
    if (row < 0 || row >= m_rows.size())
        return row;
    const qsizetype next = endOf(row);
    if (next >= m_rows.size() || m_rows[next].depth < m_rows[row].depth)
        return row;
    const qsizetype length = endOf(next) - next;
    up(next);
    return row + length;
}

qsizetype Criteria::endOf(qsizetype row) const
{
    qsizetype end = row + 1;
    while (end < m_rows.size() && m_rows[end].depth > m_rows[row].depth)
        ++end;
    return end;
}

QList<qsizetype> Criteria::brothers(qsizetype row, qsizetype end) const
{
    QList<qsizetype> found;
    for (; row < end; row = endOf(row))
        found << row;
    return found;
}

QString Criteria::text() const
{
    QList<qsizetype> all;
    for (qsizetype row = 0; row < m_rows.size(); ++row)
        all << row;
    return text(all);
}

QString Criteria::text(const QList<qsizetype>& rows) const
{
    QString text;
    for (const qsizetype row : rows) {
        const Criterion& c = m_rows.at(row);
        text += QStringList{c.link, c.path, c.op, c.value}.join(u'\t') + rowEnd;
    }
    return text;
}

QList<Criterion> Criteria::fromText(const QString& text)
{
    QList<Criterion> rows;
    for (const QString& line : text.split(rowEnd, Qt::SkipEmptyParts)) {
        const QStringList cells = line.split(u'\t');
        if (cells.size() < 4)
            continue;
        rows << cleaned({.link = cells[0], .path = cells[1], .op = cells[2], .value = cells.mid(3).join(u'\t')});
    }
    return rows;
}

} // namespace query
