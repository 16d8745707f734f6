#include "data/Verification.h"

#include "data/StatementTemplate.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"

namespace data {

using namespace Qt::StringLiterals;

namespace {

qint64 countOf(jet::Database& database, const QString& statement)
{
    const auto rows = database.OpenRecordset(statement);
    return rows->EOF_() ? 0 : rows->Value(0).toLongLong();
}

/// Adds a finding when the counting statement gives more than nothing.
void expectNone(jet::Database& database, QStringList& findings, const QString& statement,
                const QString& finding)
{
    try {
        const qint64 count = countOf(database, statement);
        if (count > 0)
            findings << QString::number(count) + u" "_s + finding;
    } catch (const jet::Error& error) {
        findings << finding + u" : vérification impossible ("_s + error.description() + u')';
    }
}

void checkTables(jet::Database& database, const ModuleRecord& module, QStringList& findings)
{
    const jet::TableDef* table = database.schema().table(module.name);
    if (!table) {
        findings << u"La table du module « "_s + module.name + u" » manque."_s;
        return;
    }
    QStringList columns{module.idColumn(), u"KeyParent"_s, u"DateCreate"_s, u"DateModify"_s,
                        u"Locked"_s};
    if (!module.isIndividus())
        columns << u"ID Individus"_s;
    for (const QString& column : std::as_const(columns)) {
        if (!table->field(column))
            findings << u"La colonne « "_s + column + u" » manque dans la table « "_s + module.name + u" »."_s;
    }
}

void checkParents(jet::Database& database, const ModuleRecord& child, const ModuleRecord& parent,
                  QStringList& findings)
{
    const QString join = filled(
        u" FROM [tmodule] LEFT JOIN [ParentModule] AS HERBORA"
        " ON val([tmodule].[KeyParent]) = [HERBORA].[ID ParentModule]"
        " WHERE [tmodule].KeyParent Like \"*-ParentModule\""_s,
        {{u"tmodule"_s, child.name}, {u"ParentModule"_s, parent.name}});
    const QString between = u"« "_s + child.name + u" » sous « "_s + parent.name + u" »"_s;
    expectNone(database, findings,
               u"SELECT Count(*)"_s + join + u" AND [HERBORA].[ID "_s + parent.name + u"] IS NULL"_s,
               u"enregistrement(s) sans parent : "_s + between);
    if (child.isIndividus())
        return;
    expectNone(database, findings,
               u"SELECT Count(*)"_s + join + u" AND "_s + jet::nom(child.name)
                   + u".[ID Individus]<>[HERBORA].[ID Individus]"_s,
               u"enregistrement(s) dont le parent est d'un autre individu : "_s + between);
}

void checkLinks(jet::Database& database, const ModuleRecord& module, QStringList& findings)
{
    const jet::TableDef* individus = database.schema().table(moduleIndividus);
    if (module.isIndividus() || !individus || !individus->field(module.idColumn()))
        return;
    expectNone(database, findings,
               filled(u"SELECT Count(*) FROM [Individus] LEFT JOIN [tmodule]"
                      " ON [Individus].[ID tmodule] = [tmodule].[ID tmodule]"
                      " WHERE [tmodule].[ID tmodule] Is Null AND [Individus].[ID tmodule] Is Not Null"_s,
                      {{u"tmodule"_s, module.name}}),
               u"lien(s) courant(s) rompu(s) vers « "_s + module.name + u" »"_s);
}

void checkTaxa(jet::Database& database, QStringList& findings)
{
    expectNone(database, findings,
               u"SELECT Count(*) FROM Taxons WHERE NOT (Nz([ID Famille],0)=[ID Taxons]"
               " OR Nz([ID Genre],0)=[ID Taxons] OR Nz([ID Espèce],0)=[ID Taxons]"
               " OR Nz([ID Infra],0)=[ID Taxons])"_s,
               u"taxon(s) sans rang"_s);
    expectNone(database, findings,
               u"SELECT Count(*) FROM Taxons LEFT JOIN Taxons AS Taxons_1 ON Taxons.[ID Valid] = Taxons_1.[ID Taxons]"
               " WHERE Taxons.[ID Valid] Is Not Null AND Taxons_1.[ID Taxons] Is Null"_s,
               u"synonyme(s) d'un taxon absent"_s);
}

void checkLocalities(jet::Database& database, QStringList& findings)
{
    expectNone(database, findings,
               u"SELECT Count(*) FROM Localités WHERE NOT (\"/\" & [CodeRegion] LIKE \"*/\" & [ID Localités])"_s,
               u"localité(s) dont le code ne finit pas par leur numéro"_s);
}

} // namespace

QStringList verify(jet::Database& database, const QList<ModuleRecord>& modules)
{
    QStringList findings = database.Check(true);
    for (const ModuleRecord& module : modules) {
        checkTables(database, module, findings);
        checkLinks(database, module, findings);
        for (const ModuleRecord& parent : modules) {
            if (parent.name != module.name)
                checkParents(database, module, parent, findings);
        }
    }
    if (database.schema().table(u"Taxons"))
        checkTaxa(database, findings);
    if (database.schema().table(u"Localités"))
        checkLocalities(database, findings);
    return findings;
}

} // namespace data
