// What disappears with a module or a field.
#include "data/Dictionary.h"
#include "data/PropertyStore.h"
#include "data/StatementTemplate.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"

#include <QLoggingCategory>

namespace data {

using namespace Qt::StringLiterals;
using jet::nom;
using jet::texte;

namespace {

Q_LOGGING_CATEGORY(purgeLog, "herbora.purge")

QString markedRows(const QString& type)
{
    return filled(u"SELECT * FROM PGTableDefs "
                  "WHERE PGTableDefs.[Index] = -1 AND PGTableDefs.[Type]=rtype"_s,
                  {{u"rtype"_s, texte(type)}});
}

/// Runs one step of a purge.
template<typename Work>
void attempt(Dictionary::Failing failing, const QString& what, Work work)
{
    try {
        work();
    } catch (const jet::Error& error) {
        if (failing == Dictionary::Failing::Throw)
            throw;
        qCWarning(purgeLog).noquote() << what << error.number() << error.description();
    }
}

void deleteColumn(jet::Database& database, const QString& table, const QString& column)
{
    const jet::TableDef* definition = database.schema().table(table);
    if (definition && definition->field(column))
        database.DeleteField(table, column);
}

struct Row {
    QString module;
    QString column;
    QString provider;
};

QList<Row> readRows(jet::Database& database, const QString& statement)
{
    QList<Row> result;
    const auto rows = database.OpenRecordset(statement);
    for (; !rows->EOF_(); rows->MoveNext())
        result.append({rows->Value(u"NomModule").toString(), rows->Value(u"Table").toString(),
                       rows->Value(u"ModuleConnexion").toString()});
    return result;
}

} // namespace

void Dictionary::markUnconnected(const QStringList& connected)
{
    m_connected = connected;
    m_marked = true;
    QString statement = u"SELECT * From PGTableDefs"_s;
    QStringList names;
    for (const QString& name : connected)
        names << texte(name);
    if (!names.isEmpty())
        statement += u" WHERE PGTableDefs.NomModule NOT IN ("_s + names.join(u',') + u')';
    const auto rows = m_database.OpenRecordset(statement);
    for (; !rows->EOF_(); rows->MoveNext()) {
        if (!(rows->Value(u"Flags").toInt() & Connecté) || rows->Value(u"Index").toInt() == -1)
            continue;
        rows->Edit();
        rows->SetValue(u"Index", -1);
        rows->Update();
    }
}

void Dictionary::purge(Failing failing)
{
    purgeModules(failing);
    purgeFields(failing);
}

void Dictionary::purgeModules(Failing failing)
{
    const QString statement = markedRows(u"Addin"_s);
    const QList<Row> marked = readRows(m_database, statement);
    for (const Row& row : marked) {
        const QString& module = row.module;
        attempt(failing, u"lien "_s + module, [&] {
            deleteColumn(m_database, moduleIndividus, u"ID "_s + module);
            // Without its dictionary row the link column would be made anew at the next build.
            m_database.Execute(u"DELETE * From PGTableDefs WHERE PGTableDefs.Type="_s + texte(u"TabEdit"_s)
                               + u" AND PGTableDefs.ModuleConnexion="_s + texte(module)
                               + u" AND PGTableDefs.Table="_s + texte(u"ID "_s + module));
        });
        attempt(failing, u"définitions "_s + module, [&] { deleteDefinitions(module, row.provider); });
        for (const ModuleRecord& other : std::as_const(m_modules)) {
            if (jet::sameName(other.name, module))
                continue;
            attempt(failing, u"parents "_s + other.name, [&] {
                m_database.Execute(
                    filled(u"UPDATE tmodule SET tmodule.KeyParent = Null WHERE"
                           " tmodule.KeyParent LIKE "_s,
                           {{u"tmodule"_s, nom(other.name)}})
                    + texte(u"*-"_s + module));
            });
        }
        attempt(failing, u"propriétés "_s + module, [&] {
            PropertyStore store(m_database, m_clock);
            store.deleteModule(module);
            store.clean(module);
        });
        attempt(failing, u"table "_s + module, [&] {
            if (m_database.schema().relation(module))
                m_database.DeleteRelation(module);
            if (m_database.schema().table(module))
                m_database.DeleteTable(module);
        });
        m_modules.removeIf(
            [&](const ModuleRecord& record) { return jet::sameName(record.name, module); });
        for (ModuleRecord& other : m_modules)
            other.fields.removeIf([&](const FieldRecord& field) {
                return jet::sameName(field.provider, module)
                       && jet::sameName(field.column, u"ID "_s + module);
            });
    }
    if (!marked.isEmpty())
        m_database.Execute(QString(statement).replace(u"SELECT "_s, u"DELETE "_s));
}

void Dictionary::purgeFields(Failing failing)
{
    const QString statement = markedRows(u"TabEdit"_s);
    const QList<Row> marked = readRows(m_database, statement);
    for (const Row& row : marked) {
        attempt(failing, u"champ "_s + row.column, [&] {
            PropertyStore store(m_database, m_clock);
            store.deleteDescriptor(row.module, row.column);
            store.clean(row.module, row.column);
            deleteColumn(m_database, row.module, row.column);
        });
        for (ModuleRecord& module : m_modules) {
            if (jet::sameName(module.name, row.module))
                module.fields.removeIf([&](const FieldRecord& field) {
                    return jet::sameName(field.column, row.column);
                });
        }
    }
    if (!marked.isEmpty())
        m_database.Execute(QString(statement).replace(u"SELECT "_s, u"DELETE "_s));
}

} // namespace data
