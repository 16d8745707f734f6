#include "app/structure/StructureSaving.h"

#include "app/ProjectFiles.h"
#include "app/Session.h"
#include "app/structure/StructureReview.h"
#include "app/structure/ValueConversion.h"
#include "data/FieldType.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"

#include <QFile>
#include <QFileInfo>

namespace app {

using namespace Qt::StringLiterals;
using jet::nom;
using jet::texte;

namespace {

const QString typeModule = u"Addin"_s;
const QString typeField = u"TabEdit"_s;
/// More values than these are no vocabulary.
constexpr int mostDescriptors = 500;
constexpr int moduleColumnSize = 30;

bool isList(int type)
{
    return type == data::ListeSimple || type == data::ListeMultiple;
}

/// The column as the dictionary says.
std::optional<jet::Field> columnOf(const data::FieldRecord& field)
{
    std::optional<jet::Field> column = data::columnOfType(field.type, field.column);
    if (column) {
        column->Required = field.required();
        column->ValidationRule = field.rule;
        column->ValidationText = field.ruleText;
    }
    return column;
}

bool sameColumn(const jet::Field& one, const jet::Field& other)
{
    const auto width = [](const jet::Field& field) { return field.Size > 0 ? field.Size : jet::defaultTextSize; };
    return one.Type == other.Type && (one.Type != jet::DataType::Text || width(one) == width(other))
           && one.Required == other.Required && one.ValidationRule == other.ValidationRule
           && one.ValidationText == other.ValidationText;
}

/// A name that no module or field can have, for one that has to make room for another.
QString interimName(const QString& name)
{
    return u"~ "_s + name;
}

} // namespace

StructureSaving::StructureSaving(Session& session, const StructurePlan& plan, platform::Progression& progression)
    : m_session(session), m_database(session.database()), m_store(session.database(), session.surroundings().clock),
      m_plan(plan), m_progression(progression)
{
}

void StructureSaving::step(const QString& text, int percent)
{
    m_progression.step(text, percent);
    if (m_progression.cancelled())
        jet::fail(3059);
}

void StructureSaving::run()
{
    readVocabularies();
    step(u"Suppression des modules et des champs"_s, 10);
    deleteModules();
    deleteFields();
    purge();
    step(u"Changement des noms"_s, 25);
    renameModules();
    renameFields();
    renameInTexts();
    step(u"Conversion des données"_s, 40);
    changeColumns();
    step(u"Enregistrement de la structure"_s, 70);
    writeDictionary();
    writeVocabularies();
    step(u"Mise à jour des tables"_s, 75);
}

// --- What goes -------------------------------------------------------------------------------------

/// Kept aside: the deletion of a module takes the lists of all modules with it.
void StructureSaving::readVocabularies()
{
    for (const data::PropertyObject& object : m_store.list(data::kindDescripteur))
        m_vocabularies.append({object.module, object.name,
                               m_store.value(data::kindDescripteur, object.module, object.name).toString()});
}

void StructureSaving::deleteModules()
{
    for (const data::ModuleRecord& module : m_plan.deleted) {
        for (const ModuleChange& other : m_plan.kept) {
            for (const data::FieldRecord& field : other.before.fields) {
                if (field.type == data::LienCourant && jet::sameName(field.provider, module.name))
                    m_store.clean(other.origin, field.column);
            }
        }
        m_database.Execute(u"UPDATE PGTableDefs SET [Index] = -1 WHERE [Type]="_s + texte(typeModule)
                           + u" AND NomModule="_s + texte(module.name));
        m_vocabularies.removeIf([&](const Vocabulary& one) { return jet::sameName(one.module, module.name); });
        // What counts its records for queries on other modules.
        if (m_database.schema().query(u"N_"_s + module.name))
            m_database.DeleteQueryDef(u"N_"_s + module.name);
    }
}

void StructureSaving::deleteFields()
{
    for (const ModuleChange& module : m_plan.kept) {
        for (const data::FieldRecord& field : module.deleted) {
            m_database.Execute(u"UPDATE PGTableDefs SET [Index] = -1 WHERE [Type]="_s + texte(typeField)
                               + u" AND NomModule="_s + texte(module.origin) + u" AND [Table]="_s
                               + texte(field.column));
            m_vocabularies.removeIf([&](const Vocabulary& one) {
                return jet::sameName(one.module, module.origin) && jet::sameName(one.column, field.column);
            });
        }
    }
}

void StructureSaving::purge()
{
    m_session.dictionary().purge(data::Dictionary::Failing::Throw);
    for (const data::ModuleRecord& module : m_plan.deleted) {
        // Fields that others defined, and what only its own records could use.
        m_database.Execute(u"DELETE * FROM PGTableDefs WHERE NomModule="_s + texte(module.name));
        m_database.Execute(u"DELETE * FROM Propriétés WHERE Propriétés.[Module]="_s + texte(module.name));
    }
    for (const Vocabulary& one : std::as_const(m_vocabularies)) {
        if (m_store.value(data::kindDescripteur, one.module, one.column).isNull())
            m_store.put(data::kindDescripteur, one.module, one.column, one.text);
    }
}

// --- Names -----------------------------------------------------------------------------------------

/// In two rounds, so that names can be exchanged.
void StructureSaving::renameModules()
{
    QList<QPair<QString, QString>> later;
    for (const ModuleChange& change : m_plan.kept) {
        if (!change.renamed())
            continue;
        const bool taken = m_database.schema().table(change.name) && !jet::sameName(change.origin, change.name);
        renameModule(change.origin, taken ? interimName(change.origin) : change.name);
        if (taken)
            later.append({interimName(change.origin), change.name});
    }
    for (const auto& [from, to] : std::as_const(later))
        renameModule(from, to);
}

void StructureSaving::renameModule(const QString& from, const QString& to)
{
    if (to.size() > moduleColumnSize) {
        // The column was made for shorter names.
        const jet::TableDef* properties = m_database.schema().table(u"Propriétés");
        jet::Field column = *properties->field(u"Module");
        if (column.Size < 50) {
            column.Size = 50;
            m_database.ChangeField(u"Propriétés"_s, column);
        }
    }
    if (m_database.schema().query(u"N_"_s + from))
        m_database.DeleteQueryDef(u"N_"_s + from);
    if (m_database.schema().relation(from))
        m_database.DeleteRelation(from);
    m_database.RenameTable(from, to);
    const QString ownKey = u"ID "_s + from;
    if (const jet::Field* own = m_database.schema().table(to)->field(ownKey)) {
        jet::Field renamed = *own;
        renamed.Name = u"ID "_s + to;
        m_database.RenameField(to, ownKey, renamed);
    }
    m_database.Execute(u"UPDATE PGTableDefs SET NomModule="_s + texte(to) + u" WHERE NomModule="_s + texte(from));
    m_database.Execute(u"UPDATE PGTableDefs SET [Table]="_s + texte(to) + u" WHERE [Type]="_s + texte(typeModule)
                       + u" AND [Table]="_s + texte(from));
    for (const jet::TableDef& table : m_database.schema().tables()) {
        if (!table.field(u"KeyParent"))
            continue;
        m_database.Execute(u"UPDATE "_s + nom(table.Name) + u" SET KeyParent = val([KeyParent]) & "_s + texte(u'-' + to)
                           + u" WHERE KeyParent LIKE "_s + texte(u"*-"_s + from));
    }
    // Left over from a module of that name of old; nothing shows them any more.
    if (!jet::sameName(from, to))
        m_database.Execute(u"DELETE * FROM Propriétés WHERE Propriétés.[Module]="_s + texte(to));
    m_database.Execute(u"UPDATE Propriétés SET Propriétés.[Module]="_s + texte(to) + u" WHERE Propriétés.[Module]="_s
                       + texte(from));
}

void StructureSaving::renameFields()
{
    for (const ModuleChange& module : m_plan.kept) {
        QList<QPair<FieldChange, QString>> later;
        for (const FieldChange& change : module.kept) {
            if (!change.renamed())
                continue;
            const jet::TableDef* table = m_database.schema().table(module.name);
            const QString& from = change.before.column;
            const QString& to = change.after.column;
            const bool taken = table && table->field(to) && !jet::sameName(from, to);
            renameField(module, change, from, taken ? interimName(from) : to);
            if (taken)
                later.append({change, interimName(from)});
        }
        for (const auto& [change, interim] : std::as_const(later))
            renameField(module, change, interim, change.after.column);
    }
}

void StructureSaving::renameField(const ModuleChange& module, const FieldChange& change, const QString& from,
                                  const QString& to)
{
    const jet::TableDef* table = m_database.schema().table(module.name);
    if (const jet::Field* column = table ? table->field(from) : nullptr) {
        jet::Field renamed = *column;
        renamed.Name = to;
        // A rule may name the column; the new one comes with the other rules.
        renamed.ValidationRule = change.retyped() || change.after.column != to ? QString() : change.after.rule;
        m_database.RenameField(module.name, from, renamed);
    }
    m_database.Execute(u"UPDATE PGTableDefs SET [Table]="_s + texte(to) + u" WHERE [Type]="_s + texte(typeField)
                       + u" AND NomModule="_s + texte(module.name) + u" AND [Table]="_s + texte(from));
    m_store.deleteDescriptor(module.name, to);
    m_database.Execute(u"UPDATE Propriétés SET Propriétés.[Nom]="_s + texte(to) + u" WHERE Propriétés.[Objet]="_s
                       + texte(data::kindDescripteur) + u" AND Propriétés.[Module]="_s + texte(module.name)
                       + u" AND Propriétés.[Nom]="_s + texte(from));
}

/// All names in one pass, so that exchanged ones are not renamed twice.
void StructureSaving::renameInTexts()
{
    const Renamings renamings = renamingsOf(m_plan);
    if (renamings.isEmpty())
        return;
    QHash<QString, QString> oldNames;
    for (const ModuleChange& change : m_plan.kept)
        oldNames.insert(jet::nameKey(change.name), change.origin);
    for (const QString& kind : {data::kindRequête, data::kindBase, data::kindModèle}) {
        for (const data::PropertyObject& object : m_store.list(kind)) {
            const QString before = m_store.value(kind, object.module, object.name).toString();
            const QString old = oldNames.value(jet::nameKey(object.module), object.module);
            const QString after = kind == data::kindModèle ? renamedModel(before, old, renamings)
                                                           : renamedQuery(before, renamings);
            if (after != before)
                m_store.put(kind, object.module, object.name, after);
        }
    }
    // Queries that an older file brought along.
    const QList<jet::QueryDef> queries = m_database.schema().queries();
    for (const jet::QueryDef& query : queries) {
        const QString after = renamedStatement(query.SQL, renamings);
        if (after == query.SQL)
            continue;
        m_database.DeleteQueryDef(query.Name);
        m_database.CreateQueryDef(query.Name, after);
    }
}

// --- Columns ---------------------------------------------------------------------------------------

void StructureSaving::changeColumns()
{
    for (const ModuleChange& module : m_plan.kept)
        changeColumnsOf(module);
}

void StructureSaving::changeColumnsOf(const ModuleChange& module)
{
    const jet::TableDef* table = m_database.schema().table(module.name);
    if (!table)
        return;
    QList<jet::Field> converted, ruled;
    QHash<QString, std::shared_ptr<ValueConversion>> conversions;
    for (const FieldChange& change : module.kept) {
        const auto column = columnOf(change.after);
        const jet::Field* now = table->field(change.after.column);
        if (!column || !now)
            continue;
        if (change.rewritten()) {
            converted << *column;
            conversions.insert(column->Name, std::make_shared<ValueConversion>(m_database, change.before.type,
                                                                              change.after.type));
        } else if (change.before != change.after && !sameColumn(*now, *column)) {
            jet::Field changed = *column;
            changed.DefaultValue = now->DefaultValue;
            changed.AllowZeroLength = now->AllowZeroLength;
            ruled << changed;
        }
    }
    for (const jet::Field& field : std::as_const(ruled))
        m_database.ChangeField(module.name, field);
    if (converted.isEmpty())
        return;
    step(u"Conversion des données de « %1 »"_s.arg(module.name), 45);
    m_database.ConvertFields(module.name, converted, [&](const QString& column, const QVariant& value) {
        return (*conversions.value(column))(value).value;
    });
}

// --- Dictionary and vocabularies -------------------------------------------------------------------

void StructureSaving::writeDictionary()
{
    for (const data::ModuleRecord& module : m_plan.added) {
        // Nothing that is left from a module of that name of old comes to life again.
        m_database.Execute(u"DELETE * FROM PGTableDefs WHERE NomModule="_s + texte(module.name));
        m_database.Execute(u"DELETE * FROM Propriétés WHERE Propriétés.[Module]="_s + texte(module.name));
        if (module.name.size() > moduleColumnSize) {
            jet::Field column = *m_database.schema().table(u"Propriétés")->field(u"Module");
            column.Size = qMax(column.Size, 50);
            m_database.ChangeField(u"Propriétés"_s, column);
        }
    }
    QList<data::ModuleRecord> modules = m_plan.modules;
    // Vocabularies are written apart: they may be newer in the project than in the draft.
    for (data::ModuleRecord& module : modules) {
        for (data::FieldRecord& field : module.fields)
            field.descriptors.clear();
    }
    m_session.dictionary().replace(modules);
    m_session.dictionary().save();
}

/// The values that records have, in their order of appearance; none where they are too many for a vocabulary.
QStringList StructureSaving::usedDescriptors(const QString& module, const QString& column) const
{
    QStringList items;
    const auto rows = m_database.OpenRecordset(u"SELECT DISTINCT %1 FROM %2 WHERE %1 IS NOT NULL"_s.arg(
        nom(column), nom(module)));
    for (; !rows->EOF_(); rows->MoveNext()) {
        for (const QString& item : rows->Value(0).toString().split(u';', Qt::SkipEmptyParts)) {
            if (!item.trimmed().isEmpty() && !items.contains(item.trimmed(), Qt::CaseInsensitive))
                items << item.trimmed();
        }
        if (items.size() > mostDescriptors)
            return {};
    }
    return items;
}

void StructureSaving::writeVocabularies()
{
    const auto write = [this](const QString& module, const QString& column, const QStringList& items) {
        if (items.isEmpty())
            m_store.deleteDescriptor(module, column);
        else
            m_store.put(data::kindDescripteur, module, column, items.join(u';'));
    };
    for (const data::ModuleRecord& module : m_plan.added) {
        for (const data::FieldRecord& field : module.fields) {
            if (isList(field.type))
                write(module.name, field.column, field.descriptors);
        }
    }
    for (const ModuleChange& module : m_plan.kept) {
        for (const data::FieldRecord& field : module.added) {
            if (isList(field.type))
                write(module.name, field.column, field.descriptors);
        }
        for (const FieldChange& change : module.kept) {
            const bool list = isList(change.after.type);
            if (isList(change.before.type) && !list) {
                m_store.deleteDescriptor(module.name, change.after.column);
            } else if (list && !isList(change.before.type)) {
                QStringList items = change.after.descriptors;
                for (const QString& item : usedDescriptors(module.name, change.after.column)) {
                    if (!items.contains(item, Qt::CaseInsensitive))
                        items << item;
                }
                write(module.name, change.after.column, items);
            } else if (list && change.before.descriptors != change.after.descriptors) {
                write(module.name, change.after.column, change.after.descriptors);
            }
        }
    }
}

// --- The whole of it -------------------------------------------------------------------------------

QString structureBackupPath(const QString& project)
{
    const QFileInfo info(project);
    const QString base = info.fileName().endsWith(u".hbx"_s, Qt::CaseInsensitive) ? info.fileName().chopped(4)
                                                                                    : info.fileName();
    return info.absolutePath() + u'/' + base + u".structure.hbx.bak"_s;
}

namespace {

/// The copy replaces the one of the last time only once it is there.
void makeBackup(Session& session, const platform::Progression& progression)
{
    const QString unfinished = temporaryPath(session.path());
    QFile::remove(unfinished);
    session.database().SaveCopy(unfinished, [&] { return !progression.cancelled(); });
    try {
        moveIntoPlace(unfinished, structureBackupPath(session.path()));
    } catch (...) {
        QFile::remove(unfinished);
        throw;
    }
}

/// The floating selections of modules that are renamed, by their new names.
QHash<QString, QList<qint32>> renamedSelections(Session& session, const StructurePlan& plan)
{
    QHash<QString, QList<qint32>> selections;
    for (const ModuleChange& change : plan.kept) {
        if (change.renamed() && session.selectionCount(change.origin) > 0)
            selections.insert(change.name, session.selection(change.origin));
    }
    return selections;
}

} // namespace

bool saveStructure(Session& session, const StructurePlan& plan, bool losesData, platform::Progression& progression)
{
    // A cancelled progression stops a long statement of the store, which undoes the whole operation.
    session.database().SetProgress([&progression] { return !progression.cancelled(); });
    bool saved = false;
    try {
        if (losesData) {
            progression.step(u"Copie de sauvegarde du projet"_s, 0);
            makeBackup(session, progression);
        }
        const auto selections = renamedSelections(session, plan);
        saved = session.changeStructure([&] { StructureSaving(session, plan, progression).run(); });
        if (saved) {
            for (auto at = selections.cbegin(); at != selections.cend(); ++at)
                session.selection(at.key()) = at.value();
            progression.step(u"Structure enregistrée"_s, 100);
        }
    } catch (const jet::Error& error) {
        session.surroundings().dialogues.tell(u"La structure n'a pas été enregistrée :\n"_s + error.description(),
                                              u"Herbora"_s, platform::BoxIcon::Stop);
    }
    if (session.isOpen())
        session.database().SetProgress({});
    progression.finish();
    return saved;
}

} // namespace app
