#include "editing/ui/FieldControl.h"

#include "editing/ui/Liens.h"
#include "editing/ui/Listes.h"
#include "editing/ui/ReferencePicker.h"
#include "editing/ui/UserText.h"

#include <utility>

namespace editing {

using namespace Qt::StringLiterals;

FieldControl::FieldControl(Cl_Edition& parent, const ControlWorld& world, QWidget* owner)
    : QWidget(owner), m_world(world), m_field(&parent)
{
    setObjectName(parent.champ());
}

void FieldControl::setClParent(Cl_Edition* field)
{
    m_field = field;
    Refresh(); // without a field too: its parts let go of it
}

void FieldControl::watch(QWidget* editor)
{
    editor->setObjectName(u"editeur-"_s + m_field->champ());
    editor->setAccessibleName(m_field->Caption());
    editor->setAccessibleDescription(m_field->TextHelp());
    editor->installEventFilter(this);
    setFocusProxy(editor);
}

void FieldControl::shade(QWidget* editor, bool readOnly)
{
    QPalette palette;
    if (readOnly)
        palette.setColor(QPalette::Base, editor->palette().color(QPalette::Window));
    editor->setPalette(palette);
}

bool FieldControl::handleKey(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        finish();
        if (event->modifiers() & Qt::ShiftModifier)
            Q_EMIT previousWanted();
        else
            Q_EMIT nextWanted();
        return true;
    case Qt::Key_F2:
        openList();
        return true;
    case Qt::Key_Escape:
        if (!m_field || (m_field->value() == m_before && m_field->Changed() == m_changedBefore))
            return false; // nothing to give back: the window may use the key
        restore();
        return true;
    default:
        return false;
    }
}

bool FieldControl::eventFilter(QObject* watched, QEvent* event)
{
    if (m_field && event->type() == QEvent::KeyPress) {
        if (handleKey(static_cast<QKeyEvent*>(event)))
            return true;
    } else if (m_field && event->type() == QEvent::FocusIn) {
        if (!std::exchange(m_inside, true)) {
            m_before = m_field->value();
            m_changedBefore = m_field->Changed();
            Q_EMIT entered();
        }
    } else if (m_field && event->type() == QEvent::FocusOut) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        // A list that hangs below, or another window for a while, does not end the typing.
        if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason) {
            m_inside = false;
            finish();
        }
    }
    return QWidget::eventFilter(watched, event);
}

void FieldControl::edit(const QVariant& value)
{
    if (!m_field)
        return;
    const QVariant before = m_field->value();
    const QString error = m_field->TextError();
    if (m_world.take)
        m_world.take(*m_field, value);
    if (m_field->value() == before && m_field->value().isValid() == before.isValid() && m_field->TextError() == error)
        return;
    if (m_field->report(u"CHANGE"_s) && m_world.take) {
        m_world.take(*m_field, before);
        Refresh();
        return;
    }
    Q_EMIT Edited();
}

void FieldControl::setValue(const QVariant& value)
{
    edit(value);
    Refresh();
}

void FieldControl::restore()
{
    if (!m_field || m_field->Locked())
        return;
    if (m_world.take)
        m_world.take(*m_field, m_before);
    m_field->ChpEdition()->Changed = m_changedBefore;
    Refresh();
    Q_EMIT Edited();
}

FieldControl* createControl(const QString& className, Cl_Edition& field, const ControlWorld& world, QWidget* owner,
                            bool compact)
{
    if (className == u"Phylar.Listes")
        return new Listes(field, world, owner, compact);
    if (className == u"Phylar.Botaniste" || className == u"Phylar.Localités" || className == u"Phylar.Taxons")
        return new ReferencePicker(field, world, owner);
    if (className == u"Phylar.Liens")
        return new Liens(field, world, owner);
    return new UserText(field, world, owner, compact);
}

} // namespace editing
