// A tab with the records of a table.
#pragma once

#include "app/ui/GridModel.h"
#include "app/ui/WindowState.h"
#include "platform/ui/DocumentTab.h"

#include <QLabel>
#include <QPushButton>
#include <QStackedLayout>
#include <QTableView>

namespace app {

/// Read-only. Header clicks sort (ascending, descending, as the table stands); widths and order of
/// the columns are remembered for each table.
class GridTab : public platform::DocumentTab {
    Q_OBJECT
public:
    GridTab(GridSource source, Session& session, platform::TaskRunner& runner, WindowState& state,
            QWidget* parent = nullptr);
    ~GridTab() override;

    GridModel& model() { return *m_model; }
    QTableView& view() { return *m_view; }
    const GridSource& source() const { return m_model->source(); }

    QString key() const override { return source().key; }
    QString title() const override { return source().title; }
    QIcon icon() const override;
    /// "163 enregistrements", with the number of selected ones.
    QString statusText() const override;
    bool can(platform::TabCommand command) const override;
    void run(platform::TabCommand command) override;
    void recordsWritten(const QStringList& modules) override;
    bool survivesReopening() const override { return true; }
    void projectReopened() override { m_model->reloadIfStale(); }

    /// Puts the selected rows on the clipboard; many of them are read beside the windows.
    void copy(bool headers);
    /// Every row with the columns that are shown, in the order in which they are.
    void print();
    void selectAll();
    void fitColumns();
    /// Identifiers of the selected rows, in their order.
    QList<qint32> selectedIds() const;
    /// Of the rows around the current one, in their order, at most so many.
    QList<qint32> idsAround(int most) const;
    qint32 currentId() const; ///< 0 for none.

Q_SIGNALS:
    void activated(qint32 id); ///< Double click or Return on a row.
    void addWanted();          ///< The button of an empty table.

private:
    void arrangeView();
    void connectModel();
    void showSort(int column, Qt::SortOrder order);
    void firstRows();
    void showRowsOrNote();
    bool restoreColumns();
    void rememberColumns();
    QList<int> shownColumns() const;
    qint32 idOf(int row) const;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void activate(const QModelIndex& index);
    void returnToRow();

    Session& m_session;
    WindowState& m_state;
    platform::TaskRunner& m_runner;
    GridModel* m_model;
    QTableView* m_view;
    QLabel* m_note;        ///< Why there are no rows.
    QPushButton* m_add;    ///< Below it, where one can be added.
    QWidget* m_noteAndAdd;
    QStackedLayout* m_layout;
    bool m_arranged = false;
    int m_rowWanted = -1; ///< To be the current one again as soon as it is found; -1 for none.
};

} // namespace app
