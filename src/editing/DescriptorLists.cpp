#include "editing/DescriptorLists.h"

#include "data/Cancellable.h"
#include "data/FieldType.h"
#include "editing/Formats.h"
#include "editing/SameText.h"
#include "jet/Cancelled.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"

#include <QLoggingCategory>
#include <optional>

namespace editing {

using namespace Qt::StringLiterals;
using jet::nom;
using jet::texte;
using platform::BoxIcon;

namespace {

Q_LOGGING_CATEGORY(listLog, "herbora.lists")

const QString marker = u";_@HBVARTEMP@_;"_s;
const QString titleAdd = u"Ajout d'un descripteur"_s;
const QString titleRename = u"Modification d'un descripteur"_s;
const QString titleMove = u"Ordre des descripteurs"_s;
const QString titleDelete = u"Suppression d'un descripteur"_s;

constexpr int stepEvery = 256;

/// A rule of the table, and no trouble with the file.
bool isRefusal(int number)
{
    static const QList<int> rules{3022, 3047, 3058, 3162, 3163, 3200, 3201, 3314, 3315, 3316, 3317, 3421};
    return rules.contains(number);
}

bool holds(const QStringList& items, const QString& text)
{
    return std::any_of(items.begin(), items.end(), [&](const QString& item) { return sameText(item, text.trimmed()); });
}

/// An item inside a pattern in single quotes: wildcards stand for themselves, quotes are doubled.
QString inPattern(const QString& item)
{
    QString text;
    for (const QChar c : item) {
        if (c == u'*' || c == u'?' || c == u'#' || c == u'[')
            text += QString(u"[%1]"_s).replace(u"%1"_s, QString(c));
        else if (c == u'\'')
            text += u"''"_s;
        else
            text += c;
    }
    return text;
}

} // namespace

DescriptorLists::DescriptorLists(jet::Database& database, data::PropertyStore& store, const platform::Clock& clock,
                                 platform::Dialogues& dialogues)
    : m_database(database), m_store(store), m_clock(clock), m_dialogues(dialogues)
{
}

QString DescriptorLists::cleaned(const QString& text)
{
    QString result;
    for (const QChar c : text.normalized(QString::NormalizationForm_C)) {
        if (c != u';' && c != u'"' && c.isPrint()) // line ends and TABs are not
            result += c;
    }
    return result.trimmed();
}

QStringList DescriptorLists::normalized(const QStringList& items)
{
    QStringList result;
    for (const QString& item : items) {
        const QString text = item.trimmed();
        if (!text.isEmpty() && !holds(result, text))
            result << text;
    }
    return result;
}

QStringList DescriptorLists::items(const ListField& field) const
{
    return normalized(m_store.value(data::kindDescripteur, field.module, field.column).toString().split(u';'));
}

void DescriptorLists::store(const ListField& field, const QStringList& items)
{
    m_store.put(data::kindDescripteur, field.module, field.column, normalized(items).join(u';'));
}

/// Stores a list whose records stay as they are; a failure is said.
bool DescriptorLists::storeAlone(const ListField& field, const QStringList& items, const QString& title)
{
    try {
        jet::Operation operation(m_database, title);
        store(field, items);
        operation.commit();
        return true;
    } catch (const jet::Error& error) {
        qCWarning(listLog).noquote() << field.module << field.column << error.number() << error.description();
        m_dialogues.tell(error.description(), title, BoxIcon::Stop);
        return false;
    }
}

bool DescriptorLists::add(const ListField& field)
{
    const auto answer = m_dialogues.input(titleAdd, u"Nouveau descripteur pour le champ \""_s + field.caption + u"\" ?"_s);
    const QString text = answer ? cleaned(*answer) : QString();
    if (text.isEmpty())
        return false;
    QStringList list = items(field);
    if (holds(list, text)) {
        m_dialogues.tell(u"Ajout impossible. Le descripteur '"_s + text + u"' est déjà défini pour le champ '"_s
                             + field.caption + u"'"_s,
                         titleAdd, BoxIcon::Stop);
        return false;
    }
    return storeAlone(field, list << text, titleAdd);
}

bool DescriptorLists::rename(const ListField& field, const QString& old)
{
    const auto answer = m_dialogues.input(titleRename, u"Nouveau nom pour le descripteur ?"_s, old);
    const QString text = answer ? cleaned(*answer) : QString();
    if (text.isEmpty())
        return false;
    QString list = u';' + items(field).join(u';') + u';';
    list.replace(u';' + old + u';', marker);
    if (holds(list.split(u';', Qt::SkipEmptyParts), text)) {
        m_dialogues.tell(u"Modification impossible. Le descripteur '"_s + text + u"' est déjà défini pour le champ '"_s
                             + field.caption + u"'"_s,
                         titleRename, BoxIcon::Stop);
        return false;
    }
    return apply({field, old, text, list.replace(marker, u';' + text + u';').split(u';', Qt::SkipEmptyParts), titleRename});
}

/// Records that hold the item among others; the two blanks before LIKE belong to the text.
QString DescriptorLists::usersStatement(const ListField& field, const QString& item) const
{
    return u"SELECT [_NomModule].[_Descripteur] FROM [_NomModule]"
           " WHERE ';' &[_NomModule].[_Descripteur] & ';'  LIKE '*;"_s.replace(u"[_NomModule]"_s, nom(field.module))
               .replace(u"[_Descripteur]"_s, nom(field.column))
           + inPattern(item) + u";*'"_s;
}

qint64 DescriptorLists::countUsers(const ListField& field, const QString& item) const
{
    const auto rows = m_database.OpenRecordset(usersStatement(field, item));
    if (!rows->EOF_())
        rows->MoveLast();
    return rows->RecordCount();
}

qint64 DescriptorLists::countExact(const ListField& field, const QString& item) const
{
    const auto rows = m_database.OpenRecordset(
        QString(u"SELECT [_Descripteur] FROM ["_s + field.module + u"] WHERE [_Descripteur]="_s)
            .replace(u"[_Descripteur]"_s, nom(field.module) + u'.' + nom(field.column))
        + texte(item));
    if (!rows->EOF_())
        rows->MoveLast();
    return rows->RecordCount();
}

bool DescriptorLists::remove(const ListField& field, const QString& item)
{
    const QString quoted = u'"' + item + u'"';
    QString question = u"Suppression du descripteur "_s + quoted + u'\n';
    try {
        if (field.allowNull) {
            if (const qint64 count = countUsers(field, item))
                question += u"La suppression de ce descripteur supprimera les "_s + QString::number(count)
                            + u" références associées dans le champ \""_s + field.caption + u"\"\n\n"_s;
        } else if (const qint64 count = countExact(field, item)) {
            m_dialogues.tell(u"Impossible de supprimer le descripteur "_s + quoted + u'\n' + QString::number(count)
                                 + u" enregistrement(s) retournent une erreur d'intégrité. \n"
                                   "Leur contenu deviendrait Null alors que le champ ne supporte pas les valeurs nulles\n"
                                   "Modifier au préalable leur contenu avant de supprimer ce descripteur"_s,
                             titleDelete, BoxIcon::Stop);
            return false;
        }
    } catch (const jet::Error& error) {
        m_dialogues.tell(error.description(), titleDelete, BoxIcon::Stop);
        return false;
    }
    question += u"Etes-vous sûr de vouloir supprimer définitivement ce descripteur ?"_s;
    if (!m_dialogues.confirm(question, titleDelete, BoxIcon::Warning))
        return false;
    QStringList list = items(field);
    list.removeIf([&](const QString& other) { return sameText(other, item); });
    return apply({field, item, QVariant(), list, titleDelete});
}

bool DescriptorLists::move(const ListField& field, const QString& item, int by)
{
    QStringList list = items(field);
    const qsizetype at = list.indexOf(item);
    const qsizetype to = at + by;
    if (at < 0 || to < 0 || to >= list.size())
        return false;
    list.move(at, to);
    return storeAlone(field, list, titleMove);
}

QStringList DescriptorLists::synchronise(const ListField& field)
{
    QStringList found;
    const auto rows = m_database.OpenRecordset(u"SELECT DISTINCT "_s + nom(field.column) + u" FROM "_s
                                               + nom(field.module) + u" WHERE "_s + nom(field.column)
                                               + u" IS NOT NULL"_s);
    for (; !rows->EOF_(); rows->MoveNext())
        found += rows->Value(0).toString().split(u';');
    found = normalized(found);
    // Descriptors in use keep their place; those that only records know come behind them.
    QStringList list = items(field);
    list.removeIf([&](const QString& item) { return !holds(found, item); });
    list = normalized(list + found);
    store(field, list);
    return list;
}

// --- Records -------------------------------------------------------------------------------------

void DescriptorLists::rewriteSimple(const Change& change)
{
    const QString& module = change.field.module;
    const QString statement = u"UPDATE ["_s + module + u"]"_s
                              + u" SET [_Descripteur] = [_Item],"
                                " [DateModify]="_s
                              + texte(NowStamp(m_clock)) + u" WHERE [_Descripteur]="_s;
    const QString column = nom(module) + u'.' + nom(change.field.column);
    const QVariant& item = change.replacement;
    m_database.Execute(QString(statement)
                           .replace(u"[_Descripteur]"_s, column)
                           .replace(u"[_Item]"_s, item.isValid() ? texte(item.toString()) : u"Null"_s)
                       + texte(change.old));
}

void DescriptorLists::rewriteMultiple(const Change& change, platform::Progression& progression)
{
    const auto users = m_database.OpenRecordset(usersStatement(change.field, change.old));
    if (users->EOF_())
        return;
    users->MoveLast();
    const qint64 count = users->RecordCount();
    const QString now = NowStamp(m_clock);
    const auto records = m_database.OpenRecordset(change.field.module, jet::RecordsetType::Table);
    records->SetIndex(u"PrimaryKey"_s);
    qint64 done = 0;
    for (users->MoveFirst(); !users->EOF_(); users->MoveNext()) {
        if (done++ % stepEvery == 0)
            progression.step(change.title, int(100 * done / count));
        if (progression.cancelled())
            jet::fail(jet::cancelledError, change.title);
        QStringList list = users->Value(0).toString().split(u';');
        for (QString& item : list) {
            if (sameText(item.trimmed(), change.old))
                item = change.replacement.toString();
        }
        const QString text = normalized(list).join(u';');
        records->Seek(u"="_s, {users->RowId()});
        records->Edit();
        records->SetValue(change.field.column, text.isEmpty() ? QVariant() : QVariant(text));
        records->SetValue(u"DateModify"_s, now);
        records->Update();
    }
}

void DescriptorLists::rewriteRecords(const Change& change, platform::Progression& progression)
{
    jet::Operation operation(m_database, u"Mise à jour d'un descripteur"_s);
    if (change.field.type == data::ListeMultiple)
        rewriteMultiple(change, progression);
    else
        rewriteSimple(change);
    operation.commit();
}

/// The list stays changed where only the records refused.
void DescriptorLists::applyWhole(const Change& change, platform::Progression& progression)
{
    const data::Cancellable stoppable(m_database, progression);
    std::optional<jet::Error> refused;
    jet::Operation operation(m_database, change.title);
    store(change.field, change.items);
    progression.step(change.title, change.field.type == data::ListeMultiple ? 0 : -1);
    try {
        rewriteRecords(change, progression);
    } catch (const jet::Error& error) {
        if (!isRefusal(error.number()))
            throw;
        refused = error;
    }
    operation.commit();
    progression.finish();
    if (refused)
        throw *refused;
}

bool DescriptorLists::apply(const Change& change)
{
    const LongWork work = [&](platform::Progression& progression) { applyWhole(change, progression); };
    try {
        platform::NoProgression silent;
        run ? run(change.title, work) : work(silent);
        return true;
    } catch (const jet::Error& error) {
        qCWarning(listLog).noquote() << change.field.module << change.field.column << error.number()
                                     << error.description();
        m_dialogues.tell(error.description(), change.title, BoxIcon::Stop);
        return false;
    }
}

} // namespace editing
