// The tree of the taxa with the form of the selected name.
#pragma once

#include "reference/ui/ReferenceBrowser.h"
#include "reference/ui/ReferenceTree.h"

#include <QTreeWidget>

namespace reference {

class Cl_Taxon;

/// Under the form stand the synonyms of the name, with their commands.
class TaxonBrowser : public ReferenceBrowser {
    Q_OBJECT
public:
    explicit TaxonBrowser(std::shared_ptr<ReferenceWorld> world, QWidget* parent = nullptr);

    QTreeWidget& synonyms() const { return *m_synonyms; }

protected:
    void showForm(qint32 id) override;
    QString titleOf(qint32 id) const override;

private:
    void fillSynonyms(qint32 id);
    void onSynonym(bool (Cl_Taxon::*run)(qint32));

    Taxons* m_tree;
    QWidget* m_panel;
    QTreeWidget* m_synonyms;
    QToolButton *m_edit, *m_delete;
};

} // namespace reference
