#include "query/Query.h"

#include "jet/Recordset.h"
#include "query/QueryLog.h"


namespace query {

Q_LOGGING_CATEGORY(queryLog, "herbora.query")

using namespace Qt::StringLiterals;

namespace {


const QString limitTitle = u"Limitation Access"_s;
const QString limitText =
    u"Limitation Access: La requête que vous tentez d'exécuter comporte plus de 40 instructions ET/OU dans le statement "
    "WHERE\r\n"
    "Une base Microsoft Access ne peut supporter plus de 40 instructions de ce type.\r\n"
    "Réduisez le nombre de ligne dans votre requête"_s;

} // namespace

Query::Query(Structure& structure, QueryWorld world)
    : m_structure(structure), m_world(std::move(world))
{
    m_definition.module = structure.NomModule();
}

QString Query::title() const
{
    return (isBase() ? u"Base < "_s : u"Requête < "_s) + m_name + u" >"_s;
}

void Query::changed()
{
    m_toSave = true;
    m_ownSelect.clear();
    m_ownWhere.clear();
    Q_EMIT Query_Change();
}

void Query::take(const QueryDefinition& definition, const QString& name, int id)
{
    m_definition = definition;
    m_name = name;
    m_id = id;
    changed();
    m_toSave = false;
}

void Query::setNomModule(const QString& module)
{
    if (m_structure.NomModule() != module)
        m_structure.setNomModule(module);
    QueryDefinition empty;
    empty.module = module;
    m_kind = data::kindRequête;
    take(empty, newQuery, 0);
}

void Query::clear()
{
    setNomModule(m_definition.module);
}

void Query::setModeRun(const QString& mode)
{
    if (mode == m_definition.mode || (mode != modeData && mode != modePicture && mode != modeMap))
        return;
    m_definition.mode = mode;
    changed();
}

void Query::refreshStructure(const QList<data::ModuleRecord>& modules)
{
    const bool toSave = m_toSave;
    const QString text = textOf(m_definition, m_structure);
    m_structure.LoadStructure(modules);
    m_definition = definitionFrom(text, m_definition.module, m_structure);
    changed();
    m_toSave = toSave;
}

bool Query::SaveQuery()
{
    const int saved = m_world.store.save(
        {m_id, m_kind, m_definition.module, m_name, textOf(m_definition, m_structure)}, m_world.dialogues);
    if (saved <= 0)
        return false;
    m_id = saved;
    for (const data::PropertyObject& object : m_world.store.list(m_kind, m_definition.module)) {
        if (object.id == saved)
            m_name = object.name;
    }
    m_toSave = false;
    Q_EMIT Query_Change(); // the name, and that nothing is left to save
    return true;
}

QString Query::savedText() const
{
    return u"Enregistrement de la "_s + (isBase() ? u"Base"_s : u"Requête"_s);
}

bool Query::rename()
{
    const QString name = m_id > 0 ? m_world.store.rename(m_id, m_world.dialogues) : QString();
    if (name.isEmpty())
        return false;
    m_name = name;
    Q_EMIT Query_Change();
    return true;
}

void Query::begin(const QueryDefinition& definition, const QString& name)
{
    if (m_structure.NomModule() != definition.module)
        m_structure.setNomModule(definition.module);
    m_kind = data::kindRequête;
    take(definition, name, 0);
}

void Query::restore(const QueryDefinition& definition)
{
    m_definition = definition;
    changed();
}

void Query::LoadBase(const QString& name)
{
    for (const data::PropertyObject& object : m_world.store.list(data::kindBase, m_definition.module)) {
        if (object.name.compare(name, Qt::CaseInsensitive) != 0)
            continue;
        m_kind = data::kindBase;
        const QString text = m_world.store.value(object.kind, object.module, object.name).toString();
        return take(definitionFrom(text, object.module, m_structure), object.name, object.id);
    }
    clear();
    m_kind = data::kindBase;
    QueryDefinition fields;
    fields.module = m_definition.module;
    take(fields, name, 0);
    if (const Node* root = m_structure.root()) {
        for (const auto& field : root->children) {
            if (!field->isModule())
                addColumn(m_structure.path(*field));
        }
    }
    m_toSave = false;
}

bool Query::LoadRequête(const QString& name)
{
    for (const data::PropertyObject& object : m_world.store.list(data::kindRequête, m_definition.module)) {
        if (object.name.compare(name, Qt::CaseInsensitive) == 0)
            return LoadRequête(object.id);
    }
    clear();
    return false;
}

bool Query::LoadRequête(int id)
{
    for (const data::PropertyObject& object : m_world.store.list(data::kindRequête)) {
        if (object.id != id)
            continue;
        const QVariant text = m_world.store.value(object.kind, object.module, object.name);
        if (m_structure.NomModule() != object.module)
            m_structure.setNomModule(object.module);
        m_kind = data::kindRequête;
        take(definitionFrom(text.toString(), object.module, m_structure), object.name, id);
        return true;
    }
    clear();
    return false;
}

bool Query::mayClose()
{
    if (!m_toSave)
        return true;
    const QString changes = isBase() ? u"Voulez-vous enregistrez les modifications apportées à la structure de la base : '"_s
                                     : u"Voulez-vous enregistrez les modifications apportées à la requête: '"_s;
    const platform::Answer answer = m_world.dialogues.ask(
        {changes + m_name + u"' ?"_s, title(),
         platform::BoxIcon::Question, platform::BoxButtons::YesNoCancel, platform::Answer::Yes});
    if (answer == platform::Answer::Yes)
        return SaveQuery();
    return answer == platform::Answer::No;
}

QString Query::trapped(const std::function<QString()>& work) const
{
    try {
        return work();
    } catch (const TooManyRows&) {
        m_world.dialogues.tell(limitText, limitTitle, platform::BoxIcon::Warning);
    } catch (const RowRefused& refused) {
        qCInfo(queryLog).noquote() << refused.text;
    } catch (const jet::Error& error) {
        qCWarning(queryLog).noquote() << error.description();
    }
    return {};
}

QString Query::TextSQLSelect() const
{
    return m_ownSelect.isEmpty() ? trapped([this] { return builder().select(m_definition); }) : m_ownSelect;
}

QString Query::TextSQLWhere() const
{
    return m_ownWhere.isEmpty() ? trapped([this] { return builder().where(m_definition); }) : m_ownWhere;
}

void Query::setTextSQLSelect(const QString& text)
{
    m_ownSelect = text;
    Q_EMIT Query_Change();
}

void Query::setTextSQLWhere(const QString& text)
{
    m_ownWhere = text;
    Q_EMIT Query_Change();
}

void Query::forgetOwnTexts()
{
    m_ownSelect.clear();
    m_ownWhere.clear();
    Q_EMIT Query_Change();
}

QString Query::SQLStatement() const
{
    return trapped([this]() -> QString {
        const StatementBuilder build = builder();
        const QString select = m_ownSelect.isEmpty() ? build.select(m_definition) : m_ownSelect;
        const QString where = m_ownWhere.isEmpty() ? build.where(m_definition) : m_ownWhere;
        if (select.isEmpty())
            return {};
        return StatementBuilder::assembled(select, build.from(m_definition), where, build.orderBy(m_definition));
    });
}

QString Query::mapStatement() const
{
    return trapped([this] { return builder().mapStatement(m_definition); });
}

QString Query::pictureStatement() const
{
    return trapped([this] { return builder().pictureStatement(m_definition); });
}

QString Query::statisticsStatement(const QString& alias) const
{
    return trapped([&] { return builder().statisticsStatement(m_definition, alias); });
}

StatisticsPlan Query::statisticsPlan() const
{
    StatisticsPlan plan;
    plan.rows = trapped([this] { return builder().statement(m_definition); });
    for (const OutputColumn& column : m_definition.columns) {
        const QString statement = column.path.isEmpty() || plan.rows.isEmpty() ? QString()
                                                                               : statisticsStatement(column.alias);
        if (statement.isEmpty())
            continue;
        plan.aliases << column.alias;
        plan.statements << statement;
    }
    return plan;
}

QString countStatistics(jet::Database& database, const StatisticsPlan& plan, platform::Progression& progression)
{
    const auto count = [&database](const QString& statement) {
        const auto rows = database.OpenRecordset(statement, jet::RecordsetType::Snapshot);
        if (rows->EOF_())
            return qint64(0);
        rows->MoveLast();
        return rows->RecordCount();
    };
    QStringList report{u"Nombre de valeurs uniques pour chaque champ"_s};
    for (qsizetype i = 0; i < plan.statements.size(); ++i) {
        progression.step(u"Calcul des statistiques"_s, int(100 * i / (plan.statements.size() + 1)));
        if (progression.cancelled())
            return {};
        report << plan.aliases[i] + u" : "_s + QString::number(count(plan.statements[i]));
    }
    report << u"Nombre de lignes : "_s + QString::number(count(plan.rows));
    progression.finish();
    return report.join(u"\r\n"_s);
}

QString Query::statistics(platform::Progression& progression) const
{
    return trapped([&]() -> QString {
        const StatisticsPlan plan = statisticsPlan();
        return plan.rows.isEmpty() ? QString() : countStatistics(m_world.database, plan, progression);
    });
}

} // namespace query
