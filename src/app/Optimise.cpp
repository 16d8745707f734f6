// The optimise command: repair of links, compaction with a backup.
#include "app/ProjectFiles.h"
#include "app/Session.h"
#include "data/Cancellable.h"
#include "data/StatementTemplate.h"
#include "jet/Cancelled.h"
#include "jet/Compaction.h"
#include "jet/SqlText.h"

#include <QFile>
#include <QLoggingCategory>

namespace app {

using namespace Qt::StringLiterals;
using data::filled;
using jet::texte;

namespace {

Q_LOGGING_CATEGORY(optimiseLog, "herbora.optimise")

const QString optimiseCaption = u"Herbora"_s;

/// Links from `Individus` to a record that is no more.
void repairCurrentLinks(jet::Database& database, const QList<data::ModuleRecord>& modules,
                        const QString& now)
{
    const jet::TableDef* individus = database.schema().table(data::moduleIndividus);
    for (const data::ModuleRecord& module : modules) {
        if (module.isIndividus() || !individus || !individus->field(module.idColumn()))
            continue;
        database.Execute(
            filled(u"UPDATE [Individus] LEFT JOIN [tmodule] ON [Individus].[ID tmodule] = [tmodule].[ID tmodule] "
                   " SET [Individus].[ID tmodule] = Null,"
                   " [Individus].[DateModify]="_s,
                   {{u"tmodule"_s, module.name}})
            + texte(now)
            + filled(u" WHERE [tmodule].[ID tmodule] Is Null"
                     " AND [Individus].[ID tmodule] Is Not Null"_s,
                     {{u"tmodule"_s, module.name}}));
    }
}

/// Records whose parent is no more, or belongs to another individual.
void repairParents(jet::Database& database, const QString& child, const QString& parent)
{
    const QList<QPair<QString, QString>> words{{u"tmodule"_s, child}, {u"ParentModule"_s, parent}};
    const QString join = u"UPDATE [tmodule] LEFT JOIN [ParentModule] AS HERBORA ON val([tmodule].[KeyParent]) = [HERBORA].[ID ParentModule]"
                         " SET [tmodule].[KeyParent]=Null"
                         " WHERE [tmodule].KeyParent Like "_s;
    database.Execute(filled(join + texte(u"*-ParentModule"_s)
                                + u" AND [HERBORA].[ID ParentModule] IS NULL "_s,
                            words));
    database.Execute(
        filled(u"UPDATE [tmodule] LEFT JOIN [ParentModule] AS HERBORA ON val([tmodule].[KeyParent]) = [HERBORA].[ID ParentModule]"
               " SET [tmodule].[KeyParent]=Null"
               " WHERE [tmodule].[ID individus]<>[HERBORA].[ID Individus]"
               " AND ISNULL([tmodule].[KeyParent])=false"_s
                   // Only a key of that module: "5-Images" is no key of the determination 5.
                   + u" AND [tmodule].KeyParent Like "_s + texte(u"*-ParentModule"_s),
               words));
}

const QStringList& taxonRepairs()
{
    static const QStringList statements{
        u"UPDATE Taxons SET Taxons.[Taxon] = Trim$(Taxons.[Taxon])"_s,
        // families
        u"UPDATE Taxons SET Taxons.[Nom Complet] = [Taxon], Taxons.[ID Genre] = Null, Taxons.[ID Espèce] = Null, Taxons.[ID Infra] = Null"
        " WHERE Taxons.[ID Famille]=[ID Taxons]"_s,
        // genera
        u"UPDATE Taxons SET Taxons.[Nom Complet] = [Taxon], Taxons.[ID Espèce] = Null, Taxons.[ID Infra] = Null"
        " WHERE Taxons.[ID Genre]=[ID Taxons]"_s,
        // species; without their genus the name begins with nothing, and stays so
        u"UPDATE Taxons LEFT JOIN Taxons AS Taxons_1 ON Taxons.[ID Genre] = Taxons_1.[ID Taxons] SET Taxons.[Nom Complet] = StrConv([Taxons_1].[taxon],3) & ' ' & LCase([Taxons].[Taxon]), Taxons.[ID Infra] = Null"
        " WHERE Taxons.[ID Espèce]=[Taxons].[ID Taxons]"_s,
        // infraspecific taxa, after the species whose names they begin with
        u"UPDATE Taxons LEFT JOIN Taxons AS Taxons_1 ON Taxons.[ID Espèce] = Taxons_1.[ID Taxons] SET Taxons.[Nom Complet] = [Taxons_1].[Nom Complet] & ' ' & LCase([Taxons].[Taxon])"
        " WHERE Taxons.[ID Infra]=[Taxons].[ID Taxons]"_s,
        // synonyms of a taxon that is no more
        u"UPDATE Taxons LEFT JOIN Taxons AS Taxons_1 ON Taxons.[ID Valid] = Taxons_1.[ID Taxons] SET Taxons.[ID Valid] = Null"
        " WHERE Taxons.[ID Valid] Is Not Null AND Taxons_1.[ID Taxons] Is Null"_s};
    return statements;
}

const QStringList& localityRepairs()
{
    static const QStringList statements{
        u"UPDATE Localités SET Localités.[Localité] = Trim$(Localités.[Localité])"_s,
        u"UPDATE Localités LEFT JOIN Localités AS Localités_1 ON Localités.CodeRegion = Localités_1.CodeRegion &'/' & Localités.[ID Localités]"
        " SET Localités.[Nom Entier] = Localités_1.Localité & ' - ' & Localités.Localité"
        " WHERE Localités.[ID Type]>0"_s};
    return statements;
}

void repair(jet::Database& database, const QList<data::ModuleRecord>& modules, const QString& now,
            platform::Progression& progression)
{
    jet::Operation operation(database, u"Optimisation de la base"_s);
    progression.step(u"Vérification des Liens courant"_s, 5);
    repairCurrentLinks(database, modules, now);
    progression.step(u"Vérification des Liens indirects"_s, 15);
    for (const data::ModuleRecord& child : modules) {
        for (const data::ModuleRecord& parent : modules) {
            if (parent.name != child.name)
                repairParents(database, child.name, parent.name);
        }
    }
    progression.step(u"Vérification des Taxons"_s, 35);
    for (const QString& statement : taxonRepairs())
        database.Execute(statement);
    progression.step(u"Vérification des Localités"_s, 55);
    for (const QString& statement : localityRepairs())
        database.Execute(statement);
    operation.commit();
}

QString question()
{
    return QStringList{
        u"L'optimisation permet de vérifier la cohérence des liens et de réduire considérablement la taille de la base de données"_s,
        u"Le temps nécessaire pour optimiser la base dépend de la fréquence et du nombre d'enregistrement"_s,
        u"Une copie de la base actuelle sera conservée, comportant l'extension .bak."_s,
        u"Si l'optimisation échoue vous pouvez récupérer l'état initial de vos données avant l'opération"_s,
        u"Voulez-vous optimiser la base de données actuelle ?"_s}
        .join(u"\r\n"_s);
}

/// The compacted file is built beside the project and checked; the names change hands last, so that
/// at every instant a complete project stands under its own name.
void compact(const QString& path, platform::Progression& progression)
{
    const auto goOn = [&progression] { return !progression.cancelled(); };
    progression.step(u"Sauvegarde le base actuelle"_s, 70);
    copySafely(path, backupPath(path), goOn);
    progression.step(u"Compactage le base actuelle"_s, 75);
    const QString compacted = temporaryPath(path);
    try {
        QFile::remove(compacted);
        jet::compactSound(path, compacted, goOn);
        QFile::setPermissions(compacted, QFile::permissions(path));
        moveIntoPlace(compacted, path);
    } catch (...) {
        QFile::remove(compacted);
        throw;
    }
}

} // namespace

bool Session::optimise(platform::Progression& progression)
{
    return confirmOptimise() && optimiseConfirmed(progression);
}

bool Session::confirmOptimise() const
{
    return isOpen()
           && m_surroundings.dialogues.confirm(question(), optimiseCaption + u" - Optimisation"_s, platform::BoxIcon::Warning);
}

bool Session::optimiseConfirmed(platform::Progression& progression)
{
    const QString file = path();
    bool done = false;
    try {
        {
            const data::Cancellable stoppable(*m_database, progression);
            // A damaged file must not take the place of a sound backup.
            jet::checkPages(*m_database);
            repair(*m_database, modules(), platform::stamp(m_surroundings.clock), progression);
        }
        progression.step(u"Fermeture de la Base de données"_s, 65);
        close();
        compact(file, progression);
        progression.step(u"Compactage terminé..."_s, 75);
        done = true;
    } catch (const jet::Error& error) {
        qCWarning(optimiseLog).noquote() << error.number() << error.description();
        if (error.number() != jet::cancelledError)
            m_surroundings.dialogues.tell(u"L'optimisation a échoué, la base est restée dans son état initial :\n"_s
                                              + withFinalNames(error.description()),
                                          optimiseCaption + u" - Optimisation"_s, platform::BoxIcon::Stop);
    }
    if (isOpen()) {
        progression.finish();
        return done;
    }
    return open(file, progression) && done;
}

} // namespace app
