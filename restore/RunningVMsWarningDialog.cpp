#include "restore/RunningVMsWarningDialog.hpp"

#include "core/Keys.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

RunningVMsWarningDialog::RunningVMsWarningDialog(Frame* owner) : Dialog(owner, 60, 10, 7) {}

bool RunningVMsWarningDialog::Execute() {
    SetTitle(CatalogueText(Ids::GuestsRunningTitle));
    SetMessage(CatalogueText(Ids::GuestsRunning));
    SetFooter(Footers::kConfirmCancel);
    return AwaitAnswer(Keys::Enter);
}

} // namespace Lanyx
