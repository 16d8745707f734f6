#include "app/ui/ProjectCommands.h"

#include "app/AccessImport.h"
#include "app/Demo.h"
#include "app/ReadyStructures.h"
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
    if (jet::access::isAccessFile(path))
        return importPath(path);
    if (mayChange())
        run(u"Ouverture"_s, [this, path](platform::Progression& progression) {
            return m_session.open(path, progression);
        });
}

void ProjectCommands::importPath(const QString& path)
{
    if (m_busy)
        return;
    const std::optional<AccessPlan> plan = planConversion(m_session.surroundings(), path);
    if (!plan || !mayChange())
        return;
    run(
        u"Importation"_s,
        [this, plan = *plan](platform::Progression& progression) {
            return convertAndOpen(m_session, plan, progression);
        },
        true, [this] { Q_EMIT imported(); });
}

std::optional<QList<data::ModuleRecord>> ProjectCommands::chosenStructure()
{
    const QList<ReadyStructure> ready =
        readyStructures(m_session.surroundings().applicationFolder + u"/structures"_s);
    if (ready.isEmpty())
        return QList<data::ModuleRecord>();
    QStringList items{u"Projet vierge - individus, déterminations et images"_s};
    for (const ReadyStructure& structure : ready)
        items << structure.name + u" - "_s + structure.description;
    const auto chosen = m_dialogues.choose(
        {u"Nouveau projet"_s, u"Choisissez une structure de départ. Elle pourra être changée à tout moment."_s,
         u"Structure"_s, items, false});
    if (!chosen || chosen->isEmpty())
        return {};
    return chosen->first() == 0 ? QList<data::ModuleRecord>() : ready.at(chosen->first() - 1).modules;
}

void ProjectCommands::create()
{
    const auto modules = chosenStructure();
    if (!modules)
        return;
    const QString path = newFile(u"Nouveau projet"_s, u"Nouveau projet.hbx"_s);
    if (path.isEmpty() || !mayChange())
        return;
    // Whoever named a file that is there agreed to replace it.
    run(u"Création"_s, [this, path, modules = *modules](platform::Progression& progression) {
        return m_session.create(path, progression, modules, true);
    });
}

QString ProjectCommands::newFile(const QString& title, const QString& name)
{
    const QString path = m_dialogues.saveFile(title, fileFilter(), name);
    return path.isEmpty() || path.endsWith(u".hbx"_s, Qt::CaseInsensitive) ? path : path + u".hbx"_s;
}

void ProjectCommands::createDemo()
{
    const QString path = newFile(u"Projet de démonstration"_s, u"Démonstration.hbx"_s);
    if (!path.isEmpty() && mayChange())
        run(
            u"Création du projet de démonstration"_s,
            [this, path](platform::Progression& progression) { return buildDemo(m_session, path, progression); },
            true);
}

void ProjectCommands::saveCopy()
{
    if (m_busy || !m_session.isOpen())
        return;
    const QFileInfo file(m_session.path());
    const QString name = file.absolutePath() + u'/' + file.completeBaseName() + u" - copie.hbx"_s;
    const QString path = newFile(u"Enregistrer une copie"_s, name);
    if (path.isEmpty() || m_busy || !m_session.isOpen())
        return;
    setBusy(true);
    auto done = std::make_shared<bool>(false);
    m_runner.start({[this, path, done](platform::Progression& progression) {
                        *done = m_session.saveCopy(path, progression);
                    },
                    [this, path, done](std::exception_ptr failure) {
                        setBusy(false);
                        if (*done)
                            Q_EMIT copied(path);
                        if (failure)
                            std::rethrow_exception(failure); // the session says its failures
                    },
                    [] {}, u"Copie du projet"_s});
}

void ProjectCommands::optimise()
{
    if (m_session.isOpen() && mayChange() && m_session.confirmOptimise())
        run(
            u"Optimisation"_s,
            [this](platform::Progression& progression) { return m_session.optimiseConfirmed(progression); }, true);
}

bool ProjectCommands::restructure(const QString& text, std::function<bool(platform::Progression&)> work)
{
    if (!m_session.isOpen() || !mayChange())
        return false;
    run(text, std::move(work), true);
    return true;
}

void ProjectCommands::run(const QString& text, std::function<bool(platform::Progression&)> work, bool cancellable,
                          std::function<void()> succeeded)
{
    if (m_busy)
        return;
    Q_EMIT projectClosing();
    setBusy(true);
    m_runner.cancel(); // a sort or a copy is not worth waiting for
    auto changed = std::make_shared<bool>(false);
    auto done = std::make_shared<bool>(false);
    m_runner.start({[work = std::move(work), changed, done](platform::Progression& progression) {
                        Observed observed(progression);
                        *done = work(observed);
                        *changed = observed.begun();
                    },
                    [this, changed, done, succeeded = std::move(succeeded)](std::exception_ptr failure) {
                        m_busy = false;
                        if (m_session.isOpen())
                            m_recent.add(m_session.path());
                        if (*changed || failure)
                            Q_EMIT projectChanged();
                        Q_EMIT busyChanged(false);
                        if (*done && succeeded)
                            succeeded();
                        if (failure)
                            std::rethrow_exception(failure); // no member of the session throws
                    },
                    cancellable ? std::function<void()>([] {}) : nullptr, text});
}

void ProjectCommands::setBusy(bool busy)
{
    m_busy = busy;
    Q_EMIT busyChanged(busy);
}

} // namespace app
