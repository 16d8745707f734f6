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
constexpr double crampedWordMm = 20;  ///< … where there is little room.
constexpr int sampledRows = 300;      ///< Widths are found from the first ones.
constexpr int rowsAtOnce = 200;
constexpr double highestShare = 0.4;  ///< Of the page; a longer text is cut.

/// Lines end between words; a word that is wider than its cell gets places (of no width) where a line may end.
QString breakable(const QFontMetricsF& metrics, const QString& text, double room)
{
    QString result;
    double taken = 0; // of the word that runs
    for (const QChar c : text) {
        const double width = c.isSpace() ? 0 : metrics.horizontalAdvance(c);
        taken = c.isSpace() ? 0 : taken + width;
        if (taken > room && taken > width) {
            result += QChar(0x200B);
            taken = width;
        }
        result += c;
    }
    return result;
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
    const double widestWord = page.mm(points < usualPoints ? crampedWordMm : widestWordMm);
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
    m_mean = QList<double>(m_table.columns.size());
    m_whole.clear();
    m_natural.clear();
    m_least.clear();
    for (const PrintColumn& column : m_table.columns) {
        m_natural << bold.horizontalAdvance(column.title);
        m_least << wordWidth(bold, column.title);
    }
    const QList<PrintRow> sample = m_table.rows(0, sampledRows);
    for (const PrintRow& row : sample) {
        for (qsizetype i = 0; !row.heading && i < qMin(row.cells.size(), m_natural.size()); ++i) {
            for (const QString& line : row.cells[i].split(u'\n')) {
                const double wide = plain.horizontalAdvance(line);
                m_natural[i] = qMax(m_natural[i], wide);
                m_mean[i] += wide / double(sample.size());
            }
            m_least[i] = qMax(m_least[i], wordWidth(plain, row.cells[i]));
        }
    }
    for (qsizetype i = 0; i < m_natural.size(); ++i) {
        m_whole << m_natural[i] + 1 + 2 * m_padding;
        m_natural[i] = qMin(m_natural[i] + 1, page.mm(widestMm)) + 2 * m_padding;
        m_least[i] = qMin(qMin(m_least[i] + 1, widestWord) + 2 * m_padding, m_natural[i]);
    }
}

double TablePrinter::room(const QList<double>& widths) const
{
    return std::accumulate(widths.begin(), widths.end(), 0.0);
}

/// Widths of columns that share a sheet: natural ones, or more where room is left, or else the least ones and what there is
/// beyond them, which goes where the texts are long.
QList<double> TablePrinter::fitted(const QList<int>& columns, double width) const
{
    QList<double> widths, most;
    double natural = 0;
    for (const int column : columns)
        natural += m_natural[column];
    for (const int column : columns) {
        widths << (natural > width ? m_least[column] : m_natural[column]);
        most << (natural > width ? m_natural[column] : m_whole[column]);
    }
    constexpr int rounds = 4; // a column that is full leaves its part to the others
    for (int round = 0; round < rounds; ++round) {
        const double left = width - room(widths);
        double longest = 0;
        for (qsizetype i = 0; i < columns.size(); ++i)
            longest += most[i] > widths[i] ? m_mean[columns[i]] : 0;
        if (left <= 0 || longest <= 0)
            break;
        for (qsizetype i = 0; i < columns.size(); ++i)
            widths[i] = qMax(widths[i], qMin(most[i], widths[i] + left * m_mean[columns[i]] / longest));
    }
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
    const double lines = single ? metrics.height() : metrics.boundingRect(QRectF(0, 0, room, most), Qt::TextWordWrap, breakable(metrics, text, room)).height();
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
        const QString text =
            breakable(header || row.heading ? *m_boldMetrics : *m_plainMetrics, row.cells.value(row.heading ? 0 : column), box.width());
        const int place = (right ? Qt::AlignRight : Qt::AlignLeft) | (row.heading ? Qt::AlignBottom : Qt::AlignTop);
        painter.drawText(box, Qt::TextWordWrap | place, text);
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
