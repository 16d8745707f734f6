#include "app/Session.h"

#include "app/ProjectFiles.h"
#include "app/References.h"
#include "data/CoreModules.h"
#include "data/CoreSchema.h"
#include "jet/Cancelled.h"

#include <QFileInfo>

namespace app {

using namespace Qt::StringLiterals;
using platform::BoxIcon;

namespace {

const QString caption = u"Herbora"_s;

const QList<data::ModuleRecord>& noModules()
{
    static const QList<data::ModuleRecord> none;
    return none;
}

/// Writes the tables and modules of a new project into the file.
void fillNewProject(jet::Database& database, const Surroundings& surroundings,
                    const QList<data::ModuleRecord>& modules)
{
    jet::Operation operation(database, u"Création du projet"_s);
    data::ensureDictionary(database);
    data::ensureProperties(database);
    data::ensureCollectors(database);
    data::ensureLocalities(database);
    data::ensureTaxa(database);
    data::Dictionary dictionary(database, surroundings.clock, surroundings.dialogues);
    dictionary.put(data::coreIndividus());
    dictionary.put(data::coreDéterminations());
    dictionary.put(data::coreImages());
    int index = data::coreImages().index;
    for (data::ModuleRecord module : modules) {
        module.index = ++index;
        dictionary.put(module);
    }
    dictionary.save();
    dictionary.load();
    data::PropertyStore properties(database, surroundings.clock);
    reference::writeDefaultLinks(properties);
    database.SetProperty(u"HerboraVersion"_s, surroundings.version);
    operation.commit();
}

} // namespace

Session::Session(Surroundings surroundings)
    : m_surroundings(std::move(surroundings)), m_host(std::make_unique<HostBase>(*this))
{
}

Session::~Session()
{
    close();
}

bool Session::isOpen() const
{
    return m_database && m_database->isOpen();
}

QString Session::path() const
{
    return isOpen() ? m_database->Name() : QString();
}

QString Session::projectName() const
{
    return QFileInfo(path()).fileName();
}

bool Session::readOnly() const
{
    return isOpen() && m_database->readOnly();
}

namespace {

/// A project may give way to a new one, under the name of its backup; nothing else is pushed aside.
void keepAside(const QString& target)
{
    jet::Database::Open(target)->Close(); // refused when it is no project, or somebody has it open
    moveIntoPlace(target, backupPath(target));
}

} // namespace

bool Session::create(const QString& path, platform::Progression& progression,
                     const QList<data::ModuleRecord>& modules, bool replace)
{
    const QString target = QFileInfo(path).absoluteFilePath();
    const QString unfinished = temporaryPath(target);
    try {
        if (QFileInfo::exists(target) && !replace)
            jet::fail(3204, target);
        removeStrayFiles(target);
        // Built under another name: a project is there whole or not at all.
        auto database = jet::Database::Create(unfinished, data::localeGeneral);
        fillNewProject(*database, m_surroundings, modules);
        database->Close();
        if (QFileInfo::exists(target))
            keepAside(target);
        moveIntoPlace(unfinished, target);
    } catch (const jet::Error& error) {
        removeStrayFiles(target);
        m_surroundings.dialogues.tell(
            u"Impossible de créer la base de données :\n"_s + withFinalNames(error.description()), caption,
            BoxIcon::Stop);
        return false;
    }
    return open(target, progression);
}

bool Session::saveCopy(const QString& path, platform::Progression& progression)
{
    const QString target = QFileInfo(path).absoluteFilePath();
    const QString unfinished = temporaryPath(target);
    const auto undo = [&] {
        removeStrayFiles(target);
        progression.finish();
    };
    try {
        if (QFileInfo(target) == QFileInfo(m_database->Name()))
            jet::fail(3204, target);
        removeStrayFiles(target);
        progression.step(u"Copie du projet"_s, -1);
        m_database->SaveCopy(unfinished, [&progression] { return !progression.cancelled(); });
        if (QFileInfo::exists(target))
            keepAside(target);
        moveIntoPlace(unfinished, target);
    } catch (const jet::Error& error) {
        undo();
        if (error.number() != jet::cancelledError)
            m_surroundings.dialogues.tell(
                u"Impossible d'enregistrer la copie :\n"_s + withFinalNames(error.description()), caption, BoxIcon::Stop);
        return false;
    }
    progression.finish();
    return true;
}

void Session::close()
{
    // Add-ins give their rows back while the file is still open.
    m_addins.reset();
    m_references.reset();
    m_properties.reset();
    m_dictionary.reset();
    m_selections.clear();
    if (m_database)
        m_database->Close();
    m_database.reset();
}

QString Session::startFile(const QString& named)
{
    if (named.isEmpty()) {
        const QString last = m_surroundings.settings.read(u"Général.DefaultBase"_s);
        return QFileInfo(last).isFile() ? last : QString();
    }
    const QString path = QFileInfo(named).absoluteFilePath();
    const QString backup = backupPath(path);
    if (QFileInfo::exists(path) || !QFileInfo(backup).isFile())
        return path;
    const bool restore = m_surroundings.dialogues.confirm(
        u"Le fichier « %1 » est introuvable, mais sa copie de sauvegarde « %2 » existe.\n"
        "Voulez-vous restaurer la base de données à partir de cette copie ?"_s.arg(path, backup),
        caption, BoxIcon::Question);
    if (!restore)
        return {};
    try {
        copySafely(backup, path);
    } catch (const jet::Error& error) {
        m_surroundings.dialogues.tell(error.description(), caption, BoxIcon::Stop);
        return {};
    }
    return path;
}

void Session::checkAssociation(platform::FileAssociation& association)
{
    const QString executable = m_surroundings.applicationFolder + u"/herbora"_s;
    if (association.openCommand() == executable)
        return;
    const bool correct = m_surroundings.dialogues.confirm(
        u"Les fichiers HBX ne sont pas correctement associés à Herbora\n"
        "Souhaitez-vous corriger l'association dans la base de registre ?"_s,
        caption + u": Registration"_s);
    if (correct)
        association.write(executable);
}

jet::Database& Session::database() const
{
    return *m_database;
}

data::Dictionary& Session::dictionary() const
{
    return *m_dictionary;
}

data::PropertyStore& Session::properties() const
{
    return *m_properties;
}

const QList<data::ModuleRecord>& Session::modules() const
{
    return m_dictionary ? m_dictionary->modules() : noModules();
}

References& Session::references()
{
    if (!m_references)
        m_references = std::make_unique<References>(*this);
    return *m_references;
}

Addins& Session::addins() const
{
    return *m_addins;
}

QString Session::addinFolder() const
{
    return m_surroundings.applicationFolder + u"/addins"_s;
}

QList<qint32>& Session::selection(const QString& module)
{
    return m_selections[module];
}

int Session::selectionCount(const QString& module) const
{
    return int(m_selections.value(module).size());
}

} // namespace app
