#include "editing/ui/RecordPrinting.h"

namespace editing {

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
                sheet.fields.append({field->Caption(), field->TextValue()});
        }
        printed << sheet;
    }
    return platform::recordTable(printed.isEmpty() ? QString() : printed.first().title, printed);
}

} // namespace editing
