#include "reference/ui/ReferenceWorld.h"

#include "data/Cancellable.h"
#include "jet/Cancelled.h"
#include "platform/ui/TaskRunner.h"

#include <QEventLoop>
#include <QLoggingCategory>

namespace reference {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(worldLog, "herbora.reference.ui")


} // namespace

bool ReferenceWorld::isAway() const
{
    return runner && runner->isRunning();
}

void ReferenceWorld::whenHere(QObject* owner, const std::function<void()>& work) const
{
    if (!isAway())
        return work();
    auto* waiting = new QObject(owner);
    QObject::connect(runner, &platform::TaskRunner::finished, waiting, [waiting, work] {
        waiting->deleteLater();
        work();
    });
}

void ReferenceWorld::waitHere() const
{
    if (!isAway())
        return;
    QEventLoop loop;
    QObject::connect(runner, &platform::TaskRunner::finished, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

void ReferenceWorld::workLong(const QString& title, const std::function<void()>& work)
{
    try {
        beside(title, [this, &work](platform::Progression& progression) {
            const data::Cancellable cancellable(database, progression);
            work();
        });
    } catch (const jet::Error& error) {
        qCWarning(worldLog).noquote() << title << error.number() << error.description();
        if (error.number() != jet::cancelledError)
            dialogues.tell(error.description(), title, platform::BoxIcon::Stop);
    }
}

} // namespace reference
