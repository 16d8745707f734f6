#include "platform/ui/Keyboard.h"

#include <QEvent>
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

} // namespace platform
