#include "images/ui/Thumbnails.h"

#include "images/ThumbnailLoader.h"

#include <QHBoxLayout>
#include <QLocale>
#include <QPointer>
#include <QSlider>
#include <QVBoxLayout>

namespace images {

using namespace Qt::StringLiterals;

namespace {

/// A field season on a page or two: one scrolls rather than turns pages.
constexpr qsizetype usualPerPage = 2000;
constexpr int smallestShown = 80;
constexpr int largestSide = 320;
constexpr int sideStep = 20;

} // namespace

Thumbnails::Thumbnails(QWidget* parent) : QWidget(parent), m_grid(new ThumbnailGrid(this)), m_perPage(usualPerPage)
{
    setObjectName(u"thumbnails"_s);
    setFocusProxy(m_grid);
    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(4, 2, 8, 2);
    bar->setSpacing(4);
    makePanels(*bar);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_grid, 1);
    layout->addLayout(bar);
    connect(m_grid, &ThumbnailGrid::activated, this, &Thumbnails::activated);
    connect(m_grid, &ThumbnailGrid::failed, this, &Thumbnails::setMessage);
    connect(m_grid, &ThumbnailGrid::pageWanted, this, [this](int by) { goTo(by < 0 ? u"prev"_s : u"next"_s); });
    connect(m_grid, &ThumbnailGrid::selectionChanged, this, [this] {
        showPanels();
        Q_EMIT selectionChanged();
    });
    showPanels();
}

void Thumbnails::makePanels(QHBoxLayout& layout)
{
    const QList<QStringList> pages{{u"first"_s, u"go-first"_s, u"Première page d'images"_s},
                                   {u"prev"_s, u"go-previous"_s, u"Page d'images précédente"_s},
                                   {u"next"_s, u"go-next"_s, u"Page d'images suivante"_s},
                                   {u"last"_s, u"go-last"_s, u"Dernière page d'images"_s}};
    for (const QStringList& page : pages) {
        auto* button = new QToolButton(this);
        button->setObjectName(page[0]);
        button->setIcon(QIcon::fromTheme(page[1]));
        button->setToolTip(page[2]);
        button->setAccessibleName(page[2]);
        button->setAutoRaise(true);
        connect(button, &QToolButton::clicked, this, [this, key = page[0]] { goTo(key); });
        m_pageButtons.insert(page[0], button);
        layout.addWidget(button);
        if (page[0] == u"prev")
            m_pageNumber = panel(u"page"_s, layout);
    }
    m_message = panel(u"msg"_s, layout, 1);
    m_message->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_selected = panel(u"nbsel"_s, layout);
    m_count = panel(u"nbthumb"_s, layout);
    m_time = panel(u"temps"_s, layout);
    layout.addWidget(m_names = toggle(u"showNames"_s, u"Noms"_s, u"Montrer le nom des fichiers"_s, &ThumbnailGrid::setNamesShown));
    layout.addWidget(m_ids = toggle(u"showIds"_s, u"Nº"_s, u"Montrer l'identifiant des enregistrements"_s, &ThumbnailGrid::setIdsShown));
    m_names->setChecked(true);
    auto* size = new QSlider(Qt::Horizontal, this);
    size->setObjectName(u"thumbnailSize"_s);
    size->setAccessibleName(u"Taille des imagettes"_s);
    size->setToolTip(size->accessibleName());
    size->setRange(smallestShown, largestSide);
    size->setSingleStep(sideStep);
    size->setPageStep(2 * sideStep);
    size->setValue(m_grid->side());
    size->setFixedWidth(fontMetrics().averageCharWidth() * 16);
    connect(size, &QSlider::valueChanged, m_grid, &ThumbnailGrid::setSide);
    layout.addWidget(size);
}

QLabel* Thumbnails::panel(const QString& name, QHBoxLayout& layout, int stretch)
{
    auto* label = new QLabel(this);
    label->setObjectName(name);
    label->setMargin(4);
    label->setTextFormat(Qt::PlainText);
    layout.addWidget(label, stretch);
    return label;
}

QToolButton* Thumbnails::toggle(const QString& name, const QString& text, const QString& tip, void (ThumbnailGrid::*set)(bool))
{
    auto* button = new QToolButton(this);
    button->setObjectName(name);
    button->setText(text);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    button->setCheckable(true);
    button->setAutoRaise(true);
    connect(button, &QToolButton::toggled, m_grid, set);
    return button;
}

void Thumbnails::setLoader(std::shared_ptr<ThumbnailLoader> loader)
{
    if (loader)
        connect(loader.get(), &ThumbnailLoader::notice, this, &Thumbnails::setMessage);
    m_grid->setLoader(std::move(loader));
}

void Thumbnails::setMessage(const QString& text)
{
    m_message->setText(text);
    m_message->setToolTip(text.toHtmlEscaped());
}

// --- Pictures ------------------------------------------------------------------------------------

void Thumbnails::Refresh()
{
    m_clock.start();
    const int generation = ++m_generation;
    setMessage({});
    if (m_sql.isEmpty() || !m_read) {
        adopt(std::make_shared<PictureRows>());
        return;
    }
    ++m_reading;
    m_read(m_sql, [self = QPointer(this), generation](std::shared_ptr<const ThumbnailSource> pictures, const QString& failure) {
        if (!self)
            return;
        --self->m_reading;
        if (generation != self->m_generation)
            return;
        if (failure.isEmpty()) {
            self->adopt(std::move(pictures));
        } else {
            self->setMessage(failure);
            Q_EMIT self->failed(failure);
            Q_EMIT self->shown();
        }
    });
}

/// Page, current picture and selection stay where the pictures allow.
void Thumbnails::adopt(std::shared_ptr<const ThumbnailSource> pictures)
{
    m_pictures = std::move(pictures);
    showPage(m_page);
    m_time->setText(QLocale().toString(double(m_clock.elapsed()) / 1000, 'f', 2) + u's');
    Q_EMIT shown();
}

void Thumbnails::setPictures(std::shared_ptr<const ThumbnailSource> pictures)
{
    m_clock.start();
    ++m_generation;
    adopt(std::move(pictures));
}

void Thumbnails::Clear()
{
    ++m_generation;
    m_pictures.reset();
    m_page = 0;
    m_grid->show({}, 0, 0);
    m_grid->setSelection({});
    m_grid->forget();
    m_time->clear();
    setMessage({});
    showPanels();
}

// --- Pages ---------------------------------------------------------------------------------------

void Thumbnails::setNbImages(qsizetype count)
{
    m_perPage = std::max<qsizetype>(1, count);
    showPage(m_page);
}

qsizetype Thumbnails::pageCount() const
{
    return m_pictures ? (m_pictures->count() + m_perPage - 1) / m_perPage : 0;
}

void Thumbnails::showPage(qsizetype page)
{
    m_page = std::clamp<qsizetype>(page, 0, std::max<qsizetype>(0, pageCount() - 1));
    m_grid->show(m_pictures, m_page * m_perPage, m_perPage);
    showPanels();
}

void Thumbnails::goTo(const QString& key)
{
    const qsizetype wanted = key == u"first" ? 0 : key == u"prev" ? m_page - 1 : key == u"next" ? m_page + 1 : pageCount() - 1;
    if (wanted != m_page && wanted >= 0 && wanted < pageCount()) {
        showPage(wanted);
        m_grid->setCurrent(m_grid->firstShown());
    }
}

void Thumbnails::showPanels()
{
    const qsizetype count = m_pictures ? m_pictures->count() : 0;
    for (auto button = m_pageButtons.begin(); button != m_pageButtons.end(); ++button) {
        const bool backwards = button.key() == u"first" || button.key() == u"prev";
        button.value()->setVisible(pageCount() > 1);
        button.value()->setEnabled(backwards ? m_page > 0 : m_page + 1 < pageCount());
    }
    m_pageNumber->setVisible(pageCount() > 1);
    m_pageNumber->setText(u"Page "_s + QString::number(m_page + 1) + u" / "_s + QString::number(pageCount()));
    m_selected->setText(u"Sel. "_s + QString::number(m_grid->selection().size()));
    m_count->setText(QString::number(count) + u" Cellule(s)"_s);
}

// --- Selection -----------------------------------------------------------------------------------

/// In the order of the pictures.
template <typename Use> void Thumbnails::eachSelected(Use use) const
{
    QSet<qint32> left = m_grid->selection();
    for (qsizetype i = 0; m_pictures && !left.isEmpty() && i < m_pictures->count(); ++i) {
        if (left.remove(m_pictures->id(i)))
            use(m_pictures->id(i), m_pictures->name(i));
    }
}

QList<qint32> Thumbnails::selectedIds() const
{
    QList<qint32> ids;
    eachSelected([&ids](qint32 id, const QString&) { ids << id; });
    return ids;
}

QString Thumbnails::SelectedItems() const
{
    QStringList ids;
    eachSelected([&ids](qint32 id, const QString&) { ids << QString::number(id); });
    return ids.join(u',');
}

QStringList Thumbnails::SelectedlsFiles() const
{
    QStringList names;
    eachSelected([&names](qint32, const QString& name) { names << name; });
    return names;
}

QString Thumbnails::SelectedFile() const
{
    const qsizetype current = m_grid->current();
    return m_pictures && current >= 0 && current < m_pictures->count() ? m_pictures->name(current) : QString();
}

void Thumbnails::RefreshSelectedItems(const QList<qint32>& ids)
{
    const QSet<qint32> wanted(ids.begin(), ids.end());
    m_grid->setSelection(wanted);
    for (qsizetype i = 0; m_pictures && !wanted.isEmpty() && i < m_pictures->count(); ++i) {
        if (!wanted.contains(m_pictures->id(i)))
            continue;
        if (i / m_perPage != m_page)
            showPage(i / m_perPage);
        m_grid->setCurrent(i);
        break;
    }
    showPanels();
}

void Thumbnails::SelectAll()
{
    QSet<qint32> all;
    for (qsizetype i = 0; m_pictures && i < m_pictures->count(); ++i)
        all.insert(m_pictures->id(i));
    m_grid->setSelection(all);
    showPanels();
    Q_EMIT selectionChanged();
}

int Thumbnails::rowOf(qsizetype position) const
{
    return position < 0 ? -1 : int((position - m_grid->firstShown()) / m_grid->columns());
}

int Thumbnails::columnOf(qsizetype position) const
{
    return position < 0 ? -1 : int((position - m_grid->firstShown()) % m_grid->columns());
}

} // namespace images
