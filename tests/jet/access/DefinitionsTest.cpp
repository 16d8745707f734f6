// Definitions, relations, stored queries and properties of Access files.
#include "Samples.h"
#include "jet/access/AccessFile.h"

using namespace Qt::StringLiterals;
using namespace jet::access;

namespace {

jet::TableDef tableDef(AccessFile& file, const QString& name)
{
    for (const TableEntry& entry : file.tables()) {
        if (entry.name == name)
            return AccessFile::tableDef(file.pages(), file.definition(entry), file.propertiesOf(name));
    }
    ADD_FAILURE() << "no table " << name.toStdString();
    return {};
}

/// "Name(A,-B) PUNR": descending columns with a minus; primary, unique, ignores nulls, required.
QString shown(const jet::Index& index)
{
    QStringList columns;
    for (const jet::IndexField& field : index.Fields)
        columns << (field.Descending ? u"-"_s : QString()) + field.Name;
    QString flags;
    flags += index.Primary ? u"P"_s : QString();
    flags += index.Unique ? u"U"_s : QString();
    flags += index.IgnoreNulls ? u"N"_s : QString();
    flags += index.Required ? u"R"_s : QString();
    return index.Name + u'(' + columns.join(u',') + u") "_s + flags;
}

/// "Name Type Size flags": required, empty text allowed, AutoNumber; then default and rule where there are any.
QString shown(const jet::Field& field)
{
    QString flags;
    flags += field.Required ? u"R"_s : QString();
    flags += field.AllowZeroLength ? u"Z"_s : QString();
    flags += field.AutoIncrement ? u"A"_s : QString();
    return u"%1 %2 %3 %4"_s.arg(field.Name, QString::number(int(field.Type)), QString::number(field.Size), flags)
           + (field.DefaultValue.isEmpty() ? QString() : u" ="_s + field.DefaultValue)
           + (field.ValidationRule.isEmpty() ? QString() : u" ?"_s + field.ValidationRule);
}

QStringList indexes(const QString& sample, const QString& table)
{
    AccessFile file(samples::path(sample));
    QStringList texts;
    for (const jet::Index& index : tableDef(file, table).Indexes)
        texts << shown(index);
    return texts;
}

struct IndexCase {
    QString sample, table;
    QStringList indexes;
};

} // namespace

TEST(AccessDefinitions, GiveIndexesWithTheirColumnsAndFlags)
{
    const QList<IndexCase> cases{
        {u"testIndexPropertiesV2000.mdb"_s, u"TableIgnoreNulls2"_s, {u"DataIndex(data1,data2) N"_s, u"PrimaryKey(row) PU"_s}},
        {u"testIndexPropertiesV2000.mdb"_s, u"TableUnique2_temp"_s, {u"DataIndex(data1,data2) U"_s, u"PrimaryKey(row) PU"_s}},
        {u"indexTestV2000.mdb"_s, u"Table1"_s, {u"id(id) "_s, u"PrimaryKey(id) PU"_s}},
        {u"indexTestV2010.accdb"_s, u"Table1"_s, {u"id(id) "_s, u"PrimaryKey(id) PU"_s}},
        {u"compIndexTestV2000.mdb"_s, u"Table1"_s, {u"CD_AGENTE(-CD_AGENTE) "_s}},
        {u"testV1997.mdb"_s, u"Table2"_s, {u"column10(column10) "_s, u"column14(column14) "_s, u"column75(column75) "_s,
                                          u"id(column1) "_s, u"PrimaryKey(column1) PU"_s}},
        {u"ancien-projet.hbx"_s, u"PGTableDefs"_s, {u"Unique(Type,NomModule,Table) UN"_s}},
    };
    for (const IndexCase& one : cases)
        EXPECT_EQ(indexes(one.sample, one.table).join(u'|').toStdString(), one.indexes.join(u'|').toStdString())
            << one.sample.toStdString() << " " << one.table.toStdString();
}

TEST(AccessDefinitions, GiveFieldsWithTheirRules)
{
    AccessFile file(samples::path(u"ancien-projet.hbx"_s));
    const jet::TableDef table = tableDef(file, u"PGTableDefs"_s);
    EXPECT_EQ(shown(table.Fields[0]).toStdString(), "ID Def 4 0 A");
    EXPECT_EQ(shown(table.Fields[1]).toStdString(), "Type 10 50 R");
    EXPECT_EQ(shown(table.Fields[2]).toStdString(), "Index 3 0 R");
    EXPECT_EQ(shown(table.Fields[4]).toStdString(), "Validation 10 255 Z");
    EXPECT_EQ(shown(table.Fields[8]).toStdString(), "Icon 11 0 ");
    AccessFile old(samples::path(u"testV1997.mdb"_s));
    EXPECT_EQ(shown(*tableDef(old, u"Table4"_s).field(u"data")).toStdString(), "data 15 0  =GenGUID()");
}

TEST(AccessDefinitions, GiveRelationsWithTheirCascades)
{
    QStringList texts;
    for (const QString& sample : {u"ancien-projet.hbx"_s, u"indexTestV2000.mdb"_s}) {
        AccessFile file(samples::path(sample));
        for (const jet::Relation& relation : file.relations())
            texts << u"%1: %2.%3 -> %4.%5"_s.arg(relation.Name, relation.ForeignTable, relation.Fields[0].second,
                                                 relation.Table, relation.Fields[0].first)
                         + (relation.DeleteCascade ? u" D"_s : QString()) + (relation.UpdateCascade ? u" U"_s : QString());
    }
    EXPECT_EQ(texts.join(u'\n').toStdString(), "Déterminations: Déterminations.ID Individus -> Individus.ID Individus D\n"
                                               "Images: Images.ID Individus -> Individus.ID Individus D\n"
                                               "Mesures: Mesures.ID Individus -> Individus.ID Individus D\n"
                                               "Table2Table1: Table1.otherfk1 -> Table2.id D\n"
                                               "Table3Table1: Table1.otherfk2 -> Table3.id U");
}

TEST(AccessDefinitions, PutStoredQueriesTogether)
{
    AccessFile file(samples::path(u"queryTestV2000.mdb"_s));
    QHash<QString, StoredQuery> queries;
    for (const StoredQuery& query : file.queries())
        queries.insert(query.name, query);
    const QList<std::pair<QString, QString>> understood{
        {u"SelectQuery"_s, u"SELECT DISTINCT Table1.*, Table2.col1, Table2.col2, Table3.col3 FROM ([Table1] LEFT JOIN "
                           "[Table3] ON Table1.col1 = Table3.col1) INNER JOIN [Table2] ON (Table3.col1 = Table2.col1) AND "
                           "(Table3.col1 = Table2.col2) WHERE (((Table2.col2)=\"foo\" Or (Table2.col2) In (\"buzz\",\"bazz\"))) "
                           "ORDER BY Table2.col1"_s},
        {u"AppendQuery"_s, u"INSERT INTO [Table3] ([col2], [col2], [col3]) SELECT [Table1].[col2], [Table2].[col2], "
                           "[Table2].[col3] FROM [Table3], [Table1] INNER JOIN [Table2] ON [Table1].[col1]=[Table2].[col1]"_s},
        {u"DeleteQuery"_s, u"DELETE * FROM [Table1] WHERE (((Table1.col1)>\"blah\"))"_s},
    };
    for (const auto& [name, sql] : understood) {
        EXPECT_EQ(queries.value(name).sql.toStdString(), sql.toStdString());
        EXPECT_EQ(queries.value(name).problem.toStdString(), "") << name.toStdString();
    }
    EXPECT_EQ(queries.value(u"UpdateQuery"_s).problem.toStdString(), "");
    EXPECT_TRUE(queries.value(u"UnionQuery"_s).sql.contains(u" UNION ALL Select Table3.col1"_s));
    for (const QString& name : {u"MakeTableQuery"_s, u"CrosstabQuery"_s, u"PassthroughQuery"_s, u"DataDefinitionQuery"_s}) {
        EXPECT_FALSE(queries.value(name).problem.isEmpty()) << name.toStdString();
        EXPECT_FALSE(queries.value(name).sql.isEmpty()) << name.toStdString();
    }
}

TEST(AccessDefinitions, NestJoinsWhoseListNamesTheRightTableFirst)
{
    const QList<QueryRow> rows{{5, 0, {}, u"A"_s, {}, {}}, {5, 0, {}, u"B"_s, {}, {}}, {5, 0, {}, u"C"_s, u"D"_s, {}},
                               {6, 0, {}, {}, {}, u"A.x"_s}, {7, 1, {}, u"B"_s, u"D"_s, u"B.x=D.x"_s},
                               {7, 3, {}, u"B"_s, u"A"_s, u"A.x=B.x"_s}};
    const StoredQuery query = storedQuery(u"q"_s, rows);
    EXPECT_EQ(query.sql.toStdString(), "SELECT A.x FROM ([B] INNER JOIN [C] AS [D] ON B.x=D.x) RIGHT JOIN [A] ON A.x=B.x");
    EXPECT_EQ(query.problem.toStdString(), "");
    QList<QueryRow> circle = rows;
    circle.append({7, 1, {}, u"A"_s, u"D"_s, u"A.y=D.y"_s});
    EXPECT_TRUE(storedQuery(u"q"_s, circle).problem.contains(u"A.y=D.y"_s));
}

TEST(AccessDefinitions, GivePropertiesOfTheDatabaseAndNamesOfOtherObjects)
{
    AccessFile file(samples::path(u"indexTestV2000.mdb"_s));
    EXPECT_EQ(file.databaseProperties().value(u"AccessVersion"_s), u"08.50"_s);
    AccessFile queries(samples::path(u"queryTestV2000.mdb"_s));
    EXPECT_TRUE(queries.otherObjects().isEmpty());
}
