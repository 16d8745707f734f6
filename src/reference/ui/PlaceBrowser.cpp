#include "reference/ui/PlaceBrowser.h"

#include "reference/ui/ReferenceWorld.h"

namespace reference {

using namespace Qt::StringLiterals;

PlaceBrowser::PlaceBrowser(std::shared_ptr<ReferenceWorld> world, QWidget* parent) : ReferenceBrowser(world, parent)
{
    auto* tree = new PlaceTree(world, this);
    arrange(tree, tree, u"Lslocalités"_s);
}

void PlaceBrowser::showForm(qint32 id)
{
    auto fields = std::make_unique<editing::Cl_Editions>(world().context);
    const QString title = world().places.FillTabEdit(*fields, id);
    form().show(title, std::move(fields), [this, id](editing::Cl_Editions& typed) {
        world().places.setIDcLocalité(id);
        return world().places.Save(typed, 0);
    });
}

} // namespace reference
