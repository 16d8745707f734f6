// The vocabulary of a list field with its commands.
#pragma once

#include "editing/DescriptorLists.h"
#include "editing/ui/FieldControl.h"

#include <QAction>
#include <QListWidget>
#include <QToolBar>

namespace editing {

/// Check marks for a field of several items, one choice for a field of one. The commands change the vocabulary, and with
/// it the records that use it; they are there for vocabularies of the project alone.
class DescriptorPanel : public QWidget {
    Q_OBJECT
public:
    DescriptorPanel(Cl_Edition& field, const ControlWorld& world, QWidget* owner);

    void setField(Cl_Edition* field) { m_field = field; }
    void refresh();
    void setReadOnly(bool readOnly);
    QListWidget& list() { return *m_list; }
    QAction* command(const QString& key) const; ///< "add", "edit", "delete" (also "sup"), "up", "down", "selall", "selinv".
    int commandsHeight() const { return m_bar->isHidden() ? 0 : m_bar->sizeHint().height(); }
    QVariant chosen() const; ///< The value that the marks, or the current row, stand for.

Q_SIGNALS:
    void edited(); ///< The user chose otherwise.
    void renewed(); ///< The vocabulary changed, and the field's value with it where it had to.

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Command {
        QString key, icon;
        QString sign; ///< Where the theme has no icon.
        QString text;
    };
    void addCommand(const Command& command, void (DescriptorPanel::*run)());
    void choose(int row);
    void showChosen();
    ListField listField() const;
    QString current() const;
    bool relay(const QString& action);
    void replaceInValue(const QString& old, const QString& text);
    void addItem();
    void editItem();
    void deleteItem();
    void moveUp() { move(-1); }
    void moveDown() { move(1); }
    void move(int by);
    void selectAll() { mark(true); }
    void invert() { mark(false); }
    void mark(bool all);
    void updateCommands();

    const ControlWorld& m_world;
    Cl_Edition* m_field;
    bool m_multiple;
    bool m_readOnly = false;
    QListWidget* m_list;
    QToolBar* m_bar;
};

} // namespace editing
