#include "app/import/NameMatching.h"

#include "app/import/ImportReport.h"
#include "app/import/ImportTarget.h"
#include "data/FieldType.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"
#include "jet/text/TextOrder.h"
#include "reference/Cl_Collecteur.h"
#include "reference/Cl_Localite.h"
#include "reference/Cl_Taxon.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace app {

using namespace Qt::StringLiterals;
using jet::texte;

namespace {

constexpr qsizetype mostNear = 10;
constexpr qsizetype mostKept = 50'000;
constexpr qsizetype shortestBeginning = 3;
const QString noFamily = u"Incertae Sedis"_s;

const QStringList& rankMarks()
{
    static const QStringList marks{u"var."_s, u"subsp."_s, u"ssp."_s, u"f."_s, u"fo."_s, u"subvar."_s, u"cv."_s, u"var"_s, u"subsp"_s, u"ssp"_s};
    return marks;
}

/// "Rosa sp." names the genus.
QString withoutSpeciesMark(const QString& name)
{
    static const QStringList marks{u" sp."_s, u" sp"_s, u" spp."_s, u" spp"_s, u" indet."_s, u" indet"_s};
    for (const QString& mark : marks) {
        if (name.endsWith(mark, Qt::CaseInsensitive))
            return name.chopped(mark.size()).trimmed();
    }
    return name;
}

QString signsOnly(const QString& authors)
{
    QString text;
    for (const QChar c : authors) {
        if (c.isLetterOrNumber() || c == u'&')
            text += c.toLower();
    }
    return text;
}

/// Letters to be changed, added or taken away to make one text of the other.
qsizetype lettersApart(const QString& a, const QString& b)
{
    QList<qsizetype> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (qsizetype i = 1; i <= a.size(); ++i) {
        qsizetype before = std::exchange(row[0], i);
        for (qsizetype j = 1; j <= b.size(); ++j) {
            const qsizetype changed = before + (a[i - 1] == b[j - 1] ? 0 : 1);
            before = row[j];
            row[j] = std::min({changed, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.last();
}

/// "Parcelle 12" is no slip for "Parcelle 13".
QString digitsOnly(const QString& text)
{
    QString digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits), [](QChar c) { return c.isDigit(); });
    return digits;
}

bool resembles(const QString& name, const QString& known)
{
    constexpr qsizetype lettersPerSlip = 6;
    if (name.startsWith(known + u' ', Qt::CaseInsensitive) && PlantName::of(name).authors == name.mid(known.size() + 1))
        return true; // a plant with other authors
    const QString own = foldedName(name);
    return digitsOnly(name) == digitsOnly(known) && lettersApart(own, foldedName(known)) <= own.size() / lettersPerSlip;
}

} // namespace

bool mayBeMeant(const UnknownName& name)
{
    return name.several || std::any_of(name.near.begin(), name.near.end(),
                                       [&](const editing::ReferenceMatch& match) { return resembles(name.name, match.name); });
}

NameKey nameKey(int type, const QString& name)
{
    return {type, name.simplified().toLower()};
}

QString listOfType(int type)
{
    return type == data::Botaniste ? u"Collecteurs"_s : type == data::Localité ? u"Localités"_s : u"Taxons"_s;
}

// --- Matching --------------------------------------------------------------------------------------

NameFound NameMatching::find(int type, const QString& name)
{
    const NameKey key = nameKey(type, name);
    if (const auto known = m_found.constFind(key); known != m_found.constEnd())
        return *known;
    if (m_found.size() >= mostKept)
        m_found.clear();
    return *m_found.insert(key, search(type, name.simplified()));
}

NameFound NameMatching::search(int type, const QString& name) const
{
    bool number = false;
    const qint32 id = name.toInt(&number);
    if (number && exists(type, id))
        return {id};
    const QString text = texte(name);
    switch (type) {
    case data::Botaniste: {
        const NameFound byName = first(u"SELECT TOP 2 [ID Collecteurs] FROM Collecteurs WHERE [Collecteur]="_s + text);
        return byName.id > 0 || byName.several ? byName
                                               : first(u"SELECT TOP 2 [ID Collecteurs] FROM Collecteurs WHERE [Initiales]="_s + text);
    }
    case data::Localité: {
        for (const QString& column : {u"[Localité]"_s, u"[Nom Entier]"_s, u"[GPSRef]"_s}) {
            const NameFound found = first(u"SELECT TOP 2 [ID Localités] FROM [Localités] WHERE "_s + column + u'=' + text
                                          + u" AND [ID Type]>=0"_s);
            if (found.id > 0 || found.several)
                return found;
        }
        return {};
    }
    case data::Taxon:
        return taxon(withoutSpeciesMark(name));
    default:
        return {};
    }
}

NameFound NameMatching::first(const QString& statement) const
{
    const auto rows = m_database.OpenRecordset(statement, jet::RecordsetType::Snapshot);
    if (rows->EOF_())
        return {};
    const qint32 id = rows->Value(0).toInt();
    rows->MoveNext();
    return rows->EOF_() ? NameFound{id} : NameFound{0, true};
}

/// The whole text as a full name, then ever shorter beginnings with the rest as authors.
NameFound NameMatching::taxon(const QString& name) const
{
    QString full = name;
    while (!full.isEmpty()) {
        const QString authors = signsOnly(name.mid(full.size()));
        const auto rows = m_database.OpenRecordset(u"SELECT [ID Taxons],[Auteurs] FROM Taxons WHERE [Nom Complet]="_s + texte(full),
                                                   jet::RecordsetType::Snapshot);
        NameFound found;
        for (; !rows->EOF_(); rows->MoveNext()) {
            if (!authors.isEmpty() && signsOnly(rows->Value(1).toString()) != authors)
                continue;
            if (found.id > 0)
                return {0, true};
            found.id = rows->Value(0).toInt();
        }
        if (found.id > 0)
            return found;
        const qsizetype blank = full.lastIndexOf(u' ');
        full = blank < 0 ? QString() : full.first(blank);
    }
    return {};
}

bool NameMatching::exists(int type, qint32 id) const
{
    const QString list = listOfType(type);
    const auto rows = m_database.OpenRecordset(list, jet::RecordsetType::Table);
    rows->SetIndex(u"PrimaryKey"_s);
    rows->Seek(u"="_s, {id});
    return !rows->NoMatch();
}

QList<editing::ReferenceMatch> NameMatching::near(int type, const QString& name) const
{
    const editing::ReferenceSearch search(m_database);
    // Ever shorter beginnings, word by word, then letter by letter: a mistake stands more often at the end.
    QString beginning = type == data::Taxon ? withoutSpeciesMark(name.simplified()) : name.simplified();
    while (beginning.size() >= shortestBeginning) {
        const QList<editing::ReferenceMatch> found = search.matches(type, beginning);
        if (!found.isEmpty())
            return found.first(qMin(mostNear, found.size()));
        const qsizetype blank = beginning.lastIndexOf(u' ');
        beginning = blank > 0 ? beginning.first(blank) : beginning.chopped(qMax<qsizetype>(1, beginning.size() / 4));
    }
    return {};
}

// --- Creating --------------------------------------------------------------------------------------

platform::Answer QuietDialogues::ask(const platform::Message& message)
{
    m_said = message.text;
    // The one question that matters: a name beside another with other authors. The user said that it shall be.
    return message.buttons == platform::BoxButtons::Ok ? platform::Answer::Ok : platform::Answer::Yes;
}

PlantName PlantName::of(const QString& name)
{
    QStringList words = name.simplified().split(u' ', Qt::SkipEmptyParts);
    PlantName plant;
    const auto take = [&] { return words.isEmpty() ? QString() : words.takeFirst(); };
    const auto takeEpithet = [&] {
        const bool hybrid = !words.isEmpty() && (words.first() == u"×" || words.first() == u"x");
        const QString mark = hybrid ? take() + u' ' : QString();
        return mark + take();
    };
    plant.genus = takeEpithet();
    // An epithet begins with a small letter, an author with a capital one.
    if (words.isEmpty() || !(words.first()[0].isLower() || words.first()[0] == u'×')) {
        plant.authors = words.join(u' ');
        return plant;
    }
    plant.species = takeEpithet();
    for (qsizetype i = 0; i + 1 < words.size(); ++i) {
        if (rankMarks().contains(words[i], Qt::CaseInsensitive) && words[i + 1][0].isLower()) {
            words.remove(0, i); // the authors of the species
            const QString mark = take();
            plant.infra = mark + u' ' + take();
            break;
        }
    }
    plant.authors = words.join(u' ');
    return plant;
}

NameCreation::NameCreation(jet::Database& database, const platform::Clock& clock, const editing::EditingContext& editing)
    : m_database(database), m_world{database, clock, m_dialogues, editing}
{
}

NameCreation::~NameCreation() = default;

qint32 NameCreation::create(int type, const QString& name)
{
    const QString simple = name.simplified();
    switch (type) {
    case data::Botaniste: return createPerson(simple);
    case data::Localité: return createPlace(simple);
    default: return createTaxon(simple);
    }
}

QString NameCreation::initials(const QString& name)
{
    QString text;
    bool begins = true;
    for (const QChar c : name) {
        if (c.isLetter() && begins)
            text += c.toUpper() + QString(u'.');
        begins = !c.isLetterOrNumber() && c != u'\'' && c != QChar(u'’');
    }
    return text.isEmpty() ? name.left(3) : text.left(50);
}

void NameCreation::passOn(const reference::ReferenceList& list, const QString& said)
{
    if (list.lastFailure() != 0 && !concernsRow(list.lastFailure()))
        throw jet::Error(list.lastFailure(), said);
}

qint32 NameCreation::createPerson(const QString& name)
{
    reference::Cl_Collecteur people(m_world);
    editing::Cl_Editions form(m_world.editing);
    people.FillTabEdit(form, 0);
    form.Item(u"Collecteur"_s)->setValue(name);
    form.Item(u"Initiales"_s)->setValue(initials(name));
    people.setIDcBotaniste(0);
    const bool saved = people.Save(form);
    passOn(people, form.Item(u"Collecteur"_s)->TextError());
    if (!saved)
        throw RowRefused{u"Collecteur impossible à créer : "_s + form.Item(u"Collecteur"_s)->TextError(), name};
    return people.IDcBotaniste();
}

qint32 NameCreation::createPlace(const QString& name)
{
    reference::Cl_Localité places(m_world);
    editing::Cl_Editions form(m_world.editing);
    places.FillTabEdit(form, 0);
    form.Item(u"Localité"_s)->setValue(name);
    form.Item(u"LongDD"_s)->setValue(0.0);
    form.Item(u"LatDD"_s)->setValue(0.0);
    places.setIDcLocalité(0);
    const bool saved = places.Save(form, 0);
    passOn(places, form.Item(0)->TextError());
    if (!saved)
        throw RowRefused{u"Localité impossible à créer : "_s + form.Item(0)->TextError(), name};
    return places.IDcLocalité();
}

qint32 NameCreation::taxonUnder(int rank, qint32 parent, const QString& name, const QString& authors)
{
    reference::Cl_Taxon taxa(m_world);
    const qint32 known = taxa.isNewTaxon(reference::Cl_Taxon::storedName(name, rank), parent, u"-1"_s);
    if (known > 0 && (authors.isEmpty() || signsOnly(taxa.Auteurs(known)) == signsOnly(authors)))
        return known;
    editing::Cl_Editions form(m_world.editing);
    taxa.FillTabEdit(form, 0, parent);
    form.Item(u"Nom Complet"_s)->setValue(name);
    form.Item(u"Auteurs"_s)->setValue(authors.isEmpty() ? QVariant() : QVariant(authors));
    taxa.setIDctaxon(0);
    const bool saved = taxa.Save(form);
    passOn(taxa, m_dialogues.said());
    if (!saved)
        throw RowRefused{u"Taxon impossible à créer"_s, (name + u" "_s + m_dialogues.takeSaid()).simplified()};
    return taxa.IDctaxon();
}

qint32 NameCreation::createTaxon(const QString& name)
{
    const PlantName plant = PlantName::of(withoutSpeciesMark(name));
    const auto genus = m_database.OpenRecordset(u"SELECT TOP 1 [ID Taxons] FROM Taxons WHERE [Nom Complet]="_s + texte(plant.genus)
                                                    + u" AND [ID Taxons]=[ID Genre]"_s,
                                                jet::RecordsetType::Snapshot);
    const bool lowest = plant.species.isEmpty();
    if (lowest && plant.genus.endsWith(u"aceae"_s))
        return taxonUnder(1, 0, plant.genus, plant.authors);
    qint32 id = genus->EOF_() ? 0 : genus->Value(0).toInt();
    if (id == 0 || (lowest && !plant.authors.isEmpty()))
        id = taxonUnder(2, taxonUnder(1, 0, noFamily, {}), plant.genus, lowest ? plant.authors : QString());
    if (!plant.species.isEmpty())
        id = taxonUnder(3, id, plant.species, plant.infra.isEmpty() ? plant.authors : QString());
    if (!plant.infra.isEmpty())
        id = taxonUnder(4, id, plant.infra, plant.authors);
    return id;
}

} // namespace app
