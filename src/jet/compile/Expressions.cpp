#include "jet/compile/Expressions.h"

#include "jet/Compile.h"
#include "jet/Error.h"
#include "jet/compile/Queries.h"
#include "jet/text/Like.h"
#include "jet/text/TextOrder.h"
#include "jet/text/Values.h"

#include <QLocale>

namespace jet::compiler {

using namespace Qt::StringLiterals;
using sql::BinaryOp;

namespace {

constexpr qsizetype longestSql = 1'000'000;

enum class Family { Unknown, Text, Number, Binary };

Family familyOf(DataType type)
{
    if (type == DataType::None)
        return Family::Unknown;
    if (isText(type))
        return Family::Text;
    return isBinary(type) ? Family::Binary : Family::Number;
}

// Texts are never compared with numbers: the dialect converts neither.
void requireComparable(const Emitted& a, const Emitted& b, const sql::Expr& whole)
{
    const Family fa = familyOf(a.type);
    const Family fb = familyOf(b.type);
    if (fa != Family::Unknown && fb != Family::Unknown && fa != fb)
        fail(3464, written(whole));
}

// Whether two values are compared by their keys.
bool byKey(const Emitted& a, const Emitted& b)
{
    const Family fa = familyOf(a.type);
    const Family fb = familyOf(b.type);
    return fa == Family::Text || fb == Family::Text ||
           (fa == Family::Unknown && fb == Family::Unknown);
}

QString side(const Emitted& value, bool key)
{
    return key && !value.isNullLiteral() ? u"jet_key("_s + value.atom() + u')' : value.atom();
}

QString comparisonSign(BinaryOp op)
{
    switch (op) {
    case BinaryOp::NotEqual:
        return u" <> "_s;
    case BinaryOp::Less:
        return u" < "_s;
    case BinaryOp::Greater:
        return u" > "_s;
    case BinaryOp::LessEqual:
        return u" <= "_s;
    case BinaryOp::GreaterEqual:
        return u" >= "_s;
    default:
        return u" = "_s;
    }
}

bool isComparison(BinaryOp op)
{
    return op >= BinaryOp::Equal && op <= BinaryOp::GreaterEqual;
}

bool isTruth(const Emitted& e)
{
    return e.constant && e.literal.typeId() == QMetaType::Bool;
}

QString realText(double value)
{
    QString text = QString::number(value, 'g', QLocale::FloatingPointShortest);
    if (!text.contains(u'.') && !text.contains(u'e'))
        text += u".0"_s;
    return text;
}

QString blobText(const QByteArray& bytes)
{
    return u"x'"_s + QString::fromLatin1(bytes.toHex()) + u'\'';
}

Emitted negated(const Emitted& e)
{
    return logical(u"NOT "_s + (e.logical ? u'(' + e.sql + u')' : u'(' + e.condition() + u')'),
                   Binding::Comparison);
}

// A number as text, Null staying Null.
QString asText(const Emitted& e)
{
    if (isText(e.type) || e.isNullLiteral())
        return e.atom();
    if (isWhole(e.type) || e.type == DataType::Boolean)
        return u"CAST("_s + e.atom() + u" AS TEXT)"_s;
    return u"CASE WHEN "_s + e.atom() + u" IS NOT NULL THEN jet_cstr("_s + e.atom() + u") END"_s;
}

// What "&" may join by the store's own operator: its text form there is the dialect's.
bool joinsPlainly(const Emitted& e)
{
    return isText(e.type) || isWhole(e.type) || e.type == DataType::Boolean;
}

// The store reads a flat chain as a tree as deep as it is long, and bounds the depth; the halves of
// a long one are kept apart.
Emitted chained(Binding binding, const Emitted& a, const Emitted& b)
{
    const int members = a.members + b.members;
    const bool apart = members > 40;
    const auto part = [&](const Emitted& e) {
        return apart && e.members > 1 && e.binding == binding ? u'(' + e.sql + u')'
                                                              : e.condition(binding);
    };
    Emitted chain =
        logical(part(a) + (binding == Binding::And ? u" AND "_s : u" OR "_s) + part(b), binding);
    chain.members = apart ? 2 : members;
    return chain;
}

} // namespace

Emitted Expressions::compile(const sql::Expr& expression, Place place)
{
    const qsizetype looseBefore = grouping ? grouping->loose.size() : 0;
    Emitted e =
        std::visit([&](const auto& n) { return node(n, expression, place); }, expression.node);
    // Some forms write a part twice; deep nests of them would grow without bound.
    if (e.sql.size() > longestSql)
        fail(3360, written(expression));
    // A part that is itself a grouped expression makes its columns part of the group.
    if (grouping && grouping->keys.contains(e.sql))
        grouping->loose.resize(looseBefore);
    return e;
}

QString Expressions::condition(const sql::Expr& expression, Binding least)
{
    const Emitted e = compile(expression, Place::Filter);
    if (isText(e.type) || isBinary(e.type))
        fail(3464, written(expression));
    return e.condition(least);
}

void Expressions::requireGrouped()
{
    if (grouping && !grouping->loose.isEmpty())
        fail(3122, grouping->loose.takeFirst());
}

Emitted Expressions::node(const sql::Literal& e, const sql::Expr&, Place)
{
    Emitted out;
    out.constant = true;
    out.exact = true;
    out.literal = e.value;
    out.neverNull = e.value.isValid();
    switch (e.value.typeId()) {
    case QMetaType::UnknownType:
        out.sql = u"NULL"_s;
        break;
    case QMetaType::Bool:
        out.type = DataType::Boolean;
        out.sql = e.value.toBool() ? u"-1"_s : u"0"_s;
        break;
    case QMetaType::Int:
        out.type = DataType::Long;
        out.sql = QString::number(e.value.toInt());
        break;
    case QMetaType::QString:
        out.type = DataType::Text;
        out.sql = quotedText(e.value.toString());
        break;
    case QMetaType::QDateTime:
        out.type = DataType::Date;
        out.sql = realText(text::dateToDays(e.value.toDateTime()));
        break;
    default:
        out.type = DataType::Double;
        out.sql = realText(e.value.toDouble());
    }
    return out;
}

Emitted Expressions::node(const sql::ColumnRef& e, const sql::Expr& whole, Place)
{
    for (Scope* scope = &m_scope; scope; scope = scope->outer()) {
        const Found found = scope->find(e);
        if (found.ambiguous)
            fail(3079, e.column);
        if (found.known())
            return column(*scope, found, whole);
        if (!e.table.isEmpty() && scope->findSource(e.table) >= 0)
            break;
    }
    if (m_context.namesAreText) {
        Emitted text = plain(quotedText(e.column), DataType::Text, true);
        text.constant = true;
        text.literal = e.column;
        return text;
    }
    m_context.noteMissing(e.table.isEmpty() ? e.column : e.table + u'.' + e.column);
    return plain(u"NULL"_s, DataType::None);
}

Emitted Expressions::column(Scope& scope, const Found& found, const sql::Expr& whole)
{
    const Source& source = scope.sources()[found.source];
    const SourceColumn& column = source.columns[found.column];
    scope.touched |= column.uses;
    scope.named |= bit(found.source);
    Emitted e = plain(column.sql, column.type);
    e.column = &column;
    e.exact = column.exact;
    e.neverNull = column.neverNull && !source.nullable;
    if (grouping && !grouping->inAggregate && &scope == &m_scope)
        grouping->loose.append(written(whole));
    return e;
}

Emitted Expressions::node(const sql::Star&, const sql::Expr& whole, Place)
{
    fail(3075, {}, written(whole));
}

Emitted Expressions::node(const sql::Unary& e, const sql::Expr& whole, Place)
{
    const Emitted x = compile(*e.operand);
    if (e.op == sql::UnaryOp::Not) {
        if (isText(x.type) || isBinary(x.type))
            fail(3464, written(whole));
        return negated(x);
    }
    if (e.op == sql::UnaryOp::Plus)
        return x;
    if (isBinary(x.type))
        fail(3464, written(whole));
    const bool whole32 = isWhole(x.type) || x.type == DataType::Boolean;
    const QString operand = isText(x.type) ? u"jet_cdbl("_s + x.atom() + u')' : x.atom();
    return plain(u"(- "_s + operand + u')',
                 whole32 ? DataType::Long : commonType(x.type, DataType::Double));
}

Emitted Expressions::node(const sql::Binary& e, const sql::Expr& whole, Place place)
{
    if (e.op >= BinaryOp::And)
        return logicalOperator(e, place);
    const Emitted a = compile(*e.left);
    const Emitted b = compile(*e.right);
    if (!isComparison(e.op))
        return arithmetic(e.op, a, b, whole);
    if (e.op >= BinaryOp::Less) {
        noteRange(a, place);
        noteRange(b, place);
    }
    return compare(e.op, a, b, whole);
}

void Expressions::noteRange(const Emitted& operand, Place place)
{
    rangesAsked =
        rangesAsked || (place == Place::Filter && operand.column && operand.column->indexed);
}

Emitted Expressions::logicalOperator(const sql::Binary& e, Place place)
{
    const bool keepsPlace = e.op == BinaryOp::And || e.op == BinaryOp::Or;
    const Emitted a = compile(*e.left, keepsPlace ? place : Place::Value);
    const Emitted b = compile(*e.right, keepsPlace ? place : Place::Value);
    for (const auto& [side, part] : {std::pair(&a, &e.left), std::pair(&b, &e.right)}) {
        if (isText(side->type) || isBinary(side->type))
            fail(3464, written(**part));
    }
    if (keepsPlace)
        return chained(e.op == BinaryOp::And ? Binding::And : Binding::Or, a, b);
    switch (e.op) {
    case BinaryOp::Xor:
        return logical(u'(' + a.condition() + u") <> ("_s + b.condition() + u')');
    case BinaryOp::Equivalent:
        return logical(u'(' + a.condition() + u") = ("_s + b.condition() + u')');
    default:
        return logical(u"NOT ("_s + a.condition() + u") OR "_s + b.condition(Binding::Or),
                       Binding::Or);
    }
}

// A condition compared with the word True or False is a test of its truth; a Yes/No column is
// compared by its value, of which True is -1.
Emitted Expressions::truthTest(BinaryOp op, const Emitted& x, bool truth)
{
    if (x.column && x.type == DataType::Boolean)
        return logical(x.sql + comparisonSign(op) + (truth ? u"-1"_s : u"0"_s));
    const bool wanted = (op == BinaryOp::Equal) == truth;
    if (x.logical)
        return wanted ? x : negated(x);
    return logical(x.atom() + (wanted ? u" <> 0"_s : u" = 0"_s));
}

Emitted Expressions::compare(BinaryOp op, const Emitted& a, const Emitted& b,
                             const sql::Expr& whole)
{
    requireComparable(a, b, whole);
    if (op == BinaryOp::Equal || op == BinaryOp::NotEqual) {
        if (isTruth(b))
            return truthTest(op, a, b.literal.toBool());
        if (isTruth(a))
            return truthTest(op, b, a.literal.toBool());
    }
    const bool key = byKey(a, b);
    return logical(side(a, key) + comparisonSign(op) + side(b, key));
}

Emitted Expressions::arithmetic(BinaryOp op, const Emitted& a, const Emitted& b,
                                const sql::Expr& whole)
{
    if (isBinary(a.type) || isBinary(b.type))
        fail(3464, written(whole));
    if (op == BinaryOp::Concat) {
        if (!(a.neverNull || b.neverNull) || !joinsPlainly(a) || !joinsPlainly(b))
            return plain(u"jet_concat("_s + a.atom() + u", "_s + b.atom() + u')', DataType::Text,
                         a.neverNull || b.neverNull);
        const auto part = [](const Emitted& e) {
            return e.neverNull ? e.atom() : u"coalesce("_s + e.atom() + u", '')"_s;
        };
        return plain(u'(' + part(a) + u" || "_s + part(b) + u')', DataType::Text, true);
    }
    if (op == BinaryOp::Add)
        return add(a, b, whole);
    const auto number = [](const Emitted& e) {
        return isText(e.type) ? u"jet_cdbl("_s + e.atom() + u')' : e.atom();
    };
    const QString x = number(a);
    const QString y = number(b);
    const DataType common =
        isText(a.type) || isText(b.type) ? DataType::Double : commonType(a.type, b.type);
    switch (op) {
    case BinaryOp::Power:
        return plain(u"jet_pow("_s + x + u", "_s + y + u')', DataType::Double);
    case BinaryOp::IntDivide:
        return plain(u"jet_idiv("_s + x + u", "_s + y + u')', DataType::Long);
    case BinaryOp::Modulo:
        return plain(u"jet_mod("_s + x + u", "_s + y + u')', DataType::Long);
    case BinaryOp::Divide:
        return plain(u"(CAST("_s + x + u" AS REAL) / "_s + divisor(y, b) + u')', DataType::Double);
    case BinaryOp::Multiply:
        return plain(u'(' + x + u" * "_s + y + u')',
                     common == DataType::Boolean ? DataType::Long : common);
    default:
        break;
    }
    // The difference of two dates is a number of days; a date and days give a date.
    const bool dates = a.type == DataType::Date || b.type == DataType::Date;
    const DataType type = dates ? (a.type == b.type ? DataType::Double : DataType::Date)
                                : (common == DataType::Boolean ? DataType::Long : common);
    return plain(u'(' + x + u" - "_s + y + u')', type);
}

// The store gives NULL for a division by zero. That serves for a cell of a result; what is stored
// or tested must fail (11), which the whole division of the dialect does.
QString Expressions::divisor(const QString& sql, const Emitted& value) const
{
    const bool safe = inOutputs || (value.constant && value.sql.toDouble() != 0);
    return safe ? sql
                : u"CASE WHEN "_s + sql + u" = 0 THEN jet_idiv(1, "_s + sql + u") ELSE "_s + sql +
                      u" END"_s;
}

Emitted Expressions::add(const Emitted& a, const Emitted& b, const sql::Expr&)
{
    if (isText(a.type) && isText(b.type))
        return plain(u'(' + a.atom() + u" || "_s + b.atom() + u')', DataType::Text,
                     a.neverNull && b.neverNull);
    const bool numbers = familyOf(a.type) == Family::Number && familyOf(b.type) == Family::Number;
    if (!numbers)
        return plain(u"jet_add("_s + a.atom() + u", "_s + b.atom() + u')', DataType::None);
    DataType type = commonType(a.type, b.type);
    if (a.type == DataType::Date || b.type == DataType::Date)
        type = DataType::Date;
    else if (type == DataType::Boolean)
        type = DataType::Long;
    return plain(u'(' + a.atom() + u" + "_s + b.atom() + u')', type);
}

// The part of the index in which every text that may match lies. The literal beginning of a
// pattern that is put together (`"3/7/" & [c]`) serves as well.
QString Expressions::likeRange(const Emitted& operand, const sql::Expr& pattern)
{
    const sql::Expr* beginning = &pattern;
    while (const auto* join = std::get_if<sql::Binary>(&beginning->node)) {
        if (join->op != BinaryOp::Concat)
            return {};
        beginning = join->left.get();
    }
    const auto* literal = std::get_if<sql::Literal>(&beginning->node);
    if (!literal || literal->value.typeId() != QMetaType::QString)
        return {};
    const QString prefix = text::LikePattern(literal->value.toString()).prefix();
    const QByteArray low = text::prefixKey(prefix);
    const QByteArray high = text::prefixKeyEnd(prefix);
    if (low.isEmpty() || high.isEmpty())
        return {};
    rangesAsked = true;
    const QString key = keyOf(operand);
    return key + u" >= "_s + blobText(low) + u" AND "_s + key + u" < "_s + blobText(high) +
           u" AND "_s;
}

Emitted Expressions::node(const sql::Like& e, const sql::Expr& whole, Place place)
{
    const Emitted x = compile(*e.operand);
    const Emitted pattern = compile(*e.pattern);
    if (isBinary(x.type) || isBinary(pattern.type))
        fail(3464, written(whole));
    const QString test = u"jet_like("_s + asText(x) + u", "_s + asText(pattern) + u')';
    if (e.negated)
        return logical(u"NOT "_s + test);
    const bool ranged = place == Place::Filter && x.column && x.column->indexed && isText(x.type);
    const QString range = ranged ? likeRange(x, *e.pattern) : QString();
    return logical(range + test, range.isEmpty() ? Binding::Comparison : Binding::And);
}

namespace {

bool inOrder(const Emitted& low, const Emitted& high)
{
    if (isText(low.type))
        return text::compare(low.literal.toString(), high.literal.toString()) <= 0;
    return low.sql.toDouble() <= high.sql.toDouble();
}

} // namespace

// The bounds may come in either order.
Emitted Expressions::node(const sql::Between& e, const sql::Expr& whole, Place place)
{
    const Emitted x = compile(*e.operand);
    noteRange(x, place);
    Emitted low = compile(*e.low);
    Emitted high = compile(*e.high);
    for (const Emitted* bound : {&low, &high})
        requireComparable(x, *bound, whole);
    requireComparable(low, high, whole);
    const bool key = byKey(x, low) || byKey(x, high);
    const auto within = [&](const Emitted& from, const Emitted& to) {
        return side(x, key) + u" BETWEEN "_s + side(from, key) + u" AND "_s + side(to, key);
    };
    const bool constant = low.constant && high.constant;
    if (constant && !inOrder(low, high))
        std::swap(low, high);
    Emitted test = logical(within(low, high));
    if (!constant)
        test = logical(within(low, high) + u" OR "_s + within(high, low), Binding::Or);
    return e.negated ? negated(test) : test;
}

Emitted Expressions::node(const sql::InList& e, const sql::Expr& whole, Place)
{
    const Emitted x = compile(*e.operand);
    const bool key = mayBeText(x.type);
    QStringList items;
    for (const sql::ExprPtr& item : e.items) {
        const Emitted value = compile(*item);
        requireComparable(x, value, whole);
        items.append(side(value, key));
    }
    return logical(side(x, key) + (e.negated ? u" NOT IN ("_s : u" IN ("_s) + items.join(u", "_s) +
                   u')');
}

Emitted Expressions::node(const sql::InQuery& e, const sql::Expr& whole, Place)
{
    const Emitted x = compile(*e.operand);
    NestedForm form;
    form.byKey = mayBeText(x.type);
    const Nested inner = compileNested(m_context, *e.query, &m_scope, form);
    if (inner.columns.size() != 1)
        fail(3306);
    requireComparable(x, plain({}, inner.columns.front().type), whole);
    return logical(side(x, form.byKey) + (e.negated ? u" NOT IN ("_s : u" IN ("_s) + inner.sql +
                   u')');
}

Emitted Expressions::node(const sql::IsNull& e, const sql::Expr&, Place)
{
    const Emitted x = compile(*e.operand);
    return logical(x.atom() + (e.negated ? u" IS NOT NULL"_s : u" IS NULL"_s));
}

Emitted Expressions::node(const sql::Exists& e, const sql::Expr&, Place)
{
    return logical(u"EXISTS ("_s + compileNested(m_context, *e.query, &m_scope, {}).sql + u')');
}

Emitted Expressions::node(const sql::ScalarQuery& e, const sql::Expr&, Place)
{
    NestedForm form;
    form.keepOrder = true;
    const Nested inner = compileNested(m_context, *e.query, &m_scope, form);
    if (inner.columns.size() != 1)
        fail(3306);
    return plain(u'(' + inner.sql + u')', inner.columns.front().type);
}

Emitted Expressions::node(const sql::Call& e, const sql::Expr& whole, Place)
{
    return isAggregateName(e.name) ? aggregate(e, whole) : function(e, whole);
}

} // namespace jet::compiler
