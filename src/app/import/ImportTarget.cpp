#include "app/import/ImportTarget.h"

#include "data/FieldType.h"

namespace app {

using namespace Qt::StringLiterals;

namespace {

/// Fields of records below an individual that the same row may fill: the names given to it.
const QString& secondModule()
{
    return data::moduleDéterminations;
}

QString secondKey(const QString& column)
{
    return secondModule() + u'.' + column;
}

void appendFields(QList<ImportField>& fields, const data::ModuleRecord& module, const jet::Schema& schema, bool second)
{
    const jet::TableDef* table = schema.table(module.name);
    for (const data::FieldRecord& field : module.fields) {
        if (!table || !table->field(field.column) || !data::columnOfType(field.type, field.column))
            continue;
        if (second && field.type == data::LienCourant)
            continue;
        fields.append({second ? secondKey(field.column) : field.column,
                       second ? module.label + u" : "_s + field.caption : field.caption,
                       field.type,
                       field.required() && !second,
                       second ? QStringList{field.caption, field.column} : QStringList{field.column},
                       module.name,
                       field.column,
                       field});
    }
}

ImportTarget moduleTarget(const data::ModuleRecord& module, const QList<data::ModuleRecord>& modules, const jet::Schema& schema)
{
    ImportTarget target{module.name, module.label, false, {}};
    appendFields(target.fields, module, schema, false);
    if (module.isIndividus()) {
        for (const data::ModuleRecord& other : modules) {
            if (other.name == secondModule())
                appendFields(target.fields, other, schema, true);
        }
    } else {
        target.fields.append({importIndividu, u"Individu (identifiant)"_s, data::Entier, false, {u"ID Individus"_s, u"Individu"_s}});
        target.fields.append({importNuméro, u"Individu (son numéro)"_s, data::Texte, false, {u"Numéro de l'individu"_s, u"Numéro"_s}});
    }
    target.fields.append({importId, u"Identifiant de l'enregistrement"_s, data::Entier, false, {module.idColumn()}});
    return target;
}

ImportField listField(const QString& column, const QString& caption, int type, bool required = false, const QStringList& names = {})
{
    return {column, caption, type, required, QStringList{column} + names, {}, column};
}

ImportTarget taxaTarget()
{
    using namespace data;
    return {u"Taxons"_s,
            u"Taxons"_s,
            true,
            {listField(u"ID Famille"_s, u"Famille"_s, Texte, false, {u"family"_s}),
             listField(u"ID Genre"_s, u"Genre"_s, Texte, false, {u"genus"_s}),
             listField(u"ID Espèce"_s, u"Espèce"_s, Texte, false, {u"species"_s, u"Épithète"_s, u"specificEpithet"_s}),
             listField(u"@Rang"_s, u"Rang infraspécifique"_s, Texte, false, {u"infra_rank"_s, u"Rang"_s}),
             listField(u"ID Infra"_s, u"Épithète infraspécifique"_s, Texte, false, {u"infra_epithet"_s, u"Infra"_s}),
             listField(u"Nom Complet"_s, u"Nom complet"_s, Texte, false, {u"Taxon"_s, u"Nom"_s, u"Nom scientifique"_s, u"scientificName"_s}),
             listField(u"Auteurs"_s, u"Auteur(s)"_s, Texte, false, {u"Auteur"_s, u"authors"_s}),
             listField(u"DateOriginal"_s, u"Date de publication"_s, Date, false, {u"Date Publication"_s}),
             listField(u"TypeSpecimen"_s, u"Échantillon type"_s, Texte),
             listField(u"Commentaire"_s, u"Commentaire"_s, TexteMémo),
             {importId, u"Identifiant du taxon"_s, Entier, false, {u"ID Taxons"_s}}}};
}

ImportTarget placesTarget()
{
    using namespace data;
    return {u"Localités"_s,
            u"Localités"_s,
            true,
            {listField(u"Localité"_s, u"Nom de la localité"_s, Texte, true, {u"Nom"_s, u"Lieu"_s}),
             {importParent, u"Localité parente"_s, Texte, false, {u"Parent"_s, u"Région"_s}},
             listField(u"LongDD"_s, u"Longitude"_s, Longitude, false, {u"Longitude X1"_s, u"X"_s, u"lon"_s}),
             listField(u"LatDD"_s, u"Latitude"_s, Latitude, false, {u"Latitude Y1"_s, u"Y"_s, u"lat"_s}),
             listField(u"Altitude"_s, u"Altitude"_s, Réel),
             listField(u"GPSRef"_s, u"Référence GPS"_s, Texte),
             listField(u"Xorigine"_s, u"X origine"_s, Réel),
             listField(u"Yorigine"_s, u"Y origine"_s, Réel),
             listField(u"Largeur"_s, u"Largeur"_s, Réel),
             listField(u"Longueur"_s, u"Longueur"_s, Réel),
             {importId, u"Identifiant de la localité"_s, Entier, false, {u"ID Localités"_s}}}};
}

ImportTarget peopleTarget()
{
    using namespace data;
    return {u"Collecteurs"_s,
            u"Collecteurs"_s,
            true,
            {listField(u"Collecteur"_s, u"Nom"_s, Texte, true, {u"Botaniste"_s, u"Personne"_s}),
             listField(u"Initiales"_s, u"Initiales"_s, Texte),
             listField(u"Bot"_s, u"Botaniste (oui ou non)"_s, OuiNon),
             listField(u"Organisme"_s, u"Organisme"_s, Texte),
             {importId, u"Identifiant du collecteur"_s, Entier, false, {u"ID Collecteurs"_s}}}};
}

} // namespace

const ImportField* ImportTarget::field(const QString& key) const
{
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const ImportField& field) { return field.key == key; });
    return found == fields.end() ? nullptr : &*found;
}

QList<ImportTarget> importTargets(const QList<data::ModuleRecord>& modules, const jet::Schema& schema)
{
    QList<ImportTarget> targets;
    for (const data::ModuleRecord& module : modules) {
        if (schema.table(module.name))
            targets << moduleTarget(module, modules, schema);
    }
    return targets << taxaTarget() << placesTarget() << peopleTarget();
}

ImportTarget importTarget(const QString& name, const QList<data::ModuleRecord>& modules, const jet::Schema& schema)
{
    const QList<ImportTarget> targets = importTargets(modules, schema);
    for (const ImportTarget& target : targets) {
        if (foldedName(target.name) == foldedName(name))
            return target;
    }
    for (const ImportTarget& target : targets) {
        if (foldedName(target.label) == foldedName(name))
            return target;
    }
    return {};
}

QString foldedName(const QString& name)
{
    QString folded;
    for (const QChar c : name.normalized(QString::NormalizationForm_KD)) {
        if (c.isLetterOrNumber())
            folded += c.toLower();
    }
    return folded;
}

} // namespace app
