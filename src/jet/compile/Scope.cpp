#include "jet/compile/Scope.h"

#include "jet/Compile.h"
#include "jet/Error.h"

namespace jet::compiler {

using namespace Qt::StringLiterals;

namespace {

bool leadsIndex(const TableDef& table, const QString& column)
{
    return std::any_of(table.Indexes.begin(), table.Indexes.end(), [&](const Index& index) {
        return !index.Fields.isEmpty() && sameName(index.Fields.first().Name, column);
    });
}

int position(const TableDef& table, const QString& column)
{
    for (int i = 0; i < table.Fields.size(); ++i) {
        if (sameName(table.Fields[i].Name, column))
            return i;
    }
    return -1;
}

std::vector<std::vector<int>> keysOf(const TableDef& table)
{
    std::vector<std::vector<int>> keys;
    for (int i = 0; i < table.Fields.size(); ++i) {
        if (table.Fields[i].AutoIncrement)
            keys.push_back({i});
    }
    for (const Index& index : table.Indexes) {
        if (!index.Unique && !index.Primary)
            continue;
        std::vector<int> key;
        for (const IndexField& field : index.Fields)
            key.push_back(position(table, field.Name));
        keys.push_back(key);
    }
    return keys;
}

} // namespace

int Scope::addTable(const TableDef& table, const QString& alias)
{
    Source source;
    source.alias = alias;
    source.sqlAlias = freeAlias(alias);
    source.table = &table;
    source.keys = keysOf(table);
    const QString name = quoted(source.sqlAlias);
    source.sql = source.sqlAlias == table.Name ? name : quoted(table.Name) + u" AS "_s + name;
    source.rowId = name + u'.' + quoted(table.rowIdColumn());
    for (const Field& field : table.Fields) {
        SourceColumn column;
        column.name = field.Name;
        column.type = field.Type;
        column.sql = name + u'.' + quoted(field.Name);
        column.field = &field;
        column.exact = true;
        column.neverNull = field.Type == DataType::Boolean || field.AutoIncrement;
        column.indexed = field.AutoIncrement || leadsIndex(table, field.Name);
        source.columns.push_back(std::move(column));
    }
    return add(std::move(source));
}

int Scope::addDerived(const QString& alias, const QString& sql, std::vector<SourceColumn> columns)
{
    Source source;
    source.alias = alias;
    source.sqlAlias = freeAlias(alias);
    const QString name = quoted(source.sqlAlias);
    source.sql = u'(' + sql + u") AS "_s + name;
    source.columns = std::move(columns);
    for (SourceColumn& column : source.columns)
        column.sql = name + u'.' + quoted(column.name);
    return add(std::move(source));
}

int Scope::add(Source source)
{
    const int place = int(m_sources.size());
    if (place >= mostSources)
        fail(3360);
    if (!source.alias.isEmpty() && findSource(source.alias) >= 0)
        fail(3074, source.alias);
    for (SourceColumn& column : source.columns)
        column.uses = bit(place);
    m_sources.push_back(std::move(source));
    return place;
}

// A point cannot stand in a name of the dialect, so that no name of a statement looks like these.
QString Scope::freeAlias(const QString& alias) const
{
    const QString base = alias.isEmpty() ? u".d"_s + QString::number(m_sources.size()) : alias;
    QString name = base;
    for (int n = 2; taken(name); ++n)
        name = base + u'.' + QString::number(n);
    return name;
}

bool Scope::taken(const QString& sqlAlias) const
{
    for (const Scope* scope = this; scope; scope = scope->m_above) {
        for (const Source& source : scope->m_sources) {
            if (sameName(source.sqlAlias, sqlAlias))
                return true;
        }
    }
    return false;
}

int Scope::findSource(const QString& alias) const
{
    for (int i = 0; i < int(m_sources.size()); ++i) {
        if (sameName(m_sources[i].alias, alias))
            return i;
    }
    return -1;
}

void Scope::setVisible(int first, int last)
{
    m_first = first;
    m_last = last;
}

Found Scope::findIn(const QString& table, const QString& column) const
{
    Found found;
    for (int s = m_first; s < std::min(m_last, int(m_sources.size())); ++s) {
        const Source& source = m_sources[s];
        if (!table.isEmpty() && !sameName(source.alias, table))
            continue;
        for (int c = 0; c < int(source.columns.size()); ++c) {
            if (!sameName(source.columns[c].name, column))
                continue;
            found.ambiguous = found.known();
            found.source = s;
            found.column = c;
            if (found.ambiguous)
                return found;
        }
    }
    return found;
}

Found Scope::find(const sql::ColumnRef& name) const
{
    Found found = findIn(name.table, name.column);
    if (found.known() || !name.table.isEmpty())
        return found;
    // `[t.c]` written as one name means the column c of t when there is no column so called.
    for (qsizetype dot = name.column.indexOf(u'.'); dot > 0;
         dot = name.column.indexOf(u'.', dot + 1)) {
        found = findIn(name.column.left(dot), name.column.mid(dot + 1));
        if (found.known())
            return found;
    }
    return found;
}

} // namespace jet::compiler
