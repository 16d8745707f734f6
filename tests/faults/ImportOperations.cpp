#include "ImportOperations.h"

#include "Project.h"
#include "app/import/CsvImport.h"
#include "platform/ReplaceFile.h"

#include <QFile>
#include <QFileInfo>
#include <stdexcept>

namespace faults {

using namespace Qt::StringLiterals;

namespace {

const QString projectFile = u"projet.hbx"_s;
const QString tableFile = u"recoltes.csv"_s;
const QString refusedFile = u"recoltes.refus.csv"_s;

/// Rows that are taken, rows that are refused, names that are created.
void prepareTable(const QString& folder)
{
    makeProject(folder);
    QFile table(folder + u'/' + tableFile);
    if (!table.open(QIODevice::WriteOnly)) {
        throw std::runtime_error("pas de tableau");
    }
    table.write("Numéro;Collecteur;Localité;Altitude;Taxon\n");
    for (int i = 0; i < 60; ++i) {
        const QByteArray number = QByteArray::number(i);
        table.write("IMP" + number + ";Nouvelle Personne " + QByteArray::number(i % 3) + ";Vallée "
                    + QByteArray::number(i % 4) + (i % 10 == 7 ? ";haut;" : ";1200;")
                    + (i % 5 == 0 ? "Novagenus primus L.\n" : "\n"));
    }
}

bool importTable(const QString& folder)
{
    Workplace place(folder);
    if (!place.open()) {
        return false;
    }
    app::Session& session = place.session();
    try {
        app::ImportPlan plan;
        plan.file = folder + u'/' + tableFile;
        plan.format = app::detectCsvFormat(plan.file);
        plan.target = app::importTarget(u"Individus"_s, session.modules(), session.database().schema());
        plan.mapping = app::mapColumns(app::CsvReader(plan.file, plan.format).header(), plan.target, {}, false);
        plan.createNames = true;
        platform::NoProgression silent;
        const app::ImportReport report = app::CsvImport(session).run(plan, silent, false);
        session.close();
        return report.added == 54 && report.refused == 6 ? true : say(report.text());
    } catch (const jet::Error& error) {
        session.close();
        return say(error.description());
    }
}

void reopen(const QString& folder)
{
    platform::removeUnfinished(folder + u'/' + refusedFile);
    Workplace place(folder);
    if (!place.open()) {
        throw std::runtime_error("le projet ne s'ouvre plus");
    }
    place.session().close();
}

/// The project decides: refused rows without it, or it without them, are said to the user and harm nothing. Where they
/// are, they are whole.
QString importState(const QString& folder)
{
    QFile refused(folder + u'/' + refusedFile);
    if (refused.open(QIODevice::ReadOnly) && refused.readAll().count('\n') != 7) {
        throw std::runtime_error("les lignes refusées ne sont pas entières");
    }
    return fingerprint(folder + u'/' + projectFile);
}

} // namespace

const std::vector<Operation>& importOperations()
{
    static const std::vector<Operation> table{
        {u"importer-csv"_s, prepareTable, importTable, reopen, importState, {projectFile, tableFile, refusedFile}, {tableFile}},
    };
    return table;
}

} // namespace faults
