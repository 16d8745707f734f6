// The tree of the localities under "Monde" with the form of the selected one.
#pragma once

#include "reference/ui/ReferenceBrowser.h"
#include "reference/ui/ReferenceTree.h"

namespace reference {

class PlaceBrowser : public ReferenceBrowser {
    Q_OBJECT
public:
    explicit PlaceBrowser(std::shared_ptr<ReferenceWorld> world, QWidget* parent = nullptr);

protected:
    void showForm(qint32 id) override;
};

} // namespace reference
