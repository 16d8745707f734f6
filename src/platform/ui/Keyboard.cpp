#include "platform/ui/Keyboard.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QPointer>
#include <QToolBar>
#include <QToolButton>

namespace platform {

namespace {

class Forwarder : public QObject {
public:
    Forwarder(QWidget& whole, QWidget& part) : QObject(&whole), m_part(&part) { whole.installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::FocusIn && m_part)
            m_part->setFocus(static_cast<QFocusEvent*>(event)->reason());
        return false;
    }

private:
    QPointer<QWidget> m_part;
};

/// QWidget::setTabOrder passes over what does not take the focus itself, such as the container of fields.
class TakesFocus {
public:
    explicit TakesFocus(const QList<QWidget*>& widgets)
    {
        for (QWidget* widget : widgets) {
            for (QWidget* at = widget; at; at = at->focusProxy())
                m_before.prepend({at, at->focusPolicy()});
        }
        for (QWidget* widget : widgets) {
            if (widget->focusPolicy() == Qt::NoFocus)
                widget->setFocusPolicy(Qt::TabFocus);
        }
    }
    ~TakesFocus()
    {
        // Containers before their proxies, which they change with them.
        for (auto at = m_before.rbegin(); at != m_before.rend(); ++at)
            at->first->setFocusPolicy(at->second);
    }
    Q_DISABLE_COPY_MOVE(TakesFocus)

private:
    QList<std::pair<QWidget*, Qt::FocusPolicy>> m_before;
};

class MenuKey : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        auto* widget = qobject_cast<QWidget*>(watched);
        if (!widget || event->type() != QEvent::KeyPress
            || static_cast<QKeyEvent*>(event)->keyCombination() != (Qt::ShiftModifier | Qt::Key_F10))
            return false;
        const QPoint at = widget->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, at, widget->mapToGlobal(at));
        return QCoreApplication::sendEvent(widget, &menu) && menu.isAccepted();
    }
};

} // namespace

void forwardFocus(QWidget& whole, QWidget& part)
{
    new Forwarder(whole, part);
}

void reachByTab(QToolBar& bar)
{
    const QList<QToolButton*> buttons = bar.findChildren<QToolButton*>(Qt::FindDirectChildrenOnly);
    for (QToolButton* button : buttons) {
        if (button->defaultAction())
            button->setFocusPolicy(Qt::TabFocus);
    }
}

void tabAlong(const QList<QWidget*>& widgets)
{
    const TakesFocus all(widgets);
    for (qsizetype i = 1; i < widgets.size(); ++i) {
        QWidget* before = widgets[i - 1];
        // Qt 6.4 does nothing where `before` is the last of the window, so it is not asked to at once.
        if (QWidget* other = before->previousInFocusChain(); other != widgets[i])
            QWidget::setTabOrder(other, widgets[i]);
        QWidget::setTabOrder(before, widgets[i]);
    }
}

void openMenusByShiftF10()
{
    qApp->installEventFilter(new MenuKey(qApp));
}

} // namespace platform
