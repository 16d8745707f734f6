#include "data/PropertyStore.h"

#include "data/StatementTemplate.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"

namespace data {

using namespace Qt::StringLiterals;
using jet::texte;

namespace {

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

bool same(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

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
        PropertyObject object;
        object.id = rows->Value(u"_ID").toInt();
        object.name = rows->Value(u"Nom").toString();
        object.dateModify = rows->Value(u"DateModify").toString();
        whole->Seek(u"="_s, {object.id});
        if (whole->NoMatch())
            continue;
        object.kind = whole->Value(u"Objet").toString();
        object.module = whole->Value(u"Module").toString();
        objects.append(object);
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
    const QString now = platform::stamp(m_clock);
    const auto rows = openStore(m_database, u"Unique"_s);
    rows->Seek(u"="_s, {kind, module, name.trimmed()});
    if (!rows->NoMatch()) {
        if (rows->Value(u"Value").toString() != value) {
            rows->Edit();
            rows->SetValue(u"Value", value);
            rows->SetValue(u"DateModify", now);
            rows->Update();
        }
        return rows->Value(u"ID Prop").toInt();
    }
    rows->AddNew();
    rows->SetValue(u"Objet", kind);
    rows->SetValue(u"Module", module);
    rows->SetValue(u"Nom", name.trimmed());
    rows->SetValue(u"Value", value);
    rows->SetValue(u"DateCreate", now);
    rows->SetValue(u"DateModify", now);
    rows->Update();
    rows->MoveToLastModified();
    return rows->Value(u"ID Prop").toInt();
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
    cleanKind(kindRequête, [&](const QString& text) {
        return withoutLines(text, [&](const QString& line) {
            const QStringList items = line.split(u'\t');
            return std::any_of(items.begin(), items.end(), [&](const QString& item) {
                return column.isEmpty() ? item.startsWith(field, Qt::CaseInsensitive)
                                        : same(item, field);
            });
        });
    });
    if (!column.isEmpty())
        return;
    cleanKind(kindModèle, [&](const QString& text) {
        return withoutLines(text, [&](const QString& line) {
            const QStringList items = line.split(u';');
            return std::any_of(items.begin(), items.end(), [&](const QString& item) {
                return item.endsWith(u'-' + module, Qt::CaseInsensitive);
            });
        });
    });
}

} // namespace data
