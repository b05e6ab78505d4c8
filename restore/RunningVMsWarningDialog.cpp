#include "restore/RunningVMsWarningDialog.hpp"

#include "core/Keys.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

RunningVMsWarningDialog::RunningVMsWarningDialog(Frame* owner) : Dialog(owner, 60, 10, 7) {}

bool RunningVMsWarningDialog::Execute() {
    SetTitle(CatalogueText(Ids::GuestsRunningTitle));
    SetMessage(CatalogueText(Ids::GuestsRunning));
    SetFooter(Footers::kConfirmCancel);
    for (;;) {
        const int key = ReadKey(true);
        if (key == Keys::Enter)
            return true;
        if (key == Keys::Escape)
            return false;
    }
}

} // namespace Lanyx
