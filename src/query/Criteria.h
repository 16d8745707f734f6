// The rows of criteria of a query: a tree kept as the grid shows it.
#pragma once

#include <QList>
#include <QString>

namespace query {

inline const QString linkAnd = QStringLiteral("ET");
inline const QString linkOr = QStringLiteral("OU");

/// One row. Values on several lines are separated by LF.
struct Criterion {
    QString link = linkAnd; ///< To the row before it on its level; "ET" or "OU".
    QString path = {};      ///< Of the field; empty for a row that only holds a group.
    QString op = QStringLiteral("=");
    QString value = {};
    int depth = 0;          ///< 0 for the top; the rows below with a greater depth are its children.
    QString permanent = {}; ///< Where the field is known no more: its stored name, kept for the next saving.
    bool operator==(const Criterion&) const = default;
};

/// Rows from top to bottom. A depth is never more than one above that of the row before it.
class Criteria {
public:
    bool operator==(const Criteria&) const = default;
    const QList<Criterion>& rows() const { return m_rows; }
    qsizetype count() const { return m_rows.size(); }
    const Criterion& at(qsizetype row) const { return m_rows.at(row); }
    /// Replaces the cells of a row; its place stays.
    void set(qsizetype row, const Criterion& cells);
    void clear() { m_rows.clear(); }
    /// Takes rows as they are read; depths that cannot be are lowered.
    void setRows(const QList<Criterion>& rows);

    /// Each gives the position of the new row. `add` puts it at the end on the top level, `addChild` as the last
    /// child of a row, `addBrother` behind a row and its children.
    qsizetype add(Criterion row);
    qsizetype addChild(qsizetype parent, Criterion row);
    qsizetype addBrother(qsizetype row, Criterion brother);
    void remove(qsizetype row); ///< With its children.
    /// Changes places with the brother before (after) it, each with its children. Gives the new position.
    qsizetype up(qsizetype row);
    qsizetype down(qsizetype row);

    /// The position behind the children of a row.
    qsizetype endOf(qsizetype row) const;
    /// Rows of one level: the brothers from `row` on up to `end`.
    QList<qsizetype> brothers(qsizetype row, qsizetype end) const;

    /// Four cells a row (link, field, operator, value) separated by TAB, each row ended by CR LF.
    QString text() const;
    QString text(const QList<qsizetype>& rows) const;
    /// Rows of such a text, on the top level. A line of fewer than four cells is passed over.
    static QList<Criterion> fromText(const QString& text);

private:
    qsizetype insert(qsizetype at, Criterion row, int depth);

    QList<Criterion> m_rows;
};

} // namespace query
