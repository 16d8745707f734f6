// The web links of a reference list: the menu that follows them, the window that edits them.
#pragma once

#include <QDialog>
#include <QListWidget>
#include <QMenu>
#include <functional>
#include <memory>

namespace reference {

struct ReferenceWorld;

/// The first entry opens the editor, each other one the address of its link for the row that `current` gives.
QMenu* makeLinksMenu(const std::shared_ptr<ReferenceWorld>& world, int type, std::function<qint32()> current, QWidget* parent);

/// The list of the links of one reference list.
class WizardLinks : public QDialog {
    Q_OBJECT
public:
    WizardLinks(std::shared_ptr<ReferenceWorld> world, int type, QWidget* parent = nullptr);

    QListWidget& list() { return *m_list; }
    void clLinks_Add();
    void clLinks_Edit();
    void clLinks_Delete();

private:
    void fill(const QString& current);
    /// The form of a link; an empty name for a new one.
    void edit(const QString& name);
    bool save(const QString& before, const QString& name, const QString& link);

    std::shared_ptr<ReferenceWorld> m_world;
    QString m_kind;
    QListWidget* m_list;
    QList<QAction*> m_onLink; ///< Commands that need a link.
};

} // namespace reference
