#include "app/DemoData.h"

#include "jet/Error.h"

#include <QFile>
#include <cmath>

/// A resource of a static library has to be asked for, and that outside of any namespace.
static void initialiseDemoResource()
{
    Q_INIT_RESOURCE(demo);
}

namespace app {

using namespace Qt::StringLiterals;

namespace {

/// A tab-separated table with a header line.
class Table {
public:
    explicit Table(const QString& name)
    {
        QFile file(demoResourceFolder() + name);
        if (!file.open(QIODevice::ReadOnly))
            jet::fail(3024, file.fileName());
        QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
        if (lines.isEmpty())
            jet::fail(3049, file.fileName());
        const QStringList header = lines.takeFirst().split(u'\t');
        for (qsizetype i = 0; i < header.size(); ++i)
            m_columns.insert(header[i], i);
        m_rows.reserve(lines.size());
        for (const QString& line : std::as_const(lines))
            m_rows.append(line.split(u'\t'));
    }

    qsizetype size() const { return m_rows.size(); }
    QString text(qsizetype row, const QString& column) const
    {
        return m_rows[row].value(m_columns.value(column, -1));
    }
    std::optional<double> number(qsizetype row, const QString& column) const
    {
        bool readable = false;
        const double value = text(row, column).toDouble(&readable);
        return readable ? std::optional(value) : std::nullopt;
    }

private:
    QHash<QString, qsizetype> m_columns;
    QList<QStringList> m_rows;
};

int rankOf(const QString& name)
{
    static const QStringList ranks{u"family"_s, u"genus"_s, u"species"_s};
    const qsizetype position = ranks.indexOf(name);
    return position < 0 ? 4 : int(position) + 1;
}

QString properCase(const QString& name)
{
    QString result = name.toLower();
    bool first = true;
    for (QChar& c : result) {
        if (first)
            c = c.toUpper();
        first = c == u' ';
    }
    return result;
}

/// The name at its rank alone, in the case of the rank.
QString storedName(const Table& table, qsizetype row, int rank)
{
    if (rank <= 2)
        return properCase(table.text(row, u"name"_s));
    if (rank == 3)
        return table.text(row, u"species"_s).toLower();
    return (table.text(row, u"infra_rank"_s) + u' ' + table.text(row, u"infra_epithet"_s)).trimmed().toLower();
}

void readTaxa(DemoData& data)
{
    const Table table(u"taxa.tsv"_s);
    for (qsizetype row = 0; row < table.size(); ++row) {
        DemoTaxon taxon;
        taxon.key = table.text(row, u"taxon_id"_s);
        taxon.parent = table.text(row, u"parent_id"_s);
        taxon.accepted = table.text(row, u"accepted_id"_s);
        taxon.rank = rankOf(table.text(row, u"rank"_s));
        taxon.name = storedName(table, row, taxon.rank);
        taxon.authors = table.text(row, u"authors"_s);
        taxon.source = table.text(row, u"source"_s);
        data.taxa.append(taxon);
    }
}

void readPlaces(DemoData& data)
{
    const Table table(u"localities.tsv"_s);
    for (qsizetype row = 0; row < table.size(); ++row)
        data.places.append({table.text(row, u"locality_id"_s), table.text(row, u"parent_id"_s),
                            table.text(row, u"name"_s), table.number(row, u"longitude"_s),
                            table.number(row, u"latitude"_s), table.number(row, u"elevation_m"_s)});
}

void readPeople(DemoData& data)
{
    const Table table(u"people.tsv"_s);
    for (qsizetype row = 0; row < table.size(); ++row)
        data.people.append({table.text(row, u"person_id"_s), table.text(row, u"name"_s)});
}

void readIndividuals(DemoData& data)
{
    const Table table(u"individuals.tsv"_s);
    for (qsizetype row = 0; row < table.size(); ++row) {
        DemoIndividual individual;
        individual.key = table.text(row, u"individual_id"_s);
        individual.dataset = table.text(row, u"dataset"_s);
        individual.catalogue = table.text(row, u"catalogue"_s);
        individual.catalogueNo = table.text(row, u"catalogue_no"_s);
        individual.collector = table.text(row, u"collector_id"_s);
        individual.team = table.text(row, u"collectors_verbatim"_s);
        individual.number = table.text(row, u"collector_no"_s);
        individual.year = table.text(row, u"year"_s);
        individual.month = table.text(row, u"month"_s);
        individual.day = table.text(row, u"day"_s);
        individual.place = table.text(row, u"locality_id"_s);
        individual.longitude = table.number(row, u"longitude"_s);
        individual.latitude = table.number(row, u"latitude"_s);
        individual.altitude = table.number(row, u"elevation_m"_s);
        individual.type = table.text(row, u"type_status"_s);
        individual.remarks = table.text(row, u"remarks"_s);
        individual.reference = table.text(row, u"source_ref"_s);
        data.individuals.append(individual);
    }
}

void readSubRecords(DemoData& data)
{
    const Table names(u"determinations.tsv"_s); // its rows stand in the order of `seq`
    for (qsizetype row = 0; row < names.size(); ++row)
        data.determinations[names.text(row, u"individual_id"_s)].append(
            {names.text(row, u"taxon_id"_s), names.text(row, u"name_verbatim"_s),
             names.text(row, u"determiner_id"_s), names.text(row, u"date"_s),
             !names.text(row, u"note"_s).isEmpty(), names.text(row, u"current"_s) == u"1"});

    const Table measures(u"measures.tsv"_s);
    for (qsizetype row = 0; row < measures.size(); ++row)
        data.measures[measures.text(row, u"individual_id"_s)].append(
            {measures.text(row, u"name"_s), measures.text(row, u"value"_s), measures.text(row, u"unit"_s)});

    const Table images(u"images/images.tsv"_s);
    for (qsizetype row = 0; row < images.size(); ++row)
        data.images.append({images.text(row, u"file"_s), images.text(row, u"individual_id"_s),
                            images.text(row, u"caption"_s), images.text(row, u"taken"_s),
                            images.text(row, u"author"_s), images.text(row, u"licence"_s),
                            images.text(row, u"source"_s)});
}

void readMaps(DemoData& data)
{
    const Table maps(u"maps/maps.tsv"_s);
    const auto side = [&maps](qsizetype row, const QString& column) { return maps.number(row, column).value_or(0); };
    for (qsizetype row = 0; row < maps.size(); ++row)
        data.maps.append({maps.text(row, u"file"_s), maps.text(row, u"name"_s), maps.text(row, u"locality_id"_s),
                          side(row, u"left"_s), side(row, u"top"_s), side(row, u"right"_s), side(row, u"bottom"_s)});
}

struct Sum {
    double longitude = 0;
    double latitude = 0;
    int count = 0;

    void add(std::optional<double> x, std::optional<double> y)
    {
        if (!x || !y)
            return;
        longitude += *x;
        latitude += *y;
        ++count;
    }
    void add(const Sum& other)
    {
        longitude += other.longitude;
        latitude += other.latitude;
        count += other.count;
    }
};

/// Six decimals of a degree: a tenth of a metre.
double rounded(double degrees)
{
    return std::round(degrees * 1e6) / 1e6;
}

/// The middle of the countries that no point of the sources lies in, to half a degree.
std::optional<DemoPoint> middleOfCountry(const QString& name)
{
    static const QHash<QString, DemoPoint> middles{
        {u"Guyane française"_s, {-53.0, 4.0, {}}},
        {u"Gabon"_s, {11.5, -0.5, {}}},
        {u"Côte d'Ivoire"_s, {-5.5, 7.5, {}}},
    };
    const auto found = middles.find(name);
    if (found == middles.end())
        return std::nullopt;
    return DemoPoint{found->longitude, found->latitude, u"milieu du pays"_s};
}

} // namespace

QString demoResourceFolder()
{
    initialiseDemoResource();
    return u":/demo/"_s;
}

QString demoDateText(const QString& year, const QString& month, const QString& day)
{
    if (year.isEmpty())
        return {};
    QString text = year.rightJustified(4, u'0');
    if (!month.isEmpty())
        text += u'/' + month.rightJustified(2, u'0');
    if (!month.isEmpty() && !day.isEmpty())
        text += u'/' + day.rightJustified(2, u'0');
    return text;
}

DemoData DemoData::read()
{
    DemoData data;
    readTaxa(data);
    readPlaces(data);
    readPeople(data);
    readIndividuals(data);
    readSubRecords(data);
    readMaps(data);
    return data;
}

QHash<QString, DemoPoint> DemoData::points() const
{
    QHash<QString, Sum> below;
    for (const DemoIndividual& individual : individuals)
        below[individual.place].add(individual.longitude, individual.latitude);
    for (qsizetype i = places.size() - 1; i >= 0; --i) { // children first
        Sum& own = below[places[i].key];
        if (places[i].longitude && places[i].latitude) {
            own = {};
            own.add(places[i].longitude, places[i].latitude);
        }
        if (!places[i].parent.isEmpty()) {
            const Sum sum = own; // the next line may move what `own` refers to
            below[places[i].parent].add(sum);
        }
    }

    QHash<QString, DemoPoint> points;
    for (const DemoPlace& place : places) {
        const Sum sum = below.value(place.key);
        if (place.longitude && place.latitude)
            points.insert(place.key, {*place.longitude, *place.latitude, {}});
        else if (sum.count > 0)
            points.insert(place.key, {rounded(sum.longitude / sum.count), rounded(sum.latitude / sum.count),
                                      u"moyenne des points"_s});
        else if (const auto middle = middleOfCountry(place.name))
            points.insert(place.key, *middle);
        else if (points.contains(place.parent))
            points.insert(place.key, points.value(place.parent));
        else
            throw jet::Error(3314, u"Aucun point connu pour la localité « %1 »."_s.arg(place.name));
    }
    return points;
}

} // namespace app
