// The properties of the module or field that is chosen, with what each means.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

namespace app {

class StructureEditing;

/// A title, rows of properties, and below them the help of the row that has the focus.
class PropertySheet : public QWidget {
    Q_OBJECT
public:
    PropertySheet(StructureEditing& editing, QWidget* parent = nullptr);

    int shown() const { return m_id; }
    /// Shows a module or field of the draft; 0 for none.
    virtual void showItem(int id) = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    QLineEdit* addLine(const QString& name, const QString& label, const QString& help,
                       const std::function<void(int id, const QString&)>& taken);
    QCheckBox* addCheck(const QString& name, const QString& label, const QString& help,
                        const std::function<void(int id, bool)>& taken);
    void addRow(const QString& name, const QString& label, const QString& help, QWidget* editor);
    void setTitle(const QString& title);
    void setRowVisible(QWidget* editor, bool visible);
    StructureEditing& editing() { return m_editing; }
    const StructureEditing& editing() const { return m_editing; }

    int m_id = 0;

private:
    /// Once the key or click that led to it is over: a question may follow.
    void later(const std::function<void()>& work);

    StructureEditing& m_editing;
    QLabel* m_title;
    QFormLayout* m_form;
    QLabel* m_help;
    bool m_taking = false;
};

class ModuleSheet : public PropertySheet {
    Q_OBJECT
public:
    explicit ModuleSheet(StructureEditing& editing, QWidget* parent = nullptr);
    void showItem(int module) override;

private:
    QLineEdit* m_name;
    QLineEdit* m_label;
    QLineEdit* m_short;
    QLabel* m_example;
    QCheckBox* m_unique;
    QCheckBox* m_mixed;
    QLineEdit* m_description;
};

class FieldSheet : public PropertySheet {
    Q_OBJECT
public:
    explicit FieldSheet(StructureEditing& editing, QWidget* parent = nullptr);
    void showItem(int field) override;

Q_SIGNALS:
    void descriptorsWanted(int field);

private:
    QLineEdit* m_name;
    QComboBox* m_type;
    QCheckBox* m_required;
    QCheckBox* m_unique;
    QCheckBox* m_mixed;
    QCheckBox* m_linked;
    QLineEdit* m_description;
    QPushButton* m_descriptors;
    QLineEdit* m_rule;
    QLineEdit* m_ruleText;
};

} // namespace app
