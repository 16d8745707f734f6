#include "platform/ui/ProgressionBar.h"

#include <QHBoxLayout>
#include <QIcon>

namespace platform {

using namespace Qt::StringLiterals;

ProgressionBar::ProgressionBar(QWidget* parent)
    : QWidget(parent), m_text(new QLabel(this)), m_bar(new QProgressBar(this)), m_cancel(new QToolButton(this))
{
    setObjectName(u"progression"_s);
    m_text->setObjectName(u"progressionText"_s);
    m_text->setTextFormat(Qt::PlainText);
    m_bar->setObjectName(u"progressionBar"_s);
    m_bar->setAccessibleName(u"Progression"_s);
    m_bar->setFixedWidth(fontMetrics().averageCharWidth() * 22);
    m_bar->setFormat(u"%p %"_s);
    m_bar->setAlignment(Qt::AlignCenter);
    m_cancel->setObjectName(u"progressionCancel"_s);
    m_cancel->setText(u"Interrompre"_s);
    m_cancel->setAccessibleName(u"Interrompre l'opération en cours"_s);
    m_cancel->setToolTip(u"Interrompre l'opération en cours"_s);
    m_cancel->setIcon(QIcon::fromTheme(u"dialog-cancel"_s));
    m_cancel->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_cancel->setAutoRaise(true);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_text);
    layout->addWidget(m_bar);
    layout->addWidget(m_cancel);
    connect(m_cancel, &QToolButton::clicked, this, [this] {
        m_cancelled = true;
        m_cancel->setEnabled(false);
        Q_EMIT cancelRequested();
    });
    setCancellable(false);
    hide();
}

void ProgressionBar::setCancellable(bool cancellable)
{
    m_cancel->setVisible(cancellable);
    m_cancel->setEnabled(true);
    m_cancelled = false;
}

void ProgressionBar::step(const QString& text, int percent)
{
    m_text->setText(text);
    if (percent < 0) {
        m_bar->setRange(0, 0);
    } else {
        const int before = isHidden() ? 0 : qMax(0, m_bar->value());
        m_bar->setRange(0, 100);
        m_bar->setValue(qMax(before, qMin(percent, 100)));
    }
    show();
}

void ProgressionBar::finish()
{
    hide();
    m_text->clear();
    m_bar->reset();
    setCancellable(false);
}

} // namespace platform
