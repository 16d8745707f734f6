#include "app/Addins.h"

#include "app/AddinLibrary.h"
#include "app/BuiltInAddins.h"
#include "app/ModuleFields.h"
#include "app/ModuleRows.h"
#include "data/CoreModules.h"

#include <QDir>

namespace app {

using namespace Qt::StringLiterals;
using platform::BoxIcon;

namespace {

Q_LOGGING_CATEGORY(addinLog, "herbora.addin", QtInfoMsg)

constexpr int addinFailed = 440;
const QString addinCaption = u"Herbora"_s;

/// Runs code of a library; whatever it throws comes out as an error that names it. (The program's own errors do.)
template<typename Work>
auto guarded(const QString& library, Work work)
{
    try {
        return work();
    } catch (const jet::Error&) {
        throw;
    } catch (const std::exception& error) {
        throw jet::Error(addinFailed,
                         u"Le complément « %1 » a échoué : %2"_s.arg(library, QString::fromUtf8(error.what())));
    } catch (...) {
        throw jet::Error(addinFailed, u"Le complément « %1 » a échoué sans dire pourquoi."_s.arg(library));
    }
}

/// What of an add-in's field the dictionary does not keep.
void takeOver(addin::ChpEdition& field, const addin::TabEditions& given)
{
    for (const addin::ChpEditionPtr& own : given) {
        if (!own || !jet::sameName(own->champ, field.champ))
            continue;
        field.TextMask = own->TextMask;
        field.SubMenu = own->SubMenu;
        field.Format = own->Format;
        field.Locked = own->Locked;
    }
}

int nextIndex(const QList<data::ModuleRecord>& modules)
{
    int last = -1;
    for (const data::ModuleRecord& module : modules)
        last = qMax(last, module.index);
    return last + 1;
}

} // namespace

struct Addins::Item {
    data::ModuleRecord definition;
    addin::gtAddin* object = nullptr;
    QString library;                      ///< Empty where none is needed.
    std::unique_ptr<DictionaryAddin> own; ///< The object itself where none is needed.
    std::unique_ptr<ModuleRows> rows;

    static std::unique_ptr<Item> withoutLibrary(std::unique_ptr<DictionaryAddin> served,
                                                const data::ModuleRecord& definition)
    {
        auto item = std::make_unique<Item>();
        item->definition = definition;
        item->object = served.get();
        item->own = std::move(served);
        return item;
    }

    void giveRows(std::unique_ptr<ModuleRows> given)
    {
        guarded(library, [&] { object->SetRecordset(given.get()); });
        rows = std::move(given);
    }

    ~Item()
    {
        if (!rows || own)
            return;
        try {
            giveRows(nullptr);
        } catch (const jet::Error& error) {
            qCWarning(addinLog).noquote() << error.description();
        }
    }
};

Addins::Addins(QString folder, addin::Base& host, platform::Dialogues& dialogues)
    : m_folder(std::move(folder)), m_host(host), m_dialogues(dialogues)
{
}

Addins::~Addins() = default;

Addins::Item* Addins::find(QStringView module) const
{
    for (const auto& item : m_items) {
        if (jet::sameName(item->definition.name, module))
            return item.get();
    }
    return nullptr;
}

addin::gtAddin* Addins::item(QStringView module) const
{
    const Item* found = find(module);
    return found ? found->object : nullptr;
}

QStringList Addins::names() const
{
    QStringList names;
    for (const auto& item : m_items)
        names << item->definition.name;
    return names;
}

bool Addins::hasLibrary(const QString& name) const
{
    return m_libraries.contains(name, Qt::CaseInsensitive);
}

void Addins::reportCritical(const jet::Error& error)
{
    m_dialogues.tell(QStringList{u"ERREUR Critique !"_s,
                                 u':' + QString::number(error.number()) + u' ' + error.description(),
                                 u"Impossible d'établir une connexion avec la base de données"_s}
                         .join(u'\n'),
                     addinCaption, BoxIcon::Stop);
}

// --- Connecting ------------------------------------------------------------------------------------

void Addins::connectBuiltIn()
{
    m_items.push_back(Item::withoutLibrary(std::make_unique<Cl_Individu>(), data::coreIndividus()));
    m_items.push_back(Item::withoutLibrary(std::make_unique<CL_Identification>(), data::coreDéterminations()));
}

/// The entry object of a library; null, and said so, when it was made for other headers.
addin::Plugin* Addins::pluginOf(const QString& file)
{
    QString refusal = addinRefusal(file);
    addin::Plugin* plugin = refusal.isEmpty() ? &loadAddin(file) : nullptr;
    if (plugin && plugin->InterfaceVersion() != addin::interfaceVersion) {
        refusal = addinRefusal(file, QString::number(plugin->InterfaceVersion()));
        plugin = nullptr;
    }
    if (!plugin)
        m_dialogues.tell(refusal, addinCaption, BoxIcon::Stop);
    return plugin;
}

void Addins::connectLibrary(const QString& file, const data::Dictionary& dictionary)
{
    const QString name = addinName(file);
    auto item = std::make_unique<Item>();
    item->library = name;
    guarded(name, [&] {
        if (addin::Plugin* plugin = pluginOf(file))
            item->object = plugin->Connexion(&m_host);
        if (item->object)
            item->definition = definitionOf(*item->object, name);
    });
    if (!item->object) {
        qCDebug(addinLog).noquote() << file << "gives no module";
        return;
    }
    const data::ModuleRecord* known = dictionary.module(item->definition.name);
    if (find(item->definition.name) || (known && known->isUser())) {
        qCWarning(addinLog).noquote() << file << ": the module" << item->definition.name << "is there already";
        return;
    }
    m_items.push_back(std::move(item));
}

void Addins::connectAll(const data::Dictionary& dictionary)
{
    m_items.clear();
    connectBuiltIn();
    const QStringList files = addinFiles(m_folder);
    m_libraries.clear();
    for (const QString& file : files)
        m_libraries << addinName(file);
    try {
        for (const QString& file : files)
            connectLibrary(file, dictionary);
    } catch (const jet::Error& error) {
        reportCritical(error);
    }
}

// --- The dictionary --------------------------------------------------------------------------------

void Addins::synchronise(jet::Database& database, data::Dictionary& dictionary)
{
    if (database.readOnly())
        return;
    std::erase_if(m_items, [&](const auto& item) {
        if (item->own) {
            dictionary.put(item->definition);
            return false;
        }
        if (!dictionary.module(item->definition.name))
            item->definition.index = nextIndex(dictionary.modules());
        try {
            jet::Operation operation(database, u"Mise à jour du module "_s + item->definition.name);
            if (dictionary.synchronise(item->definition)) {
                operation.commit();
                return false;
            }
        } catch (const jet::Error& error) {
            reportCritical(error);
        }
        return true;
    });
}

QStringList Addins::keptModules(const QList<data::ModuleRecord>& modules) const
{
    QStringList kept = names();
    for (const data::ModuleRecord& module : modules) {
        if (module.isUser() || hasLibrary(module.provider))
            kept << module.name;
    }
    kept.removeDuplicates();
    return kept;
}

void Addins::reportMissing(const QList<data::ModuleRecord>& modules)
{
    QStringList missing;
    for (const data::ModuleRecord& module : modules) {
        const bool needed = !module.isUser() && !module.provider.isEmpty() && !find(module.name);
        if (needed && !hasLibrary(module.provider) && !missing.contains(module.provider, Qt::CaseInsensitive))
            missing << module.provider;
    }
    for (const QString& library : missing)
        m_dialogues.tell(u"La DLL "_s + library + u" est introuvable dans le répertoire "_s
                             + QDir::toNativeSeparators(m_folder),
                         addinCaption, BoxIcon::Warning);
}

void Addins::attach(jet::Database& database, const QList<data::ModuleRecord>& modules)
{
    std::vector<std::unique_ptr<Item>> connected = std::move(m_items);
    m_items.clear();
    for (const data::ModuleRecord& module : modules) {
        const auto known = std::find_if(connected.begin(), connected.end(), [&](const auto& item) {
            return item && jet::sameName(item->definition.name, module.name);
        });
        std::unique_ptr<Item> item;
        if (known != connected.end())
            item = std::move(*known);
        else if (module.isUser())
            item = Item::withoutLibrary(std::make_unique<DictionaryAddin>(module), module);
        else
            continue;
        if (item->own)
            item->own->setModule(module);
        try {
            item->giveRows(std::make_unique<ModuleRows>(database, module.name));
            m_items.push_back(std::move(item));
        } catch (const jet::Error& error) {
            reportCritical(error);
        }
    }
}

addin::TabEditions Addins::fields(const data::ModuleRecord& module) const
{
    const addin::TabEditions fields = fieldsOf(module);
    const Item* item = find(module.name);
    if (!item || item->own)
        return fields;
    try {
        const addin::TabEditions given = guarded(item->library, [&] { return item->object->GetTabEditions(); });
        for (const addin::ChpEditionPtr& field : fields)
            takeOver(*field, given);
    } catch (const jet::Error& error) {
        qCWarning(addinLog).noquote() << error.description();
    }
    return fields;
}

void Addins::itemAction(const QString& module, const QString& action, const QVariantList& arguments, bool& cancel)
{
    Item* item = find(module);
    if (!item)
        return;
    try {
        guarded(item->library, [&] {
            if (item->object->RaiseEvents())
                item->object->ItemAction(action, arguments, cancel);
        });
    } catch (const jet::Error& error) {
        qCWarning(addinLog).noquote() << action << error.description();
    }
}

} // namespace app
