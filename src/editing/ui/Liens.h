// A record of the same individual that a field leads to.
#pragma once

#include "editing/ui/FieldControl.h"

#include <QComboBox>

namespace editing {

/// "Phylar.Liens": the records of the linked module that this individual has; choosing one writes the link.
class Liens : public FieldControl {
    Q_OBJECT
public:
    Liens(Cl_Edition& parent, const ControlWorld& world, QWidget* owner);

    void Refresh() override;
    void setReadOnly(bool readOnly) override { m_list->setEnabled(!readOnly); }
    void openList() override { m_list->showPopup(); }
    QWidget* editor() const override { return m_list; }

private:
    QComboBox* m_list;
};

} // namespace editing
