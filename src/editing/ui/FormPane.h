// Forms one under the other: captions, controls, and why a value cannot be saved.
#pragma once

#include "editing/ui/FieldControl.h"
#ifndef Q_MOC_RUN // which reads plain letters only
#include "editing/IndividualEditing.h"
#endif

#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

class QGridLayout;

namespace editing {

/// One form of the pane.
struct FormSection {
    QString title;   ///< Empty for none.
    QString heading; ///< Said of the whole form ("< Lecture seule > …"); empty for nothing.
    QList<FormRow> rows;
};

enum class FormLayout {
    Above,     ///< Captions above their fields.
    Beside,    ///< Captions at the left.
    Condensed, ///< At the left, one line for each field.
};

/// Return goes from field to field in their order. The reason why a value cannot be saved stands under its field, at once
/// for what was typed; that a required field is still empty is said once it was left, or once a save was tried.
class FormPane : public QScrollArea, private ControlContainer {
    Q_OBJECT
public:
    explicit FormPane(QWidget* parent = nullptr);
    ~FormPane() override;

    ControlWorld& world() { return m_world; } ///< To be filled before anything is shown.
    /// How a field stands now (caption, error); asked after each edit.
    std::function<FormRow(Cl_Edition&)> describe;

    void show(const QList<FormSection>& sections, FormLayout layout);
    void clear(); ///< Lets go of the fields at once.
    void refreshValues(); ///< Shows values and errors again.
    void refreshErrors();
    void tellAll(bool all); ///< Also says which required fields are empty.
    bool focusFirst(); ///< The first field that can be edited.
    bool focusField(const Cl_Edition& field);
    bool focusFirstError();
    FieldControl* control(const Cl_Edition& field) const;
    FieldControl* currentControl() const; ///< Where the focus is, or was last; null for none.

Q_SIGNALS:
    void edited(editing::Cl_Edition* field);
    void entered(editing::Cl_Edition* field);
    void leftAtEnd(); ///< Return on the last field.

private:
    struct Row {
        FieldControl* control = nullptr;
        QLabel* caption = nullptr;
        QLabel* error = nullptr;
        QString name; ///< Of the control in this container.
        bool readOnly = false;
        bool touched = false;
    };
    void addSection(QVBoxLayout& column, const FormSection& section, FormLayout layout);
    void addRow(QGridLayout& grid, const FormRow& row, FormLayout layout);
    void addText(QGridLayout& grid, const FormRow& row, FormLayout layout);
    void place(QGridLayout& grid, QLabel* caption, QWidget* field, QLabel* error, FormLayout layout);
    void alignCaptions();
    int controlCount() const override { return int(m_rows.size()); }
    bool hasControl(const QString& name) const override;
    void addControl(const QString& className, const QString& name, Cl_Edition& parent) override;
    void connectRow(FieldControl* control);
    void showError(Row& row);
    void step(FieldControl* from, int by);
    Row* rowOf(const FieldControl* control);

    ControlWorld m_world;
    QList<Row> m_rows;
    FieldControl* m_current = nullptr;
    FieldControl* m_made = nullptr; ///< By the last call of addControl, in this owner.
    QWidget* m_owner = nullptr;
    bool m_compact = false;
    bool m_all = false;
};

} // namespace editing
