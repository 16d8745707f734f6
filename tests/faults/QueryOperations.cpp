#include "QueryOperations.h"

#include "Project.h"
#include "query/BatchReplace.h"
#include "query/Results.h"

#include <QFile>
#include <stdexcept>

namespace faults {

using namespace Qt::StringLiterals;

namespace {

constexpr int records = 400;

/// Opens the project and does the work; false when it failed, which was said.
bool withSession(const QString& folder, const std::function<bool(app::Session&)>& work)
{
    Workplace place(folder);
    if (!place.open())
        return false;
    const bool done = work(place.session());
    place.session().close();
    return done;
}

QByteArray bytesOf(const QString& folder)
{
    QFile file(folder + u'/' + exportFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// Texts so long that they change many pages, and an older export.
void prepareQueries(const QString& folder)
{
    makeProject(folder);
    withProject(folder, [](jet::Database& database) {
        for (int i = 0; i < records; ++i)
            database.Execute(u"INSERT INTO Individus (Numéro, Habitat) VALUES (\"Q%1\", \"%2\")"_s.arg(
                QString::number(i), QString(300, u'é')));
        database.Execute(u"UPDATE Individus SET Locked = True WHERE Numéro LIKE \"*7\""_s);
    });
    QFile file(folder + u'/' + exportFile);
    if (file.open(QIODevice::WriteOnly))
        file.write("\"ancien\"\r\n");
}

bool replaceValues(const QString& folder)
{
    return withSession(folder, [](app::Session& session) {
        editing::EditingContext context;
        context.nextId = [&session] { return session.nextId(); };
        const app::Surroundings& around = session.surroundings();
        const data::ModuleRecord* module = session.dictionary().module(data::moduleIndividus);
        query::BatchReplace batch(session.database(), around.clock, around.dialogues, context, *module);
        batch.rows = {{.champ = u"Habitat"_s, .value = u" et rochers~&"_s}, {.champ = u"Altitude"_s, .value = u"120"_s}};
        return batch.execute().value_or(0) > 0;
    });
}

bool exportResult(const QString& folder)
{
    return withSession(folder, [&folder](app::Session& session) {
        query::Results results(session.database());
        if (!results.Refresh(u"SELECT DISTINCTROW [Individus].[ID Individus] AS [Individu],[Individus].[ID Individus] AS "
                             "[ID Individus],[Individus].[Habitat] AS [Habitat] FROM [Individus]"_s))
            return say(results.error()->description());
        return results.ExportCSV(session.surroundings().dialogues, folder + u'/' + exportFile, true);
    });
}

void exportAgain(const QString& folder)
{
    // What stands there now is what the accident left: it must not be judged by what comes here.
    const QByteArray kept = bytesOf(folder);
    if (!exportResult(folder))
        throw std::runtime_error("le résultat ne peut plus être exporté");
    QFile file(folder + u'/' + exportFile);
    if (!file.open(QIODevice::WriteOnly) || file.write(kept) != kept.size())
        throw std::runtime_error("le fichier exporté ne peut pas être remis");
}

QString exportState(const QString& folder)
{
    return QString::fromLatin1(bytesOf(folder).toHex());
}

} // namespace faults
