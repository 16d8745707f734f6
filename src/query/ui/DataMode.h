// A result as rows and columns.
#pragma once

#include "query/ui/ResultMode.h"
#include "query/ui/ResultModel.h"

#include <QTableView>

namespace query {

/// A grid whose selection is that of the result, over all pages: a plain click begins a new one, Ctrl and Shift add.
class ResultGrid : public QTableView {
    Q_OBJECT
public:
    using QTableView::QTableView;

Q_SIGNALS:
    void beginsAnew();
    void activatedRow(const QModelIndex& index); ///< Return.
    void dragWanted();

protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index, const QEvent* event) const override;
    void keyPressEvent(QKeyEvent* event) override;
    void startDrag(Qt::DropActions actions) override;
};

/// The mode "data", over the run of the pane itself.
class DataMode : public ResultMode {
    Q_OBJECT
public:
    DataMode(ResultSource& source, ResultRun& run, QWidget* parent = nullptr);

    QString key() const override;
    void rowsReplaced() override;
    void rowsFound() override;
    void valuesChanged(const QStringList& modules) override;
    void setSelection(const ResultSelection& selection) override;
    ResultSelection selection() const override;
    bool can(platform::TabCommand command) const override;
    void run(platform::TabCommand command) override;

    ResultGrid& grid() { return *m_grid; }
    ResultModel& model() { return *m_model; }
    qint64 currentRow() const { return m_model->rowOf(m_grid->currentIndex()); } ///< In the whole result; -1.
    void setCurrentRow(qint64 row);
    void showPage();     ///< Another page is shown.
    void markSelected(); ///< Shows the selection of the result on the page.
    void selectAll();
    void selectInverse();
    void selectNone();
    void copyCell();
    void copy(bool headers);

Q_SIGNALS:
    void currentChanged();
    void columnMenuWanted(int column, const QPoint& globalPosition);
    void dragWanted();

private:
    void arrange();
    void takeSelection(const QItemSelection& selected, const QItemSelection& deselected);
    void activate(const QModelIndex& index);
    void showSort();

    ResultRun& m_run;
    ResultModel* m_model;
    ResultGrid* m_grid;
    QStringList m_fitted; ///< Headers whose widths are fitted.
    bool m_marking = false;
};

} // namespace query
