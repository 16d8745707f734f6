#include "images/ui/ThumbnailGrid.h"

#include "images/ThumbnailLoader.h"
#include "platform/ui/Readable.h"

#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>

namespace images {

using namespace Qt::StringLiterals;

namespace {

constexpr int usualSide = 150;
constexpr int smallestSide = 48;
constexpr int margin = 6;
/// Some two thousand thumbnails of 160 × 120.
constexpr int mostKilobytes = 160 * 1024;
/// What is in sight is asked for once, however many steps the wheel makes.
constexpr int askMilliseconds = 15;

} // namespace

ThumbnailGrid::ThumbnailGrid(QWidget* parent) : QAbstractScrollArea(parent), m_side(usualSide), m_thumbnails(mostKilobytes)
{
    setObjectName(u"thumbnailGrid"_s);
    setAccessibleName(u"Imagettes"_s);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // cells would jump each time it came and went
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setAutoFillBackground(false);
    m_asking.setSingleShot(true);
    m_asking.setInterval(askMilliseconds);
    connect(&m_asking, &QTimer::timeout, this, &ThumbnailGrid::ask);
}

ThumbnailGrid::~ThumbnailGrid()
{
    if (m_loader)
        m_loader->want(this, {});
}

void ThumbnailGrid::setLoader(std::shared_ptr<ThumbnailLoader> loader)
{
    if (m_loader) {
        m_loader->want(this, {});
        disconnect(m_loader.get(), nullptr, this, nullptr);
    }
    m_loader = std::move(loader);
    if (!m_loader)
        return;
    connect(m_loader.get(), &ThumbnailLoader::ready, this, &ThumbnailGrid::take);
    connect(m_loader.get(), &ThumbnailLoader::failed, this, &ThumbnailGrid::takeFailure);
    askSoon();
}

void ThumbnailGrid::show(std::shared_ptr<const ThumbnailSource> source, qsizetype first, qsizetype count)
{
    const bool otherPage = first != m_first;
    m_source = std::move(source);
    m_first = first;
    m_count = m_source ? std::clamp<qsizetype>(m_source->count() - first, 0, count) : 0;
    m_fresh.clear();
    m_failures.clear();
    if (!m_source || m_current >= m_source->count())
        m_current = m_anchor = -1;
    layOut();
    if (otherPage)
        verticalScrollBar()->setValue(0);
    viewport()->update();
    askSoon();
}

void ThumbnailGrid::forget()
{
    m_thumbnails.clear();
    m_failures.clear();
    m_fresh.clear();
    viewport()->update();
    askSoon();
}

// --- Look ----------------------------------------------------------------------------------------

void ThumbnailGrid::setColumns(int columns)
{
    m_fixedColumns = std::max(0, columns);
    layOut();
}

void ThumbnailGrid::setRows(int rows)
{
    m_fixedRows = std::max(0, rows);
    layOut();
}

void ThumbnailGrid::setSide(int pixels)
{
    m_side = std::max(smallestSide, pixels);
    layOut();
}

void ThumbnailGrid::setNamesShown(bool shown)
{
    m_names = shown;
    layOut();
}

void ThumbnailGrid::setIdsShown(bool shown)
{
    m_ids = shown;
    layOut();
}

void ThumbnailGrid::setBackground(const QColor& color)
{
    m_background = color;
    viewport()->update();
}

int ThumbnailGrid::columns() const
{
    return m_fixedColumns > 0 ? m_fixedColumns : std::max(1, viewport()->width() / (m_side + 2 * margin));
}

QSize ThumbnailGrid::cellSize() const
{
    const int width = std::max(smallestSide / 2, viewport()->width() / columns());
    const int captions = captionLines() * fontMetrics().height();
    if (m_fixedRows > 0)
        return {width, std::max(captions + smallestSide / 2, viewport()->height() / m_fixedRows)};
    const int side = m_fixedColumns > 0 ? width - 2 * margin : m_side;
    return {width, side + captions + 2 * margin};
}

QRect ThumbnailGrid::cell(qsizetype position) const
{
    const QSize size = cellSize();
    const qsizetype place = position - m_first;
    const qsizetype top = place / columns() * size.height() - verticalScrollBar()->value();
    return {QPoint(int(place % columns()) * size.width(), int(top)), size};
}

/// The picture at the top stays there.
void ThumbnailGrid::layOut()
{
    QScrollBar& bar = *verticalScrollBar();
    const int height = cellSize().height();
    const qsizetype top = bar.singleStep() > 0 ? qsizetype(bar.value()) / bar.singleStep() * bar.property("columns").toInt() : 0;
    const qsizetype rows = (m_count + columns() - 1) / columns();
    bar.setSingleStep(height);
    bar.setPageStep(std::max(height, viewport()->height() / height * height));
    bar.setRange(0, int(std::max<qsizetype>(0, rows * height - viewport()->height())));
    if (bar.property("columns").toInt() != columns())
        bar.setValue(int(top / columns()) * height);
    bar.setProperty("columns", columns());
    viewport()->update();
    askSoon();
}

std::pair<qsizetype, qsizetype> ThumbnailGrid::inSight() const
{
    const int height = cellSize().height();
    const qsizetype firstRow = verticalScrollBar()->value() / height;
    const qsizetype lastRow = (verticalScrollBar()->value() + viewport()->height() - 1) / height;
    const qsizetype end = m_first + m_count;
    return {std::min(end, m_first + firstRow * columns()), std::min(end, m_first + (lastRow + 1) * columns())};
}

qsizetype ThumbnailGrid::positionAt(QPoint at) const
{
    const QSize size = cellSize();
    const int column = at.x() / size.width();
    if (at.x() < 0 || column >= columns())
        return -1;
    const qsizetype row = (at.y() + verticalScrollBar()->value()) / size.height();
    const qsizetype position = m_first + row * columns() + column;
    return position < m_first + m_count ? position : -1;
}

// --- Thumbnails ----------------------------------------------------------------------------------

bool ThumbnailGrid::isReady(qsizetype position) const
{
    const QString name = m_source->name(position);
    return m_thumbnails.contains(name) || m_failures.contains(name);
}

QString ThumbnailGrid::failureOf(qsizetype position) const
{
    return m_failures.value(m_source->name(position));
}

/// What is in sight, then the next screen of it.
void ThumbnailGrid::ask()
{
    if (!m_loader || !m_source)
        return;
    QStringList names;
    if (isVisible()) {
        const auto [begin, end] = inSight();
        const qsizetype last = std::min(m_first + m_count, end + (end - begin));
        for (qsizetype position = begin; position < last; ++position) {
            const QString name = m_source->name(position);
            if (!m_fresh.contains(name) || (!m_thumbnails.contains(name) && !m_failures.contains(name)))
                names << name;
        }
    }
    m_loader->want(this, names);
}

void ThumbnailGrid::take(const QString& name, const QImage& thumbnail)
{
    auto* pixmap = new QPixmap(QPixmap::fromImage(thumbnail));
    const int kilobytes = 1 + pixmap->width() * pixmap->height() * pixmap->depth() / 8 / 1024;
    m_thumbnails.insert(name, pixmap, kilobytes);
    m_failures.remove(name);
    m_fresh.insert(name);
    updateName(name);
}

void ThumbnailGrid::takeFailure(const QString& name, const QString& why)
{
    if (m_failures.contains(name))
        return;
    m_failures.insert(name, why);
    m_thumbnails.remove(name);
    m_fresh.insert(name);
    updateName(name);
    Q_EMIT failed(why);
}

void ThumbnailGrid::updateName(const QString& name)
{
    if (!m_source)
        return;
    const auto [begin, end] = inSight();
    for (qsizetype position = begin; position < end; ++position) {
        if (m_source->name(position) == name)
            viewport()->update(cell(position));
    }
}

// --- Drawing -------------------------------------------------------------------------------------

void ThumbnailGrid::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    painter.fillRect(event->rect(), m_background.isValid() ? QBrush(m_background) : palette().base());
    if (!m_source)
        return;
    if (m_count == 0) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(viewport()->rect(), Qt::AlignCenter, u"Aucune image"_s);
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const auto [begin, end] = inSight();
    for (qsizetype position = begin; position < end; ++position) {
        const QRect box = cell(position);
        if (box.intersects(event->rect()))
            drawCell(painter, position, box);
    }
}

void ThumbnailGrid::drawCell(QPainter& painter, qsizetype position, const QRect& cell)
{
    const bool selected = m_selected.contains(m_source->id(position));
    const QRect frame = cell.adjusted(2, 2, -2, -2);
    if (selected)
        painter.fillRect(frame, palette().brush(hasFocus() ? QPalette::Active : QPalette::Inactive, QPalette::Highlight));
    const int captions = captionLines() * fontMetrics().height();
    drawPicture(painter, m_source->name(position), cell.adjusted(margin, margin, -margin, -margin - captions));
    drawCaptions(painter, position, QRect(cell.left() + margin, cell.bottom() - margin - captions + 1, cell.width() - 2 * margin, captions),
                 selected);
    if (position == m_current && hasFocus()) {
        painter.setPen(QPen(palette().color(selected ? QPalette::HighlightedText : QPalette::Text), 2, Qt::DotLine));
        painter.drawRect(frame.adjusted(1, 1, -2, -2));
    }
}

void ThumbnailGrid::drawPicture(QPainter& painter, const QString& name, const QRect& box)
{
    if (const QPixmap* pixmap = m_thumbnails.object(name)) {
        const QSize size = pixmap->size().scaled(box.size(), Qt::KeepAspectRatio);
        painter.drawPixmap(QRect(box.center() - QPoint((size.width() - 1) / 2, (size.height() - 1) / 2), size), *pixmap);
        return;
    }
    // Left empty: a frame where one is to come, a cross where there is none.
    const QColor faint = palette().color(QPalette::Mid);
    painter.setPen(faint);
    painter.drawRect(box.adjusted(0, 0, -1, -1));
    if (m_failures.contains(name)) {
        painter.drawLine(box.topLeft(), box.bottomRight());
        painter.drawLine(box.topRight(), box.bottomLeft());
    }
}

void ThumbnailGrid::drawCaptions(QPainter& painter, qsizetype position, const QRect& box, bool selected)
{
    QStringList lines;
    if (m_names)
        lines << m_source->name(position);
    if (m_ids)
        lines << QString::number(m_source->id(position));
    const QColor text = palette().color(hasFocus() ? QPalette::Active : QPalette::Inactive,
                                        selected ? QPalette::HighlightedText : QPalette::Text);
    const bool coloured = !selected && m_background.isValid();
    painter.setPen(coloured ? platform::readable(text, m_background.lightness() < 128 ? Qt::white : Qt::black, {m_background})
                            : text);
    QRect line(box.topLeft(), QSize(box.width(), fontMetrics().height()));
    for (const QString& text : std::as_const(lines)) {
        painter.drawText(line, Qt::AlignHCenter | Qt::AlignVCenter,
                         fontMetrics().elidedText(text, Qt::ElideMiddle, line.width()));
        line.translate(0, line.height());
    }
}

// --- Events that change what is in sight ---------------------------------------------------------

void ThumbnailGrid::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    layOut();
}

void ThumbnailGrid::scrollContentsBy(int, int)
{
    viewport()->update();
    askSoon();
}

void ThumbnailGrid::changeEvent(QEvent* event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        layOut();
}

void ThumbnailGrid::showEvent(QShowEvent* event)
{
    QAbstractScrollArea::showEvent(event);
    askSoon();
}

void ThumbnailGrid::hideEvent(QHideEvent* event)
{
    QAbstractScrollArea::hideEvent(event);
    askSoon(); // takes everything back
}

bool ThumbnailGrid::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && m_source) {
        auto* help = static_cast<QHelpEvent*>(event);
        const qsizetype position = positionAt(help->pos());
        QToolTip::showText(help->globalPos(), position < 0 ? QString() : tip(position), viewport(),
                           position < 0 ? QRect() : cell(position));
        return true;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

QString ThumbnailGrid::tip(qsizetype position) const
{
    const QString failure = failureOf(position);
    const QString text = m_source->name(position) + u"\nEnregistrement "_s + QString::number(m_source->id(position));
    return (failure.isEmpty() ? text : text + u'\n' + failure).toHtmlEscaped().replace(u'\n', u"<br>"_s);
}

} // namespace images
