#include "jet/TableSql.h"

#include "jet/Catalog.h"
#include "jet/Compile.h"
#include "jet/Conversion.h"
#include "jet/Triggers.h"
#include "jet/sql/Parser.h"
#include "jet/text/Values.h"

namespace jet {

using namespace Qt::StringLiterals;

namespace {

constexpr int longestName = 64;
constexpr int mostFields = 255;
constexpr int mostIndexFields = 10;

QStringView storageClass(DataType type)
{
    switch (type) {
    case DataType::Boolean:
    case DataType::Byte:
    case DataType::Integer:
    case DataType::Long: return u"INTEGER";
    case DataType::Currency:
    case DataType::Single:
    case DataType::Double:
    case DataType::Date: return u"REAL";
    case DataType::Binary:
    case DataType::LongBinary: return u"BLOB";
    case DataType::Text:
    case DataType::Memo:
    case DataType::GUID: return u"TEXT";
    case DataType::None: break;
    }
    fail(3421);
}

/// What SQLite itself must refuse in a column of the type; empty when its storage class says all.
QString range(DataType type, const QString& column)
{
    switch (type) {
    case DataType::Boolean: return column + u" IN (-1,0)"_s;
    case DataType::Byte: return column + u" BETWEEN 0 AND 255"_s;
    case DataType::Integer: return column + u" BETWEEN -32768 AND 32767"_s;
    case DataType::Long: return column + u" BETWEEN -2147483648 AND 2147483647"_s;
    default: return {};
    }
}

/// SQLite tells the name of a constraint that is broken: it is the message. A type never changes, so this
/// rule can stand in the table itself.
QString rangeConstraint(const Field& field)
{
    const QString condition = range(field.Type, quoted(field.Name));
    if (condition.isEmpty())
        return {};
    const QString message = u"#3421#"_s + describe(3421, {}, field.Name);
    return u" CONSTRAINT %1 CHECK(%2)"_s.arg(quoted(message), condition);
}

QString literal(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool: return value.toBool() ? u"-1"_s : u"0"_s;
    case QMetaType::QString: return quotedText(value.toString());
    case QMetaType::QByteArray: return u"x'"_s + QString::fromLatin1(value.toByteArray().toHex()) + u'\'';
    case QMetaType::QDateTime: return QString::number(text::dateToDays(value.toDateTime()), 'g', 17);
    case QMetaType::Double: return QString::number(value.toDouble(), 'g', 17);
    default: return value.toString();
    }
}

} // namespace

// --- What a definition may be --------------------------------------------------------------------

void checkName(const QString& name)
{
    const auto bad = [](QChar c) {
        return c < u' ' || c == u'.' || c == u'!' || c == u'[' || c == u']' || c == u'`';
    };
    if (name.isEmpty() || name.size() > longestName || name.startsWith(u' ')
        || std::any_of(name.begin(), name.end(), bad))
        fail(3125, name);
}

void checkField(const Field& field)
{
    checkName(field.Name);
    if (sameName(field.Name, u"_rid"))
        fail(3125, field.Name);
    if (field.AutoIncrement && field.Type != DataType::Long)
        fail(3219, field.Name);
    if (field.Size < 0 || (field.Type == DataType::Text && field.Size > defaultTextSize))
        fail(3163, field.Name, QString::number(defaultTextSize));
}

void checkIndex(const TableDef& table, const Index& index)
{
    checkName(index.Name);
    if (table.index(index.Name))
        fail(3284, index.Name, table.Name);
    if (index.Primary && table.primaryKey())
        fail(3283, table.Name);
    if (index.Fields.isEmpty() || index.Fields.size() > mostIndexFields)
        fail(3264, index.Name);
    QStringList names;
    for (const IndexField& field : index.Fields) {
        if (!table.field(field.Name) || names.contains(nameKey(field.Name)))
            fail(3409, field.Name, index.Name);
        names += nameKey(field.Name);
    }
}

void checkTable(const TableDef& table)
{
    checkName(table.Name);
    if (isReservedName(table.Name))
        fail(3125, table.Name);
    if (table.Fields.isEmpty())
        fail(3264, table.Name);
    if (table.Fields.size() > mostFields)
        fail(3190, table.Name);
    TableDef known{.Name = table.Name};
    for (const Field& field : table.Fields) {
        checkField(field);
        if (known.field(field.Name))
            fail(3191, field.Name, table.Name);
        if (field.AutoIncrement && !known.hasHiddenRowId())
            fail(3219, field.Name);
        known.Fields.append(field);
    }
    for (const Index& index : table.Indexes) {
        checkIndex(known, index);
        known.Indexes.append(index);
    }
}

Index normalised(Index index)
{
    index.Unique = index.Unique || index.Primary;
    return index;
}

Field normalised(Field field)
{
    if (field.Type == DataType::Text && field.Size == 0)
        field.Size = defaultTextSize;
    return field;
}

bool sameDefinition(const Index& a, const Index& b)
{
    const auto sameField = [](const IndexField& one, const IndexField& other) {
        return sameName(one.Name, other.Name) && one.Descending == other.Descending;
    };
    return sameName(a.Name, b.Name) && a.Primary == b.Primary && a.Unique == b.Unique
           && a.IgnoreNulls == b.IgnoreNulls && a.Required == b.Required && a.Foreign == b.Foreign
           && std::equal(a.Fields.begin(), a.Fields.end(), b.Fields.begin(), b.Fields.end(), sameField);
}

// --- Default values ------------------------------------------------------------------------------

QString defaultSql(Store& store, const Field& field)
{
    QString text = field.DefaultValue.trimmed();
    if (text.startsWith(u'='))
        text = text.sliced(1);
    if (text.isEmpty())
        return {};
    try {
        const QString sql = compileDefault(*sql::parseExpression(text));
        // The only functions that give another value each time; all else is computed now, so that
        // the shell of SQLite can insert rows without knowing our functions.
        if (sql.contains(u"jet_now("_s) || sql.contains(u"jet_date("_s))
            return sql;
        const QVariant value = store.single(u"SELECT "_s + sql);
        return value.isValid() ? literal(convertFor(field, value)) : QString();
    } catch (const Error& error) {
        throw Error(3320, describe(3320, field.Name, field.DefaultValue) + u" ("_s + error.description() + u')');
    }
}

bool isConstantDefault(const QString& sql)
{
    return !sql.contains(u"jet_"_s) || sql.startsWith(u'\'');
}

// --- Statements ----------------------------------------------------------------------------------

QString columnSql(const Field& field, const QString& defaultSql)
{
    QString sql = quoted(field.Name) + u' ';
    if (field.AutoIncrement)
        return sql + u"INTEGER PRIMARY KEY AUTOINCREMENT"_s + rangeConstraint(field);
    sql += storageClass(field.Type);
    QString value = defaultSql;
    if (field.Type == DataType::Boolean) {
        sql += u" NOT NULL"_s;
        if (value.isEmpty())
            value = u"0"_s;
    }
    if (!value.isEmpty())
        sql += u" DEFAULT ("_s + value + u')';
    return sql + rangeConstraint(field);
}

QString createTableSql(Store& store, const TableDef& table, const QString& sqlName)
{
    QStringList columns;
    if (table.hasHiddenRowId())
        columns += u"\"_rid\" INTEGER PRIMARY KEY AUTOINCREMENT"_s;
    for (const Field& field : table.Fields)
        columns += columnSql(field, defaultSql(store, field));
    return u"CREATE TABLE %1(%2) STRICT"_s.arg(quoted(sqlName), columns.join(u','));
}

QString createIndexSql(const TableDef& table, const Index& index)
{
    QStringList keys;
    for (const IndexField& column : index.Fields)
        keys += keySql(*table.field(column.Name)) + (column.Descending ? u" DESC"_s : QString());
    return u"CREATE %1INDEX %2 ON %3(%4)"_s.arg(index.Unique ? u"UNIQUE "_s : QString(),
                                                quoted(indexSqlName(table.Name, index.Name)),
                                                quoted(table.Name), keys.join(u','));
}

} // namespace jet
