// The reference lists in a dialog, for the fields that name their rows.
#pragma once

#include "editing/ui/ReferenceChooser.h"
#include "reference/ui/ReferenceControl.h"

#include <QDialog>
#include <QDialogButtonBox>

namespace reference {

/// The control of a list (tree or grid) to choose one row from.
std::unique_ptr<ReferenceControl> makeControl(const std::shared_ptr<ReferenceWorld>& world, int type, QWidget* parent);

/// One list to choose from; rows can be added, changed and deleted in it as in the browser.
class ChoiceDialog : public QDialog {
    Q_OBJECT
public:
    ChoiceDialog(const std::shared_ptr<ReferenceWorld>& world, int type, const QString& title, QWidget* parent);

    ReferenceControl& control() const { return *m_control; }
    qint32 chosen() const { return m_control->currentId(); }
    /// Row 0, the world, may be chosen too.
    void allowTop() { m_top = true; updateButtons(); }

private:
    void updateButtons();

    ReferenceControl* m_control;
    QDialogButtonBox* m_buttons;
    bool m_top = false;
};

/// Opens the dialogs over the form that asks. Lives as long as the main window, whatever project is open.
class Chooser : public editing::ReferenceChooser {
public:
    /// `world` gives that of the open project; null while there is none.
    explicit Chooser(std::function<std::shared_ptr<ReferenceWorld>()> world) : m_world(std::move(world)) {}

    std::optional<qint32> choose(int fieldType, qint32 current, const QString& typed, QWidget* over) override;
    std::optional<qint32> add(int fieldType, const QString& typed, QWidget* over) override;

private:
    std::optional<qint32> addTaxon(ReferenceWorld& world, const QString& typed) const;
    std::optional<qint32> addPlace(const std::shared_ptr<ReferenceWorld>& world, const QString& typed, QWidget* over) const;

    std::function<std::shared_ptr<ReferenceWorld>()> m_world;
};

} // namespace reference
