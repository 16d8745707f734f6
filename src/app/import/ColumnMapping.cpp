#include "app/import/ColumnMapping.h"

namespace app {

using namespace Qt::StringLiterals;

namespace {

/// A kind of its own: it has no node in the tree of modules.
const QString kindImportation = u"Importation"_s;
const QString keptName = u"Colonnes"_s;

/// The field that a header names; earlier fields and better names go first.
QString keyOf(const QString& header, const ImportTarget& target)
{
    const QString folded = foldedName(header);
    if (folded.isEmpty())
        return {};
    for (const ImportField& field : target.fields) {
        if (foldedName(field.caption) == folded || foldedName(field.key) == folded)
            return field.key;
    }
    for (const ImportField& field : target.fields) {
        for (const QString& name : field.names) {
            if (foldedName(name) == folded)
                return field.key;
        }
    }
    return {};
}

} // namespace

ColumnMapping mapColumns(const QStringList& header, const ImportTarget& target, const QHash<QString, QString>& kept, bool withIds)
{
    ColumnMapping mapping;
    for (const QString& name : header) {
        const auto known = kept.constFind(foldedName(name));
        QString key = known != kept.constEnd() ? *known : keyOf(name, target);
        if (!target.field(key) || mapping.contains(key) || (key == importId && !withIds))
            key.clear();
        mapping << key;
    }
    return mapping;
}

QHash<QString, QString> keptMapping(const data::PropertyStore& store, const QString& target)
{
    QHash<QString, QString> kept;
    const QString text = store.value(kindImportation, target, keptName).toString();
    for (const QString& line : text.split(u"\r\n"_s, Qt::SkipEmptyParts))
        kept.insert(line.section(u'\t', 0, 0), line.section(u'\t', 1));
    return kept;
}

void keepMapping(data::PropertyStore& store, const ImportTarget& target, const QStringList& header, const ColumnMapping& mapping)
{
    QHash<QString, QString> kept = keptMapping(store, target.name);
    for (qsizetype column = 0; column < header.size(); ++column) {
        const QString name = foldedName(header[column]);
        const QString key = mapping.value(column);
        const QString byName = keyOf(header[column], target);
        // Identifiers are taken again only when the user says so again.
        if (name.isEmpty() || key == importId || byName == importId)
            continue;
        if (key == byName)
            kept.remove(name);
        else
            kept.insert(name, key);
    }
    QStringList lines;
    for (auto entry = kept.cbegin(); entry != kept.cend(); ++entry)
        lines << entry.key() + u'\t' + entry.value();
    lines.sort(); // so that nothing is written where nothing changed
    const QString text = lines.join(u"\r\n"_s);
    if (!text.isEmpty() || store.value(kindImportation, target.name, keptName).isValid())
        store.put(kindImportation, target.name, keptName, text);
}

} // namespace app
