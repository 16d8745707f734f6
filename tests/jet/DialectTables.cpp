#include "DialectTables.h"

using namespace Qt::StringLiterals;
using jet::DataType;
using jet::quoted;

namespace {

const QStringList kinds{u"auto"_s,   u"text"_s, u"memo"_s, u"long"_s,
                        u"double"_s, u"bool"_s, u"date"_s, u"blob"_s};
constexpr DataType types[] = {DataType::Long, DataType::Text,      DataType::Memo,
                              DataType::Long, DataType::Double,    DataType::Boolean,
                              DataType::Date, DataType::LongBinary};
const QStringList storeTypes{
    u"INTEGER PRIMARY KEY"_s,        u"TEXT"_s, u"TEXT"_s, u"INTEGER"_s, u"REAL"_s,
    u"INTEGER NOT NULL DEFAULT 0"_s, u"REAL"_s, u"BLOB"_s};

QString keyColumn(const jet::TableDef& table, const QString& name)
{
    return isText(table.field(name)->Type) ? u"jet_key("_s + quoted(name) + u')' : quoted(name);
}

} // namespace

DialectTables::DialectTables()
{
    m_store.open(m_folder.filePath(u"dialecte.hbx"_s), true, false);
    m_store.run(u"BEGIN"_s);
    table(u"Taxons"_s,
          {u"auto ID Taxons"_s, u"text Taxon"_s, u"long ID Genre"_s, u"long ID Espèce"_s,
           u"long ID Valid"_s, u"text Auteurs"_s, u"text Nom Complet"_s, u"memo Commentaire"_s,
           u"text DateModify"_s},
          {u"!Unique: Nom Complet, Auteurs"_s});
    table(u"Individus"_s,
          {u"auto ID Individus"_s, u"text Numéro"_s, u"long ID Collecteurs"_s, u"double Altitude"_s,
           u"memo Habitat"_s, u"text KeyParent"_s, u"date Vu"_s, u"text DateModify"_s,
           u"bool Locked"_s},
          {u"ID Collecteurs: ID Collecteurs"_s});
    table(u"Collecteurs"_s, {u"auto ID Collecteurs"_s, u"text Collecteur"_s, u"bool Bot"_s},
          {u"!Unique: Collecteur"_s});
    table(u"Déterminations"_s,
          {u"auto ID Déterminations"_s, u"long ID Individus"_s, u"long ID Taxons"_s,
           u"text KeyParent"_s, u"text DateModify"_s, u"bool Locked"_s},
          {u"ID Individus: ID Individus"_s, u"ID Taxons: ID Taxons"_s});
    table(u"Images"_s,
          {u"auto ID Images"_s, u"long ID Individus"_s, u"text Fichier"_s, u"long Taille"_s},
          {u"ID Individus: ID Individus"_s});
    table(u"Divers"_s,
          {u"long Numéro"_s, u"text Nom"_s, u"double Réel"_s, u"bool Oui"_s, u"date Jour"_s,
           u"memo Note"_s, u"blob Octets"_s},
          {});
    const auto store = [&](const QString& name, const QString& text) {
        schema.put(jet::QueryDef{name, text, {}, {}});
    };
    store(u"N_Images"_s,
          u"SELECT Individus.[ID Individus], Count(Images.[ID Images]) AS [N] FROM Individus LEFT "
          u"JOIN Images ON "
          "Individus.[ID Individus] = Images.[ID Individus] GROUP BY Individus.[ID Individus]"_s);
    store(
        u"N_Taille"_s,
        u"SELECT [ID Individus], Count(*) AS [N] FROM Images WHERE Taille > 10 OR Taille < 0 GROUP BY [ID Individus]"_s);
    store(u"Alpines"_s,
          u"SELECT [ID Taxons], [Nom Complet] AS Nom FROM Taxons WHERE Taxon = \"alpina\""_s);
    store(u"Ronde"_s, u"SELECT * FROM Ronde2"_s);
    store(u"Ronde2"_s, u"SELECT * FROM Ronde"_s);
    fill();
    m_store.run(u"COMMIT"_s);
}

void DialectTables::table(const QString& name, const QStringList& fields,
                          const QStringList& indexes)
{
    jet::TableDef table;
    table.Name = name;
    QStringList columns;
    for (const QString& field : fields) {
        const int kind = int(kinds.indexOf(field.section(u' ', 0, 0)));
        jet::Field definition;
        definition.Name = field.section(u' ', 1);
        definition.Type = types[kind];
        definition.AutoIncrement = kind == 0;
        table.Fields.append(definition);
        columns.append(quoted(definition.Name) + u' ' + storeTypes[kind]);
    }
    if (table.hasHiddenRowId())
        columns.prepend(u"\"_rid\" INTEGER PRIMARY KEY"_s);
    m_store.run(u"CREATE TABLE "_s + quoted(name) + u" ("_s + columns.join(u", "_s) +
                u") STRICT"_s);
    for (const QString& text : indexes) {
        jet::Index index;
        index.Unique = text.startsWith(u'!');
        index.Name = text.section(u": "_s, 0, 0).remove(u'!');
        QStringList keys;
        for (const QString& column : text.section(u": "_s, 1).split(u", "_s)) {
            index.Fields.append(jet::IndexField{column});
            keys.append(keyColumn(table, column));
        }
        table.Indexes.append(index);
        m_store.run((index.Unique ? u"CREATE UNIQUE INDEX "_s : u"CREATE INDEX "_s) +
                    quoted(name + u'.' + index.Name) + u" ON "_s + quoted(name) + u" ("_s +
                    keys.join(u", "_s) + u')');
    }
    schema.put(table);
}

// The genera 1 and 5 with species; two plants of one collector, one plant without anything.
void DialectTables::fill()
{
    m_store.run(uR"(
INSERT INTO "Taxons" ("ID Taxons", "Taxon", "ID Genre", "ID Espèce", "ID Valid", "Auteurs", "Nom Complet") VALUES
 (1, 'Alchemilla', 1, NULL, NULL, 'L.', 'Alchemilla'), (2, 'alpina', 1, 2, NULL, 'L.', 'Alchemilla alpina'),
 (3, 'vulgaris', 1, 3, 2, 'L.', 'Alchemilla vulgaris'), (4, 'glabra', 1, 4, 99, NULL, 'Alchemilla glabra'),
 (5, 'Érica', 5, NULL, NULL, 'L.', 'Érica'), (6, 'carnea', 5, 6, NULL, 'L.', 'ERICA carnea');
INSERT INTO "Collecteurs" VALUES (1, 'Dupont', -1), (2, 'Durand', 0), (3, 'dupré', -1);
INSERT INTO "Individus" ("ID Individus", "Numéro", "ID Collecteurs", "Altitude", "Habitat", "KeyParent", "Locked") VALUES
 (1, 'A1', 1, 100, 'sec;mouillé', '2-Déterminations', 0), (2, 'A2', 1, 250.5, 'sec', NULL, -1),
 (3, 'b3', 2, NULL, 'secondaire', '77-Déterminations', 0), (4, NULL, NULL, 1200, NULL, NULL, 0);
INSERT INTO "Déterminations" ("ID Déterminations", "ID Individus", "ID Taxons", "KeyParent") VALUES
 (1, 1, 2, NULL), (2, 1, 3, '1-Individus'), (3, 2, 2, NULL), (4, 3, 6, NULL);
INSERT INTO "Images" VALUES (1, 1, 'a.jpg', 5), (2, 1, 'b.jpg', 50), (3, 1, 'c.jpg', 60), (4, 3, 'd.jpg', 20);
INSERT INTO "Divers" ("Numéro", "Nom", "Réel", "Oui", "Jour", "Note") VALUES
 (1, 'abc', 1.5, -1, 36526.0, 'x'), (2, 'ABC ', 2.5, 0, NULL, NULL), (3, 'été', -3, -1, 36527.5, ''),
 (4, NULL, NULL, 0, NULL, NULL), (5, 'ete', 0, 0, NULL, 'y');
)"_s);
}

jet::Compiled DialectTables::compile(const QString& statement) const
{
    return jet::compile(jet::sql::parseStatement(statement), schema);
}

jet::CompiledQuery DialectTables::query(const QString& statement) const
{
    return std::get<jet::CompiledQuery>(compile(statement));
}

QString DialectTables::sql(const QString& statement) const
{
    const jet::Compiled compiled = compile(statement);
    if (const auto* action = std::get_if<jet::CompiledAction>(&compiled))
        return action->steps.join(u"; "_s);
    return std::get<jet::CompiledQuery>(compiled).sql;
}

QStringList DialectTables::storeRows(const QString& sql, const QVariantList& values, int from)
{
    jet::Statement statement(m_store, sql);
    for (int i = 0; i < values.size(); ++i)
        statement.bind(i + 1, values[i]);
    QStringList rows;
    while (statement.step()) {
        QStringList cells;
        for (int c = from; c < statement.columns(); ++c)
            cells.append(statement.isNull(c) ? u"Null"_s : statement.text(c));
        rows.append(cells.join(u'|'));
    }
    return rows;
}

QStringList DialectTables::rows(const jet::CompiledQuery& query)
{
    return storeRows(query.sql, {}, int(query.sources.size()));
}

QString DialectTables::plan(const QString& sql)
{
    QStringList steps;
    for (const QString& row : storeRows(u"EXPLAIN QUERY PLAN "_s + sql))
        steps.append(row.section(u'|', 3));
    return steps.join(u"; "_s);
}

int DialectTables::execute(const QString& statement)
{
    const auto action = std::get<jet::CompiledAction>(compile(statement));
    int changed = 0;
    for (int i = 0; i < action.steps.size(); ++i) {
        m_store.run(action.steps[i]);
        if (i == action.counted)
            changed = int(m_store.changes());
    }
    return changed;
}

void DialectTables::rollback()
{
    m_store.run(u"ROLLBACK TO one; RELEASE one"_s);
}
