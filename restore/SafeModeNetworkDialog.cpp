#include "restore/SafeModeNetworkDialog.hpp"

#include "core/Keys.hpp"
#include "host/Log.hpp"
#include "restore/SafeModeNetwork.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

SafeModeNetworkDialog::SafeModeNetworkDialog(Frame* owner) : Dialog(owner, 60, 12, 7) {
    question = new TextArea(contentWindow, 0, 0, contentWindow->GetWidth(),
                            contentWindow->GetHeight(), -1);
}

bool SafeModeNetworkDialog::Execute() {
    SetTitle(CatalogueText(Ids::RestoreSwitchTitle));
    SetMessage(CatalogueText(Ids::RestoreSwitchMessage));
    question->SetText(CatalogueText(Ids::RestoreSwitchQuestion));
    SetFooter(Footers::kF11OkCancel);
    if (!AwaitAnswer(Keys::F11))
        return false;
    MoveToStandardSwitch();
    Log(LOG_INFO, "Enabling safe mode networking by moving all uplinks to a new management xbar");
    return true;
}

} // namespace Lanyx
