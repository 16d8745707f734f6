#include "app/structure/StructureNames.h"

#include "data/CoreModules.h"

namespace app {

using namespace Qt::StringLiterals;
using jet::sameName;

namespace {

constexpr qsizetype longestModule = 40;
constexpr qsizetype longestField = 50;

bool isOneOf(const QString& name, const QStringList& others)
{
    return others.contains(name, Qt::CaseInsensitive);
}

/// Letters as the user types them; the first is one.
bool isWellFormed(const QString& name)
{
    if (name.isEmpty() || name.size() > longestModule || !name.front().isLetter())
        return false;
    return std::all_of(name.begin(), name.end(),
                       [](QChar c) { return c.isLetterOrNumber() || c == u' ' || c == u'_' || c == u'-'; });
}

/// What other parts of the program mean by a name: groups of the tree, kinds of nodes, the alias of repairs.
bool isTaken(const QString& name)
{
    static const QStringList names{u"HERBORA"_s,    u"Bases"_s,      u"Requête"_s,     u"Sélections"_s,
                                   u"Modèle"_s,     u"Botanistes"_s, u"Lsbotanistes"_s, u"Lslocalités"_s,
                                   u"Lstaxons"_s,   u"Taxons"_s,     u"Localités"_s,   u"Collecteurs"_s,
                                   u"PGTableDefs"_s, u"Propriétés"_s};
    static const QStringList endings{u"-self"_s, u"-model"_s, u"-base"_s};
    return isOneOf(name, names) || name.startsWith(u"MSys"_s, Qt::CaseInsensitive)
           || name.startsWith(u"PG"_s, Qt::CaseInsensitive) || name.contains(u"-query"_s, Qt::CaseInsensitive)
           || std::any_of(endings.begin(), endings.end(),
                          [&](const QString& ending) { return name.endsWith(ending, Qt::CaseInsensitive); });
}

/// Keys of parents end with "-" and the module.
bool sharesEnding(const QString& one, const QString& other)
{
    return one.endsWith(u'-' + other, Qt::CaseInsensitive) || other.endsWith(u'-' + one, Qt::CaseInsensitive);
}

/// The link columns of `Individus` are found by the module's name: another column of that name would be taken for one.
bool isLinkColumn(const QString& name, const DraftModule& module, const DraftModules& all)
{
    const QString column = u"ID "_s + name;
    for (const DraftModule& other : all) {
        if (!other.record.isIndividus())
            continue;
        for (const DraftField& field : other.fields) {
            const bool own = field.isLink() && sameName(field.record.provider, module.record.name);
            if (sameName(field.record.column, column) && !own)
                return true;
        }
    }
    return false;
}

} // namespace

QString composedName(const QString& text)
{
    return text.normalized(QString::NormalizationForm_C).trimmed();
}

bool isModuleName(const QString& name, const DraftModule& module, const DraftModules& all, const jet::Schema& schema)
{
    if (!isWellFormed(name) || isTaken(name) || name != name.trimmed())
        return false;
    const bool own = !module.origin.isEmpty() && sameName(name, module.origin);
    if (!own && (schema.table(name) || schema.query(name)))
        return false;
    if (isLinkColumn(name, module, all))
        return false;
    for (const DraftField& field : module.fields) {
        // The index of the relation bears the name of the module, that of a unique field its own.
        if (sameName(field.record.column, name) || sameName(field.record.column, u"ID "_s + name))
            return false;
    }
    return std::none_of(all.begin(), all.end(), [&](const DraftModule& other) {
        return other.id != module.id && (sameName(other.record.name, name) || sharesEnding(other.record.name, name));
    });
}

bool isFieldName(const QString& name, const DraftField& field, const DraftModule& module)
{
    const auto forbidden = [](QChar c) { return c < u' ' || QStringView(u"[].!`\"|;").contains(c); };
    if (name.isEmpty() || name.size() > longestField || std::any_of(name.begin(), name.end(), forbidden))
        return false;
    const QString column = columnFor(field, name);
    const QStringList standard{u"ID Individus"_s, u"ID "_s + module.record.name, u"KeyParent"_s, u"DateCreate"_s,
                               u"DateModify"_s,   u"Locked"_s,                    u"PrimaryKey"_s, u"MixUnique"_s,
                               u"IndividuUnique"_s, module.record.name};
    if (isOneOf(name, standard) || isOneOf(column, standard) || name.startsWith(u"Recherche "_s, Qt::CaseInsensitive))
        return false;
    return std::none_of(module.fields.begin(), module.fields.end(), [&](const DraftField& other) {
        return other.id != field.id
               && (sameName(other.record.caption, name) || sameName(other.record.column, name)
                   || sameName(other.record.column, column) || sameName(other.record.caption, column));
    });
}

QString columnFor(const DraftField& field, const QString& name)
{
    const bool follows = !field.isLink() && (field.record.column.isEmpty() || field.record.column == field.record.caption);
    return follows ? name : field.record.column;
}

QString freeName(const QString& wanted, const std::function<bool(const QString&)>& allowed)
{
    QString name = wanted;
    for (int number = 2; !allowed(name) && number < 1000; ++number)
        name = wanted + u' ' + QString::number(number);
    return name;
}

} // namespace app
