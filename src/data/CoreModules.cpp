#include "data/CoreModules.h"

#include "data/FieldType.h"

namespace data {

using namespace Qt::StringLiterals;

namespace {

/// Collects the fields of one module in their order.
class Fields {
public:
    explicit Fields(QString provider) : m_provider(std::move(provider)) {}

    Fields& add(const QString& caption, const QString& column, int type, const QString& help,
                qint32 flags = 0)
    {
        FieldRecord field;
        field.caption = caption;
        field.column = column;
        field.type = type;
        field.help = help;
        field.index = int(m_fields.size());
        field.provider = m_provider;
        field.flags = Connecté | flags;
        m_fields.append(field);
        return *this;
    }

    Fields& link(const QString& caption, const QString& module, const QString& help)
    {
        add(caption, u"ID "_s + module, LienCourant, help);
        m_fields.last().provider = module;
        return *this;
    }

    Fields& list(const QStringList& descriptors)
    {
        m_fields.last().descriptors = descriptors;
        return *this;
    }

    operator QList<FieldRecord>() const { return m_fields; }

private:
    QString m_provider;
    QList<FieldRecord> m_fields;
};

ModuleRecord moduleNamed(const QString& name, const QString& label, const QString& provider,
                         const QString& help, int index)
{
    ModuleRecord module;
    module.name = name;
    module.label = label;
    module.provider = provider;
    module.version = u"1.0"_s;
    module.help = help;
    module.index = index;
    return module;
}

} // namespace

ModuleRecord coreIndividus()
{
    ModuleRecord module =
        moduleNamed(moduleIndividus, u"Individu"_s, providerPrivate,
                    u"Un enregistrement par plante ou par échantillon d'herbier"_s, 0);
    module.fields =
        Fields(providerPrivate)
            .add(u"Numéro"_s, u"Numéro"_s, Texte, u"Numéro de récolte ou d'inventaire"_s)
            .add(u"Collecteur"_s, u"ID Collecteurs"_s, Botaniste, u"Personne qui a récolté ou observé la plante"_s)
            .add(u"Date de récolte"_s, u"DateRécolte"_s, Date, u"Date de la récolte, même partielle (2001 ou 2001/03)"_s)
            .add(u"Localité"_s, u"ID Localités"_s, Localité, u"Lieu de la récolte"_s)
            .add(u"Longitude"_s, u"Longitude"_s, Longitude, u"Longitude précise de la plante, si elle diffère de celle de la localité"_s)
            .add(u"Latitude"_s, u"Latitude"_s, Latitude, u"Latitude précise de la plante, si elle diffère de celle de la localité"_s)
            .add(u"Altitude"_s, u"Altitude"_s, Réel, u"Altitude en mètres"_s)
            .add(u"Habitat"_s, u"Habitat"_s, TexteMémo, u"Milieu où pousse la plante"_s)
            .add(u"Description"_s, u"Description"_s, TexteMémo, u"Description de la plante"_s)
            .add(u"Herbier"_s, u"Herbier"_s, ListeMultiple, u"Herbiers où sont déposés les échantillons"_s)
            .link(u"Détermination courante"_s, moduleDéterminations, u"Détermination retenue pour cet individu"_s);
    return module;
}

ModuleRecord coreDéterminations()
{
    ModuleRecord module = moduleNamed(moduleDéterminations, u"Détermination"_s, providerPrivate,
                                      u"Les noms donnés à un individu au cours du temps"_s, 1);
    module.fields =
        Fields(providerPrivate)
            .add(u"Taxon"_s, u"ID Taxons"_s, Taxon, u"Nom donné à l'individu"_s, Obligatoire)
            .add(u"Déterminateur"_s, u"ID Collecteurs"_s, Botaniste, u"Personne qui a nommé la plante"_s)
            .add(u"Date de détermination"_s, u"DateDétermination"_s, Date, u"Date de la détermination, même partielle"_s)
            .add(u"Réserve"_s, u"Réserve"_s, ListeSimple, u"Doute sur la détermination"_s)
            .list({u"cf."_s, u"aff."_s, u"?"_s})
            .add(u"Commentaire"_s, u"Commentaire"_s, TexteMémo, u"Commentaire sur la détermination"_s);
    return module;
}

ModuleRecord coreImages()
{
    ModuleRecord module = moduleNamed(u"Images"_s, u"Image"_s, providerUser,
                                      u"Photographies et dessins d'un individu"_s, 2);
    module.fields =
        Fields(providerUser)
            .add(u"Fichier"_s, u"Fichier"_s, Image, u"Nom du fichier de l'image"_s, Obligatoire)
            .add(u"Légende"_s, u"Légende"_s, Texte, u"Ce que montre l'image"_s)
            .add(u"Auteur"_s, u"ID Collecteurs"_s, Botaniste, u"Auteur de l'image"_s)
            .add(u"Date de prise de vue"_s, u"DatePrise"_s, Date, u"Date de la prise de vue"_s)
            .add(u"Taille du pixel"_s, u"TaillePixel"_s, Réel, u"Longueur réelle d'un pixel, écrite par l'étalonnage"_s);
    return module;
}

} // namespace data
