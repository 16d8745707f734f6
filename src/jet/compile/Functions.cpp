// The functions of the dialect: how each is called in the store, its arguments and its type.
#include "jet/Error.h"
#include "jet/compile/Expressions.h"

namespace jet::compiler {

using namespace Qt::StringLiterals;

namespace {

// DataType::None here: the type of the first argument.
struct Function {
    QStringView name;
    int fewest;
    int most;
    DataType type;
};

// Each is the function of the store with "jet_" before its name.
constexpr Function functions[] = {
    {u"val", 1, 1, DataType::Double},        {u"trim", 1, 1, DataType::Text},
    {u"ltrim", 1, 1, DataType::Text},        {u"rtrim", 1, 1, DataType::Text},
    {u"lcase", 1, 1, DataType::Text},        {u"ucase", 1, 1, DataType::Text},
    {u"strconv", 2, 3, DataType::Text},      {u"left", 2, 2, DataType::Text},
    {u"right", 2, 2, DataType::Text},        {u"mid", 2, 3, DataType::Text},
    {u"len", 1, 1, DataType::Long},          {u"instr", 2, 4, DataType::Long},
    {u"replace", 3, 6, DataType::Text},      {u"cstr", 1, 1, DataType::Text},
    {u"cint", 1, 1, DataType::Integer},      {u"clng", 1, 1, DataType::Long},
    {u"cdbl", 1, 1, DataType::Double},       {u"cbool", 1, 1, DataType::Boolean},
    {u"abs", 1, 1, DataType::None},          {u"int", 1, 1, DataType::None},
    {u"fix", 1, 1, DataType::None},          {u"round", 1, 2, DataType::None},
    {u"sgn", 1, 1, DataType::Integer},       {u"sqr", 1, 1, DataType::Double},
    {u"now", 0, 0, DataType::Date},          {u"format", 1, 4, DataType::Text},
    {u"asc", 1, 1, DataType::Integer},       {u"chr", 1, 1, DataType::Text},
    {u"space", 1, 1, DataType::Text},        {u"string", 2, 2, DataType::Text},
    {u"isnumeric", 1, 1, DataType::Boolean}, {u"year", 1, 1, DataType::Integer},
    {u"month", 1, 1, DataType::Integer},     {u"day", 1, 1, DataType::Integer},
};

const Function* findFunction(const QString& name)
{
    const auto* end = std::end(functions);
    const auto* found =
        std::find_if(std::begin(functions), end, [&](const Function& f) { return f.name == name; });
    return found == end ? nullptr : found;
}

DataType numberType(DataType type)
{
    if (type == DataType::Boolean)
        return DataType::Integer;
    return isText(type) ? DataType::Double : type;
}

void requireArguments(const sql::Call& call, int fewest, int most, const sql::Expr& whole)
{
    const int count = int(call.arguments.size());
    if (count < fewest || count > most)
        fail(3075, u"nombre d'arguments"_s, written(whole));
}

} // namespace

bool isAggregateName(const QString& name)
{
    static const QStringList names = {u"count"_s, u"sum"_s,   u"avg"_s, u"min"_s,
                                      u"max"_s,   u"first"_s, u"last"_s};
    return names.contains(name);
}

Emitted Expressions::function(const sql::Call& call, const sql::Expr& whole)
{
    if (std::optional<Emitted> e = special(call, whole))
        return *e;
    const Function* function = findFunction(call.name);
    if (!function)
        fail(3085, call.name);
    requireArguments(call, function->fewest, function->most, whole);
    QStringList arguments;
    DataType type = function->type;
    for (const sql::ExprPtr& argument : call.arguments) {
        const Emitted value = compile(*argument);
        if (arguments.isEmpty() && type == DataType::None)
            type = numberType(value.type);
        arguments.append(value.atom());
    }
    return plain(u"jet_"_s + call.name + u'(' + arguments.join(u", "_s) + u')', type);
}

// CASE WHEN … THEN … ELSE … END; only the branch that is chosen is evaluated.
Emitted Expressions::choice(const std::vector<std::pair<QString, Emitted>>& cases,
                            const Emitted& otherwise)
{
    QString text = u"CASE"_s;
    DataType type = otherwise.type;
    for (const auto& [when, value] : cases) {
        text += u" WHEN "_s + when + u" THEN "_s + value.atom();
        type = commonType(type, value.type);
    }
    if (!otherwise.isNullLiteral())
        text += u" ELSE "_s + otherwise.atom();
    return plain(text + u" END"_s, type);
}

std::optional<Emitted> Expressions::special(const sql::Call& call, const sql::Expr& whole)
{
    const auto argument = [&](int i) { return compile(*call.arguments[i]); };
    Emitted null = plain(u"NULL"_s, DataType::None);
    null.constant = true;
    if (call.name == u"iif"_s) {
        requireArguments(call, 2, 3, whole);
        const QString when = condition(*call.arguments[0]);
        const Emitted then = argument(1);
        return choice({{when, then}}, call.arguments.size() == 3 ? argument(2) : null);
    }
    if (call.name == u"isnull"_s) {
        requireArguments(call, 1, 1, whole);
        return logical(argument(0).atom() + u" IS NULL"_s);
    }
    if (call.name == u"nz"_s) {
        requireArguments(call, 1, 2, whole);
        const Emitted x = argument(0);
        const bool number =
            isNumber(x.type) || x.type == DataType::Boolean || x.type == DataType::Date;
        const Emitted instead = call.arguments.size() == 2 ? argument(1)
                                : number                   ? plain(u"0"_s, DataType::Long)
                                                           : plain(u"''"_s, DataType::Text);
        return plain(u"coalesce("_s + x.atom() + u", "_s + instead.atom() + u')',
                     commonType(x.type, instead.type), instead.neverNull);
    }
    if (call.name == u"switch"_s) {
        std::vector<std::pair<QString, Emitted>> cases;
        if (call.arguments.empty() || call.arguments.size() % 2 != 0)
            fail(3075, u"nombre d'arguments"_s, written(whole));
        for (size_t i = 0; i < call.arguments.size(); i += 2) {
            const QString when = condition(*call.arguments[i]);
            cases.emplace_back(when, argument(int(i) + 1));
        }
        return choice(cases, null);
    }
    if (call.name == u"date"_s || call.name == u"time"_s) {
        requireArguments(call, 0, 0, whole);
        const QString day = u"CAST(jet_now() AS INTEGER)"_s;
        return plain(call.name == u"date"_s ? u"CAST("_s + day + u" AS REAL)"_s
                                            : u"(jet_now() - "_s + day + u')',
                     DataType::Date);
    }
    return std::nullopt;
}

namespace {

// The least or greatest text goes by its key, but the text is asked for: the key in hexadecimal
// digits, which order as it does, is put before the text and taken off again.
QString extremeText(const QString& name, const QString& text)
{
    const QString best = name + u"(hex(jet_key("_s + text + u")) || ' ' || "_s + text + u')';
    return u"substr("_s + best + u", instr("_s + best + u", ' ') + 1)"_s;
}

} // namespace

Emitted Expressions::aggregate(const sql::Call& call, const sql::Expr& whole)
{
    if (!aggregatesAllowed)
        fail(3096, written(whole));
    if (grouping && grouping->inAggregate)
        fail(3095, written(whole));
    requireArguments(call, 1, 1, whole);
    if (std::holds_alternative<sql::Star>(call.arguments[0]->node)) {
        if (call.name != u"count"_s)
            fail(3075, {}, written(whole));
        return plain(u"count(*)"_s, DataType::Long, true);
    }
    if (grouping)
        grouping->inAggregate = true;
    const Emitted x = compile(*call.arguments[0]);
    if (grouping)
        grouping->inAggregate = false;
    const QString distinct = call.distinct ? u"DISTINCT "_s : QString();
    if (call.name == u"count"_s)
        return plain(u"count("_s + distinct + (call.distinct ? keyOf(x) : x.atom()) + u')',
                     DataType::Long, true);
    if (call.name == u"first"_s || call.name == u"last"_s)
        return plain(u"jet_"_s + call.name + u'(' + x.atom() + u')', x.type);
    const bool text = isText(x.type);
    if (call.name == u"min"_s || call.name == u"max"_s)
        return plain(text ? extremeText(call.name, x.atom()) : call.name + u'(' + x.atom() + u')',
                     x.type);
    if (text || isBinary(x.type))
        fail(3464, written(whole));
    return plain(call.name + u'(' + distinct + x.atom() + u')', DataType::Double);
}

} // namespace jet::compiler
