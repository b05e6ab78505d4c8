#include "restore/RestoreNetworkDialog.hpp"

#include "core/Keys.hpp"
#include "host/Log.hpp"
#include "host/Records.hpp"
#include "restore/DoRestoreNetworkDialog.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

constexpr const char* kFooter =
    "{color:black}<F11>{/color} {color:dark-grey}Yes, Reset{/color}{align:right}"
    "{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";

} // namespace

RestoreNetworkDialog::RestoreNetworkDialog(Frame* owner) : Dialog(owner, 60, 12, 6) {
    question = new TextArea(contentWindow, 3, 0, contentWindow->GetWidth() - 6,
                            contentWindow->GetHeight(), -1);
}

bool RestoreNetworkDialog::Execute() {
    SetTitle(CatalogueText(Ids::RestoreNetworkConfirmTitle));
    SetMessage(CatalogueText(Ids::RestoreNetworkConfirmMessage));
    question->SetText(CatalogueText(Ids::RestoreNetworkQuestion));
    SetFooter(kFooter);
    if (!AwaitAnswer(Keys::F11))
        return false;
    // The records follow whatever the progress dialog made of it, a refusal at the warning too.
    DoRestoreNetworkDialog(this).RunModal();
    Log(LOG_INFO, "Restoring factory network settings");
    PostEvent(Events::factoryNetworkRestored);
    return true;
}

} // namespace Lanyx
