#include "app/ui/StructureDesk.h"

#include "app/Session.h"
#include "app/structure/StructureSaving.h"
#include "app/ui/EditorWait.h"
#include "app/ui/Photographer.h"
#include "app/ui/ProjectCommands.h"
#include "app/ui/structure/ReviewDialog.h"
#include "app/ui/structure/StructureModel.h"
#include "app/ui/structure/StructureWindow.h"
#include "app/ui/structure/TrialWindow.h"
#include "data/Cancellable.h"
#include "data/FieldType.h"

#include <QFileInfo>
#include <QTimer>

namespace app {

using namespace Qt::StringLiterals;

namespace {

constexpr int retryMilliseconds = 30;

} // namespace

StructureDesk::StructureDesk(Workplace& place, ProjectCommands& commands) : Desk(place), m_commands(commands)
{
    ask = [this](const StructureReview& review, const std::function<void(bool)>& answered) {
        askByDialog(review, answered);
    };
}

StructureDesk::~StructureDesk() = default;

void StructureDesk::install(QMenuBar& bar, TreeCommands&)
{
    for (QAction* action : bar.findChild<QMenu*>(u"menuOutils"_s)->actions()) {
        if (action->objectName() == u"modif")
            m_modif = action;
    }
    connect(m_modif, &QAction::triggered, this, &StructureDesk::open);
    updateAction(false);
}

void StructureDesk::updateAction(bool busy)
{
    m_modif->setEnabled(!busy && isOpen() && !session().readOnly());
}

void StructureDesk::projectOpened()
{
    updateAction(false);
}

void StructureDesk::open()
{
    if (m_window) {
        m_window->show();
        m_window->raise();
        m_window->activateWindow();
        return;
    }
    if (place().runner().isRunning()) {
        // A sort or a copy is not worth waiting for.
        place().runner().cancel();
        QTimer::singleShot(retryMilliseconds, this, &StructureDesk::open);
        return;
    }
    if (!isOpen())
        return;
    m_editing = std::make_unique<StructureEditing>(session());
    m_window = std::make_unique<StructureWindow>(*m_editing, place());
    connect(m_window.get(), &StructureWindow::saveWanted, this, &StructureDesk::save);
    // Once its own close event is over.
    connect(
        m_window.get(), &StructureWindow::closed, this,
        [this] {
            m_window.reset();
            m_editing.reset();
        },
        Qt::QueuedConnection);
    m_window->show();
}

bool StructureDesk::mayClose()
{
    // What is being saved is not asked about.
    if (!m_window || !m_window->isVisible() || m_saved)
        return true;
    return m_window->mayClose([this] { place().window().close(); });
}

void StructureDesk::projectClosing()
{
    m_modif->setEnabled(false);
    if (!m_window)
        return;
    m_window->closeParts();
    if (m_saved)
        return;
    m_window->saveGeometryOfWindow();
    m_window.reset();
    m_editing.reset();
}

void StructureDesk::showBusy(bool busy)
{
    updateAction(busy);
    if (m_window)
        m_window->setEnabled(!busy);
    if (busy || !m_saved)
        return;
    const bool saved = *std::exchange(m_saved, nullptr);
    if (!m_window)
        return;
    if (!isOpen()) {
        m_window.reset();
        m_editing.reset();
        return;
    }
    if (saved) {
        m_editing->reload();
        m_window->showSaved();
    } else {
        m_window->showNotSaved();
    }
}

// --- Saving ----------------------------------------------------------------------------------------

void StructureDesk::save()
{
    if (!m_window || m_saved || !m_editing->draft().isChanged())
        return;
    if (place().runner().isRunning()) {
        place().runner().cancel();
        QTimer::singleShot(retryMilliseconds, this, &StructureDesk::save);
        return;
    }
    review();
}

void StructureDesk::review()
{
    StructureReview found;
    try {
        const StructurePlan plan = m_editing->plan();
        runBeside(place().runner(), u"Vérification des enregistrements"_s, [&](platform::Progression& progression) {
            const data::Cancellable cancellable(session().database(), progression);
            found = reviewOf(session().database(), plan, progression);
        });
    } catch (const jet::Error& error) {
        constexpr int stopped = 3059;
        if (error.number() != stopped)
            place().fail(m_editing->caption(), error.description());
        return m_window->showNotSaved();
    }
    if (found.isEmpty())
        return write(false);
    ask(found, [this, loses = found.losesData()](bool wanted) {
        if (wanted)
            write(loses);
        else if (m_window)
            m_window->showNotSaved();
    });
}

void StructureDesk::askByDialog(const StructureReview& review, const std::function<void(bool)>& answered)
{
    auto* dialog = new ReviewDialog(review, m_editing->caption() + u": Enregistrement"_s,
                                    QFileInfo(structureBackupPath(session().path())).fileName(), m_window.get());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &ReviewDialog::recordsWanted, this,
            [this](const QString& title, const QString& module, const QList<qint32>& ids) {
                place().showRecords(title, module, ids);
                place().window().raise();
                place().window().activateWindow();
            });
    connect(dialog, &QDialog::finished, this, [answered](int result) { answered(result == QDialog::Accepted); });
    // Nobody changes a record between the look and the saving.
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->show();
}

void StructureDesk::write(bool losesData)
{
    m_saved = std::make_shared<bool>(false);
    const StructurePlan plan = m_editing->plan();
    const bool begun = m_commands.restructure(
        u"Enregistrement de la structure"_s,
        [this, plan, losesData, saved = m_saved](platform::Progression& progression) {
            return *saved = saveStructure(session(), plan, losesData, progression);
        });
    if (begun)
        return;
    m_saved.reset();
    m_window->showNotSaved();
}

// --- Pictures --------------------------------------------------------------------------------------

namespace {

/// A change of type that makes something to be shown: the first field whose values do not all convert.
StructureReview conversionToShow(Session& session, StructureEditing& editing, int module)
{
    platform::NoProgression quiet;
    StructureReview found;
    const QList<DraftField> fields = editing.draft().module(module)->fields;
    for (const DraftField& field : fields) {
        if (field.record.type != data::Texte || !editing.setType(field.id, data::Entier))
            continue;
        found = reviewOf(session.database(), editing.plan(), quiet);
        editing.draft().undo();
        if (!found.findings.isEmpty() && !found.forbids())
            return found;
    }
    return found;
}

} // namespace

void StructureDesk::photograph(Photographer& photographer)
{
    open();
    photographer.settle([this] { return m_window != nullptr; });
    const DraftModules modules = m_editing->draft().modules();
    const auto module = std::find_if(modules.rbegin(), modules.rend(),
                                     [](const DraftModule& one) { return one.record.isUser() && one.fields.size() > 2; });
    if (module == modules.rend())
        return m_window->closeQuietly();
    m_editing->setShortLabel(module->id, u"[%1], [%2]"_s.arg(module->fields[0].record.caption,
                                                            module->fields[1].record.caption));
    m_window->choose(module->id);
    photographer.settle();
    photographer.take(u"structure-module"_s, *m_window);
    const auto list = std::find_if(module->fields.begin(), module->fields.end(),
                                   [](const DraftField& field) { return field.isList(); });
    m_window->choose(list == module->fields.end() ? module->fields.first().id : list->id);
    photographer.settle();
    photographer.take(u"structure-champ"_s, *m_window);
    m_window->command(u"wizard"_s)->trigger();
    photographer.settle();
    if (QWidget* trial = m_window->trial())
        photographer.take(u"structure-saisie"_s, *trial);
    m_window->closeParts();
    const StructureReview found = conversionToShow(session(), *m_editing, module->id);
    {
        ReviewDialog dialog(found, m_editing->caption() + u": Enregistrement"_s,
                            QFileInfo(structureBackupPath(session().path())).fileName(), m_window.get());
        dialog.show();
        photographer.settle();
        photographer.take(u"structure-conversion"_s, dialog);
    }
    m_window->closeQuietly();
    photographer.settle([this] { return m_window == nullptr; });
}

} // namespace app
