// One page of a result for a view.
#pragma once

#include "query/ui/ResultRun.h"

#include <QAbstractTableModel>
#include <QSet>

namespace query {

/// The rows of the page shown, never more than 10,000. A cell is read and formatted when it is seen; while the project
/// is another thread's, rows not seen before are blank.
class ResultModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit ResultModel(ResultRun& run, QObject* parent = nullptr);

    /// The result, its page or its columns are others.
    void reset();
    /// Rows were found: those of the page are announced, blanks are filled.
    void grow();
    /// The values are read anew.
    void reread();
    qint64 rowOf(const QModelIndex& index) const; ///< In the whole result; -1 for none.
    QModelIndex indexOf(qint64 row, int column = 0) const; ///< Invalid when it is not on the page.

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    /// A value as a cell shows it.
    static QString shownText(const QVariant& value, const QString& plain);

Q_SIGNALS:
    void sortWanted(int column, bool descending);

private:
    void fillGaps();

    ResultRun& m_run;
    int m_shown = 0; ///< Rows announced.
    int m_columns = 0;
    mutable QSet<qint64> m_gaps; ///< Rows that were shown blank.
};

} // namespace query
