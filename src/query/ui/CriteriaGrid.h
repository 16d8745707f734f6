// The criteria of a query as a grid to fill.
#pragma once

#include "query/ui/CriteriaModel.h"
#include "query/ui/CriterionEditors.h"

#include <QTreeView>

namespace query {

/// Insert adds a row, Delete removes, Alt and the arrows move, F2 or a double click edits.
class CriteriaGrid : public QTreeView {
    Q_OBJECT
public:
    explicit CriteriaGrid(QWidget* parent = nullptr);

    void setQuery(Query* query);
    CriteriaModel& criteria() { return *m_model; }
    CriterionDelegate& editors() { return *m_delegate; }
    int currentRow() const { return m_model->rowOf(currentIndex()); } ///< -1 for none.
    void setCurrentRow(int row, int column = CriteriaModel::Field);
    /// "add", "addchild", "addbrother", "delete", "up", "down" on the current row; a new one is on that field and its
    /// value may be typed at once.
    void command(const QString& key, const QString& path = {});
    void addOrEmpty();
    void editValue(int row);

Q_SIGNALS:
    void menuWanted(const QPoint& globalPosition);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    CriteriaModel* m_model;
    CriterionDelegate* m_delegate;
};

} // namespace query
