// The form of the row selected in a reference browser.
#pragma once

#include "editing/ui/FormPane.h"

#include <QPushButton>
#include <QToolButton>

namespace reference {

struct ReferenceWorld;

/// Shows a form, saves it and gives back what was typed. The title, the fields and the number of individuals stand one
/// under the other.
class RowForm : public QWidget {
    Q_OBJECT
public:
    explicit RowForm(std::shared_ptr<ReferenceWorld> world, QWidget* parent = nullptr);
    ~RowForm() override;

    /// Shows a form; `save` writes it and gives false when it was refused. Fields named in `hidden` are not shown.
    void show(const QString& title, std::unique_ptr<editing::Cl_Editions> form,
              std::function<bool(editing::Cl_Editions&)> save, const QStringList& hidden = {});
    void showNothing(const QString& why);
    void setTitle(const QString& title);
    void setCount(const QString& text, bool any); ///< Said of the individuals; `any`: there is something to open.
    /// A part of the browser's own under the fields.
    void setExtra(QWidget* extra);
    bool isShown() const { return m_form != nullptr; }
    bool isTyped() const { return m_typed; }
    bool isSaving() const { return m_saving; } ///< Nothing else may be shown now.
    bool save(); ///< True when nothing is left to be saved.
    void undo(); ///< The values as they are saved, by asking for the row again.
    /// Asks about what was typed: save it, drop it, or stay (false).
    bool mayLeave();
    editing::FormPane& pane() { return *m_pane; }
    void focusFirst() { m_pane->focusFirst(); }

Q_SIGNALS:
    void typedChanged();
    void undoWanted();
    void saved();
    void individualsWanted();

private:
    editing::FormRow describe(editing::Cl_Edition& field) const;
    void setTyped(bool typed);

    std::shared_ptr<ReferenceWorld> m_world;
    std::unique_ptr<editing::Cl_Editions> m_form;
    std::function<bool(editing::Cl_Editions&)> m_save;
    QLabel* m_title;
    editing::FormPane* m_pane;
    QLabel* m_help;
    QLabel* m_count;
    QPushButton *m_open, *m_saveButton, *m_undoButton;
    QVBoxLayout* m_layout;
    bool m_typed = false;
    bool m_saving = false;
};

} // namespace reference
