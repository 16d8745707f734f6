// Records that are not there, for trying a form whose fields are still being edited.
#pragma once

#include "app/structure/StructureDraft.h"
#include "editing/Cl_Edition.h"

namespace app {

/// Gives the fields and vocabularies of a draft; no record is ever found, nothing is written.
class TrialRecords : public editing::RecordSource {
public:
    explicit TrialRecords(const StructureDraft& draft) : m_draft(draft) {}

    QVariantMap record(const QString&, qint32) override { return {}; }
    QStringList descriptors(const QString& module, const QString& column) override;
    bool setDescriptors(const QString&, const QString&, const QStringList&) override { return false; }
    addin::TabEditions fields(const QString& module) override;
    QString label(const QString& module) const override;

private:
    const StructureDraft& m_draft;
};

/// The fields of a form in the groups in which they are asked for together: one that is linked to the field before it
/// (`Interface`) stands in its group.
QList<QList<DraftField>> inputGroups(const DraftModule& module);

} // namespace app
