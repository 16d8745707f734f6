#include "app/Demo.h"

#include "app/DemoModules.h"
#include "app/DemoRecords.h"
#include "app/ProjectFiles.h"
#include "app/SyntheticProject.h"
#include "data/ModuleTable.h"
#include "jet/Cancelled.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace app {

using namespace Qt::StringLiterals;

namespace {


/// Rows to name plants after: accepted species and below, in their order.
QList<qint32> speciesOf(const DemoData& data, const DemoReference& reference)
{
    QList<qint32> species;
    for (const DemoTaxon& taxon : data.taxa) {
        const qint32 id = reference.taxa.value(taxon.key);
        if (taxon.rank >= 3 && taxon.accepted.isEmpty() && !species.contains(id))
            species << id;
    }
    return species;
}

/// What has to go again when the project does not come to be.
class ImageFolder {
public:
    explicit ImageFolder(const QString& path) : m_path(path) {}

    /// Copies the pictures that are not there yet.
    void fill(const DemoData& data)
    {
        m_made = !QFileInfo::exists(m_path);
        if (!QDir().mkpath(m_path))
            jet::fail(3044, m_path);
        for (const DemoImage& image : data.images)
            copy(u"images/"_s, image.file);
        for (const DemoMap& map : data.maps)
            copy(u"maps/"_s, map.file);
    }
    void remove()
    {
        for (const QString& file : std::as_const(m_copied))
            QFile::remove(file);
        if (m_made)
            QDir().rmdir(m_path);
    }

private:
    void copy(const QString& folder, const QString& file)
    {
        const QString target = m_path + u'/' + file;
        if (QFileInfo::exists(target))
            return;
        if (!QFile::copy(demoResourceFolder() + folder + file, target))
            throw jet::Error(3026, u"Impossible d'écrire l'image « %1 »."_s.arg(target));
        m_copied << target;
        // A copy of a resource is read-only.
        QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    }

    QString m_path;
    QStringList m_copied;
    bool m_made = false;
};

/// Leaves the modules only their primary keys: an index made once over all rows is sorted, while one kept row by
/// row is written all over the file.
void setSearchAside(Session& session)
{
    jet::Operation operation(session.database(), u"Démonstration : index"_s);
    for (const data::ModuleRecord& module : session.modules()) {
        const jet::TableDef* table = session.database().schema().table(module.name);
        if (const jet::Index* primary = table ? table->primaryKey() : nullptr)
            session.database().ReplaceIndexes(module.name, {jet::Index(*primary)});
    }
    operation.commit();
}

/// Makes the indexes of the modules again, as every opening would.
void restoreSearch(Session& session, platform::Progression& progression)
{
    for (const data::ModuleRecord& module : session.modules()) {
        checkpoint(progression);
        progression.step(u"Création des index : "_s + module.label, 90);
        jet::Operation operation(session.database(), u"Démonstration : index"_s);
        data::buildModuleTable(session.database(), module, session.surroundings().dialogues);
        operation.commit();
    }
}

void fillProject(Session& session, const DemoData& data, const QString& imageFolder,
                 platform::Progression& progression, const DemoOptions& options)
{
    jet::Database& database = session.database();
    const QString stamp = platform::stamp(session.surroundings().clock);
    DemoReference reference;

    progression.step(u"Création de la structure"_s, 0);
    writeDemoStructure(session, demoHerbaria(data));
    progression.step(u"Création des collecteurs"_s, 2);
    writePeople(database, data, stamp, reference);
    progression.step(u"Création des localités"_s, 4);
    writePlaces(database, data, stamp, reference);
    writeMaps(database, data, stamp, reference);
    checkpoint(progression);
    progression.step(u"Création des taxons"_s, 7);
    TaxonWriter taxa(database, stamp);
    writeTaxa(database, data, taxa, reference);
    QList<qint32> species = speciesOf(data, reference);
    if (options.taxons > taxa.count())
        writeSyntheticTaxa(database, taxa, data, options, stamp, species, progression);
    checkpoint(progression);
    progression.step(u"Création des individus"_s, 20);
    if (options.individus > 0) {
        setSearchAside(session);
        writeSyntheticRecords(database, data, reference, species, options, stamp, progression);
        restoreSearch(session, progression);
    } else {
        writeDemoRecords(database, data, reference, stamp, progression);
        writeDemoTrees(session, stamp);
    }
    progression.step(u"Création des requêtes et modèles"_s, 92);
    writeDemoObjects(session, imageFolder);
}

} // namespace

QString demoImageFolder(const QString& path)
{
    const QFileInfo file(path);
    return file.absolutePath() + u'/' + file.completeBaseName() + u"-images"_s;
}

bool buildDemo(Session& session, const QString& path, platform::Progression& progression, const DemoOptions& options)
{
    const Surroundings& around = session.surroundings();
    const QString target = QFileInfo(path).absoluteFilePath();
    const QString unfinished = temporaryPath(target);
    const QString lastProject = around.settings.read(u"Général.DefaultBase"_s);
    ImageFolder images(demoImageFolder(target));
    const auto undo = [&] {
        session.close();
        QFile::remove(unfinished);
        images.remove();
        around.settings.write(u"Général.DefaultBase"_s, lastProject);
        progression.finish();
    };
    try {
        if (QFileInfo::exists(target))
            jet::fail(3204, target);
        const DemoData data = DemoData::read();
        if (!session.create(unfinished, progression)) { // has said why
            undo();
            return false;
        }
        fillProject(session, data, demoImageFolder(target), progression, options);
        session.close();
        images.fill(data);
        moveIntoPlace(unfinished, target);
    } catch (const jet::Error& error) {
        undo();
        if (error.number() != jet::cancelledError)
            around.dialogues.tell(u"Impossible de créer le projet de démonstration :\n"_s + error.description(),
                                  u"Herbora"_s, platform::BoxIcon::Stop);
        return false;
    }
    return session.open(target, progression);
}

} // namespace app
