// The commands on fields.
#include "app/Session.h"
#include "app/structure/ShortLabel.h"
#include "app/structure/StructureEditing.h"
#include "app/structure/StructureNames.h"
#include "app/structure/StructureReview.h"
#include "app/structure/ValueConversion.h"
#include "data/CoreModules.h"
#include "data/FieldType.h"
#include "editing/DescriptorLists.h"
#include "jet/ColumnTest.h"

namespace app {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype validationSize = 255;
constexpr int mixedFlag = data::MixteUnique;

QString flagName(data::Flag flag)
{
    switch (flag) {
    case data::Obligatoire:
        return u"Valeur nulle interdite"_s;
    case data::Unique:
        return u"Valeur unique"_s;
    case mixedFlag:
        return u"Combinaison unique"_s;
    default:
        return u"Lien interface"_s;
    }
}

void renumber(QList<DraftField>& fields)
{
    for (qsizetype at = 0; at < fields.size(); ++at)
        fields[at].record.index = int(at);
}

qsizetype positionOf(const DraftModule& module, int field)
{
    for (qsizetype at = 0; at < module.fields.size(); ++at) {
        if (module.fields[at].id == field)
            return at;
    }
    return -1;
}

/// Whether the numbers of the fields say their order already.
bool inOrder(const QList<DraftField>& fields)
{
    return std::adjacent_find(fields.begin(), fields.end(), [](const DraftField& one, const DraftField& next) {
               return one.record.index >= next.record.index;
           }) == fields.end();
}

} // namespace

const QList<QPair<QString, int>>& StructureEditing::typesOffered()
{
    static const QList<QPair<QString, int>> types{
        {u"Taxon"_s, data::Taxon},           {u"Botaniste"_s, data::Botaniste},
        {u"Localité"_s, data::Localité},     {u"Longitude"_s, data::Longitude},
        {u"Latitude"_s, data::Latitude},     {u"Image"_s, data::Image},
        {u"Date"_s, data::Date},             {u"Oui/Non"_s, data::OuiNon},
        {u"Nombre Entier"_s, data::Entier},  {u"Nombre Réel"_s, data::Réel},
        {u"Texte court"_s, data::Texte},     {u"Texte Long"_s, data::TexteMémo},
        {u"Liste Simple"_s, data::ListeSimple}, {u"Liste Multiple"_s, data::ListeMultiple},
        {u"LienCourant"_s, data::LienCourant}};
    return types;
}

QString StructureEditing::typeText(int type)
{
    for (const auto& [text, code] : typesOffered()) {
        if (code == type)
            return text;
    }
    return data::nameOfType(type);
}

void StructureEditing::editField(int field, const QString& name, const std::function<void(DraftField&)>& work)
{
    const DraftModule* module = m_draft.moduleOf(field);
    const DraftField* known = m_draft.field(field);
    if (!known || isReadOnly(*module, *known))
        return;
    m_draft.edit(name, [&](DraftModules& modules) { work(*fieldIn(modules, field)); });
}

int StructureEditing::addField(int module, int after)
{
    const DraftModule* known = m_draft.module(module);
    if (!known)
        return 0;
    DraftField field;
    field.id = m_draft.nextId();
    field.record.caption = freeName(u"Nouveau champ"_s,
                                    [&](const QString& name) { return isFieldName(name, field, *known); });
    field.record.column = field.record.caption;
    m_draft.edit(u"Ajouter un champ au module « %1 »"_s.arg(known->record.name), [&](DraftModules& modules) {
        DraftModule* one = moduleIn(modules, module);
        const qsizetype behind = positionOf(*one, after);
        if (behind >= 0 && behind + 1 < one->fields.size()) {
            one->fields.insert(behind + 1, field);
            renumber(one->fields);
        } else {
            for (const DraftField& other : std::as_const(one->fields))
                field.record.index = qMax(field.record.index, other.record.index + 1);
            one->fields.append(field);
        }
    });
    return field.id;
}

/// The module that the user chooses among those that `Individus` has no link to; empty for none.
QString StructureEditing::chooseLinked(const DraftModule& individus) const
{
    platform::Choice choice;
    choice.title = caption() + u": Ajout d'un champ de liaison"_s;
    choice.prompt = u"Sélectionnez le module dont un enregistrement sera lié à l'individu"_s;
    choice.column = u"Module"_s;
    for (const DraftModule& module : m_draft.modules()) {
        const QString column = u"ID "_s + module.record.name;
        const bool linked = std::any_of(individus.fields.begin(), individus.fields.end(), [&](const DraftField& field) {
            return jet::sameName(field.record.column, column);
        });
        if (!module.record.isIndividus() && !linked)
            choice.items << module.record.name;
    }
    if (choice.items.isEmpty()) {
        dialogues().tell(u"Tous les modules sont déjà liés à Individus."_s, choice.title);
        return {};
    }
    const auto chosen = dialogues().choose(choice);
    return chosen && !chosen->isEmpty() ? choice.items.value(chosen->first()) : QString();
}

namespace {

void makeLink(DraftField& field, const QString& module)
{
    field.record.type = data::LienCourant;
    field.record.caption = u"Lien courant "_s + module;
    field.record.help = u"Description contextuelle pour le champ"_s;
    field.record.column = u"ID "_s + module;
    field.record.provider = module;
    field.record.flags = data::Connecté;
    field.record.rule.clear();
    field.record.ruleText.clear();
    field.record.descriptors.clear();
}

} // namespace

int StructureEditing::addLink()
{
    const DraftModule* individus = m_draft.moduleNamed(data::moduleIndividus);
    const QString linked = individus ? chooseLinked(*individus) : QString();
    if (linked.isEmpty())
        return 0;
    DraftField field;
    field.id = m_draft.nextId();
    makeLink(field, linked);
    const int module = individus->id;
    m_draft.edit(u"Ajouter un champ de liaison"_s, [&](DraftModules& modules) {
        DraftModule* one = moduleIn(modules, module);
        for (const DraftField& other : std::as_const(one->fields))
            field.record.index = qMax(field.record.index, other.record.index + 1);
        one->fields.append(field);
    });
    return field.id;
}

/// A field that is not saved yet becomes a link.
bool StructureEditing::linkTo(int field)
{
    const DraftModule* module = m_draft.moduleOf(field);
    const DraftField* known = m_draft.field(field);
    if (!module->record.isIndividus() || !known->origin.isEmpty()) {
        refuse(u"Le type « LienCourant » est celui des champs de liaison du module Individus.\n"
               "Ajoutez-en un avec la commande « Ajouter un champ de liaison »."_s);
        return false;
    }
    const QString linked = chooseLinked(*module);
    if (linked.isEmpty())
        return false;
    editField(field, u"Type du champ"_s, [&](DraftField& one) { makeLink(one, linked); });
    return true;
}

bool StructureEditing::renameField(int field, const QString& name)
{
    const DraftModule* module = m_draft.moduleOf(field);
    const DraftField* known = m_draft.field(field);
    const QString wanted = composedName(name);
    if (!known || isReadOnly(*module, *known) || wanted == known->record.caption)
        return false;
    if (!isFieldName(wanted, *known, *module)) {
        refuse(u"Erreur: le nom de champ "_s + wanted + u" est invalide ou déja défini dans le tableau "_s
               + module->record.name + u"\rModifier le nom afin qu'il soit unique"_s);
        return false;
    }
    const QString old = known->record.caption;
    const QString column = columnFor(*known, wanted);
    const QString oldColumn = known->record.column;
    const int id = module->id;
    m_draft.edit(u"Renommer le champ « %1 »"_s.arg(old), [&](DraftModules& modules) {
        DraftField* one = fieldIn(modules, field);
        one->record.caption = wanted;
        one->record.column = column;
        if (column != oldColumn)
            one->record.rule.replace(u'[' + oldColumn + u']', u'[' + column + u']', Qt::CaseInsensitive);
        DraftModule* owner = moduleIn(modules, id);
        owner->record.shortLabel = renamedInLabel(owner->record.shortLabel, old, wanted);
    });
    // Its example is found by its name.
    if (m_examples[id].contains(jet::nameKey(old)))
        m_examples[id].insert(jet::nameKey(wanted), m_examples[id].value(jet::nameKey(old)));
    if (m_draft.changed)
        m_draft.changed();
    return true;
}

bool StructureEditing::setType(int field, int type)
{
    const DraftModule* module = m_draft.moduleOf(field);
    const DraftField* known = m_draft.field(field);
    if (!known || isReadOnly(*module, *known) || known->record.type == type)
        return false;
    if (type == data::LienCourant)
        return linkTo(field);
    if (known->isLink()) {
        refuse(u"Un champ de liaison ne peut pas changer de type : supprimez-le et ajoutez un autre champ."_s);
        return false;
    }
    editField(field, u"Type du champ"_s, [&](DraftField& one) { one.record.type = type; });
    return true;
}

void StructureEditing::setFieldFlag(int field, data::Flag flag, bool on)
{
    editField(field, flagName(flag), [&](DraftField& one) {
        one.record.flags = on ? one.record.flags | flag : one.record.flags & ~flag;
    });
}

void StructureEditing::setFieldHelp(int field, const QString& text)
{
    editField(field, u"Description"_s, [&](DraftField& one) { one.record.help = composedName(text).left(255); });
}

bool StructureEditing::setRule(int field, const QString& rule)
{
    const DraftField* known = m_draft.field(field);
    const QString wanted = rule.trimmed();
    if (!known || wanted == known->record.rule)
        return false;
    try {
        auto column = data::columnOfType(known->record.type, known->record.column);
        if (column) {
            column->ValidationRule = wanted;
            jet::checkRule(*column);
        }
    } catch (const jet::Error& error) {
        refuse(error.description());
        return false;
    }
    if (wanted.contains(u'|') || wanted.size() + known->record.ruleText.size() + 1 > validationSize) {
        refuse(u"La règle de validation est trop longue, ou elle contient « | »."_s);
        return false;
    }
    editField(field, u"Règle de validation"_s, [&](DraftField& one) { one.record.rule = wanted; });
    return true;
}

void StructureEditing::setRuleText(int field, const QString& text)
{
    editField(field, u"Message si validation échoue"_s, [&](DraftField& one) {
        one.record.ruleText = composedName(text).left(validationSize - 1 - one.record.rule.size());
    });
}

void StructureEditing::setDescriptors(int field, const QStringList& items)
{
    editField(field, u"Liste des descripteurs"_s,
              [&](DraftField& one) { one.record.descriptors = editing::DescriptorLists::normalized(items); });
}

bool StructureEditing::deleteField(int field)
{
    const DraftModule* module = m_draft.moduleOf(field);
    const DraftField* known = m_draft.field(field);
    if (!known || isReadOnly(*module, *known))
        return false;
    const QString caption = known->record.caption;
    QStringList lines{u"Vous allez supprimer le champ < "_s + caption + u" >"_s};
    try {
        if (!known->origin.isEmpty() && holdsData(m_session.database(), module->origin, known->origin))
            lines << u"Ce champ est actuellement fonctionnel, il peut contenir des données..."_s
                  << u"La suppression de ce champ entraînera la perte irrémédiable des données associées"_s;
        else
            lines << u"Ce champ ne contient aucune donnée, sa suppression est sans risque..."_s;
    } catch (const jet::Error& error) {
        refuse(error.description());
        return false;
    }
    lines << u"Supprimer définitivement ce champ ?"_s;
    if (!askDeletion(lines, u"Suppression d'un champ"_s))
        return false;
    const int id = module->id;
    m_draft.edit(u"Supprimer le champ « %1 »"_s.arg(caption), [&](DraftModules& modules) {
        moduleIn(modules, id)->fields.removeIf([&](const DraftField& one) { return one.id == field; });
    });
    return true;
}

bool StructureEditing::canMoveField(int field, int by) const
{
    const DraftModule* module = m_draft.moduleOf(field);
    const qsizetype at = module ? positionOf(*module, field) : -1;
    return at >= 0 && at + by >= 0 && at + by < module->fields.size();
}

bool StructureEditing::moveField(int field, int by)
{
    if (!canMoveField(field, by))
        return false;
    const int id = m_draft.moduleOf(field)->id;
    m_draft.edit(u"Déplacer le champ"_s, [&](DraftModules& modules) {
        DraftModule* module = moduleIn(modules, id);
        const qsizetype at = positionOf(*module, field);
        const int one = module->fields[at].record.index;
        const int other = module->fields[at + by].record.index;
        module->fields.move(at, at + by);
        module->fields[at + by].record.index = other;
        module->fields[at].record.index = one;
        if (!inOrder(module->fields))
            renumber(module->fields);
    });
    return true;
}

} // namespace app
