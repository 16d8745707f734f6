#include "jet/Catalog.h"

#include "jet/Compile.h"
#include "jet/JetLog.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

namespace jet {

using namespace Qt::StringLiterals;

namespace {

const QString layout = u"CREATE TABLE MSysSettings(Name TEXT PRIMARY KEY, Value ANY) STRICT, WITHOUT ROWID;"
                        "CREATE TABLE MSysTables(Name TEXT PRIMARY KEY, DateCreate TEXT NOT NULL) STRICT, WITHOUT ROWID;"
                        "CREATE TABLE MSysColumns(TableName TEXT, Position INTEGER, Name TEXT NOT NULL,"
                        " Type INTEGER NOT NULL, Size INTEGER NOT NULL, Required INTEGER NOT NULL,"
                        " AllowZeroLength INTEGER NOT NULL, IsAutoNumber INTEGER NOT NULL,"
                        " DefaultValue TEXT NOT NULL, ValidationRule TEXT NOT NULL, ValidationText TEXT NOT NULL,"
                        " PRIMARY KEY(TableName, Position)) STRICT, WITHOUT ROWID;"
                        // Fields: [["name", descending], …]
                        "CREATE TABLE MSysIndexes(TableName TEXT, Position INTEGER, Name TEXT NOT NULL,"
                        " Fields TEXT NOT NULL, IsPrimary INTEGER NOT NULL, IsUnique INTEGER NOT NULL,"
                        " IgnoreNulls INTEGER NOT NULL, Required INTEGER NOT NULL, IsForeign INTEGER NOT NULL,"
                        " PRIMARY KEY(TableName, Position)) STRICT, WITHOUT ROWID;"
                        // Fields: [["primary", "foreign"], …]
                        "CREATE TABLE MSysRelationships(Name TEXT PRIMARY KEY, TableName TEXT NOT NULL,"
                        " ForeignTable TEXT NOT NULL, Fields TEXT NOT NULL, UpdateCascade INTEGER NOT NULL,"
                        " DeleteCascade INTEGER NOT NULL) STRICT, WITHOUT ROWID;"
                        "CREATE TABLE MSysQueries(Name TEXT PRIMARY KEY, SQL TEXT NOT NULL,"
                        " DateCreate TEXT NOT NULL, LastUpdated TEXT NOT NULL) STRICT, WITHOUT ROWID;"
                        "CREATE TABLE MSysProperties(Key TEXT PRIMARY KEY, Name TEXT NOT NULL,"
                        " Type INTEGER NOT NULL, Value ANY) STRICT, WITHOUT ROWID"_s;

QString json(const QJsonArray& array)
{
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

QJsonArray arrayOf(const QString& text)
{
    return QJsonDocument::fromJson(text.toUtf8()).array();
}

Field fieldAt(const Statement& row)
{
    Field field;
    field.Name = row.text(1);
    field.Type = DataType(row.int64(2));
    field.Size = int(row.int64(3));
    field.Required = row.int64(4) != 0;
    field.AllowZeroLength = row.int64(5) != 0;
    field.AutoIncrement = row.int64(6) != 0;
    field.DefaultValue = row.text(7);
    field.ValidationRule = row.text(8);
    field.ValidationText = row.text(9);
    return field;
}

Index indexAt(const Statement& row)
{
    Index index;
    index.Name = row.text(1);
    for (const QJsonValue& value : arrayOf(row.text(2)))
        index.Fields.append({value[0].toString(), value[1].toBool()});
    index.Primary = row.int64(3) != 0;
    index.Unique = row.int64(4) != 0;
    index.IgnoreNulls = row.int64(5) != 0;
    index.Required = row.int64(6) != 0;
    index.Foreign = row.int64(7) != 0;
    return index;
}

Relation relationAt(const Statement& row)
{
    Relation relation;
    relation.Name = row.text(0);
    relation.Table = row.text(1);
    relation.ForeignTable = row.text(2);
    for (const QJsonValue& value : arrayOf(row.text(3)))
        relation.Fields.append({value[0].toString(), value[1].toString()});
    relation.UpdateCascade = row.int64(4) != 0;
    relation.DeleteCascade = row.int64(5) != 0;
    return relation;
}

/// Its tables and columns are there.
bool isWhole(const Relation& relation, const Schema& schema)
{
    const TableDef* primary = schema.table(relation.Table);
    const TableDef* foreign = schema.table(relation.ForeignTable);
    return primary && foreign && !relation.Fields.isEmpty()
           && std::all_of(relation.Fields.cbegin(), relation.Fields.cend(), [&](const auto& pair) {
                  return primary->field(pair.first) && foreign->field(pair.second);
              });
}

QString moment(const QDateTime& value)
{
    return value.toString(Qt::ISODate);
}

/// The type under which a value is kept, so that it comes back as it was given.
DataType typeOf(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool: return DataType::Boolean;
    case QMetaType::Int: return DataType::Long;
    case QMetaType::Double: return DataType::Double;
    case QMetaType::QDateTime: return DataType::Date;
    case QMetaType::QString: return DataType::Memo;
    case QMetaType::QByteArray: return DataType::LongBinary;
    default: return DataType::None;
    }
}

} // namespace

QString indexSqlName(QStringView table, QStringView index)
{
    return table.toString() + u'.' + index.toString();
}

bool needsSqlIndex(const TableDef& table, const Index& index)
{
    return index.Fields.size() != 1 || !sameName(index.Fields.first().Name, table.rowIdColumn());
}

bool isReservedName(QStringView name)
{
    return name.startsWith(u"MSys", Qt::CaseInsensitive) || name.startsWith(u"sqlite_", Qt::CaseInsensitive);
}

void Catalog::create()
{
    m_store.run(layout);
}

// --- Reading -------------------------------------------------------------------------------------

std::vector<TableDef> Catalog::readTables()
{
    std::vector<TableDef> tables;
    QHash<QString, size_t> places;
    Statement names(m_store, u"SELECT Name FROM MSysTables ORDER BY DateCreate, Name"_s);
    while (names.step()) {
        places.insert(names.text(0), tables.size());
        tables.push_back({.Name = names.text(0)});
    }
    Statement columns(m_store, u"SELECT TableName, Name, Type, Size, Required, AllowZeroLength, IsAutoNumber,"
                               " DefaultValue, ValidationRule, ValidationText"
                               " FROM MSysColumns ORDER BY TableName, Position"_s);
    while (columns.step()) {
        if (const auto place = places.constFind(columns.text(0)); place != places.cend())
            tables[*place].Fields.append(fieldAt(columns));
    }
    Statement indexes(m_store, u"SELECT TableName, Name, Fields, IsPrimary, IsUnique, IgnoreNulls, Required, IsForeign"
                               " FROM MSysIndexes ORDER BY TableName, Position"_s);
    while (indexes.step()) {
        if (const auto place = places.constFind(indexes.text(0)); place != places.cend())
            tables[*place].Indexes.append(indexAt(indexes));
    }
    return tables;
}

void Catalog::keepWhatIsReal(TableDef& table, QStringList& differences)
{
    const QSet<QString> real = m_realColumns.value(table.Name);
    table.Fields.removeIf([&](const Field& field) {
        if (real.contains(field.Name))
            return false;
        differences += u"Le champ « %1 » de la table « %2 » manque."_s.arg(field.Name, table.Name);
        return true;
    });
    table.Indexes.removeIf([&](const Index& index) {
        const bool fields = std::all_of(index.Fields.cbegin(), index.Fields.cend(),
                                        [&](const IndexField& one) { return table.field(one.Name); });
        if (fields && (!needsSqlIndex(table, index) || m_realIndexes.contains(indexSqlName(table.Name, index.Name))))
            return false;
        differences += u"L'index « %1 » de la table « %2 » manque."_s.arg(index.Name, table.Name);
        return true;
    });
}

Schema Catalog::readAll(QStringList& differences)
{
    m_realColumns.clear();
    m_realIndexes.clear();
    Statement columns(m_store, u"SELECT m.name, p.name FROM sqlite_schema m, pragma_table_info(m.name) p"
                               " WHERE m.type='table' AND m.name NOT LIKE 'MSys%'"_s);
    while (columns.step())
        m_realColumns[columns.text(0)].insert(columns.text(1));
    Statement indexes(m_store, u"SELECT name FROM sqlite_schema WHERE type='index'"_s);
    while (indexes.step())
        m_realIndexes.insert(indexes.text(0));

    Schema schema;
    for (TableDef& table : readTables()) {
        if (!m_realColumns.contains(table.Name)) {
            differences += u"La table « %1 » manque."_s.arg(table.Name);
            continue;
        }
        keepWhatIsReal(table, differences);
        if (!table.Fields.isEmpty())
            schema.put(std::move(table));
    }
    Statement relations(m_store, u"SELECT Name, TableName, ForeignTable, Fields, UpdateCascade, DeleteCascade"
                                 " FROM MSysRelationships"_s);
    while (relations.step()) {
        Relation relation = relationAt(relations);
        if (isWhole(relation, schema))
            schema.put(std::move(relation));
        else
            differences += u"Une table ou un champ de la relation « %1 » manque."_s.arg(relation.Name);
    }
    Statement queries(m_store, u"SELECT Name, SQL, DateCreate, LastUpdated FROM MSysQueries"_s);
    while (queries.step()) {
        schema.put(QueryDef{queries.text(0), queries.text(1), QDateTime::fromString(queries.text(2), Qt::ISODate),
                            QDateTime::fromString(queries.text(3), Qt::ISODate)});
    }
    return schema;
}

Schema Catalog::read()
{
    QStringList differences;
    Schema schema = readAll(differences);
    for (const QString& difference : differences)
        qCWarning(jetLog).noquote() << m_store.path() << difference;
    return schema;
}

QStringList Catalog::differences()
{
    QStringList found;
    readAll(found);
    return found;
}

// --- Writing -------------------------------------------------------------------------------------

void Catalog::insert(const QString& table, const QVariantList& values)
{
    const QString marks = QStringList(values.size(), u"?"_s).join(u',');
    Statement statement(m_store, u"INSERT OR REPLACE INTO %1 VALUES(%2)"_s.arg(table, marks));
    for (int i = 0; i < values.size(); ++i)
        statement.bind(i + 1, values[i]);
    statement.step();
}

void Catalog::remove(const QString& table, const QString& column, const QString& name)
{
    Statement statement(m_store, u"DELETE FROM %1 WHERE %2=?"_s.arg(table, column));
    statement.bind(1, QVariant(name));
    statement.step();
}

void Catalog::put(const TableDef& table)
{
    Statement known(m_store, u"INSERT OR IGNORE INTO MSysTables VALUES(?,?)"_s);
    known.bind(1, QVariant(table.Name));
    known.bind(2, QVariant(QDateTime::currentDateTime().toString(Qt::ISODateWithMs)));
    known.step();
    remove(u"MSysColumns"_s, u"TableName"_s, table.Name);
    remove(u"MSysIndexes"_s, u"TableName"_s, table.Name);
    int position = 0;
    for (const Field& field : table.Fields) {
        insert(u"MSysColumns"_s,
               {table.Name, position++, field.Name, int(field.Type), field.Size, int(field.Required),
                int(field.AllowZeroLength), int(field.AutoIncrement), field.DefaultValue,
                field.ValidationRule, field.ValidationText});
    }
    position = 0;
    for (const Index& index : table.Indexes) {
        QJsonArray fields;
        for (const IndexField& field : index.Fields)
            fields.append(QJsonArray{field.Name, field.Descending});
        insert(u"MSysIndexes"_s,
               {table.Name, position++, index.Name, json(fields), int(index.Primary), int(index.Unique),
                int(index.IgnoreNulls), int(index.Required), int(index.Foreign)});
    }
}

void Catalog::removeTable(const QString& name)
{
    remove(u"MSysTables"_s, u"Name"_s, name);
    remove(u"MSysColumns"_s, u"TableName"_s, name);
    remove(u"MSysIndexes"_s, u"TableName"_s, name);
}

void Catalog::put(const Relation& relation)
{
    QJsonArray fields;
    for (const auto& [primary, foreign] : relation.Fields)
        fields.append(QJsonArray{primary, foreign});
    insert(u"MSysRelationships"_s, {relation.Name, relation.Table, relation.ForeignTable, json(fields),
                                    int(relation.UpdateCascade), int(relation.DeleteCascade)});
}

void Catalog::removeRelation(const QString& name)
{
    remove(u"MSysRelationships"_s, u"Name"_s, name);
}

void Catalog::put(const QueryDef& query)
{
    insert(u"MSysQueries"_s, {query.Name, query.SQL, moment(query.DateCreated), moment(query.LastUpdated)});
}

void Catalog::removeQuery(const QString& name)
{
    remove(u"MSysQueries"_s, u"Name"_s, name);
}

// --- Properties and settings ---------------------------------------------------------------------

bool Catalog::hasProperty(const QString& name)
{
    Statement statement(m_store, u"SELECT 1 FROM MSysProperties WHERE Key=?"_s);
    statement.bind(1, QVariant(nameKey(name)));
    return statement.step();
}

QVariant Catalog::property(const QString& name)
{
    Statement statement(m_store, u"SELECT Type, Value FROM MSysProperties WHERE Key=?"_s);
    statement.bind(1, QVariant(nameKey(name)));
    if (!statement.step())
        fail(3270, name);
    return statement.value(1, DataType(statement.int64(0)));
}

void Catalog::setProperty(const QString& name, const QVariant& value)
{
    insert(u"MSysProperties"_s, {nameKey(name), name, int(typeOf(value)), value});
}

QVariant Catalog::setting(QStringView name)
{
    Statement statement(m_store, u"SELECT Value FROM MSysSettings WHERE Name=?"_s);
    statement.bind(1, QVariant(name.toString()));
    return statement.step() ? statement.value(0, DataType::None) : QVariant();
}

void Catalog::setSetting(QStringView name, const QVariant& value)
{
    insert(u"MSysSettings"_s, {name.toString(), value});
}

} // namespace jet
