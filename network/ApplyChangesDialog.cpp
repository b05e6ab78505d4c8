#include "network/ApplyChangesDialog.hpp"

#include "core/Keys.hpp"
#include "text/CatalogueIds.hpp"
#include "text/Footers.hpp"

namespace Lanyx {

ApplyChangesDialog::ApplyChangesDialog(Frame* owner, bool rebootNeeded)
    : Dialog(owner, 70, 15, 9),
      question(contentWindow, 2, 0, contentWindow->GetWidth() - 6, contentWindow->GetHeight(), -1) {
    SetTitle(CatalogueText(Ids::ApplyConfirmTitle));
    SetMessage(CatalogueText(Ids::ApplyConfirmMessage));
    question.SetText(
        CatalogueText(rebootNeeded ? Ids::ApplyAndRebootQuestion : Ids::ApplyAndRestartQuestion));
    SetFooter(Footers::kYesNoCancel);
}

bool ApplyChangesDialog::Execute() {
    return AwaitYesNo(apply);
}

} // namespace Lanyx
