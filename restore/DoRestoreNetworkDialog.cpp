#include "restore/DoRestoreNetworkDialog.hpp"

#include <memory>

#include "core/Keys.hpp"
#include "host/CommandRunner.hpp"
#include "host/GuardedStep.hpp"
#include "host/Log.hpp"
#include "keelson/Network.hpp"
#include "keelson/Resource.hpp"
#include "restore/RunningVMsWarningDialog.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

// The blank stands behind the closing tag, as the box has always shown it.
constexpr const char* kFooter =
    "{align:right}{color:black}<Enter>{/color}{color:dark-grey} OK{/color}{/align}";

} // namespace

DoRestoreNetworkDialog::DoRestoreNetworkDialog(Frame* owner) : Dialog(owner, 60, 12, 6) {
    progress = new TextArea(contentWindow, 0, 0, contentWindow->GetWidth(),
                            contentWindow->GetHeight(), -1);
}

bool DoRestoreNetworkDialog::Execute() {
    TesselCtl::Network::NetworkInfoImpl network;
    const TesselCtl::Resource::ResourceInfoImpl resources;
    SetTitle(CatalogueText(Ids::RestoreNetworkTitle));
    SetMessage(CatalogueText(Ids::RestoreNetworkWait));

    // A failure of the library here is not the restore's to handle.
    const bool guestsRun = resources.HasRunningVirtualMachines();
    std::unique_ptr<RunningVMsWarningDialog> warning;
    int haltResult = 0;
    if (guestsRun) {
        warning = std::make_unique<RunningVMsWarningDialog>(this);
        if (!warning->RunModal())
            return false;
        progress->SetText("Powering Off VMs.");
        progress->AppendText(" ");
        const char* const argv[] = {"haltGuests", nullptr};
        haltResult = RunCommand("/sbin/haltGuests", argv);
        if (haltResult == 0)
            progress->AppendText("Done.\n");
        // The warning stays behind the text while the guests go down.
        warning.reset();
        Update();
    }

    GuardedStep(
        [&] {
            network.DisableNetDumper();
            if (haltResult != 0) {
                progress->AppendText("Failed.\n");
                Log(LOG_ERR, "Powering off VMs failed");
                return;
            }
            progress->AppendText("Auto-configuring network. ");
            Log(LOG_INFO, "Clearing Network Config");
            network.ClearNetworkConfig();
            Log(LOG_INFO, "Auto-Configuring Network");
            network.AutoConfigNetwork();
            progress->AppendText("Done.\n");
        },
        [&](const Keelson::Lib::KeelsonException&) {
            progress->AppendText("Failed.\n");
            Log(LOG_ERR, "auto-configuring network failed");
        });

    SetFooter(kFooter);
    while (ReadKey(true) != Keys::Enter) {
    }
    return true;
}

} // namespace Lanyx
