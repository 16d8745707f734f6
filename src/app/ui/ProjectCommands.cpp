#include "app/ui/ProjectCommands.h"

#include "app/Session.h"

#include <QFileInfo>

namespace app {

using namespace Qt::StringLiterals;

namespace {

/// Passes steps on, and knows whether there was one: a command that the user declined has none.
class Observed : public platform::Progression {
public:
    explicit Observed(platform::Progression& next) : m_next(next) {}
    void step(const QString& text, int percent) override
    {
        m_begun = true;
        m_next.step(text, percent);
    }
    void finish() override { m_next.finish(); }
    bool cancelled() const override { return m_next.cancelled(); }
    bool begun() const { return m_begun; }

private:
    platform::Progression& m_next;
    bool m_begun = false;
};

} // namespace

ProjectCommands::ProjectCommands(Session& session, platform::TaskRunner& runner,
                                 platform::Dialogues& dialogues, RecentFiles& recent, QObject* parent)
    : QObject(parent), m_session(session), m_runner(runner), m_dialogues(dialogues), m_recent(recent)
{
}

QString ProjectCommands::fileFilter()
{
    return u"Fichiers Herbora (*.hbx)|*.hbx|"_s;
}

void ProjectCommands::open()
{
    const QString folder = m_session.isOpen() ? QFileInfo(m_session.path()).absolutePath() : QString();
    const QString path = m_dialogues.openFile(u"Ouvrir un projet"_s, fileFilter(), folder);
    if (!path.isEmpty())
        openPath(path);
}

void ProjectCommands::openPath(const QString& path)
{
    if (mayChange())
        run(u"Ouverture"_s, [this, path](platform::Progression& progression) {
            return m_session.open(path, progression);
        });
}

void ProjectCommands::create()
{
    QString path = m_dialogues.saveFile(u"Nouveau projet"_s, fileFilter(), u"Nouveau projet.hbx"_s);
    if (path.isEmpty() || !mayChange())
        return;
    if (!path.endsWith(u".hbx"_s, Qt::CaseInsensitive))
        path += u".hbx"_s;
    run(u"Création"_s, [this, path](platform::Progression& progression) {
        return m_session.create(path, progression);
    });
}

void ProjectCommands::optimise()
{
    if (m_session.isOpen() && mayChange() && m_session.confirmOptimise())
        run(u"Optimisation"_s,
            [this](platform::Progression& progression) { return m_session.optimiseConfirmed(progression); });
}

void ProjectCommands::run(const QString& text, std::function<bool(platform::Progression&)> work)
{
    if (m_busy)
        return;
    Q_EMIT projectClosing();
    m_busy = true;
    Q_EMIT busyChanged(true);
    m_runner.cancel(); // a sort or a copy is not worth waiting for
    auto changed = std::make_shared<bool>(false);
    m_runner.start({[work = std::move(work), changed](platform::Progression& progression) {
                        Observed observed(progression);
                        work(observed);
                        *changed = observed.begun();
                    },
                    [this, changed](std::exception_ptr failure) {
                        m_busy = false;
                        if (m_session.isOpen())
                            m_recent.add(m_session.path());
                        if (*changed || failure)
                            Q_EMIT projectChanged();
                        Q_EMIT busyChanged(false);
                        if (failure)
                            std::rethrow_exception(failure); // no member of the session throws
                    },
                    {}, text});
}

} // namespace app
