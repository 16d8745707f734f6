// One form in a dialog: the input wizard, and the forms of reference rows.
#pragma once

#include "editing/FormDialogue.h"
#include "editing/ui/FormPane.h"

#include <QDialog>
#include <QDialogButtonBox>

namespace editing {

class FormDialog : public QDialog {
    Q_OBJECT
public:
    FormDialog(const QString& title, Cl_Editions& form, const ControlWorld& world,
               std::function<bool(Cl_Editions&)> save, QWidget* parent = nullptr);

    FormPane& pane() { return *m_pane; }
    void accept() override; ///< Only when every field is valid and `save` agrees.
    void reject() override; ///< Asks when something was typed.

private:
    FormRow describe(Cl_Edition& field) const;

    Cl_Editions& m_form;
    std::function<bool(Cl_Editions&)> m_save;
    FieldInput m_input;
    platform::Dialogues* m_dialogues;
    FormPane* m_pane;
    QLabel* m_help;
    QDialogButtonBox* m_buttons;
    bool m_typed = false;
};

/// Opens such dialogs over the active window. To be called from the thread of the windows.
class FormWindows : public FormDialogue {
public:
    /// What the controls work with; `database` (may be null) judges widths and rules.
    explicit FormWindows(ControlWorld world, jet::Database* database = nullptr);

    bool edit(const QString& title, Cl_Editions& form, const std::function<bool(Cl_Editions&)>& save) override;

private:
    ControlWorld m_world;
    FieldInput m_input;
};

} // namespace editing
