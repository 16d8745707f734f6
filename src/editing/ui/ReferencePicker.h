// A collector, a locality or a taxon, by its name.
#pragma once

#include "editing/ui/EntryLine.h"
#include "editing/ui/FieldControl.h"

#include <QCompleter>
#include <QStandardItemModel>

namespace editing {

/// "Phylar.Botaniste", "Phylar.Localités", "Phylar.Taxons": completes the name from its table while one types. Return
/// and Tab take the name that is highlighted; a name that is not in the table stays as typed and is an error. With a chooser
/// F3 and the glass open the tree or list of the names, and the last line below the names found adds the one typed.
class ReferencePicker : public FieldControl {
    Q_OBJECT
public:
    ReferencePicker(Cl_Edition& parent, const ControlWorld& world, QWidget* owner);

    void Refresh() override;
    void setReadOnly(bool readOnly) override;
    void openList() override;
    QWidget* editor() const override { return m_line; }
    void finish() override;

private:
    void typed(const QString& text);
    bool handleKey(QKeyEvent* event) override;
    void showMatches(const QString& text);
    void choose(const QModelIndex& index);
    void openChooser();
    void addTyped();
    void takeChosen(std::optional<qint32> id);

    EntryLine* m_line;
    QCompleter* m_completer;
    QStandardItemModel* m_matches;
    bool m_pending = false; ///< Typed, and no name chosen yet.
};

} // namespace editing
