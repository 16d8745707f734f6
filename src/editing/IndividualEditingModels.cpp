// Named sets of values for new records, one line for each value (RecordModels.h). The value may hold ";" itself.
#include "editing/IndividualEditingPrivate.h"

#include "data/FieldType.h"
#include "editing/RecordModels.h"

namespace editing {

using namespace Qt::StringLiterals;

namespace {

const QString titleModels = u"Modèle"_s;

/// The column that an item names, with or without its module.
QString columnOf(const QString& item, const QString& module)
{
    const QString prefix = module + u'.';
    return item.startsWith(prefix, Qt::CaseInsensitive) ? item.mid(prefix.size()) : item;
}

/// A name stands in a model by its identifier.
QVariant valueOf(const Cl_Edition& field, const QString& text)
{
    const int type = field.ctype();
    bool number = false;
    const qint32 id = text.toInt(&number);
    const bool reference = type == data::Botaniste || type == data::Localité || type == data::Taxon;
    return reference && number ? QVariant(id) : QVariant(text);
}

} // namespace

QList<data::PropertyObject> IndividualEditing::models() const
{
    if (!m_current)
        return {};
    return guarded(titleModels, QList<data::PropertyObject>(), [&] {
        return m_tools.store.list(data::kindModèle, m_current->module);
    });
}

QString IndividualEditing::modelText(const EditedRecord& record) const
{
    QStringList lines;
    const QVariantMap values = copied(record);
    for (const auto& field : *record.form) {
        if (values.contains(field->champ()) && !isReadOnly(record, *field))
            lines << modelLine(record.module, *field);
    }
    return lines.join(modelLineEnd);
}

int IndividualEditing::saveModel()
{
    if (!m_current)
        return 0;
    form(*m_current);
    data::PropertyDraft draft{0, data::kindModèle, m_current->module, {}, modelText(*m_current)};
    for (const data::PropertyObject& model : models()) {
        if (model.id == m_model) {
            draft.id = model.id;
            draft.name = model.name;
        }
    }
    const int saved = m_tools.store.save(draft, m_tools.dialogues);
    if (saved > 0)
        m_model = saved;
    return saved;
}

bool IndividualEditing::loadModel()
{
    const QList<data::PropertyObject> all = models();
    if (all.isEmpty()) {
        if (m_current)
            m_tools.dialogues.tell(u"Aucun modèle n'est enregistré pour le Module "_s
                                       + m_tools.context.records->label(m_current->module),
                                   titleModels, platform::BoxIcon::Information);
        return false;
    }
    platform::Choice choice;
    choice.title = titleModels;
    choice.prompt = u"Sélectionnez le modèle que vous voulez utiliser"_s;
    choice.column = u"Nom du Modèle"_s;
    for (const data::PropertyObject& model : all)
        choice.items << model.name;
    const auto chosen = m_tools.dialogues.choose(choice);
    return chosen && !chosen->isEmpty() && applyModel(all.at(chosen->first()).id);
}

bool IndividualEditing::applyModel(int id)
{
    if (!m_current || m_current->locked)
        return false;
    for (const data::PropertyObject& model : models()) {
        if (model.id != id)
            continue;
        const QString text = guarded(titleModels, QString(), [&] {
            return m_tools.store.value(model.kind, model.module, model.name).toString();
        });
        for (const QString& line : text.split(modelLineEnd, Qt::SkipEmptyParts)) {
            const QString key = line.section(u';', 0, 0);
            Cl_Edition* field =
                form(*m_current).Item(form(*m_current).Index(columnOf(line.section(u';', 1, 1), m_current->module)));
            if (!key.endsWith(u'-' + m_current->module) || !field || isReadOnly(*m_current, *field))
                continue;
            m_input.take(*field, valueOf(*field, line.section(u';', 2).replace(modelLineInside, u'\n')));
        }
        m_model = id;
        m_current->summary.clear();
        if (recordChanged)
            recordChanged(*m_current);
        return true;
    }
    return false;
}

bool IndividualEditing::CLGabarit_Edit(int id)
{
    return !m_tools.store
                .rename(id, m_tools.dialogues, u"Renommer un modèle"_s, u"Indiquer le nouveau nom du modèle"_s)
                .isEmpty();
}

bool IndividualEditing::CLGabarit_Delete(int id)
{
    return m_tools.store.remove(id, m_tools.dialogues);
}

} // namespace editing
