// The fields of a project to choose from: a tree, and a line to find them by typing.
#pragma once

#include "query/ui/FieldTreeModel.h"

#include <QLabel>
#include <QLineEdit>
#include <QSortFilterProxyModel>
#include <QTreeView>

namespace query {

/// The control `CbModule`. Return or a double click on a field asks for it as a column, Shift+Return as a criterion.
class CbModule : public QWidget {
    Q_OBJECT
public:
    CbModule(FieldTreeModel::Icons icons, QWidget* parent = nullptr);

    void setStructure(Structure* structure); ///< Null for none; it must outlive the control or be taken away.
    FieldTreeModel& model() { return *m_model; }
    QTreeView& view() { return *m_tree; }
    QLineEdit& searchLine() { return *m_line; }

    QString KeySelected() const;
    QString ChampSelected() const; ///< Path; empty for none.
    void setChampSelected(const QString& path);
    editing::Cl_Edition* ClasseSelected() const;
    bool Checkboxes() const { return m_model->checkboxes(); }
    void setCheckboxes(bool shown) { m_model->setCheckboxes(shown); }
    /// Shows the fields whose caption, or that of a field above, holds every word typed; accents and case do not
    /// count. Empty shows all.
    void find(const QString& words);
    /// Lets the root be open and selected.
    void showRoot();

Q_SIGNALS:
    void columnWanted(const QString& path);
    void criterionWanted(const QString& path);
    void selectionChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Finder;
    void expandMatches(const QModelIndex& parent, int depth, int& nearest);
    void showMenu(const QPoint& at);
    void ask(bool criterion);

    Structure* m_structure = nullptr;
    FieldTreeModel* m_model;
    Finder* m_finder;
    QLineEdit* m_line;
    QTreeView* m_tree;
    QLabel* m_none;
};

} // namespace query
