// The progress of a long operation in a status bar.
#pragma once

#include "platform/Progression.h"

#include <QLabel>
#include <QProgressBar>
#include <QToolButton>
#include <QWidget>

namespace platform {

/// Text, bar and a button to stop. Invisible when nothing runs. Of the thread of the windows; an operation on
/// another thread reports through TaskRunner.
class ProgressionBar : public QWidget, public Progression {
    Q_OBJECT
public:
    explicit ProgressionBar(QWidget* parent = nullptr);

    /// Shows a text; a negative percentage stands for an unknown amount. Never runs backwards within one
    /// operation.
    void step(const QString& text, int percent) override;
    void finish() override;
    bool cancelled() const override { return m_cancelled; }

    void setCancellable(bool cancellable);
    QString text() const { return m_text->text(); }
    int percent() const { return m_bar->maximum() > 0 ? m_bar->value() : -1; }

Q_SIGNALS:
    void cancelRequested();

private:
    QLabel* m_text;
    QProgressBar* m_bar;
    QToolButton* m_cancel;
    bool m_cancelled = false;
};

} // namespace platform
