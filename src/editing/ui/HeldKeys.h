// What is typed while the database is away.
#pragma once

#include <QObject>
#include <memory>
#include <vector>

class QKeyEvent;
class QWidget;

namespace editing {

/// While a window cannot take what is typed, because the project is for a moment another thread's, its keys are kept
/// and come afterwards, in their order; clicks go nowhere. So nothing that flows from the hand is lost or does harm.
class HeldKeys : public QObject {
    Q_OBJECT
public:
    explicit HeldKeys(QWidget& window);
    ~HeldKeys() override;

    void hold(bool hold);
    bool isHolding() const { return m_holding; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool concerns(const QObject* watched) const;
    void play();
    bool runShortcut(const QKeyEvent& key);

    QWidget& m_window;
    std::vector<std::unique_ptr<QEvent>> m_kept;
    bool m_holding = false;
};

} // namespace editing
