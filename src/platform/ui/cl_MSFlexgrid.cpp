#include "platform/ui/cl_MSFlexgrid.h"

#include "platform/CsvExport.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>

namespace platform {

using namespace Qt::StringLiterals;

cl_MSFlexgrid::cl_MSFlexgrid(QTableView& grid, std::function<qint32(int)> id) : m_grid(grid), m_id(std::move(id)) {}

// --- Columns ---------------------------------------------------------------------------------

int cl_MSFlexgrid::logical(int col) const
{
    const QHeaderView* header = m_grid.horizontalHeader();
    for (int place = 0; place < header->count(); ++place) {
        const int column = header->logicalIndex(place);
        if (!header->isSectionHidden(column) && col-- == 0)
            return column;
    }
    return -1;
}

int cl_MSFlexgrid::Cols() const
{
    const QHeaderView* header = m_grid.horizontalHeader();
    return header->count() - header->hiddenSectionCount();
}

QStringList cl_MSFlexgrid::Header() const
{
    QStringList texts;
    for (int col = 0; col < Cols(); ++col)
        texts << m_grid.model()->headerData(logical(col), Qt::Horizontal).toString();
    return texts;
}

void cl_MSFlexgrid::ColAutoSize(int col, int most)
{
    const int column = logical(col);
    if (column < 0)
        return;
    m_grid.resizeColumnToContents(column);
    m_grid.setColumnWidth(column, qMin(m_grid.columnWidth(column) + 8, most));
}

void cl_MSFlexgrid::AjustColWidth(int most)
{
    for (int col = 0; col < Cols(); ++col)
        ColAutoSize(col, most);
}

bool cl_MSFlexgrid::CroissantOrder() const
{
    return m_grid.horizontalHeader()->sortIndicatorOrder() == Qt::AscendingOrder;
}

void cl_MSFlexgrid::setCroissantOrder(bool ascending)
{
    const QSignalBlocker quiet(m_grid.horizontalHeader());
    m_grid.horizontalHeader()->setSortIndicator(m_grid.horizontalHeader()->sortIndicatorSection(),
                                                ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
}

void cl_MSFlexgrid::ColSort(int col)
{
    if (const int column = logical(col); column >= 0)
        m_grid.sortByColumn(column, CroissantOrder() ? Qt::AscendingOrder : Qt::DescendingOrder);
}

// --- Rows ------------------------------------------------------------------------------------

int cl_MSFlexgrid::Count() const
{
    return m_grid.model() ? m_grid.model()->rowCount() : 0;
}

QString cl_MSFlexgrid::TextMatrix(int row, int col) const
{
    return m_grid.model()->index(row, logical(col)).data().toString();
}

qint32 cl_MSFlexgrid::RowIDItem(int row) const
{
    return m_id && row >= 0 && row < Count() ? m_id(row) : 0;
}

QString cl_MSFlexgrid::KeyAll() const
{
    QStringList ids;
    for (int row = 0; row < Count(); ++row)
        ids << QString::number(RowIDItem(row));
    return ids.join(u',');
}

bool cl_MSFlexgrid::Remove(int row)
{
    return m_grid.model()->removeRow(row);
}

// --- Selection -------------------------------------------------------------------------------

void cl_MSFlexgrid::SelectAll()
{
    m_grid.selectAll();
}

void cl_MSFlexgrid::SelectNone()
{
    m_grid.clearSelection();
}

void cl_MSFlexgrid::SelectInverse()
{
    if (Count() == 0)
        return;
    const QModelIndex last = m_grid.model()->index(Count() - 1, m_grid.model()->columnCount() - 1);
    m_grid.selectionModel()->select(QItemSelection(m_grid.model()->index(0, 0), last), QItemSelectionModel::Toggle);
}

int cl_MSFlexgrid::SelCount() const
{
    return int(selectedRows().size());
}

QList<int> cl_MSFlexgrid::selectedRows() const
{
    QList<int> rows;
    for (const QModelIndex& index : m_grid.selectionModel()->selectedRows(qMax(0, logical(0))))
        rows << index.row();
    std::sort(rows.begin(), rows.end());
    return rows;
}

QString cl_MSFlexgrid::IDSelected() const
{
    QStringList numbers;
    for (const int row : selectedRows())
        numbers << QString::number(row);
    return numbers.join(u',');
}

QString cl_MSFlexgrid::KeySelected() const
{
    QStringList ids;
    for (const int row : selectedRows())
        ids << QString::number(RowIDItem(row));
    return ids.join(u',');
}

// --- Texts -----------------------------------------------------------------------------------

QStringList cl_MSFlexgrid::cells(int row) const
{
    QStringList texts;
    for (int col = 0; col < Cols(); ++col)
        texts << TextMatrix(row, col);
    return texts;
}

void cl_MSFlexgrid::CopyCell() const
{
    QGuiApplication::clipboard()->setText(m_grid.currentIndex().data().toString());
}

void cl_MSFlexgrid::CopyRowSel(const QString& rows) const
{
    QList<QStringList> copied;
    for (const QString& number : rows.split(u',', Qt::SkipEmptyParts)) {
        bool valid = false;
        const int row = number.trimmed().toInt(&valid);
        if (valid && row >= 0 && row < Count())
            copied << cells(row);
    }
    QGuiApplication::clipboard()->setText(csvText(copied));
}

bool cl_MSFlexgrid::ExportCSV(Dialogues& dialogues, const QString& file, bool mark) const
{
    int row = 0;
    return exportCsv(
        dialogues, file, Header(),
        [&](QStringList& texts) {
            if (row >= Count())
                return false;
            texts = cells(row++);
            return true;
        },
        mark);
}

} // namespace platform
