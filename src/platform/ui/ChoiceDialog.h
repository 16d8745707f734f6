// A list to choose one or several items from.
#pragma once

#include "platform/Dialogues.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QTreeWidget>

namespace platform {

/// Ok is enabled once something is chosen; a double click chooses and closes.
class ChoiceDialog : public QDialog {
    Q_OBJECT
public:
    explicit ChoiceDialog(const Choice& choice, QWidget* parent = nullptr);
    QList<int> chosen() const; ///< Positions, ascending.

private:
    void fill(const Choice& choice);

    QTreeWidget* m_list;
    QDialogButtonBox* m_buttons;
};

} // namespace platform
