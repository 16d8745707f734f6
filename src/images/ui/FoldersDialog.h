// The folders in which pictures are looked for.
#pragma once

#include "platform/Dialogues.h"

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>

namespace images {

/// A list that is ordered, lengthened and shortened; folders that are not there now are marked, and stay.
class FoldersDialog : public QDialog {
    Q_OBJECT
public:
    FoldersDialog(const QStringList& folders, platform::Dialogues& dialogues, QWidget* parent = nullptr);

    QStringList folders() const; ///< In their order.

private:
    QPushButton* command(const QString& name, const QString& text, void (FoldersDialog::*run)());
    void add();
    void remove();
    void up() { move(-1); }
    void down() { move(1); }
    void move(int by);
    void append(const QString& folder);
    void showPossible();

    platform::Dialogues& m_dialogues;
    QTreeWidget* m_list;
    QPushButton* m_remove;
    QPushButton* m_up;
    QPushButton* m_down;
};

} // namespace images
