#include "jet/access/AccessFile.h"

#include <QMap>
#include <functional>

namespace jet::access {

using namespace Qt::StringLiterals;

namespace {

/// Types of MSysObjects.
enum ObjectType {
    TableObject = 1, DatabaseObject = 2, OdbcTable = 4, QueryObject = 5, LinkedTable = 6,
    FormObject = -32768, MacroObject = -32766, ReportObject = -32764, ModuleObject = -32761, PageObject = -32756
};
constexpr quint32 systemObject = 0x80000002;
/// Flags of a relation (grbit).
enum { NotEnforced = 2, CascadeUpdates = 0x100, CascadeDeletes = 0x1000 };

const QString objectsName = u"MSysObjects"_s;
constexpr quint32 objectsPage = 2;
constexpr int mostProperties = 64 << 20; ///< Bytes of properties kept in memory.

QString otherKind(int type)
{
    switch (type) {
    case OdbcTable:
    case LinkedTable: return u"tables attachées"_s;
    case FormObject: return u"formulaires"_s;
    case MacroObject: return u"macros"_s;
    case ReportObject: return u"états"_s;
    case ModuleObject: return u"modules de programme"_s;
    case PageObject: return u"pages d'accès aux données"_s;
    default: return {};
    }
}

int columnOf(const TableDefinition& table, QStringView name)
{
    for (int i = 0; i < int(table.columns.size()); ++i) {
        if (sameName(table.columns[i].name, name))
            return i;
    }
    return -1;
}

QVariant valueOf(Rows& rows, const TableDefinition& table, QStringView column)
{
    const int position = columnOf(table, column);
    return position < 0 ? QVariant() : rows.value(position).value;
}

DataType typeOf(const Column& column)
{
    switch (column.type) {
    case ColumnType::Boolean: return DataType::Boolean;
    case ColumnType::Byte: return DataType::Byte;
    case ColumnType::Integer: return DataType::Integer;
    case ColumnType::Long:
    case ColumnType::Complex: return DataType::Long;
    case ColumnType::Currency: return DataType::Currency;
    case ColumnType::Single: return DataType::Single;
    case ColumnType::Double: return DataType::Double;
    case ColumnType::Date:
    case ColumnType::DateExtended: return DataType::Date;
    case ColumnType::Binary: return DataType::Binary;
    case ColumnType::LongBinary: return DataType::LongBinary;
    case ColumnType::Memo: return DataType::Memo;
    case ColumnType::Guid: return DataType::GUID;
    // A double holds 15 figures. More are kept as the text of the number rather than rounded.
    case ColumnType::Numeric: return column.precision <= 15 ? DataType::Double : DataType::Text;
    case ColumnType::BigInt: return DataType::Text;
    default: return DataType::Text;
    }
}

Field fieldOf(const PageFile& file, const Column& column, const QHash<QString, QVariant>& properties)
{
    const auto text = [&](const QString& name) { return properties.value(name).toString(); };
    Field field;
    field.Name = column.name;
    field.Type = typeOf(column);
    if (column.type == ColumnType::Text)
        field.Size = qBound(1, column.length / file.format().charSize, defaultTextSize);
    field.AutoIncrement = column.autoNumber && column.type == ColumnType::Long;
    field.Required = properties.value(u"Required"_s).toBool();
    field.AllowZeroLength = properties.value(u"AllowZeroLength"_s).toBool();
    field.DefaultValue = text(u"DefaultValue"_s);
    field.ValidationRule = text(u"ValidationRule"_s);
    field.ValidationText = text(u"ValidationText"_s);
    return field;
}

Index indexOf(const IndexDefinition& index)
{
    Index made;
    made.Name = index.name;
    made.Fields = index.fields;
    made.Primary = index.kind == PrimaryIndex;
    made.Unique = index.flags & IndexUnique;
    made.IgnoreNulls = index.flags & IndexIgnoreNulls;
    made.Required = index.flags & IndexRequired && !made.Primary; // a primary key is so by itself
    return made;
}

} // namespace

AccessFile::AccessFile(const QString& path, const QString& password) : m_pages(path, password)
{
    if (m_pages.endsWithinPage())
        remark(u"Le fichier s'arrête au milieu d'une page : il a été tronqué."_s);
    readObjects();
}

void AccessFile::remark(const QString& text)
{
    if (!m_remarks.contains(text))
        m_remarks += text;
}

// --- The list of objects -------------------------------------------------------------------------

void AccessFile::readObjects()
{
    const TableDefinition objects = readDefinition(m_pages, objectsPage, objectsName);
    Rows rows(m_pages, objects);
    while (rows.next())
        addObject(rows, objects);
    if (rows.read() == 0)
        throw Error(3049, u"Le fichier « %1 » ne donne la liste d'aucune table : il a été mal fermé ou il est "
                          u"endommagé ; réparez-le avec Access ou reprenez une copie."_s.arg(m_pages.path()));
    if (rows.mapLost())
        remark(u"La liste des pages de « %1 » est perdue : ses pages ont été recherchées."_s.arg(objectsName));
    if (rows.damagedRows() + rows.damagedPages() > 0 || rows.read() != qint64(objects.rowCount))
        remark(u"La liste des objets du fichier est incomplète : %1 sont lus, %2 sont annoncés."_s.arg(
            QString::number(rows.read()), QString::number(objects.rowCount)));
}

void AccessFile::addObject(Rows& rows, const TableDefinition& objects)
{
    const QString name = valueOf(rows, objects, u"Name").toString();
    const int type = valueOf(rows, objects, u"Type").toInt();
    const auto id = valueOf(rows, objects, u"Id").toInt();
    const auto flags = quint32(valueOf(rows, objects, u"Flags").toInt());
    if (name.isEmpty())
        return;
    const auto properties = [&] { return valueOf(rows, objects, u"LvProp").toByteArray(); };
    if (type == TableObject) {
        const quint32 page = quint32(id) & 0xFFFFFF;
        if (name.startsWith(u"MSys", Qt::CaseInsensitive) || name.startsWith(u'~') || flags & systemObject) {
            m_systemTables.insert(nameKey(name), page);
            return;
        }
        for (const TableEntry& known : m_tables) {
            if (known.page == page)
                return remark(u"Les tables « %1 » et « %2 » sont la même : la seconde est laissée."_s.arg(known.name, name));
        }
        m_tables.append({name, page});
        const QByteArray value = properties();
        if (value.size() < mostProperties)
            m_properties.insert(nameKey(name), value);
    } else if (type == QueryObject && !name.startsWith(u'~')) {
        m_queries.append({name, id});
    } else if (type == DatabaseObject && sameName(name, u"MSysDb")) {
        m_databaseProperties = properties();
    } else if (const QString kind = otherKind(type); !kind.isEmpty()) {
        addOther(kind, name);
    }
}

void AccessFile::addOther(const QString& kind, const QString& name)
{
    for (OtherObjects& known : m_others) {
        if (known.kind == kind) {
            known.names += name;
            return;
        }
    }
    m_others.append({kind, {name}});
}

// --- Tables --------------------------------------------------------------------------------------

TableDefinition AccessFile::definition(const TableEntry& table)
{
    return readDefinition(m_pages, table.page, table.name);
}

Properties AccessFile::propertiesOfValue(const QByteArray& value)
{
    bool isDamaged = false;
    const Properties properties = readProperties(m_pages, value, &isDamaged);
    if (isDamaged)
        remark(u"Des propriétés (champs obligatoires, valeurs par défaut, règles) sont endommagées."_s);
    return properties;
}

Properties AccessFile::propertiesOf(const QString& table)
{
    return propertiesOfValue(m_properties.value(nameKey(table)));
}

TableDef AccessFile::tableDef(const PageFile& file, const TableDefinition& definition, const Properties& properties)
{
    TableDef table;
    table.Name = definition.name;
    for (const Column& column : definition.columns)
        table.Fields += fieldOf(file, column, properties.value(nameKey(column.name)));
    for (const IndexDefinition& index : definition.indexes) {
        if (index.kind != RelationIndex)
            table.Indexes += indexOf(index);
    }
    return table;
}

// --- Relations and queries -----------------------------------------------------------------------

void AccessFile::forEachRow(const QString& name, const QStringList& columns,
                            const std::function<void(const QVariantList&)>& use)
{
    const auto page = m_systemTables.constFind(nameKey(name));
    if (page == m_systemTables.constEnd())
        return;
    try {
        const TableDefinition table = readDefinition(m_pages, *page, name);
        Rows rows(m_pages, table);
        while (rows.next()) {
            QVariantList values;
            for (const QString& column : columns)
                values += valueOf(rows, table, column);
            use(values);
        }
        // Access keeps the count of these tables carelessly: more rows than announced are no damage.
        if (rows.damagedRows() + rows.damagedPages() > 0 || rows.read() < qint64(table.rowCount))
            remark(u"La table interne « %1 » est incomplète."_s.arg(name));
    } catch (const Error& error) {
        remark(u"La table interne « %1 » est illisible : %2"_s.arg(name, error.description()));
    }
}

QList<Relation> AccessFile::relations(QStringList* unenforced)
{
    struct Part {
        int place;
        QPair<QString, QString> fields;
    };
    QMap<QString, QPair<Relation, QList<Part>>> found;
    QStringList order;
    forEachRow(u"MSysRelationships"_s,
               {u"szRelationship"_s, u"grbit"_s, u"icolumn"_s, u"szObject"_s, u"szColumn"_s, u"szReferencedObject"_s,
                u"szReferencedColumn"_s},
               [&](const QVariantList& row) {
                   const QString name = row[0].toString();
                   if (row[3].toString().startsWith(u"MSys") && row[5].toString().startsWith(u"MSys"))
                       return; // between tables of Access itself
                   const int flags = row[1].toInt();
                   if (flags & NotEnforced) {
                       if (unenforced && !unenforced->contains(name))
                           *unenforced += name;
                       return;
                   }
                   auto& [relation, parts] = found[nameKey(name)];
                   if (relation.Name.isEmpty())
                       order += nameKey(name);
                   relation.Name = name;
                   relation.Table = row[5].toString();
                   relation.ForeignTable = row[3].toString();
                   relation.UpdateCascade = flags & CascadeUpdates;
                   relation.DeleteCascade = flags & CascadeDeletes;
                   parts.append({row[2].toInt(), {row[6].toString(), row[4].toString()}});
               });
    QList<Relation> relations;
    for (const QString& key : order) {
        auto [relation, parts] = found.value(key);
        std::stable_sort(parts.begin(), parts.end(), [](const Part& a, const Part& b) { return a.place < b.place; });
        for (const Part& part : parts)
            relation.Fields.append(part.fields);
        relations.append(relation);
    }
    return relations;
}

QList<StoredQuery> AccessFile::queries()
{
    const auto text = [](const QVariant& value) { return value.toString().remove(QChar(u'\0')); };
    QHash<qint32, QList<QueryRow>> rows;
    for (const Query& query : m_queries)
        rows.insert(query.id, {});
    forEachRow(u"MSysQueries"_s,
               {u"ObjectId"_s, u"Attribute"_s, u"Flag"_s, u"Order"_s, u"Name1"_s, u"Name2"_s, u"Expression"_s},
               [&](const QVariantList& row) {
                   const auto known = rows.find(row[0].toInt());
                   if (known != rows.end())
                       known->append({row[1].toInt(), row[2].toInt(), row[3].toByteArray(), text(row[4]),
                                      text(row[5]), text(row[6])});
               });
    QList<StoredQuery> queries;
    for (const Query& query : m_queries)
        queries.append(storedQuery(query.name, rows.value(query.id)));
    return queries;
}

} // namespace jet::access
