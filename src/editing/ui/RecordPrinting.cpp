#include "editing/ui/RecordPrinting.h"

#include "data/FieldType.h"

namespace editing {

using namespace Qt::StringLiterals;

namespace {

/// A link is shown by what it leads to, as in the form.
QString printedValue(const IndividualEditing& editing, Cl_Edition& field)
{
    if (field.ctype() != data::LienCourant)
        return field.TextValue();
    const QString prefix = u"ID "_s; // of the column; the rest of it names the module
    const QString module = field.champ().startsWith(prefix) ? field.champ().mid(prefix.size()) : field.NomModule();
    QStringList links;
    for (const QString& id : field.SelectedItems()) {
        const QString says = editing.describe(module, id.toInt());
        links << u"N° "_s + id + (says.isEmpty() ? QString() : u" : "_s + says);
    }
    return links.join(u'\n');
}

} // namespace

platform::PrintTable individualTable(IndividualEditing& editing)
{
    QList<EditedRecord*> records = editing.saved();
    if (EditedRecord* root = editing.individual(); root && !records.contains(root))
        records.prepend(root);
    QList<platform::PrintRecord> printed;
    for (EditedRecord* record : std::as_const(records)) {
        platform::PrintRecord sheet{editing.name(*record), {}};
        for (const auto& field : editing.form(*record)) {
            if (field->value().isValid())
                sheet.fields.append({field->Caption(), printedValue(editing, *field)});
        }
        printed << sheet;
    }
    return platform::recordTable(printed.isEmpty() ? QString() : printed.first().title, printed);
}

} // namespace editing
