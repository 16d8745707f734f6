#include "cli/Bench.h"
#include "cli/Commands.h"
#include "cli/RequeteExports.h"

#include "cli/Terminal.h"
#include "query/Query.h"
#include "query/Results.h"
#include "reference/Cl_Localite.h"

namespace cli {

using namespace Qt::StringLiterals;

namespace {

/// Everything that a stored query needs to run.
class StoredQuery {
public:
    explicit StoredQuery(Bench& bench)
        : m_places({bench.session.database(), bench.clock, bench.dialogues, context()}),
          m_structure(bench.session.database(), context()),
          query(m_structure, {bench.session.database(), bench.clock, bench.dialogues, bench.session.properties(),
                              [this](qint32 place) { return m_places.CodeLocalité(place); }})
    {
        m_structure.LoadStructure(bench.session.modules());
    }

private:
    editing::EditingContext context()
    {
        editing::EditingContext made;
        made.nextId = [this] { return ++m_counter; };
        return made;
    }

    qint32 m_counter = 0;
    reference::Cl_Localité m_places;
    query::Structure m_structure;

public:
    query::Query query;
};

/// The query of that name; throws UsageError when there is none, or several and no module says which.
int identifierOf(const app::Session& session, const QString& name, const QString& module)
{
    QList<data::PropertyObject> found;
    for (const data::PropertyObject& object : session.properties().list(data::kindRequête, module)) {
        if (object.name.compare(name, Qt::CaseInsensitive) == 0)
            found << object;
    }
    if (found.isEmpty())
        throw UsageError{u"Il n'y a pas de requête « "_s + name + u" »."_s};
    if (found.size() > 1)
        throw UsageError{u"Plusieurs modules ont une requête « "_s + name + u" » : indiquez --module."_s};
    return found.first().id;
}

void printRows(query::Results& results)
{
    const auto line = [](QStringList cells) {
        for (QString& cell : cells)
            cell = plainCell(cell);
        printLine(cells.join(u'\t'));
    };
    line(results.Header());
    for (qint64 row = 0; row < results.CountRow(); ++row)
        line(results.rowTexts(row));
}

int runRows(const Arguments& arguments, Bench& bench, const QString& statement)
{
    query::Results results(bench.session.database());
    if (!results.Refresh(statement)) {
        printError(u"Erreur "_s + QString::number(results.error()->number()) + u" : "_s
                   + results.error()->description());
        return Failure;
    }
    if (!arguments.has(u"--csv"_s)) {
        printRows(results);
        return Success;
    }
    if (!results.ExportCSV(bench.dialogues, arguments.options.value(u"--csv"_s)))
        return Failure;
    printLine(results.textCount());
    return Success;
}

} // namespace

int runRequest(const Arguments& arguments)
{
    const QString file = arguments.file();
    if (arguments.words.size() != 2)
        throw UsageError{u"Indiquez le nom de la requête."_s};
    if (arguments.has(u"--csv"_s) && arguments.options.value(u"--csv"_s).isEmpty())
        throw UsageError{u"L'option --csv attend le nom du fichier à écrire."_s};
    const bool maps = wantsMapFiles(arguments);
    Bench bench(arguments, false);
    if (!bench.session.open(file, bench.progression))
        return Failure;
    StoredQuery stored(bench);
    if (!stored.query.LoadRequête(
            identifierOf(bench.session, arguments.words[1], arguments.options.value(u"--module"_s))))
        return Failure;
    const QList<query::RowError> errors = stored.query.errors();
    for (const query::RowError& error : errors)
        printError(u"Critère "_s + QString::number(error.row + 1) + u" : "_s + error.text);
    const QString statement = errors.isEmpty() ? stored.query.SQLStatement() : QString();
    if (statement.isEmpty())
        return Failure;
    if (arguments.has(u"--sql"_s)) {
        printLine(statement);
        return Success;
    }
    if (maps)
        return writeMapFiles(arguments, bench, stored.query.mapStatement(), stored.query.NomQuery());
    return runRows(arguments, bench, statement);
}

} // namespace cli
