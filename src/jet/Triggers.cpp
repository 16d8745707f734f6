#include "jet/Triggers.h"

#include "jet/Compile.h"
#include "jet/Error.h"
#include "jet/sql/Parser.h"

namespace jet {

using namespace Qt::StringLiterals;

namespace {

const QString columnParts[] = {u"rules.insert"_s, u"rules.update"_s};
const QString relationParts[] = {u"relation.insert"_s, u"relation.update"_s, u"relation.delete"_s,
                                 u"relation.key"_s};

QString triggerName(const QString& owner, const QString& part)
{
    return quoted(owner + u'.' + part);
}

QString refusal(int number, const QString& description)
{
    return u"RAISE(ABORT,"_s + quotedText(u'#' + QString::number(number) + u'#' + description) + u')';
}

QString refusal(int number, const QString& first, const QString& second)
{
    return refusal(number, describe(number, first, second));
}

/// The conditions that refuse a row, in the order in which they are checked: all of a kind before the
/// next kind.
class RuleList {
public:
    explicit RuleList(const TableDef& table) : m_table(table)
    {
        required();
        width();
        zeroLength();
        validation();
        keys();
    }

    bool isEmpty() const { return m_rules.isEmpty(); }
    QString body() const { return u" BEGIN SELECT CASE %1 END; END"_s.arg(m_rules.join(u' ')); }
    QString columns() const { return m_columns.join(u','); }

private:
    void add(const Field& field, const QString& condition, const QString& consequence)
    {
        m_rules += u"WHEN "_s + condition + u" THEN "_s + consequence;
        const QString column = quoted(field.Name);
        if (!m_columns.contains(column))
            m_columns += column;
    }
    static QString value(const Field& field) { return u"NEW."_s + quoted(field.Name); }

    void required();
    void width();
    void zeroLength();
    void validation();
    void keys();

    const TableDef& m_table;
    QStringList m_rules;
    QStringList m_columns;
};

void RuleList::required()
{
    for (const Field& field : m_table.Fields) {
        // An AutoNumber comes by itself and Yes/No is never Null.
        if (field.Required && !field.AutoIncrement && field.Type != DataType::Boolean)
            add(field, value(field) + u" IS NULL"_s, refusal(3314, field.Name, {}));
    }
}

void RuleList::width()
{
    for (const Field& field : m_table.Fields) {
        const bool limited = field.Type == DataType::Text || (field.Type == DataType::Binary && field.Size > 0);
        if (!limited)
            continue;
        const QString size = QString::number(field.Size > 0 ? field.Size : defaultTextSize);
        add(field, u"length(%1)>%2"_s.arg(value(field), size), refusal(3163, field.Name, size));
    }
}

void RuleList::zeroLength()
{
    for (const Field& field : m_table.Fields) {
        if ((field.Type == DataType::Text || field.Type == DataType::Memo) && !field.AllowZeroLength)
            add(field, value(field) + u"=''"_s, refusal(3315, field.Name, {}));
    }
}

void RuleList::validation()
{
    for (const Field& field : m_table.Fields) {
        if (field.ValidationRule.trimmed().isEmpty())
            continue;
        QString rule;
        try {
            rule = compileRule(*sql::parseRule(field.ValidationRule, field.Name), m_table, u"NEW."_s);
        } catch (const Error& error) {
            throw Error(3320, describe(3320, field.Name, field.ValidationRule) + u" ("_s + error.description() + u')');
        }
        const QString consequence = field.ValidationText.isEmpty()
                                        ? refusal(3317, field.Name, field.ValidationRule)
                                        : refusal(3316, field.ValidationText);
        // Null is no refusal: NOT Null is not true either.
        add(field, u"NOT("_s + rule + u')', consequence);
    }
}

void RuleList::keys()
{
    for (const Index& index : m_table.Indexes) {
        if (!index.Primary && !index.Required)
            continue;
        for (const IndexField& column : index.Fields) {
            const Field* field = m_table.field(column.Name);
            if (field && !field->AutoIncrement)
                add(*field, value(*field) + u" IS NULL"_s, refusal(3058, index.Name, field->Name));
        }
    }
}

// --- Relations -----------------------------------------------------------------------------------

QString foreignColumns(const Relation& relation)
{
    QStringList columns;
    for (const auto& pair : relation.Fields)
        columns += quoted(pair.second);
    return columns.join(u',');
}

QString primaryColumns(const Relation& relation)
{
    QStringList columns;
    for (const auto& pair : relation.Fields)
        columns += quoted(pair.first);
    return columns.join(u',');
}

QString keyChanged(const Relation& relation, const TableDef& primary)
{
    QStringList parts;
    for (const auto& pair : relation.Fields) {
        const Field* field = primary.field(pair.first);
        // A cascade also carries a change of case alone to the foreign records.
        if (relation.UpdateCascade)
            parts += u"NEW.%1 IS NOT OLD.%1"_s.arg(quoted(pair.first));
        else
            parts += keySql(*field, u"NEW."_s) + u" IS NOT "_s + keySql(*field, u"OLD."_s);
    }
    return u'(' + parts.join(u" OR "_s) + u')';
}

QString keyAssignments(const Relation& relation)
{
    QStringList parts;
    for (const auto& pair : relation.Fields)
        parts += quoted(pair.second) + u"=NEW."_s + quoted(pair.first);
    return parts.join(u',');
}

/// A foreign key with no Null in it and no primary row.
QString missingPrimary(const Relation& relation, const TableDef& primary, const QString& foreignPrefix)
{
    QStringList parts;
    for (const auto& pair : relation.Fields)
        parts += foreignPrefix + quoted(pair.second) + u" IS NOT NULL"_s;
    parts += u"NOT EXISTS(SELECT 1 FROM %1 AS p WHERE %2)"_s.arg(
        quoted(primary.Name), relationMatch(relation, primary, u"p."_s, foreignPrefix));
    return parts.join(u" AND "_s);
}

} // namespace

QString keySql(const Field& field, const QString& prefix)
{
    const QString column = prefix + quoted(field.Name);
    return isText(field.Type) ? u"jet_key("_s + column + u')' : column;
}

QString relationMatch(const Relation& relation, const TableDef& primary, const QString& primaryPrefix,
                      const QString& foreignPrefix)
{
    QStringList parts;
    for (const auto& pair : relation.Fields) {
        const Field* field = primary.field(pair.first);
        Field other = *field;
        other.Name = pair.second;
        parts += keySql(*field, primaryPrefix) + u'=' + keySql(other, foreignPrefix);
    }
    return parts.join(u" AND "_s);
}

QString orphanCondition(const Relation& relation, const TableDef& primary)
{
    return missingPrimary(relation, primary, u"f."_s);
}

QStringList columnRules(const TableDef& table)
{
    const RuleList rules(table);
    if (rules.isEmpty())
        return {};
    const QString on = u" ON "_s + quoted(table.Name);
    return {u"CREATE TRIGGER "_s + triggerName(table.Name, columnParts[0]) + u" BEFORE INSERT"_s + on + rules.body(),
            u"CREATE TRIGGER "_s + triggerName(table.Name, columnParts[1]) + u" BEFORE UPDATE OF "_s
                + rules.columns() + on + rules.body()};
}

QStringList dropColumnRules(const QString& table)
{
    QStringList statements;
    for (const QString& part : columnParts)
        statements += u"DROP TRIGGER IF EXISTS "_s + triggerName(table, part);
    return statements;
}

// The triggers run after the row has changed: a record may refer to itself, and a duplicate is
// reported before a missing partner.
QStringList relationRules(const Relation& relation, const TableDef& primary, const TableDef& foreign)
{
    const auto create = [&](int part, const QString& event, const TableDef& on, const QString& when,
                            const QString& action) {
        return u"CREATE TRIGGER "_s + triggerName(relation.Name, relationParts[part]) + u" AFTER "_s + event
               + u" ON "_s + quoted(on.Name) + (when.isEmpty() ? QString() : u" WHEN "_s + when) + u" BEGIN "_s
               + action + u"; END"_s;
    };
    const QString missing = missingPrimary(relation, primary, u"NEW."_s);
    const QString noPartner = u"SELECT "_s + refusal(3201, primary.Name, {});
    const QString hasForeign = u"SELECT "_s + refusal(3200, foreign.Name, {});
    const QString ofOld = relationMatch(relation, primary, u"OLD."_s, {});
    const QString existing = u"EXISTS(SELECT 1 FROM %1 WHERE %2)"_s.arg(quoted(foreign.Name), ofOld);
    const QString changed = keyChanged(relation, primary);
    const QString keyEvent = u"UPDATE OF "_s + primaryColumns(relation);

    QStringList statements{
        create(0, u"INSERT"_s, foreign, missing, noPartner),
        create(1, u"UPDATE OF "_s + foreignColumns(relation), foreign, missing, noPartner)};
    if (relation.DeleteCascade)
        statements += create(2, u"DELETE"_s, primary, {}, u"DELETE FROM %1 WHERE %2"_s.arg(quoted(foreign.Name), ofOld));
    else
        statements += create(2, u"DELETE"_s, primary, existing, hasForeign);
    if (relation.UpdateCascade)
        statements += create(3, keyEvent, primary, changed,
                             u"UPDATE %1 SET %2 WHERE %3"_s.arg(quoted(foreign.Name), keyAssignments(relation), ofOld));
    else
        statements += create(3, keyEvent, primary, changed + u" AND "_s + existing, hasForeign);
    return statements;
}

QStringList dropRelationRules(const QString& relation)
{
    QStringList statements;
    for (const QString& part : relationParts)
        statements += u"DROP TRIGGER IF EXISTS "_s + triggerName(relation, part);
    return statements;
}

} // namespace jet
