#include "app/structure/StructureEditing.h"

#include "app/References.h"
#include "app/Session.h"
#include "app/structure/ShortLabel.h"
#include "app/structure/StructureExchange.h"
#include "app/structure/StructureNames.h"
#include "app/structure/StructureReview.h"
#include "data/CoreModules.h"
#include "data/FieldType.h"
#include "editing/DescriptorLists.h"

#include <QFileInfo>
#include <QLoggingCategory>

namespace app {

using namespace Qt::StringLiterals;
using platform::BoxIcon;

namespace {

Q_LOGGING_CATEGORY(structureLog, "herbora.structure")

const QString importTitle = u"Import de modules"_s;

bool isBuiltIn(const DraftModule& module)
{
    return jet::sameName(module.record.name, data::moduleIndividus)
           || jet::sameName(module.record.name, data::moduleDéterminations);
}

void renumber(DraftModules& modules)
{
    for (qsizetype at = 0; at < modules.size(); ++at)
        modules[at].record.index = int(at);
}

qsizetype positionOf(const DraftModules& modules, int id)
{
    for (qsizetype at = 0; at < modules.size(); ++at) {
        if (modules[at].id == id)
            return at;
    }
    return -1;
}

} // namespace

StructureEditing::StructureEditing(Session& session) : m_session(session), m_draft({})
{
    reload();
}

platform::Dialogues& StructureEditing::dialogues() const
{
    return m_session.surroundings().dialogues;
}

void StructureEditing::reload()
{
    m_records.clear();
    m_examples.clear();
    try {
        jet::Database& database = m_session.database();
        // Read anew: vocabularies may have changed since the project was opened.
        data::Dictionary dictionary(database, m_session.surroundings().clock, dialogues());
        dictionary.readDefinitions();
        QList<data::ModuleRecord> modules = dictionary.modules();
        modules.removeIf([&](const data::ModuleRecord& module) { return !database.schema().table(module.name); });
        for (const data::ModuleRecord& module : std::as_const(modules))
            m_records.insert(module.name, countRecords(database, module.name));
        m_draft.load(modules);
        for (const DraftModule& module : m_draft.modules())
            m_examples.insert(module.id, exampleValues(database, module, m_session.references().context()));
        if (m_draft.changed)
            m_draft.changed();
    } catch (const jet::Error& error) {
        qCWarning(structureLog).noquote() << error.number() << error.description();
        refuse(error.description());
    }
}

QString StructureEditing::caption() const
{
    return m_session.projectName() + u" - < Structure >"_s;
}

void StructureEditing::refuse(const QString& text, const QString& what) const
{
    dialogues().tell(text, what.isEmpty() ? caption() : caption() + u": "_s + what, BoxIcon::Stop);
}

bool StructureEditing::askDeletion(const QStringList& lines, const QString& what) const
{
    return dialogues().confirm(lines.join(u'\n'), caption() + u": "_s + what, BoxIcon::Warning, platform::Answer::No);
}

QString StructureEditing::fileFilter()
{
    return u"Fichiers Herbora (*.hbx)|*.hbx|"_s;
}

// --- What is shown ---------------------------------------------------------------------------------

bool StructureEditing::isReadOnly(const DraftModule& module) const
{
    return !module.record.isUser();
}

bool StructureEditing::isReadOnly(const DraftModule& module, const DraftField& field) const
{
    if (field.isLink()) {
        // A link that the program brings along comes back at the next opening.
        const data::ModuleRecord core = data::coreIndividus();
        return module.record.isIndividus() && core.field(field.record.column);
    }
    return field.record.provider != data::providerUser && !module.record.isUser();
}

bool StructureEditing::mayDelete(const DraftModule& module) const
{
    if (isBuiltIn(module))
        return false;
    // A library that is connected would bring its module back.
    return module.record.isUser() || module.origin.isEmpty() || !m_session.addins().item(module.origin);
}

QString StructureEditing::moduleText(const DraftModule& module) const
{
    return isReadOnly(module) ? module.record.name + u" <Lecture seule >"_s : module.record.name;
}

QString StructureEditing::status(const DraftModule& module) const
{
    if (module.origin.isEmpty())
        return u"Nouveau"_s;
    if (!m_session.addins().item(module.origin))
        return u"Le Module < "_s + module.record.name + u" > est actuellement inactif"_s;
    return u"Actif"_s;
}

QString StructureEditing::provider(const DraftModule& module) const
{
    return module.record.provider;
}

qint64 StructureEditing::records(const DraftModule& module) const
{
    return m_records.value(module.origin);
}

QString StructureEditing::example(const DraftModule& module) const
{
    const ExampleValues values = m_examples.value(module.id);
    return values.isEmpty() ? QString() : filledLabel(module.record.shortLabel, values);
}

QString StructureEditing::example(const DraftModule& module, const DraftField& field) const
{
    return m_examples.value(module.id).value(jet::nameKey(field.record.caption));
}

QString StructureEditing::descriptorText(const DraftField& field)
{
    return field.isList() ? QString::number(field.record.descriptors.size()) + u" descripteur(s)"_s : QString();
}

// --- Modules ---------------------------------------------------------------------------------------

void StructureEditing::editModule(int module, const QString& name, const std::function<void(DraftModule&)>& work)
{
    m_draft.edit(name, [&](DraftModules& modules) {
        if (DraftModule* one = moduleIn(modules, module))
            work(*one);
    });
}

int StructureEditing::addModule()
{
    const DraftModule none;
    const jet::Schema& schema = m_session.database().schema();
    const auto allowed = [&](const QString& name) { return isModuleName(name, none, m_draft.modules(), schema); };
    QString name = freeName(u"Nouveau module"_s, allowed);
    for (;;) {
        const auto answer = dialogues().input(caption() + u": Ajout d'un module"_s, u"Indiquer le nom du Module"_s, name);
        if (!answer || composedName(*answer).isEmpty())
            return 0;
        name = composedName(*answer);
        if (allowed(name))
            break;
        refuse(u"Impossible d'ajouter ce module: le Nom est invalide ou déjà existant dans la base"_s,
               u"Ajout d'un module"_s);
    }
    const int id = m_draft.nextId();
    m_draft.edit(u"Ajouter le module « %1 »"_s.arg(name), [&](DraftModules& modules) {
        DraftModule module;
        module.id = id;
        module.record.name = name;
        module.record.label = name;
        module.record.version = u"1.0"_s;
        for (const DraftModule& other : std::as_const(modules))
            module.record.index = qMax(module.record.index, other.record.index + 1);
        modules.append(module);
    });
    return id;
}

bool StructureEditing::renameModule(int module, const QString& name)
{
    const DraftModule* known = m_draft.module(module);
    const QString wanted = composedName(name);
    if (!known || isReadOnly(*known) || wanted == known->record.name)
        return false;
    if (!isModuleName(wanted, *known, m_draft.modules(), m_session.database().schema())) {
        refuse(u"Impossible de renommer ce module: le Nom est invalide ou déjà existant dans la base"_s);
        return false;
    }
    const QString old = known->record.name;
    m_draft.edit(u"Renommer le module « %1 »"_s.arg(old), [&](DraftModules& modules) {
        DraftModule* one = moduleIn(modules, module);
        if (one->record.label == old)
            one->record.label = wanted;
        one->record.name = wanted;
        // Links to it are called after it.
        for (DraftModule& other : modules) {
            for (DraftField& field : other.fields) {
                if (!field.isLink() || !jet::sameName(field.record.provider, old))
                    continue;
                field.record.provider = wanted;
                field.record.column = u"ID "_s + wanted;
                if (field.record.caption == u"Lien courant "_s + old)
                    field.record.caption = u"Lien courant "_s + wanted;
            }
        }
    });
    return true;
}

void StructureEditing::setLabel(int module, const QString& text)
{
    editModule(module, u"Appellation élémentaire"_s, [&](DraftModule& one) {
        const QString label = composedName(text).left(50);
        one.record.label = label.isEmpty() ? one.record.name : label;
    });
}

void StructureEditing::setShortLabel(int module, const QString& text)
{
    editModule(module, u"Appellation abrégée"_s,
               [&](DraftModule& one) { one.record.shortLabel = composedName(text).left(255); });
}

void StructureEditing::setModuleHelp(int module, const QString& text)
{
    editModule(module, u"Description du module"_s,
               [&](DraftModule& one) { one.record.help = composedName(text).left(255); });
}

void StructureEditing::setModuleFlag(int module, data::Flag flag, bool on)
{
    const QString name = flag == data::Unique ? u"Un enregistrement par Individu"_s : u"Une combinaison par Individu"_s;
    editModule(module, name, [&](DraftModule& one) {
        if (!isReadOnly(one))
            one.record.flags = on ? one.record.flags | flag : one.record.flags & ~flag;
    });
}

void StructureEditing::setIcon(int module, const QByteArray& picture)
{
    editModule(module, u"Icône du module"_s, [&](DraftModule& one) {
        if (!isReadOnly(one))
            one.record.icon = picture;
    });
}

bool StructureEditing::deleteModule(int module)
{
    const DraftModule* known = m_draft.module(module);
    if (!known || !mayDelete(*known))
        return false;
    const QString name = known->record.name;
    const bool working = !known->origin.isEmpty() && m_session.addins().item(known->origin);
    qint64 count = 0;
    try {
        count = countRecords(m_session.database(), known->origin); // there may be more of them by now
    } catch (const jet::Error& error) {
        refuse(error.description());
        return false;
    }
    QStringList lines{u"Vous allez supprimer le module < "_s + name + u" >"_s};
    if (working || count > 0)
        lines << u"Ce module est actuellement fonctionnel, il contient "_s + QString::number(count)
                     + u" enregistrement(s)..."_s
              << u"La suppression de ce module entraînera la perte irrémédiable des données et des liens associés"_s;
    else
        lines << u"Ce module n'est actuellement pas fonctionnel et ne contient aucune donnée..."_s;
    lines << u"Etes-vous certain de vouloir supprimer ce module ?"_s;
    if (!askDeletion(lines, u"Suppression d'un module"_s))
        return false;
    m_draft.edit(u"Supprimer le module « %1 »"_s.arg(name), [&](DraftModules& modules) {
        modules.removeIf([&](const DraftModule& one) { return one.id == module; });
        for (DraftModule& other : modules)
            other.fields.removeIf([&](const DraftField& field) {
                return field.isLink() && jet::sameName(field.record.provider, name);
            });
    });
    return true;
}

bool StructureEditing::canMoveModule(int module, int by) const
{
    const qsizetype at = positionOf(m_draft.modules(), module);
    return at >= 0 && at + by >= 0 && at + by < m_draft.modules().size();
}

bool StructureEditing::moveModule(int module, int by)
{
    if (!canMoveModule(module, by))
        return false;
    m_draft.edit(u"Déplacer le module"_s, [&](DraftModules& modules) {
        const qsizetype at = positionOf(modules, module);
        modules.move(at, at + by);
        renumber(modules);
    });
    return true;
}

// --- Vocabularies and files ------------------------------------------------------------------------

bool StructureEditing::synchroniseDescriptors()
{
    const bool agreed = dialogues().confirm(
        u"Synchroniser la liste des descripteurs à partir des données de la base de données ?\r\n"
        "Attention, les descripteurs non référencées seront supprimées définitivement...\r\n"
        "Voulez-vous procéder à la synchronisation ?"_s,
        caption(), BoxIcon::Warning, platform::Answer::No);
    if (!agreed)
        return false;
    QHash<int, QStringList> found;
    try {
        jet::Operation operation(m_session.database(), u"Synchronisation des descripteurs"_s);
        editing::DescriptorLists lists(m_session.database(), m_session.properties(), m_session.surroundings().clock,
                                       dialogues());
        for (const DraftModule& module : m_draft.saved()) {
            for (const DraftField& field : module.fields) {
                if (field.isList())
                    found.insert(field.id, lists.synchronise({module.origin, field.origin, field.record.caption,
                                                              field.record.type, !field.record.required()}));
            }
        }
        operation.commit();
    } catch (const jet::Error& error) {
        refuse(error.description());
        return false;
    }
    for (auto at = found.cbegin(); at != found.cend(); ++at)
        m_draft.takeStoredDescriptors(at.key(), at.value());
    return true;
}

bool StructureEditing::exportTo(const QString& path)
{
    QList<data::ModuleRecord> modules;
    for (const DraftModule& module : m_draft.modules())
        modules << module.definition();
    try {
        if (QFileInfo(path).canonicalFilePath() == QFileInfo(m_session.path()).canonicalFilePath())
            jet::fail(3045, path, u"ce programme"_s);
        exportStructure(path, modules, m_session.surroundings().version, m_session.surroundings().clock, dialogues());
        return true;
    } catch (const jet::Error& error) {
        refuse(u"La structure n'a pas été exportée :\n"_s + error.description());
        return false;
    }
}

/// Modules that the user may take: those of users, and the program's own where they have fields of the user's.
QList<data::ModuleRecord> StructureEditing::offered(const QList<data::ModuleRecord>& given) const
{
    QList<data::ModuleRecord> modules;
    for (const data::ModuleRecord& module : given) {
        const bool own = std::any_of(module.fields.begin(), module.fields.end(), [&](const data::FieldRecord& field) {
            return field.provider == data::providerUser
                   || (field.type == data::LienCourant && !data::coreIndividus().field(field.column));
        });
        const DraftModule* known = m_draft.moduleNamed(module.name);
        if (module.isUser() || (own && known))
            modules << module;
    }
    return modules;
}

/// What a file offers; when that is nothing, it is said.
QList<data::ModuleRecord> StructureEditing::modulesIn(const QString& path) const
{
    try {
        const auto given = offered(structureOf(path, m_session.surroundings().clock, dialogues()));
        if (given.isEmpty())
            dialogues().tell(u"Ce fichier ne contient aucun module défini par l'utilisateur."_s,
                             caption() + u": "_s + importTitle);
        return given;
    } catch (const jet::Error& error) {
        refuse(u"La structure n'a pas été importée :\n"_s + error.description(), importTitle);
        return {};
    }
}

bool StructureEditing::importAllFrom(const QString& path)
{
    const QList<data::ModuleRecord> given = modulesIn(path);
    if (!given.isEmpty())
        take(given);
    return !given.isEmpty();
}

bool StructureEditing::importFrom(const QString& path)
{
    const QList<data::ModuleRecord> given = modulesIn(path);
    if (given.isEmpty())
        return false;
    platform::Choice choice;
    choice.title = caption() + u": "_s + importTitle;
    choice.prompt = u"Sélectionnez les modules à importer de « %1 »"_s.arg(QFileInfo(path).fileName());
    choice.column = u"Module"_s;
    choice.several = true;
    for (const data::ModuleRecord& module : std::as_const(given))
        choice.items << (m_draft.moduleNamed(module.name) ? module.name + u" (à compléter)"_s : module.name);
    const auto chosen = dialogues().choose(choice);
    if (!chosen || chosen->isEmpty())
        return false;
    QList<data::ModuleRecord> modules;
    for (const int at : *chosen)
        modules << given[at];
    take(modules);
    return true;
}

void StructureEditing::take(const QList<data::ModuleRecord>& given)
{
    QStringList refused;
    m_draft.edit(u"Importer des modules"_s, [&](DraftModules& modules) {
        for (const data::ModuleRecord& module : given) {
            const bool known = m_draft.moduleNamed(module.name);
            DraftModule fresh;
            fresh.record = module;
            if (known || isModuleName(module.name, fresh, modules, m_session.database().schema()))
                takeModule(modules, module, [this] { return m_draft.nextId(); });
            else
                refused << module.name;
        }
        QStringList names;
        for (const DraftModule& module : std::as_const(modules))
            names << module.record.name;
        // A link leads nowhere without its module.
        for (DraftModule& module : modules)
            module.fields.removeIf([&](const DraftField& field) {
                return field.origin.isEmpty() && field.isLink()
                       && !names.contains(field.record.provider, Qt::CaseInsensitive);
            });
        std::stable_sort(modules.begin(), modules.end(), [](const DraftModule& one, const DraftModule& other) {
            return one.record.index < other.record.index;
        });
    });
    if (!refused.isEmpty())
        refuse(u"Ces modules n'ont pas été importés, car leur nom est invalide ou déjà existant dans la base :\n"_s
                   + refused.join(u'\n'),
               importTitle);
}

} // namespace app
