#include "jet/compile/Actions.h"

#include "jet/Error.h"
#include "jet/compile/Queries.h"

namespace jet::compiler {

using namespace Qt::StringLiterals;

namespace {

// --- INSERT ----------------------------------------------------------------------------------

const TableDef& insertTable(Context& context, const sql::Insert& insert)
{
    const TableDef* table = context.schema().table(insert.table);
    if (!table)
        fail(context.schema().query(insert.table) ? 3073 : 3078, insert.table);
    return *table;
}

std::vector<const Field*> insertFields(const TableDef& table, const sql::Insert& insert)
{
    std::vector<const Field*> fields;
    if (insert.columns.empty()) {
        for (const Field& field : table.Fields)
            fields.push_back(&field);
        return fields;
    }
    for (const QString& name : insert.columns) {
        const Field* field = table.field(name);
        if (!field)
            fail(3127, name, table.Name);
        if (std::find(fields.begin(), fields.end(), field) != fields.end())
            fail(3063, name);
        fields.push_back(field);
    }
    return fields;
}

void requireCount(size_t values, size_t fields)
{
    if (values != fields)
        fail(3346, QString::number(values), QString::number(fields));
}

QString insertedValues(Context& context, const sql::Insert& insert,
                       const std::vector<const Field*>& fields)
{
    requireCount(insert.values.size(), fields.size());
    Scope scope;
    Expressions expressions(context, scope);
    QStringList values;
    for (size_t i = 0; i < fields.size(); ++i)
        values.append(assigned(expressions.compile(*insert.values[i]), fields[i]->Type));
    return u"VALUES ("_s + values.join(u", "_s) + u')';
}

// The columns of the query go to the fields by position, converted where the types differ.
QString insertedRows(Context& context, const sql::Insert& insert,
                     const std::vector<const Field*>& fields)
{
    NestedForm form;
    form.positional = true;
    form.keepOrder = true;
    const Nested rows = compileNested(context, *insert.query, nullptr, form);
    requireCount(rows.columns.size(), fields.size());
    SelectText text;
    bool converted = false;
    for (size_t i = 0; i < fields.size(); ++i) {
        Emitted value = plain(u"\".q\".\"c"_s + QString::number(i + 1) + u'"', rows.columns[i].type,
                              rows.columns[i].neverNull);
        value.exact = rows.columns[i].exact;
        text.columns.append(assigned(value, fields[i]->Type));
        converted = converted || text.columns.last() != value.sql;
    }
    text.from = u'(' + rows.sql + u") AS \".q\""_s;
    return converted ? text.text() : rows.sql;
}

// --- UPDATE ----------------------------------------------------------------------------------

struct Assigned {
    const Field* field;
    const sql::Expr* expression;
    QString value;
};

class Updater {
public:
    Updater(Context& context, const sql::Update& update)
        : m_context(context), m_update(update), m_expressions(context, m_scope),
          m_from(context, m_scope)
    {
        m_from.build(*update.from);
        m_from.reduce(update.where.get());
        for (const sql::Assignment& assignment : update.assignments)
            aim(assignment);
        context.failIfMissing();
        requireUpdatable();
    }

    CompiledAction action()
    {
        m_fromText = m_from.text(m_expressions);
        const bool single = m_scope.sources().size() == 1;
        const bool once =
            single || m_from.determines(bit(m_target), m_update.where.get(), m_expressions);
        const bool lookedUp = once && !single && lookUpOthers();
        m_where = m_update.where ? m_expressions.condition(*m_update.where) : QString();
        for (Assigned& a : m_assigned)
            a.value = assigned(m_expressions.compile(*a.expression), a.field->Type);
        m_context.failIfMissing();
        CompiledAction action;
        action.table = target().table->Name;
        if (!once)
            return collected(action);
        action.steps = {single || lookedUp        ? updateText({}, m_where)
                        : m_from.onlyInnerJoins() ? direct()
                                                  : fromRows()};
        return action;
    }

private:
    const Source& target() const { return m_scope.sources()[m_target]; }

    // Finds the column that is set.
    void aim(const sql::Assignment& assignment)
    {
        const Found found = m_scope.find(assignment.target);
        if (found.ambiguous)
            fail(3079, assignment.target.column);
        if (!found.known()) {
            m_context.noteMissing(assignment.target.column);
            return;
        }
        if (m_target >= 0 && m_target != found.source)
            fail(3073, m_scope.sources()[found.source].alias);
        m_target = found.source;
        const Field* field = target().columns[found.column].field;
        if (!field || hasSubquery(*assignment.value))
            fail(3073, assignment.target.column);
        if (field->AutoIncrement)
            fail(3164, field->Name);
        for (const Assigned& other : m_assigned) {
            if (other.field == field)
                fail(3063, field->Name);
        }
        m_assigned.push_back({field, assignment.value.get(), {}});
    }

    // A record looked up while the table changes must not show what the statement has changed.
    bool lookUpOthers()
    {
        std::vector<const sql::Expr*> named;
        if (m_update.where)
            named.push_back(m_update.where.get());
        for (const Assigned& a : m_assigned)
            named.push_back(a.expression);
        return m_from.lookUpOthers(
            m_target, named, m_expressions, [this](const Source& other, const SourceColumn& c) {
                return other.table != target().table ||
                       std::none_of(m_assigned.begin(), m_assigned.end(),
                                    [&](const Assigned& a) { return a.field == c.field; });
            });
    }

    // All sources must be open to change, and the target must have a record in every row.
    void requireUpdatable() const
    {
        for (const Source& source : m_scope.sources()) {
            if (!source.updatable)
                fail(3073, source.alias);
        }
        if (!target().table || target().nullable)
            fail(3073, target().alias);
    }

    QString updateText(const QString& from, const QString& where) const
    {
        QStringList settings;
        for (const Assigned& a : m_assigned)
            settings.append(quoted(a.field->Name) + u" = "_s + a.value);
        return u"UPDATE "_s + target().sql + u" SET "_s + settings.join(u", "_s) +
               (from.isEmpty() ? QString() : u" FROM "_s + from) +
               (where.isEmpty() ? QString() : u" WHERE "_s + where);
    }

    // Inner joins alone: the store's own form. It works out all values before it changes a row.
    QString direct()
    {
        QStringList others;
        for (int s = 0; s < int(m_scope.sources().size()); ++s) {
            if (s != m_target)
                others.append(m_scope.sources()[s].sql);
        }
        QStringList conditions;
        for (const sql::Expr* on : m_from.conditions())
            conditions.append(m_expressions.condition(*on, Binding::And));
        if (m_update.where)
            conditions.append(m_expressions.condition(*m_update.where, Binding::And));
        return updateText(others.join(u", "_s), conditions.join(u" AND "_s));
    }

    // Several rows for a record come in the order of the records, so that the last one is always
    // the same.
    QStringList recordOrder() const
    {
        QStringList order;
        for (const Source& source : m_scope.sources()) {
            if (source.table)
                order.append(source.rowId);
        }
        return order;
    }

    QString rows(const QStringList& order = {}) const
    {
        SelectText text;
        text.orderBy = order;
        text.columns.append(named(target().rowId, u"r"_s));
        for (size_t i = 0; i < m_assigned.size(); ++i)
            text.columns.append(named(m_assigned[i].value, u'v' + QString::number(i + 1)));
        text.from = m_fromText;
        text.where = m_where;
        return text.text();
    }

    QString fromNamed(const QString& from, const QString& alias) const
    {
        QStringList settings;
        for (size_t i = 0; i < m_assigned.size(); ++i)
            settings.append(quoted(m_assigned[i].field->Name) + u" = "_s + alias + u".\"v"_s +
                            QString::number(i + 1) + u'"');
        const QString table = quoted(target().table->Name);
        return u"UPDATE "_s + table + u" SET "_s + settings.join(u", "_s) + u" FROM "_s + from +
               u" WHERE "_s + table + u'.' + quoted(target().table->rowIdColumn()) + u" = "_s +
               alias + u".\"r\""_s;
    }

    QString fromRows() const { return fromNamed(u'(' + rows() + u") AS \".s\""_s, u"\".s\""_s); }

    // A record may be met by several rows: all are applied, the last one stays.
    CompiledAction collected(CompiledAction action) const
    {
        QStringList columns{u"\"r\" INTEGER PRIMARY KEY"_s};
        for (size_t i = 0; i < m_assigned.size(); ++i)
            columns.append(u"\"v"_s + QString::number(i + 1) + u'"');
        const QString list = u"temp.\".update\""_s;
        action.steps = {u"DROP TABLE IF EXISTS "_s + list,
                        u"CREATE TEMP TABLE \".update\" ("_s + columns.join(u", "_s) + u')',
                        u"INSERT OR REPLACE INTO "_s + list + u' ' + rows(recordOrder()),
                        fromNamed(list + u" AS \".s\""_s, u"\".s\""_s), u"DROP TABLE "_s + list};
        action.counted = 3;
        return action;
    }

    Context& m_context;
    const sql::Update& m_update;
    Scope m_scope;
    Expressions m_expressions;
    FromClause m_from;
    QString m_fromText;
    QString m_where;
    std::vector<Assigned> m_assigned;
    int m_target = -1;
};

} // namespace

CompiledAction compileInsert(Context& context, const sql::Insert& insert)
{
    const TableDef& table = insertTable(context, insert);
    const std::vector<const Field*> fields = insertFields(table, insert);
    QStringList names;
    for (const Field* field : fields)
        names.append(quoted(field->Name));
    const QString rows = insert.query ? insertedRows(context, insert, fields)
                                      : insertedValues(context, insert, fields);
    context.failIfMissing();
    CompiledAction action;
    action.table = table.Name;
    action.steps = {u"INSERT INTO "_s + quoted(table.Name) + u" ("_s + names.join(u", "_s) +
                    u") "_s + rows};
    return action;
}

CompiledAction compileUpdate(Context& context, const sql::Update& update)
{
    return Updater(context, update).action();
}

CompiledAction compileDelete(Context& context, const sql::Delete& remove)
{
    Scope scope;
    Expressions expressions(context, scope);
    FromClause from(context, scope);
    from.build(*remove.from);
    from.reduce(remove.where.get());
    const bool single = scope.sources().size() == 1;
    if (!single && remove.target.isEmpty())
        fail(3128, scope.sources().front().alias);
    const int victim = remove.target.isEmpty() ? 0 : scope.findSource(remove.target);
    if (victim < 0)
        fail(3078, remove.target);
    const Source& source = scope.sources()[victim];
    if (!source.table)
        fail(3086, source.alias);
    const QString fromText = from.text(expressions);
    QString where = remove.where ? expressions.condition(*remove.where) : QString();
    context.failIfMissing();
    CompiledAction action;
    action.table = source.table->Name;
    QString text = u"DELETE FROM "_s + (single ? source.sql : quoted(source.table->Name));
    if (!single) {
        SelectText rows;
        rows.columns = {source.rowId};
        rows.from = fromText;
        rows.where = where;
        where = quoted(source.table->rowIdColumn()) + u" IN ("_s + rows.text() + u')';
    }
    if (!where.isEmpty())
        text += u" WHERE "_s + where;
    action.steps = {text};
    return action;
}

} // namespace jet::compiler
