#include "restore/NoUplinksDialog.hpp"

#include "core/Keys.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

NoUplinksDialog::NoUplinksDialog(Frame* owner) : Dialog(owner, 60, 10, 5) {}

bool NoUplinksDialog::Execute() {
    SetTitle(CatalogueText(Ids::NoFabricUplinksTitle));
    SetMessage(CatalogueText(Ids::NoFabricUplinks));
    SetFooter(Footers::kOk);
    for (;;) {
        const int key = ReadKey(true);
        if (key == Keys::Enter)
            return true;
        if (key == Keys::Escape)
            return false;
    }
}

} // namespace Lanyx
