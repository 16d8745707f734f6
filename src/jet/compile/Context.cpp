#include "jet/compile/Context.h"

#include "jet/Error.h"
#include "jet/sql/Parser.h"

namespace jet::compiler {

using namespace Qt::StringLiterals;

void Context::noteMissing(const QString& name)
{
    for (const QString& known : m_missing) {
        if (sameName(known, name))
            return;
    }
    m_missing.append(name);
}

void Context::failIfMissing() const
{
    if (!m_missing.isEmpty())
        fail(3061, QString::number(m_missing.size()), m_missing.join(u", "_s));
}

const sql::Query& Context::enterQuery(const QueryDef& query)
{
    const QString key = nameKey(query.Name);
    if (m_openQueries.contains(key))
        fail(3102, query.Name);
    auto statement = std::make_unique<sql::Statement>(sql::parseStatement(query.SQL));
    const auto* tree = std::get_if<sql::Query>(&statement->node);
    if (!tree)
        fail(3417, query.Name);
    m_openQueries.append(key);
    m_parsed.push_back(std::move(statement));
    return *tree;
}

void Context::leaveQuery()
{
    m_openQueries.removeLast();
}

namespace {

QString writtenLiteral(const QVariant& value)
{
    if (!value.isValid())
        return u"Null"_s;
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? u"True"_s : u"False"_s;
    if (value.typeId() == QMetaType::QString)
        return u'"' + value.toString() + u'"';
    return value.toString();
}

QString writtenOperator(sql::BinaryOp op)
{
    static const char* const texts[] = {"^", "*", "/",  "\\", "Mod", "+",  "-",   "&",   "=",  "<>",
                                        "<", ">", "<=", ">=", "And", "Or", "Xor", "Eqv", "Imp"};
    return QString::fromLatin1(texts[static_cast<int>(op)]);
}

struct Writer {
    QString operator()(const sql::Literal& e) const { return writtenLiteral(e.value); }
    QString operator()(const sql::ColumnRef& e) const
    {
        const QString column = u'[' + e.column + u']';
        return e.table.isEmpty() ? column : u'[' + e.table + u"]."_s + column;
    }
    QString operator()(const sql::Star& e) const
    {
        return e.table.isEmpty() ? u"*"_s : u'[' + e.table + u"].*"_s;
    }
    QString operator()(const sql::Unary& e) const
    {
        const QString sign = e.op == sql::UnaryOp::Not ? u"Not "_s : u"-"_s;
        return (e.op == sql::UnaryOp::Plus ? QString() : sign) + written(*e.operand);
    }
    QString operator()(const sql::Binary& e) const
    {
        return written(*e.left) + u' ' + writtenOperator(e.op) + u' ' + written(*e.right);
    }
    QString operator()(const sql::Like& e) const
    {
        return written(*e.operand) + (e.negated ? u" Not Like "_s : u" Like "_s) +
               written(*e.pattern);
    }
    QString operator()(const sql::Between& e) const
    {
        return written(*e.operand) + u" Between "_s + written(*e.low) + u" And "_s +
               written(*e.high);
    }
    QString operator()(const sql::InList& e) const { return written(*e.operand) + u" In (…)"_s; }
    QString operator()(const sql::InQuery& e) const { return written(*e.operand) + u" In (…)"_s; }
    QString operator()(const sql::IsNull& e) const
    {
        return written(*e.operand) + (e.negated ? u" Is Not Null"_s : u" Is Null"_s);
    }
    QString operator()(const sql::Exists&) const { return u"Exists (…)"_s; }
    QString operator()(const sql::ScalarQuery&) const { return u"(Select …)"_s; }
    QString operator()(const sql::Call& e) const
    {
        QStringList arguments;
        for (const sql::ExprPtr& argument : e.arguments)
            arguments.append(written(*argument));
        return e.name + u'(' + arguments.join(u", "_s) + u')';
    }
};

} // namespace

QString written(const sql::Expr& expression)
{
    QString text = std::visit(Writer(), expression.node);
    if (text.size() > 100)
        text = text.left(99) + u'…';
    return text;
}

} // namespace jet::compiler
