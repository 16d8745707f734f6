#include "editing/IndividualEditingPrivate.h"

#include "editing/RecordModels.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"

namespace editing {

using namespace Qt::StringLiterals;
using jet::nom;
using platform::Answer;
using platform::BoxIcon;

namespace {

const QString newItem = u"N"_s;
const QString shownMark = u">"_s;
/// Longer lists are offered without what their records hold, which would have to be read.
constexpr qsizetype longestDescribedList = 300;

/// By its column; a column may be called "2", which is no place in the form.
Cl_Edition* fieldNamed(Cl_Editions& form, const QString& column)
{
    return form.Item(form.Index(column));
}

} // namespace

IndividualEditing::IndividualEditing(EditingTools tools)
    : m_tools(std::move(tools)), m_input(&m_tools.database), m_tree(std::make_unique<EditNode>())
{
}

IndividualEditing::~IndividualEditing() = default;

void IndividualEditing::tell(const QString& text, const QString& title) const
{
    m_tools.dialogues.tell(text, title, BoxIcon::Stop);
}

// --- Paths ---------------------------------------------------------------------------------------

QString IndividualEditing::levelPath(const QString& module, const QList<qint32>& ids, qint32 shown)
{
    QStringList items{module == individus ? u"1-"_s + individus : u"1-"_s + individus + u"\\2-"_s + module};
    for (const qint32 id : ids)
        items << (id == shown && id != ids.first() ? shownMark : QString()) + QString::number(id);
    return items.join(u';');
}

QString IndividualEditing::newRecordPath(const QString& module, qint32 individu)
{
    if (module == individus)
        return u"1-"_s + individus + u';' + newItem;
    return u"1-"_s + individus + u';' + QString::number(individu) + u"\\2-"_s + module + u';' + newItem;
}

IndividualEditing::Wanted IndividualEditing::parsed(const QString& path)
{
    Wanted wanted;
    if (!path.contains(u';') && !path.contains(u'\\')) { // the key of one record
        if (const qint32 id = path.section(u'-', 0, 0).toInt(); id > 0)
            wanted.keys << ListKey{path.section(u'-', 1), id};
        return wanted;
    }
    for (const QString& level : path.split(u'\\', Qt::SkipEmptyParts)) {
        const QStringList items = level.section(u'-', 1).split(u';');
        wanted.newUnder = wanted.keys.isEmpty() ? 0 : wanted.keys.first().id;
        wanted.keys.clear();
        wanted.shown = 0;
        for (const QString& item : items.mid(1)) {
            const bool marked = item.startsWith(shownMark);
            const qint32 id = item.mid(marked ? shownMark.size() : 0).toInt();
            if (marked)
                wanted.shown = int(wanted.keys.size());
            if (item == newItem)
                wanted.newModule = items.first();
            else if (id > 0)
                wanted.keys << ListKey{items.first(), id};
        }
    }
    return wanted;
}

bool IndividualEditing::exists(const QString& module, qint32 id) const
{
    return id > 0 && !m_tools.context.records->record(module, id).isEmpty();
}

qint32 IndividualEditing::individuOf(const QString& module, qint32 id) const
{
    if (module == individus)
        return exists(module, id) ? id : 0;
    return m_tools.context.records->record(module, id).value(u"ID Individus"_s).toInt();
}

bool IndividualEditing::EditItems(const QString& path)
{
    if (!leave())
        return false;
    return guarded(u"Ouverture"_s, false, [&] {
        const Wanted wanted = parsed(path);
        if (wanted.newModule == individus) {
            m_list.clear();
            m_position = -1;
            return newIndividual({});
        }
        if (!wanted.newModule.isEmpty()) {
            m_list = {{individus, wanted.newUnder}};
            return show(0) && add(wanted.newModule);
        }
        m_list = wanted.keys;
        return showFrom(wanted.shown) || showFrom(0);
    });
}

/// Shows the first record from there on that is still there.
bool IndividualEditing::showFrom(int position)
{
    for (; position < m_list.size(); ++position) {
        if (show(position))
            return true;
    }
    return false;
}

// --- Lists ---------------------------------------------------------------------------------------

/// Leaves the individual: asks about unsaved changes; those that the user does not want are gone. False when the
/// user stays.
bool IndividualEditing::leave()
{
    if (!ToSave())
        return true;
    const SaveOutcome outcome = SavedItem(true, true);
    if (outcome == SaveOutcome::Declined)
        clear();
    return outcome != SaveOutcome::Cancelled && outcome != SaveOutcome::Refused;
}

bool IndividualEditing::close()
{
    if (!leave())
        return false;
    clear();
    m_list.clear();
    m_position = -1;
    return true;
}

/// Shows a record of the list; unsaved changes were dealt with where its individual is another one.
bool IndividualEditing::show(int position)
{
    const ListKey key = m_list.value(position);
    const qint32 individu = individuOf(key.module, key.id);
    if (individu <= 0)
        return false;
    if (individu != CurrentIndividu() && !loadIndividual(individu))
        return false;
    m_position = position;
    return select(data::parentKey(key.id, key.module));
}

qint32 IndividualEditing::CurrentIndividu() const
{
    const EditedRecord* root = individual();
    return root ? root->id : 0;
}

bool IndividualEditing::canGo(int step) const
{
    const int position = m_position + step;
    return position >= 0 && position < m_list.size();
}

bool IndividualEditing::go(int step)
{
    return guarded(u"Liste des enregistrements"_s, false, [&] {
        for (int position = m_position + step; position >= 0 && position < m_list.size(); position += step) {
            const ListKey key = m_list.at(position);
            const qint32 individu = individuOf(key.module, key.id);
            if (individu <= 0)
                continue; // deleted meanwhile
            return (individu == CurrentIndividu() || leave()) && show(position);
        }
        return false;
    });
}

bool IndividualEditing::canGoOther(int step) const
{
    const QList<EditedRecord*> all = savedInOrder();
    const qsizetype position = all.indexOf(m_current) + step;
    return m_current && position >= 0 && position < all.size();
}

bool IndividualEditing::goOther(int step)
{
    if (!canGoOther(step))
        return false;
    const QList<EditedRecord*> all = savedInOrder();
    return select(all.at(all.indexOf(m_current) + step)->key);
}

bool IndividualEditing::chooseRecord()
{
    return guarded(u"Liste des enregistrements"_s, false, [&] {
        platform::Choice choice;
        choice.title = u"Liste des enregistrements"_s;
        choice.prompt = u"Sélectionner l'objet à atteindre"_s;
        choice.column = u"Enregistrement"_s;
        for (const ListKey& key : std::as_const(m_list)) {
            QString text = m_tools.context.records->label(key.module) + u" N° "_s + QString::number(key.id);
            if (m_list.size() <= longestDescribedList) {
                const QString says = describe(key.module, key.id);
                text += says.isEmpty() ? QString() : u" : "_s + says;
            }
            choice.items << text;
        }
        const auto chosen = choice.items.isEmpty() ? std::nullopt : m_tools.dialogues.choose(choice);
        return chosen && !chosen->isEmpty() && go(chosen->first() - m_position);
    });
}

QString IndividualEditing::listText() const
{
    return m_position < 0 ? QString() : QString::number(m_position + 1) + u" / "_s + QString::number(m_list.size());
}

// --- Forms ---------------------------------------------------------------------------------------

Cl_Editions& IndividualEditing::form(EditedRecord& record)
{
    if (record.form)
        return *record.form;
    record.form = std::make_unique<Cl_Editions>(m_tools.context);
    guarded(name(record), false, [&] {
        record.form->setTabedition(record.module, m_tools.context.records->fields(record.module));
        record.form->bind(CurrentIndividu(), record.id);
        return true;
    });
    for (const auto& field : *record.form)
        field->toAddin = m_tools.toAddin;
    return *record.form;
}

bool IndividualEditing::hasColumn(const QString& module, const QString& column) const
{
    const jet::TableDef* table = m_tools.database.schema().table(module);
    return table && table->field(column);
}

bool IndividualEditing::lockedByBase(const Cl_Edition& field) const
{
    return m_tools.database.readOnly() || m_tools.rules.isModuleLocked(field.NomModule())
           || !hasColumn(field.NomModule(), field.champ());
}

bool IndividualEditing::isReadOnly(const EditedRecord& record, const Cl_Edition& field) const
{
    return record.locked || field.Locked() || lockedByBase(field);
}

QString IndividualEditing::heading(const EditedRecord& record) const
{
    return record.locked ? u"< Lecture seule > - L'enregistrement est verrouillé"_s : QString();
}

FormRow IndividualEditing::row(const EditedRecord& record, Cl_Edition& field) const
{
    FormRow row{&field, field.Caption(), {}, isReadOnly(record, field), {}};
    if (record.locked)
        return row; // the heading says so
    if (field.Locked())
        row.caption += u" < Lecture seule > "_s;
    else if (row.readOnly)
        row.caption += u" < Verrouillé par la base > "_s;
    else if (row.error = field.TextError(); !row.error.isEmpty())
        row.caption += u" : < Erreur: "_s + row.error + u" >"_s;
    return row;
}

QList<FormRow> IndividualEditing::rows(EditedRecord& record)
{
    QList<FormRow> list;
    for (const auto& field : form(record))
        list << row(record, *field);
    const QVariantMap values = guarded(name(record), QVariantMap(), [&] {
        return m_tools.context.records->record(record.module, record.id);
    });
    list << FormRow{nullptr, u"Date de création de l'objet < Lecture seule >"_s,
                    values.value(u"DateCreate"_s).toString(), true, {}};
    list << FormRow{nullptr, u"Date de modification de l'objet < Lecture seule >"_s,
                    values.value(u"DateModify"_s).toString(), true, {}};
    return list;
}

void IndividualEditing::type(EditedRecord& record, Cl_Edition& field, const QVariant& typed)
{
    if (isReadOnly(record, field))
        return;
    m_input.take(field, typed);
    record.summary.clear();
    if (recordChanged)
        recordChanged(record);
}

QVariant IndividualEditing::previousValue(const EditedRecord& record, const Cl_Edition& field) const
{
    if (m_last.contains(record.module))
        return m_last.value(record.module).value(field.champ());
    return guarded(u"Valeur précédente"_s, QVariant(), [&] {
        const QString id = nom(u"ID "_s + record.module);
        const QString before = record.isNew() ? QString() : u" WHERE "_s + id + u'<' + QString::number(record.id);
        const auto rows = m_tools.database.OpenRecordset(u"SELECT TOP 1 "_s + id + u" FROM "_s + nom(record.module)
                                                         + before + u" ORDER BY "_s + id + u" DESC"_s);
        return rows->EOF_() ? QVariant()
                            : m_tools.context.records->record(record.module, rows->Value(0).toInt()).value(field.champ());
    });
}

void IndividualEditing::remember(const EditedRecord& record)
{
    if (!record.form)
        return;
    QVariantMap values;
    for (const auto& field : *record.form)
        values.insert(field->champ(), field->value());
    m_last[record.module] = values;
}

// --- Commands ------------------------------------------------------------------------------------

bool IndividualEditing::canAdd(const QString& module) const
{
    const data::ModuleRecord* definition = m_tools.dictionary.module(module);
    if (!definition || m_tools.database.readOnly() || m_tools.rules.isModuleLocked(module)
        || !m_tools.database.schema().table(module))
        return false;
    const auto same = [&](const auto& record) { return record->module == module; };
    return !definition->individuUnique() || std::none_of(m_records.begin(), m_records.end(), same);
}

QVariantMap IndividualEditing::copied(const EditedRecord& record) const
{
    QVariantMap values;
    if (!record.form)
        return values;
    for (const auto& field : *record.form) {
        if (field->value().isValid() && isPreset(*field))
            values.insert(field->champ(), field->value());
    }
    return values;
}

void IndividualEditing::fill(EditedRecord& record, const QVariantMap& values)
{
    for (const auto& field : form(record)) {
        if (values.contains(field->champ()))
            m_input.take(*field, values.value(field->champ()));
    }
    record.summary.clear();
}

bool IndividualEditing::newIndividual(const QVariantMap& values)
{
    if (!canAdd(individus))
        return false;
    clear();
    m_position = -1;
    EditedRecord* record = append(individus, {});
    fill(*record, values);
    buildTree();
    makeCurrent(record);
    return true;
}

EditedRecord* IndividualEditing::add(const QString& module, EditedRecord* under, const EditedRecord* like)
{
    EditedRecord* parent = under ? under : individual();
    if (!parent || module == individus || !canAdd(module)) {
        tell(u"Impossible d'ajouter un enregistrement dans le Module "_s + m_tools.context.records->label(module)
                 + u" pour cet individu"_s,
             u"Ajout"_s);
        return nullptr;
    }
    const QVariantMap values = like ? copied(*like) : QVariantMap();
    EditedRecord* record = append(module, parent->key);
    fill(*record, values);
    buildTree();
    makeCurrent(record);
    return record;
}

EditedRecord* IndividualEditing::addAnother(bool withValues)
{
    if (!m_current)
        return nullptr;
    remember(*m_current);
    if (withValues)
        form(*m_current);
    if (m_current->module != individus) {
        EditedRecord* parent = record(effectiveParent(*m_current));
        return add(m_current->module, parent, withValues ? m_current : nullptr);
    }
    const QVariantMap values = withValues ? copied(*m_current) : QVariantMap();
    return leave() && newIndividual(values) ? m_current : nullptr;
}

bool IndividualEditing::remove(EditedRecord& record)
{
    const QString parent = effectiveParent(record);
    if (record.isNew()) {
        if (!m_tools.dialogues.confirm(u"Supprimer définitivement la nouvelle propriété "_s + name(record),
                                       m_tools.rules.caption, BoxIcon::Question, Answer::No))
            return false;
        const QString dropped = record.key;
        dropNew(dropped);
        if (m_records.empty())
            return showNeighbour();
        reload(parent);
        return true;
    }
    const QString module = record.module;
    const qint32 id = record.id;
    if (m_tools.rules.deleteRecords(module, {id}).isEmpty())
        return false;
    if (written)
        written(moduleOrder());
    if (exists(module, id)) // locked: it stays, the report says so
        return false;
    const qsizetype listed = m_list.indexOf(ListKey{module, id});
    if (listed >= 0) {
        m_list.removeAt(listed);
        m_position -= listed <= m_position ? 1 : 0;
    }
    if (module == individus)
        return showNeighbour();
    reload(parent);
    return true;
}

/// After the individual went: the next one of the list, else the one before, else nothing.
bool IndividualEditing::showNeighbour()
{
    clear();
    const int from = std::max(0, m_position + 1);
    for (const int position : {from, from - 1}) {
        if (position >= 0 && position < m_list.size() && show(position))
            return true;
    }
    m_position = -1;
    return true;
}

bool IndividualEditing::toggleLock(EditedRecord& record)
{
    if (!record.locked && (record.isNew() || record.Changed())) {
        m_tools.dialogues.tell(u"Impossible de verrouiller un objet en cours de modifications !\r"
                               "Enregistrer ou re-initialiser les valeurs d'origine avant de verrouiller l'objet"_s,
                               u"Verrouillage"_s, BoxIcon::Warning);
        return false;
    }
    return guarded(u"Verrouillage"_s, false, [&] {
        m_tools.rules.setLocked(record.module, record.id, !record.locked);
        record.locked = !record.locked;
        if (recordChanged)
            recordChanged(record);
        if (written)
            written({record.module});
        return true;
    });
}

bool IndividualEditing::selectParent()
{
    return m_current && select(effectiveParent(*m_current));
}

bool IndividualEditing::canMove(const EditedRecord& moved, const QString& target) const
{
    const EditedRecord* onto = record(target);
    return onto && !onto->isNew() && moved.module != individus && !moved.locked && !m_tools.database.readOnly()
           && target != effectiveParent(moved) && !isUnder(target, moved.key);
}

bool IndividualEditing::changeParent(EditedRecord& moved, const QString& target)
{
    if (!canMove(moved, target))
        return false;
    if (moved.isNew()) {
        moved.parent = target;
        buildTree();
        makeCurrent(&moved);
        return true;
    }
    const QString title = u"Changement de Relation"_s;
    if (!m_tools.dialogues.confirm(u"Changer le Parent de la propriété < ID"_s + QString::number(moved.id) + u" > ?"_s,
                                   title))
        return false;
    return guarded(title, false, [&] {
        const EditedRecord& onto = *record(target);
        const qint32 individu = individuOf(onto.module, onto.id);
        m_tools.rules.save(moved.module, {moved.id, individu, target, {}, true});
        moved.parent = target;
        buildTree();
        makeCurrent(&moved);
        if (recordChanged)
            recordChanged(moved);
        if (written)
            written({moved.module});
        return true;
    });
}

QString IndividualEditing::refreshText(RefreshScope scope, const Cl_Edition* field) const
{
    if (scope == RefreshScope::Field)
        return u"Le champ '"_s + (field ? field->Caption() : QString()) + u'\'';
    if (scope == RefreshScope::Record)
        return u"Le tableau '"_s + (m_current ? m_tools.context.records->label(m_current->module) : QString()) + u'\'';
    return u"Tous les tableaux"_s;
}

bool IndividualEditing::mayRefresh(RefreshScope scope, const Cl_Edition* field) const
{
    QString question;
    if (scope == RefreshScope::Field && field->Changed())
        question = u"Annuler les modifications apportées au champ "_s + field->Caption()
                   + u" et recharger la valeur initiale ?"_s;
    else if (scope == RefreshScope::Record && m_current->Changed())
        question = u"Annuler les modifications apportées au tableau "_s
                   + m_tools.context.records->label(m_current->module) + u" et recharger les valeurs initiales ?"_s;
    else if (scope == RefreshScope::All && ToSave())
        question = u"Annuler toutes les modifications effectuées et recharger toutes les valeurs initiales depuis la base de données ?"_s;
    return question.isEmpty() || m_tools.dialogues.confirm(question, u"Actualisation"_s);
}

void IndividualEditing::reset(Cl_Edition& field) const
{
    if (field.IDItem() > 0) {
        field.Refresh();
    } else {
        field.ChpEdition()->value = QVariant();
        field.ChpEdition()->Changed = false;
    }
    field.setTextError({});
}

bool IndividualEditing::refresh(RefreshScope scope, Cl_Edition* field)
{
    if (!m_current || (scope == RefreshScope::Field && !field) || !mayRefresh(scope, field))
        return false;
    if (scope == RefreshScope::Field) {
        reset(*field);
    } else if (scope == RefreshScope::Record) {
        for (const auto& one : form(*m_current))
            reset(*one);
    } else if (individual()->isNew()) {
        dropNew({});
        for (const auto& one : form(*individual()))
            reset(*one);
        individual()->summary.clear();
        buildTree();
        makeCurrent(individual());
        return true;
    } else {
        const QString key = m_current->isNew() ? effectiveParent(*m_current) : m_current->key;
        dropNew({});
        for (const auto& record : m_records)
            record->form.reset();
        reload(key);
        return true;
    }
    m_current->summary.clear();
    if (recordChanged)
        recordChanged(*m_current);
    return true;
}

bool IndividualEditing::addFiles(EditedRecord& first, const QString& column, const QStringList& files)
{
    Cl_Edition* field = files.isEmpty() ? nullptr : fieldNamed(form(first), column);
    if (!field || isReadOnly(first, *field))
        return false;
    type(first, *field, files.first());
    if (files.size() == 1 || !first.isNew())
        return true;
    if (!m_tools.dialogues.confirm(u"Voulez-vous appliquer le même masque de saisie au(x) "_s
                                       + QString::number(files.size()) + u" fichier(s) sélectionné(s) ?"_s,
                                   u"Ajout par lots"_s))
        return true;
    const QVariantMap values = copied(first);
    for (const QString& file : files.mid(1)) {
        EditedRecord* record = append(first.module, first.parent);
        fill(*record, values);
        m_input.take(*fieldNamed(form(*record), column), file);
    }
    buildTree();
    makeCurrent(&first);
    return true;
}

bool IndividualEditing::wizard(WizardFields which, FormDialogue& dialogue)
{
    if (!m_current || m_current->locked)
        return false;
    // Copies, so that nothing is written when the user gives up.
    addin::TabEditions fields;
    for (const auto& field : form(*m_current)) {
        const bool wanted = which == WizardFields::All || (which == WizardFields::Empty && !field->value().isValid())
                            || (which == WizardFields::Invalid && !field->TextError().isEmpty());
        if (wanted && !isReadOnly(*m_current, *field))
            fields << std::make_shared<addin::ChpEdition>(*field->ChpEdition());
    }
    if (fields.isEmpty()) {
        m_tools.dialogues.tell(u"Aucun champ à compléter"_s, name(*m_current));
        return false;
    }
    Cl_Editions copies(m_tools.context);
    copies.setTabedition(m_current->module, fields);
    const QString key = m_current->key;
    if (!dialogue.edit(name(*m_current), copies, [](Cl_Editions&) { return true; }) || !m_current || m_current->key != key)
        return false;
    for (const auto& copy : copies) {
        Cl_Edition* field = fieldNamed(form(*m_current), copy->champ());
        if (field && (field->value() != copy->value() || field->value().isValid() != copy->value().isValid()))
            m_input.take(*field, copy->value());
    }
    m_current->summary.clear();
    if (recordChanged)
        recordChanged(*m_current);
    return true;
}

void IndividualEditing::Wizard_ChampActif(const QString& column)
{
    Cl_Edition* field = m_current ? fieldNamed(form(*m_current), column) : nullptr;
    if (field && fieldActivated)
        fieldActivated(*field);
}

// --- From outside --------------------------------------------------------------------------------

void IndividualEditing::Query_Change(const QString& key)
{
    EditedRecord* changed = record(key);
    if (!changed)
        return;
    changed->summary.clear();
    if (changed->form) {
        for (const auto& field : *changed->form) {
            if (!field->Changed())
                field->Refresh();
        }
    }
    if (recordChanged)
        recordChanged(*changed);
}

void IndividualEditing::Query_Refresh()
{
    if (!isOpen() || individual()->isNew())
        return;
    if (!exists(individus, CurrentIndividu())) {
        showNeighbour();
        return;
    }
    reload(m_current ? m_current->key : QString());
    for (const auto& record : m_records)
        Query_Change(record->key);
}

} // namespace editing
