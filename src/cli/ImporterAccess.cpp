// herbora-cli importer access FICHIER SORTIE
#include "app/AccessImport.h"
#include "cli/Bench.h"
#include "cli/Commands.h"

#include <QFileInfo>

namespace cli {

using namespace Qt::StringLiterals;

int runImportAccess(const Arguments& arguments)
{
    if (arguments.words.size() != 3)
        throw UsageError{u"Usage : herbora-cli importer access FICHIER SORTIE"_s};
    Bench bench(arguments, true);
    app::AccessPlan plan{QFileInfo(arguments.words[1]).absoluteFilePath(),
                         QFileInfo(arguments.words[2]).absoluteFilePath(),
                         arguments.options.value(u"--mot-de-passe"_s)};
    if (!app::askPassword(bench.session.surroundings(), plan)
        || !app::convertAndOpen(bench.session, plan, bench.progression))
        return Failure;
    printLine({});
    printLine(bench.session.database().Property(app::importReportProperty).toString());
    return Success;
}

} // namespace cli
