#include "jet/access/StoredQuery.h"

#include "jet/Error.h"
#include "jet/Definitions.h"
#include "jet/sql/Parser.h"

#include <algorithm>

namespace jet::access {

using namespace Qt::StringLiterals;

namespace {

/// What a row of MSysQueries is about.
enum Attribute {
    Kind = 1, Parameter = 2, Options = 3, Table = 5, Output = 6, Join = 7, Where = 8, Grouping = 9, Having = 10,
    Ordering = 11
};
enum QueryKind { Select = 1, MakeTable, Append, Update, Delete, CrossTable, Definition, PassThrough, Union };
enum CrossFlag { CrossValue = 0, CrossColumns = 1, CrossRows = 2 };
enum OptionFlag { AllColumns = 1, Distinct = 2, DistinctRow = 8, Top = 0x10, Percent = 0x20 };

QString bracketed(const QString& name)
{
    return name.contains(u'[') || name.contains(u']') ? name : u'[' + name + u']';
}

/// A part of the FROM clause: a table, or tables joined so far. Outer conditions must not be merged into others,
/// so each join keeps its own.
struct Source {
    QStringList names; ///< The tables in it, as keys.
    QString text;
    bool joined = false;

    QString operand() const { return joined ? u'(' + text + u')' : text; }
};

/// Makes one nested FROM clause of the flat list of joins.
class FromClause {
public:
    void addTable(const QueryRow& row)
    {
        const QString known = row.name2.isEmpty() ? row.name1 : row.name2;
        QString text = row.expression.isEmpty() ? bracketed(row.name1) : u'(' + withoutEnd(row.expression) + u')';
        if (!row.name2.isEmpty())
            text += u" AS "_s + bracketed(row.name2);
        m_sources.append({{nameKey(known)}, text, false});
    }

    /// False when it names a table that is not there, or closes a circle.
    bool addJoin(const QueryRow& first, const QString& condition)
    {
        const int left = find(first.name1);
        const int right = find(first.name2);
        if (left < 0 || right < 0 || left == right || first.flag < 1 || first.flag > 3)
            return false;
        static const QStringList words{u" INNER JOIN "_s, u" LEFT JOIN "_s, u" RIGHT JOIN "_s};
        Source both;
        both.names = m_sources[left].names + m_sources[right].names;
        both.text = m_sources[left].operand() + words[first.flag - 1] + m_sources[right].operand() + u" ON "_s + condition;
        both.joined = true;
        m_sources[qMin(left, right)] = both;
        m_sources.removeAt(qMax(left, right));
        return true;
    }

    QString text() const
    {
        QStringList texts;
        for (const Source& source : m_sources)
            texts += source.text;
        return texts.join(u", "_s);
    }

    static QString withoutEnd(QString text)
    {
        text = text.trimmed();
        while (text.endsWith(u';'))
            text = text.chopped(1).trimmed();
        return text;
    }

private:
    int find(const QString& table) const
    {
        const QString key = nameKey(table);
        const auto found = std::find_if(m_sources.begin(), m_sources.end(),
                                        [&](const Source& source) { return source.names.contains(key); });
        return found == m_sources.end() ? -1 : int(found - m_sources.begin());
    }

    QList<Source> m_sources;
};

class Builder {
public:
    explicit Builder(QList<QueryRow> rows) : m_rows(std::move(rows))
    {
        std::stable_sort(m_rows.begin(), m_rows.end(), [](const QueryRow& a, const QueryRow& b) {
            return a.attribute != b.attribute ? a.attribute < b.attribute : a.order < b.order;
        });
        const QList<QueryRow> kinds = of(Kind);
        m_kind = kinds.isEmpty() ? QueryRow{Kind, Select, {}, {}, {}, {}} : kinds.first();
        const QList<QueryRow> options = of(Options);
        if (!options.isEmpty())
            m_options = options.first();
    }

    QString build()
    {
        switch (m_kind.flag) {
        case Select: return selectText();
        case MakeTable:
            m_problem = u"les requêtes qui créent une table ne sont pas reprises"_s;
            return selectText(u" INTO "_s + bracketed(m_kind.name1));
        case Append: return appendText();
        case Update: return updateText();
        case Delete: return deleteText();
        case Union: return unionText();
        case Definition:
            m_problem = u"les requêtes de définition ne sont pas reprises"_s;
            return m_kind.expression;
        case PassThrough:
            m_problem = u"elle s'adresse à un autre serveur"_s;
            return m_kind.expression;
        case CrossTable: return crossText();
        default: m_problem = u"genre de requête inconnu"_s; return selectText();
        }
    }
    QString problem() const { return m_problem; }

private:
    QList<QueryRow> of(int attribute) const
    {
        QList<QueryRow> found;
        std::copy_if(m_rows.begin(), m_rows.end(), std::back_inserter(found),
                     [attribute](const QueryRow& row) { return row.attribute == attribute; });
        return found;
    }

    QString expressions(int attribute, const QString& between) const
    {
        QStringList texts;
        for (const QueryRow& row : of(attribute))
            texts += row.expression;
        return texts.join(between);
    }

    /// Outputs, each with its alias.
    QStringList outputs() const
    {
        QStringList texts;
        for (const QueryRow& row : of(Output)) {
            const bool named = !row.name1.isEmpty() && m_kind.flag != Update && m_kind.flag != Append;
            texts += named ? row.expression + u" AS "_s + bracketed(row.name1) : row.expression;
        }
        if (m_options.flag & AllColumns || texts.isEmpty())
            texts += u"*"_s;
        return texts;
    }

    QString predicates() const
    {
        QString text;
        if (m_options.flag & Distinct)
            text += u"DISTINCT "_s;
        if (m_options.flag & DistinctRow)
            text += u"DISTINCTROW "_s;
        if (m_options.flag & Top)
            text += u"TOP "_s + m_options.name1 + (m_options.flag & Percent ? u" PERCENT "_s : u" "_s);
        return text;
    }

    /// Several rows between the same two tables are one join over several columns.
    QString fromText()
    {
        FromClause from;
        for (const QueryRow& table : of(Table))
            from.addTable(table);
        QList<QueryRow> joins = of(Join);
        while (!joins.isEmpty()) {
            const QueryRow first = joins.takeFirst();
            QStringList conditions{first.expression};
            for (qsizetype i = 0; i < joins.size();) {
                const QueryRow& other = joins[i];
                const bool same = sameName(other.name1, first.name1) && sameName(other.name2, first.name2);
                if (same)
                    conditions += joins.takeAt(i).expression;
                else
                    ++i;
            }
            const QString condition = conditions.size() == 1 ? conditions.first()
                                                             : u'(' + conditions.join(u") AND ("_s) + u')';
            if (!from.addJoin(first, condition))
                m_problem = u"la jointure %1 ne peut pas être emboîtée"_s.arg(condition);
        }
        return from.text();
    }

    QString tailText() const
    {
        QString text;
        const auto add = [&](const QString& word, const QString& part) {
            if (!part.isEmpty())
                text += u' ' + word + u' ' + part;
        };
        add(u"WHERE"_s, expressions(Where, u" AND "_s));
        add(u"GROUP BY"_s, expressions(Grouping, u", "_s));
        add(u"HAVING"_s, expressions(Having, u" AND "_s));
        QStringList order;
        for (const QueryRow& row : of(Ordering))
            order += row.expression + (row.name1.startsWith(u'D', Qt::CaseInsensitive) ? u" DESC"_s : QString());
        add(u"ORDER BY"_s, order.join(u", "_s));
        return text;
    }

    QString selectText(const QString& into = {})
    {
        const QString from = fromText();
        QString text = u"SELECT "_s + predicates() + outputs().join(u", "_s) + into;
        if (!from.isEmpty())
            text += u" FROM "_s + from;
        return text + tailText();
    }

    QString appendText()
    {
        QStringList targets;
        for (const QueryRow& row : of(Output)) {
            if (!row.name2.isEmpty())
                targets += bracketed(row.name2);
        }
        const QString columns = targets.isEmpty() ? QString() : u" ("_s + targets.join(u", "_s) + u')';
        return u"INSERT INTO "_s + bracketed(m_kind.name1) + columns + u' ' + selectText();
    }

    QString updateText()
    {
        QStringList parts;
        for (const QueryRow& row : of(Output)) {
            const QString target = row.name2.contains(u'[') || row.name2.contains(u'.') ? row.name2 : bracketed(row.name2);
            parts += target + u" = "_s + row.expression;
        }
        return u"UPDATE "_s + fromText() + u" SET "_s + parts.join(u", "_s) + tailText();
    }

    /// Columns that Access lists behind DELETE only show what will go: the whole record does.
    QString deleteText()
    {
        const QString from = fromText();
        const QStringList listed = outputs();
        const bool whole = std::any_of(listed.begin(), listed.end(), [](const QString& one) { return one.endsWith(u'*'); });
        if (!whole && of(Table).size() == 1)
            return u"DELETE "_s + predicates() + u"* FROM "_s + from + tailText();
        return u"DELETE "_s + predicates() + listed.join(u", "_s) + u" FROM "_s + from + tailText();
    }

    /// The dialect has no such statement; the text is for the reader.
    QString crossText()
    {
        m_problem = u"les analyses croisées ne sont pas reprises"_s;
        QStringList values, rows, columns;
        for (const QueryRow& row : of(Output)) {
            QStringList& list = row.flag == CrossColumns ? columns : row.flag == CrossRows ? rows : values;
            list += row.name1.isEmpty() ? row.expression : row.expression + u" AS "_s + bracketed(row.name1);
        }
        return u"TRANSFORM "_s + values.join(u", "_s) + u" SELECT "_s + rows.join(u", "_s) + u" FROM "_s + fromText()
               + tailText() + u" PIVOT "_s + columns.join(u", "_s);
    }

    QString unionText() const
    {
        QStringList parts;
        QList<QueryRow> tables = of(Table);
        std::stable_sort(tables.begin(), tables.end(),
                         [](const QueryRow& a, const QueryRow& b) { return a.name2 < b.name2; });
        for (const QueryRow& row : tables)
            parts += FromClause::withoutEnd(row.expression);
        const QString word = m_options.flag & Distinct ? u" UNION "_s : u" UNION ALL "_s;
        return parts.join(word) + tailText();
    }

    QList<QueryRow> m_rows;
    QueryRow m_kind, m_options;
    QString m_problem;
};

} // namespace

StoredQuery storedQuery(const QString& name, QList<QueryRow> rows)
{
    Builder builder(std::move(rows));
    StoredQuery query{name, builder.build(), {}};
    query.problem = builder.problem();
    if (!query.problem.isEmpty())
        return query;
    try {
        sql::parseStatement(query.sql);
    } catch (const Error& error) {
        query.problem = error.description();
    }
    return query;
}

} // namespace jet::access
