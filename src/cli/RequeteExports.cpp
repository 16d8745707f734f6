#include "cli/RequeteExports.h"

#ifdef HERBORA_MAPS
#include "images/ImagePaths.h"
#include "map/Exports.h"
#include "map/Maps.h"
#include "map/PointLoading.h"
#endif

namespace cli {

using namespace Qt::StringLiterals;

QStringList mapFileOptions()
{
    return {u"--points"_s, u"--kml"_s, u"--gtm"_s, u"--scr"_s};
}

bool wantsMapFiles(const Arguments& arguments)
{
    bool wanted = false;
    for (const QString& option : mapFileOptions()) {
        if (arguments.has(option) && arguments.options.value(option).isEmpty())
            throw UsageError{u"L'option "_s + option + u" attend le nom du fichier à écrire."_s};
        wanted = wanted || arguments.has(option);
    }
    return wanted;
}

#ifdef HERBORA_MAPS

namespace {

/// The map named, else the first; throws UsageError when there is none of that name.
map::MapRow chosenMap(const QList<map::MapRow>& maps, const QString& wanted)
{
    for (const map::MapRow& row : maps) {
        if (wanted.isEmpty() || row.name.compare(wanted, Qt::CaseInsensitive) == 0
            || QString::number(row.id) == wanted)
            return row;
    }
    throw UsageError{u"Il n'y a pas de carte « "_s + wanted + u" »."_s};
}

map::ExportContext contextFor(Bench& bench, const map::MapRow& row, const QString& name, const QString& statement,
                              bool picture)
{
    editing::EditingContext editing;
    editing.nextId = [&bench] { return bench.session.nextId(); };
    const reference::Cl_Localité places({bench.session.database(), bench.clock, bench.dialogues, editing},
                                        bench.session.surroundings().applicationFolder);
    map::ExportContext context;
    context.name = name;
    context.description = statement;
    context.region = row.name;
    context.time = platform::stamp(bench.clock);
    context.pictureFile = map::pictureFile(places, row.id, images::imageFolders(bench.session.properties()));
    if (!row.isCalibrated() || context.pictureFile.isEmpty()) {
        printError(u"La carte « "_s + row.name + u" » n'a pas d'image calibrée : les fichiers n'ont que les points."_s);
        context.pictureFile.clear();
        return context;
    }
    context.frame = row.frame;
    if (picture)
        context.picture = map::readPicture(context.pictureFile);
    return context;
}

map::ExportFormat formatOf(const QString& option)
{
    using enum map::ExportFormat;
    return option == u"--points" ? Csv : option == u"--kml" ? Kml : option == u"--gtm" ? Gtm : AcadScr;
}

} // namespace

int writeMapFiles(const Arguments& arguments, Bench& bench, const QString& statement, const QString& name)
{
    if (statement.isEmpty()) {
        printError(u"La requête n'a aucun champ de localité."_s);
        return Failure;
    }
    try {
        const map::Points points = map::loadPoints(bench.session.database(), statement, bench.progression).points;
        const QList<map::MapRow> maps = map::mapsFor(map::mapsOf(bench.session.database()), points);
        const map::ExportContext context =
            contextFor(bench, chosenMap(maps, arguments.options.value(u"--carte"_s)), name, statement,
                       arguments.has(u"--gtm"_s));
        for (const QString& option : mapFileOptions()) {
            if (arguments.has(option)
                && !map::exportPoints(formatOf(option), points, context, bench.dialogues, arguments.options.value(option)))
                return Failure;
        }
        printLine(QString::number(points.size()) + u" localité(s), effectif "_s + QString::number(points.total()));
        if (points.unplaced() > 0)
            printError(QString::number(points.unplaced()) + u" sans coordonnées"_s);
        return Success;
    } catch (const jet::Error& error) {
        printError(u"Erreur "_s + QString::number(error.number()) + u" : "_s + error.description());
        return Failure;
    }
}

#else

int writeMapFiles(const Arguments&, Bench&, const QString&, const QString&)
{
    printError(u"Ce programme a été construit sans les cartes."_s);
    return Failure;
}

#endif

} // namespace cli
