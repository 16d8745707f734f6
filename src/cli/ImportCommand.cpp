// herbora-cli importer GENRE …: one source file for each kind, one line here.
#include "cli/Commands.h"

namespace cli {

using namespace Qt::StringLiterals;

int runImport(const Arguments& arguments)
{
    static const QHash<QString, int (*)(const Arguments&)> kinds{
        {u"access"_s, runImportAccess},
        {u"structure"_s, runImportStructure},
        {u"csv"_s, runImportCsv},
        {u"taxons"_s, runImportTaxons},
    };
    const auto kind = kinds.find(arguments.words.value(0));
    if (kind == kinds.end())
        throw UsageError{u"Indiquez ce qu'il faut importer : "_s + QStringList(kinds.keys()).join(u", "_s)};
    return (*kind)(arguments);
}

} // namespace cli
