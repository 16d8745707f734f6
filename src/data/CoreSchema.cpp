#include "data/CoreSchema.h"

namespace data {

using namespace Qt::StringLiterals;
using jet::DataType;
using jet::Field;
using jet::Index;
using jet::TableDef;

namespace {

// Widths of the reference columns that are no plain names.
constexpr int widthName = 255;
constexpr int widthDate = 30;

Field counter(const QString& name)
{
    return {.Name = name, .Type = DataType::Long, .AutoIncrement = true};
}

Field text(const QString& name, int size, bool required = false)
{
    return {.Name = name, .Type = DataType::Text, .Size = size, .Required = required};
}

Field emptyText(const QString& name, int size)
{
    return {.Name = name, .Type = DataType::Text, .Size = size, .AllowZeroLength = true};
}

Field number(const QString& name, DataType type, bool required = false)
{
    return {.Name = name, .Type = type, .Required = required};
}

QList<Field> stamps()
{
    return {text(u"DateCreate"_s, widthDate), text(u"DateModify"_s, widthDate)};
}

Index primary(const QString& column)
{
    return {.Name = u"PrimaryKey"_s, .Fields = {{column}}, .Primary = true, .Unique = true};
}

Index unique(const QString& name, const QStringList& columns, bool ignoreNulls = false)
{
    Index index{.Name = name, .Unique = true, .IgnoreNulls = ignoreNulls};
    for (const QString& column : columns)
        index.Fields.append({column});
    return index;
}

TableDef dictionaryTable()
{
    Field type = text(u"Type"_s, 50, true);
    type.DefaultValue = u"\"TabEdit\""_s;
    Field index = number(u"Index"_s, DataType::Integer, true);
    index.DefaultValue = u"2"_s;
    Field module = text(u"NomModule"_s, 50, true);
    module.DefaultValue = u"\"Individus\""_s;
    Field flags = number(u"Flags"_s, DataType::Long);
    flags.DefaultValue = u"2"_s;

    TableDef table{.Name = u"PGTableDefs"_s};
    table.Fields = {counter(u"ID Def"_s),
                    type,
                    index,
                    text(u"Table"_s, 50, true),
                    emptyText(u"Validation"_s, 255),
                    module,
                    text(u"NomObjet"_s, 50),
                    emptyText(u"Version"_s, 50),
                    number(u"Icon"_s, DataType::LongBinary),
                    flags,
                    emptyText(u"TextHelp"_s, 255),
                    emptyText(u"ModuleConnexion"_s, 50)};
    table.Indexes = {unique(u"Unique"_s, {u"Type"_s, u"NomModule"_s, u"Table"_s}, true)};
    return table;
}

TableDef propertiesTable()
{
    TableDef table{.Name = u"Propriétés"_s};
    table.Fields = {counter(u"ID Prop"_s),
                    text(u"Objet"_s, 50),
                    text(u"Module"_s, 30),
                    text(u"Nom"_s, 100),
                    {.Name = u"Value"_s, .Type = DataType::Memo, .AllowZeroLength = true}};
    table.Fields += stamps();
    table.Indexes = {primary(u"ID Prop"_s),
                     unique(u"Unique"_s, {u"Objet"_s, u"Module"_s, u"Nom"_s})};
    return table;
}

TableDef collectorsTable()
{
    Field botanist = number(u"Bot"_s, DataType::Boolean, true);
    botanist.DefaultValue = u"True"_s;
    TableDef table{.Name = u"Collecteurs"_s};
    table.Fields = {counter(u"ID Collecteurs"_s), text(u"Collecteur"_s, widthName, true),
                    text(u"Initiales"_s, 50, true), botanist, text(u"Organisme"_s, 30)};
    table.Fields += stamps();
    table.Indexes = {primary(u"ID Collecteurs"_s), unique(u"Unique"_s, {u"Collecteur"_s})};
    return table;
}

TableDef localitiesTable()
{
    Field type = number(u"ID Type"_s, DataType::Long, true);
    type.DefaultValue = u"2"_s;
    TableDef table{.Name = u"Localités"_s};
    table.Fields = {counter(u"ID Localités"_s),
                    text(u"Localité"_s, widthName, true),
                    number(u"LongDD"_s, DataType::Double, true),
                    number(u"LatDD"_s, DataType::Double, true),
                    number(u"Altitude"_s, DataType::Double),
                    text(u"CodeRegion"_s, jet::defaultTextSize),
                    text(u"ImageRegion"_s, jet::defaultTextSize),
                    text(u"GPSRef"_s, 20),
                    number(u"SizeLongDD"_s, DataType::Double),
                    number(u"SizeLatDD"_s, DataType::Double),
                    type,
                    number(u"XOrigine"_s, DataType::Double),
                    number(u"YOrigine"_s, DataType::Double),
                    number(u"Largeur"_s, DataType::Double),
                    number(u"Longueur"_s, DataType::Double),
                    text(u"Nom Entier"_s, jet::defaultTextSize)};
    table.Fields += stamps();
    table.Indexes = {primary(u"ID Localités"_s),
                     unique(u"ImageRegion"_s, {u"ImageRegion"_s}, true),
                     // Listings walk the path codes and the names.
                     {.Name = u"CodeRegion"_s, .Fields = {{u"CodeRegion"_s}}},
                     {.Name = u"Localité"_s, .Fields = {{u"Localité"_s}}}};
    return table;
}

TableDef taxaTable()
{
    TableDef table{.Name = u"Taxons"_s};
    table.Fields = {counter(u"ID Taxons"_s), text(u"Taxon"_s, widthName, true)};
    const QStringList links{u"ID Famille"_s, u"ID Genre"_s, u"ID Espèce"_s, u"ID Infra"_s,
                            u"ID Valid"_s};
    for (const QString& name : links)
        table.Fields << number(name, DataType::Long);
    table.Fields += {text(u"Auteurs"_s, widthName),
                     text(u"DateOriginal"_s, widthDate),
                     text(u"TypeSpecimen"_s, widthName),
                     number(u"Commentaire"_s, DataType::Memo),
                     text(u"Nom Complet"_s, widthName),
                     text(u"AuteurSynonymie"_s, widthName),
                     text(u"DateSynonymie"_s, widthDate),
                     number(u"CommentSynonymie"_s, DataType::Memo)};
    table.Fields += stamps();
    table.Indexes = {primary(u"ID Taxons"_s),
                     unique(u"Unique"_s, {u"Nom Complet"_s, u"Auteurs"_s}, true)};
    // A subtree is the rows that carry its root in the root's rank column, so each is searched often.
    for (const QString& name : links)
        table.Indexes.append({.Name = name, .Fields = {{name}}});
    return table;
}

void ensure(jet::Database& database, const TableDef& table)
{
    if (!database.schema().table(table.Name))
        database.AppendTable(table);
}

} // namespace

void ensureDictionary(jet::Database& database)
{
    ensure(database, dictionaryTable());
}

void ensureProperties(jet::Database& database)
{
    ensure(database, propertiesTable());
}

void ensureCollectors(jet::Database& database)
{
    ensure(database, collectorsTable());
}

void ensureLocalities(jet::Database& database)
{
    ensure(database, localitiesTable());
}

void ensureTaxa(jet::Database& database)
{
    ensure(database, taxaTable());
}

QList<TableDef> coreTables()
{
    return {dictionaryTable(), propertiesTable(), collectorsTable(), localitiesTable(), taxaTable()};
}

} // namespace data
