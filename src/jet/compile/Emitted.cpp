#include "jet/compile/Expressions.h"

namespace jet::compiler {

using namespace Qt::StringLiterals;

QString Emitted::atom() const
{
    if (logical)
        return u"-("_s + sql + u')';
    return binding == Binding::Atom ? sql : u'(' + sql + u')';
}

QString Emitted::condition(Binding least) const
{
    if (logical)
        return binding > least ? u'(' + sql + u')' : sql;
    if (constant && literal.typeId() == QMetaType::Bool)
        return literal.toBool() ? u"1"_s : u"0"_s;
    if (isNullLiteral())
        return sql;
    const QString test = atom() + u" <> 0"_s;
    return Binding::Comparison > least ? u'(' + test + u')' : test;
}

Emitted logical(const QString& sql, Binding binding)
{
    Emitted e;
    e.sql = sql;
    e.type = DataType::Boolean;
    e.binding = binding;
    e.logical = true;
    return e;
}

Emitted plain(const QString& sql, DataType type, bool neverNull)
{
    Emitted e;
    e.sql = sql;
    e.type = type;
    e.neverNull = neverNull;
    return e;
}

QString keyOf(const QString& sql, DataType type)
{
    return mayBeText(type) ? u"jet_key("_s + sql + u')' : sql;
}

QString keyOf(const Emitted& value)
{
    return value.isNullLiteral() ? value.sql : keyOf(value.atom(), value.type);
}

DataType commonType(DataType a, DataType b)
{
    if (a == b || b == DataType::None)
        return a;
    if (a == DataType::None)
        return b;
    if (isText(a) && isText(b))
        return a == DataType::Memo || b == DataType::Memo ? DataType::Memo : DataType::Text;
    const bool wholeA = isWhole(a) || a == DataType::Boolean;
    const bool wholeB = isWhole(b) || b == DataType::Boolean;
    if (wholeA && wholeB)
        return DataType::Long;
    if ((isNumber(a) || wholeA) && (isNumber(b) || wholeB))
        return DataType::Double;
    return DataType::None;
}

namespace {

QString converter(DataType target)
{
    switch (target) {
    case DataType::Boolean:
        return u"jet_bool"_s;
    case DataType::Byte:
        return u"jet_byte"_s;
    case DataType::Integer:
        return u"jet_integer"_s;
    case DataType::Long:
        return u"jet_long"_s;
    case DataType::Currency:
    case DataType::Single:
    case DataType::Double:
        return u"jet_double"_s;
    case DataType::Date:
        return u"jet_date"_s;
    case DataType::Text:
    case DataType::Memo:
    case DataType::GUID:
        return u"jet_text"_s;
    default:
        return {};
    }
}

bool isReal(DataType type)
{
    return type == DataType::Currency || type == DataType::Single || type == DataType::Double;
}

bool fits(const Emitted& value, DataType target)
{
    if (isText(target))
        return isText(value.type);
    if (target == DataType::Boolean)
        return value.type == DataType::Boolean && value.exact && value.neverNull;
    if (isReal(target))
        return isNumber(value.type) || value.type == DataType::Boolean;
    // What is computed may leave the range of its type; what is stored or written does not.
    if (target == DataType::Long)
        return (isWhole(value.type) || value.type == DataType::Boolean) && value.exact;
    if (target == DataType::Date)
        return value.type == DataType::Date;
    return value.type == target && (value.exact || isBinary(target));
}

} // namespace

QString assigned(const Emitted& value, DataType target)
{
    if (value.isNullLiteral())
        return target == DataType::Boolean ? u"0"_s : u"NULL"_s;
    const QString function = converter(target);
    if (fits(value, target) || function.isEmpty())
        return value.atom();
    return function + u'(' + value.atom() + u')';
}

} // namespace jet::compiler
