// A map in a window, with a mouse.
#pragma once

#include "map/ui/Cartographie.h"
#include "support/Project.h"

#include <QSignalSpy>
#include <QTest>

namespace support {

/// Strokes as a user makes them: pressed, moved in steps, let go.
inline void stroke(QWidget& widget, const QList<QPoint>& way, Qt::KeyboardModifiers keys = {},
                   Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mousePress(&widget, button, keys, way.first());
    for (const QPoint& at : way) {
        QMouseEvent move(QEvent::MouseMove, at, widget.mapToGlobal(at), Qt::NoButton, button, keys);
        QCoreApplication::sendEvent(&widget, &move);
    }
    QTest::mouseRelease(&widget, button, keys, way.last());
}

inline void wheel(QWidget& widget, QPointF at, int steps)
{
    QWheelEvent event(at, widget.mapToGlobal(at), {}, QPoint(0, 120 * steps), Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace support
