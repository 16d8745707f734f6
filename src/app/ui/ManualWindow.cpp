#include "app/ui/ManualWindow.h"

#include "app/ui/Icons.h"
#include "app/ui/WindowState.h"

#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QRegularExpression>
#include <QSplitter>
#include <QToolBar>

namespace app {

using namespace Qt::StringLiterals;

namespace {

const QString contentsPage = u"index"_s;
const QString manualGeometryKey = u"manuel/etat"_s;

/// What the windows and tabs are about, by their classes; the nearest above the focus counts.
const std::pair<const char*, QString> pagesOfClasses[] = {
    {"editing::Listes", u"descripteurs"_s},
    {"app::DescriptorWindow", u"descripteurs"_s},
    {"editing::RecordEditorWindow", u"saisir"_s},
    {"images::FoldersDialog", u"images"_s},
    {"images::Thumbnails", u"images"_s},
    {"images::Viewer", u"images"_s},
    {"map::MapPanel", u"cartes"_s},
    {"app::MapTab", u"cartes"_s},
    {"query::ReplaceDialog", u"remplacer"_s},
    {"query::ExpressionDialog", u"remplacer"_s},
    {"query::QueryTab", u"requetes"_s},
    {"reference::WizardLinks", u"liens"_s},
    {"reference::TaxonBrowser", u"taxons"_s},
    {"reference::PlaceBrowser", u"localites"_s},
    {"reference::Form10", u"botanistes"_s},
    {"app::StructureWindow", u"structure"_s},
    {"app::ReviewDialog", u"structure"_s},
    {"app::TrialWindow", u"structure"_s},
    {"app::AccessReportDialog", u"anciens-projets"_s},
    {"app::ImportWindow", u"importer"_s},
    {"platform::PrintPreview", u"imprimer"_s},
    {"app::StartPage", u"premiers-pas"_s},
    {"app::ModuleDock", u"premiers-pas"_s},
    {"app::ManualWindow", u"index"_s},
    {"app::GridTab", u"premiers-pas"_s},
};

/// The links of the contents page, in their order: file name without ".md", title.
QList<std::pair<QString, QString>> linksOf(const QString& file)
{
    QList<std::pair<QString, QString>> links;
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly))
        return links;
    static const QRegularExpression link(u"\\[([^\\]]+)\\]\\(([a-z0-9-]+)\\.md\\)"_s);
    const QString text = QString::fromUtf8(in.readAll());
    for (auto found = link.globalMatch(text); found.hasNext();) {
        const auto match = found.next();
        links << std::pair(match.captured(2), match.captured(1));
    }
    return links;
}

} // namespace

ManualWindow::ManualWindow(const QString& folder, WindowState& state, QWidget* parent)
    : QMainWindow(parent), m_folder(folder), m_state(state), m_contents(new QListWidget(this)),
      m_browser(new QTextBrowser(this)), m_find(new QLineEdit(this))
{
    setObjectName(u"manualWindow"_s);
    setWindowTitle(u"Manuel de Herbora"_s);
    m_contents->setObjectName(u"manualContents"_s);
    m_contents->setAccessibleName(u"Table des matières"_s);
    m_browser->setObjectName(u"manualPage"_s);
    m_browser->setAccessibleName(u"Page du manuel"_s);
    m_browser->setSearchPaths({m_folder});
    m_browser->setOpenLinks(false);
    m_browser->document()->setDocumentMargin(24);
    connect(m_browser, &QTextBrowser::anchorClicked, this, &ManualWindow::openLink);
    connect(m_contents, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
        if (item)
            showPage(item->data(Qt::UserRole).toString());
    });
    auto* panes = new QSplitter(this);
    panes->addWidget(m_contents);
    panes->addWidget(m_browser);
    panes->setStretchFactor(1, 1);
    panes->setSizes({fontMetrics().averageCharWidth() * 34, fontMetrics().averageCharWidth() * 100});
    panes->setCollapsible(1, false);
    setCentralWidget(panes);
    makeToolBar();
    fillContents();
    resize(fontMetrics().averageCharWidth() * 130, fontMetrics().height() * 42);
    restoreGeometry(m_state.value(manualGeometryKey).toByteArray());
}

void ManualWindow::makeToolBar()
{
    auto* bar = addToolBar(u"Navigation"_s);
    bar->setObjectName(u"manualBar"_s);
    bar->setMovable(false);
    const auto add = [this, bar](const QString& name, const QString& icon, const QString& text,
                                 const QKeySequence& keys, auto slot) {
        QAction* action = bar->addAction(themeIcon(icon), text, this, slot);
        action->setObjectName(name);
        action->setShortcut(keys);
        action->setToolTip(text + u" ("_s + keys.toString(QKeySequence::NativeText) + u')');
        return action;
    };
    QAction* back = add(u"manualBack"_s, u"go-previous"_s, u"Page précédente"_s, u"Alt+Left"_s,
                        [this] { m_browser->backward(); });
    QAction* forward = add(u"manualForward"_s, u"go-next"_s, u"Page suivante"_s, u"Alt+Right"_s,
                           [this] { m_browser->forward(); });
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(m_browser, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(m_browser, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
    add(u"manualHome"_s, u"go-home"_s, u"Sommaire"_s, u"Alt+Home"_s, [this] { showPage(contentsPage); });
    bar->addSeparator();
    add(u"manualLarger"_s, u"zoom-in"_s, u"Agrandir le texte"_s, u"Ctrl++"_s, [this] { m_browser->zoomIn(1); });
    add(u"manualSmaller"_s, u"zoom-out"_s, u"Réduire le texte"_s, u"Ctrl+-"_s, [this] { m_browser->zoomOut(1); });
    bar->addSeparator();
    m_find->setObjectName(u"manualFind"_s);
    m_find->setAccessibleName(u"Rechercher dans la page"_s);
    m_find->setPlaceholderText(u"Rechercher dans la page"_s);
    m_find->setClearButtonEnabled(true);
    m_find->setMaximumWidth(fontMetrics().averageCharWidth() * 40);
    bar->addWidget(m_find);
    connect(m_find, &QLineEdit::returnPressed, this, [this] { find(false); });
    add(u"manualFindAction"_s, u"edit-find"_s, u"Rechercher"_s, u"Ctrl+F"_s, [this] {
        m_find->setFocus();
        m_find->selectAll();
    });
    add(u"manualNext"_s, u"go-down"_s, u"Occurrence suivante"_s, u"F3"_s, [this] { find(false); });
    add(u"manualPrevious"_s, u"go-up"_s, u"Occurrence précédente"_s, u"Shift+F3"_s, [this] { find(true); });
    add(u"manualClose"_s, u"window-close"_s, u"Fermer"_s, u"Ctrl+W"_s, [this] { close(); })
        ->setShortcuts({QKeySequence(u"Ctrl+W"_s), QKeySequence(Qt::Key_Escape)});
}

void ManualWindow::fillContents()
{
    const auto add = [this](const QString& page, const QString& title) {
        auto* item = new QListWidgetItem(title, m_contents);
        item->setData(Qt::UserRole, page);
    };
    add(contentsPage, u"Sommaire"_s);
    const auto links = linksOf(m_folder + u'/' + contentsPage + u".md"_s);
    for (const auto& [page, title] : links)
        add(page, title);
}

QString ManualWindow::page() const
{
    return QFileInfo(m_browser->source().path()).completeBaseName();
}

void ManualWindow::showPage(const QString& page)
{
    const QString name = QFileInfo::exists(m_folder + u'/' + page + u".md"_s) ? page : contentsPage;
    if (this->page() != name)
        m_browser->setSource(QUrl::fromLocalFile(m_folder + u'/' + name + u".md"_s), QTextDocument::MarkdownResource);
    for (int row = 0; row < m_contents->count(); ++row) {
        if (m_contents->item(row)->data(Qt::UserRole).toString() != name)
            continue;
        const QSignalBlocker quiet(m_contents);
        m_contents->setCurrentRow(row);
    }
    if (!isVisible())
        show();
    raise();
    activateWindow();
}

void ManualWindow::openLink(const QUrl& link)
{
    if (!link.scheme().isEmpty() && link.scheme() != u"file")
        QDesktopServices::openUrl(link);
    else if (!link.path().isEmpty())
        showPage(QFileInfo(link.path()).completeBaseName());
    if (link.hasFragment())
        m_browser->scrollToAnchor(link.fragment());
}

void ManualWindow::find(bool backward)
{
    const auto flags = backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    if (m_find->text().isEmpty() || m_browser->find(m_find->text(), flags))
        return;
    // Once more from the other end.
    m_browser->moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
    m_browser->find(m_find->text(), flags);
}

QString ManualWindow::pageFor(const QWidget* widget)
{
    for (; widget; widget = widget->parentWidget()) {
        const QString page = widget->property(pageProperty).toString();
        if (!page.isEmpty())
            return page;
        for (const auto& [name, pageOfClass] : pagesOfClasses) {
            if (widget->inherits(name))
                return pageOfClass;
        }
    }
    return contentsPage;
}

void ManualWindow::closeEvent(QCloseEvent* event)
{
    m_state.setValue(manualGeometryKey, saveGeometry());
    QMainWindow::closeEvent(event);
}

} // namespace app
