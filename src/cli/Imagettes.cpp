// herbora-cli imagettes FICHIER
#include "images/Imagettes.h"

#include "cli/Bench.h"
#include "cli/Commands.h"
#include "images/ImagePaths.h"

namespace cli {

using namespace Qt::StringLiterals;

namespace {

int refused(const jet::Error& error)
{
    printError(u"Erreur "_s + QString::number(error.number()) + u" : "_s + error.description());
    return Failure;
}

} // namespace

int runImagettes(const Arguments& arguments)
{
    const QString file = arguments.file();
    Bench bench(arguments, false);
    if (!bench.session.open(file, bench.progression))
        return Failure;
    try {
        const QStringList names = images::projectPictures(bench.session.database(), bench.session.modules());
        images::ThumbnailCache cache(bench.session.path(), bench.clock);
        TerminalProgression progression(true);
        const images::FillReport report =
            images::fillThumbnails(cache, names, images::imageFolders(bench.session.properties()), progression);
        if (!cache.notice().isEmpty())
            printError(cache.notice());
        for (const QString& failure : report.failures)
            printError(failure);
        printLine(QString::number(report.made) + u" imagette(s) faite(s), "_s + QString::number(report.kept)
                  + u" à jour, "_s + QString::number(report.failures.size()) + u" image(s) sans imagette"_s);
        return Success;
    } catch (const jet::Error& error) {
        return refused(error);
    }
}

} // namespace cli
