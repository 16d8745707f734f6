// The vocabulary of a list field, opened from the structure editor.
#pragma once

#ifndef Q_MOC_RUN // which reads plain letters only
#include "app/structure/StructureEditing.h"
#include "editing/DescriptorLists.h"
#include "editing/ui/DescriptorPanel.h"
#endif

#include <QDialog>
#include <QTemporaryDir>

namespace app {

class Session;

/// The list editor. The vocabulary of a field that is saved is that of the project: each change is made there at once, with
/// the records that use it. That of a field which is not saved yet is kept in a file of its own for the time being, and
/// goes into the draft.
class DescriptorWindow : public QDialog {
    Q_OBJECT
public:
    DescriptorWindow(StructureEditing& editing, Session& session, int field, QWidget* parent = nullptr);
    ~DescriptorWindow() override;

    editing::DescriptorPanel& panel() { return *m_panel; }
    /// Whether records are concerned.
    bool isStored() const { return !m_scratch; }

    void done(int result) override;

private:
    struct Scratch;
    class Lists;
    editing::ListField listField() const;

    StructureEditing& m_editing;
    Session& m_session;
    int m_id;
    std::unique_ptr<Scratch> m_scratch; ///< Null for a saved field.
    std::unique_ptr<editing::DescriptorLists> m_lists;
    std::unique_ptr<editing::Cl_Edition> m_field;
    editing::ControlWorld m_world;
    editing::DescriptorPanel* m_panel;
};

/// Whether the vocabulary of the field is one of the project.
bool hasStoredVocabulary(const StructureEditing& editing, int field);

} // namespace app
