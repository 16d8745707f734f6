// The report of the conversion of an old Access file, to be read and kept.
#pragma once

#include "platform/Dialogues.h"

#include <QDialog>

namespace app {

/// A plain text with buttons to save and to copy it. Deletes itself.
class AccessReportDialog : public QDialog {
    Q_OBJECT
public:
    AccessReportDialog(const QString& report, platform::Dialogues& dialogues, QWidget* parent);

private:
    void save();

    QString m_report;
    platform::Dialogues& m_dialogues;
};

} // namespace app
