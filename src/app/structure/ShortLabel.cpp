#include "app/structure/ShortLabel.h"

#include "data/FieldType.h"
#include "editing/ProjectRecords.h"
#include "jet/Recordset.h"

namespace app {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longest = 200;

/// Calls `replaced` for each name in brackets; what it gives stands in its place with the brackets gone.
QString eachName(const QString& label, const std::function<QString(const QString& name)>& replaced)
{
    QString result;
    qsizetype at = 0;
    for (;;) {
        const qsizetype open = label.indexOf(u'[', at);
        const qsizetype close = open < 0 ? -1 : label.indexOf(u']', open);
        if (close < 0)
            return result + label.mid(at);
        result += label.mid(at, open - at) + replaced(label.mid(open + 1, close - open - 1));
        at = close + 1;
    }
}

} // namespace

QString filledLabel(const QString& label, const ExampleValues& values)
{
    return eachName(label, [&](const QString& name) {
        const auto value = values.constFind(jet::nameKey(name.trimmed()));
        return value == values.constEnd() ? u'[' + name + u']' : *value;
    });
}

QString renamedInLabel(const QString& label, const QString& from, const QString& to)
{
    return eachName(label, [&](const QString& name) {
        return u'[' + (jet::sameName(name.trimmed(), from) ? to : name) + u']';
    });
}

ExampleValues exampleValues(jet::Database& database, const DraftModule& module, const editing::EditingContext& context)
{
    ExampleValues values;
    const jet::TableDef* table = module.origin.isEmpty() ? nullptr : database.schema().table(module.origin);
    if (!table)
        return values;
    // The table in the order of its key: nothing is sorted, whatever its size.
    const auto rows = database.OpenRecordset(module.origin, jet::RecordsetType::Table);
    if (table->index(u"PrimaryKey"))
        rows->SetIndex(u"PrimaryKey"_s);
    if (rows->EOF_())
        return values;
    for (const DraftField& field : module.fields) {
        if (field.origin.isEmpty() || !table->field(field.origin))
            continue;
        editing::Cl_Edition edition(context);
        edition.setChpEdition(editing::fieldOf(field.record, module.origin));
        // As it stands in the file: a type that is not saved yet may not read it.
        const QVariant value = rows->Value(field.origin);
        edition.ChpEdition()->value = value;
        QString text = edition.TextValue();
        if (text.isEmpty() && value.isValid())
            text = value.toString();
        values.insert(jet::nameKey(field.record.caption), text.left(longest));
    }
    return values;
}

} // namespace app
