// The opening sequence.
#include "app/ProjectFiles.h"
#include "app/Session.h"
#include "data/CoreModules.h"
#include "data/CoreSchema.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"

#include <QFile>
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

/// Says each message once: the modules are built twice in an opening, and what is wrong with one is wrong both times.
class SaidOnce : public platform::Dialogues {
public:
    explicit SaidOnce(platform::Dialogues& real) : m_real(real) {}

    platform::Answer ask(const platform::Message& message) override
    {
        if (message.buttons != platform::BoxButtons::Ok)
            return m_real.ask(message);
        if (m_said.contains(message.text))
            return platform::Answer::Ok;
        m_said << message.text;
        return m_real.ask(message);
    }
    std::optional<QString> input(const QString& title, const QString& prompt, const QString& byDefault) override
    {
        return m_real.input(title, prompt, byDefault);
    }
    std::optional<QList<int>> choose(const platform::Choice& choice) override { return m_real.choose(choice); }
    QString openFile(const QString& title, const QString& filter, const QString& folder) override
    {
        return m_real.openFile(title, filter, folder);
    }
    QStringList openFiles(const QString& title, const QString& filter, const QString& folder) override
    {
        return m_real.openFiles(title, filter, folder);
    }
    QString saveFile(const QString& title, const QString& filter, const QString& proposal) override
    {
        return m_real.saveFile(title, filter, proposal);
    }
    QString chooseFolder(const QString& title, const QString& folder) override
    {
        return m_real.chooseFolder(title, folder);
    }

private:
    platform::Dialogues& m_real;
    QStringList m_said;
};

/// Names, providers and flags of the modules in the file, those that could not be built among them.
QList<data::ModuleRecord> modulesInFile(jet::Database& database)
{
    QList<data::ModuleRecord> modules;
    const auto rows =
        database.OpenRecordset(u"SELECT [NomModule],[ModuleConnexion],[Flags],[Index] FROM PGTableDefs WHERE [Type]=\"Addin\""_s);
    for (; !rows->EOF_(); rows->MoveNext()) {
        data::ModuleRecord module;
        module.name = rows->Value(0).toString();
        module.provider = rows->Value(1).toString();
        module.flags = rows->Value(2).toInt();
        module.index = rows->Value(3).toInt();
        modules << module;
    }
    return modules;
}

/// The modules that the purge is about to take with their records because nobody serves them.
QStringList abandonedModules(jet::Database& database, const Addins& addins)
{
    const QList<data::ModuleRecord> modules = modulesInFile(database);
    const QStringList kept = addins.keptModules(modules);
    QStringList abandoned;
    for (const data::ModuleRecord& module : modules) {
        const bool marked = module.index < 0; // somebody deleted it
        if (marked || !(module.flags & data::Connecté) || kept.contains(module.name, Qt::CaseInsensitive)
            || !database.schema().table(module.name))
            continue;
        const auto rows = database.OpenRecordset(u"SELECT Count(*) FROM "_s + jet::nom(module.name));
        if (rows->Value(0).toLongLong() > 0)
            abandoned << module.name;
    }
    return abandoned;
}

/// A name beside the project that nothing has yet.
QString modulesBackupPath(const QString& project)
{
    const QFileInfo file(project);
    const QString begin = file.absolutePath() + u'/' + file.completeBaseName() + u".modules"_s;
    QString path = begin + u".hbx.bak"_s;
    for (int number = 2; QFileInfo::exists(path); ++number)
        path = begin + u'-' + QString::number(number) + u".hbx.bak"_s;
    return path;
}

/// Copies the open project and says why.
void keepAbandoned(jet::Database& database, const QStringList& modules, platform::Dialogues& dialogues)
{
    const QString path = modulesBackupPath(database.Name());
    const QString unfinished = temporaryPath(database.Name());
    QFile::remove(unfinished);
    try {
        database.SaveCopy(unfinished);
        moveToNewName(unfinished, path);
    } catch (...) {
        QFile::remove(unfinished);
        throw;
    }
    dialogues.tell(u"Aucun complément ne sert plus « %1 » : ses enregistrements sont retirés du projet.\n"
                   "Le projet tel qu'il était est gardé dans « %2 »."_s.arg(modules.join(u" », « "_s), path),
                   u"Herbora"_s, platform::BoxIcon::Warning);
}

void attach(Addins& addins, jet::Database& database, const data::Dictionary& dictionary)
{
    addins.attach(database, dictionary.modules());
    if (addins.isEmpty())
        throw jet::Error(noModuleError, u"Aucun Module attaché à la collection ColAddin"_s,
                         u"LoadDataBase"_s);
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
    // A module that could not be built is not lost: its table waits for whoever mends it.
    m_dictionary->markUnconnected(m_addins->keptModules(modulesInFile(*m_database)));
    m_dictionary->purge();
    m_dictionary->save();
}

void Session::connectModules()
{
    m_dictionary->load();
    attach(*m_addins, *m_database, *m_dictionary);
}

void Session::runOpening(const QString& path, platform::Progression& progression)
{
    progression.step(u"Ouverture de la base de donnée"_s, 0);
    openFile(path);
    jet::Database& database = *m_database;
    SaidOnce dialogues(m_surroundings.dialogues);
    const auto loadModules = [&] {
        data::Dictionary loading(database, m_surroundings.clock, dialogues);
        loading.load();
        m_dictionary->replace(loading.modules());
    };

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
    loadModules();

    progression.step(u"Connexion aux addin"_s, 40);
    m_addins->connectAll(*m_dictionary);
    // Said here: what is purged below is not in the list any more when the modules are attached.
    m_addins->reportMissing(m_dictionary->modules());

    progression.step(u"Vérification et synchronisation des mises à jour"_s, 50);
    m_addins->synchronise(database, *m_dictionary);

    progression.step(u"Validation de la Structure"_s, 60);
    const QStringList abandoned = operation ? abandonedModules(database, *m_addins) : QStringList();
    if (!abandoned.isEmpty()) {
        operation->commit(); // a copy is made of what is in the file
        keepAbandoned(database, abandoned, dialogues);
        operation.reset();
        operation.emplace(database, u"Mise à jour de la structure"_s);
    }
    validateStructure();

    progression.step(u"Ouverture de la Structure"_s, 70);
    loadModules();
    attach(*m_addins, database, *m_dictionary);
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
