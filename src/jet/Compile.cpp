#include "jet/Compile.h"

#include "jet/Error.h"
#include "jet/compile/Actions.h"
#include "jet/compile/Queries.h"

namespace jet {

using namespace Qt::StringLiterals;

Compiled compile(const sql::Statement& statement, const Schema& schema)
{
    compiler::Context context(schema);
    struct Kinds {
        compiler::Context& context;
        Compiled operator()(const sql::Query& q) const
        {
            return compiler::compileWhole(context, q);
        }
        Compiled operator()(const sql::Insert& i) const
        {
            return compiler::compileInsert(context, i);
        }
        Compiled operator()(const sql::Update& u) const
        {
            return compiler::compileUpdate(context, u);
        }
        Compiled operator()(const sql::Delete& d) const
        {
            return compiler::compileDelete(context, d);
        }
    };
    return std::visit(Kinds{context}, statement.node);
}

CompiledQuery compileQuery(const sql::Query& query, const Schema& schema)
{
    compiler::Context context(schema);
    return compiler::compileWhole(context, query);
}

QString compileRule(const sql::Expr& rule, const TableDef& table, const QString& rowPrefix)
{
    const Schema empty;
    compiler::Context context(empty);
    compiler::Scope scope;
    scope.addTable(table, table.Name);
    for (compiler::SourceColumn& column : scope.sources().front().columns) {
        column.sql = rowPrefix + quoted(column.name);
        column.indexed = false;
    }
    const QString text = compiler::Expressions(context, scope).condition(rule);
    context.failIfMissing();
    return text;
}

QString compileDefault(const sql::Expr& value)
{
    const Schema empty;
    compiler::Context context(empty);
    context.namesAreText = true;
    compiler::Scope scope;
    return compiler::Expressions(context, scope).compile(value).atom();
}

QString quoted(const QString& identifier)
{
    QString text = identifier;
    return u'"' + text.replace(u'"', u"\"\""_s) + u'"';
}

QString quotedText(const QString& text)
{
    if (text.contains(QChar(u'\0')))
        fail(3421, text.left(text.indexOf(QChar(u'\0'))));
    QString inner = text;
    return u'\'' + inner.replace(u'\'', u"''"_s) + u'\'';
}

} // namespace jet
