// Saving the records of an individual: questions first, then one named operation.
#include "editing/IndividualEditingPrivate.h"

#include "data/FieldType.h"

namespace editing {

using namespace Qt::StringLiterals;
using platform::Answer;
using platform::BoxButtons;
using platform::BoxIcon;

namespace {

const QString titleSave = u"Enregistrements des propriétés"_s;

/// As the column takes it.
QVariant stored(const Cl_Edition& field)
{
    const QVariant value = field.value();
    if (!value.isValid())
        return value;
    if (field.ctype() == data::OuiNon)
        return value.toString() == u"True";
    if (field.ctype() == data::LienCourant) // the column holds one record
        return value.toString().section(u',', 0, 0).trimmed().toInt();
    return value;
}

} // namespace

bool IndividualEditing::ToSave() const
{
    return std::any_of(m_records.begin(), m_records.end(), [](const auto& record) { return record->Changed(); });
}

/// Changed records in the order of the tree, with the new ones they stand under: parents before children.
QList<EditedRecord*> IndividualEditing::toSave(bool all) const
{
    QSet<QString> wanted;
    for (const auto& changed : m_records) {
        if (!changed->Changed() || !(all || changed.get() == m_current))
            continue;
        for (const EditedRecord* at = changed.get(); at; at = record(effectiveParent(*at))) {
            if (at == changed.get() || at->isNew())
                wanted << at->key;
        }
    }
    QList<EditedRecord*> list = inTreeOrder();
    list.removeIf([&](const EditedRecord* record) { return !wanted.contains(record->key); });
    return list;
}

SaveOutcome IndividualEditing::SavedItem(bool all, bool mayCancel)
{
    const QList<EditedRecord*> records = toSave(all);
    if (records.isEmpty())
        return SaveOutcome::Nothing;
    const QString which = records.size() == 1 ? u"à la propriété "_s + name(*records.first()) : u" aux propriétés modifiées"_s;
    const Answer answer = m_tools.dialogues.ask({u"Voulez-vous enregistrez les modifications apportées "_s + which,
                                                 titleSave, BoxIcon::Question,
                                                 mayCancel ? BoxButtons::YesNoCancel : BoxButtons::YesNo});
    if (answer == Answer::Cancel)
        return SaveOutcome::Cancelled;
    if (answer != Answer::Yes)
        return SaveOutcome::Declined;
    if (!validate(records))
        return SaveOutcome::Refused;
    // Asked before anything is written, so that no operation waits open for an answer.
    const QStringList linked = askLinks(records);
    return guarded(titleSave, SaveOutcome::Refused, [&] {
        QHash<QString, qint32> ids;
        write(records, linked, ids);
        adopt(records, ids);
        return SaveOutcome::Saved;
    });
}

bool IndividualEditing::validate(const QList<EditedRecord*>& records)
{
    for (EditedRecord* record : records) {
        for (const auto& field : form(*record)) {
            if (field->Changed())
                m_input.judge(*field);
            const QString error = field->TextError();
            if (error.isEmpty() || isReadOnly(*record, *field))
                continue;
            if (record != m_current)
                makeCurrent(record);
            m_tools.dialogues.tell(u"Erreur dans le champ: "_s + field->Caption() + u'\n' + error,
                                   u"Erreur de Validation"_s, BoxIcon::Warning);
            if (fieldRefused)
                fieldRefused(*field);
            return false;
        }
    }
    return true;
}

/// Keys of the records that the individual is to refer to as its current ones.
QStringList IndividualEditing::askLinks(const QList<EditedRecord*>& records)
{
    QStringList linked;
    EditedRecord* root = individual();
    if (!root || root->locked)
        return linked;
    const QVariantMap now = trapped("link", QVariantMap(), [&] {
        return m_tools.context.records->record(individus, root->id);
    });
    for (const EditedRecord* record : records) {
        const QString column = u"ID "_s + record->module;
        if (record->module == individus || !hasColumn(individus, column)
            || (!record->isNew() && now.value(column).toInt() == record->id))
            continue;
        if (m_tools.dialogues.confirm(u"Voulez-vous affecter la propriété \r\nau champ "_s + column
                                          + u" de l'Individu ?"_s,
                                      titleSave))
            linked << record->key;
    }
    return linked;
}

data::RecordValues IndividualEditing::valuesOf(const EditedRecord& record, const QHash<QString, qint32>& ids) const
{
    data::RecordValues values;
    values.id = record.id;
    values.individu = ids.value(individual()->key, CurrentIndividu());
    values.keyParent = record.parent;
    if (const EditedRecord* parent = this->record(record.parent); parent && ids.contains(parent->key))
        values.keyParent = data::parentKey(ids.value(parent->key), parent->module);
    values.valid = record.form->valid();
    for (const auto& field : *record.form) {
        const bool wanted = record.isNew() ? field->value().isValid() : field->Changed();
        if (wanted && hasColumn(record.module, field->champ()))
            values.values.append({field->champ(), stored(*field)});
    }
    return values;
}

void IndividualEditing::write(const QList<EditedRecord*>& records, const QStringList& linked,
                              QHash<QString, qint32>& ids)
{
    const QString what = records.size() == 1 ? name(*records.first()) : u"propriétés modifiées"_s;
    jet::Operation operation(m_tools.database, u"Enregistrement : "_s + what);
    for (const EditedRecord* record : records)
        ids.insert(record->key, m_tools.rules.save(record->module, valuesOf(*record, ids)));
    const qint32 individu = ids.value(individual()->key, CurrentIndividu());
    for (const QString& key : linked)
        writeLink(*record(key), ids.value(key), individu);
    operation.commit();
}

void IndividualEditing::writeLink(const EditedRecord& record, qint32 id, qint32 individu)
{
    data::RecordValues link;
    link.id = individu;
    link.keyParent = individual()->parent;
    link.values = {{u"ID "_s + record.module, id}};
    m_tools.rules.save(individus, link);
}

/// Takes over what the file now says: identifiers, keys, values as stored.
void IndividualEditing::adopt(const QList<EditedRecord*>& records, const QHash<QString, qint32>& ids)
{
    QHash<QString, QString> keys;
    for (EditedRecord* record : records) {
        remember(*record);
        const QString old = record->key;
        record->id = ids.value(old);
        record->key = data::parentKey(record->id, record->module);
        keys.insert(old, record->key);
        m_byKey.remove(old);
        m_byKey.insert(record->key, record);
        const ListKey listed{record->module, record->id};
        if (old != record->key && (m_list.isEmpty() || m_list.first().module == record->module)) {
            m_list << listed;
            if (record == m_current)
                m_position = int(m_list.size()) - 1;
        }
    }
    QStringList modules;
    for (const auto& record : m_records) {
        record->parent = keys.value(record->parent, record->parent);
        if (record->form && record->isNew()) {
            for (const auto& field : *record->form)
                field->setIDIndividu(CurrentIndividu());
        } else if (record->form && (records.contains(record.get()) || !record->Changed())) {
            record->form->bind(CurrentIndividu(), record->id);
        }
        record->summary.clear();
        if (records.contains(record.get()) && !modules.contains(record->module))
            modules << record->module;
    }
    reload(m_current ? m_current->key : QString());
    if (written)
        written(modules << individus);
}

} // namespace editing
