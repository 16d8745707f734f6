#include "app/import/CsvImport.h"

#include "app/Session.h"
#include "app/import/ImportRows.h"
#include "data/FieldType.h"
#include "data/ReferenceTypes.h"
#include "jet/Cancelled.h"
#include "platform/ReplaceFile.h"

#include <QFileInfo>
#include <QLoggingCategory>

namespace app {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(csvLog, "herbora.importation", QtWarningMsg)

constexpr int unwritableError = 3051;
constexpr qint64 linesBetweenLooks = 256;
constexpr qsizetype mostUnknown = 5000;
constexpr int toTheEnd = 98; ///< Percents for the rows; what is left is for writing it all to the disk.

/// Refused rows as they come, beside the table.
class RefusedFile {
public:
    RefusedFile(const ImportPlan& plan, const QStringList& header) : m_path(refusedPath(plan.file)), m_separator(plan.format.separator)
    {
        m_header = QStringList(header) << u"Motif"_s;
    }

    void add(const QStringList& cells, const QString& reason)
    {
        if (!m_file) {
            m_file = std::make_unique<platform::FileReplacement>(m_path);
            said(m_file->open());
            said(m_file->write(QByteArrayLiteral("\xEF\xBB\xBF") + csvRow(m_header, m_separator).toUtf8()));
        }
        QStringList row = cells;
        while (row.size() < m_header.size() - 1)
            row << QString();
        said(m_file->write(csvRow(row << reason, m_separator).toUtf8()));
    }

    /// Gives the path; empty when nothing was refused.
    QString commit()
    {
        if (!m_file)
            return {};
        if (const QString error = m_file->commit(); !error.isEmpty())
            throw jet::Error(unwritableError, u"Les lignes ont été importées, mais celles qui ont été refusées n'ont pas pu être écrites dans « %1 » : %2"_s
                                                  .arg(m_path, error));
        return m_path;
    }

private:
    void said(const QString& error) const
    {
        if (!error.isEmpty())
            throw jet::Error(unwritableError, u"Impossible d'écrire les lignes refusées dans « %1 » : %2"_s.arg(m_path, error));
    }

    QString m_path;
    QChar m_separator;
    QStringList m_header;
    std::unique_ptr<platform::FileReplacement> m_file;
};

/// Hands every row to the work, with steps and looks whether the user wants to stop.
template<typename Work>
void walk(CsvReader& reader, platform::Progression& progression, const QString& text, Work&& work)
{
    int told = -1;
    for (qint64 row = 0; reader.next(); ++row) {
        if (row % linesBetweenLooks == 0) {
            if (progression.cancelled())
                jet::fail(jet::cancelledError);
            if (const int percent = reader.percent() * toTheEnd / 100; percent != told)
                progression.step(text, told = percent);
        }
        work(row);
    }
}

/// Type of the names in a column; 0 for a column that holds none.
int nameType(const ImportField& field)
{
    return field.key == importParent ? int(data::Localité) : data::isReference(field.type) ? field.type : 0;
}

void checkShape(const CsvReader& reader)
{
    if (reader.damaged())
        throw RowRefused{u"Un guillemet est ouvert et jamais refermé"_s, reader.cells().value(0)};
    if (reader.cells().size() > reader.header().size())
        throw RowRefused{u"La ligne a plus de cellules que la ligne de titres"_s, reader.cells().last()};
}

} // namespace

QString refusedPath(const QString& file)
{
    const QFileInfo info(file);
    const QString stem = info.absolutePath() + u'/' + info.completeBaseName() + u".refus"_s;
    QString path = stem + u".csv"_s;
    for (int n = 2; QFileInfo::exists(path); ++n)
        path = stem + u'-' + QString::number(n) + u".csv"_s;
    return path;
}

QString CsvImport::problem(const ImportPlan& plan)
{
    const auto mapped = [&](const QString& key) { return plan.mapping.contains(key); };
    if (!plan.target.isValid())
        return u"Indiquez le module ou la liste où importer."_s;
    if (std::all_of(plan.mapping.begin(), plan.mapping.end(), [](const QString& key) { return key.isEmpty(); }))
        return u"Aucune colonne du fichier n'a de champ dans « %1 »."_s.arg(plan.target.label);
    const bool changesOnly = plan.update && mapped(importId);
    for (const ImportField& field : plan.target.fields) {
        if (field.required && !mapped(field.key) && !changesOnly)
            return u"Le champ obligatoire « %1 » n'a pas de colonne."_s.arg(field.caption);
    }
    if (plan.target.field(importIndividu) && !mapped(importIndividu) && !mapped(importNuméro) && !changesOnly)
        return u"Aucune colonne ne dit à quel individu appartient chaque ligne : son identifiant ou son numéro."_s;
    if (plan.target.name == u"Taxons" && !changesOnly && !mapped(u"Nom Complet"_s) && !mapped(u"ID Genre"_s) && !mapped(u"ID Famille"_s))
        return u"Aucune colonne ne donne le nom des taxons."_s;
    return plan.update && !mapped(importId) ? u"Aucune colonne ne donne l'identifiant des enregistrements à modifier."_s : QString();
}

QList<UnknownName> CsvImport::unknownNames(const ImportPlan& plan, platform::Progression& progression)
{
    ImportJob job(m_session, plan);
    CsvReader reader(plan.file, plan.format);
    QList<UnknownName> unknown;
    QHash<NameKey, qsizetype> places;
    QSet<NameKey> ownNames; // places that rows above add themselves
    const bool addsPlaces = plan.target.name == u"Localités";
    walk(reader, progression, u"Recherche des noms"_s, [&](qint64) {
        for (const ImportColumn& column : job.columns) {
            const int type = nameType(column.field);
            const QString name = type ? ImportJob::cell(reader.cells(), &column).simplified() : QString();
            const NameKey key = nameKey(type, name);
            if (name.isEmpty() || reader.damaged() || ownNames.contains(key))
                continue;
            if (const auto place = places.constFind(key); place != places.constEnd()) {
                ++unknown[*place].rows;
                continue;
            }
            const NameFound found = job.names.find(type, name);
            if (found.id > 0 || unknown.size() >= mostUnknown)
                continue;
            places.insert(key, unknown.size());
            unknown.append({type, name, 1, reader.line(), found.several});
        }
        if (addsPlaces)
            ownNames.insert(nameKey(data::Localité, ImportJob::cell(reader.cells(), job.column(u"Localité"_s))));
    });
    for (UnknownName& name : unknown)
        name.near = job.names.near(name.type, name.name);
    std::stable_sort(unknown.begin(), unknown.end(), [](const UnknownName& a, const UnknownName& b) { return a.type < b.type; });
    return unknown;
}

ImportReport CsvImport::run(const ImportPlan& plan, platform::Progression& progression, bool rehearsal)
{
    if (const QString why = problem(plan); !why.isEmpty())
        throw jet::Error(unwritableError, why);
    platform::removeUnfinished(refusedPath(plan.file)); // of an import that was cut off
    CsvReader reader(plan.file, plan.format);
    RefusedFile refusedFile(plan, reader.header());
    jet::Operation operation(m_session.database(), u"Importation dans %1"_s.arg(plan.target.label));
    ImportJob job(m_session, plan);
    job.report.rehearsal = rehearsal;
    const std::unique_ptr<ImportRows> rows = ImportRows::make(job);
    const auto refuse = [&](const QString& reason, const QString& text) {
        job.report.refuse(reason, reader.line(), text);
        if (!rehearsal)
            refusedFile.add(reader.cells(), text.isEmpty() || text.size() > 200 ? reason : reason + u" (« %1 »)"_s.arg(text.simplified()));
    };
    walk(reader, progression, rehearsal ? u"Essai de l'importation"_s : u"Importation"_s, [&](qint64) {
        ++job.report.rows;
        try {
            checkShape(reader);
            rows->take(reader.cells());
        } catch (const RowRefused& refused) {
            refuse(refused.reason, refused.text);
        } catch (const jet::Error& error) {
            if (!concernsRow(error.number()))
                throw;
            refuse(error.description(), {});
        }
    });
    job.report.sortProblems();
    if (!rehearsal) {
        progression.step(u"Enregistrement"_s, toTheEnd);
        keepMapping(m_session.properties(), plan.target, reader.header(), plan.mapping);
        operation.commit();
        job.report.refusedFile = refusedFile.commit();
    }
    progression.step(rehearsal ? u"Essai terminé"_s : u"Importation terminée"_s, 100);
    qCInfo(csvLog) << job.report.rows << "rows" << job.report.added << "added" << job.report.refused << "refused";
    return job.report;
}

} // namespace app
