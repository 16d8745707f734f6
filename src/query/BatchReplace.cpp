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
constexpr qint64 pieceSize = 1000;

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

qint64 BatchReplace::count(const QString& from, const QString& where) const
{
    const auto counted = m_database.OpenRecordset(u"SELECT Count(*) FROM "_s + from + u" WHERE "_s + where);
    return counted->Value(0).toLongLong();
}

ReplaceCounts BatchReplace::counts() const
{
    const QString table = nom(m_module.name);
    ReplaceCounts result;
    result.changed = count(source(), condition());
    result.locked = count(table, scopeCondition() + table + u".[Locked]=True"_s);
    result.missed = count(table, scopeCondition() + table + u".[Locked]=False"_s) - result.changed;
    QStringList pairs;
    for (const Replacement& row : rows)
        pairs << field(row) << u'(' + expression(row) + u')';
    const auto values = m_database.OpenRecordset(u"SELECT "_s + pairs.join(u", "_s) + u" FROM "_s + source()
                                                 + u" WHERE "_s + condition());
    while (!values->EOF_()) {
        for (const std::vector<QVariant>& row : values->GetRows(pieceSize)) {
            bool same = true;
            for (size_t i = 0; i + 1 < row.size(); i += 2)
                same = same && cellText(row[i]) == cellText(row[i + 1]) && row[i].isValid() == row[i + 1].isValid();
            result.unchanged += same ? 1 : 0;
        }
    }
    return result;
}

QList<ReplacePreview> BatchReplace::preview(int records) const
{
    QStringList columns{nom(m_module.name) + u'.' + nom(m_module.idColumn())};
    for (const Replacement& row : rows)
        columns << field(row) << u'(' + expression(row) + u')';
    const auto values = m_database.OpenRecordset(u"SELECT "_s + columns.join(u", "_s) + u" FROM "_s + source()
                                                 + u" WHERE "_s + condition() + u" ORDER BY "_s + columns.first());
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
        const QString text = statement();
        const qint64 announced = count(source(), condition());
        if (!m_dialogues.confirm(question(), title()))
            return {};
        jet::Operation operation(m_database, report);
        const int changed = m_database.Execute(text);
        if (changed != announced) {
            m_dialogues.tell(u"Le nombre d'enregistrements modifiés ("_s + QString::number(changed)
                                 + u") n'est pas celui qui était annoncé ("_s + QString::number(announced)
                                 + u"). Rien n'a été modifié."_s,
                             report, platform::BoxIcon::Stop);
            return {};
        }
        operation.commit();
        m_dialogues.tell(QString::number(changed) + u" enregistrement(s) mis à jour"_s, report);
        return changed;
    } catch (const RowRefused& refused) {
        m_dialogues.tell(refused.text, report, platform::BoxIcon::Stop);
    } catch (const jet::Error& error) {
        m_dialogues.tell(error.description(), report, platform::BoxIcon::Stop);
    }
    return {};
}

} // namespace query
