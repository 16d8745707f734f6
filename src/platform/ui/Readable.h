// Colours that can be read in light and dark palettes.
#pragma once

#include <QPalette>
#include <QProxyStyle>
#include <functional>

namespace platform {

/// What text needs against what it stands on.
constexpr double leastContrast = 4.5;

/// How much lighter one colour is than the other: 1 to 21. Colours that are half transparent count as they show on
/// the other.
double contrast(const QColor& text, const QColor& ground);
/// `color`, moved as far towards `text` as it takes to be read on each of the grounds.
QColor readable(const QColor& color, const QColor& text, const QList<QColor>& grounds);
/// The palette with hints, links and grey texts that can be read on its windows, lists and their alternate rows.
QPalette readable(const QPalette& palette);

/// Draws the edge of boxes to tick in a colour that is seen on dark grounds too.
class ReadableStyle : public QProxyStyle {
    Q_OBJECT
public:
    using QProxyStyle::QProxyStyle;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

/// Makes the colours of the program readable and keeps them so when the desktop changes its own; `changed` is called
/// now and then for what else follows the colours.
void keepReadable(std::function<void()> changed);

} // namespace platform
