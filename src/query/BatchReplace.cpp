#include "query/BatchReplace.h"

#include "jet/Recordset.h"
#include "jet/SqlText.h"
#include "query/Results.h"

#include <algorithm>

namespace query {

using namespace Qt::StringLiterals;
using jet::nom;

namespace {

const QString taxonColumn = u"ID Taxons"_s;
constexpr qint64 rowsAtOnce = 1000;

} // namespace

BatchReplace::BatchReplace(jet::Database& database, const platform::Clock& clock, platform::Dialogues& dialogues,
                           editing::EditingContext context, data::ModuleRecord module,
                           std::optional<QList<qint32>> selection)
    : m_database(database), m_clock(clock), m_dialogues(dialogues), m_context(std::move(context)),
      m_module(std::move(module)), m_selection(std::move(selection))
{
}

QString BatchReplace::title() const { return u"Remplacer dans la base "_s + m_module.name; }
QString BatchReplace::caption() const { return u"< Remplacer dans "_s + m_module.name + u" >"_s; }

QString BatchReplace::scope() const
{
    return m_selection ? u"dans la sélection en cours du module"_s : u"dans le module"_s;
}

QString BatchReplace::checkExpression(const QString& expression)
{
    if (expression.count(u'[') != expression.count(u']'))
        return u"Erreur: Vérifier le nombre de crochets dans l'expression"_s;
    if (expression.count(u'{') != expression.count(u'}'))
        return u"Erreur: Vérifier le nombre d'accolades dans l'expression"_s;
    return {};
}

QString BatchReplace::field(const Replacement& row) const
{
    return nom(m_module.name) + u'.' + nom(row.champ);
}

QString BatchReplace::expression(const Replacement& row) const
{
    const data::FieldRecord* known = m_module.field(row.champ);
    if (!known)
        throw RowRefused{u"Ce champ n'est pas du module : "_s + row.champ};
    if (!row.expression)
        return replaceValue(known->type, field(row), row.value, m_context);
    const QString error = checkExpression(row.value);
    if (!error.isEmpty())
        throw RowRefused{error};
    return row.value;
}

QString BatchReplace::SQLEdition(const Replacement& row) const
{
    return field(row) + u" = "_s + expression(row);
}

bool BatchReplace::hasTaxa() const
{
    return m_module.field(taxonColumn) != nullptr;
}

bool BatchReplace::takesValidName() const
{
    return std::any_of(rows.begin(), rows.end(), [](const Replacement& row) {
        return !row.expression && row.champ.compare(taxonColumn, Qt::CaseInsensitive) == 0
               && row.value.trimmed() == validName;
    });
}

QString BatchReplace::source() const
{
    const QString table = nom(m_module.name);
    if (!hasTaxa())
        return table;
    return table + u" INNER JOIN [Taxons] ON "_s + table + u".[ID Taxons] = Taxons.[ID Taxons]"_s;
}

QString BatchReplace::scopeCondition() const
{
    if (!m_selection)
        return {};
    return nom(m_module.name) + u'.' + nom(m_module.idColumn()) + u" IN ("_s + jet::liste(*m_selection) + u") AND "_s;
}

QString BatchReplace::condition() const
{
    QString where = scopeCondition() + nom(m_module.name) + u".[Locked]=False"_s;
    if (takesValidName()) // an accepted name has no other; without this it would become Null
        where += u" AND [Taxons].[ID Valid] Is Not Null"_s;
    return where;
}

QString BatchReplace::statement() const
{
    if (rows.isEmpty() || (m_selection && m_selection->isEmpty()))
        throw RowRefused{u"Il n'y a rien à remplacer"_s};
    if (takesValidName() && rows.size() > 1)
        throw RowRefused{u"Le nom valide se remplace seul"_s};
    QStringList assignments;
    for (const Replacement& row : rows)
        assignments << SQLEdition(row);
    return u"UPDATE "_s + source() + u" SET "_s + assignments.join(u", "_s) + u", "_s + nom(m_module.name)
           + u".[DateModify]="_s + jet::texte(platform::stamp(m_clock)) + u" WHERE "_s + condition();
}

QList<QPair<qsizetype, QString>> BatchReplace::errors() const
{
    QList<QPair<qsizetype, QString>> found;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        try {
            SQLEdition(rows[i]);
        } catch (const RowRefused& refused) {
            found << qMakePair(i, refused.text);
        }
    }
    return found;
}

ReplacePlan BatchReplace::plan() const
{
    const QString table = nom(m_module.name);
    const auto count = [](const QString& from, const QString& where) {
        return u"SELECT Count(*) FROM "_s + from + u" WHERE "_s + where;
    };
    ReplacePlan plan;
    plan.title = u"Remplacement dans la table "_s + m_module.name;
    plan.update = statement();
    plan.changed = count(source(), condition());
    plan.locked = count(table, scopeCondition() + table + u".[Locked]=True"_s);
    plan.open = count(table, scopeCondition() + table + u".[Locked]=False"_s);
    QStringList pairs;
    for (const Replacement& row : rows)
        pairs << field(row) << u'(' + expression(row) + u')';
    const QString id = table + u'.' + nom(m_module.idColumn());
    const QString rest = u" FROM "_s + source() + u" WHERE "_s + condition();
    plan.values = u"SELECT "_s + pairs.join(u", "_s) + rest;
    plan.preview = u"SELECT "_s + id + u", "_s + pairs.join(u", "_s) + rest + u" ORDER BY "_s + id;
    return plan;
}

ReplaceCounts BatchReplace::counts() const
{
    return replaceCounts(m_database, plan());
}

QList<ReplacePreview> BatchReplace::preview(int records) const
{
    return replacePreview(m_database, plan(), records);
}

ReplaceCounts replaceCounts(jet::Database& database, const ReplacePlan& plan)
{
    const auto count = [&database](const QString& statement) {
        return database.OpenRecordset(statement)->Value(0).toLongLong();
    };
    ReplaceCounts result;
    result.changed = count(plan.changed);
    result.locked = count(plan.locked);
    result.missed = count(plan.open) - result.changed;
    const auto values = database.OpenRecordset(plan.values);
    while (!values->EOF_()) {
        for (const std::vector<QVariant>& row : values->GetRows(rowsAtOnce)) {
            bool same = true;
            for (size_t i = 0; i + 1 < row.size(); i += 2)
                same = same && cellText(row[i]) == cellText(row[i + 1]) && row[i].isValid() == row[i + 1].isValid();
            result.unchanged += same ? 1 : 0;
        }
    }
    return result;
}

QList<ReplacePreview> replacePreview(jet::Database& database, const ReplacePlan& plan, int records)
{
    const auto values = database.OpenRecordset(plan.preview);
    QList<ReplacePreview> result;
    if (values->EOF_())
        return result;
    for (const std::vector<QVariant>& row : values->GetRows(records)) {
        ReplacePreview shown{.id = row[0].toInt(), .before = {}, .after = {}};
        for (size_t i = 1; i + 1 < row.size(); i += 2) {
            shown.before << cellText(row[i]);
            shown.after << cellText(row[i + 1]);
        }
        result << shown;
    }
    return result;
}

int runReplacement(jet::Database& database, const ReplacePlan& plan, qint64 announced)
{
    jet::Operation operation(database, plan.title);
    const int changed = database.Execute(plan.update);
    if (changed != announced)
        throw RowRefused{u"Le nombre d'enregistrements modifiés ("_s + QString::number(changed)
                         + u") n'est pas celui qui était annoncé ("_s + QString::number(announced)
                         + u"). Rien n'a été modifié."_s};
    operation.commit();
    return changed;
}

QString BatchReplace::question() const
{
    QString text = u"Etes-vous sûr de procéder au remplacement des propriétés suivantes : "_s;
    for (const Replacement& row : rows) {
        const data::FieldRecord* known = m_module.field(row.champ);
        text += u"\r\n- "_s + (known ? known->caption : row.champ) + u" = "_s + row.value;
    }
    return text + u"\r\n"_s + scope() + u' ' + m_module.name;
}

std::optional<int> BatchReplace::execute()
{
    const QString report = u"Remplacement dans la table "_s + m_module.name;
    try {
        const ReplacePlan ready = plan();
        const qint64 announced = m_database.OpenRecordset(ready.changed)->Value(0).toLongLong();
        if (!m_dialogues.confirm(question(), title()))
            return {};
        const int changed = runReplacement(m_database, ready, announced);
        m_dialogues.tell(replacedText(changed), report);
        return changed;
    } catch (const RowRefused& refused) {
        m_dialogues.tell(refused.text, report, platform::BoxIcon::Stop);
    } catch (const jet::Error& error) {
        m_dialogues.tell(error.description(), report, platform::BoxIcon::Stop);
    }
    return {};
}

} // namespace query
