#include "platform/ui/Readable.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QStyleOption>
#include <algorithm>
#include <cmath>

namespace platform {

using namespace Qt::StringLiterals;

namespace {

constexpr int steps = 20;
/// Edges and the like need less than texts; so much of the text's colour gives 3:1 and more.
constexpr double edgeShare = 0.6;

QColor mixed(const QColor& from, const QColor& to, double share)
{
    const auto part = [share](float a, float b) { return static_cast<float>(a + (b - a) * share); };
    return QColor::fromRgbF(part(from.redF(), to.redF()), part(from.greenF(), to.greenF()),
                            part(from.blueF(), to.blueF()));
}

QColor opaque(const QColor& color, const QColor& ground)
{
    return mixed(ground, color, color.alphaF());
}

double luminance(const QColor& color)
{
    const auto linear = [](double c) { return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

bool isReadable(const QColor& color, const QList<QColor>& grounds)
{
    return std::all_of(grounds.begin(), grounds.end(),
                       [&](const QColor& ground) { return contrast(color, ground) >= leastContrast; });
}

void makeReadable()
{
    const QPalette now = QApplication::palette();
    const QPalette wanted = readable(now);
    if (wanted != now)
        QApplication::setPalette(wanted);
}

class Keeper : public QObject {
public:
    Keeper(std::function<void()> changed, QObject* parent) : QObject(parent), m_changed(std::move(changed)) {}
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) {
            makeReadable();
            m_changed();
        }
        return false;
    }

private:
    std::function<void()> m_changed;
};

} // namespace

double contrast(const QColor& text, const QColor& ground)
{
    const double a = luminance(opaque(text, ground));
    const double b = luminance(ground);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor readable(const QColor& color, const QColor& text, const QList<QColor>& grounds)
{
    if (isReadable(color, grounds))
        return color;
    const QColor start = opaque(color, grounds.value(0));
    for (int step = 0; step < steps; ++step) {
        const QColor tried = mixed(start, text, double(step) / steps);
        if (isReadable(tried, grounds))
            return tried;
    }
    return text;
}

QPalette readable(const QPalette& palette)
{
    QPalette result = palette;
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        const QList<QColor> grounds{palette.color(group, QPalette::Base), palette.color(group, QPalette::AlternateBase),
                                    palette.color(group, QPalette::Window)};
        for (const auto role : {QPalette::PlaceholderText, QPalette::Link, QPalette::LinkVisited}) {
            const QColor color = palette.color(group, role);
            const QColor better = readable(color, palette.color(group, QPalette::Text), grounds);
            if (better != color)
                result.setColor(group, role, better);
        }
    }
    // What cannot be changed is to be read all the same.
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        const QList<QColor> grounds{palette.color(QPalette::Disabled, QPalette::Base),
                                    palette.color(QPalette::Disabled, QPalette::Window),
                                    palette.color(QPalette::Disabled, QPalette::Button)};
        const QColor color = palette.color(QPalette::Disabled, role);
        const QColor better = readable(color, palette.color(QPalette::Active, role), grounds);
        if (better != color)
            result.setColor(QPalette::Disabled, role, better);
    }
    return result;
}

void ReadableStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                  const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element != PE_IndicatorCheckBox && element != PE_IndicatorRadioButton)
        return;
    const bool selected = option->state & State_Selected;
    const QPalette& palette = option->palette;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing, element == PE_IndicatorRadioButton);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(selected ? palette.color(QPalette::HighlightedText)
                             : mixed(palette.color(QPalette::Window), palette.color(QPalette::WindowText), edgeShare));
    const QRectF edge = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (element == PE_IndicatorCheckBox)
        painter->drawRect(edge);
    else
        painter->drawEllipse(edge);
    painter->restore();
}

void keepReadable(std::function<void()> changed)
{
    // Other styles belong to desktops that look after their boxes themselves.
    if (QApplication::style()->name() == u"fusion"_s)
        QApplication::setStyle(new ReadableStyle(u"Fusion"_s));
    makeReadable();
    changed();
    qApp->installEventFilter(new Keeper(std::move(changed), qApp));
}

} // namespace platform
