// A tab with the records of a table.
#pragma once

#include "app/ui/GridModel.h"
#include "app/ui/WindowState.h"

#include <QLabel>
#include <QStackedLayout>
#include <QTableView>

namespace app {

/// Read-only. Header clicks sort (ascending, descending, as the table stands); widths and order of
/// the columns are remembered for each table.
class GridTab : public QWidget {
    Q_OBJECT
public:
    GridTab(GridSource source, Session& session, platform::TaskRunner& runner, WindowState& state,
            QWidget* parent = nullptr);
    ~GridTab() override;

    GridModel& model() { return *m_model; }
    QTableView& view() { return *m_view; }
    const GridSource& source() const { return m_model->source(); }

    /// Puts the selected rows on the clipboard; many of them are read beside the windows.
    void copy(bool headers);
    void selectAll();
    void fitColumns();
    /// "163 enregistrements", with the number of selected ones.
    QString statusText() const;

Q_SIGNALS:
    void statusChanged();
    void failed(const QString& description);

private:
    void arrangeView();
    void connectModel();
    void showSort(int column, Qt::SortOrder order);
    void firstRows();
    void showRowsOrNote();
    bool restoreColumns();
    void rememberColumns();
    QList<int> shownColumns() const;

    WindowState& m_state;
    platform::TaskRunner& m_runner;
    GridModel* m_model;
    QTableView* m_view;
    QLabel* m_note;
    QStackedLayout* m_layout;
    bool m_arranged = false;
};

} // namespace app
