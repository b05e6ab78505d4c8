#include "restore/UsedUplinksDialog.hpp"

#include "core/Keys.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

UsedUplinksDialog::UsedUplinksDialog(Frame* owner) : Dialog(owner, 60, 10, 5) {
    question = new TextArea(contentWindow, 0, 0, contentWindow->GetWidth(),
                            contentWindow->GetHeight(), -1);
}

bool UsedUplinksDialog::Execute() {
    SetTitle(CatalogueText(Ids::FabricUplinksWarningTitle));
    SetMessage(CatalogueText(Ids::NoUplinksSelected));
    question->SetText(CatalogueText(Ids::ContinueQuestion));
    SetFooter(Footers::kOkCancel);
    return AwaitAnswer(Keys::Enter);
}

} // namespace Lanyx
