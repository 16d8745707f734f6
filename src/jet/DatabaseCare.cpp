// What is found when a file is checked.
#include "jet/Catalog.h"
#include "jet/Compile.h"
#include "jet/DatabasePrivate.h"
#include "jet/Triggers.h"

namespace jet {

using namespace Qt::StringLiterals;

namespace {

/// One check of a file. What it finds are sentences for the user.
class Examination {
public:
    Examination(Store& store, const Schema& schema) : m_store(store), m_schema(schema) {}

    QStringList findings(bool thorough)
    {
        pages(thorough);
        // Where the pages are broken, reading them tells nothing more.
        if (!m_findings.isEmpty())
            return m_findings;
        m_findings = Catalog(m_store).differences();
        for (const TableDef& table : m_schema.tables()) {
            rules(table);
            fields(table);
            keys(table);
        }
        for (const Relation& relation : m_schema.relations())
            orphans(relation);
        return m_findings;
    }

private:
    void pages(bool thorough);
    void rules(const TableDef& table);
    void fields(const TableDef& table);
    void keys(const TableDef& table);
    void orphans(const Relation& relation);
    void trigger(const QString& statement, const QString& owner);
    /// Adds the sentence with the number of rows of "FROM …" where there are any.
    void count(const QString& from, const QString& sentence);

    Store& m_store;
    const Schema& m_schema;
    QStringList m_findings;
};

void Examination::pages(bool thorough)
{
    Statement check(m_store, thorough ? u"PRAGMA integrity_check(20)"_s : u"PRAGMA quick_check(20)"_s);
    while (check.step()) {
        const QString found = check.text(0);
        if (found != u"ok"_s)
            m_findings += u"Le fichier est endommagé : "_s + found;
    }
}

void Examination::count(const QString& from, const QString& sentence)
{
    const qint64 rows = m_store.single(u"SELECT count(*) FROM "_s + from).toLongLong();
    if (rows > 0)
        m_findings += u"%1 : %2 enregistrement(s)."_s.arg(sentence, QString::number(rows));
}

/// A trigger must stand in the file as it would be made now.
void Examination::trigger(const QString& statement, const QString& owner)
{
    Statement known(m_store, u"SELECT 1 FROM sqlite_schema WHERE type='trigger' AND sql=?"_s);
    known.bind(1, QVariant(statement));
    if (!known.step())
        m_findings += u"Une règle de « %1 » manque dans le fichier."_s.arg(owner);
}

void Examination::rules(const TableDef& table)
{
    for (const QString& statement : columnRules(table))
        trigger(statement, table.Name);
}

void Examination::fields(const TableDef& table)
{
    const QString from = quoted(table.Name) + u" WHERE "_s;
    for (const Field& field : table.Fields) {
        const QString column = quoted(field.Name);
        const QString place = u" le champ « %1 » de la table « %2 »"_s.arg(field.Name, table.Name);
        if (field.Required && !field.AutoIncrement)
            count(from + column + u" IS NULL"_s, u"Valeur obligatoire absente dans"_s + place);
        if (field.Type == DataType::Text)
            count(from + u"length(%1)>%2"_s.arg(column, QString::number(field.Size > 0 ? field.Size : defaultTextSize)),
                  u"Texte trop long dans"_s + place);
        if ((field.Type == DataType::Text || field.Type == DataType::Memo) && !field.AllowZeroLength)
            count(from + column + u"=''"_s, u"Texte vide refusé dans"_s + place);
    }
}

void Examination::keys(const TableDef& table)
{
    for (const Index& index : table.Indexes) {
        if (!index.Unique || !needsSqlIndex(table, index))
            continue;
        QStringList keys;
        QStringList filled;
        for (const IndexField& column : index.Fields) {
            const Field* field = table.field(column.Name);
            keys += keySql(*field);
            filled += quoted(field->Name) + (index.Primary ? u" IS NULL"_s : u" IS NOT NULL"_s);
        }
        const QString place = u" l'index « %1 » de la table « %2 »"_s.arg(index.Name, table.Name);
        if (index.Primary)
            count(quoted(table.Name) + u" WHERE "_s + filled.join(u" OR "_s), u"Valeur vide dans"_s + place);
        else
            count(u"(SELECT 1 FROM %1 WHERE %2 GROUP BY %3 HAVING count(*)>1)"_s.arg(
                      quoted(table.Name), filled.join(u" AND "_s), keys.join(u',')),
                  u"Doublons dans"_s + place);
    }
}

void Examination::orphans(const Relation& relation)
{
    const TableDef* primary = m_schema.table(relation.Table);
    const TableDef* foreign = m_schema.table(relation.ForeignTable);
    for (const QString& statement : relationRules(relation, *primary, *foreign))
        trigger(statement, relation.Name);
    count(u"%1 AS f WHERE %2"_s.arg(quoted(foreign->Name), orphanCondition(relation, *primary)),
          u"Enregistrements de la table « %1 » sans correspondant dans « %2 »"_s.arg(foreign->Name, primary->Name));
}

} // namespace

QStringList Database::Check(bool thorough)
{
    if (!isOpen())
        fail(3420, d->path);
    return Examination(d->store, d->schema).findings(thorough);
}

} // namespace jet
