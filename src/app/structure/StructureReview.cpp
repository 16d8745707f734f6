#include "app/structure/StructureReview.h"

#include "app/structure/StructureEditing.h"
#include "app/structure/ValueConversion.h"
#include "data/FieldType.h"
#include "jet/ColumnTest.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"

#include <QSet>

namespace app {

using namespace Qt::StringLiterals;
using jet::nom;

namespace {

constexpr int mostExamples = 100;
/// Records read between two looks at the wish to stop.
constexpr qint64 portion = 5000;

QString typeName(int type)
{
    return StructureEditing::typeText(type);
}

QString fieldAs(const FieldChange& change)
{
    return change.before.caption == change.after.caption
               ? u"« "_s + change.before.caption + u" »"_s
               : u"« %1 » (« %2 »)"_s.arg(change.before.caption, change.after.caption);
}

/// The column as the field is defined now, under the name that it has in the file.
std::optional<jet::Field> columnOf(const data::FieldRecord& field, const QString& column)
{
    std::optional<jet::Field> defined = data::columnOfType(field.type, column);
    if (defined) {
        defined->Required = field.required();
        defined->ValidationRule = field.rule;
        defined->ValidationText = field.ruleText;
    }
    return defined;
}

class Reviewer {
public:
    Reviewer(jet::Database& database, const StructurePlan& plan, platform::Progression& progression)
        : m_database(database), m_plan(plan), m_progression(progression)
    {
    }

    StructureReview review()
    {
        for (const data::ModuleRecord& module : m_plan.deleted)
            deleted(module);
        const qsizetype count = qMax<qsizetype>(1, m_plan.kept.size());
        for (qsizetype at = 0; at < m_plan.kept.size(); ++at) {
            const ModuleChange& change = m_plan.kept[at];
            if (change.before == change.after)
                continue;
            m_progression.step(u"Vérification des enregistrements de « %1 »"_s.arg(change.origin),
                               int(100 * at / count));
            kept(change);
        }
        return m_review;
    }

private:
    void deleted(const data::ModuleRecord& module);
    void kept(const ModuleChange& change);
    void convert(const ModuleChange& module, const FieldChange& change);
    void rules(const ModuleChange& module, const FieldChange& change);
    void added(const ModuleChange& module, const data::FieldRecord& field, qint64 records);
    void keys(const ModuleChange& module);
    void add(Finding::Kind kind, const ModuleChange& module, const QString& field, const jet::Breaches& breaches,
             const QString& column = {});
    void checkStopped() const
    {
        if (m_progression.cancelled())
            jet::fail(3059);
    }
    QString valueOf(const QString& module, const QString& column, qint32 record) const;

    jet::Database& m_database;
    const StructurePlan& m_plan;
    platform::Progression& m_progression;
    StructureReview m_review;
};

void Reviewer::deleted(const data::ModuleRecord& module)
{
    if (const qint64 records = countRecords(m_database, module.name))
        m_review.losses << u"Le module « %1 » et ses %2 enregistrement(s)"_s.arg(module.name, QString::number(records));
}

QString Reviewer::valueOf(const QString& module, const QString& column, qint32 record) const
{
    const auto rows = m_database.OpenRecordset(u"SELECT %1 FROM %2 WHERE %3=%4"_s.arg(
        nom(column), nom(module), nom(u"ID "_s + module), QString::number(record)));
    return rows->EOF_() ? QString() : rows->Value(0).toString();
}

void Reviewer::add(Finding::Kind kind, const ModuleChange& module, const QString& field, const jet::Breaches& breaches,
                   const QString& column)
{
    checkStopped();
    if (breaches.count == 0)
        return;
    Finding finding{kind, module.origin, field, 0, 0, breaches.count, {}};
    for (const qint32 record : breaches.first)
        finding.examples.append({record, column.isEmpty() ? QString() : valueOf(module.origin, column, record), {}});
    m_review.findings << finding;
}

/// One pass over the values of a field that gets another type: what does not convert, and what the converted values
/// would break.
void Reviewer::convert(const ModuleChange& module, const FieldChange& change)
{
    const ValueConversion conversion(m_database, change.before.type, change.after.type);
    const ValueConversion shown(m_database, change.after.type, change.after.type);
    const auto column = columnOf(change.after, change.before.column);
    if (!column)
        return;
    jet::RuleTest rule(m_database, *column);
    Finding unconverted{Finding::Unconverted, module.origin, change.after.caption, change.before.type, change.after.type, 0, {}};
    Finding approximated = unconverted;
    approximated.kind = Finding::Approximated;
    Finding missing{Finding::Missing, module.origin, change.after.caption, 0, 0, 0, {}};
    Finding repeated = missing, refused = missing;
    repeated.kind = Finding::Repeated;
    refused.kind = Finding::Refused;
    const auto note = [](Finding& finding, qint32 record, const QString& value, const QString& becomes = {}) {
        ++finding.count;
        if (finding.examples.size() < mostExamples)
            finding.examples.append({record, value, becomes});
    };
    QSet<QString> values;
    qint64 held = 0;
    const auto rows = m_database.OpenRecordset(
        u"SELECT %1, %2 FROM %3"_s.arg(nom(u"ID "_s + module.origin), nom(change.before.column), nom(module.origin)));
    for (;;) {
        const auto part = rows->GetRows(portion);
        if (part.empty())
            break;
        checkStopped();
        for (const auto& row : part) {
            const qint32 record = row[0].toInt();
            const ConvertedValue converted = conversion(row[1]);
            held += row[1].isValid() && row[1] != QVariant(false);
            if (converted.outcome == ConvertedValue::Impossible)
                note(unconverted, record, conversion.shown(row[1]));
            else if (converted.outcome == ConvertedValue::Approximate)
                note(approximated, record, conversion.shown(row[1]), shown.shown(converted.value));
            if (!converted.value.isValid()) {
                if (change.after.required())
                    note(missing, record, conversion.shown(row[1]));
                continue;
            }
            const QString text = converted.value.toString();
            if (change.after.unique()) {
                const qsizetype before = values.size();
                values.insert(jet::nameKey(text));
                if (values.size() == before)
                    note(repeated, record, shown.shown(converted.value));
            }
            if (!rule.accepts(converted.value))
                note(refused, record, shown.shown(converted.value));
        }
    }
    for (const Finding& finding : {unconverted, approximated, missing, repeated, refused}) {
        if (finding.count > 0)
            m_review.findings << finding;
    }
    if (held > 0)
        m_review.conversions << u"Les %1 valeur(s) du champ %2 du module « %3 », de %4 en %5"_s.arg(
            QString::number(held), fieldAs(change), module.origin, typeName(change.before.type),
            typeName(change.after.type));
}

/// The rules of a field whose values stay.
void Reviewer::rules(const ModuleChange& module, const FieldChange& change)
{
    const auto column = columnOf(change.after, change.before.column);
    if (!column)
        return;
    if (change.after.required() && !change.before.required() && column->Type != jet::DataType::Boolean)
        add(Finding::Missing, module, change.after.caption,
            jet::nullsIn(m_database, module.origin, *column, mostExamples));
    if (change.after.unique() && !change.before.unique())
        add(Finding::Repeated, module, change.after.caption,
            jet::duplicatesIn(m_database, module.origin, {change.before.column}, mostExamples), change.before.column);
    if (change.after.rule != change.before.rule)
        add(Finding::Refused, module, change.after.caption,
            jet::refusedIn(m_database, module.origin, *column, mostExamples), change.before.column);
}

/// A field that is not there yet is Null in every record.
void Reviewer::added(const ModuleChange& module, const data::FieldRecord& field, qint64 records)
{
    const auto column = data::columnOfType(field.type, field.column);
    if (!column || records == 0)
        return;
    if (field.required() && column->Type != jet::DataType::Boolean) {
        jet::Breaches all{records, {}};
        add(Finding::Missing, module, field.caption, all);
    }
    // No is a value, and so it would be the same in all of them.
    if (field.unique() && column->Type == jet::DataType::Boolean && records > 1) {
        jet::Breaches all{records, {}};
        add(Finding::Repeated, module, field.caption, all);
    }
}

void Reviewer::keys(const ModuleChange& module)
{
    if (module.after.individuUnique() && !module.before.individuUnique())
        add(Finding::SeveralOfOne, module, {},
            jet::duplicatesIn(m_database, module.origin, {u"ID Individus"_s}, mostExamples), u"ID Individus"_s);
    QStringList now;
    for (const QString& column : module.after.combinedKey()) {
        const auto kept = std::find_if(module.kept.begin(), module.kept.end(), [&](const FieldChange& change) {
            return jet::sameName(change.after.column, column);
        });
        if (kept != module.kept.end()) {
            now << kept->before.column;
            continue;
        }
        if (column != u"ID Individus"_s) // a field that is not there yet: empty, and so exempt
            return;
        now << column;
    }
    if (!now.isEmpty() && now != module.before.combinedKey())
        add(Finding::RepeatedKey, module, {}, jet::duplicatesIn(m_database, module.origin, now, mostExamples));
}

void Reviewer::kept(const ModuleChange& change)
{
    if (!m_database.schema().table(change.origin))
        return;
    for (const data::FieldRecord& field : change.deleted) {
        checkStopped();
        if (holdsData(m_database, change.origin, field.column))
            m_review.losses << u"Le champ « %1 » du module « %2 » et ses données"_s.arg(field.caption, change.origin);
    }
    for (const FieldChange& field : change.kept) {
        if (field.rewritten())
            convert(change, field);
        else if (field.before != field.after)
            rules(change, field);
    }
    const qint64 records = change.added.isEmpty() ? 0 : countRecords(m_database, change.origin);
    for (const data::FieldRecord& field : change.added)
        added(change, field, records);
    keys(change);
}

/// One sentence for one, another for several.
QString counted(qint64 count, const QString& one, const QString& several)
{
    return QString::number(count) + u' ' + (count > 1 ? several : one);
}

} // namespace

QString Finding::text() const
{
    const QString where = field.isEmpty() ? u"Module « %1 » : "_s.arg(module)
                                          : u"« %1 », champ « %2 » : "_s.arg(module, field);
    switch (kind) {
    case Unconverted:
        return where
               + counted(count, u"valeur ne se convertit pas de %1 en %2 et sera effacée"_s,
                         u"valeurs ne se convertissent pas de %1 en %2 et seront effacées"_s)
                     .arg(typeName(from), typeName(to));
    case Approximated:
        return where
               + counted(count, u"valeur sera arrondie ou abrégée en passant de %1 à %2"_s,
                         u"valeurs seront arrondies ou abrégées en passant de %1 à %2"_s)
                     .arg(typeName(from), typeName(to));
    case Missing:
        return where
               + counted(count, u"enregistrement n'a pas de valeur, alors qu'elle devient obligatoire"_s,
                         u"enregistrements n'ont pas de valeur, alors qu'elle devient obligatoire"_s);
    case Repeated:
        return where
               + counted(count, u"enregistrement a une valeur en double, alors qu'elle devient unique"_s,
                         u"enregistrements ont une valeur en double, alors qu'elle devient unique"_s);
    case Refused:
        return where
               + counted(count, u"enregistrement ne respecte pas la règle de validation"_s,
                         u"enregistrements ne respectent pas la règle de validation"_s);
    case RepeatedKey:
        return where
               + counted(count, u"enregistrement a une combinaison en double, alors qu'elle devient unique"_s,
                         u"enregistrements ont une combinaison en double, alors qu'elle devient unique"_s);
    case SeveralOfOne:
        return where
               + counted(count, u"enregistrement de trop : un seul devient possible par individu"_s,
                         u"enregistrements d'individus qui en ont plusieurs : un seul devient possible"_s);
    }
    return {};
}

QList<qint32> Finding::records() const
{
    QList<qint32> ids;
    for (const Example& example : examples)
        ids << example.record;
    return ids;
}

bool StructureReview::forbids() const
{
    return std::any_of(findings.begin(), findings.end(), [](const Finding& finding) { return finding.forbids(); });
}

bool StructureReview::losesData() const
{
    return !losses.isEmpty() || !conversions.isEmpty();
}

StructureReview reviewOf(jet::Database& database, const StructurePlan& plan, platform::Progression& progression)
{
    return Reviewer(database, plan, progression).review();
}

qint64 countRecords(jet::Database& database, const QString& module)
{
    if (module.isEmpty() || !database.schema().table(module))
        return 0;
    const auto rows = database.OpenRecordset(u"SELECT Count(*) FROM "_s + nom(module));
    return rows->EOF_() ? 0 : rows->Value(0).toLongLong();
}

bool holdsData(jet::Database& database, const QString& module, const QString& column)
{
    const jet::TableDef* table = module.isEmpty() ? nullptr : database.schema().table(module);
    const jet::Field* field = table ? table->field(column) : nullptr;
    if (!field)
        return false;
    const QString condition = field->Type == jet::DataType::Boolean ? u"=True"_s : u" IS NOT NULL"_s;
    const auto rows = database.OpenRecordset(u"SELECT [ID %1] FROM %2 WHERE %3"_s.arg(
        module, nom(module), nom(column) + condition));
    return !rows->EOF_();
}

} // namespace app
