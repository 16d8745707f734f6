#include "ReferenceOperations.h"

#include "Project.h"
#include "app/References.h"
#include "jet/Recordset.h"
#include "platform/ReplaceFile.h"
#include "reference/TaxonImport.h"

#include <QFile>
#include <stdexcept>

namespace faults {

using namespace Qt::StringLiterals;

namespace {

const QString projectFile = u"projet.hbx"_s;
const QString listFile = u"liste.tsv"_s;
const QString refusedFile = u"liste.refus.tsv"_s;
constexpr int manyPlaces = 10'000;
constexpr int manyNames = 400;

QString projectState(const QString& folder)
{
    return fingerprint(folder + u'/' + projectFile);
}

void reopen(const QString& folder)
{
    Workplace place(folder);
    if (!place.open()) {
        throw std::runtime_error("le projet ne s'ouvre plus");
    }
    place.session().close();
}

bool withLists(const QString& folder, const std::function<bool(app::References&)>& work)
{
    Workplace place(folder);
    if (!place.open()) {
        return false;
    }
    const bool done = work(place.session().references());
    place.session().close();
    return done;
}

// --- Ten thousand places --------------------------------------------------------------------

void preparePlaces(const QString& folder)
{
    makeProject(folder);
    withProject(folder, [](jet::Database& database) {
        database.Execute(u"DELETE * FROM [Localités]"_s);
        const auto rows = database.OpenRecordset(u"Localités"_s, jet::RecordsetType::Table);
        qint32 first = 0;
        for (int n = 0; n < manyPlaces + 2; ++n) {
            rows->AddNew();
            rows->SetValue(u"Localité", u"L%1"_s.arg(n));
            rows->SetValue(u"LongDD", 0);
            rows->SetValue(u"LatDD", 0);
            rows->Update();
            rows->MoveToLastModified();
            const qint32 id = rows->Value(u"ID Localités").toInt();
            first = n == 0 ? id : first;
            const QString own = QString::number(id);
            rows->Edit();
            rows->SetValue(u"CodeRegion", n < 2 ? own : QString::number(first) + u'/' + own);
            rows->SetValue(u"ID Type", n < 2 ? 0 : 1);
            rows->Update();
        }
    });
}

/// The first place, with all that lies in it, goes into the second one.
bool movePlaces(const QString& folder)
{
    return withLists(folder, [](app::References& lists) {
        reference::Cl_Localité& places = lists.places();
        const qint32 moved = places.SearchLocalités(u"L0"_s).ids.value(0);
        const qint32 target = places.SearchLocalités(u"L1"_s).ids.value(0);
        places.Move({moved}, target);
        return places.IDparent(moved) == target;
    });
}

// --- Names ----------------------------------------------------------------------------------

void prepareList(const QString& folder)
{
    makeProject(folder);
    QFile file(folder + u'/' + listFile);
    if (!file.open(QIODevice::WriteOnly)) {
        throw std::runtime_error("la liste ne peut pas être écrite");
    }
    file.write("id\tfamily\tgenus\tspecies\tinfra_rank\tinfra_epithet\tauthors\taccepted_id\n");
    for (int n = 0; n < manyNames; ++n) {
        const QByteArray number = QByteArray::number(n);
        // Every ninth row has no family, so that there is something to refuse.
        file.write(number + (n % 9 == 8 ? "\t\tSolus" + number : "\tFagaceae\tGenre" + QByteArray::number(n / 40)) + "\tsp" + number
                   + "\t\t\tL.\t" + (n % 7 == 6 ? QByteArray::number(n - 1) : QByteArray()) + '\n');
    }
}

bool importList(const QString& folder)
{
    Workplace place(folder);
    if (!place.open()) {
        return false;
    }
    try {
        platform::NoProgression progression;
        reference::TaxonImport(place.session().database(), place.session().surroundings().clock)
            .run(folder + u'/' + listFile, progression);
    } catch (const jet::Error& error) {
        return say(error.description());
    }
    place.session().close();
    return true;
}

/// The next import begins by sweeping away what one that was cut off has left; here it finds nothing to read.
void importAgain(const QString& folder)
{
    reopen(folder);
    platform::removeUnfinished(folder + u'/' + refusedFile);
}

void prepareGenus(const QString& folder)
{
    prepareList(folder);
    if (!importList(folder)) {
        throw std::runtime_error("la liste ne peut pas être lue");
    }
    QFile::remove(folder + u'/' + refusedFile);
}

bool renameGenus(const QString& folder)
{
    return withLists(folder, [](app::References& lists) {
        reference::Cl_Taxon& taxa = lists.taxa();
        const qint32 genus = taxa.SearchTaxons(u"Genre1"_s, 2).ids.value(0);
        editing::Cl_Editions form(lists.context());
        taxa.FillTabEdit(form, genus, taxa.IDparent(genus));
        form.Item(u"Nom Complet"_s)->setValue(u"Quercus"_s);
        return taxa.Save(form) || say(u"le genre n'a pas été enregistré"_s);
    });
}

} // namespace

std::vector<Operation> referenceOperations()
{
    return {
        {u"deplacer-localites"_s, preparePlaces, movePlaces, reopen, projectState, {projectFile}, {}},
        {u"importer-taxons"_s, prepareList, importList, importAgain, projectState, {projectFile, listFile, refusedFile}, {listFile}},
        {u"renommer-genre"_s, prepareGenus, renameGenus, reopen, projectState, {projectFile, listFile}, {listFile}},
    };
}

} // namespace faults
