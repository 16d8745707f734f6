#include "app/structure/TrialRecords.h"

#include "editing/ProjectRecords.h"
#include "jet/Definitions.h"

namespace app {

QStringList TrialRecords::descriptors(const QString& module, const QString& column)
{
    const DraftModule* known = m_draft.moduleNamed(module);
    if (!known)
        return {};
    for (const DraftField& field : known->fields) {
        if (jet::sameName(field.record.column, column))
            return field.record.descriptors;
    }
    return {};
}

addin::TabEditions TrialRecords::fields(const QString& module)
{
    addin::TabEditions fields;
    if (const DraftModule* known = m_draft.moduleNamed(module)) {
        for (const DraftField& field : known->fields)
            fields << editing::fieldOf(field.record, module);
    }
    return fields;
}

QString TrialRecords::label(const QString& module) const
{
    const DraftModule* known = m_draft.moduleNamed(module);
    return known && !known->record.label.isEmpty() ? known->record.label : module;
}

QList<QList<DraftField>> inputGroups(const DraftModule& module)
{
    QList<QList<DraftField>> groups;
    for (const DraftField& field : module.fields) {
        const bool linked = field.record.flags & data::Interface;
        if (linked && !groups.isEmpty())
            groups.last() << field;
        else
            groups << QList<DraftField>{field};
    }
    return groups;
}

} // namespace app
