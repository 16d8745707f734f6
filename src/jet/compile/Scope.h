// The tables that names may refer to, and what is known of them.
#pragma once

#include "jet/Schema.h"
#include "jet/sql/Syntax.h"

#include <deque>

namespace jet::compiler {

/// A set of sources of one scope, bit n for source n.
using SourceSet = quint64;
inline constexpr int mostSources = 60;
inline SourceSet bit(int source)
{
    return SourceSet(1) << source;
}

struct SourceColumn {
    QString name;
    DataType type = DataType::None;
    QString sql;                  ///< How it is written in the store.
    SourceSet uses = 0;           ///< The sources that a row of it depends on.
    const Field* field = nullptr; ///< Of a table; null for a derived one.
    bool indexed = false;         ///< An index begins with it.
    bool exact = false;           ///< Within the range of its type.
    bool neverNull = false;
};

/// A table, a stored query or a derived table in a FROM clause.
struct Source {
    QString alias;                   ///< The name it goes by in the statement.
    QString sqlAlias;                ///< The name it goes by in the store.
    const TableDef* table = nullptr; ///< Null for a derived one.
    QString rowId; ///< The reference of its row identifier; empty for a derived one.
    QString sql;   ///< What stands in the FROM clause of the store.
    std::vector<SourceColumn> columns;
    /// Columns (by position) of which no two rows hold the same values.
    std::vector<std::vector<int>> keys;
    bool updatable = true; ///< Neither grouped nor DISTINCT nor a union.
    bool inlined = false;  ///< Its columns are sub-selects; it is no part of the FROM clause.
    bool nullable = false; ///< On the null side of an outer join.
};

/// Where a name was found.
struct Found {
    int source = -1;
    int column = -1;
    bool ambiguous = false;
    bool known() const { return source >= 0; }
};

/// The sources of one SELECT, within those of the one around it.
class Scope {
public:
    /// `outer` is seen by names; `above` only keeps the names of the store apart.
    explicit Scope(Scope* outer = nullptr, const Scope* above = nullptr)
        : m_outer(outer), m_above(outer ? outer : above)
    {
    }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

    std::deque<Source>& sources() { return m_sources; }
    const std::deque<Source>& sources() const { return m_sources; }
    Scope* outer() const { return m_outer; }

    /// Adds a table under its alias (3074 when taken). Gives its position.
    int addTable(const TableDef& table, const QString& alias);
    /// Adds a source whose columns are given with names and types.
    int addDerived(const QString& alias, const QString& sql, std::vector<SourceColumn> columns);

    /// Looks a name up in this scope alone, in the visible part of it.
    Found find(const sql::ColumnRef& name) const;
    /// The source of that alias; -1 when there is none.
    int findSource(const QString& alias) const;

    /// Restricts find to the sources from `first` up to, not including, `last`.
    void setVisible(int first, int last);
    void setAllVisible() { setVisible(0, mostSources); }

    /// The sources that have been referred to since this was last emptied.
    SourceSet touched = 0;
    /// The same by name: a column that is a sub-select names its source and touches those that it
    /// is looked up by.
    SourceSet named = 0;

private:
    int add(Source source);
    QString freeAlias(const QString& alias) const;
    bool taken(const QString& sqlAlias) const;
    Found findIn(const QString& table, const QString& column) const;

    Scope* m_outer;
    const Scope* m_above;
    std::deque<Source> m_sources;
    int m_first = 0;
    int m_last = mostSources;
};

} // namespace jet::compiler
