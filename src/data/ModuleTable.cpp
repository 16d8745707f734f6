#include "data/ModuleTable.h"

#include "data/FieldType.h"

#include <QLoggingCategory>

namespace data {

using namespace Qt::StringLiterals;
using jet::DataType;

namespace {

Q_LOGGING_CATEGORY(dataLog, "herbora.data")

constexpr int tableExists = 3010;

/// What an existing column, index or relation answers; anything else (a full disk, a read-only file) ends
/// the build.
bool isAlreadyThere(int number)
{
    static const QList<int> numbers{3010, 3012, 3191, 3219, 3284, 3367, 3375, 3380, 3609, 3368, 3379, 3409, 3314};
    return numbers.contains(number);
}

/// One build of one module table.
class Builder {
public:
    Builder(jet::Database& database, const ModuleRecord& module, platform::Dialogues& dialogues)
        : m_database(database), m_module(module), m_dialogues(dialogues)
    {
    }

    bool build();

private:
    jet::TableDef wanted() const;
    void add(jet::TableDef& table, const jet::Field& field) const;
    bool ensureTable(const jet::TableDef& table);
    bool createTable(const jet::TableDef& table);
    void completeTable(const jet::TableDef& table);
    void ensureRelation();
    QList<jet::Index> wantedIndexes() const;
    bool ensureIndexes();
    bool reportIndex(const jet::Database::IndexFailure& failure);
    void critical(const QStringList& lines);

    jet::Database& m_database;
    const ModuleRecord& m_module;
    platform::Dialogues& m_dialogues;
};

/// A column of that name may come twice (a field named like a standard column): the first stays.
void Builder::add(jet::TableDef& table, const jet::Field& field) const
{
    if (!table.field(field.Name))
        table.Fields.append(field);
}

jet::TableDef Builder::wanted() const
{
    jet::TableDef table{.Name = m_module.name};
    add(table, {.Name = m_module.idColumn(), .Type = DataType::Long, .AutoIncrement = true});
    for (const FieldRecord& field : m_module.fields) {
        std::optional<jet::Field> column = columnOfType(field.type, field.column);
        if (!column)
            continue;
        column->Required = field.required();
        column->ValidationRule = field.rule;
        column->ValidationText = field.ruleText;
        add(table, *column);
    }
    if (!m_module.isIndividus())
        add(table, {.Name = u"ID Individus"_s, .Type = DataType::Long, .Required = true});
    add(table, {.Name = u"KeyParent"_s, .Type = DataType::Text, .Size = 50});
    add(table, {.Name = u"DateCreate"_s, .Type = DataType::Text, .Size = 30});
    add(table, {.Name = u"DateModify"_s, .Type = DataType::Text, .Size = 30});
    add(table, {.Name = u"Locked"_s, .Type = DataType::Boolean, .DefaultValue = u"False"_s});
    return table;
}

void Builder::critical(const QStringList& lines)
{
    m_dialogues.tell(lines.join(u'\n'), u"Herbora"_s, platform::BoxIcon::Stop);
}

bool Builder::createTable(const jet::TableDef& table)
{
    try {
        m_database.AppendTable(table);
    } catch (const jet::Error& error) {
        if (error.number() == tableExists)
            return true;
        if (error.number() == 3027 || error.number() == 3026)
            throw; // a read-only file, a full disk: said once by the opening itself
        critical({u"ERREUR Critique < Création de la base des données > - N° "_s
                      + QString::number(error.number()) + u" "_s + error.description(),
                  u"Impossible d'ouvrir le module "_s + m_module.name});
        return false;
    }
    return true;
}

/// What the table has already is left as it is; a column that cannot be added is passed over.
void Builder::completeTable(const jet::TableDef& table)
{
    for (const jet::Field& field : table.Fields) {
        const jet::TableDef* now = m_database.schema().table(m_module.name);
        if (!now || now->field(field.Name))
            continue;
        try {
            m_database.AppendField(m_module.name, field);
        } catch (const jet::Error& error) {
            qCWarning(dataLog).noquote() << m_module.name << field.Name << error.description();
            if (!isAlreadyThere(error.number()))
                throw;
        }
    }
}

bool Builder::ensureTable(const jet::TableDef& table)
{
    if (!m_database.schema().table(m_module.name)) {
        if (!createTable(table))
            return false;
    } else {
        completeTable(table);
    }
    const jet::TableDef* made = m_database.schema().table(m_module.name);
    if (made && made->field(m_module.idColumn()))
        return true;
    critical({u"ERREUR Critique < Création des Champs > : Le champ Index est introuvable dans la base de données !"_s,
              jet::describe(3265, m_module.idColumn()),
              u"Impossible d'ouvrir le module "_s + m_module.name});
    return false;
}

void Builder::ensureRelation()
{
    if (m_module.isIndividus() || m_database.schema().relation(m_module.name))
        return;
    jet::Relation relation;
    relation.Name = m_module.name;
    relation.Table = moduleIndividus;
    relation.ForeignTable = m_module.name;
    relation.Fields = {{u"ID Individus"_s, u"ID Individus"_s}};
    relation.DeleteCascade = true;
    try {
        m_database.AppendRelation(relation);
    } catch (const jet::Error& error) {
        qCWarning(dataLog).noquote() << "relation" << m_module.name << error.description();
        if (!isAlreadyThere(error.number()))
            throw;
    }
}

QList<jet::Index> Builder::wantedIndexes() const
{
    const jet::TableDef* table = m_database.schema().table(m_module.name);
    QList<jet::Index> indexes;
    indexes.append({.Name = u"PrimaryKey"_s, .Fields = {{m_module.idColumn()}}, .Primary = true, .Unique = true});

    jet::Index mixed{.Name = u"MixUnique"_s, .Unique = true};
    for (const QString& column : m_module.combinedKey()) {
        if (table->field(column))
            mixed.Fields.append({column});
    }
    if (!mixed.Fields.isEmpty())
        indexes.append(mixed);
    if (m_module.individuUnique())
        indexes.append({.Name = u"IndividuUnique"_s, .Fields = {{u"ID Individus"_s}}, .Unique = true});
    for (const FieldRecord& field : m_module.fields) {
        if (field.unique() && table->field(field.column))
            indexes.append({.Name = field.column, .Fields = {{field.column}}, .Unique = true});
    }
    // The parent key is searched by every deletion and repair; the reference columns by every
    // query on a name. These indexes carry no rule.
    const QString search = u"Recherche "_s;
    indexes.append({.Name = search + u"KeyParent"_s, .Fields = {{u"KeyParent"_s}}});
    for (const FieldRecord& field : m_module.fields) {
        const bool reference = field.type == Botaniste || field.type == Localité
                               || field.type == Taxon || field.type == LienCourant;
        if (reference && !field.unique() && table->field(field.column))
            indexes.append({.Name = search + field.column, .Fields = {{field.column}}});
    }
    return indexes;
}

/// True when the module may stay open without that index.
bool Builder::reportIndex(const jet::Database::IndexFailure& failure)
{
    const QString number = QString::number(failure.number) + u" "_s + failure.description;
    if (failure.index == u"PrimaryKey"_s) {
        critical({u"ERREUR Critique < Création de l'Index Primaire > N° : "_s + number,
                  u"Impossible d'ouvrir le module "_s + m_module.name});
        return false;
    }
    if (failure.index == u"MixUnique"_s) {
        critical({u"ERREUR Non Critique < Création d'une clef Mixteunique pour le module > "_s + m_module.name,
                  u"N° : "_s + number,
                  u"Impossible de charger l'index Combinaison Unique définie dans le module. "
                  "Vérifiez la cohérence de la Clef Mixte Unique pour le module "_s + m_module.name,
                  u"-> La Clef Mixte Unique est désactivée pour ce module"_s});
        return true;
    }
    if (failure.index == u"IndividuUnique"_s) {
        critical({u"ERREUR Non Critique < Création d'une règle d'unicité pour le champ > "_s,
                  u"N° : "_s + number,
                  u"Un seul enregistrement pour chaque individu ! "_s,
                  u"Impossible de charger l'index 'IndividuUnique'. "
                  "Vérifiez la pertinence de cet index vis-à-vis des données."_s,
                  u"-> Cet index unique est actuellement désactivé."_s});
        return true;
    }
    if (failure.index.startsWith(u"Recherche "_s)) {
        qCWarning(dataLog).noquote() << m_module.name << failure.index << failure.description;
        return true;
    }
    critical({u"ERREUR Non Critique < Création d'une règle d'unicité pour un champ > "_s,
              u"N° : "_s + number,
              u"Impossible de charger l'index Unique. Vérifiez la cohérence de cet index unique "
              "vis-à-vis des valeurs existantes pour le champ "_s
                  + failure.index + u" du module "_s + m_module.name,
              u"-> Cet index unique est actuellement désactivé."_s});
    return true;
}

bool Builder::ensureIndexes()
{
    bool open = true;
    const auto failures = m_database.ReplaceIndexes(m_module.name, wantedIndexes());
    for (const jet::Database::IndexFailure& failure : failures)
        open = reportIndex(failure) && open;
    return open;
}

bool Builder::build()
{
    if (!ensureTable(wanted()))
        return false;
    ensureRelation();
    return ensureIndexes();
}

} // namespace

bool buildModuleTable(jet::Database& database, const ModuleRecord& module,
                      platform::Dialogues& dialogues)
{
    try {
        return Builder(database, module, dialogues).build();
    } catch (const jet::Error& error) {
        // A read-only medium, a full disk: said once by the opening itself.
        qCWarning(dataLog).noquote() << module.name << error.number() << error.description();
        throw;
    }
}

} // namespace data
