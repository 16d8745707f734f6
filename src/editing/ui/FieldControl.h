// What every editing control is.
#pragma once

#include "editing/FieldInput.h"
#include "editing/ReferenceSearch.h"
#include "platform/Dialogues.h"

#include <QKeyEvent>
#include <QWidget>

namespace editing {

class DescriptorLists;
class ReferenceChooser;

/// What controls work with. What is empty or null is done without.
struct ControlWorld {
    /// Takes what the user typed or chose into the field.
    std::function<void(Cl_Edition&, const QVariant&)> take;
    const ReferenceSearch* search = nullptr; ///< Completes names.
    ReferenceChooser* chooser = nullptr;     ///< Opens the trees and lists behind the names.
    DescriptorLists* lists = nullptr;        ///< Changes vocabularies.
    platform::Dialogues* dialogues = nullptr;
    /// In a few words, what a record holds that a link may lead to.
    std::function<QString(const QString& module, qint32 id)> described;
    /// Takes the files chosen for a picture field, where that may be several.
    std::function<void(Cl_Edition&, const QStringList&)> takeFiles;
    /// A vocabulary changed, and with it perhaps records.
    std::function<void()> listChanged;
};

/// Shows one field and lets the user change it. `Edited` is told for the user's own edits alone, after the field has
/// the value. Return asks for the next field, Shift+Return for the one before, Escape gives back the value that the
/// field had when it got the focus, F2 opens the list where there is one.
class FieldControl : public QWidget {
    Q_OBJECT
public:
    FieldControl(Cl_Edition& parent, const ControlWorld& world, QWidget* owner);

    Cl_Edition* ClParent() const { return m_field; }
    /// Null lets go of the field: the control is about to be thrown away.
    void setClParent(Cl_Edition* field);
    virtual void Refresh() = 0; ///< Shows the value of the field.
    virtual void setReadOnly(bool readOnly) = 0;
    virtual void openList() {}
    /// The widget that has the focus, for labels and assistive tools.
    virtual QWidget* editor() const = 0;
    /// Takes over what is still being typed, as when the focus leaves.
    virtual void finish() {}
    void setValue(const QVariant& value); ///< As chosen by the user.
    void restore(); ///< The value that the field had when it got the focus.

Q_SIGNALS:
    void Edited();
    void entered(); ///< The focus came.
    void nextWanted();
    void previousWanted();

protected:
    /// The look of what can only be read.
    static void shade(QWidget* editor, bool readOnly);
    /// Sets a widget up as the one that is typed into.
    void watch(QWidget* editor);
    /// Acts on a key of the editor; true when it is used up.
    virtual bool handleKey(QKeyEvent* event);
    bool eventFilter(QObject* watched, QEvent* event) override;
    const ControlWorld& world() const { return m_world; }
    /// Takes a value over and tells.
    void edit(const QVariant& value);

private:
    const ControlWorld& m_world;
    Cl_Edition* m_field;
    QVariant m_before; ///< Value when the focus came.
    bool m_changedBefore = false;
    bool m_inside = false; ///< The focus came and has not gone to another field since.
};

/// Makes the control of a class ("Phylar.UserText" …); `compact` keeps lists to one line.
FieldControl* createControl(const QString& className, Cl_Edition& field, const ControlWorld& world, QWidget* owner,
                            bool compact);

} // namespace editing
