#include "editing/RecordModels.h"

#include "data/FieldType.h"

namespace editing {

using namespace Qt::StringLiterals;

QString modelLine(const QString& module, const Cl_Edition& field)
{
    const QString value = field.value().toString().replace(modelLineEnd, u"\n"_s).replace(u'\n', modelLineInside);
    return u"0-"_s + module + u';' + module + u'.' + field.champ() + u';' + value;
}

bool isPreset(const Cl_Edition& field)
{
    return !field.ChpEdition()->ChampUnique && field.ctype() != data::LienCourant;
}

int createModel(const QString& module, const EditingContext& context, data::PropertyStore& store,
                platform::Dialogues& dialogues, FormDialogue& form)
{
    Cl_Editions fields(context);
    fields.setTabedition(module, context.records->fields(module));
    for (int i = fields.Count() - 1; i >= 0; --i) {
        fields.Item(i)->setAllowNull(true); // a model presets what it likes
        if (!isPreset(*fields.Item(i)) || fields.Item(i)->Locked())
            fields.Remove(i);
    }
    const QString title = u"Créer un nouveau Modèle"_s;
    if (!form.edit(title + u" : "_s + context.records->label(module), fields, [](Cl_Editions&) { return true; }))
        return 0;
    QStringList lines;
    for (const auto& field : fields) {
        if (field->value().isValid())
            lines << modelLine(module, *field);
    }
    if (lines.isEmpty()) {
        dialogues.tell(u"Aucune valeur n'a été saisie : le modèle n'est pas créé"_s, title);
        return 0;
    }
    return store.save({0, data::kindModèle, module, {}, lines.join(modelLineEnd)}, dialogues);
}

} // namespace editing
