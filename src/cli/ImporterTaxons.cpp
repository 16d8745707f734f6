// herbora-cli importer taxons LISTE FICHIER
#include "cli/Bench.h"
#include "cli/Commands.h"
#include "reference/TaxonImport.h"

namespace cli {

using namespace Qt::StringLiterals;

int runImportTaxons(const Arguments& arguments)
{
    if (arguments.words.size() != 3)
        throw UsageError{u"Usage : herbora-cli importer taxons LISTE FICHIER"_s};
    // In whatever order they are given, the project is the one that has the name of one.
    const bool projectFirst = arguments.words[1].endsWith(u".hbx"_s, Qt::CaseInsensitive);
    const QString list = arguments.words[projectFirst ? 2 : 1];
    Bench bench(arguments, true);
    TerminalProgression quiet(false);
    if (!bench.session.open(arguments.words[projectFirst ? 1 : 2], quiet))
        return Failure;
    try {
        reference::TaxonImport import(bench.session.database(), bench.clock);
        const reference::ImportReport report = import.run(list, bench.progression);
        printLine({});
        printLine(report.text());
    } catch (const jet::Error& error) {
        printError(u"Erreur "_s + QString::number(error.number()) + u" : "_s + error.description());
        return Failure;
    }
    return Success;
}

} // namespace cli
