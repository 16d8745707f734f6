#include "app/import/ImportRows.h"

#include "app/Session.h"
#include "data/FieldType.h"

namespace app {

using namespace Qt::StringLiterals;

ImportJob::ImportJob(Session& session, const ImportPlan& plan)
    : session(session), plan(plan),
      context{[counter = 0]() mutable { return ++counter; }, {},
              std::make_shared<editing::ProjectRecords>(session.database(), session.dictionary(), session.properties())},
      names(session.database()), creation(session.database(), session.surroundings().clock, context)
{
    report.target = plan.target.label;
    for (int position = 0; position < int(plan.mapping.size()); ++position) {
        if (const ImportField* field = plan.target.field(plan.mapping[position]))
            columns.push_back({position, *field, std::make_unique<ImportValues>(*field, plan.format.decimal, context)});
    }
}

const ImportColumn* ImportJob::column(const QString& key) const
{
    const auto found = std::find_if(columns.begin(), columns.end(), [&](const ImportColumn& column) { return column.field.key == key; });
    return found == columns.end() ? nullptr : &*found;
}

QString ImportJob::cell(const QStringList& cells, const ImportColumn* column)
{
    return column ? cells.value(column->position).trimmed() : QString();
}

std::optional<qint32> ImportJob::resolve(int type, const QString& name, const QString& caption)
{
    const auto decided = plan.decisions.constFind(nameKey(type, name));
    const bool isDecided = decided != plan.decisions.constEnd();
    if (isDecided && decided->kind == NameDecision::Leave)
        return {};
    if (isDecided && decided->kind == NameDecision::Choose)
        return decided->id;
    const NameFound found = names.find(type, name);
    if (found.id > 0)
        return found.id;
    const bool create = isDecided ? decided->kind == NameDecision::Create : plan.createNames && !found.several;
    if (create)
        return created(type, name, caption);
    throw RowRefused{caption + (found.several ? u" : plusieurs lignes de la liste ont ce nom"_s : u" : nom introuvable"_s), name};
}

qint32 ImportJob::created(int type, const QString& name, const QString& caption)
{
    try {
        // It stays when the row itself is refused for something else: other rows count on it.
        const qint32 id = creation.create(type, name);
        names.forget(type, name);
        const QString list = listOfType(type);
        auto entry = std::find_if(report.created.begin(), report.created.end(), [&](const auto& e) { return e.first == list; });
        if (entry == report.created.end())
            entry = report.created.insert(report.created.end(), {list, 0});
        ++entry->second;
        return id;
    } catch (const RowRefused& refused) {
        throw RowRefused{caption + u" : "_s + refused.reason, refused.text};
    }
}

qint32 ImportJob::identifier(const QStringList& cells, const QString& key)
{
    const ImportColumn* identifiers = column(key);
    const QString text = cell(cells, identifiers);
    if (text.isEmpty())
        return 0;
    bool number = false;
    const qint32 id = text.toInt(&number);
    if (!number || id < 1)
        throw RowRefused{identifiers->field.caption + u" : ce n'est pas un identifiant"_s, text};
    return id;
}

std::unique_ptr<ImportRows> ImportRows::make(ImportJob& job)
{
    const QString& name = job.plan.target.name;
    if (!job.plan.target.isList)
        return makeModuleRows(job);
    return name == u"Taxons" ? makeTaxonRows(job) : name == u"Localités" ? makePlaceRows(job) : makePersonRows(job);
}

} // namespace app
