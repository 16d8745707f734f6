#include "app/DemoModules.h"

#include "app/DemoData.h"
#include "data/FieldType.h"
#include "query/QueryText.h"
#include "jet/SqlText.h"

#include <QFile>

namespace app {

using namespace Qt::StringLiterals;

namespace {

const QString measures = u"Mesures"_s;

data::FieldRecord field(const QString& caption, const QString& column, data::FieldType type, const QString& help)
{
    data::FieldRecord record;
    record.caption = caption;
    record.column = column;
    record.type = type;
    record.help = help;
    return record;
}

QList<data::FieldRecord> measureFields()
{
    using namespace data;
    QList<FieldRecord> fields{
        field(u"Rubrique"_s, u"Rubrique"_s, Label, u"Domaine des mesures"_s),
        field(u"Méthode"_s, u"Méthode"_s, ListeSimple, u"Ce qui a été mesuré"_s),
        field(u"Organes mesurés"_s, u"Organes"_s, ListeMultiple, u"Organes dont il existe une mesure"_s),
        field(u"Diamètre"_s, u"Diamètre"_s, Réel, u"Diamètre du tronc à hauteur de poitrine, en centimètres"_s),
        field(u"Hauteur"_s, u"Hauteur"_s, Réel, u"Hauteur de l'arbre, en mètres"_s),
        field(u"Épaisseur d'écorce"_s, u"Écorce"_s, Réel, u"Épaisseur de l'écorce, en millimètres"_s),
        field(u"Densité du bois"_s, u"DensitéBois"_s, Réel, u"Densité du bois, en grammes par centimètre cube"_s),
        field(u"Diamètre et hauteur"_s, u"Complet"_s, OuiNon, u"Le diamètre et la hauteur sont connus"_s),
        field(u"Longueur de tige"_s, u"LongueurTige"_s, Texte, u"Longueur de la tige en décimètres, ou intervalle"_s),
        field(u"Longueur du style"_s, u"LongueurStyle"_s, Texte, u"Longueur du style en millimètres, ou intervalle"_s),
        field(u"Longueur du fruit"_s, u"LongueurFruit"_s, Texte,
              u"Longueur du fruit mûr en millimètres, ou intervalle"_s),
        field(u"Nombre d'ovules"_s, u"NombreOvules"_s, Texte, u"Nombre d'ovules, ou intervalle"_s),
        field(u"Nombre de mesures"_s, u"NombreMesures"_s, Entier, u"Nombre de mesures de cet enregistrement"_s),
        field(u"Date de l'échantillon"_s, u"DateÉchantillon"_s, Date, u"Date de récolte de l'échantillon mesuré"_s),
        field(u"Récolteur de l'échantillon"_s, u"ID Collecteurs"_s, Botaniste, u"Récolteur de l'échantillon mesuré"_s),
        field(u"Lieu de l'échantillon"_s, u"ID Localités"_s, Localité, u"Parcelle ou lieu de l'échantillon mesuré"_s),
        field(u"Longitude du point"_s, u"LongitudePoint"_s, Longitude, u"Longitude de la plante mesurée"_s),
        field(u"Latitude du point"_s, u"LatitudePoint"_s, Latitude, u"Latitude de la plante mesurée"_s),
        field(u"Taxon de l'échantillon"_s, u"ID Taxons"_s, Taxon, u"Nom de l'échantillon lors de la mesure"_s),
        field(u"Détermination"_s, u"ID Déterminations"_s, LienCourant, u"Détermination retenue lors de la mesure"_s),
        field(u"Planche de comparaison"_s, u"Planche"_s, Image, u"Image d'une planche de la même espèce"_s),
        field(u"Relevé"_s, u"Relevé"_s, TexteMémo, u"Toutes les mesures avec leur unité, comme la source les donne"_s),
    };
    for (qsizetype i = 0; i < fields.size(); ++i) {
        fields[i].index = int(i);
        if (fields[i].type == Réel) {
            fields[i].rule = u">0"_s;
            fields[i].ruleText = u"Une mesure est un nombre positif"_s;
        }
        if (fields[i].type == LienCourant)
            fields[i].provider = moduleDéterminations;
        if (fields[i].column == u"Méthode")
            fields[i].descriptors = {u"Inventaire forestier"_s, u"Planche d'herbier"_s, u"Échantillon de bois"_s};
        if (fields[i].column == u"Organes")
            fields[i].descriptors = {u"plante entière"_s, u"tronc"_s, u"écorce"_s, u"bois"_s,
                                     u"tige"_s, u"style"_s, u"ovule"_s, u"fruit"_s};
    }
    return fields;
}

/// The permanent name of a field of the record that a field leads to.
QString beneath(const QString& link, const QString& field)
{
    return link + query::pathSeparator + field;
}

/// Stores a query: columns (field, alias, order) and one criterion, the fields by their permanent names.
void writeQuery(Session& session, const QString& module, const QString& name, const QList<query::OutputColumn>& columns,
                const query::Criterion& criterion)
{
    qint32 counter = 0;
    editing::EditingContext context;
    context.nextId = [&counter] { return ++counter; };
    query::Structure structure(session.database(), context);
    structure.LoadStructure(session.modules());
    structure.setNomModule(module);
    query::QueryDefinition definition;
    definition.module = module;
    definition.columns = columns;
    for (query::OutputColumn& column : definition.columns)
        column.path = structure.PathFromPermanent(module, column.path);
    query::Criterion row = criterion;
    row.path = structure.PathFromPermanent(module, row.path);
    definition.criteria.add(row);
    session.properties().put(data::kindRequête, module, name, query::textOf(definition, structure));
}

} // namespace

data::ModuleRecord demoMeasuresModule()
{
    data::ModuleRecord module;
    module.name = measures;
    module.label = measures;
    module.help = u"Mesures faites sur la plante ou sur son échantillon"_s;
    module.index = 3;
    QFile icon(demoResourceFolder() + u"mesures.svg"_s);
    if (icon.open(QIODevice::ReadOnly))
        module.icon = icon.readAll();
    module.fields = measureFields();
    return module;
}

void writeDemoStructure(Session& session, const QStringList& herbaria)
{
    jet::Operation operation(session.database(), u"Démonstration : structure"_s);
    session.dictionary().put(demoMeasuresModule());
    session.dictionary().save();
    session.properties().put(data::kindDescripteur, data::moduleIndividus, u"Herbier"_s, herbaria.join(u';'));
    session.dictionary().load();
    operation.commit();
}

void writeDemoTrees(Session& session, const QString& stamp)
{
    const data::ModuleRecord* trees = session.dictionary().module(u"Dendrométrie");
    if (!trees || trees->provider != u"Dendrometrie")
        return;
    const QString now = jet::texte(stamp);
    session.database().Execute(
        u"INSERT INTO [Dendrométrie] ([ID Individus],[KeyParent],[DateCreate],[DateModify],[DateMesure],"
        "[ID Collecteurs],[Circonférence],[HauteurTotale])"
        " SELECT [ID Individus],[KeyParent],"_s + now + u','
        + now + u",[DateÉchantillon],[ID Collecteurs],Round([Diamètre]*3.14159265,1),[Hauteur]"
        " FROM [Mesures] WHERE [Diamètre] IS NOT NULL"_s);
}

void writeDemoObjects(Session& session, const QString& imageFolder)
{
    jet::Operation operation(session.database(), u"Démonstration : requêtes et modèles"_s);
    data::PropertyStore& store = session.properties();
    const QString individus = data::moduleIndividus;
    using query::orderDown;
    using query::orderUp;
    writeQuery(session, individus, u"Plantes d'altitude"_s,
               {{u"Numéro"_s, u"Numéro"_s, orderUp, {}},
                {u"Altitude"_s, u"Altitude"_s, orderDown, {}},
                {beneath(u"ID Localités"_s, u"Nom Entier"_s), u"Localité"_s, {}, {}}},
               {.path = u"Altitude"_s, .op = u">"_s, .value = u"400"_s});
    writeQuery(session, individus, u"Herbier RB"_s,
               {{u"Numéro"_s, u"Numéro"_s, {}, {}},
                {beneath(u"ID Collecteurs"_s, u"Collecteur"_s), u"Collecteur"_s, orderUp, {}},
                {u"DateRécolte"_s, u"Date de récolte"_s, {}, {}}},
               {.path = u"Herbier"_s, .op = u"="_s, .value = u"RB"_s});
    writeQuery(session, measures, u"Grands arbres"_s,
               {{u"Diamètre"_s, u"Diamètre"_s, orderDown, {}}, {u"Hauteur"_s, u"Hauteur"_s, {}, {}}},
               {.path = u"Diamètre"_s, .op = u">"_s, .value = u"40"_s});
    // Key of the record, field, preset value.
    store.put(data::kindModèle, individus, u"Récolte pour RB"_s, u"0-Individus;Herbier;RB"_s);
    store.put(u"ImagePaths"_s, u"Images"_s, u"Paths"_s, imageFolder);
    operation.commit();
}

} // namespace app
