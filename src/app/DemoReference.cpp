#include "app/DemoReference.h"

#include "data/OrNull.h"

namespace app {

using namespace Qt::StringLiterals;
using data::orNull;

namespace {

QString sourceName(const QString& abbreviation)
{
    static const QHash<QString, QString> names{
        {u"RB"_s, u"herbier RB (Jardim Botânico do Rio de Janeiro)"_s},
        {u"NC"_s, u"Niamoto - Nouvelle-Calédonie"_s},
        {u"PHY"_s, u"J. Ratcliff, échantillons d'herbier de Physaria"_s},
        {u"CIRAD"_s, u"xylothèque du CIRAD"_s},
        {u"FFB"_s, u"Flora e Funga do Brasil (JBRJ)"_s},
    };
    return u"Source : "_s + names.value(abbreviation, abbreviation);
}

bool smallWord(const QString& word)
{
    static const QStringList words{u"et"_s, u"al"_s, u"de"_s, u"da"_s, u"do"_s, u"dos"_s, u"das"_s, u"e"_s,
                                   u"von"_s, u"van"_s, u"der"_s, u"du"_s};
    return words.contains(word);
}

struct PlaceWritten {
    qint32 id = 0;
    QString code;
    QString name;
};

void linkSynonyms(jet::Database& database, const DemoData& data, const DemoReference& reference)
{
    const auto rows = database.OpenRecordset(u"Taxons"_s, jet::RecordsetType::Table);
    rows->SetIndex(u"PrimaryKey"_s);
    for (const DemoTaxon& taxon : data.taxa) {
        const qint32 id = reference.taxa.value(taxon.key);
        const qint32 valid = reference.taxa.value(taxon.accepted);
        if (valid == 0 || valid == id)
            continue;
        rows->Seek(u"="_s, {id});
        rows->Edit();
        rows->SetValue(u"ID Valid", valid);
        rows->Update();
    }
}

} // namespace

void checkpoint(const platform::Progression& progression)
{
    if (progression.cancelled())
        jet::fail(3059);
}

QString demoInitials(const QString& name)
{
    const qsizetype comma = name.indexOf(u',');
    const QString turned = comma < 0 ? name : name.mid(comma + 1) + u' ' + name.left(comma);
    QString initials, word;
    for (const QChar c : QString(turned + u' ')) {
        if (c.isLetter()) {
            word += c;
            continue;
        }
        if (!word.isEmpty() && !smallWord(word))
            initials += word.front().toUpper();
        word.clear();
    }
    return (initials.isEmpty() ? name : initials).left(50);
}

void writePeople(jet::Database& database, const DemoData& data, const QString& stamp, DemoReference& reference)
{
    jet::Operation operation(database, u"Démonstration : collecteurs"_s);
    RowAppender rows(database, u"Collecteurs"_s, stamp);
    QHash<QString, qint32> known; // one collector for names that differ in case alone
    for (const DemoPerson& person : data.people) {
        qint32& id = known[person.name.toCaseFolded()];
        if (id == 0) {
            id = rows.add({{u"Collecteur", person.name}, {u"Initiales", demoInitials(person.name)}});
            reference.peopleNames.insert(id, person.name);
        }
        reference.people.insert(person.key, id);
    }
    operation.commit();
}

void writePlaces(jet::Database& database, const DemoData& data, const QString& stamp, DemoReference& reference)
{
    jet::Operation operation(database, u"Démonstration : localités"_s);
    const QHash<QString, DemoPoint> points = data.points();
    RowAppender rows(database, u"Localités"_s, stamp);
    QHash<QString, PlaceWritten> written;
    for (const DemoPlace& place : data.places) {
        const PlaceWritten parent = written.value(place.parent);
        const DemoPoint point = points.value(place.key);
        PlaceWritten made{rows.next(), QString::number(rows.next()), place.name};
        if (parent.id)
            made.code.prepend(parent.code + u'/');
        rows.add({{u"Localité", place.name},
                  {u"LongDD", point.longitude},
                  {u"LatDD", point.latitude},
                  {u"Altitude", orNull(place.altitude)},
                  {u"CodeRegion", made.code},
                  {u"GPSRef", point.origin.isEmpty() ? QVariant() : QVariant(point.origin)},
                  {u"ID Type", int(made.code.count(u'/'))},
                  {u"Nom Entier", parent.id ? parent.name + u" - "_s + place.name : place.name}});
        written.insert(place.key, made);
        reference.places.insert(place.key, made.id);
    }
    operation.commit();
}

void writeMaps(jet::Database& database, const DemoData& data, const QString& stamp, const DemoReference& reference)
{
    constexpr int mapType = -1;
    jet::Operation operation(database, u"Démonstration : cartes"_s);
    const auto places = database.OpenRecordset(u"Localités"_s, jet::RecordsetType::Table);
    places->SetIndex(u"PrimaryKey"_s);
    RowAppender rows(database, u"Localités"_s, stamp);
    for (const DemoMap& map : data.maps) {
        places->Seek(u"="_s, {reference.places.value(map.place)});
        const QString parent = places->NoMatch() ? QString() : places->Value(u"CodeRegion").toString() + u'/';
        rows.add({{u"Localité", map.name},
                  {u"LongDD", map.left},
                  {u"LatDD", map.top},
                  {u"SizeLongDD", map.right},
                  {u"SizeLatDD", map.bottom},
                  {u"ImageRegion", map.file},
                  {u"ID Type", mapType},
                  {u"CodeRegion", parent + QString::number(rows.next())}});
    }
    operation.commit();
}

void writeTaxa(jet::Database& database, const DemoData& data, TaxonWriter& writer, DemoReference& reference)
{
    jet::Operation operation(database, u"Démonstration : taxons"_s);
    for (const DemoTaxon& taxon : data.taxa) {
        const qint32 id = writer.add(taxon.rank, reference.taxa.value(taxon.parent), taxon.name, taxon.authors,
                                     sourceName(taxon.source));
        reference.taxa.insert(taxon.key, id);
        reference.taxonNames.insert(id, QString(writer.fullName(id) + u' ' + writer.authors(id)).trimmed());
    }
    linkSynonyms(database, data, reference);
    operation.commit();
}

} // namespace app
