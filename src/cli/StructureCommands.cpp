// herbora-cli exporter structure FICHIER SORTIE, importer structure STRUCTURE FICHIER
#include "app/structure/StructureEditing.h"
#include "app/structure/StructureReview.h"
#include "app/structure/StructureSaving.h"
#include "cli/Bench.h"
#include "cli/Commands.h"

namespace cli {

using namespace Qt::StringLiterals;

int runExport(const Arguments& arguments)
{
    if (arguments.words.size() != 3 || arguments.words[0] != u"structure")
        throw UsageError{u"Usage : herbora-cli exporter structure FICHIER SORTIE"_s};
    Bench bench(arguments, false);
    if (!bench.session.open(arguments.words[1], bench.progression))
        return Failure;
    app::StructureEditing editing(bench.session);
    return editing.exportTo(arguments.words[2]) ? Success : Failure;
}

namespace {

/// What the records say to it; true when it may be saved.
bool agreed(Bench& bench, const app::StructureReview& review)
{
    for (const app::Finding& finding : review.findings)
        printLine(finding.text());
    for (const QString& text : review.conversions + review.losses)
        printLine(text);
    if (review.forbids()) {
        printError(u"Des enregistrements ne respectent pas les nouvelles règles : rien n'a été modifié."_s);
        return false;
    }
    return !review.losesData() || bench.dialogues.confirm(u"Ces données seront modifiées. Continuer ?"_s, u"Herbora"_s);
}

} // namespace

int runImportStructure(const Arguments& arguments)
{
    if (arguments.words.size() != 3)
        throw UsageError{u"Usage : herbora-cli importer structure STRUCTURE FICHIER"_s};
    Bench bench(arguments, true);
    TerminalProgression quiet(false);
    if (!bench.session.open(arguments.words[2], quiet))
        return Failure;
    app::StructureEditing editing(bench.session);
    if (!editing.importAllFrom(arguments.words[1]))
        return Failure;
    const app::StructurePlan plan = editing.plan();
    if (plan.isEmpty()) {
        printLine(u"La structure est déjà celle de ce fichier."_s);
        return Success;
    }
    try {
        const app::StructureReview review = app::reviewOf(bench.session.database(), plan, quiet);
        if (!agreed(bench, review))
            return Failure;
        return app::saveStructure(bench.session, plan, review.losesData(), bench.progression) ? Success : Failure;
    } catch (const jet::Error& error) {
        printError(u"Erreur "_s + QString::number(error.number()) + u" : "_s + error.description());
        return Failure;
    }
}

} // namespace cli
