#include "app/ui/MainWindow.h"

#include "app/Session.h"
#include "app/ui/AboutDialog.h"
#include "app/ui/AccessDesk.h"
#include "app/ui/Desk.h"
#include "app/ui/EditorDesk.h"
#include "app/ui/Icons.h"
#include "app/ui/ImportDesk.h"
#include "app/ui/MapDesk.h"
#include "app/ui/ManualWindow.h"
#include "app/ui/PictureDesk.h"
#include "app/ui/QueryDesk.h"
#include "app/ui/ReferenceDesk.h"
#include "app/ui/SizeKeeper.h"
#include "app/ui/StructureDesk.h"
#include "app/ui/TreeObjects.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QStatusBar>
#include <QTimer>
#include <algorithm>

namespace app {

using namespace Qt::StringLiterals;

namespace {

const QString geometryKey = u"fenetre/geometrie"_s;
const QString partsKey = u"fenetre/etat"_s;
/// Raised when docks or tool bars change, so that an older state is not taken.
constexpr int partsVersion = 1;
/// Work that ends sooner is not worth a bar.
constexpr int barPatienceMilliseconds = 400;
constexpr int messageMilliseconds = 6000;

/// The first project file among what is dragged; empty for none.
QString projectIn(const QMimeData* data)
{
    const QList<QUrl> urls = data->urls();
    for (const QUrl& url : urls) {
        const QString ending = QFileInfo(url.toLocalFile()).suffix().toLower();
        if (url.isLocalFile() && (ending == u"hbx" || ending == u"mdb" || ending == u"accdb"))
            return url.toLocalFile();
    }
    return {};
}

} // namespace

MainWindow::MainWindow(Session& session, platform::TaskRunner& runner, platform::Dialogues& dialogues,
                       WindowState& state)
    : m_session(session), m_runner(runner), m_dialogues(dialogues), m_state(state),
      m_recent(new RecentFiles(state, this)),
      m_commands(new ProjectCommands(session, runner, dialogues, *m_recent, this)),
      m_actions(new MainActions(this)), m_dock(new ModuleDock(this)), m_start(new StartPage(*m_recent)),
      m_documents(new Documents(session, runner, state, m_start, this)),
      m_place(new Workplace(session, runner, dialogues, state, *m_documents, *this, this)),
      m_progression(new platform::ProgressionBar(this)), m_count(new QLabel(this))
{
    setObjectName(u"mainWindow"_s);
    setWindowIcon(programIcon());
    setAcceptDrops(true);
    setUnifiedTitleAndToolBarOnMac(true);
    addDockWidget(Qt::LeftDockWidgetArea, m_dock);
    setCentralWidget(m_documents);
    m_count->setObjectName(u"recordCount"_s);
    statusBar()->setObjectName(u"statusBar"_s);
    statusBar()->addPermanentWidget(m_progression);
    statusBar()->addPermanentWidget(m_count);
    m_recent->fillWhenShown(m_actions->install(*this, *m_dock));
    connectActions();
    connectParts();
    connectProgression();
    serveTree();
    new SizeKeeper(state, this);
    makeDesks();
    showProject();
    restoreState();
}

MainWindow::~MainWindow()
{
    m_documents->closeAll(); // tabs ask the desks, which go before the widgets
}

void MainWindow::connectActions()
{
    const auto on = [this](QAction* action, auto slot) { connect(action, &QAction::triggered, this, slot); };
    on(m_actions->newProject, [this] { m_commands->create(); });
    on(m_actions->newDemo, [this] { m_commands->createDemo(); });
    on(m_actions->open, [this] { m_commands->open(); });
    on(m_actions->saveCopy, [this] { m_commands->saveCopy(); });
    on(m_actions->optimise, [this] { m_commands->optimise(); });
    on(m_actions->closeTab, [this] { m_documents->closeCurrent(); });
    on(m_actions->nextTab, [this] { m_documents->step(1); });
    on(m_actions->previousTab, [this] { m_documents->step(-1); });
    on(m_actions->quit, [this] { close(); });
    on(m_actions->expandAll, [this] { m_dock->expandAll(); });
    on(m_actions->collapseAll, [this] { m_dock->collapseAll(); });
    on(m_actions->manual, [this] { showManual(ManualWindow::pageFor(QApplication::focusWidget())); });
    on(m_actions->about, [this] { (new AboutDialog(m_session.surroundings().version, this))->open(); });
    on(m_actions->fullScreen,
       [this] { setWindowState(windowState().setFlag(Qt::WindowFullScreen, m_actions->fullScreen->isChecked())); });
    for (const auto& [action, command] : m_actions->ofTabs()) {
        on(action, [this, command] {
            platform::DocumentTab* tab = m_documents->current();
            if (tab && tab->can(command))
                tab->run(command);
        });
    }
}

void MainWindow::connectParts()
{
    connect(m_recent, &RecentFiles::chosen, m_commands, &ProjectCommands::openPath);
    connect(m_start, &StartPage::newWanted, m_commands, &ProjectCommands::create);
    connect(m_start, &StartPage::openWanted, m_commands, &ProjectCommands::open);
    connect(m_start, &StartPage::demoWanted, m_commands, &ProjectCommands::createDemo);
    connect(m_start, &StartPage::manualWanted, this, &MainWindow::showManual);
    connect(m_start, &StartPage::recentWanted, m_commands, &ProjectCommands::openPath);
    connect(m_start, &StartPage::recordsWanted, this, &MainWindow::openRecords);
    connect(m_commands, &ProjectCommands::projectChanged, this, &MainWindow::showProject);
    connect(m_commands, &ProjectCommands::copied, this, [this](const QString& path) {
        statusBar()->showMessage(u"Copie enregistrée : "_s + path, messageMilliseconds);
    });
    connect(m_commands, &ProjectCommands::busyChanged, this, &MainWindow::showBusy);
    m_commands->setGuard([this] { return mayClose(); });
    connect(m_commands, &ProjectCommands::projectClosing, this, &MainWindow::putAway);
    connect(m_place, &Workplace::recordsWritten, m_start, &StartPage::count);
    connect(m_place, &Workplace::recordsWritten, m_documents, &Documents::recordsWritten);
    connect(m_documents, &Documents::currentChanged, this, &MainWindow::showCurrentTab);
    connect(m_documents, &Documents::addWanted, this, [this](const QString& key) {
        m_dock->view().setCurrentIndex(m_dock->model().indexOf(key));
        if (QAction* add = findChild<QAction*>(u"addToModule"_s); add && add->isEnabled())
            add->trigger();
    });
    connect(m_documents, &Documents::failed, this, [this](const QString& title, const QString& description) {
        m_dialogues.tell(description, title, platform::BoxIcon::Stop);
    });
}

void MainWindow::serveTree()
{
    TreeCommands& tree = m_dock->commands();
    tree.provide(u"openModule"_s, [this](const TreeNode& node) { openRecords(node.key); });
}

void MainWindow::makeDesks()
{
    auto editor = std::make_unique<EditorDesk>(*m_place);
    auto pictures = std::make_unique<PictureDesk>(*m_place, *editor);
    m_desks.push_back(std::move(editor));
    m_desks.push_back(std::move(pictures));
    m_desks.push_back(std::make_unique<MapDesk>(*m_place));
    m_desks.push_back(std::make_unique<QueryDesk>(*m_place));
    m_desks.push_back(std::make_unique<ReferenceDesk>(*m_place));
    m_desks.push_back(std::make_unique<AccessDesk>(*m_place, *m_commands));
    m_desks.push_back(std::make_unique<ImportDesk>(*m_place));
    m_desks.push_back(std::make_unique<StructureDesk>(*m_place, *m_commands));
    for (const std::unique_ptr<Desk>& desk : m_desks)
        desk->install(*menuBar(), m_dock->commands());
}

void MainWindow::connectProgression()
{
    using platform::TaskRunner;
    connect(&m_runner, &TaskRunner::step, m_progression, &platform::ProgressionBar::step);
    connect(&m_runner, &TaskRunner::finished, m_progression, &platform::ProgressionBar::finish);
    connect(m_progression, &platform::ProgressionBar::cancelRequested, &m_runner, &TaskRunner::cancel);
    auto* patience = new QTimer(this);
    patience->setSingleShot(true);
    patience->setInterval(barPatienceMilliseconds);
    connect(&m_runner, &TaskRunner::started, this, [this, patience] {
        m_progression->setCancellable(m_runner.isCancellable());
        patience->start();
    });
    connect(&m_runner, &TaskRunner::finished, patience, &QTimer::stop);
    connect(patience, &QTimer::timeout, this, [this] {
        if (m_runner.isRunning() && m_progression->isHidden() && !m_runner.text().isEmpty())
            m_progression->step(m_runner.text(), -1);
    });
}

// --- What is shown ---------------------------------------------------------------------------------

void MainWindow::showProject()
{
    const QString path = m_session.path();
    if (path != m_shownPath)
        m_documents->closeAll();
    m_shownPath = path;
    if (path.isEmpty()) {
        m_objects.reset();
        m_dock->clear();
        m_start->showWelcome();
        setWindowTitle(u"Herbora"_s);
    } else {
        for (const std::unique_ptr<Desk>& desk : m_desks)
            desk->projectOpened();
        m_dock->load(m_session);
        m_objects = std::make_unique<TreeObjects>(m_session, [this] { m_dock->reload(m_session); });
        showStart();
        setWindowTitle(m_session.projectName() + u" - "_s + u"Herbora"_s);
        m_documents->projectReopened();
        statusBar()->showMessage(m_session.readOnly() ? u"Projet ouvert en lecture seule"_s : u"Projet ouvert"_s,
                                 messageMilliseconds);
    }
    m_actions->modif->setVisible(m_actions->modif->isVisible() || !path.isEmpty());
    showBusy(m_commands->isBusy());
}

void MainWindow::showStart()
{
    QList<QAction*> commands;
    for (const QString& name : {u"newIndividual"_s, u"newQueryIndividus"_s, u"carte"_s, u"importCsv"_s})
        commands << findChild<QAction*>(name);
    commands << m_actions->modif;
    m_start->showProject(m_dock->model(), m_session.path(), commands, [this](const QString& key) {
        return m_runner.isRunning() || !m_session.isOpen() ? -1 : recordCount(m_session, key);
    });
}

void MainWindow::showBusy(bool busy)
{
    const bool project = m_session.isOpen() && !busy;
    m_actions->newProject->setEnabled(!busy);
    m_actions->newDemo->setEnabled(!busy);
    m_actions->open->setEnabled(!busy);
    m_actions->saveCopy->setEnabled(project);
    m_actions->optimise->setEnabled(project && !m_session.readOnly());
    m_actions->expandAll->setEnabled(project);
    m_actions->collapseAll->setEnabled(project);
    m_dock->setEnabled(!busy);
    m_documents->setEnabled(!busy);
    findChild<QAction*>(u"recents"_s)->setEnabled(!busy);
    findChild<QAction*>(u"modules"_s)->setEnabled(project);
    for (const std::unique_ptr<Desk>& desk : m_desks)
        desk->showBusy(busy);
    showCurrentTab();
    if (!busy && m_closeWhenIdle)
        close();
}

void MainWindow::showCurrentTab()
{
    const platform::DocumentTab* tab = m_documents->current();
    const bool usable = tab && !m_commands->isBusy();
    m_actions->closeTab->setEnabled(usable);
    for (QAction* action : {m_actions->nextTab, m_actions->previousTab})
        action->setEnabled(usable && m_documents->tabs().size() > 1);
    for (const auto& [action, command] : m_actions->ofTabs())
        action->setEnabled(usable && tab->can(command));
    m_count->setText(tab ? tab->statusText() : QString());
}

// --- What is done ----------------------------------------------------------------------------------

void MainWindow::openRecords(const QString& key)
{
    const QModelIndex index = m_dock->model().indexOf(key);
    if (index.isValid() && !m_commands->isBusy())
        m_documents->openRecords(key, m_dock->model().kind(index));
}

void MainWindow::showManual(const QString& page)
{
    if (!m_manual)
        m_manual = std::make_unique<ManualWindow>(m_session.surroundings().applicationFolder + u"/manuel"_s, m_state);
    m_manual->showPage(page);
}

bool MainWindow::mayClose()
{
    return m_documents->mayCloseAll()
           && std::all_of(m_desks.begin(), m_desks.end(), [](const auto& desk) { return desk->mayClose(); });
}

/// Nothing may hold on to a project that is closed or exchanged.
void MainWindow::putAway()
{
    for (const std::unique_ptr<Desk>& desk : m_desks)
        desk->projectClosing();
    m_documents->closeForReopening();
}

// --- Events ----------------------------------------------------------------------------------------

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (m_commands->isBusy()) {
        // The project must not be left in the middle; the window closes when that is done.
        m_closeWhenIdle = true;
        event->ignore();
        return;
    }
    if (!mayClose()) {
        event->ignore();
        return;
    }
    saveState();
    m_manual.reset();
    putAway();
    m_documents->closeAll();
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (!m_commands->isBusy() && !projectIn(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    const QString path = projectIn(event->mimeData());
    if (path.isEmpty())
        return;
    event->acceptProposedAction();
    // The program that is dragged from waits for the end of the drop: the opening begins after it.
    QTimer::singleShot(0, this, [this, path] { m_commands->openPath(path); });
}

void MainWindow::restoreState()
{
    resize(1180, 740);
    resizeDocks({m_dock}, {qMax(260, fontMetrics().averageCharWidth() * 37)}, Qt::Horizontal);
    restoreGeometry(m_state.value(geometryKey).toByteArray());
    QMainWindow::restoreState(m_state.value(partsKey).toByteArray(), partsVersion);
    m_actions->fullScreen->setChecked(isFullScreen());
}

void MainWindow::saveState()
{
    m_state.setValue(geometryKey, saveGeometry());
    m_state.setValue(partsKey, QMainWindow::saveState(partsVersion));
}

} // namespace app
