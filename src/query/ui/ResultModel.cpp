#include "query/ui/ResultModel.h"

#include <QLocale>

namespace query {

using namespace Qt::StringLiterals;

namespace {

/// Longer texts are cut in a cell; the whole stands in the tip.
constexpr qsizetype cellLength = 300;
constexpr qsizetype tipLength = 2000;

bool isNumeric(jet::DataType type)
{
    using enum jet::DataType;
    return type == Byte || type == Integer || type == Long || type == Single || type == Double;
}

} // namespace

ResultModel::ResultModel(ResultRun& run, QObject* parent) : QAbstractTableModel(parent), m_run(run)
{
    connect(&run.runner(), &platform::TaskRunner::finished, this, &ResultModel::fillGaps);
}

void ResultModel::reset()
{
    beginResetModel();
    m_shown = m_run.results() ? int(m_run.results()->rowsOnPage()) : 0;
    m_columns = m_run.results() ? m_run.results()->Cols() : 0;
    m_gaps.clear();
    endResetModel();
}

void ResultModel::grow()
{
    const int rows = m_run.results() ? int(m_run.results()->rowsOnPage()) : 0;
    if (rows > m_shown) {
        beginInsertRows({}, m_shown, rows - 1);
        m_shown = rows;
        endInsertRows();
    }
    fillGaps();
}

void ResultModel::reread()
{
    if (m_run.results())
        m_run.results()->forgetValues();
    if (m_shown > 0)
        Q_EMIT dataChanged(index(0, 0), index(m_shown - 1, m_columns - 1));
}

void ResultModel::fillGaps()
{
    if (m_gaps.isEmpty() || m_run.isBusy() || m_shown == 0)
        return;
    const auto [first, last] = std::minmax_element(m_gaps.begin(), m_gaps.end());
    const QModelIndex from = indexOf(*first);
    const QModelIndex to = indexOf(*last, m_columns - 1);
    for (const qint64 row : std::as_const(m_gaps))
        m_run.results()->value(row, 0); // read now: the next slice may begin before the view paints
    m_gaps.clear();
    if (from.isValid() && to.isValid())
        Q_EMIT dataChanged(from, to);
}

qint64 ResultModel::rowOf(const QModelIndex& index) const
{
    return index.isValid() && m_run.results() ? m_run.results()->firstRow() + index.row() : -1;
}

QModelIndex ResultModel::indexOf(qint64 row, int column) const
{
    const Results* results = m_run.results();
    const qint64 place = results ? row - results->firstRow() : -1;
    return place >= 0 && place < m_shown ? index(int(place), column) : QModelIndex();
}

int ResultModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_shown;
}

int ResultModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_columns;
}

QString ResultModel::shownText(const QVariant& value, const QString& plain)
{
    if (value.typeId() != QMetaType::Double)
        return plain;
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(value.toDouble(), 'f', QLocale::FloatingPointShortest);
}

QVariant ResultModel::data(const QModelIndex& index, int role) const
{
    Results* results = m_run.results();
    const qint64 row = rowOf(index);
    if (!results || row < 0 || index.row() >= m_shown || index.column() >= m_columns)
        return {};
    if (role == Qt::TextAlignmentRole)
        return int((isNumeric(results->type(index.column())) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole && role != Qt::AccessibleTextRole)
        return {};
    if (!results->isRead(row) && m_run.isBusy()) {
        m_gaps.insert(row);
        return {};
    }
    const QString text = shownText(results->value(row, index.column()), results->TextMatrix(row, index.column()));
    if (role == Qt::ToolTipRole)
        return text.size() > 40 ? Qt::convertFromPlainText(text.left(tipLength)) : QString();
    return text.size() > cellLength || text.contains(u'\n') ? text.left(cellLength).simplified() : text;
}

QVariant ResultModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    const Results* results = m_run.results();
    if (!results || section < 0)
        return {};
    if (orientation == Qt::Vertical)
        return role == Qt::DisplayRole ? QVariant(QString::number(results->firstRow() + section + 1)) : QVariant();
    if (role == Qt::DisplayRole)
        return results->HeaderColumn(section);
    if (role == Qt::TextAlignmentRole)
        return int((isNumeric(results->type(section)) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    return {};
}

void ResultModel::sort(int column, Qt::SortOrder order)
{
    if (column >= 0 && column < m_columns)
        Q_EMIT sortWanted(column, order == Qt::DescendingOrder);
}

} // namespace query
