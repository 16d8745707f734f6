// The browser of the collectors: by letters and by organisations.
#pragma once

#include "reference/ui/Botaniste.h"
#include "reference/ui/ReferenceBrowser.h"

#include <QStandardItemModel>
#include <QTreeView>

namespace reference {

/// Keys of the nodes: "0-Col" everybody, "A-Col" to "T-Col", "U-Col" for "[U-V]", "W-Col" for "[W-Z]"; organisations
/// "Name-Org", none at all "0-Org".
class Form10 : public ReferenceBrowser {
    Q_OBJECT
public:
    explicit Form10(std::shared_ptr<ReferenceWorld> world, QWidget* parent = nullptr);
    ~Form10() override;

    QTreeView& groups() const { return *m_groups; }
    Botaniste& people() const { return *m_people; }
    QModelIndex groupOf(const QString& key) const;

    /// "Sel. 2  163 botaniste(s)"
    QString statusText() const override;
    bool can(platform::TabCommand command) const override;
    void run(platform::TabCommand command) override;

protected:
    void showForm(qint32 id) override;
    void noteSaved() override;

private:
    void fillGroups();
    void chooseGroup();

    QTreeView* m_groups;
    QStandardItemModel* m_nodes;
    Botaniste* m_people;
    QSplitter* m_left;
    bool m_filling = false;
};

} // namespace reference
