// The sizes of dialogs, from one opening to the next.
#pragma once

#include <QObject>

class QDialog;

namespace app {

class WindowState;

/// Gives the larger dialogs the size in which the user left them. Their place is not kept: they open over the window that
/// they belong to. Small ones fit what they ask.
class SizeKeeper : public QObject {
public:
    SizeKeeper(WindowState& state, QObject* parent);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    WindowState& m_state;
};

} // namespace app
