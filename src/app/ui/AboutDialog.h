// The name and the version of the program.
#pragma once

#include <QDialog>

namespace app {

class AboutDialog : public QDialog {
    Q_OBJECT
public:
    explicit AboutDialog(const QString& version, QWidget* parent = nullptr);
};

} // namespace app
