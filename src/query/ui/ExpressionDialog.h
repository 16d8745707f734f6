// An expression on the fields of a module: the window.
#pragma once

#include "query/ui/CbModule.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPlainTextEdit>

namespace query {

/// The window `Form14`. A double click on a field puts it in brackets where the cursor is. An expression whose brackets
/// do not match is not taken.
class ExpressionDialog : public QDialog {
    Q_OBJECT
public:
    ExpressionDialog(Structure& structure, FieldTreeModel::Icons icons, const QString& caption,
                     const QString& expression, QWidget* parent = nullptr);
    ~ExpressionDialog() override;

    QString expression() const { return m_text->toPlainText().simplified(); }
    QPlainTextEdit& text() { return *m_text; }
    void accept() override;

private:
    void check();

    Structure& m_structure;
    CbModule* m_fields;
    QPlainTextEdit* m_text;
    QLabel* m_error;
    QDialogButtonBox* m_buttons;
};

} // namespace query
