#include "jet/Schema.h"

namespace jet {

namespace {

template <typename T>
auto positionOf(const QList<T>& list, QStringView name)
{
    return std::find_if(list.cbegin(), list.cend(), [name](const T& one) { return sameName(one.Name, name); });
}

template <typename T>
const T* find(const QList<T>& list, QStringView name)
{
    const auto found = positionOf(list, name);
    return found == list.cend() ? nullptr : &*found;
}

template <typename T>
void putInto(QList<T>& list, T&& value)
{
    const auto found = positionOf(list, value.Name);
    if (found == list.cend())
        list.append(std::forward<T>(value));
    else
        list.replace(found - list.cbegin(), std::forward<T>(value));
}

template <typename T>
void removeFrom(QList<T>& list, QStringView name)
{
    const auto found = positionOf(list, name);
    if (found != list.cend())
        list.removeAt(found - list.cbegin());
}

} // namespace

const TableDef* Schema::table(QStringView name) const
{
    return find(m_tables, name);
}

const QueryDef* Schema::query(QStringView name) const
{
    return find(m_queries, name);
}

const Relation* Schema::relation(QStringView name) const
{
    return find(m_relations, name);
}

void Schema::put(TableDef table)
{
    putInto(m_tables, std::move(table));
}

void Schema::put(QueryDef query)
{
    putInto(m_queries, std::move(query));
}

void Schema::put(Relation relation)
{
    putInto(m_relations, std::move(relation));
}

void Schema::removeTable(QStringView name)
{
    removeFrom(m_tables, name);
}

void Schema::removeQuery(QStringView name)
{
    removeFrom(m_queries, name);
}

void Schema::removeRelation(QStringView name)
{
    removeFrom(m_relations, name);
}

} // namespace jet
