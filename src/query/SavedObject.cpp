#include "query/SavedObject.h"

#include "data/Confirmations.h"
#include "jet/Recordset.h"

namespace query {

using namespace Qt::StringLiterals;

namespace {

constexpr int confirmOverwrite = 400;

std::unique_ptr<jet::Recordset> openStore(jet::Database& database, const QString& index)
{
    auto rows = database.OpenRecordset(u"Propriétés"_s, jet::RecordsetType::Table);
    rows->SetIndex(index);
    return rows;
}

bool overwrite(jet::Database& database, const QString& now, platform::Dialogues& dialogues, const SavedObject& object)
{
    if (object.id <= 0)
        return false;
    const auto rows = openStore(database, u"PrimaryKey"_s);
    rows->Seek(u"="_s, {object.id});
    if (rows->NoMatch() || rows->Value(u"Objet").toString().compare(object.kind, Qt::CaseInsensitive) != 0
        || rows->Value(u"Nom").toString().compare(object.name.trimmed(), Qt::CaseInsensitive) != 0)
        return false;
    if (!data::confirmed(dialogues, confirmOverwrite, object.name))
        return false;
    rows->Edit();
    rows->SetValue(u"Value", object.value.trimmed());
    rows->SetValue(u"Module", object.module);
    rows->SetValue(u"DateModify", now);
    rows->Update();
    return true;
}

/// Asks for a name until no object has it; empty when the user cancelled.
QString freeName(jet::Database& database, platform::Dialogues& dialogues, const SavedObject& object)
{
    const QString title = u"Ajout - "_s + object.kind;
    QString prompt = u"Indiquez le nom unique de la nouvelle propriété '"_s + object.kind + u'\'';
    QString name = object.name;
    const auto rows = openStore(database, u"Unique"_s);
    for (;;) {
        const std::optional<QString> answer = dialogues.input(title, prompt, name);
        if (!answer || answer->trimmed().isEmpty())
            return {};
        name = answer->trimmed();
        rows->Seek(u"="_s, {object.kind, object.module, name});
        if (rows->NoMatch())
            return name;
        prompt = u"Nom déja existant ! Indiquez un nom unique pour la propriété"
                 " du Module "_s
                 + object.module;
    }
}

int added(jet::Database& database, const QString& now, const SavedObject& object)
{
    const auto rows = openStore(database, u"Unique"_s);
    rows->AddNew();
    rows->SetValue(u"Objet", object.kind);
    rows->SetValue(u"Module", object.module);
    rows->SetValue(u"Nom", object.name);
    rows->SetValue(u"Value", object.value.trimmed());
    rows->SetValue(u"DateCreate", now);
    rows->SetValue(u"DateModify", now);
    rows->Update();
    rows->MoveToLastModified();
    return rows->Value(u"ID Prop").toInt();
}

} // namespace

std::optional<SavedObject> saveObject(jet::Database& database, const platform::Clock& clock,
                                      platform::Dialogues& dialogues, SavedObject object)
{
    const QString now = platform::stamp(clock);
    if (overwrite(database, now, dialogues, object))
        return object;
    object.name = freeName(database, dialogues, object);
    if (object.name.isEmpty())
        return {};
    object.id = added(database, now, object);
    return object;
}

} // namespace query
