#include "app/ui/EditorWait.h"

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace app {

using namespace Qt::StringLiterals;

namespace {

/// Work that ends sooner is not worth a window.
constexpr int patienceMilliseconds = 400;
constexpr int usualWidth = 420;

class WaitDialog : public QDialog {
public:
    WaitDialog(platform::TaskRunner& runner, const QString& title) : QDialog(QApplication::activeWindow())
    {
        setObjectName(u"attente"_s);
        setWindowTitle(title);
        setModal(true);
        auto* layout = new QVBoxLayout(this);
        auto* text = new QLabel(title, this);
        text->setTextFormat(Qt::PlainText);
        auto* bar = new QProgressBar(this);
        bar->setObjectName(u"avance"_s);
        bar->setAccessibleName(title);
        bar->setRange(0, 0);
        m_stop = new QPushButton(u"&Arrêter"_s, this);
        m_stop->setObjectName(u"arreter"_s);
        layout->addWidget(text);
        layout->addWidget(bar);
        layout->addWidget(m_stop, 0, Qt::AlignRight);
        setMinimumWidth(usualWidth);
        connect(m_stop, &QPushButton::clicked, this, &WaitDialog::reject);
        connect(this, &QDialog::rejected, &runner, &platform::TaskRunner::cancel);
        connect(&runner, &platform::TaskRunner::step, this, [text, bar](const QString& step, int percent) {
            text->setText(step);
            bar->setRange(0, percent < 0 ? 0 : 100);
            bar->setValue(percent);
        });
    }
    /// The wish is passed on; the window stays until the work has ended.
    void reject() override
    {
        m_stop->setEnabled(false);
        Q_EMIT rejected();
    }

private:
    QPushButton* m_stop;
};

} // namespace

void runBeside(platform::TaskRunner& runner, const QString& title,
               const std::function<void(platform::Progression&)>& work)
{
    std::exception_ptr failure;
    WaitDialog dialog(runner, title);
    QEventLoop loop;
    // Not at the end of the work itself: another task may follow at once.
    QObject::connect(&runner, &platform::TaskRunner::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(patienceMilliseconds, &loop, &QEventLoop::quit);
    runner.start({work, [&failure](std::exception_ptr thrown) { failure = thrown; }, [] {}, title});
    // What is typed or clicked before the window shows is not lost: it comes afterwards.
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (runner.isRunning()) {
        dialog.show();
        loop.exec();
    }
    if (failure)
        std::rethrow_exception(failure);
}

void waitUntilIdle(platform::TaskRunner& runner)
{
    if (!runner.isRunning())
        return;
    QEventLoop loop;
    QObject::connect(&runner, &platform::TaskRunner::finished, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

platform::Answer IdleDialogues::ask(const platform::Message& message)
{
    return idle(m_next.ask(message));
}

std::optional<QString> IdleDialogues::input(const QString& title, const QString& prompt, const QString& byDefault)
{
    return idle(m_next.input(title, prompt, byDefault));
}

std::optional<QList<int>> IdleDialogues::choose(const platform::Choice& choice)
{
    return idle(m_next.choose(choice));
}

QString IdleDialogues::openFile(const QString& title, const QString& filter, const QString& folder)
{
    return idle(m_next.openFile(title, filter, folder));
}

QStringList IdleDialogues::openFiles(const QString& title, const QString& filter, const QString& folder)
{
    return idle(m_next.openFiles(title, filter, folder));
}

QString IdleDialogues::saveFile(const QString& title, const QString& filter, const QString& proposal)
{
    return idle(m_next.saveFile(title, filter, proposal));
}

QString IdleDialogues::chooseFolder(const QString& title, const QString& folder)
{
    return idle(m_next.chooseFolder(title, folder));
}

} // namespace app
