#include "data/Dictionary.h"

#include "data/FieldType.h"
#include "data/ModuleTable.h"
#include "data/OrNull.h"
#include "data/PropertyStore.h"
#include "data/StatementTemplate.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"

#include <QLoggingCategory>

namespace data {

using namespace Qt::StringLiterals;
using jet::texte;

namespace {

Q_LOGGING_CATEGORY(dictionaryLog, "herbora.dictionary")

const QString typeModule = u"Addin"_s;
const QString typeField = u"TabEdit"_s;
constexpr int duplicateKey = 3022;

bool isListField(const FieldRecord& field)
{
    return field.type == ListeMultiple || field.type == ListeSimple;
}

QStringList descriptorsOf(const QString& text)
{
    QStringList items;
    for (const QString& item : text.split(u';', Qt::SkipEmptyParts)) {
        if (!item.trimmed().isEmpty())
            items << item.trimmed();
    }
    return items;
}

/// Null for an empty text: the dictionary keeps no empty help or name.
QString validationOf(const FieldRecord& field)
{
    if (field.rule.isEmpty() && field.ruleText.isEmpty())
        return {};
    return field.ruleText.isEmpty() ? field.rule : field.rule + u'|' + field.ruleText;
}

using Values = QList<QPair<QString, QVariant>>;

bool differs(const jet::Recordset& row, const Values& values)
{
    return std::any_of(values.begin(), values.end(), [&](const auto& value) {
        const QVariant now = row.Value(value.first);
        // A missing text and an empty one are the same thing to the dictionary.
        if (now.toByteArray().isEmpty() && value.second.toByteArray().isEmpty())
            return false;
        return now != value.second;
    });
}

/// Adds the row of (type, module, table) when there is none, then brings it to the values.
void writeRow(jet::Database& database, const QString& type, const QString& module,
              const QString& table, const QString& insertion, const Values& values)
{
    const std::unique_ptr<jet::Recordset> rows =
        database.OpenRecordset(u"PGTableDefs"_s, jet::RecordsetType::Table);
    rows->SetIndex(u"Unique"_s);
    rows->Seek(u"="_s, {type, module, table});
    if (rows->NoMatch()) {
        try {
            database.Execute(filled(insertion, {{u"rType"_s, texte(type)},
                                                {u"rTable"_s, texte(table)},
                                                {u"rNomModule"_s, texte(module)}}));
        } catch (const jet::Error& error) {
            if (error.number() != duplicateKey) // the row being there already is as good
                throw;
        }
        rows->Seek(u"="_s, {type, module, table});
    }
    if (rows->NoMatch() || !differs(*rows, values))
        return;
    rows->Edit();
    for (const auto& [name, value] : values)
        rows->SetValue(name, value);
    rows->Update();
}

} // namespace

Dictionary::Dictionary(jet::Database& database, const platform::Clock& clock,
                       platform::Dialogues& dialogues)
    : m_database(database), m_clock(clock), m_dialogues(dialogues)
{
}

void Dictionary::readDefinitions()
{
    m_modules.clear();
    const auto rows = m_database.OpenRecordset(
        u"SELECT PGTableDefs.* From PGTableDefs WHERE PGTableDefs.Type = "_s + texte(typeModule)
        + u" ORDER BY PGTableDefs.Index, PGTableDefs.NomObjet"_s);
    for (; !rows->EOF_(); rows->MoveNext()) {
        ModuleRecord module;
        module.name = rows->Value(u"NomModule").toString();
        module.provider = rows->Value(u"ModuleConnexion").toString();
        module.label = rows->Value(u"NomObjet").toString();
        module.version = rows->Value(u"Version").toString();
        module.help = rows->Value(u"TextHelp").toString();
        module.shortLabel = rows->Value(u"Validation").toString();
        module.index = rows->Value(u"Index").toInt();
        module.flags = rows->Value(u"Flags").toInt();
        module.icon = rows->Value(u"Icon").toByteArray();
        if (module.isIndividus())
            module.flags &= ~Unique; // one record per individual makes no sense on the root
        m_modules.append(module);
    }
    for (ModuleRecord& module : m_modules)
        module.fields = loadFields(module.name);
}

void Dictionary::load()
{
    readDefinitions();
    QList<ModuleRecord> built;
    for (const ModuleRecord& module : std::as_const(m_modules)) {
        if (buildModuleTable(m_database, module, m_dialogues))
            built.append(module);
    }
    m_modules = built;
}

QList<FieldRecord> Dictionary::loadFields(const QString& module) const
{
    const PropertyStore store(m_database, m_clock);
    QList<FieldRecord> fields;
    const auto rows = m_database.OpenRecordset(
        u"SELECT PGTableDefs.* From PGTableDefs WHERE PGTableDefs.Type ="_s + texte(typeField)
        + u" AND PGTableDefs.NomModule ="_s + texte(module)
        + u" ORDER BY PGTableDefs.Index, PGTableDefs.NomObjet"_s);
    for (; !rows->EOF_(); rows->MoveNext()) {
        FieldRecord field;
        field.column = rows->Value(u"Table").toString();
        field.caption = rows->Value(u"NomObjet").toString();
        field.type = rows->Value(u"Version").toString().toInt();
        field.index = rows->Value(u"Index").toInt();
        field.help = rows->Value(u"TextHelp").toString();
        field.provider = rows->Value(u"ModuleConnexion").toString();
        field.flags = rows->Value(u"Flags").toInt();
        const QString validation = rows->Value(u"Validation").toString();
        field.rule = validation.section(u'|', 0, 0);
        field.ruleText = validation.section(u'|', 1);
        if (isListField(field))
            field.descriptors =
                descriptorsOf(store.value(kindDescripteur, module, field.column).toString());
        fields.append(field);
    }
    return fields;
}

const ModuleRecord* Dictionary::module(QStringView name) const
{
    for (const ModuleRecord& module : m_modules) {
        if (jet::sameName(module.name, name))
            return &module;
    }
    return nullptr;
}

void Dictionary::put(const ModuleRecord& module)
{
    for (ModuleRecord& known : m_modules) {
        if (!jet::sameName(known.name, module.name))
            continue;
        for (const FieldRecord& field : module.fields) {
            if (!known.field(field.column))
                known.fields.append(field);
        }
        return;
    }
    m_modules.append(module);
}

namespace {

/// The new type where the column that stands can hold its values, else the old one.
int heldType(const FieldRecord& known, int type)
{
    const auto column = columnOfType(known.type, known.column);
    const auto wanted = columnOfType(type, known.column);
    return !column || (wanted && wanted->Type == column->Type && wanted->Size == column->Size) ? type : known.type;
}

void takeOver(FieldRecord& known, const FieldRecord& given)
{
    const FieldRecord old = known;
    known = given;
    known.type = heldType(old, given.type);
    known.index = old.index;
    if (!old.descriptors.isEmpty())
        known.descriptors = old.descriptors;
}

void takeOver(ModuleRecord& known, const ModuleRecord& given)
{
    known.label = given.label;
    known.provider = given.provider;
    known.version = given.version;
    known.flags = (known.flags & Interface) | given.flags;
    if (!given.help.isEmpty())
        known.help = given.help;
    if (!given.icon.isEmpty())
        known.icon = given.icon;
}

} // namespace

/// Merges a module into the list; false when that changes nothing.
bool Dictionary::merge(const ModuleRecord& given)
{
    const auto at = std::find_if(m_modules.begin(), m_modules.end(),
                                 [&](const ModuleRecord& known) { return jet::sameName(known.name, given.name); });
    if (at == m_modules.end()) {
        m_modules.append(given);
        return true;
    }
    ModuleRecord& known = *at;
    const ModuleRecord before = known;
    const bool renewed = known.version != given.version || known.provider != given.provider;
    if (renewed)
        takeOver(known, given);
    else if (known.icon.isEmpty())
        known.icon = given.icon;
    for (const FieldRecord& field : given.fields) {
        const auto own = std::find_if(known.fields.begin(), known.fields.end(), [&](const FieldRecord& other) {
            return jet::sameName(other.column, field.column);
        });
        if (own == known.fields.end())
            known.fields.append(field);
        else if (renewed && own->provider != providerUser)
            takeOver(*own, field);
    }
    return known != before;
}

bool Dictionary::synchronise(const ModuleRecord& given)
{
    const QList<ModuleRecord> before = m_modules;
    try {
        if (!merge(given))
            return true;
        const ModuleRecord module = *this->module(given.name);
        saveModule(module);
        for (const FieldRecord& field : module.fields)
            saveField(module, field);
        if (buildModuleTable(m_database, module, m_dialogues))
            return true;
    } catch (...) {
        m_modules = before;
        throw;
    }
    m_modules = before;
    return false;
}

void Dictionary::save()
{
    for (const ModuleRecord& module : std::as_const(m_modules)) {
        saveModule(module);
        for (const FieldRecord& field : module.fields)
            saveField(module, field);
    }
}

void Dictionary::saveModule(const ModuleRecord& module)
{
    qint32 flags = module.flags & (Interface | MixteUnique);
    // A module that is not connected and need not be is left so: with the bit it would be lost at the next opening.
    const bool connected = !m_marked || m_connected.contains(module.name, Qt::CaseInsensitive);
    flags |= connected ? Connecté : module.flags & Connecté;
    if (module.individuUnique())
        flags |= Unique;
    try {
        writeRow(m_database, typeModule, module.name, module.name,
                 u"INSERT INTO PGTableDefs ([Type], [Table], [NomModule])"
                 " VALUES (rType,rNomModule,rNomModule)"_s,
                 {{u"Flags"_s, flags},
                  {u"Index"_s, module.index},
                  {u"NomObjet"_s, orNull(module.label)},
                  {u"ModuleConnexion"_s, orNull(module.provider)},
                  {u"Version"_s, orNull(module.version)},
                  {u"TextHelp"_s, orNull(module.help)},
                  {u"Validation"_s, orNull(module.shortLabel)},
                  {u"Icon"_s, module.icon.isEmpty() ? QVariant() : QVariant(module.icon)}});
    } catch (const jet::Error& error) {
        qCWarning(dictionaryLog).noquote() << "module" << module.name << error.description();
        throw;
    }
}

void Dictionary::saveField(const ModuleRecord& module, const FieldRecord& field)
{
    writeRow(m_database, typeField, module.name, field.column,
             u"INSERT INTO PGTableDefs ([Type], [Table], [NomModule])"
             " VALUES (rType,rTable,rNomModule)"_s,
             {{u"Index"_s, field.index},
              {u"NomObjet"_s, orNull(field.caption)},
              {u"Validation"_s, orNull(validationOf(field))},
              {u"Version"_s, QString::number(field.type)},
              {u"TextHelp"_s, orNull(field.help)},
              {u"ModuleConnexion"_s, orNull(field.provider)},
              {u"Table"_s, field.column},
              {u"Flags"_s, field.flags}});
    if (isListField(field) && !field.descriptors.isEmpty())
        PropertyStore(m_database, m_clock)
            .put(kindDescripteur, module.name, field.column, field.descriptors.join(u';'));
}

void Dictionary::deleteDefinitions(const QString& module, const QString& provider)
{
    m_database.Execute(u"DELETE * From PGTableDefs"
                       " WHERE PGTableDefs.NomModule="_s
                       + texte(module) + u" AND PGTableDefs.ModuleConnexion="_s + texte(provider));
}

} // namespace data
