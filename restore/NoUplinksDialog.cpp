#include "restore/NoUplinksDialog.hpp"

#include "core/Keys.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

NoUplinksDialog::NoUplinksDialog(Frame* owner) : Dialog(owner, 60, 10, 5) {}

bool NoUplinksDialog::Execute() {
    SetTitle(CatalogueText(Ids::NoFabricUplinksTitle));
    SetMessage(CatalogueText(Ids::NoFabricUplinks));
    SetFooter(Footers::kOk);
    return AwaitAnswer(Keys::Enter);
}

} // namespace Lanyx
