#include "jet/Functions.h"

#include "jet/Error.h"
#include "jet/text/Like.h"
#include "jet/text/TextOrder.h"
#include "jet/text/Values.h"

#include <QDateTime>
#include <cmath>
#include <limits>
#include <optional>
#include <sqlite3.h>

namespace jet {

using namespace Qt::StringLiterals;

namespace {

// One call of a function: its arguments, and where the result goes. A body that sets nothing gives Null.
class Call {
public:
    Call(sqlite3_context* context, int count, sqlite3_value** arguments)
        : m_context(context), m_count(count), m_arguments(arguments)
    {
    }

    int count() const { return m_count; }
    sqlite3_context* context() const { return m_context; }
    sqlite3_value* raw(int i) const { return m_arguments[i]; }
    int type(int i) const { return sqlite3_value_type(m_arguments[i]); }
    bool isNull(int i) const { return i >= m_count || type(i) == SQLITE_NULL; }
    bool isText(int i) const { return type(i) == SQLITE_TEXT; }

    QString text(int i) const;              ///< Numbers as CStr.
    double number(int i, int failure) const; ///< A text that is a number counts as one.
    qint32 whole(int i, int failure = 13) const;
    qint32 position(int i) const; ///< A length, start or count: Null fails with 94.

    void pass(int i) { sqlite3_result_value(m_context, m_arguments[i]); }
    void give(const QString& text);
    void give(double number);
    void give(qint64 number) { sqlite3_result_int64(m_context, number); }
    void give(bool truth) { sqlite3_result_int(m_context, truth ? -1 : 0); }

private:
    sqlite3_context* m_context;
    int m_count;
    sqlite3_value** m_arguments;
};

QString Call::text(int i) const
{
    switch (type(i)) {
    case SQLITE_INTEGER:
        return QString::number(sqlite3_value_int64(m_arguments[i]));
    case SQLITE_FLOAT:
        return text::numberText(sqlite3_value_double(m_arguments[i]));
    case SQLITE_BLOB:
        fail(13);
    case SQLITE_NULL:
        return {};
    default: {
        // The text first: it may change the representation that the length is that of.
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(m_arguments[i]));
        return QString::fromUtf8(bytes, sqlite3_value_bytes(m_arguments[i]));
    }
    }
}

double Call::number(int i, int failure) const
{
    if (type(i) == SQLITE_BLOB)
        fail(failure);
    if (!isText(i))
        return sqlite3_value_double(m_arguments[i]);
    const QString written = text(i);
    const std::optional<double> value = text::numberOfText(written);
    if (!value)
        fail(failure, written);
    return *value;
}

// Rounds half to even, as every conversion to a whole number does.
template<typename Whole> Whole wholeNumber(double value)
{
    const double rounded = text::roundHalfEven(value);
    if (!(rounded >= std::numeric_limits<Whole>::min() && rounded <= std::numeric_limits<Whole>::max()))
        fail(6, text::numberText(value));
    return Whole(rounded);
}

qint32 Call::whole(int i, int failure) const { return wholeNumber<qint32>(number(i, failure)); }

qint32 Call::position(int i) const
{
    if (isNull(i))
        fail(94);
    return whole(i);
}

void Call::give(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    sqlite3_result_text64(m_context, bytes.constData(), sqlite3_uint64(bytes.size()), SQLITE_TRANSIENT,
                          SQLITE_UTF8);
}

void Call::give(double number)
{
    if (!std::isfinite(number))
        fail(6);
    sqlite3_result_double(m_context, number);
}

using Body = void (*)(Call&);

// --- Order and patterns --------------------------------------------------------------------------

void keyOf(Call& call)
{
    if (!call.isText(0))
        return call.pass(0);
    const QByteArray key = text::key(call.text(0));
    sqlite3_result_blob64(call.context(), key.constData(), sqlite3_uint64(key.size()), SQLITE_TRANSIENT);
}

void deletePattern(void* pattern) { delete static_cast<text::LikePattern*>(pattern); }

void like(Call& call)
{
    if (call.isNull(0) || call.isNull(1))
        return;
    // A constant pattern is taken apart once for a statement.
    auto* pattern = static_cast<text::LikePattern*>(sqlite3_get_auxdata(call.context(), 1));
    if (pattern != nullptr) {
        sqlite3_result_int(call.context(), pattern->matches(call.text(0)) ? 1 : 0);
        return;
    }
    auto fresh = std::make_unique<text::LikePattern>(call.text(1));
    sqlite3_result_int(call.context(), fresh->matches(call.text(0)) ? 1 : 0);
    // The store may delete it at once, so it is handed over last.
    sqlite3_set_auxdata(call.context(), 1, fresh.release(), deletePattern);
}

// --- Operators -----------------------------------------------------------------------------------

// Null & Null is Null; beside a text Null counts as empty.
void concat(Call& call)
{
    if (!call.isNull(0) || !call.isNull(1))
        call.give(call.text(0) + call.text(1));
}

bool bothWhole(const Call& call)
{
    return call.type(0) == SQLITE_INTEGER && call.type(1) == SQLITE_INTEGER;
}

void add(Call& call)
{
    if (call.isNull(0) || call.isNull(1))
        return;
    if (call.isText(0) && call.isText(1))
        return call.give(call.text(0) + call.text(1));
    if (!bothWhole(call))
        return call.give(call.number(0, 13) + call.number(1, 13));
    qint64 sum = 0;
    if (__builtin_add_overflow(sqlite3_value_int64(call.raw(0)), sqlite3_value_int64(call.raw(1)), &sum))
        fail(6);
    call.give(sum);
}

template<typename Operation> void divide(Call& call, Operation operation)
{
    if (call.isNull(0) || call.isNull(1))
        return;
    const qint64 left = call.whole(0), right = call.whole(1);
    if (right == 0)
        fail(11);
    call.give(qint64(operation(left, right)));
}

void integerDivide(Call& call)
{
    divide(call, [](qint64 a, qint64 b) { return a / b; });
}

void modulo(Call& call)
{
    divide(call, [](qint64 a, qint64 b) { return a % b; });
}

void power(Call& call)
{
    if (call.isNull(0) || call.isNull(1))
        return;
    const double base = call.number(0, 13), exponent = call.number(1, 13);
    if (base == 0 && exponent < 0)
        fail(11);
    const double result = std::pow(base, exponent);
    if (std::isnan(result))
        fail(5, u"^"_s);
    call.give(result);
}

// --- Conversion on assignment --------------------------------------------------------------------

void toText(Call& call)
{
    if (call.isNull(0))
        return;
    if (call.type(0) == SQLITE_BLOB)
        fail(3421);
    if (call.isText(0))
        return call.pass(0);
    call.give(call.text(0));
}

template<typename Whole> void toWhole(Call& call)
{
    if (!call.isNull(0))
        call.give(qint64(wholeNumber<Whole>(call.number(0, 3421))));
}

void toDouble(Call& call)
{
    if (!call.isNull(0))
        call.give(call.number(0, 3421));
}

std::optional<bool> truthOfText(const QString& written)
{
    const QString word = written.trimmed().toLower();
    if (QStringList{u"vrai"_s, u"true"_s, u"oui"_s, u"yes"_s, u"on"_s}.contains(word))
        return true;
    if (QStringList{u"faux"_s, u"false"_s, u"non"_s, u"no"_s, u"off"_s}.contains(word))
        return false;
    const std::optional<double> number = text::numberOfText(word);
    return number ? std::optional(*number != 0) : std::nullopt;
}

bool truth(const Call& call)
{
    if (!call.isText(0))
        return call.number(0, 3421) != 0;
    const std::optional<bool> value = truthOfText(call.text(0));
    if (!value)
        fail(3421, call.text(0));
    return *value;
}

// A yes/no column never holds Null.
void toBool(Call& call) { call.give(!call.isNull(0) && truth(call)); }

double daysOf(const Call& call, int i)
{
    if (!call.isText(i))
        return call.number(i, 3421);
    const QString written = call.text(i);
    if (const auto date = text::dateOfText(written))
        return text::dateToDays(*date);
    const std::optional<double> number = text::numberOfText(written);
    if (!number)
        fail(3421, written);
    return *number;
}

void toDate(Call& call)
{
    if (call.isNull(0))
        return;
    const double days = daysOf(call, 0);
    text::daysToDate(days); // Refuses what lies outside the calendar.
    call.give(days);
}

// --- Functions of text ---------------------------------------------------------------------------

void val(Call& call)
{
    if (call.isNull(0))
        return;
    call.isText(0) ? call.give(text::val(call.text(0))) : call.give(call.number(0, 13));
}

template<bool left, bool right> void trim(Call& call)
{
    if (!call.isNull(0))
        call.give(text::trimBlanks(call.text(0), left, right));
}

template<int mode> void changeCase(Call& call)
{
    if (!call.isNull(0))
        call.give(text::strConv(call.text(0), mode));
}

void strConv(Call& call)
{
    const qint32 mode = call.position(1);
    if (!call.isNull(0))
        call.give(text::strConv(call.text(0), mode));
}

qint32 lengthArgument(const Call& call, int i, const QString& function)
{
    const qint32 length = call.position(i);
    if (length < 0)
        fail(5, function);
    return length;
}

void left(Call& call)
{
    const qint32 length = lengthArgument(call, 1, u"Left"_s);
    if (!call.isNull(0))
        call.give(call.text(0).left(length));
}

void right(Call& call)
{
    const qint32 length = lengthArgument(call, 1, u"Right"_s);
    if (!call.isNull(0))
        call.give(call.text(0).right(length));
}

void mid(Call& call)
{
    const qint32 start = call.position(1);
    const qint32 length = call.count() > 2 ? lengthArgument(call, 2, u"Mid"_s) : -1;
    if (start < 1)
        fail(5, u"Mid"_s);
    if (!call.isNull(0))
        call.give(call.text(0).mid(start - 1, length));
}

void length(Call& call)
{
    if (!call.isNull(0))
        call.give(qint64(call.text(0).size()));
}

Qt::CaseSensitivity comparison(const Call& call, int i)
{
    return call.count() > i && call.position(i) == 0 ? Qt::CaseSensitive : Qt::CaseInsensitive;
}

// InStr([start,] text, wanted [, comparison])
void inStr(Call& call)
{
    const int first = call.count() > 2 ? 1 : 0;
    const qint32 start = first == 0 ? 1 : call.position(0);
    const Qt::CaseSensitivity sensitivity = comparison(call, 3);
    if (start < 1)
        fail(5, u"InStr"_s);
    if (call.isNull(first) || call.isNull(first + 1))
        return;
    const QString text = call.text(first);
    const bool inside = start <= text.size();
    call.give(qint64(inside ? text.indexOf(call.text(first + 1), start - 1, sensitivity) + 1 : 0));
}

// Replace(text, wanted, by [, start [, count [, comparison]]]); the text before start is left out.
void replace(Call& call)
{
    const qint32 start = call.count() > 3 ? call.position(3) : 1;
    qint32 count = call.count() > 4 ? call.position(4) : -1;
    const Qt::CaseSensitivity sensitivity = comparison(call, 5);
    if (start < 1 || count < -1)
        fail(5, u"Replace"_s);
    if (call.isNull(0) || call.isNull(1) || call.isNull(2))
        return;
    const QString text = call.text(0).mid(start - 1), wanted = call.text(1), by = call.text(2);
    QString result;
    qsizetype from = 0;
    for (; !wanted.isEmpty() && count != 0; --count) {
        const qsizetype at = text.indexOf(wanted, from, sensitivity);
        if (at < 0)
            break;
        result += QStringView(text).sliced(from, at - from);
        result += by;
        from = at + wanted.size();
    }
    call.give(result + text.sliced(from));
}

// The code unit; the first 256 are those of Latin-1.
void asc(Call& call)
{
    if (call.isNull(0))
        return;
    const QString text = call.text(0);
    if (text.isEmpty())
        fail(5, u"Asc"_s);
    call.give(qint64(text[0].unicode()));
}

QChar characterOf(qint32 code, const QString& function)
{
    if (code < 0 || code > 0xFFFF)
        fail(5, function);
    return QChar(char16_t(code));
}

void chr(Call& call) { call.give(QString(characterOf(call.position(0), u"Chr"_s))); }

constexpr qint32 longestFill = 100'000'000;

QString filled(qint32 count, QChar character)
{
    if (count > longestFill)
        fail(7);
    return QString(count, character);
}

void space(Call& call) { call.give(filled(lengthArgument(call, 0, u"Space"_s), u' ')); }

// String(count, character): a code, or a text whose first character is taken.
void string(Call& call)
{
    const qint32 count = lengthArgument(call, 0, u"String"_s);
    if (call.isNull(1))
        return;
    if (!call.isText(1))
        return call.give(filled(count, characterOf(call.whole(1), u"String"_s)));
    const QString text = call.text(1);
    if (text.isEmpty())
        fail(5, u"String"_s);
    call.give(filled(count, text[0]));
}

bool isDateValue(const Call& call, QStringView pattern)
{
    return text::isDatePattern(pattern) && (!call.isText(0) || text::dateOfText(call.text(0)));
}

// A text that is a number is formatted as one where the pattern is one of numbers, and likewise a date.
void format(Call& call)
{
    if (call.isNull(0))
        return;
    const QString pattern = call.count() > 1 ? call.text(1) : QString();
    if (pattern.isEmpty())
        return call.give(call.text(0));
    if (isDateValue(call, pattern))
        return call.give(text::formatDate(text::daysToDate(daysOf(call, 0)), pattern));
    const std::optional<double> number =
        call.isText(0) ? text::numberOfText(call.text(0)) : call.number(0, 13);
    if (number && text::isNumberPattern(pattern))
        return call.give(text::formatNumber(*number, pattern));
    call.give(text::isNumberPattern(pattern) ? call.text(0) : text::formatText(call.text(0), pattern));
}

// --- Functions of numbers ------------------------------------------------------------------------

void requireValue(const Call& call)
{
    if (call.isNull(0))
        fail(94);
}

void cStr(Call& call)
{
    requireValue(call);
    toText(call);
}

template<typename Whole> void cWhole(Call& call)
{
    requireValue(call);
    toWhole<Whole>(call);
}

void cDbl(Call& call)
{
    requireValue(call);
    toDouble(call);
}

void cBool(Call& call)
{
    requireValue(call);
    call.give(truth(call));
}

// Null gives Null, a whole number `whole`, any other `real`.
template<typename OfWhole, typename OfReal> void numeric(Call& call, OfWhole ofWhole, OfReal ofReal)
{
    if (call.isNull(0))
        return;
    if (call.type(0) == SQLITE_INTEGER)
        call.give(qint64(ofWhole(sqlite3_value_int64(call.raw(0)))));
    else
        call.give(double(ofReal(call.number(0, 13))));
}

void absolute(Call& call)
{
    const auto ofWhole = [](qint64 value) {
        if (value == std::numeric_limits<qint64>::min())
            fail(6);
        return value < 0 ? -value : value;
    };
    numeric(call, ofWhole, [](double value) { return std::abs(value); });
}

qint64 same(qint64 value) { return value; }

void integerPart(Call& call)
{
    numeric(call, same, [](double value) { return std::floor(value); });
}

void fix(Call& call)
{
    numeric(call, same, [](double value) { return std::trunc(value); });
}

void round(Call& call)
{
    const qint32 digits = call.count() > 1 ? lengthArgument(call, 1, u"Round"_s) : 0;
    numeric(call, same, [digits](double value) { return text::roundHalfEven(value, digits); });
}

void sign(Call& call)
{
    if (call.isNull(0))
        return;
    const double value = call.number(0, 13);
    call.give(qint64(value > 0 ? 1 : value < 0 ? -1 : 0));
}

void squareRoot(Call& call)
{
    if (call.isNull(0))
        return;
    const double value = call.number(0, 13);
    if (value < 0)
        fail(5, u"Sqr"_s);
    call.give(std::sqrt(value));
}

void nz(Call& call)
{
    if (!call.isNull(0))
        call.pass(0);
    else if (call.count() > 1)
        call.pass(1);
    else
        call.give(u""_s);
}

bool isNumericText(const QString& text)
{
    try {
        return text::numberOfText(text).has_value();
    } catch (const Error&) { // Too large for a number is none.
        return false;
    }
}

void isNumeric(Call& call)
{
    const int type = call.type(0);
    call.give(type == SQLITE_INTEGER || type == SQLITE_FLOAT
              || (type == SQLITE_TEXT && isNumericText(call.text(0))));
}

// --- Dates ---------------------------------------------------------------------------------------

void now(Call& call) { call.give(text::dateToDays(QDateTime::currentDateTime())); }

template<int (QDate::*part)() const> void datePart(Call& call)
{
    if (!call.isNull(0))
        call.give(qint64((text::daysToDate(daysOf(call, 0)).date().*part)()));
}

// --- Registration --------------------------------------------------------------------------------

struct Definition {
    const char* name;
    int least;
    int most;
    Body body;
    bool deterministic = true;
};

constexpr Definition definitions[] = {
    {"jet_key", 1, 1, keyOf},
    {"jet_like", 2, 2, like},
    {"jet_concat", 2, 2, concat},
    {"jet_add", 2, 2, add},
    {"jet_idiv", 2, 2, integerDivide},
    {"jet_mod", 2, 2, modulo},
    {"jet_pow", 2, 2, power},
    {"jet_text", 1, 1, toText},
    {"jet_long", 1, 1, toWhole<qint32>},
    {"jet_integer", 1, 1, toWhole<qint16>},
    {"jet_byte", 1, 1, toWhole<quint8>},
    {"jet_double", 1, 1, toDouble},
    {"jet_bool", 1, 1, toBool},
    {"jet_date", 1, 1, toDate},
    {"jet_val", 1, 1, val},
    {"jet_trim", 1, 1, trim<true, true>},
    {"jet_ltrim", 1, 1, trim<true, false>},
    {"jet_rtrim", 1, 1, trim<false, true>},
    {"jet_lcase", 1, 1, changeCase<2>},
    {"jet_ucase", 1, 1, changeCase<1>},
    {"jet_strconv", 2, 2, strConv},
    {"jet_left", 2, 2, left},
    {"jet_right", 2, 2, right},
    {"jet_mid", 2, 3, mid},
    {"jet_len", 1, 1, length},
    {"jet_instr", 2, 4, inStr},
    {"jet_replace", 3, 6, replace},
    {"jet_asc", 1, 1, asc},
    {"jet_chr", 1, 1, chr},
    {"jet_space", 1, 1, space},
    {"jet_string", 2, 2, string},
    {"jet_format", 1, 2, format},
    {"jet_cstr", 1, 1, cStr},
    {"jet_cint", 1, 1, cWhole<qint16>},
    {"jet_clng", 1, 1, cWhole<qint32>},
    {"jet_cdbl", 1, 1, cDbl},
    {"jet_cbool", 1, 1, cBool},
    {"jet_abs", 1, 1, absolute},
    {"jet_int", 1, 1, integerPart},
    {"jet_fix", 1, 1, fix},
    {"jet_round", 1, 2, round},
    {"jet_sgn", 1, 1, sign},
    {"jet_sqr", 1, 1, squareRoot},
    {"jet_nz", 1, 2, nz},
    {"jet_isnumeric", 1, 1, isNumeric},
    {"jet_now", 0, 0, now, false},
    {"jet_year", 1, 1, datePart<&QDate::year>},
    {"jet_month", 1, 1, datePart<&QDate::month>},
    {"jet_day", 1, 1, datePart<&QDate::day>},
};

// No exception may cross the C code of the store.
void run(sqlite3_context* context, int count, sqlite3_value** arguments)
{
    const auto* definition = static_cast<const Definition*>(sqlite3_user_data(context));
    Call call(context, count, arguments);
    try {
        definition->body(call);
    } catch (const Error& error) {
        const QByteArray message = (u"#%1#"_s.arg(error.number()) + error.description()).toUtf8();
        sqlite3_result_error(context, message.constData(), int(message.size()));
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    }
}

struct Kept {
    sqlite3_value* value;
};

void keep(Kept* kept, sqlite3_value* value)
{
    sqlite3_value_free(kept->value);
    kept->value = sqlite3_value_dup(value);
}

// The first row read counts, with Null in it too.
void firstStep(sqlite3_context* context, int, sqlite3_value** arguments)
{
    auto* kept = static_cast<Kept*>(sqlite3_aggregate_context(context, sizeof(Kept)));
    if (kept != nullptr && kept->value == nullptr)
        keep(kept, arguments[0]);
}

void lastStep(sqlite3_context* context, int, sqlite3_value** arguments)
{
    auto* kept = static_cast<Kept*>(sqlite3_aggregate_context(context, sizeof(Kept)));
    if (kept != nullptr)
        keep(kept, arguments[0]);
}

void keptFinal(sqlite3_context* context)
{
    auto* kept = static_cast<Kept*>(sqlite3_aggregate_context(context, 0));
    if (kept == nullptr || kept->value == nullptr)
        return;
    sqlite3_result_value(context, kept->value);
    sqlite3_value_free(kept->value);
}

void check(sqlite3* connection, int code)
{
    if (code != SQLITE_OK)
        throw Error(7, describe(7), QString::fromUtf8(sqlite3_errmsg(connection)));
}

} // namespace

void registerFunctions(sqlite3* connection)
{
    constexpr int common = SQLITE_UTF8 | SQLITE_INNOCUOUS;
    for (const Definition& d : definitions) {
        const int flags = common | (d.deterministic ? SQLITE_DETERMINISTIC : 0);
        for (int count = d.least; count <= d.most; ++count) {
            auto* data = const_cast<Definition*>(&d);
            check(connection, sqlite3_create_function_v2(connection, d.name, count, flags, data, run, nullptr,
                                                         nullptr, nullptr));
        }
    }
    check(connection, sqlite3_create_function_v2(connection, "jet_first", 1, common | SQLITE_DETERMINISTIC,
                                                 nullptr, nullptr, firstStep, keptFinal, nullptr));
    check(connection, sqlite3_create_function_v2(connection, "jet_last", 1, common | SQLITE_DETERMINISTIC,
                                                 nullptr, nullptr, lastStep, keptFinal, nullptr));
}

} // namespace jet
