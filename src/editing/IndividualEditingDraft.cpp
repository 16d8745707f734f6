// What is typed and not saved, as something that can be kept beside the project.
#include "editing/IndividualEditingPrivate.h"

#include <QJsonArray>

namespace editing {

using namespace Qt::StringLiterals;

namespace {


QJsonObject changedValues(const EditedRecord& record)
{
    QJsonObject values;
    for (const auto& field : *record.form) {
        if (field->Changed())
            values.insert(field->champ(), QJsonValue::fromVariant(field->value()));
    }
    return values;
}

} // namespace

QJsonObject IndividualEditing::draft() const
{
    if (!ToSave())
        return {};
    QJsonArray records;
    for (const auto& record : m_records) {
        if (!record->isNew() && !record->Changed())
            continue;
        records << QJsonObject{{u"cle"_s, record->key},
                               {u"module"_s, record->module},
                               {u"id"_s, record->id},
                               {u"parent"_s, record->parent},
                               {u"valeurs"_s, record->form ? changedValues(*record) : QJsonObject()}};
    }
    QJsonArray list;
    for (const ListKey& key : m_list)
        list << data::parentKey(key.id, key.module);
    return {{u"individu"_s, CurrentIndividu()},
            {u"courant"_s, m_current ? m_current->key : QString()},
            {u"liste"_s, list},
            {u"position"_s, m_position},
            {u"enregistrements"_s, records}};
}

void IndividualEditing::restoreRecord(const QJsonObject& kept)
{
    const QString key = kept.value(u"cle"_s).toString();
    const QString module = kept.value(u"module"_s).toString();
    EditedRecord* target = record(key);
    if (!target && kept.value(u"id"_s).toInt() == 0 && module != individus && canAdd(module)) {
        target = append(module, kept.value(u"parent"_s).toString());
        m_byKey.remove(target->key);
        target->key = key; // others may stand under it
        m_byKey.insert(key, target);
        m_temporary = std::max(m_temporary, key.mid(temporaryMarker.size()).section(u'-', 0, 0).toInt());
    }
    if (!target || target->locked)
        return;
    fill(*target, kept.value(u"valeurs"_s).toObject().toVariantMap());
}

bool IndividualEditing::restoreDraft(const QJsonObject& draft)
{
    const QJsonArray records = draft.value(u"enregistrements"_s).toArray();
    if (records.isEmpty() || !leave())
        return false;
    return guarded(u"Brouillon"_s, false, [&] {
        const qint32 individu = draft.value(u"individu"_s).toInt();
        if (individu > 0 ? !loadIndividual(individu) : !newIndividual({}))
            return false;
        if (individu == 0) {
            const QString key = records.first().toObject().value(u"cle"_s).toString();
            m_byKey.remove(individual()->key);
            individual()->key = key;
            m_byKey.insert(key, individual());
            m_temporary = std::max(m_temporary, key.mid(temporaryMarker.size()).section(u'-', 0, 0).toInt());
        }
        for (const QJsonValue& kept : records)
            restoreRecord(kept.toObject());
        m_list.clear();
        for (const QJsonValue& key : draft.value(u"liste"_s).toArray())
            m_list << ListKey{key.toString().section(u'-', 1), key.toString().section(u'-', 0, 0).toInt()};
        m_position = draft.value(u"position"_s).toInt(-1);
        buildTree();
        EditedRecord* shown = record(draft.value(u"courant"_s).toString());
        makeCurrent(shown ? shown : individual());
        return ToSave();
    });
}

} // namespace editing
