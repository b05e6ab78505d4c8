#include "network/DoRestartNetworkDialog.hpp"

#include "core/Keys.hpp"
#include "host/Log.hpp"
#include "host/Records.hpp"
#include "text/CatalogueIds.hpp"

namespace Lanyx {

namespace {

constexpr int kWidth = 60;
constexpr int kHeight = 12;
constexpr int kTitleHeight = 5;

constexpr int kStaticType = 0;
constexpr int kLinkLocalScope = 1;
// A list of exactly this many is shown whole; of any other length, two and a mark.
constexpr size_t kShownWhole = 3;
constexpr size_t kShownOtherwise = 2;

constexpr const char* kOkFooter =
    "{align:right}{color:black}<Enter>{/color}{color:dark-grey} OK{/color}{/align}";

} // namespace

std::string RestartedAddressLines(const std::string& ipAddressIs, bool useDhcp,
                                  const std::string& ipv4Address,
                                  const std::vector<Keelson::Network::Ipv6Network>& ipv6Networks) {
    std::string lines;
    if (!useDhcp)
        lines += "\n   " + ipAddressIs + " " + ipv4Address + "\n";
    if (!ipv6Networks.empty() && useDhcp)
        lines += "\n";
    const bool whole = ipv6Networks.size() == kShownWhole;
    size_t shown = 0;
    for (size_t i = 0; i < ipv6Networks.size(); ++i) {
        const Keelson::Network::Ipv6Network& network = ipv6Networks[i];
        if (network.GetIpv6AddressType() != kStaticType ||
            network.GetIpv6Scope() == kLinkLocalScope)
            continue;
        lines += "   " + ipAddressIs + " " + network.GetStringAddress() + "\n";
        if (!whole && ++shown == kShownOtherwise) {
            if (i + 1 < ipv6Networks.size())
                lines += "   ...\n";
            break;
        }
    }
    return lines;
}

DoRestartNetworkDialog::DoRestartNetworkDialog(Frame* owner,
                                               Keelson::Network::NetworkInterface* nic)
    : Dialog(owner, kWidth, kHeight, kTitleHeight), interface(nic) {
    progressText = new TextArea(contentWindow, 0, 0, contentWindow->GetWidth(),
                                contentWindow->GetHeight(), -1);
}

bool DoRestartNetworkDialog::Execute() {
    // Read before the stop: a stopped interface may not tell.
    const bool useDhcp = interface->GetConfiguredIpConfig().GetUseDhcp();
    const std::string name = interface->GetName();
    Log(LOG_INFO, "Restarting %s", name.c_str());
    PostEvent(Events::networkRestart, name);

    SetTitle(CatalogueText(Ids::RestartNetworkTitle));
    SetMessage(CatalogueText(Ids::RestartNetworkWait));
    progressText->SetText(std::string(CatalogueText(Ids::StoppingNetwork)) + " ");
    interface->Disable();
    interface->Refresh();
    progressText->AppendText(std::string(CatalogueText(Ids::Done)) + "\n");
    interface->Enable();
    progressText->AppendText(std::string(CatalogueText(Ids::StartingNetwork)) + " ");

    const std::string ipv4 =
        useDhcp ? std::string() : interface->GetIpConfig().GetIpv4Address().GetStringAddress();
    const std::vector<Keelson::Network::Ipv6Network> ipv6 =
        interface->GetIpConfig().GetIpv6Network();
    progressText->AppendText(
        RestartedAddressLines(CatalogueText(Ids::IpAddressIs), useDhcp, ipv4, ipv6));
    progressText->AppendText(CatalogueText(Ids::Done));

    SetFooter(kOkFooter);
    while (ReadKey(true) != Keys::Enter) {
    }
    return true;
}

} // namespace Lanyx
