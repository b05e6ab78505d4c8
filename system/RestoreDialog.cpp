#include "system/RestoreDialog.hpp"

#include <cstdint>

#include <unistd.h>

#include "core/Keys.hpp"
#include "host/CommandRunner.hpp"
#include "host/HostRoot.hpp"
#include "host/Log.hpp"
#include "host/Records.hpp"
#include "text/CatalogueIds.hpp"
#include "text/Footers.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 60;
constexpr int kHeight = 12;
constexpr int kTitleHeight = 7;

constexpr char kRestartFooter[] =
    "{align:right}{color:black}<Enter>{/color} {color:dark-grey}Restart Host{/color}{/align}";

} // namespace

RestoreDialog::RestoreDialog(Frame* owner) : Dialog(owner, kWidth, kHeight, kTitleHeight) {
    questionText = new TextArea(contentWindow, 0, 0, contentWindow->GetWidth() - 6,
                                contentWindow->GetHeight(), -1);
}

bool RestoreDialog::Execute() {
    SetTitle(CatalogueText(Ids::ResetConfirmTitle));
    SetMessage(CatalogueText(Ids::ResetConfirmMessage));
    questionText->SetText(CatalogueText(Ids::ResetQuestion));
    SetFooter(Footers::kF11OkCancel);
    if (!AwaitAnswer(Keys::F11))
        return false;

    Log(LOG_INFO, "Restoring factory defaults");
    PostEvent(Events::restoreFactoryDefaults);
    SetTitle(CatalogueText(Ids::ResetTitle));
    SetMessage(CatalogueText(Ids::ResetWait));
    if (RunShell(HostPath("/sbin/factoryState.py") + " --reset-only > /dev/null 2>&1") != 0)
        return false;

    questionText->SetText("");
    SetFooter(kRestartFooter);
    SetMessage(CatalogueText(Ids::ResetDone));
    // The idle limit still applies here: a session that ends now leaves the host reset but running.
    while (ReadKey(true) != Keys::Enter) {
    }
    if (RunShell("reboot -f") == -1)
        return false;
    // The host goes down around the process; no key is read any more.
    for (;;)
        ::pause();
}

} // namespace Lanyx
