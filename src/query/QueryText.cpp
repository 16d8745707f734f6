#include "query/QueryText.h"

#include <QHash>

namespace query {

using namespace Qt::StringLiterals;

namespace {

const QString textLineEnd = u"\r\n"_s;
const QString columnLine = u"colonne"_s;
const QString criterionLine = u"critère"_s;

QString escaped(const QString& text)
{
    QString out;
    for (const QChar c : text) {
        if (c == u'\\')
            out += u"\\\\"_s;
        else if (c == u'\t')
            out += u"\\t"_s;
        else if (c == u'\r')
            out += u"\\r"_s;
        else if (c == u'\n')
            out += u"\\n"_s;
        else if (c == pathSeparator)
            out += u"\\>"_s;
        else
            out += c;
    }
    return out;
}

QString unescaped(const QString& text)
{
    QString out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'\\' || i + 1 == text.size()) {
            out += text[i];
            continue;
        }
        switch (text[++i].unicode()) {
        case u't': out += u'\t'; break;
        case u'r': out += u'\r'; break;
        case u'n': out += u'\n'; break;
        case u'>': out += pathSeparator; break;
        default: out += text[i]; break;
        }
    }
    return out;
}

/// Free texts begin with "=", so that none looks like a module and a field.
QString freeText(const QString& text)
{
    return u'=' + escaped(text);
}

QString readFree(const QString& item)
{
    return unescaped(item.startsWith(u'=') ? item.mid(1) : item);
}

/// The items of a field. One that is no more is written as it was read.
QStringList fieldItems(const Structure& structure, const QString& path, const QString& permanent)
{
    if (path.isEmpty())
        return permanent.isEmpty() ? QStringList() : permanent.split(u'\t');
    QStringList items{escaped(structure.PermanentFieldName(path))};
    for (const QString& name : structure.namedFields(path))
        items << escaped(name);
    return items;
}

/// The path of stored items; empty when the field is no more, which `permanent` then keeps.
QString readField(const QStringList& items, const Structure& structure, QString* permanent)
{
    if (items.size() < 2)
        return {};
    const QString module = unescaped(items[1]).section(u'.', 0, 0);
    const QString path = structure.PathFromPermanent(module, unescaped(items[0]));
    if (path.isEmpty())
        *permanent = items.join(u'\t');
    return path;
}

/// Numbers of rows under their parents: "1", "1.1", "2" …
class Numbering {
public:
    QString next(int depth)
    {
        m_counts.resize(depth + 1);
        ++m_counts[depth];
        QStringList parts;
        for (const int count : m_counts)
            parts << QString::number(count);
        return parts.join(u'.');
    }

private:
    QList<int> m_counts;
};

/// Depths from the numbers that are left. The first child of a row that is gone takes its place.
class Placement {
public:
    /// Gives the depth; `promoted` tells that the row now heads its group.
    int depthOf(const QString& number, bool* promoted)
    {
        *promoted = false;
        const QString parent = number.section(u'.', 0, -2);
        int depth = 0;
        if (number.contains(u'.')) {
            if (m_depths.contains(parent)) {
                depth = m_depths.value(parent) + 1;
            } else {
                *promoted = true;
                bool further = false;
                depth = depthOf(parent, &further);
            }
        }
        m_depths.insert(number, depth);
        return depth;
    }

private:
    QHash<QString, int> m_depths;
};

} // namespace

QString textOf(const QueryDefinition& query, const Structure& structure)
{
    QStringList lines{query.mode};
    for (const OutputColumn& column : query.columns)
        lines << (QStringList{columnLine, freeText(column.alias), column.order}
                  + fieldItems(structure, column.path, column.permanent))
                     .join(u'\t');
    Numbering numbering;
    for (const Criterion& row : query.criteria.rows())
        lines << (QStringList{criterionLine, numbering.next(row.depth), row.link, escaped(row.op), freeText(row.value)}
                  + fieldItems(structure, row.path, row.permanent))
                     .join(u'\t');
    return lines.join(textLineEnd);
}

QueryDefinition definitionFrom(const QString& text, const QString& module, const Structure& structure)
{
    QueryDefinition query;
    query.module = module;
    QList<Criterion> rows;
    Placement placement;
    for (const QString& line : text.split(textLineEnd)) {
        const QStringList items = line.split(u'\t');
        if (items[0] == columnLine && items.size() > 2) {
            OutputColumn column{.path = {}, .alias = readFree(items[1]), .order = items[2], .permanent = {}};
            column.path = readField(items.mid(3), structure, &column.permanent);
            query.columns << column;
        } else if (items[0] == criterionLine && items.size() > 4) {
            Criterion row{.link = items[2], .op = unescaped(items[3]), .value = readFree(items[4])};
            row.path = readField(items.mid(5), structure, &row.permanent);
            bool promoted = false;
            row.depth = placement.depthOf(items[1], &promoted);
            if (promoted)
                row.link = linkAnd;
            rows << row;
        } else if (items.size() == 1 && (items[0] == modeData || items[0] == modePicture || items[0] == modeMap)) {
            query.mode = items[0];
        }
    }
    query.criteria.setRows(rows);
    return query;
}

} // namespace query
