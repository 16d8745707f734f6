// The list control: values out of the vocabulary of a field.
#pragma once

#include "editing/ui/DescriptorPanel.h"
#include "editing/ui/EntryLine.h"

#include <QToolButton>

class QCompleter;
class QStringListModel;

namespace editing {

/// "Phylar.Listes": check marks for several items; one line with a list below it for a single one, and for several
/// where there is little room. F2 opens that list, Space checks, Return closes it.
class Listes : public FieldControl {
    Q_OBJECT
public:
    Listes(Cl_Edition& parent, const ControlWorld& world, QWidget* owner, bool compact = false);

    void Refresh() override;
    void setReadOnly(bool readOnly) override;
    void openList() override;
    QWidget* editor() const override;
    void finish() override;
    DescriptorPanel& panel() { return *m_panel; }

protected:
    bool handleKey(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void makeLine();
    void makePopup();
    void fitInline();
    void takeFromPanel();

    bool m_multiple;
    bool m_readOnly = false;
    EntryLine* m_line = nullptr;
    QToolButton* m_open = nullptr;
    QCompleter* m_completer = nullptr;
    QStringListModel* m_items = nullptr;
    QFrame* m_popup = nullptr;
    DescriptorPanel* m_panel = nullptr;
};

} // namespace editing
