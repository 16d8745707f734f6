#include "query/Query.h"

#include "jet/Recordset.h"

#include <QLoggingCategory>

namespace query {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(log, "herbora.query")

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
    return u"Requête < "_s + m_name + u" >"_s;
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
        {m_id, data::kindRequête, m_definition.module, m_name, textOf(m_definition, m_structure)}, m_world.dialogues);
    if (saved <= 0)
        return false;
    m_id = saved;
    for (const data::PropertyObject& object : m_world.store.list(data::kindRequête, m_definition.module)) {
        if (object.id == saved)
            m_name = object.name;
    }
    m_toSave = false;
    return true;
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
    const platform::Answer answer = m_world.dialogues.ask(
        {u"Voulez-vous enregistrez les modifications apportées à la requête: '"_s + m_name + u"' ?"_s, title(),
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
        qCInfo(log).noquote() << refused.text;
    } catch (const jet::Error& error) {
        qCWarning(log).noquote() << error.description();
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

QString Query::statistics(platform::Progression& progression) const
{
    return trapped([&]() -> QString {
        const auto count = [this](const QString& statement) {
            const auto rows = m_world.database.OpenRecordset(statement, jet::RecordsetType::Snapshot);
            if (rows->EOF_())
                return qint64(0);
            rows->MoveLast();
            return rows->RecordCount();
        };
        QStringList report{u"Nombre de valeurs uniques pour chaque champ"_s};
        qsizetype done = 0;
        for (const OutputColumn& column : m_definition.columns) {
            progression.step(u"Calcul des statistiques"_s, int(100 * done++ / m_definition.columns.size()));
            if (progression.cancelled())
                return {};
            if (!column.path.isEmpty())
                report << column.alias + u" : "_s
                              + QString::number(count(builder().statisticsStatement(m_definition, column.alias)));
        }
        report << u"Nombre de lignes : "_s + QString::number(count(builder().statement(m_definition)));
        progression.finish();
        return report.join(u"\r\n"_s);
    });
}

} // namespace query
