#include "app/SyntheticProject.h"

#include "app/DemoRecords.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

namespace app {

using namespace Qt::StringLiterals;

namespace {

constexpr int chunk = 20000; ///< Individuals of one operation.

/// A small generator whose numbers are the same everywhere (splitmix64).
class Dice {
public:
    explicit Dice(quint64 seed) : m_state(seed) {}

    /// From 0 to `bound` - 1.
    int below(qint64 bound) { return int(((roll() >> 32) * quint64(bound)) >> 32); }
    bool chance(int percent) { return below(100) < percent; }
    /// From -1 to 1, six decimals of a degree fine.
    double shift() { return (below(2000001) - 1000000) / 1e6; }
    template <typename T>
    const T& of(const QList<T>& list) { return list[below(list.size())]; }

private:
    quint64 roll()
    {
        quint64 z = (m_state += 0x9e3779b97f4a7c15ULL);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    }
    quint64 m_state;
};

/// The number as syllables of two letters, the lowest place first so that neighbours differ at the front.
/// Two numbers never give the same word.
QString word(int number)
{
    static const QStringList syllables{u"ba"_s, u"ce"_s, u"di"_s, u"fo"_s, u"gu"_s, u"la"_s, u"me"_s,
                                       u"ni"_s, u"po"_s, u"ru"_s, u"sa"_s, u"te"_s, u"vi"_s, u"xo"_s,
                                       u"zu"_s, u"na"_s, u"re"_s, u"li"_s, u"mo"_s, u"tu"_s};
    QString text;
    for (int place = 0; place < 3 || number > 0; ++place) {
        text += syllables[number % syllables.size()];
        number /= int(syllables.size());
    }
    return text;
}

QString capital(QString text)
{
    text.front() = text.front().toUpper();
    return text;
}

QString epithet(int number)
{
    static const QStringList endings{u"ensis"_s, u"oides"_s, u"ana"_s, u"flora"_s};
    return word(number) + endings[number % endings.size()];
}

/// Different values of one column of the vocabulary, blanks left out.
template <typename Rows, typename Get>
QStringList valuesOf(const Rows& rows, Get get)
{
    QStringList values;
    for (const auto& row : rows) {
        if (const QString value = get(row); !value.isEmpty())
            values << value;
    }
    values.removeDuplicates();
    return values;
}

/// What records are drawn from.
struct Vocabulary {
    struct Place {
        qint32 id;
        double longitude, latitude;
    };
    QList<Place> places;
    QList<qint32> people;
    QList<qint32> species;
    QStringList remarks, habitats, herbaria, pictures, legends;
};

Vocabulary vocabularyOf(const DemoData& data, const DemoReference& reference, const QList<qint32>& species)
{
    Vocabulary words;
    const QHash<QString, DemoPoint> points = data.points();
    for (const DemoPlace& place : data.places) {
        if (const DemoPoint point = points.value(place.key); point.origin.isEmpty())
            words.places.append({reference.places.value(place.key), point.longitude, point.latitude});
    }
    words.people = reference.people.values();
    std::sort(words.people.begin(), words.people.end()); // a hash has no order of its own
    words.species = species;
    words.remarks = valuesOf(data.individuals, [](const DemoIndividual& i) { return i.dataset == u"NC" ? QString() : i.remarks; });
    words.habitats = valuesOf(data.individuals, [](const DemoIndividual& i) { return i.dataset == u"NC" ? i.remarks : QString(); });
    words.herbaria = demoHerbaria(data);
    words.pictures = valuesOf(data.images, [](const DemoImage& image) { return image.file; });
    words.legends = valuesOf(data.images, [](const DemoImage& image) { return image.caption; });
    return words;
}

/// One run over a project.
class Inventor {
public:
    Inventor(jet::Database& database, const Vocabulary& words, quint64 seed, const QString& stamp)
        : m_words(words), m_dice(seed), m_individuals(database, u"Individus"_s, stamp),
          m_determinations(database, u"Déterminations"_s, stamp), m_images(database, u"Images"_s, stamp),
          m_measures(database, u"Mesures"_s, stamp)
    {
    }

    void individual();

private:
    QVariant date(int firstYear, int lastYear);
    QString herbaria();
    void determination(qint32 owner);
    void image(qint32 owner);
    void measure(qint32 owner, const Vocabulary::Place& place);

    const Vocabulary& m_words;
    Dice m_dice;
    RowAppender m_individuals, m_determinations, m_images, m_measures;
};

/// One date in ten is a month, one in ten a year.
QVariant Inventor::date(int firstYear, int lastYear)
{
    const int precision = m_dice.below(10);
    const QString year = QString::number(firstYear + m_dice.below(lastYear - firstYear + 1));
    const QString month = QString::number(1 + m_dice.below(12));
    const QString day = QString::number(1 + m_dice.below(28));
    return demoDateText(year, precision == 0 ? QString() : month, precision <= 1 ? QString() : day);
}

QString Inventor::herbaria()
{
    QStringList codes{m_dice.of(m_words.herbaria)};
    if (m_dice.chance(30))
        codes << m_dice.of(m_words.herbaria);
    codes.removeDuplicates();
    return codes.join(u';');
}

void Inventor::determination(qint32 owner)
{
    static const QStringList reserves{u"cf."_s, u"aff."_s, u"?"_s};
    const bool doubt = m_dice.chance(8);
    m_determinations.add({
        {u"ID Taxons", m_dice.of(m_words.species)},
        {u"ID Collecteurs", m_dice.of(m_words.people)},
        {u"DateDétermination", date(1960, 2024)},
        {u"Réserve", doubt ? QVariant(m_dice.of(reserves)) : QVariant()},
        {u"ID Individus", owner},
        {u"KeyParent", m_individuals.key(owner)},
    });
}

/// A fifth of the pictures hang under the last determination, the others under the individual.
void Inventor::image(qint32 owner)
{
    const bool deeper = m_dice.chance(20);
    m_images.add({
        {u"Fichier", m_dice.of(m_words.pictures)},
        {u"Légende", m_dice.of(m_words.legends)},
        {u"DatePrise", date(1990, 2024)},
        {u"ID Individus", owner},
        {u"KeyParent", deeper ? m_determinations.key(m_determinations.next() - 1) : m_individuals.key(owner)},
    });
}

void Inventor::measure(qint32 owner, const Vocabulary::Place& place)
{
    const bool height = m_dice.chance(60);
    m_measures.add({
        {u"Rubrique", u"Dendrométrie"_s},
        {u"Méthode", u"Inventaire forestier"_s},
        {u"Organes", height ? u"tronc;plante entière"_s : u"tronc"_s},
        {u"Diamètre", (10 + m_dice.below(1500)) / 10.0},
        {u"Hauteur", height ? QVariant((10 + m_dice.below(400)) / 10.0) : QVariant()},
        {u"Complet", height},
        {u"NombreMesures", height ? 2 : 1},
        {u"DateÉchantillon", date(1990, 2024)},
        {u"ID Localités", place.id},
        {u"ID Individus", owner},
        {u"KeyParent", m_individuals.key(owner)},
    });
}

/// On average 1.5 determinations, 0.5 images and 1 record of measures.
void Inventor::individual()
{
    const Vocabulary::Place place = m_dice.of(m_words.places);
    const int names = m_dice.below(10);
    const int determinations = names < 6 ? 1 : names < 9 ? 2 : 3;
    const int sizes = m_dice.below(10);
    const int measures = sizes < 2 ? 0 : sizes < 8 ? 1 : 2;
    const bool precise = m_dice.chance(50);
    const double longitude = std::round((place.longitude + m_dice.shift() / 20) * 1e6) / 1e6;
    const double latitude = std::round((place.latitude + m_dice.shift() / 20) * 1e6) / 1e6;
    const qint32 owner = m_individuals.add({
        {u"Numéro", QString::number(1 + m_dice.below(9999))},
        {u"ID Collecteurs", m_dice.of(m_words.people)},
        {u"DateRécolte", date(1950, 2024)},
        {u"ID Localités", place.id},
        {u"Longitude", precise ? QVariant(longitude) : QVariant()},
        {u"Latitude", precise ? QVariant(latitude) : QVariant()},
        {u"Altitude", m_dice.chance(70) ? QVariant(double(m_dice.below(2500))) : QVariant()},
        {u"Habitat", m_dice.chance(40) ? QVariant(m_dice.of(m_words.habitats)) : QVariant()},
        {u"Description", m_dice.chance(60) ? QVariant(m_dice.of(m_words.remarks)) : QVariant()},
        {u"Herbier", herbaria()},
        {u"ID Déterminations", m_determinations.next() + determinations - 1},
    });
    for (int i = 0; i < determinations; ++i)
        determination(owner);
    if (m_dice.chance(50))
        image(owner);
    for (int i = 0; i < measures; ++i)
        measure(owner, place);
}

/// Writes invented taxa, a family at a time.
class Flora {
public:
    Flora(TaxonWriter& writer, const DemoData& data, const DemoOptions& options, QList<qint32>& species)
        : m_writer(writer), m_wanted(options.taxons), m_dice(options.graine ^ 0x7a78ULL), m_species(species)
    {
        m_authors = valuesOf(data.taxa, [](const DemoTaxon& taxon) { return taxon.authors; });
    }

    bool complete() const { return m_writer.count() >= m_wanted; }
    void family();

private:
    qint32 add(int rank, qint32 parent, const QString& name)
    {
        return m_writer.add(rank, parent, name, m_dice.of(m_authors), u"Taxon inventé"_s);
    }
    void genus(qint32 family);
    void species(qint32 genus, int number);

    TaxonWriter& m_writer;
    qint32 m_wanted;
    Dice m_dice;
    QList<qint32>& m_species;
    QStringList m_authors;
    int m_families = 0;
    int m_genera = 0;
};

void Flora::species(qint32 genus, int number)
{
    const qint32 species = add(3, genus, epithet(number));
    m_species << species;
    if (!complete() && m_dice.chance(10))
        m_species << add(4, species, u"var. "_s + epithet(number + 1));
}

void Flora::genus(qint32 family)
{
    QString name = capital(word(m_genera++)) + u"a"_s;
    while (m_writer.knows(name))
        name = capital(word(m_genera++)) + u"a"_s;
    const qint32 genus = add(2, family, name);
    const int first = m_dice.below(8000);
    for (int i = 0; i < 18 && !complete(); ++i)
        species(genus, (first + i * 37) % 8000);
}

void Flora::family()
{
    const qint32 family = add(1, 0, capital(word(m_families++)) + u"aceae"_s);
    for (int i = 0; i < 12 && !complete(); ++i)
        genus(family);
}

QString counted(qint64 number)
{
    return QLocale(QLocale::French, QLocale::France).toString(number);
}

} // namespace

void writeSyntheticTaxa(jet::Database& database, TaxonWriter& writer, const DemoData& data,
                        const DemoOptions& options, const QString&, QList<qint32>& species,
                        platform::Progression& progression)
{
    jet::Operation operation(database, u"Démonstration : taxons inventés"_s);
    Flora flora(writer, data, options, species);
    while (!flora.complete()) {
        checkpoint(progression);
        progression.step(u"Création des taxons : "_s + counted(writer.count()),
                         10 + int(10LL * writer.count() / options.taxons));
        flora.family();
    }
    operation.commit();
}

void writeSyntheticRecords(jet::Database& database, const DemoData& data, const DemoReference& reference,
                           const QList<qint32>& species, const DemoOptions& options, const QString& stamp,
                           platform::Progression& progression)
{
    const Vocabulary words = vocabularyOf(data, reference, species);
    Inventor inventor(database, words, options.graine, stamp);
    for (int done = 0; done < options.individus;) {
        progression.step(u"Création des individus : "_s + counted(done), 20 + int(70LL * done / options.individus));
        jet::Operation operation(database, u"Démonstration : individus"_s);
        for (const int end = std::min(done + chunk, options.individus); done < end; ++done) {
            if (done % 500 == 0)
                checkpoint(progression);
            inventor.individual();
        }
        operation.commit();
    }
}

} // namespace app
