// The typed text control: one value of any type that has no list.
#pragma once

#include "editing/ui/EntryLine.h"
#include "editing/ui/FieldControl.h"

#include <QComboBox>
#include <QPlainTextEdit>
#include <QToolButton>

namespace editing {

/// "Phylar.UserText": a line, several lines for a long text, two words for yes and no, a line with a button for a
/// picture file. In a long text Return breaks the line; Ctrl+Return leads on.
class UserText : public FieldControl {
    Q_OBJECT
public:
    UserText(Cl_Edition& parent, const ControlWorld& world, QWidget* owner, bool compact = false);

    void Refresh() override;
    void setReadOnly(bool readOnly) override;
    void openList() override; ///< Of files, for a picture.
    QWidget* editor() const override;
    void finish() override;

protected:
    bool handleKey(QKeyEvent* event) override;

private:
    void makeLine();
    void makeMemo(bool compact);
    void makeYesNo();
    void fitMemo();

    EntryLine* m_line = nullptr;
    QPlainTextEdit* m_memo = nullptr;
    QComboBox* m_yesNo = nullptr;
    QToolButton* m_browse = nullptr;
    QString m_blank; ///< What the line shows of an input mask when nothing is typed.
    int m_mostLines = 10;
};

} // namespace editing
