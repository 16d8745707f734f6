// Rows of any grid on paper.
#pragma once

#include "platform/Progression.h"
#include "platform/ui/PrintedPage.h"

#include <QStringList>
#include <optional>

namespace platform {

/// A column of a printed table.
struct PrintColumn {
    QString title;
    bool right = false; ///< Numbers stand at the right.
};

/// A row of a printed table. A heading spans the table, its text in the first cell.
struct PrintRow {
    QStringList cells;
    bool heading = false;
};

/// What is printed. Rows are read in pages, more than once: widths and the number of pages are found before anything is
/// drawn. `rows` may throw; it gives fewer rows than asked for at the end alone.
struct PrintTable {
    QString title;
    QList<PrintColumn> columns;
    std::function<QList<PrintRow>(qint64 first, int count)> rows;
};

/// Lays a table out on A4 pages with title, date, page numbers and repeated headers. Upright where its columns have room so, else
/// across; columns that still have no room are narrowed, their texts broken into lines; where that is not enough the text gets
/// smaller, and at last the columns go onto several sheets side by side, the first column on each of them.
class TablePrinter {
public:
    TablePrinter(PrintTable table, const QDateTime& time);

    /// Draws every page, and gives their number. Errors of `rows` pass through; a wish to stop ends with the page begun.
    int print(QPagedPaintDevice& device, Progression& progression);

private:
    /// Columns side by side on one sheet.
    struct Sheet {
        QList<int> columns;
        QList<double> widths;
    };
    /// Rows of one page, and whether it is the last.
    struct Stretch {
        qint64 first = 0;
        int count = 0;
    };

    void measure(const PrintedPage& page, double points);
    double room(const QList<double>& widths) const;
    void arrange(const PrintedPage& page);
    QList<double> fitted(const QList<int>& columns, double width) const;
    void divide(double width);
    double rowHeight(const PrintedPage& page, const PrintRow& row) const;
    double headerHeight(const PrintedPage& page) const;
    double cellHeight(const PrintedPage& page, const QString& text, double width, bool bold) const;
    void paginate(const PrintedPage& page, Progression& progression);
    void drawPage(QPainter& painter, const PrintedPage& page, const Sheet& sheet, const Stretch& stretch);
    double drawRow(QPainter& painter, const PrintedPage& page, const Sheet& sheet, const PrintRow& row, double top, bool header) const;
    const PrintRow& row(qint64 number);

    PrintTable m_table;
    QDateTime m_time;
    double m_points = 9;
    double m_padding = 0;
    std::optional<QFontMetricsF> m_plainMetrics, m_boldMetrics;
    QList<double> m_whole;   ///< Widths without any break, …
    QList<double> m_mean;    ///< Of the widths of the texts, their lines laid side by side.
    QList<double> m_natural; ///< … the same, but no wider than a column is wont to be, …
    QList<double> m_least;   ///< … and with all breaks that are possible.
    QList<Sheet> m_sheets;
    QList<Stretch> m_stretches;
    QList<PrintRow> m_page;  ///< Rows read last.
    qint64 m_pageFirst = -1;
};

} // namespace platform
