// The vocabulary of the demo project, as its tables hold it.
#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace app {

/// Ranks 1 to 4: family, genus, species, infraspecific taxon.
struct DemoTaxon {
    QString key;
    QString parent;   ///< Key of the next higher taxon; empty for a family.
    QString accepted; ///< Synonyms: key of the accepted taxon.
    QString name;     ///< The name at this rank alone, in the case in which it is stored ("var. alba").
    QString authors;
    QString source;   ///< Abbreviation of the data set.
    int rank = 0;
};

/// Parents stand before their children.
struct DemoPlace {
    QString key;
    QString parent;
    QString name;
    std::optional<double> longitude, latitude, altitude;
};

struct DemoPerson {
    QString key;
    QString name;
};

struct DemoIndividual {
    QString key;
    QString dataset;
    QString catalogue;   ///< Herbarium codes, or the name of an inventory.
    QString catalogueNo;
    QString collector;   ///< Key of a person.
    QString team;        ///< All collectors, as on the label.
    QString number;
    QString year, month, day;
    QString place;
    std::optional<double> longitude, latitude, altitude;
    QString type;        ///< "HOLOTYPE", "ISOTYPE", "PARATYPE" or empty.
    QString remarks;
    QString reference;
};

struct DemoDetermination {
    QString taxon;
    QString verbatim;   ///< The name as the source writes it.
    QString determiner; ///< Key of a person.
    QString date;       ///< "yyyy-mm-dd" or "yyyy".
    bool earlier = false; ///< One of those before the dated last one, in the order of the source.
    bool current = false;
};

struct DemoMeasure {
    QString name;
    QString value; ///< A number or a range ("4-6").
    QString unit;
};

struct DemoImage {
    QString file;
    QString individual;
    QString caption;
    QString taken;  ///< Date text ("2002/10/07").
    QString author; ///< Key of a person.
    QString licence;
    QString source;
};

/// A map of the project, with the coordinates of its picture's bounds.
struct DemoMap {
    QString file;
    QString name;
    QString place; ///< Key of the place that it shows.
    double left = 0, top = 0, right = 0, bottom = 0;
};

/// Where a place is, and how that is known.
struct DemoPoint {
    double longitude = 0;
    double latitude = 0;
    QString origin; ///< Empty for a point of the source; else what it was made from.
};

struct DemoData {
    QList<DemoTaxon> taxa;
    QList<DemoPlace> places;
    QList<DemoPerson> people;
    QList<DemoIndividual> individuals;
    QHash<QString, QList<DemoDetermination>> determinations; ///< By individual, in their order.
    QHash<QString, QList<DemoMeasure>> measures;             ///< By individual.
    QList<DemoImage> images;
    QList<DemoMap> maps;

    /// From the resource of the program. Throws jet::Error when a table cannot be read.
    static DemoData read();

    /// A point for every place: its own; else the mean of the points below it; else the middle of its country.
    QHash<QString, DemoPoint> points() const;
};

/// Where the tables and pictures are; registers the resource.
QString demoResourceFolder();

/// The date text of the parts that are known ("1990/06"); empty without a year.
QString demoDateText(const QString& year, const QString& month, const QString& day);

} // namespace app
