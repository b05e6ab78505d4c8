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
    for (;;) {
        switch (ReadKey(true)) {
        case 'y':
        case 'Y':
            apply = true;
            return true;
        case 'n':
        case 'N':
            apply = false;
            return true;
        case Keys::Escape:
            return false;
        default:
            break;
        }
    }
}

} // namespace Lanyx
