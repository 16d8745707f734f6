#include "editing/ui/HeldKeys.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <utility>

namespace editing {

HeldKeys::HeldKeys(QWidget& window) : QObject(&window), m_window(window) {}

HeldKeys::~HeldKeys() = default;

void HeldKeys::hold(bool hold)
{
    if (m_holding == hold)
        return;
    m_holding = hold;
    if (hold) {
        qApp->installEventFilter(this);
        m_window.setCursor(Qt::BusyCursor);
        return;
    }
    qApp->removeEventFilter(this);
    m_window.unsetCursor();
    play();
}

/// The window's own widgets and its lists; not the questions that are asked above it.
bool HeldKeys::concerns(const QObject* watched) const
{
    if (!watched->isWidgetType() || QApplication::activeModalWidget())
        return false;
    const auto* widget = static_cast<const QWidget*>(watched);
    while (widget && widget != &m_window) {
        // A list of names hangs below the line that it completes, without being its child.
        const bool hangs = widget->isWindow() && !widget->parentWidget();
        widget = hangs ? widget->focusProxy() : widget->parentWidget();
    }
    return widget;
}

bool HeldKeys::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride: // so that the key comes as a key
        if (!concerns(watched))
            return false;
        event->accept();
        return true;
    case QEvent::KeyPress:
    case QEvent::InputMethod:
        if (!concerns(watched))
            return false;
        m_kept.emplace_back(event->clone());
        return true;
    case QEvent::KeyRelease:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::Drop:
        return concerns(watched);
    case QEvent::Close:
        if (watched != &m_window)
            return false;
        event->ignore();
        return true;
    default:
        return false;
    }
}

void HeldKeys::play()
{
    // A key may make the window hold again: the rest stays, before what comes then.
    std::vector<std::unique_ptr<QEvent>> kept = std::exchange(m_kept, {});
    size_t played = 0;
    for (; played < kept.size() && !m_holding; ++played) {
        QEvent& event = *kept[played];
        if (event.type() == QEvent::KeyPress && runShortcut(static_cast<QKeyEvent&>(event)))
            continue;
        QWidget* popup = QApplication::activePopupWidget();
        QWidget* target = popup ? popup : m_window.focusWidget() ? m_window.focusWidget() : &m_window;
        QApplication::sendEvent(target, &event);
    }
    m_kept.insert(m_kept.begin(), std::make_move_iterator(kept.begin() + std::ptrdiff_t(played)),
                  std::make_move_iterator(kept.end()));
}

bool HeldKeys::runShortcut(const QKeyEvent& key)
{
    const QKeySequence sequence(key.keyCombination());
    const QList<QAction*> actions = m_window.findChildren<QAction*>();
    for (QAction* action : actions) {
        if (!action->shortcuts().contains(sequence))
            continue;
        if (action->isEnabled())
            action->trigger();
        return true;
    }
    return false;
}

} // namespace editing
