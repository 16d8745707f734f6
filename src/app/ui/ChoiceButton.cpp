#include "app/ui/ChoiceButton.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

namespace app {

namespace {

constexpr int margin = 8;
constexpr int gap = 10;

} // namespace

ChoiceButton::ChoiceButton(const QIcon& icon, const QString& title, const QString& description, QWidget* parent)
    : QAbstractButton(parent), m_description(description)
{
    const int side = qMax(24, int(fontMetrics().height() * 1.5));
    setIcon(icon);
    setIconSize({side, side});
    setText(title);
    setAccessibleName(title);
    setAccessibleDescription(description);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ChoiceButton::setDescription(const QString& description)
{
    m_description = description;
    setAccessibleDescription(description);
    updateGeometry();
    update();
}

QFont ChoiceButton::titleFont() const
{
    QFont bold = font();
    bold.setBold(true);
    return bold;
}

int ChoiceButton::textLeft() const
{
    return margin + iconSize().width() + gap;
}

QSize ChoiceButton::sizeHint() const
{
    const QFontMetrics title(titleFont());
    const int width = qMax(title.horizontalAdvance(text()), fontMetrics().horizontalAdvance(m_description));
    const int height = title.height() + (m_description.isEmpty() ? 0 : fontMetrics().height());
    return {textLeft() + width + margin, qMax(iconSize().height(), height) + 2 * margin - 2};
}

void ChoiceButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    if (isEnabled() && (isDown() || underMouse())) {
        QColor tint = palette().color(QPalette::Highlight);
        tint.setAlpha(isDown() ? 70 : 35);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(tint);
        painter.drawRoundedRect(rect(), 4, 4);
    }
    const QRect picture(QPoint(margin, (height() - iconSize().height()) / 2), iconSize());
    icon().paint(&painter, picture, Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled);

    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const QFontMetrics title(titleFont());
    const int texts = title.height() + (m_description.isEmpty() ? 0 : fontMetrics().height());
    QRect line(textLeft(), (height() - texts) / 2, width() - textLeft() - margin, title.height());
    painter.setFont(titleFont());
    painter.setPen(palette().color(group, QPalette::Text));
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, title.elidedText(text(), Qt::ElideMiddle, line.width()));
    if (!m_description.isEmpty()) {
        line.translate(0, title.height());
        painter.setFont(font());
        painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                         fontMetrics().elidedText(m_description, m_description.contains(u'/') ? Qt::ElideMiddle : Qt::ElideRight,
                                                  line.width()));
    }
    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        focus.rect = rect().adjusted(1, 1, -1, -1);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
    }
}

void ChoiceButton::enterEvent(QEnterEvent* event)
{
    update();
    QAbstractButton::enterEvent(event);
}

void ChoiceButton::leaveEvent(QEvent* event)
{
    update();
    QAbstractButton::leaveEvent(event);
}

} // namespace app
