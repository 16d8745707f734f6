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

} // namespace

void Session::openFile(const QString& path)
{
    close();
    removeStrayFiles(path);
    m_database = jet::Database::Open(path);
    m_dictionary = std::make_unique<data::Dictionary>(*m_database, m_surroundings.clock,
                                                      m_surroundings.dialogues);
    m_properties = std::make_unique<data::PropertyStore>(*m_database, m_surroundings.clock);
    m_addins = std::make_unique<Addins>(addinFolder(), *m_host, m_surroundings.dialogues);
}

void Session::validateStructure()
{
    if (m_database->readOnly())
        return;
    m_dictionary->markUnconnected(m_addins->keptModules(m_dictionary->modules()));
    m_dictionary->purge();
    m_dictionary->save();
}

void Session::connectModules()
{
    m_dictionary->load();
    m_addins->attach(*m_database, m_dictionary->modules());
    if (m_addins->isEmpty())
        throw jet::Error(noModuleError, u"Aucun Module attaché à la collection ColAddin"_s,
                         u"LoadDataBase"_s);
}

void Session::runOpening(const QString& path, platform::Progression& progression)
{
    progression.step(u"Ouverture de la base de donnée"_s, 0);
    openFile(path);
    jet::Database& database = *m_database;

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
    m_addins->connectAll(*m_dictionary);
    // Said here: what is purged below is not in the list any more when the modules are attached.
    m_addins->reportMissing(m_dictionary->modules());

    progression.step(u"Vérification et synchronisation des mises à jour"_s, 50);
    m_addins->synchronise(database, *m_dictionary);

    progression.step(u"Validation de la Structure"_s, 60);
    validateStructure();

    progression.step(u"Ouverture de la Structure"_s, 70);
    connectModules();
    if (operation)
        operation->commit();

    progression.step(u"Enregistrement des paramètres"_s, 80);
    if (!isTemporary(database.Name())) // the next start would open it though it was never finished
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
                    u" in"_s + source, u": "_s + withFinalNames(error.description())}
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
