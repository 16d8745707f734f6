// A line to type into whose keys its control sees first, also while a list hangs below it.
#pragma once

#include <QKeyEvent>
#include <QLineEdit>
#include <functional>

namespace editing {

class EntryLine : public QLineEdit {
    Q_OBJECT
public:
    using QLineEdit::QLineEdit;
    /// Gives true when the key is used up.
    std::function<bool(QKeyEvent*)> onKey;

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        if (onKey && onKey(event))
            event->accept();
        else
            QLineEdit::keyPressEvent(event);
    }
};

} // namespace editing
