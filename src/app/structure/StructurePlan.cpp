#include "app/structure/StructurePlan.h"

#include "data/FieldType.h"
#include "jet/Definitions.h"
#include "jet/sql/Lexer.h"

namespace app {

using namespace Qt::StringLiterals;

namespace {

const QString lineEnd = u"\r\n"_s;
/// Between the columns of a path, as stored queries write it.
const QString pathStep = u"\\>"_s;

const DraftModule* withOrigin(const DraftModules& modules, const QString& origin)
{
    for (const DraftModule& module : modules) {
        if (!module.origin.isEmpty() && jet::sameName(module.origin, origin))
            return &module;
    }
    return nullptr;
}

const DraftField* withOrigin(const DraftModule& module, const QString& origin)
{
    for (const DraftField& field : module.fields) {
        if (!field.origin.isEmpty() && jet::sameName(field.origin, origin))
            return &field;
    }
    return nullptr;
}

ModuleChange changeOf(const DraftModule& before, const DraftModule& after)
{
    ModuleChange change{before.origin, after.record.name, before.definition(), after.definition(), {}, {}, {}};
    for (const DraftField& field : after.fields) {
        const DraftField* old = field.origin.isEmpty() ? nullptr : withOrigin(before, field.origin);
        if (old)
            change.kept.append({old->record, field.record});
        else
            change.added.append(field.record);
    }
    for (const DraftField& field : before.fields) {
        if (!withOrigin(after, field.origin))
            change.deleted.append(field.record);
    }
    return change;
}

QPair<QString, QString> fieldKey(const QString& module, const QString& column)
{
    return {jet::nameKey(module), jet::nameKey(column)};
}

} // namespace

bool FieldChange::rewritten() const
{
    if (!retyped())
        return false;
    const auto old = data::columnOfType(before.type, before.column);
    const auto now = data::columnOfType(after.type, after.column);
    if (!old || !now || old->Type != now->Type)
        return true;
    // Kept in columns of one kind, but not the same thing: names of rows, descriptors, dates.
    const auto isPlainText = [](int type) { return type == data::Texte || type == data::Label || type == data::Image; };
    return !(isPlainText(before.type) && isPlainText(after.type));
}

bool StructurePlan::isEmpty() const
{
    const bool same = std::all_of(kept.begin(), kept.end(), [](const ModuleChange& change) {
        return change.before == change.after && !change.renamed();
    });
    return deleted.isEmpty() && added.isEmpty() && same;
}

StructurePlan planOf(const DraftModules& saved, const DraftModules& wanted)
{
    StructurePlan plan;
    for (const DraftModule& module : wanted) {
        const DraftModule* before = module.origin.isEmpty() ? nullptr : withOrigin(saved, module.origin);
        if (before)
            plan.kept.append(changeOf(*before, module));
        else
            plan.added.append(module.definition());
        plan.modules.append(module.definition());
    }
    for (const DraftModule& module : saved) {
        if (!withOrigin(wanted, module.origin))
            plan.deleted.append(module.definition());
    }
    return plan;
}

// --- Names in stored texts -------------------------------------------------------------------------

QString Renamings::module(const QString& name) const
{
    return modules.value(jet::nameKey(name), name);
}

QString Renamings::column(const QString& module, const QString& column) const
{
    return fields.value(fieldKey(module, column), column);
}

Renamings renamingsOf(const StructurePlan& plan)
{
    Renamings renamings;
    for (const ModuleChange& change : plan.kept) {
        if (change.renamed()) {
            renamings.modules.insert(jet::nameKey(change.origin), change.name);
            // Its own identifier stands in queries for the module itself.
            renamings.fields.insert(fieldKey(change.origin, u"ID "_s + change.origin), u"ID "_s + change.name);
        }
        for (const FieldChange& field : change.kept) {
            if (field.renamed())
                renamings.fields.insert(fieldKey(change.origin, field.before.column), field.after.column);
        }
    }
    return renamings;
}

namespace {

/// "Module.Column" with both as they are called now.
QString renamedItem(const QString& item, const Renamings& renamings)
{
    const qsizetype dot = item.indexOf(u'.');
    if (dot <= 0)
        return item;
    const QString module = item.left(dot);
    const QString column = item.mid(dot + 1);
    return renamings.module(module) + u'.' + renamings.column(module, column);
}

/// The path of a field: its columns, each of the module that the item of the same position names.
QString renamedPath(const QString& path, const QStringList& named, const Renamings& renamings)
{
    QStringList columns = path.split(pathStep);
    for (qsizetype at = 0; at < columns.size() && at < named.size(); ++at) {
        const QString& item = named[at];
        const QString module = item.left(item.indexOf(u'.'));
        columns[at] = renamings.column(module, columns[at]);
    }
    return columns.join(pathStep);
}

QString renamedLine(const QString& line, const Renamings& renamings)
{
    QStringList items = line.split(u'\t');
    // A column line has three items before its field, a criterion line five.
    const qsizetype first = items.first() == u"colonne"_s ? 3 : items.first() == u"critère"_s ? 5 : -1;
    if (first > 0 && items.size() > first)
        items[first] = renamedPath(items[first], items.mid(first + 1), renamings);
    for (qsizetype at = first > 0 ? first + 1 : 0; at < items.size(); ++at)
        items[at] = renamedItem(items[at], renamings);
    return items.join(u'\t');
}

} // namespace

QString renamedQuery(const QString& text, const Renamings& renamings)
{
    QStringList lines = text.split(lineEnd);
    for (QString& line : lines)
        line = renamedLine(line, renamings);
    return lines.join(lineEnd);
}

QString renamedModel(const QString& text, const QString& module, const Renamings& renamings)
{
    QStringList lines = text.split(lineEnd);
    for (QString& line : lines) {
        const QString key = line.section(u';', 0, 0);
        const QString field = line.section(u';', 1, 1);
        const qsizetype dash = key.indexOf(u'-');
        if (dash < 0 || !line.contains(u';'))
            continue;
        const QString addressed = key.mid(dash + 1);
        const QString renamedKey = key.left(dash + 1) + renamings.module(addressed);
        const bool whole = field.contains(u'.');
        const QString of = addressed.isEmpty() ? module : addressed;
        const QString renamedField = whole ? renamedItem(field, renamings) : renamings.column(of, field);
        const QString rest = line.count(u';') > 1 ? u';' + line.section(u';', 2) : QString();
        line = renamedKey + u';' + renamedField + rest;
    }
    return lines.join(lineEnd);
}

namespace {

using jet::sql::Token;
using jet::sql::TokenKind;

/// The name that a token is; empty for anything else.
QString nameAt(const QString& sql, const std::vector<Token>& tokens, size_t at)
{
    const Token& token = tokens[at];
    const bool name = token.kind == TokenKind::Name
                      || (token.kind == TokenKind::Word && token.keyword == jet::sql::Keyword::None);
    return name ? jet::sql::nameOf(QStringView(sql).mid(token.place, token.length)) : QString();
}

/// The table in front of the dot before a token; empty when there is none.
QString qualifierAt(const QString& sql, const std::vector<Token>& tokens, size_t at)
{
    const bool qualified = at > 1 && (tokens[at - 1].kind == TokenKind::Dot || tokens[at - 1].kind == TokenKind::Bang);
    return qualified ? nameAt(sql, tokens, at - 2) : QString();
}

} // namespace

QString renamedStatement(const QString& sql, const Renamings& renamings)
{
    const std::vector<Token> tokens = jet::sql::tokenize(sql);
    QStringList tables, aliases;
    for (size_t at = 0; at < tokens.size(); ++at) {
        tables << jet::nameKey(nameAt(sql, tokens, at));
        if (at > 0 && tokens[at - 1].keyword == jet::sql::Keyword::As)
            aliases << tables.last();
    }
    QString result;
    qsizetype written = 0;
    for (size_t at = 0; at < tokens.size(); ++at) {
        const QString name = nameAt(sql, tokens, at);
        if (name.isEmpty())
            continue;
        const QString table = qualifierAt(sql, tokens, at);
        QString now = table.isEmpty() ? renamings.module(name) : renamings.column(table, name);
        if (now == name && (table.isEmpty() || aliases.contains(jet::nameKey(table)))) {
            // Under an alias, or alone: the tables that the statement names decide.
            for (auto field = renamings.fields.cbegin(); field != renamings.fields.cend(); ++field) {
                if (field.key().second == jet::nameKey(name) && tables.contains(field.key().first))
                    now = field.value();
            }
        }
        if (now == name)
            continue;
        result += sql.mid(written, tokens[at].place - written);
        result += u'[' + now + u']';
        written = tokens[at].place + tokens[at].length;
    }
    return result + sql.mid(written);
}

} // namespace app
