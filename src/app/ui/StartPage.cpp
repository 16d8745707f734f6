#include "app/ui/StartPage.h"

#include "app/ui/Icons.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QScrollArea>

namespace app {

using namespace Qt::StringLiterals;

namespace {

constexpr int columnCharacters = 78;
constexpr int recentShown = 5;

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
    middle->setFixedWidth(fontMetrics().averageCharWidth() * columnCharacters);
    middle->setLayout(m_column);
    m_column->setContentsMargins(0, 0, 0, 0);
    auto* content = new QWidget;
    content->setObjectName(u"startContent"_s);
    auto* centred = new QVBoxLayout(content);
    centred->addStretch(2);
    centred->addWidget(middle, 0, Qt::AlignHCenter);
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
    // One of the buttons may be in its own signal.
    if (m_choices)
        m_choices->deleteLater();
    m_choices = new QWidget(this);
    m_list = new QVBoxLayout(m_choices);
    m_list->setContentsMargins(0, 8, 0, 0);
    m_list->setSpacing(2);
    m_column->addWidget(m_choices);
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
                      u"Choisir un fichier .hbx, ou le déposer sur cette fenêtre"_s),
            &QAbstractButton::clicked, this, &StartPage::openWanted);
    addRecent();
}

void StartPage::addRecent()
{
    const QStringList paths = m_recent.paths().mid(0, recentShown);
    if (paths.isEmpty())
        return;
    addHeading(u"Projets récents"_s);
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

void StartPage::showProject(const TreeModel& model, const QString& path)
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
        if (list && !std::exchange(lists, true))
            addHeading(u"Listes de référence"_s);
        const QString key = model.node(index)->key;
        connect(addChoice(u"start-"_s + key, index.data(Qt::DecorationRole).value<QIcon>(),
                          model.node(index)->text, {}),
                &QAbstractButton::clicked, this, [this, key] { Q_EMIT recordsWanted(key); });
    }
}

} // namespace app
