#include "data/PropertyStore.h"

#include "data/Confirmations.h"
#include "data/StatementTemplate.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"
#include "jet/text/Values.h"

#include <QLoggingCategory>

namespace data {

using namespace Qt::StringLiterals;
using jet::texte;

namespace {

Q_LOGGING_CATEGORY(propertyLog, "herbora.properties")

const QString tableName = u"Propriétés"_s;
const QString lineEnd = u"\r\n"_s;

std::unique_ptr<jet::Recordset> openStore(jet::Database& database, const QString& index)
{
    auto rows = database.OpenRecordset(tableName, jet::RecordsetType::Table);
    rows->SetIndex(index);
    return rows;
}

/// The text without the lines for which `drop` says so.
template<typename Predicate>
QString withoutLines(const QString& text, Predicate drop)
{
    QStringList kept;
    for (const QString& line : text.split(lineEnd)) {
        if (!drop(line))
            kept << line;
    }
    return kept.join(lineEnd);
}

/// Without the blanks around it; a line end or a TAB there belongs to the text.
QString trimmed(const QString& text)
{
    return jet::text::trimBlanks(text, true, true);
}

PropertyObject objectAt(const jet::Recordset& row)
{
    PropertyObject object;
    object.id = row.Value(u"ID Prop").toInt();
    object.kind = row.Value(u"Objet").toString();
    object.module = row.Value(u"Module").toString();
    object.name = row.Value(u"Nom").toString();
    object.dateModify = row.Value(u"DateModify").toString();
    return object;
}

bool hasNode(const QString& kind)
{
    return kind == kindRequête || kind == kindModèle || kind == kindBase;
}

/// Does the work; a failure is logged and said, and gives the neutral result.
template<typename Result, typename Work>
Result trapped(platform::Dialogues& dialogues, Result neutral, Work work)
{
    try {
        return work();
    } catch (const jet::Error& error) {
        qCWarning(propertyLog).noquote() << error.number() << error.description();
        dialogues.tell(error.description(), u"Gestion des propriétés"_s, platform::BoxIcon::Stop);
        return neutral;
    }
}

bool same(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

QString nodeKey(const PropertyObject& object)
{
    const QString kind = object.kind == kindRequête ? u"-query"_s : object.kind == kindModèle ? u"-model"_s : u"-base"_s;
    return QString::number(object.id) + kind;
}

PropertyStore::PropertyStore(jet::Database& database, const platform::Clock& clock)
    : m_database(database), m_clock(clock)
{
}

QList<PropertyObject> PropertyStore::list(const QString& kinds, const QString& module) const
{
    QString statement = u"SELECT "
                        "[Nom],[DateModify],[ID Prop] as _ID"
                        " FROM Propriétés "_s;
    QString joiner = u"WHERE "_s;
    if (kinds != u"*"_s) {
        QStringList conditions;
        for (const QString& kind : kinds.split(u',', Qt::SkipEmptyParts))
            conditions << u"([Objet]="_s + texte(kind.trimmed()) + u") "_s;
        statement += u"WHERE ("_s + conditions.join(u"OR "_s) + u") "_s;
        joiner = u"AND "_s;
    }
    if (!module.isEmpty())
        statement += joiner + u"([Module]="_s + texte(module) + u')';

    QList<PropertyObject> objects;
    const auto whole = openStore(m_database, u"PrimaryKey"_s);
    const auto rows = m_database.OpenRecordset(statement);
    for (; !rows->EOF_(); rows->MoveNext()) {
        whole->Seek(u"="_s, {rows->Value(u"_ID")});
        if (!whole->NoMatch())
            objects << objectAt(*whole);
    }
    std::stable_sort(objects.begin(), objects.end(), [](const auto& a, const auto& b) {
        return a.name.localeAwareCompare(b.name) < 0;
    });
    return objects;
}

QVariant PropertyStore::value(const QString& kind, const QString& module, const QString& name) const
{
    const auto rows = openStore(m_database, u"Unique"_s);
    rows->Seek(u"="_s, {kind, module, name});
    return rows->NoMatch() ? QVariant() : rows->Value(u"Value");
}

int PropertyStore::put(const QString& kind, const QString& module, const QString& name,
                       const QString& value)
{
    const auto rows = openStore(m_database, u"Unique"_s);
    rows->Seek(u"="_s, {kind, module, trimmed(name)});
    if (rows->NoMatch())
        return add({0, kind, module, name, value});
    if (rows->Value(u"Value").toString() != trimmed(value)) {
        rows->Edit();
        rows->SetValue(u"Value", trimmed(value));
        rows->SetValue(u"DateModify", platform::stamp(m_clock));
        rows->Update();
    }
    return rows->Value(u"ID Prop").toInt();
}

int PropertyStore::add(const PropertyDraft& draft)
{
    const QString now = platform::stamp(m_clock);
    const auto rows = openStore(m_database, u"Unique"_s);
    rows->AddNew();
    rows->SetValue(u"Objet", draft.kind);
    rows->SetValue(u"Module", draft.module);
    rows->SetValue(u"Nom", trimmed(draft.name));
    rows->SetValue(u"Value", trimmed(draft.value));
    rows->SetValue(u"DateCreate", now);
    rows->SetValue(u"DateModify", now);
    rows->Update();
    rows->MoveToLastModified();
    const PropertyObject added = objectAt(*rows);
    rows->Close();
    announce(&PropertyObserver::objectAdded, added);
    return added.id;
}

int PropertyStore::save(const PropertyDraft& draft, platform::Dialogues& dialogues)
{
    return trapped(dialogues, 0, [&] {
        if (draft.id > 0 && overwrite(draft, dialogues))
            return draft.id;
        PropertyDraft added = draft;
        added.name = askName(draft, dialogues);
        return added.name.isEmpty() ? 0 : add(added);
    });
}

/// False when there is no such object under that kind and name, or the user wants another one.
bool PropertyStore::overwrite(const PropertyDraft& draft, platform::Dialogues& dialogues)
{
    const auto rows = openStore(m_database, u"PrimaryKey"_s);
    rows->Seek(u"="_s, {draft.id});
    const QString name = trimmed(draft.name);
    if (rows->NoMatch() || rows->Value(u"Objet").toString() != draft.kind || !same(rows->Value(u"Nom").toString(), name))
        return false;
    if (!confirmed(dialogues, 400, rows->Value(u"Nom").toString()))
        return false;
    rows->Edit();
    rows->SetValue(u"Value", trimmed(draft.value));
    rows->SetValue(u"Module", draft.module);
    rows->SetValue(u"DateModify", platform::stamp(m_clock));
    rows->Update();
    return true;
}

/// Asks until the name is unique; empty when the user gave up.
QString PropertyStore::askName(const PropertyDraft& draft, platform::Dialogues& dialogues) const
{
    const QString title = u"Ajout - "_s + draft.kind;
    QString prompt = u"Indiquez le nom unique de la nouvelle propriété '"_s + draft.kind + u'\'';
    QString name = trimmed(draft.name);
    for (;;) {
        name = trimmed(dialogues.input(title, prompt, name).value_or(QString()));
        if (name.isEmpty())
            return {};
        const auto rows = openStore(m_database, u"Unique"_s);
        rows->Seek(u"="_s, {draft.kind, draft.module, name});
        if (rows->NoMatch())
            return name;
        prompt = u"Nom déja existant ! Indiquez un nom unique pour la propriété"
                 " du Module "_s
                 + draft.module;
    }
}

QString PropertyStore::rename(int id, platform::Dialogues& dialogues, const QString& title, const QString& prompt)
{
    return trapped(dialogues, QString(), [&] {
        const auto rows = openStore(m_database, u"PrimaryKey"_s);
        rows->Seek(u"="_s, {id});
        if (rows->NoMatch())
            return QString();
        const PropertyObject before = objectAt(*rows);
        const QString asks = title.isEmpty() ? u"Renommer - "_s + before.kind : title;
        QString says = prompt.isEmpty() ? u"Indiquez le nouveau nom de la propriété '"_s + before.kind + u'\'' : prompt;
        QString name = before.name;
        do {
            name = trimmed(dialogues.input(asks, says, name).value_or(QString()));
            says = u"Nom déja existant ! Indiquez un nom unique pour la propriété"
                     " du Module "_s
                     + before.module;
        } while (!name.isEmpty() && !same(name, before.name)
                 && !value(before.kind, before.module, name).isNull());
        if (name.isEmpty() || name == before.name)
            return QString();
        rows->Edit();
        rows->SetValue(u"Nom", name);
        rows->SetValue(u"DateModify", platform::stamp(m_clock));
        rows->Update();
        const PropertyObject after = objectAt(*rows);
        rows->Close();
        announce(&PropertyObserver::objectRemoved, before);
        announce(&PropertyObserver::objectAdded, after);
        return name;
    });
}

bool PropertyStore::remove(int id, platform::Dialogues& dialogues)
{
    return trapped(dialogues, false, [&] {
        const auto rows = openStore(m_database, u"PrimaryKey"_s);
        rows->Seek(u"="_s, {id});
        if (rows->NoMatch())
            return false;
        const PropertyObject object = objectAt(*rows);
        if (!confirmed(dialogues, 401, object.name))
            return false;
        rows->Delete();
        announce(&PropertyObserver::objectRemoved, object);
        return true;
    });
}

void PropertyStore::addObserver(PropertyObserver* observer)
{
    m_observers << observer;
}

void PropertyStore::removeObserver(PropertyObserver* observer)
{
    m_observers.removeAll(observer);
}

void PropertyStore::announce(void (PropertyObserver::*event)(const PropertyObject&), const PropertyObject& object) const
{
    if (!hasNode(object.kind))
        return;
    const QList<PropertyObserver*> observers = m_observers;
    for (PropertyObserver* observer : observers)
        (observer->*event)(object);
}

void PropertyStore::deleteDescriptor(const QString& module, const QString& column)
{
    m_database.Execute(u"DELETE * From Propriétés"
                       " WHERE Propriétés.Module="_s
                       + texte(module) + u" AND Propriétés.Nom="_s + texte(column)
                       + u" AND Propriétés.Objet="_s + texte(kindDescripteur));
}

void PropertyStore::deleteModule(const QString& module)
{
    m_database.Execute(u"DELETE * From Propriétés"
                       " WHERE Propriétés.Module="_s
                       + texte(module) + u" AND Propriétés.Objet="_s + texte(kindBase)
                       + u" OR Propriétés.Objet="_s + texte(kindDescripteur));
}

void PropertyStore::cleanKind(const QString& kind,
                              const std::function<QString(const QString&)>& cleaned)
{
    const auto rows = m_database.OpenRecordset(filled(u"SELECT * FROM Propriétés "
                                                      "WHERE Propriétés.[Objet] = rtype"_s,
                                                      {{u"rtype"_s, texte(kind)}}));
    for (; !rows->EOF_(); rows->MoveNext()) {
        const QString before = rows->Value(u"Value").toString();
        const QString after = cleaned(before);
        if (after == before)
            continue;
        rows->Edit();
        rows->SetValue(u"Value", after);
        rows->SetValue(u"DateModify", platform::stamp(m_clock));
        rows->Update();
    }
}

void PropertyStore::clean(const QString& module, const QString& column)
{
    const QString field = module + u'.' + column;
    const QString key = u'-' + module;
    const auto namesIt = [&](const QString& item) {
        return column.isEmpty() ? item.startsWith(field, Qt::CaseInsensitive) : same(item, field);
    };
    const auto addressesIt = [&](const QString& item) {
        return column.isEmpty() && item.endsWith(key, Qt::CaseInsensitive);
    };
    cleanKind(kindRequête, [&](const QString& text) {
        return withoutLines(text, [&](const QString& line) {
            const QStringList items = line.split(u'\t');
            return std::any_of(items.begin(), items.end(), namesIt);
        });
    });
    cleanKind(kindModèle, [&](const QString& text) {
        return withoutLines(text, [&](const QString& line) {
            const QStringList items = line.split(u';');
            return std::any_of(items.begin(), items.end(),
                               [&](const QString& item) { return namesIt(item) || addressesIt(item); });
        });
    });
}

} // namespace data
