#include "app/ModuleFields.h"

#include "data/FieldType.h"
#include "editing/ProjectRecords.h"
#include "jet/Definitions.h"
#include "jet/Error.h"

namespace app {

using namespace Qt::StringLiterals;

namespace {

/// Descriptor lists are kept under the module's name, in the narrowest column that holds it.
constexpr qsizetype moduleNameSize = 30;
constexpr qsizetype nameSize = 50;
constexpr qsizetype textSize = 255;
constexpr int menuBits = 4 | 8 | 16;
constexpr int invalidDefinition = 514;

const QString linkPrefix = u"ID "_s;

/// Composed, so that an "é" of a library and one of the project are the same.
QString composed(const QString& text)
{
    return text.normalized(QString::NormalizationForm_C).trimmed();
}

[[noreturn]] void refuse(const data::ModuleRecord& module, const QString& why)
{
    throw jet::Error(invalidDefinition,
                     u"Le complément « %1 » est refusé : %2"_s.arg(module.provider, why));
}

/// A name that a bracketed name of a statement can hold.
bool isName(const QString& name, qsizetype size)
{
    const auto forbidden = [](QChar c) { return c < u' ' || QStringView(u"[].!`\"|;").contains(c); };
    return !name.isEmpty() && name.size() <= size && std::none_of(name.begin(), name.end(), forbidden);
}

bool isReserved(const QString& name)
{
    static const QStringList reserved{u"PGTableDefs"_s, u"Propriétés"_s, u"Taxons"_s, u"Localités"_s,
                                      u"Collecteurs"_s, u"HERBORA"_s};
    return name.startsWith(u"MSys"_s, Qt::CaseInsensitive)
           || std::any_of(reserved.begin(), reserved.end(),
                          [&](const QString& other) { return jet::sameName(other, name); });
}

/// Columns that every module table has anyway.
bool isStandardColumn(const QString& column, const QString& module)
{
    const QStringList standard{u"ID Individus"_s, linkPrefix + module, u"KeyParent"_s, u"DateCreate"_s,
                               u"DateModify"_s, u"Locked"_s};
    return std::any_of(standard.begin(), standard.end(),
                       [&](const QString& other) { return jet::sameName(other, column); });
}

QString providerOf(const data::FieldRecord& field, const QString& provider)
{
    return field.type == data::LienCourant && field.column.startsWith(linkPrefix, Qt::CaseInsensitive)
               ? field.column.mid(linkPrefix.size())
               : provider;
}

data::FieldRecord recordOf(const addin::ChpEdition& chp, const QString& provider)
{
    data::FieldRecord field;
    field.column = composed(chp.champ);
    field.caption = composed(chp.Caption.isEmpty() ? chp.champ : chp.Caption).left(nameSize);
    field.type = chp.ctype;
    field.help = chp.TextHelp.left(textSize);
    field.rule = chp.ValidationRule;
    field.ruleText = chp.ValidationTexte;
    field.descriptors = chp.Descripteurs;
    field.provider = providerOf(field, provider);
    const auto flag = [&field](bool on, data::Flag bit) { field.flags |= on ? bit : 0; };
    flag(!chp.AllowNull, data::Obligatoire);
    flag(chp.ChampUnique, data::Unique);
    flag(chp.ChampMixteUnique, data::MixteUnique);
    flag(chp.Interface, data::Interface);
    field.flags |= chp.MenuFlags & menuBits;
    return field;
}

void checkField(const data::ModuleRecord& module, const data::FieldRecord& field)
{
    if (!isName(field.column, nameSize) || isStandardColumn(field.column, module.name))
        refuse(module, u"« %1 » ne peut être le nom d'un champ du module « %2 »."_s.arg(field.column, module.name));
    if (module.field(field.column))
        refuse(module, u"le champ « %1 » est défini plusieurs fois dans le module « %2 »."_s.arg(field.column, module.name));
    if (field.rule.size() + field.ruleText.size() >= textSize || field.rule.contains(u'|'))
        refuse(module, u"la règle de validation du champ « %1 » du module « %2 » est trop longue ou contient « | »."_s.arg(
                           field.column, module.name));
}

} // namespace

addin::TabEditions fieldsOf(const data::ModuleRecord& module)
{
    addin::TabEditions fields;
    for (const data::FieldRecord& field : module.fields) {
        fields << editing::fieldOf(field, module.name);
        fields.last()->Descripteurs = field.descriptors;
    }
    return fields;
}

data::ModuleRecord definitionOf(addin::gtAddin& addin, const QString& provider)
{
    data::ModuleRecord module;
    module.provider = provider;
    module.name = composed(addin.NomModule());
    if (!isName(module.name, moduleNameSize) || isReserved(module.name))
        refuse(module, u"« %1 » ne peut être le nom d'un module."_s.arg(module.name));
    module.label = composed(addin.NomObjet()).left(nameSize);
    if (module.label.isEmpty())
        module.label = module.name;
    module.version = addin.Version().left(nameSize);
    module.icon = addin.Icone();
    if (addin.IndividuMixteUnique())
        module.flags |= data::MixteUnique;
    if (addin.IndividuUnique())
        module.flags |= data::Unique;
    for (const addin::ChpEditionPtr& chp : addin.GetTabEditions()) {
        if (!chp)
            continue;
        data::FieldRecord field = recordOf(*chp, provider);
        checkField(module, field);
        field.index = int(module.fields.size());
        module.fields << field;
    }
    return module;
}

} // namespace app
