// The tree at the left of the record editor.
#pragma once

#include "editing/ui/EditTreeModel.h"

#include <QSet>
#include <QTreeView>

namespace editing {

/// Keeps what the user unfolded through every change of the tree. Long groups begin folded.
class EditTreeView : public QTreeView {
    Q_OBJECT
public:
    explicit EditTreeView(EditTreeModel& model, QWidget* parent = nullptr);

    void showNode(const EditNode* node); ///< Selects it without telling.

Q_SIGNALS:
    void nodeChosen(const QModelIndex& index); ///< By the user.
    void nodeActivated(const QModelIndex& index); ///< Return or a double click.

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    void unfold();
    void unfoldUnder(const QModelIndex& parent);

    EditTreeModel& m_nodes;
    QSet<QString> m_unfolded, m_folded; ///< Keys, by the user.
    bool m_quiet = false;
};

} // namespace editing
