#include "app/ui/StartPage.h"

#include "app/ui/Icons.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QLocale>
#include <QScrollArea>

namespace app {

using namespace Qt::StringLiterals;

namespace {

constexpr int columnCharacters = 124;
constexpr int recentShown = 5;
/// For the numbers of records, in the eyes of who waits for the page.
constexpr int pageCountingMilliseconds = 80;

QFont titleFont(const QFont& base)
{
    QFont font = base;
    font.setPointSizeF(base.pointSizeF() * 2);
    font.setWeight(QFont::DemiBold);
    return font;
}

} // namespace

StartPage::StartPage(RecentFiles& recent, QWidget* parent)
    : QWidget(parent), m_recent(recent), m_title(new QLabel(this)), m_subtitle(new QLabel(this)),
      m_column(new QVBoxLayout)
{
    setObjectName(u"startPage"_s);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    auto* picture = new QLabel(this);
    picture->setPixmap(programIcon().pixmap(72, 72));
    m_title->setFont(titleFont(font()));
    m_title->setTextFormat(Qt::PlainText);
    m_subtitle->setTextFormat(Qt::PlainText);
    m_subtitle->setWordWrap(true);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addStretch();
    texts->addWidget(m_title);
    texts->addWidget(m_subtitle);
    texts->addStretch();
    auto* head = new QHBoxLayout;
    head->setSpacing(16);
    head->setContentsMargins(8, 0, 8, 0);
    head->addWidget(picture);
    head->addLayout(texts, 1);
    m_column->addLayout(head);

    auto* middle = new QWidget;
    middle->setMaximumWidth(fontMetrics().averageCharWidth() * columnCharacters);
    middle->setLayout(m_column);
    m_column->setContentsMargins(0, 0, 0, 0);
    auto* content = new QWidget;
    content->setObjectName(u"startContent"_s);
    auto* across = new QHBoxLayout;
    across->addStretch(1);
    across->addWidget(middle, 1000);
    across->addStretch(1);
    auto* centred = new QVBoxLayout(content);
    centred->addStretch(2);
    centred->addLayout(across);
    centred->addStretch(3);
    auto* area = new QScrollArea(this);
    area->setObjectName(u"startArea"_s);
    area->setAccessibleName(u"Accueil"_s);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->viewport()->setBackgroundRole(QPalette::Base);
    content->setBackgroundRole(QPalette::Base);
    area->setWidget(content);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area);

    connect(&m_recent, &RecentFiles::changed, this, [this] {
        if (m_welcome)
            showWelcome();
    });
    showWelcome();
}

void StartPage::clearChoices()
{
    if (m_choices) {
        // One of the buttons may be in its own signal; a question that is open puts its end off.
        m_column->removeWidget(m_choices);
        m_choices->hide();
        m_choices->deleteLater();
    }
    m_choices = new QWidget(this);
    m_counted.clear();
    m_count = nullptr;
    m_columns = new QHBoxLayout(m_choices);
    m_columns->setContentsMargins(0, 8, 0, 0);
    m_columns->setSpacing(16);
    m_column->addWidget(m_choices);
    beginColumn();
}

void StartPage::beginColumn()
{
    auto* column = new QVBoxLayout;
    column->setSpacing(2);
    m_columns->addLayout(column, 1);
    m_list = new QVBoxLayout;
    m_list->setSpacing(2);
    column->addLayout(m_list);
    column->addStretch();
}

void StartPage::addHeading(const QString& text)
{
    auto* heading = new QLabel(text, m_choices);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    heading->setContentsMargins(8, 14, 0, 4);
    m_list->addWidget(heading);
}

ChoiceButton* StartPage::addChoice(const QString& name, const QIcon& icon, const QString& text,
                                   const QString& description)
{
    auto* button = new ChoiceButton(icon, text, description, m_choices);
    button->setObjectName(name);
    // Columns of one width, whatever stands in them.
    button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_list->addWidget(button);
    return button;
}

void StartPage::showWelcome()
{
    m_welcome = true;
    m_title->setText(u"Herbora"_s);
    m_subtitle->setText(u"Données botaniques de terrain et d'herbier"_s);
    clearChoices();
    connect(addChoice(u"startNew"_s, themeIcon(u"document-new"_s), u"Nouveau projet…"_s,
                      u"Créer un fichier pour une nouvelle collection"_s),
            &QAbstractButton::clicked, this, &StartPage::newWanted);
    connect(addChoice(u"startOpen"_s, themeIcon(u"document-open"_s), u"Ouvrir un projet…"_s,
                      u"Choisir un fichier .hbx, ou le déposer ici"_s),
            &QAbstractButton::clicked, this, &StartPage::openWanted);
    connect(addChoice(u"startDemo"_s, iconNamed(u"Individus"_s), u"Projet de démonstration…"_s,
                      u"Créer un projet d'exemple à explorer"_s),
            &QAbstractButton::clicked, this, &StartPage::demoWanted);
    addManual();
    beginColumn();
    addRecent();
}

void StartPage::addManual()
{
    addHeading(u"Découvrir"_s);
    const auto page = [this](const QString& name, const QString& icon, const QString& text, const QString& description,
                             const QString& file) {
        connect(addChoice(name, themeIcon(icon), text, description), &QAbstractButton::clicked, this,
                [this, file] { Q_EMIT manualWanted(file); });
    };
    page(u"startFirstSteps"_s, u"help-contents"_s, u"Premiers pas"_s, u"Du projet vide au premier individu"_s,
         u"premiers-pas"_s);
    page(u"startNews"_s, u"help-about"_s, u"Nouveautés"_s, u"Ce que cette version apporte"_s, u"nouveautes"_s);
}

void StartPage::addRecent()
{
    const QStringList paths = m_recent.paths().mid(0, recentShown);
    addHeading(u"Projets récents"_s);
    if (paths.isEmpty()) {
        auto* none = new QLabel(u"Les projets que vous ouvrirez se retrouveront ici."_s, m_choices);
        none->setWordWrap(true);
        none->setContentsMargins(8, 4, 8, 0);
        m_list->addWidget(none);
    }
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const QString path = paths.at(i);
        const QString folder = RecentFiles::folderText(path);
        auto* button = addChoice(u"startRecent%1"_s.arg(i + 1), iconNamed(u"Database"_s),
                                 QFileInfo(path).fileName(), folder);
        button->setToolTip(path);
        button->setEnabled(QFileInfo(path).isFile());
        connect(button, &QAbstractButton::clicked, this, [this, path] { Q_EMIT recentWanted(path); });
    }
}

void StartPage::addCommand(QAction* action)
{
    ChoiceButton* button = addChoice(u"start-"_s + action->objectName(), action->icon(),
                                     QString(action->text()).remove(u'&'), action->statusTip());
    button->setEnabled(action->isEnabled());
    connect(action, &QAction::changed, button, [button, action] { button->setEnabled(action->isEnabled()); });
    connect(button, &QAbstractButton::clicked, action, &QAction::trigger);
}

void StartPage::showProject(const TreeModel& model, const QString& path, const QList<QAction*>& commands,
                            Counter count)
{
    m_welcome = false;
    m_title->setText(QFileInfo(path).fileName());
    m_subtitle->setText(RecentFiles::folderText(path));
    clearChoices();
    addHeading(u"Modules"_s);
    bool lists = false;
    const QModelIndex root = model.index(0, 0);
    for (int row = 0; row < model.rowCount(root); ++row) {
        const QModelIndex index = model.index(row, 0, root);
        const NodeKind kind = model.kind(index);
        const bool list = kind == NodeKind::Taxa || kind == NodeKind::Localities || kind == NodeKind::Collectors;
        if (kind != NodeKind::Module && !list)
            continue;
        if (list && !std::exchange(lists, true)) {
            beginColumn();
            addHeading(u"Listes de référence"_s);
        }
        const QString key = model.node(index)->key;
        ChoiceButton* button = addChoice(u"start-"_s + key, index.data(Qt::DecorationRole).value<QIcon>(),
                                         model.node(index)->text, {});
        m_counted.emplaceBack(key, button);
        connect(button, &QAbstractButton::clicked, this, [this, key] { Q_EMIT recordsWanted(key); });
    }
    addHeading(u"Et maintenant"_s);
    for (QAction* action : commands)
        addCommand(action);
    m_count = std::move(count);
    if (isVisible())
        this->count();
}

void StartPage::count()
{
    if (!m_count)
        return;
    const QLocale french(QLocale::French);
    QElapsedTimer spent;
    spent.start();
    for (const auto& [key, button] : std::as_const(m_counted)) {
        // What a large file has no time for goes without its number.
        const qint64 records = spent.elapsed() < pageCountingMilliseconds ? m_count(key) : -1;
        if (records >= 0)
            button->setDescription(records == 0   ? u"Aucun enregistrement"_s
                                   : records == 1 ? u"1 enregistrement"_s
                                                  : french.toString(records) + u" enregistrements"_s);
    }
}

void StartPage::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    count();
}

} // namespace app
