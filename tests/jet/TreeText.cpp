#include "TreeText.h"

#include <QDateTime>
#include <QStringList>

using namespace jet::sql;
using namespace Qt::StringLiterals;

namespace {

QString text(const Query& query);
QString text(const From& from);

QString bracketed(const QString& name)
{
    return u"["_s + name + u"]"_s;
}

QString qualified(const QString& table, const QString& column)
{
    return table.isEmpty() ? bracketed(column) : bracketed(table) + u"."_s + bracketed(column);
}

QString list(const QString& head, const QStringList& parts)
{
    return u"("_s + (QStringList{head} + parts).join(u' ') + u")"_s;
}

QString negatable(bool negated, const QString& word)
{
    return negated ? u"not-"_s + word : word;
}

QString constant(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        return u"null"_s;
    case QMetaType::QString:
        return u"'"_s + value.toString() + u"'"_s;
    case QMetaType::QDateTime:
        return u"#"_s + value.toDateTime().toString(Qt::ISODate) + u"#"_s;
    case QMetaType::Double:
        return u"~"_s + QString::number(value.toDouble(), 'g', 15);
    default:
        return value.toString();
    }
}

QString symbol(BinaryOp op)
{
    static const char* const symbols[] = {
        "^", "*", "/",  "\\", "mod", "+",  "-",   "&",   "=",  "<>",
        "<", ">", "<=", ">=", "and", "or", "xor", "eqv", "imp"};
    return QString::fromLatin1(symbols[int(op)]);
}

QString symbol(UnaryOp op)
{
    return op == UnaryOp::Not ? u"not"_s : op == UnaryOp::Minus ? u"neg"_s : u"pos"_s;
}

QStringList texts(const std::vector<ExprPtr>& expressions)
{
    QStringList result;
    for (const ExprPtr& e : expressions)
        result.append(treeText(*e));
    return result;
}

struct Printer {
    QString operator()(const Literal& n) const { return constant(n.value); }
    QString operator()(const ColumnRef& n) const { return qualified(n.table, n.column); }
    QString operator()(const Star& n) const
    {
        return n.table.isEmpty() ? u"*"_s : bracketed(n.table) + u".*"_s;
    }
    QString operator()(const Unary& n) const { return list(symbol(n.op), {treeText(*n.operand)}); }
    QString operator()(const Binary& n) const
    {
        return list(symbol(n.op), {treeText(*n.left), treeText(*n.right)});
    }
    QString operator()(const Like& n) const
    {
        return list(negatable(n.negated, u"like"_s), {treeText(*n.operand), treeText(*n.pattern)});
    }
    QString operator()(const Between& n) const
    {
        return list(negatable(n.negated, u"between"_s),
                    {treeText(*n.operand), treeText(*n.low), treeText(*n.high)});
    }
    QString operator()(const InList& n) const
    {
        return list(negatable(n.negated, u"in"_s),
                    QStringList{treeText(*n.operand)} + texts(n.items));
    }
    QString operator()(const InQuery& n) const
    {
        return list(negatable(n.negated, u"in"_s), {treeText(*n.operand), text(*n.query)});
    }
    QString operator()(const IsNull& n) const
    {
        return list(negatable(n.negated, u"null"_s), {treeText(*n.operand)});
    }
    QString operator()(const Exists& n) const { return list(u"exists"_s, {text(*n.query)}); }
    QString operator()(const ScalarQuery& n) const { return list(u"scalar"_s, {text(*n.query)}); }
    QString operator()(const Call& n) const
    {
        return list(u"call "_s + n.name + (n.distinct ? u" distinct"_s : QString()),
                    texts(n.arguments));
    }
};

QString aliased(const QString& what, const QString& alias)
{
    return alias.isEmpty() ? what : what + u" as "_s + bracketed(alias);
}

struct FromPrinter {
    QString operator()(const NamedSource& n) const { return aliased(bracketed(n.name), n.alias); }
    QString operator()(const DerivedSource& n) const { return aliased(text(*n.query), n.alias); }
    QString operator()(const Join& n) const
    {
        static const char* const kinds[] = {"inner", "left", "right"};
        return list(QString::fromLatin1(kinds[int(n.kind)]),
                    {text(*n.left), text(*n.right), treeText(*n.on)});
    }
};

QString text(const From& from)
{
    return std::visit(FromPrinter{}, from.node);
}

void addPart(QStringList& parts, const QString& head, const ExprPtr& expression)
{
    if (expression)
        parts.append(list(head, {treeText(*expression)}));
}

QString text(const Select& select)
{
    QStringList parts;
    if (select.predicate != Predicate::All)
        parts.append(select.predicate == Predicate::Distinct ? u"distinct"_s : u"distinctrow"_s);
    if (select.top)
        parts.append(u"top"_s + QString::number(*select.top) +
                     (select.topPercent ? u"%"_s : QString()));
    for (const OutputItem& item : select.outputs)
        parts.append(aliased(treeText(*item.expression), item.alias));
    QStringList sources;
    for (const FromPtr& from : select.from)
        sources.append(text(*from));
    if (!sources.isEmpty())
        parts.append(list(u"from"_s, sources));
    addPart(parts, u"where"_s, select.where);
    if (!select.groupBy.empty())
        parts.append(list(u"group"_s, texts(select.groupBy)));
    addPart(parts, u"having"_s, select.having);
    return list(u"select"_s, parts);
}

QString text(const Query& query)
{
    QStringList parts;
    for (size_t i = 0; i < query.selects.size(); ++i) {
        if (i > 0)
            parts.append(query.unionAll[i - 1] ? u"union-all"_s : u"union"_s);
        parts.append(text(query.selects[i]));
    }
    QStringList order;
    for (const OrderItem& item : query.orderBy)
        order.append(treeText(*item.expression) + (item.descending ? u" desc"_s : QString()));
    if (!order.isEmpty())
        parts.append(list(u"order"_s, order));
    return parts.size() == 1 ? parts.first() : u"("_s + parts.join(u' ') + u")"_s;
}

struct StatementPrinter {
    QString operator()(const Query& n) const { return text(n); }
    QString operator()(const Insert& n) const
    {
        QStringList columns;
        for (const QString& column : n.columns)
            columns.append(bracketed(column));
        QStringList parts{bracketed(n.table)};
        if (!columns.isEmpty())
            parts.append(u"("_s + columns.join(u' ') + u")"_s);
        parts.append(n.query ? text(*n.query) : list(u"values"_s, texts(n.values)));
        return list(u"insert"_s, parts);
    }
    QString operator()(const Update& n) const
    {
        QStringList parts;
        if (n.distinctRow)
            parts.append(u"distinctrow"_s);
        parts.append(text(*n.from));
        for (const Assignment& a : n.assignments)
            parts.append(
                list(u"set"_s, {qualified(a.target.table, a.target.column), treeText(*a.value)}));
        addPart(parts, u"where"_s, n.where);
        return list(u"update"_s, parts);
    }
    QString operator()(const Delete& n) const
    {
        QStringList parts;
        if (n.distinctRow)
            parts.append(u"distinctrow"_s);
        if (!n.target.isEmpty())
            parts.append(bracketed(n.target));
        parts.append(list(u"from"_s, {text(*n.from)}));
        addPart(parts, u"where"_s, n.where);
        return list(u"delete"_s, parts);
    }
};

} // namespace

QString treeText(const Expr& expression)
{
    return std::visit(Printer{}, expression.node);
}

QString treeText(const Statement& statement)
{
    return std::visit(StatementPrinter{}, statement.node);
}

int treeHeight(const Expr& expression)
{
    if (const auto* binary = std::get_if<Binary>(&expression.node))
        return 1 + std::max(treeHeight(*binary->left), treeHeight(*binary->right));
    if (const auto* unary = std::get_if<Unary>(&expression.node))
        return 1 + treeHeight(*unary->operand);
    return 1;
}
