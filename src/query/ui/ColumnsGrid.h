// The output columns of a query as a grid to fill.
#pragma once

#ifndef Q_MOC_RUN // which reads plain letters only
#include "query/Query.h"
#endif

#include <QAbstractTableModel>
#include <QTableView>

namespace query {

class Query;

/// One row for each output column: the field, its alias ("Nom du champ"), its order ("Ordre du Tri").
class ColumnsModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Field, Alias, Order, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;
    void setQuery(Query* query); ///< Null for none.
    void refresh();              ///< The query changed.

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : int(ColumnCount); }
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;
    Qt::DropActions supportedDropActions() const override { return Qt::CopyAction | Qt::MoveAction; }

Q_SIGNALS:
    /// Fields were dropped before that row.
    void fieldsDropped(const QStringList& paths, int row);

private:
    Query* m_query = nullptr;
    qsizetype m_rows = 0; ///< As the views were told.
};

/// Delete removes, Alt and the arrows move, F2 or a double click edits.
class ColumnsGrid : public QTableView {
    Q_OBJECT
public:
    explicit ColumnsGrid(QWidget* parent = nullptr);

    void setQuery(Query* query);
    ColumnsModel& columns() { return *m_model; }
    int currentRow() const { return currentIndex().row(); }
    void removeSelected();
    void moveCurrent(int by);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    ColumnsModel* m_model;
    Query* m_query = nullptr;
};

/// Writes a hint into the middle of an empty view.
void paintHint(QAbstractItemView& view, const QString& text);

} // namespace query
