// Tries the input of a module while its structure is being edited.
#pragma once

#ifndef Q_MOC_RUN // which reads plain letters only
#include "app/structure/StructureEditing.h"
#include "app/structure/TrialRecords.h"
#include "editing/ui/FormPane.h"
#endif

#include <QDialog>
#include <QLabel>

namespace app {

class Session;

/// The form of a new record as it would be now: fields that are linked stand together. Nothing is saved; what was typed
/// stays while the structure changes, as long as its field does.
class TrialWindow : public QDialog {
    Q_OBJECT
public:
    TrialWindow(StructureEditing& editing, Session& session, int module, QWidget* parent = nullptr);
    ~TrialWindow() override;

    int module() const { return m_module; }
    void refresh(); ///< The structure has changed; closes where the module is gone.
    editing::FormPane& pane() { return *m_pane; }
    editing::Cl_Editions& form() { return *m_form; }

private:
    void judge(editing::Cl_Edition& field);
    editing::FormRow describe(editing::Cl_Edition& field) const;
    const DraftField* draftOf(const editing::Cl_Edition& field) const;

    StructureEditing& m_editing;
    Session& m_session;
    int m_module;
    editing::EditingContext m_context;
    editing::ReferenceSearch m_search;
    std::unique_ptr<editing::Cl_Editions> m_form;
    editing::FormPane* m_pane;
    QLabel* m_help;
};

} // namespace app
