// The records of a table for a view.
#pragma once

#include "app/ui/GridRows.h"
#include "app/ui/GridSource.h"
#include "platform/ui/TaskRunner.h"

#include <QAbstractTableModel>
#include <QTimer>

namespace app {

class Session;

/// Opens its statement beside the windows, shows the first rows at once and finds the others bit by bit. A value
/// is read and formatted when it is first seen. While the database is another thread's, rows not seen before are blank.
///
/// Sorting runs the statement again with its order.
class GridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    GridModel(GridSource source, Session& session, platform::TaskRunner& runner, QObject* parent = nullptr);
    ~GridModel() override;

    const GridSource& source() const { return m_source; }
    /// Runs the statement (again), in the order shown now.
    void load();
    /// Records were written: shows the rows as they are now, and runs the statement again when rows came or went.
    void follow();
    /// Runs it again when the project was closed and opened meanwhile.
    void reloadIfStale();
    /// Every row is known.
    bool isComplete() const { return m_rows && m_rows->complete(); }
    bool isLoading() const { return m_loading; }
    int sortColumn() const { return m_sortColumn; }
    Qt::SortOrder sortOrder() const { return m_sortOrder; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    /// -1 stands for the order of the table. A sort that fails or is stopped leaves the rows as they were.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    /// The rows themselves, for work on many of them; nullptr when there are none.
    std::shared_ptr<GridRows> rows() const { return m_rows; }
    /// The text of a value as the grid shows it.
    static QString shownText(const QVariant& value, int type);
    /// As it is copied: whole, numbers with the decimal comma and without grouping.
    static QString copyText(const QVariant& value, int type);

Q_SIGNALS:
    void countChanged();
    /// The statement could not be run.
    void failed(const QString& description);
    void sorted(int column, Qt::SortOrder order); ///< The order shown now.

private:
    void start(int column, Qt::SortOrder order);
    void adopt(std::shared_ptr<GridRows> rows, int column, Qt::SortOrder order);
    void refuse(std::exception_ptr failure);
    void lookFurther();
    void showGaps();
    const GridRows::Row* values(int row) const;

    GridSource m_source;
    Session& m_session;
    platform::TaskRunner& m_runner;
    std::shared_ptr<GridRows> m_rows;
    QTimer m_counting;
    int m_shown = 0; ///< Rows announced to the view.
    int m_sortColumn;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    int m_generation = 0; ///< Late results of an earlier run are dropped.
    bool m_loading = false;
    mutable bool m_gaps = false; ///< Blanks were shown while the database was away.
};

} // namespace app
