#include "editing/ProjectRecords.h"

#include "data/RecordRules.h"
#include "jet/Recordset.h"
#include "jet/Store.h"

namespace editing {

using namespace Qt::StringLiterals;

namespace {

/// Bits of a field row that are entries of its context menu.
constexpr qint32 storedMenuBits = 4 | 8 | 16 | 32 | 64;

const QChar separator = u';';

} // namespace

addin::ChpEditionPtr fieldOf(const data::FieldRecord& field, const QString& module)
{
    auto chp = std::make_shared<addin::ChpEdition>();
    chp->ctype = field.type;
    chp->champ = field.column;
    chp->Caption = field.caption;
    chp->TextHelp = field.help;
    chp->NomModule = module;
    chp->MenuFlags = field.flags & storedMenuBits;
    chp->AllowNull = !field.required();
    chp->ChampUnique = field.unique();
    chp->ChampMixteUnique = field.partOfKey();
    chp->Interface = field.flags & data::Interface;
    chp->ValidationRule = field.rule;
    chp->ValidationTexte = field.ruleText;
    return chp;
}

ProjectRecords::ProjectRecords(jet::Database& database, const data::Dictionary& dictionary,
                               data::PropertyStore& store)
    : m_database(database), m_dictionary(dictionary), m_store(store)
{
}

/// False while an operation is open: what it wrote may yet be taken back. Forgets what was kept before a change.
bool ProjectRecords::mayKeep()
{
    if (m_database.inOperation())
        return false;
    const qint64 changes = m_database.store().totalChanges();
    if (std::exchange(m_changes, changes) != changes)
        forget();
    return true;
}

QVariantMap ProjectRecords::record(const QString& module, qint32 id)
{
    if (!mayKeep())
        return read(module, id);
    Kept& kept = m_kept[module];
    if (kept.id != id || kept.values.isEmpty())
        kept = {id, read(module, id)};
    return kept.values;
}

QVariantMap ProjectRecords::read(const QString& module, qint32 id)
{
    QVariantMap values;
    if (id <= 0 || !m_database.schema().table(module))
        return values;
    ++m_reads;
    const auto rows = m_database.OpenRecordset(module, jet::RecordsetType::Table);
    rows->SetIndex(u"PrimaryKey"_s);
    rows->Seek(u"="_s, {id});
    if (rows->NoMatch())
        return values;
    for (int column = 0; column < rows->FieldCount(); ++column) {
        if (!jet::isBinary(rows->FieldAt(column).type))
            values.insert(rows->FieldAt(column).name, rows->Value(column));
    }
    if (const data::ModuleRecord* definition = m_dictionary.module(module)) {
        for (const data::FieldRecord& field : definition->fields) {
            const int column = values.contains(field.column) ? -1 : rows->FieldIndex(field.column);
            if (column >= 0)
                values.insert(field.column, rows->Value(column));
        }
    }
    return values;
}

QStringList ProjectRecords::descriptors(const QString& module, const QString& column)
{
    if (!mayKeep())
        return readList(module, column);
    const std::pair key(module, column);
    auto list = m_lists.constFind(key);
    if (list == m_lists.cend())
        list = m_lists.insert(key, readList(module, column));
    return *list;
}

QStringList ProjectRecords::readList(const QString& module, const QString& column) const
{
    QStringList items;
    const QString list = m_store.value(data::kindDescripteur, module, column).toString();
    for (const QString& item : list.split(separator, Qt::SkipEmptyParts)) {
        if (!item.trimmed().isEmpty())
            items << item.trimmed();
    }
    return items;
}

bool ProjectRecords::setDescriptors(const QString& module, const QString& column, const QStringList& items)
{
    m_store.put(data::kindDescripteur, module, column, items.join(separator));
    return true;
}

addin::TabEditions ProjectRecords::fields(const QString& module)
{
    addin::TabEditions list;
    if (const data::ModuleRecord* definition = m_dictionary.module(module)) {
        for (const data::FieldRecord& field : definition->fields)
            list << fieldOf(field, definition->name);
    }
    return list;
}

QString ProjectRecords::label(const QString& module) const
{
    const data::ModuleRecord* definition = m_dictionary.module(module);
    return definition ? definition->label : module;
}

void ProjectRecords::forget()
{
    m_kept.clear();
    m_lists.clear();
}

QString IdentifierNames::botaniste(qint32 id) const { return QString::number(id); }
QString IdentifierNames::localité(qint32 id) const { return QString::number(id); }
QString IdentifierNames::taxon(qint32 id) const { return QString::number(id); }
QString IdentifierNames::taxonAuteurs(qint32 id) const { return QString::number(id); }
QString IdentifierNames::famille(qint32 taxon) const { return QString::number(taxon); }
QString IdentifierNames::rang(qint32 taxon) const { return QString::number(taxon); }

QString IdentifierNames::lien(const QString& module, const QString& ids) const
{
    QStringList keys;
    for (const QString& id : ids.split(u',', Qt::SkipEmptyParts))
        keys << data::parentKey(id.toInt(), module);
    return keys.join(u", "_s);
}

} // namespace editing
