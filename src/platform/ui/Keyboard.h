// Ways of the focus that Qt does not go by itself.
#pragma once

#include <QList>

class QToolBar;
class QWidget;

namespace platform {

/// Who gives `whole` the focus gives it to `part`. Not a focus proxy: from one of those Tab goes on behind `part`, so that
/// what stands before it in `whole` is never reached.
void forwardFocus(QWidget& whole, QWidget& part);
/// The buttons of a bar whose commands stand in no menu are reached by Tab.
void reachByTab(QToolBar& bar);
/// Tab goes from each to the next.
void tabAlong(const QList<QWidget*>& widgets);
/// Shift+F10 opens the menu of what is current, as the menu key does; to be called once.
void openMenusByShiftF10();

} // namespace platform
