#include "app/DemoRecords.h"

#include "data/OrNull.h"

#include <QLocale>
#include <algorithm>

namespace app {

using namespace Qt::StringLiterals;
using data::orNull;

namespace {

/// Lines of a long text.
QVariant linesOrNull(const QStringList& lines)
{
    return lines.isEmpty() ? QVariant() : QVariant(lines.join(u"\r\n"_s));
}

/// A code ends at a number that follows a hyphen ("RM-139984", "MONT- 49613"), not at any hyphen ("RSA-POM").
QString codeAlone(const QString& text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'-')
            continue;
        const QString tail = text.mid(i + 1).trimmed();
        if (!tail.isEmpty() && tail.front().isDigit())
            return text.left(i).trimmed();
    }
    return text;
}

bool isHabitat(const QString& remark)
{
    static const QStringList headings{u"Holdridge life zone:"_s, u"Annual rainfall:"_s, u"Substrate:"_s, u"Habitat:"_s};
    return std::any_of(headings.begin(), headings.end(), [&](const QString& heading) { return remark.startsWith(heading); });
}

/// What of a measure goes where: its column and the organ measured.
struct MeasureKind {
    QString column;
    QString organ;
    bool number = true; ///< Else a text, for ranges.
};

MeasureKind kindOf(const QString& name)
{
    static const QHash<QString, MeasureKind> kinds{
        {u"diameterAtBreastHeight"_s, {u"Diamètre"_s, u"tronc"_s, true}},
        {u"height"_s, {u"Hauteur"_s, u"plante entière"_s, true}},
        {u"barkThickness"_s, {u"Écorce"_s, u"écorce"_s, true}},
        {u"woodDensity"_s, {u"DensitéBois"_s, u"bois"_s, true}},
        {u"Densité"_s, {u"DensitéBois"_s, u"bois"_s, true}},
        {u"Stem length"_s, {u"LongueurTige"_s, u"tige"_s, false}},
        {u"Style length"_s, {u"LongueurStyle"_s, u"style"_s, false}},
        {u"Ovule number"_s, {u"NombreOvules"_s, u"ovule"_s, false}},
        {u"Mature fruit length"_s, {u"LongueurFruit"_s, u"fruit"_s, false}},
    };
    return kinds.value(name);
}

/// One writing of all individuals.
class RecordsWriter {
public:
    RecordsWriter(jet::Database& database, const DemoData& data, const DemoReference& reference, const QString& stamp)
        : m_data(data), m_reference(reference), m_individuals(database, u"Individus"_s, stamp),
          m_determinations(database, u"Déterminations"_s, stamp), m_images(database, u"Images"_s, stamp),
          m_measures(database, u"Mesures"_s, stamp)
    {
        for (const DemoPlace& place : data.places)
            m_places.insert(place.key, &place);
        for (const DemoImage& image : data.images)
            m_imagesOf.insert(image.individual, &image);
    }

    void write(const DemoIndividual& individual);

private:
    void writeIndividual(const DemoIndividual& individual, qint32 current);
    void writeDetermination(const DemoDetermination& determination, qint32 owner);
    void writeImage(const DemoImage& image, qint32 owner);
    void writeMeasures(const DemoIndividual& individual, qint32 owner, qint32 current, qint32 taxon);
    bool standsElsewhere(const DemoIndividual& individual) const;
    QStringList description(const DemoIndividual& individual) const;
    QString comment(const DemoDetermination& determination) const;

    const DemoData& m_data;
    const DemoReference& m_reference;
    RowAppender m_individuals, m_determinations, m_images, m_measures;
    QHash<QString, const DemoPlace*> m_places;
    QHash<QString, const DemoImage*> m_imagesOf;
};

/// The point of the plant is kept only where it is not that of its locality.
bool RecordsWriter::standsElsewhere(const DemoIndividual& individual) const
{
    const DemoPlace* place = m_places.value(individual.place);
    return !place || individual.longitude != place->longitude || individual.latitude != place->latitude;
}

QStringList RecordsWriter::description(const DemoIndividual& individual) const
{
    QStringList lines;
    QStringList remarks = individual.dataset == u"NC" ? individual.remarks.split(u"; "_s, Qt::SkipEmptyParts)
                                                      : QStringList{individual.remarks};
    remarks.removeIf([](const QString& remark) { return remark.isEmpty() || isHabitat(remark); });
    if (!remarks.isEmpty())
        lines << remarks.join(u"; "_s);
    if (individual.year.isEmpty() && !individual.month.isEmpty())
        lines << u"Mois de l'observation : "_s
                     + QLocale(QLocale::French, QLocale::France).standaloneMonthName(individual.month.toInt());
    if (!individual.type.isEmpty())
        lines << u"Type : "_s + individual.type.toLower();
    const qint32 collector = m_reference.people.value(individual.collector);
    if (!individual.team.isEmpty() && individual.team != m_reference.peopleNames.value(collector))
        lines << u"Récolteurs : "_s + individual.team;
    lines << QString(u"Catalogue : "_s + individual.catalogue + u' ' + individual.catalogueNo).trimmed();
    if (!individual.reference.isEmpty())
        lines << u"Référence : "_s + individual.reference;
    return lines;
}

QString RecordsWriter::comment(const DemoDetermination& determination) const
{
    QStringList parts;
    if (determination.earlier)
        parts << u"Détermination antérieure, dans l'ordre où la source les donne"_s;
    const QString name = m_reference.taxonNames.value(m_reference.taxa.value(determination.taxon));
    // Names without authors, as the voucher lists give them, say nothing else than the taxon.
    if (determination.verbatim != name && !name.startsWith(determination.verbatim + u' '))
        parts << u"Nom dans la source : "_s + determination.verbatim;
    return parts.join(u"\r\n"_s);
}

void RecordsWriter::writeIndividual(const DemoIndividual& individual, qint32 current)
{
    QStringList habitat;
    if (individual.dataset == u"NC") {
        habitat = individual.remarks.split(u"; "_s, Qt::SkipEmptyParts);
        habitat.removeIf([](const QString& remark) { return !isHabitat(remark); });
    }
    const bool elsewhere = standsElsewhere(individual);
    m_individuals.add({
        {u"Numéro", orNull(individual.number.isEmpty() ? individual.catalogueNo : individual.number)},
        {u"ID Collecteurs", orNull(m_reference.people.value(individual.collector))},
        {u"DateRécolte", orNull(demoDateText(individual.year, individual.month, individual.day))},
        {u"ID Localités", orNull(m_reference.places.value(individual.place))},
        {u"Longitude", elsewhere ? orNull(individual.longitude) : QVariant()},
        {u"Latitude", elsewhere ? orNull(individual.latitude) : QVariant()},
        {u"Altitude", orNull(individual.altitude)},
        {u"Habitat", linesOrNull(habitat)},
        {u"Description", linesOrNull(description(individual))},
        {u"Herbier", orNull(herbariaOf(individual.catalogue).join(u';'))},
        {u"ID Déterminations", orNull(current)},
        {u"Locked", individual.type == u"HOLOTYPE"},
    });
}

void RecordsWriter::writeDetermination(const DemoDetermination& determination, qint32 owner)
{
    const QString date = determination.date;
    m_determinations.add({
        {u"ID Taxons", m_reference.taxa.value(determination.taxon)},
        {u"ID Collecteurs", orNull(m_reference.people.value(determination.determiner))},
        {u"DateDétermination", orNull(demoDateText(date.mid(0, 4), date.mid(5, 2), date.mid(8, 2)))},
        {u"Commentaire", orNull(comment(determination))},
        {u"ID Individus", owner},
        {u"KeyParent", m_individuals.key(owner)},
    });
}

void RecordsWriter::writeImage(const DemoImage& image, qint32 owner)
{
    const QString legend = image.caption + u". Illustration, ne montre pas cet individu. "_s + image.licence + u" ; "_s
                           + image.source;
    m_images.add({
        {u"Fichier", image.file},
        {u"Légende", legend.left(255)},
        {u"ID Collecteurs", orNull(m_reference.people.value(image.author))},
        {u"DatePrise", orNull(image.taken)},
        {u"ID Individus", owner},
        {u"KeyParent", m_individuals.key(owner)},
    });
}

void RecordsWriter::writeMeasures(const DemoIndividual& individual, qint32 owner, qint32 current, qint32 taxon)
{
    const QList<DemoMeasure> measures = m_data.measures.value(individual.key);
    if (measures.isEmpty())
        return;
    QHash<QString, QVariant> values;
    QStringList organs, lines;
    for (const DemoMeasure& measure : measures) {
        const MeasureKind kind = kindOf(measure.name);
        values.insert(kind.column, kind.number ? QVariant(measure.value.toDouble()) : QVariant(measure.value));
        organs << kind.organ;
        lines << QString(measure.name + u" : "_s + measure.value + u' ' + measure.unit).trimmed();
    }
    organs.removeDuplicates();
    const bool inventory = individual.dataset == u"NC";
    const bool sheet = individual.dataset == u"PHY";
    const DemoImage* image = m_imagesOf.value(individual.key);
    m_measures.add({
        {u"Rubrique", inventory ? u"Dendrométrie"_s : sheet ? u"Morphologie"_s : u"Bois"_s},
        {u"Méthode", inventory ? u"Inventaire forestier"_s : sheet ? u"Planche d'herbier"_s : u"Échantillon de bois"_s},
        {u"Organes", organs.join(u';')},
        {u"Diamètre", values.value(u"Diamètre"_s)},
        {u"Hauteur", values.value(u"Hauteur"_s)},
        {u"Écorce", values.value(u"Écorce"_s)},
        {u"DensitéBois", values.value(u"DensitéBois"_s)},
        {u"Complet", values.contains(u"Diamètre"_s) && values.contains(u"Hauteur"_s)},
        {u"LongueurTige", values.value(u"LongueurTige"_s)},
        {u"LongueurStyle", values.value(u"LongueurStyle"_s)},
        {u"LongueurFruit", values.value(u"LongueurFruit"_s)},
        {u"NombreOvules", values.value(u"NombreOvules"_s)},
        {u"NombreMesures", int(measures.size())},
        {u"DateÉchantillon", orNull(demoDateText(individual.year, individual.month, individual.day))},
        {u"ID Collecteurs", orNull(m_reference.people.value(individual.collector))},
        {u"ID Localités", orNull(m_reference.places.value(individual.place))},
        {u"LongitudePoint", orNull(individual.longitude)},
        {u"LatitudePoint", orNull(individual.latitude)},
        {u"ID Taxons", orNull(taxon)},
        {u"ID Déterminations", orNull(current)},
        {u"Planche", image && image->file == u"physaria.jpg" ? QVariant(image->file) : QVariant()},
        {u"Relevé", linesOrNull(lines)},
        {u"ID Individus", owner},
        {u"KeyParent", m_individuals.key(owner)},
    });
}

void RecordsWriter::write(const DemoIndividual& individual)
{
    const QList<DemoDetermination> names = m_data.determinations.value(individual.key);
    const auto valid = std::find_if(names.begin(), names.end(), [](const DemoDetermination& d) { return d.current; });
    const qint32 current = valid == names.end() ? 0 : m_determinations.next() + qint32(valid - names.begin());
    const qint32 taxon = valid == names.end() ? 0 : m_reference.taxa.value(valid->taxon);
    const qint32 owner = m_individuals.next();

    writeIndividual(individual, current);
    for (const DemoDetermination& name : names)
        writeDetermination(name, owner);
    if (const DemoImage* image = m_imagesOf.value(individual.key))
        writeImage(*image, owner);
    writeMeasures(individual, owner, current, taxon);
}

} // namespace

QStringList herbariaOf(const QString& catalogue)
{
    QStringList codes;
    if (catalogue == u"Niamoto") // a tree inventory: nothing is deposited
        return codes;
    for (const QString& part : catalogue.split(u',')) {
        QString code = codeAlone(part.trimmed());
        code.remove(u'[').remove(u']');
        if (!code.isEmpty() && !codes.contains(code))
            codes << code;
    }
    return codes;
}

QStringList demoHerbaria(const DemoData& data)
{
    QStringList codes;
    for (const DemoIndividual& individual : data.individuals)
        codes << herbariaOf(individual.catalogue);
    codes.removeDuplicates();
    codes.sort();
    return codes;
}

void writeDemoRecords(jet::Database& database, const DemoData& data, const DemoReference& reference,
                      const QString& stamp, const platform::Progression& progression)
{
    jet::Operation operation(database, u"Démonstration : individus"_s);
    RecordsWriter writer(database, data, reference, stamp);
    for (const DemoIndividual& individual : data.individuals) {
        checkpoint(progression);
        writer.write(individual);
    }
    operation.commit();
}

} // namespace app
