#include "ProjectTables.h"

#include "jet/Database.h"
#include "jet/SqlText.h"

using namespace Qt::StringLiterals;

namespace {

using jet::DataType;

/// "t50 Nom": a letter for the type (c counter, t text with its width, m memo, l long, i integer, d
/// double, b yes/no, o long binary), "!" when required, then the name.
jet::Field fieldOf(const QString& definition)
{
    const qsizetype blank = definition.indexOf(u' ');
    const QString kind = definition.first(blank);
    const QString types = u"ctmlidbo"_s;
    constexpr DataType values[] = {DataType::Long,    DataType::Text,      DataType::Memo,
                                   DataType::Long,    DataType::Integer,   DataType::Double,
                                   DataType::Boolean, DataType::LongBinary};
    jet::Field field;
    field.Name = definition.sliced(blank + 1);
    field.Type = values[types.indexOf(kind.front())];
    field.AutoIncrement = kind.front() == u'c';
    field.Required = kind.endsWith(u'!');
    field.Size = kind.sliced(1).remove(u'!').toInt();
    return field;
}

/// "Nom: colonne, colonne", with "!" before the name of a unique one, "*" of the primary key.
jet::Index indexOf(const QString& definition)
{
    const QStringList parts = definition.split(u": "_s);
    jet::Index index;
    index.Primary = parts.front().startsWith(u'*');
    index.Unique = index.Primary || parts.front().startsWith(u'!');
    index.Name = QString(parts.front()).remove(u'!').remove(u'*');
    for (const QString& column : parts.back().split(u", "_s))
        index.Fields.append({column});
    return index;
}

void append(jet::Database& database, const QString& name, const QStringList& fields,
            const QStringList& indexes)
{
    jet::TableDef table;
    table.Name = name;
    for (const QString& field : fields)
        table.Fields += fieldOf(field);
    for (const QString& index : indexes)
        table.Indexes += indexOf(index);
    database.AppendTable(table);
}

const QStringList stamps{u"t30 DateCreate"_s, u"t30 DateModify"_s};

void appendCore(jet::Database& database)
{
    append(database, u"PGTableDefs"_s,
           {u"c ID Def"_s, u"t50! Type"_s, u"i Index"_s, u"t50! Table"_s, u"t255 Validation"_s,
            u"t50! NomModule"_s, u"t50 NomObjet"_s, u"t50 Version"_s, u"o Icon"_s, u"l Flags"_s,
            u"t255 TextHelp"_s, u"t50 ModuleConnexion"_s},
           {u"!Unique: Type, NomModule, Table"_s});
    append(
        database, u"Propriétés"_s,
        QStringList{u"c ID Prop"_s, u"t50 Objet"_s, u"t30 Module"_s, u"t100 Nom"_s, u"m Value"_s} +
            stamps,
        {u"*PrimaryKey: ID Prop"_s, u"!Unique: Objet, Module, Nom"_s});
    append(database, u"Collecteurs"_s,
           QStringList{u"c ID Collecteurs"_s, u"t255! Collecteur"_s, u"t50! Initiales"_s,
                       u"b Bot"_s, u"t30 Organisme"_s} +
               stamps,
           {u"*PrimaryKey: ID Collecteurs"_s, u"!Unique: Collecteur"_s});
    append(database, u"Localités"_s,
           QStringList{u"c ID Localités"_s, u"t255! Localité"_s, u"d! LongDD"_s, u"d! LatDD"_s,
                       u"d Altitude"_s, u"t255 CodeRegion"_s, u"t255 ImageRegion"_s,
                       u"t20 GPSRef"_s, u"l! ID Type"_s, u"t255 Nom Entier"_s} +
               stamps,
           {u"*PrimaryKey: ID Localités"_s, u"CodeRegion: CodeRegion"_s});
    append(
        database, u"Taxons"_s,
        QStringList{u"c ID Taxons"_s, u"t255! Taxon"_s, u"l ID Famille"_s, u"l ID Genre"_s,
                    u"l ID Espèce"_s, u"l ID Infra"_s, u"l ID Valid"_s, u"t255 Auteurs"_s,
                    u"t30 DateOriginal"_s, u"m Commentaire"_s, u"t255 Nom Complet"_s,
                    u"t255 AuteurSynonymie"_s, u"t30 DateSynonymie"_s} +
            stamps,
        {u"*PrimaryKey: ID Taxons"_s, u"!Unique: Nom Complet, Auteurs"_s, u"ID Genre: ID Genre"_s});
}

void appendModules(jet::Database& database)
{
    const QStringList common = QStringList{u"t50 KeyParent"_s, u"b Locked"_s} + stamps;
    append(database, u"Individus"_s,
           QStringList{u"c ID Individus"_s, u"t50 Numéro"_s, u"l ID Collecteurs"_s,
                       u"t30 DateRécolte"_s, u"l ID Localités"_s, u"d Longitude"_s, u"d Latitude"_s,
                       u"d Altitude"_s, u"m Habitat"_s, u"m Description"_s, u"t255 Herbier"_s,
                       u"l ID Déterminations"_s} +
               common,
           {u"*PrimaryKey: ID Individus"_s});
    const auto module = [&](const QString& name, const QStringList& fields) {
        append(database, name,
               QStringList{u"c ID "_s + name, u"l! ID Individus"_s} + fields + common,
               {u"*PrimaryKey: ID "_s + name, u"ID Individus: ID Individus"_s});
        jet::Relation relation;
        relation.Name = u"Individus"_s + name;
        relation.Table = u"Individus"_s;
        relation.ForeignTable = name;
        relation.Fields = {{u"ID Individus"_s, u"ID Individus"_s}};
        relation.DeleteCascade = true;
        database.AppendRelation(relation);
    };
    module(u"Déterminations"_s, {u"l! ID Taxons"_s, u"l ID Collecteurs"_s,
                                 u"t30 DateDétermination"_s, u"t50 Réserve"_s, u"m Commentaire"_s});
    module(u"Images"_s,
           {u"t255! Fichier"_s, u"t255 Légende"_s, u"l ID Collecteurs"_s, u"t30 DatePrise"_s});
    module(u"Mesures"_s, {u"t50 Méthode"_s, u"t255 Organes"_s, u"b Complet"_s, u"d Hauteur"_s,
                          u"d Diamètre"_s, u"l NombreMesures"_s, u"l ID Taxons"_s});
}

/// Families 1 and 2; genus 3 of family 1 with species 4 to 7, of which 7 has the subspecies 8 and 6
/// is a synonym of 5.
void fillReference(jet::Database& database)
{
    const QStringList taxa{u"\"Rosaceae\", 1, Null, Null, Null, Null, \"Juss.\""_s,
                           u"\"Poaceae\", 2, Null, Null, Null, Null, \"Barnhart\""_s,
                           u"\"Alchemilla\", 1, 3, Null, Null, Null, \"L.\""_s,
                           u"\"alpina\", 1, 3, 4, Null, Null, \"L.\""_s,
                           u"\" vulgaris \", 1, 3, 5, Null, Null, \"L.\""_s,
                           u"\"xanthochlora\", 1, 3, 6, Null, 5, \"Rothm.\""_s,
                           u"\"alba\", 1, 3, 7, Null, Null, \"L.\""_s,
                           u"\"var. alba\", 1, 3, 7, 8, Null, Null"_s};
    for (const QString& taxon : taxa)
        database.Execute(u"INSERT INTO Taxons (Taxon, [ID Famille], [ID Genre], [ID Espèce], [ID "
                         u"Infra], [ID Valid], "
                         u"Auteurs) VALUES (%1)"_s.arg(taxon));
    database.Execute(u"UPDATE Taxons SET [Nom Complet]=Trim$(Taxon) & \" \" & [ID Taxons]"_s);
    for (const QString& name : {u"Dupont"_s, u"Duval"_s, u"Vuillemin"_s, u"Zimmer"_s})
        database.Execute(
            u"INSERT INTO Collecteurs (Collecteur, Initiales, Bot) VALUES (\"%1\", \"%1\", True)"_s
                .arg(name));
    const QStringList places{u"\"Europe\", \"1\""_s,       u"\"Asie\", \"2\""_s,
                             u"\"Monde\", \"3\""_s,        u"\"France\", \"3/4\""_s,
                             u"\"Montagne\", \"3/7/5\""_s, u"\"Plaine\", \"1/6\""_s,
                             u"\"Alpes\", \"3/7\""_s};
    for (const QString& place : places)
        database.Execute(
            u"INSERT INTO Localités (Localité, CodeRegion, LongDD, LatDD, [ID Type]) VALUES (%1, 6.5, 45, 2)"_s
                .arg(place));
}

void insertAll(jet::Database& database, const QString& into, const QStringList& rows)
{
    for (const QString& row : rows)
        database.Execute(u"INSERT INTO %1 VALUES (%2)"_s.arg(into, row));
}

void fillDictionary(jet::Database& database)
{
    insertAll(database, u"PGTableDefs ([Type], [Table], [NomModule], [NomObjet], [Index])"_s,
              {u"'Addin', 'Individus', 'Individus', 'Individus', 0"_s,
               u"'Addin', 'Mesures', 'Mesures', 'Mesures', 3"_s,
               u"'Addin', 'Perdu', 'Perdu', 'Perdu', -1"_s,
               u"'TabEdit', 'ID Taxons', 'Déterminations', 'Taxon', 1"_s,
               u"'TabEdit', 'Réserve', 'Déterminations', 'Réserve', 2"_s,
               u"'TabEdit', 'Ancien', 'Mesures', 'Ancien', -1"_s});
    insertAll(database, u"Propriétés (Objet, Module, Nom)"_s,
              {u"'Requête', 'Individus', 'Toutes'"_s, u"'Base', 'Individus', 'Base'"_s,
               u"'Requête', 'Mesures', 'Arbres'"_s, u"'Modèle', 'Individus', 'Saisie'"_s,
               u"'Descripteur', 'Mesures', 'Méthode'"_s, u"'Descripteur', 'Images', 'Vue'"_s});
}

void fillModules(jet::Database& database)
{
    for (int n = 1; n <= 12; ++n) {
        const QString id = QString::number(n);
        const QString habitat = n % 5 == 0 ? u"Null"_s : u"'rocher %1'"_s.arg(n);
        insertAll(
            database,
            u"Individus ([Numéro], [ID Collecteurs], [DateRécolte], [ID Localités], Altitude, "
            u"Habitat, "
            u"[Description], Herbier, [ID Déterminations], DateCreate)"_s,
            {u"'N%1', %2, '%3/05/01', %4, %1*100, %5, 'fleur %6', 'MPU;P', %1, '2020/01/01'"_s.arg(
                id, QString::number(n % 4 + 1), n % 2 ? u"1999"_s : u"1887"_s,
                QString::number(n % 7 + 1), habitat, n % 3 ? u"jaune"_s : u"blanc \"pur\""_s)});
        insertAll(database,
                  u"Déterminations ([ID Individus], [ID Taxons], [DateDétermination], [Réserve])"_s,
                  {u"%1, %2, '2006/03/12', '%3'"_s.arg(id, QString::number(n % 4 + 4),
                                                       n % 4 ? u"cf."_s : u"aff."_s)});
        insertAll(database, u"Images ([ID Individus], Fichier, KeyParent)"_s,
                  {u"%1, '%1.jpg', '%2-Déterminations'"_s.arg(id, QString::number(n * 2))});
        insertAll(database,
                  u"Mesures ([ID Individus], [Méthode], Organes, Hauteur, [Diamètre], [ID Taxons], "
                  u"KeyParent, "
                  u"Locked, Complet)"_s,
                  {u"%1, '%2', 'tronc;%3', %1.5, 41, 4, '1-Déterminations', %4, %5"_s.arg(
                      id, n % 2 ? u"Échantillon de bois"_s : u"Planche d''herbier"_s,
                      n % 3 ? u"bois"_s : u"feuille"_s, n == 4 ? u"True"_s : u"False"_s,
                      n == 7 ? u"True"_s : u"False"_s)});
    }
    insertAll(database, u"Déterminations ([ID Individus], [ID Taxons])"_s, {u"1, 5"_s});
    database.Execute(
        u"UPDATE Collecteurs SET Organisme=\"Muséum d'histoire naturelle\" WHERE Collecteur='Duval'"_s);
}

} // namespace

void makeProjectTables(jet::Database& database)
{
    jet::Operation operation(database, u"Tables d'essai"_s);
    appendCore(database);
    appendModules(database);
    fillDictionary(database);
    fillReference(database);
    fillModules(database);
    operation.commit();
}
