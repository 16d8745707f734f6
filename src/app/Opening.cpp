// The opening sequence.
#include "app/ProjectFiles.h"
#include "app/Session.h"
#include "data/CoreModules.h"
#include "data/CoreSchema.h"

#include <QFileInfo>
#include <QLoggingCategory>

namespace app {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(sessionLog, "herbora.session")

const QString versionProperty = u"HerboraVersion"_s;
/// Number of an error of our own, as the first free one of a program.
constexpr int noModuleError = 513;

/// The numbers of a version, "." separated, without closing zeros: "1.2" and "1.2.0" are one.
QList<int> versionNumbers(const QString& version)
{
    QList<int> numbers;
    for (const QString& part : version.split(u'.'))
        numbers << part.trimmed().toInt();
    while (!numbers.isEmpty() && numbers.last() == 0)
        numbers.removeLast();
    return numbers;
}

void updateVersion(jet::Database& database, const QString& running)
{
    const bool known = database.hasProperty(versionProperty);
    if (known && versionNumbers(database.Property(versionProperty).toString()) == versionNumbers(running))
        return;
    if (database.readOnly())
        return;
    database.SetProperty(versionProperty, running);
}

/// Modules whose provider is part of the program or the user; a library's come with their library.
QStringList connectedNames(const QList<data::ModuleRecord>& modules)
{
    QStringList names;
    for (const data::ModuleRecord& module : modules) {
        const bool builtIn = module.isIndividus() || module.name == data::moduleDéterminations;
        if (builtIn || module.isUser())
            names << module.name;
    }
    return names;
}

} // namespace

void Session::runOpening(const QString& path, platform::Progression& progression)
{
    progression.step(u"Ouverture de la base de donnée"_s, 0);
    close();
    removeStrayFiles(path);
    m_database = jet::Database::Open(path);
    jet::Database& database = *m_database;
    m_dictionary = std::make_unique<data::Dictionary>(database, m_surroundings.clock,
                                                      m_surroundings.dialogues);
    m_properties = std::make_unique<data::PropertyStore>(database, m_surroundings.clock);

    // What an older file lacks is brought in as one unit: a file is as before or up to date.
    std::optional<jet::Operation> operation;
    if (!database.readOnly())
        operation.emplace(database, u"Mise à jour de la structure"_s);

    progression.step(u"Initialisation des modules internes"_s, 5);
    data::ensureCollectors(database);
    data::ensureLocalities(database);
    data::ensureTaxa(database);

    progression.step(u"Ouverture de la Structure"_s, 15);
    data::ensureDictionary(database);
    data::ensureProperties(database);

    progression.step(u"Ouverture des Propriétés"_s, 20);
    updateVersion(database, m_surroundings.version);

    progression.step(u"Chargement des variables"_s, 30);
    m_dictionary->load();

    progression.step(u"Connexion aux addin"_s, 40);
    const QList<data::ModuleRecord> builtIn = data::builtInModules();

    progression.step(u"Vérification et synchronisation des mises à jour"_s, 50);
    for (const data::ModuleRecord& module : builtIn)
        m_dictionary->put(module);

    progression.step(u"Validation de la Structure"_s, 60);
    if (!database.readOnly()) {
        m_dictionary->markUnconnected(connectedNames(m_dictionary->modules()));
        m_dictionary->purge();
        m_dictionary->save();
    }

    progression.step(u"Ouverture de la Structure"_s, 70);
    m_dictionary->load();
    if (m_dictionary->modules().isEmpty())
        throw jet::Error(noModuleError, u"Aucun Module attaché à la collection ColAddin"_s,
                         u"LoadDataBase"_s);
    if (operation)
        operation->commit();

    progression.step(u"Enregistrement des paramètres"_s, 80);
    m_surroundings.settings.write(u"Général.DefaultBase"_s, database.Name());

    progression.step(u"Chargement de l'interface graphique"_s, 90);
    progression.step(u"Chargement et Validation OK de la base de donnée"_s, 100);
}

void Session::reportOpening(const jet::Error& error)
{
    const QString source = error.source().isEmpty() ? u"LoadDataBase"_s : error.source();
    qCWarning(sessionLog).noquote() << "opening failed:" << error.number() << error.description();
    m_surroundings.dialogues.tell(
        QStringList{u"Error "_s + QString::number(error.number()),
                    u"Notez le numéro et la description de l'erreur ci-dessous "_s,
                    u"Erreur dans le chargement du programme Herbora !le fichier est peut être corrompu"_s,
                    u" in"_s + source, u": "_s + error.description()}
            .join(u'\n'),
        u"Herbora"_s, platform::BoxIcon::Stop);
}

bool Session::open(const QString& path, platform::Progression& progression)
{
    bool opened = false;
    try {
        runOpening(QFileInfo(path).absoluteFilePath(), progression);
        opened = true;
    } catch (const jet::Error& error) {
        close();
        reportOpening(error);
    } catch (const std::exception& error) {
        close();
        reportOpening(jet::Error(7, u"Mémoire ou ressource insuffisante : %1."_s.arg(QString::fromUtf8(error.what()))));
    }
    progression.finish();
    return opened;
}

} // namespace app
