#include "Operation.h"

#include "AccessOperations.h"
#include "ImportOperations.h"
#include "MapOperations.h"
#include "Project.h"
#include "ReferenceOperations.h"
#include "QueryOperations.h"
#include "app/ProjectFiles.h"
#include "app/structure/StructureEditing.h"
#include "app/structure/StructureSaving.h"
#include "data/FieldType.h"
#include "app/References.h"
#include "data/FieldType.h"
#include "data/RecordRules.h"
#include "editing/DescriptorLists.h"
#include "editing/IndividualEditing.h"
#include "jet/Recordset.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <stdexcept>

namespace faults {

using namespace Qt::StringLiterals;

namespace {

const QString projectFile = u"projet.hbx"_s;
const QString backupFile = u"projet.hbx.bak"_s;
const QString structureBackup = u"projet.structure.hbx.bak"_s;
const QString textFile = u"texte.txt"_s;
const QString settingsFile = u"Herbora.ini"_s;

// --- States and next starts that several operations share ----------------------------------

QString projectState(const QString& folder)
{
    return fingerprint(folder + u'/' + projectFile);
}

/// A backup need not be there, but where it is, it is a sound project.
QString projectAndBackupState(const QString& folder)
{
    fingerprint(folder + u'/' + backupFile);
    return projectState(folder);
}

QString bytesOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return u"absent"_s;
    }
    return QString::fromLatin1(
        QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256).toHex());
}

void reopen(const QString& folder)
{
    Workplace place(folder);
    if (!place.open()) {
        throw std::runtime_error("le projet ne s'ouvre plus");
    }
    place.session().close();
}

// --- Creating -----------------------------------------------------------------------------

void prepareNothing(const QString&) {}

bool create(const QString& folder)
{
    Workplace place(folder);
    return place.create();
}

void createUnlessThere(const QString& folder)
{
    if (QFileInfo::exists(folder + u'/' + projectFile)) {
        reopen(folder);
    } else if (!create(folder)) {
        throw std::runtime_error("le projet ne peut plus être créé");
    }
}

// --- Records ------------------------------------------------------------------------------

/// As a form does it: one individual with its determinations, as one operation.
void insertRecords(jet::Database& database)
{
    const auto individuals = database.OpenRecordset(u"Individus"_s, jet::RecordsetType::Table);
    const auto determinations =
        database.OpenRecordset(u"Déterminations"_s, jet::RecordsetType::Table);
    for (int i = 0; i < 5; ++i) {
        individuals->AddNew();
        individuals->SetValue(u"Numéro", u"N%1"_s.arg(i));
        individuals->SetValue(u"Habitat", QString(3000, u'é'));
        individuals->Update();
        individuals->MoveToLastModified();
        determinations->AddNew();
        determinations->SetValue(u"ID Individus", individuals->Value(u"ID Individus"));
        determinations->SetValue(u"ID Taxons", 1);
        determinations->Update();
    }
}

/// An update over a join and a delete that cascades.
void changeRecords(jet::Database& database)
{
    database.Execute(
        u"UPDATE Individus INNER JOIN Déterminations ON Individus.[ID Individus] = "
        "Déterminations.[ID Individus] SET Individus.Habitat = Individus.Numéro & \" rochers\""_s);
    database.Execute(u"DELETE * FROM Individus WHERE Numéro = \"1\""_s);
}

bool insert(const QString& folder)
{
    return withProject(folder, insertRecords);
}
bool change(const QString& folder)
{
    return withProject(folder, changeRecords);
}

/// Records under the individuals that are deleted, over two levels, and a link to one of them.
void prepareFamilies(const QString& folder)
{
    makeProject(folder);
    withProject(folder, [](jet::Database& database) {
        database.Execute(
            u"UPDATE Déterminations SET KeyParent = CStr([ID Individus]) & \"-Individus\""_s);
        database.Execute(
            u"UPDATE Individus SET [ID Déterminations] = [ID Individus] WHERE [ID Individus] < 3"_s);
        for (int i = 0; i < 20; ++i) {
            database.Execute(u"INSERT INTO Images ([ID Individus], Fichier, KeyParent) VALUES "
                             "(%1, \"%2.jpg\", \"%1-Déterminations\")"_s.arg(
                                 QString::number(i % 2 + 1), QString::number(i)));
        }
    });
}

/// As the user does it, with the report at the end.
bool deleteIndividuals(const QString& folder)
{
    Workplace place(folder);
    if (!place.open()) {
        return false;
    }
    const app::Surroundings& around = place.session().surroundings();
    data::RecordRules rules(place.session().database(), place.session().dictionary(), around.clock,
                            around.dialogues);
    const bool deleted = !rules.deleteRecords(data::moduleIndividus, {1, 3}).isEmpty();
    place.session().close();
    return deleted;
}

// --- Forms and vocabularies -----------------------------------------------------------------

/// Fields of every kind, two of them lists.
void prepareForms(const QString& folder)
{
    makeProject(folder);
    withProject(folder, [](jet::Database& database) {
        database.Execute(u"UPDATE Individus SET Herbier = \"P;NCY\""_s);
        database.Execute(u"INSERT INTO Propriétés (Objet, Module, Nom, [Value]) VALUES "
                         "(\"Descripteur\", \"Individus\", \"Herbier\", \"NCY;P\")"_s);
    });
}

editing::EditingTools toolsOf(app::Session& session, data::RecordRules& rules)
{
    const app::Surroundings& around = session.surroundings();
    return {session.database(), session.dictionary(), session.properties(),           rules,
            around.clock,       around.dialogues,     session.references().context()};
}

/// A changed individual, a new record under it, a new one under that: what "Enregistrer" writes at once.
bool saveForms(const QString& folder)
{
    Workplace place(folder);
    if (!place.open()) {
        return false;
    }
    const app::Surroundings& around = place.session().surroundings();
    data::RecordRules rules(place.session().database(), place.session().dictionary(), around.clock,
                            around.dialogues);
    bool saved = false;
    {
        editing::IndividualEditing edit(toolsOf(place.session(), rules));
        const auto type = [&](const QString& column, const QVariant& value) {
            edit.type(*edit.current(), *edit.form(*edit.current()).Item(column), value);
        };
        if (!edit.EditItems(u"1-Individus;1"_s)) {
            return false;
        }
        type(u"Habitat"_s, QString(3000, u'é'));
        if (!edit.add(u"Déterminations"_s)) {
            return false;
        }
        type(u"ID Taxons"_s, 1);
        if (!edit.add(u"Images"_s, edit.current())) {
            return false;
        }
        type(u"Fichier"_s, u"feuille.jpg"_s);
        saved = edit.SavedItem(true) == editing::SaveOutcome::Saved;
    }
    place.session().close();
    return saved;
}

/// Says the new name of a descriptor.
class RenamingDialogues : public YesDialogues {
public:
    std::optional<QString> input(const QString&, const QString&, const QString&) override
    {
        return u"Paris"_s;
    }
};

/// The vocabulary and the records that use it change together.
bool renameDescriptor(const QString& folder)
{
    Workplace place(folder);
    if (!place.open()) {
        return false;
    }
    app::Session& session = place.session();
    RenamingDialogues dialogues;
    editing::DescriptorLists lists(session.database(), session.properties(),
                                   session.surroundings().clock, dialogues);
    const bool renamed = lists.rename(
        {data::moduleIndividus, u"Herbier"_s, u"Herbier"_s, data::ListeMultiple, true}, u"P"_s);
    session.close();
    return renamed;
}

// --- The structure ------------------------------------------------------------------------

/// Records whose fields are renamed, converted and deleted.
void prepareModules(const QString& folder)
{
    prepareFamilies(folder);
    withProject(folder, [](jet::Database& database) {
        database.Execute(u"UPDATE Images SET [Légende] = CStr([ID Images])"_s);
        database.Execute(u"INSERT INTO Propriétés ([Objet],[Module],[Nom],[Value]) VALUES "
                         "(\"Requête\",\"Images\",\"q\",\"colonne\tLégende\tImages.Légende\")"_s);
    });
}

/// A module renamed, a field converted, one deleted, one made unique, a new module: one operation, with a copy before it.
bool restructure(const QString& folder)
{
    Workplace place(folder);
    if (!place.open()) {
        return false;
    }
    app::StructureEditing editing(place.session());
    const auto field = [&](const QString& caption) {
        const app::DraftField* one = editing.draft().moduleNamed(u"Images")->fieldNamed(caption);
        return one ? one->id : 0;
    };
    editing.setType(field(u"Légende"_s), data::Entier);
    editing.setFieldFlag(field(u"Fichier"_s), data::Unique, true);
    editing.deleteField(field(u"Auteur"_s));
    editing.renameModule(editing.draft().moduleNamed(u"Images")->id, u"Photos"_s);
    editing.draft().edit(u"module"_s, [&](app::DraftModules& modules) {
        app::DraftModule module;
        module.id = editing.draft().nextId();
        module.record.name = u"Sols"_s;
        module.record.index = 9;
        modules.append(module);
    });
    platform::NoProgression quiet;
    const bool saved = app::saveStructure(place.session(), editing.plan(), true, quiet);
    place.session().close();
    return saved;
}

QString structureState(const QString& folder)
{
    fingerprint(folder + u'/' + structureBackup);
    return projectState(folder);
}

// --- Optimising ---------------------------------------------------------------------------

/// A project with something to repair and something to leave out.
void prepareUntidy(const QString& folder)
{
    makeProject(folder);
    withProject(folder, [](jet::Database& database) {
        database.Execute(u"UPDATE Taxons SET Taxon = \" Arabis \", [ID Genre] = [ID Taxons]"_s);
        database.Execute(u"UPDATE Individus SET [ID Déterminations] = 77 WHERE Numéro = \"3\""_s);
        database.Execute(u"DELETE * FROM Individus WHERE Numéro = \"2\""_s);
    });
}

bool optimise(const QString& folder)
{
    Workplace place(folder);
    return place.open() && place.optimise();
}

// --- Opening ------------------------------------------------------------------------------

/// As an earlier version left it: tables, columns and the version of today are not there yet.
void prepareOlder(const QString& folder)
{
    makeProject(folder);
    const auto database = jet::Database::Open(folder + u'/' + projectFile);
    database->DeleteTable(u"Propriétés"_s);
    database->DeleteField(u"Déterminations"_s, u"Commentaire"_s);
    database->Execute(
        u"DELETE * FROM PGTableDefs WHERE NomModule = \"Déterminations\" AND [Table] = \"Commentaire\""_s);
    database->SetProperty(u"HerboraVersion"_s, u"0.0.9"_s);
    database->Close();
}

bool openAndBrowse(const QString& folder)
{
    Workplace place(folder);
    if (!place.open()) {
        return false;
    }
    try {
        const auto rows =
            place.session().database().OpenRecordset(u"SELECT * FROM Individus ORDER BY Numéro"_s);
        rows->MoveLast();
    } catch (const jet::Error& error) {
        return say(error.description());
    }
    place.session().close();
    return true;
}

/// Not one byte and not the date may change.
QString bytesAndDate(const QString& folder)
{
    const QString path = folder + u'/' + projectFile;
    return bytesOf(path) + QFileInfo(path).lastModified().toString(Qt::ISODateWithMs);
}

// --- A backup in the place of a lost project ------------------------------------------------

void prepareBackupAlone(const QString& folder)
{
    makeProject(folder);
    QFile::rename(folder + u'/' + projectFile, folder + u'/' + backupFile);
}

bool restore(const QString& folder)
{
    Workplace place(folder);
    return !place.session().startFile(place.project()).isEmpty() && place.open();
}

void restoreAgain(const QString& folder)
{
    if (!restore(folder)) {
        throw std::runtime_error("la copie de sauvegarde n'est plus restaurée");
    }
}

// --- Settings -----------------------------------------------------------------------------

bool writeSetting(const QString& folder, const QString& value)
{
    platform::Settings settings(folder + u'/' + settingsFile);
    return settings.write(u"Général.DefaultBase"_s, value);
}

void prepareSettings(const QString& folder)
{
    writeSetting(folder, u"/avant/projet.hbx"_s);
}

bool changeSettings(const QString& folder)
{
    return writeSetting(folder, u"/après/projet.hbx"_s) || say(u"réglages non écrits"_s);
}

QString settingsState(const QString& folder)
{
    return platform::Settings(folder + u'/' + settingsFile).read(u"Général.DefaultBase"_s);
}

void readSettings(const QString& folder)
{
    settingsState(folder);
}

// --- A wrong way of working, to try the trial itself ----------------------------------------

void prepareText(const QString& folder)
{
    QFile file(folder + u'/' + textFile);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(QByteArray(20'000, 'a'));
    }
}

bool replaceInPlace(const QString& folder)
{
    const QByteArray text(30'000, 'b');
    QFile file(folder + u'/' + textFile);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
        return say(file.errorString());
    }
    return true;
}

QString textState(const QString& folder)
{
    return bytesOf(folder + u'/' + textFile);
}
void nothingToStart(const QString&) {}

} // namespace

const std::vector<Operation>& operations()
{
    static const std::vector<Operation> table{
        {u"creer"_s, prepareNothing, create, createUnlessThere, projectState, {projectFile}, {}},
        {u"inserer"_s, makeProject, insert, reopen, projectState, {projectFile}, {}},
        {u"modifier"_s, makeProject, change, reopen, projectState, {projectFile}, {}},
        {u"supprimer"_s,
         prepareFamilies,
         deleteIndividuals,
         reopen,
         projectState,
         {projectFile},
         {}},
        {u"fiche"_s, prepareForms, saveForms, reopen, projectState, {projectFile}, {}},
        {u"descripteur"_s, prepareForms, renameDescriptor, reopen, projectState, {projectFile}, {}},
        {u"structure"_s,
         prepareModules,
         restructure,
         reopen,
         structureState,
         {projectFile, structureBackup},
         {}},
        {u"remplacer"_s, prepareQueries, replaceValues, reopen, projectState, {projectFile, exportFile}, {exportFile}},
        {u"exporter"_s, prepareQueries, exportResult, exportAgain, exportState, {projectFile, exportFile}, {projectFile}},
        {u"optimiser"_s,
         prepareUntidy,
         optimise,
         reopen,
         projectAndBackupState,
         {projectFile, backupFile},
         {}},
        {u"ouvrir-ancien"_s, prepareOlder, openAndBrowse, reopen, projectState, {projectFile}, {}},
        {u"ouvrir"_s,
         makeProject,
         openAndBrowse,
         reopen,
         bytesAndDate,
         {projectFile},
         {projectFile}},
        {u"restaurer"_s,
         prepareBackupAlone,
         restore,
         restoreAgain,
         projectAndBackupState,
         {projectFile, backupFile},
         {backupFile}},
        {u"reglages"_s,
         prepareSettings,
         changeSettings,
         readSettings,
         settingsState,
         {settingsFile},
         {}},
        {u"naif"_s, prepareText, replaceInPlace, nothingToStart, textState, {textFile}, {}, true},
    };
    static const std::vector<Operation> all = [] {
        std::vector<Operation> rows = table;
        for (const Operation& row : mapOperations()) {
            rows.push_back(row);
        }
        for (const Operation& row : importOperations()) {
            rows.push_back(row);
        }
        for (const Operation& row : accessOperations()) {
            rows.push_back(row);
        }
        for (const Operation& row : referenceOperations()) {
            rows.push_back(row);
        }
        return rows;
    }();
    return all;
}

} // namespace faults
