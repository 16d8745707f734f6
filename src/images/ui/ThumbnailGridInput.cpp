// Mouse, keys and selection of the thumbnails.
#include "images/ui/ThumbnailGrid.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

namespace images {

void ThumbnailGrid::setSelection(const QSet<qint32>& ids)
{
    if (ids == m_selected)
        return;
    m_selected = ids;
    viewport()->update();
}

void ThumbnailGrid::setCurrent(qsizetype position)
{
    m_current = m_anchor = position;
    if (position >= m_first && position < m_first + m_count) {
        const QRect box = cell(position);
        QScrollBar& bar = *verticalScrollBar();
        if (box.top() < 0)
            bar.setValue(bar.value() + box.top());
        else if (box.bottom() >= viewport()->height())
            bar.setValue(bar.value() + box.bottom() + 1 - viewport()->height());
    }
    const bool known = m_source && position >= 0 && position < m_source->count();
    setAccessibleDescription(known ? m_source->name(position) : QString()); // what a reader says
    viewport()->update();
    Q_EMIT currentChanged();
}

/// Everything from the anchor to the position.
void ThumbnailGrid::selectTo(qsizetype position, bool keep)
{
    if (!keep)
        m_selected.clear();
    const qsizetype from = m_anchor < 0 ? position : m_anchor;
    for (qsizetype at = std::min(from, position); at <= std::max(from, position); ++at)
        m_selected.insert(m_source->id(at));
}

void ThumbnailGrid::toggle(qsizetype position)
{
    const qint32 id = m_source->id(position);
    if (!m_selected.remove(id))
        m_selected.insert(id);
}

void ThumbnailGrid::mousePressEvent(QMouseEvent* event)
{
    const qsizetype position = positionAt(event->position().toPoint());
    const bool adds = event->modifiers().testFlag(Qt::ControlModifier);
    const bool extends = event->modifiers().testFlag(Qt::ShiftModifier);
    if (position < 0) {
        if (!adds && !extends && !m_selected.isEmpty()) {
            setSelection({});
            Q_EMIT selectionChanged();
        }
        return;
    }
    // The right button opens a menu on what is selected.
    if (event->button() == Qt::RightButton && m_selected.contains(m_source->id(position)))
        return;
    const qsizetype anchor = m_anchor;
    if (extends) {
        selectTo(position, adds);
    } else if (adds) {
        toggle(position);
    } else {
        m_selected = {m_source->id(position)};
    }
    setCurrent(position);
    if (extends && anchor >= 0)
        m_anchor = anchor;
    Q_EMIT selectionChanged();
}

void ThumbnailGrid::mouseDoubleClickEvent(QMouseEvent* event)
{
    const qsizetype position = positionAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && position >= 0)
        Q_EMIT activated(m_source->id(position));
}

/// Where a key leads to; false for one that moves nothing.
bool ThumbnailGrid::step(int key, qsizetype& to) const
{
    const qsizetype screen = columns() * qsizetype(std::max(1, viewport()->height() / cellSize().height()));
    switch (key) {
    case Qt::Key_Left: to -= 1; break;
    case Qt::Key_Right: to += 1; break;
    case Qt::Key_Up: to -= columns(); break;
    case Qt::Key_Down: to += columns(); break;
    case Qt::Key_PageUp: to -= screen; break;
    case Qt::Key_PageDown: to += screen; break;
    case Qt::Key_Home: to = m_first; break;
    case Qt::Key_End: to = m_first + m_count - 1; break;
    default: return false;
    }
    return true;
}

void ThumbnailGrid::moveTo(qsizetype position, Qt::KeyboardModifiers keys)
{
    const qsizetype anchor = m_anchor;
    const QSet<qint32> before = m_selected;
    if (keys.testFlag(Qt::ShiftModifier))
        selectTo(position, false);
    else if (!keys.testFlag(Qt::ControlModifier))
        m_selected = {m_source->id(position)};
    setCurrent(position);
    if (keys.testFlag(Qt::ShiftModifier) && anchor >= 0)
        m_anchor = anchor;
    if (m_selected != before)
        Q_EMIT selectionChanged();
}

void ThumbnailGrid::keyPressEvent(QKeyEvent* event)
{
    if (!m_source || m_count == 0)
        return event->ignore();
    const bool onPage = m_current >= m_first && m_current < m_first + m_count;
    qsizetype to = onPage ? m_current : m_first;
    if (step(event->key(), to)) {
        const qsizetype last = m_first + m_count - 1;
        const bool leaves = to < m_first || to > last;
        if (leaves && (m_current == m_first || m_current == last) && onPage
            && (event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown))
            Q_EMIT pageWanted(to < m_first ? -1 : 1);
        else
            moveTo(onPage ? std::clamp(to, m_first, last) : m_first, event->modifiers());
    } else if (event->key() == Qt::Key_Space && onPage) {
        if (event->modifiers().testFlag(Qt::ControlModifier))
            toggle(m_current);
        else
            m_selected = {m_source->id(m_current)};
        viewport()->update();
        Q_EMIT selectionChanged();
    } else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && onPage) {
        Q_EMIT activated(m_source->id(m_current));
    } else {
        event->ignore();
    }
}

void ThumbnailGrid::focusInEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

void ThumbnailGrid::focusOutEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

} // namespace images
