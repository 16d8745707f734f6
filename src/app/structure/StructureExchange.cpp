#include "app/structure/StructureExchange.h"

#include "app/ProjectFiles.h"
#include "app/structure/StructureNames.h"
#include "data/CoreSchema.h"
#include "data/Dictionary.h"
#include "data/FieldType.h"

#include <QFile>
#include <QFileInfo>

namespace app {

using namespace Qt::StringLiterals;

namespace {

void fill(jet::Database& database, const QList<data::ModuleRecord>& modules, const QString& version,
          const platform::Clock& clock, platform::Dialogues& dialogues)
{
    jet::Operation operation(database, u"Export de la structure"_s);
    data::ensureDictionary(database);
    data::ensureProperties(database);
    data::ensureCollectors(database);
    data::ensureLocalities(database);
    data::ensureTaxa(database);
    data::Dictionary dictionary(database, clock, dialogues);
    dictionary.replace(modules);
    dictionary.save();
    dictionary.load();
    database.SetProperty(u"HerboraVersion"_s, version);
    operation.commit();
}

bool isUserField(const data::FieldRecord& field)
{
    return field.provider == data::providerUser || field.type == data::LienCourant;
}

} // namespace

void exportStructure(const QString& path, const QList<data::ModuleRecord>& modules, const QString& version,
                     const platform::Clock& clock, platform::Dialogues& dialogues)
{
    const QString target = QFileInfo(path).absoluteFilePath();
    if (QFileInfo::exists(target + u"-journal"_s))
        jet::fail(3204, target + u"-journal"_s); // it would be played into the new file
    const QString unfinished = temporaryPath(target);
    QFile::remove(unfinished);
    try {
        auto database = jet::Database::Create(unfinished, data::localeGeneral);
        fill(*database, modules, version, clock, dialogues);
        database->Close();
        moveIntoPlace(unfinished, target);
    } catch (const jet::Error& error) {
        removeStrayFiles(target);
        QFile::remove(unfinished);
        throw jet::Error(error.number(), withFinalNames(error.description()), error.source());
    }
}

QList<data::ModuleRecord> structureOf(const QString& path, const platform::Clock& clock, platform::Dialogues& dialogues)
{
    jet::OpenOptions options;
    options.readOnly = true;
    const auto database = jet::Database::Open(path, options);
    if (!database->schema().table(u"PGTableDefs") || !database->schema().table(u"Propriétés"))
        jet::fail(3343, path);
    data::Dictionary dictionary(*database, clock, dialogues);
    dictionary.readDefinitions();
    QList<data::ModuleRecord> modules = dictionary.modules();
    database->Close();
    // Marked for deletion there: of no use here.
    modules.removeIf([](const data::ModuleRecord& module) { return module.index < 0; });
    for (data::ModuleRecord& module : modules)
        module.fields.removeIf([](const data::FieldRecord& field) { return field.index < 0; });
    return modules;
}

void takeModule(DraftModules& modules, const data::ModuleRecord& module, const std::function<int()>& nextId)
{
    const auto at = std::find_if(modules.begin(), modules.end(), [&](const DraftModule& known) {
        return jet::sameName(known.record.name, module.name);
    });
    if (at == modules.end()) {
        DraftModule taken{nextId(), {}, module, {}};
        taken.record.fields.clear();
        for (const data::FieldRecord& field : module.fields)
            taken.fields.append({nextId(), {}, field});
        modules.append(taken);
        return;
    }
    DraftModule& known = *at;
    if (known.record.isUser() && module.isUser()) {
        const QString name = known.record.name;
        known.record = module;
        known.record.name = name;
        known.record.fields.clear();
    } else if (known.record.shortLabel.isEmpty()) {
        known.record.shortLabel = module.shortLabel;
    }
    for (const data::FieldRecord& field : module.fields) {
        if (!known.record.isUser() && !isUserField(field))
            continue;
        const auto own = std::find_if(known.fields.begin(), known.fields.end(), [&](const DraftField& other) {
            return jet::sameName(other.record.column, field.column);
        });
        if (own == known.fields.end()) {
            // Another field may have that caption.
            data::FieldRecord taken = field;
            taken.caption = freeName(field.caption, [&](const QString& name) { return !known.fieldNamed(name); });
            known.fields.append({nextId(), {}, taken});
        } else if (isUserField(own->record)) {
            const QString column = own->record.column;
            own->record = field;
            own->record.column = column;
        }
    }
    std::stable_sort(known.fields.begin(), known.fields.end(), [](const DraftField& one, const DraftField& other) {
        return one.record.index < other.record.index;
    });
}

} // namespace app
