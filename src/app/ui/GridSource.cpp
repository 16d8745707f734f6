#include "app/ui/GridSource.h"

#include "data/FieldType.h"
#include "data/Modules.h"
#include "jet/Schema.h"
#include "jet/SqlText.h"

namespace app {

using namespace Qt::StringLiterals;
using jet::nom;

namespace {

const QString identifierHeader = u"Identifiant"_s;

QString column(const QString& table, const QString& name)
{
    return nom(table) + u'.' + nom(name);
}

/// A chain of left joins, each in parentheses around the one before.
class JoinChain {
public:
    explicit JoinChain(const QString& table) : m_text(nom(table)), m_tables(table) {}

    /// Joins `table` by its number and gives the name under which it stands in the statement.
    QString join(const QString& table, const QString& idColumn, const QString& number)
    {
        if (!m_tables.contains(table))
            m_tables << table;
        const QString alias = table + u'_' + QString::number(++m_count);
        m_text = (m_count > 1 ? u'(' + m_text + u')' : m_text) + u" LEFT JOIN "_s + nom(table) + u" AS "_s
                 + nom(alias) + u" ON "_s + number + u" = "_s + column(alias, idColumn);
        return alias;
    }
    const QString& text() const { return m_text; }
    const QStringList& tables() const { return m_tables; }

private:
    QString m_text;
    QStringList m_tables;
    int m_count = 0;
};

/// The columns of a module's fields.
class FieldColumns {
public:
    FieldColumns(JoinChain& joins, const QList<data::ModuleRecord>& modules, const jet::Schema& schema)
        : m_joins(joins), m_modules(modules), m_schema(schema)
    {
    }

    GridColumn of(const data::FieldRecord& field, const QString& table)
    {
        const QString own = column(table, field.column);
        switch (field.type) {
        case data::Botaniste:
            return {field.caption, column(m_joins.join(u"Collecteurs"_s, u"ID Collecteurs"_s, own), u"Collecteur"_s),
                    data::Texte};
        case data::Localité:
            return {field.caption, column(m_joins.join(u"Localités"_s, u"ID Localités"_s, own), u"Nom Entier"_s),
                    data::Texte};
        case data::Taxon:
            return {field.caption, column(m_joins.join(u"Taxons"_s, u"ID Taxons"_s, own), u"Nom Complet"_s),
                    data::Texte};
        case data::LienCourant:
            return linked(field, own);
        default:
            return {field.caption, own, field.type};
        }
    }

private:
    /// A link shows the first field of the record it leads to: the name, for a determination.
    GridColumn linked(const data::FieldRecord& field, const QString& own)
    {
        for (const data::ModuleRecord& module : m_modules) {
            const jet::TableDef* table = m_schema.table(module.name);
            if (module.name != field.provider || module.fields.isEmpty() || !table)
                continue;
            const data::FieldRecord& first = module.fields.first();
            if (first.type == data::LienCourant || !table->field(first.column))
                break;
            const QString alias = m_joins.join(module.name, module.idColumn(), own);
            GridColumn shown = of(first, alias);
            shown.header = field.caption;
            return shown;
        }
        return {field.caption, own, field.type};
    }

    JoinChain& m_joins;
    const QList<data::ModuleRecord>& m_modules;
    const jet::Schema& m_schema;
};

} // namespace

int GridSource::idColumn() const
{
    for (int place = 0; place < columns.size(); ++place) {
        if (columns.at(place).header == identifierHeader && columns.at(place).type == data::LienCourant)
            return place;
    }
    return -1;
}

bool GridSource::shows(const QStringList& written) const
{
    return written.isEmpty() || std::any_of(written.begin(), written.end(), [this](const QString& table) {
        return tables.contains(table, Qt::CaseInsensitive);
    });
}

QString GridSource::statement(int sorted, Qt::SortOrder order) const
{
    QStringList outputs;
    for (const GridColumn& output : columns)
        outputs << output.expression;
    QString text = u"SELECT "_s + outputs.join(u", "_s) + u" FROM "_s + from;
    if (sorted >= 0 && sorted < columns.size())
        text += u" ORDER BY "_s + columns.at(sorted).expression
                + (order == Qt::DescendingOrder ? u" DESC"_s : QString());
    return text;
}

GridSource moduleSource(const data::ModuleRecord& module, const QList<data::ModuleRecord>& modules,
                        const jet::Schema& schema)
{
    GridSource source;
    source.key = module.name;
    source.title = module.name;
    source.icon = module.icon.isEmpty() ? module.name : u"module:"_s + module.name;
    source.addable = module.isIndividus();
    source.emptyText = u"Le module « %1 » ne contient encore aucun enregistrement."_s.arg(module.name);
    if (!source.addable)
        source.emptyText += u"\nOn en ajoute depuis la fiche d'un individu."_s;

    const jet::TableDef* table = schema.table(module.name);
    JoinChain joins(module.name);
    FieldColumns fields(joins, modules, schema);
    source.columns << GridColumn{identifierHeader, column(module.name, module.idColumn()), data::LienCourant};
    if (!module.isIndividus())
        source.columns << GridColumn{u"Individu"_s, column(module.name, u"ID Individus"_s), data::LienCourant};
    // The current determination is the name of the plant: links come before the other fields.
    for (const bool links : {true, false}) {
        for (const data::FieldRecord& field : module.fields) {
            if ((field.type == data::LienCourant) == links && table && table->field(field.column))
                source.columns << fields.of(field, module.name);
        }
    }
    source.columns << GridColumn{u"Créé le"_s, column(module.name, u"DateCreate"_s), data::Date}
                   << GridColumn{u"Modifié le"_s, column(module.name, u"DateModify"_s), data::Date}
                   << GridColumn{u"Verrouillé"_s, column(module.name, u"Locked"_s), data::OuiNon};
    source.from = joins.text();
    source.tables = joins.tables();
    return source;
}

GridSource taxaSource()
{
    const QString table = u"Taxons"_s;
    JoinChain joins(table);
    const QString family = joins.join(table, u"ID Taxons"_s, column(table, u"ID Famille"_s));
    const QString accepted = joins.join(table, u"ID Taxons"_s, column(table, u"ID Valid"_s));
    GridSource source{u"Lstaxons"_s, u"Taxons"_s, u"Lstaxons"_s, joins.text(), {}, 0,
                      u"La liste des taxons est vide."_s};
    source.tables = joins.tables();
    source.columns = {{u"Nom complet"_s, column(table, u"Nom Complet"_s), data::Texte},
                      {u"Auteurs"_s, column(table, u"Auteurs"_s), data::Texte},
                      {u"Famille"_s, column(family, u"Taxon"_s), data::Texte},
                      {u"Synonyme de"_s, column(accepted, u"Nom Complet"_s), data::Texte},
                      {u"Date"_s, column(table, u"DateOriginal"_s), data::Date},
                      {u"Type"_s, column(table, u"TypeSpecimen"_s), data::Texte},
                      {u"Commentaire"_s, column(table, u"Commentaire"_s), data::TexteMémo},
                      {identifierHeader, column(table, u"ID Taxons"_s), data::LienCourant}};
    return source;
}

GridSource localitiesSource()
{
    const QString table = u"Localités"_s;
    GridSource source{u"Lslocalités"_s, table, u"Lslocalités"_s, nom(table), {}, 0,
                      u"La liste des localités est vide."_s};
    source.tables = QStringList{table};
    source.columns = {{u"Nom entier"_s, column(table, u"Nom Entier"_s), data::Texte},
                      {u"Localité"_s, column(table, u"Localité"_s), data::Texte},
                      {u"Longitude"_s, column(table, u"LongDD"_s), data::Longitude},
                      {u"Latitude"_s, column(table, u"LatDD"_s), data::Latitude},
                      {u"Altitude"_s, column(table, u"Altitude"_s), data::Réel},
                      {u"Référence GPS"_s, column(table, u"GPSRef"_s), data::Texte},
                      {identifierHeader, column(table, u"ID Localités"_s), data::LienCourant}};
    return source;
}

GridSource collectorsSource()
{
    const QString table = u"Collecteurs"_s;
    GridSource source{u"Lsbotanistes"_s, u"Botanistes"_s, u"Lsbotanistes"_s, nom(table), {}, 0,
                      u"La liste des botanistes est vide."_s};
    source.tables = QStringList{table};
    source.columns = {{u"Collecteur"_s, column(table, u"Collecteur"_s), data::Texte},
                      {u"Initiales"_s, column(table, u"Initiales"_s), data::Texte},
                      {u"Botaniste"_s, column(table, u"Bot"_s), data::OuiNon},
                      {u"Organisme"_s, column(table, u"Organisme"_s), data::Texte},
                      {identifierHeader, column(table, u"ID Collecteurs"_s), data::LienCourant}};
    return source;
}

} // namespace app
