#include "platform/ui/TablePrinter.h"

#include <algorithm>
#include <numeric>

namespace platform {

using namespace Qt::StringLiterals;

namespace {

constexpr double usualPoints = 9, crampedPoints = 7;
constexpr double paddingMm = 1.2;
constexpr double widestMm = 70;       ///< A column takes no more unbroken.
constexpr double widestWordMm = 30;   ///< A longer word is broken.
constexpr int sampledRows = 300;      ///< Widths are found from the first ones.
constexpr int rowsAtOnce = 200;
constexpr double highestShare = 0.4;  ///< Of the page; a longer text is cut.

/// Lines end between words; only a word that is wider than its cell is broken.
int wrapOf(const QFontMetricsF& metrics, const QString& text, double room)
{
    const QStringList words = text.simplified().split(u' ');
    const bool fit = std::all_of(words.begin(), words.end(), [&](const QString& word) { return metrics.horizontalAdvance(word) <= room; });
    return fit ? Qt::TextWordWrap : Qt::TextWrapAnywhere;
}

} // namespace

TablePrinter::TablePrinter(PrintTable table, const QDateTime& time) : m_table(std::move(table)), m_time(time) {}

/// Rows come in pieces; the one asked for is mostly in the piece read last.
const PrintRow& TablePrinter::row(qint64 number)
{
    static const PrintRow none;
    if (m_pageFirst < 0 || number < m_pageFirst || number >= m_pageFirst + m_page.size()) {
        m_page = m_table.rows(number, rowsAtOnce);
        m_pageFirst = number;
    }
    return m_page.isEmpty() ? none : m_page[number - m_pageFirst];
}

void TablePrinter::measure(const PrintedPage& page, double points)
{
    m_points = points;
    m_padding = page.mm(paddingMm);
    m_boldMetrics = page.metrics(PrintedPage::font(points, true));
    m_plainMetrics = page.metrics(PrintedPage::font(points));
    const QFontMetricsF &bold = *m_boldMetrics, &plain = *m_plainMetrics;
    const auto wordWidth = [](const QFontMetricsF& metrics, const QString& text) {
        double widest = 0;
        for (const QString& word : text.simplified().split(u' '))
            widest = qMax(widest, metrics.horizontalAdvance(word));
        return widest;
    };
    m_natural.clear();
    m_least.clear();
    for (const PrintColumn& column : m_table.columns) {
        m_natural << bold.horizontalAdvance(column.title);
        m_least << wordWidth(bold, column.title);
    }
    const QList<PrintRow> sample = m_table.rows(0, sampledRows);
    for (const PrintRow& row : sample) {
        for (qsizetype i = 0; !row.heading && i < qMin(row.cells.size(), m_natural.size()); ++i) {
            for (const QString& line : row.cells[i].split(u'\n'))
                m_natural[i] = qMax(m_natural[i], plain.horizontalAdvance(line));
            m_least[i] = qMax(m_least[i], wordWidth(plain, row.cells[i]));
        }
    }
    for (qsizetype i = 0; i < m_natural.size(); ++i) {
        m_natural[i] = qMin(m_natural[i] + 1, page.mm(widestMm)) + 2 * m_padding;
        m_least[i] = qMin(qMin(m_least[i] + 1, page.mm(widestWordMm)) + 2 * m_padding, m_natural[i]);
    }
}

double TablePrinter::room(const QList<double>& widths) const
{
    return std::accumulate(widths.begin(), widths.end(), 0.0);
}

/// Widths of columns that share a sheet: natural ones, or as near to them as there is room.
QList<double> TablePrinter::fitted(const QList<int>& columns, double width) const
{
    double natural = 0, least = 0;
    for (const int column : columns) {
        natural += m_natural[column];
        least += m_least[column];
    }
    const double share = natural <= width ? 1 : natural > least ? qMax(0.0, (width - least) / (natural - least)) : 0;
    QList<double> widths;
    for (const int column : columns)
        widths << m_least[column] + (m_natural[column] - m_least[column]) * share;
    return widths;
}

void TablePrinter::divide(double width)
{
    m_sheets.clear();
    QList<int> columns;
    double taken = 0;
    for (int column = 0; column < int(m_table.columns.size()); ++column) {
        if (!columns.isEmpty() && taken + m_least[column] > width) {
            m_sheets.append({columns, fitted(columns, width)});
            columns = {0}; // tells which row it is
            taken = m_least[0];
        }
        columns << column;
        taken += m_least[column];
    }
    m_sheets.append({columns, fitted(columns, width)});
}

void TablePrinter::arrange(const PrintedPage& page)
{
    preparePage(page.device(), false);
    measure(page, usualPoints);
    if (room(m_natural) > page.size().width()) {
        preparePage(page.device(), true);
        if (room(m_least) > page.size().width())
            measure(page, crampedPoints);
    }
    divide(page.size().width());
}

double TablePrinter::cellHeight(const PrintedPage& page, const QString& text, double width, bool bold) const
{
    const QFontMetricsF& metrics = *(bold ? m_boldMetrics : m_plainMetrics);
    const double room = width - 2 * m_padding;
    const double most = page.body().height();
    // Most cells are one line; only the others are laid out.
    const bool single = !text.contains(u'\n') && metrics.horizontalAdvance(text) <= room;
    const double lines = single ? metrics.height() : metrics.boundingRect(QRectF(0, 0, room, most), wrapOf(metrics, text, room), text).height();
    return qMax(lines, metrics.height()) + m_padding;
}

/// The same on every sheet, so that they can be laid side by side.
double TablePrinter::rowHeight(const PrintedPage& page, const PrintRow& row) const
{
    if (row.heading)
        return cellHeight(page, row.cells.value(0), page.size().width(), true) + m_padding;
    double height = 0;
    for (const Sheet& sheet : m_sheets) {
        for (qsizetype i = 0; i < sheet.columns.size(); ++i)
            height = qMax(height, cellHeight(page, row.cells.value(sheet.columns[i]), sheet.widths[i], false));
    }
    return qMin(height, page.body().height() * highestShare);
}

double TablePrinter::headerHeight(const PrintedPage& page) const
{
    double height = 0;
    for (const Sheet& sheet : m_sheets) {
        for (qsizetype i = 0; i < sheet.columns.size(); ++i)
            height = qMax(height, cellHeight(page, m_table.columns[sheet.columns[i]].title, sheet.widths[i], true));
    }
    return height + m_padding;
}

void TablePrinter::paginate(const PrintedPage& page, Progression& progression)
{
    m_stretches.clear();
    const double room = page.body().height() - headerHeight(page);
    double used = 0;
    Stretch stretch;
    for (qint64 number = 0; !row(number).cells.isEmpty(); ++number) {
        const PrintRow current = row(number);
        double height = rowHeight(page, current);
        // A heading is not left alone at the foot of a page.
        const double next = current.heading ? rowHeight(page, row(number + 1)) : 0;
        if (stretch.count > 0 && used + height + next > room) {
            m_stretches << stretch;
            stretch = {number, 0};
            used = 0;
            progression.step(u"Mise en page"_s, -1);
            if (progression.cancelled())
                return;
        }
        used += height;
        ++stretch.count;
    }
    m_stretches << stretch;
}

double TablePrinter::drawRow(QPainter& painter, const PrintedPage& page, const Sheet& sheet, const PrintRow& row, double top,
                             bool header) const
{
    const double height = header ? headerHeight(page) : rowHeight(page, row);
    const double width = row.heading ? page.size().width() : room(sheet.widths);
    painter.setFont(PrintedPage::font(m_points, header || row.heading));
    if (header)
        painter.fillRect(QRectF(0, top, width, height), QColor(0xE8, 0xE8, 0xE8));
    double left = 0;
    for (qsizetype i = 0; i < (row.heading ? 1 : sheet.columns.size()); ++i) {
        const int column = sheet.columns[i];
        const double cell = row.heading ? width : sheet.widths[i];
        const QRectF box(left + m_padding, top + m_padding / 2, cell - 2 * m_padding, height - m_padding / 2);
        const bool right = !row.heading && m_table.columns[column].right;
        painter.save();
        painter.setClipRect(QRectF(left, top, cell, height));
        const QString text = row.cells.value(row.heading ? 0 : column);
        const int lines = wrapOf(header || row.heading ? *m_boldMetrics : *m_plainMetrics, text, box.width());
        painter.drawText(box, lines | (right ? Qt::AlignRight : Qt::AlignLeft) | (row.heading ? Qt::AlignBottom : Qt::AlignTop), text);
        painter.restore();
        left += cell;
    }
    painter.setPen(QPen(row.heading || header ? Qt::black : Qt::lightGray, page.mm(0.1)));
    painter.drawLine(QPointF(0, top + height), QPointF(width, top + height));
    painter.setPen(Qt::black);
    return top + height;
}

void TablePrinter::drawPage(QPainter& painter, const PrintedPage& page, const Sheet& sheet, const Stretch& stretch)
{
    QStringList titles;
    for (const PrintColumn& column : std::as_const(m_table.columns))
        titles << column.title;
    double top = drawRow(painter, page, sheet, {titles, false}, page.body().top(), true);
    for (int i = 0; i < stretch.count; ++i)
        top = drawRow(painter, page, sheet, row(stretch.first + i), top, false);
}

int TablePrinter::print(QPagedPaintDevice& device, Progression& progression)
{
    const PrintedPage page(device, m_table.title, m_time);
    m_pageFirst = -1;
    arrange(page); // before the painter: the first page is across or upright once it has begun
    paginate(page, progression);
    QPainter painter(&device);
    const int pages = int(m_stretches.size() * m_sheets.size());
    int number = 0;
    for (const Stretch& stretch : std::as_const(m_stretches)) {
        for (qsizetype sheet = 0; sheet < m_sheets.size(); ++sheet) {
            if (number > 0)
                device.newPage();
            progression.step(u"Impression"_s, number * 100 / pages);
            ++number;
            const QString note = m_sheets.size() > 1
                                     ? u"Feuille %1 sur %2 en largeur"_s.arg(QString::number(sheet + 1), QString::number(m_sheets.size()))
                                     : QString();
            page.draw(painter, number, pages, note);
            drawPage(painter, page, m_sheets[sheet], stretch);
            if (progression.cancelled())
                return number;
        }
    }
    return number;
}

} // namespace platform
